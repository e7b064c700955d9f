// Test helpers of the complex kernels: a __complex128 reference (libquadmath), the error of a
// complex result in ulps (componentwise, through the shared ulp measure, or normwise: the
// largest component error in ulps of |exact|), argument regions, and calls of a table slot.
#pragma once

#include <qon/qon_pax.h>
#include <quadmath.h>

#include <complex>
#include <random>

#include "common/accuracy.hpp"

namespace qon::test::cx {

using Q = __complex128;

inline Q q_of(__float128 re, __float128 im) {
    Q z;
    __real__ z = re;
    __imag__ z = im;
    return z;
}
template <class T>
Q q_of(std::complex<T> z) {
    return q_of(z.real(), z.imag());
}

// Componentwise: each part in ulps of that part of the exact value (exact zeros, infinities and
// NaNs must match, signs included).
template <class T>
double componentwise_error(std::complex<T> got, Q exact) {
    return std::max(accuracy::ulp_error<T>(got.real(), __real__ exact),
                    accuracy::ulp_error<T>(got.imag(), __imag__ exact));
}

// Normwise: each part's difference in ulps of |exact|; componentwise where |exact| is not a
// finite non-zero number.
template <class T>
double normwise_error(std::complex<T> got, Q exact) {
    const __float128 mag = cabsq(exact);
    if (mag == 0 || isinfq(mag) || isnanq(mag) || !std::isfinite(got.real()) || !std::isfinite(got.imag()))
        return componentwise_error(got, exact);
    using L = std::numeric_limits<T>;
    const int e = std::max(static_cast<int>(ilogbq(mag)), L::min_exponent - 1);
    const __float128 ulp = ldexpq(1, e - (L::digits - 1));
    const __float128 d = fmaxq(fabsq(got.real() - __real__ exact), fabsq(got.imag() - __imag__ exact));
    return static_cast<double>(d / ulp);
}

// A region of complex arguments: each part drawn from its range.
struct Region {
    accuracy::Range re, im;
};

inline double draw(const accuracy::Range &range, std::mt19937_64 &rng) {
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    const double u = u01(rng);
    if (range.spacing == accuracy::Spacing::Uniform) return range.lo + u * (range.hi - range.lo);
    const double l = std::log2(range.lo), h = std::log2(range.hi);
    const double m = std::exp2(l + u * (h - l));
    return range.spacing == accuracy::Spacing::LogBothSigns && (rng() & 1) != 0 ? -m : m;
}
template <class T>
std::complex<T> draw(const Region &region, std::mt19937_64 &rng) {
    const T re = static_cast<T>(draw(region.re, rng));
    return {re, static_cast<T>(draw(region.im, rng))};
}

// Kernels of a table slot, by argument list.
template <class E>
using UnaryKernel = void (*)(int, const E *, E *);
template <class E>
using BinaryKernel = void (*)(int, const E *, const E *, E *);
template <class E>
using PowxKernel = void (*)(int, const E *, E, E *);
template <class K>
K slot(qon_pax_kernel_fn const (&table)[3], int s) {
    return reinterpret_cast<K>(table[s]);
}

}  // namespace qon::test::cx
