// Fmax: the larger of a and b; a NaN argument yields the other one (NaN only when both are);
// of two equal arguments (such as +0 and -0) the first; exact, one kernel serves every
// accuracy, never reports.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Fmax, std::isnan(x) ? y : std::isnan(y) ? x : x >= y ? x : y)
