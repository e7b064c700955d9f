// Sin: sine, double and single precision, on the reductions and fitted polynomials of trig.hpp.
//   double HA: by pi/2, paired, the sine and cosine pairs of r in every lane (S 6 and C 6
//       coefficients), the quadrant's pair rounded once.
//   double LA: by pi, three constants, 8 coefficients.
//   double EP: by pi, two constants, r Q(z) with Q of 5 coefficients by Horner's scheme (fit
//       error 2^-27.3, below 1 at the ends of the interval, so no clamp).
//   single HA: by pi in double lanes, 5 coefficients, rounded once; LA: in float lanes, three
//       constants, 5 coefficients; EP: float lanes, three constants, r Q(z) with Q of 3
//       coefficients (2^-12.8, below 1 up to r = pi/2 + 2^-4, where the float reduction can
//       reach, so no clamp).
// Measured (1e7 arguments per region, and the values next to k pi/2): double HA 0.794 ulp, LA
// 2.33 ulp, EP 5.4e7 ulp (2^-27.3 relative); single HA 0.503 ulp, LA 2.39 ulp, EP 2330 ulp
// (2^-12.8 relative). Lanes with |x| > 2^20, infinities and NaN go to the scalar routine: sinl
// rounded once, +-inf a domain error (NaN). sin(+-0) = +-0: the HA method subtracts a low part
// that is +0 there, EP multiplies r = +-0 (the parts of pi are positive), and the others select
// x at zero.
#include <cmath>

#include "vm/kernels/trig.hpp"

namespace {

using namespace qon::vm::trig;

struct SinKind {
    static constexpr bool cosine = false;
    static long double f(long double w) { return sinl(w); }
};

}  // namespace

QON_VM_SINE_KERNELS(Sin, SinKind)
