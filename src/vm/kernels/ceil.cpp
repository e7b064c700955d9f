// Ceil: the least integer not below x, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Ceil, std::ceil(x))
