// Trunc: x rounded toward zero to an integer, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Trunc, std::trunc(x))
