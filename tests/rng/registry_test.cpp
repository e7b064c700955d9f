// The registry: the sixteen built-in rows, the compatibility table, the identifier rule and
// validity test, and the entries of generators not built yet.
#include "rng_util.hpp"

#include "rng/stream.hpp"

using namespace rngtest;

namespace {

struct Row {
    int32_t id, size, seeds, zero, word, bits, subs;
};
// The main table as the generator designs give it.
constexpr Row kRows[16] = {
    {0x100000, 24, 1, 0, 4, 31, 1},         {0x200000, 1024, 252, 1, 4, 32, 1},
    {0x300000, 40, 6, 1, 4, 32, 1},         {0x400000, 32, 1, 0, 8, 59, 1},
    {0x500000, 48, 4, 1, 16, 24, 273},      {0x600000, 11712, 2900, 0, 4, 32, 1},
    {0x700000, 84288, 21056, 0, 4, 32, 1},  {0x800000, 2520, 625, 1, 4, 32, 1},
    {0x900000, 312, 70, 1, 4, 32, 6024},    {0xA00000, 48, 0, 1, 4, 32, 1},
    {0xB00000, 64, 0, 1, 4, 32, 1},         {0xC00000, 56, 0, 1, 4, 32, 1},
    {0xD00000, 2536, 625, 1, 4, 32, 1},     {0xE00000, 24, 1, 1, 4, 32, 1},
    {0xF00000, 72, 13, 1, 4, 32, 1},        {0x1000000, 64, 11, 1, 4, 32, 1},
};

BrngProperties props_of(int32_t id) {
    BrngProperties p{};
    EXPECT_EQ(rokGetBrngProperties(id, &p), ROK_STATUS_OK) << std::hex << id;
    return p;
}

bool same_row(const BrngProperties &a, const BrngProperties &b) {
    return a.stream_state_size == b.stream_state_size && a.num_seeds == b.num_seeds &&
           a.includes_zero == b.includes_zero && a.word_size == b.word_size && a.num_bits == b.num_bits &&
           a.init_stream == b.init_stream && a.s_brng == b.s_brng && a.d_brng == b.d_brng && a.i_brng == b.i_brng;
}

}  // namespace

TEST(Registry, MainTableRowsAndSubGeneratorRanges) {
    EXPECT_GE(rokGetNumRegBrngs(), 16);
    for (const Row &r : kRows) {
        BrngProperties p = props_of(r.id);
        EXPECT_EQ(p.stream_state_size, r.size) << std::hex << r.id;
        EXPECT_EQ(p.num_seeds, r.seeds) << std::hex << r.id;
        EXPECT_EQ(p.includes_zero, r.zero) << std::hex << r.id;
        EXPECT_EQ(p.word_size, r.word) << std::hex << r.id;
        EXPECT_EQ(p.num_bits, r.bits) << std::hex << r.id;
        EXPECT_EQ(rokIsBrngValid(r.id + r.subs - 1), ROK_STATUS_OK) << std::hex << r.id;
        EXPECT_EQ(rokIsBrngValid(r.id + r.subs), ROK_ERROR_BAD_BRNG) << std::hex << r.id;
        // Every sub-generator of a family shares the family's row.
        EXPECT_TRUE(same_row(props_of(r.id + r.subs - 1), p));
    }
}

TEST(Registry, CongruentialRowsCarryTheirEntries) {
    BrngProperties p = props_of(ROK_BRNG_MCG31M1);
    EXPECT_EQ(p.init_stream, &rokBRngMCG31M1InitStream);
    EXPECT_EQ(p.s_brng, &roksBRngMCG31M1);
    EXPECT_EQ(p.d_brng, &rokdBRngMCG31M1);
    EXPECT_EQ(p.i_brng, &rokiBRngMCG31M1);
    p = props_of(ROK_BRNG_MCG59);
    EXPECT_EQ(p.init_stream, &rokBRngMCG59InitStream);
    EXPECT_EQ(p.s_brng, &roksBRngMCG59);
    EXPECT_EQ(p.d_brng, &rokdBRngMCG59);
    EXPECT_EQ(p.i_brng, &rokiBRngMCG59);
}

TEST(Registry, AbstractRowsRefuseTheKindsTheyDoNotCarry) {
    float f[1];
    double d[1];
    uint32_t w[1];
    struct Kind {
        int32_t id;
        bool s, d, i;
    };
    for (Kind k : {Kind{ROK_BRNG_IABSTRACT, false, false, true}, Kind{ROK_BRNG_DABSTRACT, false, true, false},
                   Kind{ROK_BRNG_SABSTRACT, true, false, false}}) {
        BrngProperties p = props_of(k.id);
        EXPECT_EQ(p.s_brng(nullptr, 1, f, 0, 1) == ROK_ERROR_ABSTRACT_KIND, !k.s) << std::hex << k.id;
        EXPECT_EQ(p.d_brng(nullptr, 1, d, 0, 1) == ROK_ERROR_ABSTRACT_KIND, !k.d) << std::hex << k.id;
        EXPECT_EQ(p.i_brng(nullptr, 1, w) == ROK_ERROR_ABSTRACT_KIND, !k.i) << std::hex << k.id;
        RokStream *s = reinterpret_cast<RokStream *>(0x1);
        EXPECT_EQ(rokNewStreamEx(&s, k.id, 0, nullptr), ROK_ERROR_BAD_BRNG);
        EXPECT_EQ(s, nullptr);
    }
}

TEST(Registry, CompatibilityTableMirrorsTheMainRows) {
    const int32_t main_of[] = {0x100000, 0x200000, 0x300000, 0x400000};
    for (int32_t id = 0; id < 4; ++id) EXPECT_TRUE(same_row(props_of(id), props_of(main_of[id])));
    for (int32_t id = 4; id <= 276; ++id) EXPECT_TRUE(same_row(props_of(id), props_of(ROK_BRNG_WH))) << id;
    EXPECT_TRUE(same_row(props_of(277), props_of(ROK_BRNG_SOBOL)));
    EXPECT_TRUE(same_row(props_of(278), props_of(ROK_BRNG_NIEDERR)));
    BrngProperties p{};
    for (int32_t id : {279, 280, 281, 0xFFFFF}) {
        EXPECT_EQ(rokIsBrngValid(id), ROK_ERROR_BAD_BRNG) << id;
        EXPECT_EQ(rokGetBrngProperties(id, &p), ROK_ERROR_BAD_BRNG) << id;
        RokStream *s = nullptr;
        EXPECT_EQ(rokNewStreamEx(&s, id, 0, nullptr), ROK_ERROR_BAD_BRNG);
        EXPECT_EQ(s, nullptr);
    }
}

TEST(Registry, IdentifierRuleSplitsRowAndSubGenerator) {
    using qon::rng::brng_decode;
    using qon::rng::BrngTable;
    auto r = brng_decode(0x900000 + 6023);
    EXPECT_EQ(r.table, BrngTable::main);
    EXPECT_EQ(r.row, 8u);
    EXPECT_EQ(r.sub, 6023u);
    for (uint32_t id = 4; id <= 276; ++id) {
        r = brng_decode(id);
        EXPECT_EQ(r.table, BrngTable::compat);
        EXPECT_EQ(r.row, 4u);
        EXPECT_EQ(r.sub, id - 4);
    }
    r = brng_decode(277);
    EXPECT_EQ(r.row, 277u);
    EXPECT_EQ(r.sub, 0u);
    // Ids past the registered rows, and negative ids, name no row.
    EXPECT_EQ(rokIsBrngValid((rokGetNumRegBrngs() + 1) << 20), ROK_ERROR_BAD_BRNG);
    EXPECT_EQ(rokIsBrngValid(-1), ROK_ERROR_BAD_BRNG);
    EXPECT_EQ(rokIsBrngValid(ROK_BRNG_MCG31M1 + 1), ROK_ERROR_BAD_BRNG);
}

// Generators without a source yet: their rows exist, their entries refuse every call, and no
// stream of them survives creation.
TEST(Registry, UnbuiltGeneratorsRefuseWithoutLeaving) {
    for (const Row &r : kRows) {
        if (r.id >= ROK_BRNG_IABSTRACT && r.id <= ROK_BRNG_SABSTRACT) continue;
        RokStream *s = nullptr;
        uint32_t seed = 1;
        int32_t status = rokNewStreamEx(&s, r.id, 1, &seed);
        if (status != ROK_ERROR_BAD_BRNG) {  // built
            rokDeleteStream(&s);
            continue;
        }
        EXPECT_EQ(s, nullptr);
        BrngProperties p = props_of(r.id);
        float f[1];
        double d[1];
        uint32_t w[4];
        EXPECT_EQ(p.s_brng(nullptr, 1, f, 0, 1), ROK_ERROR_BAD_BRNG);
        EXPECT_EQ(p.d_brng(nullptr, 1, d, 0, 1), ROK_ERROR_BAD_BRNG);
        EXPECT_EQ(p.i_brng(nullptr, 1, w), ROK_ERROR_BAD_BRNG);
    }
}
