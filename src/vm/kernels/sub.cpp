// Sub: a - b, correctly rounded; one kernel serves every accuracy. inf - inf is a domain
// error, an infinite difference of finite arguments an overflow; subnormal differences are
// exact and not reported.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Sub, x - y, QON_VM_CLASSIFIED)
