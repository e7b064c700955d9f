// Every search family, precision and index width against a brute-force count of knots, over
// random partitions (uniform, quasi-uniform, clustered, random; 2 to 10^6 knots) and random,
// sorted and clustered sites that include knots, both ends, far-away values, infinities and
// non-numbers. Kernels are reached through their exported names.
#include <gtest/gtest.h>
#include <qon/qon_df.h>

#include <algorithm>
#include <random>
#include <type_traits>
#include <vector>

#include "fit/task.hpp"
#include "fit/search.hpp"
#include "oracle.hpp"

namespace {

using fit_test::Shape;

template <class T, class C>
struct Family {
    template <class F>
    struct Named {
        const char *name;
        F *fn;
    };
    using Scaled = int(int64_t, const T *, int64_t, const T *, T, C *);
    using Hybrid = int(int64_t, const T *, int64_t, const T *, const int64_t *, T, C *);
    using Sorted = int(int64_t, const T *, int64_t, const T *, C *, C *);
    using User = int(int64_t, const T *, int64_t, const T *, qon::fit::SearchFn<T>, void *, void *,
                     C *);
    using UniUser = int(int64_t, const T *, int64_t, const T *, T, qon::fit::SearchFn<T>, void *,
                        void *, C *);
    std::vector<Named<Scaled>> uniform, quasi, peak;
    std::vector<Named<Hybrid>> hybrid;
    std::vector<Named<Sorted>> sorted;
    std::vector<Named<User>> user;
    std::vector<Named<UniUser>> uniuser;
};

template <class TT, class CC>
Family<TT, CC> family() {
    Family<TT, CC> f;
#define FIT_TEST_ADD(P, T, W, C)                                                               \
    if constexpr (std::is_same_v<T, TT> && std::is_same_v<C, CC>) {                           \
        f.uniform.push_back({#P "Uniform" #W, qon_df_kernel_##P##DFUniformSearch1D##W});       \
        f.quasi.push_back({#P "QuasiUniform" #W, qon_df_kernel_##P##DFQuasiUniformSearch1D##W}); \
        f.peak.push_back({#P "Peak" #W, qon_df_kernel_##P##DFPeakSearch1D##W});                \
        f.hybrid.push_back({#P "Hybrid" #W, qon_df_kernel_##P##DFHybridSearch1D##W});          \
        f.sorted.push_back({#P "Sorted" #W, qon_df_kernel_##P##DFSortedSearch1D##W});          \
        f.user.push_back({#P "UserDef" #W, qon_df_kernel_##P##DFUserDefSearch1D##W});          \
        f.uniuser.push_back({#P "UniUserDef" #W, qon_df_kernel_##P##DFUniUserDefSearch1D##W}); \
    }
    QON_DF_SEARCH_VARIANTS(FIT_TEST_ADD)
#undef FIT_TEST_ADD
    return f;
}

// The caller's search function of the tests: writes the true cell moved by -3..3 (so some
// starts fall outside [0, nx]) and marks every fourth site final with a marker cell.
struct UserState {
    const std::vector<int64_t> *truth;
    size_t offset;
    uint64_t seed;
};
constexpr int64_t kMarker = 777777;

template <class T, class C>
int user_fn(int64_t *n, const T *, void *cell, int32_t *flag, void *state, void *tag) {
    auto *st = static_cast<UserState *>(state);
    if (tag != &kMarker) return -5;
    std::mt19937_64 rng(st->seed);
    for (int64_t i = 0; i < *n; ++i) {
        const int64_t want = (*st->truth)[st->offset + static_cast<size_t>(i)];
        if (i % 4 == 3) {
            flag[i] = 1;
            static_cast<C *>(cell)[i] = static_cast<C>(kMarker);
        } else {
            static_cast<C *>(cell)[i] = static_cast<C>(want + static_cast<int64_t>(rng() % 7) - 3);
        }
    }
    return 0;
}

template <class C>
void expect_cells(const std::vector<C> &got, const std::vector<int64_t> &want, const char *name,
                  int64_t nx) {
    ASSERT_EQ(got.size(), want.size());
    for (size_t i = 0; i < want.size(); ++i)
        ASSERT_EQ(static_cast<int64_t>(got[i]), want[i]) << name << " nx=" << nx << " site " << i;
}

template <class T>
std::vector<T> sorted_with_nans(std::vector<T> s, std::mt19937_64 &rng) {
    s.erase(std::remove_if(s.begin(), s.end(), [](T v) { return v != v; }), s.end());
    std::sort(s.begin(), s.end());
    for (int k = 0; k < 3; ++k)
        s.insert(s.begin() + static_cast<long>(rng() % (s.size() + 1)),
                 std::numeric_limits<T>::quiet_NaN());
    return s;
}

template <class T>
class FitSearchProperty : public ::testing::Test {};

template <class T, class C>
struct Types {
    using Elem = T;
    using Cell = C;
};
using AllTypes = ::testing::Types<Types<float, int32_t>, Types<float, int64_t>,
                                  Types<double, int32_t>, Types<double, int64_t>>;
TYPED_TEST_SUITE(FitSearchProperty, AllTypes);

TYPED_TEST(FitSearchProperty, NonUniformMethodsMatchBruteForce) {
    using T = typename TypeParam::Elem;
    using C = typename TypeParam::Cell;
    const auto fam = family<T, C>();
    std::mt19937_64 rng(sizeof(T) * 10 + sizeof(C));
    std::vector<int64_t> sizes = {2, 3, 5, 17, 100, 1000, 40000};
    if (!fit_test::quick()) sizes.push_back(1000000);
    for (Shape shape : {Shape::QuasiUniform, Shape::Clustered, Shape::Random}) {
        for (int64_t nx : sizes) {
            const bool big = nx >= 1000000;
            if (big && shape != Shape::Random) continue;
            const auto x = fit_test::make_partition<T>(shape, nx, rng);
            const auto sites = fit_test::make_sites(x, big ? 64 : 300, big ? 32 : 100, rng);
            const auto want = fit_test::brute_cells(x, sites);
            const int64_t n = static_cast<int64_t>(sites.size());
            std::vector<C> cell(sites.size());

            std::vector<int64_t> bins(static_cast<size_t>(2 * qon::fit::bin_count(nx) + 4));
            const T scale = qon::fit::build_bins(x.data(), nx, qon::fit::bin_count(nx), bins.data());
            for (const auto &k : fam.hybrid) {
                std::fill(cell.begin(), cell.end(), C(-9));
                ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), bins.data(), scale, cell.data()), 0);
                expect_cells(cell, want, k.name, nx);
                std::fill(cell.begin(), cell.end(), C(-9));
                ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), nullptr, scale, cell.data()), 0);
                expect_cells(cell, want, k.name, nx);
            }
            // The scans of these methods cost up to nx per site: whole-range sites only where
            // that stays cheap.
            const bool cheap_scans = nx <= 40000 && (shape == Shape::QuasiUniform || nx <= 1000);
            const T r = static_cast<T>(nx - 1) / (x.back() - x.front());
            if (cheap_scans) {
                for (const auto &k : fam.quasi) {
                    std::fill(cell.begin(), cell.end(), C(-9));
                    ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), r, cell.data()), 0);
                    expect_cells(cell, want, k.name, nx);
                }
                const T p = static_cast<T>(rng() % static_cast<uint64_t>(nx + 1));
                for (const auto &k : fam.peak) {
                    std::fill(cell.begin(), cell.end(), C(-9));
                    ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), p, cell.data()), 0);
                    expect_cells(cell, want, k.name, nx);
                }
            }
            // Sites clustered around one knot, for the peak search at any size.
            {
                const int64_t p = static_cast<int64_t>(rng() % static_cast<uint64_t>(nx));
                std::vector<T> near;
                for (int64_t j = -40; j <= 40; ++j) {
                    const int64_t k = std::clamp<int64_t>(p + j, 0, nx - 1);
                    near.push_back(x[k]);
                    if (k + 1 < nx) near.push_back(x[k] + (x[k + 1] - x[k]) / 2);
                }
                near.push_back(std::numeric_limits<T>::quiet_NaN());
                near.push_back(x.back());
                const auto nwant = fit_test::brute_cells(x, near);
                std::vector<C> ncell(near.size());
                for (const auto &k : fam.peak) {
                    ASSERT_EQ(k.fn(nx, x.data(), static_cast<int64_t>(near.size()), near.data(),
                                   static_cast<T>(p) + T(0.75), ncell.data()), 0);
                    expect_cells(ncell, nwant, k.name, nx);
                }
            }
            // Sorted sites, in two calls that share the running cell.
            const auto ss = sorted_with_nans(sites, rng);
            const auto swant = fit_test::brute_cells(x, ss);
            for (const auto &k : fam.sorted) {
                std::vector<C> scell(ss.size(), C(-9));
                const int64_t cut = static_cast<int64_t>(rng() % ss.size());
                C running = 0;
                ASSERT_EQ(k.fn(nx, x.data(), cut, ss.data(), &running, scell.data()), 0);
                ASSERT_EQ(k.fn(nx, x.data(), static_cast<int64_t>(ss.size()) - cut, ss.data() + cut,
                               &running, scell.data() + cut), 0);
                expect_cells(scell, swant, k.name, nx);
            }
            // The caller's function, corrected from starts near the true cells.
            UserState st{&want, 0, rng()};
            for (const auto &k : fam.user) {
                std::fill(cell.begin(), cell.end(), C(-9));
                ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), user_fn<T, C>, &st,
                               const_cast<int64_t *>(&kMarker), cell.data()), 0);
                for (size_t i = 0; i < want.size(); ++i)
                    ASSERT_EQ(static_cast<int64_t>(cell[i]), i % 4 == 3 ? kMarker : want[i])
                        << k.name << " nx=" << nx << " site " << i;
            }
        }
    }
}

TYPED_TEST(FitSearchProperty, UniformMethodsMatchBruteForceOnExactGrid) {
    using T = typename TypeParam::Elem;
    using C = typename TypeParam::Cell;
    const auto fam = family<T, C>();
    std::mt19937_64 rng(sizeof(T) * 100 + sizeof(C));
    for (int64_t nx : {2, 3, 4, 9, 100, 1001, 65537}) {
        const auto x = fit_test::make_partition<T>(Shape::Uniform, nx, rng);
        const T ends[2] = {x.front(), x.back()};
        const T r = static_cast<T>(nx - 1) / (ends[1] - ends[0]);
        auto sites = fit_test::grid_sites(x, 400, rng);
        for (int64_t k = 0; k < std::min<int64_t>(nx, 64); ++k) sites.push_back(x[k]);
        const auto want = fit_test::brute_cells(x, sites);
        const int64_t n = static_cast<int64_t>(sites.size());
        std::vector<C> cell(sites.size());
        for (const auto &k : fam.uniform) {
            // Every tail length of the four-lane loop.
            for (int64_t m : {n, n - 1, n - 2, n - 3}) {
                std::fill(cell.begin(), cell.end(), C(-9));
                ASSERT_EQ(k.fn(nx, ends, m, sites.data(), r, cell.data()), 0);
                expect_cells(std::vector<C>(cell.begin(), cell.begin() + m),
                             std::vector<int64_t>(want.begin(), want.begin() + m), k.name, nx);
                if (m < n) EXPECT_EQ(cell[static_cast<size_t>(m)], C(-9));
            }
        }
        UserState st{&want, 0, rng()};
        for (const auto &k : fam.uniuser) {
            std::fill(cell.begin(), cell.end(), C(-9));
            ASSERT_EQ(k.fn(nx, ends, n, sites.data(), r, user_fn<T, C>, &st,
                           const_cast<int64_t *>(&kMarker), cell.data()), 0);
            for (size_t i = 0; i < want.size(); ++i)
                ASSERT_EQ(static_cast<int64_t>(cell[i]), i % 4 == 3 ? kMarker : want[i])
                    << k.name << " nx=" << nx << " site " << i;
        }
        // The quasi-uniform and hybrid searches on the same knots, given in full.
        std::vector<int64_t> bins(static_cast<size_t>(2 * qon::fit::bin_count(nx) + 4));
        const T scale = qon::fit::build_bins(x.data(), nx, qon::fit::bin_count(nx), bins.data());
        for (const auto &k : fam.quasi) {
            ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), r, cell.data()), 0);
            expect_cells(cell, want, k.name, nx);
        }
        for (const auto &k : fam.hybrid) {
            ASSERT_EQ(k.fn(nx, x.data(), n, sites.data(), bins.data(), scale, cell.data()), 0);
            expect_cells(cell, want, k.name, nx);
        }
    }
}

}  // namespace
