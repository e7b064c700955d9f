// MCG31m1 and MCG59 against exact integer arithmetic: x(k) = a^k x(0) mod m with 128-bit
// products. Every block length around the vector widths (8 and 16 lanes) is compared
// element by element, as are splits of one block into several calls, skip-ahead against
// generate-and-discard, and leapfrog against every k-th element.
#include "rng_util.hpp"

#include "rng/powmod.hpp"
#include "rng/stream.hpp"

#include <cmath>
#include <cstring>
#include <limits>

using namespace rngtest;

namespace {

struct Gen {
    int32_t id;
    u128 m;
    uint64_t a;
    int word;
    double dscale;
    float sscale;
};
const Gen kMcg31{ROK_BRNG_MCG31M1, kM31, kA31, 4, 4.656612875245797e-10, 0x1p-31f};
const Gen kMcg59{ROK_BRNG_MCG59, kM59, kA59, 8, 1.734723475976807e-18, 0x1p-59f};

std::vector<uint64_t> raw(RokStream *s, const Gen &g, int32_t n) {
    std::vector<uint64_t> out(n);
    if (g.word == 4) {
        std::vector<uint32_t> w(n + 1, 0xDEADBEEF);
        EXPECT_EQ(rokiBRngMCG31M1(s, n, w.data()), ROK_STATUS_OK);
        EXPECT_EQ(w[n], 0xDEADBEEFu);  // nothing written past n
        for (int32_t i = 0; i < n; ++i) out[i] = w[i];
    } else {
        std::vector<uint64_t> w(n + 1, 0xDEADBEEF);
        EXPECT_EQ(rokiBRngMCG59(s, n, w.data()), ROK_STATUS_OK);
        EXPECT_EQ(w[n], 0xDEADBEEFu);
        out.assign(w.begin(), w.begin() + n);
    }
    return out;
}

Lcg oracle(const Gen &g, uint64_t x0) { return Lcg{g.m, g.a, x0}; }

class McgTest : public ::testing::TestWithParam<Gen> {};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Both, McgTest, ::testing::Values(kMcg31, kMcg59),
                         [](const auto &info) { return info.param.id == ROK_BRNG_MCG31M1 ? "MCG31m1" : "MCG59"; });

TEST(Mcg31m1, SeedsAreReducedModuloThePrime) {
    for (uint32_t seed : {0u, 2147483647u, 4294967295u, 4294967294u}) {
        auto s = make_stream(ROK_BRNG_MCG31M1, {seed});
        EXPECT_EQ(raw(s.get(), kMcg31, 1)[0], 1u) << seed;
    }
    auto s = make_stream(ROK_BRNG_MCG31M1, {2147483648u});
    EXPECT_EQ(raw(s.get(), kMcg31, 1)[0], 1u);
    s = make_stream(ROK_BRNG_MCG31M1, {2147483646u, 99u});
    EXPECT_EQ(raw(s.get(), kMcg31, 1)[0], 2147483646u);
    s = make_stream(ROK_BRNG_MCG31M1, {4294967293u});
    EXPECT_EQ(raw(s.get(), kMcg31, 1)[0], 2147483646u);
}

TEST(Mcg31m1, UnseededStreamStartsAtOne) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {});
    std::vector<uint64_t> v = raw(s.get(), kMcg31, 4);
    EXPECT_EQ(v, (std::vector<uint64_t>{1, 1132489760, 826537482, 289798557}));
}

TEST(Mcg59, SeedWordsJoinModuloTwoToThe59) {
    auto s = make_stream(ROK_BRNG_MCG59, {0u, 0x08000000u});
    EXPECT_EQ(raw(s.get(), kMcg59, 1)[0], 1u);
    s = make_stream(ROK_BRNG_MCG59, {5u, 0x08000001u, 77u});
    EXPECT_EQ(raw(s.get(), kMcg59, 1)[0], (uint64_t{1} << 32) + 5);
    s = make_stream(ROK_BRNG_MCG59, {0xFFFFFFFFu});
    EXPECT_EQ(raw(s.get(), kMcg59, 1)[0], 0xFFFFFFFFu);
    s = make_stream(ROK_BRNG_MCG59, {});
    EXPECT_EQ(raw(s.get(), kMcg59, 2), (std::vector<uint64_t>{1, kA59}));
}

TEST_P(McgTest, RawBlocksOfEveryLengthFollowTheRecurrence) {
    const Gen g = GetParam();
    for (int32_t n = 0; n <= 70; ++n) {
        auto s = make_stream(g.id, {12345u, 678u});
        Lcg o = oracle(g, g.id == ROK_BRNG_MCG31M1 ? 12345u : (uint64_t{678} << 32) + 12345u);
        std::vector<uint64_t> v = raw(s.get(), g, n);
        for (int32_t i = 0; i < n; ++i) ASSERT_EQ(v[i], o.next()) << "n " << n << " i " << i;
        // The state continues right after the block.
        ASSERT_EQ(raw(s.get(), g, 1)[0], o.next()) << n;
    }
    auto s = make_stream(g.id, {987654321u});
    Lcg o = oracle(g, 987654321u);
    std::vector<uint64_t> v = raw(s.get(), g, 100003);
    for (uint64_t x : v) ASSERT_EQ(x, o.next());
}

TEST_P(McgTest, SplitBlocksEqualOneBlock) {
    const Gen g = GetParam();
    const std::vector<std::vector<int32_t>> splits = {{7, 9}, {1, 15, 16}, {8, 8, 17, 3}, {0, 31, 0, 33}, {5, 100, 24}};
    for (const auto &parts : splits) {
        int32_t total = 0;
        for (int32_t p : parts) total += p;
        auto whole = make_stream(g.id, {42u});
        auto pieces = make_stream(g.id, {42u});
        std::vector<uint64_t> expect = raw(whole.get(), g, total), got;
        for (int32_t p : parts) {
            std::vector<uint64_t> v = raw(pieces.get(), g, p);
            got.insert(got.end(), v.begin(), v.end());
        }
        EXPECT_EQ(got, expect);
    }
}

TEST_P(McgTest, FloatingOutputIsOneFusedMultiplyAddOfTheSameSequence) {
    const Gen g = GetParam();
    const double lo = -3.25, hi = 7.5;
    const float slo = -3.25f, shi = 7.5f;
    for (int32_t n : {1, 15, 16, 17, 33, 1000}) {
        auto s = make_stream(g.id, {31337u});
        Lcg o = oracle(g, 31337u);
        std::vector<double> d(n + 1, 99.0);
        ASSERT_EQ(g.id == ROK_BRNG_MCG31M1 ? rokdBRngMCG31M1(s.get(), n, d.data(), lo, hi)
                                           : rokdBRngMCG59(s.get(), n, d.data(), lo, hi),
                  ROK_STATUS_OK);
        EXPECT_EQ(d[n], 99.0);
        for (int32_t i = 0; i < n; ++i)
            ASSERT_EQ(d[i], std::fma(static_cast<double>(o.next()), (hi - lo) * g.dscale, lo)) << i;
        std::vector<float> f(n + 1, 99.0f);
        ASSERT_EQ(g.id == ROK_BRNG_MCG31M1 ? roksBRngMCG31M1(s.get(), n, f.data(), slo, shi)
                                           : roksBRngMCG59(s.get(), n, f.data(), slo, shi),
                  ROK_STATUS_OK);
        EXPECT_EQ(f[n], 99.0f);
        for (int32_t i = 0; i < n; ++i) {
            const float x = static_cast<float>(static_cast<double>(o.next()));
            ASSERT_EQ(f[i], std::fma(x, (shi - slo) * g.sscale, slo)) << i;
        }
    }
}

TEST_P(McgTest, EveryFormConsumesOneStepPerValue) {
    const Gen g = GetParam();
    BrngProperties props{};
    ASSERT_EQ(rokGetBrngProperties(g.id, &props), ROK_STATUS_OK);
    const BrngProperties *p = &props;
    auto s = make_stream(g.id, {777u});
    Lcg o = oracle(g, 777u);
    std::vector<double> d(37);
    std::vector<float> f(19);
    std::vector<uint64_t> w(23);
    for (int round = 0; round < 3; ++round) {
        ASSERT_EQ(p->d_brng(s.get(), 37, d.data(), 0.0, 1.0), ROK_STATUS_OK);
        for (double v : d) ASSERT_EQ(v, static_cast<double>(o.next()) * g.dscale);
        ASSERT_EQ(p->i_brng(s.get(), 23, w.data()), ROK_STATUS_OK);
        if (g.word == 4) {
            auto *w32 = reinterpret_cast<uint32_t *>(w.data());
            for (int i = 0; i < 23; ++i) ASSERT_EQ(w32[i], o.next());
        } else {
            for (uint64_t v : w) ASSERT_EQ(v, o.next());
        }
        ASSERT_EQ(p->s_brng(s.get(), 19, f.data(), 0.0f, 1.0f), ROK_STATUS_OK);
        for (float v : f) ASSERT_EQ(v, static_cast<float>(static_cast<double>(o.next())) * g.sscale);
    }
}

TEST(Mcg31m1, DoublesStayBelowTheUpperBound) {
    // The largest state, m - 1, is the one value that could reach b.
    auto s = make_stream(ROK_BRNG_MCG31M1, {2147483646u});
    double d[20];
    ASSERT_EQ(rokdBRngMCG31M1(s.get(), 20, d, 0.0, 1.0), ROK_STATUS_OK);
    EXPECT_LT(d[0], 1.0);
    for (double v : d) {
        EXPECT_GT(v, 0.0);
        EXPECT_LT(v, 1.0);
    }
    ASSERT_EQ(rokdBRngMCG31M1(s.get(), 20, d, 2.0, 2.0), ROK_STATUS_OK);
    for (double v : d) EXPECT_EQ(v, 2.0);
}

TEST_P(McgTest, SkipAheadEqualsGenerateAndDiscard) {
    const Gen g = GetParam();
    for (uint64_t nskip : {0ull, 1ull, 7ull, 8ull, 1000ull, 65537ull}) {
        auto skipped = make_stream(g.id, {2024u});
        auto walked = make_stream(g.id, {2024u});
        ASSERT_EQ(rokSkipAheadStream(skipped.get(), nskip), ROK_STATUS_OK);
        raw(walked.get(), g, static_cast<int32_t>(nskip));
        EXPECT_EQ(raw(skipped.get(), g, 40), raw(walked.get(), g, 40)) << nskip;
    }
    // Far jumps against the closed form a^N x(0).
    for (uint64_t nskip : {1000000000000ull, 0x8000000000000000ull, ~0ull}) {
        auto s = make_stream(g.id, {2024u});
        ASSERT_EQ(rokSkipAheadStream(s.get(), nskip), ROK_STATUS_OK);
        const uint64_t x = static_cast<uint64_t>(static_cast<u128>(pow_oracle(g.a, nskip, g.m)) * 2024u % g.m);
        Lcg o = oracle(g, x);
        for (uint64_t v : raw(s.get(), g, 20)) ASSERT_EQ(v, o.next());
    }
}

TEST_P(McgTest, LeapfrogYieldsEveryKthElement) {
    const Gen g = GetParam();
    const int32_t nstreams = 5;
    Lcg whole = oracle(g, 55u);
    std::vector<uint64_t> all(nstreams * 50);
    for (uint64_t &v : all) v = whole.next();
    for (int32_t k = 0; k < nstreams; ++k) {
        auto s = make_stream(g.id, {55u});
        ASSERT_EQ(rokLeapfrogStream(s.get(), k, nstreams), ROK_STATUS_OK);
        std::vector<uint64_t> v = raw(s.get(), g, 30);  // vector path with the new multiplier
        std::vector<uint64_t> v2 = raw(s.get(), g, 20);
        v.insert(v.end(), v2.begin(), v2.end());
        for (int32_t i = 0; i < 50; ++i) ASSERT_EQ(v[i], all[k + i * nstreams]) << k << " " << i;
    }
    // Floating output of a leapfrogged stream uses the new multiplier's powers too.
    auto s = make_stream(g.id, {55u});
    ASSERT_EQ(rokLeapfrogStream(s.get(), 2, nstreams), ROK_STATUS_OK);
    std::vector<double> d(40);
    BrngProperties p{};
    ASSERT_EQ(rokGetBrngProperties(g.id, &p), ROK_STATUS_OK);
    ASSERT_EQ(p.d_brng(s.get(), 40, d.data(), 0.0, 1.0), ROK_STATUS_OK);
    for (int32_t i = 0; i < 40; ++i) ASSERT_EQ(d[i], static_cast<double>(all[2 + i * nstreams]) * g.dscale);
}

TEST_P(McgTest, LeapfrogBoundaryCounts) {
    const Gen g = GetParam();
    auto plain = make_stream(g.id, {9u});
    auto one = make_stream(g.id, {9u});
    ASSERT_EQ(rokLeapfrogStream(one.get(), 0, 1), ROK_STATUS_OK);
    EXPECT_EQ(raw(one.get(), g, 50), raw(plain.get(), g, 50));
    // nstreams = 0 makes the multiplier 1: the current element repeats.
    ASSERT_EQ(rokLeapfrogStream(one.get(), 0, 0), ROK_STATUS_OK);
    Lcg o = oracle(g, 9u);
    for (int i = 0; i < 50; ++i) o.next();
    const uint64_t x = o.next();
    for (uint64_t v : raw(one.get(), g, 40)) ASSERT_EQ(v, x);
    // A negative count is refused before the generator sees it.
    auto s = make_stream(g.id, {9u});
    EXPECT_EQ(rokLeapfrogStream(s.get(), 0, -1), ROK_ERROR_BAD_NSTREAMS);
    Lcg fresh = oracle(g, 9u);
    for (uint64_t v : raw(s.get(), g, 3)) EXPECT_EQ(v, fresh.next());
}

TEST_P(McgTest, UnsupportedMethodsAndLostChunks) {
    const Gen g = GetParam();
    auto s = make_stream(g.id, {3u});
    const uint64_t words[2] = {5, 0};
    EXPECT_EQ(rokSkipAheadStreamEx(s.get(), 2, words), ROK_ERROR_NO_SKIPAHEADEX);
    BrngProperties p{};
    ASSERT_EQ(rokGetBrngProperties(g.id, &p), ROK_STATUS_OK);
    EXPECT_EQ(p.init_stream(4, s.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(p.init_stream(-1, s.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    // Without chunk 14 the floating-point forms refuse and write nothing; raw output goes on.
    rokDeleteChunks(s.get());
    double d[20];
    float f[20];
    std::fill(std::begin(d), std::end(d), 5.0);
    std::fill(std::begin(f), std::end(f), 5.0f);
    EXPECT_EQ(p.d_brng(s.get(), 20, d, 0.0, 1.0), ROK_ERROR_MEM);
    EXPECT_EQ(p.s_brng(s.get(), 20, f, 0.0f, 1.0f), ROK_ERROR_MEM);
    for (int i = 0; i < 20; ++i) EXPECT_TRUE(d[i] == 5.0 && f[i] == 5.0f);
    Lcg o = oracle(g, 3u);
    for (uint64_t v : raw(s.get(), g, 40)) ASSERT_EQ(v, o.next());
}

TEST_P(McgTest, SeedingWithoutMemoryKeepsTheState) {
    const Gen g = GetParam();
    RokStream *s = nullptr;
    uint32_t seed = 17;
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(rokNewStreamEx(&s, g.id, 1, &seed), ROK_ERROR_MEM);
    EXPECT_EQ(s, nullptr);
    qon_serv_fail_allocations_after(1);  // the stream, not its chunk
    EXPECT_EQ(rokNewStreamEx(&s, g.id, 1, &seed), ROK_ERROR_MEM);
    qon_serv_fail_allocations_after(-1);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(rokGetNumChunks(s), 0);
    Lcg o = oracle(g, 17u);
    for (uint64_t v : raw(s, g, 20)) ASSERT_EQ(v, o.next());
    rokDeleteStream(&s);
}

TEST(PowMod, SquareAndMultiplyMatchesExactPowers) {
    const uint64_t exps[] = {0, 1, 2, 3, 8, 255, 65536, 1000000007, 0x123456789ABCDEFull, ~0ull};
    for (uint64_t e : exps) {
        for (uint32_t a : {1u, 2u, 16807u, 1132489760u, 2147483646u}) {
            EXPECT_EQ(rokiPowMod2P31M1(a, e), pow_oracle(a, e, kM31)) << a << "^" << e;
            for (uint32_t m : {1u, 2u, 7u, 65521u, 4294967291u, 4294967295u})
                EXPECT_EQ(rokiPowMod(a, e, m), pow_oracle(a, e, m)) << a << "^" << e << " mod " << m;
        }
        for (uint64_t a : {uint64_t{1}, uint64_t{3}, kA59, (uint64_t{1} << 59) - 1})
            EXPECT_EQ(rokiPowMod2P59(a, e), pow_oracle(a, e, kM59)) << a << "^" << e;
    }
    EXPECT_EQ(rokiPowMod2P59(0, 0), 1u);
    EXPECT_EQ(rokiPowMod(0, 0, 5), 1u);
}

// Blocks of millions of values, written off any 32-byte boundary.
TEST_P(McgTest, LargeBlocksFollowTheRecurrence) {
    const Gen g = GetParam();
    const int32_t n = (int32_t{1} << 21) + 13;
    auto s = make_stream(g.id, {4321u});
    Lcg o = oracle(g, 4321u);
    std::vector<uint64_t> words(n / 2 + 8, 0);
    if (g.word == 4) {
        auto *w = reinterpret_cast<uint32_t *>(words.data()) + 1;
        ASSERT_EQ(rokiBRngMCG31M1(s.get(), n, w), ROK_STATUS_OK);
        for (int32_t i = 0; i < n; ++i) ASSERT_EQ(w[i], o.next()) << i;
    } else {
        std::vector<uint64_t> w(n + 1);
        ASSERT_EQ(rokiBRngMCG59(s.get(), n, w.data() + 1), ROK_STATUS_OK);
        for (int32_t i = 0; i < n; ++i) ASSERT_EQ(w[i + 1], o.next()) << i;
    }
    std::vector<double> d(n / 2 + 9);
    BrngProperties p{};
    ASSERT_EQ(rokGetBrngProperties(g.id, &p), ROK_STATUS_OK);
    ASSERT_EQ(p.d_brng(s.get(), n / 2 + 7, d.data() + 2, 0.0, 1.0), ROK_STATUS_OK);
    for (int32_t i = 0; i < n / 2 + 7; ++i) ASSERT_EQ(d[i + 2], static_cast<double>(o.next()) * g.dscale) << i;
}
