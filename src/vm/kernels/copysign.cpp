// CopySign: the magnitude of a with the sign of b (NaN signs included); exact, one kernel
// serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

namespace {
struct CopySign {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = std::copysign(x, y);
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, CopySign, CopySign)
