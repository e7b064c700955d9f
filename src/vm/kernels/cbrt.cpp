// Cbrt: cube root. HA evaluates the libm function of the next wider type and rounds once
// (within 0.5 ulp plus 2^-11 ulp); LA and EP call the float function for float (within 1 ulp)
// but the long double one for double, as glibc's double cube root reaches 3 ulp.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct CbrtF {
    template <class W>
    static W f(W w) {
        return std::cbrt(w);
    }
    static constexpr bool wide_double = true;
};
}  // namespace

QON_VM_REAL_KERNELS(U, Cbrt, Libm<CbrtF>)
