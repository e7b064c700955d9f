// Frac: the fractional part x - trunc(x), with the sign of x (a zero of that sign for integers
// and infinities); exact, one kernel serves every accuracy, never reports.
#include "vm/kernels/elementary.hpp"

namespace {
struct FracF {
    template <class T>
    static T f(T x) {
        T whole;
        return std::modf(x, &whole);
    }
};
}  // namespace

QON_VM_REAL_KERNELS_SHARED(U, Frac, qon::vm::elementary::Exact<FracF>)
