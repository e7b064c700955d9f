// Fmax: the larger of a and b; a NaN argument yields the other one (NaN only when both are);
// exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Fmax, std::fmax(x, y))
