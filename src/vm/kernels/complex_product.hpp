// Complex multiplication and division.
//
// HA (and every slot of c): the components are computed in a type in which the products of two
// components are exact and cannot overflow or underflow (double for c, __float128 for z):
//     (a + ib)(c + id)     = (ac - bd) + i(ad + bc)
//     (a + ib) / (c + id)  = ((ac + bd) + i(bc - ad)) / (c^2 + d^2)
// so a product has one rounding per component before the final one (within 0.5 ulp + 2^-29 ulp
// for c, 0.5 ulp + 2^-59 ulp for z, componentwise) and a quotient three (within 0.5 ulp + 2^-27
// ulp, resp. 2^-57 ulp). Overflow and underflow of the rounded result are then exactly known.
// LA and EP of z, for arguments whose non-zero components lie in [2^-250, 2^250] and a result
// whose components are normal: Kahan's fused 2x2 determinant, ab - cd = fma(a, b, -w) + fma(-c,
// d, w) with w = cd, within 2 ulp componentwise; a quotient divides two of them by c^2 + d^2
// computed as a sum of exact products, within 3 ulp componentwise. Other elements take the HA
// route. Infinite and NaN arguments and a zero divisor follow C99 Annex G (the compiler's
// complex multiplication and division).
#pragma once

#include "vm/kernels/complex_math.hpp"

namespace qon::vm::cx {

template <class T>
struct ExactOf;
template <>
struct ExactOf<float> {
    using type = double;
};
template <>
struct ExactOf<double> {
    using type = __float128;
};

// a*b - c*d within 2 ulp (Kahan).
inline double det2(double a, double b, double c, double d) {
    const double w = c * d;
    return std::fma(a, b, -w) + std::fma(-c, d, w);
}

// Every non-zero component in [2^-250, 2^250]: the fast forms neither overflow nor lose bits
// to underflow.
inline bool moderate(double v) {
    const double m = std::fabs(v);
    return m == 0.0 || (m >= 0x1p-250 && m <= 0x1p250);
}
inline bool moderate(std::complex<double> x, std::complex<double> y) {
    return moderate(x.real()) && moderate(x.imag()) && moderate(y.real()) && moderate(y.imag());
}

// Conj: multiply by the conjugate of the second argument.
template <bool Conj>
struct Product {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> y, std::complex<T> &r) {
        if constexpr (Conj) y = std::complex<T>(y.real(), -y.imag());
        if (!is_finite(x) || !is_finite(y)) {
            r = x * y;
            return status_of<T>(facts(x, y, false), T(0), T(0), r);
        }
        if constexpr (A != HA && std::is_same_v<T, double>) {
            if (moderate(x, y)) {
                r = {det2(x.real(), y.real(), x.imag(), y.imag()), det2(x.real(), y.imag(), -x.imag(), y.real())};
                if (ordinary(r)) return PAX_STATUS_OK;
            }
        }
        using X = typename ExactOf<T>::type;
        const X a = x.real(), b = x.imag(), c = y.real(), d = y.imag();
        const X re = a * c - b * d, im = a * d + b * c;
        r = {static_cast<T>(re), static_cast<T>(im)};
        return status_of<T>(facts(x, y, false), re, im, r);
    }
};

struct Quotient {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> y, std::complex<T> &r) {
        const bool zero_divisor = y.real() == 0 && y.imag() == 0;
        if (!is_finite(x) || !is_finite(y) || zero_divisor) {
            r = x / y;
            const bool pole = zero_divisor && !(x.real() == 0 && x.imag() == 0);
            return status_of<T>(facts(x, y, pole), T(0), T(0), r);
        }
        if constexpr (A != HA && std::is_same_v<T, double>) {
            if (moderate(x, y)) {
                const double c = y.real(), d = y.imag();
                const double cc = c * c, dd = d * d;
                const double den = cc + (dd + (std::fma(c, c, -cc) + std::fma(d, d, -dd)));
                r = {det2(x.real(), c, -x.imag(), d) / den, det2(x.imag(), c, x.real(), d) / den};
                if (ordinary(r)) return PAX_STATUS_OK;
            }
        }
        using X = typename ExactOf<T>::type;
        const X a = x.real(), b = x.imag(), c = y.real(), d = y.imag();
        const X den = c * c + d * d;
        const X re = (a * c + b * d) / den, im = (b * c - a * d) / den;
        r = {static_cast<T>(re), static_cast<T>(im)};
        return status_of<T>(facts(x, y, false), re, im, r);
    }
};

}  // namespace qon::vm::cx
