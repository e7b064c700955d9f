// Cell search on a non-uniform partition through its bin table: the bin of a site gives a
// range (lo, hi) of knots with x[lo] < t < x[hi]; bisection narrows ranges wider than 40 gaps
// by mask selection (no branch on the comparison) and the cell is then lo plus the number of
// knots of [lo, hi) not above t, counted four at a time by a vector compare and a population
// count of its mask. Forty gaps is where the linear vector count overtakes further bisection. Without a bin table the range is the whole
// partition. Exact: only comparisons decide the cell.
#include <bit>

#include "fit/search.hpp"

namespace qon::fit {
namespace {

// The cell of t, with x[lo] <= t < x[hi].
template <class T>
inline int64_t narrow_and_count(const T *x, int64_t nx, int64_t lo, int64_t hi, T t) {
    constexpr int64_t kLinear = 40;
    // Ranges wider than this seldom sit in cache: both candidates for the next midpoint are
    // fetched ahead so that the misses of consecutive steps overlap.
    constexpr int64_t kPrefetchFrom = 4096;
    const bool wide = hi - lo > kPrefetchFrom;
    while (hi - lo > kLinear) {
#pragma GCC unroll 8
        for (int step = 0; step < 8; ++step) {
            const int64_t mid = (lo + hi) >> 1;
            if (wide) {
                __builtin_prefetch(x + ((lo + mid) >> 1));
                __builtin_prefetch(x + ((mid + hi) >> 1));
            }
            // Select by mask: a branch here would be mispredicted half the time.
            const int64_t above = -static_cast<int64_t>(x[mid] > t);
            hi = (mid & above) | (hi & ~above);
            lo = (lo & above) | (mid & ~above);
            if (hi - lo <= kLinear) break;
        }
    }
    if (hi - lo <= 1) return hi;
    // The forty knots from lo cover [lo, hi); those from hi on lie above t and add nothing,
    // so all ten compares run without a data-dependent exit where they stay inside x.
    int64_t c = lo;
    if (lo + kLinear <= nx) {
#pragma GCC unroll 10
        for (int j = 0; j < kLinear / 4; ++j)
            c += std::popcount(static_cast<unsigned>(le_mask4(x + lo + 4 * j, t)));
        return c;
    }
    // Near the right end: four knots at a time until a compare is not all true.
    int64_t k = lo;
    for (; k + 4 <= hi; k += 4) {
        const int m = le_mask4(x + k, t);
        c += std::popcount(static_cast<unsigned>(m));
        if (m != 0xF) return c;
    }
    for (; k < hi && x[k] <= t; ++k) ++c;
    return c;
}

}  // namespace

template <class T, class C>
int hybrid_search(int64_t nx, const T *x, int64_t nsite, const T *site, const int64_t *bins,
                  T scale, C *cell) {
    if (nsite < 1) return DF_STATUS_OK;
    const T x0 = x[0], xl = x[nx - 1];
    for (int64_t i = 0; i < nsite; ++i) {
        const T t = site[i];
        int64_t c;
        if (!(t >= x0)) {
            c = 0;
        } else if (t >= xl) {
            c = t == xl ? nx - 1 : nx;
        } else if (bins == nullptr) {
            c = narrow_and_count(x, nx, 0, nx - 1, t);
        } else {
            const int64_t b = trunc_i64((t - x0) * scale);
            c = narrow_and_count(x, nx, bins[2 * b], bins[2 * b + 1], t);
        }
        cell[i] = static_cast<C>(c);
    }
    return DF_STATUS_OK;
}

#define QON_DF_INSTANTIATE(T, C)                                                               \
    template int hybrid_search<T, C>(int64_t, const T *, int64_t, const T *, const int64_t *, \
                                     T, C *);
QON_DF_SEARCH_TYPES(QON_DF_INSTANTIATE)

}  // namespace qon::fit

#define QON_DF_EXPORT(P, T, W, C)                                                              \
    QON_API int qon_df_kernel_##P##DFHybridSearch1D##W(int64_t nx, const T *x, int64_t nsite,  \
                                                       const T *site, const int64_t *bins,     \
                                                       T scale, C *cell) {                     \
        return qon::fit::hybrid_search(nx, x, nsite, site, bins, scale, cell);                 \
    }
extern "C" {
QON_DF_SEARCH_VARIANTS(QON_DF_EXPORT)
}
