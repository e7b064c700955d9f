// SinCospi: sin(pi x) (first result) and cos(pi x) (second). The argument is reduced exactly:
// x mod 2 by fmod, then to a quadrant and a remainder r with |r| <= 1/4 (elementary.hpp); so the
// results are accurate over the whole range and exact at multiples of 1/2. HA evaluates sin and
// cos of r in radians in the next wider type and rounds once (within 0.5 ulp plus 2^-11 ulp);
// LA and EP work in the element type (scaled argument within an ulp, function within one more:
// within 3 ulp). The exact values are those of Sinpi and Cospi; +-inf is a domain error (two
// NaN).
#include "vm/kernels/elementary.hpp"

QON_VM_REAL_KERNELS(U2, SinCospi, qon::vm::elementary::ScaledSinCos<qon::vm::elementary::HalfTurns>)
