// Shared pieces of the special-function kernels (error functions, gamma, Bessel, exponential
// integral). The careful paths evaluate in x87 extended precision (64-bit significand) and round
// once to the result type: an extended-precision value with a relative error of a few units of
// 2^-64 rounds to within 0.5 + 2^-9 ulp of double and 0.5 + 2^-38 ulp of float.
//
// Here: rounding with the overflow and underflow statuses, the choice between the C library's
// extended and double functions per slot, e^(+-z^2) free of the rounding error of z^2, the
// scaled complementary error function erfcx, I0 and I1, the large-order bounds and order -2^31
// of the integer-order Bessel functions, the special arguments of the second kind, and the
// inverse error functions, which refine an initial estimate (relative error below 3e-3 over the
// whole range) by Halley's method on erf (arguments up to 1/2) or erfc (the tails, so that
// 1 - |x| keeps full relative accuracy down to the smallest subnormal); two steps reach 2^-64.
#pragma once

#include <qon/qon_pax.h>

#include <cmath>
#include <limits>

#include "vm/kernels/element_loop.hpp"

namespace qon::vm::special {

using LD = long double;

inline constexpr LD pi = 3.14159265358979323846264338327950288L;
inline constexpr LD sqrt_pi = 1.77245385090551602729816748334114518L;
inline constexpr LD two_over_sqrt_pi = 1.12837916709551257389615890312154517L;
inline constexpr LD sqrt2 = 1.41421356237309504880168872420969808L;
inline constexpr LD euler_gamma = 0.577215664901532860606512090082402431L;

template <class T>
inline constexpr T quiet_nan = std::numeric_limits<T>::quiet_NaN();
template <class T>
inline constexpr T infinity = std::numeric_limits<T>::infinity();

// r = v rounded to T, for a finite argument x that is not a pole: status 3 when the value
// rounds to infinity, 4 when a non-zero exact value rounds to a subnormal or zero while x is
// normal. `nonzero` says whether the exact value is non-zero (v may have underflowed itself).
template <class T>
int finish(T x, LD v, T &r, bool nonzero = true) {
    r = static_cast<T>(v);
    if (std::isinf(r)) return PAX_STATUS_OVERFLOW;
    if (nonzero && std::fabs(r) < std::numeric_limits<T>::min() && std::fabs(x) >= std::numeric_limits<T>::min())
        return PAX_STATUS_UNDERFLOW;
    return PAX_STATUS_OK;
}

// Stores a special result and returns its status.
template <class T>
int give(T value, T &r, int status) {
    r = value;
    return status;
}

template <class T>
bool is_integer(T x) {
    return std::isfinite(x) && x == std::trunc(x);
}

// Whether slot A of type T evaluates the extended-precision function of the C library rather
// than its double function: always for double HA, for double LA unless the double function
// meets 4 ulp (la_by_double), never for float, whose single rounding of the double function's
// result (a few ulp of double, or 1e-16 absolute near the zeros of an oscillating function)
// stays within 0.5 + 2^-25 ulp of float away from such zeros.
template <int A, class T>
constexpr bool extended(bool la_by_double) {
    return sizeof(T) == sizeof(double) && (A == HA || (A == LA && !la_by_double));
}

// e^(s z^2) for s = 1, -1 or -1/2: z^2 = hi + lo exactly (fma), e^(s hi) (1 + s lo), |lo| < 2^-63 hi.
inline LD exp_square(LD z, LD s) {
    LD hi = z * z;
    LD lo = std::fma(z, z, -hi);
    return std::exp(s * hi) * (1 + s * lo);
}

// erfcx(z) = e^(z^2) erfc(z) for z >= -106 (beyond, e^(z^2) leaves the extended range).
// Below 26 the product of e^(z^2) and erfc in extended precision; from 26 on the asymptotic
// series 1/(z sqrt(pi)) sum (-1)^k (2k-1)!! / (2 z^2)^k, whose terms fall below 2^-70 within
// twelve steps there.
inline LD erfcx(LD z) {
    if (z < 26) return exp_square(z, 1) * std::erfc(z);
    LD q = 1 / (2 * z * z), term = 1, sum = 1;
    for (int k = 1; k < 40 && std::fabs(term) > 0x1p-70L; ++k) {
        term *= -(2 * k - 1) * q;
        sum += term;
    }
    return sum / (z * sqrt_pi);
}

// I_nu(x) for nu = 0 or 1 and x >= 0. Up to 30 the power series
// (x/2)^nu sum (x^2/4)^k / (k! (k + nu)!), of positive terms (at most 70 of them); beyond, the
// asymptotic series e^x / sqrt(2 pi x) sum_k t_k, t_k = -t_(k-1) (4 nu^2 - (2k-1)^2) / (8 k x),
// whose terms fall below 2^-70 within 60 steps. Relative error a few units of 2^-64.
inline LD bessel_i(int nu, LD x) {
    if (x <= 30) {
        LD h = x * x / 4, term = nu == 0 ? 1 : x / 2, sum = term;
        for (int k = 1; k < 120 && term > sum * 0x1p-70L; ++k) {
            term *= h / (LD(k) * (k + nu));
            sum += term;
        }
        return sum;
    }
    LD mu = 4 * nu * nu, term = 1, sum = 1;
    for (int k = 1; k < 60 && std::fabs(term) > 0x1p-70L; ++k) {
        term *= -(mu - LD(2 * k - 1) * (2 * k - 1)) / (8 * k * x);
        sum += term;
    }
    return std::exp(x) / std::sqrt(2 * pi * x) * sum;
}

// Orders far beyond the argument (n >= 1, x > 0): |J_n(x)| <= (x/2)^n / n! and, where this
// matters, |Y_n(x)| >= (n-1)!/pi (2/x)^n. Where the logarithm of the first bound is below -800,
// J_n(x) lies far below every subnormal; where that of the second is above 800, Y_n(x) lies far
// beyond every finite value. Both answers come without the C library's recurrences, whose cost
// grows with the order.
inline LD log_j_bound(unsigned n, LD x) {
    int sign;
    return n * std::log(x / 2) - lgammal_r(LD(n) + 1, &sign);
}
inline LD log_y_bound(unsigned n, LD x) {
    int sign;
    return n * std::log(2 / x) + lgammal_r(LD(n), &sign) - std::log(pi);
}

// J or Y of integer order through the C library: its extended function (by_extended) or its
// double one (by_double) as slot A says. Order -2^31, which those cannot take, equals order 2^31
// (even) and comes in extended precision from one step of the three-term recurrence
// f_(m+1) = (2m/x) f_m - f_(m-1), m = 2^31 - 1.
template <int A, class T, class FX, class FD>
LD integer_order(int nu, T x, FX by_extended, FD by_double) {
    constexpr int m = std::numeric_limits<int>::max();
    if (nu == std::numeric_limits<int>::min()) {
        LD ax = std::fabs(LD(x));
        return 2 * LD(m) / ax * by_extended(m, ax) - by_extended(m - 1, ax);
    }
    return extended<A, T>(false) ? by_extended(nu, LD(x)) : LD(by_double(nu, double(x)));
}

// The arguments of a Bessel function of the second kind that need no evaluation: NaN, x < 0
// (NaN, status 1), +-0 (the pole's infinity, status 2) and +inf (+0). True when r and status
// are set.
template <class T>
bool second_kind_special(T x, T pole, T &r, int &status) {
    status = PAX_STATUS_OK;
    if (std::isnan(x)) r = x;
    else if (x < 0) r = quiet_nan<T>, status = PAX_STATUS_ERRDOM;
    else if (x == 0) r = pole, status = PAX_STATUS_SING;
    else if (std::isinf(x)) r = T(0);
    else return false;
    return true;
}

// Initial estimate of erfinv from L = ln(1 - x^2): the closed form
// sqrt(sqrt(t^2 - L/a) - t), t = 2/(pi a) + L/2, a = 0.147; relative error below 3e-3.
inline LD erfinv_estimate(LD L) {
    constexpr LD a = 0.147L;
    LD t = 2 / (pi * a) + L / 2;
    return std::sqrt(std::sqrt(t * t - L / a) - t);
}

// Halley's method for erf(y) = s (tail false) or erfc(y) = s (tail true) from the estimate y.
// Both have f''/f' = -2y, so the step is u / (1 + y u) with u = f/f'. The error after a step
// of size d is about |C| d^3 with |C| = (y^2 + 1)/3 (from f'''/f' = 4y^2 - 2), so the iteration
// stops once (y^2 + 1) d^3 <= 2^-66 y after an extended step: after the second step from the
// estimate. The first step only has to reach about 1e-8 (it leaves at most the double
// functions' error, about 2^-52 relative) and takes the double functions, which cost a tenth of
// the extended ones, except where erfc(y) would be subnormal in double (y > 26).
inline LD halley_erf(LD y, LD s, bool tail) {
    for (int i = 0; i < 6; ++i) {
        LD f, e;
        bool by_double = i == 0 && y < 26;
        if (by_double) {
            double t = static_cast<double>(y);
            f = (tail ? std::erfc(t) : std::erf(t)) - s;
            e = std::exp(-t * t);
        } else {
            f = (tail ? std::erfc(y) : std::erf(y)) - s;
            e = std::exp(-y * y);
        }
        LD d = (tail ? -two_over_sqrt_pi : two_over_sqrt_pi) * e;
        LD u = f / d;
        LD step = u / (1 + y * u);
        y -= step;
        LD a = std::fabs(step);
        if (!by_double && (y * y + 1) * a * a * a <= y * 0x1p-66L) break;
    }
    return y;
}

// erfcinv(c) for 0 < c <= 1/2.
inline LD erfcinv_tail(LD c) { return halley_erf(erfinv_estimate(std::log(c * (2 - c))), c, true); }

// erfinv(s) for 0 <= s < 1. Below 2^-24 the series sqrt(pi)/2 (s + pi s^3 / 12) is exact to
// 2^-96; above 1/2 the tail form on 1 - s, which is exact there.
inline LD erfinv_nonnegative(LD s) {
    if (s < 0x1p-24L) return sqrt_pi / 2 * (s + pi / 12 * s * s * s);
    if (s <= 0.5L) return halley_erf(erfinv_estimate(std::log1p(-s * s)), s, false);
    return erfcinv_tail(1 - s);
}

// erfcinv(c) for 0 < c < 2 with c exact in double: 1 - c and 2 - c are then exact.
inline LD erfcinv(LD c) {
    if (c <= 0.5L) return erfcinv_tail(c);
    if (c <= 1) return erfinv_nonnegative(1 - c);
    if (c < 1.5L) return -erfinv_nonnegative(c - 1);
    return -erfcinv_tail(2 - c);
}

}  // namespace qon::vm::special
