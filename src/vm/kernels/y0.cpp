// Y0: the Bessel function of the second kind of order 0, x > 0. Double HA and LA evaluate y0
// in extended precision and round once; double EP and float take the C library's double y0.
// Near the zeros the error is bounded absolutely: within 1 ulp (HA; 4 LA) of the envelope
// sqrt(2/(pi x)) for x >= 0.8, within 1 ulp (4 LA) of the result elsewhere.
// Y0(+inf) = +0; Y0(+-0) = -inf with status 2 (singularity); x < 0 gives NaN with status 1
// (domain).
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Y0 {
    template <int A, class T>
    static int eval(T x, T &r) {
        int status;
        if (second_kind_special(x, -infinity<T>, r, status)) return status;
        r = extended<A, T>(false) ? static_cast<T>(y0l(x)) : static_cast<T>(y0(double(x)));
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, Y0, float, float, Y0)
QON_VM_LOOP_KERNELS(U, d, Y0, double, double, Y0)
