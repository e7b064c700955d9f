// Frac: the fractional part x - trunc(x), with the sign of x (a zero of that sign for integers
// and infinities); exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Frac, std::isinf(x) ? std::copysign(T(0), x) : std::copysign(x - std::trunc(x), x))
