// Complex multiplication and division, one kernel for every accuracy.
//
//     (a + ib)(c + id)     = (ac - bd) + i(ad + bc)
//     (a + ib) / (c + id)  = ((ac + bd) + i(bc - ad)) / (c^2 + d^2)
// Reference route: the parts are computed in a type in which the product of two components is
// exact and cannot overflow or underflow (double for c, __float128 for z), so a product part has
// one rounding before the final one (within 0.5 ulp + 2^-29 ulp for c, 0.5 ulp + 2^-59 ulp for
// z, componentwise) and a quotient part three (0.5 ulp + 2^-27, resp. 2^-57 ulp). Overflow and
// underflow of the rounded result are then exactly known.
// Fast route of z, for non-zero components in [2^-250, 2^250]: each sum of two products as a
// double-double (exact products by fma, two-sum, error terms in the tail), a quotient part as
// that double-double over c^2 + d^2 with one correction by the exact remainder; taken when no
// sum cancels by 2^20 or more (and, for a quotient, its parts are normal), which bounds it by
// 0.5 ulp + 2^-30 ulp componentwise. Other elements take the reference route, so both give the same
// results to within that bound and the same statuses.
// Infinite and NaN arguments and a zero divisor follow C99 Annex G (the compiler's complex
// multiplication and division).
#pragma once

#include "vm/kernels/complex_math.hpp"

namespace qon::vm::cx {

// Every non-zero component in [2^-250, 2^250]: the double-double forms below neither overflow
// nor lose bits of an error term to underflow.
inline bool moderate(double v) {
    const double m = std::fabs(v);
    return m == 0.0 || (m >= 0x1p-250 && m <= 0x1p250);
}
inline bool moderate(std::complex<double> x, std::complex<double> y) {
    return moderate(x.real()) && moderate(x.imag()) && moderate(y.real()) && moderate(y.imag());
}

// A double-double value hi + lo, |lo| <= ulp(hi)/2.
struct DD {
    double hi, lo;
};
inline DD fast_two_sum(double a, double b) {
    const double s = a + b;
    return {s, b - (s - a)};
}

// a*b + c*d as a double-double: both products exact (fma), their sum by two-sum, the error terms
// added to the tail. The tail carries an error below 2^-104 (|ab| + |cd|); `safe` says the sum
// cancelled by less than 2^20, so that error is below 2^-84 of the result.
inline DD dot2(double a, double b, double c, double d, bool &safe) {
    const double p = a * b, q = c * d;
    const double ep = std::fma(a, b, -p), eq = std::fma(c, d, -q);
    const double s = p + q, z = s - p;
    const double t = (p - (s - z)) + (q - z);
    safe = safe && std::fabs(s) * 0x1p20 >= std::fabs(p) + std::fabs(q);
    const double tail = t + (ep + eq);
    return tail == 0 ? DD{s, 0.0} : fast_two_sum(s, tail);  // an exact sum keeps the sign of its zero
}

// (nh + nl) / (dh + dl) for dh > 0: the quotient of the leading parts corrected once by the
// exact remainder, within 0.5 ulp + 2^-40 ulp when both tails are below 2^-52 of their heads.
inline double divide(DD n, DD d) {
    const double q = n.hi / d.hi;
    const double r = std::fma(-q, d.hi, n.hi);
    return q + (r + n.lo - q * d.lo) / d.hi;
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
        if constexpr (std::is_same_v<T, double>) {
            if (moderate(x, y)) {
                bool safe = true;
                const DD re = dot2(x.real(), y.real(), -x.imag(), y.imag(), safe);
                const DD im = dot2(x.real(), y.imag(), x.imag(), y.real(), safe);
                r = {re.hi, im.hi};
                // In this range a part is an exact zero or a normal number.
                if (safe) return PAX_STATUS_OK;
            }
        }
        using X = Exact<T>;
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
        if constexpr (std::is_same_v<T, double>) {
            if (moderate(x, y)) {
                const double c = y.real(), d = y.imag();
                bool safe = true;
                const DD den = dot2(c, c, d, d, safe);
                const DD re = dot2(x.real(), c, x.imag(), d, safe);
                const DD im = dot2(x.imag(), c, -x.real(), d, safe);
                r = {divide(re, den), divide(im, den)};
                if (safe && ordinary(r)) return PAX_STATUS_OK;
            }
        }
        using X = Exact<T>;
        const X a = x.real(), b = x.imag(), c = y.real(), d = y.imag();
        const X den = c * c + d * d;
        const X re = (a * c + b * d) / den, im = (b * c - a * d) / den;
        r = {static_cast<T>(re), static_cast<T>(im)};
        return status_of<T>(facts(x, y, false), re, im, r);
    }
};

}  // namespace qon::vm::cx
