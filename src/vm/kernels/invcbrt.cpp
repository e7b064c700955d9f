// InvCbrt: 1/cbrt(x). HA takes the cube root and the quotient in the next wider type and rounds
// once (within 0.5 ulp plus 2^-11 ulp); LA and EP do the same for double (glibc's double cube
// root reaches 3 ulp, too much with the quotient's rounding) and work in float for float (the
// root's error plus half an ulp). 1/cbrt(+-0) = +-inf is a singularity.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(InvCbrt, 1 / std::cbrt(w), QON_VM_POLE(x == 0) QON_VM_WIDE_DOUBLE)
