// MCG31m1 and MCG59 block generation against the C++ standard library filling the same
// arrays: raw words against std::minstd_rand and std::mt19937, doubles in [0, 1) against
// std::uniform_real_distribution<double> over each engine; blocks of 1000 and of 10^7 values.
// After the runs a table gives, for each output kind and block size, every qon row's speed
// over every baseline measured in the same run (> 1: qon is faster), from CPU time (the
// machine may be shared) and the median of the repetitions when --benchmark_repetitions is given.
#include <qon/qon_rok.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <random>
#include <string>
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

template <class Engine>
void std_raw(benchmark::State &state) {
    std::vector<uint32_t> r(state.range(0));
    Engine e(12345);
    for (auto _ : state) {
        for (uint32_t &v : r) v = static_cast<uint32_t>(e());
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

template <class Engine>
void std_double(benchmark::State &state) {
    std::vector<double> r(state.range(0));
    Engine e(12345);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    for (auto _ : state) {
        for (double &v : r) v = u(e);
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

template <class Word>
void qon_raw(benchmark::State &state, int32_t brng) {
    std::vector<Word> r(state.range(0));
    StreamHolder s(brng);
    BrngProperties p{};
    rokGetBrngProperties(brng, &p);
    for (auto _ : state) {
        p.i_brng(s.s, static_cast<int32_t>(r.size()), r.data());
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

void qon_double(benchmark::State &state, int32_t brng) {
    std::vector<double> r(state.range(0));
    StreamHolder s(brng);
    BrngProperties p{};
    rokGetBrngProperties(brng, &p);
    for (auto _ : state) {
        p.d_brng(s.s, static_cast<int32_t>(r.size()), r.data(), 0.0, 1.0);
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
    add("raw/std::minstd_rand", std_raw<std::minstd_rand>);
    add("raw/std::mt19937", std_raw<std::mt19937>);
    add("raw/qon MCG31m1", [](benchmark::State &s) { qon_raw<uint32_t>(s, ROK_BRNG_MCG31M1); });
    add("raw/qon MCG59", [](benchmark::State &s) { qon_raw<uint64_t>(s, ROK_BRNG_MCG59); });
    add("double/std::minstd_rand+urd", std_double<std::minstd_rand>);
    add("double/std::mt19937+urd", std_double<std::mt19937>);
    add("double/qon MCG31m1", [](benchmark::State &s) { qon_double(s, ROK_BRNG_MCG31M1); });
    add("double/qon MCG59", [](benchmark::State &s) { qon_double(s, ROK_BRNG_MCG59); });
}

// Passes everything to the console and keeps the time per iteration of each row (the median
// aggregate when repetitions are on) to print the ratio table at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &r : runs) {
            if (r.error_occurred) continue;
            const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
            if (r.run_type == Run::RT_Aggregate && !median) continue;
            const std::string name = r.run_name.str();  // "<kind>/<impl>/<n>"
            if (median || times_.count(name) == 0 || !has_median_[name]) {
                times_[name] = r.GetAdjustedCPUTime();
                has_median_[name] = has_median_[name] || median;
            }
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\nSpeed ratios (baseline time / qon time, same run):\n");
        for (const auto &[qname, qt] : times_) {
            if (qname.find("/qon ") == std::string::npos) continue;
            const std::string kind = qname.substr(0, qname.find('/'));
            const std::string size = qname.substr(qname.rfind('/'));
            for (const auto &[bname, bt] : times_) {
                if (bname.find("/qon ") != std::string::npos || bname.rfind(kind + "/", 0) != 0 ||
                    bname.substr(bname.rfind('/')) != size)
                    continue;
                std::printf("  %-28s vs %-36s %7.2fx\n", qname.c_str(), bname.c_str(), bt / qt);
            }
        }
    }

private:
    std::map<std::string, double> times_;
    std::map<std::string, bool> has_median_;
};

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    register_all();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
