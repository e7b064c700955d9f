// Complex vector math and pack/unpack against the C++ standard library's std::complex
// functions (C library complex functions underneath) applied in a plain loop, in the same run.
// Rows: <function>/<implementation>/<n>; ratios printed at the end (baseline time / qon time).
//   qon_build/bench/qon_bench_vm_complex --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
#include <benchmark/benchmark.h>
#include <qon/qon_pax.h>

#include <complex>
#include <random>
#include <string>
#include <vector>

#include "ratio_reporter.hpp"

namespace {

using Z = std::complex<double>;
using C = std::complex<float>;

template <class T>
std::vector<std::complex<T>> arguments(int n) {
    std::mt19937_64 rng(42);
    std::uniform_real_distribution<T> u(-3, 3);
    std::vector<std::complex<T>> v(n);
    for (auto &x : v) x = {u(rng), u(rng)};
    return v;
}

template <class E, class Fn>
void bench_unary(benchmark::State &state, Fn fn) {
    const int n = static_cast<int>(state.range(0));
    const auto a = arguments<typename E::value_type>(n);
    std::vector<E> r(n);
    for (auto _ : state) {
        fn(n, a.data(), r.data());
        benchmark::DoNotOptimize(r.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

template <class E, class Fn>
void bench_binary(benchmark::State &state, Fn fn) {
    const int n = static_cast<int>(state.range(0));
    const auto a = arguments<typename E::value_type>(n), b = arguments<typename E::value_type>(n + 1);
    std::vector<E> r(n);
    for (auto _ : state) {
        fn(n, a.data(), b.data() + 1, r.data());
        benchmark::DoNotOptimize(r.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

const QON_Complex16 *q(const Z *p) { return reinterpret_cast<const QON_Complex16 *>(p); }
QON_Complex16 *q(Z *p) { return reinterpret_cast<QON_Complex16 *>(p); }
const QON_Complex8 *q(const C *p) { return reinterpret_cast<const QON_Complex8 *>(p); }
QON_Complex8 *q(C *p) { return reinterpret_cast<QON_Complex8 *>(p); }

template <class Fn>
void add(const std::string &name, Fn fn) {
    benchmark::RegisterBenchmark(name.c_str(), fn)->Arg(1000);
}

// Three rows per function: HA and LA entries, and the standard library in a loop.
#define QON_BENCH_UNARY(t, E, F, la, stdfn)                                                                 \
    add(#t #F "/qon_HA", [](benchmark::State &s) { bench_unary<E>(s, [](int n, const E *a, E *r) { pax##t##F(n, q(a), q(r)); }); }); \
    add(#t #F "/qon_LA", [](benchmark::State &s) { bench_unary<E>(s, [](int n, const E *a, E *r) { pax##t##F##la(n, q(a), q(r)); }); }); \
    add(#t #F "/std_complex", [](benchmark::State &s) {                                                      \
        bench_unary<E>(s, [](int n, const E *a, E *r) { for (int i = 0; i < n; ++i) r[i] = stdfn(a[i]); }); \
    });
#define QON_BENCH_BINARY(t, E, F, la, ...)                                                                  \
    add(#t #F "/qon_HA", [](benchmark::State &s) {                                                           \
        bench_binary<E>(s, [](int n, const E *a, const E *b, E *r) { pax##t##F(n, q(a), q(b), q(r)); });     \
    });                                                                                                      \
    add(#t #F "/qon_LA", [](benchmark::State &s) {                                                           \
        bench_binary<E>(s, [](int n, const E *a, const E *b, E *r) { pax##t##F##la(n, q(a), q(b), q(r)); }); \
    });                                                                                                      \
    add(#t #F "/std_complex", [](benchmark::State &s) {                                                      \
        bench_binary<E>(s, [](int n, const E *a, const E *b, E *r) {                                         \
            for (int i = 0; i < n; ++i) r[i] = __VA_ARGS__;                                                  \
        });                                                                                                  \
    });

void register_complex() {
    QON_BENCH_UNARY(z, Z, Sqrt, _50, std::sqrt)
    QON_BENCH_UNARY(z, Z, Ln, _50, std::log)
    QON_BENCH_UNARY(z, Z, Sin, _50, std::sin)
    QON_BENCH_UNARY(z, Z, Asin, _50, std::asin)
    QON_BENCH_UNARY(z, Z, Tan, _50, std::tan)
    QON_BENCH_UNARY(c, C, Sin, _21, std::sin)
    QON_BENCH_UNARY(c, C, Ln, _21, std::log)
    QON_BENCH_BINARY(z, Z, Mul, _50, a[i] * b[i])
    QON_BENCH_BINARY(z, Z, Div, _50, a[i] / b[i])
    QON_BENCH_BINARY(z, Z, Pow, _50, std::pow(a[i], b[i]))
    QON_BENCH_BINARY(c, C, Mul, _21, a[i] * b[i])
    QON_BENCH_BINARY(c, C, Div, _21, a[i] / b[i])
}

}  // namespace

namespace {

// PackI with increment 3, PackV with random indices: the gathers against a plain loop.
void pack_i_qon(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<double> a(3 * n, 1.0), y(n);
    for (auto _ : state) {
        paxdPackI(n, a.data(), 3, y.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}
void pack_i_loop(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<double> a(3 * n, 1.0), y(n);
    int inc = 3;
    benchmark::DoNotOptimize(inc);
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) y[i] = a[static_cast<std::ptrdiff_t>(i) * inc];
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}
std::vector<int> indices(int n) {
    std::mt19937 rng(7);
    std::vector<int> ix(n);
    for (int &k : ix) k = static_cast<int>(rng() % static_cast<unsigned>(4 * n));
    return ix;
}
void pack_v_qon(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<float> a(4 * n, 1.0f), y(n);
    const std::vector<int> ix = indices(n);
    for (auto _ : state) {
        paxsPackV(n, a.data(), ix.data(), y.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}
void pack_v_loop(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<float> a(4 * n, 1.0f), y(n);
    const std::vector<int> ix = indices(n);
    for (auto _ : state) {
        for (int i = 0; i < n; ++i) y[i] = a[ix[i]];
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(pack_i_qon)->Name("dPackI/qon")->Arg(10000);
BENCHMARK(pack_i_loop)->Name("dPackI/loop")->Arg(10000);
BENCHMARK(pack_v_qon)->Name("sPackV/qon")->Arg(10000);
BENCHMARK(pack_v_loop)->Name("sPackV/loop")->Arg(10000);

int main(int argc, char **argv) {
    register_complex();
    return qon_bench::run_with_ratios(argc, argv);
}
