// Sub: a - b, correctly rounded; one kernel serves every accuracy. inf - inf is a domain
// error, an infinite difference of finite arguments an overflow; subnormal differences are
// exact and not reported.
#include "vm/kernels/elementary.hpp"

namespace {
struct Sub {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = x - y;
        return qon::vm::elementary::classify(r, x, y);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Sub, Sub)
