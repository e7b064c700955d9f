// Shared pieces of the real elementary-function kernels (element loops over libm): the working
// precision of each accuracy, pi and degree constants, the exact reduction of pi- and
// degree-scaled arguments, and the classification of results into statuses.
//
// Working precision: HA evaluates in the next wider type (double for float, long double for
// double) and rounds once to the element type; the wider functions of glibc are accurate to a
// few of their own ulps, 2^-29 or 2^-11 of an element ulp, so HA results stay within
// 0.5 ulp plus that. LA and EP evaluate in the element type.
//
// Statuses, for arguments none of which is NaN (a NaN argument gives NaN and no report):
//   a NaN result is a domain error (1); an infinite result from finite arguments is an overflow
//   (3) unless the routine has already named it a singularity (2, a pole hit exactly); a
//   subnormal or zero result from normal arguments whose exact value is non-zero is an
//   underflow (4). Exact operations (additions, remainders, rounding, selection) never report
//   underflow: their subnormal results are exact.
#pragma once

#include <qon/qon_pax.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include "vm/kernels/element_loop.hpp"

namespace qon::vm::elementary {

template <class T>
struct Wider;
template <>
struct Wider<float> {
    using type = double;
};
template <>
struct Wider<double> {
    using type = long double;
};
template <int A, class T>
using Work = std::conditional_t<A == HA, typename Wider<T>::type, T>;

// pi and pi/180 in the working type, from long double literals.
template <class W>
inline constexpr W pi = static_cast<W>(3.14159265358979323846264338327950288L);
template <class W>
inline constexpr W degree = static_cast<W>(0.0174532925199432957692369076848861271L);

// f evaluated in the working precision of accuracy A and rounded once to T.
template <int A, class T, class F>
T in_work(T x, F f) {
    using W = Work<A, T>;
    return static_cast<T>(f(static_cast<W>(x)));
}
template <int A, class T, class F>
T in_work(T x, T y, F f) {
    using W = Work<A, T>;
    return static_cast<T>(f(static_cast<W>(x), static_cast<W>(y)));
}

template <class T>
bool tiny(T r) {
    return std::fabs(r) < std::numeric_limits<T>::min();
}

template <class... T>
bool any_nan(T... v) {
    return (std::isnan(v) || ...);
}

// Domain error or overflow, as described above.
template <class T, class... Args>
int classify(T r, Args... args) {
    if (any_nan(args...)) return PAX_STATUS_OK;
    if (std::isnan(r)) return PAX_STATUS_ERRDOM;
    if (std::isinf(r) && (std::isfinite(args) && ...)) return PAX_STATUS_OVERFLOW;
    return PAX_STATUS_OK;
}

// The same, and underflow for a tiny result from normal arguments: for routines whose exact
// value is non-zero whenever the arguments are (the caller excludes its exact zeros).
template <class T, class... Args>
int classify_underflow(T r, Args... args) {
    int st = classify(r, args...);
    if (st == PAX_STATUS_OK && tiny(r) && (std::isnormal(args) && ...)) return PAX_STATUS_UNDERFLOW;
    return st;
}

// x = (4 m + k + r/q) q with integer m, quadrant k in 0..3, q a quarter of the period and
// |r| <= q/2 (up to rounding of the quadrant choice). The period, 2 for pi-scaled and 360 for
// degree functions, is exact, so fmod is exact and so is r = t - k q: |t| < 4 q, k q is an
// integer multiple of ulp(t) and |r| is small.
template <class T>
struct Quadrant {
    T r;
    int k;
};
template <class T>
Quadrant<T> reduce(T x, T period) {
    T q = period / 4;
    T t = std::fmod(x, period);
    T k = std::nearbyint(t / q);
    return {t - k * q, (static_cast<int>(k) % 4 + 4) % 4};
}

// sin of (k + r/q) q, the argument of r being w = r * scale radians: +-sin w or +-cos w by
// quadrant. At r = 0 the values are exact: +-1, or the zero given (sin at a multiple of the
// half period is a zero with the sign of x). cos((k + r/q) q) is sin((k + 1 + r/q) q) with zero
// +0, as cos is +0 at odd quarters.
template <int A, class T>
T scaled_sin(Quadrant<T> q, Work<A, T> scale, T zero) {
    using W = Work<A, T>;
    if (q.r == 0) {
        const T exact[4] = {zero, T(1), zero, T(-1)};
        return exact[q.k];
    }
    W w = static_cast<W>(q.r) * scale;
    W v = q.k % 2 == 0 ? std::sin(w) : std::cos(w);
    return static_cast<T>(q.k >= 2 ? -v : v);
}
template <int A, class T>
T scaled_cos(Quadrant<T> q, Work<A, T> scale) {
    return scaled_sin<A>(Quadrant<T>{q.r, (q.k + 1) % 4}, scale, T(0));
}

// Arguments in half turns (period 2, pi radians per unit) and in degrees (period 360).
struct HalfTurns {
    static constexpr int period = 2;
    template <class W>
    static constexpr W scale = pi<W>;
};
struct Degrees {
    static constexpr int period = 360;
    template <class W>
    static constexpr W scale = degree<W>;
};

// A non-finite argument of a periodic function gives NaN, a domain error for +-inf.
template <class T>
int periodic_nonfinite(T x, T &r) {
    r = x - x;
    return std::isinf(x) ? PAX_STATUS_ERRDOM : PAX_STATUS_OK;
}

// sin and cos of arguments in units U, exact at multiples of the quarter period; the result of
// a non-zero reduced argument is classified (sin of a tiny degree argument underflows).
template <class U>
struct ScaledSin {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (!std::isfinite(x)) return periodic_nonfinite(x, r);
        Quadrant<T> q = reduce(x, T(U::period));
        r = scaled_sin<A>(q, U::template scale<Work<A, T>>, std::copysign(T(0), x));
        return q.r == 0 ? PAX_STATUS_OK : classify_underflow(r, x);
    }
};
template <class U>
struct ScaledCos {
    template <int A, class T>
    static int eval(T x, T &r) {
        if (!std::isfinite(x)) return periodic_nonfinite(x, r);
        r = scaled_cos<A>(reduce(x, T(U::period)), U::template scale<Work<A, T>>);
        return PAX_STATUS_OK;
    }
};
template <class U>
struct ScaledSinCos {
    template <int A, class T>
    static int eval(T x, T &s, T &c) {
        if (!std::isfinite(x)) {
            c = x - x;
            return periodic_nonfinite(x, s);
        }
        Quadrant<T> q = reduce(x, T(U::period));
        s = scaled_sin<A>(q, U::template scale<Work<A, T>>, std::copysign(T(0), x));
        c = scaled_cos<A>(q, U::template scale<Work<A, T>>);
        return q.r == 0 ? PAX_STATUS_OK : classify_underflow(s, x);
    }
};

// tan of arguments in units U: tan w for even quadrants, -1/tan w for odd ones; tan is exactly
// +-1 at odd multiples of the eighth period. At multiples of the quarter period the values are
// exact and follow sin/cos: zeros with the sign of x at
// even multiples of the half period and of -x at odd ones; the poles (odd quarters) are
// singularities, +inf at quadrant 1 and -inf at quadrant 3.
template <class U>
struct ScaledTan {
    template <int A, class T>
    static int eval(T x, T &r) {
        using W = Work<A, T>;
        if (!std::isfinite(x)) return periodic_nonfinite(x, r);
        Quadrant<T> q = reduce(x, T(U::period));
        if (q.r == 0) {
            constexpr T inf = std::numeric_limits<T>::infinity();
            T zero = std::copysign(T(0), x);
            const T exact[4] = {zero, inf, -zero, -inf};
            r = exact[q.k];
            return q.k % 2 != 0 ? PAX_STATUS_SING : PAX_STATUS_OK;
        }
        W t = std::fabs(q.r) == T(U::period) / 8 ? W(q.r > 0 ? 1 : -1)
                                                 : std::tan(static_cast<W>(q.r) * U::template scale<W>);
        r = static_cast<T>(q.k % 2 == 0 ? t : -1 / t);
        return classify_underflow(r, x);
    }
};

// The status of a result r of arguments args under the traits of a routine F:
//   `template <class T> static bool pole(T x)`  an infinite result at these arguments is a
//                                                singularity;
//   `static constexpr bool underflows = true`   a tiny result from normal arguments is an
//                                                underflow (its exact value is never zero);
//   `static constexpr bool classified = true`   domain errors and overflows are reported (the
//                                                libm routines always are).
template <class F, bool always_classified, class T, class... Args>
int status_of(T r, T x, Args... more) {
    if constexpr (requires { F::pole(x); })
        if (std::isinf(r) && F::pole(x)) return PAX_STATUS_SING;
    if constexpr (requires { F::underflows; }) return classify_underflow(r, x, more...);
    else if constexpr (always_classified || requires { F::classified; }) return classify(r, x, more...);
    else return PAX_STATUS_OK;
}

// A routine over a libm expression F::f of one or two working values, rounded once to the
// element type. `static constexpr bool wide_double = true` makes every double slot work in
// long double (where the double libm function is too far from the LA bound).
template <class F>
struct Libm {
    template <int A, class T>
    static constexpr int accuracy() {
        if constexpr (requires { F::wide_double; }) return std::is_same_v<T, double> ? HA : A;
        else return A;
    }
    template <int A, class T>
    static int eval(T x, T &r) {
        r = in_work<accuracy<A, T>()>(x, [](auto w) { return F::f(w); });
        return status_of<F, true>(r, x);
    }
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = in_work<accuracy<A, T>()>(x, y, [](auto u, auto v) { return F::f(u, v); });
        return status_of<F, true>(r, x, y);
    }
};

// A routine whose result F::f in the element type is exact or correctly rounded (rounding,
// selection, arithmetic); it serves every accuracy.
template <class F>
struct Exact {
    template <int A, class T>
    static int eval(T x, T &r) {
        r = F::f(x);
        return status_of<F, false>(r, x);
    }
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = F::f(x, y);
        return status_of<F, false>(r, x, y);
    }
};

// pow(x, y) as C99 Annex F defines it, in the working precision: a zero raised to a finite
// negative power is a singularity; a negative finite x with a non-integer y a domain error.
struct PowRoutine {
    template <int A, class T>
    static int eval(T x, T y, T &r) {
        r = in_work<A>(x, y, [](auto u, auto v) { return std::pow(u, v); });
        if (x == 0 && y < 0 && std::isfinite(y)) return PAX_STATUS_SING;
        return classify_underflow(r, x, y);
    }
};

}  // namespace qon::vm::elementary

// The kernels of a real function in both element types from one routine, per accuracy or
// shared by all three.
#define QON_VM_REAL_KERNELS(fam, F, Routine)                  \
    QON_VM_LOOP_KERNELS(fam, s, F, float, float, Routine)     \
    QON_VM_LOOP_KERNELS(fam, d, F, double, double, Routine)
#define QON_VM_REAL_KERNELS_SHARED(fam, F, Routine)                  \
    QON_VM_LOOP_KERNELS_SHARED(fam, s, F, float, float, Routine)     \
    QON_VM_LOOP_KERNELS_SHARED(fam, d, F, double, double, Routine)

// One-line definitions of a real function's kernels from an expression: of the working value w
// (QON_VM_REAL_LIBM) or of u and v (QON_VM_REAL_LIBM2), per accuracy; of x (QON_VM_REAL_EXACT)
// or of x and y (QON_VM_REAL_EXACT2) in the element type T, one kernel for every accuracy. The
// trailing arguments are traits (see status_of).
#define QON_VM_POLE(condition)   \
    template <class T>           \
    static bool pole(T x) {      \
        return condition;        \
    }
#define QON_VM_UNDERFLOWS static constexpr bool underflows = true;
#define QON_VM_CLASSIFIED static constexpr bool classified = true;
#define QON_VM_WIDE_DOUBLE static constexpr bool wide_double = true;

#define QON_VM_REAL_EXPRESSION(F, params, expression, traits)  \
    namespace {                                                \
    using namespace qon::vm::elementary;                       \
    struct F##Expression {                                     \
        template <class T>                                     \
        static T f params {                                    \
            return expression;                                 \
        }                                                      \
        traits                                                 \
    };                                                         \
    }
#define QON_VM_REAL_LIBM(F, expression, ...)                           \
    QON_VM_REAL_EXPRESSION(F, (T w), expression, __VA_ARGS__)          \
    QON_VM_REAL_KERNELS(U, F, qon::vm::elementary::Libm<F##Expression>)
#define QON_VM_REAL_LIBM2(F, expression, ...)                          \
    QON_VM_REAL_EXPRESSION(F, (T u, T v), expression, __VA_ARGS__)     \
    QON_VM_REAL_KERNELS(B, F, qon::vm::elementary::Libm<F##Expression>)
#define QON_VM_REAL_EXACT(F, expression, ...)                                  \
    QON_VM_REAL_EXPRESSION(F, (T x), expression, __VA_ARGS__)                  \
    QON_VM_REAL_KERNELS_SHARED(U, F, qon::vm::elementary::Exact<F##Expression>)
#define QON_VM_REAL_EXACT2(F, expression, ...)                                 \
    QON_VM_REAL_EXPRESSION(F, (T x, T y), expression, __VA_ARGS__)             \
    QON_VM_REAL_KERNELS_SHARED(B, F, qon::vm::elementary::Exact<F##Expression>)
