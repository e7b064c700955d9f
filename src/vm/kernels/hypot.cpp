// Hypot: sqrt(a^2 + b^2) without intermediate overflow or underflow; hypot(+-inf, NaN) = +inf.
// HA evaluates the wider type's hypot and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and
// EP call the element type's (glibc: within 1 ulp). An infinite result of finite arguments is
// an overflow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM2(Hypot, std::hypot(u, v))
