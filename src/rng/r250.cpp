// R250: the generalised feedback shift register y(t) = y(t - 250) ^ y(t - 147) over 32-bit
// words (period 2^250 - 1 per bit column once the columns are independent). The ring holds the
// last 250 words; i is the oldest, j = i + 103 (mod 250). Requests of 250 words or more are
// generated straight into the caller's array: 147 words from the ring alone, 103 from the ring
// and the new words, then r[k] = r[k - 250] ^ r[k - 147] eight lanes at a time (the nearest
// source is 147 words back, so a 256-bit step never reads its own output); the last 250 words
// become the ring. Shorter requests run one word at a time on the ring. Seeding with fewer
// than 250 words fills the ring from x(k) = s * 69069^(k+1) mod 2^32 and then makes the 32 bit
// columns independent by setting bit 31 - m of word 3 + 7m and clearing the bits above it.
#include "rng/brng_entries.hpp"

#include <immintrin.h>

#include <cstring>

namespace qon::rng::r250 {
namespace {

constexpr int kLen = 250, kGap = 103, kLag = 147;  // kLag = kLen - kGap

struct State {
    uint32_t x[kLen];
    uint32_t i, j;
};
static_assert(sizeof(State) + kStreamHeaderBytes <= 1024);

void seed(State *st, int32_t n, const uint32_t *s) {
    if (n >= kLen) {
        std::memcpy(st->x, s, sizeof st->x);
    } else {
        uint32_t x = (n < 1 || s[0] == 0) ? 1u : s[0];
        for (int k = 0; k < kLen; ++k) st->x[k] = x *= 69069u;
        for (int m = 0; m < 32; ++m) {
            const uint32_t bit = 0x80000000u >> m;
            uint32_t &w = st->x[3 + 7 * m];
            w = (w & (bit - 1)) | bit;
        }
    }
    st->i = 0;
    st->j = kGap;
}

// Ring positions of a state as loaded from an image are not trusted: they are reduced into
// the ring before use.
void words_from_ring(State *st, int32_t n, uint32_t *r) {
    uint32_t i = st->i % kLen, j = st->j % kLen;
    for (int32_t k = 0; k < n; ++k) {
        const uint32_t y = st->x[i] ^ st->x[j];
        st->x[i] = y;
        r[k] = y;
        i = i + 1 == kLen ? 0 : i + 1;
        j = j + 1 == kLen ? 0 : j + 1;
    }
    st->i = i;
    st->j = j;
}

void block(State *st, int32_t n, uint32_t *r) {
    uint32_t i = st->i % kLen, j = st->j % kLen;
    for (int k = 0; k < kLag; ++k) {
        r[k] = st->x[i] ^ st->x[j];
        i = i + 1 == kLen ? 0 : i + 1;
        j = j + 1 == kLen ? 0 : j + 1;
    }
    for (int k = kLag; k < kLen; ++k) {
        r[k] = st->x[i] ^ r[k - kLag];
        i = i + 1 == kLen ? 0 : i + 1;
    }
    int32_t k = kLen;
    for (; k + 8 <= n; k += 8) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(r + k - kLen));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(r + k - kLag));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(r + k), _mm256_xor_si256(a, b));
    }
    for (; k < n; ++k) r[k] = r[k - kLen] ^ r[k - kLag];
    std::memcpy(st->x, r + (n - kLen), sizeof st->x);
    st->i = 0;
    st->j = kGap;
}

// Seeding only: neither skip-ahead nor leapfrog.
struct Entry {
    static int32_t init_stream(int32_t method, RokStream *stream, int32_t n, const void *params) {
        switch (method) {
        case ROK_INIT_SEED:
            seed(rok_state<State>(stream), n, static_cast<const uint32_t *>(params));
            return ROK_STATUS_OK;
        case ROK_INIT_LEAPFROG:
            return ROK_ERROR_NO_LEAPFROG;
        case ROK_INIT_SKIPAHEAD:
            return ROK_ERROR_NO_SKIPAHEAD;
        case ROK_INIT_SKIPAHEAD_EX:
            return ROK_ERROR_NO_SKIPAHEADEX;
        default:
            return ROK_ERROR_BAD_METHOD;
        }
    }
    static void raw(RokStream *stream, int32_t n, uint32_t *r) {
        State *st = rok_state<State>(stream);
        if (n >= kLen)
            block(st, n, r);
        else
            words_from_ring(st, n, r);
    }
};

}  // namespace
}  // namespace qon::rng::r250

ROK_U32_BRNG_ENTRIES(R250, qon::rng::r250::Entry, qon::rng::HalfOpen32)
