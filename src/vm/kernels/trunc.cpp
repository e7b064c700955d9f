// Trunc: x rounded toward zero to an integer, exact; one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct TruncF {
    template <class T>
    static T f(T x) {
        return std::trunc(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Trunc, qon::vm::elementary::Exact<TruncF>)
