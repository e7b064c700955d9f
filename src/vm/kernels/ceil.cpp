// Ceil: the least integer not below x, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct CeilF {
    template <class T>
    static T f(T x) {
        return std::ceil(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Ceil, qon::vm::elementary::Exact<CeilF>)
