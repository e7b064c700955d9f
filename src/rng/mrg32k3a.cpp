// MRG32k3a: two third-order recurrences x1(k) = 1403580 x1(k-2) - 810728 x1(k-3) mod m1 and
// x2(k) = 527612 x2(k-1) - 1370589 x2(k-3) mod m2 (m1 = 2^32 - 209, m2 = 2^32 - 22853),
// combined as z = x1 - x2, plus m1 when that is not positive: z in [1, m1], period about
// 2^191. Each component keeps its last three values oldest first, so its step is the companion
// matrix A with last row (a3, a2, a1) applied to (x(k-3), x(k-2), x(k-1)).
// The vector path computes four steps of both components per iteration: lane j takes the last
// row of A^(j+1), so every lane reads only the old state. A lane's dot product is reduced with
// 2^32 = c (mod m), c = 2^32 - m: each 64-bit product folds to hi * c + lo < 2^47, their sum
// folds again below 2^33, and two conditional subtractions finish it.
// Skip-ahead multiplies each state by A^N (square-and-multiply, rokiVect3PowMod); the extended
// skip-ahead takes the factors A^(2^i), i < 192, from compile-time tables per modulus and forms
// higher powers by squaring.
#include "rng/brng_entries.hpp"

#include <immintrin.h>

#include <array>
#include <cstring>

namespace qon::rng::mrg {
namespace {

constexpr uint64_t kM1 = 4294967087u, kM2 = 4294944443u;
using Mat = std::array<std::array<uint32_t, 3>, 3>;

constexpr Mat companion(uint64_t m, uint64_t a1, uint64_t a2, uint64_t a3) {
    // x(k) = a1 x(k-1) + a2 x(k-2) + a3 x(k-3), state (x(k-3), x(k-2), x(k-1))
    return Mat{{{0, 1, 0}, {0, 0, 1}, {static_cast<uint32_t>(a3 % m), static_cast<uint32_t>(a2 % m), static_cast<uint32_t>(a1 % m)}}};
}
constexpr Mat kA1 = companion(kM1, 0, 1403580, kM1 - 810728);
constexpr Mat kA2 = companion(kM2, 527612, 0, kM2 - 1370589);

constexpr Mat mat_mul(const Mat &x, const Mat &y, uint64_t m) {
    Mat r{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            unsigned __int128 s = 0;
            for (int k = 0; k < 3; ++k) s += static_cast<unsigned __int128>(x[i][k]) * y[k][j];
            r[i][j] = static_cast<uint32_t>(s % m);
        }
    return r;
}

// A^(2^i) for i = 0 .. 191: three 64-bit count words.
constexpr int kTablePowers = 192;
using PowTable = std::array<Mat, kTablePowers>;
constexpr PowTable pow2_table(const Mat &a, uint64_t m) {
    PowTable t{};
    t[0] = a;
    for (int i = 1; i < kTablePowers; ++i) t[i] = mat_mul(t[i - 1], t[i - 1], m);
    return t;
}

struct State {
    uint32_t x1[3];  // x1(k-3), x1(k-2), x1(k-1)
    uint32_t x2[3];
};
static_assert(sizeof(State) + kStreamHeaderBytes <= 40);

void mat_vec(const Mat &a, uint32_t v[3], uint64_t m) {
    uint32_t r[3];
    for (int i = 0; i < 3; ++i) {
        unsigned __int128 s = 0;
        for (int k = 0; k < 3; ++k) s += static_cast<unsigned __int128>(a[i][k]) * v[k];
        r[i] = static_cast<uint32_t>(s % m);
    }
    std::memcpy(v, r, sizeof r);
}

// Vector-path constants of one component: lane j of row[k] is entry k of the last row of
// A^(j+1).
struct LaneRows {
    uint64_t row[3][4];
};
constexpr LaneRows lane_rows(const Mat &a, uint64_t m) {
    LaneRows l{};
    Mat p = a;
    for (int j = 0; j < 4; ++j) {
        for (int k = 0; k < 3; ++k) l.row[k][j] = p[2][k];
        p = mat_mul(p, a, m);
    }
    return l;
}
constexpr LaneRows kRows1 = lane_rows(kA1, kM1), kRows2 = lane_rows(kA2, kM2);

// x mod m for the 64-bit lanes of x < 2^64: one fold to < 2^47 (c < 2^15).
inline __m256i fold(__m256i x, __m256i c) {
    const __m256i lo = _mm256_and_si256(x, _mm256_set1_epi64x(0xFFFFFFFF));
    return _mm256_add_epi64(_mm256_mul_epu32(_mm256_srli_epi64(x, 32), c), lo);
}
inline __m256i sub_if_ge(__m256i x, __m256i m, __m256i m_minus_1) {
    return _mm256_sub_epi64(x, _mm256_and_si256(_mm256_cmpgt_epi64(x, m_minus_1), m));
}
// Four steps of one component from the broadcast state s0, s1, s2 (oldest first).
inline __m256i four_steps(const LaneRows &rows, uint64_t m, __m256i s0, __m256i s1, __m256i s2) {
    const __m256i c = _mm256_set1_epi64x(static_cast<long long>((uint64_t{1} << 32) - m));
    const __m256i vm = _mm256_set1_epi64x(static_cast<long long>(m)), vm1 = _mm256_set1_epi64x(static_cast<long long>(m - 1));
    auto term = [&](int k, __m256i s) {
        return fold(_mm256_mul_epu32(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(rows.row[k])), s), c);
    };
    __m256i sum = _mm256_add_epi64(_mm256_add_epi64(term(0, s0), term(1, s1)), term(2, s2));
    sum = fold(sum, c);  // < 2^33 < 3m
    return sub_if_ge(sub_if_ge(sum, vm, vm1), vm, vm1);
}

uint32_t step_scalar(State *st) {
    const uint64_t y1 = (1403580u * uint64_t{st->x1[1]} + 3482050076509336u - 810728u * uint64_t{st->x1[0]}) % kM1;
    const uint64_t y2 = (527612u * uint64_t{st->x2[2]} + 5886603609186927u - 1370589u * uint64_t{st->x2[0]}) % kM2;
    st->x1[0] = st->x1[1];
    st->x1[1] = st->x1[2];
    st->x1[2] = static_cast<uint32_t>(y1);
    st->x2[0] = st->x2[1];
    st->x2[1] = st->x2[2];
    st->x2[2] = static_cast<uint32_t>(y2);
    return static_cast<uint32_t>(y1 > y2 ? y1 - y2 : y1 - y2 + kM1);
}

constexpr int kVectorMin = 16;  // requests above 15 values take the vector path

void raw(RokStream *stream, int32_t n, uint32_t *r) {
    State *st = rok_state<State>(stream);
    int32_t k = 0;
    if (n >= kVectorMin) {
        __m256i a0 = _mm256_set1_epi64x(st->x1[0]), a1 = _mm256_set1_epi64x(st->x1[1]), a2 = _mm256_set1_epi64x(st->x1[2]);
        __m256i b0 = _mm256_set1_epi64x(st->x2[0]), b1 = _mm256_set1_epi64x(st->x2[1]), b2 = _mm256_set1_epi64x(st->x2[2]);
        const __m256i m1 = _mm256_set1_epi64x(static_cast<long long>(kM1));
        const __m256i pack = _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7);
        __m256i y1 = a2, y2 = b2;
        for (; k + 4 <= n; k += 4) {
            y1 = four_steps(kRows1, kM1, a0, a1, a2);
            y2 = four_steps(kRows2, kM2, b0, b1, b2);
            __m256i z = _mm256_sub_epi64(y1, y2);
            z = _mm256_add_epi64(z, _mm256_andnot_si256(_mm256_cmpgt_epi64(y1, y2), m1));
            _mm_storeu_si128(reinterpret_cast<__m128i *>(r + k),
                             _mm256_castsi256_si128(_mm256_permutevar8x32_epi32(z, pack)));
            a0 = _mm256_permute4x64_epi64(y1, 0x55);
            a1 = _mm256_permute4x64_epi64(y1, 0xAA);
            a2 = _mm256_permute4x64_epi64(y1, 0xFF);
            b0 = _mm256_permute4x64_epi64(y2, 0x55);
            b1 = _mm256_permute4x64_epi64(y2, 0xAA);
            b2 = _mm256_permute4x64_epi64(y2, 0xFF);
        }
        st->x1[0] = static_cast<uint32_t>(_mm256_extract_epi64(y1, 1));
        st->x1[1] = static_cast<uint32_t>(_mm256_extract_epi64(y1, 2));
        st->x1[2] = static_cast<uint32_t>(_mm256_extract_epi64(y1, 3));
        st->x2[0] = static_cast<uint32_t>(_mm256_extract_epi64(y2, 1));
        st->x2[1] = static_cast<uint32_t>(_mm256_extract_epi64(y2, 2));
        st->x2[2] = static_cast<uint32_t>(_mm256_extract_epi64(y2, 3));
    }
    for (; k < n; ++k) r[k] = step_scalar(st);
}

void seed(State *st, int32_t n, const uint32_t *s) {
    uint32_t w[6] = {1, 1, 1, 1, 1, 1};
    if (n > 0) std::memcpy(w, s, static_cast<size_t>(n < 6 ? n : 6) * sizeof(uint32_t));
    for (int i = 0; i < 3; ++i) {
        st->x1[i] = w[i] >= kM1 ? static_cast<uint32_t>(w[i] - kM1) : w[i];
        st->x2[i] = w[3 + i] >= kM2 ? static_cast<uint32_t>(w[3 + i] - kM2) : w[3 + i];
    }
    if ((st->x1[0] | st->x1[1] | st->x1[2]) == 0) st->x1[0] = 1;
    if ((st->x2[0] | st->x2[1] | st->x2[2]) == 0) st->x2[0] = 1;
}

}  // namespace
}  // namespace qon::rng::mrg

using qon::rng::mrg::Mat;

// A^e mod m by square-and-multiply over the bits of e.
Mat rokiVect3PowMod(const Mat &a, uint64_t e, uint64_t m) {
    Mat r{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, p = a;
    for (; e != 0; e >>= 1) {
        if (e & 1) r = qon::rng::mrg::mat_mul(r, p, m);
        p = qon::rng::mrg::mat_mul(p, p, m);
    }
    return r;
}

// v = A^E v for the count E given as ne 64-bit words, least significant first; factor
// A^(2^i) comes from `table` for i < 192 and from repeated squaring of its last entry beyond.
void rokiVect3PowArrayMod(const qon::rng::mrg::PowTable &table, const uint64_t *e, int32_t ne, uint32_t v[3],
                          uint64_t m) {
    Mat beyond = table[qon::rng::mrg::kTablePowers - 1];
    for (int32_t w = 0; w < ne; ++w)
        for (int b = 0; b < 64; ++b) {
            const int i = 64 * w + b;
            if (i >= qon::rng::mrg::kTablePowers) beyond = qon::rng::mrg::mat_mul(beyond, beyond, m);
            if ((e[w] >> b) & 1) qon::rng::mrg::mat_vec(i < qon::rng::mrg::kTablePowers ? table[i] : beyond, v, m);
        }
}

// The two tables of matrix powers, one per modulus.
void rokiVect3PowArrayMod_M1(const uint64_t *e, int32_t ne, uint32_t v[3]) {
    static constexpr qon::rng::mrg::PowTable kTable = qon::rng::mrg::pow2_table(qon::rng::mrg::kA1, qon::rng::mrg::kM1);
    rokiVect3PowArrayMod(kTable, e, ne, v, qon::rng::mrg::kM1);
}
void rokiVect3PowArrayMod_M2(const uint64_t *e, int32_t ne, uint32_t v[3]) {
    static constexpr qon::rng::mrg::PowTable kTable = qon::rng::mrg::pow2_table(qon::rng::mrg::kA2, qon::rng::mrg::kM2);
    rokiVect3PowArrayMod(kTable, e, ne, v, qon::rng::mrg::kM2);
}

namespace qon::rng::mrg {

// Seeding; skip-ahead by A^N; the extended skip-ahead by the tables of powers.
struct Entry {
    static int32_t init_stream(int32_t method, RokStream *stream, int32_t n, const void *params) {
        State *st = rok_state<State>(stream);
        switch (method) {
        case ROK_INIT_SEED:
            seed(st, n, static_cast<const uint32_t *>(params));
            return ROK_STATUS_OK;
        case ROK_INIT_LEAPFROG:
            return ROK_ERROR_NO_LEAPFROG;
        case ROK_INIT_SKIPAHEAD: {
            const uint64_t count = skip_count(params);
            mat_vec(rokiVect3PowMod(kA1, count, kM1), st->x1, kM1);
            mat_vec(rokiVect3PowMod(kA2, count, kM2), st->x2, kM2);
            return ROK_STATUS_OK;
        }
        case ROK_INIT_SKIPAHEAD_EX: {
            const uint64_t *count = static_cast<const uint64_t *>(params);
            rokiVect3PowArrayMod_M1(count, n, st->x1);
            rokiVect3PowArrayMod_M2(count, n, st->x2);
            return ROK_STATUS_OK;
        }
        default:
            return ROK_ERROR_BAD_METHOD;
        }
    }
    static void raw(RokStream *stream, int32_t n, uint32_t *r) { mrg::raw(stream, n, r); }
};

}  // namespace qon::rng::mrg

ROK_U32_BRNG_ENTRIES(MRG32K3A, qon::rng::mrg::Entry, qon::rng::UpperClosedM1)
