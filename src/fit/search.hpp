// Cell-search kernels, one template per method family over the element type T (float,
// double) and the cell type C (int32_t, int64_t); every exported kernel name is a thin
// instantiation of one of these. Cells follow one convention: 0 below x[0], k for
// x[k-1] <= t < x[k], nx-1 for t == x[nx-1], nx above, and 0 for a site that is not a number.
#pragma once

#include <qon/qon_df.h>

#include <cstdint>

#include "fit/simd.hpp"

namespace qon::fit {

template <class T>
struct SearchFnOf;
template <>
struct SearchFnOf<float> {
    using type = qon_df_ssearch_fn;
};
template <>
struct SearchFnOf<double> {
    using type = qon_df_dsearch_fn;
};
template <class T>
using SearchFn = typename SearchFnOf<T>::type;

template <class T, class C>
int uniform_search(int64_t nx, const T *x, int64_t nsite, const T *site, T r, C *cell);
template <class T, class C>
int quasi_uniform_search(int64_t nx, const T *x, int64_t nsite, const T *site, T r, C *cell);
template <class T, class C>
int hybrid_search(int64_t nx, const T *x, int64_t nsite, const T *site, const int64_t *bins,
                  T scale, C *cell);
template <class T, class C>
int sorted_search(int64_t nx, const T *x, int64_t nsite, const T *site, C *running, C *cell);
template <class T, class C>
int peak_search(int64_t nx, const T *x, int64_t nsite, const T *site, T peak, C *cell);
template <class T, class C>
int userdef_search(int64_t nx, const T *x, int64_t nsite, const T *site, SearchFn<T> fn,
                   void *user1, void *user2, C *cell);
template <class T, class C>
int uniuserdef_search(int64_t nx, const T *x, int64_t nsite, const T *site, T r,
                      SearchFn<T> fn, void *user1, void *user2, C *cell);

// Every element and cell type a family is instantiated for: X(element, cell).
#define QON_DF_SEARCH_TYPES(X) X(float, int32_t) X(float, int64_t) X(double, int32_t) X(double, int64_t)

// Upward scan from knot k, two knots a step: the first j >= k with x[j] > t, nx if none.
template <class T>
inline int64_t scan_up(const T *x, int64_t nx, int64_t k, T t) {
    for (; k + 1 < nx; k += 2) {
        if (x[k] > t) return k;
        if (x[k + 1] > t) return k + 1;
    }
    return (k < nx && x[k] > t) ? k : nx;
}

// Downward scan from k, two knots a step: the first j <= k with x[j-1] <= t, 0 if none.
template <class T>
inline int64_t scan_down(const T *x, int64_t k, T t) {
    for (; k >= 2; k -= 2) {
        if (x[k - 1] <= t) return k;
        if (x[k - 2] <= t) return k - 1;
    }
    return (k == 1 && x[0] <= t) ? 1 : 0;
}

// The cell of t by scanning from a start cell k in [0, nx] in the direction that t lies:
// upward when t >= x[k], downward otherwise; a start at or beyond nx scans down from nx.
template <class T>
inline int64_t scan_from(const T *x, int64_t nx, int64_t k, T t) {
    if (k >= nx) return scan_down(x, nx, t);
    return t >= x[k] ? scan_up(x, nx, k, t) : scan_down(x, k, t);
}

// The cell of a site from any start cell k (negative starts count as 0): the right end first,
// then sites that are not numbers, then the scan.
template <class T>
inline int64_t cell_from(const T *x, int64_t nx, int64_t k, T t) {
    if (t == x[nx - 1]) return nx - 1;
    if (t != t) return 0;
    return scan_from(x, nx, k < 0 ? 0 : k, t);
}

// The cell of t in the uniform partition with ends x0 and xe and inverse step r; cap is the
// largest T not above nx - 1.
template <class T>
inline int64_t uniform_cell(T t, T x0, T xe, T r, T cap, int64_t nx) {
    if (t == xe) return nx - 1;
    if (t >= x0) return clamp_trunc((t - x0) * r, cap, nx - 1) + 1;
    return 0;
}

}  // namespace qon::fit
