// Yn: the Bessel function of the second kind of integer order nu, x > 0. Double HA and LA evaluate
// yn in extended precision and round once; double EP and float take the C library's double yn. Near
// the zeros (x >= |nu|) the error is bounded absolutely, within 1 ulp (HA; 4 LA) of the envelope
// sqrt(2/(pi x)); below the first zero the bound is relative. Orders whose value certainly passes
// every finite value (higher_functions.hpp) give the infinity at once; the C library's cost
// otherwise grows with the order. Y_-n = (-1)^n Y_n. Yn(+inf) = +0; Yn(+-0) = -inf (+inf for odd
// negative orders) with status 2 (singularity); x < 0 gives NaN with status 1 (domain); overflow
// (status 3) where a finite x > 0 gives an infinite result.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Yn {
    template <int A, class T>
    static int eval(T x, int nu, T &r) {
        unsigned n = nu < 0 ? 0u - static_cast<unsigned>(nu) : static_cast<unsigned>(nu);
        T pole = (n & 1) != 0 && nu < 0 ? infinity<T> : -infinity<T>;
        int status;
        if (second_kind_special(x, pole, r, status)) return status;
        if (n > 1 && log_y_bound(n, x) > 800) return give(pole, r, PAX_STATUS_OVERFLOW);
        LD v = integer_order<A>(nu, x, [](int m, LD t) { return ynl(m, t); }, [](int m, double t) { return yn(m, t); });
        return finish(x, v, r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(NU, s, Yn, float, float, Yn)
QON_VM_LOOP_KERNELS(NU, d, Yn, double, double, Yn)
