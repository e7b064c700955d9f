// CdfNorm: the standard normal distribution function erfc(-x/sqrt(2)) / 2; one routine for
// every accuracy, in extended precision and rounded once (within 0.5 + 2^-8 ulp). For x < -1
// the tail is e^(-x^2/2) erfcx(-x/sqrt(2)) / 2 with x^2 split exactly, so that the rounding of
// x/sqrt(2) (relative 2^-64, amplified by x^2 in erfc) does not reach the result.
// CdfNorm(-inf) = +0, CdfNorm(+inf) = 1. Underflow (status 4) below -37.52 (double) or -13.11
// (float), where the result is subnormal; below -38.5 (double) it is +0.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct CdfNorm {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        if (std::isinf(x)) return give(x > 0 ? T(1) : T(0), r, PAX_STATUS_OK);
        if (x < -150) return give(T(0), r, PAX_STATUS_UNDERFLOW);
        LD z = -LD(x) / sqrt2;
        LD v = x >= -1 ? std::erfc(z) / 2 : exp_square(x, -0.5L) * erfcx(z) / 2;
        return finish(x, v, r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, CdfNorm, float, float, CdfNorm)
QON_VM_LOOP_KERNELS_SHARED(U, d, CdfNorm, double, double, CdfNorm)
