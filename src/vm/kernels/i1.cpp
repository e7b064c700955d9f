// I1: the modified Bessel function of the first kind of order 1 (odd); one routine for every
// accuracy. Power series below 30 and the asymptotic series beyond, in extended precision
// (higher_functions.hpp), rounded once: within 0.5 + 2^-8 ulp. I1(+-0) = +-0, I1(+-inf) = +-inf.
// Overflow (status 3) beyond |x| = 713.98 (double) or 91.9 (float); underflow (status 4) for
// normal x below 2^-1021 (double) or 2^-125 (float), where x/2 is subnormal.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct I1 {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x) || x == 0) return give(x, r, PAX_STATUS_OK);
        T s = std::fabs(x);
        if (s > 720) return give(std::copysign(infinity<T>, x), r, std::isinf(s) ? PAX_STATUS_OK : PAX_STATUS_OVERFLOW);
        LD v = bessel_i(1, s);
        return finish(x, x < 0 ? -v : v, r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, I1, float, float, I1)
QON_VM_LOOP_KERNELS_SHARED(U, d, I1, double, double, I1)
