// Distribution generators from an MCG31m1 stream against the C++ standard library's
// distributions over std::mt19937_64 and GSL's Gaussian ziggurat, filling the same arrays in
// blocks of 1000 and 10^7 doubles. Rows are "<distribution>/<implementation>/<n>"; the ratios
// to the baselines are printed at the end.
// Run: qon_bench_rng_dist --benchmark_repetitions=11 --benchmark_enable_random_interleaving=true
//      --benchmark_report_aggregates_only=true --benchmark_min_time=0.1
#include <qon/qon_rok_dist.h>

#include <functional>
#include <random>
#include <vector>

#include "ratio_reporter.hpp"

#ifdef QON_HAVE_GSL
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>
#endif

namespace {

using Fill = std::function<void(int, double *)>;

void run(benchmark::State &state, const Fill &fill) {
    const int n = static_cast<int>(state.range(0));
    std::vector<double> r(n);
    for (auto _ : state) {
        fill(n, r.data());
        benchmark::DoNotOptimize(r.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

RokStream *stream() {
    static RokStream *s = [] {
        RokStream *p = nullptr;
        uint32_t seed = 1;
        rokNewStreamEx(&p, ROK_BRNG_MCG31M1, 1, &seed);
        return p;
    }();
    return s;
}

template <class Dist>
Fill from_std(Dist dist) {
    return [dist](int n, double *r) mutable {
        static std::mt19937_64 engine(1);
        for (int i = 0; i < n; ++i) r[i] = dist(engine);
    };
}

void add(const char *name, Fill fill) {
    qon_bench::fastest(benchmark::RegisterBenchmark(name, [fill](benchmark::State &s) { run(s, fill); }))
        ->Arg(1000)
        ->Arg(10000000)
        ->Unit(benchmark::kMicrosecond);
}

void register_all() {
    add("gaussian/qon boxmuller", [](int n, double *r) { rokdRngGaussian(0, stream(), n, r, 0.0, 1.0); });
    add("gaussian/qon boxmuller2", [](int n, double *r) { rokdRngGaussian(1, stream(), n, r, 0.0, 1.0); });
    add("gaussian/qon icdf", [](int n, double *r) { rokdRngGaussian(2, stream(), n, r, 0.0, 1.0); });
    add("gaussian/std normal_distribution", from_std(std::normal_distribution<double>(0.0, 1.0)));
#ifdef QON_HAVE_GSL
    add("gaussian/gsl ziggurat", [](int n, double *r) {
        static gsl_rng *g = gsl_rng_alloc(gsl_rng_mt19937);
        for (int i = 0; i < n; ++i) r[i] = gsl_ran_gaussian_ziggurat(g, 1.0);
    });
#endif
    add("exponential/qon", [](int n, double *r) { rokdRngExponential(0, stream(), n, r, 0.0, 1.0); });
    add("exponential/std exponential_distribution", from_std(std::exponential_distribution<double>(1.0)));
    add("cauchy/qon", [](int n, double *r) { rokdRngCauchy(0, stream(), n, r, 0.0, 1.0); });
    add("cauchy/std cauchy_distribution", from_std(std::cauchy_distribution<double>(0.0, 1.0)));
    add("lognormal/qon", [](int n, double *r) { rokdRngLognormal(0, stream(), n, r, 0.0, 1.0, 0.0, 1.0); });
    add("lognormal/std lognormal_distribution", from_std(std::lognormal_distribution<double>(0.0, 1.0)));
}

}  // namespace

int main(int argc, char **argv) {
    register_all();
    return qon_bench::run_with_ratios(argc, argv);
}
