// Shared frame of the complex kernels (c = std::complex<float>, z = std::complex<double>).
//
// A complex function is given as a class F with
//     template <class C> static C f(C x)            (or f(C x, C y) for two arguments)
//     template <class C> static bool pole(C x)      the arguments at which F has a pole
// and is evaluated element by element by the routines below:
//   careful  evaluates f on the arguments widened (float to double, double to long double),
//            rounds each component once to the element type and derives the status from the
//            wide value: that is within 0.5 ulp plus the wide function's error scaled down by
//            2^-29 (c) or 2^-11 (z), and the wide exponent range makes overflow and underflow of
//            the rounded result visible;
//   fast     (LA and EP of z, when F allows) evaluates f in double; an element whose result has
//            a component that is not a normal finite number is evaluated again carefully, so
//            fast and careful elements report the same statuses and special values.
// Statuses: a NaN argument gives no report; a pole gives PAX_STATUS_SING; a NaN result from
// non-NaN arguments PAX_STATUS_ERRDOM; an infinite component from finite arguments
// PAX_STATUS_OVERFLOW; a component whose wide value is non-zero but below the smallest normal of
// the element type, from arguments with no subnormal component, PAX_STATUS_UNDERFLOW.
// Special values (infinities, signed zeros, branch cuts) are those of the C library's complex
// functions, which follow C99 Annex G.
// Error measure: componentwise, each part in ulps of that part of the exact value (a zero,
// infinite or NaN part must be matched exactly); powers use the normwise measure stated in
// complex_pow.hpp.
#pragma once

#include <cmath>
#include <complex>
#include <limits>

#include "vm/kernels/element_loop.hpp"

namespace qon::vm::cx {

// The wider types of an element type: `wide` for functions (more precision and exponent
// range), `exact` for products (the product of two components is exact in it).
template <class T>
struct Wider;
template <>
struct Wider<float> {
    using wide = double;
    using exact = double;
};
template <>
struct Wider<double> {
    using wide = long double;
    using exact = __float128;
};
template <class T>
using Wide = typename Wider<T>::wide;
template <class T>
using Exact = typename Wider<T>::exact;

template <class T>
inline bool has_nan(std::complex<T> z) {
    return std::isnan(z.real()) || std::isnan(z.imag());
}
template <class T>
inline bool is_finite(std::complex<T> z) {
    return std::isfinite(z.real()) && std::isfinite(z.imag());
}
template <class T>
inline bool has_subnormal(std::complex<T> z) {
    return std::fpclassify(z.real()) == FP_SUBNORMAL || std::fpclassify(z.imag()) == FP_SUBNORMAL;
}
// A component that the fast path can return as it is: finite and normal.
template <class T>
inline bool ordinary(std::complex<T> z) {
    return std::isnormal(z.real()) && std::isnormal(z.imag());
}

// A wide component v that rounds below the smallest normal of T although it is not zero.
template <class T, class W>
inline bool underflows(W v) {
    const W tiny = static_cast<W>(std::numeric_limits<T>::min());
    return v != W(0) && v < tiny && v > -tiny;
}

// What is known of an element's arguments for its status.
struct ArgFacts {
    bool nan, finite, subnormal, pole;
};
template <class T>
inline ArgFacts facts(std::complex<T> x, bool pole) {
    return {has_nan(x), is_finite(x), has_subnormal(x), pole};
}
template <class T>
inline ArgFacts facts(std::complex<T> x, std::complex<T> y, bool pole) {
    return {has_nan(x) || has_nan(y), is_finite(x) && is_finite(y), has_subnormal(x) || has_subnormal(y), pole};
}

// Status of a result r whose components were rounded from the wide values wre, wim.
template <class T, class W>
inline int status_of(ArgFacts in, W wre, W wim, std::complex<T> r) {
    if (in.nan) return PAX_STATUS_OK;
    if (in.pole) return PAX_STATUS_SING;
    if (has_nan(r)) return PAX_STATUS_ERRDOM;
    if (in.finite && !is_finite(r)) return PAX_STATUS_OVERFLOW;
    if (!in.subnormal && (underflows<T>(wre) || underflows<T>(wim))) return PAX_STATUS_UNDERFLOW;
    return PAX_STATUS_OK;
}

template <class T, class W>
inline std::complex<T> narrow(std::complex<W> w) {
    return {static_cast<T>(w.real()), static_cast<T>(w.imag())};
}
template <class W, class T>
inline std::complex<W> widen(std::complex<T> x) {
    return {static_cast<W>(x.real()), static_cast<W>(x.imag())};
}

template <class F, class T>
inline int careful(std::complex<T> x, std::complex<T> &r) {
    using W = Wide<T>;
    const std::complex<W> w = F::f(widen<W>(x));
    r = narrow<T>(w);
    return status_of<T>(facts(x, F::pole(x)), w.real(), w.imag(), r);
}
template <class F, class T>
inline int careful(std::complex<T> x, std::complex<T> y, std::complex<T> &r) {
    using W = Wide<T>;
    const std::complex<W> w = F::f(widen<W>(x), widen<W>(y));
    r = narrow<T>(w);
    return status_of<T>(facts(x, y, F::pole(x, y)), w.real(), w.imag(), r);
}

// One argument, one result. Fast says whether the LA and EP slots of z may use the fast path.
template <class F, bool Fast>
struct Unary {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> &r) {
        if constexpr (Fast && A != HA && std::is_same_v<T, double>) {
            r = F::f(x);
            if (ordinary(r)) return PAX_STATUS_OK;
        }
        return careful<F>(x, r);
    }
};

// Two arguments (the B family, and the PX family whose second argument is one scalar).
template <class F, bool Fast>
struct Binary {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> y, std::complex<T> &r) {
        if constexpr (Fast && A != HA && std::is_same_v<T, double>) {
            r = F::f(x, y);
            if (ordinary(r)) return PAX_STATUS_OK;
        }
        return careful<F>(x, y, r);
    }
};

// A real function of the two parts of a complex argument (Abs, Arg), evaluated as fn(re, im)
// in the wide type and rounded once.
template <class T, class Fn>
inline int real_result(std::complex<T> x, T &r, Fn fn) {
    using W = Wide<T>;
    const W w = fn(static_cast<W>(x.real()), static_cast<W>(x.imag()));
    r = static_cast<T>(w);
    return status_of<T>(facts(x, false), w, W(0), std::complex<T>(r, T(0)));
}

// The poles of the functions: none, z = 0 (logarithms), z = +-1 (atanh), z = +-i (atan).
struct NoPole {
    template <class C>
    static bool pole(C) {
        return false;
    }
    template <class C>
    static bool pole(C, C) {
        return false;
    }
};
struct PoleAtZero {
    template <class C>
    static bool pole(C x) {
        return x.real() == 0 && x.imag() == 0;
    }
};
struct PolesAtRealUnits {
    template <class C>
    static bool pole(C x) {
        return x.imag() == 0 && std::fabs(x.real()) == 1;
    }
};
struct PolesAtImaginaryUnits {
    template <class C>
    static bool pole(C x) {
        return x.real() == 0 && std::fabs(x.imag()) == 1;
    }
};

}  // namespace qon::vm::cx

// The kernels of a complex function: c with one routine for every accuracy, z with its own LA,
// HA and EP kernels (which differ where the routine has a fast path).
#define QON_VM_COMPLEX_KERNELS(fam, F, Routine)                                                             \
    QON_VM_LOOP_KERNELS_SHARED(fam, c, F, std::complex<float>, float, Routine)                               \
    QON_VM_LOOP_KERNELS(fam, z, F, std::complex<double>, double, Routine)
// The same with one routine for every accuracy of z as well.
#define QON_VM_COMPLEX_KERNELS_SHARED(fam, F, Routine)                                                      \
    QON_VM_LOOP_KERNELS_SHARED(fam, c, F, std::complex<float>, float, Routine)                               \
    QON_VM_LOOP_KERNELS_SHARED(fam, z, F, std::complex<double>, double, Routine)
