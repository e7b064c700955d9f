// Complex conjugate, conj(x + iy) = x - iy: exact, the sign of the imaginary part flipped (also
// of zeros and NaNs); no element is exceptional. One kernel serves every accuracy.
#include "vm/kernels/complex_math.hpp"

namespace {
struct Conj {
    template <int A, class T>
    static int eval(std::complex<T> x, std::complex<T> &r) {
        r = std::complex<T>(x.real(), -x.imag());
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_COMPLEX_KERNELS_SHARED(U, Conj, Conj)
