// Complex hyperbolic tangent.
// Evaluated by the C library's function on the argument widened (c in double, z in long
// double), each component rounded once: within 0.5 ulp plus a small fraction of an ulp of that
// component. The double function alone reaches 4.6 ulp componentwise, too far for LA, so one
// kernel serves every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Tanh : qon::vm::cx::NoPole {
    template <class C>
    static C f(C x) {
        return std::tanh(x);
    }
};
using Routine = qon::vm::cx::Unary<Tanh, false>;
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(U, Tanh, Routine)
