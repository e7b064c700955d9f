// Jn: the Bessel function of the first kind of integer order nu. Double HA and LA evaluate jn in
// extended precision and round once; double EP and float take the C library's double jn. Near the
// zeros (|x| >= |nu|) the error is bounded absolutely, within 1 ulp (HA; 4 LA) of the envelope
// sqrt(2/(pi |x|)); below the first zero the bound is relative. Orders whose value is certainly
// below every subnormal (higher_functions.hpp) give a signed zero at once; the C library's cost
// otherwise grows with the order. J_-n = (-1)^n J_n, J_n(-x) = (-1)^n J_n(x); Jn(+-inf) = signed
// zero; Jn(0) = 1 for nu = 0 and a signed zero otherwise. Underflow (status 4) where a normal x
// gives a subnormal or zero result.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Jn {
    template <int A, class T>
    static int eval(T x, int nu, T &r) {
        if (std::isnan(x)) return give(x, r, PAX_STATUS_OK);
        unsigned n = nu < 0 ? 0u - static_cast<unsigned>(nu) : static_cast<unsigned>(nu);
        bool odd_negative = (n & 1) != 0 && (std::signbit(x) != (nu < 0));
        if (std::isinf(x) || x == 0) {
            if (n == 0 && x == 0) return give(T(1), r, PAX_STATUS_OK);
            return give(odd_negative ? -T(0) : T(0), r, PAX_STATUS_OK);
        }
        LD ax = std::fabs(LD(x));
        if (n > 1 && log_j_bound(n, ax) < -800) return finish(x, odd_negative ? -0.0L : 0.0L, r);
        LD v = integer_order<A>(nu, x, [](int m, LD t) { return jnl(m, t); }, [](int m, double t) { return jn(m, t); });
        return finish(x, v, r);
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(NU, s, Jn, float, float, Jn)
QON_VM_LOOP_KERNELS(NU, d, Jn, double, double, Jn)
