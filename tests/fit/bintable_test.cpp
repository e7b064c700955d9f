// The bin table: bin counts, pairs worked out by hand for small partitions, and on random
// partitions the property the search relies on: every value of bin k lies strictly between
// the knots lo_k and hi_k, and the pairs are the tightest the knots' bins allow.
#include <gtest/gtest.h>
#include <qon/qon_df.h>

#include <algorithm>
#include <random>
#include <vector>

#include "fit/simd.hpp"
#include "fit/task.hpp"

namespace {

using qon::fit::bin_count;
using qon::fit::build_bins;

TEST(FitBinTable, Counts) {
    EXPECT_EQ(bin_count(2), 16);
    EXPECT_EQ(bin_count(100), 16);
    EXPECT_EQ(bin_count(16 * 16), 16);
    EXPECT_EQ(bin_count(16 * 17), 17);
    EXPECT_EQ(bin_count(300), 18);
    EXPECT_EQ(bin_count(16 * 1024 + 15), 1024);
    EXPECT_EQ(bin_count(16 * 1100), 1024);
    EXPECT_EQ(bin_count(int64_t{1} << 40), 1024);
}

TEST(FitBinTable, UnitKnotsByHand) {
    // Knot i of 0..16 sits in bin i: lo_k = k - 1 (knot 0 for bin 0), hi_k = k + 1.
    std::vector<double> x(17);
    for (int i = 0; i < 17; ++i) x[i] = i;
    std::vector<int64_t> bins(36);
    EXPECT_EQ(build_bins(x.data(), 17, 16, bins.data()), 1.0);
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(bins[2 * k], k == 0 ? 0 : k - 1) << k;
        EXPECT_EQ(bins[2 * k + 1], k + 1) << k;
    }
    EXPECT_EQ(bins[32], 14);
    EXPECT_EQ(bins[33], 16);
}

TEST(FitBinTable, EmptyBinsByHand) {
    // Knots 0, 1, 16: knot 1 opens bin 1, the last knot maps to bin B = 16 and only sets
    // hi_15 and a spare entry; every other bin borrows from its neighbours.
    const float x[3] = {0.0f, 1.0f, 16.0f};
    std::vector<int64_t> bins(36);
    EXPECT_EQ(build_bins(x, 3, 16, bins.data()), 1.0f);
    EXPECT_EQ(bins[0], 0);
    EXPECT_EQ(bins[1], 1);
    EXPECT_EQ(bins[2], 0);
    for (int k = 1; k < 16; ++k) EXPECT_EQ(bins[2 * k + 1], 2) << k;
    for (int k = 2; k < 16; ++k) EXPECT_EQ(bins[2 * k], 1) << k;
    EXPECT_EQ(bins[32], 1);
    EXPECT_EQ(bins[33], 2);
    EXPECT_EQ(bins[34], 2);
    EXPECT_EQ(bins[35], -1);
}

TEST(FitBinTable, TwoKnotsWithEveryHint) {
    const double x[2] = {-1.0, 3.0};
    for (int64_t hint : {0, 1, 2, 4}) {
        void *t = nullptr;
        ASSERT_EQ(qon_df_kernel_dNewTask1D(&t, 2, x, hint, 0, nullptr, 0, 1), 0);
        auto *rec = static_cast<qon::fit::Task *>(t);
        if (hint == 4) {
            EXPECT_EQ(rec->bins, nullptr);
        } else {
            ASSERT_NE(rec->bins, nullptr);
            EXPECT_EQ(rec->nbins, 16);
            EXPECT_EQ(reinterpret_cast<uintptr_t>(rec->bins) % 128, 0u);
            for (int k = 0; k < 16; ++k) EXPECT_EQ(rec->bins[2 * k], 0);
            for (int k = 0; k < 16; ++k) EXPECT_EQ(rec->bins[2 * k + 1], 1);
        }
        qon_df_kernel_DeleteTask(&t);
    }
}

// The bin of v as the search computes it.
template <class T>
int64_t bin_of(T v, T x0, T s) {
    return qon::fit::trunc_i64((v - x0) * s);
}

template <class T>
void check_random_partition(int64_t nx, std::mt19937_64 &rng) {
    std::vector<T> x(static_cast<size_t>(nx));
    std::exponential_distribution<double> gap(1.0);
    std::uniform_int_distribution<int> cluster(0, 9);
    double v = -50.0;
    for (auto &xi : x) {
        T next;
        do {
            v += cluster(rng) == 0 ? 40.0 * gap(rng) : 0.01 * gap(rng);
            next = static_cast<T>(v);
        } while (&xi != x.data() && next <= *(&xi - 1));
        xi = next;
    }
    const int64_t nb = bin_count(nx);
    std::vector<int64_t> bins(static_cast<size_t>(2 * nb + 4));
    const T s = build_bins(x.data(), nx, nb, bins.data());
    const T x0 = x[0];
    EXPECT_EQ(bins[2 * (nb - 1) + 1], nx - 1);
    EXPECT_EQ(bins[2 * nb], bins[2 * (nb - 1)]);
    EXPECT_EQ(bins[2 * nb + 1], bins[2 * (nb - 1) + 1]);
    std::vector<int64_t> bin(static_cast<size_t>(nx));
    for (int64_t i = 0; i < nx; ++i) bin[i] = bin_of(x[i], x0, s);
    for (int64_t k = 0; k <= nb; ++k) {
        const int64_t lo = bins[2 * k], hi = bins[2 * k + 1];
        ASSERT_TRUE(lo >= 0 && lo < hi && hi < nx) << k << " " << lo << " " << hi;
        // Every knot before lo and lo itself lie in an earlier bin (or is knot 0); every knot
        // from hi on lies in a later bin, save the forced last knot of the last bins.
        EXPECT_TRUE(lo == 0 || bin[lo] < k) << k;
        if (hi != nx - 1) EXPECT_GT(bin[hi], k);
        // Tightness: the knot after lo lies in bin k or later, the knot before hi in bin k or
        // earlier (else the table would waste a part of the search range).
        if (lo > 0 && k < nb) EXPECT_GE(bin[lo + 1], k) << k;
        if (k < nb - 1) EXPECT_LE(bin[hi - 1], k) << k;
    }
}

TEST(FitBinTable, RandomPartitionsBracketEveryBin) {
    std::mt19937_64 rng(20261122);
    for (int64_t nx : {2, 3, 17, 100, 300, 5000, 40000}) {
        check_random_partition<double>(nx, rng);
        check_random_partition<float>(nx, rng);
    }
}

}  // namespace
