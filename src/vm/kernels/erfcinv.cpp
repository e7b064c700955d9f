// ErfcInv: erfcinv(x), the y with erfc(y) = x, for 0 < x < 2; one routine for every accuracy.
// Halley's method on erfc (x <= 1/2, down to the smallest subnormal) or erf (the middle, on the
// exact 1 - x) in extended precision from a closed-form estimate, rounded once: within
// 0.5 + 2^-9 ulp. erfcinv(2 - x) = -erfcinv(x) with 2 - x exact. erfcinv(1) = +0;
// erfcinv(+-0) = +inf and erfcinv(2) = -inf with status 2 (singularity); x < 0 or x > 2 gives
// NaN with status 1 (domain).
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct ErfcInv {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        if (x < 0 || x > 2) return give(quiet_nan<T>, r, PAX_STATUS_ERRDOM);
        if (x == 0) return give(infinity<T>, r, PAX_STATUS_SING);
        if (x == 2) return give(-infinity<T>, r, PAX_STATUS_SING);
        LD v = erfcinv(LD(x));
        return finish(x, v, r, v != 0);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, ErfcInv, float, float, ErfcInv)
QON_VM_LOOP_KERNELS_SHARED(U, d, ErfcInv, double, double, ErfcInv)
