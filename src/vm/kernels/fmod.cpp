// Fmod: a - n b with n = trunc(a/b), the sign of a; exact (libm's fmod), one kernel serves
// every accuracy. b = +-0 and a = +-inf are domain errors (NaN); fmod(a, +-inf) = a.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Fmod, std::fmod(x, y), QON_VM_CLASSIFIED)
