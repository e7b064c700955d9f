// Exp10: 10^x.
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
// Overflow above the range, underflow where the result is subnormal or zero.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct Exp10F {
    static float f(float w) { return ::exp10f(w); }
    static double f(double w) { return ::exp10(w); }
    static long double f(long double w) { return ::exp10l(w); }
    static constexpr bool underflows = true;
};
}  // namespace

QON_VM_REAL_KERNELS(U, Exp10, Libm<Exp10F>)
