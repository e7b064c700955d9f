// J0: the Bessel function of the first kind of order 0. Double HA and LA evaluate j0 in
// extended precision and round once; double EP and float take the C library's double j0. The
// function's zeros make a relative bound meaningless near them: the error is within 1 ulp of
// the result (HA; 4 LA) away from the zeros and within 1 ulp (4 LA) of the envelope
// sqrt(2/(pi |x|)) absolutely for |x| >= 0.8 (see the accuracy tests for the measured figures).
// J0(+-inf) = +0; no argument is exceptional.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct J0 {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isinf(x)) return give(T(0), r, PAX_STATUS_OK);
        r = extended<A, T>(false) ? static_cast<T>(j0l(x)) : static_cast<T>(j0(double(x)));
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, J0, float, float, J0)
QON_VM_LOOP_KERNELS(U, d, J0, double, double, J0)
