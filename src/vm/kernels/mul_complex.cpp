// Complex multiplication, (a + ib)(c + id) = (ac - bd) + i(ad + bc); the method and its error bounds are in complex_product.hpp.
#include "vm/kernels/complex_product.hpp"

namespace {
using Mul = qon::vm::cx::Product<false>;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(B, Mul, Mul)
