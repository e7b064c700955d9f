// Polynomials over GF(2) held as little-endian arrays of 64-bit words (bit k of word k/64 is the
// coefficient of t^k), and the jump of an F2-linear generator by a polynomial in its transition.
// Products use carry-less multiplication (PCLMULQDQ); reduction modulo a sparse polynomial works
// 64 bits at a time from the top. The routines are exact: GF(2) arithmetic has no rounding.
#ifndef QON_RNG_GF2POLY_HPP
#define QON_RNG_GF2POLY_HPP

#include <cstddef>
#include <cstdint>

namespace qon::rng::gf2 {

// out[0 .. na+nb) = a * b. out must not overlap a or b.
void mul(const uint64_t *a, size_t na, const uint64_t *b, size_t nb, uint64_t *out);
// out[0 .. 2na) = a^2 (spreads the bits: squaring is linear over GF(2)). out may not overlap a.
void square(const uint64_t *a, size_t na, uint64_t *out);

// A sparse modulus t^degree + sum of t^low[k]: `low` lists the exponents below the degree, in
// decreasing order. Reduction needs degree - low[0] >= 64 so that one 64-bit slice of the top
// folds entirely below itself.
struct SparseModulus {
    int degree;
    int nlow;
    const int32_t *low;
};

}  // namespace qon::rng::gf2

// Reduces x (nwords words) modulo m in place; afterwards only bits below m.degree may be set.
void rokPolyRem(uint64_t *x, size_t nwords, const qon::rng::gf2::SparseModulus &m);

// g = t^e mod m for a multi-word exponent e (ne words, least significant first). g has room for
// ceil(m.degree / 64) words; work has room for 2 * ceil(m.degree / 64) words.
void rokPolyPowT(const uint64_t *e, size_t ne, const qon::rng::gf2::SparseModulus &m, uint64_t *g,
                 uint64_t *work);

// The six routines a generator gives the windowed jump. A work state is an opaque block of
// `state_bytes` bytes.
struct RokJumpOps {
    size_t state_bytes;
    void (*load)(void *st, const void *gen);           // the generator's state into st
    void (*store)(const void *st, void *gen);          // st back into the generator
    void (*zero)(void *st);                            // st = 0
    void (*copy)(void *dst, const void *src);          // dst = src
    void (*add)(void *dst, const void *src);           // dst ^= src
    void (*step)(void *st);                            // st = transition(st)
};

// Replaces the generator's state s by g(F) s, F its transition, g of degree < gbits (gbits > 0).
// The 2^w states w(F) s for the w-bit polynomials w are tabulated, then Horner's rule runs w
// coefficients at a time: acc = F^w acc + table[next w coefficients]. work must hold
// (2^w + 1) * state_bytes bytes. Zero coefficient windows cost only the w steps.
void rok_SkipAheadSWin(void *gen, const uint64_t *g, int gbits, const RokJumpOps &ops, int w,
                       unsigned char *work);

#endif
