// Inv: 1/x, correctly rounded; one kernel serves every accuracy. 1/(+-0) = +-inf is a
// singularity; a subnormal or zero result from a normal x (|x| near the top of the range) is
// an underflow.
#include "vm/kernels/elementary.hpp"

namespace {
struct Inv {
    template <int A, class T>
    static int eval(T x, T &r) {
        r = 1 / x;
        return x == 0 ? PAX_STATUS_SING : qon::vm::elementary::classify_underflow(r, x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Inv, Inv)
