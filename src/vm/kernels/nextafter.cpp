// NextAfter: the neighbour of a in the direction of b (b itself when a = b); exact, one kernel
// serves every accuracy. Stepping from the largest finite value to infinity is an overflow,
// from the smallest normal value into the subnormals an underflow.
#include "vm/kernels/elementary.hpp"

namespace {
struct NextAfter {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = std::nextafter(x, y);
        if (std::isinf(r) && std::isfinite(x)) return PAX_STATUS_OVERFLOW;
        return qon::vm::elementary::tiny(r) && std::isnormal(x) ? PAX_STATUS_UNDERFLOW : PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, NextAfter, NextAfter)
