// The MT2203 family: row k holds (a, b, c) of sub-generator k, a the twist word, b and c the
// tempering masks (generated data, see src/rng/mt2203_params.cpp).
#ifndef QON_RNG_MT2203_PARAMS_HPP
#define QON_RNG_MT2203_PARAMS_HPP

#include <cstdint>

inline constexpr int kRokMt2203Rows = 6024;
extern const uint32_t rok_mt2203_params[kRokMt2203Rows][3];

#endif
