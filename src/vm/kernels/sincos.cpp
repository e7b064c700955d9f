// SinCos: sin x (first result) and cos x (second) from one reduction by pi/2 and one pair of
// polynomials of trig.hpp:
//   double HA: paired reduction, the fitted pairs of the HA sine (6 and 6 coefficients); LA:
//   plain reduction, the same S and C;
//   EP: two constants, r Q(z) and 1 + z C(z) with Q and C of 4 coefficients fitted on
//   |r| <= pi/4 (2^-28.3 and 2^-31.8 relative); single HA: the double EP evaluation in double
//   lanes, rounded once; single LA and EP: the same form in float lanes with three float
//   constants, fitted on |r| <= pi/4 + 2^-4 (2^-26.5 and 2^-30.4 rounded to float).
// Measured (1e7 arguments per region): double HA 0.794 ulp, LA 1.51 ulp, EP 2.8e7 ulp (28.3
// correct bits); single HA 0.551 ulp, LA and EP 2.18 ulp.
// Lanes with |x| > 2^20 (and, paired, within 2^-30 of a multiple of pi/2), infinities and NaN
// go to the scalar routine: sinl and cosl rounded once; +-inf is a domain error (two NaN).
// sin(+-0) = +-0: HA subtracts a negated low part that is +0 there, r Q(z) keeps the sign of
// r = x - 0 (the constants of pi/2 are positive), LA selects x at zero.
#include <cmath>

#include "vm/kernels/trig.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::vm::trig;
namespace poly = qon::vm::trig_poly;

// sin r and cos r of the paired reduction (double HA): the fitted pairs of trig.hpp.
struct FittedPairs {
    static constexpr bool paired = true;
    static constexpr bool keeps_zero_sign = true;
    template <class D>
    static void eval(const Reduced<D> &a, D &s, D &c) {
        Split<D> sp, cp;
        half_pi_pairs(a, sp, cp);
        s = sp.value();
        c = cp.value();
    }
};
// sin r and cos r of a plain reduction by the fitted S and C of trig.hpp.
struct PlainPairs {
    static constexpr bool paired = false;
    static constexpr bool keeps_zero_sign = false;
    template <class D>
    static void eval(const Reduced<D> &a, D &s, D &c) {
        const D z = a.r * a.r;
        s = sin_pair<false>(a, z).value();
        c = cos_pair<false>(a, z).value();
    }
};

// sin r = r Q(z) and cos r = 1 + z C(z) of a plain reduction, Q and C fitted on |r| <= pi/4
// (trig_poly.hpp), by Horner's scheme; r Q(z) keeps the sign of r = -0.
template <const auto &Q, const auto &C>
struct QuarterPairs {
    static constexpr bool paired = false;
    static constexpr bool keeps_zero_sign = true;
    template <class D>
    static void eval(const Reduced<D> &a, D &s, D &c) {
        const D z = a.r * a.r;
        s = a.r * horner_of<Q>(z);
        c = mul_add(z, horner_of<C>(z), splat<D>(1));
    }
};

// `wide`: single precision in double lanes, rounded once (otherwise in float lanes).
template <class E, class Pairs, int parts = 3, bool wide = true>
struct SinCos : MainLoopTest<Pairs::paired> {
    using T = E;
    static constexpr int results = 2;
    // Two for the long paired method and in double lanes (2-4% faster), four otherwise.
    static constexpr int groups = Pairs::paired || (wide && std::is_same_v<E, float>) ? 2 : 4;

    template <class D>
    static void in_lanes(D x, D &sin_x, D &cos_x) {
        const Reduced<D> a = reduce<Pairs::paired, parts>(x);
        D s, c;
        Pairs::eval(a, s, c);
        sin_cos(a, s, c, sin_x, cos_x);
        if constexpr (!Pairs::keeps_zero_sign) sin_x = select(eq(x, splat<D>(0.0)), x, sin_x);
    }
    template <class V>
    static void eval(V x, V &sin_x, V &cos_x) {
        if constexpr (std::is_same_v<V, VF> && wide) {
            VD s_lo, c_lo, s_hi, c_hi;
            in_lanes(to_double_lo(x), s_lo, c_lo);
            in_lanes(to_double_hi(x), s_hi, c_hi);
            sin_x = to_float(s_lo, s_hi);
            cos_x = to_float(c_lo, c_hi);
        } else {
            in_lanes(x, sin_x, cos_x);
        }
    }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        if constexpr (Pairs::paired) return mask_or(beyond(x), near_multiple(x));
        else return beyond(x);
    }
    static int scalar(T x, T &sin_x, T &cos_x) {
        qon::vm::trig::scalar(x, cos_x, [](long double w) { return cosl(w); });
        return qon::vm::trig::scalar(x, sin_x, [](long double w) { return sinl(w); });
    }
};

using SinCosLA = SinCos<double, PlainPairs>;
using SinCosHA = SinCos<double, FittedPairs>;
using SinCosEP = SinCos<double, QuarterPairs<poly::sine_quarter_4, poly::cosine_quarter_4>, 2>;
using SinCosSingleHA = SinCos<float, QuarterPairs<poly::sine_quarter_4, poly::cosine_quarter_4>, 2>;
using SinCosSingle = SinCos<float, QuarterPairs<poly::sine_quarter_4f, poly::cosine_quarter_4f>, 3, false>;

}  // namespace

QON_VM_VECTOR_KERNELS_U2(d, SinCos, double, SinCosLA, SinCosHA, SinCosEP)
QON_VM_VECTOR_KERNELS_U2(s, SinCos, float, SinCosSingle, SinCosSingleHA, SinCosSingle)
