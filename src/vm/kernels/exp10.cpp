// Exp10: 10^x.
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
// Overflow above the range, underflow where the result is subnormal or zero.
#include "vm/kernels/elementary.hpp"

namespace {
float exp10_of(float w) { return ::exp10f(w); }
double exp10_of(double w) { return ::exp10(w); }
long double exp10_of(long double w) { return ::exp10l(w); }
}  // namespace

QON_VM_REAL_LIBM(Exp10, exp10_of(w), QON_VM_UNDERFLOWS)
