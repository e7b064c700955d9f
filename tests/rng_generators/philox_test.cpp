// Philox4x32-10 against Random123's implementation (known answers for zero, all-ones and
// pi-digit keys and counters), buffering across requests, the counter carry, and skip-ahead
// (64-bit and 192-bit counts) against generate-and-discard and against direct counter
// arithmetic.
#include "gen_util.hpp"

#include <Random123/philox.h>

using namespace gentest;

namespace {

using u128 = unsigned __int128;

// Words of the stream with key k and first counter c, from Random123, counter arithmetic
// modulo 2^128 done here.
std::vector<uint32_t> reference(const uint32_t k[2], u128 c, int nwords, uint64_t first_word = 0) {
    std::vector<uint32_t> out;
    philox4x32_key_t key = {{k[0], k[1]}};
    c += static_cast<u128>(first_word / 4);
    for (uint64_t pos = first_word % 4; static_cast<int>(out.size()) < nwords; pos = 0, ++c) {
        philox4x32_ctr_t ctr = {{static_cast<uint32_t>(c), static_cast<uint32_t>(c >> 32),
                                 static_cast<uint32_t>(c >> 64), static_cast<uint32_t>(c >> 96)}};
        philox4x32_ctr_t r = philox4x32_R(10, ctr, key);
        for (uint64_t i = pos; i < 4 && static_cast<int>(out.size()) < nwords; ++i) out.push_back(r.v[i]);
    }
    return out;
}

u128 counter_of(const std::vector<uint32_t> &s) {
    u128 c = 0;
    for (int i = 5; i >= 2; --i) c = (c << 32) | (i < static_cast<int>(s.size()) ? s[i] : 0);
    return c;
}

StreamPtr philox(const std::vector<uint32_t> &seed) { return make_stream(ROK_BRNG_PHILOX4X32X10, seed); }

const std::vector<std::vector<uint32_t>> kSeeds = {
    {0, 0, 0, 0, 0, 0},
    {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
    {0xA4093822, 0x299F31D0, 0x243F6A88, 0x85A308D3, 0x13198A2E, 0x03707344},
    {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFF0, 0xFFFFFFFF, 0xFFFFFFFF, 0},  // carries inside the vector path
};

}  // namespace

TEST(Philox, MatchesRandom123) {
    for (const auto &seed : kSeeds) {
        auto s = philox(seed);
        EXPECT_EQ(words(s, 1001), reference(seed.data(), counter_of(seed), 1001)) << std::hex << seed[0];
    }
}

TEST(Philox, RequestSizesDoNotChangeTheSequence) {
    const auto &seed = kSeeds[2];
    const auto whole = reference(seed.data(), counter_of(seed), 700);
    for (const auto &pieces : std::vector<std::vector<int32_t>>{{1}, {3}, {5, 2}, {63}, {64, 1}, {65, 66, 7}}) {
        auto s = philox(seed);
        EXPECT_EQ(words_in_pieces(s, 700, pieces), whole) << pieces[0];
    }
}

TEST(Philox, SeedingReadsAtMostSixWords) {
    auto six = philox({1, 2, 3, 4, 5, 6});
    auto more = philox({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    EXPECT_EQ(words(six, 50), words(more, 50));
    auto two = philox({7, 8});
    const uint32_t key[2] = {7, 8};
    EXPECT_EQ(words(two, 50), reference(key, 0, 50));
    RokStream *raw = nullptr;
    ASSERT_EQ(rokNewStreamEx(&raw, ROK_BRNG_PHILOX4X32X10, 0, nullptr), ROK_STATUS_OK);
    StreamPtr none(raw);
    const uint32_t zero[2] = {0, 0};
    EXPECT_EQ(words(none, 50), reference(zero, 0, 50));
}

TEST(Philox, CountersDifferingByKShiftTheOutputByFourK) {
    auto a = philox({11, 22, 100, 0, 0, 0});
    auto b = philox({11, 22, 107, 0, 0, 0});
    auto wa = words(a, 200);
    auto wb = words(b, 200 - 28);
    EXPECT_EQ(std::vector<uint32_t>(wa.begin() + 28, wa.end()), wb);
}

TEST(Philox, CounterCarriesThroughAllWords) {
    const std::vector<uint32_t> seed = {5, 6, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0};
    auto s = philox(seed);
    words(s, 4);
    EXPECT_EQ(words(s, 4), reference(seed.data(), u128{1} << 96, 4));
}

TEST(Philox, SkipAheadEqualsGenerateAndDiscard) {
    for (int drawn : {0, 1, 2, 3, 4, 37}) {
        for (uint64_t n : {0ull, 1ull, 2ull, 3ull, 4ull, 5ull, 7ull, 8ull, 64ull, 65ull, 1000003ull}) {
            auto ref = philox(kSeeds[2]);
            words(ref, drawn);
            auto jumped = copy_of(ref);
            ASSERT_EQ(rokSkipAheadStream(jumped.get(), n), ROK_STATUS_OK);
            discard(ref, n);
            EXPECT_EQ(words(jumped, 40), words(ref, 40)) << "drawn " << drawn << " skip " << n;
        }
    }
}

TEST(Philox, ExtendedSkipAheadCountsUpTo192Bits) {
    const auto &seed = kSeeds[2];
    const u128 c0 = counter_of(seed);
    struct Case {
        int drawn;
        std::vector<uint64_t> count;
    };
    const Case cases[] = {{0, {5}}, {3, {2}}, {2, {0, 1}}, {1, {0x123456789ull, 0xFEDCBA9876543210ull}},
                          {0, {7, 3, 0x8000000000000001ull}}, {3, {0xFFFFFFFFFFFFFFFFull, 0xFFFFFFFFFFFFFFFFull, 3}}};
    for (const Case &c : cases) {
        auto s = philox(seed);
        words(s, c.drawn);
        ASSERT_EQ(rokSkipAheadStreamEx(s.get(), static_cast<int32_t>(c.count.size()), c.count.data()), ROK_STATUS_OK);
        // Word position drawn + count, modulo 2^130 words (the counter wraps at 2^128 blocks).
        const u128 low = static_cast<u128>(c.count[0]) | (c.count.size() > 1 ? static_cast<u128>(c.count[1]) << 64 : 0);
        const u128 pos = low + static_cast<u128>(c.drawn);
        const u128 carry = pos < low ? 1 : 0;
        const uint64_t top = c.count.size() > 2 ? c.count[2] + static_cast<uint64_t>(carry) : static_cast<uint64_t>(carry);
        const u128 blocks = (pos >> 2) | (static_cast<u128>(top) << 126);
        EXPECT_EQ(words(s, 9), reference(seed.data(), c0 + blocks, 9, static_cast<uint64_t>(pos & 3)))
            << c.count[0];
    }
    // One word of count is the plain skip; a zero count changes nothing, buffered words included.
    auto plain = philox(seed), ex = philox(seed);
    words(plain, 1);
    words(ex, 1);
    const uint64_t n[3] = {1000001, 0, 0};
    ASSERT_EQ(rokSkipAheadStream(plain.get(), n[0]), ROK_STATUS_OK);
    ASSERT_EQ(rokSkipAheadStreamEx(ex.get(), 3, n), ROK_STATUS_OK);
    EXPECT_EQ(words(plain, 10), words(ex, 10));
    const auto before = image(ex);
    const uint64_t zero[3] = {0, 0, 0};
    EXPECT_EQ(rokSkipAheadStreamEx(ex.get(), 3, zero), ROK_STATUS_OK);
    EXPECT_EQ(rokSkipAheadStreamEx(ex.get(), 0, zero), ROK_STATUS_OK);
    EXPECT_EQ(image(ex), before);
    EXPECT_EQ(rokLeapfrogStream(ex.get(), 0, 2), ROK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rokBRngPHILOX4X32X10InitStream(4, ex.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(image(ex), before);
}
