// Sin: sine, double and single precision, on the reductions of trig.hpp.
//   double HA: by pi/2, paired, one polynomial per lane (S or C, 8 Taylor terms each), hi + lo
//       rounded once.
//   double LA: by pi, three constants, 10 terms.
//   double EP: by pi, two constants, 6 terms (truncation 2^-30).
//   single HA: by pi in double lanes, 6 terms, rounded once; LA: in float lanes, three
//       constants, 6 terms; EP: float lanes, 4 terms (truncation 2^-18).
// Measured (3e6 arguments per slot, and the values next to k pi/2): double HA 0.78 ulp, LA
// 2.31 ulp, EP 6.0e6 ulp (30 correct bits); single HA 0.51 ulp, LA 2.34 ulp, EP 78 ulp (17 bits).
// Lanes with |x| > 2^20, infinities and NaN go to the scalar routine: sinl rounded once, +-inf a
// domain error (NaN). sin(+-0) = +-0 is kept by selecting x at zero.
#include <cmath>

#include "vm/kernels/trig.hpp"

namespace {

using namespace qon::vm::trig;

struct SinKind {
    static constexpr bool cosine = false;
    static constexpr bool carried = false;
    template <class V>
    static V combine(V x, const Reduced<V> &a, Pair<V> s, Pair<V> c) {
        V sin_x, cos_x;
        sin_cos(a, s.value(), c.value(), sin_x, cos_x);
        return select(eq(x, splat<V>(0.0)), x, sin_x);
    }
    static long double f(long double w) { return sinl(w); }
};

}  // namespace

QON_VM_SINE_KERNELS(Sin, SinKind)
