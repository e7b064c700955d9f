// The four registry entry points of a generator with 32-bit raw words, made from one type Gen
// with static init_stream(method, stream, n, params) and raw(stream, n, out): the uniforms
// come from u32_uniform over Gen::raw with the generator's Range, the raw entry writes n
// words (nothing for n <= 0). Also the skip count of init_stream method 2.
#pragma once

#include "rng/u32_uniform.hpp"

#include <cstring>

namespace qon::rng {

// Method 2 passes the 64-bit count as two 32-bit words, low word first.
inline uint64_t skip_count(const void *params) {
    uint32_t w[2];
    std::memcpy(w, params, sizeof w);
    return w[0] | (static_cast<uint64_t>(w[1]) << 32);
}

}  // namespace qon::rng

#define ROK_U32_BRNG_ENTRIES(Name, Gen, Range)                                                             \
    extern "C" {                                                                                           \
    QON_API int32_t rokBRng##Name##InitStream(int32_t method, RokStream *stream, int32_t n, const void *params) { \
        return Gen::init_stream(method, stream, n, params);                                                \
    }                                                                                                      \
    QON_API int32_t roksBRng##Name(RokStream *stream, int32_t n, float r[], float a, float b) {            \
        return qon::rng::u32_uniform<Gen, float, Range>(stream, n, r, a, b);                               \
    }                                                                                                      \
    QON_API int32_t rokdBRng##Name(RokStream *stream, int32_t n, double r[], double a, double b) {         \
        return qon::rng::u32_uniform<Gen, double, Range>(stream, n, r, a, b);                              \
    }                                                                                                      \
    QON_API int32_t rokiBRng##Name(RokStream *stream, int32_t n, void *r) {                                \
        if (n > 0) Gen::raw(stream, n, static_cast<uint32_t *>(r));                                        \
        return ROK_STATUS_OK;                                                                              \
    }                                                                                                      \
    }
