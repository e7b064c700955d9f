// Complex multiplication by the conjugate of the second argument, (a + ib)(c - id) = (ac + bd) + i(bc - ad); the method and its error bounds are in complex_product.hpp.
#include "vm/kernels/complex_product.hpp"

namespace {
using MulByConj = qon::vm::cx::Product<true>;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(B, MulByConj, MulByConj)
