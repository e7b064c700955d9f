// Shared pieces of the vector sine, cosine, sine-and-cosine and tangent kernels.
//
// Both reductions are Cody-Waite with pi/2 = C1 + C2 + C3 (three 53-bit doubles, or three
// 24-bit floats). The first step r1 = x - N*C1 is exact: it is one fused multiply-add, and
// for |x| >= 1 the difference is a multiple of ulp(C1) below 2, which fits the significand.
//
// By pi (Sin and Cos in every slot but double HA): m = round(x/pi) for the sine, f + 1/2 with
// f = floor(x/pi) for the cosine, r = x - m P1 - m P2 [- m P3] in [-pi/2, pi/2] (in double
// P = 2C, in float three positive parts of pi); then sin x = (-1)^m sin r and
// cos x = (-1)^(f+1) sin r, so one odd polynomial serves both: sin r = r + r z S(z), z = r^2,
// S a polynomial fitted to (sin r - r)/(r z) on |r| <= pi/2, or, in the double EP sine,
// r Q(z) with Q fitted to sin r / r (trig_poly.hpp, made by tools/fit_trig.cpp).
//
// By pi/2, paired (double HA, and SinCos and Tan in every slot): n = round(2x/pi), quadrant
// q = n mod 4, r = r1 - n*C2 rounded, lo = (r1 - r) - n*C2 its error: r1 - r is exact
// (Sterbenz) when |r1| >= 2^-30 since |n*C2| < 2^-33; lanes with |x| > 1 and a smaller |r1|
// (x within 2^-30 of a multiple of pi/2, never met by chance) go to the scalar routine, so
// |r| > 2^-31 and the omitted n*C3 < 2^-88 is below 2^-57 |r|.
// sin r and cos r on |r| <= pi/4 + 2^-40 as unevaluated pairs (hi, lo): sin as (r, r z S(z) +
// lo (1 - z/2)), whose low part is under 0.12 |r| so its rounding errors cost at most 0.3 ulp;
// cos as w = 1 - z/2 with its rounding error and the term -r lo carried in the low part with
// z^2 C(z), so that hi + lo rounds once and the tangent can divide the pairs. The double HA
// sine, cosine and sine-and-cosine use S and C fitted on |r| <= pi/4 (6 and 6 coefficients,
// errors 2^-57.9 and 2^-59.5 relative as rounded); the pairs of the tangent and of the LA
// sine-and-cosine use the same S and C, the tangent's HA sine pair carrying -1/6 exactly and
// the rest of S fitted on its own (5 coefficients, 2^-57.3).
//
// The long HA forms are bound by how long each vector's chain of dependent operations is, which
// limits how many vectors are in flight: they are chosen for short chains (no N = 2m formed, the
// cosine's m from one floor). The short EP forms are bound by the operations they issue: Horner's
// scheme (Estrin's was 15% slower there), no |x| and sign restore, no clamp in the double sine.
#pragma once

#include <qon/qon_pax.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "vm/kernels/simd.hpp"
#include "vm/kernels/trig_poly.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace qon::vm::trig {

using namespace qon::simd;

template <class T>
struct Constants;
template <>
struct Constants<double> {
    static constexpr std::uint64_t inv_pi = 0x3FD45F306DC9C883;       // 1/pi
    static constexpr std::uint64_t two_over_pi = 0x3FE45F306DC9C883;  // 2/pi
    static constexpr std::uint64_t shifter = 0x4338000000000000;      // 1.5*2^52
    static constexpr std::uint64_t shifter_odd = 0x4338000000000001;  // 1.5*2^52 + 1
    static constexpr std::uint64_t pio2_1 = 0x3FF921FB54442D18;       // pi/2 rounded
    static constexpr std::uint64_t pio2_2 = 0x3C91A62633145C07;       // pi/2 - C1 rounded
    static constexpr std::uint64_t pio2_3 = 0xB91F1976B7ED8FBC;       // pi/2 - C1 - C2 rounded
    static constexpr std::uint64_t pi_1 = 0x400921FB54442D18;         // 2 C1
    static constexpr std::uint64_t pi_2 = 0x3CA1A62633145C07;         // 2 C2
    static constexpr std::uint64_t pi_3 = 0xB92F1976B7ED8FBC;         // 2 C3
    static constexpr std::uint64_t sign = 0x8000000000000000;
};
template <>
struct Constants<float> {
    static constexpr std::uint32_t inv_pi = 0x3EA2F983;
    static constexpr std::uint32_t two_over_pi = 0x3F22F983;
    static constexpr std::uint32_t shifter = 0x4B400000;      // 1.5*2^23
    static constexpr std::uint32_t shifter_odd = 0x4B400001;  // 1.5*2^23 + 1
    // pi = P1 + P2 + P3 (+1.9e-22), P1 and P2 rounded down, so that all three are positive
    // and x - m P1 - m P2 - m P3 keeps the sign of x = -0; C = P/2.
    static constexpr std::uint32_t pio2_1 = 0x3FC90FDA;  // 1.57079625
    static constexpr std::uint32_t pio2_2 = 0x33A22168;  // 7.54978942e-08
    static constexpr std::uint32_t pio2_3 = 0x27C234C5;  // 5.39030295e-15
    static constexpr std::uint32_t pi_1 = 0x40490FDA;  // 3.14159250
    static constexpr std::uint32_t pi_2 = 0x34222168;  // 1.50995788e-07
    static constexpr std::uint32_t pi_3 = 0x284234C5;  // 1.07806059e-14
    static constexpr std::uint32_t sign = 0x80000000;
};

// Larger |x| goes to the scalar routine: 2^20 keeps |N| below 2^21 in both types.
constexpr double vector_limit = 1048576.0;

template <class V>
using C = Constants<Elem<V>>;

// A fitted polynomial of trig_poly.hpp (highest degree first) at z.
template <const auto &c, class V>
V fitted(V z) {
    return even_odd<std::size(c)>(z, highest_first<c, V>);
}

template <class V>
struct Reduced {
    V r, lo;
    Ints<V> q;  // by pi: m in the low bit; by pi/2: the quadrant in the low two bits
};

// ---- by pi -----------------------------------------------------------------------------------

// How sine_by_pi forms sin r from z = r^2 and S(z):
//   fused    r + r z S(z) in one rounding, clamped to [-1, 1] (the polynomial may overshoot 1
//            near r = +-pi/2 by its error; the clamp keeps cos 0 = 1 exactly);
//   product  r (1 + z S(z)), for single precision in double lanes: the extra rounding is not
//            seen in the float result, the sign of a zero r is kept, and 1 + 2^-30 rounds to
//            the float 1;
//   free     r S(z) with S fitted to sin r / r, its constant coefficient free (EP sine):
//            by Horner's scheme, the fewest operations; the fit undershoots at the end of the
//            interval, so no clamp is needed (sin(RN(pi/2)) is 1 - 2^-39 in double, about
//            1 - 2^-15 in float);
//   free_clamped  r S(z) as `free`, but the fit overshoots 1 at the end (double by 2^-40, float
//            by 2^-20) and the result is clamped to [-1, 1] (EP cosines: cos 0 is exactly 1).
enum class Form { fused, product, free, free_clamped };

// sin x (cosine false) or cos x (cosine true) for |x| <= 2^20, with `parts` constants of pi/2
// and the fitted S of trig_poly.hpp.
template <bool cosine, const auto &S, int parts, Form form = Form::fused, class V>
V sine_by_pi(V x) {
    using E = Elem<V>;
    // The sine takes m = round(x/pi) from the shifter sum y; the cosine the nearest odd multiple
    // of 1/2, floor(x/pi) + 1/2 (the shorter chain), and the parity of floor(x/pi) + 1 from
    // floor(x/pi) + shifter + 1 off that chain. r = x - m pi with the parts of pi, so no N is
    // formed. sin x = (-1)^m sin r and cos x = (-1)^(floor(x/pi)+1) sin r.
    V y, m;
    if constexpr (cosine) {
        const V f = floor(x * constant<V>(C<V>::inv_pi));
        y = f + constant<V>(C<V>::shifter_odd);
        m = f + splat<V>(E(0.5));
    } else {
        const V shifter = constant<V>(C<V>::shifter);
        y = mul_add(x, constant<V>(C<V>::inv_pi), shifter);
        m = y - shifter;
    }
    V r = neg_mul_add(m, constant<V>(C<V>::pi_1), x);
    r = neg_mul_add(m, constant<V>(C<V>::pi_2), r);
    if constexpr (parts == 3) r = neg_mul_add(m, constant<V>(C<V>::pi_3), r);
    const V z = r * r;
    // The sign flip from the low bit of y.
    const Ints<V> flip = shl<sizeof(E) * 8 - 1>(bits(y));
    const V one = splat<V>(E(1));
    if constexpr (form == Form::product) {
        return from_bits(bits(r * mul_add(z, fitted<S>(z), one)) ^ flip);
    } else if constexpr (form == Form::free || form == Form::free_clamped) {
        V v = r * horner_of<S>(z);
        if constexpr (form == Form::free_clamped) v = max(splat<V>(E(-1)), min(one, v));
        return from_bits(bits(v) ^ flip);
    } else {
        const V s = max(min(mul_add(r * z, fitted<S>(z), r), one), splat<V>(E(-1)));
        const V v = from_bits(bits(s) ^ flip);
        if constexpr (cosine) return v;
        else return select(eq(x, splat<V>(E(0))), x, v);  // sin(-0) = -0
    }
}

// ---- by pi/2 ---------------------------------------------------------------------------------

// n = round(2x/pi) in y's low bits and r1 = x - n*C1, exactly.
template <class V>
void first_step(V x, V &y, V &n, V &r1) {
    const V shifter = constant<V>(C<V>::shifter);
    y = mul_add(x, constant<V>(C<V>::two_over_pi), shifter);
    n = y - shifter;
    r1 = neg_mul_add(n, constant<V>(C<V>::pio2_1), x);
}

// The reduced argument of |x| <= 2^20; lo is zero unless paired; plain forms subtract C3 when
// `parts` is 3.
template <bool paired, int parts, class V>
Reduced<V> reduce(V x) {
    V y, n, r1;
    first_step(x, y, n, r1);
    const V r = neg_mul_add(n, constant<V>(C<V>::pio2_2), r1);
    if constexpr (paired) {
        return {r, neg_mul_add(n, constant<V>(C<V>::pio2_2), r1 - r), bits(y)};
    } else if constexpr (parts == 3) {
        return {neg_mul_add(n, constant<V>(C<V>::pio2_3), r), splat<V>(Elem<V>(0)), bits(y)};
    } else {
        return {r, splat<V>(Elem<V>(0)), bits(y)};
    }
}

// Lanes the paired reduction cannot carry: |x| > 1 within 2^-30 of a multiple of pi/2.
template <class V>
Mask<V> near_multiple(V x) {
    V y, n, r1;
    first_step(x, y, n, r1);
    using E = Elem<V>;
    return mask_and(int_gt(bits(abs(x)), bits(splat<V>(E(1)))),
                    int_gt(bits(splat<V>(E(0x1p-30))), bits(abs(r1))));
}

// The main-loop test of the paired reduction (vector_driver.hpp): the group's largest |x| at
// most 2^20 and its smallest |r1| at least 2^-30 (a group with a smaller one, near a multiple of
// pi/2 or with |x| < 2^-30, is redone vector by vector with near_multiple). The plain reductions
// keep the lane test, which measured faster for them.
struct PairedScreen {
    static constexpr double limit = vector_limit, margin = 0x1p-30;
    template <class V>
    static V screen(V x) {
        V y, n, r1;
        first_step(x, y, n, r1);
        return abs(r1);
    }
};
struct LaneTest {};
template <bool paired>
using MainLoopTest = std::conditional_t<paired, PairedScreen, LaneTest>;

template <class V>
struct Pair {
    V hi, lo;
    V value() const { return hi + lo; }
};

// The sine pair of the tangent. Paired, the leading term -r^3/6 is carried exactly enough as
// well: r^3 = r*z with the fma errors of z and of r*z, -1/6 as two doubles, r + (-r^3/6) as an
// exact fast two-sum (|r^3/6| < |r|), since the division would otherwise double the error of
// the sine's low part.
constexpr std::uint64_t minus_sixth_hi = 0xBFC5555555555555;
constexpr std::uint64_t minus_sixth_lo = 0xBC65555555555555;

template <bool paired, class V>
Pair<V> sin_pair(const Reduced<V> &a, V z) {
    const V rz = a.r * z;
    if constexpr (!paired) {
        return {a.r, rz * fitted<trig_poly::sine_half_pi_6>(z)};
    } else {
        const V lo_term = neg_mul_add(a.lo, splat<V>(0.5) * z, a.lo);
        const V rz_err = mul_add(a.r, mul_sub(a.r, a.r, z), mul_sub(a.r, z, rz));
        const V p = rz * constant<V>(minus_sixth_hi);
        const V p_err = mul_sub(rz, constant<V>(minus_sixth_hi), p);
        const V small = mul_add(rz_err, constant<V>(minus_sixth_hi), mul_add(rz, constant<V>(minus_sixth_lo), p_err));
        const V rest = mul_add(rz * z, fitted<trig_poly::sine_rest_half_pi_5>(z), small + lo_term);
        const V hi = a.r + p;
        return {hi, ((a.r - hi) + p) + rest};
    }
}

template <bool paired, class V>
Pair<V> cos_pair(const Reduced<V> &a, V z) {
    const V one = splat<V>(Elem<V>(1));
    if constexpr (!paired) {
        const V c = mul_add(z, fitted<trig_poly::cosine_half_pi_6>(z), splat<V>(Elem<V>(-0.5)));
        return {mul_add(z, c, one), splat<V>(Elem<V>(0))};
    } else {
        const V hz = splat<V>(0.5) * z;
        const V w = one - hz;
        const V z_err = mul_sub(a.r, a.r, z);  // r^2 - z, exact
        const V rounding = neg_mul_add(splat<V>(0.5), z_err, (one - w) - hz);
        const V tail = mul_add(z * z, fitted<trig_poly::cosine_half_pi_6>(z), neg_mul_add(a.r, a.lo, rounding));
        return {w, tail};
    }
}

// Lanes whose quadrant has bit `b` set, as a mask (the bit shifted to the top).
template <int b, class V>
Mask<V> quadrant_bit(Ints<V> q) {
    return sign_lanes(shl<sizeof(Elem<V>) * 8 - 1 - b>(q));
}
// v with its sign flipped where bit 1 of q is set.
template <class V>
V flip_by(V v, Ints<V> q) {
    return from_bits(bits(v) ^ (shl<sizeof(Elem<V>) * 8 - 2>(q) & splat_q<V>(Constants<Elem<V>>::sign)));
}

// sin x and cos x from the pairs: quadrant 0: (s, c), 1: (c, -s), 2: (-s, -c), 3: (-c, s). The
// sine's sign is bit 1 of the quadrant, the cosine's that bit XOR bit 0 (bit 1 of q + 1).
template <class V>
void sin_cos(const Reduced<V> &a, V s, V c, V &sin_x, V &cos_x) {
    constexpr int top = sizeof(Elem<V>) * 8 - 1;
    const Ints<V> odd = shl<top>(a.q), half = shl<top - 1>(a.q) & splat_q<V>(Constants<Elem<V>>::sign);
    const Mask<V> swap = sign_lanes(odd);
    sin_x = from_bits(bits(select(swap, c, s)) ^ half);
    cos_x = from_bits(bits(select(swap, s, c)) ^ (half ^ odd));
}

// sin r and cos r of a paired reduction (double HA), both in every lane, each as hi - m with m
// the negated low part, so that the difference rounds once: sin r as r - m, m = z (r S(z) -
// lo/2) - lo, i.e. r + r z S(z) + lo (1 - z/2); cos r as w - m, m = r lo - e - z^2 C(z), with
// w = 1 - r^2/2 rounded once from the exact square (h = r/2 is exact) and e its rounding error,
// itself one fused multiply-add from 1 - w (exact, Sterbenz). The low parts are formed negated
// so that at x = -0 the sine is -0 - (+0) = -0 without a select on x. S and C are the fitted
// polynomials of trig_poly.hpp (6 and 6 coefficients, errors 2^-57.9 and 2^-59.5 relative as
// rounded). Both pairs cost fewer multiplications than one polynomial with its coefficients
// chosen per lane, which takes a blend for every coefficient.
template <class V>
struct Split {
    V hi, minus_lo;
    V value() const { return hi - minus_lo; }
};
template <class V>
void half_pi_pairs(const Reduced<V> &a, Split<V> &s, Split<V> &c) {
    const V one = splat<V>(1.0), half = splat<V>(0.5);
    const V z = a.r * a.r, h = half * a.r;
    const V w = neg_mul_add(h, a.r, one);
    const V e = neg_mul_add(h, a.r, one - w);
    const V ps = fitted<trig_poly::sine_half_pi_6>(z), pc = fitted<trig_poly::cosine_half_pi_6>(z);
    s = {a.r, mul_sub(z, neg_mul_add(a.r, ps, half * a.lo), a.lo)};
    c = {w, neg_mul_add(z * z, pc, mul_sub(a.r, a.lo, e))};
}

// Double HA sine or cosine by pi/2: both pairs, the one of the lane's quadrant selected and
// rounded once.
template <bool cosine, class V>
V sine_by_half_pi(V x) {
    const Reduced<V> a = reduce<true, 3>(x);
    const Ints<V> q = cosine ? a.q + splat_q<V>(1) : a.q;  // cos x = sin(x + pi/2)
    const Mask<V> odd = quadrant_bit<0, V>(q);
    Split<V> s, c;
    half_pi_pairs(a, s, c);
    return flip_by(select(odd, c.hi, s.hi) - select(odd, c.minus_lo, s.minus_lo), q);
}

// Lanes beyond the vector range, infinities and NaN go to the scalar routine.
// The comparisons are of the magnitudes' bit patterns as integers (ordered as the values, NaN
// above infinity), which keeps them off the multiply ports.
template <class V>
Mask<V> beyond(V x) {
    return int_gt(bits(abs(x)), bits(splat<V>(Elem<V>(vector_limit))));
}

// The scalar routine of every slot: f in long double (64-bit significand, full-range
// reduction), rounded once: within 0.5 + 2^-11 ulp. +-inf gives NaN, a domain error.
template <class T, class F>
int scalar(T x, T &r, F f) {
    r = static_cast<T>(f(static_cast<long double>(x)));
    return std::isinf(x) ? PAX_STATUS_ERRDOM : PAX_STATUS_OK;
}

// Applies `f` (a template over the lane type) in the element type's own lanes, or, for single
// precision with `wide`, in double lanes rounded once.
template <bool wide, class V, class F>
V lanes_of(V x, F f) {
    if constexpr (wide && std::is_same_v<Elem<V>, float>) return in_double(x, f);
    else return f(x);
}

// Sine or cosine by pi (Kind::cosine), the fitted polynomial S, `parts` constants; `wide` runs
// single precision in double lanes.
template <class Kind, class E, const auto &S, int parts, Form form = Form::fused, bool wide = false>
struct ByPi {
    using T = E;
    static constexpr int groups = 4;
    static constexpr double limit = vector_limit;

    template <class V>
    static V eval(V x) {
        return lanes_of<wide>(x, [](auto d) { return sine_by_pi<Kind::cosine, S, parts, form>(d); });
    }
    template <bool tail, class V>
    static Mask<V> special(V x) { return beyond(x); }
    static int scalar(T x, T &r) {
        return trig::scalar(x, r, [](long double w) { return Kind::f(w); });
    }
};

// Double HA sine or cosine (Kind::cosine) by pi/2 with one polynomial per lane.
template <class Kind>
struct BlendedHA : PairedScreen {
    using T = double;
    static constexpr int groups = 2;  // measured 4-5% faster than four

    template <class V>
    static V eval(V x) { return sine_by_half_pi<Kind::cosine>(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) { return mask_or(beyond(x), near_multiple(x)); }
    static int scalar(T x, T &r) {
        return trig::scalar(x, r, [](long double w) { return Kind::f(w); });
    }
};

// A one-result double function by pi/2 from the pairs of sin r and cos r:
// Kind::combine(x, a, s, c) forms the result; `paired` carries the reduction's
// low part and the sine's leading term (HA), otherwise the reduction subtracts `parts`
// constants and the pairs' low parts are the polynomials' tails.
template <class Kind, bool paired, int parts = 3>
struct PairsByHalfPi : MainLoopTest<paired> {
    using T = double;
    static constexpr int groups = 4;

    template <class V>
    static V eval(V x) {
        const Reduced<V> a = reduce<paired, parts>(x);
        const V z = a.r * a.r;
        return Kind::combine(x, a, sin_pair<paired>(a, z), cos_pair<paired>(a, z));
    }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        if constexpr (paired) return mask_or(beyond(x), near_multiple(x));
        else return beyond(x);
    }
    static int scalar(T x, T &r) {
        return trig::scalar(x, r, [](long double w) { return Kind::f(w); });
    }
};

// Polynomials by pi (|r| <= pi/2; fit errors relative to sin r in trig_poly.hpp): double LA 8
// coefficients (2^-54.6 as rounded); EP two constants, r Q(z) with Q of 5 (2^-27.3), the
// sine's below 1, the cosine's clamped; single HA in double lanes 5 with two double constants,
// LA 5 (2^-25.7 rounded to float) and EP 3 in float: the sine r Q(z) fitted up to
// r = pi/2 + 2^-4, below 1 by 2^-15 (2^-12.8), the cosine the same form up to pi/2 + 0.1, where
// its floor(x/pi) from a rounded product can reach, overshooting at pi/2 and clamped (2^-12.2).
template <class Kind>
using ByPiLA = ByPi<Kind, double, trig_poly::sine_pi_8, 3>;
// The EP forms of either type: the sine r Q(z) below 1, the cosine its own fit clamped.
template <class Kind, class E, const auto &Sine, const auto &Cosine, int parts>
using ByPiFree = std::conditional_t<Kind::cosine, ByPi<Kind, E, Cosine, parts, Form::free_clamped>,
                                    ByPi<Kind, E, Sine, parts, Form::free>>;
template <class Kind>
using ByPiEP = ByPiFree<Kind, double, trig_poly::sine_pi_free_5, trig_poly::cosine_pi_free_5, 2>;
template <class Kind>
using ByPiSingleHA = ByPi<Kind, float, trig_poly::sine_pi_5, 2, Form::product, true>;
template <class Kind>
using ByPiSingleLA = ByPi<Kind, float, trig_poly::sine_pi_5f, 3>;
template <class Kind>
using ByPiSingleEP = ByPiFree<Kind, float, trig_poly::sine_pi_free_3f, trig_poly::cosine_pi_free_3f, 3>;

}  // namespace qon::vm::trig

// The six kernels of the sine or the cosine.
#define QON_VM_SINE_KERNELS(F, Kind)                                                                        \
    QON_VM_VECTOR_KERNELS(d, F, double, qon::vm::trig::ByPiLA<Kind>, qon::vm::trig::BlendedHA<Kind>,        \
                          qon::vm::trig::ByPiEP<Kind>)                                                      \
    QON_VM_VECTOR_KERNELS(s, F, float, qon::vm::trig::ByPiSingleLA<Kind>, qon::vm::trig::ByPiSingleHA<Kind>, \
                          qon::vm::trig::ByPiSingleEP<Kind>)
