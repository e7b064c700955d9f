// Complex exponential, c and z: e^(x + iy) = e^x (cos y + i sin y), from the real exponential
// and sincos.
//
// Careful evaluation (every slot of c, HA of z): in long double (64-bit significand, exponent
// range to 1e+-4932), each component rounded once: within 0.5 ulp plus 2^-10 ulp (z) or 2^-39
// ulp (c), and overflow and underflow of the rounded result are seen in the wide values. Fast
// evaluation (LA and EP of z): in double, three roundings (within 2 ulp); an element whose
// result has a component that is not a normal finite number is evaluated carefully instead, so
// both paths give the same special values and statuses.
//
// Special values are those of C99 Annex G: e^(x + i0) = e^x + i0 (the zero's sign kept),
// e^(+inf + iy) = +inf cis y, e^(-inf + iy) = +0 cis y, e^(-inf + i(inf or NaN)) = +0 + i0 (sign
// of y), e^(+inf + i(inf or NaN)) = +inf + iNaN, e^(x + i(inf or NaN)) = NaN + iNaN for finite x,
// e^(NaN + i0) = NaN + i0, any other NaN argument gives NaN + iNaN.
// Statuses: overflow 3 when a component is infinite from finite arguments; domain 1 when a NaN
// comes from arguments with no NaN (an infinite y, which raises invalid); underflow 4 when a
// component that is not zero exactly (the real one always, the imaginary one unless y = 0)
// becomes subnormal or zero, for arguments with no subnormal part.
#include <cmath>
#include <complex>
#include <limits>

#include "vm/kernels/complex_math.hpp"

namespace {

using namespace qon::vm::cx;

inline void sin_cos(double y, double &s, double &c) { ::sincos(y, &s, &c); }
inline void sin_cos(long double y, long double &s, long double &c) { ::sincosl(y, &s, &c); }

template <class W>
std::complex<W> cexp(std::complex<W> z) {
    const W x = z.real(), y = z.imag();
    const W nan = std::numeric_limits<W>::quiet_NaN();
    if (std::isnan(x)) return {x, y == 0 ? y : nan};
    if (y == 0) return {std::exp(x), y};
    if (!std::isfinite(y)) {
        if (std::isinf(x)) return x > 0 ? std::complex<W>{x, y - y} : std::complex<W>{W(0), std::copysign(W(0), y)};
        return {nan, nan};
    }
    W s, c;
    sin_cos(y, s, c);
    if (std::isinf(x)) return x > 0 ? std::complex<W>{x * c, x * s} : std::complex<W>{W(0) * c, W(0) * s};
    const W e = std::exp(x);
    return {e * c, e * s};
}

struct Exp {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> &r) {
        if constexpr (A != qon::vm::HA && std::is_same_v<T, double>) {
            r = cexp(x);
            if (ordinary(r)) return PAX_STATUS_OK;
        }
        const std::complex<long double> w = cexp(widen<long double>(x));
        r = narrow<T>(w);
        const ArgFacts in = facts(x, false);
        const int status = status_of<T>(in, w.real(), w.imag(), r);
        // A zero from the wide evaluation itself (e^x below the long double range) is still
        // an underflow: the exact components are not zero.
        const bool vanished = r.real() == T(0) || (x.imag() != T(0) && r.imag() == T(0));
        if (status == PAX_STATUS_OK && in.finite && !in.subnormal && vanished) return PAX_STATUS_UNDERFLOW;
        return status;
    }
};

}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, c, Exp, std::complex<float>, float, Exp)
QON_VM_LOOP_KERNELS(U, z, Exp, std::complex<double>, double, Exp)
