// Div: a / b, correctly rounded; one kernel serves every accuracy. A finite non-zero a over
// +-0 is a singularity (+-inf); 0/0 and inf/inf are domain errors; an infinite quotient of
// finite arguments is an overflow, a subnormal or zero quotient of normal ones an underflow.
#include "vm/kernels/elementary.hpp"

namespace {
struct Div {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = x / y;
        if (y == 0 && x != 0 && std::isfinite(x)) return PAX_STATUS_SING;
        return qon::vm::elementary::classify_underflow(r, x, y);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Div, Div)
