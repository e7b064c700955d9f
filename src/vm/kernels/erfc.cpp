// Erfc: erfc(x) = 1 - erf(x). Double HA evaluates erfc in extended precision and rounds once
// (within 0.5 + 2^-9 ulp, subnormal results included); double LA and EP take the C library's
// erfc (measured within 3.1 ulp); float rounds the double erfc once. erfc(-inf) = 2,
// erfc(+inf) = +0. Underflow (status 4) from x = 26.55 (double) or 9.19 (float) on, where the
// result is subnormal; beyond 27.3 (double) it is +0.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Erfc {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        if (std::isinf(x)) return give(x > 0 ? T(0) : T(2), r, PAX_STATUS_OK);
        if (x > 28) return give(T(0), r, PAX_STATUS_UNDERFLOW);
        LD v = extended<A, T>(true) ? std::erfc(LD(x)) : LD(std::erfc(double(x)));
        return finish(x, v, r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, Erfc, float, float, Erfc)
QON_VM_LOOP_KERNELS(U, d, Erfc, double, double, Erfc)
