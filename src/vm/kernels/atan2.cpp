// Atan2: the angle of the point (b, a), atan2(a, b) in [-pi, pi], with the signed zeros and
// infinities of C99 Annex F (atan2(+-0, -0) = +-pi and so on, never reported). HA evaluates
// the wider type's atan2 and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP call the
// element type's (glibc: within 2 ulp). A tiny angle from normal arguments underflows.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM2(Atan2, std::atan2(u, v), QON_VM_UNDERFLOWS)
