// Pow2o3: x^(2/3) as the square of the cube root of x, defined for every real x; it neither
// overflows nor underflows. HA works in the next wider type and rounds once (within 0.5 ulp
// plus 2^-10 ulp); so do LA and EP for double (glibc's double cube root reaches 3 ulp, 6.5
// once squared), while for float they work in float (twice the root's ulp plus half an ulp).
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Pow2o3, std::cbrt(w) * std::cbrt(w), QON_VM_WIDE_DOUBLE)
