// Fmod: a - n b with n = trunc(a/b), the sign of a; exact (libm's fmod), one kernel serves
// every accuracy. b = +-0 and a = +-inf are domain errors (NaN); fmod(a, +-inf) = a.
#include "vm/kernels/elementary.hpp"

namespace {
struct Fmod {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = std::fmod(x, y);
        return qon::vm::elementary::classify(r, x, y);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Fmod, Fmod)
