// Inv: 1/x, correctly rounded; one kernel serves every accuracy. 1/(+-0) = +-inf is a
// singularity; a subnormal or zero result from a normal x (|x| near the top of the range) is
// an underflow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Inv, 1 / x, QON_VM_POLE(x == 0) QON_VM_UNDERFLOWS)
