// Acosh: inverse hyperbolic cosine on [1, inf].
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
// x < 1 is a domain error.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Acosh, std::acosh(w))
