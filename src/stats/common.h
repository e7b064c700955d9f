// Shared pieces of the summary-statistics kernels: reading and checking the observation
// parameters, the list of processed variables, work buffers, the parallel-for of the service
// table, addressing of the three matrix storages, and the exported twins of a kernel template.
#pragma once

#include <qon/qon_serv.h>
#include <qon/qon_ss.h>

#include <immintrin.h>

#include <cstdint>
#include <cstring>

#include "core/fpu.hpp"
#include "stats/task.h"

namespace ss {

// A block from qon_serv_allocate, freed on scope exit.
class Buffer {
public:
    Buffer() = default;
    bool allocate(size_t bytes) {
        ptr_ = qon_serv_allocate(bytes == 0 ? 1 : bytes, 128);
        return ptr_ != nullptr;
    }
    ~Buffer() { qon_serv_deallocate(ptr_); }
    Buffer(const Buffer &) = delete;
    Buffer &operator=(const Buffer &) = delete;
    template <class T>
    T *as() const { return static_cast<T *>(ptr_); }

private:
    void *ptr_ = nullptr;
};

// Rounds a byte count up to a whole number of 64-byte lines.
constexpr size_t round_line(size_t bytes) { return (bytes + 63) & ~size_t{63}; }

inline bool valid_storage(int64_t s) { return s == kStorageRows || s == kStorageCols; }

// The observation parameters, checked as every kernel that reads observations checks them.
struct Observations {
    int64_t p = 0, n = 0, storage = 0;
    int64_t stride_var = 0, stride_obs = 0;  // element (variable i, observation j) at i*stride_var + j*stride_obs
};

// Checks n (-4002), the storage pointer (-4044) and value (-4003); p is read as it is.
inline int read_observations(const rok_ss_task *t, Observations &o) {
    o.p = t->p != nullptr ? read_int(t, t->p) : 0;
    if (t->n == nullptr) return ROK_SS_ERROR_BAD_OBSERV_N;
    o.n = read_int(t, t->n);
    if (o.n < 1) return ROK_SS_ERROR_BAD_OBSERV_N;
    if (t->xstorage == nullptr) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
    o.storage = read_int(t, t->xstorage);
    if (!valid_storage(o.storage)) return ROK_SS_ERROR_STORAGE_NOT_SUPPORTED;
    o.stride_var = o.storage == kStorageRows ? o.n : 1;
    o.stride_obs = o.storage == kStorageRows ? 1 : o.p;
    return 0;
}

// Indices of the processed variables, in increasing order, in a buffer of p entries.
inline int64_t processed_variables(const rok_ss_task *t, int64_t p, int64_t *list) {
    int64_t q = 0;
    for (int64_t i = 0; i < p; ++i)
        if (t->indices == nullptr || read_int(t, t->indices, i) != 0) list[q++] = i;
    return q;
}

inline const qon_serv_services *services_or_default(const qon_serv_services *s) {
    return s != nullptr ? s : qon_serv_get_services();
}

// Runs fn(thread, nthreads, ctx) through the service table with the floating-point bracket set
// in every worker.
template <class Ctx, void (*Fn)(int, int, Ctx *)>
void parallel(const qon_serv_services *s, int nthreads, Ctx *ctx) {
    s->parallel_for(
        nthreads,
        [](int thread, int count, void *c) {
            qon::fpu::Guard fp(0);
            Fn(thread, count, static_cast<Ctx *>(c));
        },
        ctx);
}

inline int max_threads(const qon_serv_services *s) {
    int m = s->get_max_threads != nullptr ? s->get_max_threads() : 1;
    return m < 1 ? 1 : m;
}

// Matrix storage: 0 full, 1 upper triangle packed by rows, 2 lower triangle packed by rows.
inline int64_t matrix_index(int64_t storage, int64_t p, int64_t i, int64_t j) {
    if (storage == 0) return i * p + j;
    if (i > j) {
        int64_t k = i;
        i = j;
        j = k;
    }
    if (storage == 1) return i * p - i * (i - 1) / 2 + (j - i);
    return j * (j + 1) / 2 + i;
}

}  // namespace ss

// The exported d and s entries of a kernel template ss::fn<T>(task, estimates, method, services).
#define QON_SS_KERNEL_TWINS(Name, fn)                                                                      \
    extern "C" QON_API int rokd##Name(rok_ss_task *task, uint64_t estimates, uint64_t method,               \
                                      const qon_serv_services *services) {                                  \
        return ss::fn<double>(task, estimates, method, services);                                           \
    }                                                                                                       \
    extern "C" QON_API int roks##Name(rok_ss_task *task, uint64_t estimates, uint64_t method,               \
                                      const qon_serv_services *services) {                                  \
        return ss::fn<float>(task, estimates, method, services);                                            \
    }
