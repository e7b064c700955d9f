// TGamma: the gamma function. Double HA and LA evaluate tgamma in extended precision and round
// once (within 0.5 + 2^-9 ulp; the C library's double tgamma reaches 5.5 ulp); double EP and
// float take the double tgamma. TGamma(+inf) = +inf; TGamma(+-0) = +-inf and, at the negative
// integers, NaN, both with status 2 (singularity: poles); TGamma(-inf) = NaN with status 1
// (domain). Overflow (status 3) beyond 171.62 (double) or 35.04 (float) and for |x| below
// 1/DBL_MAX or 1/FLT_MAX; underflow (status 4) for negative non-integers below about -177.7
// (double) or -41.9 (float), where the result is subnormal or zero.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct TGamma {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x) || x == infinity<T>) return give(x, r, PAX_STATUS_OK);
        if (x == -infinity<T>) return give(quiet_nan<T>, r, PAX_STATUS_ERRDOM);
        if (x == 0) return give(std::copysign(infinity<T>, x), r, PAX_STATUS_SING);
        if (x < 0 && is_integer(x)) return give(quiet_nan<T>, r, PAX_STATUS_SING);
        return finish(x, extended<A, T>(false) ? tgammal(x) : LD(std::tgamma(double(x))), r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, TGamma, float, float, TGamma)
QON_VM_LOOP_KERNELS(U, d, TGamma, double, double, TGamma)
