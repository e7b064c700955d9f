// Cost of reading the thread's vector-math state: paxGetMode on an initialised thread (goal
// under 5 ns), and the accuracy index the core library reads before every dispatch.
#include <benchmark/benchmark.h>
#include <qon/qon_pax.h>

static void BM_paxGetMode(benchmark::State &state) {
    paxGetMode();
    for (auto _ : state) benchmark::DoNotOptimize(paxGetMode());
}
BENCHMARK(BM_paxGetMode);

static void BM_GetTTableIndex(benchmark::State &state) {
    paxGetMode();
    for (auto _ : state) benchmark::DoNotOptimize(qon_pax_kernel_GetTTableIndex());
}
BENCHMARK(BM_GetTTableIndex);

static void BM_paxSetMode(benchmark::State &state) {
    paxGetMode();
    for (auto _ : state) benchmark::DoNotOptimize(paxSetMode(PAX_HA));
}
BENCHMARK(BM_paxSetMode);

BENCHMARK_MAIN();
