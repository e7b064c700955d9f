// Mul: a * b, correctly rounded; one kernel serves every accuracy. 0 * inf is a domain error,
// an infinite product of finite arguments an overflow, a subnormal or zero product of normal
// arguments an underflow.
#include "vm/kernels/elementary.hpp"

namespace {
struct Mul {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = x * y;
        return qon::vm::elementary::classify_underflow(r, x, y);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Mul, Mul)
