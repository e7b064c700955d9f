// Gaussian methods against a recomputation from the stream's own uniforms in long double:
// Box-Muller, Box-Muller2 with a pair split across calls, and the inverse distribution function.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dist_support.hpp"

namespace {

constexpr long double two_pi = 6.283185307179586476925286766559L;

std::vector<double> uniforms(RokStream *copy, int n, double a = 0, double b = 1) {
    std::vector<double> u(n);
    EXPECT_EQ(rokdBRngMCG31M1(copy, n, u.data(), a, b), 0);
    return u;
}

struct Streams {
    RokStream *s = nullptr, *copy = nullptr;
    explicit Streams(uint32_t seed) {
        rokNewStreamEx(&s, ROK_BRNG_MCG31M1, 1, &seed);
        rokCopyStream(&copy, s);
    }
    ~Streams() {
        rokDeleteStream(&s);
        rokDeleteStream(&copy);
    }
};

TEST(Gaussian, BoxMullerMatchesItsFormula) {
    Streams st(11);
    std::vector<double> r(2500);
    ASSERT_EQ(rokdRngGaussian(0, st.s, 2500, r.data(), 1.0, 3.0), 0);
    auto u = uniforms(st.copy, 5000);
    for (int i = 0; i < 2500; ++i) {
        long double rho = std::sqrt(-2.0L * std::log(static_cast<long double>(u[2 * i])));
        long double expect = 1.0L + 3.0L * rho * std::sin(two_pi * u[2 * i + 1]);
        EXPECT_NEAR(r[i], static_cast<double>(expect), 1e-13 * (1 + std::fabs(static_cast<double>(expect)))) << i;
    }
}

TEST(Gaussian, BoxMuller2SplitsAPairAcrossCalls) {
    Streams st(12);
    double first, second, next_from_stream, next_from_copy;
    ASSERT_EQ(rokdRngGaussian(1, st.s, 1, &first, 0.0, 1.0), 0);
    ASSERT_EQ(rokdRngGaussian(1, st.s, 1, &second, 0.0, 1.0), 0);
    auto u = uniforms(st.copy, 2);
    long double rho = std::sqrt(-2.0L * std::log(static_cast<long double>(u[0])));
    EXPECT_NEAR(first, static_cast<double>(rho * std::sin(two_pi * u[1])), 1e-13);
    EXPECT_NEAR(second, static_cast<double>(rho * std::cos(two_pi * u[1])), 1e-13);
    // The second call drew no uniforms: both streams stand at the same place.
    rokdBRngMCG31M1(st.s, 1, &next_from_stream, 0, 1);
    rokdBRngMCG31M1(st.copy, 1, &next_from_copy, 0, 1);
    EXPECT_EQ(next_from_stream, next_from_copy);
}

TEST(Gaussian, BoxMuller2OddBlocksEqualOneLongBlock) {
    Streams st(13);
    std::vector<double> parts, whole(3001);
    for (int n : {1, 2, 999, 3, 1996}) {
        std::vector<double> r(n);
        ASSERT_EQ(rokdRngGaussian(1, st.s, n, r.data(), 0, 1), 0);
        parts.insert(parts.end(), r.begin(), r.end());
    }
    ASSERT_EQ(rokdRngGaussian(1, st.copy, 3001, whole.data(), 0, 1), 0);
    ASSERT_EQ(parts.size(), whole.size());
    // The cosine of a kept pair comes from the cosine kernel, that of a whole pair from the
    // sine-cosine kernel: both within an ulp.
    for (size_t i = 0; i < whole.size(); ++i) EXPECT_NEAR(parts[i], whole[i], 1e-14 * (1 + std::fabs(whole[i]))) << i;
}

TEST(Gaussian, InverseCdfMatchesItsFormulaAndUsesOneUniformEach) {
    Streams st(14);
    std::vector<double> r(1000);
    ASSERT_EQ(rokdRngGaussian(2, st.s, 1000, r.data(), -2.0, 0.5), 0);
    auto u = uniforms(st.copy, 1000, -1, 1);
    for (int i = 0; i < 1000; ++i) {
        // The result, pushed back through erf, gives the uniform again.
        double z = (r[i] + 2.0) / (0.5 * std::sqrt(2.0));
        EXPECT_NEAR(std::erf(z), u[i], 1e-13) << i;
    }
}

TEST(Gaussian, MethodsGiveDifferentSequences) {
    std::vector<double> r[3];
    for (int m = 0; m < 3; ++m) {
        Streams st(99);
        r[m].resize(100);
        ASSERT_EQ(rokdRngGaussian(m, st.s, 100, r[m].data(), 0, 1), 0);
    }
    EXPECT_NE(r[0], r[1]);
    EXPECT_NE(r[0], r[2]);
    EXPECT_NE(r[1], r[2]);
    std::vector<double> l0(100), l1(100);
    Streams a(5), b(5);
    rokdRngLognormal(0, a.s, 100, l0.data(), 0, 1, 0, 1);
    rokdRngLognormal(ROK_RNG_METHOD_ACCURATE, b.s, 100, l1.data(), 0, 1, 0, 1);
    EXPECT_NE(l0, l1);
}

}  // namespace
