// Ordering of runs of observations: the order-preserving integer keys of floating-point values,
// a least-significant-digit radix sort, an in-place quicksort for runs too long for the radix
// sort's counters, and a quickselect. Shared by the quantile, deviation and sort kernels.
//
// Keys: the bit pattern of a value with the sign bit set for a positive value and all bits
// inverted for a negative one, so that unsigned order is numeric order (-0 just below +0, NaNs
// at the two ends). The radix sort histograms every digit in one read, then scatters once per
// digit that is not the same for all keys (8-bit digits for short runs, 11-bit ones otherwise),
// so its cost is a few passes of streaming reads and writes, independent of the data's order.
// The quickselect partitions with a branch-free Lomuto step around a median-of-three pivot, puts
// the keys equal to the pivot aside when the pivot turns out to be near the smallest, and falls
// back to sorting the remaining range after 2 log2(n) + 16 rounds, so it is linear on average
// and never quadratic.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace ss {

template <class T>
using KeyOf = std::conditional_t<sizeof(T) == 8, uint64_t, uint32_t>;

template <class T>
inline KeyOf<T> to_key(T x) {
    using K = KeyOf<T>;
    constexpr K sign = K{1} << (8 * sizeof(K) - 1);
    const K b = std::bit_cast<K>(x);
    return (b & sign) ? static_cast<K>(~b) : static_cast<K>(b | sign);
}

template <class T>
inline T from_key(KeyOf<T> k) {
    using K = KeyOf<T>;
    constexpr K sign = K{1} << (8 * sizeof(K) - 1);
    return std::bit_cast<T>((k & sign) ? static_cast<K>(k & ~sign) : static_cast<K>(~k));
}

// Status of the radix sort for arguments it refuses; the kernels never pass them.
enum { kRadixNullBuffer = -1, kRadixBadLength = -2 };
constexpr int64_t kRadixMaxLength = 0x7FFFFFFF;

// Sorts keys a[0..n) using tmp[0..n); *sorted receives whichever of a and tmp holds the result.
template <class K>
int radix_sort(K *a, K *tmp, int64_t n, K **sorted) {
    if (a == nullptr || tmp == nullptr || sorted == nullptr) return kRadixNullBuffer;
    if (n < 1 || n > kRadixMaxLength) return kRadixBadLength;
    const int digit = n < 4096 ? 8 : 11;
    const int passes = static_cast<int>((8 * sizeof(K) + digit - 1) / digit);
    const uint32_t buckets = 1u << digit, mask = buckets - 1;
    uint32_t count[8][2048];
    for (int d = 0; d < passes; ++d) std::memset(count[d], 0, sizeof(uint32_t) * buckets);
    for (int64_t i = 0; i < n; ++i) {
        const K k = a[i];
        for (int d = 0; d < passes; ++d) ++count[d][(k >> (d * digit)) & mask];
    }
    K *src = a, *dst = tmp;
    for (int d = 0; d < passes; ++d) {
        uint32_t *c = count[d];
        if (c[(src[0] >> (d * digit)) & mask] == static_cast<uint32_t>(n)) continue;
        uint32_t sum = 0;
        for (uint32_t b = 0; b < buckets; ++b) {
            const uint32_t here = c[b];
            c[b] = sum;
            sum += here;
        }
        const int shift = d * digit;
        for (int64_t i = 0; i < n; ++i) {
            const K k = src[i];
            dst[c[(k >> shift) & mask]++] = k;
        }
        std::swap(src, dst);
    }
    *sorted = src;
    return 0;
}

template <class K>
inline void insertion_sort(K *a, int64_t n) {
    for (int64_t i = 1; i < n; ++i) {
        const K k = a[i];
        int64_t j = i;
        for (; j > 0 && a[j - 1] > k; --j) a[j] = a[j - 1];
        a[j] = k;
    }
}

template <class K>
inline K median_of_three(K a, K b, K c) {
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

// Moves the keys below `pivot` (or not above it, when `or_equal`) to the front; returns their
// count.
template <class K, bool OrEqual>
inline int64_t partition_front(K *a, int64_t n, K pivot) {
    int64_t i = 0;
    for (int64_t j = 0; j < n; ++j) {
        const K k = a[j];
        a[j] = a[i];
        a[i] = k;
        i += OrEqual ? (k <= pivot) : (k < pivot);
    }
    return i;
}

// Sorts a[0..n) in place: quicksort on the smaller side, loop on the larger.
template <class K>
void quick_sort(K *a, int64_t n) {
    while (n > 24) {
        const K pivot = median_of_three(a[0], a[n / 2], a[n - 1]);
        const int64_t lt = partition_front<K, false>(a, n, pivot);
        const int64_t le = lt + partition_front<K, true>(a + lt, n - lt, pivot);
        if (lt < n - le) {
            quick_sort(a, lt);
            a += le;
            n -= le;
        } else {
            quick_sort(a + le, n - le);
            n = lt;
        }
    }
    insertion_sort(a, n);
}

// The k-th smallest of a[lo..hi) (k absolute, lo <= k < hi), leaving a[lo..k) <= a[k] <= a[k+1..hi).
template <class K>
K quick_select(K *a, int64_t lo, int64_t hi, int64_t k) {
    int rounds = 16;
    for (int64_t m = hi - lo; m > 1; m >>= 1) rounds += 2;
    while (hi - lo > 16) {
        if (--rounds < 0) {
            quick_sort(a + lo, hi - lo);
            return a[k];
        }
        const int64_t n = hi - lo;
        const K pivot = median_of_three(a[lo], a[lo + n / 2], a[hi - 1]);
        const int64_t lt = lo + partition_front<K, false>(a + lo, n, pivot);
        if (k < lt) {
            hi = lt;
            continue;
        }
        if (lt - lo >= n / 8) {
            lo = lt;
            continue;
        }
        const int64_t le = lt + partition_front<K, true>(a + lt, hi - lt, pivot);
        if (k < le) return pivot;
        lo = le;
    }
    insertion_sort(a + lo, hi - lo);
    return a[k];
}

}  // namespace ss
