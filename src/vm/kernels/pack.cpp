// Pack and unpack of every element type (s, d, c, z): copies between an array and the elements
// of another picked by an increment, a mask or an index vector. One template per direction and
// selector; the width argument picks 32-bit (width 1: the increment is the low half of its
// argument, sign-extended; masks and indices are int32) or 64-bit selectors. PackI and PackV
// copy eight elements per iteration with AVX2 gathers of four 64-bit element offsets (float,
// double and float complex; a double complex element is wider than a gather lane and is copied
// whole), the last n mod 8 one by one. Copies are bit-exact (NaN payloads and signs kept); no
// element is exceptional. All three accuracy slots hold the same kernel.
#include <immintrin.h>

#include <complex>
#include <cstdint>

#include "vm/kernels/signatures.hpp"

namespace {

using std::int32_t;
using std::int64_t;

// Element i is at offset i * inc.
struct Strided {
    int64_t inc;
    int64_t at(int i) const { return static_cast<int64_t>(i) * inc; }
    __m256i four(int i) const {
        const __m256i lanes = _mm256_set_epi64x(3 * inc, 2 * inc, inc, 0);
        return _mm256_add_epi64(_mm256_set1_epi64x(at(i)), lanes);
    }
};

// Element i is at offset ix[i].
template <class I>
struct Indexed {
    const I *ix;
    int64_t at(int i) const { return ix[i]; }
    __m256i four(int i) const {
        if constexpr (sizeof(I) == 4)
            return _mm256_cvtepi32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i *>(ix + i)));
        else
            return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(ix + i));
    }
};

// y[0..3] = a[off[0..3]].
template <class E>
inline void gather4(const E *a, __m256i off, E *y) {
    if constexpr (sizeof(E) == 4) {
        _mm_storeu_ps(reinterpret_cast<float *>(y), _mm256_i64gather_ps(reinterpret_cast<const float *>(a), off, 4));
    } else if constexpr (sizeof(E) == 8) {
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(y),
                            _mm256_i64gather_epi64(reinterpret_cast<const long long *>(a), off, 8));
    } else {
        alignas(32) int64_t o[4];
        _mm256_store_si256(reinterpret_cast<__m256i *>(o), off);
        for (int k = 0; k < 4; ++k) y[k] = a[o[k]];
    }
}

template <class E, class Sel>
void pack(int n, const E *a, Sel sel, E *y) {
    int i = 0;
    for (; i + 8 <= n; i += 8) {
        gather4(a, sel.four(i), y + i);
        gather4(a, sel.four(i + 4), y + i + 4);
    }
    for (; i < n; ++i) y[i] = a[sel.at(i)];
}

template <class E, class Sel>
void unpack(int n, const E *a, E *y, Sel sel) {
    for (int i = 0; i < n; ++i) y[sel.at(i)] = a[i];
}

template <class E, class M>
void pack_masked(int n, const E *a, const M *mask, E *y) {
    int64_t j = 0;
    for (int i = 0; i < n; ++i)
        if (mask[i] != 0) y[j++] = a[i];
}

template <class E, class M>
void unpack_masked(int n, const E *a, E *y, const M *mask) {
    int64_t j = 0;
    for (int i = 0; i < n; ++i)
        if (mask[i] != 0) y[i] = a[j++];
}

inline Strided stride(int64_t inc, int width) {
    return {width == 1 ? static_cast<int64_t>(static_cast<int32_t>(static_cast<std::uint64_t>(inc))) : inc};
}

}  // namespace

#define QON_VM_PACK_ALIASES(t, F, fam, E)                                                                   \
    extern "C" void qon_vmk_##t##F##_LA(QON_VM_KPARAMS_##fam(E, E)) __attribute__((alias("qon_vmk_" #t #F "_HA"))); \
    extern "C" void qon_vmk_##t##F##_EP(QON_VM_KPARAMS_##fam(E, E)) __attribute__((alias("qon_vmk_" #t #F "_HA")));

#define QON_VM_PACK_KERNELS(t, E)                                                                           \
    extern "C" void qon_vmk_##t##PackI_HA(QON_VM_KPARAMS_PKI(E, E)) {                                        \
        if (n > 0) pack(n, a, stride(inca, width), y);                                                       \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##PackM_HA(QON_VM_KPARAMS_PKM(E, E)) {                                        \
        if (n <= 0) return;                                                                                  \
        if (width == 1) return pack_masked(n, a, static_cast<const int32_t *>(mask), y);                     \
        pack_masked(n, a, static_cast<const int64_t *>(mask), y);                                            \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##PackV_HA(QON_VM_KPARAMS_PKV(E, E)) {                                        \
        if (n <= 0) return;                                                                                  \
        if (width == 1) return pack(n, a, Indexed<int32_t>{static_cast<const int32_t *>(ix)}, y);            \
        pack(n, a, Indexed<int64_t>{static_cast<const int64_t *>(ix)}, y);                                   \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##UnpackI_HA(QON_VM_KPARAMS_UPI(E, E)) {                                      \
        if (n > 0) unpack(n, a, y, stride(incy, width));                                                     \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##UnpackM_HA(QON_VM_KPARAMS_UPM(E, E)) {                                      \
        if (n <= 0) return;                                                                                  \
        if (width == 1) return unpack_masked(n, a, y, static_cast<const int32_t *>(mask));                   \
        unpack_masked(n, a, y, static_cast<const int64_t *>(mask));                                          \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##UnpackV_HA(QON_VM_KPARAMS_UPV(E, E)) {                                      \
        if (n <= 0) return;                                                                                  \
        if (width == 1) return unpack(n, a, y, Indexed<int32_t>{static_cast<const int32_t *>(ix)});          \
        unpack(n, a, y, Indexed<int64_t>{static_cast<const int64_t *>(ix)});                                 \
    }                                                                                                        \
    QON_VM_PACK_ALIASES(t, PackI, PKI, E)                                                                    \
    QON_VM_PACK_ALIASES(t, PackM, PKM, E)                                                                    \
    QON_VM_PACK_ALIASES(t, PackV, PKV, E)                                                                    \
    QON_VM_PACK_ALIASES(t, UnpackI, UPI, E)                                                                  \
    QON_VM_PACK_ALIASES(t, UnpackM, UPM, E)                                                                  \
    QON_VM_PACK_ALIASES(t, UnpackV, UPV, E)

QON_VM_PACK_KERNELS(s, float)
QON_VM_PACK_KERNELS(d, double)
QON_VM_PACK_KERNELS(c, std::complex<float>)
QON_VM_PACK_KERNELS(z, std::complex<double>)
