// SinCos: sin x (first result) and cos x (second), with libm's full-range argument reduction.
// HA evaluates the functions of the next wider type and rounds once (within 0.5 ulp plus
// 2^-11 ulp); LA and EP call those of the element type (glibc: within 2 ulp). +-inf is a
// domain error (two NaN).
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;
struct SinCos {
    template <int A, class T>
    static int eval(T x, T &s, T &c) {
        s = in_work<A>(x, [](auto w) { return std::sin(w); });
        c = in_work<A>(x, [](auto w) { return std::cos(w); });
        return classify(s, x);
    }
};
}  // namespace

QON_VM_REAL_KERNELS(U2, SinCos, SinCos)
