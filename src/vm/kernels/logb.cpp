// Logb: the binary exponent of x as a floating-point integer (subnormals included, so
// logb(smallest subnormal) is -1074 in double); exact, one kernel serves every accuracy.
// logb(+-0) = -inf is a singularity; logb(+-inf) = +inf is not reported.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Logb, std::logb(x), QON_VM_POLE(x == 0))
