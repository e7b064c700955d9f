// GF(2) polynomial arithmetic for the jumps of F2-linear generators. Products and squares are
// built from 64 x 64 -> 128-bit carry-less products (PCLMULQDQ). A remainder modulo a sparse
// modulus t^p + sum t^e folds the part above t^p down 64 bits at a time: a slice h of the top
// becomes sum h * t^(e - p) shifted into place, which lands entirely below the slice when
// p - max(e) >= 64, so one pass from the top reduces completely. t^N mod m is formed by
// left-to-right square-and-multiply, where multiplying by t is a one-bit shift.
#include "rng/gf2poly.hpp"

#include <immintrin.h>

#include <cstring>

namespace qon::rng::gf2 {
namespace {

inline __m128i clmul(uint64_t x, uint64_t y) {
    return _mm_clmulepi64_si128(_mm_cvtsi64_si128(static_cast<long long>(x)),
                                _mm_cvtsi64_si128(static_cast<long long>(y)), 0x00);
}

// The 64 bits of x starting at bit position pos (bits past the end read as zero).
inline uint64_t bits_at(const uint64_t *x, size_t nwords, size_t pos) {
    size_t w = pos / 64, s = pos % 64;
    uint64_t lo = w < nwords ? x[w] >> s : 0;
    uint64_t hi = (s != 0 && w + 1 < nwords) ? x[w + 1] << (64 - s) : 0;
    return lo | hi;
}

// x ^= h * t^pos; the caller guarantees the 64 bits fit inside x.
inline void xor_at(uint64_t *x, size_t pos, uint64_t h) {
    size_t w = pos / 64, s = pos % 64;
    x[w] ^= h << s;
    if (s != 0 && (h >> (64 - s)) != 0) x[w + 1] ^= h >> (64 - s);
}

}  // namespace

void mul(const uint64_t *a, size_t na, const uint64_t *b, size_t nb, uint64_t *out) {
    std::memset(out, 0, (na + nb) * sizeof(uint64_t));
    for (size_t i = 0; i < na; ++i) {
        if (a[i] == 0) continue;
        for (size_t j = 0; j < nb; ++j) {
            __m128i p = clmul(a[i], b[j]);
            out[i + j] ^= static_cast<uint64_t>(_mm_cvtsi128_si64(p));
            out[i + j + 1] ^= static_cast<uint64_t>(_mm_extract_epi64(p, 1));
        }
    }
}

void square(const uint64_t *a, size_t na, uint64_t *out) {
    for (size_t i = 0; i < na; ++i) {
        __m128i p = clmul(a[i], a[i]);
        out[2 * i] = static_cast<uint64_t>(_mm_cvtsi128_si64(p));
        out[2 * i + 1] = static_cast<uint64_t>(_mm_extract_epi64(p, 1));
    }
}

}  // namespace qon::rng::gf2

using qon::rng::gf2::SparseModulus;

void rokPolyRem(uint64_t *x, size_t nwords, const SparseModulus &m) {
    const size_t p = static_cast<size_t>(m.degree);
    size_t top = nwords * 64;  // one past the highest bit that may be set
    while (top > p) {
        size_t start = top >= p + 64 ? top - 64 : p;
        size_t width = top - start;
        uint64_t h = qon::rng::gf2::bits_at(x, nwords, start);
        if (width < 64) h &= (uint64_t{1} << width) - 1;
        if (h != 0) {
            qon::rng::gf2::xor_at(x, start, h);  // clears the slice
            for (int k = 0; k < m.nlow; ++k)
                qon::rng::gf2::xor_at(x, start - p + static_cast<size_t>(m.low[k]), h);
        }
        top = start;
    }
}

void rokPolyPowT(const uint64_t *e, size_t ne, const SparseModulus &m, uint64_t *g,
                 uint64_t *work) {
    const size_t nw = (static_cast<size_t>(m.degree) + 63) / 64;
    const uint64_t top_bit = uint64_t{1} << (m.degree % 64);
    const size_t top_word = static_cast<size_t>(m.degree) / 64;
    std::memset(g, 0, nw * sizeof(uint64_t));
    g[0] = 1;
    bool started = false;
    for (size_t wi = ne; wi-- > 0;) {
        for (int b = 63; b >= 0; --b) {
            const bool bit = (e[wi] >> b) & 1;
            if (!started && !bit) continue;
            if (started) {
                qon::rng::gf2::square(g, nw, work);
                rokPolyRem(work, 2 * nw, m);
                std::memcpy(g, work, nw * sizeof(uint64_t));
            }
            started = true;
            if (bit) {  // g *= t
                uint64_t carry = 0;
                for (size_t k = 0; k < nw; ++k) {
                    uint64_t next = g[k] >> 63;
                    g[k] = (g[k] << 1) | carry;
                    carry = next;
                }
                const bool overflow = top_word < nw ? (g[top_word] & top_bit) != 0 : carry != 0;
                if (overflow) {
                    if (top_word < nw) g[top_word] ^= top_bit;
                    for (int k = 0; k < m.nlow; ++k)
                        g[m.low[k] / 64] ^= uint64_t{1} << (m.low[k] % 64);
                }
            }
        }
    }
}

void rok_SkipAheadSWin(void *gen, const uint64_t *g, int gbits, const RokJumpOps &ops, int w,
                       unsigned char *work) {
    const size_t sb = ops.state_bytes;
    const size_t ntab = size_t{1} << w;
    unsigned char *acc = work + ntab * sb;
    auto tab = [&](size_t k) { return work + k * sb; };

    // table[k] = k(F) s, built one power of F at a time; acc walks through F^b s.
    ops.load(acc, gen);
    ops.zero(tab(0));
    for (int b = 0; b < w; ++b) {
        const size_t half = size_t{1} << b;
        for (size_t k = half; k < 2 * half; ++k) {
            ops.copy(tab(k), tab(k - half));
            ops.add(tab(k), acc);
        }
        if (b + 1 < w) ops.step(acc);
    }

    const size_t gwords = (static_cast<size_t>(gbits) + 63) / 64;
    const int nwin = (gbits + w - 1) / w;
    ops.zero(acc);
    for (int j = nwin - 1; j >= 0; --j) {
        if (j != nwin - 1)
            for (int s = 0; s < w; ++s) ops.step(acc);
        const size_t digit = qon::rng::gf2::bits_at(g, gwords, static_cast<size_t>(j) * w) & (ntab - 1);
        if (digit != 0) ops.add(acc, tab(digit));
    }
    ops.store(acc, gen);
}
