// Cell search by the caller's own function, on any partition and on a uniform one. The
// function is called once for all sites with a flag per site; a negative return is the
// status, DF_USER_SEARCH_ALL_FINAL means every cell is final. Otherwise each site whose flag
// is still 0 is corrected: on a general partition by scanning from the function's cell (raised
// to 0) to the exact cell, on a uniform partition, whose knots are implicit, by the uniform
// formula.
#include <qon/qon_serv.h>

#include <cstring>

#include "fit/search.hpp"

namespace qon::fit {
namespace {

// Calls fn with zeroed flags and corrects the sites left unflagged by correct(i, cell).
template <class T, class C, class Correct>
int run_user_search(int64_t nsite, const T *site, SearchFn<T> fn, void *user1, void *user2,
                    C *cell, Correct correct) {
    constexpr int64_t kOnStack = 64;
    if (nsite < 1) return DF_STATUS_OK;
    int32_t stack_flags[kOnStack];
    int32_t *flags = stack_flags;
    if (nsite > kOnStack) {
        flags = static_cast<int32_t *>(
            qon_serv_allocate(static_cast<size_t>(nsite) * sizeof(int32_t), 128));
        if (flags == nullptr) return DF_ERROR_MEM_FAILURE;
    }
    std::memset(flags, 0, static_cast<size_t>(nsite) * sizeof(int32_t));
    int64_t n = nsite;
    int st = fn(&n, site, cell, flags, user1, user2);
    if (st >= 0 && st != DF_USER_SEARCH_ALL_FINAL && n >= 1) {
        const int64_t m = n < nsite ? n : nsite;
        for (int64_t i = 0; i < m; ++i)
            if (flags[i] == 0) cell[i] = static_cast<C>(correct(i, static_cast<int64_t>(cell[i])));
        st = DF_STATUS_OK;
    } else if (st == DF_USER_SEARCH_ALL_FINAL) {
        st = DF_STATUS_OK;
    }
    if (flags != stack_flags) qon_serv_deallocate(flags);
    return st;
}

}  // namespace

template <class T, class C>
int userdef_search(int64_t nx, const T *x, int64_t nsite, const T *site, SearchFn<T> fn,
                   void *user1, void *user2, C *cell) {
    return run_user_search(nsite, site, fn, user1, user2, cell, [&](int64_t i, int64_t k) {
        return cell_from(x, nx, k, site[i]);
    });
}

template <class T, class C>
int uniuserdef_search(int64_t nx, const T *x, int64_t nsite, const T *site, T r,
                      SearchFn<T> fn, void *user1, void *user2, C *cell) {
    const T cap = floor_to<T>(nx - 1);
    return run_user_search(nsite, site, fn, user1, user2, cell, [&](int64_t i, int64_t) {
        return uniform_cell(site[i], x[0], x[1], r, cap, nx);
    });
}

#define QON_DF_INSTANTIATE(T, C)                                                               \
    template int userdef_search<T, C>(int64_t, const T *, int64_t, const T *, SearchFn<T>,    \
                                      void *, void *, C *);                                    \
    template int uniuserdef_search<T, C>(int64_t, const T *, int64_t, const T *, T,           \
                                         SearchFn<T>, void *, void *, C *);
QON_DF_SEARCH_TYPES(QON_DF_INSTANTIATE)

}  // namespace qon::fit

#define QON_DF_EXPORT(P, T, W, C)                                                              \
    QON_API int qon_df_kernel_##P##DFUserDefSearch1D##W(                                       \
        int64_t nx, const T *x, int64_t nsite, const T *site, qon_df_##P##search_fn fn,        \
        void *user1, void *user2, C *cell) {                                                   \
        return qon::fit::userdef_search(nx, x, nsite, site, fn, user1, user2, cell);           \
    }                                                                                          \
    QON_API int qon_df_kernel_##P##DFUniUserDefSearch1D##W(                                    \
        int64_t nx, const T *x, int64_t nsite, const T *site, T r, qon_df_##P##search_fn fn,   \
        void *user1, void *user2, C *cell) {                                                   \
        return qon::fit::uniuserdef_search(nx, x, nsite, site, r, fn, user1, user2, cell);     \
    }
extern "C" {
QON_DF_SEARCH_VARIANTS(QON_DF_EXPORT)
}
