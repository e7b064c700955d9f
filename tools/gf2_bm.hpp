// Berlekamp-Massey over GF(2), shared by the offline tools that derive generator polynomials.
// Given the first N bits of a linearly recurrent sequence (N at least twice its linear
// complexity L), returns the minimal polynomial in the shift operator,
//   phi(t) = t^L + c_1 t^(L-1) + ... + c_L,  with  sum_j phi_j s_(k+j) = 0 for every k,
// as little-endian 64-bit words. Word-parallel: the discrepancy is the parity of the
// connection polynomial against a window of the reversed sequence. O(N L / 64) word steps.
#ifndef QON_TOOLS_GF2_BM_HPP
#define QON_TOOLS_GF2_BM_HPP

#include <bit>
#include <cstdint>
#include <vector>

namespace qon_tools {

inline bool bit_of(const std::vector<uint64_t> &v, size_t i) { return (v[i / 64] >> (i % 64)) & 1; }

inline void flip_bit(std::vector<uint64_t> &v, size_t i) { v[i / 64] ^= uint64_t{1} << (i % 64); }

// seq: bit k of the sequence at bit k. Returns phi (degree L, L + 1 significant bits).
inline std::vector<uint64_t> berlekamp_massey(const std::vector<uint64_t> &seq, size_t nbits,
                                              int *degree) {
    const size_t words = nbits / 64 + 2;
    std::vector<uint64_t> rev(words, 0);  // rev bit j = s_(nbits-1-j)
    for (size_t k = 0; k < nbits; ++k)
        if (bit_of(seq, k)) flip_bit(rev, nbits - 1 - k);
    auto window = [&](size_t pos) {  // 64 bits of rev from bit pos
        size_t w = pos / 64, s = pos % 64;
        uint64_t lo = w < words ? rev[w] >> s : 0;
        uint64_t hi = (s && w + 1 < words) ? rev[w + 1] << (64 - s) : 0;
        return lo | hi;
    };
    std::vector<uint64_t> c(words, 0), b(words, 0), t;
    c[0] = b[0] = 1;
    size_t L = 0, m = 1;
    for (size_t k = 0; k < nbits; ++k) {
        // d = sum_{i=0..L} c_i s_(k-i): s_(k-i) = rev bit (nbits-1-k+i).
        uint64_t acc = 0;
        const size_t base = nbits - 1 - k;
        for (size_t w = 0; w * 64 <= L; ++w) acc ^= c[w] & window(base + 64 * w);
        if ((std::popcount(acc) & 1) == 0) {
            ++m;
            continue;
        }
        t = c;
        // c ^= x^m b
        const size_t ws = m / 64, s = m % 64;
        for (size_t w = 0; w + ws < words; ++w) {
            c[w + ws] ^= b[w] << s;
            if (s && w + ws + 1 < words) c[w + ws + 1] ^= b[w] >> (64 - s);
        }
        if (2 * L <= k) {
            L = k + 1 - L;
            b = t;
            m = 1;
        } else {
            ++m;
        }
    }
    // phi_j = c_(L-j)
    std::vector<uint64_t> phi(L / 64 + 1, 0);
    for (size_t j = 0; j <= L; ++j)
        if (bit_of(c, L - j)) flip_bit(phi, j);
    *degree = static_cast<int>(L);
    return phi;
}

}  // namespace qon_tools

#endif
