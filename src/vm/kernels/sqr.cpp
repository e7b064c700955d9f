// Sqr: r = a*a, correctly rounded; one kernel serves every accuracy. Overflow of a finite argument is reported.
#include <cmath>

#include "vm/kernels/element_loop.hpp"

namespace {
struct Sqr {
    template <int A, class T>
    static int eval(T x, T &r) {
        r = x * x;
        return std::isinf(r) && std::isfinite(x) ? PAX_STATUS_OVERFLOW : PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, Sqr, float, float, Sqr)
QON_VM_LOOP_KERNELS_SHARED(U, d, Sqr, double, double, Sqr)
