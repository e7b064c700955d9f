// Log2: binary logarithm.
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
// x < 0 is a domain error, x = +-0 a singularity (-inf).
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Log2, std::log2(w), QON_VM_POLE(x == 0))
