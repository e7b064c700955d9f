// Fits the polynomials of the sine, cosine and tangent kernels (src/vm/kernels/trig.hpp,
// tan.cpp) and prints them as C++ constants with their exact bit patterns.
//
//     g++ -O2 -std=gnu++20 tools/fit_trig.cpp -o /tmp/fit_trig -lquadmath
//     /tmp/fit_trig > src/vm/kernels/trig_poly.hpp
//
// In z = r^2:
//   S(z) = (sin r - r)/(r z), so that sin r = r + r z S(z); its error is weighted by
//        r z / sin r, the relative error it makes in sin r; and by pi/2 its part past -1/6,
//        (S(z) + 1/6)/z, for the pairs that carry -r^3/6 exactly (weighted by r z^2 / sin r);
//   C(z) = (cos r - 1 + z/2)/z^2, so that cos r = 1 - z/2 + z^2 C(z), weighted by z^2/cos r;
//   and for the short sine-and-cosine pairs, Q(z) = sin r / r (relative) and
//   C1(z) = (cos r - 1)/z, so that cos r = 1 + z C1(z), weighted by z/cos r.
// Intervals: |r| <= pi/2 + 2^-20 (the reduction by pi) and |r| <= pi/4 + 2^-20 (by pi/2).
// Each polynomial interpolates its function at the Chebyshev nodes of the z interval
// (tools/chebyshev_fit.hpp) and is rounded once to the element type it is evaluated in (S by
// pi/2 and its part past -1/6 are instead near-minimax fits, rounded one coefficient at a time;
// see minimax_rounded); the printed errors are the largest weighted errors at 4000 points, with
// the coefficients in quad and rounded. The short sine fit by pi of the single HA sine and
// cosine (in double lanes) is made to overshoot at the end of the interval: the constant coefficient
// is raised until r + r z S(z) exceeds sin r there by 8 ulp of the element type, so that
// sin(+-pi/2) and cos 0 come out 1 (at most about twice the fit error is added).
//
// The double EP sine by pi takes sin r = r Q(z) with a free constant coefficient (one
// multiplication fewer than r + r z S(z) for the same relative error: degree 9 reaches 2^-27.3
// where the form with the constant 1 needs degree 11) and no clamp: Q is the minimax fit of
// sin r / r in relative error, found by Lawson's iteration (weighted least squares whose weights
// are multiplied by the errors each round), under the constraint that r Q(z) = (1 - eta) sin r at
// the end of the interval, so that the error is negative there and r Q(z) stays below 1. That is
// checked in double arithmetic, Horner with fused multiply-adds as the kernel evaluates it.
// (A fit that is exactly 1 at RN(pi/2) cannot also stay at or below 1 next to it: the
// evaluation's own rounding, about an ulp, lifts some neighbours to 1 + 2^-52.)
// The single EP sine takes the same form with 3 coefficients, fitted on |r| <= pi/2 + 2^-4
// (1/pi rounded to a float moves the reduction's m by one near |x| = 2^20, leaving r up to
// 0.042 past pi/2), the constraint at pi/2 with eta = 2^-15, and every float from 1.25 to the
// end checked. The EP cosines take the same forms with the constraint reversed (eta < 0: r Q(z)
// overshoots at pi/2) and clamp to [-1, 1], so that cos 0 is exactly 1: in double eta = -2^-40;
// in float eta = -2^-20 on |r| <= pi/2 + 0.1, since the single cosine's m is floor(x/pi) + 1/2
// from the product x/pi rounded to a float, which near |x| = 2^20 leaves r up to 0.092 past pi/2
// (measured over every float of [2^19, 2^20]).
//
// The tangent takes tan r = r N(z) / D(z) with D(0) = 1, a near-minimax rational fit in
// relative error found by Loeb's linearization and Lawson's iteration (see tangent_fit), on
// |r| <= pi/4 + 2^-20 in double and pi/4 + 2^-4 in float: 2/pi rounded to a float is off by
// 4.0e-8 of itself, so near |x| = 2^20 the float reduction's n can be the neighbour of
// round(2x/pi) when 2x/pi is within 0.027 of a half-integer, leaving r up to 0.043 past pi/4.
#include <cmath>
#include <string>

#include "chebyshev_fit.hpp"

namespace {

using namespace qon::tools;

Q sine_part(Q z) {
    if (z < 0x1p-40Q) return -1 / Q(6) + z / 120;
    const Q r = sqrtq(z);
    return (sinq(r) - r) / (r * z);
}
Q cosine_part(Q z) {
    if (z < 0x1p-40Q) return 1 / Q(24) - z / 720;
    return (cosq(sqrtq(z)) - 1 + z / 2) / (z * z);
}
Q sine_whole(Q z) { return z < 0x1p-40Q ? 1 - z / 6 : sinq(sqrtq(z)) / sqrtq(z); }
Q cosine_one(Q z) { return z < 0x1p-40Q ? -0.5Q + z / 24 : (cosq(sqrtq(z)) - 1) / z; }
Q whole_weight(Q) { return 1; }
Q cosine_one_weight(Q z) { return z / cosq(sqrtq(z)); }
Q sine_rest(Q z) { return z < 0x1p-30Q ? 1 / Q(120) - z / 5040 : (sine_part(z) + 1 / Q(6)) / z; }
Q sine_rest_weight(Q z) { return z == 0 ? 0 : sqrtq(z) * z * z / sinq(sqrtq(z)); }
Q sine_weight(Q z) { return z == 0 ? 0 : sqrtq(z) * z / sinq(sqrtq(z)); }
Q cosine_weight(Q z) { return z * z / cosq(sqrtq(z)); }

template <class T>
void emit(const char *name, Q (*f)(Q), Q (*weight)(Q), Q r_max, int count, bool overshoot = false) {
    const Q z_max = r_max * r_max;
    const std::vector<Q> c = fit(f, 0, z_max, 0, count - 1);
    std::vector<T> rounded(c.begin(), c.end());
    if (overshoot) {
        const Q ulp = sizeof(T) == 4 ? 0x1p-23Q : 0x1p-52Q;
        const Q wanted = 8 * ulp / weight(z_max);  // in units of S at the end
        const Q short_by = wanted - (eval(rounded, z_max) - f(z_max));
        if (short_by > 0) rounded[0] = static_cast<T>(rounded[0] + short_by);
    }
    Q fit_error = 0, rounded_error = 0;
    for (int i = 0; i <= 4000; ++i) {
        const Q z = z_max * i / 4000, exact = f(z), w = weight(z);
        fit_error = fmaxq(fit_error, w * fabsq(eval_q(c, z) - exact));
        rounded_error = fmaxq(rounded_error, w * fabsq(eval(rounded, z) - exact));
    }
    const bool single = sizeof(T) == 4;
    std::printf("\n// %s: %d coefficients on |r| <= %.17g: error 2^%.1f (2^%.1f rounded to %s%s)\n", name, count,
                double(r_max), double(log2q(fit_error)), double(log2q(rounded_error)), single ? "float" : "double",
                overshoot ? ", overshooting at the end" : "");
    print_array(name, rounded);
}

// The number of sample points of a fit on (0, r_max].
constexpr int points = 3000;
Q sample(Q r_max, int i) { return half_cosine_point(r_max, i, points); }

// f(z) ~ polynomial of `count` coefficients in weighted error w(z) |p(z) - f(z)| on |r| <= r_max,
// near-minimax by Lawson's iteration, with the coefficients rounded to T one at a time from the
// lowest degree (each rounding is absorbed by refitting the ones above it).
template <class T>
std::vector<T> minimax_rounded(Q (*f)(Q), Q (*weight)(Q), Q r_max, int count) {
    const int n = 2000;
    std::vector<Q> z(n), w(n), v(n);
    for (int i = 0; i < n; ++i) {
        const Q r = half_cosine_point(r_max, i, n);
        z[i] = r * r, w[i] = weight(z[i]), v[i] = f(z[i]);
    }
    std::vector<T> out;
    for (int j = 0; j < count; ++j) {
        const int k = count - j;
        std::vector<std::vector<Q>> a(n, std::vector<Q>(k));
        std::vector<Q> b(n);
        for (int i = 0; i < n; ++i) {
            Q rest = v[i];
            for (int l = 0; l < j; ++l) rest -= Q(out[l]) * powq(z[i], l);
            for (int l = 0; l < k; ++l) a[i][l] = w[i] * powq(z[i], j + l);
            b[i] = w[i] * rest;
        }
        out.push_back(static_cast<T>(lawson(a, b, 300)[0]));
    }
    return out;
}

// Emits the polynomial of minimax_rounded with its weighted error.
template <class T>
void emit_minimax(const char *name, Q (*f)(Q), Q (*weight)(Q), Q r_max, int count) {
    const std::vector<T> c = minimax_rounded<T>(f, weight, r_max, count);
    Q error = 0;
    for (int i = 1; i <= 20000; ++i) {
        const Q r = r_max * i / 20000, z = r * r;
        error = fmaxq(error, weight(z) * fabsq(eval(c, z) - f(z)));
    }
    std::printf("\n// %s: %d coefficients on |r| <= %.17g, near-minimax and rounded to %s: error 2^%.1f\n", name,
                count, double(r_max), sizeof(T) == 4 ? "float" : "double", double(log2q(error)));
    print_array(name, c);
}

// Q(z) of `count` coefficients (lowest degree first) with r Q(z) ~ sin r in relative error on
// |r| <= r_max and r_c Q(r_c^2) = (1 - eta) sin r_c. With the constraint solved for the
// constant coefficient, the relative error is b(r) - sum_j c_j A_j(r) over the others, linear
// in them: A_j = r (z^j - Z^j) / sin r, b = r (1 - eta) sin(r_c) / (r_c sin r) - 1, Z = r_c^2.
std::vector<Q> sine_free_fit(Q r_max, int count, Q eta, Q r_c) {
    const Q z_max = r_c * r_c, end = (1 - eta) * sinq(r_c) / r_c;
    const int k = count - 1;
    std::vector<std::vector<Q>> a(points, std::vector<Q>(k));
    std::vector<Q> b(points);
    for (int i = 0; i < points; ++i) {
        const Q r = sample(r_max, i), z = r * r, s = sinq(r);
        for (int j = 0; j < k; ++j) a[i][j] = r * (powq(z, j + 1) - powq(z_max, j + 1)) / s;
        b[i] = r * end / s - 1;
    }
    const std::vector<Q> c = lawson(a, b);
    std::vector<Q> out(count);
    out[0] = end;
    for (int j = 0; j < k; ++j) {
        out[j + 1] = -c[j];
        out[0] += c[j] * powq(z_max, j + 1);
    }
    return out;
}

// tan r ~ r N(z) / D(z) in relative error on |r| <= r_max, N of `nn` coefficients and D of `nd`
// with D(0) = 1 (both lowest degree first). The error r N / (t D) - 1 is linearized as
// (r N - t D) / (t D'), with D' the denominator of the previous round (Loeb's scheme), which is
// linear in the coefficients; each round is one of Lawson's on it.
void tangent_fit(Q r_max, int nn, int nd, std::vector<Q> &num, std::vector<Q> &den) {
    const int k = nn + nd - 1;
    std::vector<std::vector<Q>> a(points, std::vector<Q>(k));
    std::vector<Q> b(points), w(points, Q(1) / points);
    den.assign(nd, 0);
    den[0] = 1;
    for (int round = 0; round < 600; ++round) {
        for (int i = 0; i < points; ++i) {
            const Q r = sample(r_max, i), z = r * r, t = tanq(r), d = eval_q(den, z);
            for (int j = 0; j < nn; ++j) a[i][j] = r * powq(z, j) / (t * d);
            for (int j = 1; j < nd; ++j) a[i][nn + j - 1] = -powq(z, j) / d;
            b[i] = 1 / d;
        }
        const std::vector<Q> c = lawson_round(a, b, w);
        num.assign(c.begin(), c.begin() + nn);
        for (int j = 1; j < nd; ++j) den[j] = c[nn + j - 1];
    }
}

// The tangent's pair as the kernel evaluates it in T: z = r r, N and D by Horner with fused
// multiply-adds, r N / D.
template <class T>
Q tangent_eval(const std::vector<T> &num, const std::vector<T> &den, T r) {
    const T z = r * r;
    T n = num.back(), d = den.back();
    for (int i = static_cast<int>(num.size()) - 2; i >= 0; --i) n = std::fma(n, z, num[i]);
    for (int i = static_cast<int>(den.size()) - 2; i >= 0; --i) d = std::fma(d, z, den[i]);
    return Q(r * n) / Q(d);
}

// Emits N and D of `nn` and `nd` coefficients as name_num and name_den.
template <class T>
void emit_tangent(const char *name, Q r_max, int nn, int nd) {
    std::vector<Q> num, den;
    tangent_fit(r_max, nn, nd, num, den);
    const std::vector<T> n_t(num.begin(), num.end()), d_t(den.begin(), den.end());
    Q fit_error = 0, rounded_error = 0;
    for (int i = 1; i <= 20000; ++i) {
        const T r = static_cast<T>(r_max * i / 20000);
        const Q t = tanq(Q(r)), z = Q(r) * Q(r);
        fit_error = fmaxq(fit_error, fabsq(Q(r) * eval_q(num, z) / (eval_q(den, z) * t) - 1));
        rounded_error = fmaxq(rounded_error, fabsq(tangent_eval(n_t, d_t, r) / t - 1));
    }
    std::printf("\n// %s: tan r = r N(z) / D(z), %d and %d coefficients on |r| <= %.17g: error 2^%.1f\n"
                "// (2^%.1f evaluated in %s before the division)\n",
                name, nn, nd, double(r_max), double(log2q(fit_error)), double(log2q(rounded_error)),
                sizeof(T) == 4 ? "float" : "double");
    const std::string base = name;
    print_array((base + "_num").c_str(), n_t);
    print_array((base + "_den").c_str(), d_t);
}

// r Q(z) as the EP kernels evaluate it in T: z = r r, Horner with fused multiply-adds, r times Q.
template <class T>
T sine_free_eval(const std::vector<T> &c, T r) {
    const T z = r * r;
    T q = c.back();
    for (int i = static_cast<int>(c.size()) - 2; i >= 0; --i) q = std::fma(q, z, c[i]);
    return r * q;
}

// Emits Q of `count` coefficients on |r| <= r_max, with r Q(z) = (1 - eta) sin r at r = r_c.
// With eta > 0 (the free sine) r Q(z) is checked to stay below 1 from r = 1.25 to r_past in T
// (at every float, or at 200001 doubles); with eta < 0 (the clamped cosines) to reach at least 1
// at r = pi/2 rounded to T, so that the clamp gives cos 0 = 1.
template <class T>
void emit_free(const char *name, Q r_max, int count, Q eta, Q r_c, Q r_past) {
    const std::vector<Q> c = sine_free_fit(r_max, count, eta, r_c);
    const std::vector<T> rounded(c.begin(), c.end());
    Q fit_error = 0, rounded_error = 0;
    for (int i = 1; i <= 4000; ++i) {
        const Q r = r_max * i / 4000, s = sinq(r);
        fit_error = fmaxq(fit_error, fabsq(r * eval_q(c, r * r) / s - 1));
        rounded_error = fmaxq(rounded_error, fabsq(r * eval(rounded, r * r) / s - 1));
    }
    std::printf("\n// %s: %d coefficients of r Q(z) on |r| <= %.17g: error 2^%.1f (2^%.1f rounded to %s),\n",
                name, count, double(r_max), double(log2q(fit_error)), double(log2q(rounded_error)),
                sizeof(T) == 4 ? "float" : "double");
    if (eta < 0) {
        const T at = sine_free_eval(rounded, static_cast<T>(pi() / 2));
        if (at < 1) {
            std::fprintf(stderr, "%s is %.17g at pi/2\n", name, double(at));
            std::exit(1);
        }
        std::printf("// at least 1 at r = pi/2 rounded (1 + 2^%.1f)\n", double(log2q(Q(at) - 1)));
    } else {
        T top = 0;
        const T from = 1.25, to = static_cast<T>(r_past);
        if constexpr (sizeof(T) == 4) {
            for (T r = from; r <= to; r = std::nextafter(r, to + 1)) top = std::fmax(top, sine_free_eval(rounded, r));
        } else {
            for (int i = 0; i <= 200000; ++i) top = std::fmax(top, sine_free_eval(rounded, from + (to - from) * i / 200000));
        }
        if (top >= 1) {
            std::fprintf(stderr, "%s reaches %.17g\n", name, double(top));
            std::exit(1);
        }
        std::printf("// below 1 by 2^%.1f at least on 1.25 <= r <= %.17g\n", double(log2q(1 - Q(top))), double(r_past));
    }
    print_array(name, rounded);
}

}  // namespace

int main() {
    const Q by_pi = pi() / 2 + 0x1p-20Q, by_half_pi = pi() / 4 + 0x1p-20Q;
    std::printf("// Polynomials of the sine, cosine and tangent kernels, generated by tools/fit_trig.cpp\n"
                "// (highest degree first; see there for the functions, intervals and fitting).\n"
                "#pragma once\n\n#include <bit>\n\nnamespace qon::vm::trig_poly {\n");
    emit_minimax<double>("sine_half_pi_6", sine_part, sine_weight, by_half_pi, 6);
    emit_minimax<double>("sine_rest_half_pi_5", sine_rest, sine_rest_weight, by_half_pi, 5);
    emit<double>("cosine_half_pi_6", cosine_part, cosine_weight, by_half_pi, 6);
    emit<double>("sine_pi_8", sine_part, sine_weight, by_pi, 8);
    emit<double>("sine_pi_5", sine_part, sine_weight, by_pi, 5, true);
    emit<float>("sine_pi_5f", sine_part, sine_weight, by_pi, 5);
    emit_free<double>("sine_pi_free_5", by_pi, 5, 0x1p-40Q, by_pi, by_pi);
    emit_free<double>("cosine_pi_free_5", by_pi, 5, -0x1p-40Q, by_pi, by_pi);
    const Q by_pi_float = pi() / 2 + 0x1p-4Q;
    emit_free<float>("sine_pi_free_3f", by_pi_float, 3, 0x1p-15Q, pi() / 2, by_pi_float);
    const Q by_pi_floor_float = pi() / 2 + 0.1Q;
    emit_free<float>("cosine_pi_free_3f", by_pi_floor_float, 3, -0x1p-20Q, pi() / 2, by_pi_floor_float);
    const Q by_half_pi_float = pi() / 4 + 0x1p-4Q;
    emit<double>("sine_quarter_4", sine_whole, whole_weight, by_half_pi, 4);
    emit<double>("cosine_quarter_4", cosine_one, cosine_one_weight, by_half_pi, 4);
    emit<float>("sine_quarter_4f", sine_whole, whole_weight, by_half_pi_float, 4);
    emit<float>("cosine_quarter_4f", cosine_one, cosine_one_weight, by_half_pi_float, 4);
    emit_tangent<double>("tangent_3_3", by_half_pi, 3, 3);
    emit_tangent<float>("tangent_2_2f", by_half_pi_float, 2, 2);
    std::printf("\n}  // namespace qon::vm::trig_poly\n");
    return 0;
}
