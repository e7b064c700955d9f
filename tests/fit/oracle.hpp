// Brute-force cell of a site and the partitions and sites the search tests draw.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

namespace fit_test {

// The cell by counting knots: 0 below x[0] (and for a site that is not a number), nx - 1 at
// the right end, otherwise the number of knots not above t.
template <class T>
int64_t brute_cell(const std::vector<T> &x, T t) {
    const int64_t nx = static_cast<int64_t>(x.size());
    if (t != t) return 0;
    if (t == x.back()) return nx - 1;
    int64_t c = 0;
    for (T xi : x) c += xi <= t;
    return c;
}

template <class T>
std::vector<int64_t> brute_cells(const std::vector<T> &x, const std::vector<T> &sites) {
    std::vector<int64_t> c(sites.size());
    for (size_t i = 0; i < sites.size(); ++i) c[i] = brute_cell(x, sites[i]);
    return c;
}

enum class Shape { Uniform, QuasiUniform, Clustered, Random };

// A strictly ascending partition of nx knots. Uniform: x0 + k*h with h a power of two and x0
// a multiple of h, so every knot and inverse step is exact.
template <class T>
std::vector<T> make_partition(Shape shape, int64_t nx, std::mt19937_64 &rng) {
    std::vector<T> x(static_cast<size_t>(nx));
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    if (shape == Shape::Uniform) {
        const double h = std::ldexp(1.0, static_cast<int>(rng() % 7) - 3);
        const double x0 = -static_cast<double>(rng() % static_cast<uint64_t>(nx)) * h;
        for (int64_t k = 0; k < nx; ++k) x[k] = static_cast<T>(x0 + static_cast<double>(k) * h);
        return x;
    }
    double v = 100.0 * (u01(rng) - 0.5);
    const double h = 0.5 + u01(rng);
    std::exponential_distribution<double> gap(1.0);
    for (int64_t k = 0; k < nx; ++k) {
        double step;
        switch (shape) {
        case Shape::QuasiUniform: step = h * (0.8 + 0.4 * u01(rng)); break;
        case Shape::Clustered: step = (rng() % 50 == 0) ? 200.0 * h * gap(rng) : 0.02 * h * gap(rng); break;
        default: step = h * gap(rng); break;
        }
        T next = static_cast<T>(v + step);
        while (k > 0 && next <= x[k - 1]) next = std::nextafter(x[k - 1], std::numeric_limits<T>::infinity());
        x[k] = next;
        v = static_cast<double>(next);
    }
    return x;
}

// Sites: random points over the partition and a little beyond, knots themselves, the two
// ends, far-away values, infinities and non-numbers, in random order.
template <class T>
std::vector<T> make_sites(const std::vector<T> &x, int64_t nrandom, int64_t nknots,
                          std::mt19937_64 &rng) {
    std::vector<T> s;
    const double a = x.front(), b = x.back(), w = b - a;
    std::uniform_real_distribution<double> u(a - 0.05 * w, b + 0.05 * w);
    for (int64_t i = 0; i < nrandom; ++i) s.push_back(static_cast<T>(u(rng)));
    const size_t nx = x.size();
    for (int64_t i = 0; i < nknots; ++i) s.push_back(x[rng() % nx]);
    const T inf = std::numeric_limits<T>::infinity();
    for (T v : {x.front(), x.back(), x[nx / 2], T(-1e30), T(1e30), inf, -inf,
                std::numeric_limits<T>::quiet_NaN(), std::nextafter(x.back(), inf),
                std::nextafter(x.back(), -inf), std::nextafter(x.front(), -inf)})
        s.push_back(v);
    std::shuffle(s.begin(), s.end(), rng);
    return s;
}

// On the exact grid of a uniform partition: multiples of h/8 from 5h below to 5h above.
template <class T>
std::vector<T> grid_sites(const std::vector<T> &x, int64_t n, std::mt19937_64 &rng) {
    const double h = static_cast<double>(x[1]) - static_cast<double>(x[0]);
    const int64_t span = 8 * (static_cast<int64_t>(x.size()) - 1) + 80;
    std::vector<T> s;
    for (int64_t i = 0; i < n; ++i) {
        const int64_t j = static_cast<int64_t>(rng() % static_cast<uint64_t>(span)) - 40;
        s.push_back(static_cast<T>(static_cast<double>(x[0]) + static_cast<double>(j) * h / 8));
    }
    s.push_back(x.front());
    s.push_back(x.back());
    s.push_back(std::numeric_limits<T>::quiet_NaN());
    s.push_back(std::numeric_limits<T>::infinity());
    s.push_back(-std::numeric_limits<T>::infinity());
    return s;
}

inline bool quick() { return std::getenv("QON_TEST_QUICK") != nullptr; }

}  // namespace fit_test
