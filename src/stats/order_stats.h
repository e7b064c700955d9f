// The driver shared by the quantile and sort kernels: the observations of a block of variables
// (at most 2^30 bytes) are copied as order-preserving keys into a work buffer, one run per
// variable, and the threads of the service table take whole variables. A run is radix-sorted
// (quicksorted beyond 2^31 - 1 values) and written out when sorted output is wanted, and the
// quantiles are read from it; quantiles alone are found by selection, which leaves each run only
// partly ordered.
#pragma once

#include <algorithm>

#include "stats/common.h"
#include "stats/quantile.h"

namespace ss {

constexpr int64_t kBlockBytes = int64_t{1} << 30;

template <class T>
struct OrderRun {
    using K = KeyOf<T>;
    const T *x = nullptr;
    Observations obs;
    const int64_t *vars = nullptr;
    int64_t first = 0, count = 0;  // processed variables first .. first+count-1 form the block
    K *block = nullptr, *tmp = nullptr;
    int64_t *fixed = nullptr;
    const T *orders = nullptr;
    int64_t m = 0;
    T *quants = nullptr, *stats = nullptr;
    int64_t stats_sv = 0, stats_so = 0;
};

// Orders the run of block variable b (already holding its keys) and writes its results.
template <class T>
void process_run(OrderRun<T> *r, int thread, int64_t b) {
    using K = KeyOf<T>;
    const int64_t n = r->obs.n, i = r->vars[r->first + b];
    K *run = r->block + b * n;
    if (r->stats == nullptr) {
        select_quantiles<T>(run, n, r->orders, r->m, r->quants + i * r->m, r->fixed + thread * 2 * r->m);
        return;
    }
    K *sorted = run;
    if (n <= kRadixMaxLength)
        radix_sort(run, r->tmp + thread * n, n, &sorted);
    else
        quick_sort(run, n);
    scatter_values<T>(sorted, n, r->stats, r->stats_sv, r->stats_so, i);
    if (r->quants != nullptr)
        for (int64_t j = 0; j < r->m; ++j)
            r->quants[i * r->m + j] = quantile_of_sorted<T>(sorted, n, static_cast<double>(r->orders[j]));
}

template <class T>
void order_worker(int thread, int nthreads, OrderRun<T> *r) {
    const int64_t n = r->obs.n;
    const int64_t per = (r->count + nthreads - 1) / nthreads;
    const int64_t b0 = std::min(r->count, thread * per), b1 = std::min(r->count, b0 + per);
    // Variables in groups of 8: with observations contiguous by observation one pass over the rows
    // gathers the whole group, so that each cache line of a row serves 8 runs instead of one.
    for (int64_t g = b0; g < b1; g += 8) {
        const int64_t g1 = std::min<int64_t>(g + 8, b1);
        if (r->obs.stride_obs == 1) {
            for (int64_t b = g; b < g1; ++b)
                copy_keys(r->x + r->vars[r->first + b] * r->obs.stride_var, n, r->block + b * n);
        } else {
            using K = KeyOf<T>;
            K *runs[8];
            const T *columns[8];
            const int count = static_cast<int>(g1 - g);
            for (int c = 0; c < count; ++c) {
                runs[c] = r->block + (g + c) * n;
                columns[c] = r->x + r->vars[r->first + g + c];
            }
            const int64_t stride = r->obs.stride_obs;
            for (int64_t j = 0; j < n; ++j)
                for (int c = 0; c < count; ++c) runs[c][j] = to_key(columns[c][j * stride]);
        }
        for (int64_t b = g; b < g1; ++b) process_run(r, thread, b);
    }
}

// Sorted runs go to `out` in the given observation storage.
template <class T>
void set_sorted_output(OrderRun<T> &r, void *out, int64_t storage) {
    r.stats = static_cast<T *>(out);
    r.stats_sv = storage == kStorageRows ? r.obs.n : 1;
    r.stats_so = storage == kStorageRows ? 1 : r.obs.p;
}

// Runs the worker over every processed variable, block by block. r.obs and the outputs are set by
// the caller.
template <class T>
int run_order_statistics(const rok_ss_task *t, OrderRun<T> &r, const qon_serv_services *services) {
    using K = KeyOf<T>;
    if (t->x == nullptr) return ROK_SS_ERROR_BAD_OBSERV_ADDR;
    if (r.obs.p < 1) return 0;
    r.x = static_cast<const T *>(t->x);
    const int64_t n = r.obs.n;
    const int64_t per_block = std::max<int64_t>(1, kBlockBytes / (n * static_cast<int64_t>(sizeof(T))));
    Buffer vars;
    if (!vars.allocate(sizeof(int64_t) * static_cast<size_t>(r.obs.p))) return ROK_SS_ERROR_MEMORY;
    const int64_t q = processed_variables(t, r.obs.p, vars.as<int64_t>());
    if (q == 0) return 0;
    r.vars = vars.as<int64_t>();
    const qon_serv_services *s = services_or_default(services);
    const int64_t block_vars = std::min(q, per_block);
    const int nthreads = static_cast<int>(std::min<int64_t>(max_threads(s), block_vars));
    const bool sorting = r.stats != nullptr;
    const size_t run_bytes = sizeof(K) * static_cast<size_t>(n);
    const size_t block_bytes = round_line(run_bytes * static_cast<size_t>(block_vars));
    const size_t tmp_bytes = sorting ? round_line(run_bytes * static_cast<size_t>(nthreads)) : 0;
    Buffer work;
    if (!work.allocate(block_bytes + tmp_bytes + round_line(sizeof(int64_t) * 2 * static_cast<size_t>(r.m) * nthreads)))
        return ROK_SS_ERROR_MEMORY;
    r.block = work.as<K>();
    r.tmp = sorting ? reinterpret_cast<K *>(work.as<char>() + block_bytes) : nullptr;
    r.fixed = reinterpret_cast<int64_t *>(work.as<char>() + block_bytes + tmp_bytes);
    for (r.first = 0; r.first < q; r.first += block_vars) {
        r.count = std::min(block_vars, q - r.first);
        parallel<OrderRun<T>, order_worker<T>>(s, static_cast<int>(std::min<int64_t>(nthreads, r.count)), &r);
    }
    return 0;
}

}  // namespace ss
