// MT19937: the Mersenne Twister of period 2^19937 - 1 (N = 624, M = 397, twist word
// 0x9908B0DF, tempering 11 / 0x9D2C5680 / 0xEFC60000 / 18). Skip-ahead of up to 2,097,151
// runs the recurrence forward. Longer jumps use the characteristic polynomial phi (degree
// 19937, 135 terms): g = t^J mod phi by square-and-multiply with carry-less squaring and the
// sparse remainder, then the state becomes g(F) s for the one-word transition F of the
// 624-word window, applied by windowed Horner over a table of 2^6 combinations of F^i s.
// F ignores the low 31 bits of the window's first word, so the jumped window is placed one
// word behind the next output (index 1) and those bits are never delivered.
#include "rng/brng_entries.hpp"
#include "rng/gf2poly.hpp"
#include "rng/mt.hpp"
#include "rng/mt19937_poly.hpp"

#include <qon/qon_serv.h>

#include <cstring>

namespace qon::rng::mt {
namespace {

struct Mt19937 {
    static constexpr int N = 624, M = 397;
    static constexpr uint32_t kUpper = 0x80000000u, kLower = 0x7FFFFFFFu;
    static constexpr uint32_t kTwist = 0x9908B0DFu, kB = 0x9D2C5680u, kC = 0xEFC60000u;
    struct State {
        uint32_t mt[N];
        int32_t index;
    };
    static uint32_t twist_word(const State *) { return kTwist; }
    static uint32_t temper(uint32_t y, const State *) { return mt::temper<11>(y, kB, kC); }
    static __m256i vtemper(__m256i y, const State *) {
        return mt::vtemper<11>(y, _mm256_set1_epi32(static_cast<int>(kB)), _mm256_set1_epi32(static_cast<int>(kC)));
    }
    static void after_seed(State *, const RokStream *) {}
    static int32_t skip(State *st, const void *params);
};
static_assert(sizeof(Mt19937::State) + kStreamHeaderBytes <= 2520);

using Gen = Family<Mt19937>;
using State = Mt19937::State;

// Largest jump made by running forward; longer ones go through the polynomial.
constexpr uint64_t kForwardLimit = 0x1FFFFF;
constexpr int kWindowBits = 6;
constexpr int kPolyWords = (19937 + 63) / 64;
constexpr gf2::SparseModulus kPhi{19937, 134, rok_mt19937_poly_low};

// Work state of the jump: the window as a ring, head = position of its first word.
struct Ring {
    uint32_t w[Mt19937::N];
    uint32_t head;
};

void ring_load(void *st, const void *gen) {
    Ring *r = static_cast<Ring *>(st);
    std::memcpy(r->w, static_cast<const State *>(gen)->mt, sizeof r->w);
    r->head = 0;
}
void ring_store(const void *st, void *gen) {
    const Ring *r = static_cast<const Ring *>(st);
    State *s = static_cast<State *>(gen);
    const uint32_t h = r->head;
    std::memcpy(s->mt, r->w + h, (Mt19937::N - h) * sizeof(uint32_t));
    std::memcpy(s->mt + (Mt19937::N - h), r->w, h * sizeof(uint32_t));
    s->index = 1;
}
void ring_zero(void *st) { std::memset(st, 0, sizeof(Ring)); }
void ring_copy(void *dst, const void *src) { std::memcpy(dst, src, sizeof(Ring)); }
void ring_add(void *dst, const void *src) {
    Ring *d = static_cast<Ring *>(dst);
    const Ring *s = static_cast<const Ring *>(src);
    uint32_t i = d->head, j = s->head;
    for (int done = 0; done < Mt19937::N;) {
        const int len = std::min({Mt19937::N - done, Mt19937::N - static_cast<int>(i), Mt19937::N - static_cast<int>(j)});
        for (int k = 0; k < len; ++k) d->w[i + k] ^= s->w[j + k];
        done += len;
        i = (i + len) % Mt19937::N;
        j = (j + len) % Mt19937::N;
    }
}
void ring_step(void *st) {
    Ring *r = static_cast<Ring *>(st);
    const uint32_t h = r->head;
    const uint32_t h1 = h + 1 == Mt19937::N ? 0 : h + 1;
    const uint32_t hm = h + Mt19937::M < Mt19937::N ? h + Mt19937::M : h + Mt19937::M - Mt19937::N;
    r->w[h] = Gen::twist(r->w[h], r->w[h1], r->w[hm], Mt19937::kTwist);
    r->head = h1;
}

constexpr RokJumpOps kRingOps{sizeof(Ring), ring_load, ring_store, ring_zero, ring_copy, ring_add, ring_step};

// The window now starts at sequence position p (its first word is x(p)) and the next output is
// x(p + index). Moving the window to start at p + index + count - 1 and setting index 1 puts
// x(p + index + count) next.
int32_t skip_by_polynomial(State *st, uint64_t count) {
    const unsigned __int128 jump = static_cast<unsigned __int128>(count) + static_cast<uint32_t>(st->index) - 1;
    const uint64_t e[2] = {static_cast<uint64_t>(jump), static_cast<uint64_t>(jump >> 64)};
    const size_t poly_bytes = sizeof(uint64_t) * 3 * kPolyWords;
    const size_t table_bytes = ((size_t{1} << kWindowBits) + 1) * sizeof(Ring);
    auto *work = static_cast<unsigned char *>(qon_serv_allocate(poly_bytes + table_bytes, kAlign));
    if (work == nullptr) return ROK_ERROR_MEM;
    uint64_t *g = reinterpret_cast<uint64_t *>(work);
    rokPolyPowT(e, 2, kPhi, g, g + kPolyWords);
    rok_SkipAheadSWin(st, g, kPhi.degree, kRingOps, kWindowBits, work + poly_bytes);
    qon_serv_deallocate(work);
    return ROK_STATUS_OK;
}

}  // namespace

int32_t Mt19937::skip(State *st, const void *params) {
    const uint64_t count = skip_count(params);
    if (count == 0) return ROK_STATUS_OK;
    if (count <= kForwardLimit) {
        Gen::skip_forward(st, count);
        return ROK_STATUS_OK;
    }
    return skip_by_polynomial(st, count);
}

}  // namespace qon::rng::mt

ROK_U32_BRNG_ENTRIES(MT19937, qon::rng::mt::Gen, qon::rng::HalfOpen32)
