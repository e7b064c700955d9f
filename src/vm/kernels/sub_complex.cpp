// Complex subtraction, (a + ib) - (c + id) = (a - c) + i(b - d): each component correctly rounded.
#include "vm/kernels/complex_sum.hpp"

namespace {
using Sub = qon::vm::cx::Sum<-1>;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(B, Sub, Sub)
