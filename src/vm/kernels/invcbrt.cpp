// InvCbrt: 1/cbrt(x). HA takes the cube root and the quotient in the next wider type and rounds
// once (within 0.5 ulp plus 2^-11 ulp); LA and EP do the same for double (glibc's double cube
// root reaches 3 ulp, too much with the quotient's rounding) and work in float for float (the
// root's error plus half an ulp). 1/cbrt(+-0) = +-inf is a singularity.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct InvCbrtF {
    template <class W>
    static W f(W w) {
        return 1 / std::cbrt(w);
    }
    template <class T>
    static bool pole(T x) {
        return x == 0;
    }
    static constexpr bool wide_double = true;
};
}  // namespace

QON_VM_REAL_KERNELS(U, InvCbrt, Libm<InvCbrtF>)
