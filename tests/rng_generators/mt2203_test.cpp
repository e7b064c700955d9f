// MT2203: the parameter table's stated properties, the full period of sampled rows checked by
// an independent method (Berlekamp-Massey over the stream's own output, then the test
// t^(2^2203) = t modulo the minimal polynomial, which for the prime degree 2203 with
// 2^2203 - 1 prime means primitive), and the low-word skip rule.
#include "gen_util.hpp"

#include "rng/mt2203_params.hpp"

#include <random>
#include <set>

using namespace gentest;

namespace {

constexpr int kP = 2203;
constexpr int kW = kP / 64 + 1;  // words of a polynomial of degree <= 2203
using Poly = std::vector<uint64_t>;

bool bit(const Poly &p, int i) { return (p[i / 64] >> (i % 64)) & 1; }
void flip(Poly &p, int i) { p[i / 64] ^= uint64_t{1} << (i % 64); }

// Berlekamp-Massey, one bit at a time; returns the connection polynomial and its length.
Poly minimal_connection(const std::vector<int> &s, int *length) {
    const int n = static_cast<int>(s.size());
    Poly c(n / 64 + 2, 0), b(n / 64 + 2, 0);
    flip(c, 0);
    flip(b, 0);
    int L = 0, m = 1;
    for (int k = 0; k < n; ++k) {
        int d = s[k];
        for (int i = 1; i <= L; ++i) d ^= bit(c, i) & s[k - i];
        if (!d) {
            ++m;
            continue;
        }
        Poly t = c;
        for (int i = 0; i + m < static_cast<int>(c.size()) * 64; ++i)
            if (bit(b, i)) flip(c, i + m);
        if (2 * L <= k) {
            L = k + 1 - L;
            b = t;
            m = 1;
        } else {
            ++m;
        }
    }
    *length = L;
    return c;
}

// x^2 mod f for deg f = 2203, bit by bit.
Poly square_mod(const Poly &x, const Poly &f) {
    Poly z(2 * kW + 1, 0);
    for (int i = 0; i < kP; ++i)
        if (bit(x, i)) flip(z, 2 * i);
    for (int i = 2 * kP - 2; i >= kP; --i) {
        if (!bit(z, i)) continue;
        const int ws = (i - kP) / 64, bs = (i - kP) % 64;  // z ^= f * t^(i - p)
        for (int w = 0; w < kW; ++w) {
            z[w + ws] ^= f[w] << bs;
            if (bs) z[w + ws + 1] ^= f[w] >> (64 - bs);
        }
    }
    z.resize(kW);
    return z;
}

bool has_full_period(uint32_t sub) {
    auto s = make_stream(ROK_BRNG_MT2203 + static_cast<int32_t>(sub), {sub, 7});
    const auto w = words(s, 2 * kP + 32);
    std::vector<int> bits(w.size());
    for (size_t k = 0; k < w.size(); ++k) bits[k] = static_cast<int>(w[k] >> 31);
    int L = 0;
    const Poly c = minimal_connection(bits, &L);
    if (L != kP) return false;
    Poly f(kW, 0);  // f(t) = t^L c(1/t)
    for (int j = 0; j <= kP; ++j)
        if (bit(c, kP - j)) flip(f, j);
    Poly x(kW, 0);
    flip(x, 1);
    for (int i = 0; i < kP; ++i) x = square_mod(x, f);
    Poly t(kW, 0);
    flip(t, 1);
    return x == t;
}

}  // namespace

TEST(Mt2203Table, RowsHaveTheStatedForm) {
    const uint32_t first[3][3] = {{0xAF81055F, 0xDD7EEF80, 0xEFD78000},
                                  {0x832604E1, 0x66AD7F80, 0xEBD58000},
                                  {0x92F70739, 0x656D7780, 0xEFC50000}};
    for (int r = 0; r < 3; ++r)
        for (int k = 0; k < 3; ++k) EXPECT_EQ(rok_mt2203_params[r][k], first[r][k]);
    std::set<uint32_t> twist_words;
    for (int r = 0; r < kRokMt2203Rows; ++r) {
        const uint32_t *row = rok_mt2203_params[r];
        EXPECT_TRUE(row[0] & 0x80000000u) << r;
        EXPECT_EQ(row[1] & 0x7Fu, 0u) << r;
        EXPECT_EQ(row[2] & 0x7FFFu, 0u) << r;
        twist_words.insert(row[0]);
    }
    EXPECT_EQ(twist_words.size(), static_cast<size_t>(kRokMt2203Rows));
}

TEST(Mt2203Table, SampledRowsHaveFullPeriod) {
    std::mt19937 pick(20261122);
    std::vector<uint32_t> rows = {0, kRokMt2203Rows - 1};
    for (int k = 0; k < (quick() ? 2 : 6); ++k) rows.push_back(pick() % kRokMt2203Rows);
    for (uint32_t r : rows) EXPECT_TRUE(has_full_period(r)) << "row " << r;
}

TEST(Mt2203, SubGeneratorsUseTheirOwnRows) {
    auto a = make_stream(ROK_BRNG_MT2203, {42});
    auto b = make_stream(ROK_BRNG_MT2203 + 6023, {42});
    EXPECT_NE(words(a, 100), words(b, 100));
    RokStream *bad = nullptr;
    EXPECT_EQ(rokNewStreamEx(&bad, ROK_BRNG_MT2203 + 6024, 1, std::vector<uint32_t>{42}.data()), ROK_ERROR_BAD_BRNG);
    rokDeleteStream(&bad);
}

TEST(Mt2203, RequestSizesDoNotChangeTheSequence) {
    const auto whole = words(make_stream(ROK_BRNG_MT2203 + 5, {1, 2, 3}), 500);
    for (const auto &pieces : std::vector<std::vector<int32_t>>{{1}, {68}, {69}, {70, 3}, {8, 9}}) {
        auto s = make_stream(ROK_BRNG_MT2203 + 5, {1, 2, 3});
        EXPECT_EQ(words_in_pieces(s, 500, pieces), whole) << pieces[0];
    }
}

TEST(Mt2203, SkipAheadReadsOnlyTheLowWordAsSigned) {
    for (uint64_t n : {uint64_t{1}, uint64_t{68}, uint64_t{69}, uint64_t{70}, uint64_t{1000}, uint64_t{123457}}) {
        auto ref = make_stream(ROK_BRNG_MT2203 + 77, {5});
        words(ref, 3);
        auto jumped = copy_of(ref), high = copy_of(ref);
        ASSERT_EQ(rokSkipAheadStream(jumped.get(), n), ROK_STATUS_OK);
        ASSERT_EQ(rokSkipAheadStream(high.get(), n | (uint64_t{0xABC} << 32)), ROK_STATUS_OK);
        discard(ref, n);
        const auto expect = words(ref, 200);
        EXPECT_EQ(words(jumped, 200), expect) << n;
        EXPECT_EQ(words(high, 200), expect) << n;
    }
    auto s = make_stream(ROK_BRNG_MT2203 + 77, {5});
    words(s, 3);
    const auto before = image(s);
    for (uint64_t n : {uint64_t{0}, uint64_t{1} << 32, uint64_t{0x80000000}, uint64_t{0xFFFFFFFF}})
        EXPECT_EQ(rokSkipAheadStream(s.get(), n), ROK_STATUS_OK);
    EXPECT_EQ(image(s), before);
    const uint64_t ex[1] = {5};
    EXPECT_EQ(rokLeapfrogStream(s.get(), 0, 2), ROK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rokSkipAheadStreamEx(s.get(), 1, ex), ROK_ERROR_NO_SKIPAHEADEX);
    EXPECT_EQ(rokBRngMT2203InitStream(9, s.get(), 0, nullptr), ROK_ERROR_BAD_METHOD);
    EXPECT_EQ(image(s), before);
}
