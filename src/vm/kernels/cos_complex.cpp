// Complex cosine, cos(x + iy) = cos x cosh y - i sin x sinh y.
// HA: the C library's function on the argument widened (c in double, z in long double), each
// component rounded once, so within 0.5 ulp plus a small fraction of an ulp of that component.
// LA and EP of z: the double function (at most 3.7 ulp componentwise over 10^6 arguments); an
// element with a zero, subnormal or non-finite component is evaluated as HA, so every slot gives
// the same special values and statuses. LA and EP of c share the HA kernel.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Cos : qon::vm::cx::NoPole {
    template <class C>
    static C f(C x) {
        return std::cos(x);
    }
};
using Routine = qon::vm::cx::Unary<Cos, true>;
}  // namespace

QON_VM_COMPLEX_KERNELS(U, Cos, Routine)
