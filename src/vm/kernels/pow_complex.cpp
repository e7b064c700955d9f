// Complex power of two arrays, r = a^b; the method, error bound and special cases are in
// complex_pow.hpp. One kernel serves every accuracy.
#include "vm/kernels/complex_pow.hpp"

QON_VM_COMPLEX_KERNELS_SHARED(B, Pow, qon::vm::cx::PowRoutine)
