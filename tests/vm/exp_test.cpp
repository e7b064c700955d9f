// Real exponential kernels (paxdExp, paxsExp and their strided forms): tables recomputed in
// quad precision, accuracy of every slot against expq, the statuses and special values of the
// scalar routine, the main loop / masked tail split, every tail length and lane position of a
// special argument, the error path (index, input-base correction, call-back write-back, errno),
// the strided kernels, and the floating-point state around a call.
#include <gtest/gtest.h>
#include <quadmath.h>

#include <qon/qon_pax.h>

#include <bit>
#include <cerrno>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "common/accuracy.hpp"
#include "vm/exp_reports.hpp"
#include "vm/kernels/exp_tables.hpp"

namespace {

namespace acc = qon::test::accuracy;
using qon::vm::exp_tables::t1;
using qon::vm::exp_tables::t2;
using qon::vm::exp_tables::t3;

constexpr double inf = std::numeric_limits<double>::infinity();

template <class T>
bool same_bits(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

using ExpKernel = qon::test::exp::Recorded;
using qon::test::exp::replacement;
using qon::test::exp::reports;

using DKernel = void (*)(int, const double *, double *);
using SKernel = void (*)(int, const float *, float *);
const DKernel d_slots[3] = {paxdExp_50, paxdExp, paxdExp_26};
const SKernel s_slots[3] = {paxsExp_21, paxsExp, paxsExp_11};

template <class T>
T one(void (*kernel)(int, const T *, T *), T x) {
    T r;
    kernel(1, &x, &r);
    return r;
}

__float128 exact_exp(double x) { return expq(static_cast<__float128>(x)); }

// ---- tables ---------------------------------------------------------------------------------

TEST(ExpTables, MatchTwoToTheFractionInQuadPrecision) {
    for (std::uint64_t j = 0; j < 128; ++j) {
        // Stored less j*2^45 in its bit pattern; adding it back gives RN(2^(j/128)).
        const double stored = std::bit_cast<double>(std::bit_cast<std::uint64_t>(t1[j]) + (j << 45));
        EXPECT_EQ(stored, static_cast<double>(exp2q(static_cast<__float128>(j) / 128))) << "t1 " << j;
    }
    for (int j = 0; j < 64; ++j) {
        const __float128 v = exp2q(static_cast<__float128>(j) / 64);
        EXPECT_EQ(t2[j].hi, static_cast<double>(v)) << j;
        EXPECT_EQ(t3[j].hi, t2[j].hi) << j;
        // The pairs reach about twice double precision (quad itself holds 113 bits).
        EXPECT_LE(fabsq(t2[j].hi * (1 + static_cast<__float128>(t2[j].lo)) - v), static_cast<__float128>(0x1p-105)) << "relative " << j;
        EXPECT_LE(fabsq(t3[j].hi + static_cast<__float128>(t3[j].lo) - v), static_cast<__float128>(0x1p-105)) << "absolute " << j;
        EXPECT_LT(std::fabs(t3[j].lo), 0x1p-53) << j;
    }
}

TEST(ExpTables, FloatPairsMatchTwoToTheEighthsInQuadPrecision) {
    using qon::vm::exp_tables::t8_hi;
    using qon::vm::exp_tables::t8_lo;
    for (int j = 0; j < 8; ++j) {
        const __float128 v = exp2q(static_cast<__float128>(j) / 8);
        EXPECT_EQ(t8_hi[j], static_cast<float>(v)) << j;
        EXPECT_EQ(t8_lo[j], static_cast<float>(v - t8_hi[j])) << j;
    }
}

TEST(ExpTables, PublishedPairForOneSixtyFourth) {
    EXPECT_EQ(t2[1].hi, 1.0108892860517005);
    EXPECT_EQ(t2[1].lo, -1.507066976926039e-17);
    EXPECT_EQ(t3[1].lo, -1.5234778603368577e-17);
}

// ---- accuracy -------------------------------------------------------------------------------

acc::Sweep double_spec() {
    acc::Sweep sweep;
    sweep.regions = {acc::uniform(-745, 710),        acc::uniform(-5, 5),
                    acc::log_both_signs(1e-20, 1),  acc::uniform(708.3, 708.5),
                    acc::uniform(-708.5, -708.3),   acc::uniform(709.7, 709.8),
                    acc::uniform(-745.2, -744.9),   acc::uniform(-730, -708)};
    for (double x : {708.3959960937499, 708.39599609375, -708.3959960937499, -708.3964185322641,
                     -708.39641853226408, 709.782712893384, 709.78271289338397, -745.1332191019411,
                     -745.13321910194122, 0x1p-53, -0x1p-53, 0x1p-52, 1e-300})
        sweep.special.push_back({x, x});
    return sweep;
}

TEST(ExpAccuracy, DoubleSlotsWithinTheirBounds) {
    const acc::Slots slots = acc::measure_u<double>(
        qon_pax_kernel_dExp_ttab, [](__float128 x) { return expq(x); }, double_spec());
    acc::expect_accuracy<double>("dExp", slots);
    EXPECT_LE(slots[1].max_ulp, 0.53);  // the last rounding plus 0.02 ulp of method error
}

TEST(ExpAccuracy, SingleSlotsWithinTheirBounds) {
    acc::Sweep sweep;
    sweep.regions = {acc::uniform(-104, 89), acc::uniform(-3, 3), acc::log_both_signs(1e-10f, 1),
                    acc::uniform(-88, -86), acc::uniform(86, 89), acc::uniform(-104, -103)};
    // The vector range ends at -87.33 and 88.7228317 (results still normal): both sides of each
    // end, and of ln(smallest normal) and ln(largest float).
    for (float x : {-87.33f, 88.7228317f, -87.3365448f, 88.7228394f})
        for (int d = -3; d <= 3; ++d) {
            const float y = std::nextafter(x, d < 0 ? -1e9f : 1e9f);
            float v = x;
            for (int k = 0; k < std::abs(d); ++k) v = std::nextafter(v, y);
            sweep.special.push_back({v, v});
        }
    const acc::Slots slots =
        acc::measure_u<float>(qon_pax_kernel_sExp_ttab, [](__float128 x) { return expq(x); }, sweep);
    acc::expect_accuracy<float>("sExp", slots);
}

TEST(ExpAccuracy, StridedSlotsMatchTheirContiguousTwins) {
    std::mt19937_64 rng(7);
    std::uniform_real_distribution<double> u(-745, 710);
    std::vector<double> a(301), viaI(301), direct(301);
    for (double &x : a) x = u(rng);
    using Strided = void (*)(int, const double *, int, double *, int);
    const Strided strided[3] = {paxdExpI_50, paxdExpI, paxdExpI_26};
    for (int s = 0; s < 3; ++s) {
        strided[s](301, a.data(), 1, viaI.data(), 1);
        d_slots[s](301, a.data(), direct.data());
        for (int i = 0; i < 301; ++i) ASSERT_TRUE(same_bits(viaI[i], direct[i])) << s << " " << i;
    }
}

// ---- statuses and special values --------------------------------------------------------------

TEST_F(ExpKernel, OverflowBoundary) {
    for (DKernel k : d_slots) {
        reports.clear();
        errno = 0;
        const double big = one(k, 709.78);
        EXPECT_TRUE(std::isfinite(big));
        EXPECT_GT(big, 1.79e308);
        EXPECT_TRUE(reports.empty());
        EXPECT_EQ(errno, 0);
        EXPECT_EQ(one(k, 709.8), inf);
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports[0].code, PAX_STATUS_OVERFLOW);
        EXPECT_EQ(reports[0].name, "paxdExp");
        EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_OVERFLOW);
        EXPECT_EQ(errno, 34);
    }
}

TEST_F(ExpKernel, UnderflowToSubnormalAndZero) {
    for (DKernel k : d_slots) {
        reports.clear();
        const double tiny = one(k, -710.0);
        EXPECT_GT(tiny, 0.0);
        EXPECT_LT(tiny, std::numeric_limits<double>::min());
        EXPECT_LE(acc::ulp_error<double>(tiny, exact_exp(-710.0)), 0.5001);
        EXPECT_TRUE(same_bits(one(k, -746.0), 0.0));
        ASSERT_EQ(reports.size(), 2u);
        EXPECT_EQ(reports[0].code, PAX_STATUS_UNDERFLOW);
        EXPECT_EQ(reports[1].code, PAX_STATUS_UNDERFLOW);
        EXPECT_EQ(reports[0].res1, tiny);
    }
}

TEST_F(ExpKernel, SubnormalResultsRoundOnce) {
    // Across the subnormal range, including results with more than 42 bits (re-split sum)
    // and with few bits.
    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> u(-745.13, -708.4);
    for (int i = 0; i < 20000; ++i) {
        const double x = u(rng);
        const double r = one(paxdExp, x);
        const double exact = static_cast<double>(exact_exp(x));
        EXPECT_LE(std::fabs(r - exact), 0x1p-1074) << x;  // at most one subnormal step off
        ASSERT_LE(acc::ulp_error<double>(r, exact_exp(x)), 0.501) << x;
    }
}

TEST_F(ExpKernel, InfinitiesAndNaNAreNotErrors) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (DKernel k : d_slots) {
        EXPECT_TRUE(same_bits(one(k, -inf), 0.0));
        EXPECT_EQ(one(k, inf), inf);
        EXPECT_TRUE(std::isnan(one(k, nan)));
        EXPECT_EQ(one(k, 0.0), 1.0);
        EXPECT_EQ(one(k, -0.0), 1.0);
    }
    const float fnan = std::numeric_limits<float>::quiet_NaN();
    for (SKernel k : s_slots) {
        EXPECT_TRUE(same_bits(one(k, -std::numeric_limits<float>::infinity()), 0.0f));
        EXPECT_EQ(one(k, std::numeric_limits<float>::infinity()), std::numeric_limits<float>::infinity());
        EXPECT_TRUE(std::isnan(one(k, fnan)));
    }
    EXPECT_TRUE(reports.empty());
    EXPECT_EQ(paxGetErrStatus(), 0);
}

TEST_F(ExpKernel, SingleStatuses) {
    for (SKernel k : s_slots) {
        reports.clear();
        EXPECT_TRUE(std::isfinite(one(k, 88.72f)));
        EXPECT_TRUE(reports.empty());
        EXPECT_EQ(one(k, 88.73f), std::numeric_limits<float>::infinity());
        const float sub = one(k, -88.0f);
        EXPECT_GT(sub, 0.0f);
        EXPECT_LT(sub, std::numeric_limits<float>::min());
        EXPECT_TRUE(same_bits(one(k, -104.0f), 0.0f));
        ASSERT_EQ(reports.size(), 3u);
        EXPECT_EQ(reports[0].code, PAX_STATUS_OVERFLOW);
        EXPECT_EQ(reports[1].code, PAX_STATUS_UNDERFLOW);
        EXPECT_EQ(reports[2].code, PAX_STATUS_UNDERFLOW);
        EXPECT_EQ(reports[0].name, "paxsExp");
    }
}

TEST_F(ExpKernel, FlushToZeroModeFlushesSubnormalResults) {
    paxSetMode(PAX_FTZDAZ_ON);
    EXPECT_TRUE(same_bits(one(paxdExp, -710.0), 0.0));
    EXPECT_TRUE(same_bits(one(paxsExp, -88.0f), 0.0f));
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports[0].code, PAX_STATUS_UNDERFLOW);
    paxSetMode(PAX_FTZDAZ_OFF);
    EXPECT_GT(one(paxdExp, -710.0), 0.0);
}

// ---- main loop, tail, lanes ---------------------------------------------------------------------

// The main loop and the masked tail: in EP the tail also sends |x| with high word 0x4086232A to
// the scalar routine (correctly rounded), the main loop keeps it in the vector method (26 bits).
TEST_F(ExpKernel, ThreeElementsRunTheTailEightTheMainLoop) {
    const double x = 708.3957;  // high word 0x4086232A
    std::vector<double> a(8, x), r(8);
    paxdExp_26(3, a.data(), r.data());
    const double tail = r[0];
    paxdExp_26(8, a.data(), r.data());
    const double main = r[0];
    EXPECT_LE(acc::ulp_error<double>(tail, exact_exp(x)), 0.501);
    EXPECT_GT(acc::ulp_error<double>(main, exact_exp(x)), 1.0);
    EXPECT_LE(std::fabs(main / tail - 1), 0x1p-26);
    EXPECT_TRUE(reports.empty());
}

TEST_F(ExpKernel, EveryLengthMatchesElementwiseCallsAndWritesNoFurther) {
    std::mt19937_64 rng(3);
    std::uniform_real_distribution<double> u(-700, 700);
    for (DKernel k : {paxdExp, paxdExp_50}) {
        for (int n = 0; n <= 17; ++n) {
            std::vector<double> a(n + 2), r(n + 2, 1234.5);
            for (double &x : a) x = u(rng);
            k(n, a.data(), r.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(r[i], one(k, a[i]))) << n << " " << i;
            EXPECT_EQ(r[n], 1234.5) << n;
            EXPECT_EQ(r[n + 1], 1234.5) << n;
        }
    }
    std::uniform_real_distribution<float> uf(-85, 85);
    for (SKernel k : s_slots) {
        for (int n = 0; n <= 33; ++n) {
            std::vector<float> a(n + 1), r(n + 1, 7.0f);
            for (float &x : a) x = uf(rng);
            k(n, a.data(), r.data());
            for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(r[i], one(k, a[i]))) << n << " " << i;
            EXPECT_EQ(r[n], 7.0f) << n;
        }
    }
    EXPECT_TRUE(reports.empty());
}

TEST_F(ExpKernel, SpecialValueInEveryLanePosition) {
    const double specials[] = {800.0, -800.0, -709.0};
    const int codes[] = {PAX_STATUS_OVERFLOW, PAX_STATUS_UNDERFLOW, PAX_STATUS_UNDERFLOW};
    for (DKernel k : d_slots) {
        for (int n : {3, 8, 17, 35}) {
            for (int p = 0; p < n; ++p) {
                for (int s = 0; s < 3; ++s) {
                    std::vector<double> a(n), r(n);
                    for (int i = 0; i < n; ++i) a[i] = 0.37 * i - 3;
                    a[p] = specials[s];
                    a[(p + 5) % n] = std::numeric_limits<double>::quiet_NaN();
                    reports.clear();
                    k(n, a.data(), r.data());
                    const int nan_at = (p + 5) % n;
                    ASSERT_EQ(reports.size(), nan_at == p ? 0u : 1u) << n << " " << p;
                    if (nan_at == p) continue;
                    EXPECT_EQ(reports[0].index, p);
                    EXPECT_EQ(reports[0].code, codes[s]);
                    EXPECT_TRUE(same_bits(r[p], one(paxdExp, specials[s])));
                    EXPECT_TRUE(std::isnan(r[nan_at]));
                    for (int i = 0; i < n; ++i)
                        if (i != p && i != nan_at) ASSERT_TRUE(same_bits(r[i], one(k, a[i]))) << n << p << i;
                }
            }
        }
    }
}

TEST_F(ExpKernel, SeveralFlaggedLanesAreReportedInOrder) {
    std::vector<double> a(20, 1.0), r(20);
    for (int i : {2, 3, 9, 15, 16, 19}) a[i] = i % 2 ? 720.0 : -760.0;
    paxdExp(20, a.data(), r.data());
    ASSERT_EQ(reports.size(), 6u);
    const int order[] = {2, 3, 9, 15, 16, 19};
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(reports[k].index, order[k]);
        EXPECT_EQ(reports[k].code, order[k] % 2 ? PAX_STATUS_OVERFLOW : PAX_STATUS_UNDERFLOW);
    }
    EXPECT_EQ(r[0], std::exp(1.0));
}

// ---- error path ---------------------------------------------------------------------------------

TEST_F(ExpKernel, IndexCountsFromTheInputBase) {
    std::vector<double> whole(40, 0.5), r(40);
    const double *a = whole.data() + 5;
    whole[15] = 1000.0;  // index 10 of a
    paxSetInterfInputVectorPointer(whole.data());
    paxdExp(20, a, r.data());
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports[0].index, 15);
    EXPECT_EQ(reports[0].arg, 1000.0);
}

TEST_F(ExpKernel, CallBackReplacesTheResult) {
    replacement = 42.0;
    std::vector<double> a = {1, 2, 900, 4, 5, 6, 7, 8, -900, 10};
    std::vector<double> r(a.size());
    paxdExp(10, a.data(), r.data());
    EXPECT_EQ(r[2], 42.0);
    EXPECT_EQ(r[8], 42.0);
    EXPECT_EQ(r[3], one(paxdExp, 4.0));
    EXPECT_EQ(reports[0].res1, inf);
}

TEST_F(ExpKernel, InPlaceMatchesOutOfPlace) {
    std::vector<double> a(37), r(37);
    for (int i = 0; i < 37; ++i) a[i] = 30.0 * i - 600;
    a[4] = 750, a[20] = -750;
    for (DKernel k : d_slots) {
        std::vector<double> b = a;
        k(37, a.data(), r.data());
        k(37, b.data(), b.data());
        for (int i = 0; i < 37; ++i) ASSERT_TRUE(same_bits(r[i], b[i])) << i;
    }
}

TEST_F(ExpKernel, CallerRoundingModeIsRestoredAndNotUsed) {
    std::vector<double> a(16, 0.1), r(16);
    const int saved = std::fegetround();
    std::fesetround(FE_UPWARD);
    paxdExp(16, a.data(), r.data());
    const int during = std::fegetround();
    std::fesetround(saved);
    EXPECT_EQ(during, FE_UPWARD);
    EXPECT_EQ(r[0], one(paxdExp, 0.1));
}

// ---- strided kernels ----------------------------------------------------------------------------

TEST_F(ExpKernel, StridedUnitIncrementsGiveTheContiguousResults) {
    std::vector<double> a(101), r1(101), r2(101);
    for (int i = 0; i < 101; ++i) a[i] = 14.5 * i - 740;
    paxdExp(101, a.data(), r1.data());
    const auto contiguous_reports = reports;
    reports.clear();
    paxdExpI(101, a.data(), 1, r2.data(), 1);
    for (int i = 0; i < 101; ++i) ASSERT_TRUE(same_bits(r1[i], r2[i])) << i;
    ASSERT_EQ(reports.size(), contiguous_reports.size());
    for (std::size_t k = 0; k < reports.size(); ++k) EXPECT_EQ(reports[k].index, contiguous_reports[k].index);
}

TEST_F(ExpKernel, OtherIncrementsGatherAndScatter) {
    const int n = 150;
    for (auto [inca, incr] : {std::pair{2, 3}, std::pair{3, 1}, std::pair{1, 2}, std::pair{5, 5}}) {
        std::vector<double> a(n * inca), r(n * incr + 1, -1.0), expect(n), packed(n);
        for (int i = 0; i < n * inca; ++i) a[i] = 0.05 * i - 3;
        a[7 * inca] = 760, a[140 * inca] = -760;
        for (int i = 0; i < n; ++i) packed[i] = a[i * inca];
        paxdExp(n, packed.data(), expect.data());
        reports.clear();
        replacement = 3.0;
        paxdExpI(n, a.data(), inca, r.data(), incr);
        replacement = 0;
        ASSERT_EQ(reports.size(), 2u);
        EXPECT_EQ(reports[0].index, 7);
        EXPECT_EQ(reports[1].index, 140);
        EXPECT_EQ(reports[0].name, "paxdExpI");
        EXPECT_EQ(reports[0].arg, 760);
        EXPECT_EQ(reports[0].res1, inf);
        for (int i = 0; i < n; ++i) {
            const double want = i == 7 || i == 140 ? 3.0 : expect[i];
            ASSERT_TRUE(same_bits(r[i * incr], want)) << inca << " " << incr << " " << i;
        }
        if (incr > 1) EXPECT_EQ(r[1], -1.0);
        EXPECT_EQ(r[n * incr], -1.0);
    }
}

TEST_F(ExpKernel, StridedSingleAndInPlace) {
    std::vector<float> a(90), packed(45), expect(45);
    for (int i = 0; i < 90; ++i) a[i] = 0.3f * i - 10;
    a[20] = 100.0f;
    for (int i = 0; i < 45; ++i) packed[i] = a[2 * i];
    paxsExp_11(45, packed.data(), expect.data());
    paxsExpI_11(45, a.data(), 2, a.data(), 2);
    for (int i = 0; i < 45; ++i) ASSERT_TRUE(same_bits(a[2 * i], expect[i])) << i;
    ASSERT_EQ(reports.size(), 2u);  // both calls report element 10
    EXPECT_EQ(reports[1].index, 10);
    EXPECT_EQ(reports[1].name, "paxsExpI");
}

TEST_F(ExpKernel, NonPositiveCountsTouchNothing) {
    double a = 1000, r = 5;
    paxdExp(0, &a, &r);
    paxdExp(-3, &a, &r);
    paxdExpI(-1, &a, 2, &r, 2);
    paxdExp_26(0, nullptr, nullptr);
    EXPECT_EQ(r, 5);
    EXPECT_TRUE(reports.empty());
}

}  // namespace
