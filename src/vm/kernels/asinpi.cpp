// Asinpi: arcsin(x)/pi on [-1, 1]. HA divides the wider type's arcsine by pi in that type and
// rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the element type (within
// 3 ulp). |x| > 1 is a domain error; tiny results from normal arguments underflow.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct AsinpiF {
    template <class W>
    static W f(W w) {
        return std::asin(w) / pi<W>;
    }
    static constexpr bool underflows = true;
};
}  // namespace

QON_VM_REAL_KERNELS(U, Asinpi, Libm<AsinpiF>)
