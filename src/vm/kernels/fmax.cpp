// Fmax: the larger of a and b; a NaN argument yields the other one (NaN only when both are);
// exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

namespace {
struct Fmax {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = std::fmax(x, y);
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Fmax, Fmax)
