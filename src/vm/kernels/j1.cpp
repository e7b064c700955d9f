// J1: the Bessel function of the first kind of order 1 (odd). Double HA and LA evaluate j1 in
// extended precision and round once; double EP and float take the C library's double j1. Near
// the zeros the error is bounded absolutely: within 1 ulp (HA; 4 LA) of the envelope
// sqrt(2/(pi |x|)) for |x| >= 1, within 1 ulp (4 LA) of the result elsewhere.
// J1(+-0) = +-0, J1(+-inf) = +-0. Underflow (status 4) for normal x below 2^-1021 (double) or
// 2^-125 (float), where x/2 is subnormal.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct J1 {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isinf(x)) return give(std::copysign(T(0), x), r, PAX_STATUS_OK);
        LD v = extended<A, T>(false) ? j1l(x) : LD(j1(double(x)));
        return finish(x, v, r, x != 0);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, J1, float, float, J1)
QON_VM_LOOP_KERNELS(U, d, J1, double, double, J1)
