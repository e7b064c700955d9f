// The search dispatchers: pick the method from the caller's function, the partition hint, the
// site hint and the search parameters, compute the method's inputs from the task, and run it
// on the sites in the task's cell width, directly for fewer than 32 sites and otherwise
// through the method's blocked routine, which works in blocks of 32 sites and, for the methods
// whose sites are independent, shares large requests among threads in contiguous runs of
// blocks (each site's cell is the same whichever thread finds it).
#include <qon/qon_serv.h>

#include <array>
#include <atomic>
#include <cmath>
#include <utility>

#include "fit/search.hpp"
#include "fit/task.hpp"

namespace qon::fit {
namespace {

enum Method : int {
    kUniform = 0,
    kQuasiUniform = 1,
    kSorted = 2,
    kPeak = 3,
    kHybrid = 4,
    kUserDef = 5,
    kUniUserDef = 6,
    kMethods = 7
};

constexpr int64_t kBlock = 32;
constexpr int64_t kParallelFrom = 65536;  // below this a second thread costs more than it saves
constexpr int64_t kSitesPerThread = 32768;

template <class T>
struct Request {
    int64_t nx;
    const T *x;
    int64_t nsite;
    const T *site;
    void *cell;
    const int64_t *bins;
    T scale;
    T r;
    T peak;
    int64_t running;
    SearchFn<T> fn;
    void *user1;
    void *user2;
};

// The kernel of method M on sites [first, first + n).
template <class T, class C, int M>
int run_kernel(Request<T> &q, int64_t first, int64_t n) {
    const T *s = q.site + first;
    C *c = static_cast<C *>(q.cell) + first;
    if constexpr (M == kUniform) return uniform_search(q.nx, q.x, n, s, q.r, c);
    if constexpr (M == kQuasiUniform) return quasi_uniform_search(q.nx, q.x, n, s, q.r, c);
    if constexpr (M == kPeak) return peak_search(q.nx, q.x, n, s, q.peak, c);
    if constexpr (M == kHybrid) return hybrid_search(q.nx, q.x, n, s, q.bins, q.scale, c);
    if constexpr (M == kUserDef) return userdef_search(q.nx, q.x, n, s, q.fn, q.user1, q.user2, c);
    if constexpr (M == kUniUserDef)
        return uniuserdef_search(q.nx, q.x, n, s, q.r, q.fn, q.user1, q.user2, c);
    if constexpr (M == kSorted) {
        C running = static_cast<C>(q.running);
        int st = sorted_search(q.nx, q.x, n, s, &running, c);
        q.running = running;
        return st;
    }
}

template <class T, class C, int M>
int run_blocks(Request<T> &q, int64_t first_block, int64_t end_block) {
    for (int64_t b = first_block; b < end_block; ++b) {
        const int64_t first = b * kBlock;
        const int64_t n = q.nsite - first < kBlock ? q.nsite - first : kBlock;
        if (int st = run_kernel<T, C, M>(q, first, n); st != DF_STATUS_OK) return st;
    }
    return DF_STATUS_OK;
}

template <class T>
struct Shared {
    Request<T> *q;
    int64_t nblocks;
    std::atomic<int> status;
};

template <class T, class C, int M>
void run_share(int thread, int nthreads, void *context) {
    auto *sh = static_cast<Shared<T> *>(context);
    Request<T> q = *sh->q;
    const int64_t begin = sh->nblocks * thread / nthreads;
    const int64_t end = sh->nblocks * (thread + 1) / nthreads;
    if (int st = run_blocks<T, C, M>(q, begin, end); st != DF_STATUS_OK) {
        int ok = DF_STATUS_OK;
        sh->status.compare_exchange_strong(ok, st);
    }
}

// The blocked routine of method M. The sorted search carries its running cell from block to
// block and the user-defined ones call the caller's function, so those stay on one thread.
template <class T, class C, int M>
int blocked(Request<T> &q) {
    const int64_t nblocks = (q.nsite + kBlock - 1) / kBlock;
    constexpr bool independent = M != kSorted && M != kUserDef && M != kUniUserDef;
    if (independent && q.nsite >= kParallelFrom) {
        const qon_serv_services *sv = qon_serv_get_services();
        int64_t nthreads = sv->get_max_threads();
        if (nthreads > q.nsite / kSitesPerThread) nthreads = q.nsite / kSitesPerThread;
        if (nthreads > 1) {
            Shared<T> sh{&q, nblocks, DF_STATUS_OK};
            sv->parallel_for(static_cast<int>(nthreads), run_share<T, C, M>, &sh);
            return sh.status.load();
        }
    }
    return run_blocks<T, C, M>(q, 0, nblocks);
}

template <class T, class C, int M>
int direct(Request<T> &q) {
    return run_kernel<T, C, M>(q, 0, q.nsite);
}

template <class T>
using Routine = int (*)(Request<T> &);

template <class T, class C, int... M>
constexpr std::array<Routine<T>, kMethods> blocked_table(std::integer_sequence<int, M...>) {
    return {blocked<T, C, M>...};
}
template <class T, class C, int... M>
constexpr std::array<Routine<T>, kMethods> direct_table(std::integer_sequence<int, M...>) {
    return {direct<T, C, M>...};
}

template <class T, class C>
int run(int method, Request<T> &q) {
    static constexpr auto kBlocked = blocked_table<T, C>(std::make_integer_sequence<int, kMethods>{});
    static constexpr auto kDirect = direct_table<T, C>(std::make_integer_sequence<int, kMethods>{});
    return q.nsite < kBlock ? kDirect[method](q) : kBlocked[method](q);
}

// The method code, or a negative status for refused search parameters.
template <class T>
int choose_method(const Task *task, int64_t sitehint, const T *params, T *peak) {
    if (task->xhint == DF_PARTITION_QUASI_UNIFORM) return kQuasiUniform;
    if (task->xhint == DF_PARTITION_UNIFORM) return kUniform;
    if (sitehint & DF_SITES_SORTED) return kSorted;
    if (params != nullptr) {
        if (params[1] != T(0) && params[1] != T(1)) return DF_ERROR_BAD_SEARCH_PARAMS;
        if (params[1] == T(1)) {
            const T p = params[4];
            if (!(p >= T(0) && p <= static_cast<T>(task->nx))) return DF_ERROR_BAD_SEARCH_PARAMS;
            *peak = p;
            return kPeak;
        }
    }
    return kHybrid;
}

template <class T>
int search(void *handle, int64_t nsite, const T *site, int64_t sitehint, const T *params,
           void *cell, SearchFn<T> fn, void *user1, void *user2) {
    const Task *task = static_cast<const Task *>(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (nsite < 1) return DF_STATUS_OK;
    if (task->x == nullptr) return DF_ERROR_BAD_X;
    Request<T> q{};
    q.nx = task->nx;
    q.x = task_x<T>(task);
    q.nsite = nsite;
    q.site = site;
    q.cell = cell;
    q.fn = fn;
    q.user1 = user1;
    q.user2 = user2;
    int method;
    if (fn != nullptr) {
        method = task->xhint == DF_PARTITION_UNIFORM ? kUniUserDef : kUserDef;
    } else {
        method = choose_method(task, sitehint, params, &q.peak);
        if (method < 0) return method;
    }
    const T *x = q.x;
    if (method == kUniform || method == kUniUserDef)
        q.r = static_cast<T>(q.nx - 1) / (x[1] - x[0]);
    if (method == kQuasiUniform) q.r = static_cast<T>(q.nx - 1) / (x[q.nx - 1] - x[0]);
    if (method == kHybrid) {
        // A table built for another partition size (nx edited since) is not used.
        const int64_t nb = task->nbins;
        const bool fresh = task->bins != nullptr && task->bins[2 * (nb - 1) + 1] == q.nx - 1;
        q.bins = fresh ? task->bins : nullptr;
        if constexpr (sizeof(T) == sizeof(double)) q.scale = task->bin_scale.d;
        else q.scale = task->bin_scale.s;
    }

    T *generated = nullptr;
    if (sitehint & DF_SITES_UNIFORM) {
        generated = static_cast<T *>(qon_serv_allocate(static_cast<size_t>(nsite) * sizeof(T), 128));
        if (generated == nullptr) return DF_ERROR_MEM_FAILURE;
        const T first = site[0];
        const T step = nsite > 1 ? (site[1] - first) / static_cast<T>(nsite - 1) : T(0);
        for (int64_t i = 0; i < nsite; ++i) generated[i] = std::fma(static_cast<T>(i), step, first);
        q.site = generated;
    }
    const int st = task->intwidth == 0 ? run<T, int32_t>(method, q) : run<T, int64_t>(method, q);
    qon_serv_deallocate(generated);
    return st;
}

}  // namespace
}  // namespace qon::fit

extern "C" {

QON_API int qon_df_kernel_dDFSearch1D(void *task, int64_t nsite, const double *site,
                                      int64_t sitehint, const double *params, void *cell,
                                      qon_df_dsearch_fn fn, void *user1, void *user2) {
    return qon::fit::search(task, nsite, site, sitehint, params, cell, fn, user1, user2);
}

QON_API int qon_df_kernel_sDFSearch1D(void *task, int64_t nsite, const float *site,
                                      int64_t sitehint, const float *params, void *cell,
                                      qon_df_ssearch_fn fn, void *user1, void *user2) {
    return qon::fit::search(task, nsite, site, sitehint, params, cell, fn, user1, user2);
}

}  // extern "C"
