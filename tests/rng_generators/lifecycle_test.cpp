// Every generator of this family through the registry: save, load and continue; copy and
// continue; float and double uniforms on [a, b) that follow the raw words; a = b.
#include "gen_util.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace gentest;

namespace {

struct Case {
    const char *name;
    int32_t brng;
    std::vector<uint32_t> seed;
};

const Case kCases[] = {
    {"MT19937", ROK_BRNG_MT19937, {1, 2, 3}},
    {"MT2203_0", ROK_BRNG_MT2203, {4, 5}},
    {"MT2203_4000", ROK_BRNG_MT2203 + 4000, {4, 5}},
    {"Philox", ROK_BRNG_PHILOX4X32X10, {1, 2, 3, 4, 5, 6}},
    {"R250", ROK_BRNG_R250, {99}},
    {"MRG32k3a", ROK_BRNG_MRG32K3A, {1, 2, 3, 4, 5, 6}},
};

class Generators : public ::testing::TestWithParam<Case> {};

}  // namespace

TEST_P(Generators, SaveLoadContinue) {
    auto s = make_stream(GetParam().brng, GetParam().seed);
    words(s, 1003);  // mid-block for every generator
    const auto saved = image(s);
    EXPECT_EQ(image(s), saved);  // saving leaves the stream as it was
    RokStream *raw = nullptr;
    ASSERT_EQ(rokLoadStreamM(&raw, saved.data()), ROK_STATUS_OK);
    StreamPtr loaded(raw);
    EXPECT_EQ(words(loaded, 2000), words(s, 2000));
}

TEST_P(Generators, CopyContinues) {
    auto s = make_stream(GetParam().brng, GetParam().seed);
    words(s, 517);
    auto c = copy_of(s);
    const auto from_copy = words(c, 1500);
    EXPECT_EQ(words(s, 1500), from_copy);
}

TEST_P(Generators, UniformsOnTheInterval) {
    const BrngProperties p = props_of(make_stream(GetParam().brng, GetParam().seed));
    const bool upper_closed = GetParam().brng == ROK_BRNG_MRG32K3A;
    const long double scale = upper_closed ? 1.0L / 4294967087.0L : 1.0L / 4294967296.0L;
    const int n = quick() ? 5000 : 50000;
    for (auto [a, b] : {std::pair{0.0, 1.0}, std::pair{-2.0, 3.5}, std::pair{1e6, 1e6 + 1.0}}) {
        auto s = make_stream(GetParam().brng, GetParam().seed);
        auto c = copy_of(s), cf = copy_of(s);
        std::vector<double> d(n);
        ASSERT_EQ(p.d_brng(s.get(), n, d.data(), a, b), ROK_STATUS_OK);
        std::vector<float> f(n);
        ASSERT_EQ(p.s_brng(cf.get(), n, f.data(), static_cast<float>(a), static_cast<float>(b)), ROK_STATUS_OK);
        const auto u = words(c, n);
        // Two units in the last place of the larger bound, in each precision.
        const double big = std::max(std::fabs(a), std::fabs(b));
        const double tol_d = 2 * (std::nextafter(big, INFINITY) - big);
        const float bigf = static_cast<float>(big);
        const double tol_f = 2.0 * (std::nextafter(bigf, INFINITY) - bigf);
        for (int i = 0; i < n; ++i) {
            const long double exact = a + (static_cast<long double>(b) - a) * u[i] * scale;
            ASSERT_LE(std::fabs(d[i] - static_cast<double>(exact)), tol_d) << i;
            ASSERT_LE(std::fabs(f[i] - static_cast<double>(exact)), tol_f) << i;
            if (upper_closed) {
                ASSERT_LE(d[i], b);
            } else {
                ASSERT_GE(d[i], a);
                ASSERT_LT(d[i], b);
                ASSERT_LT(f[i], static_cast<float>(b));
            }
        }
    }
    auto s = make_stream(GetParam().brng, GetParam().seed);
    std::vector<double> same(33);
    std::vector<float> samef(33);
    ASSERT_EQ(p.d_brng(s.get(), 33, same.data(), 0.25, 0.25), ROK_STATUS_OK);
    ASSERT_EQ(p.s_brng(s.get(), 33, samef.data(), 0.25f, 0.25f), ROK_STATUS_OK);
    for (double v : same) EXPECT_EQ(v, 0.25);
    for (float v : samef) EXPECT_EQ(v, 0.25f);
}

// A loader accepts any state bytes under a valid header; positions and counts that the
// generator itself never produces must still draw and skip inside the state.
TEST_P(Generators, CorruptedStateStillDrawsInBounds) {
    auto s = make_stream(GetParam().brng, GetParam().seed);
    const auto good = image(s);
    uint32_t state_size;
    std::memcpy(&state_size, good.data() + 12, sizeof state_size);
    ASSERT_LE(24 + size_t{state_size}, good.size());
    for (const unsigned char fill : {0xFFu, 0x80u, 0x7Fu, 0x55u}) {
        auto img = good;
        std::memset(img.data() + 24, fill, state_size);
        RokStream *raw = nullptr;
        ASSERT_EQ(rokLoadStreamM(&raw, img.data()), ROK_STATUS_OK) << int{fill};
        StreamPtr loaded(raw);
        EXPECT_EQ(words(loaded, 1500).size(), 1500u);
        const uint64_t count = 12345;
        const int32_t st = rokSkipAheadStream(loaded.get(), count);
        EXPECT_TRUE(st == ROK_STATUS_OK || st == ROK_ERROR_NO_SKIPAHEAD) << st;
        EXPECT_EQ(words(loaded, 7).size(), 7u);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Generators, ::testing::ValuesIn(kCases),
                         [](const auto &info) { return std::string(info.param.name); });
