// Complex exponential kernels (paxcExp, paxzExp): both parts of every slot against
// e^x cos y and e^x sin y evaluated in quad precision, the special values of C99 Annex G, and
// the statuses of overflow, underflow and of an infinite imaginary part.
#include <gtest/gtest.h>
#include <quadmath.h>

#include <qon/qon_pax.h>

#include <cmath>
#include <complex>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "common/accuracy.hpp"
#include "vm/complex_reference.hpp"
#include "vm/exp_reports.hpp"

namespace {

namespace acc = qon::test::accuracy;
namespace cx = qon::test::cx;

cx::Q exact_cexp(cx::Q z) {
    const __float128 e = expq(__real__ z);
    // e^x * cis(y), with the zero imaginary part of a real argument kept exactly.
    return cx::q_of(e * cosq(__imag__ z), __imag__ z == 0 ? __imag__ z : e * sinq(__imag__ z));
}

template <class T>
void check_accuracy(qon_pax_kernel_fn const (&table)[3], const std::vector<cx::Region> &regions, double ep_bound) {
    using C = std::complex<T>;
    std::vector<C> x;
    const long long count = acc::sample_count(1 << 13);
    for (std::size_t k = 0; k < regions.size(); ++k) {
        std::mt19937_64 rng(1234 + k);
        for (long long i = 0; i < count; ++i) x.push_back(cx::draw<T>(regions[k], rng));
    }
    const double bound[3] = {4.0, 1.0, ep_bound};
    std::vector<C> r(x.size());
    for (int s = 0; s < 3; ++s) {
        cx::slot<cx::UnaryKernel<C>>(table, s)(static_cast<int>(x.size()), x.data(), r.data());
        double worst = 0;
        C at{};
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double e = cx::componentwise_error(r[i], exact_cexp(cx::q_of(x[i])));
            if (!(e <= worst)) worst = e, at = x[i];
        }
        EXPECT_LE(worst, bound[s]) << "slot " << s << " worst at " << at;
        if (std::getenv("QON_ACCURACY_VERBOSE") || std::getenv("QON_ACCURACY_SAMPLES"))
            std::printf("[accuracy] %cExp slot %d  %.4g ulp over %zu arguments\n", sizeof(T) == 4 ? 'c' : 'z', s,
                        worst, x.size());
    }
}

TEST(ComplexExpAccuracy, DoubleBothParts) {
    check_accuracy<double>(qon_pax_kernel_zExp_ttab,
                           {{acc::uniform(-20, 20), acc::uniform(-10, 10)},
                            {acc::uniform(-745, 709), acc::uniform(-1000, 1000)},
                            {acc::uniform(709, 712), acc::uniform(-3.2, 3.2)},
                            {acc::uniform(-760, -700), acc::uniform(-3.2, 3.2)},
                            {acc::log_both_signs(1e-20, 1), acc::log_both_signs(1e-300, 1)}},
                           4.0);
}

TEST(ComplexExpAccuracy, SingleBothParts) {
    check_accuracy<float>(qon_pax_kernel_cExp_ttab,
                          {{acc::uniform(-20, 20), acc::uniform(-10, 10)},
                           {acc::uniform(-104, 89), acc::uniform(-1000, 1000)},
                           {acc::uniform(88, 92), acc::uniform(-3.2, 3.2)},
                           {acc::log_both_signs(1e-10, 1), acc::log_both_signs(1e-30, 1)}},
                          1.0);
}

// ---- special values and statuses ------------------------------------------------------------

using ComplexExp = qon::test::exp::Recorded;
using qon::test::exp::reports;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// Expected part: a value, or NaN, or a zero/infinity whose sign is given.
bool matches(double got, double want) {
    if (std::isnan(want)) return std::isnan(got);
    return got == want && std::signbit(got) == std::signbit(want);
}

TEST_F(ComplexExp, AnnexGSpecialValuesAndTheirStatuses) {
    const double y = 1.0;  // cos and sin positive
    struct Case {
        std::complex<double> z, want;
        int code;
    };
    const Case cases[] = {
        {{0.0, 0.0}, {1.0, 0.0}, 0},
        {{-0.0, -0.0}, {1.0, -0.0}, 0},
        {{2.0, -0.0}, {std::exp(2.0), -0.0}, 0},
        {{1.0, inf}, {nan, nan}, PAX_STATUS_ERRDOM},
        {{1.0, nan}, {nan, nan}, 0},
        {{inf, 0.0}, {inf, 0.0}, 0},
        {{inf, -0.0}, {inf, -0.0}, 0},
        {{-inf, y}, {0.0, 0.0}, 0},
        {{-inf, -y}, {0.0, -0.0}, 0},
        {{-inf, 3.0}, {-0.0, 0.0}, 0},  // +0 cis 3: cos 3 < 0
        {{inf, y}, {inf, inf}, 0},
        {{inf, 3.0}, {-inf, inf}, 0},
        {{-inf, inf}, {0.0, 0.0}, 0},
        {{inf, inf}, {inf, nan}, PAX_STATUS_ERRDOM},
        {{-inf, nan}, {0.0, 0.0}, 0},
        {{inf, nan}, {inf, nan}, 0},
        {{nan, 0.0}, {nan, 0.0}, 0},
        {{nan, -0.0}, {nan, -0.0}, 0},
        {{nan, y}, {nan, nan}, 0},
        {{nan, nan}, {nan, nan}, 0},
    };
    for (auto zExp : {paxzExp, paxzExp_50, paxzExp_26}) {
        for (const Case &c : cases) {
            reports.clear();
            std::complex<double> r;
            zExp(1, reinterpret_cast<const QON_Complex16 *>(&c.z), reinterpret_cast<QON_Complex16 *>(&r));
            EXPECT_TRUE(matches(r.real(), c.want.real())) << c.z << " -> " << r;
            EXPECT_TRUE(matches(r.imag(), c.want.imag())) << c.z << " -> " << r;
            EXPECT_EQ(reports.empty() ? 0 : reports[0].code, c.code) << c.z;
        }
    }
}

TEST_F(ComplexExp, OverflowAndUnderflowOfEitherPart) {
    const std::complex<double> z[] = {{710.0, 1.0}, {709.9, 1.5}, {-800.0, 1.0}, {-700.0, 1e-20},
                                      {0.0, 1e-310}, {1.0, 2.0}};
    std::complex<double> r[6];
    paxzExp(6, reinterpret_cast<const QON_Complex16 *>(z), reinterpret_cast<QON_Complex16 *>(r));
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_EQ(reports[0].index, 0);
    EXPECT_EQ(reports[0].code, PAX_STATUS_OVERFLOW);
    EXPECT_EQ(reports[1].index, 1);  // the real part stays finite, the imaginary one overflows
    EXPECT_TRUE(std::isfinite(r[1].real()));
    EXPECT_EQ(r[1].imag(), inf);
    EXPECT_EQ(reports[2].index, 2);
    EXPECT_EQ(reports[2].code, PAX_STATUS_UNDERFLOW);
    EXPECT_EQ(reports[2].name, "paxzExp");
    EXPECT_EQ(reports[3].index, 3);  // e^-700 * 1e-20 is below the smallest subnormal
    EXPECT_EQ(reports[3].code, PAX_STATUS_UNDERFLOW);
    EXPECT_TRUE(std::isnormal(r[3].real()));
    EXPECT_EQ(r[3].imag(), 0.0);
    EXPECT_EQ(r[4], std::complex<double>(1.0, 1e-310));  // a subnormal argument is not reported
    EXPECT_NEAR(r[5].real(), std::exp(1.0) * std::cos(2.0), 1e-15);
}

TEST_F(ComplexExp, SingleStatusesAndStridedName) {
    const std::complex<float> z[] = {{89.0f, 0.5f}, {0.5f, 0.5f}, {-110.0f, 0.5f}, {1.0f, 1.0f}};
    std::complex<float> r[4];
    paxcExpI(2, reinterpret_cast<const QON_Complex8 *>(z), 2, reinterpret_cast<QON_Complex8 *>(r), 2);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].code, PAX_STATUS_OVERFLOW);
    EXPECT_EQ(reports[1].code, PAX_STATUS_UNDERFLOW);
    EXPECT_EQ(reports[1].index, 1);
    EXPECT_EQ(reports[1].name, "paxcExpI");
    EXPECT_EQ(r[2], std::complex<float>(0.0f, 0.0f));
}

}  // namespace
