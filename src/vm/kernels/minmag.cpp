// MinMag: the argument of smaller magnitude, fmin(a, b) when |a| = |b|; a NaN argument yields
// the other one. Exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

namespace {
struct MinMag {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        T ax = std::fabs(x), ay = std::fabs(y);
        r = ax < ay ? x : ay < ax ? y : std::fmin(x, y);
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, MinMag, MinMag)
