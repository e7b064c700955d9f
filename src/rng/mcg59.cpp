// MCG59: x(k+1) = 13^13 * x(k) mod 2^59, period 2^57 for odd seeds, 59-bit outputs (never 0
// for odd seeds; the state is never 0). The reduction is a mask. AVX2 has no 64-bit low
// product, so a lane forms it from three 32x32 products: lo*lo + ((hi*lo + lo*hi) << 32).
// A 59-bit value is converted to double correctly rounded (one rounding) by splitting it at
// bit 32: (2^84 + hi * 2^32) - (2^84 + 2^52) is exact and adding 2^52 + lo rounds once.
// Floats round that double once more to single precision.
#include "rng/mcg.hpp"

namespace qon::rng::mcg {
namespace {

struct Mcg59 {
    using Word = uint64_t;
    static constexpr uint32_t kSelector = 1;
    static constexpr Word kDefaultA = 302875106592253ull;  // 13^13

    static Word mul(Word x, Word y) { return (x * y) & kMask59; }
    static Word pow(Word a, uint64_t e) { return rokiPowMod2P59(a, e); }

    // (seed[0] + seed[1] * 2^32) mod 2^59, from as many words as there are (at most two);
    // 0 becomes 1.
    static Word seed(int32_t n, const uint32_t *s) {
        Word x = n <= 0 ? 1 : n == 1 ? s[0] : ((static_cast<Word>(s[1]) << 32) | s[0]) & kMask59;
        return x == 0 ? 1 : x;
    }

    static __m256i vmul(__m256i x, __m256i s) {
        const __m256i cross = _mm256_add_epi64(_mm256_mul_epu32(_mm256_srli_epi64(x, 32), s),
                                               _mm256_mul_epu32(x, _mm256_srli_epi64(s, 32)));
        const __m256i p = _mm256_add_epi64(_mm256_mul_epu32(x, s), _mm256_slli_epi64(cross, 32));
        return _mm256_and_si256(p, _mm256_set1_epi64x(static_cast<int64_t>(kMask59)));
    }

    static double to_double(Word x) { return static_cast<double>(x); }
    static __m256d vto_double(__m256i x) {
        const __m256i hi = _mm256_or_si256(_mm256_srli_epi64(x, 32), _mm256_set1_epi64x(0x4530000000000000));
        const __m256i lo = _mm256_blend_epi32(x, _mm256_set1_epi64x(0x4330000000000000), 0xAA);
        const __m256d high = _mm256_sub_pd(_mm256_castsi256_pd(hi), _mm256_set1_pd(0x1.00000001p84));
        return _mm256_add_pd(high, _mm256_castsi256_pd(lo));
    }

    static void store_raw8(Word *r, __m256i v0, __m256i v1) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(r), v0);
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(r + 4), v1);
    }
};

}  // namespace

int32_t mcg59_refresh_chunk(RokStream *stream) { return Family<Mcg59>::refresh_chunk(stream); }

}  // namespace qon::rng::mcg

QON_MCG_ENTRIES(MCG59, qon::rng::mcg::Mcg59)
