// Remainder: the IEEE remainder a - n b with n = a/b rounded to the nearest integer, ties to
// even; exact (libm's remainder), one kernel serves every accuracy. b = +-0 and a = +-inf are
// domain errors (NaN); remainder(a, +-inf) = a.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Remainder, std::remainder(x, y), QON_VM_CLASSIFIED)
