// MinMag: the argument of smaller magnitude, fmin(a, b) when |a| = |b|; a NaN argument yields
// the other one. Exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(MinMag,
                   std::fabs(x) < std::fabs(y) ? x : std::fabs(y) < std::fabs(x) ? y : std::fmin(x, y))
