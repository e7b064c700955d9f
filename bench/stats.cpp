// Summary statistics against the memory-read limit and plain C++: for p variables of n
// observations in both layouts, the kernels (one thread) next to a vectorised plain sum over the
// same data, two-pass moment loops, std::nth_element, std::sort and OpenBLAS's dsyrk. After the
// run a table gives each kernel's CPU time over its baseline's (CPU time, because the machine may
// be shared; every row runs on one thread).
//
//   qon_bench_stats [--benchmark_filter=...]      (QON_BENCH_QUICK=1: one repetition)
#include <benchmark/benchmark.h>
#include <immintrin.h>
#include <qon/qon_ss.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#ifdef QON_HAVE_OPENBLAS
#include <cblas.h>
#endif

namespace {

struct Shape {
    int64_t p, n;
};
constexpr Shape kShapes[] = {{10, 1000000}, {100, 100000}, {1000, 10000}};
constexpr int64_t kRows = ROK_SS_MATRIX_STORAGE_ROWS, kCols = ROK_SS_MATRIX_STORAGE_COLS;

const qon_serv_services *one_thread() {
    static const qon_serv_services s = {[]() { return 1; }, qon_serv_parallel_for};
    return &s;
}

// Deterministic bell-shaped data (sum of four uniforms), the same for every benchmark.
const std::vector<double> &data(const Shape &s, int64_t storage) {
    static std::map<std::pair<int64_t, int64_t>, std::vector<double>> cache;
    auto &x = cache[{s.p * 2 + (storage == kCols), s.n}];
    if (x.empty()) {
        x.resize(static_cast<size_t>(s.p * s.n));
        uint64_t state = 12345;
        auto u = [&] {
            state = state * 6364136223846793005ull + 1442695040888963407ull;
            return static_cast<double>(state >> 11) * 0x1p-53;
        };
        for (auto &v : x) v = 10 + u() + u() + u() + u();
    }
    return x;
}

struct SS {
    rok_ss_task *task = nullptr;
    int32_t p, n, storage, matrix = 0, norders = 3;
    std::vector<double> mom[7], skew, kurt, cov, quants, sorted;
    double accw[2] = {0, 0}, orders[3] = {0.25, 0.5, 0.75};
    SS(const Shape &s, int64_t st, const std::vector<double> &x)
        : p(static_cast<int32_t>(s.p)), n(static_cast<int32_t>(s.n)), storage(static_cast<int32_t>(st)) {
        rokdSSNewTask(&task, &p, &n, &storage, x.data(), nullptr, nullptr, 0);
        for (auto &m : mom) m.resize(p);
        skew.resize(p);
        kurt.resize(p);
        rokdSSEditMoments(task, mom[0].data(), mom[1].data(), mom[2].data(), mom[3].data(), mom[4].data(),
                          mom[5].data(), mom[6].data());
        rokdSSEditTask(task, ROK_SS_ED_SKEWNESS, skew.data());
        rokdSSEditTask(task, ROK_SS_ED_KURTOSIS, kurt.data());
        rokdSSEditTask(task, ROK_SS_ED_ACCUM_WEIGHT, accw);
    }
    ~SS() { rokSSDeleteTask(&task); }
};

std::string shape_name(const Shape &s, int64_t storage) {
    return "p" + std::to_string(s.p) + "_n" + std::to_string(s.n) + (storage == kRows ? "_rows" : "_cols");
}

// The memory-read limit: a vectorised sum of every element.
void plain_sum(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    for (auto _ : st) {
        __m256d a0 = _mm256_setzero_pd(), a1 = a0, a2 = a0, a3 = a0;
        size_t i = 0;
        for (; i + 16 <= x.size(); i += 16) {
            a0 = _mm256_add_pd(a0, _mm256_loadu_pd(&x[i]));
            a1 = _mm256_add_pd(a1, _mm256_loadu_pd(&x[i + 4]));
            a2 = _mm256_add_pd(a2, _mm256_loadu_pd(&x[i + 8]));
            a3 = _mm256_add_pd(a3, _mm256_loadu_pd(&x[i + 12]));
        }
        __m256d a = _mm256_add_pd(_mm256_add_pd(a0, a1), _mm256_add_pd(a2, a3));
        benchmark::DoNotOptimize(a);
    }
}

void kernel_moments(benchmark::State &st, Shape s, int64_t storage, uint64_t estimates) {
    const auto &x = data(s, storage);
    SS t(s, storage, x);
    for (auto _ : st) {
        t.accw[0] = t.accw[1] = 0;
        if (rokdSSBasic(t.task, estimates, ROK_SS_METHOD_1PASS, one_thread()) != 0) st.SkipWithError("status");
        benchmark::DoNotOptimize(t.mom[4].data());
    }
}

// Straightforward two-pass loops: the mean, then the central powers.
void loop_moments(benchmark::State &st, Shape s, int64_t storage, int order) {
    const auto &x = data(s, storage);
    const int64_t p = s.p, n = s.n;
    std::vector<double> mean(p), c2(p), c3(p), c4(p);
    for (auto _ : st) {
        std::fill(mean.begin(), mean.end(), 0.0);
        std::fill(c2.begin(), c2.end(), 0.0);
        std::fill(c3.begin(), c3.end(), 0.0);
        std::fill(c4.begin(), c4.end(), 0.0);
        if (storage == kRows) {
            for (int64_t i = 0; i < p; ++i) {
                const double *v = &x[i * n];
                double m = 0;
                for (int64_t j = 0; j < n; ++j) m += v[j];
                m /= n;
                double s2 = 0, s3 = 0, s4 = 0;
                for (int64_t j = 0; j < n; ++j) {
                    const double d = v[j] - m, d2 = d * d;
                    s2 += d2;
                    if (order > 2) {
                        s3 += d2 * d;
                        s4 += d2 * d2;
                    }
                }
                mean[i] = m;
                c2[i] = s2 / (n - 1);
                c3[i] = s3 / n;
                c4[i] = s4 / n;
            }
        } else {
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < p; ++i) mean[i] += x[j * p + i];
            for (int64_t i = 0; i < p; ++i) mean[i] /= n;
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < p; ++i) {
                    const double d = x[j * p + i] - mean[i], d2 = d * d;
                    c2[i] += d2;
                    if (order > 2) {
                        c3[i] += d2 * d;
                        c4[i] += d2 * d2;
                    }
                }
        }
        if (order > 2)
            for (int64_t i = 0; i < p; ++i) {
                c3[i] /= c2[i] * std::sqrt(c2[i] / n) * n;
                c4[i] = c4[i] / (c2[i] * c2[i]) * n - 3;
            }
        benchmark::DoNotOptimize(c2.data());
        benchmark::DoNotOptimize(c4.data());
    }
}

void kernel_quantiles(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    SS t(s, storage, x);
    t.quants.resize(s.p * 3);
    rokdSSEditQuantiles(t.task, &t.norders, t.orders, t.quants.data(), nullptr, nullptr);
    for (auto _ : st)
        if (rokdSSQuantiles(t.task, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, one_thread()) != 0) st.SkipWithError("status");
}

// Copy each variable and select x(k) and x(k+1) of each order with std::nth_element.
void nth_element_quantiles(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    const int64_t p = s.p, n = s.n;
    std::vector<double> run(n), q(p * 3);
    const double orders[3] = {0.25, 0.5, 0.75};
    for (auto _ : st) {
        for (int64_t i = 0; i < p; ++i) {
            for (int64_t j = 0; j < n; ++j) run[j] = storage == kRows ? x[i * n + j] : x[j * p + i];
            for (int k = 0; k < 3; ++k) {
                const double h = (n - 1) * orders[k];
                const int64_t lo = static_cast<int64_t>(h);
                std::nth_element(run.begin(), run.begin() + lo, run.end());
                const double a = run[lo];
                const double b = *std::min_element(run.begin() + lo + 1, run.end());
                q[i * 3 + k] = a + (h - lo) * (b - a);
            }
        }
        benchmark::DoNotOptimize(q.data());
    }
}

void kernel_sort(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    SS t(s, storage, x);
    t.sorted.resize(s.p * s.n);
    rokdSSEditTask(t.task, ROK_SS_ED_SORTED_OBSERV, t.sorted.data());
    rokiSSEditTask(t.task, ROK_SS_ED_SORTED_OBSERV_STORAGE, &t.storage);
    for (auto _ : st)
        if (rokdSSSort(t.task, 0, ROK_SS_METHOD_RADIX, one_thread()) != 0) st.SkipWithError("status");
}

void std_sort(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    const int64_t p = s.p, n = s.n;
    std::vector<double> run(n), out(p * n);
    for (auto _ : st) {
        for (int64_t i = 0; i < p; ++i) {
            for (int64_t j = 0; j < n; ++j) run[j] = storage == kRows ? x[i * n + j] : x[j * p + i];
            std::sort(run.begin(), run.end());
            for (int64_t j = 0; j < n; ++j) (storage == kRows ? out[i * n + j] : out[j * p + i]) = run[j];
        }
        benchmark::DoNotOptimize(out.data());
    }
}

void kernel_covariance(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    SS t(s, storage, x);
    t.cov.resize(s.p * s.p);
    rokdSSEditCovCor(t.task, nullptr, t.cov.data(), &t.matrix, nullptr, nullptr);
    for (auto _ : st) {
        t.accw[0] = t.accw[1] = 0;
        if (rokdSSBasic(t.task, ROK_SS_COV, ROK_SS_METHOD_1PASS, one_thread()) != 0) st.SkipWithError("status");
    }
}

#ifdef QON_HAVE_OPENBLAS
void dsyrk(benchmark::State &st, Shape s, int64_t storage) {
    const auto &x = data(s, storage);
    std::vector<double> c(s.p * s.p);
    openblas_set_num_threads(1);
    for (auto _ : st) {
        if (storage == kRows)
            cblas_dsyrk(CblasRowMajor, CblasUpper, CblasNoTrans, s.p, s.n, 1.0, x.data(), s.n, 0.0, c.data(), s.p);
        else
            cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, s.p, s.n, 1.0, x.data(), s.p, 0.0, c.data(), s.p);
        benchmark::DoNotOptimize(c.data());
    }
}
#endif

// Collects the median real time of every run for the ratio table.
class Collector : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> seconds;
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &r : runs) {
            if (r.error_occurred) continue;
            if (r.run_type == Run::RT_Aggregate && r.aggregate_name != "median") continue;
            std::string name = r.run_name.function_name;
            seconds[name] = r.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

struct Ratio {
    const char *kernel, *baseline, *goal;
};
constexpr Ratio kRatios[] = {
    {"mean_c2", "plain_sum", "<= 1.5"},        {"moments4", "plain_sum", "<= 3"},
    {"moments4", "loop_moments4", "(speed-up if < 1)"}, {"mean_c2", "loop_mean_c2", "(speed-up if < 1)"},
    {"quantiles", "nth_element", "<= 0.67"},   {"sort", "std_sort", "<= 0.5"},
    {"covariance", "dsyrk", "<= 1.3 (p >= 100)"}};

}  // namespace

int main(int argc, char **argv) {
    const bool quick = std::getenv("QON_BENCH_QUICK") != nullptr;
    for (const Shape &s : kShapes)
        for (int64_t storage : {kRows, kCols}) {
            const std::string tag = "/" + shape_name(s, storage);
            auto reg = [&](const std::string &name, auto fn) {
                auto *b = benchmark::RegisterBenchmark((name + tag).c_str(), fn)->Unit(benchmark::kMillisecond);
                b->MinTime(0.05);
                if (!quick) b->Repetitions(5)->ReportAggregatesOnly(true);
            };
            const uint64_t mean_c2 = ROK_SS_MEAN | ROK_SS_2C_MOM;
            const uint64_t moments4 = mean_c2 | ROK_SS_3C_MOM | ROK_SS_4C_MOM | ROK_SS_SKEWNESS | ROK_SS_KURTOSIS;
            reg("plain_sum", [=](benchmark::State &st) { plain_sum(st, s, storage); });
            reg("mean_c2", [=](benchmark::State &st) { kernel_moments(st, s, storage, mean_c2); });
            reg("loop_mean_c2", [=](benchmark::State &st) { loop_moments(st, s, storage, 2); });
            reg("moments4", [=](benchmark::State &st) { kernel_moments(st, s, storage, moments4); });
            reg("loop_moments4", [=](benchmark::State &st) { loop_moments(st, s, storage, 4); });
            reg("quantiles", [=](benchmark::State &st) { kernel_quantiles(st, s, storage); });
            reg("nth_element", [=](benchmark::State &st) { nth_element_quantiles(st, s, storage); });
            reg("sort", [=](benchmark::State &st) { kernel_sort(st, s, storage); });
            reg("std_sort", [=](benchmark::State &st) { std_sort(st, s, storage); });
            if (s.p >= 100) {
                reg("covariance", [=](benchmark::State &st) { kernel_covariance(st, s, storage); });
#ifdef QON_HAVE_OPENBLAS
                reg("dsyrk", [=](benchmark::State &st) { dsyrk(st, s, storage); });
#endif
            }
        }
    benchmark::Initialize(&argc, argv);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    std::printf("\nRatios (kernel CPU time / baseline CPU time, one thread, median of repetitions):\n");
    std::printf("%-28s %-12s %-16s %8s   goal\n", "shape", "kernel", "baseline", "ratio");
    for (const Shape &s : kShapes)
        for (int64_t storage : {kRows, kCols})
            for (const Ratio &r : kRatios) {
                const std::string tag = "/" + shape_name(s, storage);
                auto k = collector.seconds.find(r.kernel + tag), b = collector.seconds.find(r.baseline + tag);
                if (k == collector.seconds.end() || b == collector.seconds.end()) continue;
                std::printf("%-28s %-12s %-16s %8.3f   %s\n", shape_name(s, storage).c_str(), r.kernel, r.baseline,
                            k->second / b->second, r.goal);
            }
    benchmark::Shutdown();
    return 0;
}
