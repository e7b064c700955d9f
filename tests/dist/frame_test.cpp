// The generator frame: nothing written for n = 0, the caller's mode word and call-back restored
// after every call (a failing one included), forced uniforms of 0 and -1 giving the documented
// finite values, and the accurate methods' ranges.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cmath>
#include <vector>

#include "dist_support.hpp"

namespace {

using dist_test::script;

int caller_callback(PaxErrorContext *) { return 0; }

class DistFrame : public ::testing::Test {
protected:
    void SetUp() override {
        uint32_t seed = 7;
        ASSERT_EQ(rokNewStreamEx(&mcg, ROK_BRNG_MCG31M1, 1, &seed), 0);
        ASSERT_EQ(rokNewStreamEx(&scripted, dist_test::scripted_brng(), 1, &seed), 0);
        ASSERT_EQ(rokNewStreamEx(&failing, dist_test::failing_brng(), 1, &seed), 0);
    }
    void TearDown() override {
        rokDeleteStream(&mcg);
        rokDeleteStream(&scripted);
        rokDeleteStream(&failing);
        script() = {0.5};
    }
    RokStream *mcg = nullptr, *scripted = nullptr, *failing = nullptr;
};

TEST_F(DistFrame, ZeroCountWritesNothing) {
    double r[4] = {-7, -7, -7, -7};
    float f[4] = {-7, -7, -7, -7};
    for (int m = 0; m < 3; ++m) {
        EXPECT_EQ(rokdRngGaussian(m, mcg, 0, r, 0, 1), 0);
        EXPECT_EQ(roksRngGaussian(m, mcg, 0, f, 0, 1), 0);
    }
    EXPECT_EQ(rokdRngUniform(0, mcg, 0, r, 0, 1), 0);
    EXPECT_EQ(rokdRngCauchy(0, mcg, 0, r, 0, 1), 0);
    EXPECT_EQ(rokdRngExponential(0, mcg, 0, r, 0, 1), 0);
    EXPECT_EQ(rokdRngLognormal(0, mcg, 0, r, 0, 1, 0, 1), 0);
    for (double v : r) EXPECT_EQ(v, -7);
    for (float v : f) EXPECT_EQ(v, -7);
}

TEST_F(DistFrame, CallersModeAndCallBackSurviveEveryCall) {
    const unsigned int mode_before = paxGetMode();
    paxSetMode(PAX_LA | PAX_ERRMODE_ERRNO | PAX_TRAP_DIVBYZERO | PAX_FTZDAZ_ON);
    PaxErrorCallBack cb_before = paxSetErrorCallBack(caller_callback);
    const unsigned int mode = paxGetMode();
    std::vector<double> r(3000);
    std::vector<float> f(3000);
    for (RokStream *s : {mcg, failing}) {
        const bool fails = s == failing;
        for (int m = 0; m < 3; ++m) {
            EXPECT_EQ(rokdRngGaussian(m, s, 3000, r.data(), 0, 1) < 0, fails);
            EXPECT_EQ(roksRngGaussian(m, s, 3000, f.data(), 0, 1) < 0, fails);
        }
        EXPECT_EQ(rokdRngExponential(0, s, 100, r.data(), 0, 1) < 0, fails);
        EXPECT_EQ(roksRngExponential(0, s, 100, f.data(), 0, 1) < 0, fails);
        EXPECT_EQ(rokdRngLognormal(0, s, 100, r.data(), 0, 1, 0, 1) < 0, fails);
        EXPECT_EQ(rokdRngCauchy(0, s, 100, r.data(), 0, 1) < 0, fails);
        EXPECT_EQ(paxGetMode(), mode);
        EXPECT_EQ(paxGetErrorCallBack(), &caller_callback);
    }
    EXPECT_EQ(rokdRngGaussian(0, failing, 5, r.data(), 0, 1), ROK_ERROR_BAD_BRNG);
    paxSetErrorCallBack(cb_before);
    paxSetMode(mode_before & (PAX_ACCURACY_MASK | PAX_ERRMODE_MASK));
}

TEST_F(DistFrame, UniformOfZeroGivesFiniteValues) {
    script() = {0.0, 0.25};  // u1 = 0, u2 = 1/4: sin(2 pi u2) = 1
    double r[1];
    ASSERT_EQ(rokdRngGaussian(0, scripted, 1, r, 1.0, 2.0), 0);
    EXPECT_NEAR(r[0], 1.0 + 2.0 * std::sqrt(2 * 744.4400719213812), 1e-9);

    script() = {0.0};
    ASSERT_EQ(rokdRngExponential(0, scripted, 1, r, 3.0, 0.5), 0);
    EXPECT_DOUBLE_EQ(r[0], 3.0 + 744.4400719213812 * 0.5);
    float f[1];
    ASSERT_EQ(roksRngExponential(0, scripted, 1, f, 0.0f, 1.0f), 0);
    EXPECT_FLOAT_EQ(f[0], 103.27893f);

    script() = {0.0};  // mapped to -1 on [-1, 1): erfinv(-1)
    ASSERT_EQ(rokdRngGaussian(2, scripted, 1, r, 1.0, 2.0), 0);
    EXPECT_DOUBLE_EQ(r[0], 1.0 - 5.8635847487551676 * 2.0 * 1.4142135623730951);
}

TEST_F(DistFrame, AccurateUniformStaysInsideTheInterval) {
    script() = {1.0, -1.0, 0.5, 0.0};  // b itself, below a, inside, a itself
    double std_r[4], acc[4];
    ASSERT_EQ(rokdRngUniform(0, scripted, 4, std_r, 2.0, 3.0), 0);
    EXPECT_EQ(std_r[1], 1.0);  // the standard method passes the generator's value on
    ASSERT_EQ(rokdRngUniform(ROK_RNG_METHOD_ACCURATE, scripted, 4, acc, 2.0, 3.0), 0);
    EXPECT_EQ(acc[0], 3.0);
    EXPECT_EQ(acc[1], 2.0);
    EXPECT_EQ(acc[2], 2.5);
    EXPECT_EQ(acc[3], 2.0);
}

TEST_F(DistFrame, AccurateExponentialAndLognormalRespectTheirBounds) {
    std::vector<double> r(20000);
    ASSERT_EQ(rokdRngExponential(ROK_RNG_METHOD_ACCURATE, mcg, 20000, r.data(), 1.5, -2.0), 0);
    for (double v : r) EXPECT_GE(v, 1.5);
    ASSERT_EQ(rokdRngExponential(0, mcg, 100, r.data(), 4.0, 0.0), 0);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(r[i], 4.0);
    ASSERT_EQ(rokdRngLognormal(ROK_RNG_METHOD_ACCURATE, mcg, 20000, r.data(), 0.0, 3.0, -1.0, -0.5), 0);
    for (double v : r) EXPECT_GE(v, -1.0);
}

}  // namespace
