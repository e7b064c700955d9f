// SinCos: sin x (first result) and cos x (second) from one reduction by pi/2 and one pair of
// polynomials of trig.hpp:
//   double HA: paired reduction, the fitted pairs of the HA sine (7 and 6 coefficients); LA:
//   plain reduction, 8 and 7 terms;
//   EP: two constants, 4 and 4 terms (truncation 2^-28); single HA: the double EP evaluation in
//   double lanes, rounded once; single LA and EP: 4 and 4 terms in float lanes with three float
//   constants.
// Lanes with |x| > 2^20 (and, paired, within 2^-30 of a multiple of pi/2), infinities and NaN
// go to the scalar routine: sinl and cosl rounded once; +-inf is a domain error (two NaN).
// sin(+-0) = +-0: HA subtracts a negated low part that is +0 there, the others select x at zero.
#include <cmath>

#include "vm/kernels/trig.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::vm::trig;

// `wide`: single precision in double lanes, rounded once (otherwise in float lanes).
template <class E, int sin_terms, int cos_terms, bool paired, int parts = 3, bool wide = true>
struct SinCos {
    using T = E;
    static constexpr int results = 2;
    static constexpr int groups = 4;

    template <class D>
    static void in_lanes(D x, D &sin_x, D &cos_x) {
        const Reduced<D> a = reduce<paired, parts>(x);
        if constexpr (paired) {
            Split<D> s, c;
            half_pi_pairs(a, s, c);
            sin_cos(a, s.value(), c.value(), sin_x, cos_x);
        } else {
            const D z = a.r * a.r;
            sin_cos(a, sin_pair<sin_terms, paired>(a, z).value(), cos_pair<cos_terms, paired>(a, z).value(), sin_x,
                    cos_x);
            sin_x = select(eq(x, splat<D>(0.0)), x, sin_x);
        }
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
        if constexpr (paired) return mask_or(beyond(x), near_multiple(x));
        else return beyond(x);
    }
    static int scalar(T x, T &sin_x, T &cos_x) {
        qon::vm::trig::scalar(x, cos_x, [](long double w) { return cosl(w); });
        return qon::vm::trig::scalar(x, sin_x, [](long double w) { return sinl(w); });
    }
};

using SinCosLA = SinCos<double, 8, 7, false>;
using SinCosHA = SinCos<double, 0, 0, true>;
using SinCosEP = SinCos<double, 4, 4, false, 2>;
using SinCosSingleHA = SinCos<float, 4, 4, false, 2>;
using SinCosSingle = SinCos<float, 4, 4, false, 3, false>;

}  // namespace

QON_VM_VECTOR_KERNELS_U2(d, SinCos, double, SinCosLA, SinCosHA, SinCosEP)
QON_VM_VECTOR_KERNELS_U2(s, SinCos, float, SinCosSingle, SinCosSingleHA, SinCosSingle)
