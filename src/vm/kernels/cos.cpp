// Cos: cosine, double and single precision, on the reduction and pairs of trig.hpp.
//   double HA: paired reduction, S of 9 and C of 8 Taylor terms (truncation below 2^-62),
//       hi + lo rounded once: measured 0.59 ulp (3e6 arguments).
//   double LA: plain three-constant reduction (r rounded once, its error relative to the
//       result grows where |r| is small against x), 8 and 7 terms: measured 2.17 ulp.
//   double EP: plain reduction, 5 and 4 terms (truncation 2^-33): measured 1.0e6 ulp
//       (2^-32 relative).
//   single, every slot: the double EP evaluation in double lanes rounded once: measured
//       0.502 ulp.
// Lanes with |x| > 2^20, infinities and NaN go to the scalar routine: cosl rounded once, +-inf a
// domain error (NaN).
#include <cmath>

#include "vm/kernels/trig.hpp"

namespace {

using namespace qon::vm::trig;

struct CosKind {
    template <class V>
    static V combine(V, const Reduced<V> &a, Pair<V> s, Pair<V> c) {
        V sin_x, cos_x;
        sin_cos(a, s.value(), c.value(), sin_x, cos_x);
        return cos_x;
    }
    static long double f(long double w) { return cosl(w); }
};

}  // namespace

QON_VM_TRIG_KERNELS(Cos, CosKind)
