// Uniforms from 32-bit raw words, shared by the generators with 32-bit raw output:
// r = a + u * ((b - a) * scale), the scale product formed once per call and applied as one
// fused multiply-add, u converted exactly to double by the 2^52 bias trick (0x4330000000000000
// | u, minus 2^52). Two ranges:
// - HalfOpen32 (MT19937, MT2203, Philox4x32-10, R250): scale 2^-32 = 2.3283064365386963e-10,
//   in single precision 2.3283064e-10f with u rounded once to float (exact high and low
//   halves, one rounding in their sum). Rounding can carry a + u * scale up to b itself; such
//   values become the largest value below b, so the range stays [a, b).
// - UpperClosedM1 (MRG32k3a, u in [1, m1]): scale 1/m1 = 2.328306549837829e-10, the single
//   form computed in double from the single bounds and rounded once; the range is (a, b].
// a = b gives a everywhere.
#pragma once

#include "rng/stream.hpp"

#include <immintrin.h>

#include <cmath>
#include <cstdint>

namespace qon::rng {

inline constexpr int kU32Chunk = 1024;  // raw words converted per pass

struct HalfOpen32 {
    static constexpr double kScale = 0x1p-32;
    static constexpr float kScaleF = 2.3283064e-10f;
    static constexpr bool kBelowB = true;
    static constexpr bool kFloatViaDouble = false;
};
struct UpperClosedM1 {
    static constexpr double kScale = 2.328306549837829e-10;
    static constexpr float kScaleF = 0.0f;  // unused: the single form runs in double
    static constexpr bool kBelowB = false;
    static constexpr bool kFloatViaDouble = true;
};

// Four words of buf as exact doubles.
inline __m256d u32_to_pd(const uint32_t *p) {
    const __m256i u = _mm256_cvtepu32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p)));
    const __m256i biased = _mm256_or_si256(u, _mm256_set1_epi64x(0x4330000000000000));
    return _mm256_sub_pd(_mm256_castsi256_pd(biased), _mm256_set1_pd(0x1p52));
}

// Gen::raw(stream, n, out) writes n raw 32-bit words; the caller's n > 0.
template <class Gen, class T, class Range = HalfOpen32>
int32_t u32_uniform(RokStream *stream, int32_t n, T r[], T a, T b) {
    if (n <= 0) return ROK_STATUS_OK;
    alignas(32) uint32_t buf[kU32Chunk];
    if constexpr (sizeof(T) == 4 && Range::kFloatViaDouble) {
        const double da = a, scale = (static_cast<double>(b) - da) * Range::kScale;
        const __m256d vs = _mm256_set1_pd(scale), va = _mm256_set1_pd(da);
        for (int32_t done = 0; done < n;) {
            const int32_t m = n - done < kU32Chunk ? n - done : kU32Chunk;
            Gen::raw(stream, m, buf);
            int32_t i = 0;
            for (; i + 4 <= m; i += 4)
                _mm_storeu_ps(r + done + i, _mm256_cvtpd_ps(_mm256_fmadd_pd(u32_to_pd(buf + i), vs, va)));
            for (; i < m; ++i) r[done + i] = static_cast<float>(std::fma(static_cast<double>(buf[i]), scale, da));
            done += m;
        }
    } else if constexpr (sizeof(T) == 8) {
        const double scale = (b - a) * Range::kScale;
        const bool clamp = Range::kBelowB && a < b;
        const double top = clamp ? std::nextafter(b, a) : b;
        const __m256d vs = _mm256_set1_pd(scale), va = _mm256_set1_pd(a), vtop = _mm256_set1_pd(top);
        for (int32_t done = 0; done < n;) {
            const int32_t m = n - done < kU32Chunk ? n - done : kU32Chunk;
            Gen::raw(stream, m, buf);
            int32_t i = 0;
            for (; i + 4 <= m; i += 4) {
                __m256d v = _mm256_fmadd_pd(u32_to_pd(buf + i), vs, va);
                if (clamp) v = _mm256_min_pd(v, vtop);
                _mm256_storeu_pd(r + done + i, v);
            }
            for (; i < m; ++i) {
                double v = std::fma(static_cast<double>(buf[i]), scale, a);
                r[done + i] = (clamp && v > top) ? top : v;
            }
            done += m;
        }
    } else {
        const float scale = (b - a) * Range::kScaleF;
        const float top = a < b ? std::nextafter(b, a) : a;
        const __m256 vs = _mm256_set1_ps(scale), va = _mm256_set1_ps(a), vtop = _mm256_set1_ps(top);
        const __m256i low16 = _mm256_set1_epi32(0xFFFF);
        const __m256 two16 = _mm256_set1_ps(65536.0f);
        for (int32_t done = 0; done < n;) {
            const int32_t m = n - done < kU32Chunk ? n - done : kU32Chunk;
            Gen::raw(stream, m, buf);
            int32_t i = 0;
            for (; i + 8 <= m; i += 8) {
                const __m256i u = _mm256_load_si256(reinterpret_cast<const __m256i *>(buf + i));
                const __m256 hi = _mm256_cvtepi32_ps(_mm256_srli_epi32(u, 16));
                const __m256 lo = _mm256_cvtepi32_ps(_mm256_and_si256(u, low16));
                const __m256 x = _mm256_fmadd_ps(hi, two16, lo);  // hi * 2^16 exact: one rounding
                __m256 v = _mm256_fmadd_ps(x, vs, va);
                v = a < b ? _mm256_min_ps(v, vtop) : v;
                _mm256_storeu_ps(r + done + i, v);
            }
            for (; i < m; ++i) {
                float v = std::fma(static_cast<float>(buf[i]), scale, a);
                r[done + i] = (a < b && v > top) ? top : v;
            }
            done += m;
        }
    }
    return ROK_STATUS_OK;
}

}  // namespace qon::rng
