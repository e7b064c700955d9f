// Complex power x^y = exp(y ln x), principal branch (the cut of ln along the negative real axis).
// Every slot evaluates it in the wide type (double for c, long double for z) and rounds each
// component once. The error of the wide evaluation is about |y ln x| wide ulps in the exponent,
// so the result is within 0.5 ulp + |y ln x| 2^-29 ulp (c) or 2^-11 ulp (z) of |x^y|: the
// bound is normwise (relative to |x^y|), as a component that cancels to near zero is as
// sensitive to the arguments as that. Special cases: x^0 = 1 for every x; 0^y = 0 when
// Re y > 0, an infinite result with a singularity when Re y < 0, and NaN with a domain error
// when Re y = 0 and Im y != 0.
#pragma once

#include "vm/kernels/complex_math.hpp"

namespace qon::vm::cx {

struct Power {
    template <class C>
    static C f(C x, C y) {
        using R = typename C::value_type;
        if (y.real() == 0 && y.imag() == 0) return C(1);
        if (x.real() == 0 && x.imag() == 0) {
            if (y.real() > 0) return C(0);
            if (y.real() < 0) return C(std::numeric_limits<R>::infinity(), R(0));
            return C(std::numeric_limits<R>::quiet_NaN(), std::numeric_limits<R>::quiet_NaN());
        }
        return std::exp(y * std::log(x));
    }
    template <class C>
    static bool pole(C x, C y) {
        return x.real() == 0 && x.imag() == 0 && y.real() < 0;
    }
};

using PowRoutine = Binary<Power, false>;

}  // namespace qon::vm::cx
