// Erf: erf(x). Double HA evaluates erf in extended precision and rounds once (within
// 0.5 + 2^-9 ulp); double LA and EP take the C library's erf (measured within 1 ulp); float
// rounds the double erf once. erf(+-0) = +-0, erf(+-inf) = +-1. No argument is exceptional:
// |erf(x)| >= 1.128 |x| near zero, so a normal argument never gives a subnormal result.
#include "vm/kernels/higher_functions.hpp"

namespace {
using namespace qon::vm::special;

struct Erf {
    template <int A, class T>
    static int eval(T x, T &r) {
        r = extended<A, T>(true) ? static_cast<T>(std::erf(LD(x))) : static_cast<T>(std::erf(double(x)));
        return PAX_STATUS_OK;
    }
};
}  // namespace

QON_VM_LOOP_KERNELS_SHARED(U, s, Erf, float, float, Erf)
QON_VM_LOOP_KERNELS(U, d, Erf, double, double, Erf)
