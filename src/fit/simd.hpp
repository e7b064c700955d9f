// Four-lane helpers of the cell search. Sites of either precision are compared and scaled in
// their own precision and then widened exactly to double lanes, so one integer path of four
// 64-bit lanes serves float and double. Truncation clamps before converting: a scaled value v
// becomes min(trunc(v), cap) with cap the largest value of the element type not above the
// bound, which equals the unclamped truncation whenever that fits and never overflows, so the
// 32-bit and 64-bit index variants agree over every partition a 32-bit index can describe.
#pragma once

#include <immintrin.h>

#include <cmath>
#include <cstdint>

namespace qon::fit {

// Truncation toward zero of a finite value of either precision.
inline int64_t trunc_i64(double v) { return _mm_cvttsd_si64(_mm_set_sd(v)); }
inline int64_t trunc_i64(float v) { return _mm_cvttss_si64(_mm_set_ss(v)); }

// The largest value of T that does not exceed the integer bound.
template <class T>
inline T floor_to(int64_t bound) {
    T c = static_cast<T>(bound);
    if (static_cast<long double>(c) > static_cast<long double>(bound)) c = std::nextafter(c, T(0));
    return c;
}

// Clamped start index of one scaled value: bound when v exceeds cap, 0 for v below zero or not
// a number, trunc(v) otherwise.
template <class T>
inline int64_t clamp_trunc(T v, T cap, int64_t bound) {
    if (v > cap) return bound;
    return v > T(0) ? trunc_i64(v) : 0;
}

// Four sites widened to double lanes, with their scaled offsets v = (t - x0) * r computed in
// the sites' own precision.
struct Lanes4 {
    __m256d t;
    __m256d v;
};

inline Lanes4 load_scaled(const double *site, double x0, double r) {
    __m256d t = _mm256_loadu_pd(site);
    return {t, _mm256_mul_pd(_mm256_sub_pd(t, _mm256_set1_pd(x0)), _mm256_set1_pd(r))};
}

inline Lanes4 load_scaled(const float *site, float x0, float r) {
    __m128 t = _mm_loadu_ps(site);
    __m128 v = _mm_mul_ps(_mm_sub_ps(t, _mm_set1_ps(x0)), _mm_set1_ps(r));
    return {_mm256_cvtps_pd(t), _mm256_cvtps_pd(v)};
}

// Four-lane clamp_trunc: values are held in [0, cap] (cap < 2^52) and truncated by adding
// 2^52, whose low mantissa bits then hold the integer.
inline __m256i clamp_trunc4(__m256d v, double cap, int64_t bound) {
    const __m256d magic = _mm256_set1_pd(4503599627370496.0);  // 2^52 = 0x4330000000000000
    __m256d c = _mm256_min_pd(_mm256_max_pd(v, _mm256_setzero_pd()), _mm256_set1_pd(cap));
    c = _mm256_round_pd(c, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
    __m256i k = _mm256_sub_epi64(_mm256_castpd_si256(_mm256_add_pd(c, magic)),
                                 _mm256_castpd_si256(magic));
    __m256i over = _mm256_castpd_si256(_mm256_cmp_pd(v, _mm256_set1_pd(cap), _CMP_GT_OQ));
    return _mm256_blendv_epi8(k, _mm256_set1_epi64x(bound), over);
}

inline void store4(int64_t *out, __m256i k) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), k);
}

inline void store4(int32_t *out, __m256i k) {
    __m256i packed = _mm256_permutevar8x32_epi32(k, _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm256_castsi256_si128(packed));
}

// Bit j set when x[j] <= t, for the four knots x[0..3].
inline int le_mask4(const double *x, double t) {
    return _mm256_movemask_pd(_mm256_cmp_pd(_mm256_loadu_pd(x), _mm256_set1_pd(t), _CMP_LE_OQ));
}
inline int le_mask4(const float *x, float t) {
    return _mm_movemask_ps(_mm_cmple_ps(_mm_loadu_ps(x), _mm_set1_ps(t)));
}

}  // namespace qon::fit
