// Sinpi: sin(pi x). The argument is reduced exactly: x mod 2 by fmod, then to
// a quadrant and a remainder r with |r| <= 1/4 (elementary.hpp); so the result is accurate
// over the whole range and exact at multiples of 1/2. HA evaluates sin/cos/tan of r in radians
// in the next wider type and rounds once (within 0.5 ulp plus 2^-11 ulp); LA and EP work in the
// element type (scaled argument within an ulp, function within one more: within 3 ulp).
// sinpi(n) is a zero with the sign of n; +-inf is a domain error.
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_KERNELS(U, Sinpi, qon::vm::elementary::ScaledSin<qon::vm::elementary::HalfTurns>)
