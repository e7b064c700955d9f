// ErfInv: erfinv(x), the y with erf(y) = x, for -1 < x < 1; one routine for every accuracy.
// An estimate refined by Halley's method on erf (|x| <= 1/2) or on erfc(y) = 1 - |x| (the
// tails, where 1 - |x| is exact) in extended precision, rounded once: within 0.5 + 2^-9 ulp.
// erfinv(+-0) = +-0; erfinv(+-1) = +-inf with status 2 (singularity); |x| > 1 gives NaN with
// status 1 (domain). A normal x below 2^-1022 / 0.886 gives a subnormal result: status 4.
// Safe in place: each element is read before its result is stored.
#include "vm/kernels/special.hpp"

namespace {
using namespace qon::vm::special;

struct ErfInv {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        T s = std::fabs(x);
        if (s > 1) return give(quiet_nan<T>, r, PAX_STATUS_ERRDOM);
        if (s == 1) return give(std::copysign(infinity<T>, x), r, PAX_STATUS_SING);
        if (x == 0) return give(x, r, PAX_STATUS_OK);
        LD v = erfinv_nonnegative(s);
        return finish(x, x < 0 ? -v : v, r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, ErfInv, float, float, ErfInv)
QON_VM_LOOP_KERNELS_SHARED(U, d, ErfInv, double, double, ErfInv)
