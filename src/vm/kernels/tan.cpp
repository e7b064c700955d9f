// Tan: tangent, double and single precision, on the reductions by pi/2 of trig.hpp.
// Double HA and LA: tan x = s/c in even quadrants and -c/s in odd ones, from the pairs (hi, lo)
// of sin r and cos r (the fitted S and C of trig.hpp; HA carries the reduction's low part, LA
// subtracts three constants); t0 = (n_hi + n_lo)*(1/d) is corrected by the residual of the pairs,
// t = t0 + ((n_hi - t0*d_hi) + (n_lo - t0*d_lo))/d, the first difference in one fused
// rounding, so the quotient adds little beyond the final rounding.
// Double EP and single precision: a plain reduction and tan r = r N(z) / D(z), z = r^2, a
// rational fit in relative error (trig_poly.hpp, made by tools/fit_trig.cpp), so that the odd
// quadrants' -cot r = -D(z) / (r N(z)) has the same error; one division per vector, numerator
// and denominator swapped by the quadrant's low bit, which also flips the sign.
//   double EP: two constants, N and D of 3 (fit 2^-35.4); single HA and LA: the same in double
//   lanes, rounded once; single EP in float lanes with three positive float constants, N and D
//   of 2 (2^-16.7).
//   Measured (1e7 arguments per region, |x| < 1, 10, 1e6): double HA 0.645 ulp, LA 2.43 ulp,
//   EP 2.0e5 ulp (2^-35.4 relative); single HA and LA 0.500 ulp, EP 162 ulp (2^-16.7).
// There is no exact pole in floating point: finite x never reports. Lanes with |x| > 2^20,
// infinities and NaN go to the scalar routine: tanl rounded once, +-inf a domain error (NaN).
// tan(+-0) = +-0: the rational forms keep the sign of r = x - 0 (every constant of pi/2 they
// subtract is positive), the pairs select x at zero.
#include <cmath>

#include "vm/kernels/trig.hpp"

namespace {

using namespace qon::vm::trig;
namespace poly = qon::vm::trig_poly;

long double tangent(long double w) { return tanl(w); }

struct TanKind {
    template <class V>
    static V combine(V x, const Reduced<V> &a, Pair<V> s, Pair<V> c) {
        const Mask<V> odd = quadrant_bit<0, V>(a.q);
        const Pair<V> num{select(odd, c.hi, s.hi), select(odd, c.lo, s.lo)};
        const Pair<V> den{select(odd, s.hi, c.hi), select(odd, s.lo, c.lo)};
        const V inv = splat<V>(1.0) / den.value();
        const V t0 = num.value() * inv;
        const V e = neg_mul_add(t0, den.hi, num.hi) + neg_mul_add(t0, den.lo, num.lo);
        const V t = mul_add(e, inv, t0);
        return select(eq(x, splat<V>(0.0)), x, select(odd, splat<V>(0.0) - t, t));
    }
    static long double f(long double w) { return tangent(w); }
};

// tan x = r N(z) / D(z) or -D(z) / (r N(z)) on a plain reduction with `parts` constants of pi/2;
// `wide` runs single precision in double lanes, rounded once.
template <class E, const auto &N, const auto &D, int parts, bool wide = false>
struct Quotient {
    using T = E;
    static constexpr int groups = wide ? 2 : 4;  // in double lanes two, measured 4-9% faster
    static constexpr double limit = vector_limit;

    template <class W>
    static W in_lanes(W x) {
        const Reduced<W> a = reduce<false, parts>(x);
        const W z = a.r * a.r;
        const W num = a.r * fitted<N>(z), den = fitted<D>(z);
        // The quadrant's low bit alone, at the top: the swap's mask and the sign.
        const Ints<W> odd = shl<sizeof(Elem<W>) * 8 - 1>(a.q);
        const Mask<W> swap = sign_lanes(odd);
        return from_bits(bits(select(swap, den, num) / select(swap, num, den)) ^ odd);
    }
    template <class V>
    static V eval(V x) {
        return lanes_of<wide>(x, [](auto d) { return in_lanes(d); });
    }
    template <bool tail, class V>
    static Mask<V> special(V x) { return beyond(x); }
    static int scalar(T x, T &r) { return qon::vm::trig::scalar(x, r, tangent); }
};

using TanHA = PairsByHalfPi<TanKind, true>;
using TanLA = PairsByHalfPi<TanKind, false>;
using TanEP = Quotient<double, poly::tangent_3_3_num, poly::tangent_3_3_den, 2>;
using TanSingleHA = Quotient<float, poly::tangent_3_3_num, poly::tangent_3_3_den, 2, true>;
using TanSingleEP = Quotient<float, poly::tangent_2_2f_num, poly::tangent_2_2f_den, 3>;

}  // namespace

QON_VM_VECTOR_KERNELS(d, Tan, double, TanLA, TanHA, TanEP)
QON_VM_VECTOR_KERNELS(s, Tan, float, TanSingleHA, TanSingleHA, TanSingleEP)
