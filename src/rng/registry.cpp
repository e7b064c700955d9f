// The registry of basic generators: the main table (16 built-in rows, then the rows added by
// rokRegisterBrng), its sub-generator counts, the constant compatibility table addressed by
// small ids, and the one rule that turns an id into a row. Registration is not locked: it
// must not run concurrently with other stream operations.
#include "rng/stream.hpp"

#include <array>

namespace qon::rng {
namespace {

constexpr int kTableRows = 512;
constexpr int kBuiltinRows = 16;
constexpr uint32_t kCompatRows = 281;      // rows 279 and 280 are empty and refused
constexpr uint32_t kCompatWhFirst = 4;     // ids 4 .. 276 are the WH sub-generators 0 .. 272
constexpr uint32_t kCompatWhLast = 276;
constexpr uint32_t kMainTableFirstId = 0x100000;

// The abstract rows carry one output kind; their other slots answer with this stub.
template <class... Args>
int32_t abstract_kind_refused(RokStream *, int32_t, Args...) {
    return ROK_ERROR_ABSTRACT_KIND;
}

constexpr BrngProperties row(int32_t size, int32_t seeds, int32_t zero, int32_t word, int32_t bits,
                             RokInitStreamFn init, RokSBrngFn s, RokDBrngFn d, RokIBrngFn i) {
    return BrngProperties{size, seeds, zero, word, bits, init, s, d, i};
}

#define ROK_ROW(size, seeds, zero, word, bits, Name) \
    row(size, seeds, zero, word, bits, rokBRng##Name##InitStream, roksBRng##Name, rokdBRng##Name, rokiBRng##Name)

constexpr RokSBrngFn kAbstractS = abstract_kind_refused<float *, float, float>;
constexpr RokIBrngFn kAbstractI = abstract_kind_refused<void *>;

constexpr std::array<BrngProperties, kBuiltinRows> kBuiltin = {
    ROK_ROW(24, 1, 0, 4, 31, MCG31M1),
    ROK_ROW(1024, 252, 1, 4, 32, R250),
    ROK_ROW(40, 6, 1, 4, 32, MRG32K3A),
    ROK_ROW(32, 1, 0, 8, 59, MCG59),
    ROK_ROW(48, 4, 1, 16, 24, WH),
    ROK_ROW(11712, 2900, 0, 4, 32, Sobol),
    ROK_ROW(84288, 21056, 0, 4, 32, Niederr),
    ROK_ROW(2520, 625, 1, 4, 32, MT19937),
    ROK_ROW(312, 70, 1, 4, 32, MT2203),
    row(48, 0, 1, 4, 32, rokBRngiAbstractInitStream, kAbstractS, rokdBRngiAbstract, rokiBRngiAbstract),
    row(64, 0, 1, 4, 32, rokBRngdAbstractInitStream, kAbstractS, rokdBRngdAbstract, kAbstractI),
    row(56, 0, 1, 4, 32, rokBRngsAbstractInitStream, roksBRngsAbstract, rokdBRngiAbstract, kAbstractI),
    ROK_ROW(2536, 625, 1, 4, 32, SFMT19937),
    ROK_ROW(24, 1, 1, 4, 32, TRNG),
    ROK_ROW(72, 13, 1, 4, 32, ARS5),
    ROK_ROW(64, 11, 1, 4, 32, PHILOX4X32X10),
};
constexpr std::array<int32_t, kBuiltinRows> kBuiltinSubs = {1, 1, 1, 1, 273, 1, 1, 1, 6024, 1, 1, 1, 1, 1, 1, 1};

#undef ROK_ROW

// Compatibility row r: MCG31m1, R250, MRG32k3a, MCG59, 273 x WH, Sobol, Niederreiter, 2 empty.
constexpr std::array<BrngProperties, kTableRows> make_compat_table() {
    std::array<BrngProperties, kTableRows> t{};
    for (uint32_t r = 0; r < kCompatWhFirst; ++r) t[r] = kBuiltin[r];
    for (uint32_t r = kCompatWhFirst; r <= kCompatWhLast; ++r) t[r] = kBuiltin[4];
    t[kCompatWhLast + 1] = kBuiltin[5];
    t[kCompatWhLast + 2] = kBuiltin[6];
    return t;
}
constexpr std::array<BrngProperties, kTableRows> kCompatTable = make_compat_table();

struct MainTable {
    std::array<BrngProperties, kTableRows> rows{};
    std::array<int32_t, kTableRows> subs{};
    int32_t count = kBuiltinRows;
    constexpr MainTable() {
        for (int r = 0; r < kBuiltinRows; ++r) {
            rows[r] = kBuiltin[r];
            subs[r] = kBuiltinSubs[r];
        }
    }
};
constinit MainTable main_table;

}  // namespace

BrngRef brng_decode(uint32_t id) {
    if (id >= kMainTableFirstId) return {BrngTable::main, (id >> 20) - 1, id & 0xFFFFF, nullptr};
    if (id >= kCompatWhFirst && id <= kCompatWhLast) return {BrngTable::compat, kCompatWhFirst, id - kCompatWhFirst, nullptr};
    return {BrngTable::compat, id, 0, nullptr};
}

int32_t brng_lookup(uint32_t id, BrngRef *ref) {
    BrngRef r = brng_decode(id);
    if (r.table == BrngTable::compat) {
        if (r.row >= kCompatRows || kCompatTable[r.row].init_stream == nullptr) return ROK_ERROR_BAD_BRNG;
        r.props = &kCompatTable[r.row];
    } else {
        if (r.row >= static_cast<uint32_t>(main_table.count) ||
            r.sub >= static_cast<uint32_t>(main_table.subs[r.row]))
            return ROK_ERROR_BAD_BRNG;
        r.props = &main_table.rows[r.row];
    }
    *ref = r;
    return ROK_STATUS_OK;
}

const BrngProperties *stream_brng(const RokStream *stream) {
    BrngRef r = brng_decode(stream->brng);
    return r.table == BrngTable::compat ? &kCompatTable[r.row] : &main_table.rows[r.row];
}

}  // namespace qon::rng

using namespace qon::rng;

extern "C" {

QON_API int32_t rokdBRngiAbstract(RokStream *stream, int32_t n, double r[], double a, double b) {
    return abstract_kind_refused(stream, n, r, a, b);
}

QON_API int32_t rokIsBrngValid(int32_t brng) {
    BrngRef ref;
    return brng_lookup(static_cast<uint32_t>(brng), &ref);
}

QON_API int32_t rokGetNumRegBrngs(void) { return main_table.count; }

QON_API int32_t rokGetBrngProperties(int32_t brng, BrngProperties *properties) {
    BrngRef ref;
    int32_t status = brng_lookup(static_cast<uint32_t>(brng), &ref);
    if (status != ROK_STATUS_OK) return status;
    *properties = *ref.props;
    return ROK_STATUS_OK;
}

QON_API int32_t rokRegisterBrng(const BrngProperties *p) {
    if (p->stream_state_size < 0) return ROK_ERROR_BAD_STATE_SIZE;
    if (p->word_size != 4 && p->word_size != 8 && p->word_size != 16) return ROK_ERROR_BAD_WORD_SIZE;
    if (p->num_seeds < 1) return ROK_ERROR_BAD_NSEEDS;
    if (p->num_bits < 1) return ROK_ERROR_BAD_NBITS;
    if (p->d_brng == nullptr || p->s_brng == nullptr || p->i_brng == nullptr || p->init_stream == nullptr)
        return ROK_ERROR_NULL_PTR;
    int32_t c = main_table.count;
    if (c >= kTableRows) return ROK_ERROR_MEM;  // the table's 512 rows are all taken
    main_table.rows[c] = *p;
    main_table.subs[c] = 1;
    main_table.count = c + 1;
    return (c + 1) << 20;
}

}  // extern "C"
