// The vector layer and the vector kernel driver that the exponential kernels are built on.
// Layer: one method template evaluated over the four-lane and eight-lane types and over their
// one-lane forms must agree bit for bit; masked loads and stores touch exactly their lanes; the
// polynomial schemes add every coefficient once at its power.
// Driver: a two-result method with a lane test and a status-returning scalar routine, run at
// every length, lane position, increment and in place, against an element-by-element oracle.
#include <gtest/gtest.h>

#include <qon/qon_pax.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "vm/exp_reports.hpp"
#include "vm/kernels/simd.hpp"
#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;

template <class T>
bool same_bits(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

alignas(64) const double dtable[8] = {1.5, -2.25, 3.125, 4.0, -5.5, 6.75, 7.0, 8.5};
alignas(64) const float ftable[8] = {1.5f, -2.25f, 3.125f, 4.0f, -5.5f, 6.75f, 7.0f, 8.5f};

// Exercises most operations of the layer; written once for every width.
struct Probe {
    template <class V>
    static V eval(V x) {
        using T = Elem<V>;
        const V a = mul_add(x, splat<V>(T(1.25)), splat<V>(T(-0.5)));
        const V b = mul_sub(a, x, splat<V>(T(3))) - neg_mul_add(x, x, a);
        const V c = select(lt(x, splat<V>(T(0))), sqrt(abs(b)), min(max(b, splat<V>(T(-4))), splat<V>(T(4))));
        const V d = round_nearest(c * splat<V>(T(3.3))) + floor(a) - trunc(b) / splat<V>(T(8));
        const auto q = bits(d);
        const auto index = shr<sizeof(T) * 8 - 3>(q) & splat_q<V>(7);
        V t;
        if constexpr (sizeof(T) == 8) {
            V first, second;
            gather_pairs<16>(dtable, shr<1>(index), first, second);
            t = lookup<8>(dtable, index) + first * second + gather<8>(dtable, index);
        } else {
            t = gather<4>(ftable, index);
        }
        const auto mixed = ((q ^ shl<3>(q)) | splat_q<V>(1)) - (q & splat_q<V>(0xFF)) + bits(t);
        const V e = from_bits(mixed & splat_q<V>(sizeof(T) == 8 ? 0x3FFFFFFFFFFFFFFF : 0x3FFFFFFF));
        const Mask<V> big = mask_or(gt(x, splat<V>(T(10))), is_nan(x));
        const Mask<V> odd = mask_andnot(int_gt(q & splat_q<V>(1), splat_q<V>(0)), big);
        return select(mask_and(odd, ge(e, splat<V>(T(1)))), e + t, select(big, x, d + e));
    }
};

template <class T>
std::vector<T> probe_arguments() {
    std::mt19937_64 rng(99);
    std::uniform_real_distribution<double> u(-30, 30);
    std::vector<T> v;
    for (int i = 0; i < 4000; ++i) v.push_back(static_cast<T>(u(rng)));
    for (T s : {T(0), T(-0.0), T(1), T(-1), T(0.5), T(2.5), T(-2.5), std::numeric_limits<T>::infinity(),
                -std::numeric_limits<T>::infinity(), std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::min(),
                std::numeric_limits<T>::denorm_min()})
        v.push_back(s);
    while (v.size() % 8) v.push_back(T(0.25));
    return v;
}

template <class T>
void expect_widths_agree() {
    using V = Wide<T>;
    const std::vector<T> x = probe_arguments<T>();
    for (std::size_t i = 0; i < x.size(); i += lanes<V>) {
        alignas(32) T wide[lanes<V>];
        store(wide, Probe::eval(load<V>(x.data() + i)));
        for (int l = 0; l < lanes<V>; ++l)
            ASSERT_TRUE(same_bits(wide[l], Probe::eval(x[i + l]))) << x[i + l] << " lane " << l;
    }
}

TEST(VectorLayer, WideAndOneLaneFormsAgreeBitForBit) {
    expect_widths_agree<double>();
    expect_widths_agree<float>();
}

TEST(VectorLayer, FloatsThroughDoubleRoundOnce) {
    const std::vector<float> x = probe_arguments<float>();
    const auto f = [](auto d) { return d * d + splat<decltype(d)>(1.0 / 3); };
    for (std::size_t i = 0; i < x.size(); i += 8) {
        alignas(32) float r[8];
        store(r, in_double(load<VF>(x.data() + i), f));
        for (int l = 0; l < 8; ++l) {
            const double d = x[i + l];
            ASSERT_TRUE(same_bits(r[l], static_cast<float>(d * d + 1.0 / 3))) << x[i + l];
            ASSERT_TRUE(same_bits(r[l], in_double(x[i + l], f)));
        }
    }
}

// Estrin's scheme (with and without Horner steps at the low end) and the even/odd split: with
// integer coefficients i + 1 at s = 1/2 every partial sum is exact, so a coefficient lost,
// repeated or put at the wrong power shows as an inexact result.
template <class V, int n, int horner_low>
void expect_polynomial_sums() {
    using T = Elem<V>;
    const auto coef = [](auto i) { return splat<V>(T(i + 1)); };
    T exact = 0;
    for (int i = n - 1; i >= 0; --i) exact = exact * T(0.5) + T(i + 1);
    alignas(32) T got[lanes<V>];
    store(got, estrin<n, horner_low>(splat<V>(T(0.5)), coef));
    EXPECT_EQ(got[0], exact) << "estrin n " << n << " horner_low " << horner_low;
    store(got, even_odd<n>(splat<V>(T(0.5)), coef));
    EXPECT_EQ(got[0], exact) << "even_odd n " << n;
}
template <class V, int... n>
void expect_polynomials(std::integer_sequence<int, n...>) {
    (expect_polynomial_sums<V, n + 1, 0>(), ...);
    (expect_polynomial_sums<V, n + 3, 2>(), ...);
}

TEST(VectorLayer, PolynomialSchemesSumEveryCoefficientOnce) {
    expect_polynomials<VD>(std::make_integer_sequence<int, 20>{});
    expect_polynomials<VF>(std::make_integer_sequence<int, 14>{});
    expect_polynomials<double>(std::make_integer_sequence<int, 20>{});
}

// A mask made from the top bits of integer lanes selects where that bit alone is set.
TEST(VectorLayer, SignLaneMasksSelectByTheTopBit) {
    alignas(32) const std::uint64_t q[4] = {0, 1, 2, 3};
    alignas(32) double got[4];
    const QD quadrant = {_mm256_load_si256(reinterpret_cast<const __m256i *>(q))};
    store(got, select(sign_lanes(shl<63>(quadrant)), splat<VD>(1.0), splat<VD>(-1.0)));
    for (int l = 0; l < 4; ++l) EXPECT_EQ(got[l], (q[l] & 1) ? 1.0 : -1.0) << l;
    EXPECT_EQ(lane_bits(sign_lanes(shl<62>(quadrant))), 0b1100u);
    EXPECT_TRUE(sign_lanes(std::uint64_t{1} << 63));
    EXPECT_FALSE(sign_lanes(std::uint32_t{1} << 30));
}

template <class V>
void expect_masked_access() {
    using T = Elem<V>;
    constexpr int L = lanes<V>;
    T src[L], dst[L + 1];
    for (int l = 0; l < L; ++l) src[l] = T(l + 1);
    for (int m = 0; m <= L; ++m) {
        alignas(32) T got[L];
        store(got, load_first<V>(src, m));
        for (int l = 0; l < L; ++l) EXPECT_EQ(got[l], l < m ? src[l] : T(0)) << m;
        EXPECT_EQ(lane_bits(first_lanes<V>(m)), (1u << m) - 1) << m;
        for (T &d : dst) d = T(-7);
        store_first(dst, load<V>(src), m);
        for (int l = 0; l <= L; ++l) EXPECT_EQ(dst[l], l < m ? src[l] : T(-7)) << m;
    }
}

TEST(VectorLayer, MaskedLoadsAndStoresTouchTheirLanesOnly) {
    expect_masked_access<VD>();
    expect_masked_access<VF>();
    EXPECT_FALSE(any(first_lanes<VD>(0)));
    EXPECT_TRUE(any(first_lanes<VF>(1)));
}

// ---- the driver ---------------------------------------------------------------------------------

// r1 = x/2, r2 = x*x in the vector method; lanes above 100 or NaN go to the scalar routine,
// which gives r1 = -1, r2 = x and status 3 for finite x (none for NaN).
template <class Real, int Groups>
struct Halves {
    using T = Real;
    static constexpr int groups = Groups;
    static constexpr int results = 2;
    template <class V>
    static void eval(V x, V &r1, V &r2) {
        r1 = x * splat<V>(T(0.5));
        r2 = x * x;
    }
    template <bool tail, class V>
    static Mask<V> special(V x) {
        return gt_or_nan(x, splat<V>(T(100)));
    }
    static int scalar(T x, T &r1, T &r2) {
        r1 = T(-1);
        r2 = x;
        return std::isnan(x) ? 0 : PAX_STATUS_OVERFLOW;
    }
};

using VectorDriver = qon::test::exp::Recorded;
using qon::test::exp::reports;

template <class T, int G>
void check_lengths_and_positions() {
    using K = qon::vm::VectorKernel<Halves<T, G>>;
    for (int n = 0; n <= 3 * G * lanes<Wide<T>> + 3; ++n) {
        for (int p = -1; p < n; ++p) {
            std::vector<T> a(n + 1), r1(n + 1, T(9)), r2(n + 1, T(9));
            for (int i = 0; i < n; ++i) a[i] = T(i) - T(7);
            if (p >= 0) a[p] = T(1000 + p);
            if (n > 2 && p != 1) a[1] = std::numeric_limits<T>::quiet_NaN();
            reports.clear();
            K::contiguous(n, a.data(), {{r1.data(), r2.data()}}, "probe");
            for (int i = 0; i < n; ++i) {
                const bool redo = a[i] > T(100) || std::isnan(a[i]);
                ASSERT_TRUE(same_bits(r1[i], redo ? T(-1) : a[i] * T(0.5))) << n << " " << p << " " << i;
                ASSERT_TRUE(same_bits(r2[i], redo ? a[i] : a[i] * a[i])) << n << " " << p << " " << i;
            }
            ASSERT_EQ(r1[n], T(9));
            ASSERT_EQ(r2[n], T(9));
            ASSERT_EQ(reports.size(), p >= 0 ? 1u : 0u) << n << " " << p;
            if (p >= 0) {
                EXPECT_EQ(reports[0].index, p);
                EXPECT_EQ(reports[0].code, PAX_STATUS_OVERFLOW);
                EXPECT_EQ(reports[0].res1, -1.0);  // stored before the report
                EXPECT_EQ(reports[0].res2, double(T(1000 + p)));
                EXPECT_EQ(reports[0].name, "probe");
            }
        }
    }
}

TEST_F(VectorDriver, EveryLengthAndLanePosition) {
    check_lengths_and_positions<double, 2>();
    check_lengths_and_positions<double, 3>();
    check_lengths_and_positions<float, 1>();
}

TEST_F(VectorDriver, StridedBlocksMatchTheContiguousRun) {
    using K = qon::vm::VectorKernel<Halves<double, 2>>;
    const int n = 200;
    std::vector<double> packed(n);
    for (int i = 0; i < n; ++i) packed[i] = i % 37 == 5 ? 500.0 + i : 0.75 * i - 20;
    std::vector<double> e1(n), e2(n);
    K::contiguous(n, packed.data(), {{e1.data(), e2.data()}}, "probe");
    const auto contiguous = reports;
    for (auto [inca, inc1, inc2] : {std::tuple{2, 1, 3}, std::tuple{1, 4, 1}, std::tuple{3, 3, 3}}) {
        std::vector<double> a(n * inca), r1(n * inc1, 0.0), r2(n * inc2, 0.0);
        for (int i = 0; i < n; ++i) a[i * inca] = packed[i];
        reports.clear();
        K::strided(n, a.data(), inca, {{r1.data(), r2.data()}}, {inc1, inc2}, "probeI");
        for (int i = 0; i < n; ++i) {
            ASSERT_TRUE(same_bits(r1[i * inc1], e1[i])) << i;
            ASSERT_TRUE(same_bits(r2[i * inc2], e2[i])) << i;
        }
        ASSERT_EQ(reports.size(), contiguous.size());
        for (std::size_t k = 0; k < reports.size(); ++k) {
            EXPECT_EQ(reports[k].index, contiguous[k].index);
            EXPECT_EQ(reports[k].arg, contiguous[k].arg);
            EXPECT_EQ(reports[k].res2, contiguous[k].res2);
            EXPECT_EQ(reports[k].name, "probeI");
        }
    }
}

TEST_F(VectorDriver, InPlaceFirstResult) {
    using K = qon::vm::VectorKernel<Halves<float, 2>>;
    std::vector<float> a(45), r2(45);
    for (int i = 0; i < 45; ++i) a[i] = i == 20 || i == 44 ? 300.0f : float(i);
    K::contiguous(45, a.data(), {{a.data(), r2.data()}}, "probe");
    EXPECT_EQ(a[3], 1.5f);
    EXPECT_EQ(a[20], -1.0f);
    EXPECT_EQ(r2[20], 300.0f);  // the scalar routine saw the argument, not the stored result
    EXPECT_EQ(r2[44], 300.0f);
    ASSERT_EQ(reports.size(), 2u);
}

}  // namespace
