// CopySign: the magnitude of a with the sign of b (NaN signs included); exact, one kernel
// serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(CopySign, std::copysign(x, y))
