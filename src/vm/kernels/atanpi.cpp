// Atanpi: arctan(x)/pi. HA divides the wider type's arctangent by pi in that type and rounds
// once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element type (within 3 ulp).
// Tiny results from normal arguments underflow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_LIBM(Atanpi, std::atan(w) / pi<T>, QON_VM_UNDERFLOWS)
