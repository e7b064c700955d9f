// Ln: natural logarithm, double and single precision.
//
// Measured errors: max over 1e7 arguments per region of the accuracy tests (log-uniform over the
// range, [0.5, 2], next to 1, the interval boundaries).
// Method (ln_core.hpp, shared with the inverse error function): x = 2^k z with z in
// [OFF, 2 OFF), OFF ~ 0.7 (k and z from the bits); the mantissa bits
// of z just past the offset pick one of N intervals and its short factor c_j ~ 1/z (c = 1 on
// the interval of 1), read from ln_tables.hpp with register permutes (no gather, no division);
// r = z c_j - 1 is exact (one fused multiply-subtract: c_j has at most 7 bits and
// |r| < 2^(1 - bits of c_j)), and ln x = k ln2 - ln c_j + log1p(r), log1p by polynomials fitted
// at Chebyshev nodes (ln_poly.hpp, made by tools/fit_ln.cpp) and evaluated by Estrin's scheme:
//   double HA  no table (a division costs less than the permutes of three tables): x = 2^k m,
//              m in [sqrt(2)/2, sqrt(2)), f = m - 1 exact, u = 2f/(2 + f) as a pair u + u_lo
//              (the residual of the division in one fused rounding), ln m = u + u_lo + u w R(w),
//              w = u^2, R of 7 coefficients (a minimax fit, 2^-59.3 relative to ln m); k L1 + u
//              split exactly (Fast2Sum), k L2 + u_lo + the low part + the tail (under 1% of the
//              result) added last: the final rounding dominates. Measured 0.554 ulp.
//   double LA  N = 4 (|r| <= 0.12, <= 1/12 near 1), K = k ln2 + RN(-ln c_j) in one fused
//              multiply-add and ln x = r P(r) + K with P(r) = log1p(r)/r of 13 coefficients
//              (2^-55.4 relative; the roundings of K and of r P + K dominate): measured
//              2.54 ulp.
//   double EP  no table (a permute of double pairs costs more than the division it saves):
//              x = 2^k m, m in [sqrt(2)/2, sqrt(2)), f = m - 1 exact, u = 2f/(2 + f) with one
//              division, ln m = 2 atanh(u/2) = u + u w R(w), w = u^2, |u| <= 0.344, R of 3
//              coefficients (a minimax fit, 2^-30.2 relative), ln x = k ln2 + ln m: measured
//              7.1e6 ulp (2^-29.2 relative).
//   single HA  N = 8 in float lanes, r^2 q(r) with q of 5 coefficients (2^-34.8 absolute).
//              K = k L1 + logc_hi is exact (both multiples of 2^-16, |k| <= 150), K + r is split
//              exactly (Fast2Sum: the exponent of logc_hi is at least that of r), and k L2 +
//              logc_lo + the low part + r^2 q(r) is added last: measured 0.556 ulp.
//   single LA  N = 8, P of 5 coefficients (2^-26.5 relative), K = k ln2 + RN_float(-ln c_j),
//              r P(r) + K: measured 1.62 ulp.
//   single EP  no table (two permutes cost more than a longer polynomial): x = 2^k m, m in
//              [sqrt(2)/2, sqrt(2)), f = m - 1 exact, ln x = k ln2 + f Q(f), Q of 5
//              coefficients by Horner's scheme (a minimax fit, 2^-14.3 relative): measured
//              841 ulp.
// Lanes outside [smallest normal, largest finite] of their type and NaN go to the scalar routine:
// ln(+-0) = -inf is a singularity (2), x < 0 and -inf a domain error (1, NaN), ln(+inf) = +inf
// and NaN give themselves unreported; a double subnormal is scaled by 2^54 and computed by the
// double HA method with k - 54, a float in double and rounded once.
#include <cmath>
#include <cstdint>
#include <limits>

#include "vm/kernels/ln_core.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;
using qon::vm::ln_core::log_core;
using qon::vm::EP;
using qon::vm::HA;
using qon::vm::LA;

constexpr double two_54 = 18014398509481984.0;

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
    else if (x < std::numeric_limits<double>::min()) r = log_core<HA>(x * two_54, 54.0);
    else r = log_core<HA>(x);
    return PAX_STATUS_OK;
}

// Lanes outside [smallest normal, largest finite] and NaN.
template <class V>
Mask<V> outside_normal(V x) {
    using L = std::numeric_limits<Elem<V>>;
    return mask_or(lt(x, splat<V>(L::min())), gt_or_nan(x, splat<V>(L::max())));
}

template <int A>
struct LnDouble {
    using T = double;
    static constexpr int groups = A == LA ? 2 : 4;  // LA measured 6% slower at four

    template <class V>
    static V eval(V x) { return log_core<A>(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) { return outside_normal(x); }
    static int scalar(double x, double &r) { return log_scalar(x, r); }
};

template <int A>
struct LnFloat {
    using T = float;
    static constexpr int groups = A == HA ? 2 : 4;  // HA: four scheduled together spill

    template <class V>
    static V eval(V x) { return log_core<A>(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) { return outside_normal(x); }
    static int scalar(float x, float &r) {
        double wide;
        const int st = log_scalar(x, wide);
        r = static_cast<float>(wide);
        return st;
    }
};

}  // namespace

QON_VM_VECTOR_KERNELS(d, Ln, double, LnDouble<LA>, LnDouble<HA>, LnDouble<EP>)
QON_VM_VECTOR_KERNELS(s, Ln, float, LnFloat<LA>, LnFloat<HA>, LnFloat<EP>)
