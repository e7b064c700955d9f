// Pow2o3: x^(2/3) as the square of the cube root of x, defined for every real x; it neither
// overflows nor underflows. HA works in the next wider type and rounds once (within 0.5 ulp
// plus 2^-10 ulp); so do LA and EP for double (glibc's double cube root reaches 3 ulp, 6.5
// once squared), while for float they work in float (twice the root's ulp plus half an ulp).
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct Pow2o3F {
    template <class W>
    static W f(W w) {
        return std::cbrt(w) * std::cbrt(w);
    }
    static constexpr bool wide_double = true;
};
}  // namespace

QON_VM_REAL_KERNELS(U, Pow2o3, Libm<Pow2o3F>)
