// Near-minimax polynomial fits in quad precision for the tools that generate kernel
// coefficients: interpolation at the Chebyshev nodes of an interval (within a small factor of
// the minimax error), re-expanded in powers of u - centre, and Horner evaluation of the fit in
// quad (`eval_q`) and with its coefficients rounded to the element type (`eval`).
#pragma once

#include <quadmath.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

namespace qon::tools {

using Q = __float128;

inline Q pi() { return acosq(-1); }

// Coefficients (lowest degree first) of the degree-n polynomial in u - centre interpolating f
// at the Chebyshev nodes of [a, b].
inline std::vector<Q> fit(const std::function<Q(Q)> &f, Q a, Q b, Q centre, int n) {
    int m = n + 1;
    std::vector<Q> cheb(m, 0);
    for (int j = 0; j < m; ++j) {
        Q theta = pi() * (j + 0.5Q) / m;
        Q fx = f((a + b) / 2 + (b - a) / 2 * cosq(theta));
        for (int k = 0; k < m; ++k) cheb[k] += 2 * fx * cosq(k * theta) / m;
    }
    cheb[0] /= 2;
    // sum cheb[k] T_k(v), v = (u - mid)/half = (d + (centre - mid))/half, d = u - centre.
    Q half = (b - a) / 2, shift = (centre - (a + b) / 2) / half;
    std::vector<Q> vpoly(m, 0);  // in powers of v
    std::vector<Q> t0(m, 0), t1(m, 0), t2(m, 0);
    t0[0] = 1;
    if (m > 1) t1[1] = 1;
    for (int k = 0; k < m; ++k) {
        const std::vector<Q> &tk = k == 0 ? t0 : t1;
        for (int i = 0; i < m; ++i) vpoly[i] += cheb[k] * tk[i];
        if (k >= 1) {
            for (int i = 0; i < m; ++i) t2[i] = (i > 0 ? 2 * t1[i - 1] : 0) - t0[i];
            t0 = t1;
            t1 = t2;
        }
    }
    // v = shift + d/half: expand vpoly(shift + d/half) in powers of d.
    std::vector<Q> out(m, 0);
    std::vector<Q> power(m, 0);  // (shift + d/half)^k in powers of d
    power[0] = 1;
    for (int k = 0; k < m; ++k) {
        for (int i = 0; i < m; ++i) out[i] += vpoly[k] * power[i];
        std::vector<Q> next(m, 0);
        for (int i = 0; i < m; ++i) {
            next[i] += power[i] * shift;
            if (i + 1 < m) next[i + 1] += power[i] / half;
        }
        power = next;
    }
    return out;
}

template <class T>
inline Q eval(const std::vector<T> &c, Q d) {
    Q s = 0;
    for (int i = static_cast<int>(c.size()) - 1; i >= 0; --i) s = s * d + c[i];
    return s;
}

inline Q eval_q(const std::vector<Q> &c, Q d) {
    Q s = 0;
    for (int i = static_cast<int>(c.size()) - 1; i >= 0; --i) s = s * d + c[i];
    return s;
}

// Prints coefficients (lowest degree first in c) as a C++ array, highest degree first, each
// with its exact bit pattern.
template <class T>
void print_array(const char *name, const std::vector<T> &c) {
    const bool single = sizeof(T) == 4;
    std::printf("inline constexpr %s %s[%d] = {\n", single ? "float" : "double", name, static_cast<int>(c.size()));
    for (int k = static_cast<int>(c.size()) - 1; k >= 0; --k) {
        if constexpr (sizeof(T) == 4) {
            std::uint32_t bits;
            std::memcpy(&bits, &c[k], sizeof bits);
            std::printf("    std::bit_cast<float>(0x%08Xu),  // %.9g\n", bits, double(c[k]));
        } else {
            std::uint64_t bits;
            std::memcpy(&bits, &c[k], sizeof bits);
            std::printf("    std::bit_cast<double>(0x%016llXull),  // %.17g\n", static_cast<unsigned long long>(bits),
                        double(c[k]));
        }
    }
    std::printf("};\n");
}

}  // namespace qon::tools
