// Atan2pi: atan2(a, b)/pi in [-1, 1], with the signed zeros and infinities of atan2 scaled
// (atan2pi(+-0, -0) = +-1). HA divides the wider type's atan2 by pi in that type and rounds
// once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element type (within 3 ulp).
// A tiny result from normal arguments underflows.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM2(Atan2pi, std::atan2(u, v) / pi<T>, QON_VM_UNDERFLOWS)
