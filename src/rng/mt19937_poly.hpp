// The characteristic polynomial of the MT19937 transition, t^19937 + sum t^e, as the exponents
// e in decreasing order (generated data, see src/rng/mt19937_poly.cpp).
#ifndef QON_RNG_MT19937_POLY_HPP
#define QON_RNG_MT19937_POLY_HPP

#include <cstdint>

extern const int32_t rok_mt19937_poly_low[134];

#endif
