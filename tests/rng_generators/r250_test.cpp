// R250 against a plain model of its definition (ring filled by x(k) = s * 69069^(k+1) mod 2^32
// with the column fix, then y = x[i] ^ x[j] one word at a time), whatever the request sizes;
// seeding edge cases; the refused skip-ahead and leapfrog.
#include "gen_util.hpp"

using namespace gentest;

namespace {

struct Model {
    uint32_t x[250];
    int i = 0, j = 103;
    explicit Model(const std::vector<uint32_t> &s) {
        if (s.size() >= 250) {
            for (int k = 0; k < 250; ++k) x[k] = s[k];
            return;
        }
        const uint32_t t = (s.empty() || s[0] == 0) ? 1u : s[0];
        for (int k = 0; k < 250; ++k) {
            uint32_t p = 1;
            for (int e = 0; e <= k; ++e) p *= 69069u;
            x[k] = t * p;
        }
        for (int m = 0; m < 32; ++m) {
            const int k = 3 + 7 * m;
            for (int b = 31; b > 31 - m; --b) x[k] &= ~(1u << b);
            x[k] |= 1u << (31 - m);
        }
    }
    uint32_t next() {
        const uint32_t y = x[i] ^ x[j];
        x[i] = y;
        i = (i + 1) % 250;
        j = (j + 1) % 250;
        return y;
    }
    std::vector<uint32_t> take(int n) {
        std::vector<uint32_t> r(n);
        for (auto &v : r) v = next();
        return r;
    }
};

}  // namespace

TEST(R250, MatchesTheDefinitionForAnyRequestSizes) {
    std::vector<uint32_t> full(250);
    for (uint32_t k = 0; k < 250; ++k) full[k] = k * 0x9E3779B9u;
    for (const auto &seed : std::vector<std::vector<uint32_t>>{{12345}, {0xFFFFFFFF}, full}) {
        const auto expect = Model(seed).take(3000);
        for (const auto &pieces : std::vector<std::vector<int32_t>>{{3000}, {1}, {249, 1}, {250}, {251, 7}, {1000, 260}}) {
            auto s = make_stream(ROK_BRNG_R250, seed);
            EXPECT_EQ(words_in_pieces(s, 3000, pieces), expect) << seed[0] << " " << pieces[0];
        }
    }
}

TEST(R250, SeedingEdgeCases) {
    RokStream *raw = nullptr;
    ASSERT_EQ(rokNewStreamEx(&raw, ROK_BRNG_R250, 0, nullptr), ROK_STATUS_OK);
    StreamPtr none(raw);
    const auto first = words(none, 600);
    EXPECT_EQ(words(make_stream(ROK_BRNG_R250, {0}), 600), first);
    EXPECT_EQ(words(make_stream(ROK_BRNG_R250, {1}), 600), first);
    EXPECT_EQ(words(make_stream(ROK_BRNG_R250, {1, 999, 5}), 600), first);  // only s[0] below 250 words
    std::vector<uint32_t> seed(252);
    for (uint32_t k = 0; k < 252; ++k) seed[k] = 0xABCD0000u + k * 77u;
    auto s = make_stream(ROK_BRNG_R250, seed);
    EXPECT_EQ(words(s, 1)[0], seed[0] ^ seed[103]);
    seed.resize(250);
    EXPECT_EQ(words(make_stream(ROK_BRNG_R250, seed), 1000), Model(seed).take(1000));
}

TEST(R250, BlockAndSingleWordsLeaveTheSameRing) {
    auto block = make_stream(ROK_BRNG_R250, {77});
    auto split = make_stream(ROK_BRNG_R250, {77});
    auto a = words(block, 250);
    auto b = words(split, 249);
    b.push_back(words(split, 1)[0]);
    EXPECT_EQ(a, b);
    EXPECT_EQ(image(block), image(split));
}

TEST(R250, SkipAheadAndLeapfrogAreRefused) {
    auto s = make_stream(ROK_BRNG_R250, {3});
    words(s, 17);
    const auto before = image(s);
    const uint64_t ex[1] = {5};
    EXPECT_EQ(rokSkipAheadStream(s.get(), 10), ROK_ERROR_NO_SKIPAHEAD);
    EXPECT_EQ(rokSkipAheadStreamEx(s.get(), 1, ex), ROK_ERROR_NO_SKIPAHEADEX);
    EXPECT_EQ(rokLeapfrogStream(s.get(), 1, 3), ROK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rokBRngR250InitStream(4, s.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(image(s), before);
}
