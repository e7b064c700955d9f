// The logarithm's method, shared by the Ln kernels (ln.cpp) and the LA and EP inverse error
// function (erfinv.cpp): x = 2^k z with z in [OFF, 2 OFF), OFF ~ 0.7; the bits of z just past
// the offset pick one of N intervals and its short factor c_j ~ 1/z (ln_tables.hpp, read with
// register permutes); r = z c_j - 1 is exact, and ln x = k ln2 - ln c_j + log1p(r) with log1p
// by the fitted polynomials of ln_poly.hpp. Double HA and EP take no table: x = 2^k m and
// ln m = 2 atanh(u/2) with u = 2(m - 1)/(m + 1), HA with u as a pair; nor does single EP, with
// ln m = f Q(f), f = m - 1. log_core<A> takes positive normal lanes; the methods and their
// error bounds are described in ln.cpp.
#pragma once

#include <cstdint>
#include <iterator>

#include "vm/kernels/element_loop.hpp"
#include "vm/kernels/ln_poly.hpp"
#include "vm/kernels/ln_tables.hpp"
#include "vm/kernels/simd.hpp"

namespace qon::vm::ln_core {

using namespace qon::simd;
namespace tab = qon::vm::ln_tables;

// Bit patterns of an element type: 1.0 and the shifter that turns a biased exponent into a
// float (2^52, 2^23), and ln 2 rounded.
template <class T>
struct Format;
template <>
struct Format<double> {
    static constexpr std::uint64_t one = 0x3FF0000000000000;
    static constexpr std::uint64_t shifter = 0x4330000000000000;  // 2^52
    static constexpr int mantissa = 52;
    static constexpr double bias = 4503599627370496.0 + 1023.0;
    static constexpr std::uint64_t ln2 = 0x3FE62E42FEFA39EF;     // 0.6931471805599453
    static constexpr std::uint64_t ln2_hi = 0x3FE62E42FEFA3800;  // L1: ln 2 rounded to a multiple of 2^-42
    static constexpr std::uint64_t ln2_lo = 0x3D2EF35793C76730;  // L2: RN(ln 2 - L1)
};
template <>
struct Format<float> {
    static constexpr std::uint32_t one = 0x3F800000;
    static constexpr std::uint32_t shifter = 0x4B000000;  // 2^23
    static constexpr int mantissa = 23;
    static constexpr float bias = 8388608.0f + 127.0f;
    static constexpr std::uint32_t ln2 = 0x3F317218;     // 0.693147182
    static constexpr std::uint32_t ln2_hi = 0x3F317200;  // L1: ln 2 rounded to a multiple of 2^-16
    static constexpr std::uint32_t ln2_lo = 0x35BFBE8E;  // L2: RN(ln 2 - L1)
};
// The table sets (ln_tables.hpp): the bits of the interval number, the offset OFF of the z
// range, c_j. Set8 (single precision) also gives -ln c_j as hi + lo, hi a multiple of 2^-16 so
// that k L1 + hi is exact in float.
struct Set8 {
    static constexpr int bits = 3;
    static constexpr std::uint32_t offset = 0x3F355555;  // 0.708333313
    static constexpr const float *c = tab::c8_f, *logc_hi = tab::logc8_hi_f, *logc_lo = tab::logc8_lo_f;
};
constexpr std::uint64_t root_half = 0x3FE6A09E667F3BCD;    // sqrt(2)/2
constexpr std::uint32_t root_half_f = 0x3F3504F3;          // sqrt(2)/2 rounded down
struct Set4 {
    static constexpr int bits = 2;
    static constexpr std::uint64_t offset = 0x3FE5555540000000;  // 0.66666662693023682
    static constexpr const double *c = tab::c4;
};

// A polynomial of ln_poly.hpp (highest degree first) by Estrin's scheme, its two lowest
// coefficients added by Horner steps (their roundings are the ones that count).
template <const auto &c, class V>
V polynomial(V r) {
    return estrin<std::size(c), 2>(r, highest_first<c, V>);
}
// The same by its even and odd parts (two Horner chains in r^2), the shorter chain for the double
// HA tail, which is under 1% of the result.
template <const auto &c, class V>
V even_odd_polynomial(V r) {
    return even_odd<std::size(c)>(r, highest_first<c, V>);
}

// x = 2^k z for a positive normal x with z in [OFF, 2 OFF), OFF given by its bits: k (lowered
// by shift) in the lanes' floating-point type, z, and t = the bits of x less those of OFF (the
// bits of z just past OFF are its top mantissa bits).
template <class V>
[[gnu::always_inline]] inline void split(V x, typename Traits<V>::U offset, Elem<V> shift, V &k, V &z, Ints<V> &t) {
    using F = Format<Elem<V>>;
    constexpr int m = F::mantissa;
    const auto ix = bits(x);
    if constexpr (std::is_same_v<Elem<V>, float>) {
        t = ix - splat_q<V>(offset);  // k in the exponent field, as a signed integer
        z = from_bits((t & splat_q<V>((1u << m) - 1)) + splat_q<V>(offset));
        k = int_to_float(sra<m>(t));
    } else {
        t = ix + splat_q<V>(F::one - offset);  // k + 1023 in the exponent field
        const auto e = shr<m>(t);
        // ix - 2^52 k = (t mod 2^52) + OFF
        z = from_bits((t & splat_q<V>((std::uint64_t{1} << m) - 1)) + splat_q<V>(offset));
        k = from_bits(e + splat_q<V>(F::shifter)) - splat<V>(F::bias);
    }
    if (shift != 0) k = k - splat<V>(shift);
}

// The reduction of a positive normal x: k (lowered by shift), r = z*c_j - 1 and the interval j
// (in the low bits of each lane; the bits above are ignored by the lookups).
template <class V>
struct Reduced {
    V k, r;
    Ints<V> j;
};
template <class Set, class V>
[[gnu::always_inline]] inline Reduced<V> reduce(V x, Elem<V> shift) {
    V k, z;
    Ints<V> t;
    split(x, Set::offset, shift, k, z, t);
    const auto j = shr<Format<Elem<V>>::mantissa - Set::bits>(t);
    const V r = mul_sub(z, permute_table<(1 << Set::bits)>(Set::c, j), splat<V>(1));
    return {k, r, j};
}

// The double HA logarithm of x + x_lo (x a positive normal double, |x_lo| <= 2^-53 x; x_lo is
// read only `with_low`) as the pair hi + lo, hi = ln x rounded and |lo| <= ulp(hi)/2; k is
// lowered by `shift`. No table: x = 2^k m, f = m - 1 exact, u = 2f/(2 + f) = f/h, h = 1 + f/2,
// as the pair u + u_lo: u = f (1/h), and u_lo = (f - u - u f/2)/h, whose numerator is one fused
// rounding of the exact residual (f - u is exact, Sterbenz: u/f is within [0.8, 1.2]).
// ln m = u + u_lo + u w R(w), w = u^2. K = k L1 is exact and K + u is split exactly (Fast2Sum:
// |K| >= ln 2 > |u| unless K = 0); k L2, u_lo, x_lo/x (to 7%: 2^-k x_lo (1 - f + f^2), on a
// term below 2^-53 of the result), the low part and the tail u w R(w) (under 0.0034) are added
// to it last, in one more Fast2Sum.
template <bool with_low, class V>
[[gnu::always_inline]] inline void log_pair(V x, V x_lo, double shift, V &hi, V &lo) {
    V k, m;
    Ints<V> t;
    split(x, root_half, shift, k, m, t);
    const V one = splat<V>(1.0);
    const V f = m - one, hf = splat<V>(0.5) * f;
    const V inv = one / mul_add(f, splat<V>(0.5), one);
    const V u = f * inv;
    const V u_lo = neg_mul_add(u, hf, f - u) * inv;
    const V w = u * u;
    V small = mul_add(k, constant<V>(Format<double>::ln2_lo), mul_add(u * w, even_odd_polynomial<ln_poly::atanh_ha>(w), u_lo));
    if constexpr (with_low) {
        const V inverse_scale = from_bits(shl<52>(splat_q<V>(2046) - shr<52>(t)));  // 2^-k
        small = mul_add(x_lo * inverse_scale, mul_add(f, f - one, one), small);
    }
    const V K = k * constant<V>(Format<double>::ln2_hi);
    const V s = K + u;
    const V low = ((K - s) + u) + small;
    hi = s + low;
    lo = low - (hi - s);
}

// ln x for positive normal x (lanes of V), k lowered by `shift`. Inlined into the kernels' loops
// (a call would pass the vectors through memory).
template <int A, class V>
[[gnu::always_inline]] inline V log_core(V x, Elem<V> shift = 0) {
    using T = Elem<V>;
    constexpr bool single = std::is_same_v<T, float>;
    if constexpr (A == EP && !single) {
        // No table: x = 2^k m, m in [sqrt(2)/2, sqrt(2)), f = m - 1 exact, u = 2f/(2 + f),
        // ln m = u + u w R(w), w = u^2.
        V k, m;
        Ints<V> t;
        split(x, root_half, shift, k, m, t);
        const V f = m - splat<V>(1.0);
        const V u = f / mul_add(f, splat<V>(0.5), splat<V>(1.0));
        const V w = u * u;
        return mul_add(k, constant<V>(Format<double>::ln2), mul_add(u * w, polynomial<ln_poly::atanh_ep>(w), u));
    } else if constexpr (A == HA && !single) {
        V hi, lo;
        log_pair<false>(x, x, shift, hi, lo);
        return hi;
    } else if constexpr (A == LA && !single) {
        const auto [k, r, j] = reduce<Set4>(x, shift);
        const V K = mul_add(k, constant<V>(Format<double>::ln2), permute_table<4>(tab::logc4, j));
        return mul_add(r, polynomial<ln_poly::whole_la>(r), K);
    } else if constexpr (A == EP && single) {
        // No table (two permutes cost more than the longer polynomial): x = 2^k m, m in
        // [sqrt(2)/2, sqrt(2)), f = m - 1 exact, ln m = f Q(f), Q by Horner's scheme.
        V k, m;
        Ints<V> t;
        split(x, root_half_f, shift, k, m, t);
        const V f = m - splat<V>(1.0f);
        return mul_add(k, constant<V>(Format<float>::ln2), f * horner_of<ln_poly::mantissa_ep_f>(f));
    } else if constexpr (A == LA && single) {
        const auto [k, r, j] = reduce<Set8>(x, shift);
        const V K = mul_add(k, constant<V>(Format<float>::ln2), permute_table<8>(tab::logc8_f, j));
        return mul_add(r, polynomial<ln_poly::whole_la_f>(r), K);
    } else {
        // Single HA: K = k L1 + logc_hi is exact and K + r is split exactly (Fast2Sum).
        const auto [k, r, j] = reduce<Set8>(x, shift);
        const V K = mul_add(k, constant<V>(Format<float>::ln2_hi), permute_table<8>(Set8::logc_hi, j));
        const V hi = K + r;
        const V small = mul_add(k, constant<V>(Format<float>::ln2_lo), permute_table<8>(Set8::logc_lo, j));
        return hi + mul_add(r * r, polynomial<ln_poly::tail_ha_f>(r), small + ((K - hi) + r));
    }
}

}  // namespace qon::vm::ln_core
