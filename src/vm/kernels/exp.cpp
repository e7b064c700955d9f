// Exponential, double and single precision: r = e^a.
//
// Double, common range |x| < 708.396 (results normal, no overflow), x = N*ln2/K + s:
//   EP  x = n ln2 + s with one constant, |s| <= ln2/2; e^s by a polynomial of degree 6 (fit
//       2^-28.9 relative), 2^n added to its exponent field: no table, so no gather. The
//       one-constant reduction is off by n (ln2 - RN(ln2)), below 2^-45 at |x| = 708: at
//       least 28 correct bits, measured 1.65e7 ulp (4e6 arguments).
//   LA  K = 128: y = x*128/ln2 + 1.5*2^52 holds N in its low bits; s = (x - N*S1) - N*S2
//       with S1 + S2 = ln2/128; t = 2^(N >> 7) RN(2^((N & 127)/128)) formed by one integer
//       addition to a table entry (Step128::table); e^s - 1 ~ s + s^2*(c2 + ... + c5*s^3)
//       (fit error below 1e-19), result t1 + t1*p in one rounding. Rounding of t1 (0.5 ulp)
//       and the last rounding dominate: within 1.01 ulp, measured 0.998.
//   HA  K = 64: N from the shifter, 16*N from N + 1.5*2^48 gives the byte offset of the pair
//       (hi, lo) = t3[N & 63] and the exponent N >> 6; s = (x - N*L1) - N*L2 with
//       L1 + L2 = ln2/64; e^s - 1 ~ s + s^2*(q2 + s*(q3 + s*(q4 + s*q5))) (relative error
//       1.4e-18 on |s| <= ln2/128); result hi + (p*hi + lo). Besides the last rounding: the
//       polynomial (0.013 ulp), the rounding of p*hi + lo (0.004) and of s (0.002): within
//       0.52 ulp, measured 0.5215.
// Lanes with |x| >= 708.396 or non-finite x go to the scalar routine, which reduces with 64
// steps, evaluates a degree-6 polynomial against the pairs t2 (hi*(1 + lo) = 2^(j/64) to twice
// double precision), and rounds results below 2^-1022 once into the subnormal range: within
// 0.51 ulp. It defines the statuses: x > ln(largest double) overflows (+inf, status 3);
// x < -708.396 underflows (subnormal or +0, status 4); +-inf and NaN give +inf, +0, NaN silently.
//
// Single, in float lanes: HA x = (8n + j) ln2/8 + r, |r| <= ln2/16, two-constant reduction,
// e^r - 1 by its Taylor series to r^4 (2^-29.5 relative), result hi + (hi p + lo) with
// hi + lo = 2^(j/8) read by a permute: the last rounding dominates, measured 0.595 ulp. LA and
// EP: x = n ln2 + r with |r| <= ln2/2 and e^r ~ 1 + r + r^2 (c2 + ...), degree 6 for LA
// (two-constant reduction; measured 1.06 ulp) and degree 4 for EP (one constant; measured
// 169 ulp, 15 correct bits; measured over 6e7 arguments). Every method builds 2^n e^r by adding n to the exponent field,
// exact while the result is normal: lanes with x < -87.33 or x > 88.7228317 (e^x near the
// smallest normal or the largest float) or NaN go to the float scalar routine: the double
// routine rounded once to float, status 3 when that is +inf, 4 when it is below the smallest
// normal float.
#include <cmath>
#include <cstdint>
#include <limits>

#include "vm/kernels/exp_tables.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;
using qon::vm::exp_tables::t1;
using qon::vm::exp_tables::t2;
using qon::vm::exp_tables::t3;
using qon::vm::exp_tables::t8_hi;
using qon::vm::exp_tables::t8_lo;

constexpr std::uint64_t neg_shifter = 0xC338000000000000;  // -1.5*2^52
constexpr std::uint64_t sign_clear = 0x7FFFFFFFFFFFFFFF;
constexpr std::uint64_t exponent_bits = 0xFFF0000000000000;

// x - n*(hi + lo) for a step split in two constants (given by their bits): n*hi is exact.
template <class V>
V reduce(V x, V n, typename Traits<V>::U hi, typename Traits<V>::U lo) {
    return neg_mul_add(n, constant<V>(lo), neg_mul_add(n, constant<V>(hi), x));
}

// ---- the scalar routine -----------------------------------------------------------------------

struct ScalarConstants {
    static constexpr double overflow = std::bit_cast<double>(0x40862E42FEFA39EFull);     // 709.782712893384
    static constexpr double underflow = std::bit_cast<double>(0xC0874910D52D3051ull);    // -745.1332191019411
    static constexpr double subnormal = std::bit_cast<double>(0xC086232BDD7ABCD2ull);    // -708.3964185322641
    static constexpr double inv_step = std::bit_cast<double>(0x40571547652B82FEull);     // 64/ln2
    static constexpr double shifter = std::bit_cast<double>(0x4338000000000000ull);      // 1.5*2^52
    static constexpr double neg_step_hi = std::bit_cast<double>(0xBF862E42FEFA0000ull);  // -ln2/64 high
    static constexpr double neg_step_lo = std::bit_cast<double>(0xBD1CF79ABC9E3B3Aull);  // -ln2/64 low
    static constexpr double p6 = std::bit_cast<double>(0x3F56C16A1C2A3FFDull);  // 0.0013888870459233254
    static constexpr double p5 = std::bit_cast<double>(0x3F8111123AAF20D3ull);  // 0.008333341995140497
    static constexpr double p4 = std::bit_cast<double>(0x3FA5555555558FCCull);  // 0.04166666666677052
    static constexpr double p3 = std::bit_cast<double>(0x3FC55555555548F8ull);  // 0.1666666666665788
    static constexpr double p2 = std::bit_cast<double>(0x3FE0000000000000ull);  // 0.5
    static constexpr double split = std::bit_cast<double>(0x41F8000000000000ull);      // 1.5*2^32
    static constexpr double two_1023 = std::bit_cast<double>(0x7FE0000000000000ull);   // 2^1023
    static constexpr double two_m60 = std::bit_cast<double>(0x3C30000000000000ull);    // 2^-60
};

double pow2(int k) { return std::bit_cast<double>(static_cast<std::uint64_t>(k + 1023) << 52); }

// e^x for any x, with its status (0, overflow 3, underflow 4).
int exp_scalar(double x, double &r) {
    using C = ScalarConstants;
    const std::uint64_t b = std::bit_cast<std::uint64_t>(x);
    const unsigned biased = static_cast<unsigned>(b >> 52) & 0x7FF;
    if (biased == 0x7FF) {
        r = x == -std::numeric_limits<double>::infinity() ? 0.0 : x * x;
        return PAX_STATUS_OK;
    }
    if (biased < 0x3CB) {  // |x| < 2^-52
        r = 1.0 + x;
        return PAX_STATUS_OK;
    }
    if (x > C::overflow) {
        r = std::numeric_limits<double>::infinity();
        return PAX_STATUS_OVERFLOW;
    }
    if (x < C::underflow) {
        r = 0.0;
        return PAX_STATUS_UNDERFLOW;
    }
    const double y = std::fma(x, C::inv_step, C::shifter);
    const double n = y - C::shifter;
    const auto N = static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(y) - std::bit_cast<std::uint64_t>(C::shifter));
    double s = std::fma(n, C::neg_step_hi, x);
    s = std::fma(n, C::neg_step_lo, s);
    const double poly = horner(s, C::p6, C::p5, C::p4, C::p3, C::p2);
    const double p = std::fma(s * s, poly, s);
    const auto [hi, lo] = t2[N & 63];
    const int k = static_cast<int>(N >> 6);
    const double v = hi * (p + lo);
    if (x >= C::subnormal) {
        r = k == 1024 ? (hi + v) * C::two_1023 * 2.0 : (hi + v) * pow2(k);
        return PAX_STATUS_OK;
    }
    // Subnormal result: scale both parts by 2^(k+60), which keeps them normal, and let the final
    // multiplication by 2^-60 round once. When the result keeps more than 42 bits (scaled
    // exponent above 50) the sum is split so that its high half, a multiple of 2^-20, scales
    // exactly and only the low half is rounded.
    const double scale = pow2(k + 60);
    if (k + 60 + 1023 > 50) {
        const double sum = hi + v;
        const double high = (sum + C::split) - C::split;
        const double low = (hi - high) + v;
        r = high * scale * C::two_m60 + low * scale * C::two_m60;
    } else {
        r = (hi * scale + v * scale) * C::two_m60;
    }
    return PAX_STATUS_UNDERFLOW;
}

// ---- double vector methods --------------------------------------------------------------------

// The common range of LA and EP, and their scalar routine.
struct CommonRange {
    using T = double;
    static constexpr int groups = 2;

    // Lane test on the high 32 bits of |x|: at or above 0x4086232B (708.39599609375) in the main
    // loop, 0x4086232A in the tail; NaN and infinities are above both.
    template <bool tail, class V>
    static Mask<V> special(V x) {
        constexpr std::uint64_t threshold = tail ? 0x4086232A : 0x4086232B;
        return int_gt(bits(x) & splat_q<V>(sign_clear), splat_q<V>((threshold << 32) - 1));
    }
    static int scalar(double x, double &r) { return exp_scalar(x, r); }
};

// LA: 128 steps per doubling, table t1; index and exponent from the low bits of y.
struct Step128 : CommonRange {
    static constexpr std::uint64_t inv_step = 0x40671547652B82FE;  // 128/ln2 = 184.6649652337873

    template <class V>
    static V shifted(V x) { return mul_sub(x, constant<V>(inv_step), constant<V>(neg_shifter)); }
    // 2^(N/128) rounded as t = 2^k RN(2^(j/128)), N = 128k + j: the bits of y shifted left by 45
    // are N*2^45 (the shifter's bits leave the word), which added to t1[j] (stored less j*2^45)
    // give the bits of t. Exact while t is normal, as it is for |x| < 708.4; formed off the
    // polynomial's path.
    template <class V>
    static V table(V y) {
        return from_bits(bits(lookup<8, 0x7F>(t1, bits(y))) + shl<45>(bits(y)));
    }
};

// EP: no table. y = x/ln2 + 1.5*2^52 holds n = round(x/ln2) in its low bits, s = x - n ln2
// with one constant, e^s by a polynomial of degree 6 with constant term 1, and 2^n e^s by adding
// n to the exponent field of e^s, exact while the result is normal: in the common range n is at
// most 1022, and where it is -1022, x > -708.396 puts s above 0 and e^s at or above 1.
struct ExpEP : CommonRange {
    static constexpr int groups = 4;  // LA measured slower at four, EP 4-18% faster
    static constexpr std::uint64_t inv_ln2 = 0x3FF71547652B82FE;  // 1/ln2 = 1.4426950408889634
    static constexpr std::uint64_t ln2 = 0x3FE62E42FEFA39EF;      // 0.69314718055994529
    // e^s ~ 1 + s (c1 + s (c2 + ... + s c6)) on |s| <= ln2/2 (+0.1%): relative error 2^-28.9,
    // a minimax fit made by tools/fit_exp.cpp.
    static constexpr std::uint64_t c1 = 0x3FF0000008AEF064;  // 1.0000000323480203
    static constexpr std::uint64_t c2 = 0x3FDFFFFFC1746C41;  // 0.49999994175022172
    static constexpr std::uint64_t c3 = 0x3FC5554182AAFEDC;  // 0.16666430359145223
    static constexpr std::uint64_t c4 = 0x3FA55582513DC81B;  // 0.041668007294802765
    static constexpr std::uint64_t c5 = 0x3F812682AB2B2DCD;  // 0.0083742340551883569
    static constexpr std::uint64_t c6 = 0x3F56AE69266638A8;  // 0.0013843561988298534

    template <class V>
    static V eval(V x) {
        const V y = mul_sub(x, constant<V>(inv_ln2), constant<V>(neg_shifter));
        const V s = neg_mul_add(y + constant<V>(neg_shifter), constant<V>(ln2), x);
        const V p = horner(s, constant<V>(c6), constant<V>(c5), constant<V>(c4), constant<V>(c3), constant<V>(c2),
                           constant<V>(c1), splat<V>(1.0));
        return from_bits(bits(p) + shl<52>(bits(y)));
    }
};

struct ExpLA : Step128 {
    static constexpr std::uint64_t step_hi = 0x3F762E42FEFA0000;  // ln2/128 high (36 bits)
    static constexpr std::uint64_t step_lo = 0x3D0CF79ABC9E3B3A;  // ln2/128 low
    static constexpr std::uint64_t c2 = 0x3FDFFFFFFFFFFF58;      // 0.4999999999999907
    static constexpr std::uint64_t c3 = 0x3FC5555555555525;      // 0.16666666666666533
    static constexpr std::uint64_t c4 = 0x3FA55555ACCC11B8;      // 0.04166667684879449
    static constexpr std::uint64_t c5 = 0x3F811111430BC5C6;      // 0.008333334787922985

    template <class V>
    static V eval(V x) {
        const V y = shifted(x);
        const V n = y + constant<V>(neg_shifter);
        const V s = reduce(x, n, step_hi, step_lo);
        const V poly = horner(s, constant<V>(c5), constant<V>(c4), constant<V>(c3), constant<V>(c2));
        const V p = mul_add(s * s, poly, s);
        const V t = table(y);
        return mul_add(t, p, t);
    }
};

struct ExpHA {
    using T = double;
    static constexpr int groups = 4;
    static constexpr std::uint64_t inv_step = 0x40571547652B82FE;       // 64/ln2 = 92.33248261689366
    static constexpr std::uint64_t index_shifter = 0x42F8000000000000;  // 1.5*2^48
    static constexpr std::uint64_t step_hi = 0x3F862E42FEFA0000;        // ln2/64 high
    static constexpr std::uint64_t step_lo = 0x3D1CF79ABC9E3B3A;        // ln2/64 low
    static constexpr std::uint64_t q5 = 0x3F8111112D9F549B;             // 0.00833333416441411
    static constexpr std::uint64_t q4 = 0x3FA555573F218B93;             // 0.04166672368662385
    static constexpr std::uint64_t q3 = 0x3FC555555555653E;             // 0.1666666666667797
    static constexpr std::uint64_t q2 = 0x3FDFFFFFFFFFDB3B;             // 0.4999999999994775
    static constexpr std::uint64_t threshold = 0x4086232AFFFFFFFF;      // 708.3959960937499

    template <class V>
    static V eval(V x) {
        const V y = mul_sub(x, constant<V>(inv_step), constant<V>(neg_shifter));
        const V n = y + constant<V>(neg_shifter);
        const auto sixteen_n = bits(n + constant<V>(index_shifter));  // low bits: 16*N
        V hi, lo;
        gather_pairs<1, 0x3FF>(&t3[0].hi, sixteen_n, hi, lo);           // byte offset of t3[N & 63]
        const V s = reduce(x, n, step_hi, step_lo);
        const V poly = horner(s, constant<V>(q5), constant<V>(q4), constant<V>(q3), constant<V>(q2));
        const V p = mul_add(s * s, poly, s);
        const V q = hi + mul_add(p, hi, lo);
        return from_bits(bits(q) + (shl<42>(sixteen_n) & splat_q<V>(exponent_bits)));
    }
    template <bool tail, class V>
    static Mask<V> special(V x) { return gt_or_nan(abs(x), constant<V>(threshold)); }
    static int scalar(double x, double &r) { return exp_scalar(x, r); }
};

// ---- single-precision methods -----------------------------------------------------------------

struct ExpFloat {
    using T = float;
    static constexpr int groups = 2;
    static constexpr std::uint32_t inv_ln2 = 0x3FB8AA3B;    // 1/ln2 = 1.44269502
    static constexpr std::uint32_t shifter = 0x4B400000;    // 1.5*2^23
    static constexpr std::uint32_t ln2 = 0x3F317218;        // ln2 = 0.693147182
    static constexpr std::uint32_t ln2_hi = 0x3F317200;     // ln2 high = 0.693145752
    static constexpr std::uint32_t ln2_lo = 0x35BFBE8E;     // ln2 low = 1.42860677e-06
    static constexpr std::uint32_t lowest = 0xC2AEA8F6;   // -87.33: e^x above the smallest normal
    static constexpr std::uint32_t highest = 0x42B17217;  // 88.7228317: e^x below the largest float

    // Lanes whose result may leave the normal range, and NaN: 2^n p with n = round(x/ln2) and
    // p = e^r in [0.7, 1.42] is built by adding n to the exponent field of p, exact while the
    // result is normal.
    template <bool tail, class V>
    static Mask<V> special(V x) { return mask_or(lt(x, constant<V>(lowest)), gt_or_nan(x, constant<V>(highest))); }
    static int scalar(float x, float &r) {
        double wide;
        exp_scalar(static_cast<double>(x), wide);
        r = static_cast<float>(wide);
        if (!std::isfinite(x)) return PAX_STATUS_OK;
        if (std::isinf(r)) return PAX_STATUS_OVERFLOW;
        return r < std::numeric_limits<float>::min() ? PAX_STATUS_UNDERFLOW : PAX_STATUS_OK;
    }
    // y = x/ln2 + 1.5*2^23 holds n = round(x/ln2) in its low bits.
    template <class V>
    static V shifted(V x) { return mul_add(x, constant<V>(inv_ln2), constant<V>(shifter)); }
    template <class V>
    static V scale(V p, V y) { return from_bits(bits(p) + shl<23>(bits(y))); }
};

struct ExpFloatEP : ExpFloat {
    static constexpr int groups = 4;  // LA measured slower at four, EP 4-18% faster
    static constexpr std::uint32_t c3 = 0x3E2B6FE2;  // 0.167418987
    static constexpr std::uint32_t c4 = 0x3D2B2E13;  // 0.0417919867

    template <class V>
    static V eval(V x) {
        const V one = splat<V>(1.0f);
        const V y = shifted(x);
        const V r = neg_mul_add(y - constant<V>(shifter), constant<V>(ln2), x);
        const V p = horner(r, constant<V>(c4), constant<V>(c3), splat<V>(0.5f), one, one);
        return scale(p, y);
    }
};

struct ExpFloatLA : ExpFloat {
    static constexpr std::uint32_t c3 = 0x3E2AAA6F;  // 0.166665778
    static constexpr std::uint32_t c4 = 0x3D2AAA8D;  // 0.0416665562
    static constexpr std::uint32_t c5 = 0x3C0905B1;  // 0.00836317334
    static constexpr std::uint32_t c6 = 0x3AB6887E;  // 0.00139261759

    template <class V>
    static V eval(V x) {
        const V y = shifted(x);
        const V n = y - constant<V>(shifter);
        const V r = reduce(x, n, ln2_hi, ln2_lo);
        const V poly = horner(r, constant<V>(c6), constant<V>(c5), constant<V>(c4), constant<V>(c3), splat<V>(0.5f));
        return scale(mul_add(r * r, poly, r) + splat<V>(1.0f), y);
    }
};

// HA: 8 steps per doubling in float lanes. y = x*8/ln2 + 1.5*2^23 holds N in its low bits;
// r = (x - N*S1) - N*S2 with S1 + S2 = ln2/8 (S1 of 12 bits: N*S1 and the first difference are
// exact); e^r - 1 ~ r + r^2 (1/2 + r/6 + r^2/24) (Taylor, truncation 2^-29.5 relative on
// |r| <= ln2/16); result hi + (hi*p + lo) with hi + lo = 2^(j/8) (t8_hi, t8_lo, read by a
// permute), N >> 3 added to the exponent.
struct ExpFloatHA : ExpFloat {
    static constexpr std::uint32_t inv_step = 0x4138AA3B;  // 8/ln2 = 11.5415602
    static constexpr std::uint32_t step_hi = 0x3DB17000;   // S1 = 0.086639404296875
    static constexpr std::uint32_t step_lo = 0x3685FDF4;   // S2 = 3.99327291e-06
    static constexpr std::uint32_t sixth = 0x3E2AAAAB;     // 1/6
    static constexpr std::uint32_t c4 = 0x3D2AAAAB;        // 1/24
    static constexpr std::uint32_t exponent_bits = 0xFF800000;

    template <class V>
    static V eval(V x) {
        const V y = mul_add(x, constant<V>(inv_step), constant<V>(shifter));
        const V n = y - constant<V>(shifter);
        const V r = reduce(x, n, step_hi, step_lo);
        const V q = horner(r, constant<V>(c4), constant<V>(sixth), splat<V>(0.5f));
        const V p = mul_add(r * r, q, r);
        const V hi = permute_table<8>(t8_hi, bits(y));
        const V result = hi + mul_add(hi, p, permute_table<8>(t8_lo, bits(y)));
        return from_bits(bits(result) + (shl<20>(bits(y)) & splat_q<V>(exponent_bits)));
    }
};

}  // namespace

QON_VM_VECTOR_KERNELS(d, Exp, double, ExpLA, ExpHA, ExpEP)
QON_VM_VECTOR_KERNELS(s, Exp, float, ExpFloatLA, ExpFloatHA, ExpFloatEP)
