// Cell search on a uniform partition, given by its two ends: cell = min(trunc((t - x0) * r),
// nx - 1) + 1 for t >= x0, 0 below (and for a site that is not a number), nx - 1 at the right
// end. Four sites at a time: the three outcomes are computed for all lanes and blended; the
// index is exact whenever (t - x0) * r is, and otherwise off by at most the rounding of that
// product at a knot.
#include "fit/search.hpp"

namespace qon::fit {

template <class T, class C>
int uniform_search(int64_t nx, const T *x, int64_t nsite, const T *site, T r, C *cell) {
    if (nsite < 1) return DF_STATUS_OK;
    const T x0 = x[0], xe = x[1];
    const T cap = floor_to<T>(nx - 1);
    const __m256d vx0 = _mm256_set1_pd(x0), vxe = _mm256_set1_pd(xe);
    const __m256i last = _mm256_set1_epi64x(nx - 1), one = _mm256_set1_epi64x(1);
    int64_t i = 0;
    for (; i + 4 <= nsite; i += 4) {
        const Lanes4 l = load_scaled(site + i, x0, r);
        __m256i k = _mm256_add_epi64(clamp_trunc4(l.v, cap, nx - 1), one);
        const __m256i ge = _mm256_castpd_si256(_mm256_cmp_pd(l.t, vx0, _CMP_GE_OQ));
        const __m256i eq = _mm256_castpd_si256(_mm256_cmp_pd(l.t, vxe, _CMP_EQ_OQ));
        store4(cell + i, _mm256_blendv_epi8(_mm256_and_si256(k, ge), last, eq));
    }
    for (; i < nsite; ++i) cell[i] = static_cast<C>(uniform_cell(site[i], x0, xe, r, cap, nx));
    return DF_STATUS_OK;
}

#define QON_DF_INSTANTIATE(T, C) \
    template int uniform_search<T, C>(int64_t, const T *, int64_t, const T *, T, C *);
QON_DF_SEARCH_TYPES(QON_DF_INSTANTIATE)

}  // namespace qon::fit

#define QON_DF_EXPORT(P, T, W, C)                                                              \
    QON_API int qon_df_kernel_##P##DFUniformSearch1D##W(int64_t nx, const T *x, int64_t nsite, \
                                                        const T *site, T r, C *cell) {         \
        return qon::fit::uniform_search(nx, x, nsite, site, r, cell);                          \
    }
extern "C" {
QON_DF_SEARCH_VARIANTS(QON_DF_EXPORT)
}
