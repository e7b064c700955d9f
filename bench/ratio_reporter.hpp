// A console reporter that also prints, after all runs, the speed ratio of every qon row to
// every baseline row of the same kind and size measured in the same run. Rows are named
// "<kind>/<implementation>/<n>"; qon's implementations start with "qon". With repetitions, the
// fastest repetition of a row registered through `fastest` is used (the least disturbed one),
// else the median; run them with --benchmark_enable_random_interleaving=true, so that the
// repetitions of every row are spread over the same stretch of time as its baselines' (on a
// shared machine the speed drifts by tens of percent within a minute). Times are CPU times of
// the benchmark thread: on a shared, loaded machine they are steadier than wall-clock times,
// and every compared row runs on one thread.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace qon_bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &r : runs) {
            if (r.error_occurred) continue;
            // Rank: a single run 0, the median 1, the fastest repetition 2; the highest is kept.
            int rank = 0;
            if (r.run_type == Run::RT_Aggregate) {
                if (r.aggregate_name == "median") rank = 1;
                else if (r.aggregate_name == "min") rank = 2;
                else continue;
            }
            const std::string name = r.run_name.str();
            const auto seen = rank_.find(name);
            if (seen != rank_.end() && seen->second > rank) continue;
            times_[name] = r.GetAdjustedCPUTime();
            rank_[name] = rank;
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\nSpeed ratios (baseline CPU time / qon CPU time, same run):\n");
        for (const auto &[qname, qt] : times_) {
            const auto first = qname.find('/'), last = qname.rfind('/');
            if (first == std::string::npos || qname.compare(first + 1, 3, "qon") != 0) continue;
            const std::string kind = qname.substr(0, first), size = qname.substr(last);
            for (const auto &[bname, bt] : times_) {
                const auto bfirst = bname.find('/');
                if (bfirst == std::string::npos || bname.compare(0, bfirst, kind) != 0 ||
                    bname.compare(bfirst + 1, 3, "qon") == 0 || bname.substr(bname.rfind('/')) != size)
                    continue;
                std::printf("  %-40s vs %-40s %7.2fx\n", qname.c_str(), bname.c_str(), bt / qt);
            }
        }
    }

private:
    std::map<std::string, double> times_;
    std::map<std::string, int> rank_;
};

// Adds the fastest repetition ("min") to a row's aggregates.
inline benchmark::internal::Benchmark *fastest(benchmark::internal::Benchmark *b) {
    return b->ComputeStatistics("min", [](const std::vector<double> &v) { return *std::min_element(v.begin(), v.end()); });
}

// main() of a suite whose rows follow the naming above.
inline int run_with_ratios(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

}  // namespace qon_bench
