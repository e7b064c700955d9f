// Complex inverse hyperbolic tangent, atanh z = (ln(1 + z) - ln(1 - z))/2, with its cuts on the real axis beyond +-1 and poles at +-1.
// Evaluated by the C library's function on the argument widened (c in double, z in long
// double), each component rounded once: within 0.5 ulp plus a small fraction of an ulp of that
// component (0.501 ulp measured over 10^6 arguments). The double function alone reaches 4.8 ulp
// componentwise, too far for LA, so one kernel serves every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Atanh : qon::vm::cx::PolesAtRealUnits {
    template <class C>
    static C f(C x) {
        return std::atanh(x);
    }
};
using Routine = qon::vm::cx::Unary<Atanh, false>;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(U, Atanh, Routine)
