// Rint: x rounded to an integer in the rounding direction in force (to nearest, ties to even,
// inside the kernels' floating-point guard); exact, one kernel serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct RintF {
    template <class T>
    static T f(T x) {
        return std::rint(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Rint, qon::vm::elementary::Exact<RintF>)
