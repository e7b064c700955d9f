// Abs: |x|, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Abs, std::fabs(x))
