// Tan: tangent, double and single precision, on the reduction and pairs of trig.hpp.
// tan x = s/c in even quadrants and -c/s in odd ones, from the pairs (hi, lo) of sin r and
// cos r. HA: t0 = (n_hi + n_lo)*(1/d) is corrected by the residual of the pairs,
// t = t0 + ((n_hi - t0*d_hi) + (n_lo - t0*d_lo))/d, the first difference in one fused
// rounding, so the quotient itself adds little beyond the final rounding; EP, and single HA in
// double lanes, divide the rounded values once (in LA that costs up to 3.3 ulp).
//   double HA: paired reduction, the sine's -r^3/6 carried, 8 and 7 Taylor terms; LA: plain
//   reduction, 8 and 7 terms;
//   EP: two constants, 4 and 4 terms (truncation 2^-28); single HA: the double EP evaluation in
//   double lanes, rounded once; single LA: the same in float lanes with three float constants;
//   single EP: float lanes, 2 and 2 terms (truncation 2^-14) and one division.
//   Measured (3e6 arguments): double HA 0.59 ulp, LA 2.64, EP 2.4e7 ulp (28 bits); single HA
//   0.54 ulp, LA 2.76 ulp.
// There is no exact pole in floating point: finite x never reports. Lanes with |x| > 2^20,
// infinities and NaN go to the scalar routine: tanl rounded once, +-inf a domain error (NaN).
// tan(+-0) = +-0 is kept by selecting x at zero.
#include <cmath>

#include "vm/kernels/trig.hpp"

namespace {

using namespace qon::vm::trig;

struct TanKind {
    template <bool quick, class V>
    static V combine(V x, const Reduced<V> &a, Pair<V> s, Pair<V> c) {
        const Mask<V> odd = quadrant_bit<0, V>(a.q);
        V t;
        if constexpr (!quick) {
            const Pair<V> num{select(odd, c.hi, s.hi), select(odd, c.lo, s.lo)};
            const Pair<V> den{select(odd, s.hi, c.hi), select(odd, s.lo, c.lo)};
            const V inv = splat<V>(1.0) / den.value();
            const V t0 = num.value() * inv;
            const V e = neg_mul_add(t0, den.hi, num.hi) + neg_mul_add(t0, den.lo, num.lo);
            t = mul_add(e, inv, t0);
        } else {
            const V s_value = s.value(), c_value = c.value();
            t = select(odd, c_value, s_value) / select(odd, s_value, c_value);
        }
        const V signed_t = select(odd, splat<V>(0.0) - t, t);
        return select(eq(x, splat<V>(0.0)), x, signed_t);
    }
    static long double f(long double w) { return tanl(w); }
};

}  // namespace

QON_VM_TRIG_KERNELS(Tan, TanKind)
