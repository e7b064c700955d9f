// Expm1: e^x - 1, accurate near 0.
// HA evaluates the libm function of the next wider type and rounds once (within
// 0.5 ulp plus 2^-11 ulp); LA and EP call the function of the element type (glibc: within 2 ulp).
// Overflow above the range.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct Expm1F {
    template <class W>
    static W f(W w) {
        return std::expm1(w);
    }
};
}  // namespace

QON_VM_REAL_KERNELS(U, Expm1, Libm<Expm1F>)
