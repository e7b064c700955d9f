// __float128 references for the special functions that libquadmath lacks, each by a method
// other than the kernel's, and an error measure for functions whose zeros make ulps of the
// result meaningless: ulps of max(|exact|, floor(x)), an absolute bound near the zeros.
#pragma once

#include <gtest/gtest.h>
#include <qon/qon_pax.h>
#include <quadmath.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "common/accuracy.hpp"

namespace qon::test::special {

using Q = __float128;
namespace acc = qon::test::accuracy;

inline Q q_pi() { return acosq(-1); }
inline Q q_eps() { return ldexpq(1, -112); }
inline Q q_euler_gamma() { return strtoflt128("0.57721566490153286060651209008240243104", nullptr); }

// erfinv by Newton's method from points where the iteration is monotone: on erf from
// x sqrt(pi)/2 (below the root, erf being concave) for |x| <= 1/2, on ln erfc from
// sqrt(-ln c) (above the root, since erfc(y) <= e^(-y^2)) in the tails, c = 1 - |x| exact.
inline Q erfcinv_tail(Q c) {
    Q y = sqrtq(-logq(c));
    for (int i = 0; i < 200; ++i) {
        Q e = erfcq(y);
        Q step = (logq(e) - logq(c)) / (-2 / sqrtq(q_pi()) * expq(-y * y) / e);
        y -= step;
        if (fabsq(step) <= y * q_eps()) break;
    }
    return y;
}
inline Q erfinv_q(Q x) {
    if (isnanq(x) || fabsq(x) > 1) return nanq("");
    if (fabsq(x) == 1) return copysignq(HUGE_VALQ, x);
    if (x == 0) return x;
    Q s = fabsq(x), y;
    if (s <= 0.5) {
        y = s * sqrtq(q_pi()) / 2;
        for (int i = 0; i < 200; ++i) {
            Q step = (erfq(y) - s) / (2 / sqrtq(q_pi()) * expq(-y * y));
            y -= step;
            if (fabsq(step) <= y * q_eps()) break;
        }
    } else {
        y = erfcinv_tail(1 - s);
    }
    return x < 0 ? -y : y;
}
inline Q erfcinv_q(Q c) {
    if (isnanq(c) || c < 0 || c > 2) return nanq("");
    if (c == 0) return HUGE_VALQ;
    if (c == 2) return -HUGE_VALQ;
    if (c <= 0.5) return erfcinv_tail(c);
    if (c < 1.5) return erfinv_q(1 - c);
    return -erfcinv_tail(2 - c);
}

// I_n(x), n = 0 or 1: the power series below 1; from 1 on the trapezoidal rule on
// (1/pi) int_0^pi e^(x cos t) cos(n t) dt, whose periodic analytic integrand makes the rule
// converge geometrically (32 + 8 sqrt(x) nodes leave an aliasing error near e^-128).
inline Q bessel_i_q(int n, Q x) {
    if (isnanq(x)) return x;
    Q s = fabsq(x);
    Q sign = n == 1 && signbitq(x) ? -1 : 1;
    if (s > 12000) return sign * HUGE_VALQ;
    if (s < 1) {
        Q h = s * s / 4, term = n == 0 ? 1 : s / 2, sum = term;
        for (int k = 1; k < 60; ++k) {
            term *= h / (Q(k) * (k + n));
            sum += term;
        }
        return sign * sum;
    }
    int nodes = 32 + static_cast<int>(8 * std::sqrt(double(s)));
    Q sum = 0;
    for (int k = 0; k <= nodes; ++k) {
        Q t = q_pi() * k / nodes;
        Q w = k == 0 || k == nodes ? 0.5 : 1;
        sum += w * expq(s * cosq(t)) * (n == 0 ? 1 : cosq(t));
    }
    return sign * sum / nodes;
}

// E1(x): the power series below 1/4; from 1/4 to 60 the trapezoidal rule on
// e^-x int e^(-e^s) e^s / (x + e^s) ds over the real line (u = e^s in int_0^inf e^-u/(x+u) du),
// analytic in a strip of half-width pi/2 and decaying on both sides: step 0.2 (discretisation
// error e^(-pi^2/0.2) = e^-49) over [ln x - 45, 5] (truncation below e^-45);
// beyond 60 the asymptotic series e^-x / x sum (-1)^k k! / x^k, whose terms fall below 2^-80.
inline Q expint1_q(Q x) {
    if (isnanq(x) || x < 0) return nanq("");
    if (x == 0) return HUGE_VALQ;
    if (x < 0.25) {
        Q term = 1, sum = 0;
        for (int k = 1; k < 60; ++k) {
            term *= -x / k;
            sum += term / k;
        }
        return -q_euler_gamma() - logq(x) - sum;
    }
    if (x <= 60) {
        Q h = 0.2, sum = 0;
        for (int k = static_cast<int>((std::log(double(x)) - 45) * 5); k <= 25; ++k) {
            Q e = expq(h * k);
            sum += expq(-e) * e / (x + e);
        }
        return expq(-x) * sum * h;
    }
    if (x > 12000) return 0;
    Q term = 1, sum = 1;
    for (int k = 1; k < 60; ++k) {
        term *= -k / x;
        sum += term;
    }
    return expq(-x) / x * sum;
}

// The largest error of each slot of a caller in ulps of max(|exact|, floor(x)), over samples
// drawn uniformly from [lo, hi] (fixed seed).
template <class T>
std::array<double, 3> envelope_error(const acc::Caller<T> &caller, const std::function<Q(Q)> &ref,
                                     const std::function<double(double)> &floor, double lo, double hi,
                                     long long samples) {
    std::mt19937_64 rng(0x5EC1A1u);
    std::uniform_real_distribution<double> u(lo, hi);
    int n = static_cast<int>(acc::sample_count(samples));
    std::vector<T> x(n), r(n);
    std::vector<Q> exact(n);
    for (int i = 0; i < n; ++i) {
        x[i] = static_cast<T>(u(rng));
        exact[i] = ref(x[i]);
    }
    std::array<double, 3> worst{};
    for (int s = 0; s < 3; ++s) {
        caller(s, n, x.data(), x.data(), r.data(), r.data());
        for (int i = 0; i < n; ++i) {
            Q scale = std::max(fabsq(exact[i]), Q(floor(double(x[i]))));
            int e = std::max(static_cast<int>(ilogbq(scale)), std::numeric_limits<T>::min_exponent - 1);
            double err = double(fabsq(Q(r[i]) - exact[i]) / ldexpq(1, e - (std::numeric_limits<T>::digits - 1)));
            worst[s] = std::max(worst[s], std::isnan(err) ? HUGE_VAL : err);
        }
    }
    return worst;
}

// A caller for a one-argument table.
template <class T>
acc::Caller<T> caller_u(qon_pax_kernel_fn const (&table)[3]) {
    return [&table](int s, int n, const T *x, const T *, T *r, T *) {
        reinterpret_cast<void (*)(int, const T *, T *)>(table[s])(n, x, r);
    };
}
// A caller for an order-and-argument table at a fixed order.
template <class T>
acc::Caller<T> caller_nu(qon_pax_kernel_fn const (&table)[3], int nu) {
    return [&table, nu](int s, int n, const T *x, const T *, T *r, T *) {
        reinterpret_cast<void (*)(int, const T *, int, T *)>(table[s])(n, x, nu, r);
    };
}

}  // namespace qon::test::special
