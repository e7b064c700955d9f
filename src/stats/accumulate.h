// Power sums about an origin over a block of observations: U_k[v] += sum_j w_j (x_vj - o_v)^k for
// k = 1..K, the inner loops of the basic-statistics kernel. Summing deviations from an origin
// close to the mean (the running mean, or the first observation) keeps the sums free of the
// cancellation that raw sums suffer when the mean is large against the spread: the error of
// each sum is a few ulps of sum |w| |x - o|^k per observation.
//
// Two kernels, one per observation layout, each a template over the order K, the presence of
// weights and the element type (float data is widened to double). Variables-contiguous data
// (0x10000) is reduced along each variable's run, four observations per vector and two vectors
// per step; observations-contiguous data (0x20000) updates the sums of the variables of one
// observation in strips of 8 and 4 lanes with a scalar tail, reading each row once, or, for rows
// of at most 16 variables, keeps all sums in registers for the whole block.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace ss {

inline __m256d load4(const double *p) { return _mm256_loadu_pd(p); }
inline __m256d load4(const float *p) { return _mm256_cvtps_pd(_mm_loadu_ps(p)); }

inline double hsum(__m256d v) {
    __m128d lo = _mm256_castpd256_pd128(v), hi = _mm256_extractf128_pd(v, 1);
    lo = _mm_add_pd(lo, hi);
    return _mm_cvtsd_f64(_mm_add_sd(lo, _mm_unpackhi_pd(lo, lo)));
}

// One observation's contribution to the K power sums, on vectors (weighted or not) or scalars.
template <int K>
inline void add_powers(__m256d d, __m256d w, __m256d *a) {
    __m256d wd = _mm256_mul_pd(w, d);
    a[0] = _mm256_add_pd(a[0], wd);
    if constexpr (K >= 2) a[1] = _mm256_fmadd_pd(wd, d, a[1]);
    if constexpr (K >= 3) {
        __m256d wdd = _mm256_mul_pd(wd, d);
        a[2] = _mm256_fmadd_pd(wdd, d, a[2]);
        if constexpr (K >= 4) a[3] = _mm256_fmadd_pd(wdd, _mm256_mul_pd(d, d), a[3]);
    }
}
template <int K>
inline void add_powers(__m256d d, __m256d *a) {
    a[0] = _mm256_add_pd(a[0], d);
    if constexpr (K >= 2) a[1] = _mm256_fmadd_pd(d, d, a[1]);
    if constexpr (K >= 3) {
        __m256d dd = _mm256_mul_pd(d, d);
        a[2] = _mm256_fmadd_pd(dd, d, a[2]);
        if constexpr (K >= 4) a[3] = _mm256_fmadd_pd(dd, dd, a[3]);
    }
}
template <int K>
inline void add_powers(double d, double w, double *a) {
    double wd = w * d;
    a[0] += wd;
    if constexpr (K >= 2) a[1] = __builtin_fma(wd, d, a[1]);
    if constexpr (K >= 3) {
        double wdd = wd * d;
        a[2] = __builtin_fma(wdd, d, a[2]);
        if constexpr (K >= 4) a[3] = __builtin_fma(wdd, d * d, a[3]);
    }
}

// Layout 0x10000: variable v's observations j0..j1 at x + vars[v]*n + j.
template <int K, bool Weighted, class T>
void sums_by_variable(const T *x, int64_t n, const int64_t *vars, int64_t q, const T *w, int64_t j0, int64_t j1,
                      const double *origin, double *const *U) {
    for (int64_t v = 0; v < q; ++v) {
        const T *xv = x + vars[v] * n;
        const __m256d o = _mm256_set1_pd(origin[v]);
        __m256d a0[K], a1[K];
        for (int k = 0; k < K; ++k) a0[k] = a1[k] = _mm256_setzero_pd();
        int64_t j = j0;
        for (; j + 8 <= j1; j += 8) {
            __m256d d0 = _mm256_sub_pd(load4(xv + j), o), d1 = _mm256_sub_pd(load4(xv + j + 4), o);
            if constexpr (Weighted) {
                add_powers<K>(d0, load4(w + j), a0);
                add_powers<K>(d1, load4(w + j + 4), a1);
            } else {
                add_powers<K>(d0, a0);
                add_powers<K>(d1, a1);
            }
        }
        double s[K];
        for (int k = 0; k < K; ++k) s[k] = hsum(_mm256_add_pd(a0[k], a1[k]));
        for (; j < j1; ++j) add_powers<K>(static_cast<double>(xv[j]) - origin[v], Weighted ? double(w[j]) : 1.0, s);
        for (int k = 0; k < K; ++k) U[k][v] += s[k];
    }
}

// Layout 0x20000 on rows of q consecutive variables: row j at rows + j*ld.
template <int K, bool Weighted, class T>
void sums_by_observation_row(const T *row, double wj, int64_t q, const double *origin, double *const *U) {
    const __m256d w = _mm256_set1_pd(wj);
    int64_t v = 0;
    auto strip = [&](int64_t at) {
        __m256d d = _mm256_sub_pd(load4(row + at), _mm256_loadu_pd(origin + at));
        __m256d a[K];
        for (int k = 0; k < K; ++k) a[k] = _mm256_loadu_pd(U[k] + at);
        if constexpr (Weighted)
            add_powers<K>(d, w, a);
        else
            add_powers<K>(d, a);
        for (int k = 0; k < K; ++k) _mm256_storeu_pd(U[k] + at, a[k]);
    };
    for (; v + 8 <= q; v += 8) {
        strip(v);
        strip(v + 4);
    }
    for (; v + 4 <= q; v += 4) strip(v);
    for (; v < q; ++v) {
        double a[K];
        for (int k = 0; k < K; ++k) a[k] = U[k][v];
        add_powers<K>(static_cast<double>(row[v]) - origin[v], wj, a);
        for (int k = 0; k < K; ++k) U[k][v] = a[k];
    }
}

// Layout 0x20000 with all p variables, eight rows at a time: each strip of 4 sums is loaded once,
// takes the eight rows' contributions and is stored once; the rows two groups ahead are fetched
// into cache meanwhile.
template <int K, bool Weighted, class T>
void sums_by_observation_rows(const T *x, int64_t p, const T *w, int64_t j0, int64_t j1, const double *origin,
                              double *const *sums) {
    constexpr int R = 8;
    double *U[K];
    for (int k = 0; k < K; ++k) U[k] = sums[k];
    int64_t j = j0;
    for (; j + R <= j1; j += R) {
        const T *row = x + j * p;
        __m256d wr[R];
        for (int r = 0; r < R; ++r) wr[r] = _mm256_set1_pd(Weighted ? static_cast<double>(w[j + r]) : 1.0);
        int64_t v = 0;
        const T *ahead = row + (j + 3 * R <= j1 ? 2 * R * p : 0);
        for (; v + 4 <= p; v += 4) {
            if ((v * sizeof(T)) % 64 == 0)
                for (int r = 0; r < R; ++r) _mm_prefetch(reinterpret_cast<const char *>(ahead + r * p + v), _MM_HINT_T0);
            const __m256d o = _mm256_loadu_pd(origin + v);
            __m256d a[K];
            for (int k = 0; k < K; ++k) a[k] = _mm256_loadu_pd(U[k] + v);
            for (int r = 0; r < R; ++r) {
                const __m256d d = _mm256_sub_pd(load4(row + r * p + v), o);
                if constexpr (Weighted)
                    add_powers<K>(d, wr[r], a);
                else
                    add_powers<K>(d, a);
            }
            for (int k = 0; k < K; ++k) _mm256_storeu_pd(U[k] + v, a[k]);
        }
        for (; v < p; ++v) {
            double a[K];
            for (int k = 0; k < K; ++k) a[k] = U[k][v];
            for (int r = 0; r < R; ++r)
                add_powers<K>(static_cast<double>(row[r * p + v]) - origin[v],
                              Weighted ? static_cast<double>(w[j + r]) : 1.0, a);
            for (int k = 0; k < K; ++k) U[k][v] = a[k];
        }
    }
    for (; j < j1; ++j)
        sums_by_observation_row<K, Weighted, T>(x + j * p, Weighted ? static_cast<double>(w[j]) : 1.0, p, origin, U);
}

inline __m256d load4_masked(const double *p, __m256i mask) { return _mm256_maskload_pd(p, mask); }
inline __m256d load4_masked(const float *p, __m256i mask) {
    const __m128i m32 = _mm256_castsi256_si128(_mm256_permutevar8x32_epi32(mask, _mm256_setr_epi32(0, 2, 4, 6, 0, 0, 0, 0)));
    return _mm256_cvtps_pd(_mm_maskload_ps(p, m32));
}

// Layout 0x20000 with all of at most 16 variables, V = ceil(q / 4) strips: the sums stay in
// registers over the whole block and the last strip is loaded under a mask, so a short row costs
// V vector steps and no scalar tail.
template <int K, bool Weighted, class T, int V>
void sums_short_rows(const T *x, int64_t p, const T *w, int64_t j0, int64_t j1, const double *origin,
                     double *const *U) {
    const int64_t q = p;
    const __m256i lanes = _mm256_setr_epi64x(0, 1, 2, 3);
    __m256i mask[V];
    __m256d o[V], a[V][K];
    for (int s = 0; s < V; ++s) {
        mask[s] = _mm256_cmpgt_epi64(_mm256_set1_epi64x(q - 4 * s), lanes);
        o[s] = _mm256_maskload_pd(origin + 4 * s, mask[s]);
        for (int k = 0; k < K; ++k) a[s][k] = _mm256_setzero_pd();
    }
    for (int64_t j = j0; j < j1; ++j) {
        const T *row = x + j * p;
        for (int s = 0; s < V; ++s) {
            const __m256d d = _mm256_sub_pd(s + 1 < V ? load4(row + 4 * s) : load4_masked(row + 4 * s, mask[s]), o[s]);
            if constexpr (Weighted)
                add_powers<K>(d, _mm256_set1_pd(static_cast<double>(w[j])), a[s]);
            else
                add_powers<K>(d, a[s]);
        }
    }
    for (int s = 0; s < V; ++s)
        for (int k = 0; k < K; ++k) {
            alignas(32) double lane[4];
            _mm256_store_pd(lane, a[s][k]);
            for (int64_t l = 0; l < 4 && 4 * s + l < q; ++l) U[k][4 * s + l] += lane[l];
        }
}

}  // namespace ss
