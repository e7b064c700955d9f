// Tand: tan(x degrees). The argument is reduced exactly: x mod 360 by fmod, then to
// a quadrant and a remainder r with |r| <= 45 (elementary.hpp); so the result is accurate
// over the whole range and exact at multiples of 90. HA evaluates sin/cos/tan of r in radians
// in the next wider type and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the
// element type (scaled argument within an ulp, function within one more: within 3 ulp).
// tand(180 n) is a zero with the sign of sind/cosd, tand(90 + 180 n) a singularity (+inf
// for even n, -inf for odd n); a tiny result from a tiny normal x underflows; +-inf is a
// domain error.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_KERNELS(U, Tand, qon::vm::elementary::ScaledTan<qon::vm::elementary::Degrees>)
