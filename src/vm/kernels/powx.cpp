// Powx: a^b with one exponent b for every element; the method, accuracy, special values and
// statuses are those of Pow.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_KERNELS(PX, Powx, qon::vm::elementary::PowRoutine)
