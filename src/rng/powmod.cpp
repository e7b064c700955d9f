// Square-and-multiply modular powers, written once over the modular product: right-to-left
// over the exponent's bits, at most 64 squarings and 64 products, exact in 64-bit integers.
#include "rng/powmod.hpp"

namespace {

template <class Word, class MulMod>
Word pow_by_squaring(Word base, uint64_t e, Word one, MulMod mul) {
    Word result = one;
    while (e != 0) {
        if (e & 1) result = mul(result, base);
        base = mul(base, base);
        e >>= 1;
    }
    return result;
}

}  // namespace

extern "C" {

uint32_t rokiPowMod2P31M1(uint32_t a, uint64_t e) {
    return pow_by_squaring<uint32_t>(a, e, 1u, qon::rng::mulmod_m31);
}

uint64_t rokiPowMod2P59(uint64_t a, uint64_t e) {
    return pow_by_squaring<uint64_t>(a & qon::rng::kMask59, e, 1u,
                                     [](uint64_t x, uint64_t y) { return (x * y) & qon::rng::kMask59; });
}

uint32_t rokiPowMod(uint32_t a, uint64_t e, uint32_t m) {
    return pow_by_squaring<uint32_t>(a % m, e, 1u % m, [m](uint32_t x, uint32_t y) {
        return static_cast<uint32_t>(static_cast<uint64_t>(x) * y % m);
    });
}

}  // extern "C"
