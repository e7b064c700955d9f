// Quantiles, order statistics, absolute deviations and sorting: validation order and codes, the
// published small cases, and random and awkward data against std::sort and a long-double
// interpolation, over both element types, layouts and thread counts. The ordering routines are
// also checked directly against std::sort.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "stats/harness.h"
#include "stats/order.h"
#include "stats/task.h"

using namespace sst;

namespace {

// p variables of n values: bell-shaped, with heavy duplicates in variable 1 and signed zeros
// and infinities in variable 2.
std::vector<double> awkward_data(int64_t p, int64_t n, int64_t storage, uint64_t seed) {
    Rng rng(seed);
    std::vector<double> x(p * n);
    for (int64_t i = 0; i < p; ++i)
        for (int64_t j = 0; j < n; ++j) {
            double v = rng.bell() * (i + 1);
            if (i == 1) v = std::floor(v * 2);
            if (i == 2 && j % 17 == 0) v = (j % 34 == 0) ? -0.0 : 0.0;
            if (i == 2 && j == 5) v = INFINITY;
            if (i == 2 && j == 6) v = -INFINITY;
            x[at(storage, p, n, i, j)] = v;
        }
    return x;
}

template <class T>
struct QTask : Task<T> {
    std::vector<T> orders, quants, stats;
    int32_t norders, stats_storage;
    QTask(int64_t p, int64_t n, int64_t storage, const std::vector<double> &x, std::vector<double> q,
          const std::vector<int> *sel = nullptr, int32_t os_storage = ROK_SS_MATRIX_STORAGE_ROWS)
        : Task<T>(p, n, storage, x, nullptr, sel), orders(q.begin(), q.end()),
          quants(p * q.size(), this->poison), stats(p * n, this->poison), norders(static_cast<int32_t>(q.size())),
          stats_storage(os_storage) {
        Api<T>::EditQuantiles(this->task, &norders, orders.data(), quants.data(), stats.data(), &stats_storage);
    }
    int run(uint64_t estimates, int threads = 1, uint64_t method = ROK_SS_METHOD_FAST) {
        return Api<T>::Quantiles(this->task, estimates, method, services_with(threads));
    }
};

// The quantile rule on sorted values: the position h = (n - 1) q in double, the interpolation in
// long double.
long double reference_quantile(const std::vector<long double> &s, double q) {
    const int64_t n = static_cast<int64_t>(s.size());
    const double h = static_cast<double>(n - 1) * q;
    const int64_t k = static_cast<int64_t>(h);
    const long double f = h - static_cast<double>(k);
    const long double lo = s[k], hi = s[std::min(k + 1, n - 1)];
    return f == 0 ? lo : lo + f * (hi - lo);
}

template <class T>
void check_quantiles(int64_t storage, int threads) {
    const int64_t p = 4, n = 1001;
    const std::vector<double> orders = {0.0, 0.01, 0.25, 0.5, 0.5, 0.75, 0.999, 1.0, 0.3333};
    const auto x = awkward_data(p, n, storage, 31);
    QTask<T> both(p, n, storage, x, orders), only(p, n, storage, x, orders);
    ASSERT_EQ(both.run(ROK_SS_QUANTS | ROK_SS_ORDER_STATS, threads), 0);
    ASSERT_EQ(only.run(ROK_SS_QUANTS, threads), 0);
    for (int64_t i = 0; i < p; ++i) {
        std::vector<T> col(n);
        for (int64_t j = 0; j < n; ++j) col[j] = both.x[at(storage, p, n, i, j)];
        std::sort(col.begin(), col.end());
        std::vector<long double> sorted(col.begin(), col.end());
        for (int64_t j = 0; j < n; ++j) {
            const T got = both.stats[at(ROK_SS_MATRIX_STORAGE_ROWS, p, n, i, j)];
            EXPECT_EQ(got, col[j]) << i << " " << j;
        }
        for (size_t k = 0; k < orders.size(); ++k) {
            const T a = both.quants[i * orders.size() + k], b = only.quants[i * orders.size() + k];
            EXPECT_TRUE(a == b || (std::isnan(a) && std::isnan(b))) << "sorting and selection differ";
            const long double want = reference_quantile(sorted, static_cast<double>(static_cast<T>(orders[k])));
            if (std::isinf(want))
                EXPECT_EQ(a, static_cast<T>(want));
            else
                EXPECT_NEAR(a, want, 4 * std::numeric_limits<T>::epsilon() * (std::fabs(want) + 1)) << orders[k];
        }
    }
}

TEST(SSQuantiles, AgainstSortAndInterpolation) {
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS})
        for (int threads : {1, 3}) {
            SCOPED_TRACE(testing::Message() << storage << " threads " << threads);
            check_quantiles<double>(storage, threads);
            check_quantiles<float>(storage, threads);
        }
}

TEST(SSQuantiles, SmallCases) {
    // n = 4, values 1..4 shuffled: the median is h = 1.5 between 2 and 3.
    QTask<double> four(1, 4, ROK_SS_MATRIX_STORAGE_ROWS, {3, 1, 4, 2}, {0.5, 0.0, 1.0});
    ASSERT_EQ(four.run(ROK_SS_QUANTS), 0);
    EXPECT_EQ(four.quants[0], 2.5);
    EXPECT_EQ(four.quants[1], 1.0);
    EXPECT_EQ(four.quants[2], 4.0);
    // n = 1: every order gives the observation.
    QTask<float> one(2, 1, ROK_SS_MATRIX_STORAGE_COLS, {-3.5, 7}, {0.0, 0.4, 1.0});
    ASSERT_EQ(one.run(ROK_SS_QUANTS | ROK_SS_ORDER_STATS), 0);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(one.quants[k], -3.5f);
        EXPECT_EQ(one.quants[3 + k], 7.0f);
    }
    // A NaN order passes the check and gives NaN.
    QTask<double> nan_order(1, 4, ROK_SS_MATRIX_STORAGE_ROWS, {1, 2, 3, 4}, {NAN, 0.5});
    ASSERT_EQ(nan_order.run(ROK_SS_QUANTS), 0);
    EXPECT_TRUE(std::isnan(nan_order.quants[0]));
    EXPECT_EQ(nan_order.quants[1], 2.5);
}

TEST(SSQuantiles, SelectionLeavesOtherVariablesAlone) {
    const std::vector<int> sel = {1, 0, 1};
    const int64_t n = 5;
    for (int32_t os : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS}) {
        QTask<double> t(3, n, ROK_SS_MATRIX_STORAGE_COLS, awkward_data(3, n, ROK_SS_MATRIX_STORAGE_COLS, 2), {0.5}, &sel,
                        os);
        ASSERT_EQ(t.run(ROK_SS_QUANTS | ROK_SS_ORDER_STATS, 2), 0);
        EXPECT_NE(t.quants[0], t.poison);
        EXPECT_EQ(t.quants[1], t.poison);
        EXPECT_NE(t.quants[2], t.poison);
        for (int64_t j = 0; j < n; ++j) {
            EXPECT_EQ(t.stats[at(os, 3, n, 1, j)], t.poison);
            EXPECT_NE(t.stats[at(os, 3, n, 2, j)], t.poison);
            if (j > 0) EXPECT_LE(t.stats[at(os, 3, n, 0, j - 1)], t.stats[at(os, 3, n, 0, j)]);
        }
    }
}

TEST(SSQuantiles, ValidationOrder) {
    const int64_t n = 6;
    const auto x = awkward_data(2, n, ROK_SS_MATRIX_STORAGE_ROWS, 5);
    for (double bad : {1.0000001, -0.1}) {
        QTask<double> t(2, n, ROK_SS_MATRIX_STORAGE_ROWS, x, {0.5, 0.2, bad});
        EXPECT_EQ(t.run(ROK_SS_QUANTS), ROK_SS_ERROR_BAD_QUANT_ORDER);
        EXPECT_EQ(t.quants[0], t.poison);
    }
    QTask<double> t(2, n, ROK_SS_MATRIX_STORAGE_ROWS, x, {0.5});
    t.norders = -1;
    EXPECT_EQ(t.run(ROK_SS_QUANTS), ROK_SS_ERROR_BAD_QUANT_ORDER);
    t.norders = 1;
    EXPECT_EQ(t.run(ROK_SS_QUANTS, 1, 0), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    rok_ss_task *bare = nullptr;
    int32_t p = 2, nn = n, rows = ROK_SS_MATRIX_STORAGE_ROWS, one = 1;
    double q[2], os[2 * n], order = 0.5;
    ASSERT_EQ(rokdSSNewTask(&bare, &p, &nn, &rows, x.data(), nullptr, nullptr, 0), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_BAD_QUANT_ADDR);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_QUANT_QUANTILES, q), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_BAD_QUANT_ORDER_ADDR);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_QUANT_ORDER, &order), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_BAD_QUANT_ORDER);
    ASSERT_EQ(rokiSSEditTask(bare, ROK_SS_ED_QUANT_ORDER_N, &one), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, nullptr), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_ORDER_STATS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_BAD_ORDER_STATS_ADDR);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_ORDER_STATS, os), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_ORDER_STATS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_BAD_STORAGE_ADDR);
    int32_t both = 0x30000;
    ASSERT_EQ(rokiSSEditTask(bare, ROK_SS_ED_ORDER_STATS_STORAGE, &both), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_ORDER_STATS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_STORAGE_NOT_SUPPORTED);
    ASSERT_EQ(rokiSSEditTask(bare, ROK_SS_ED_OBSERV_STORAGE, &both), 0);
    EXPECT_EQ(rokdSSQuantiles(bare, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_STORAGE_NOT_SUPPORTED);
    rokSSDeleteTask(&bare);
}

TEST(SSDeviations, MedianAndMeanAbsoluteDeviation) {
    // Median 3, deviations 2, 1, 0, 1, 97: their median is 1.
    Task<double> t(1, 5, ROK_SS_MATRIX_STORAGE_ROWS, {4, 100, 1, 3, 2});
    std::vector<double> mdad(1, -1), mnad(1, -1);
    ASSERT_EQ(rokdSSEditTask(t.task, ROK_SS_ED_MDAD, mdad.data()), 0);
    EXPECT_EQ(rokdSSMAD(t.task, ROK_SS_MDAD | ROK_SS_MNAD, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_BAD_MNAD_ADDR);
    EXPECT_EQ(mdad[0], 1.0);  // the first estimate is done even though the second fails
    ASSERT_EQ(rokdSSEditTask(t.task, ROK_SS_ED_MNAD, mnad.data()), 0);
    ASSERT_EQ(rokdSSMAD(t.task, ROK_SS_MNAD, ROK_SS_METHOD_FAST, nullptr), 0);
    EXPECT_DOUBLE_EQ(mnad[0], (18 + 78 + 21 + 19 + 20) / 5.0 / 1.0);  // mean 22
    // About the caller's mean, with weights, over several variables and layouts.
    const int64_t p = 3, n = 301;
    Rng rng(4);
    std::vector<double> x(p * n), w(n);
    for (auto &v : x) v = rng.bell() * 3 + 1;
    for (auto &v : w) v = rng.uniform() + 0.5;
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS}) {
        Task<double> wt(p, n, storage, x, w.data());
        std::vector<double> dev(p), centre = {0.5, 1.0, -2.0};
        wt.mom[0] = centre;
        rokdSSEditTask(wt.task, ROK_SS_ED_MNAD, dev.data());
        ASSERT_EQ(rokdSSMAD(wt.task, ROK_SS_MNAD, ROK_SS_METHOD_FAST_USER_MEAN, services_with(2)), 0);
        for (int64_t i = 0; i < p; ++i) {
            long double s = 0, W = 0;
            for (int64_t j = 0; j < n; ++j) {
                s += w[j] * std::fabs(static_cast<long double>(x[at(storage, p, n, i, j)]) - centre[i]);
                W += w[j];
            }
            EXPECT_NEAR(dev[i], static_cast<double>(s / W), 1e-14 * static_cast<double>(s / W));
        }
        ASSERT_EQ(rokdSSMAD(wt.task, ROK_SS_MNAD, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    }
    Task<float> f(1, 5, ROK_SS_MATRIX_STORAGE_ROWS, {4, 100, 1, 3, 2});
    std::vector<float> fm(1);
    roksSSEditTask(f.task, ROK_SS_ED_MDAD, fm.data());
    EXPECT_EQ(roksSSMAD(f.task, ROK_SS_MDAD, ROK_SS_METHOD_FAST_USER_MEAN, nullptr), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    ASSERT_EQ(roksSSMAD(f.task, ROK_SS_MDAD, ROK_SS_METHOD_FAST, nullptr), 0);
    EXPECT_EQ(fm[0], 1.0f);
}

TEST(SSSort, OutOfPlaceInPlaceAndChecks) {
    const int64_t p = 3, n = 5000;
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS}) {
        const auto x = awkward_data(p, n, storage, 8);
        Task<double> t(p, n, storage, x);
        std::vector<double> out(p * n);
        const int32_t other = storage == ROK_SS_MATRIX_STORAGE_ROWS ? ROK_SS_MATRIX_STORAGE_COLS : ROK_SS_MATRIX_STORAGE_ROWS;
        EXPECT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, nullptr), ROK_SS_ERROR_BAD_SORTED_OBSERV_ADDR);
        ASSERT_EQ(rokdSSEditTask(t.task, ROK_SS_ED_SORTED_OBSERV, out.data()), 0);
        EXPECT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, nullptr), ROK_SS_ERROR_BAD_STORAGE_ADDR);
        ASSERT_EQ(rokiSSEditTask(t.task, ROK_SS_ED_SORTED_OBSERV_STORAGE, &other), 0);
        EXPECT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_FAST, nullptr), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
        ASSERT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, services_with(2)), 0);
        for (int64_t i = 0; i < p; ++i) {
            std::vector<double> col(n);
            for (int64_t j = 0; j < n; ++j) col[j] = x[at(storage, p, n, i, j)];
            std::sort(col.begin(), col.end());
            for (int64_t j = 0; j < n; ++j) ASSERT_EQ(out[at(other, p, n, i, j)], col[j]);
        }
        // In place: same storage required, no variable selection.
        ASSERT_EQ(rokdSSEditTask(t.task, ROK_SS_ED_SORTED_OBSERV, t.x.data()), 0);
        EXPECT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, nullptr), ROK_SS_ERROR_BAD_STORAGE_ADDR);
        const int32_t same = static_cast<int32_t>(storage);
        ASSERT_EQ(rokiSSEditTask(t.task, ROK_SS_ED_SORTED_OBSERV_STORAGE, &same), 0);
        std::vector<int32_t> sel = {1, 1, 0};
        ASSERT_EQ(rokiSSEditTask(t.task, ROK_SS_ED_INDC, sel.data()), 0);
        EXPECT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, nullptr), ROK_SS_ERROR_INDICES_NOT_SUPPORTED);
        t.task->indices = nullptr;
        ASSERT_EQ(rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, services_with(3)), 0);
        for (int64_t i = 0; i < p; ++i)
            for (int64_t j = 0; j < n; ++j) ASSERT_EQ(t.x[at(storage, p, n, i, j)], out[at(other, p, n, i, j)]);
    }
}

template <class T>
void check_ordering_routines() {
    using K = ss::KeyOf<T>;
    Rng rng(99);
    for (int64_t n : {1, 2, 17, 100, 4095, 4096, 20000}) {
        std::vector<T> v(n);
        for (int64_t j = 0; j < n; ++j) {
            const uint64_t r = rng.next();
            // Mix of wide-range values, duplicates, signed zeros, subnormals and infinities.
            switch (r % 8) {
                case 0: v[j] = static_cast<T>((r >> 8) % 5); break;
                case 1: v[j] = (r & 256) ? T(-0.0) : T(0.0); break;
                case 2: v[j] = std::numeric_limits<T>::denorm_min() * static_cast<T>((r >> 9) % 100) * ((r & 256) ? -1 : 1); break;
                case 3: v[j] = (r & 256) ? std::numeric_limits<T>::infinity() : -std::numeric_limits<T>::max(); break;
                default: v[j] = static_cast<T>(std::ldexp(rng.bell(), static_cast<int>((r >> 8) % 200) - 100));
            }
        }
        std::vector<T> want = v;
        std::stable_sort(want.begin(), want.end(), [](T a, T b) { return a < b || (a == 0 && b == 0 && std::signbit(a) && !std::signbit(b)); });
        std::vector<K> keys(n), tmp(n);
        for (int64_t j = 0; j < n; ++j) keys[j] = ss::to_key(v[j]);
        K *sorted = nullptr;
        ASSERT_EQ(ss::radix_sort(keys.data(), tmp.data(), n, &sorted), 0);
        std::vector<K> qs(n);
        for (int64_t j = 0; j < n; ++j) qs[j] = ss::to_key(v[j]);
        ss::quick_sort(qs.data(), n);
        for (int64_t j = 0; j < n; ++j) {
            ASSERT_EQ(std::bit_cast<K>(ss::from_key<T>(sorted[j])), std::bit_cast<K>(want[j])) << n << " " << j;
            ASSERT_EQ(qs[j], sorted[j]);
        }
        for (int64_t k : {int64_t{0}, n / 3, n / 2, n - 1}) {
            std::vector<K> sel(n);
            for (int64_t j = 0; j < n; ++j) sel[j] = ss::to_key(v[j]);
            ASSERT_EQ(ss::quick_select(sel.data(), 0, n, k), sorted[k]);
            for (int64_t j = 0; j < k; ++j) ASSERT_LE(sel[j], sel[k]);
            for (int64_t j = k + 1; j < n; ++j) ASSERT_GE(sel[j], sel[k]);
        }
    }
    K *sorted = nullptr;
    K one[1] = {0};
    EXPECT_EQ(ss::radix_sort<K>(nullptr, one, 1, &sorted), ss::kRadixNullBuffer);
    EXPECT_EQ(ss::radix_sort<K>(one, one, 0, &sorted), ss::kRadixBadLength);
}

TEST(SSOrdering, RadixSortQuickSortAndSelect) {
    check_ordering_routines<double>();
    check_ordering_routines<float>();
}

// Many equal keys: the selection stays linear (this would time out if it were quadratic).
TEST(SSOrdering, SelectionOnConstantRuns) {
    std::vector<uint64_t> v(1 << 20, 42);
    v[12345] = 7;
    EXPECT_EQ(ss::quick_select(v.data(), 0, static_cast<int64_t>(v.size()), int64_t{500000}), 42u);
    EXPECT_EQ(ss::quick_select(v.data(), 0, static_cast<int64_t>(v.size()), int64_t{0}), 7u);
}

}  // namespace
