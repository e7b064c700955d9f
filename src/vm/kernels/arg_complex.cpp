// Complex argument arg(x + iy) = atan2(y, x) in [-pi, pi], with the signed zeros and infinities
// of atan2 (C99 Annex F): computed in the wide type (double for c, long double for z) and
// rounded once, within 0.5 ulp + 2^-29 ulp (c) or 2^-11 ulp (z). A non-zero result that rounds
// below the smallest normal (a tiny y over a large positive x) is an underflow. One kernel for
// every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Arg {
    template <int A, class T>
    static int eval(std::complex<T> x, T &r) {
        return qon::vm::cx::real_result(x, r, [](auto re, auto im) { return std::atan2(im, re); });
    }
};
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(CR, Arg, Arg)
