// NearbyInt: x rounded to an integer in the rounding direction in force (to nearest, ties to
// even, inside the kernels' floating-point guard) without raising inexact; exact, one kernel
// serves every accuracy.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(NearbyInt, std::nearbyint(x))
