// Near-minimax polynomial fits in quad precision for the tools that generate kernel
// coefficients: interpolation at the Chebyshev nodes of an interval (within a small factor of
// the minimax error), re-expanded in powers of u - centre, and Horner evaluation of the fit in
// quad (`eval_q`) and with its coefficients rounded to the element type (`eval`); and rounds of
// Lawson's iteration for weighted minimax fits that are linear in their coefficients.
#pragma once

#include <quadmath.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <utility>
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

// Solves the k x k system a x = b (Gaussian elimination with partial pivoting).
inline std::vector<Q> solve(std::vector<std::vector<Q>> a, std::vector<Q> b) {
    const int k = static_cast<int>(b.size());
    for (int c = 0; c < k; ++c) {
        int p = c;
        for (int i = c + 1; i < k; ++i)
            if (fabsq(a[i][c]) > fabsq(a[p][c])) p = i;
        std::swap(a[c], a[p]);
        std::swap(b[c], b[p]);
        for (int i = c + 1; i < k; ++i) {
            const Q f = a[i][c] / a[c][c];
            for (int j = c; j < k; ++j) a[i][j] -= f * a[c][j];
            b[i] -= f * b[c];
        }
    }
    std::vector<Q> x(k);
    for (int i = k - 1; i >= 0; --i) {
        Q t = b[i];
        for (int j = i + 1; j < k; ++j) t -= a[i][j] * x[j];
        x[i] = t / a[i][i];
    }
    return x;
}

// One round of Lawson's iteration for min over c of max_i |a_i . c - b_i|: the weighted
// least-squares solution, after which each weight is multiplied by its residual.
inline std::vector<Q> lawson_round(const std::vector<std::vector<Q>> &a, const std::vector<Q> &b, std::vector<Q> &w) {
    const int k = static_cast<int>(a[0].size()), points = static_cast<int>(b.size());
    std::vector<std::vector<Q>> n(k, std::vector<Q>(k, 0));
    std::vector<Q> y(k, 0);
    for (int i = 0; i < points; ++i)
        for (int j = 0; j < k; ++j) {
            y[j] += w[i] * a[i][j] * b[i];
            for (int l = 0; l < k; ++l) n[j][l] += w[i] * a[i][j] * a[i][l];
        }
    const std::vector<Q> c = solve(n, y);
    Q total = 0;
    for (int i = 0; i < points; ++i) {
        Q e = -b[i];
        for (int j = 0; j < k; ++j) e += c[j] * a[i][j];
        w[i] *= fabsq(e);
        total += w[i];
    }
    for (Q &wi : w) wi /= total;
    return c;
}

// Lawson's iteration from equal weights, `rounds` rounds: near-minimax coefficients for the
// linear problem a c ~ b.
inline std::vector<Q> lawson(const std::vector<std::vector<Q>> &a, const std::vector<Q> &b, int rounds = 400) {
    std::vector<Q> w(b.size(), Q(1) / static_cast<int>(b.size())), c;
    for (int round = 0; round < rounds; ++round) c = lawson_round(a, b, w);
    return c;
}

// Point i of `points` on (0, top], Chebyshev-spaced (dense at both ends): top cos(pi i / 2 points).
inline Q half_cosine_point(Q top, int i, int points) { return top * cosq(pi() / 2 * i / points); }

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
