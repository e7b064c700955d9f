// Pow: a^b with the special values of C99 Annex F (pow(1, y) = pow(x, 0) = 1 even for NaN,
// pow(-1, +-inf) = 1, ...). HA evaluates the wider type's pow and rounds once (within 0.5 ulp
// plus 2^-11 ulp); LA and EP call the element type's (glibc: within 1 ulp). Statuses: a
// negative finite a with a non-integer finite b is a domain error, +-0 to a negative finite
// power a singularity; overflow and underflow as usual.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_KERNELS(B, Pow, qon::vm::elementary::PowRoutine)
