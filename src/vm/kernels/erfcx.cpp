// Erfcx: the scaled complementary error function e^(x^2) erfc(x); one routine for every accuracy.
// In extended precision, rounded once (within 0.5 + 2^-8 ulp): e^(x^2) erfc(x) with x^2 split
// exactly for x < 26, the asymptotic series 1/(x sqrt(pi)) sum (-1)^k (2k-1)!!/(2x^2)^k from 26 on
// (see higher_functions.hpp). erfcx(+inf) = +0, erfcx(-inf) = +inf. Overflow (status 3) below
// -26.62 (double) or -9.38 (float), where 2 e^(x^2) passes the largest finite value; underflow
// (status 4) above 2.5e307 (double) or 4.8e37 (float), where 1/(x sqrt(pi)) is subnormal.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Erfcx {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        if (std::isinf(x)) return give(x > 0 ? T(0) : infinity<T>, r, PAX_STATUS_OK);
        if (x < -106) return give(infinity<T>, r, PAX_STATUS_OVERFLOW);
        return finish(x, erfcx(LD(x)), r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, Erfcx, float, float, Erfcx)
QON_VM_LOOP_KERNELS_SHARED(U, d, Erfcx, double, double, Erfcx)
