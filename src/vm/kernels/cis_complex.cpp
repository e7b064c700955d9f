// cis x = cos x + i sin x of a real argument, both parts from the wide type's cosine and sine
// (double for c, long double for z) rounded once: within 0.5 ulp + 2^-29 ulp (c) or 2^-11 ulp
// (z). An infinite argument gives NaN + i NaN and a domain error. One kernel for every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct CIS {
    template <int A, class T>
    static int eval(T x, std::complex<T> &r) {
        using W = qon::vm::cx::Wide<T>;
        const W c = std::cos(static_cast<W>(x)), s = std::sin(static_cast<W>(x));
        r = {static_cast<T>(c), static_cast<T>(s)};
        return qon::vm::cx::status_of<T>(qon::vm::cx::facts(std::complex<T>(x, T(0)), false), c, s, r);
    }
};
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(RC, CIS, CIS)
