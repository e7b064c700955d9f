// Fdim: the positive difference, a - b when a > b and +0 otherwise; correctly rounded, one
// kernel serves every accuracy. An infinite difference of finite arguments is an overflow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_EXACT2(Fdim, std::fdim(x, y), QON_VM_CLASSIFIED)
