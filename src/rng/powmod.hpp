// Modular powers for the congruential generators' leapfrog and skip-ahead, by square-and-
// multiply over the bits of a 64-bit exponent. a^0 is 1 in every modulus.
#pragma once

#include <cstdint>

namespace qon::rng {

inline constexpr uint32_t kM31 = 0x7FFFFFFFu;                // 2^31 - 1
inline constexpr uint64_t kMask59 = 0x07FFFFFFFFFFFFFFull;   // 2^59 - 1

// a * b mod 2^31 - 1 for a, b < 2^31 - 1 (the 62-bit product folded once: 2^31 = 1).
inline constexpr uint32_t mulmod_m31(uint32_t a, uint32_t b) {
    uint64_t p = static_cast<uint64_t>(a) * b;
    uint32_t y = static_cast<uint32_t>(p & kM31) + static_cast<uint32_t>(p >> 31);
    return y >= kM31 ? y - kM31 : y;
}

}  // namespace qon::rng

extern "C" {
// a^e mod (2^31 - 1); a < 2^31 - 1.
uint32_t rokiPowMod2P31M1(uint32_t a, uint64_t e);
// a^e mod 2^59.
uint64_t rokiPowMod2P59(uint64_t a, uint64_t e);
// a^e mod m for any 32-bit modulus m > 0 (products reduced by a remainder).
uint32_t rokiPowMod(uint32_t a, uint64_t e, uint32_t m);
}
