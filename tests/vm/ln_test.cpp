// Logarithm kernels (paxdLn, paxsLn): the interval tables recomputed in quad precision, every
// slot within its bound at the interval boundaries of the reduction (where r reaches its largest
// magnitude and c_j changes) across binades, and next to 1 (where ln x is tiny and the
// exactness of r = z c - 1 decides the relative error).
#include <gtest/gtest.h>
#include <qon/qon_pax.h>
#include <quadmath.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "common/accuracy.hpp"
#include "vm/kernels/ln_tables.hpp"

namespace {

namespace acc = qon::test::accuracy;
namespace tab = qon::vm::ln_tables;
using Q = __float128;

bool multiple_of(float v, int e) { return std::ldexp(v, e) == std::trunc(std::ldexp(v, e)); }

TEST(LnTables, MinusLogOfTheFactorsInQuadPrecision) {
    for (int j = 0; j < 8; ++j) {
        const Q v = -logq(tab::c8_f[j]);
        EXPECT_EQ(tab::logc8_f[j], static_cast<float>(v)) << j;
        EXPECT_TRUE(multiple_of(tab::logc8_hi_f[j], 16)) << j;
        EXPECT_LE(fabsq(tab::logc8_hi_f[j] + Q(tab::logc8_lo_f[j]) - v), Q(0x1p-40)) << j;
    }
    for (int j = 0; j < 4; ++j) EXPECT_EQ(tab::logc4[j], static_cast<double>(-logq(tab::c4[j]))) << j;
}

// z at the bit pattern offset + j*width (an interval boundary), its neighbours, scaled by 2^k.
template <class T, class U>
std::vector<std::array<double, 2>> boundaries(U offset, int shift, int intervals) {
    std::vector<std::array<double, 2>> out;
    for (int j = 0; j <= intervals; ++j)
        for (int d = -2; d <= 2; ++d) {
            const T z = std::bit_cast<T>(static_cast<U>(offset + (static_cast<U>(j) << shift) + d));
            for (int k : {-126, -40, -1, 0, 1, 2, 40, 127}) out.push_back({std::ldexp(double(z), k), 0});
        }
    return out;
}

// 1 + m ulp and 1 - m half-ulps for small m, and 1 +- 2^-e.
template <class T>
std::vector<std::array<double, 2>> next_to_one() {
    std::vector<std::array<double, 2>> out;
    const double eps = std::numeric_limits<T>::epsilon();
    for (int m = 1; m <= 300; ++m) {
        out.push_back({1 + m * eps, 0});
        out.push_back({1 - m * eps / 2, 0});
    }
    for (int e = 1; e < std::numeric_limits<T>::digits; ++e) {
        out.push_back({1 + std::ldexp(1.0, -e), 0});
        out.push_back({1 - std::ldexp(1.0, -e), 0});
    }
    return out;
}

template <class T>
void check(const char *name, qon_pax_kernel_fn const (&table)[3], std::vector<std::array<double, 2>> special) {
    acc::Sweep sweep{{acc::uniform(0.9, 1.1), acc::uniform(0.999, 1.001)}, std::move(special), acc::sample_count(20000)};
    const acc::Slots slots = acc::measure_u<T>(table, [](Q x) { return logq(x); }, sweep);
    acc::expect_accuracy<T>(name, slots);
    EXPECT_LE(slots[1].max_ulp, 0.6) << name << " HA at " << slots[1].worst_x;
}

TEST(LnAccuracy, IntervalBoundariesAndNextToOne) {
    // The split points of the reductions: sqrt(2)/2 and its double (HA and EP) and the
    // 4 intervals from 0.66666663 (LA); the 8 intervals from 0.70833331 of the single kernels.
    auto d = boundaries<double, std::uint64_t>(0x3FE6A09E667F3BCD, 52, 1);
    for (const auto &x : boundaries<double, std::uint64_t>(0x3FE5555540000000, 50, 4)) d.push_back(x);
    for (const auto &x : next_to_one<double>()) d.push_back(x);
    check<double>("dLn", qon_pax_kernel_dLn_ttab, d);
    auto s = boundaries<float, std::uint32_t>(0x3F355555, 20, 8);
    for (const auto &x : next_to_one<float>()) s.push_back(x);
    check<float>("sLn", qon_pax_kernel_sLn_ttab, s);
}

}  // namespace
