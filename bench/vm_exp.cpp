// Exponential kernels against their peers, in one run: paxdExp HA/LA/EP and paxsExp HA/LA/EP
// against a scalar libm loop, glibc's libmvec AVX2 variants (_ZGVdN4v_exp, _ZGVdN8v_expf) and
// SLEEF's AVX2 u10 variants (SLEEF has no u35 exponential), at n = 1000 and n = 1,000,000.
//
// Arguments: uniform in [-700, 700] (double) and [-85, 85] (float), fixed seed. Counters:
//   tsc_per_elem   TSC cycles per element of the fastest call (on a shared machine the
//                  fastest call is the one least disturbed by other processes)
//   vs_<peer>      peer time / this row's time at the same n (above 1: this row is faster);
//                  the peers run first, so each qon row carries its ratios.
// Run: qon_bench_vm_exp --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
//      --benchmark_report_aggregates_only=true --benchmark_min_time=0.05
#include <benchmark/benchmark.h>
#include <immintrin.h>
#include <qon/qon_pax.h>
#include <x86intrin.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <string>
#include <vector>

#ifdef QON_HAVE_SLEEF
#include <sleef.h>
#endif
#ifdef QON_HAVE_MVEC
extern "C" __m256d _ZGVdN4v_exp(__m256d);
extern "C" __m256 _ZGVdN8v_expf(__m256);
#endif

namespace {

template <class T>
const std::vector<T> &arguments(std::size_t n) {
    static std::map<std::size_t, std::vector<T>> cache;
    auto &v = cache[n];
    if (v.empty()) {
        std::mt19937_64 gen(20261122);
        const T range = sizeof(T) == 8 ? T(700) : T(85);
        std::uniform_real_distribution<T> u(-range, range);
        v.resize(n);
        for (auto &x : v) x = u(gen);
    }
    return v;
}

// TSC cycles per element of every row measured so far, by "<type><n>/<row>".
std::map<std::string, double> &cycles() {
    static std::map<std::string, double> table;
    return table;
}

const char *const peers[] = {"libm", "mvec", "sleef_u10avx2", "sleef_u10"};

template <class T, class F>
void run(benchmark::State &state, const char *row, F f) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<T> &x = arguments<T>(n);
    std::vector<T> r(n);
    unsigned long long fastest = ~0ull;
    for (auto _ : state) {
        const unsigned long long t0 = __rdtsc();
        f(static_cast<int>(n), x.data(), r.data());
        benchmark::DoNotOptimize(r.data());
        benchmark::ClobberMemory();
        fastest = std::min(fastest, __rdtsc() - t0);
    }
    const double per = static_cast<double>(fastest) / static_cast<double>(n);
    const std::string prefix = (sizeof(T) == 8 ? "d" : "s") + std::to_string(n) + "/";
    cycles()[prefix + row] = per;
    state.counters["tsc_per_elem"] = per;
    for (const char *peer : peers) {
        auto it = cycles().find(prefix + peer);
        if (it != cycles().end() && std::string(row) != peer) state.counters[std::string("vs_") + peer] = it->second / per;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

#define QON_EXP_BENCH(name, T, row, ...)                                                                    \
    void name(benchmark::State &state) { run<T>(state, row, __VA_ARGS__); }                                  \
    BENCHMARK(name)->Arg(1000)->Arg(1000000);

QON_EXP_BENCH(d_libm, double, "libm", [](int n, const double *a, double *r) {
    for (int i = 0; i < n; ++i) r[i] = std::exp(a[i]);
})
QON_EXP_BENCH(s_libm, float, "libm", [](int n, const float *a, float *r) {
    for (int i = 0; i < n; ++i) r[i] = std::exp(a[i]);
})
#ifdef QON_HAVE_MVEC
QON_EXP_BENCH(d_mvec, double, "mvec", [](int n, const double *a, double *r) {
    for (int i = 0; i < n; i += 4) _mm256_storeu_pd(r + i, _ZGVdN4v_exp(_mm256_loadu_pd(a + i)));
})
QON_EXP_BENCH(s_mvec, float, "mvec", [](int n, const float *a, float *r) {
    for (int i = 0; i < n; i += 8) _mm256_storeu_ps(r + i, _ZGVdN8v_expf(_mm256_loadu_ps(a + i)));
})
#endif
#ifdef QON_HAVE_SLEEF
QON_EXP_BENCH(d_sleef_u10avx2, double, "sleef_u10avx2", [](int n, const double *a, double *r) {
    for (int i = 0; i < n; i += 4) _mm256_storeu_pd(r + i, Sleef_expd4_u10avx2(_mm256_loadu_pd(a + i)));
})
QON_EXP_BENCH(d_sleef_u10, double, "sleef_u10", [](int n, const double *a, double *r) {
    for (int i = 0; i < n; i += 4) _mm256_storeu_pd(r + i, Sleef_expd4_u10(_mm256_loadu_pd(a + i)));
})
QON_EXP_BENCH(s_sleef_u10avx2, float, "sleef_u10avx2", [](int n, const float *a, float *r) {
    for (int i = 0; i < n; i += 8) _mm256_storeu_ps(r + i, Sleef_expf8_u10avx2(_mm256_loadu_ps(a + i)));
})
QON_EXP_BENCH(s_sleef_u10, float, "sleef_u10", [](int n, const float *a, float *r) {
    for (int i = 0; i < n; i += 8) _mm256_storeu_ps(r + i, Sleef_expf8_u10(_mm256_loadu_ps(a + i)));
})
#endif
QON_EXP_BENCH(paxdExp_HA, double, "qon_HA", paxdExp)
QON_EXP_BENCH(paxdExp_LA, double, "qon_LA", paxdExp_50)
QON_EXP_BENCH(paxdExp_EP, double, "qon_EP", paxdExp_26)
QON_EXP_BENCH(paxsExp_HA, float, "qon_HA", paxsExp)
QON_EXP_BENCH(paxsExp_LA, float, "qon_LA", paxsExp_21)
QON_EXP_BENCH(paxsExp_EP, float, "qon_EP", paxsExp_11)

}  // namespace

BENCHMARK_MAIN();
