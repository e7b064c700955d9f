// CdfNormInv: the inverse of the standard normal distribution function,
// -sqrt(2) erfcinv(2p) for p < 1/2 and sqrt(2) erfcinv(2 - 2p) for p >= 1/2 (2p and 2 - 2p
// exact); one routine for every accuracy, in extended precision and rounded once (within
// 0.5 + 2^-9 ulp), accurate down to the smallest subnormal p. CdfNormInv(1/2) = +0;
// p = +-0 gives -inf and p = 1 gives +inf with status 2 (singularity); p < 0 or p > 1 gives
// NaN with status 1 (domain).
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct CdfNormInv {
    template <int A, class T>
    static int eval(T p, T &r) {
        if (std::isnan(p)) return give(p, r, PAX_STATUS_OK);
        if (p < 0 || p > 1) return give(quiet_nan<T>, r, PAX_STATUS_ERRDOM);
        if (p == 0) return give(-infinity<T>, r, PAX_STATUS_SING);
        if (p == 1) return give(infinity<T>, r, PAX_STATUS_SING);
        LD v = p < T(0.5) ? -sqrt2 * erfcinv(2 * LD(p)) : sqrt2 * erfcinv(2 - 2 * LD(p));
        return finish(p, v, r, v != 0);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, CdfNormInv, float, float, CdfNormInv)
QON_VM_LOOP_KERNELS_SHARED(U, d, CdfNormInv, double, double, CdfNormInv)
