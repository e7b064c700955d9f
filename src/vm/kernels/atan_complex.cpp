// Complex arc tangent, atan z = -i atanh(iz), with its cuts on the imaginary axis beyond +-i and poles at +-i.
// Evaluated by the C library's function on the argument widened (c in double, z in long
// double), each component rounded once: within 0.5 ulp plus a small fraction of an ulp of that
// component (0.501 ulp measured over 10^6 arguments). The double function alone reaches 4.8 ulp
// componentwise, too far for LA, so one kernel serves every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Atan : qon::vm::cx::PolesAtImaginaryUnits {
    template <class C>
    static C f(C x) {
        return std::atan(x);
    }
};
using Routine = qon::vm::cx::Unary<Atan, false>;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(U, Atan, Routine)
