// The Mersenne Twister family x(k+N) = x(k+M) ^ (((x(k) & upper) | (x(k+1) & lower)) >> 1)
// ^ (a when x(k+1) is odd), written once over a parameter type (MT19937, MT2203) that gives
// N, M, the masks, the twist word and the tempering. The N-word state is regenerated all at
// once, in place, eight 32-bit lanes at a time in three runs: words [0, N-M) read only old
// words; words [N-M, N-1) read words already renewed in this pass (M - N + 7 < 0 keeps every
// lane of a vector behind the write position); the last word wraps to the renewed mt[0].
// The results equal the one-word-at-a-time recurrence. Output is the tempered mt[index].
// Seeding is the array initialisation (a single seed goes through it too, n < 1 acts as the
// single word 1).
#pragma once

#include "rng/stream.hpp"

#include <immintrin.h>

#include <algorithm>
#include <cstdint>

namespace qon::rng::mt {

// P: N, M, kUpper, kLower, State (with mt[N] and index), twist_word(st), temper(y, st), a
// vector vtemper(v, st), after_seed(st, stream) (MT2203 copies its parameter row) and
// skip(st, params) for init_stream method 2. Twist word and masks may live in the state.
template <class P>
struct Family {
    using State = typename P::State;
    static constexpr int N = P::N, M = P::M;

    static uint32_t twist(uint32_t x, uint32_t x1, uint32_t xm, uint32_t a) {
        const uint32_t y = (x & P::kUpper) | (x1 & P::kLower);
        return xm ^ (y >> 1) ^ ((x1 & 1) ? a : 0);
    }

    static void regenerate(uint32_t *mt, uint32_t a) {
        static_assert(M >= 8 && N - M >= 8, "vector runs need eight words of slack");
        const __m256i upper = _mm256_set1_epi32(static_cast<int>(P::kUpper));
        const __m256i lower = _mm256_set1_epi32(static_cast<int>(P::kLower));
        const __m256i va = _mm256_set1_epi32(static_cast<int>(a));
        auto load = [](const uint32_t *p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)); };
        auto vtwist = [&](const uint32_t *x, const uint32_t *xm) {
            const __m256i x0 = load(x), x1 = load(x + 1);
            const __m256i y = _mm256_or_si256(_mm256_and_si256(x0, upper), _mm256_and_si256(x1, lower));
            const __m256i mag = _mm256_and_si256(_mm256_srai_epi32(_mm256_slli_epi32(x1, 31), 31), va);
            return _mm256_xor_si256(_mm256_xor_si256(load(xm), _mm256_srli_epi32(y, 1)), mag);
        };
        int i = 0;
        for (; i + 8 <= N - M; i += 8) _mm256_storeu_si256(reinterpret_cast<__m256i *>(mt + i), vtwist(mt + i, mt + i + M));
        for (; i < N - M; ++i) mt[i] = twist(mt[i], mt[i + 1], mt[i + M], a);
        for (; i + 8 <= N - 1; i += 8)
            _mm256_storeu_si256(reinterpret_cast<__m256i *>(mt + i), vtwist(mt + i, mt + i + M - N));
        for (; i < N - 1; ++i) mt[i] = twist(mt[i], mt[i + 1], mt[i + M - N], a);
        mt[N - 1] = twist(mt[N - 1], mt[0], mt[M - 1], a);
    }

    static void seed(State *st, int32_t n, const uint32_t *s) {
        static constexpr uint32_t kOne = 1;
        if (n < 1) {
            n = 1;
            s = &kOne;
        }
        uint32_t *mt = st->mt;
        mt[0] = 19650218u;
        for (int i = 1; i < N; ++i) mt[i] = 1812433253u * (mt[i - 1] ^ (mt[i - 1] >> 30)) + static_cast<uint32_t>(i);
        int i = 1, j = 0;
        for (int k = std::max(N, static_cast<int>(n)); k > 0; --k) {
            mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1664525u)) + s[j] + static_cast<uint32_t>(j);
            if (++i >= N) {
                mt[0] = mt[N - 1];
                i = 1;
            }
            if (++j >= n) j = 0;
        }
        for (int k = N - 1; k > 0; --k) {
            mt[i] = (mt[i] ^ ((mt[i - 1] ^ (mt[i - 1] >> 30)) * 1566083941u)) - static_cast<uint32_t>(i);
            if (++i >= N) {
                mt[0] = mt[N - 1];
                i = 1;
            }
        }
        mt[0] = 0x80000000u;
        st->index = N;
    }

    // The generator keeps index in [0, N]; any other value can only come from a corrupted
    // image and is read as an exhausted block.
    static void check_index(State *st) {
        if (st->index < 0 || st->index > N) st->index = N;
    }

    static void raw(RokStream *stream, int32_t n, uint32_t *out) {
        State *st = rok_state<State>(stream);
        check_index(st);
        const uint32_t a = P::twist_word(st);
        while (n > 0) {
            if (st->index >= N) {
                regenerate(st->mt, a);
                st->index = 0;
            }
            const int k = std::min(static_cast<int>(n), N - st->index);
            const uint32_t *src = st->mt + st->index;
            int i = 0;
            for (; i + 8 <= k; i += 8) {
                const __m256i y = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(src + i));
                _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + i), P::vtemper(y, st));
            }
            for (; i < k; ++i) out[i] = P::temper(src[i], st);
            st->index += k;
            out += k;
            n -= k;
        }
    }

    // Seeding, the generator's own skip-ahead; neither leapfrog nor the extended skip-ahead.
    static int32_t init_stream(int32_t method, RokStream *stream, int32_t n, const void *params) {
        State *st = rok_state<State>(stream);
        switch (method) {
        case ROK_INIT_SEED:
            seed(st, n, static_cast<const uint32_t *>(params));
            P::after_seed(st, stream);
            return ROK_STATUS_OK;
        case ROK_INIT_LEAPFROG:
            return ROK_ERROR_NO_LEAPFROG;
        case ROK_INIT_SKIPAHEAD:
            check_index(st);
            return P::skip(st, params);
        case ROK_INIT_SKIPAHEAD_EX:
            return ROK_ERROR_NO_SKIPAHEADEX;
        default:
            return ROK_ERROR_BAD_METHOD;
        }
    }

    // Runs the recurrence forward over `count` outputs without tempering them.
    static void skip_forward(State *st, uint64_t count) {
        const uint64_t left = static_cast<uint64_t>(N - st->index);
        if (count <= left) {
            st->index += static_cast<int32_t>(count);
            return;
        }
        count -= left;
        const uint32_t a = P::twist_word(st);
        for (; count > static_cast<uint64_t>(N); count -= N) regenerate(st->mt, a);
        regenerate(st->mt, a);
        st->index = static_cast<int32_t>(count);
    }

};

// Tempering y ^= y >> u; y ^= (y << 7) & b; y ^= (y << 15) & c; y ^= y >> 18, one word and
// eight lanes.
template <int U>
inline uint32_t temper(uint32_t y, uint32_t b, uint32_t c) {
    y ^= y >> U;
    y ^= (y << 7) & b;
    y ^= (y << 15) & c;
    return y ^ (y >> 18);
}
template <int U>
inline __m256i vtemper(__m256i y, __m256i b, __m256i c) {
    y = _mm256_xor_si256(y, _mm256_srli_epi32(y, U));
    y = _mm256_xor_si256(y, _mm256_and_si256(_mm256_slli_epi32(y, 7), b));
    y = _mm256_xor_si256(y, _mm256_and_si256(_mm256_slli_epi32(y, 15), c));
    return _mm256_xor_si256(y, _mm256_srli_epi32(y, 18));
}

}  // namespace qon::rng::mt
