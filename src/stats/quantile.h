// Quantiles of one run of observations, from a sorted run or by selection, and the copying of a
// variable's observations into a run of keys and back. The rule is the same in both paths:
// h = (n - 1) q, k = trunc(h), f = h - k, Q = x(k) + f (x(min(k + 1, n - 1)) - x(k)) as one fused
// multiply-add (x(k) itself when f = 0), so that q = 0 gives the minimum, q = 1 the maximum, and
// sorting and selection give identical quantiles. A NaN order gives a NaN quantile.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "stats/order.h"

namespace ss {

// Keys of a contiguous run of n values.
template <class T>
void copy_keys(const T *values, int64_t n, KeyOf<T> *run) {
    for (int64_t j = 0; j < n; ++j) run[j] = to_key(values[j]);
}

template <class T>
void scatter_values(const KeyOf<T> *run, int64_t n, T *out, int64_t sv, int64_t so, int64_t i) {
    T *base = out + i * sv;
    for (int64_t j = 0; j < n; ++j) base[j * so] = from_key<T>(run[j]);
}

// Position of order q in a run of n: k and f, or false for a NaN order.
inline bool order_position(int64_t n, double q, int64_t &k, double &f) {
    if (std::isnan(q)) return false;
    const double h = static_cast<double>(n - 1) * q;
    k = static_cast<int64_t>(h);
    f = h - static_cast<double>(k);
    return true;
}

// f = 0 gives x(k) itself, also when a neighbour is infinite (where f (hi - lo) would be NaN).
template <class T>
T interpolate(T lo, T hi, double f) {
    return f == 0 ? lo : std::fma(static_cast<T>(f), hi - lo, lo);
}

template <class T>
T quantile_of_sorted(const KeyOf<T> *s, int64_t n, double q) {
    int64_t k;
    double f;
    if (!order_position(n, q, k, f)) return static_cast<T>(NAN);
    return interpolate(from_key<T>(s[k]), from_key<T>(s[std::min(k + 1, n - 1)]), f);
}

// Quantiles of run[0..n) by selection, reordering the run. `fixed` (2 m entries) records the
// positions already in their sorted place so that each selection works between two of them.
template <class T, class Order>
void select_quantiles(KeyOf<T> *run, int64_t n, const Order *orders, int64_t m, T *out, int64_t *fixed) {
    using K = KeyOf<T>;
    int64_t nfixed = 0;
    auto select = [&](int64_t k) -> K {
        int64_t lo = 0, hi = n;
        for (int64_t i = 0; i < nfixed; ++i) {
            const int64_t f = fixed[i];
            if (f == k) return run[k];
            if (f < k && f + 1 > lo) lo = f + 1;
            if (f > k && f < hi) hi = f;
        }
        if (k == lo || k == hi - 1) {
            // The extreme of the segment: one scan, moved into place.
            int64_t at = lo;
            for (int64_t i = lo + 1; i < hi; ++i)
                if (k == lo ? run[i] < run[at] : run[i] > run[at]) at = i;
            std::swap(run[at], run[k]);
        } else {
            quick_select(run, lo, hi, k);
        }
        fixed[nfixed++] = k;
        const K key = run[k];
        return key;
    };
    for (int64_t j = 0; j < m; ++j) {
        int64_t k;
        double f;
        if (!order_position(n, static_cast<double>(orders[j]), k, f)) {
            out[j] = static_cast<T>(NAN);
            continue;
        }
        const K lo = select(k);
        const K hi = k + 1 < n ? select(k + 1) : lo;
        out[j] = interpolate(from_key<T>(lo), from_key<T>(hi), f);
    }
}

}  // namespace ss
