// Acospi: arccos(x)/pi on [-1, 1]. HA divides the wider type's arccosine by pi in that
// type and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element type
// (arccosine, pi and quotient each within an ulp: within 3 ulp). |x| > 1 is a domain error.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Acospi, std::acos(w) / pi<T>)
