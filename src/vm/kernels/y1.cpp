// Y1: the Bessel function of the second kind of order 1, x > 0. Double HA and LA evaluate y1
// in extended precision and round once; double EP and float take the C library's double y1.
// Near the zeros the error is bounded absolutely: within 1 ulp (HA; 4 LA) of the envelope
// sqrt(2/(pi x)) for x >= 1, within 1 ulp (4 LA) of the result elsewhere.
// Y1(+inf) = +0; Y1(+-0) = -inf with status 2 (singularity); x < 0 gives NaN with status 1
// (domain). Overflow (status 3) for subnormal x below 2/(pi DBL_MAX) (double) or for x below
// 2/(pi FLT_MAX) (float), where -2/(pi x) passes the largest finite value.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Y1 {
    template <int A, class T>
    static int eval(T x, T &r) {
        int status;
        if (second_kind_special(x, -infinity<T>, r, status)) return status;
        return finish(x, extended<A, T>(false) ? y1l(x) : LD(y1(double(x))), r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, Y1, float, float, Y1)
QON_VM_LOOP_KERNELS(U, d, Y1, double, double, Y1)
