// The accuracy harness itself: its ulp measure on values whose error is known exactly, its
// exact-match checks, and a measurement of a correctly rounded kernel (Sqr) and of a kernel
// table whose slots are deliberately off by a known amount.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>
#include <quadmath.h>

#include <cmath>
#include <limits>

#include "common/accuracy.hpp"

namespace acc = qon::test::accuracy;

namespace {

TEST(AccuracyHarness, UlpMeasureOnKnownErrors) {
    const double inf = std::numeric_limits<double>::infinity();
    // One ulp of 1 is 2^-52 in double, 2^-23 in float; the binade of the exact value decides.
    EXPECT_EQ(acc::ulp_error<double>(1.0, 1 + ldexpq(1, -52)), 1.0);
    EXPECT_EQ(acc::ulp_error<double>(1.0, 1 + ldexpq(1, -53)), 0.5);
    EXPECT_EQ(acc::ulp_error<float>(1.0f, 1 - ldexpq(1, -24)), 1.0);  // ulps of [0.5, 1)
    EXPECT_EQ(acc::ulp_error<float>(2.0f, 2 + ldexpq(1, -23)), 0.5);
    // Subnormal results are measured in units of the smallest subnormal.
    EXPECT_EQ(acc::ulp_error<double>(ldexp(3.0, -1074), ldexpq(1, -1073)), 1.0);
    EXPECT_EQ(acc::ulp_error<float>(0.0f, ldexpq(1, -150)), 0.5);
    // Overflow near the largest finite value counts in ulps of the top binade; beyond the
    // rounding threshold infinity is exact.
    EXPECT_EQ(acc::ulp_error<float>(std::numeric_limits<float>::infinity(), ldexpq(1, 128) - ldexpq(1, 104)), 1.0);
    EXPECT_EQ(acc::ulp_error<float>(std::numeric_limits<float>::infinity(), ldexpq(1, 128) - ldexpq(1, 103)), 0.0);
    EXPECT_GT(acc::ulp_error<float>(std::numeric_limits<float>::max(), ldexpq(1, 200)), 0x1p22);
    // Exact-match checks.
    EXPECT_EQ(acc::ulp_error<double>(NAN, nanq("")), 0.0);
    EXPECT_EQ(acc::ulp_error<double>(1.0, nanq("")), inf);
    EXPECT_EQ(acc::ulp_error<double>(NAN, 1), inf);
    EXPECT_EQ(acc::ulp_error<double>(-0.0, 0), inf);
    EXPECT_EQ(acc::ulp_error<double>(0.0, 0), 0.0);
    EXPECT_EQ(acc::ulp_error<double>(std::numeric_limits<double>::max(), HUGE_VALQ), inf);
    EXPECT_EQ(acc::ulp_error<double>(-inf, -HUGE_VALQ), 0.0);
}

TEST(AccuracyHarness, CorrectlyRoundedKernelMeasuresWithinHalfUlp) {
    acc::Sweep sweep{{acc::log_both_signs(1e-150, 1e150), acc::uniform(-4, 4)}, {{3.0, 0}}, 4096};
    auto slots = acc::measure_u<double>(qon_pax_kernel_dSqr_ttab, [](__float128 x) { return x * x; }, sweep);
    for (const auto &s : slots) {
        EXPECT_LE(s.max_ulp, 0.5);
        EXPECT_GT(s.max_ulp, 0.25);  // random squares are rarely exact
        EXPECT_EQ(s.mismatches, 0) << s.first_mismatch;
        EXPECT_EQ(s.checked, 19 + 1 + 2 * 4096);
    }
}

// A caller whose slots add 0, 2 and 64 ulps to a correctly rounded square, and whose slot 2
// returns NaN for the argument 3.
TEST(AccuracyHarness, CallerErrorsAreFoundPerSlot) {
    acc::Caller<float> caller = [](int slot, int n, const float *x, const float *, float *r, float *) {
        for (int i = 0; i < n; ++i) {
            float v = x[i] * x[i];
            int steps = slot == 0 ? 0 : slot == 1 ? 2 : 64;
            for (int k = 0; k < steps && std::isfinite(v) && v != 0; ++k) v = std::nextafter(v, INFINITY);
            r[i] = slot == 2 && x[i] == 3.0f ? NAN : v;
        }
    };
    acc::Sweep sweep{{acc::uniform(1, 1.4)}, {{3.0, 0}}, 2048};
    auto slots = acc::measure<float>(caller, [](__float128 x, __float128) { return x * x; }, sweep, false);
    EXPECT_LE(slots[0].max_ulp, 0.5);
    EXPECT_GT(slots[1].max_ulp, 1.5);
    EXPECT_LE(slots[1].max_ulp, 2.5);
    EXPECT_GT(slots[2].max_ulp, 63.5);
    EXPECT_EQ(slots[2].mismatches, 1);
    EXPECT_NE(slots[2].first_mismatch.find("x=3"), std::string::npos);
}

}  // namespace
