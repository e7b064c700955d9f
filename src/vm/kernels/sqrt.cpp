// Sqrt: square root, correctly rounded by the hardware instruction; one kernel serves every
// accuracy. sqrt(-0) = -0; x < 0 (and -inf) is a domain error.
#include "vm/kernels/elementary.hpp"

namespace {
struct Sqrt {
    template <int A, class T>
    static int eval(T x, T &r) {
        r = std::sqrt(x);
        return qon::vm::elementary::classify(r, x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Sqrt, Sqrt)
