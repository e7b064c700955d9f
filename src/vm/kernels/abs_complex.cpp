// Complex magnitude |x + iy| = hypot(x, y), computed in the wide type (double for c, long double
// for z) without intermediate overflow and rounded once: within 0.5 ulp + 2^-29 ulp (c) or
// 2^-11 ulp (z). |inf + i NaN| = +inf (C99 Annex G). A finite argument whose magnitude exceeds
// the largest number is an overflow; no normal argument underflows. One kernel for every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Abs {
    template <int A, class T>
    static int eval(std::complex<T> x, T &r) {
        return qon::vm::cx::real_result(x, r, [](auto re, auto im) { return std::hypot(re, im); });
    }
};
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(CR, Abs, Abs)
