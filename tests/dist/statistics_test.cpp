// Distribution checks with fixed seeds: for each generator, method and precision, the
// Kolmogorov-Smirnov distance to the exact distribution function and the sample mean and
// variance stay within bounds that a correct generator exceeds with probability about 1e-6
// each (KS: D sqrt(n) < 2.7; moments: 5 standard errors).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "dist_support.hpp"

namespace {

struct Case {
    std::string name;
    std::function<int32_t(RokStream *, int, double *)> draw_d;
    std::function<int32_t(RokStream *, int, float *)> draw_s;
    std::function<double(double)> cdf;
    double mean, variance, fourth_central;  // NaN where the moment does not exist
};

const double nan = std::nan("");

std::vector<Case> cases() {
    auto lognormal_cdf = [](double x) { return x <= 2.0 ? 0.0 : dist_test::normal_cdf(std::log((x - 2.0) / 1.5)); };
    const double lm = 2.0 + 1.5 * std::exp(0.5), lv = 1.5 * 1.5 * (std::exp(1.0) - 1.0) * std::exp(1.0);
    std::vector<Case> out;
    for (int m = 0; m < 3; ++m)
        out.push_back({"gaussian" + std::to_string(m),
                       [m](RokStream *s, int n, double *r) { return rokdRngGaussian(m, s, n, r, 1.0, 2.0); },
                       [m](RokStream *s, int n, float *r) { return roksRngGaussian(m, s, n, r, 1.0f, 2.0f); },
                       [](double x) { return dist_test::normal_cdf((x - 1.0) / 2.0); }, 1.0, 4.0, 48.0});
    for (int m : {0, static_cast<int>(ROK_RNG_METHOD_ACCURATE)})
        out.push_back({"exponential" + std::to_string(m),
                       [m](RokStream *s, int n, double *r) { return rokdRngExponential(m, s, n, r, -1.0, 3.0); },
                       [m](RokStream *s, int n, float *r) { return roksRngExponential(m, s, n, r, -1.0f, 3.0f); },
                       [](double x) { return x < -1.0 ? 0.0 : -std::expm1(-(x + 1.0) / 3.0); }, 2.0, 9.0,
                       9.0 * 9.0 * 9.0});
    out.push_back({"cauchy", [](RokStream *s, int n, double *r) { return rokdRngCauchy(0, s, n, r, 0.5, 2.0); },
                   [](RokStream *s, int n, float *r) { return roksRngCauchy(0, s, n, r, 0.5f, 2.0f); },
                   [](double x) { return 0.5 + std::atan((x - 0.5) / 2.0) / M_PI; }, nan, nan, nan});
    for (int m : {0, 1})
        out.push_back({"lognormal" + std::to_string(m),
                       [m](RokStream *s, int n, double *r) { return rokdRngLognormal(m, s, n, r, 0.0, 1.0, 2.0, 1.5); },
                       [m](RokStream *s, int n, float *r) {
                           return roksRngLognormal(m, s, n, r, 0.0f, 1.0f, 2.0f, 1.5f);
                       },
                       lognormal_cdf, lm, lv, nan});
    out.push_back({"uniform", [](RokStream *s, int n, double *r) { return rokdRngUniform(0, s, n, r, -3.0, 5.0); },
                   [](RokStream *s, int n, float *r) { return roksRngUniform(0, s, n, r, -3.0f, 5.0f); },
                   [](double x) { return std::clamp((x + 3.0) / 8.0, 0.0, 1.0); }, 1.0, 64.0 / 12.0,
                   4096.0 / 80.0});
    return out;
}

template <class T>
void check_sample(const Case &c, const std::vector<T> &x, const char *precision) {
    const double n = static_cast<double>(x.size());
    double d = dist_test::ks_statistic(x, c.cdf);
    EXPECT_LT(d * std::sqrt(n), 2.7) << c.name << " " << precision;
    if (std::isnan(c.mean)) return;
    long double sum = 0, sq = 0;
    for (T v : x) sum += v;
    const long double mean = sum / n;
    for (T v : x) sq += (v - mean) * (v - mean);
    const double var = static_cast<double>(sq / (n - 1));
    EXPECT_LT(std::fabs(static_cast<double>(mean) - c.mean), 5 * std::sqrt(c.variance / n)) << c.name << precision;
    if (!std::isnan(c.fourth_central)) {
        const double var_se = std::sqrt((c.fourth_central - c.variance * c.variance) / n);
        EXPECT_LT(std::fabs(var - c.variance), 5 * var_se) << c.name << " " << precision;
    }
}

TEST(DistributionStatistics, SamplesFollowTheirDistributions) {
    const size_t n = dist_test::sample_size();
    for (const Case &c : cases()) {
        uint32_t seed = 20261122;
        RokStream *s = nullptr;
        ASSERT_EQ(rokNewStreamEx(&s, ROK_BRNG_MCG59, 1, &seed), 0);
        std::vector<double> xd(n);
        std::vector<float> xs(n);
        ASSERT_EQ(c.draw_d(s, static_cast<int>(n), xd.data()), 0) << c.name;
        ASSERT_EQ(c.draw_s(s, static_cast<int>(n), xs.data()), 0) << c.name;
        check_sample(c, xd, "double");
        check_sample(c, xs, "single");
        rokDeleteStream(&s);
    }
}

}  // namespace
