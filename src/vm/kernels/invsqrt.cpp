// InvSqrt: 1/sqrt(x).
//   double LA and EP: y = 1/s with s the correctly rounded square root; two roundings, s's
//       relative error (up to 2^-53) can cost a whole ulp where 1/s falls just below a power of
//       two: within 1.5 ulp, measured 1.49.
//   double HA: y refined by one Newton step y + (y/2)*e with e = 1 - x*y^2 computed exactly to
//       first order (p = x*y and its fma error p_lo, e = (1 - p*y) - p_lo*y, no overflow for
//       any positive finite x since p ~ sqrt(x)): within 0.5 + 2^-50 ulp, measured 0.50.
//   float HA: the plain quotient in double lanes, rounded once to float: within 0.5 + 2^-28 ulp.
//   float LA and EP: the plain quotient in float lanes: within 1.5 ulp, measured 1.49.
// Lanes with x <= 0 go to the scalar routine: 1/sqrt(+-0) = +-inf is a singularity (2), x < 0
// (including -inf) a domain error (1, NaN). 1/sqrt(+inf) = +0 and NaN gives NaN unreported,
// from the vector path (at +inf the step would give NaN, so y = +0 is kept there).
#include <cmath>

#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;

template <class E, bool widened, bool refined>
struct InvSqrtMethod {
    using T = E;
    static constexpr int groups = 2;

    template <class V>
    static V inverse_root(V x) {
        const V one = splat<V>(Elem<V>(1));
        const V y = one / sqrt(x);
        if constexpr (!refined) {
            return y;
        } else {
            const V p = x * y;
            const V p_lo = mul_sub(x, y, p);
            const V e = neg_mul_add(p_lo, y, neg_mul_add(p, y, one));
            return select(lt(x, splat<V>(Elem<V>(INFINITY))), mul_add(splat<V>(Elem<V>(0.5)) * y, e, y), y);
        }
    }
    template <class V>
    static V eval(V x) {
        if constexpr (widened) return in_double(x, [](auto d) { return inverse_root(d); });
        else return inverse_root(x);
    }
    template <bool tail, class V>
    static Mask<V> special(V x) { return le(x, splat<V>(T(0))); }
    static int scalar(T x, T &r) {
        r = 1 / std::sqrt(x);
        if (x == 0) return PAX_STATUS_SING;
        return x < 0 ? PAX_STATUS_ERRDOM : PAX_STATUS_OK;
    }
};

using DoubleHA = InvSqrtMethod<double, false, true>;
using Double = InvSqrtMethod<double, false, false>;
using FloatHA = InvSqrtMethod<float, true, false>;
using Float = InvSqrtMethod<float, false, false>;

}  // namespace

QON_VM_VECTOR_KERNELS(d, InvSqrt, double, Double, DoubleHA, Double)
QON_VM_VECTOR_KERNELS(s, InvSqrt, float, Float, FloatHA, Float)
