// Asinpi: arcsin(x)/pi on [-1, 1]. HA divides the wider type's arcsine by pi in that type and
// rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element type (within
// 3 ulp). |x| > 1 is a domain error; tiny results from normal arguments underflow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Asinpi, std::asin(w) / pi<T>, QON_VM_UNDERFLOWS)
