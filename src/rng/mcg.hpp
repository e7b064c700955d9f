// The multiplicative congruential family x(k+1) = a * x(k) mod m, written once over a traits
// type that supplies the modular product (scalar and four 64-bit vector lanes), the seeding
// rule and the exact conversion of a state word to double. The state is {x, a}: keeping the
// multiplier in the stream lets leapfrog replace it by a power of itself.
//
// Chunk 14 holds the powers a^0 .. a^15 and the lane advances a^8 and a^16, computed once
// per multiplier change; the generation loops never form a power. The raw generator runs
// eight independent lanes advanced by a^8 (lane j of a block holds x * a^j), the floating-
// point generators sixteen lanes advanced by a^16; each block's lanes are the next 8 or 16
// elements of the one sequence, so every path yields exactly the scalar recurrence. A value
// is converted to double exactly (MCG31m1) or correctly rounded (MCG59) by the 2^52 bias
// trick and scaled by one fused multiply-add: r = a + x * ((b - a) * scale).
#pragma once

#include "rng/powmod.hpp"
#include "rng/stream.hpp"

#include <qon/qon_serv.h>

#include <immintrin.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace qon::rng::mcg {

inline constexpr uint32_t kPowerChunkId = 14;

// Chunk 14, private to its stream (no key) and 352 bytes, the size its saved image records.
struct alignas(32) PowerChunk {
    uint32_t selector;       // row of kScales: 0 MCG31m1, 1 MCG59
    uint32_t reserved0[7];
    uint64_t lane_pow[16];   // a^0 .. a^15: the starting multipliers of the lanes
    uint64_t step8[4];       // a^8 in every lane: advance of the eight-lane raw loop
    uint64_t step16[4];      // a^16 in every lane: advance of the sixteen-lane floating loop
    uint64_t reserved1[16];
};
static_assert(sizeof(PowerChunk) == 352);

// Scales of the floating-point generators, selected by the chunk's selector word.
struct Scale {
    uint32_t s_bits;  // single precision
    double d;
};
inline constexpr Scale kScales[2] = {
    {0x30000000u, 0x1.0000000200000p-31},  // 2^-31; 1/(2^31 - 1), bits 0x3E00000000200000
    {0x22000000u, 0x1p-59},                // 2^-59; 2^-59, bits 0x3C40000000000000
};

// Loaders call this after restoring a stream of either generator: rebuilds chunk 14 from the
// state (in place when the stream holds a private 352-byte chunk 14, else a fresh one).
int32_t mcg31m1_refresh_chunk(RokStream *stream);
int32_t mcg59_refresh_chunk(RokStream *stream);

template <class G>
class Family {
public:
    using Word = typename G::Word;
    struct State {
        Word x;
        Word a;
    };

    static int32_t init_stream(int32_t method, RokStream *stream, int32_t n, const void *params) {
        State *st = rok_state<State>(stream);
        switch (method) {
        case ROK_INIT_SEED:
            st->x = G::seed(n, static_cast<const uint32_t *>(params));
            st->a = G::kDefaultA;
            return refresh_chunk(stream);
        case ROK_INIT_LEAPFROG: {
            uint32_t k;
            std::memcpy(&k, params, sizeof k);
            const Word a = G::pow(st->a, static_cast<uint32_t>(n));
            if (int32_t status = build_chunk(stream, a); status != ROK_STATUS_OK) return status;
            st->x = G::mul(st->x, G::pow(st->a, k));
            st->a = a;
            return ROK_STATUS_OK;
        }
        case ROK_INIT_SKIPAHEAD: {
            uint64_t nskip;
            std::memcpy(&nskip, params, sizeof nskip);
            st->x = G::mul(st->x, G::pow(st->a, nskip));
            return ROK_STATUS_OK;
        }
        case ROK_INIT_SKIPAHEAD_EX:
            return ROK_ERROR_NO_SKIPAHEADEX;
        default:
            return ROK_ERROR_BAD_METHOD;
        }
    }

    static int32_t refresh_chunk(RokStream *stream) { return build_chunk(stream, rok_state<State>(stream)->a); }

    static int32_t raw(RokStream *stream, int32_t n, void *r) {
        if (n <= 0) return ROK_STATUS_OK;
        State *st = rok_state<State>(stream);
        st->x = fill<2>(st->x, st->a, usable_chunk(stream, st->a), static_cast<Word *>(r), n,
                        [](Word x) { return x; },
                        [](Word *dst, const __m256i *v) { G::store_raw8(dst, v[0], v[1]); });
        return ROK_STATUS_OK;
    }

    template <class T>
    static int32_t uniform(RokStream *stream, int32_t n, T r[], T lo, T hi) {
        if (n <= 0) return ROK_STATUS_OK;
        State *st = rok_state<State>(stream);
        const PowerChunk *pc = usable_chunk(stream, st->a);
        if (pc == nullptr) return ROK_ERROR_MEM;
        const Scale &scale = kScales[pc->selector];
        T k;
        if constexpr (std::is_same_v<T, double>) {
            k = (hi - lo) * scale.d;
        } else {
            k = (hi - lo) * std::bit_cast<float>(scale.s_bits);
        }
        st->x = fill<4>(st->x, st->a, pc, r, n, [k, lo](Word x) { return std::fma(static_cast<T>(G::to_double(x)), k, lo); },
                        [k, lo](T *dst, const __m256i *v) {
                            if constexpr (std::is_same_v<T, double>) {
                                const __m256d kv = _mm256_set1_pd(k), av = _mm256_set1_pd(lo);
                                for (int j = 0; j < 4; ++j)
                                    _mm256_storeu_pd(dst + 4 * j, _mm256_fmadd_pd(G::vto_double(v[j]), kv, av));
                            } else {
                                const __m256 kv = _mm256_set1_ps(k), av = _mm256_set1_ps(lo);
                                for (int j = 0; j < 4; j += 2) {
                                    const __m256 f = _mm256_set_m128(_mm256_cvtpd_ps(G::vto_double(v[j + 1])),
                                                                     _mm256_cvtpd_ps(G::vto_double(v[j])));
                                    _mm256_storeu_ps(dst + 4 * j, _mm256_fmadd_ps(f, kv, av));
                                }
                            }
                        });
        return ROK_STATUS_OK;
    }

private:
    static void fill_chunk(PowerChunk *pc, Word a) {
        std::memset(pc, 0, sizeof *pc);
        pc->selector = G::kSelector;
        Word p = 1;
        for (uint64_t &lane : pc->lane_pow) {
            lane = p;
            p = G::mul(p, a);
        }
        const uint64_t a8 = G::mul(static_cast<Word>(pc->lane_pow[7]), a);
        for (int j = 0; j < 4; ++j) {
            pc->step8[j] = a8;
            pc->step16[j] = p;
        }
    }

    // The stream's own chunk 14 if it is private and of the right size, refreshed when it was
    // made for another multiplier (a state copied over the stream); null otherwise.
    static PowerChunk *usable_chunk(RokStream *stream, Word a) {
        RokChunk *node = find_chunk(stream, kPowerChunkId);
        if (node == nullptr || node->size != sizeof(PowerChunk) || !is_private_chunk(node)) return nullptr;
        auto *pc = static_cast<PowerChunk *>(node->data);
        if (pc->selector != G::kSelector || pc->lane_pow[1] != G::mul(1, a)) fill_chunk(pc, a);
        return pc;
    }

    // Fills chunk 14 for multiplier a, in place when the stream has a usable one, else in a
    // fresh private chunk attached to the stream; -4 (and no change) when that fails.
    static int32_t build_chunk(RokStream *stream, Word a) {
        RokChunk *node = find_chunk(stream, kPowerChunkId);
        if (node != nullptr && node->size == sizeof(PowerChunk) && is_private_chunk(node)) {
            fill_chunk(static_cast<PowerChunk *>(node->data), a);
            return ROK_STATUS_OK;
        }
        auto *pc = static_cast<PowerChunk *>(qon_serv_allocate(sizeof(PowerChunk), kAlign));
        if (pc == nullptr) return ROK_ERROR_MEM;
        fill_chunk(pc, a);
        if (rokAddChunk(stream, kPowerChunkId, nullptr, pc, sizeof(PowerChunk)) != ROK_STATUS_OK) {
            qon_serv_deallocate(pc);
            return ROK_ERROR_MEM;
        }
        return ROK_STATUS_OK;
    }

    // Writes scalar(x) for n consecutive elements into out and returns the element after
    // them. With a power chunk, whole blocks of 4R elements go through the lanes
    // (vector(dst, v) writes one block); the rest is made one by one.
    template <int R, class Out, class Scalar, class Vector>
    static Word fill(Word x, Word a, const PowerChunk *pc, Out *out, int32_t n, Scalar scalar, Vector vector) {
        constexpr int32_t kLanes = 4 * R;
        int32_t i = 0;
        if (pc != nullptr && n >= kLanes) {
            const int32_t blocks = n / kLanes;
            x = run_lanes<R>(x, pc, R == 2 ? pc->step8 : pc->step16, blocks,
                             [&](int32_t b, const __m256i *v) { vector(out + kLanes * b, v); });
            i = kLanes * blocks;
        }
        for (; i < n; ++i) {
            out[i] = scalar(x);
            x = G::mul(a, x);
        }
        return x;
    }

    // R registers of four lanes: lane j starts at x * a^j and every block advances all lanes
    // by a^(4R); emit(b, v) consumes block b. Returns the element after the last block.
    template <int R, class Emit>
    static Word run_lanes(Word x, const PowerChunk *pc, const uint64_t *step, int32_t blocks, Emit emit) {
        __m256i v[R];
        const __m256i xb = _mm256_set1_epi64x(static_cast<int64_t>(x));
        for (int j = 0; j < R; ++j)
            v[j] = G::vmul(xb, _mm256_load_si256(reinterpret_cast<const __m256i *>(pc->lane_pow + 4 * j)));
        const __m256i s = _mm256_load_si256(reinterpret_cast<const __m256i *>(step));
        for (int32_t b = 0; b < blocks; ++b) {
            emit(b, v);
            for (int j = 0; j < R; ++j) v[j] = G::vmul(v[j], s);
        }
        return static_cast<Word>(_mm256_extract_epi64(v[0], 0));
    }
};

}  // namespace qon::rng::mcg

// The four registry entries of generator Name (as in rokBRng<Name>InitStream), all served by
// Family<Traits>.
#define QON_MCG_ENTRIES(Name, Traits)                                                                        \
    extern "C" {                                                                                            \
    QON_API int32_t rokBRng##Name##InitStream(int32_t method, RokStream *stream, int32_t n, const void *params) { \
        return qon::rng::mcg::Family<Traits>::init_stream(method, stream, n, params);                       \
    }                                                                                                       \
    QON_API int32_t roksBRng##Name(RokStream *stream, int32_t n, float r[], float a, float b) {              \
        return qon::rng::mcg::Family<Traits>::uniform(stream, n, r, a, b);                                  \
    }                                                                                                       \
    QON_API int32_t rokdBRng##Name(RokStream *stream, int32_t n, double r[], double a, double b) {           \
        return qon::rng::mcg::Family<Traits>::uniform(stream, n, r, a, b);                                  \
    }                                                                                                       \
    QON_API int32_t rokiBRng##Name(RokStream *stream, int32_t n, void *r) {                                  \
        return qon::rng::mcg::Family<Traits>::raw(stream, n, r);                                            \
    }                                                                                                       \
    }
