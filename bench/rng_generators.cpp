// MT19937, MT2203, Philox4x32-10, R250 and MRG32k3a block generation: raw 32-bit words and
// doubles in [0, 1), blocks of 1000 and 10^7, against std::mt19937 and Random123's scalar
// philox4x32 (10 rounds) filling the same array (doubles: u * 2^-32 from the same engines);
// and the time of one MT19937 polynomial jump by 2^60. The ratio table after the runs gives
// every qon row's speed over every baseline of the same kind and size (> 1: qon is faster).
//   qon_bench_rng_generators --benchmark_repetitions=5
#include "ratio_reporter.hpp"

#include <qon/qon_rok.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#ifdef QON_HAVE_RANDOM123
#include <Random123/philox.h>
#endif

namespace {

constexpr int64_t kSizes[] = {1000, 10000000};

struct StreamHolder {
    RokStream *s = nullptr;
    BrngProperties p{};
    explicit StreamHolder(int32_t brng) {
        const uint32_t seed[6] = {12345, 1, 2, 3, 4, 5};
        rokNewStreamEx(&s, brng, 6, seed);
        rokGetBrngProperties(brng, &p);
    }
    ~StreamHolder() { rokDeleteStream(&s); }
};

template <class T>
void finish(benchmark::State &state, const std::vector<T> &r) {
    benchmark::DoNotOptimize(r.data());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(r.size()));
}

void qon_words(benchmark::State &state, int32_t brng) {
    std::vector<uint32_t> r(state.range(0));
    StreamHolder s(brng);
    for (auto _ : state) {
        s.p.i_brng(s.s, static_cast<int32_t>(r.size()), r.data());
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

void qon_doubles(benchmark::State &state, int32_t brng) {
    std::vector<double> r(state.range(0));
    StreamHolder s(brng);
    for (auto _ : state) {
        s.p.d_brng(s.s, static_cast<int32_t>(r.size()), r.data(), 0.0, 1.0);
        benchmark::ClobberMemory();
    }
    finish(state, r);
}


template <class Engine>
void base_words(benchmark::State &state) {
    std::vector<uint32_t> r(state.range(0));
    Engine e;
    for (auto _ : state) {
        e.fill(r);
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

template <class Engine>
void base_doubles(benchmark::State &state) {
    std::vector<double> r(state.range(0));
    Engine e;
    for (auto _ : state) {
        e.fill(r);
        benchmark::ClobberMemory();
    }
    finish(state, r);
}

struct StdMtFill {
    std::mt19937 e{12345};
    void fill(std::vector<uint32_t> &r) {
        for (uint32_t &v : r) v = static_cast<uint32_t>(e());
    }
    void fill(std::vector<double> &r) {
        for (double &v : r) v = static_cast<double>(static_cast<uint32_t>(e())) * 0x1p-32;
    }
};

#ifdef QON_HAVE_RANDOM123
// The scalar Philox4x32-10 of Random123, one block per four words, counter incremented.
struct R123Fill {
    philox4x32_key_t key = {{12345, 1}};
    philox4x32_ctr_t ctr = {{2, 3, 4, 5}};
    template <class T, class Conv>
    void run(std::vector<T> &r, Conv conv) {
        size_t i = 0;
        for (; i + 4 <= r.size(); i += 4) {
            const philox4x32_ctr_t b = philox4x32_R(10, ctr, key);
            if (++ctr.v[0] == 0 && ++ctr.v[1] == 0 && ++ctr.v[2] == 0) ++ctr.v[3];
            for (int k = 0; k < 4; ++k) r[i + k] = conv(b.v[k]);
        }
        if (i < r.size()) {
            const philox4x32_ctr_t b = philox4x32_R(10, ctr, key);
            for (int k = 0; i < r.size(); ++k, ++i) r[i] = conv(b.v[k]);
        }
    }
    void fill(std::vector<uint32_t> &r) {
        run(r, [](uint32_t u) { return u; });
    }
    void fill(std::vector<double> &r) {
        run(r, [](uint32_t u) { return static_cast<double>(u) * 0x1p-32; });
    }
};
#endif

void mt19937_jump(benchmark::State &state) {
    StreamHolder s(ROK_BRNG_MT19937);
    for (auto _ : state) rokSkipAheadStream(s.s, uint64_t{1} << 60);
    state.SetItemsProcessed(state.iterations());
}

void register_all() {
    auto add = [](const std::string &name, auto fn) {
        auto *b = benchmark::RegisterBenchmark(name.c_str(), fn);
        for (int64_t n : kSizes) b->Arg(n);
        b->Unit(benchmark::kMicrosecond);
    };
    const std::pair<const char *, int32_t> gens[] = {{"MT19937", ROK_BRNG_MT19937},
                                                     {"MT2203", ROK_BRNG_MT2203},
                                                     {"Philox4x32-10", ROK_BRNG_PHILOX4X32X10},
                                                     {"R250", ROK_BRNG_R250},
                                                     {"MRG32k3a", ROK_BRNG_MRG32K3A}};
    add("words/std::mt19937", base_words<StdMtFill>);
    add("doubles/std::mt19937", base_doubles<StdMtFill>);
#ifdef QON_HAVE_RANDOM123
    add("words/r123 philox4x32", base_words<R123Fill>);
    add("doubles/r123 philox4x32", base_doubles<R123Fill>);
#endif
    for (const auto &[name, id] : gens) {
        const int32_t brng = id;
        add(std::string("words/qon ") + name, [brng](benchmark::State &s) { qon_words(s, brng); });
        add(std::string("doubles/qon ") + name, [brng](benchmark::State &s) { qon_doubles(s, brng); });
    }
    benchmark::RegisterBenchmark("jump/qon MT19937 by 2^60", mt19937_jump)->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char **argv) {
    register_all();
    return qon_bench::run_with_ratios(argc, argv);
}
