// Fits the polynomial of the double EP exponential (src/vm/kernels/exp.cpp, ExpEP) and prints
// its coefficients with their exact bit patterns, in the form the kernel declares them.
//
//     g++ -O2 -std=gnu++20 tools/fit_exp.cpp -o /tmp/fit_exp -lquadmath && /tmp/fit_exp
//
// e^s ~ 1 + s (c1 + s (c2 + ... + s c6)) on |s| <= (ln2/2)(1 + 2^-10): the constant term is 1 so
// that e^0 = 1; c1 .. c6 minimize the largest relative error, by Lawson's iteration
// (tools/chebyshev_fit.hpp) on Chebyshev-spaced points. The printed error is the largest at
// 20000 points with the coefficients rounded to double.
#include <cmath>

#include "chebyshev_fit.hpp"

using namespace qon::tools;

int main() {
    const int count = 6, points = 4000;
    const Q s_max = logq(2) / 2 * (1 + 0x1p-10Q);
    std::vector<std::vector<Q>> a(points, std::vector<Q>(count));
    std::vector<Q> b(points);
    for (int i = 0; i < points; ++i) {
        const Q s = s_max * cosq(pi() * (i + 0.5Q) / points), e = expq(s);
        for (int j = 0; j < count; ++j) a[i][j] = powq(s, j + 1) / e;
        b[i] = (e - 1) / e;
    }
    const std::vector<Q> c = lawson(a, b);
    std::vector<double> rounded(c.begin(), c.end());
    Q worst = 0;
    for (int i = 0; i <= 20000; ++i) {
        const Q s = -s_max + 2 * s_max * i / 20000;
        worst = fmaxq(worst, fabsq((1 + s * eval(rounded, s)) / expq(s) - 1));
    }
    std::printf("    // e^s ~ 1 + s (c1 + s (c2 + ... + s c6)) on |s| <= ln2/2 (+0.1%%): relative error 2^%.1f\n",
                double(log2q(worst)));
    for (int j = 0; j < count; ++j) {
        std::uint64_t bits;
        std::memcpy(&bits, &rounded[j], sizeof bits);
        std::printf("    static constexpr std::uint64_t c%d = 0x%016llX;  // %.17g\n", j + 1,
                    static_cast<unsigned long long>(bits), rounded[j]);
    }
    return 0;
}
