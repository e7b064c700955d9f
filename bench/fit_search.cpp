// Cell search in double: the hybrid search (bin table, bisection, vector count) and the sorted
// search of the dispatcher against a std::upper_bound loop and, where GSL is found, its
// gsl_interp_bsearch loop and gsl_interp_accel_find loop; non-uniform partitions of 16, 1000,
// 10^5 and 10^7 knots, 10^6 random and 10^6 sorted sites. qon runs on one thread unless
// QON_NUM_THREADS is set. After the runs a table gives every qon row's speed over every
// baseline of the same sites and size (> 1: qon is faster), from the median of the repetitions
// when --benchmark_repetitions is given.
#include <qon/qon_df.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#ifdef QON_HAVE_GSL
#include <gsl/gsl_interp.h>
#endif

#include "ratio_reporter.hpp"

namespace {

constexpr int64_t kSizes[] = {16, 1000, 100000, 10000000};
constexpr int64_t kSites = 1000000;

struct Data {
    std::vector<double> x, random, sorted;
};

// A partition with exponential gaps and sites spread over it, built once per size.
const Data &data(int64_t nx) {
    static std::map<int64_t, std::unique_ptr<Data>> cache;
    auto &slot = cache[nx];
    if (!slot) {
        slot = std::make_unique<Data>();
        std::mt19937_64 rng(static_cast<uint64_t>(nx));
        std::exponential_distribution<double> gap(1.0);
        double v = 0.0;
        for (int64_t i = 0; i < nx; ++i) slot->x.push_back(v += 0.01 + gap(rng));
        std::uniform_real_distribution<double> u(slot->x.front(), slot->x.back());
        for (int64_t i = 0; i < kSites; ++i) slot->random.push_back(u(rng));
        slot->sorted = slot->random;
        std::sort(slot->sorted.begin(), slot->sorted.end());
    }
    return *slot;
}

const std::vector<double> &sites_of(const Data &d, bool sorted) { return sorted ? d.sorted : d.random; }

void finish(benchmark::State &state, const std::vector<int32_t> &cells) {
    benchmark::DoNotOptimize(cells.data());
    state.SetItemsProcessed(state.iterations() * kSites);
}

void qon_search(benchmark::State &state, bool sorted, int64_t sitehint) {
    const Data &d = data(state.range(0));
    const auto &s = sites_of(d, sorted);
    void *task = nullptr;
    qon_df_kernel_dNewTask1D(&task, state.range(0), d.x.data(), DF_PARTITION_NON_UNIFORM, 0,
                             nullptr, 0, 0);
    std::vector<int32_t> cells(kSites);
    for (auto _ : state) {
        qon_df_kernel_dDFSearch1D(task, kSites, s.data(), sitehint, nullptr, cells.data(), nullptr,
                                  nullptr, nullptr);
        benchmark::ClobberMemory();
    }
    qon_df_kernel_DeleteTask(&task);
    finish(state, cells);
}

void std_upper_bound(benchmark::State &state, bool sorted) {
    const Data &d = data(state.range(0));
    const auto &s = sites_of(d, sorted);
    std::vector<int32_t> cells(kSites);
    for (auto _ : state) {
        for (int64_t i = 0; i < kSites; ++i)
            cells[i] = static_cast<int32_t>(std::upper_bound(d.x.begin(), d.x.end(), s[i]) - d.x.begin());
        benchmark::ClobberMemory();
    }
    finish(state, cells);
}

#ifdef QON_HAVE_GSL
void gsl_bsearch(benchmark::State &state, bool sorted) {
    const Data &d = data(state.range(0));
    const auto &s = sites_of(d, sorted);
    const size_t hi = d.x.size() - 1;
    std::vector<int32_t> cells(kSites);
    for (auto _ : state) {
        for (int64_t i = 0; i < kSites; ++i)
            cells[i] = static_cast<int32_t>(gsl_interp_bsearch(d.x.data(), s[i], 0, hi)) + 1;
        benchmark::ClobberMemory();
    }
    finish(state, cells);
}

void gsl_accel(benchmark::State &state, bool sorted) {
    const Data &d = data(state.range(0));
    const auto &s = sites_of(d, sorted);
    gsl_interp_accel *acc = gsl_interp_accel_alloc();
    std::vector<int32_t> cells(kSites);
    for (auto _ : state) {
        gsl_interp_accel_reset(acc);
        for (int64_t i = 0; i < kSites; ++i)
            cells[i] = static_cast<int32_t>(gsl_interp_accel_find(acc, d.x.data(), d.x.size(), s[i])) + 1;
        benchmark::ClobberMemory();
    }
    gsl_interp_accel_free(acc);
    finish(state, cells);
}
#endif

void register_all() {
    for (bool sorted : {false, true}) {
        const std::string kind = sorted ? "sorted sites/" : "random sites/";
        auto add = [&](const std::string &impl, auto fn) {
            auto *b = benchmark::RegisterBenchmark((kind + impl).c_str(), fn);
            for (int64_t n : kSizes) b->Arg(n);
            b->Unit(benchmark::kMicrosecond);
        };
        add("qon hybrid", [sorted](benchmark::State &st) { qon_search(st, sorted, 0); });
        if (sorted)
            add("qon sorted", [](benchmark::State &st) { qon_search(st, true, DF_SITES_SORTED); });
        add("std::upper_bound", [sorted](benchmark::State &st) { std_upper_bound(st, sorted); });
#ifdef QON_HAVE_GSL
        add("gsl_interp_bsearch", [sorted](benchmark::State &st) { gsl_bsearch(st, sorted); });
        add("gsl_interp_accel_find", [sorted](benchmark::State &st) { gsl_accel(st, sorted); });
#endif
    }
}

}  // namespace

int main(int argc, char **argv) {
    setenv("QON_NUM_THREADS", "1", 0);
    register_all();
    return qon_bench::run_with_ratios(argc, argv);
}
