// Support for the distribution tests: a registered generator that replays a scripted list of
// uniforms (so that exact 0, -1 or out-of-range values can be forced), exact distribution
// functions, and the Kolmogorov-Smirnov statistic.
#pragma once

#include <qon/qon_rok.h>
#include <qon/qon_rok_dist.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace dist_test {

// Uniforms in [0, 1) that the scripted generator hands out, cycling; each is mapped to
// a + (b - a) u, except that a script value of exactly 1 is returned as b and -1 as a - 1 (to
// exercise clamping).
inline std::vector<double> &script() {
    static std::vector<double> values{0.5};
    return values;
}

struct ScriptState {
    RokStream *self;
    std::int64_t next;
};

inline double scripted_next(RokStream *s) {
    auto *state = reinterpret_cast<std::int64_t *>(reinterpret_cast<char *>(s) + 16);
    const std::vector<double> &v = script();
    return v[static_cast<size_t>((*state)++) % v.size()];
}

template <class T>
int32_t scripted_uniform(RokStream *s, int32_t n, T r[], T a, T b) {
    for (int i = 0; i < n; ++i) {
        double u = scripted_next(s);
        r[i] = u == 1.0 ? b : u == -1.0 ? a - T(1) : static_cast<T>(a + (b - a) * u);
    }
    return 0;
}

inline int32_t scripted_init(int32_t method, RokStream *s, int32_t, const void *) {
    if (method != 0) return ROK_ERROR_BAD_METHOD;
    *reinterpret_cast<std::int64_t *>(reinterpret_cast<char *>(s) + 16) = 0;
    return 0;
}

inline int32_t scripted_raw(RokStream *, int32_t, void *) { return ROK_ERROR_BAD_BRNG; }

// A generator whose every output call fails with ROK_ERROR_BAD_BRNG.
template <class T>
int32_t failing_uniform(RokStream *, int32_t, T[], T, T) {
    return ROK_ERROR_BAD_BRNG;
}

inline int32_t scripted_brng() {
    static int32_t id = [] {
        BrngProperties p{32, 1, 1, 4, 32, scripted_init, scripted_uniform<float>, scripted_uniform<double>,
                         scripted_raw};
        return rokRegisterBrng(&p);
    }();
    return id;
}

inline int32_t failing_brng() {
    static int32_t id = [] {
        BrngProperties p{32, 1, 1, 4, 32, scripted_init, failing_uniform<float>, failing_uniform<double>,
                         scripted_raw};
        return rokRegisterBrng(&p);
    }();
    return id;
}

// Kolmogorov-Smirnov distance of a sample from a continuous distribution function.
template <class T, class Cdf>
double ks_statistic(std::vector<T> sample, Cdf cdf) {
    std::sort(sample.begin(), sample.end());
    const double n = static_cast<double>(sample.size());
    double d = 0;
    for (size_t i = 0; i < sample.size(); ++i) {
        double f = cdf(static_cast<double>(sample[i]));
        d = std::max({d, f - i / n, (i + 1) / n - f});
    }
    return d;
}

inline double normal_cdf(double x) { return 0.5 * std::erfc(-x / std::sqrt(2.0)); }

inline size_t sample_size() { return std::getenv("QON_TEST_QUICK") ? 100000 : 1000000; }

}  // namespace dist_test
