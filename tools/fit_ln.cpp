// Fits the polynomials of the logarithm kernels (src/vm/kernels/ln.cpp) and prints them as C++
// constants with their exact bit patterns.
//
//     g++ -O2 -std=gnu++20 tools/fit_ln.cpp -o /tmp/fit_ln -lquadmath
//     /tmp/fit_ln > src/vm/kernels/ln_poly.hpp
//
// With r = z c_j - 1 the reduced argument of ln_tables.hpp (|r| <= 1/16 with 8 intervals,
// <= 0.1198 with 4):
//   q(r) = (log1p(r) - r)/r^2 (the single HA method adds r^2 q(r) to the exact K + r); the printed
//        errors are of r^2 q, absolute, and relative to log1p r near 1 (|r| <= 1/24, interval
//        of c = 1);
//   P(r) = log1p(r)/r (the LA methods compute r P(r) + K), relative.
// The double HA and EP methods have no table: x = 2^k m, m in [sqrt(2)/2, sqrt(2)), f = m - 1,
// u = 2f/(2 + f), and ln m = 2 atanh(u/2) = u + u w R(w), w = u^2 (|u| <= 0.3431):
//   R(w) = (2 atanh(u/2) - u)/(u w), its error printed relative to ln m.
// The single EP method has no table and no division: ln m = f Q(f) on f in [sqrt(2)/2 - 1,
// sqrt(2) - 1] (the float sqrt(2)/2 rounded down):
//   Q(f) = log1p(f)/f, relative.
// Each polynomial but R and Q interpolates its function at the Chebyshev nodes of the interval
// (tools/chebyshev_fit.hpp; R and Q are minimax fits, see atanh_fit and mantissa_fit) and is
// rounded once to the element type it is evaluated in; errors are the largest at 4000 points,
// with the coefficients in quad and rounded.
#include "chebyshev_fit.hpp"

namespace {

using namespace qon::tools;

Q tail_part(Q r) { return fabsq(r) < 0x1p-40Q ? -0.5Q + r / 3 : (log1pq(r) - r) / (r * r); }
Q whole(Q r) { return fabsq(r) < 0x1p-40Q ? 1 - r / 2 : log1pq(r) / r; }
Q atanh_part(Q w) {
    if (w < 0x1p-40Q) return 1 / Q(12) + w / 80;
    const Q u = sqrtq(w);
    return (2 * atanhq(u / 2) - u) / (u * w);
}

template <class T>
void emit_tail(const char *name, Q r_max, int count) {
    const std::vector<Q> c = fit(tail_part, -r_max, r_max, 0, count - 1);
    const std::vector<T> rounded(c.begin(), c.end());
    Q absolute = 0, near_one = 0;
    for (int i = 0; i <= 4000; ++i) {
        const Q r = -r_max + 2 * r_max * i / 4000, e = r * r * fabsq(eval(rounded, r) - tail_part(r));
        absolute = fmaxq(absolute, e);
        if (fabsq(r) <= 1 / Q(24) && r != 0) near_one = fmaxq(near_one, e / fabsq(log1pq(r)));
    }
    std::printf("\n// %s: q, %d coefficients on |r| <= %.4g: r^2 q within 2^%.1f absolute, 2^%.1f relative "
                "near 1 (rounded to %s)\n",
                name, count, double(r_max), double(log2q(absolute)), double(log2q(near_one)),
                sizeof(T) == 4 ? "float" : "double");
    print_array(name, rounded);
}

template <class T>
void emit_whole(const char *name, Q r_max, int count) {
    const std::vector<Q> c = fit(whole, -r_max, r_max, 0, count - 1);
    const std::vector<T> rounded(c.begin(), c.end());
    Q relative = 0;
    for (int i = 0; i <= 4000; ++i) {
        const Q r = -r_max + 2 * r_max * i / 4000;
        relative = fmaxq(relative, fabsq(eval(rounded, r) - whole(r)) / whole(r));
    }
    std::printf("\n// %s: P, %d coefficients on |r| <= %.4g: relative error 2^%.1f (rounded to %s)\n", name, count,
                double(r_max), double(log2q(relative)), sizeof(T) == 4 ? "float" : "double");
    print_array(name, rounded);
}

// R of `count` coefficients (lowest degree first): the minimax fit of ln m in relative error,
// by Lawson's iteration on u w w^j / ln m against (ln m - u) / ln m.
std::vector<Q> atanh_fit(Q u_max, int count) {
    const int points = 3000;
    std::vector<std::vector<Q>> a(points, std::vector<Q>(count));
    std::vector<Q> b(points);
    for (int i = 0; i < points; ++i) {
        const Q u = half_cosine_point(u_max, i, points), v = u * u, g = 2 * atanhq(u / 2);
        for (int j = 0; j < count; ++j) a[i][j] = u * v * powq(v, j) / g;
        b[i] = (g - u) / g;
    }
    return lawson(a, b);
}

// Q of `count` coefficients (lowest degree first) for ln(1 + f) = f Q(f) on [lo, hi]: the
// minimax fit in relative error, by Lawson's iteration at Chebyshev points of the interval.
std::vector<Q> mantissa_fit(Q lo, Q hi, int count) {
    const int points = 3000;
    std::vector<std::vector<Q>> a(points, std::vector<Q>(count));
    std::vector<Q> b(points, 1);
    for (int i = 0; i < points; ++i) {
        const Q f = (lo + hi) / 2 + (hi - lo) / 2 * cosq(pi() * (i + 0.5Q) / points);
        for (int j = 0; j < count; ++j) a[i][j] = powq(f, j) / whole(f);
    }
    return lawson(a, b);
}

template <class T>
void emit_mantissa(const char *name, Q lo, Q hi, int count) {
    const std::vector<Q> c = mantissa_fit(lo, hi, count);
    const std::vector<T> rounded(c.begin(), c.end());
    Q relative = 0;
    for (int i = 0; i <= 4000; ++i) {
        const Q f = lo + (hi - lo) * i / 4000;
        relative = fmaxq(relative, fabsq(eval(rounded, f) - whole(f)) / whole(f));
    }
    std::printf("\n// %s: Q, %d coefficients on %.4g <= f <= %.4g: relative error 2^%.1f (rounded to %s)\n", name,
                count, double(lo), double(hi), double(log2q(relative)), sizeof(T) == 4 ? "float" : "double");
    print_array(name, rounded);
}

template <class T>
void emit_atanh(const char *name, Q u_max, int count) {
    const std::vector<Q> c = atanh_fit(u_max, count);
    const std::vector<T> rounded(c.begin(), c.end());
    Q relative = 0;
    for (int i = 1; i <= 4000; ++i) {
        const Q u = u_max * i / 4000, w = u * u;
        relative = fmaxq(relative, u * w * fabsq(eval(rounded, w) - atanh_part(w)) / (2 * atanhq(u / 2)));
    }
    std::printf("\n// %s: R, %d coefficients on |u| <= %.4g: relative error 2^%.1f (rounded to %s)\n", name, count,
                double(u_max), double(log2q(relative)), sizeof(T) == 4 ? "float" : "double");
    print_array(name, rounded);
}

}  // namespace

int main() {
    const Q eight = 0.0625Q, four = 0.1198Q;
    std::printf("// Polynomials of the logarithm kernels, generated by tools/fit_ln.cpp (highest degree first;\n"
                "// see there for the functions, intervals and fitting).\n"
                "#pragma once\n\n#include <bit>\n\nnamespace qon::vm::ln_poly {\n");
    emit_whole<double>("whole_la", four, 13);
    const Q u_max = 2 * (sqrtq(2) - 1) / (sqrtq(2) + 1) + 0x1p-20Q;
    emit_atanh<double>("atanh_ha", u_max, 7);
    emit_atanh<double>("atanh_ep", u_max, 3);
    emit_tail<float>("tail_ha_f", eight, 5);
    emit_whole<float>("whole_la_f", eight, 5);
    emit_mantissa<float>("mantissa_ep_f", 0.70710676908493042Q - 1 - 0x1p-20Q, 1.4142135381698608Q - 1 + 0x1p-20Q, 5);
    std::printf("\n}  // namespace qon::vm::ln_poly\n");
    return 0;
}
