// Abs: |x|, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct AbsF {
    template <class T>
    static T f(T x) {
        return std::fabs(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Abs, qon::vm::elementary::Exact<AbsF>)
