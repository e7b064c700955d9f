// Basic statistics against a two-pass long-double oracle, over both element types, both
// observation layouts, with and without weights and a variable selection, by the fast and the
// one-pass method; block-by-block against whole, thread counts, integer widths, ill-conditioned
// data, the user-mean and conversion methods, matrix storages and the validation order.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "stats/basic.h"
#include "stats/harness.h"

using namespace sst;

namespace {

std::vector<double> make_data(int64_t p, int64_t n, uint64_t seed, double offset = 0) {
    Rng rng(seed);
    std::vector<double> x(p * n);
    // Variables with different centres and scales, and some correlation with variable 0.
    for (int64_t j = 0; j < n; ++j) {
        const double common = rng.bell();
        for (int64_t i = 0; i < p; ++i)
            x[at(ROK_SS_MATRIX_STORAGE_ROWS, p, n, i, j)] =
                offset + (i + 1) * 0.5 * (rng.bell() + 0.3 * i * common) + i - 2.0 + rng.uniform() * rng.uniform();
    }
    return x;
}

// The same values in the other storage.
std::vector<double> relayout(const std::vector<double> &x, int64_t p, int64_t n, int64_t storage) {
    std::vector<double> y(x.size());
    for (int64_t i = 0; i < p; ++i)
        for (int64_t j = 0; j < n; ++j) y[at(storage, p, n, i, j)] = x[at(ROK_SS_MATRIX_STORAGE_ROWS, p, n, i, j)];
    return y;
}

std::vector<double> make_weights(int64_t n, uint64_t seed) {
    Rng rng(seed);
    std::vector<double> w(n);
    for (auto &v : w) v = 0.25 + 2 * rng.uniform();
    return w;
}

struct Case {
    int64_t storage;
    bool weighted, selection;
    uint64_t method;
    int64_t p = 5;
};

template <class T>
void check_all(const Case &c) {
    const int64_t p = c.p, n = 777;
    const auto base = make_data(p, n, 11 + c.storage + c.weighted);
    const auto x = relayout(base, p, n, c.storage);
    const auto w = make_weights(n, 5);
    std::vector<int> sel(p);
    for (int64_t i = 0; i < p; ++i) sel[i] = i % 5 == 0 || i % 5 == 2 || i % 5 == 3;
    Task<T> t(p, n, c.storage, x, c.weighted ? w.data() : nullptr, c.selection ? &sel : nullptr);
    ASSERT_EQ(t.basic(kAllBasic, c.method), 0);
    // The oracle sees the data as the kernel does (rounded to T).
    std::vector<double> xr(t.x.begin(), t.x.end()), wr(t.w.begin(), t.w.end());
    Oracle o(xr, c.weighted ? wr.data() : nullptr, p, n, c.storage);
    const double tol = std::is_same_v<T, float> ? 2e-6 : 1e-13;
    for (int64_t i = 0; i < p; ++i) {
        SCOPED_TRACE(testing::Message() << "variable " << i);
        if (c.selection && !sel[i]) {
            EXPECT_EQ(t.mom[0][i], t.poison);
            EXPECT_EQ(t.cov[i * p + i], t.poison);
            continue;
        }
        const long double spread = std::sqrt(o.c2(i)), c2 = o.c2(i);
        EXPECT_TRUE(near_scaled(t.mom[0][i], o.mean[i], o.raw_abs[0][i] / o.W, tol));
        EXPECT_TRUE(near_scaled(t.sum[0][i], o.raw[0][i], o.raw_abs[0][i], tol));
        for (int k = 1; k < 4; ++k) {
            EXPECT_TRUE(near_scaled(t.mom[k][i], o.raw[k][i] / o.W, o.raw_abs[k][i] / o.W, tol)) << "raw moment " << k + 1;
            EXPECT_TRUE(near_scaled(t.sum[k][i], o.raw[k][i], o.raw_abs[k][i], tol)) << "raw sum " << k + 1;
            EXPECT_TRUE(near_scaled(t.sum[k + 3][i], o.central[k][i], o.central_abs[k][i], 10 * tol)) << "central sum " << k + 1;
        }
        EXPECT_TRUE(near(t.mom[4][i], c2, 10 * tol));
        EXPECT_TRUE(near_scaled(t.mom[5][i], o.c3(i), o.central_abs[2][i] / o.W, 10 * tol));
        EXPECT_TRUE(near(t.mom[6][i], o.c4(i), 10 * tol));
        EXPECT_TRUE(near(t.kurt[i], o.c4(i) / (c2 * c2) - 3, 100 * tol));
        EXPECT_TRUE(near_scaled(t.skew[i], o.c3(i) / (c2 * spread), o.central_abs[2][i] / o.W / (c2 * spread), 100 * tol));
        EXPECT_TRUE(near_scaled(t.var[i], spread / o.mean[i], spread * o.raw_abs[0][i] / o.W / (o.mean[i] * o.mean[i]), 10 * tol));
        for (int64_t k = 0; k < p; ++k) {
            if (c.selection && !sel[k]) {
                EXPECT_EQ(t.cov[i * p + k], t.poison);
                continue;
            }
            const long double scale = std::sqrt(o.cross[i * p + i] * o.cross[k * p + k]);
            EXPECT_TRUE(near_scaled(t.cp[i * p + k], o.cross[i * p + k], scale, 10 * tol)) << "cross-product " << k;
            EXPECT_TRUE(near_scaled(t.cov[i * p + k], o.cov(i, k), scale / o.denom(), 10 * tol)) << "covariance " << k;
            EXPECT_TRUE(near_scaled(t.cor[i * p + k], o.cor(i, k), 1, 10 * tol)) << "correlation " << k;
        }
    }
    EXPECT_TRUE(near(t.accw[0], o.W, tol));
    EXPECT_TRUE(near(t.accw[1], o.W2, tol));
}

class BasicAgainstOracle : public testing::TestWithParam<Case> {};

TEST_P(BasicAgainstOracle, Double) { check_all<double>(GetParam()); }
TEST_P(BasicAgainstOracle, Single) { check_all<float>(GetParam()); }

std::vector<Case> all_cases() {
    std::vector<Case> cases;
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS})
        for (bool weighted : {false, true})
            for (bool selection : {false, true})
                for (uint64_t method : {ROK_SS_METHOD_FAST, ROK_SS_METHOD_1PASS})
                    for (int64_t p : {5, 21}) cases.push_back({storage, weighted, selection, method, p});
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Layouts, BasicAgainstOracle, testing::ValuesIn(all_cases()), [](const auto &info) {
    const Case &c = info.param;
    return std::string(c.storage == ROK_SS_MATRIX_STORAGE_ROWS ? "Rows" : "Cols") + (c.weighted ? "Weighted" : "") +
           (c.selection ? "Selected" : "") + (c.method == ROK_SS_METHOD_FAST ? "Fast" : "OnePass") + "P" +
           std::to_string(c.p);
});

// Two calls on halves give what one call on the whole gives, for every method and layout.
TEST(BasicBlocks, HalvesEqualWhole) {
    const int64_t p = 4, n = 1000, half = 400;
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS})
        for (uint64_t method : {ROK_SS_METHOD_FAST, ROK_SS_METHOD_1PASS})
            for (bool weighted : {false, true}) {
                SCOPED_TRACE(testing::Message() << storage << " " << method << " " << weighted);
                const auto base = make_data(p, n, 3);
                const auto w = make_weights(n, 9);
                Task<double> whole(p, n, storage, relayout(base, p, n, storage), weighted ? w.data() : nullptr);
                ASSERT_EQ(whole.basic(kAllBasic, method), 0);
                std::vector<double> first, second;
                for (int64_t part = 0; part < 2; ++part) {
                    const int64_t j0 = part ? half : 0, m = part ? n - half : half;
                    std::vector<double> sub(p * m);
                    for (int64_t i = 0; i < p; ++i)
                        for (int64_t j = 0; j < m; ++j)
                            sub[at(storage, p, m, i, j)] = base[at(ROK_SS_MATRIX_STORAGE_ROWS, p, n, i, j0 + j)];
                    (part ? second : first) = sub;
                }
                Task<double> blocks(p, half, storage, first, weighted ? w.data() : nullptr);
                ASSERT_EQ(blocks.basic(kAllBasic, method), 0);
                // Second block: same result arrays, new observations and count.
                int32_t n2 = n - half;
                blocks.x = second;
                ASSERT_EQ(rokdSSEditTask(blocks.task, ROK_SS_ED_OBSERV, blocks.x.data()), 0);
                ASSERT_EQ(rokiSSEditTask(blocks.task, ROK_SS_ED_OBSERV_N, &n2), 0);
                if (weighted) ASSERT_EQ(rokdSSEditTask(blocks.task, ROK_SS_ED_WEIGHTS, w.data() + half), 0);
                ASSERT_EQ(blocks.basic(kAllBasic, method), 0);
                for (int64_t i = 0; i < p; ++i) {
                    for (int k = 0; k < 7; ++k) {
                        EXPECT_NEAR(blocks.mom[k][i], whole.mom[k][i], 1e-12 * std::fabs(whole.mom[k][i]) + 1e-14);
                        EXPECT_NEAR(blocks.sum[k][i], whole.sum[k][i], 1e-12 * std::fabs(whole.sum[k][i]) + 1e-12);
                    }
                    EXPECT_NEAR(blocks.kurt[i], whole.kurt[i], 1e-11);
                    EXPECT_NEAR(blocks.skew[i], whole.skew[i], 1e-11);
                    for (int64_t k = 0; k < p; ++k) {
                        EXPECT_NEAR(blocks.cov[i * p + k], whole.cov[i * p + k], 1e-12 * std::fabs(whole.cov[i * p + i]));
                        EXPECT_NEAR(blocks.cor[i * p + k], whole.cor[i * p + k], 1e-12);
                        EXPECT_NEAR(blocks.cp[i * p + k], whole.cp[i * p + k], 1e-12 * std::fabs(whole.cp[i * p + i]));
                    }
                }
                EXPECT_DOUBLE_EQ(blocks.accw[0], whole.accw[0]);
            }
}

// 1, 2 and 16 threads, and 32- and 64-bit task integers, agree up to rounding.
TEST(BasicThreads, ThreadCountsAndIntegerWidthsAgree) {
    const int64_t p = 5, n = 30000;
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS}) {
        const auto x = relayout(make_data(p, n, 21), p, n, storage);
        Task<double> one(p, n, storage, x);
        ASSERT_EQ(one.basic(kAllBasic, ROK_SS_METHOD_1PASS, 1), 0);
        Oracle o(x, nullptr, p, n, storage);
        for (int threads : {2, 16}) {
            ASSERT_GT(ss::basic_threads(threads, n, p, true), 1);
            Task<double, int64_t> many(p, n, storage, x);
            ASSERT_EQ(many.basic(kAllBasic, ROK_SS_METHOD_1PASS, threads), 0);
            for (int64_t i = 0; i < p; ++i) {
                for (int k = 0; k < 7; ++k)
                    EXPECT_NEAR(many.mom[k][i], one.mom[k][i], 1e-12 * (std::fabs(one.mom[k][i]) + 1));
                EXPECT_TRUE(near(many.mom[4][i], o.c2(i), 1e-13));
                for (int64_t k = 0; k < p; ++k)
                    EXPECT_NEAR(many.cov[i * p + k], one.cov[i * p + k], 1e-12 * std::fabs(one.cov[i * p + i]));
            }
        }
    }
}

// A mean of 1e9 with unit spread: the variance keeps its digits (raw sums would keep none).
TEST(BasicAccuracy, IllConditionedVariance) {
    const int64_t p = 2, n = 100000;
    Rng rng(77);
    std::vector<double> x(p * n);
    for (auto &v : x) v = 1e9 + rng.bell() * 1.7320508075688772;
    Oracle o(x, nullptr, p, n, ROK_SS_MATRIX_STORAGE_ROWS);
    for (uint64_t method : {ROK_SS_METHOD_1PASS, ROK_SS_METHOD_FAST})
        for (int threads : {1, 2}) {
            Task<double> t(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
            ASSERT_EQ(t.basic(ROK_SS_MEAN | ROK_SS_2C_MOM | ROK_SS_COV | ROK_SS_4C_MOM, method, threads), 0);
            for (int64_t i = 0; i < p; ++i) {
                EXPECT_TRUE(near(t.mom[0][i], o.mean[i], 1e-16));
                EXPECT_TRUE(near(t.mom[4][i], o.c2(i), 1e-10)) << t.mom[4][i] << " vs " << static_cast<double>(o.c2(i));
                EXPECT_TRUE(near(t.mom[6][i], o.c4(i), 1e-10));
                EXPECT_TRUE(near(t.cov[i * p + 1 - i], o.cov(i, 1 - i), 1e-7 * std::sqrt(o.c2(0) * o.c2(1))));
            }
        }
}

// The user-mean method takes central quantities about the caller's mean and leaves it alone.
TEST(BasicMethods, UserMean) {
    const int64_t p = 3, n = 500;
    const auto x = make_data(p, n, 8);
    Task<double> t(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
    const double centre[3] = {0.5, -1.0, 2.0};
    for (int i = 0; i < 3; ++i) t.mom[0][i] = centre[i];
    ASSERT_EQ(t.basic(ROK_SS_2C_SUM | ROK_SS_4C_SUM | ROK_SS_2R_MOM | ROK_SS_CP, ROK_SS_METHOD_FAST_USER_MEAN), 0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(t.mom[0][i], centre[i]);
        long double s2 = 0, s4 = 0, r2 = 0, c01 = 0;
        for (int j = 0; j < n; ++j) {
            long double d = x[i * n + j] - static_cast<long double>(centre[i]);
            s2 += d * d;
            s4 += d * d * d * d;
            r2 += static_cast<long double>(x[i * n + j]) * x[i * n + j];
            c01 += d * (x[((i + 1) % 3) * n + j] - static_cast<long double>(centre[(i + 1) % 3]));
        }
        EXPECT_TRUE(near(t.sum[4][i], s2, 1e-13));
        EXPECT_TRUE(near(t.sum[6][i], s4, 1e-13));
        EXPECT_TRUE(near(t.mom[1][i], r2 / n, 1e-13));
        EXPECT_TRUE(near(t.cp[i * p + (i + 1) % 3], c01, 1e-12));
    }
}

// Sums to moments and back, through the accumulated weights; correlation from cross-products.
TEST(BasicMethods, Conversions) {
    const int64_t p = 3, n = 400;
    const auto x = make_data(p, n, 4);
    const auto w = make_weights(n, 2);
    Task<double> ref(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x, w.data());
    ASSERT_EQ(ref.basic(kAllBasic, ROK_SS_METHOD_1PASS), 0);
    const uint64_t moments = ROK_SS_MEAN | ROK_SS_2R_MOM | ROK_SS_3R_MOM | ROK_SS_4R_MOM | ROK_SS_2C_MOM |
                             ROK_SS_3C_MOM | ROK_SS_4C_MOM | ROK_SS_COV;
    Task<double> t(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x, w.data());
    t.accw = ref.accw;
    for (int k = 0; k < 7; ++k) t.sum[k] = ref.sum[k];
    t.cp = ref.cp;
    ASSERT_EQ(t.basic(moments | ROK_SS_COR, ROK_SS_METHOD_SUM_TO_MOM), 0);
    ASSERT_EQ(t.basic(ROK_SS_KURTOSIS | ROK_SS_SKEWNESS | ROK_SS_VARIATION, ROK_SS_METHOD_SUM_TO_MOM), 0);
    for (int64_t i = 0; i < p; ++i) {
        for (int k = 0; k < 7; ++k) EXPECT_NEAR(t.mom[k][i], ref.mom[k][i], 1e-13 * std::fabs(ref.mom[k][i]));
        EXPECT_NEAR(t.kurt[i], ref.kurt[i], 1e-12);
        EXPECT_NEAR(t.skew[i], ref.skew[i], 1e-12);
        EXPECT_NEAR(t.var[i], ref.var[i], 1e-12);
        for (int64_t k = 0; k < p; ++k) {
            EXPECT_NEAR(t.cov[i * p + k], ref.cov[i * p + k], 1e-13 * ref.cov[i * p + i]);
            EXPECT_NEAR(t.cor[i * p + k], ref.cor[i * p + k], 1e-13);
        }
    }
    Task<double> back(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x, w.data());
    back.accw = ref.accw;
    for (int k = 0; k < 7; ++k) back.mom[k] = ref.mom[k];
    back.cov = ref.cov;
    ASSERT_EQ(back.basic(moments, ROK_SS_METHOD_MOM_TO_SUM), 0);
    for (int64_t i = 0; i < p; ++i) {
        for (int k = 0; k < 7; ++k) EXPECT_NEAR(back.sum[k][i], ref.sum[k][i], 1e-13 * std::fabs(ref.sum[k][i]));
        EXPECT_NEAR(back.cp[i * p + i], ref.cp[i * p + i], 1e-13 * ref.cp[i * p + i]);
    }
    // Without accumulated weights and without observation weights, W = W2 = n.
    Task<double> counted(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
    ASSERT_EQ(rokdSSEditTask(counted.task, ROK_SS_ED_ACCUM_WEIGHT, nullptr), ROK_SS_ERROR_BAD_ACCUM_WEIGHT_ADDR);
    counted.sum[0].assign(p, 2.0 * n);
    rok_ss_task *bare = nullptr;
    int32_t ip = p, in = n, st = ROK_SS_MATRIX_STORAGE_ROWS;
    ASSERT_EQ(rokdSSNewTask(&bare, &ip, &in, &st, x.data(), nullptr, nullptr, 0), 0);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_MEAN, counted.mom[0].data()), 0);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_SUM, counted.sum[0].data()), 0);
    ASSERT_EQ(rokdSSBasic(bare, ROK_SS_MEAN, ROK_SS_METHOD_SUM_TO_MOM, nullptr), 0);
    EXPECT_EQ(counted.mom[0][0], 2.0);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_WEIGHTS, w.data()), 0);
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_MEAN, ROK_SS_METHOD_SUM_TO_MOM, nullptr), ROK_SS_ERROR_BAD_ACCUM_WEIGHT_ADDR);
    rokSSDeleteTask(&bare);
}

// Packed storages: upper and lower triangles row by row.
TEST(BasicMatrices, PackedStorages) {
    const int64_t p = 4, n = 300;
    const auto x = make_data(p, n, 6);
    Task<double> full(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
    ASSERT_EQ(full.basic(ROK_SS_COV | ROK_SS_COR | ROK_SS_CP, ROK_SS_METHOD_1PASS), 0);
    for (int32_t storage : {ROK_SS_MATRIX_STORAGE_U_PACKED, ROK_SS_MATRIX_STORAGE_L_PACKED}) {
        Task<double> packed(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
        packed.ints.cov_storage = packed.ints.cor_storage = packed.ints.cp_storage = storage;
        ASSERT_EQ(packed.basic(ROK_SS_COV | ROK_SS_COR | ROK_SS_CP, ROK_SS_METHOD_1PASS), 0);
        int k = 0;
        for (int64_t r = 0; r < p; ++r)
            for (int64_t c = storage == ROK_SS_MATRIX_STORAGE_U_PACKED ? r : 0;
                 c < (storage == ROK_SS_MATRIX_STORAGE_U_PACKED ? p : r + 1); ++c, ++k) {
                EXPECT_DOUBLE_EQ(packed.cov[k], full.cov[r * p + c]);
                EXPECT_DOUBLE_EQ(packed.cor[k], full.cor[r * p + c]);
                EXPECT_DOUBLE_EQ(packed.cp[k], full.cp[r * p + c]);
            }
        EXPECT_EQ(k, p * (p + 1) / 2);
        EXPECT_EQ(packed.cov[k], packed.poison);
    }
    Task<double> bad(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
    bad.ints.cov_storage = 3;
    EXPECT_EQ(bad.basic(ROK_SS_COV, ROK_SS_METHOD_1PASS), ROK_SS_ERROR_STORAGE_NOT_SUPPORTED);
    EXPECT_EQ(bad.cov[0], bad.poison);
}

TEST(BasicValidation, MethodsAndMissingArrays) {
    const int64_t p = 3, n = 50;
    const auto x = make_data(p, n, 1);
    Task<double> t(p, n, ROK_SS_MATRIX_STORAGE_ROWS, x);
    EXPECT_EQ(t.basic(ROK_SS_MEAN, ROK_SS_METHOD_FAST | ROK_SS_METHOD_1PASS), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    EXPECT_EQ(t.basic(ROK_SS_MEAN, 0), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    EXPECT_EQ(t.basic(ROK_SS_MEAN, ROK_SS_METHOD_1PASS | ROK_SS_METHOD_FAST_USER_MEAN), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    EXPECT_EQ(t.basic(ROK_SS_CP, ROK_SS_METHOD_SUM_TO_MOM), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    EXPECT_EQ(t.basic(ROK_SS_2C_SUM, ROK_SS_METHOD_MOM_TO_SUM), ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
    EXPECT_EQ(t.mom[0][0], t.poison);

    rok_ss_task *bare = nullptr;
    int32_t ip = p, in = n, st = ROK_SS_MATRIX_STORAGE_ROWS;
    std::vector<double> skew(p, -1), mean(p, -1), r2(p, -1), c2(p, -1), c3(p, -1);
    ASSERT_EQ(rokdSSNewTask(&bare, &ip, &in, &st, x.data(), nullptr, nullptr, 0), 0);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_SKEWNESS, skew.data()), 0);
    // Skewness by the one-pass method needs the mean, raw moments 2 and 3 and central moments 2 and 3.
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_SKEWNESS, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_BAD_MEAN_ADDR);
    ASSERT_EQ(rokdSSEditMoments(bare, mean.data(), r2.data(), nullptr, nullptr, c2.data(), c3.data(), nullptr), 0);
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_SKEWNESS, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_BAD_3R_MOM_ADDR);
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_SUM, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_BAD_SUM_ADDR);
    // Fast central sum 2 needs raw moment 2 as well; one-pass only the mean.
    std::vector<double> cs2(p, -1);
    ASSERT_EQ(rokdSSEditTask(bare, ROK_SS_ED_2C_SUM, cs2.data()), 0);
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_2C_SUM | ROK_SS_COR, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_BAD_COR_ADDR);
    for (double v : skew) EXPECT_EQ(v, -1);
    for (double v : mean) EXPECT_EQ(v, -1);
    // Observation checks come after the arrays: n, then x, then the storage pointer and value.
    int32_t zero = 0, bad_storage = 0x30000;
    ASSERT_EQ(rokiSSEditTask(bare, ROK_SS_ED_OBSERV_N, &zero), 0);
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_MEAN, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_BAD_OBSERV_N);
    ASSERT_EQ(rokiSSEditTask(bare, ROK_SS_ED_OBSERV_N, &in), 0);
    ASSERT_EQ(rokiSSEditTask(bare, ROK_SS_ED_OBSERV_STORAGE, &bad_storage), 0);
    EXPECT_EQ(rokdSSBasic(bare, ROK_SS_MEAN, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_STORAGE_NOT_SUPPORTED);
    for (double v : mean) EXPECT_EQ(v, -1);
    EXPECT_EQ(rokdSSBasic(nullptr, ROK_SS_MEAN, ROK_SS_METHOD_1PASS, nullptr), ROK_SS_ERROR_NULL_TASK_DESCRIPTOR);
    rokSSDeleteTask(&bare);
}

TEST(BasicValidation, AllocationFailureWritesNothing) {
    const int64_t p = 3, n = 100;
    Task<double> t(p, n, ROK_SS_MATRIX_STORAGE_ROWS, make_data(p, n, 2));
    for (long k = 0; k < 2; ++k) {
        qon_serv_fail_allocations_after(k);
        EXPECT_EQ(t.basic(kAllBasic, ROK_SS_METHOD_1PASS), ROK_SS_ERROR_MEMORY);
        qon_serv_fail_allocations_after(-1);
        EXPECT_EQ(t.mom[0][0], t.poison);
        EXPECT_EQ(t.accw[0], 0);
    }
}

TEST(BasicDispatch, WorkingMaskAndThreadRule) {
    EXPECT_EQ(ss::pack_estimates(ROK_SS_COV | ROK_SS_COR), 0x180u);
    EXPECT_EQ(ss::pack_estimates(ROK_SS_KURTOSIS | ROK_SS_SKEWNESS | ROK_SS_VARIATION), 0xE00u);
    EXPECT_EQ(ss::pack_estimates(ROK_SS_SUM | ROK_SS_CP | ROK_SS_MIN | ROK_SS_QUANTS), 0x81000u);
    EXPECT_EQ(ss::basic_threads(64, 100, 10, false), 1);
    EXPECT_EQ(ss::basic_threads(1 << 30, 100000, 100, true), 6250);
    EXPECT_EQ(ss::basic_threads(8, 100000, 100, true), 8);
    EXPECT_EQ(ss::basic_threads(1 << 30, 1000000, 1, false), 122);
    // n p m of 2^70 does not overflow.
    EXPECT_EQ(ss::basic_threads(4, int64_t{1} << 40, int64_t{1} << 15, true), 4);
}

TEST(BasicMinmax, ExtremesAcrossBlocksAndLayouts) {
    const int64_t p = 4, n = 203;
    const auto base = make_data(p, n, 12);
    for (int64_t storage : {ROK_SS_MATRIX_STORAGE_ROWS, ROK_SS_MATRIX_STORAGE_COLS}) {
        Task<float> t(p, n, storage, relayout(base, p, n, storage));
        t.mn.assign(p, std::numeric_limits<float>::infinity());
        t.mx.assign(p, -std::numeric_limits<float>::infinity());
        ASSERT_EQ(Api<float>::Minmax(t.task, ROK_SS_MIN | ROK_SS_MAX, ROK_SS_METHOD_FAST, services_with(2)), 0);
        for (int64_t i = 0; i < p; ++i) {
            float lo = INFINITY, hi = -INFINITY;
            for (int64_t j = 0; j < n; ++j) {
                lo = std::min(lo, t.x[at(storage, p, n, i, j)]);
                hi = std::max(hi, t.x[at(storage, p, n, i, j)]);
            }
            EXPECT_EQ(t.mn[i], lo);
            EXPECT_EQ(t.mx[i], hi);
        }
        // A later block only widens the range.
        t.mn[0] = -1e6f;
        ASSERT_EQ(Api<float>::Minmax(t.task, ROK_SS_MIN, ROK_SS_METHOD_1PASS, nullptr), 0);
        EXPECT_EQ(t.mn[0], -1e6f);
        EXPECT_EQ(Api<float>::Minmax(t.task, ROK_SS_MIN, ROK_SS_METHOD_SUM_TO_MOM, nullptr),
                  ROK_SS_ERROR_METHOD_NOT_SUPPORTED);
        ASSERT_EQ(roksSSEditTask(t.task, ROK_SS_ED_MAX, nullptr), ROK_SS_ERROR_BAD_MAX_ADDR);
    }
}

}  // namespace
