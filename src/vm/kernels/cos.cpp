// Cos: cosine, double and single precision, on the reductions of trig.hpp, with the slots of
// Sin: by pi the cosine is (-1)^(f+1) sin r with r = x - (f + 1/2) pi, f = floor(x/pi), so near
// its zeros the result keeps the relative accuracy of r. EP evaluates r Q(z) with Q's constant
// free (double 5 coefficients, float 3), fitted to overshoot 1 at pi/2 and clamped to [-1, 1],
// so cos 0 is 1. Measured (1e7 arguments per region): double HA 0.76 ulp, LA 2.44 ulp, EP
// 5.4e7 ulp (27.3 bits); single HA 0.503, LA 2.47, EP 3690 ulp (2^-12.2 relative).
// Lanes with |x| > 2^20, infinities and NaN go to the scalar routine: cosl rounded once, +-inf
// a domain error (NaN).
#include <cmath>

#include "vm/kernels/trig.hpp"

namespace {

using namespace qon::vm::trig;

struct CosKind {
    static constexpr bool cosine = true;
    static long double f(long double w) { return cosl(w); }
};

}  // namespace

QON_VM_SINE_KERNELS(Cos, CosKind)
