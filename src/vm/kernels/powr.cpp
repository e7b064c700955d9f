// Powr: a^b = exp(b ln a) for a >= 0, the IEEE 754 powr: unlike pow, a < 0 (also -inf) is a
// domain error, and so are powr(+-0, +-0), powr(+inf, +-0) and powr(1, +-inf), which give
// NaN; powr(+-0, b < 0) = +inf (a singularity for finite b), powr(+-0, b > 0) = +0,
// powr(+inf, b) = +inf or +0 by the sign of b, powr(1, b) = 1 for finite b, and a NaN
// argument gives NaN. Other arguments are those of pow, computed and reported as in Pow.
#include "vm/kernels/elementary.hpp"

namespace {
struct Powr {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        constexpr T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
        if (std::isnan(x) || std::isnan(y)) {
            r = nan;
            return PAX_STATUS_OK;
        }
        bool invalid = x < 0 || (x == 0 && y == 0) || (std::isinf(x) && y == 0) || (x == 1 && std::isinf(y));
        if (invalid) {
            r = nan;
            return PAX_STATUS_ERRDOM;
        }
        if (x == 0 || std::isinf(x)) {
            r = (x == 0) == (y < 0) ? inf : T(0);
            return x == 0 && y < 0 && std::isfinite(y) ? PAX_STATUS_SING : PAX_STATUS_OK;
        }
        return qon::vm::elementary::PowRoutine::eval<A>(x, y, r);
    }
};
}  // namespace

QON_VM_REAL_KERNELS(B, Powr, Powr)
