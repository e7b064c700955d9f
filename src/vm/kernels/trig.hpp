// Shared pieces of the vector sine, cosine, sine-and-cosine and tangent kernels.
//
// Both reductions are Cody-Waite with pi/2 = C1 + C2 + C3 (three 53-bit doubles, or three
// 24-bit floats). The first step r1 = x - N*C1 is exact: it is one fused multiply-add, and
// for |x| >= 1 the difference is a multiple of ulp(C1) below 2, which fits the significand.
//
// By pi (Sin and Cos in every slot but double HA): m = round(x/pi - o), o = 0 for the sine and
// 1/2 for the cosine, N = 2m + 2o, r = x - N*C1 - N*C2 [- N*C3] in [-pi/2, pi/2]; then
// sin x = (-1)^m sin r and cos x = (-1)^(m+1) sin r, so one odd polynomial serves both:
// sin r = r + r z S(z), z = r^2, S a polynomial fitted to (sin r - r)/(r z) on |r| <= pi/2
// (trig_poly.hpp, made by tools/fit_trig.cpp).
//
// By pi/2, paired (double HA, and SinCos and Tan in every slot): n = round(2x/pi), quadrant
// q = n mod 4, r = r1 - n*C2 rounded, lo = (r1 - r) - n*C2 its error: r1 - r is exact
// (Sterbenz) when |r1| >= 2^-30 since |n*C2| < 2^-33; lanes with |x| > 1 and a smaller |r1|
// (x within 2^-30 of a multiple of pi/2, never met by chance) go to the scalar routine, so
// |r| > 2^-31 and the omitted n*C3 < 2^-88 is below 2^-57 |r|.
// sin r and cos r on |r| <= pi/4 + 2^-40 as unevaluated pairs (hi, lo): sin as (r, r z S(z) +
// lo (1 - z/2)), whose low part is under 0.12 |r| so its rounding errors cost at most 0.3 ulp;
// cos as w = 1 - z/2 with the rounding errors of z and w and the term -r lo carried in the low
// part with z^2 C(z), so that hi + lo rounds once and the tangent can divide the pairs. The
// double HA sine and cosine use S and C fitted on |r| <= pi/4 (7 coefficients each, errors
// 2^-57 and 2^-59 relative as rounded); the pairs of the tangent and the sine-and-cosine use
// Taylor coefficients (the tangent carries -1/6 exactly).
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
    static constexpr std::uint64_t pio2_1 = 0x3FF921FB54442D18;       // pi/2 rounded
    static constexpr std::uint64_t pio2_2 = 0x3C91A62633145C07;       // pi/2 - C1 rounded
    static constexpr std::uint64_t pio2_3 = 0xB91F1976B7ED8FBC;       // pi/2 - C1 - C2 rounded
    static constexpr std::uint64_t sign = 0x8000000000000000;
};
template <>
struct Constants<float> {
    static constexpr std::uint32_t inv_pi = 0x3EA2F983;
    static constexpr std::uint32_t two_over_pi = 0x3F22F983;
    static constexpr std::uint32_t shifter = 0x4B400000;  // 1.5*2^23
    static constexpr std::uint32_t pio2_1 = 0x3FC90FDB;
    static constexpr std::uint32_t pio2_2 = 0xB33BBD2E;
    static constexpr std::uint32_t pio2_3 = 0xA6F72CED;
    static constexpr std::uint32_t sign = 0x80000000;
};

// Larger |x| goes to the scalar routine: 2^20 keeps |N| below 2^21 in both types.
constexpr double vector_limit = 1048576.0;

template <class V>
using C = Constants<Elem<V>>;

constexpr double factorial(int d) { return d <= 1 ? 1.0 : d * factorial(d - 1); }

// Taylor coefficient of degree d of sin (d odd) or cos (d even), the sign of z^(d/2) included.
template <int d>
inline constexpr double coefficient = ((d / 2) % 2 == 0 ? 1.0 : -1.0) / factorial(d);

// The polynomial in z over the Taylor coefficients of degrees first, first + 2, ...,
// first + 2(terms - 1) (the tangent and the sine-and-cosine pairs).
template <int terms, int first, class V>
V taylor(V z) {
    return even_odd<terms>(z, [](auto i) { return splat<V>(static_cast<Elem<V>>(coefficient<first + 2 * i>)); });
}

// A fitted polynomial of trig_poly.hpp (highest degree first) at z.
template <const auto &c, class V>
V fitted(V z) {
    constexpr int n = std::size(c);
    return even_odd<n>(z, [](auto i) { return splat<V>(static_cast<Elem<V>>(c[n - 1 - i])); });
}

template <class V>
struct Reduced {
    V r, lo;
    Ints<V> q;  // by pi: m in the low bit; by pi/2: the quadrant in the low two bits
};

// ---- by pi -----------------------------------------------------------------------------------

// sin x (cosine false) or cos x (cosine true) for |x| <= 2^20, with `parts` constants of pi/2
// and the fitted S of trig_poly.hpp; `product` evaluates r (1 + z S(z)) for single precision in
// double lanes.
template <bool cosine, const auto &S, int parts, bool product = false, class V>
V sine_by_pi(V x) {
    using E = Elem<V>;
    const V shifter = constant<V>(C<V>::shifter);
    const V y = cosine ? mul_add(x, constant<V>(C<V>::inv_pi), splat<V>(E(-0.5))) + shifter
                       : mul_add(x, constant<V>(C<V>::inv_pi), shifter);
    const V m = y - shifter;
    const V n = cosine ? mul_add(m, splat<V>(E(2)), splat<V>(E(1))) : m + m;
    V r = neg_mul_add(n, constant<V>(C<V>::pio2_1), x);
    r = neg_mul_add(n, constant<V>(C<V>::pio2_2), r);
    if constexpr (parts == 3) r = neg_mul_add(n, constant<V>(C<V>::pio2_3), r);
    const V z = r * r;
    // (-1)^m for the sine, (-1)^(m+1) for the cosine, from the low bit of m in y.
    const Ints<V> flip = cosine ? shl<sizeof(E) * 8 - 1>(bits(y)) ^ splat_q<V>(Constants<E>::sign)
                                : shl<sizeof(E) * 8 - 1>(bits(y));
    const V one = splat<V>(E(1));
    if constexpr (product) {
        // r (1 + z S(z)): one more rounding, which the wide evaluation of a float result does
        // not see; it keeps the sign of a zero r, and 1 + 2^-30 rounds to the float 1.
        return from_bits(bits(r * mul_add(z, fitted<S>(z), one)) ^ flip);
    } else {
        // The polynomial may overshoot 1 near r = +-pi/2 by its error; the clamp keeps
        // |sin r| <= 1 (cos 0 = 1 exactly) at the cost of two comparisons.
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
    return mask_and(gt(abs(x), splat<V>(E(1))), lt(abs(r1), splat<V>(E(0x1p-30))));
}

template <class V>
struct Pair {
    V hi, lo;
    V value() const { return hi + lo; }
};

// With `carried` the leading term -r^3/6 is carried exactly enough as well: r^3 = r*z with the
// fma errors of z and of r*z, -1/6 as two doubles, r + (-r^3/6) as an exact fast two-sum
// (|r^3/6| < |r|), for the tangent, whose division would otherwise double the error of the
// sine's low part.
constexpr std::uint64_t minus_sixth_hi = 0xBFC5555555555555;
constexpr std::uint64_t minus_sixth_lo = 0xBC65555555555555;

template <int terms, bool paired, bool carried = false, class V>
Pair<V> sin_pair(const Reduced<V> &a, V z) {
    const V rz = a.r * z;
    if constexpr (!paired) return {a.r, rz * taylor<terms, 3>(z)};
    const V lo_term = neg_mul_add(a.lo, splat<V>(0.5) * z, a.lo);
    if constexpr (!carried) {
        return {a.r, mul_add(rz, taylor<terms, 3>(z), lo_term)};
    } else {
        const V rz_err = mul_add(a.r, mul_sub(a.r, a.r, z), mul_sub(a.r, z, rz));
        const V p = rz * constant<V>(minus_sixth_hi);
        const V p_err = mul_sub(rz, constant<V>(minus_sixth_hi), p);
        const V small = mul_add(rz_err, constant<V>(minus_sixth_hi), mul_add(rz, constant<V>(minus_sixth_lo), p_err));
        const V rest = mul_add(rz * z, taylor<terms - 1, 5>(z), small + lo_term);
        const V hi = a.r + p;
        return {hi, ((a.r - hi) + p) + rest};
    }
}

template <int terms, bool paired, class V>
Pair<V> cos_pair(const Reduced<V> &a, V z) {
    const V one = splat<V>(Elem<V>(1));
    if constexpr (!paired) {
        return {mul_add(z, taylor<terms + 1, 2>(z), one), splat<V>(Elem<V>(0))};
    } else {
        const V hz = splat<V>(0.5) * z;
        const V w = one - hz;
        const V z_err = mul_sub(a.r, a.r, z);  // r^2 - z, exact
        const V rounding = neg_mul_add(splat<V>(0.5), z_err, (one - w) - hz);
        const V tail = mul_add(z * z, taylor<terms, 4>(z), neg_mul_add(a.r, a.lo, rounding));
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

// sin x and cos x from the pairs: quadrant 0: (s, c), 1: (c, -s), 2: (-s, -c), 3: (-c, s).
template <class V>
void sin_cos(const Reduced<V> &a, V s, V c, V &sin_x, V &cos_x) {
    const Mask<V> odd = quadrant_bit<0, V>(a.q);
    sin_x = flip_by(select(odd, c, s), a.q);
    cos_x = flip_by(select(odd, s, c), a.q + splat_q<V>(1));
}

// Double HA sine or cosine by pi/2 with one polynomial per lane: lanes that need sin r
// compute r + (r z S(z) + lo (1 - z/2)), lanes that need cos r compute w + (z^2 C(z) + e),
// w = 1 - z/2 and e the rounding errors of z and w and -r lo, the coefficients of S or C
// selected per lane (the fitted S and C of trig_poly.hpp).
template <bool cosine, class V>
V sine_by_half_pi(V x) {
    const Reduced<V> a = reduce<true, 3>(x);
    const Ints<V> q = cosine ? a.q + splat_q<V>(1) : a.q;  // cos x = sin(x + pi/2)
    const Mask<V> odd = quadrant_bit<0, V>(q);
    const V one = splat<V>(1.0), half = splat<V>(0.5);
    const V z = a.r * a.r, hz = half * z, z2 = z * z;
    const V w = one - hz;
    // The low part is formed negated, -(e + tail) with e = cos_e or sin_e, and subtracted: at
    // x = -0 it is +0 and r - (+0) keeps the sign of the zero, with no select on x.
    const V minus_cos_e = mul_add(a.r, a.lo, mul_add(half, mul_sub(a.r, a.r, z), hz - (one - w)));
    const V minus_sin_e = mul_sub(a.lo, hz, a.lo);
    constexpr auto &S = trig_poly::sine_half_pi_7;
    constexpr auto &C = trig_poly::cosine_half_pi_7;
    constexpr int n = std::size(S);
    static_assert(std::size(C) == n);
    const V p = even_odd<n>(z, [&](auto i) { return select(odd, splat<V>(C[n - 1 - i]), splat<V>(S[n - 1 - i])); });
    const V v = select(odd, w, a.r) - neg_mul_add(select(odd, z2, a.r * z), p, select(odd, minus_cos_e, minus_sin_e));
    return flip_by(v, q);
}

// Lanes beyond the vector range, infinities and NaN go to the scalar routine.
template <class V>
Mask<V> beyond(V x) {
    return gt_or_nan(abs(x), splat<V>(Elem<V>(vector_limit)));
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
template <class Kind, class E, const auto &S, int parts, bool wide = false>
struct ByPi {
    using T = E;
    static constexpr int groups = std::is_same_v<E, double> || wide ? 4 : 2;

    template <class V>
    static V eval(V x) {
        return lanes_of<wide>(x, [](auto d) { return sine_by_pi<Kind::cosine, S, parts, wide>(d); });
    }
    template <bool tail, class V>
    static Mask<V> special(V x) { return beyond(x); }
    static int scalar(T x, T &r) {
        return trig::scalar(x, r, [](long double w) { return Kind::f(w); });
    }
};

// Double HA sine or cosine (Kind::cosine) by pi/2 with one polynomial per lane.
template <class Kind>
struct BlendedHA {
    using T = double;
    static constexpr int groups = 4;

    template <class V>
    static V eval(V x) { return sine_by_half_pi<Kind::cosine>(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) { return mask_or(beyond(x), near_multiple(x)); }
    static int scalar(T x, T &r) {
        return trig::scalar(x, r, [](long double w) { return Kind::f(w); });
    }
};

// A one-result function by pi/2: Kind::combine<quick>(x, a, s, c) picks the result from the
// reduced argument and the pairs (`quick`: the slot's accuracy allows the shorter form);
// Kind::carried asks for the carried sine pair in HA. Single precision runs in double lanes,
// rounded once, with `wide`, otherwise in float lanes.
template <class Kind, class E, int sin_terms, int cos_terms, bool paired, int parts = 3, bool wide = true,
          bool quick = false>
struct ByHalfPi {
    static constexpr bool carried = paired && Kind::carried;
    using T = E;
    static constexpr int groups = 4;

    template <class D>
    static D in_lanes(D x) {
        const Reduced<D> a = reduce<paired, parts>(x);
        const D z = a.r * a.r;
        return Kind::template combine<quick>(x, a, sin_pair<sin_terms, paired, carried>(a, z),
                                             cos_pair<cos_terms, paired>(a, z));
    }
    template <class V>
    static V eval(V x) {
        return lanes_of<wide>(x, [](auto d) { return in_lanes(d); });
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

// Terms by pi/2 (|r| <= pi/4): double HA paired, S 8 and C 7 (truncation 2^-63); LA 8 and 7;
// EP and single HA (in double lanes) 4 and 4, two constants (2^-28); single LA and EP in float
// lanes, 4 and 4 with three float constants.
template <class Kind>
using HalfPiHA = ByHalfPi<Kind, double, 8, 7, true>;
template <class Kind>
using HalfPiLA = ByHalfPi<Kind, double, 8, 7, false>;
template <class Kind>
using HalfPiEP = ByHalfPi<Kind, double, 4, 4, false, 2, true, true>;
template <class Kind>
using HalfPiSingleHA = ByHalfPi<Kind, float, 4, 4, false, 2, true, true>;
template <class Kind>
using HalfPiSingle = ByHalfPi<Kind, float, 4, 4, false, 3, false>;

// Polynomials by pi (|r| <= pi/2; fit errors relative to sin r in trig_poly.hpp): double LA 8
// coefficients (2^-54.6 as rounded), EP 5 with two constants (2^-33); single HA in double lanes
// 5 with two double constants, LA 5 (2^-25.7 rounded to float) and EP 3 (2^-17.7) in float.
template <class Kind>
using ByPiLA = ByPi<Kind, double, trig_poly::sine_pi_8, 3>;
template <class Kind>
using ByPiEP = ByPi<Kind, double, trig_poly::sine_pi_5, 2>;
template <class Kind>
using ByPiSingleHA = ByPi<Kind, float, trig_poly::sine_pi_5, 2, true>;
template <class Kind>
using ByPiSingleLA = ByPi<Kind, float, trig_poly::sine_pi_5f, 3>;
template <class Kind>
using ByPiSingleEP = ByPi<Kind, float, trig_poly::sine_pi_3f, 3>;

}  // namespace qon::vm::trig

// The six kernels of the sine or the cosine.
#define QON_VM_SINE_KERNELS(F, Kind)                                                                        \
    QON_VM_VECTOR_KERNELS(d, F, double, qon::vm::trig::ByPiLA<Kind>, qon::vm::trig::BlendedHA<Kind>,        \
                          qon::vm::trig::ByPiEP<Kind>)                                                      \
    QON_VM_VECTOR_KERNELS(s, F, float, qon::vm::trig::ByPiSingleLA<Kind>, qon::vm::trig::ByPiSingleHA<Kind>, \
                          qon::vm::trig::ByPiSingleEP<Kind>)

// The six kernels of a one-result function by pi/2 alone (the tangent).
#define QON_VM_TRIG_KERNELS(F, Kind)                                                                        \
    QON_VM_VECTOR_KERNELS(d, F, double, qon::vm::trig::HalfPiLA<Kind>, qon::vm::trig::HalfPiHA<Kind>,       \
                          qon::vm::trig::HalfPiEP<Kind>)                                                    \
    QON_VM_VECTOR_KERNELS(s, F, float, qon::vm::trig::HalfPiSingle<Kind>, qon::vm::trig::HalfPiSingleHA<Kind>, \
                          qon::vm::trig::HalfPiSingle<Kind>)
