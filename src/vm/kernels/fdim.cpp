// Fdim: the positive difference, a - b when a > b and +0 otherwise; correctly rounded, one
// kernel serves every accuracy. An infinite difference of finite arguments is an overflow.
#include "vm/kernels/elementary.hpp"

namespace {
struct Fdim {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = std::fdim(x, y);
        return qon::vm::elementary::classify(r, x, y);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(B, Fdim, Fdim)
