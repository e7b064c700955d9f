// Round: x rounded to the nearest integer, halfway cases away from zero; exact, one kernel
// serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct RoundF {
    template <class T>
    static T f(T x) {
        return std::round(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Round, qon::vm::elementary::Exact<RoundF>)
