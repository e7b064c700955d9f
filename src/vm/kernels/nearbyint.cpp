// NearbyInt: x rounded to an integer in the rounding direction in force (to nearest, ties to
// even, inside the kernels' floating-point guard) without raising inexact; exact, one kernel
// serves every accuracy.
#include "vm/kernels/elementary.hpp"

namespace {
struct NearbyIntF {
    template <class T>
    static T f(T x) {
        return std::nearbyint(x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, NearbyInt, qon::vm::elementary::Exact<NearbyIntF>)
