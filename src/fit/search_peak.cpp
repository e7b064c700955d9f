// Cell search for sites clustered around one knot p: each site is scanned from p, two knots a
// step, upward when it lies at or above x[p] and downward otherwise, so the cost is the
// distance in knots from p. A peak index of nx scans down from the right end.
#include "fit/search.hpp"

namespace qon::fit {

template <class T, class C>
int peak_search(int64_t nx, const T *x, int64_t nsite, const T *site, T peak, C *cell) {
    if (nsite < 1) return DF_STATUS_OK;
    const int64_t p = clamp_trunc(peak, floor_to<T>(nx), nx);
    for (int64_t i = 0; i < nsite; ++i) cell[i] = static_cast<C>(cell_from(x, nx, p, site[i]));
    return DF_STATUS_OK;
}

#define QON_DF_INSTANTIATE(T, C) \
    template int peak_search<T, C>(int64_t, const T *, int64_t, const T *, T, C *);
QON_DF_SEARCH_TYPES(QON_DF_INSTANTIATE)

}  // namespace qon::fit

#define QON_DF_EXPORT(P, T, W, C)                                                              \
    QON_API int qon_df_kernel_##P##DFPeakSearch1D##W(int64_t nx, const T *x, int64_t nsite,    \
                                                     const T *site, T peak, C *cell) {         \
        return qon::fit::peak_search(nx, x, nsite, site, peak, cell);                          \
    }
extern "C" {
QON_DF_SEARCH_VARIANTS(QON_DF_EXPORT)
}
