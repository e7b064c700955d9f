// Sqrt: square root, correctly rounded by the hardware instruction; one kernel serves every
// accuracy. sqrt(-0) = -0; x < 0 (and -inf) is a domain error.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT(Sqrt, std::sqrt(x), QON_VM_CLASSIFIED)
