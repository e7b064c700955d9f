// The grouped editors of summary-statistics tasks. Each sets several related parameters at once:
// every non-null argument is stored in the parameter whose id stands at its position, a null one
// leaves the parameter as it was. The d and s forms of an editor are generated from one line.
#include "stats/task.h"

namespace {

template <int... Ids, class... Args>
int group(rok_ss_task *task, Args... args) {
    static_assert(sizeof...(Ids) == sizeof...(Args));
    static constexpr int ids[] = {Ids...};
    const void *const values[] = {static_cast<const void *>(args)...};
    return ss::edit_group(task, ids, values, static_cast<int>(sizeof...(Ids)));
}

}  // namespace

// PARAMS(T) is the argument list with floating-point arrays of type T; ARGS names them in order.
#define QON_SS_UNPAREN(...) __VA_ARGS__
#define QON_SS_EDITOR(name, PARAMS, ARGS, ...)                                                               \
    QON_API int rokd##name(rok_ss_task *task, PARAMS(double)) {                                              \
        return group<__VA_ARGS__>(task, QON_SS_UNPAREN ARGS);                                               \
    }                                                                                                        \
    QON_API int roks##name(rok_ss_task *task, PARAMS(float)) { return group<__VA_ARGS__>(task, QON_SS_UNPAREN ARGS); }

#define P_MOMENTS(T) const T *a, const T *b, const T *c, const T *d, const T *e, const T *f, const T *g
#define P_COVCOR(T) const T *mean, const T *cov, const void *cs, const T *cor, const void *rs
#define P_CP(T) const T *mean, const T *sum, const T *cp, const void *cps
#define P_PARTIAL(T) \
    const void *pidx, const T *cov, const void *cs, const T *cor, const void *rs, const T *pcov, const void *pcs, \
        const T *pcor, const void *prs
#define P_QUANT(T) const void *no, const T *orders, const T *quants, const T *os, const void *oss
#define P_SQUANT(T) const void *no, const T *orders, const T *quants, const void *np, const T *params
#define P_POOLED(T) const void *gi, const T *pm, const T *pc, const void *rgi, const T *gm, const T *gc
#define P_RCOV(T) const void *rs, const void *np, const T *params, const T *rmean, const T *rcov
#define P_OUT(T) const void *np, const T *params, const T *w
#define P_MISSING(T) \
    const void *np, const T *params, const void *n1, const T *a1, const void *n2, const T *a2, const void *n3, \
        const T *a3, const void *n4, const T *a4
#define P_PARAMETRZ(T) const T *cor, const void *cs, const T *pcor, const void *pcs

extern "C" {

QON_SS_EDITOR(SSEditMoments, P_MOMENTS, (a, b, c, d, e, f, g), 7, 8, 9, 10, 11, 12, 13)
QON_SS_EDITOR(SSEditSums, P_MOMENTS, (a, b, c, d, e, f, g), 67, 68, 69, 70, 71, 72, 73)
QON_SS_EDITOR(SSEditCovCor, P_COVCOR, (mean, cov, cs, cor, rs), 7, 19, 20, 21, 22)
QON_SS_EDITOR(SSEditCP, P_CP, (mean, sum, cp, cps), 7, 67, 74, 75)
QON_SS_EDITOR(SSEditPartialCovCor, P_PARTIAL, (pidx, cov, cs, cor, rs, pcov, pcs, pcor, prs), 45, 19, 20, 21, 22,
              46, 47, 48, 49)
QON_SS_EDITOR(SSEditQuantiles, P_QUANT, (no, orders, quants, os, oss), 24, 25, 26, 27, 44)
QON_SS_EDITOR(SSEditStreamQuantiles, P_SQUANT, (no, orders, quants, np, params), 64, 65, 66, 62, 63)
QON_SS_EDITOR(SSEditPooledCovariance, P_POOLED, (gi, pm, pc, rgi, gm, gc), 28, 30, 31, 32, 33, 35)
QON_SS_EDITOR(SSEditRCov, P_RCOV, (rs, np, params, rmean, rcov), 36, 37, 38, 39, 40)
QON_SS_EDITOR(SSEditOutDetect, P_OUT, (np, params, w), 41, 42, 43)
QON_SS_EDITOR(SSEditMissingVals, P_MISSING, (np, params, n1, a1, n2, a2, n3, a3, n4, a4), 50, 51, 52, 53, 58, 59,
              54, 55, 56, 57)
QON_SS_EDITOR(SSEditMtxParametrz, P_PARAMETRZ, (cor, cs, pcor, pcs), 21, 22, 60, 61)

}  // extern "C"
