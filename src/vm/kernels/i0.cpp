// I0: the modified Bessel function of the first kind of order 0; one routine for every accuracy.
// Power series below 30 and the asymptotic series beyond, in extended precision
// (higher_functions.hpp), rounded once: within 0.5 + 2^-8 ulp. I0(+-0) = 1, I0(+-inf) = +inf.
// Overflow (status 3) beyond |x| = 713.99 (double) or 91.9 (float).
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct I0 {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        T s = std::fabs(x);
        if (s > 720) return give(infinity<T>, r, std::isinf(s) ? PAX_STATUS_OK : PAX_STATUS_OVERFLOW);
        return finish(x, bessel_i(0, s), r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, I0, float, float, I0)
QON_VM_LOOP_KERNELS_SHARED(U, d, I0, double, double, I0)
