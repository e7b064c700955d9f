// Complex division, (a + ib) / (c + id) = ((ac + bd) + i(bc - ad)) / (c^2 + d^2); the method and
// its error bounds are in complex_product.hpp. A zero divisor is a singularity (the result is
// infinite) unless the dividend is zero too, which is a domain error (NaN).
#include "vm/kernels/complex_product.hpp"

namespace {
using Div = qon::vm::cx::Quotient;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(B, Div, Div)
