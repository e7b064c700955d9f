// Complex addition and subtraction, componentwise and correctly rounded (the same kernel for
// every accuracy). Overflow of finite arguments and the NaN of (+inf) + (-inf) are reported;
// an exact subnormal sum is not an underflow, since nothing is lost.
#pragma once

#include "vm/kernels/complex_math.hpp"

namespace qon::vm::cx {

template <int Sign>
struct Sum {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> y, std::complex<T> &r) {
        r = std::complex<T>(x.real() + T(Sign) * y.real(), x.imag() + T(Sign) * y.imag());
        return status_of<T>(facts(x, y, false), T(0), T(0), r);
    }
};

}  // namespace qon::vm::cx
