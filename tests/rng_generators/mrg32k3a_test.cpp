// MRG32k3a against the recurrences in exact integer arithmetic, seeding edge cases,
// skip-ahead against generate-and-discard, the extended skip-ahead against the components'
// periods (m1^3 - 1 and m2^3 - 1, the recurrences being primitive), and the (a, b] range.
#include "gen_util.hpp"

using namespace gentest;

namespace {

constexpr int64_t kM1 = 4294967087, kM2 = 4294944443;
using u128 = unsigned __int128;

struct Model {
    int64_t x1[3], x2[3];  // oldest first
    uint32_t next() {
        const int64_t y1 = ((1403580 * x1[1] - 810728 * x1[0]) % kM1 + kM1) % kM1;
        const int64_t y2 = ((527612 * x2[2] - 1370589 * x2[0]) % kM2 + kM2) % kM2;
        x1[0] = x1[1], x1[1] = x1[2], x1[2] = y1;
        x2[0] = x2[1], x2[1] = x2[2], x2[2] = y2;
        return static_cast<uint32_t>(y1 > y2 ? y1 - y2 : y1 - y2 + kM1);
    }
    std::vector<uint32_t> take(int n) {
        std::vector<uint32_t> r(n);
        for (auto &v : r) v = next();
        return r;
    }
};

}  // namespace

TEST(Mrg32k3a, MatchesTheRecurrencesForAnyRequestSizes) {
    const std::vector<uint32_t> seed = {12345, 12345, 12345, 12345, 12345, 12345};
    const auto expect = Model{{12345, 12345, 12345}, {12345, 12345, 12345}}.take(2000);
    for (const auto &pieces : std::vector<std::vector<int32_t>>{{2000}, {1}, {15}, {16}, {17, 3}, {101, 5}}) {
        auto s = make_stream(ROK_BRNG_MRG32K3A, seed);
        EXPECT_EQ(words_in_pieces(s, 2000, pieces), expect) << pieces[0];
    }
}

TEST(Mrg32k3a, SeedingEdgeCases) {
    RokStream *raw = nullptr;
    ASSERT_EQ(rokNewStreamEx(&raw, ROK_BRNG_MRG32K3A, 0, nullptr), ROK_STATUS_OK);
    StreamPtr none(raw);
    EXPECT_EQ(words(none, 100), (Model{{1, 1, 1}, {1, 1, 1}}.take(100)));
    EXPECT_EQ(words(make_stream(ROK_BRNG_MRG32K3A, {0, 0, 0, 0, 0, 0}), 100), (Model{{1, 0, 0}, {1, 0, 0}}.take(100)));
    EXPECT_EQ(words(make_stream(ROK_BRNG_MRG32K3A, {5, 6}), 100), (Model{{5, 6, 1}, {1, 1, 1}}.take(100)));
    const uint32_t m1 = static_cast<uint32_t>(kM1), top = 0xFFFFFFFFu;
    EXPECT_EQ(words(make_stream(ROK_BRNG_MRG32K3A, {m1, top, 3, top, static_cast<uint32_t>(kM2), 9}), 100),
              (Model{{0, 208, 3}, {22852, 0, 9}}.take(100)));
    const uint32_t seven[7] = {1, 2, 3, 4, 5, 6, 7};
    ASSERT_EQ(rokNewStreamEx(&raw, ROK_BRNG_MRG32K3A, 7, seven), ROK_STATUS_OK);
    StreamPtr more(raw);
    EXPECT_EQ(words(more, 50), (Model{{1, 2, 3}, {4, 5, 6}}.take(50)));
}

TEST(Mrg32k3a, SkipAheadEqualsGenerateAndDiscard) {
    for (uint64_t n : {0ull, 1ull, 2ull, 3ull, 4ull, 5ull, 100ull, 1000003ull}) {
        auto ref = make_stream(ROK_BRNG_MRG32K3A, {1, 2, 3, 4, 5, 6});
        words(ref, 7);
        auto jumped = copy_of(ref), ex = copy_of(ref);
        ASSERT_EQ(rokSkipAheadStream(jumped.get(), n), ROK_STATUS_OK);
        ASSERT_EQ(rokSkipAheadStreamEx(ex.get(), 1, &n), ROK_STATUS_OK);
        discard(ref, n);
        const auto expect = words(ref, 50);
        EXPECT_EQ(words(jumped, 50), expect) << n;
        EXPECT_EQ(words(ex, 50), expect) << n;
    }
}

TEST(Mrg32k3a, ExtendedSkipAheadRespectsTheComponentPeriods) {
    // (m1^3 - 1)(m2^3 - 1) brings both components back: 3 words; times 2^64: 4 words.
    const u128 p1 = static_cast<u128>(kM1) * kM1 * kM1 - 1, p2 = static_cast<u128>(kM2) * kM2 * kM2 - 1;
    // p1 * p2 < 2^192 as three 64-bit words.
    const u128 lo1 = static_cast<uint64_t>(p1), hi1 = p1 >> 64;
    const u128 lo2 = static_cast<uint64_t>(p2), hi2 = p2 >> 64;
    const u128 ll = lo1 * lo2, lh = lo1 * hi2, hl = hi1 * lo2, hh = hi1 * hi2;
    const u128 mid = (ll >> 64) + static_cast<uint64_t>(lh) + static_cast<uint64_t>(hl);
    const uint64_t w0 = static_cast<uint64_t>(ll), w1 = static_cast<uint64_t>(mid);
    const uint64_t w2 = static_cast<uint64_t>((mid >> 64) + (lh >> 64) + (hl >> 64) + hh);
    auto ref = make_stream(ROK_BRNG_MRG32K3A, {11, 22, 33, 44, 55, 66});
    words(ref, 2);
    const uint64_t period[3] = {w0, w1, w2}, shifted[4] = {0, w0, w1, w2};
    auto a = copy_of(ref), b = copy_of(ref);
    ASSERT_EQ(rokSkipAheadStreamEx(a.get(), 3, period), ROK_STATUS_OK);
    ASSERT_EQ(rokSkipAheadStreamEx(b.get(), 4, shifted), ROK_STATUS_OK);
    const auto expect = words(ref, 40);
    EXPECT_EQ(words(a, 40), expect);
    EXPECT_EQ(words(b, 40), expect);
    // Counts above 64 bits split into two jumps.
    auto whole = copy_of(ref), parts = copy_of(ref);
    const uint64_t big[2] = {12345, 3}, low[1] = {12345}, high[2] = {0, 3};
    ASSERT_EQ(rokSkipAheadStreamEx(whole.get(), 2, big), ROK_STATUS_OK);
    ASSERT_EQ(rokSkipAheadStreamEx(parts.get(), 2, high), ROK_STATUS_OK);
    ASSERT_EQ(rokSkipAheadStreamEx(parts.get(), 1, low), ROK_STATUS_OK);
    EXPECT_EQ(words(whole, 40), words(parts, 40));
    const auto before = image(whole);
    EXPECT_EQ(rokLeapfrogStream(whole.get(), 0, 2), ROK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rokBRngMRG32K3AInitStream(4, whole.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(image(whole), before);
}

TEST(Mrg32k3a, UniformsLieInTheHalfOpenRangeAboveA) {
    auto s = make_stream(ROK_BRNG_MRG32K3A, {1, 2, 3, 4, 5, 6});
    auto c = copy_of(s);
    const int n = quick() ? 20000 : 200000;
    std::vector<double> d(n);
    ASSERT_EQ(rokdBRngMRG32K3A(s.get(), n, d.data(), 0.0, 1.0), ROK_STATUS_OK);
    const auto z = words(c, n);
    for (int i = 0; i < n; ++i) {
        ASSERT_GT(d[i], 0.0) << i;
        ASSERT_LE(d[i], 1.0) << i;
        ASSERT_NEAR(d[i], static_cast<double>(static_cast<long double>(z[i]) / kM1), 2e-16) << i;
    }
}
