// ExpInt1: the exponential integral E1(x) = integral from x to inf of e^-t / t dt, x > 0; one
// routine for every accuracy. In extended precision, rounded once: up to 1 the power series
// -gamma - ln x - sum_k (-x)^k / (k k!) (cancellation at most a factor 4); beyond, e^-x times
// the continued fraction 1/(x+1 - 1/(x+3 - 4/(x+5 - 9/(x+7 - ...)))) by the modified Lentz
// method to 2^-66. Within 0.5 + 2^-8 ulp. E1(+inf) = +0; E1(+-0) = +inf with status 2
// (singularity); x < 0 gives NaN with status 1 (domain: E1 is complex there). Underflow
// (status 4) from 701.8 (double) or 98.0 (float) on, where the result is subnormal.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

LD expint1(LD x) {
    if (x <= 1) {
        LD term = 1, sum = 0;
        for (int k = 1; k < 40; ++k) {
            term *= -x / k;
            sum += term / k;
            if (std::fabs(term) <= std::fabs(sum) * 0x1p-70L) break;
        }
        return -euler_gamma - std::log(x) - sum;
    }
    constexpr LD tiny = 0x1p-8000L;
    LD b = x + 1, c = 1 / tiny, d = 1 / b, h = d;
    for (int i = 1; i < 2000; ++i) {
        LD a = -LD(i) * i;
        b += 2;
        d = 1 / (a * d + b);
        c = b + a / c;
        LD delta = c * d;
        h *= delta;
        if (std::fabs(delta - 1) <= 0x1p-66L) break;
    }
    return h * std::exp(-x);
}

struct ExpInt1 {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        if (x == 0) return give(infinity<T>, r, PAX_STATUS_SING);
        if (x < 0) return give(quiet_nan<T>, r, PAX_STATUS_ERRDOM);
        if (std::isinf(x)) return give(T(0), r, PAX_STATUS_OK);
        if (x > 800) return give(T(0), r, PAX_STATUS_UNDERFLOW);
        return finish(x, expint1(x), r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, ExpInt1, float, float, ExpInt1)
QON_VM_LOOP_KERNELS_SHARED(U, d, ExpInt1, double, double, ExpInt1)
