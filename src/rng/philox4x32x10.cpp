// Philox4x32-10: each 128-bit output block is B(counter, key), ten rounds of two 32 x 32 ->
// 64-bit products (multipliers 0xD2511F53, 0xCD9E8D57) mixed with the round key, which grows
// by (0x9E3779B9, 0xBB67AE85) per round. The stream holds the key, the 128-bit counter of the
// next block, and the unread words of the last block; output is the counter-ordered sequence
// of block words, so skip-ahead is an addition to the counter. The vector path computes eight
// blocks per 256-bit register set, two sets interleaved (sixteen blocks, 64 words, per step),
// with the round keys broadcast once per call, and transposes the lanes back to block order.
#include "rng/brng_entries.hpp"

#include <immintrin.h>

#include <cstring>

namespace qon::rng::philox {
namespace {

constexpr uint32_t kMul0 = 0xD2511F53u, kMul1 = 0xCD9E8D57u;
constexpr uint32_t kWeyl0 = 0x9E3779B9u, kWeyl1 = 0xBB67AE85u;
constexpr int kRounds = 10;

struct State {
    uint32_t key[2];
    uint32_t ctr[4];    // c0 least significant
    uint32_t remaining; // unread words at the end of buf
    uint32_t buf[4];
};
static_assert(sizeof(State) + kStreamHeaderBytes <= 64);

void block(const uint32_t ctr[4], const uint32_t key[2], uint32_t out[4]) {
    uint32_t r0 = ctr[0], r1 = ctr[1], r2 = ctr[2], r3 = ctr[3], k0 = key[0], k1 = key[1];
    for (int i = 0; i < kRounds; ++i) {
        const uint64_t p0 = uint64_t{kMul0} * r0, p1 = uint64_t{kMul1} * r2;
        const uint32_t n0 = static_cast<uint32_t>(p1 >> 32) ^ r1 ^ k0;
        const uint32_t n2 = static_cast<uint32_t>(p0 >> 32) ^ r3 ^ k1;
        r1 = static_cast<uint32_t>(p1);
        r3 = static_cast<uint32_t>(p0);
        r0 = n0;
        r2 = n2;
        k0 += kWeyl0;
        k1 += kWeyl1;
    }
    out[0] = r0;
    out[1] = r1;
    out[2] = r2;
    out[3] = r3;
}

// counter += add (128-bit, two 64-bit words of add, carry dropped at 2^128).
void ctr_add(uint32_t c[4], uint64_t add_lo, uint64_t add_hi) {
    uint64_t lo = c[0] | (static_cast<uint64_t>(c[1]) << 32);
    uint64_t hi = c[2] | (static_cast<uint64_t>(c[3]) << 32);
    const uint64_t nlo = lo + add_lo;
    hi += add_hi + (nlo < lo ? 1 : 0);
    c[0] = static_cast<uint32_t>(nlo);
    c[1] = static_cast<uint32_t>(nlo >> 32);
    c[2] = static_cast<uint32_t>(hi);
    c[3] = static_cast<uint32_t>(hi >> 32);
}

struct Lanes {
    __m256i r[4];
};

// hi and lo halves of the eight 32 x 32 products m * x.
inline void mul_hilo(__m256i x, __m256i m, __m256i &hi, __m256i &lo) {
    const __m256i even = _mm256_mul_epu32(x, m);
    const __m256i odd = _mm256_mul_epu32(_mm256_srli_epi64(x, 32), m);
    lo = _mm256_blend_epi32(even, _mm256_slli_epi64(odd, 32), 0xAA);
    hi = _mm256_blend_epi32(_mm256_srli_epi64(even, 32), odd, 0xAA);
}

inline void round(Lanes &s, __m256i k0, __m256i k1) {
    const __m256i m0 = _mm256_set1_epi32(static_cast<int>(kMul0)), m1 = _mm256_set1_epi32(static_cast<int>(kMul1));
    __m256i hi0, lo0, hi1, lo1;
    mul_hilo(s.r[0], m0, hi0, lo0);
    mul_hilo(s.r[2], m1, hi1, lo1);
    s.r[0] = _mm256_xor_si256(_mm256_xor_si256(hi1, s.r[1]), k0);
    s.r[1] = lo1;
    s.r[2] = _mm256_xor_si256(_mm256_xor_si256(hi0, s.r[3]), k1);
    s.r[3] = lo0;
}

// Lanes j = 0..7 of s hold block j; writes the 32 words in block order.
inline void store_blocks(const Lanes &s, uint32_t *out) {
    const __m256i t0 = _mm256_unpacklo_epi32(s.r[0], s.r[1]), t1 = _mm256_unpackhi_epi32(s.r[0], s.r[1]);
    const __m256i t2 = _mm256_unpacklo_epi32(s.r[2], s.r[3]), t3 = _mm256_unpackhi_epi32(s.r[2], s.r[3]);
    const __m256i b04 = _mm256_unpacklo_epi64(t0, t2), b15 = _mm256_unpackhi_epi64(t0, t2);
    const __m256i b26 = _mm256_unpacklo_epi64(t1, t3), b37 = _mm256_unpackhi_epi64(t1, t3);
    __m256i *o = reinterpret_cast<__m256i *>(out);
    _mm256_storeu_si256(o + 0, _mm256_permute2x128_si256(b04, b15, 0x20));
    _mm256_storeu_si256(o + 1, _mm256_permute2x128_si256(b26, b37, 0x20));
    _mm256_storeu_si256(o + 2, _mm256_permute2x128_si256(b04, b15, 0x31));
    _mm256_storeu_si256(o + 3, _mm256_permute2x128_si256(b26, b37, 0x31));
}

// Counters c, c + 1, ..., c + 7 in lanes. When c0 + 7 does not wrap, the upper words are
// common to all lanes; otherwise each lane's counter is formed with its own carry.
inline Lanes counter_lanes(const uint32_t c[4]) {
    Lanes s;
    if (c[0] <= 0xFFFFFFF8u) {
        s.r[0] = _mm256_add_epi32(_mm256_set1_epi32(static_cast<int>(c[0])), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
        for (int w = 1; w < 4; ++w) s.r[w] = _mm256_set1_epi32(static_cast<int>(c[w]));
        return s;
    }
    alignas(32) uint32_t lane[4][8];
    for (int j = 0; j < 8; ++j) {
        uint32_t cj[4] = {c[0], c[1], c[2], c[3]};
        ctr_add(cj, static_cast<uint64_t>(j), 0);
        for (int w = 0; w < 4; ++w) lane[w][j] = cj[w];
    }
    for (int w = 0; w < 4; ++w) s.r[w] = _mm256_load_si256(reinterpret_cast<const __m256i *>(lane[w]));
    return s;
}

// Writes nblocks whole blocks (counters ctr, ctr + 1, ...) to out and advances ctr past them.
void blocks(State *st, uint64_t nblocks, uint32_t *out) {
    __m256i k0[kRounds], k1[kRounds];
    for (int i = 0; i < kRounds; ++i) {
        k0[i] = _mm256_set1_epi32(static_cast<int>(st->key[0] + static_cast<uint32_t>(i) * kWeyl0));
        k1[i] = _mm256_set1_epi32(static_cast<int>(st->key[1] + static_cast<uint32_t>(i) * kWeyl1));
    }
    for (; nblocks >= 16; nblocks -= 16, out += 64) {
        Lanes a = counter_lanes(st->ctr);
        ctr_add(st->ctr, 8, 0);
        Lanes b = counter_lanes(st->ctr);
        ctr_add(st->ctr, 8, 0);
        for (int i = 0; i < kRounds; ++i) {
            round(a, k0[i], k1[i]);
            round(b, k0[i], k1[i]);
        }
        store_blocks(a, out);
        store_blocks(b, out + 32);
    }
    for (; nblocks > 0; --nblocks, out += 4) {
        block(st->ctr, st->key, out);
        ctr_add(st->ctr, 1, 0);
    }
}

// A buffered-word count above 4 cannot arise from the generator itself, only from a corrupted
// image: it is read as an empty buffer.
void check_buffer(State *st) {
    if (st->remaining > 4) st->remaining = 0;
}

void raw(RokStream *stream, int32_t n, uint32_t *out) {
    State *st = rok_state<State>(stream);
    check_buffer(st);
    uint32_t take = st->remaining < static_cast<uint32_t>(n) ? st->remaining : static_cast<uint32_t>(n);
    std::memcpy(out, st->buf + (4 - st->remaining), take * sizeof(uint32_t));
    st->remaining -= take;
    out += take;
    n -= static_cast<int32_t>(take);
    blocks(st, static_cast<uint64_t>(n) / 4, out);
    out += n & ~3;
    if (const int32_t tail = n & 3; tail != 0) {
        block(st->ctr, st->key, st->buf);
        ctr_add(st->ctr, 1, 0);
        std::memcpy(out, st->buf, static_cast<size_t>(tail) * sizeof(uint32_t));
        st->remaining = 4 - static_cast<uint32_t>(tail);
    }
}

// Skip of a count of up to 192 bits (three words, least significant first): the buffered
// words first, then whole blocks added to the counter, then the block holding the next word.
void skip(State *st, const uint64_t count[3]) {
    check_buffer(st);
    if (count[1] == 0 && count[2] == 0 && count[0] <= st->remaining) {
        st->remaining -= static_cast<uint32_t>(count[0]);
        return;
    }
    // q = count - remaining - 1, with the borrow carried through the three words.
    uint64_t q[3] = {count[0], count[1], count[2]};
    const uint64_t sub = uint64_t{st->remaining} + 1;
    const uint64_t q0 = q[0] - sub;
    uint64_t borrow = q0 > q[0] ? 1 : 0;
    q[0] = q0;
    for (int w = 1; w < 3; ++w) {
        const uint64_t qw = q[w] - borrow;
        borrow = (borrow != 0 && q[w] == 0) ? 1 : 0;
        q[w] = qw;
    }
    const uint32_t within = static_cast<uint32_t>(q[0] & 3);
    // q >> 2 modulo 2^128: the counter wraps there.
    const uint64_t blk_lo = (q[0] >> 2) | (q[1] << 62);
    const uint64_t blk_hi = (q[1] >> 2) | (q[2] << 62);
    ctr_add(st->ctr, blk_lo, blk_hi);
    block(st->ctr, st->key, st->buf);
    ctr_add(st->ctr, 1, 0);
    st->remaining = 3 - within;
}

// Seeding (at most six words: key, then counter), skip-ahead and the 192-bit skip-ahead.
struct Entry {
    static int32_t init_stream(int32_t method, RokStream *stream, int32_t n, const void *params) {
        State *st = rok_state<State>(stream);
        switch (method) {
        case ROK_INIT_SEED: {
            uint32_t s[6] = {};
            if (n > 0) std::memcpy(s, params, static_cast<size_t>(n < 6 ? n : 6) * sizeof(uint32_t));
            std::memcpy(st->key, s, sizeof st->key);
            std::memcpy(st->ctr, s + 2, sizeof st->ctr);
            st->remaining = 0;
            std::memset(st->buf, 0, sizeof st->buf);
            return ROK_STATUS_OK;
        }
        case ROK_INIT_LEAPFROG:
            return ROK_ERROR_NO_LEAPFROG;
        case ROK_INIT_SKIPAHEAD: {
            const uint64_t count[3] = {skip_count(params), 0, 0};
            if (count[0] != 0) skip(st, count);
            return ROK_STATUS_OK;
        }
        case ROK_INIT_SKIPAHEAD_EX: {
            uint64_t count[3] = {};
            if (n > 0) std::memcpy(count, params, static_cast<size_t>(n < 3 ? n : 3) * sizeof(uint64_t));
            if ((count[0] | count[1] | count[2]) != 0) skip(st, count);
            return ROK_STATUS_OK;
        }
        default:
            return ROK_ERROR_BAD_METHOD;
        }
    }
    static void raw(RokStream *stream, int32_t n, uint32_t *out) { philox::raw(stream, n, out); }
};

}  // namespace
}  // namespace qon::rng::philox

ROK_U32_BRNG_ENTRIES(PHILOX4X32X10, qon::rng::philox::Entry, qon::rng::HalfOpen32)
