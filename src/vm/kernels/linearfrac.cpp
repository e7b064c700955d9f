// LinearFrac: r = (scalea a + shifta) / (scaleb b + shiftb). Numerator and denominator are each
// one fused multiply-add: HA computes them and the quotient in the next wider type and rounds
// once (within 0.5 ulp plus 2^-10 ulp, whatever the cancellation in either sum); LA and EP in
// the element type (three roundings of half an ulp each, relative: within 3 ulp), falling back
// to the HA computation when the numerator or denominator is zero, subnormal or beyond the
// range of the element type.
// Statuses, judged on the arguments a, b and the four scalars together: a NaN among them gives
// NaN and no report; a zero denominator under a finite non-zero numerator is a singularity
// (+-inf); other NaN results (0/0, inf/inf, inf - inf) are domain errors; an infinite result
// from finite values an overflow; a subnormal or zero result from normal a and b and a
// non-zero numerator an underflow.
#include "vm/kernels/elementary.hpp"

namespace {
using namespace qon::vm::elementary;

struct LinearFrac {
    template <class W, class T>
    static int quotient(T a, T b, T scalea, T shifta, T scaleb, T shiftb, T &r) {
        W num = std::fma(W(scalea), W(a), W(shifta));
        W den = std::fma(W(scaleb), W(b), W(shiftb));
        if constexpr (std::is_same_v<W, T>)
            if (!std::isnormal(num) || !std::isnormal(den)) return -1;
        r = static_cast<T>(num / den);
        if (any_nan(a, b, scalea, shifta, scaleb, shiftb)) return PAX_STATUS_OK;
        if (den == 0 && num != 0 && std::isfinite(num)) return PAX_STATUS_SING;
        int st = classify(r, a, b, scalea, shifta, scaleb, shiftb);
        if (st == PAX_STATUS_OK && tiny(r) && num != 0 && std::isnormal(a) && std::isnormal(b))
            return PAX_STATUS_UNDERFLOW;
        return st;
    }
    template <int A, class T>
    static int eval(T a, T b, T scalea, T shifta, T scaleb, T shiftb, T &r) {
        int st = quotient<Work<A, T>>(a, b, scalea, shifta, scaleb, shiftb, r);
        return st >= 0 ? st : quotient<Work<qon::vm::HA, T>>(a, b, scalea, shifta, scaleb, shiftb, r);
    }
};
}  // namespace

QON_VM_REAL_KERNELS(LF, LinearFrac, LinearFrac)
