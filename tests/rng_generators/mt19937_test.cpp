// MT19937: sequences against numpy's array-seeded MT19937, seeding edge cases, request
// splitting, and skip-ahead against generate-and-discard on both sides of the switch from
// running forward (up to 2,097,151) to the polynomial jump.
#include "gen_util.hpp"

#include <qon/qon_serv.h>

#include <numeric>

using namespace gentest;

namespace {
#include "mt19937_numpy.inc"

constexpr int kOut = 1400;

std::vector<uint32_t> expected(const uint32_t *v) { return std::vector<uint32_t>(v, v + kOut); }

int32_t skip(const StreamPtr &s, uint64_t n) { return rokSkipAheadStream(s.get(), n); }

}  // namespace

TEST(Mt19937, MatchesArraySeededReference) {
    const std::vector<uint32_t> classic = {0x123, 0x234, 0x345, 0x456};
    const std::vector<uint32_t> big = {0xFFFFFFFF, 0, 0x80000000, 0x7FFFFFFF};
    std::vector<uint32_t> lng(700);
    for (uint32_t i = 0; i < 700; ++i) lng[i] = static_cast<uint32_t>(i * 2654435761u + 12345u);
    EXPECT_EQ(words(make_stream(ROK_BRNG_MT19937, {1}), kOut), expected(kNumpy_one));
    EXPECT_EQ(words(make_stream(ROK_BRNG_MT19937, classic), kOut), expected(kNumpy_classic));
    EXPECT_EQ(words(make_stream(ROK_BRNG_MT19937, big), kOut), expected(kNumpy_big));
    EXPECT_EQ(words(make_stream(ROK_BRNG_MT19937, lng), kOut), expected(kNumpy_long));
}

TEST(Mt19937, SeedingEdgeCases) {
    // No seed words act as the single word 1.
    RokStream *raw = nullptr;
    ASSERT_EQ(rokNewStreamEx(&raw, ROK_BRNG_MT19937, 0, nullptr), ROK_STATUS_OK);
    StreamPtr none(raw);
    EXPECT_EQ(words(none, kOut), expected(kNumpy_one));
    // Words past n are not read.
    const uint32_t seeds[8] = {0x123, 0x234, 0x345, 0x456, 0xBAD, 0xBAD, 0xBAD, 0xBAD};
    ASSERT_EQ(rokNewStreamEx(&raw, ROK_BRNG_MT19937, 4, seeds), ROK_STATUS_OK);
    StreamPtr four(raw);
    EXPECT_EQ(words(four, kOut), expected(kNumpy_classic));
}

TEST(Mt19937, RequestSizesDoNotChangeTheSequence) {
    const std::vector<uint32_t> classic = {0x123, 0x234, 0x345, 0x456};
    for (const auto &pieces : std::vector<std::vector<int32_t>>{{1}, {7, 1, 9}, {623}, {624}, {625, 3}, {8, 16, 31}}) {
        auto s = make_stream(ROK_BRNG_MT19937, classic);
        EXPECT_EQ(words_in_pieces(s, kOut, pieces), expected(kNumpy_classic)) << pieces[0];
    }
}

TEST(Mt19937, UniformsFollowTheWords) {
    auto s = make_stream(ROK_BRNG_MT19937, {0x123, 0x234, 0x345, 0x456});
    std::vector<double> d(kOut);
    ASSERT_EQ(rokdBRngMT19937(s.get(), kOut, d.data(), -3.0, 5.0), ROK_STATUS_OK);
    for (int i = 0; i < kOut; ++i) {
        const long double exact = -3.0L + 8.0L * kNumpy_classic[i] / 4294967296.0L;
        EXPECT_NEAR(d[i], static_cast<double>(exact), 1e-15) << i;
        EXPECT_GE(d[i], -3.0);
        EXPECT_LT(d[i], 5.0);
    }
    std::vector<double> same(17);
    ASSERT_EQ(rokdBRngMT19937(s.get(), 17, same.data(), 2.5, 2.5), ROK_STATUS_OK);
    for (double v : same) EXPECT_EQ(v, 2.5);
}

TEST(Mt19937, SkipAheadEqualsGenerateAndDiscard) {
    const uint64_t counts[] = {1, 2, 623, 624, 625, 1248, 100000, 2097151, 2097152, 2097153, 5000017};
    for (int drawn : {0, 5, 624, 1000}) {
        for (uint64_t n : counts) {
            auto ref = make_stream(ROK_BRNG_MT19937, {0xC0FFEE, 17});
            words(ref, drawn);
            auto jumped = copy_of(ref);
            ASSERT_EQ(skip(jumped, n), ROK_STATUS_OK);
            discard(ref, n);
            EXPECT_EQ(words(jumped, 1500), words(ref, 1500)) << "drawn " << drawn << " skip " << n;
        }
    }
}

TEST(Mt19937, LongJumpsComposeFromVerifiedJumps) {
    // 10^7 is checked against brute force; 10^9 must equal a hundred of them.
    auto base = make_stream(ROK_BRNG_MT19937, {2026, 11, 22});
    words(base, 3);
    auto brute = copy_of(base), one = copy_of(base), composed = copy_of(base);
    discard(brute, 10000000);
    ASSERT_EQ(skip(one, 10000000), ROK_STATUS_OK);
    ASSERT_EQ(words(one, 700), words(brute, 700));
    ASSERT_EQ(skip(one, 1000000000ull - 10000000 - 700), ROK_STATUS_OK);
    for (int k = 0; k < 100; ++k) ASSERT_EQ(skip(composed, 10000000), ROK_STATUS_OK);
    EXPECT_EQ(words(one, 700), words(composed, 700));
    // The largest count, through a 128-bit jump exponent: (2^63 - 1) + 2^63 = 2^64 - 1.
    auto whole = copy_of(base), halves = copy_of(base);
    ASSERT_EQ(skip(whole, ~uint64_t{0}), ROK_STATUS_OK);
    ASSERT_EQ(skip(halves, (uint64_t{1} << 63) - 1), ROK_STATUS_OK);
    ASSERT_EQ(skip(halves, uint64_t{1} << 63), ROK_STATUS_OK);
    EXPECT_EQ(words(whole, 700), words(halves, 700));
}

TEST(Mt19937, UnsupportedMethodsLeaveTheStream) {
    auto s = make_stream(ROK_BRNG_MT19937, {9});
    words(s, 10);
    const auto before = image(s);
    const uint64_t ex[1] = {5};
    EXPECT_EQ(rokLeapfrogStream(s.get(), 0, 2), ROK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rokSkipAheadStreamEx(s.get(), 1, ex), ROK_ERROR_NO_SKIPAHEADEX);
    EXPECT_EQ(rokBRngMT19937InitStream(4, s.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(rokBRngMT19937InitStream(-1, s.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(skip(s, 0), ROK_STATUS_OK);
    EXPECT_EQ(image(s), before);
}

TEST(Mt19937, PolynomialJumpWithoutMemoryFailsCleanly) {
    auto s = make_stream(ROK_BRNG_MT19937, {9});
    words(s, 10);
    const auto before = image(s);
    qon_serv_fail_allocations_after(0);
    const int32_t status = skip(s, uint64_t{1} << 40);
    qon_serv_fail_allocations_after(-1);
    EXPECT_EQ(status, ROK_ERROR_MEM);
    EXPECT_EQ(image(s), before);
}
