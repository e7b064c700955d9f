// InvSqrt: 1/sqrt(x). HA takes the quotient in the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP divide in the element type (two roundings: within 2 ulp).
// 1/sqrt(+-0) = +-inf is a singularity, x < 0 a domain error.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(InvSqrt, 1 / std::sqrt(w), QON_VM_POLE(x == 0))
