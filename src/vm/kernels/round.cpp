// Round: x rounded to the nearest integer, halfway cases away from zero; exact, one kernel
// serves every accuracy.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Round, std::round(x))
