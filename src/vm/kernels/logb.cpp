// Logb: the binary exponent of x as a floating-point integer (subnormals included, so
// logb(smallest subnormal) is -1074 in double); exact, one kernel serves every accuracy.
// logb(+-0) = -inf is a singularity; logb(+-inf) = +inf is not reported.
#include "vm/kernels/elementary.hpp"

namespace {
struct Logb {
    template <int A, class T>
    static int eval(T x, T &r) {
        r = std::logb(x);
        return x == 0 ? PAX_STATUS_SING : PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Logb, Logb)
