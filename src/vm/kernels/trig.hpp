// Shared pieces of the vector sine, cosine and tangent kernels (Sin, Cos, SinCos, Tan).
//
// Reduction (Cody-Waite, three parts): n = round(x*2/pi) through the 1.5*2^52 shifter, whose
// low bits give the quadrant q = n mod 4; r = x - n*P1 - n*P2 - n*P3 with P1 and P2 of 33 bits
// (n*P1, n*P2 exact for |n| < 2^20) and P3 the next 53 bits of pi/2. The paired form keeps the
// rounding error of x - n*P1 - n*P2 (an exact two-sum) and of the last step in lo, so r + lo is
// the reduced argument to about 2^-100 absolute for |x| <= 2^20, the range of the vector path.
//
// Polynomials on |r| <= pi/4 + 2^-40, z = r^2, Taylor coefficients (-1)^k/(2k + 1)! and
// (-1)^k/(2k)! rounded to double (no fit): sin r = r + r*z*S(z) with S of `terms` coefficients
// (truncation (pi/4)^(2 terms + 2)/(2 terms + 3)! relative), cos r = 1 - z/2 + z^2*C(z).
// Both are returned as unevaluated pairs (hi, lo): sin as (r, r*z*S + lo*(1 - z/2)) and cos as
// w = 1 - z/2 with the rounding errors of z, z/2 and w and the term -r*lo carried in the low
// part, so that a final hi + lo rounds once, and the tangent can divide the pairs.
#pragma once

#include <qon/qon_pax.h>

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "vm/kernels/simd.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace qon::vm::trig {

using namespace qon::simd;

constexpr std::uint64_t two_over_pi = 0x3FE45F306DC9C883;  // 2/pi
constexpr std::uint64_t shifter = 0x4338000000000000;      // 1.5*2^52
constexpr std::uint64_t pio2_1 = 0x3FF921FB54400000;       // pi/2, first 33 bits
constexpr std::uint64_t pio2_2 = 0x3DD0B4611A600000;       // next 33 bits
constexpr std::uint64_t pio2_3 = 0x3BA3198A2E037073;       // next 53 bits
constexpr double vector_limit = 1048576.0;                  // 2^20: larger |x| to the scalar routine

constexpr double factorial(int k) { return k <= 1 ? 1.0 : k * factorial(k - 1); }

// Taylor coefficient of degree d of sin (d odd) or cos (d even), the sign of z^(d/2) included:
// (-1)^(d/2) / d!, a compile-time constant.
template <int d>
inline constexpr double coefficient = ((d / 2) % 2 == 0 ? 1.0 : -1.0) / factorial(d);

// Horner over the coefficients of degrees first, first + 2, ..., first + 2(terms - 1) in z.
template <int terms, int first, class V>
V taylor(V z) {
    if constexpr (terms == 1) return splat<V>(coefficient<first>);
    else return mul_add(taylor<terms - 1, first + 2>(z), z, splat<V>(coefficient<first>));
}

template <class V>
struct Reduced {
    V r, lo;
    Ints<V> q;  // quadrant in the low two bits
};

// The reduced argument of |x| <= 2^20; lo is zero unless paired.
template <bool paired, class V>
Reduced<V> reduce(V x) {
    const V y = mul_add(x, constant<V>(two_over_pi), constant<V>(shifter));
    const V n = y - constant<V>(shifter);
    const V r1 = neg_mul_add(n, constant<V>(pio2_1), x);  // exact
    if constexpr (!paired) {
        const V r2 = neg_mul_add(n, constant<V>(pio2_2), r1);
        return {neg_mul_add(n, constant<V>(pio2_3), r2), splat<V>(0.0), bits(y)};
    } else {
        const V w = n * constant<V>(pio2_2);  // exact
        const V r2 = r1 - w;
        const V b = r2 - r1;
        const V e2 = (r1 - (r2 - b)) - (w + b);  // two-sum error of r1 - w
        const V p3 = n * constant<V>(pio2_3);
        const V r = r2 - p3;
        const V lo = ((r2 - r) - p3) + e2;
        return {r, lo, bits(y)};
    }
}

template <class V>
struct Pair {
    V hi, lo;
    V value() const { return hi + lo; }
};

// In the paired form the leading term -r^3/6 is carried exactly enough: r^3 = r*z with the
// fma errors of z and of r*z, -1/6 as two doubles, r + (-r^3/6) as an exact fast two-sum
// (|r^3/6| < |r|), so the last rounding of hi + lo is the only one of weight 2^-53.
constexpr std::uint64_t minus_sixth_hi = 0xBFC5555555555555;
constexpr std::uint64_t minus_sixth_lo = 0xBC65555555555555;

template <int terms, bool paired, class V>
Pair<V> sin_pair(const Reduced<V> &a, V z) {
    const V lo_term = a.lo * neg_mul_add(splat<V>(0.5), z, splat<V>(1.0));
    const V r3 = a.r * z;
    if constexpr (!paired) {
        return {a.r, mul_add(r3, taylor<terms, 3>(z), lo_term)};
    } else {
        const V r3_err = mul_add(a.r, mul_sub(a.r, a.r, z), mul_sub(a.r, z, r3));
        const V p = r3 * constant<V>(minus_sixth_hi);
        const V p_err = mul_sub(r3, constant<V>(minus_sixth_hi), p);
        const V small = mul_add(r3_err, constant<V>(minus_sixth_hi), mul_add(r3, constant<V>(minus_sixth_lo), p_err));
        const V rest = mul_add(r3 * z, taylor<terms - 1, 5>(z), small + lo_term);
        const V hi = a.r + p;
        return {hi, ((a.r - hi) + p) + rest};
    }
}

template <int terms, class V>
Pair<V> cos_pair(const Reduced<V> &a, V z) {
    const V one = splat<V>(1.0);
    const V hz = splat<V>(0.5) * z;
    const V w = one - hz;
    const V z_err = mul_sub(a.r, a.r, z);  // r^2 - z, exact
    const V rounding = neg_mul_add(splat<V>(0.5), z_err, (one - w) - hz);
    const V tail = mul_add(z * z, taylor<terms, 4>(z), neg_mul_add(a.r, a.lo, rounding));
    return {w, tail};
}

// Lanes whose quadrant has bit `b` set, as a mask.
template <int b, class V>
Mask<V> quadrant_bit(Ints<V> q) {
    return int_gt(q & splat_q<V>(1u << b), splat_q<V>(0));
}
// v with its sign flipped where bit 1 of q is set.
template <class V>
V flip_by(V v, Ints<V> q) {
    return from_bits(bits(v) ^ shl<63>(shr<1>(q) & splat_q<V>(1)));
}

// sin x and cos x from the pairs: quadrant 0: (s, c), 1: (c, -s), 2: (-s, -c), 3: (-c, s).
template <class V>
void sin_cos(const Reduced<V> &a, V s, V c, V &sin_x, V &cos_x) {
    const Mask<V> odd = quadrant_bit<0, V>(a.q);
    sin_x = flip_by(select(odd, c, s), a.q);
    cos_x = flip_by(select(odd, s, c), a.q + splat_q<V>(1));
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

// The method of a one-result function: Kind::combine(x, a, s, c) picks the result from the
// reduced argument and the pairs; Kind::f is its long-double function. Single precision runs
// the same in double lanes and rounds once.
template <class Kind, class E, int sin_terms, int cos_terms, bool paired>
struct Method {
    using T = E;
    static constexpr int groups = std::is_same_v<E, double> ? 2 : 1;

    template <class D>
    static D in_lanes(D x) {
        const Reduced<D> a = reduce<paired>(x);
        const D z = a.r * a.r;
        return Kind::combine(x, a, sin_pair<sin_terms, paired>(a, z), cos_pair<cos_terms>(a, z));
    }
    template <class V>
    static V eval(V x) {
        if constexpr (std::is_same_v<Elem<V>, double>) return in_lanes(x);
        else return in_double(x, [](auto d) { return in_lanes(d); });
    }
    template <bool tail, class V>
    static Mask<V> special(V x) { return beyond(x); }
    static int scalar(T x, T &r) {
        return trig::scalar(x, r, [](long double w) { return Kind::f(w); });
    }
};

// Terms per slot: double LA plain reduction, 8 and 7 terms (truncation 2^-59); HA paired, 9 and
// 8 (2^-62); EP plain, 5 and 4 (2^-33); single, every slot, the double EP terms in double lanes.
template <class Kind>
using DoubleLA = Method<Kind, double, 8, 7, false>;
template <class Kind>
using DoubleHA = Method<Kind, double, 9, 8, true>;
template <class Kind>
using DoubleEP = Method<Kind, double, 5, 4, false>;
template <class Kind>
using Single = Method<Kind, float, 5, 4, false>;

}  // namespace qon::vm::trig

// The six kernels of each element type of a one-result trigonometric function.
#define QON_VM_TRIG_KERNELS(F, Kind)                                                                        \
    QON_VM_VECTOR_KERNELS(d, F, double, qon::vm::trig::DoubleLA<Kind>, qon::vm::trig::DoubleHA<Kind>,       \
                          qon::vm::trig::DoubleEP<Kind>)                                                    \
    QON_VM_VECTOR_KERNELS(s, F, float, qon::vm::trig::Single<Kind>, qon::vm::trig::Single<Kind>,            \
                          qon::vm::trig::Single<Kind>)
