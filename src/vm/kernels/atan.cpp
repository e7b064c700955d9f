// Atan: arctangent.
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Atan, std::atan(w))
