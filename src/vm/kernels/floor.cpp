// Floor: the greatest integer not above x, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Floor, std::floor(x))
