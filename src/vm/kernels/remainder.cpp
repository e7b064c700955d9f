// Remainder: the IEEE remainder a - n b with n = a/b rounded to the nearest integer, ties to
// even; exact (libm's remainder), one kernel serves every accuracy. b = +-0 and a = +-inf are
// domain errors (NaN); remainder(a, +-inf) = a.
#include "vm/kernels/elementary.hpp"

namespace {
struct Remainder {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = std::remainder(x, y);
        return qon::vm::elementary::classify(r, x, y);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Remainder, Remainder)
