// Fits the polynomials of the inverse error function kernels (src/vm/kernels/erfinv.cpp) and
// prints them as C++ constants with their exact bit patterns.
//
//     g++ -O2 -std=gnu++20 tools/fit_erfinv.cpp -o /tmp/fit_erfinv -lquadmath
//     /tmp/fit_erfinv > src/vm/kernels/erfinv_poly.hpp      (about a minute; a name prefix as
//                                                          argument prints only those fits)
//
// With w = -ln(1 - x^2), x = sqrt(1 - e^-w):
//   main   p(w) = erfinv(x)/x on 0 <= w <= 6.25 (|x| <= 0.998), a polynomial in w;
//          p'(w), a short polynomial used only to carry the low part of w in the HA method;
//   far    erfinv(x) as a polynomial in t - centre, t = sqrt(w), on 2.5 <= t <= 4 and
//          4 <= t <= 6.07 (1 - |x| down to 2^-53); one set, for the HA evaluation every slot
//          uses there.
// The reference is __float128: Newton's method on erf (x <= 1/2) or on ln erfc (1 - x =
// e^-w / (1 + x), exact in the tails) to 2^-110. Each polynomial interpolates the function at
// the Chebyshev nodes of its interval (near-minimax), is re-expanded in powers of u - centre,
// and its coefficients are rounded once to double; the printed error is the largest relative
// error of the polynomial at 3000 points, with its coefficients in __float128 (the fit) and
// rounded to double. The HA sets also give the rounding errors of their two lowest coefficients,
// which the HA methods carry as low parts.
#include "chebyshev_fit.hpp"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

namespace {

using namespace qon::tools;

// erfinv(x) for 0 < x < 1 given also c = 1 - x to full relative precision.
Q erfinv_q(Q x, Q c) {
    if (x <= 0.5Q) {
        Q y = x * sqrtq(pi()) / 2;
        for (int i = 0; i < 100; ++i) {
            Q step = (erfq(y) - x) / (2 / sqrtq(pi()) * expq(-y * y));
            y -= step;
            if (fabsq(step) <= y * 0x1p-112Q) break;
        }
        return y;
    }
    Q y = sqrtq(-logq(c));
    for (int i = 0; i < 200; ++i) {
        Q e = erfcq(y);
        Q step = (logq(e) - logq(c)) / (-2 / sqrtq(pi()) * expq(-y * y) / e);
        y -= step;
        if (fabsq(step) <= y * 0x1p-112Q) break;
    }
    return y;
}

// erfinv(x) and x for x = sqrt(1 - e^-w).
Q erfinv_of_w(Q w, Q *xp = nullptr) {
    Q x = sqrtq(-expm1q(-w));
    if (xp) *xp = x;
    if (w == 0) return 0;
    return erfinv_q(x, expq(-w) / (1 + x));
}

Q p_of_w(Q w) {
    if (w < 0x1p-80Q) return sqrtq(pi()) / 2 * (1 + w * pi() / 12);
    Q x;
    Q y = erfinv_of_w(w, &x);
    return y / x;
}

// p'(w) by a central difference in quad precision.
Q dp_of_w(Q w) {
    Q h = 0x1p-30Q;
    Q lo = w - h < 0 ? 0 : w - h;
    return (p_of_w(w + h) - p_of_w(lo)) / (w + h - lo);
}

Q far_of_t(Q t) { return erfinv_of_w(t * t); }

// The lowest degree from n on whose fit (coefficients in quad) is within target; printed with
// the error after rounding the coefficients to double and the amplification of rounding
// errors (sum of |terms| over |value|).
void emit(const char *name, const std::function<Q(Q)> &f, Q a, Q b, Q centre, int n, Q target) {
    constexpr int points = 3000;
    std::vector<Q> us(points + 1), exact(points + 1);
    for (int i = 0; i <= points; ++i) {
        us[i] = a + (b - a) * i / points;
        exact[i] = f(us[i]);
    }
    for (; n < 40; ++n) {
        std::vector<Q> c = fit(f, a, b, centre, n);
        std::vector<double> d(c.begin(), c.end());
        Q worst = 0, rounded = 0, cond = 0;
        for (int i = 0; i <= points; ++i) {
            Q u = us[i] - centre;
            worst = fmaxq(worst, fabsq(eval_q(c, u) - exact[i]) / fabsq(exact[i]));
            rounded = fmaxq(rounded, fabsq(eval(d, u) - exact[i]) / fabsq(exact[i]));
            Q sum = 0;
            for (int k = 0; k <= n; ++k) sum += fabsq(Q(d[k]) * powq(fabsq(u), k));
            cond = fmaxq(cond, sum / fabsq(exact[i]));
        }
        if (worst > target && n < 39) continue;
        std::printf("// %s: degree %d on [%g, %g] in u - %g: fit error 2^%.1f, rounded coefficients 2^%.1f, "
                    "sum|terms|/|p| %.3g\n",
                    name, n, double(a), double(b), double(centre), double(log2q(worst)), double(log2q(rounded)),
                    double(cond));
        std::printf("static constexpr double %s[%d] = {\n", name, n + 1);
        for (int k = n; k >= 0; --k) {
            std::uint64_t bits;
            std::memcpy(&bits, &d[k], sizeof bits);
            std::printf("    std::bit_cast<double>(0x%016llXull),  // %.17g\n", static_cast<unsigned long long>(bits), d[k]);
        }
        std::printf("};\n");
        if (std::strstr(name, "_ha") != nullptr) {  // the rounding errors of the two lowest coefficients
            std::printf("static constexpr double %s_lo[2] = {\n", name);
            for (int k = 1; k >= 0; --k) {
                double lo = static_cast<double>(c[k] - Q(d[k]));
                std::uint64_t bits;
                std::memcpy(&bits, &lo, sizeof bits);
                std::printf("    std::bit_cast<double>(0x%016llXull),  // %.17g\n", static_cast<unsigned long long>(bits), lo);
            }
            std::printf("};\n");
        }
        return;
    }
}

}  // namespace

int main(int argc, char **argv) {
    const char *only = argc > 1 ? argv[1] : nullptr;
    auto want = [&](const char *name) { return !only || std::strncmp(name, only, std::strlen(only)) == 0; };
    const Q w_main = 6.25Q, t_split = 4, t_end = 6.07Q;
    if (!only)
        std::printf("// Polynomials of the inverse error function kernels, generated by tools/fit_erfinv.cpp\n"
                    "// (highest degree first; see there for the functions, intervals and fitting).\n"
                    "#pragma once\n\n#include <bit>\n\nnamespace qon::vm::erfinv_poly {\n\n");
    if (want("main_ha")) emit("main_ha", p_of_w, 0, w_main, 3.125Q, 16, 0x1p-60Q);
    if (want("main_la")) emit("main_la", p_of_w, 0, w_main, 3.125Q, 16, 0x1p-54Q);
    if (want("main_ep")) emit("main_ep", p_of_w, 0, w_main, 3.125Q, 6, 0x1p-29Q);
    if (want("main_slope")) emit("main_slope", dp_of_w, 0, w_main, 0, 1, 0x1p-5Q);
    if (want("far1_ha")) emit("far1_ha", far_of_t, 2.5Q, t_split, 3.25Q, 12, 0x1p-60Q);
    if (want("far2_ha")) emit("far2_ha", far_of_t, t_split, t_end, 5, 12, 0x1p-60Q);
    if (!only) std::printf("\n}  // namespace qon::vm::erfinv_poly\n");
    return 0;
}
