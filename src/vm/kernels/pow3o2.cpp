// Pow3o2: x^(3/2) = x sqrt(x) for x >= 0, with the special values of pow(x, 1.5): pow(-0, 1.5)
// = +0, pow(-inf, 1.5) = +inf, and x < 0 finite a domain error. HA multiplies in the next
// wider type and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element
// type (a correctly rounded root and one product: within 1.25 ulp). Overflow and underflow
// are reported.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Pow3o2, std::isinf(w) ? std::fabs(w) : w * std::sqrt(w), QON_VM_UNDERFLOWS)
