// Cbrt: cube root. HA evaluates the libm function of the next wider type and rounds once
// (within 0.5 ulp plus 2^-11 ulp); LA and EP call the float function for float (within 1 ulp)
// but the long double one for double, as glibc's double cube root reaches 3 ulp.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Cbrt, std::cbrt(w), QON_VM_WIDE_DOUBLE)
