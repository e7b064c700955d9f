// The search dispatchers and the documented edge cases of the search: the four-knot example in
// every method and width, empty requests, the running cell of the sorted search, bisection in
// crowded bins, the caller's function, method order and parameter checks, uniform sites, cell
// width by the task's integer flag, and threaded requests against brute force.
#include <gtest/gtest.h>
#include <qon/qon_df.h>
#include <qon/qon_serv.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <type_traits>
#include <vector>

#include "fit/search.hpp"
#include "fit/task.hpp"
#include "oracle.hpp"

namespace {

struct TaskGuard {
    void *task = nullptr;
    ~TaskGuard() {
        if (task != nullptr) qon_df_kernel_DeleteTask(&task);
    }
};

// Cells of the dispatcher in the task's width, widened.
template <class T>
std::vector<int64_t> dispatch(void *task, const std::vector<T> &sites, int64_t hint = 0,
                              const std::type_identity_t<T> *params = nullptr, int *status = nullptr,
                              int64_t nsite = -1) {
    const bool wide = static_cast<qon::fit::Task *>(task)->intwidth != 0;
    const int64_t n = nsite < 0 ? static_cast<int64_t>(sites.size()) : nsite;
    std::vector<int64_t> c64(static_cast<size_t>(n), -9);
    std::vector<int32_t> c32(static_cast<size_t>(n), -9);
    void *cell = wide ? static_cast<void *>(c64.data()) : static_cast<void *>(c32.data());
    int st;
    if constexpr (sizeof(T) == sizeof(double))
        st = qon_df_kernel_dDFSearch1D(task, n, sites.data(), hint, params, cell, nullptr, nullptr, nullptr);
    else
        st = qon_df_kernel_sDFSearch1D(task, n, sites.data(), hint, params, cell, nullptr, nullptr, nullptr);
    if (status != nullptr) *status = st;
    else EXPECT_EQ(st, 0);
    if (!wide) std::copy(c32.begin(), c32.end(), c64.begin());
    return c64;
}

const std::vector<double> kFour = {0, 1, 2, 3};
const std::vector<double> kFourSites = {-0.5, 0, 0.5, 1, 2.9, 3, 3.5};
const std::vector<int64_t> kFourCells = {0, 1, 1, 2, 3, 3, 4};

TEST(FitSearchEdge, FourKnotsEveryHintAndWidth) {
    const double ends[2] = {0, 3};
    for (uint32_t width : {0u, 1u}) {
        for (int64_t hint : {0, 1, 2, 4}) {
            TaskGuard g;
            ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 4, hint == 4 ? ends : kFour.data(), hint, 0,
                                               nullptr, 0, width), 0);
            EXPECT_EQ(dispatch(g.task, kFourSites), kFourCells) << hint;
            if (hint != 4) {
                EXPECT_EQ(dispatch(g.task, kFourSites, DF_SITES_SORTED), kFourCells);
                const double peak[5] = {0, 1, 0, 0, 2};
                EXPECT_EQ(dispatch(g.task, kFourSites, 0, peak), kFourCells);
            }
        }
    }
    const float fends[2] = {0, 3};
    const std::vector<float> fsites(kFourSites.begin(), kFourSites.end());
    for (uint32_t width : {0u, 1u}) {
        TaskGuard g;
        ASSERT_EQ(qon_df_kernel_sNewTask1D(&g.task, 4, fends, 4, 0, nullptr, 0, width), 0);
        EXPECT_EQ(dispatch(g.task, fsites), kFourCells);
    }
}

TEST(FitSearchEdge, FourKnotsUniformKernelsInEveryWidth) {
    const double ends[2] = {0, 3};
    const double *s = kFourSites.data();
    std::vector<int32_t> c32(7);
    std::vector<int64_t> c64(7);
    auto check = [&](auto &cells) {
        for (size_t i = 0; i < 7; ++i) EXPECT_EQ(cells[i], kFourCells[i]) << i;
    };
    ASSERT_EQ(qon_df_kernel_dDFUniformSearch1D(4, ends, 7, s, 1.0, c32.data()), 0);
    check(c32);
    ASSERT_EQ(qon_df_kernel_dDFUniformSearch1D32(4, ends, 7, s, 1.0, c32.data()), 0);
    check(c32);
    ASSERT_EQ(qon_df_kernel_dDFUniformSearch1D64(4, ends, 7, s, 1.0, c64.data()), 0);
    check(c64);
    ASSERT_EQ(qon_df_kernel_dDFUniformSearch1D64Pack(4, ends, 7, s, 1.0, c64.data()), 0);
    check(c64);
}

TEST(FitSearchEdge, EmptyRequestsWriteNothing) {
    const double ends[2] = {0, 3};
    int64_t bins[36] = {};
    int64_t cell = -9, running = 2;
    const double *x = kFour.data(), *s = kFourSites.data();
    for (int64_t n : {0, -3}) {
        EXPECT_EQ(qon_df_kernel_dDFUniformSearch1D64(4, ends, n, s, 1.0, &cell), 0);
        EXPECT_EQ(qon_df_kernel_dDFQuasiUniformSearch1D64(4, x, n, s, 1.0, &cell), 0);
        EXPECT_EQ(qon_df_kernel_dDFHybridSearch1D64(4, x, n, s, bins, 1.0, &cell), 0);
        EXPECT_EQ(qon_df_kernel_dDFSortedSearch1D64(4, x, n, s, &running, &cell), 0);
        EXPECT_EQ(qon_df_kernel_dDFPeakSearch1D64(4, x, n, s, 1.0, &cell), 0);
        EXPECT_EQ(qon_df_kernel_dDFUserDefSearch1D64(4, x, n, s, nullptr, nullptr, nullptr, &cell), 0);
        EXPECT_EQ(qon_df_kernel_dDFUniUserDefSearch1D64(4, ends, n, s, 1.0, nullptr, nullptr, nullptr,
                                                        &cell), 0);
        TaskGuard g;
        ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 4, x, 1, 0, nullptr, 0, 1), 0);
        EXPECT_EQ(qon_df_kernel_dDFSearch1D(g.task, n, s, 0, nullptr, &cell, nullptr, nullptr, nullptr), 0);
    }
    EXPECT_EQ(cell, -9);
    EXPECT_EQ(running, 2);
}

TEST(FitSearchEdge, SortedResumesFromRunningCell) {
    std::vector<double> x(1000);
    for (size_t i = 0; i < x.size(); ++i) x[i] = std::sqrt(static_cast<double>(i));
    std::vector<double> sites;
    for (double t = -1; t < 33; t += 0.037) sites.push_back(t);
    const auto want = fit_test::brute_cells(x, sites);
    const size_t half = sites.size() / 2;
    std::vector<int32_t> cell(sites.size());
    int32_t running = 0;
    ASSERT_EQ(qon_df_kernel_dDFSortedSearch1D32(1000, x.data(), static_cast<int64_t>(half),
                                                sites.data(), &running, cell.data()), 0);
    EXPECT_EQ(running, want[half - 1]);
    ASSERT_EQ(qon_df_kernel_dDFSortedSearch1D32(1000, x.data(), static_cast<int64_t>(sites.size() - half),
                                                sites.data() + half, &running, cell.data() + half), 0);
    for (size_t i = 0; i < sites.size(); ++i) ASSERT_EQ(cell[i], want[i]) << i;
    EXPECT_EQ(running, 1000);
    // A site below the running knot keeps the running cell.
    const double back = 2.0;
    running = 500;
    ASSERT_EQ(qon_df_kernel_dDFSortedSearch1D32(1000, x.data(), 1, &back, &running, cell.data()), 0);
    EXPECT_EQ(cell[0], 500);
}

TEST(FitSearchEdge, CrowdedBinsBisectLikeWholeRange) {
    // 3000 knots crowded into [0, 1) and 100 spread to 1000: with 193 bins the first bin holds
    // thousands of knots, so the search bisects before it counts.
    std::vector<double> x;
    for (int i = 0; i < 3000; ++i) x.push_back(i / 3000.0);
    for (int i = 1; i <= 100; ++i) x.push_back(10.0 * i);
    TaskGuard g;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, static_cast<int64_t>(x.size()), x.data(), 1, 0,
                                       nullptr, 0, 1), 0);
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> u(-0.1, 1.1);
    std::vector<double> sites;
    for (int i = 0; i < 5000; ++i) sites.push_back(u(rng));
    for (int i = 0; i < 3000; i += 7) sites.push_back(x[static_cast<size_t>(i)]);
    const auto got = dispatch(g.task, sites);
    for (size_t i = 0; i < sites.size(); ++i) {
        const double t = sites[i];
        int64_t want = std::upper_bound(x.begin(), x.end(), t) - x.begin();
        ASSERT_EQ(got[i], want) << t;
    }
}

// A caller's function that writes 5 in every cell and returns the status given in user1.
int fixed_fn(int64_t *n, const double *, void *cell, int32_t *, void *status, void *) {
    for (int64_t i = 0; i < *n; ++i) static_cast<int32_t *>(cell)[i] = 5;
    return *static_cast<int *>(status);
}

// Claims to have searched none of the sites.
int shrink_fn(int64_t *n, const double *, void *, int32_t *, void *, void *) {
    *n = 0;
    return 3;
}

TEST(FitSearchEdge, CallersFunctionStatuses) {
    const double *x = kFour.data(), *s = kFourSites.data();
    std::vector<int32_t> cell(7, -9);
    int final_all = DF_USER_SEARCH_ALL_FINAL, failed = -5, plain = 0;
    EXPECT_EQ(qon_df_kernel_dDFUserDefSearch1D(4, x, 7, s, fixed_fn, &final_all, nullptr, cell.data()), 0);
    EXPECT_EQ(cell, std::vector<int32_t>(7, 5));
    EXPECT_EQ(qon_df_kernel_dDFUserDefSearch1D(4, x, 7, s, fixed_fn, &failed, nullptr, cell.data()), -5);
    EXPECT_EQ(qon_df_kernel_dDFUniUserDefSearch1D(4, x, 7, s, 1.0, fixed_fn, &failed, nullptr,
                                                  cell.data()), -5);
    // Unflagged cells are corrected from the function's start.
    EXPECT_EQ(qon_df_kernel_dDFUserDefSearch1D(4, x, 7, s, fixed_fn, &plain, nullptr, cell.data()), 0);
    for (size_t i = 0; i < 7; ++i) EXPECT_EQ(cell[i], kFourCells[i]);
    std::fill(cell.begin(), cell.end(), -9);
    EXPECT_EQ(qon_df_kernel_dDFUserDefSearch1D(4, x, 7, s, shrink_fn, nullptr, nullptr, cell.data()), 3);
    EXPECT_EQ(cell, std::vector<int32_t>(7, -9));
    // Through the dispatcher, in 32-site blocks, with more sites than fit on the stack.
    TaskGuard g;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 4, x, 1, 0, nullptr, 0, 0), 0);
    std::vector<double> many;
    for (int i = 0; i < 100; ++i) many.push_back(s[i % 7]);
    std::vector<int32_t> mc(100, -9);
    EXPECT_EQ(qon_df_kernel_dDFSearch1D(g.task, 100, many.data(), 0, nullptr, mc.data(), fixed_fn,
                                        &plain, nullptr), 0);
    for (int i = 0; i < 100; ++i) EXPECT_EQ(mc[i], kFourCells[i % 7]);
    EXPECT_EQ(qon_df_kernel_dDFSearch1D(g.task, 100, many.data(), 0, nullptr, mc.data(), fixed_fn,
                                        &failed, nullptr), -5);
    std::vector<double> x200(200);
    for (int i = 0; i < 200; ++i) x200[i] = i;
    std::vector<int32_t> big(200);
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(qon_df_kernel_dDFUserDefSearch1D(200, x200.data(), 200, x200.data(), fixed_fn, &plain,
                                               nullptr, big.data()), DF_ERROR_MEM_FAILURE);
    qon_serv_fail_allocations_after(-1);
}

TEST(FitSearchDispatch, MethodOrderAndParameterChecks) {
    std::vector<double> x(50);
    for (int i = 0; i < 50; ++i) x[i] = i * 1.5;
    TaskGuard g;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 50, x.data(), 1, 0, nullptr, 0, 1), 0);
    const std::vector<double> sites = {10.0, 3.0, 70.0, 0.0};
    const auto want = fit_test::brute_cells(x, sites);
    int st = 0;
    for (double bad1 : {0.5, -1.0, 2.0, std::nan("")}) {
        const double p[5] = {0, bad1, 0, 0, 3};
        dispatch(g.task, sites, 0, p, &st);
        EXPECT_EQ(st, DF_ERROR_BAD_SEARCH_PARAMS) << bad1;
    }
    for (double peak : {-1.0, 50.5, std::nan("")}) {
        const double p[5] = {0, 1, 0, 0, peak};
        dispatch(g.task, sites, 0, p, &st);
        EXPECT_EQ(st, DF_ERROR_BAD_SEARCH_PARAMS) << peak;
    }
    for (double peak : {0.0, 17.9, 49.0, 50.0}) {
        const double p[5] = {0, 1, 0, 0, peak};
        EXPECT_EQ(dispatch(g.task, sites, 0, p, &st), want);
        EXPECT_EQ(st, 0);
    }
    const double none[5] = {0, 0, 0, 0, -7};
    EXPECT_EQ(dispatch(g.task, sites, 0, none), want);
    // The sorted hint wins over the parameters (they are not even checked), and sorted search
    // keeps the running cell for a site that goes backwards.
    const double bad[5] = {0, 0.5, 0, 0, 0};
    const auto sorted = dispatch(g.task, sites, DF_SITES_SORTED, bad);
    EXPECT_EQ(sorted[0], want[0]);
    EXPECT_EQ(sorted[1], want[0]);
    // Partition hints come first: quasi-uniform does not look at the parameters either.
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_XHINT, 2), 0);
    EXPECT_EQ(dispatch(g.task, sites, DF_SITES_SORTED, bad), want);
    EXPECT_EQ(qon_df_kernel_dDFSearch1D(nullptr, 4, sites.data(), 0, nullptr, nullptr, nullptr,
                                        nullptr, nullptr), DF_ERROR_NULL_TASK);
}

TEST(FitSearchDispatch, UniformSites) {
    std::vector<double> x(300);
    for (int i = 0; i < 300; ++i) x[i] = i * i * 0.01;
    TaskGuard g;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 300, x.data(), 0, 0, nullptr, 0, 0), 0);
    for (int64_t n : {1, 2, 31, 32, 1000}) {
        const std::vector<double> ends = {-5.0, 1000.0};
        std::vector<double> gen(static_cast<size_t>(n));
        const double step = n > 1 ? (ends[1] - ends[0]) / static_cast<double>(n - 1) : 0.0;
        for (int64_t i = 0; i < n; ++i) gen[i] = std::fma(static_cast<double>(i), step, ends[0]);
        EXPECT_EQ(dispatch(g.task, ends, DF_SITES_UNIFORM, nullptr, nullptr, n),
                  fit_test::brute_cells(x, gen)) << n;
        EXPECT_EQ(dispatch(g.task, ends, DF_SITES_UNIFORM | DF_SITES_SORTED, nullptr, nullptr, n),
                  fit_test::brute_cells(x, gen)) << n;
    }
    int st = 0;
    qon_serv_fail_allocations_after(0);
    dispatch(g.task, std::vector<double>{0.0, 1.0}, DF_SITES_UNIFORM, nullptr, &st, 40);
    qon_serv_fail_allocations_after(-1);
    EXPECT_EQ(st, DF_ERROR_MEM_FAILURE);
}

TEST(FitSearchDispatch, StaleBinTableIsNotUsed) {
    std::vector<double> x(1000);
    for (int i = 0; i < 1000; ++i) x[i] = std::cbrt(static_cast<double>(i));
    TaskGuard g;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 1000, x.data(), 1, 0, nullptr, 0, 1), 0);
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_NX, 300), 0);
    const std::vector<double> head(x.begin(), x.begin() + 300);
    std::vector<double> sites;
    for (double t = -0.5; t < 11; t += 0.01) sites.push_back(t);
    EXPECT_EQ(dispatch(g.task, sites), fit_test::brute_cells(head, sites));
}

template <class T>
void dispatcher_sweep(int64_t nlarge) {
    std::mt19937_64 rng(sizeof(T));
    for (auto shape : {fit_test::Shape::Uniform, fit_test::Shape::QuasiUniform,
                       fit_test::Shape::Clustered, fit_test::Shape::Random}) {
        const int64_t nx = 700;
        const auto x = fit_test::make_partition<T>(shape, nx, rng);
        const T ends[2] = {x.front(), x.back()};
        for (int64_t nsite : {int64_t{5}, int64_t{33}, int64_t{1000}, nlarge}) {
            auto sites = shape == fit_test::Shape::Uniform ? fit_test::grid_sites(x, nsite, rng)
                                                            : fit_test::make_sites(x, nsite, 8, rng);
            const auto want = fit_test::brute_cells(x, sites);
            std::vector<T> sorted = sites;
            std::sort(sorted.begin(), sorted.end(), [](T a, T b) { return a < b || (b != b && a == a); });
            sorted.erase(std::find_if(sorted.begin(), sorted.end(), [](T v) { return v != v; }),
                         sorted.end());
            const auto swant = fit_test::brute_cells(x, sorted);
            for (int64_t hint : {0, 1, 2, 4}) {
                if ((hint == 4) != (shape == fit_test::Shape::Uniform)) continue;
                for (uint32_t width : {0u, 1u}) {
                    TaskGuard g;
                    const T *px = hint == 4 ? ends : x.data();
                    int st;
                    if constexpr (sizeof(T) == sizeof(double))
                        st = qon_df_kernel_dNewTask1D(&g.task, nx, px, hint, 0, nullptr, 0, width);
                    else
                        st = qon_df_kernel_sNewTask1D(&g.task, nx, px, hint, 0, nullptr, 0, width);
                    ASSERT_EQ(st, 0);
                    ASSERT_EQ(dispatch(g.task, sites), want) << hint << " " << nsite;
                    ASSERT_EQ(dispatch(g.task, sorted, DF_SITES_SORTED), swant) << hint << " " << nsite;
                }
            }
        }
    }
}

TEST(FitSearchDispatch, SweepMatchesBruteForceOnThreads) {
    // Four workers whatever the machine, so the shared blocked routines run threaded.
    setenv("QON_NUM_THREADS", "4", 1);
    const int64_t nlarge = fit_test::quick() ? 70000 : 140000;
    dispatcher_sweep<double>(nlarge);
    dispatcher_sweep<float>(nlarge);
    unsetenv("QON_NUM_THREADS");
}

}  // namespace
