// MT2203: a family of 6,024 Mersenne Twisters of period 2^2203 - 1 (N = 69, M = 34, upper
// mask 0xFFFFFFE0, lower 0x1F), sub-generator k using row k of the parameter table: twist word
// a and tempering masks b and c (y ^= y >> 12; y ^= (y << 7) & b; y ^= (y << 15) & c;
// y ^= y >> 18). Seeding copies the row into the stream. Skip-ahead reads only the low word of
// the count, as a signed integer, and runs the recurrence forward; a low word below 1 leaves
// the stream as it is.
#include "rng/brng_entries.hpp"
#include "rng/mt.hpp"
#include "rng/mt2203_params.hpp"

#include <cstring>

namespace qon::rng::mt {
namespace {

struct Mt2203 {
    static constexpr int N = 69, M = 34;
    static constexpr uint32_t kUpper = 0xFFFFFFE0u, kLower = 0x0000001Fu;
    struct State {
        uint32_t mt[N];
        int32_t index;
        uint32_t a, b, c;
    };
    static uint32_t twist_word(const State *st) { return st->a; }
    static uint32_t temper(uint32_t y, const State *st) { return mt::temper<12>(y, st->b, st->c); }
    static __m256i vtemper(__m256i y, const State *st) {
        return mt::vtemper<12>(y, _mm256_set1_epi32(static_cast<int>(st->b)), _mm256_set1_epi32(static_cast<int>(st->c)));
    }
    static void after_seed(State *st, const RokStream *stream);
    static int32_t skip(State *st, const void *params);
};
static_assert(sizeof(Mt2203::State) + kStreamHeaderBytes <= 312);

using Gen = Family<Mt2203>;
using State = Mt2203::State;

}  // namespace

// The row of the stream's sub-generator.
void Mt2203::after_seed(State *st, const RokStream *stream) {
    const uint32_t *row = rok_mt2203_params[brng_decode(stream->brng).sub];
    st->a = row[0];
    st->b = row[1];
    st->c = row[2];
}

// Only the low word of the count, as a signed integer; below 1 nothing happens.
int32_t Mt2203::skip(State *st, const void *params) {
    int32_t low;
    std::memcpy(&low, params, sizeof low);
    if (low >= 1) Gen::skip_forward(st, static_cast<uint64_t>(low));
    return ROK_STATUS_OK;
}

}  // namespace qon::rng::mt

ROK_U32_BRNG_ENTRIES(MT2203, qon::rng::mt::Gen, qon::rng::HalfOpen32)
