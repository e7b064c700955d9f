// Ln: natural logarithm, double and single precision.
//
// Method: x = 2^k * m with m in [sqrt(2)/2, sqrt(2)), k and m taken from the bits (k as an
// exact double through the 2^52 shifter); f = m - 1 is exact; with s = f/(2 + f),
// ln(1 + f) = 2 atanh(s) = f - (hfsq - s*(hfsq + R)), hfsq = f^2/2, R(z) = sum_j 2 z^j/(2j + 1)
// over z = s^2 <= 0.02944 (Taylor coefficients, no fit). The result is
// k*L1 + (f - (hfsq - (s*(hfsq + R) + k*L2))), L1 + L2 = ln 2 with k*L1 exact. Terms of R:
//   double HA 10 (truncation 2^-60 relative), LA 9 (2^-55), EP 4 (2^-28); the rounding of
//   f - hfsq and of the small terms dominate: measured max error (2e6 arguments) HA 0.82 ulp,
//   LA 0.95 ulp, EP 1.3e7 ulp (2^-28.4 relative, 28 correct bits).
//   single: the same in double lanes, rounded once to float; HA 5 terms (2^-34: measured
//   0.501 ulp), LA 3 (2^-23.5: measured 1.48 ulp), EP 2 (2^-18: measured 43 ulp, 18 bits).
// Lanes outside [smallest normal, largest finite] (double), outside (0, largest finite] (single;
// float subnormals are normal in double) and NaN go to the scalar routine: ln(+-0) = -inf is a
// singularity (2), x < 0 and -inf a domain error (1, NaN), ln(+inf) = +inf and NaN give
// themselves unreported, a double subnormal is scaled by 2^54 and computed as above with
// k - 54 (HA terms).
#include <cmath>
#include <cstdint>
#include <limits>

#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;

constexpr std::uint64_t root_half = 0x3FE6A09E667F3BCD;  // sqrt(2)/2
constexpr std::uint64_t one_bits = 0x3FF0000000000000;
constexpr std::uint64_t shifter_bits = 0x4330000000000000;  // 2^52
constexpr std::uint64_t ln2_hi = 0x3FE62E42FEE00000;        // ln 2 high (32 bits): k*L1 exact
constexpr std::uint64_t ln2_lo = 0x3DEA39EF35793C76;        // ln 2 - L1
constexpr double two_54 = 18014398509481984.0;

// R(z)/z = 2/3 + 2z/5 + ... + 2z^(N-1)/(2N + 1), by Horner's scheme from the highest term.
template <int N, class V, int j = 1>
V series_poly(V z) {
    constexpr double c = 2.0 / (2 * j + 1);
    if constexpr (j == N) return splat<V>(c);
    else return mul_add(series_poly<N, V, j + 1>(z), z, splat<V>(c));
}

// ln x for positive normal double x (lanes of V), k lowered by `shift`.
template <int N, class V>
V log_core(V x, double shift = 0) {
    const auto ix = bits(x);
    const auto e = shr<52>(ix + splat_q<V>(one_bits - root_half));  // biased exponent k + 1023
    const V m = from_bits(ix - shl<52>(e) + splat_q<V>(one_bits));
    V k = from_bits(e + splat_q<V>(shifter_bits)) - splat<V>(4503599627370496.0 + 1023.0);
    if (shift != 0) k = k - splat<V>(shift);
    const V one = splat<V>(1.0);
    const V f = m - one;
    const V s = f / (f + splat<V>(2.0));
    const V z = s * s;
    const V R = z * series_poly<N>(z);
    const V hfsq = splat<V>(0.5) * f * f;
    const V tail = mul_add(k, constant<V>(ln2_lo), s * (hfsq + R));
    return mul_add(k, constant<V>(ln2_hi), f - (hfsq - tail));
}

int log_scalar(double x, double &r) {
    if (std::isnan(x)) {
        r = x;
        return PAX_STATUS_OK;
    }
    if (x < 0) {
        r = std::numeric_limits<double>::quiet_NaN();
        return PAX_STATUS_ERRDOM;
    }
    if (x == 0) {
        r = -std::numeric_limits<double>::infinity();
        return PAX_STATUS_SING;
    }
    if (std::isinf(x)) r = x;
    else if (x < std::numeric_limits<double>::min()) r = log_core<10>(x * two_54, 54);
    else r = log_core<10>(x);
    return PAX_STATUS_OK;
}

template <int N>
struct LnDouble {
    using T = double;
    static constexpr int groups = 2;

    template <class V>
    static V eval(V x) { return log_core<N>(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        return mask_or(lt(x, splat<V>(std::numeric_limits<double>::min())),
                       gt_or_nan(x, splat<V>(std::numeric_limits<double>::max())));
    }
    static int scalar(double x, double &r) { return log_scalar(x, r); }
};

template <int N>
struct LnFloat {
    using T = float;
    static constexpr int groups = 1;

    template <class V>
    static V eval(V x) {
        return in_double(x, [](auto d) { return log_core<N>(d); });
    }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        return mask_or(le(x, splat<V>(0.0f)), gt_or_nan(x, splat<V>(std::numeric_limits<float>::max())));
    }
    static int scalar(float x, float &r) {
        double wide;
        const int st = log_scalar(x, wide);
        r = static_cast<float>(wide);
        return st;
    }
};

}  // namespace

QON_VM_VECTOR_KERNELS(d, Ln, double, LnDouble<9>, LnDouble<10>, LnDouble<4>)
QON_VM_VECTOR_KERNELS(s, Ln, float, LnFloat<3>, LnFloat<5>, LnFloat<2>)
