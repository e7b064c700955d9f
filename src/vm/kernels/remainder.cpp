// Remainder: the IEEE remainder a - n b with n = a/b rounded to the nearest integer, ties to
// even; exact (libm's remainder), one kernel serves every accuracy. A zero remainder takes the
// sign of a (glibc's double remainder returns +0 for some negative a over a subnormal b).
// b = +-0 and a = +-inf are domain errors (NaN); remainder(a, +-inf) = a.
#include "vm/kernels/elementary.hpp"

namespace {
template <class T>
T signed_remainder(T x, T y) {
    T r = std::remainder(x, y);
    return r == 0 ? std::copysign(T(0), x) : r;
}
}  // namespace

QON_VM_REAL_EXACT2(Remainder, signed_remainder(x, y), QON_VM_CLASSIFIED)
