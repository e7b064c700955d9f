// Registration of a generator at run time: the validation order, the ids handed out, and a
// small generator of the test's own (a 64-bit affine congruential generator delivering its
// top 32 bits) driven end to end through the registry's distribution-independent paths.
#include "rng_util.hpp"

#include "rng/stream.hpp"

#include <cstring>

using namespace rngtest;

namespace {

constexpr uint64_t kMul = 6364136223846793005ull, kAdd = 1442695040888963407ull;

struct TinyState {
    uint64_t x, mul, add;
};
TinyState *tiny(RokStream *s) { return reinterpret_cast<TinyState *>(reinterpret_cast<char *>(s) + 16); }

// x -> mul^n x + add (mul^(n-1) + ... + 1), by squaring the affine map.
void affine_power(uint64_t n, uint64_t mul, uint64_t add, uint64_t *out_mul, uint64_t *out_add) {
    uint64_t m = 1, c = 0;
    for (; n != 0; n >>= 1) {
        if (n & 1) {
            m *= mul;
            c = c * mul + add;
        }
        add = add * mul + add;
        mul *= mul;
    }
    *out_mul = m;
    *out_add = c;
}

uint32_t tiny_step(TinyState *t) {
    uint32_t out = static_cast<uint32_t>(t->x >> 32);
    t->x = t->x * t->mul + t->add;
    return out;
}

int32_t tiny_init(int32_t method, RokStream *s, int32_t n, const void *params) {
    TinyState *t = tiny(s);
    const auto *w = static_cast<const uint32_t *>(params);
    switch (method) {
    case ROK_INIT_SEED:
        t->x = n <= 0 ? 0 : n == 1 ? w[0] : (static_cast<uint64_t>(w[1]) << 32 | w[0]);
        t->mul = kMul;
        t->add = kAdd;
        return 0;
    case ROK_INIT_LEAPFROG: {
        uint64_t m, c;
        affine_power(w[0], t->mul, t->add, &m, &c);
        t->x = t->x * m + c;
        affine_power(static_cast<uint32_t>(n), t->mul, t->add, &t->mul, &t->add);
        return 0;
    }
    case ROK_INIT_SKIPAHEAD: {
        uint64_t nskip, m, c;
        std::memcpy(&nskip, params, 8);
        affine_power(nskip, t->mul, t->add, &m, &c);
        t->x = t->x * m + c;
        return 0;
    }
    case ROK_INIT_SKIPAHEAD_EX:
        return ROK_ERROR_NO_SKIPAHEADEX;
    default:
        return ROK_ERROR_BAD_METHOD;
    }
}
int32_t tiny_i(RokStream *s, int32_t n, void *r) {
    for (int32_t i = 0; i < n; ++i) static_cast<uint32_t *>(r)[i] = tiny_step(tiny(s));
    return 0;
}
int32_t tiny_d(RokStream *s, int32_t n, double r[], double a, double b) {
    for (int32_t i = 0; i < n; ++i) r[i] = a + (b - a) * 0x1p-32 * tiny_step(tiny(s));
    return 0;
}
int32_t tiny_s(RokStream *s, int32_t n, float r[], float a, float b) {
    for (int32_t i = 0; i < n; ++i) r[i] = a + (b - a) * 0x1p-32f * static_cast<float>(tiny_step(tiny(s)));
    return 0;
}

constexpr BrngProperties kTiny{40, 2, 1, 4, 32, tiny_init, tiny_s, tiny_d, tiny_i};

// The plain sequence of the tiny generator from seed x.
std::vector<uint32_t> tiny_sequence(uint64_t x, int n) {
    std::vector<uint32_t> v(n);
    for (uint32_t &o : v) {
        o = static_cast<uint32_t>(x >> 32);
        x = x * kMul + kAdd;
    }
    return v;
}

}  // namespace

TEST(Register, ValidationOrderFirstFailureWins) {
    const int32_t before = rokGetNumRegBrngs();
    auto with = [](auto change) {
        BrngProperties p = kTiny;
        change(p);
        return rokRegisterBrng(&p);
    };
    EXPECT_EQ(with([](auto &p) { p.stream_state_size = -1, p.word_size = 2, p.num_seeds = 0; }), ROK_ERROR_BAD_STATE_SIZE);
    for (int32_t w : {0, 2, 12, 32, -4})
        EXPECT_EQ(with([w](auto &p) { p.word_size = w, p.num_seeds = 0; }), ROK_ERROR_BAD_WORD_SIZE) << w;
    EXPECT_EQ(with([](auto &p) { p.num_seeds = 0, p.num_bits = 0; }), ROK_ERROR_BAD_NSEEDS);
    EXPECT_EQ(with([](auto &p) { p.num_bits = 0, p.init_stream = nullptr; }), ROK_ERROR_BAD_NBITS);
    EXPECT_EQ(with([](auto &p) { p.d_brng = nullptr; }), ROK_ERROR_NULL_PTR);
    EXPECT_EQ(with([](auto &p) { p.s_brng = nullptr; }), ROK_ERROR_NULL_PTR);
    EXPECT_EQ(with([](auto &p) { p.i_brng = nullptr; }), ROK_ERROR_NULL_PTR);
    EXPECT_EQ(with([](auto &p) { p.init_stream = nullptr; }), ROK_ERROR_NULL_PTR);
    EXPECT_EQ(rokGetNumRegBrngs(), before);  // failures append nothing
}

TEST(Register, RegisteredGeneratorWorksEndToEnd) {
    const int32_t before = rokGetNumRegBrngs();
    const int32_t id = rokRegisterBrng(&kTiny);
    ASSERT_EQ(id, (before + 1) << 20);
    EXPECT_EQ(rokGetNumRegBrngs(), before + 1);
    BrngProperties wide = kTiny;
    wide.word_size = 16;
    const int32_t id2 = rokRegisterBrng(&wide);
    EXPECT_EQ(id2, (before + 2) << 20);
    EXPECT_EQ(rokGetNumRegBrngs(), before + 2);
    EXPECT_EQ(rokIsBrngValid(id + 1), ROK_ERROR_BAD_BRNG);  // one sub-generator

    BrngProperties p{};
    ASSERT_EQ(rokGetBrngProperties(id, &p), ROK_STATUS_OK);
    EXPECT_EQ(std::memcmp(&p, &kTiny, sizeof p), 0);

    const uint64_t seed = 0x123456789ull;
    const std::vector<uint32_t> seq = tiny_sequence(seed, 400);
    auto s = make_stream(id, {static_cast<uint32_t>(seed), static_cast<uint32_t>(seed >> 32)});
    ASSERT_TRUE(s);
    std::vector<uint32_t> w(10);
    ASSERT_EQ(p.i_brng(s.get(), 10, w.data()), ROK_STATUS_OK);
    EXPECT_EQ(w, std::vector<uint32_t>(seq.begin(), seq.begin() + 10));
    double d[5];
    ASSERT_EQ(p.d_brng(s.get(), 5, d, 0.0, 1.0), ROK_STATUS_OK);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(d[i], seq[10 + i] * 0x1p-32);
    float f[5];
    ASSERT_EQ(p.s_brng(s.get(), 5, f, 0.0f, 2.0f), ROK_STATUS_OK);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(f[i], 2.0f * 0x1p-32f * static_cast<float>(seq[15 + i]));

    // Skip-ahead and leapfrog reach the registered entry: skip 30 (to element 50), then take
    // every 4th element from offset 1.
    ASSERT_EQ(rokSkipAheadStream(s.get(), 30), ROK_STATUS_OK);
    ASSERT_EQ(rokLeapfrogStream(s.get(), 1, 4), ROK_STATUS_OK);
    ASSERT_EQ(p.i_brng(s.get(), 10, w.data()), ROK_STATUS_OK);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(w[i], seq[51 + 4 * i]) << i;
    const uint64_t words[1] = {1};
    EXPECT_EQ(rokSkipAheadStreamEx(s.get(), 1, words), ROK_ERROR_NO_SKIPAHEADEX);

    // Copies and state copies use the registered row's sizes.
    RokStream *c = nullptr;
    ASSERT_EQ(rokCopyStream(&c, s.get()), ROK_STATUS_OK);
    StreamPtr copy(c);
    EXPECT_EQ(rokGetStreamSize(copy.get()), 48);
    std::vector<uint32_t> w2(10);
    ASSERT_EQ(p.i_brng(s.get(), 10, w.data()), ROK_STATUS_OK);
    ASSERT_EQ(p.i_brng(copy.get(), 10, w2.data()), ROK_STATUS_OK);
    EXPECT_EQ(w, w2);
}
