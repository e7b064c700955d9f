// Log2: binary logarithm.
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
// x < 0 is a domain error, x = +-0 a singularity (-inf).
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct Log2F {
    template <class W>
    static W f(W w) {
        return std::log2(w);
    }
    template <class T>
    static bool pole(T x) {
        return x == 0;
    }
};
}  // namespace

QON_VM_REAL_KERNELS(U, Log2, Libm<Log2F>)
