// Minimum (estimate bit 10, parameter 16) and maximum (bit 11, parameter 17) of every processed
// variable. The result arrays are read as well as written, so that blocks of observations can be
// processed by successive calls. Threads split the observations as the basic kernel does; each
// reduces its share into a private row of the work buffer (vector min/max along a variable's
// run, or across the variables of an observation), and the calling thread combines the rows with
// the arrays' contents. Comparisons ignore NaN observations. Exact: no rounding is involved.
#include <qon/qon_ss.h>

#include <immintrin.h>

#include <algorithm>
#include <limits>

#include "stats/accumulate.h"
#include "stats/basic.h"
#include "stats/common.h"

namespace ss {
namespace {

template <class T>
struct MinmaxRun {
    const T *x = nullptr;
    Observations obs;
    const int64_t *vars = nullptr;
    int64_t q = 0;
    double *rows = nullptr;  // per thread: q minima, then q maxima
};

template <class T>
void minmax_worker(int thread, int nthreads, MinmaxRun<T> *r) {
    const int64_t n = r->obs.n, q = r->q;
    const int64_t chunk = n / nthreads, j0 = thread * chunk, j1 = thread == nthreads - 1 ? n : j0 + chunk;
    double *lo = r->rows + 2 * q * thread, *hi = lo + q;
    std::fill_n(lo, q, std::numeric_limits<double>::infinity());
    std::fill_n(hi, q, -std::numeric_limits<double>::infinity());
    const __m256d inf = _mm256_set1_pd(std::numeric_limits<double>::infinity());
    if (r->obs.stride_obs != 1) {
        for (int64_t j = j0; j < j1; ++j) {
            const T *row = r->x + j * r->obs.stride_obs;
            for (int64_t v = 0; v < q; ++v) {
                const double x = static_cast<double>(row[r->vars[v]]);
                lo[v] = x < lo[v] ? x : lo[v];
                hi[v] = x > hi[v] ? x : hi[v];
            }
        }
        return;
    }
    for (int64_t v = 0; v < q; ++v) {
        const T *xv = r->x + r->vars[v] * r->obs.stride_var;
        __m256d vlo = inf, vhi = _mm256_sub_pd(_mm256_setzero_pd(), inf);
        int64_t j = j0;
        for (; j + 4 <= j1; j += 4) {
            const __m256d x = load4(xv + j);
            vlo = _mm256_min_pd(x, vlo);
            vhi = _mm256_max_pd(x, vhi);
        }
        alignas(32) double a[4], b[4];
        _mm256_store_pd(a, vlo);
        _mm256_store_pd(b, vhi);
        for (int k = 0; k < 4; ++k) {
            lo[v] = std::min(lo[v], a[k]);
            hi[v] = std::max(hi[v], b[k]);
        }
        for (; j < j1; ++j) {
            const double x = static_cast<double>(xv[j]);
            lo[v] = x < lo[v] ? x : lo[v];
            hi[v] = x > hi[v] ? x : hi[v];
        }
    }
}

template <class T>
int minmax(rok_ss_task *t, uint64_t estimates, uint64_t method, const qon_serv_services *services) {
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    qon::fpu::Guard fp(0);
    MinmaxRun<T> r;
    if (int status = read_observations(t, r.obs)) return status;
    const bool want_min = (estimates & ROK_SS_MIN) != 0, want_max = (estimates & ROK_SS_MAX) != 0;
    if (want_min && t->min == nullptr) return ROK_SS_ERROR_BAD_MIN_ADDR;
    if (want_max && t->max == nullptr) return ROK_SS_ERROR_BAD_MAX_ADDR;
    if (!(method & (ROK_SS_METHOD_FAST | ROK_SS_METHOD_1PASS))) return ROK_SS_ERROR_METHOD_NOT_SUPPORTED;
    if (!want_min && !want_max) return 0;
    if (t->x == nullptr) return ROK_SS_ERROR_BAD_OBSERV_ADDR;
    if (r.obs.p < 1) return 0;
    r.x = static_cast<const T *>(t->x);
    const qon_serv_services *s = services_or_default(services);
    const int nthreads = basic_threads(max_threads(s), r.obs.n, r.obs.p, false);
    Buffer vars, work;
    if (!vars.allocate(sizeof(int64_t) * static_cast<size_t>(r.obs.p)) ||
        !work.allocate(sizeof(double) * 2 * static_cast<size_t>(r.obs.p) * nthreads))
        return ROK_SS_ERROR_MEMORY;
    r.vars = vars.as<int64_t>();
    r.q = processed_variables(t, r.obs.p, vars.as<int64_t>());
    r.rows = work.as<double>();
    parallel<MinmaxRun<T>, minmax_worker<T>>(s, nthreads, &r);
    T *mins = static_cast<T *>(t->min), *maxs = static_cast<T *>(t->max);
    for (int64_t v = 0; v < r.q; ++v) {
        const int64_t i = r.vars[v];
        double lo = want_min ? static_cast<double>(mins[i]) : 0, hi = want_max ? static_cast<double>(maxs[i]) : 0;
        for (int th = 0; th < nthreads; ++th) {
            lo = std::min(lo, r.rows[2 * r.q * th + v]);
            hi = std::max(hi, r.rows[2 * r.q * th + r.q + v]);
        }
        if (want_min) mins[i] = static_cast<T>(lo);
        if (want_max) maxs[i] = static_cast<T>(hi);
    }
    return 0;
}

}  // namespace
}  // namespace ss

QON_SS_KERNEL_TWINS(SSMinmax, minmax)
