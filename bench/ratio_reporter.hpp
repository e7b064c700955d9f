// A console reporter that also prints, after all runs, the speed ratio of every qon row to
// every baseline row of the same kind and size measured in the same run. Rows are named
// "<kind>/<implementation>/<n>"; qon's implementations start with "qon". With repetitions,
// the median is used; run them with --benchmark_enable_random_interleaving=true, so that the
// repetitions of every row are spread over the same stretch of time as its baselines' (on a
// shared machine the speed drifts by tens of percent within a minute). Times are CPU times of
// the benchmark thread: on a shared, loaded machine they are steadier than wall-clock times,
// and every compared row runs on one thread.
#pragma once

#include <benchmark/benchmark.h>

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
            const bool median = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
            if (r.run_type == Run::RT_Aggregate && !median) continue;
            const std::string name = r.run_name.str();
            if (median || !has_median_[name]) times_[name] = r.GetAdjustedCPUTime();
            has_median_[name] = has_median_[name] || median;
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
    std::map<std::string, bool> has_median_;
};

// main() of a suite whose rows follow the naming above.
inline int run_with_ratios(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

}  // namespace qon_bench
