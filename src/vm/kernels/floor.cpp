// Floor: the greatest integer not above x, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct FloorF {
    template <class T>
    static T f(T x) {
        return std::floor(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Floor, qon::vm::elementary::Exact<FloorF>)
