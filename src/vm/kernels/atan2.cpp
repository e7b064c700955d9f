// Atan2: the angle of the point (b, a), atan2(a, b) in [-pi, pi], with the signed zeros and
// infinities of C99 Annex F (atan2(+-0, -0) = +-pi and so on, never reported). HA evaluates
// the wider type's atan2 and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP call the
// element type's (glibc: within 2 ulp). A tiny angle from normal arguments underflows.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct Atan2F {
    template <class W>
    static W f(W y, W x) {
        return std::atan2(y, x);
    }
    static constexpr bool underflows = true;
};
}  // namespace

QON_VM_REAL_KERNELS(B, Atan2, Libm2<Atan2F>)
