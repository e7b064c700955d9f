// LGamma: ln |Gamma(x)|. Double HA evaluates lgamma in extended precision and rounds once;
// double LA and EP take the C library's double lgamma (measured within 2.7 ulp away from the
// zeros); float rounds the double lgamma once. The reentrant forms leave the global sign alone.
// Near the zeros at negative x, where ln |Gamma| crosses 0, the error is bounded absolutely:
// within 1 ulp (HA; 4 LA) of 1; elsewhere, the zeros 1 and 2 included, relatively.
// LGamma(1) = LGamma(2) = +0, LGamma(+-inf) = +inf; at 0 and the negative integers +inf with
// status 2 (singularity). Overflow (status 3) beyond 2.55e305 (double) or 4.08e36 (float).
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct LGamma {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        if (std::isinf(x)) return give(infinity<T>, r, PAX_STATUS_OK);
        if (x <= 0 && is_integer(x)) return give(infinity<T>, r, PAX_STATUS_SING);
        int sign;
        LD v = extended<A, T>(true) ? lgammal_r(x, &sign) : LD(lgamma_r(double(x), &sign));
        return finish(x, v, r, v != 0);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, LGamma, float, float, LGamma)
QON_VM_LOOP_KERNELS(U, d, LGamma, double, double, LGamma)
