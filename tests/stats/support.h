// Helpers of the summary-statistics tests: a deterministic data generator, a service table with a
// chosen thread count, and the straightforward two-pass oracle in long double.
#pragma once

#include <qon/qon_serv.h>
#include <qon/qon_ss.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace sst {

// splitmix64: a fixed stream of 64-bit words for test data.
struct Rng {
    uint64_t s;
    explicit Rng(uint64_t seed) : s(seed) {}
    uint64_t next() {
        uint64_t z = (s += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    double uniform() { return static_cast<double>(next() >> 11) * 0x1p-53; }
    // Sum of four uniforms, centred: a bell-shaped, skewless value of variance 1/3.
    double bell() { return uniform() + uniform() + uniform() + uniform() - 2.0; }
};

// Service table whose maximum thread count is `threads` (parallel-for of the core library).
inline int &chosen_threads() {
    static int t = 1;
    return t;
}
inline const qon_serv_services *services_with(int threads) {
    chosen_threads() = threads;
    static const qon_serv_services s = {[]() { return chosen_threads(); }, qon_serv_parallel_for};
    return &s;
}

// Element (variable i, observation j) of a p x n matrix in either storage.
inline size_t at(int64_t storage, int64_t p, int64_t n, int64_t i, int64_t j) {
    return static_cast<size_t>(storage == ROK_SS_MATRIX_STORAGE_ROWS ? i * n + j : j * p + i);
}

// Two-pass reference statistics of one data set, in long double.
struct Oracle {
    int64_t p, n;
    long double W = 0, W2 = 0;
    std::vector<long double> mean, raw[4], central[4], cross;
    std::vector<long double> raw_abs[4], central_abs[4];  // sums of w |x|^k and w |x - mean|^k: the scales of errors
    Oracle(const std::vector<double> &x, const double *w, int64_t p_, int64_t n_, int64_t storage) : p(p_), n(n_) {
        mean.assign(p, 0);
        for (auto &r : raw) r.assign(p, 0);
        for (auto &c : central) c.assign(p, 0);
        for (auto &r : raw_abs) r.assign(p, 0);
        for (auto &c : central_abs) c.assign(p, 0);
        cross.assign(p * p, 0);
        auto X = [&](int64_t i, int64_t j) { return static_cast<long double>(x[at(storage, p, n, i, j)]); };
        for (int64_t j = 0; j < n; ++j) {
            long double wj = w ? w[j] : 1.0L;
            W += wj;
            W2 += wj * wj;
            for (int64_t i = 0; i < p; ++i) {
                long double v = X(i, j), pw = wj, pa = wj;
                for (int k = 0; k < 4; ++k) {
                    raw[k][i] += (pw *= v);
                    raw_abs[k][i] += (pa *= std::fabs(v));
                }
            }
        }
        for (int64_t i = 0; i < p; ++i) mean[i] = raw[0][i] / W;
        for (int64_t j = 0; j < n; ++j) {
            long double wj = w ? w[j] : 1.0L;
            for (int64_t i = 0; i < p; ++i) {
                long double d = X(i, j) - mean[i], pw = wj, pa = wj;
                for (int k = 0; k < 4; ++k) {
                    central[k][i] += (pw *= d);
                    central_abs[k][i] += (pa *= std::fabs(d));
                }
                for (int64_t k = 0; k < p; ++k) cross[i * p + k] += wj * d * (X(k, j) - mean[k]);
            }
        }
    }
    long double denom() const { return W - W2 / W; }
    long double c2(int64_t i) const { return central[1][i] / denom(); }
    long double c3(int64_t i) const { return central[2][i] / W; }
    long double c4(int64_t i) const { return central[3][i] / W; }
    long double cov(int64_t i, int64_t k) const { return cross[i * p + k] / denom(); }
    long double cor(int64_t i, int64_t k) const {
        return cross[i * p + k] / std::sqrt(cross[i * p + i] * cross[k * p + k]);
    }
};

inline bool near(double got, long double want, double rel) {
    const long double err = std::fabs(static_cast<long double>(got) - want);
    return err <= rel * std::fabs(want) + 1e-300;
}
// |got - want| within rel times the scale of the problem's rounding errors.
inline bool near_scaled(double got, long double want, long double scale, double rel) {
    return std::fabs(static_cast<long double>(got) - want) <= rel * scale + 1e-300;
}

}  // namespace sst
