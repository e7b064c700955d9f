// Mul: a * b, correctly rounded; one kernel serves every accuracy. 0 * inf is a domain error,
// an infinite product of finite arguments an overflow, a subnormal or zero product of normal
// arguments an underflow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Mul, x * y, QON_VM_UNDERFLOWS)
