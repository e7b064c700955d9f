// Cell search over ascending sites: a running cell carried from site to site (and from call
// to call through the caller's argument) and advanced by an upward scan of two knots a step,
// so a whole call costs O(nsite + cells crossed). Before the first site one halving step
// skips the lower half of the partition when the site lies beyond its middle. A site below
// the running knot keeps the running cell.
#include "fit/search.hpp"

namespace qon::fit {

template <class T, class C>
int sorted_search(int64_t nx, const T *x, int64_t nsite, const T *site, C *running, C *cell) {
    if (nsite < 1) return DF_STATUS_OK;
    const T xl = x[nx - 1];
    const int64_t half = nx / 2;
    int64_t c = *running < 0 ? 0 : static_cast<int64_t>(*running);
    for (int64_t i = 0; i < nsite; ++i) {
        const T t = site[i];
        if (t == xl) {
            cell[i] = static_cast<C>(nx - 1);
            continue;
        }
        if (t != t) {
            cell[i] = 0;
            continue;
        }
        if (i == 0 && c < nx - half) {
            int64_t lo = c, hi = nx;
            while (lo < hi - half) {
                const int64_t mid = (lo + hi) >> 1;
                if (x[mid] > t)
                    hi = mid;
                else
                    lo = mid;
            }
            c = lo;
        }
        if (c < nx) c = scan_up(x, nx, c, t);
        cell[i] = static_cast<C>(c);
    }
    *running = static_cast<C>(c);
    return DF_STATUS_OK;
}

#define QON_DF_INSTANTIATE(T, C) \
    template int sorted_search<T, C>(int64_t, const T *, int64_t, const T *, C *, C *);
QON_DF_SEARCH_TYPES(QON_DF_INSTANTIATE)

}  // namespace qon::fit

#define QON_DF_EXPORT(P, T, W, C)                                                              \
    QON_API int qon_df_kernel_##P##DFSortedSearch1D##W(int64_t nx, const T *x, int64_t nsite,  \
                                                       const T *site, C *running, C *cell) {   \
        return qon::fit::sorted_search(nx, x, nsite, site, running, cell);                     \
    }
extern "C" {
QON_DF_SEARCH_VARIANTS(QON_DF_EXPORT)
}
