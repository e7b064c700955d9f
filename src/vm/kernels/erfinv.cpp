// ErfInv: erfinv(x), the y with erf(y) = x, double and single precision.
//
// Vector method, |x| < 1: w = -ln(1 - x^2), with 1 - x^2 formed from x (|x| < 1/2) or from
// the exact c = 1 - |x| as 2c - c^2 (|x| >= 1/2), one fused rounding each.
//   main  w <= 6.25 (|x| <= 0.998): erfinv(x) = x p(w). As a function of w, p(w) = erfinv(x)/x
//         has no singularity near the interval (1 - x^2 = e^-w never reaches 0), so one
//         polynomial in u = w - 3.125 fits it: degree 26 (HA, fit error 2^-62.6), 23 (LA,
//         2^-55.2), 12 (EP, 2^-30.5); coefficients from tools/fit_erfinv.cpp.
//   far   w > 6.25 (x within 0.002 of +-1; a branch taken only for a vector with such a lane):
//         t = sqrt(w), erfinv = sign(x) g(t), polynomials in t - 3.25 on [2.5, 4] (degree 19)
//         and t - 5 on [4, 6.07] (degree 17, 1 - |x| down to 2^-53), evaluated as in HA by
//         every slot.
// The logarithm is the Ln kernels' method of the slot (ln_core.hpp: HA without a table, as a
// pair with the low part of 1 - x^2; LA a short factor from a table and a fitted polynomial, EP
// one division and the atanh series).
// HA carries the rounding errors: 1 - x^2 and the logarithm as pairs, u = w - 3.125
// compensated; the low part of u enters through p'(w) (a quadratic, 2% accurate, on a term below
// 2^-53 p); the last two Horner steps and the two lowest coefficients in double-double;
// y = fma(x, p_hi, x p_lo). In the far region t = sqrt(w) is corrected by (w - t^2 + w_lo)/(2t)
// (g'(t) = 1 within 4%).
// Measured max error (accuracy harness, 1e6 arguments per region: uniform on (-1, 1),
// log-uniform magnitudes, 1 - |x| log-uniform from 1/2 down to 2^-53): double HA 0.59 ulp,
// LA 2.3 ulp (mostly the rounding of u = w - 3.125 near w = 0), EP 6.2e6 ulp (29 correct bits).
// Single: every slot evaluates the double EP method in double lanes and rounds once (relative
// error below 2^-29 before rounding): measured 0.511 ulp (1e6 arguments per region).
// Lanes with |x| >= 1, NaN, or |x| < 2^-969 (2^-125 single: where x p_lo or the result may be
// subnormal) go to the scalar routine, which defines the statuses: erfinv(+-1) = +-inf (2,
// singularity), |x| > 1 gives NaN (1, domain), NaN gives NaN unreported, +-0 gives +-0, and a
// normal x whose result is subnormal reports underflow (4). It refines an estimate by Halley's
// method on erf or erfc in extended precision (higher_functions.hpp) and rounds once: within
// 0.5 + 2^-9 ulp.
#include <cmath>
#include <cstdint>
#include <limits>

#include "vm/kernels/erfinv_poly.hpp"
#include "vm/kernels/ln_core.hpp"
#include "vm/kernels/higher_functions.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;
namespace poly = qon::vm::erfinv_poly;
using qon::vm::EP;
using qon::vm::HA;
using qon::vm::LA;

constexpr std::uint64_t sign_bit = 0x8000000000000000;
constexpr double main_end = 6.25;    // w bound of the main polynomial
constexpr double main_centre = 3.125;
constexpr double far_split = 4;      // t bound between the far polynomials
constexpr double far1_centre = 3.25, far2_centre = 5;

// The polynomial c[0 .. N - 1 - drop] (highest degree first) at u by Estrin's scheme, the two
// lowest coefficients added by Horner steps.
template <std::size_t drop = 0, class V, std::size_t N>
[[gnu::always_inline]] inline V polynomial(V u, const double (&c)[N]) {
    constexpr int n = N - drop;  // coefficients used
    return estrin<n, 2>(u, [&](auto i) { return splat<V>(c[n - 1 - i]); });
}

// a + b = s + e exactly when |a| >= |b| or a = 0.
template <class V>
void fast_two_sum(V a, V b, V &s, V &e) {
    s = a + b;
    e = b - (s - a);
}

// -ln(P + P_lo) for 0 < P <= 1 normal as the pair w + w_lo, |w_lo| <= ulp(w)/2: the HA
// logarithm of ln_core.hpp.
template <class V>
[[gnu::always_inline]] inline void minus_log(V P, V P_lo, V &w, V &w_lo) {
    V hi, lo;
    qon::vm::ln_core::log_pair<true>(P, P_lo, 0.0, hi, lo);
    w = splat<V>(0.0) - hi;
    w_lo = splat<V>(0.0) - lo;
}

// c[0 .. N-3] by Horner, then the last two steps a1 + u q and a0 + u (...) in double-double
// with the low parts lo = {a1_lo, a0_lo}; `extra` is added to the low part. Returns hi + lo.
// The sums are fast two-sums: over the fitted intervals |a1| > |u q| and |a0| > |u (...)|
// (the function varies by less than its value at the centre, and its slope by less than the
// slope there).
template <class V, std::size_t N>
[[gnu::always_inline]] inline void pair_polynomial(V u, V extra, const double (&c)[N], const double (&lo)[2], V &hi, V &low) {
    const V q = polynomial<2>(u, c);
    V p1 = u * q, p1e = mul_sub(u, q, p1), b, be;
    fast_two_sum(splat<V>(c[N - 2]), p1, b, be);
    const V b_lo = be + p1e + splat<V>(lo[0]);
    const V p2 = u * b, p2e = mul_add(u, b_lo, mul_sub(u, b, p2));
    V a, ae;
    fast_two_sum(splat<V>(c[N - 1]), p2, a, ae);
    hi = a;
    low = ae + p2e + splat<V>(lo[1]) + extra;
}

// The main polynomial of each slot.
template <int A>
struct Slot;
template <>
struct Slot<HA> {
    static constexpr auto &main = poly::main_ha;
};
template <>
struct Slot<LA> {
    static constexpr auto &main = poly::main_la;
};
template <>
struct Slot<EP> {
    static constexpr auto &main = poly::main_ep;
};

// erfinv(x) for the lanes with w > 6.25 (|x| > 0.998), rare in most uses: every slot takes the
// HA evaluation here (the pair w + w_lo recomputed unless the slot has it).
template <int A, class V>
[[gnu::noinline]] V far_tail(V x, V P, V P_lo, V w, V w_lo) {
    if constexpr (A != HA) minus_log(P, P_lo, w, w_lo);
    const V t = sqrt(w);
    const V t_lo = (neg_mul_add(t, t, w) + w_lo) * (splat<V>(0.5) / t);
    const Mask<V> second = gt(t, splat<V>(far_split));
    const V v = t - select(second, splat<V>(far2_centre), splat<V>(far1_centre));
    V hi1, lo1, hi2, lo2;
    pair_polynomial(v, t_lo, poly::far1_ha, poly::far1_ha_lo, hi1, lo1);
    pair_polynomial(v, t_lo, poly::far2_ha, poly::far2_ha_lo, hi2, lo2);
    const V g = select(second, hi2 + lo2, hi1 + lo1);
    return from_bits(bits(g) | (bits(x) & splat_q<V>(sign_bit)));
}

// erfinv(x) for |x| < 1 in double lanes, slot A.
template <int A, class V>
[[gnu::always_inline]] inline V erfinv_core(V x) {
    constexpr bool ha = A == HA;
    const V ax = abs(x);
    const Mask<V> inner = lt(ax, splat<V>(0.5));
    const V c = splat<V>(1.0) - ax;
    const V a = select(inner, x, c);
    const V b = select(inner, splat<V>(1.0), c + c);
    const V P = neg_mul_add(a, a, b);  // 1 - x^2
    V y, w, w_lo = splat<V>(0.0);
    if constexpr (ha) {
        // u = w - centre + u_err exactly: above the centre (up to 2 centre) the difference is
        // exact and u_err = 0; below it |centre| >= |w| as the fast sum needs.
        minus_log(P, neg_mul_add(a, a, b - P), w, w_lo);
        V u, u_err, hi, lo;
        fast_two_sum(splat<V>(-main_centre), w, u, u_err);
        const V slope = polynomial(w, poly::main_slope);
        pair_polynomial(u, slope * (u_err + w_lo), Slot<A>::main, poly::main_ha_lo, hi, lo);
        y = mul_add(x, hi, x * lo);
    } else {
        w = splat<V>(0.0) - qon::vm::ln_core::log_core<A>(P);
        y = x * polynomial(w - splat<V>(main_centre), Slot<A>::main);
    }

    const Mask<V> far = gt(w, splat<V>(main_end));
    if (any(far)) [[unlikely]]
        y = select(far, far_tail<A>(x, P, neg_mul_add(a, a, b - P), w, w_lo), y);
    return y;
}

// The scalar routine: specials, statuses and subnormal results.
struct Scalar {
    template <class T>
    static int eval(T x, T &r) {
        using namespace qon::vm::special;
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        T s = std::fabs(x);
        if (s > 1) return give(quiet_nan<T>, r, PAX_STATUS_ERRDOM);
        if (s == 1) return give(std::copysign(infinity<T>, x), r, PAX_STATUS_SING);
        if (x == 0) return give(x, r, PAX_STATUS_OK);
        LD v = erfinv_nonnegative(s);
        return finish(x, x < 0 ? -v : v, r);
    }
};

template <int A>
struct ErfInvDouble {
    using T = double;
    static constexpr int groups = 2;
    template <class V>
    [[gnu::always_inline]] static V eval(V x) { return erfinv_core<A>(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        const V ax = abs(x);
        return mask_or(gt_or_nan(ax, splat<V>(std::nextafter(1.0, 0.0))), lt(ax, splat<V>(0x1p-969)));
    }
    static int scalar(double x, double &r) { return Scalar::eval(x, r); }
};

struct ErfInvFloat {
    using T = float;
    static constexpr int groups = 1;
    template <class V>
    [[gnu::always_inline]] static V eval(V x) {
        return in_double(x, [](auto d) { return erfinv_core<EP>(d); });
    }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        const V ax = abs(x);
        return mask_or(gt_or_nan(ax, splat<V>(std::nextafter(1.0f, 0.0f))), lt(ax, splat<V>(0x1p-125f)));
    }
    static int scalar(float x, float &r) { return Scalar::eval(x, r); }
};

}  // namespace

QON_VM_VECTOR_KERNELS(d, ErfInv, double, ErfInvDouble<LA>, ErfInvDouble<HA>, ErfInvDouble<EP>)
QON_VM_VECTOR_KERNELS(s, ErfInv, float, ErfInvFloat, ErfInvFloat, ErfInvFloat)
