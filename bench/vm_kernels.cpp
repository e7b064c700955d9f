// Vector-math kernels of the square root, inverse square root, logarithm, sine, cosine,
// sine-and-cosine, tangent and inverse error function against their peers, in one run: each
// qon slot (HA, LA, EP; one row for Sqrt, whose slots share a kernel) against a scalar libm
// loop (GSL's for the inverse error function), glibc's libmvec AVX2
// variants (_ZGVdN4v_*, _ZGVdN8v_*f) and SLEEF's AVX2 variants (u10 and u35; u05 for the square
// root), at n = 1000 and n = 1,000,000.
//
// Rows are "<t><Func>/<impl>/<n>" (qon rows "qon_HA", "qon_LA", "qon_EP"); after the runs the
// ratio reporter prints baseline time / qon time for every pair of the same function and n.
// Arguments (fixed seed): Sqrt, InvSqrt uniform in (0, 1e6]; Ln log-uniform in [1e-30, 1e30]
// (double) and [1e-15, 1e15] (single); Sin, Cos, SinCos, Tan uniform in [-100, 100]; ErfInv
// uniform in [-1, 1), against a scalar loop over GSL's inverse normal distribution function.
// Exp (the exponential): uniform in [-700, 700] (double) and [-87, 88] (single); SLEEF u10 only.
// Run: qon_bench_vm_kernels --benchmark_repetitions=11 --benchmark_enable_random_interleaving=true
//      --benchmark_report_aggregates_only=true --benchmark_min_time=0.1
#include <benchmark/benchmark.h>
#include <immintrin.h>
#include <qon/qon_pax.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <random>
#include <string>
#include <vector>

#include "ratio_reporter.hpp"

#ifdef QON_HAVE_SLEEF
#include <sleef.h>
#endif
#ifdef QON_HAVE_GSL
#include <gsl/gsl_cdf.h>
#endif
#ifdef QON_HAVE_MVEC
extern "C" __m256d _ZGVdN4v_log(__m256d);
extern "C" __m256d _ZGVdN4v_exp(__m256d);
extern "C" __m256d _ZGVdN4v_sin(__m256d);
extern "C" __m256d _ZGVdN4v_cos(__m256d);
extern "C" __m256d _ZGVdN4v_tan(__m256d);
extern "C" __m256 _ZGVdN8v_logf(__m256);
extern "C" __m256 _ZGVdN8v_expf(__m256);
extern "C" __m256 _ZGVdN8v_sinf(__m256);
extern "C" __m256 _ZGVdN8v_cosf(__m256);
extern "C" __m256 _ZGVdN8v_tanf(__m256);
#endif

namespace {

enum class Domain { positive, logarithmic, periodic, unit, exponential };

// The arguments and the two result arrays of a row in one page-aligned block, at 0, 2048 and
// 1024 bytes past a page boundary: where a result array lies a multiple of 4096 bytes from
// the arguments, a load and an earlier store with the same low twelve address bits make the
// processor wait for the store, and that alone moved peers' times by up to 1.7x depending on
// where malloc put the arrays. Every row of a size sees the same layout.
template <class T>
struct Arrays {
    explicit Arrays(std::size_t n) : stride((n * sizeof(T) + 8191) / 4096 * 4096) {
        block = static_cast<char *>(std::aligned_alloc(4096, 3 * stride));
        x = reinterpret_cast<T *>(block);
        r1 = reinterpret_cast<T *>(block + stride + 2048);
        r2 = reinterpret_cast<T *>(block + 2 * stride + 1024);
    }
    ~Arrays() { std::free(block); }
    Arrays(const Arrays &) = delete;
    Arrays &operator=(const Arrays &) = delete;
    std::size_t stride;
    char *block;
    T *x, *r1, *r2;
};

// The arguments of a domain and size (fixed seed), in their own arrays for the life of the run.
template <class T>
Arrays<T> &arguments(Domain d, std::size_t n) {
    static std::map<std::pair<Domain, std::size_t>, std::unique_ptr<Arrays<T>>> cache;
    auto &slot = cache[{d, n}];
    if (!slot) {
        slot = std::make_unique<Arrays<T>>(n);
        std::mt19937_64 gen(20261122);
        const double decades = sizeof(T) == 8 ? 30 : 15;
        std::uniform_real_distribution<double> u(0, 1);
        for (auto &x : std::span(slot->x, n)) {
            const double p = u(gen);
            x = static_cast<T>(d == Domain::positive      ? 1e6 * (1 - p)
                               : d == Domain::logarithmic ? std::pow(10.0, decades * (2 * p - 1))
                               : d == Domain::unit        ? 2 * p - 1
                               : d == Domain::exponential ? (sizeof(T) == 8 ? 1400 * p - 700 : 175 * p - 87)
                                                          : 200 * p - 100);
        }
    }
    return *slot;
}

// One result per element (r2 unused) or two (SinCos).
template <class T>
using Kernel = std::function<void(int, const T *, T *, T *)>;

template <class T>
void add(const std::string &row, Domain d, Kernel<T> k) {
    qon_bench::fastest(benchmark::RegisterBenchmark(row.c_str(), [d, k](benchmark::State &state) {
        const auto n = static_cast<std::size_t>(state.range(0));
        Arrays<T> &a = arguments<T>(d, n);
        for (auto _ : state) {
            k(static_cast<int>(n), a.x, a.r1, a.r2);
            benchmark::DoNotOptimize(a.r1);
            benchmark::DoNotOptimize(a.r2);
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
    }))->Arg(1000)->Arg(1000000);
}

// A loop over a four-double or eight-float vector function (n a multiple of the lanes).
template <class R>  // __m256d, const-qualified in SLEEF's declarations
Kernel<double> lanes(R (*f)(__m256d)) {
    return [f](int n, const double *a, double *r, double *) {
        for (int i = 0; i < n; i += 4) _mm256_storeu_pd(r + i, f(_mm256_loadu_pd(a + i)));
    };
}
template <class R>
Kernel<float> lanes(R (*f)(__m256)) {
    return [f](int n, const float *a, float *r, float *) {
        for (int i = 0; i < n; i += 8) _mm256_storeu_ps(r + i, f(_mm256_loadu_ps(a + i)));
    };
}
template <class T>
Kernel<T> scalar_loop(T (*f)(T)) {
    return [f](int n, const T *a, T *r, T *) {
        for (int i = 0; i < n; ++i) r[i] = f(a[i]);
    };
}
template <class T>
Kernel<T> qon(void (*f)(int, const T *, T *)) {
    return [f](int n, const T *a, T *r, T *) { f(n, a, r); };
}
template <class T>
Kernel<T> qon(void (*f)(int, const T *, T *, T *)) {
    return f;
}

// The three qon slots of a one- or two-result function.
template <class F>
void qon_slots(const std::string &name, Domain d, F ha, F la, F ep) {
    add(name + "/qon_HA", d, qon(ha));
    add(name + "/qon_LA", d, qon(la));
    add(name + "/qon_EP", d, qon(ep));
}

void register_all() {
    // Baselines first, so that every ratio is taken in the same run.
    add<double>("dSqrt/libm", Domain::positive, scalar_loop<double>(std::sqrt));
    add<float>("sSqrt/libm", Domain::positive, scalar_loop<float>(std::sqrt));
    add<double>("dInvSqrt/libm", Domain::positive, scalar_loop<double>([](double x) { return 1 / std::sqrt(x); }));
    add<float>("sInvSqrt/libm", Domain::positive, scalar_loop<float>([](float x) { return 1 / std::sqrt(x); }));
    add<double>("dLn/libm", Domain::logarithmic, scalar_loop<double>(std::log));
    add<float>("sLn/libm", Domain::logarithmic, scalar_loop<float>(std::log));
    add<double>("dExp/libm", Domain::exponential, scalar_loop<double>(std::exp));
    add<float>("sExp/libm", Domain::exponential, scalar_loop<float>(std::exp));
    add<double>("dSin/libm", Domain::periodic, scalar_loop<double>(std::sin));
    add<float>("sSin/libm", Domain::periodic, scalar_loop<float>(std::sin));
    add<double>("dCos/libm", Domain::periodic, scalar_loop<double>(std::cos));
    add<float>("sCos/libm", Domain::periodic, scalar_loop<float>(std::cos));
    add<double>("dTan/libm", Domain::periodic, scalar_loop<double>(std::tan));
    add<float>("sTan/libm", Domain::periodic, scalar_loop<float>(std::tan));
    add<double>("dSinCos/libm", Domain::periodic, [](int n, const double *a, double *s, double *c) {
        for (int i = 0; i < n; ++i) sincos(a[i], s + i, c + i);
    });
    add<float>("sSinCos/libm", Domain::periodic, [](int n, const float *a, float *s, float *c) {
        for (int i = 0; i < n; ++i) sincosf(a[i], s + i, c + i);
    });
#ifdef QON_HAVE_GSL
    // erfinv(x) = Phi^-1((x + 1)/2) / sqrt(2) through GSL's inverse normal distribution function.
    add<double>("dErfInv/gsl", Domain::unit, scalar_loop<double>([](double x) {
        return gsl_cdf_ugaussian_Pinv(0.5 * (x + 1)) * M_SQRT1_2;
    }));
    add<float>("sErfInv/gsl", Domain::unit, scalar_loop<float>([](float x) {
        return static_cast<float>(gsl_cdf_ugaussian_Pinv(0.5 * (x + 1.0)) * M_SQRT1_2);
    }));
#endif
#ifdef QON_HAVE_MVEC
    add("dLn/mvec", Domain::logarithmic, lanes(_ZGVdN4v_log));
    add("sLn/mvec", Domain::logarithmic, lanes(_ZGVdN8v_logf));
    add("dExp/mvec", Domain::exponential, lanes(_ZGVdN4v_exp));
    add("sExp/mvec", Domain::exponential, lanes(_ZGVdN8v_expf));
    add("dSin/mvec", Domain::periodic, lanes(_ZGVdN4v_sin));
    add("sSin/mvec", Domain::periodic, lanes(_ZGVdN8v_sinf));
    add("dCos/mvec", Domain::periodic, lanes(_ZGVdN4v_cos));
    add("sCos/mvec", Domain::periodic, lanes(_ZGVdN8v_cosf));
    add("dTan/mvec", Domain::periodic, lanes(_ZGVdN4v_tan));
    add("sTan/mvec", Domain::periodic, lanes(_ZGVdN8v_tanf));
#endif
#ifdef QON_HAVE_SLEEF
    add("dSqrt/sleef_u05", Domain::positive, lanes(Sleef_sqrtd4_u05avx2));
    add("sSqrt/sleef_u05", Domain::positive, lanes(Sleef_sqrtf8_u05avx2));
    add("dLn/sleef_u10", Domain::logarithmic, lanes(Sleef_logd4_u10avx2));
    add("dLn/sleef_u35", Domain::logarithmic, lanes(Sleef_logd4_u35avx2));
    add("sLn/sleef_u10", Domain::logarithmic, lanes(Sleef_logf8_u10avx2));
    add("sLn/sleef_u35", Domain::logarithmic, lanes(Sleef_logf8_u35avx2));
    add("dExp/sleef_u10", Domain::exponential, lanes(Sleef_expd4_u10avx2));
    add("sExp/sleef_u10", Domain::exponential, lanes(Sleef_expf8_u10avx2));
    add("dSin/sleef_u10", Domain::periodic, lanes(Sleef_sind4_u10avx2));
    add("dSin/sleef_u35", Domain::periodic, lanes(Sleef_sind4_u35avx2));
    add("sSin/sleef_u10", Domain::periodic, lanes(Sleef_sinf8_u10avx2));
    add("sSin/sleef_u35", Domain::periodic, lanes(Sleef_sinf8_u35avx2));
    add("dCos/sleef_u10", Domain::periodic, lanes(Sleef_cosd4_u10avx2));
    add("dCos/sleef_u35", Domain::periodic, lanes(Sleef_cosd4_u35avx2));
    add("sCos/sleef_u10", Domain::periodic, lanes(Sleef_cosf8_u10avx2));
    add("sCos/sleef_u35", Domain::periodic, lanes(Sleef_cosf8_u35avx2));
    add("dTan/sleef_u10", Domain::periodic, lanes(Sleef_tand4_u10avx2));
    add("dTan/sleef_u35", Domain::periodic, lanes(Sleef_tand4_u35avx2));
    add("sTan/sleef_u10", Domain::periodic, lanes(Sleef_tanf8_u10avx2));
    add("sTan/sleef_u35", Domain::periodic, lanes(Sleef_tanf8_u35avx2));
    add<double>("dSinCos/sleef_u10", Domain::periodic, [](int n, const double *a, double *s, double *c) {
        for (int i = 0; i < n; i += 4) {
            const Sleef___m256d_2 v = Sleef_sincosd4_u10avx2(_mm256_loadu_pd(a + i));
            _mm256_storeu_pd(s + i, v.x);
            _mm256_storeu_pd(c + i, v.y);
        }
    });
    add<float>("sSinCos/sleef_u10", Domain::periodic, [](int n, const float *a, float *s, float *c) {
        for (int i = 0; i < n; i += 8) {
            const Sleef___m256_2 v = Sleef_sincosf8_u10avx2(_mm256_loadu_ps(a + i));
            _mm256_storeu_ps(s + i, v.x);
            _mm256_storeu_ps(c + i, v.y);
        }
    });
#endif
    add("dSqrt/qon", Domain::positive, qon(paxdSqrt));
    add("sSqrt/qon", Domain::positive, qon(paxsSqrt));
    qon_slots("dInvSqrt", Domain::positive, paxdInvSqrt, paxdInvSqrt_50, paxdInvSqrt_26);
    qon_slots("sInvSqrt", Domain::positive, paxsInvSqrt, paxsInvSqrt_21, paxsInvSqrt_11);
    qon_slots("dLn", Domain::logarithmic, paxdLn, paxdLn_50, paxdLn_26);
    qon_slots("sLn", Domain::logarithmic, paxsLn, paxsLn_21, paxsLn_11);
    qon_slots("dExp", Domain::exponential, paxdExp, paxdExp_50, paxdExp_26);
    qon_slots("sExp", Domain::exponential, paxsExp, paxsExp_21, paxsExp_11);
    qon_slots("dSin", Domain::periodic, paxdSin, paxdSin_50, paxdSin_26);
    qon_slots("sSin", Domain::periodic, paxsSin, paxsSin_21, paxsSin_11);
    qon_slots("dCos", Domain::periodic, paxdCos, paxdCos_50, paxdCos_26);
    qon_slots("sCos", Domain::periodic, paxsCos, paxsCos_21, paxsCos_11);
    qon_slots("dTan", Domain::periodic, paxdTan, paxdTan_50, paxdTan_26);
    qon_slots("sTan", Domain::periodic, paxsTan, paxsTan_21, paxsTan_11);
    qon_slots("dSinCos", Domain::periodic, paxdSinCos, paxdSinCos_50, paxdSinCos_26);
    qon_slots("sSinCos", Domain::periodic, paxsSinCos, paxsSinCos_21, paxsSinCos_11);
    qon_slots("dErfInv", Domain::unit, paxdErfInv, paxdErfInv_50, paxdErfInv_26);
    qon_slots("sErfInv", Domain::unit, paxsErfInv, paxsErfInv_21, paxsErfInv_11);
}

}  // namespace

int main(int argc, char **argv) {
    register_all();
    return qon_bench::run_with_ratios(argc, argv);
}
