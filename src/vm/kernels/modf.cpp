// Modf: the integer part trunc(x) (first result) and the fractional part x - trunc(x) (second),
// both with the sign of x; +-inf gives +-inf and +-0. Exact, one kernel serves every accuracy,
// never reports.
#include "vm/kernels/elementary.hpp"

namespace {
struct Modf {
    template <int A, class T>
    static int eval(T x, T &whole, T &fraction) {
        fraction = std::modf(x, &whole);
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U2, Modf, Modf)
