// MCG31m1: x(k+1) = 1132489760 * x(k) mod (2^31 - 1), period 2^31 - 2, outputs 1 .. 2^31 - 2
// (31 bits, never 0). The product of two residues (< 2^62) is folded once, 2^31 = 1 mod m:
// y = (p & m) + (p >> 31) < 2m, then y - m when y >= m. In vector lanes the conditional
// subtraction is min_u32(y, y + 0x80000001): y - m wraps above y exactly when y < m. Doubles
// are x / (2^31 - 1) scaled to [a, b); x converts to double exactly by the 2^52 bias trick.
#include "rng/mcg.hpp"

namespace qon::rng::mcg {
namespace {

struct Mcg31m1 {
    using Word = uint32_t;
    static constexpr uint32_t kSelector = 0;
    static constexpr Word kDefaultA = 1132489760;  // 0x43806C20

    static Word mul(Word x, Word y) { return mulmod_m31(x, y); }
    static Word pow(Word a, uint64_t e) { return rokiPowMod2P31M1(a, e); }

    // seed[0] mod (2^31 - 1) by the same fold (seed >> 31 is 0 or 1); 0 becomes 1.
    static Word seed(int32_t n, const uint32_t *s) {
        if (n <= 0) return 1;
        uint32_t y = (s[0] & kM31) + (s[0] >> 31);
        if (y >= kM31) y -= kM31;
        return y == 0 ? 1 : y;
    }

    static __m256i vmul(__m256i x, __m256i s) {
        const __m256i p = _mm256_mul_epu32(x, s);
        const __m256i y = _mm256_add_epi64(_mm256_and_si256(p, _mm256_set1_epi64x(kM31)), _mm256_srli_epi64(p, 31));
        return _mm256_min_epu32(y, _mm256_add_epi32(y, _mm256_set1_epi64x(0x80000001)));
    }

    static double to_double(Word x) { return static_cast<double>(x); }
    static __m256d vto_double(__m256i x) {
        const __m256i biased = _mm256_or_si256(x, _mm256_set1_epi64x(0x4330000000000000));  // 2^52 + x
        return _mm256_sub_pd(_mm256_castsi256_pd(biased), _mm256_set1_pd(0x1p52));
    }

    // Lanes 0-3 in v0 and 4-7 in v1, each value in the low half of a 64-bit lane.
    static void store_raw8(Word *r, __m256i v0, __m256i v1) {
        const __m256i mixed = _mm256_or_si256(v0, _mm256_slli_epi64(v1, 32));  // 0 4 1 5 2 6 3 7
        const __m256i ordered = _mm256_permutevar8x32_epi32(mixed, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(r), ordered);
    }
};

}  // namespace

int32_t mcg31m1_refresh_chunk(RokStream *stream) { return Family<Mcg31m1>::refresh_chunk(stream); }

}  // namespace qon::rng::mcg

QON_MCG_ENTRIES(MCG31M1, qon::rng::mcg::Mcg31m1)
