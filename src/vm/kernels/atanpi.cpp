// Atanpi: arctan(x)/pi. HA divides the wider type's arctangent by pi in that type and rounds
// once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element type (within 3 ulp).
// Tiny results from normal arguments underflow.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct AtanpiF {
    template <class W>
    static W f(W w) {
        return std::atan(w) / pi<W>;
    }
    static constexpr bool underflows = true;
};
}  // namespace

QON_VM_REAL_KERNELS(U, Atanpi, Libm<AtanpiF>)
