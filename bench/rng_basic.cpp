// MCG31m1 and MCG59 block generation against the C++ standard library filling the same
// arrays: raw words against std::minstd_rand and std::mt19937, doubles in [0, 1) against
// std::uniform_real_distribution<double> over each engine; blocks of 1000 and of 10^7 values.
// After the runs a table gives, for each output kind and block size, every qon row's speed
// over every baseline measured in the same run (> 1: qon is faster), from the median of the
// repetitions when --benchmark_repetitions is given.
#include <qon/qon_rok.h>

#include <benchmark/benchmark.h>

#include "ratio_reporter.hpp"

#include <cstdint>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

constexpr int64_t kSizes[] = {1000, 10000000};

struct StreamHolder {
    RokStream *s = nullptr;
    explicit StreamHolder(int32_t brng) {
        const uint32_t seed = 12345;
        rokNewStreamEx(&s, brng, 1, &seed);
    }
    ~StreamHolder() { rokDeleteStream(&s); }
};

template <class T>
void finish(benchmark::State &state, const std::vector<T> &r) {
    benchmark::DoNotOptimize(r.data());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(r.size()));
}

// The standard library's way to fill an array: raw engine words, or doubles through
// std::uniform_real_distribution<double>.
template <class Engine, class T>
void std_fill(benchmark::State &state) {
    std::vector<T> r(state.range(0));
    Engine e(12345);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (auto _ : state) {
        for (T &v : r) {
            if constexpr (std::is_same_v<T, double>) v = u(e);
            else v = static_cast<T>(e());
        }
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

// qon through the registry row, as a distribution generator would call it.
template <class T>
void qon_fill(benchmark::State &state, int32_t brng) {
    std::vector<T> r(state.range(0));
    StreamHolder s(brng);
    BrngProperties p{};
    rokGetBrngProperties(brng, &p);
    const auto n = static_cast<int32_t>(r.size());
    for (auto _ : state) {
        if constexpr (std::is_same_v<T, double>) p.d_brng(s.s, n, r.data(), 0.0, 1.0);
        else p.i_brng(s.s, n, r.data());
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

void register_all() {
    auto add = [](const std::string &name, auto fn) {
        auto *b = benchmark::RegisterBenchmark(name.c_str(), fn);
        for (int64_t n : kSizes) b->Arg(n);
        b->Unit(benchmark::kMicrosecond);
    };
    add("raw/std::minstd_rand", std_fill<std::minstd_rand, uint32_t>);
    add("raw/std::mt19937", std_fill<std::mt19937, uint32_t>);
    add("raw/qon MCG31m1", [](benchmark::State &s) { qon_fill<uint32_t>(s, ROK_BRNG_MCG31M1); });
    add("raw/qon MCG59", [](benchmark::State &s) { qon_fill<uint64_t>(s, ROK_BRNG_MCG59); });
    add("double/std::minstd_rand+urd", std_fill<std::minstd_rand, double>);
    add("double/std::mt19937+urd", std_fill<std::mt19937, double>);
    add("double/qon MCG31m1", [](benchmark::State &s) { qon_fill<double>(s, ROK_BRNG_MCG31M1); });
    add("double/qon MCG59", [](benchmark::State &s) { qon_fill<double>(s, ROK_BRNG_MCG59); });
}

const bool registered = (register_all(), true);

}  // namespace

int main(int argc, char **argv) { return qon_bench::run_with_ratios(argc, argv); }
