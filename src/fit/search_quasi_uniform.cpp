// Cell search on a quasi-uniform partition: a start cell g = trunc((t - x0) * r) + 1 from the
// mean inverse step r, then a scan of two knots a step up or down to the exact cell. Start
// cells of a block of 32 sites are computed four at a time before the site-by-site scans; for
// knots close to equally spaced each scan ends within a step or two.
#include "fit/search.hpp"

namespace qon::fit {

template <class T, class C>
int quasi_uniform_search(int64_t nx, const T *x, int64_t nsite, const T *site, T r, C *cell) {
    constexpr int64_t kBlock = 32;
    if (nsite < 1) return DF_STATUS_OK;
    const T x0 = x[0], xl = x[nx - 1];
    const T cap = floor_to<T>(nx - 1);
    const __m256i one = _mm256_set1_epi64x(1);
    int64_t start[kBlock];
    for (int64_t b = 0; b < nsite; b += kBlock) {
        const int64_t n = nsite - b < kBlock ? nsite - b : kBlock;
        const T *s = site + b;
        int64_t j = 0;
        for (; j + 4 <= n; j += 4)
            store4(start + j,
                   _mm256_add_epi64(clamp_trunc4(load_scaled(s + j, x0, r).v, cap, nx - 1), one));
        for (; j < n; ++j) start[j] = clamp_trunc((s[j] - x0) * r, cap, nx - 1) + 1;
        for (j = 0; j < n; ++j) {
            const T t = s[j];
            int64_t c;
            if (!(t >= x0))
                c = 0;
            else if (t == xl)
                c = nx - 1;
            else
                c = scan_from(x, nx, start[j], t);
            cell[b + j] = static_cast<C>(c);
        }
    }
    return DF_STATUS_OK;
}

#define QON_DF_INSTANTIATE(T, C) \
    template int quasi_uniform_search<T, C>(int64_t, const T *, int64_t, const T *, T, C *);
QON_DF_SEARCH_TYPES(QON_DF_INSTANTIATE)

}  // namespace qon::fit

#define QON_DF_EXPORT(P, T, W, C)                                                              \
    QON_API int qon_df_kernel_##P##DFQuasiUniformSearch1D##W(                                  \
        int64_t nx, const T *x, int64_t nsite, const T *site, T r, C *cell) {                  \
        return qon::fit::quasi_uniform_search(nx, x, nsite, site, r, cell);                    \
    }
extern "C" {
QON_DF_SEARCH_VARIANTS(QON_DF_EXPORT)
}
