// Absolute deviations of every processed variable: the median of |x - median| (estimate bit 33,
// no scale factor, weights not used) and the weighted mean of |x - mean| (bit 34, about the
// weighted mean or about the caller's mean with method 0x100). The medians come from the same
// selection as the quantile kernel (order 0.5, so the mean of the two middle values for even n);
// the means from the basic-statistics kernel run on a private one-variable task that carries the
// task's weights, so both deviations are as accurate as the estimates they are built from.
// Threads take whole variables, each with its own buffer of n values and n keys.
#include <qon/qon_ss.h>

#include <atomic>
#include <cmath>

#include "stats/basic.h"
#include "stats/common.h"
#include "stats/quantile.h"

namespace ss {
namespace {

// The service table of the inner calls: they run on the worker that makes them.
const qon_serv_services *inline_services() {
    static const qon_serv_services s = {[]() { return 1; },
                                        [](int nthreads, qon_serv_task_fn fn, void *ctx) {
                                            for (int i = 0; i < nthreads; ++i) fn(i, nthreads, ctx);
                                        }};
    return &s;
}

template <class T>
struct MadRun {
    rok_ss_task *task = nullptr;
    Observations obs;
    const T *x = nullptr;
    const int64_t *vars = nullptr;
    int64_t q = 0;
    char *buffers = nullptr;
    size_t buffer_bytes = 0;
    bool median_based = false;  // the estimate of this pass: bit 33, else bit 34
    const T *centre = nullptr;  // the caller's mean for bit 34 with method 0x100
    std::atomic<int> status{0};
};

template <class T>
T median_of(KeyOf<T> *run, int64_t n, int64_t *fixed) {
    const double half = 0.5;
    T m;
    select_quantiles<T>(run, n, &half, 1, &m, fixed);
    return m;
}

// Weighted mean of buf[0..n) by the basic kernel on a private task.
template <class T>
int weighted_mean(const rok_ss_task *t, const T *buf, int64_t n, T &mean) {
    rok_ss_task priv{};
    const int64_t one = 1, storage = kStorageRows;
    priv.intwidth = 1;
    priv.kind = 2;
    priv.p = const_cast<int64_t *>(&one);
    priv.n = &n;
    priv.x = const_cast<T *>(buf);
    priv.xstorage = const_cast<int64_t *>(&storage);
    priv.weights = t->weights;
    priv.moments[0] = &mean;
    return basic<T>(&priv, ROK_SS_MEAN, ROK_SS_METHOD_FAST, inline_services());
}

template <class T>
void mad_worker(int thread, int nthreads, MadRun<T> *r) {
    using K = KeyOf<T>;
    const int64_t n = r->obs.n;
    T *values = reinterpret_cast<T *>(r->buffers + r->buffer_bytes * static_cast<size_t>(thread));
    K *keys = reinterpret_cast<K *>(values + n);
    int64_t fixed[2];
    for (int64_t v = thread; v < r->q; v += nthreads) {
        const int64_t i = r->vars[v];
        const T *base = r->x + i * r->obs.stride_var;
        for (int64_t j = 0; j < n; ++j) values[j] = base[j * r->obs.stride_obs];
        if (r->median_based) {
            copy_keys(values, n, keys);
            const T m = median_of<T>(keys, n, fixed);
            for (int64_t j = 0; j < n; ++j) keys[j] = to_key(std::fabs(values[j] - m));
            static_cast<T *>(r->task->mdad)[i] = median_of<T>(keys, n, fixed);
            continue;
        }
        T centre;
        int status = 0;
        if (r->centre != nullptr)
            centre = r->centre[i];
        else
            status = weighted_mean<T>(r->task, values, n, centre);
        for (int64_t j = 0; j < n; ++j) values[j] = std::fabs(values[j] - centre);
        T deviation;
        if (status == 0) status = weighted_mean<T>(r->task, values, n, deviation);
        if (status < 0)
            r->status.store(status, std::memory_order_relaxed);
        else
            static_cast<T *>(r->task->mnad)[i] = deviation;
    }
}

template <class T>
int mad(rok_ss_task *t, uint64_t estimates, uint64_t method, const qon_serv_services *services) {
    using K = KeyOf<T>;
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    qon::fpu::Guard fp(0);
    if (t->p == nullptr || read_int(t, t->p) < 1) return ROK_SS_ERROR_BAD_DIMEN;
    MadRun<T> r;
    if (int status = read_observations(t, r.obs)) return status;
    const bool want33 = (estimates & ROK_SS_MDAD) != 0, want34 = (estimates & ROK_SS_MNAD) != 0;
    if (!want33 && !want34) return 0;
    if (t->x == nullptr) return ROK_SS_ERROR_BAD_OBSERV_ADDR;
    r.task = t;
    r.x = static_cast<const T *>(t->x);
    Buffer vars;
    if (!vars.allocate(sizeof(int64_t) * static_cast<size_t>(r.obs.p))) return ROK_SS_ERROR_MEMORY;
    r.vars = vars.as<int64_t>();
    r.q = processed_variables(t, r.obs.p, vars.as<int64_t>());
    const qon_serv_services *s = services_or_default(services);
    const int nthreads = static_cast<int>(std::min<int64_t>(max_threads(s), std::max<int64_t>(r.q, 1)));
    r.buffer_bytes = round_line((sizeof(T) + sizeof(K)) * static_cast<size_t>(r.obs.n));
    Buffer work;

    int status = 0;
    for (int pass = 0; pass < 2; ++pass) {
        const bool median_based = pass == 0;
        if (!(median_based ? want33 : want34)) continue;
        if (median_based) {
            status = t->mdad == nullptr            ? ROK_SS_ERROR_BAD_MDAD_ADDR
                     : !(method & ROK_SS_METHOD_FAST) ? ROK_SS_ERROR_METHOD_NOT_SUPPORTED
                                                      : 0;
        } else {
            const bool user = (method & ROK_SS_METHOD_FAST_USER_MEAN) != 0;
            status = t->mnad == nullptr                                          ? ROK_SS_ERROR_BAD_MNAD_ADDR
                     : !(method & (ROK_SS_METHOD_FAST | ROK_SS_METHOD_FAST_USER_MEAN)) ? ROK_SS_ERROR_METHOD_NOT_SUPPORTED
                     : user && t->moments[0] == nullptr                                ? ROK_SS_ERROR_BAD_MEAN_ADDR
                                                                                       : 0;
            r.centre = user ? static_cast<const T *>(t->moments[0]) : nullptr;
        }
        if (status != 0 || r.q == 0) continue;
        if (r.buffers == nullptr) {
            if (!work.allocate(r.buffer_bytes * static_cast<size_t>(nthreads))) {
                status = ROK_SS_ERROR_MEMORY;
                continue;
            }
            r.buffers = work.as<char>();
        }
        r.median_based = median_based;
        r.status.store(0, std::memory_order_relaxed);
        parallel<MadRun<T>, mad_worker<T>>(s, nthreads, &r);
        status = r.status.load(std::memory_order_relaxed);
    }
    return status;
}

}  // namespace
}  // namespace ss

QON_SS_KERNEL_TWINS(SSMAD, mad)
