// MaxMag: the argument of larger magnitude, fmax(a, b) when |a| = |b|; a NaN argument yields
// the other one. Exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(MaxMag,
                   std::fabs(x) > std::fabs(y) ? x : std::fabs(y) > std::fabs(x) ? y : std::fmax(x, y))
