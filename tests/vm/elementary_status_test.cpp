// Special values and statuses of the real elementary functions, in every slot of the s and d
// tables: C99 Annex F / IEEE 754 values and the statuses a user expects (1 domain, 2
// singularity, 3 overflow, 4 underflow), checked through an error call-back that also sees
// the reporting function's name.
#include "common/error_recorder.hpp"

#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

qon::test::SeenError &seen = qon::test::seen_error;

class ElementaryStatus : public qon::test::RecordingErrors {};

using Table = qon_pax_kernel_fn const (*)[3];
constexpr bool no_value = false;

// The same bits, or both NaN.
template <class T>
bool same(T got, T want) {
    if (std::isnan(want)) return std::isnan(got);
    return got == want && std::signbit(got) == std::signbit(want);
}

template <class T>
std::string describe(const char *name, int slot, T x, T y) {
    return std::string(sizeof(T) == 4 ? "s" : "d") + name + " slot " + std::to_string(slot) + " at (" +
           std::to_string(double(x)) + ", " + std::to_string(double(y)) + ")";
}

// One call of n = 1 through a slot: the result and what the call-back saw.
template <class T>
void expect_report(const char *name, int slot, T x, T y, int status, const char *suffix = "") {
    std::string where = describe(name, slot, x, y);
    if (status == 0) {
        EXPECT_EQ(seen.count, 0) << where << " reported " << seen.code;
        return;
    }
    EXPECT_EQ(seen.count, 1) << where;
    EXPECT_EQ(seen.code, status) << where;
    EXPECT_EQ(seen.index, 0) << where;
    EXPECT_EQ(seen.name, std::string("pax") + (sizeof(T) == 4 ? "s" : "d") + name + suffix) << where;
}

// Runs call(r) for one element and checks its result (unless check_value is false, when the
// result must be a subnormal or zero) and its report.
template <class T, class Call>
void check_call(const char *name, int slot, T x, T y, T want, int status, Call call, bool check_value = true) {
    seen = qon::test::SeenError{};
    T r = 0;
    call(r);
    if (check_value) EXPECT_TRUE(same(r, want)) << describe(name, slot, x, y) << " gave " << r;
    else EXPECT_TRUE(r == 0 || std::fpclassify(r) == FP_SUBNORMAL) << describe(name, slot, x, y) << " gave " << r;
    expect_report(name, slot, x, y, status);
}

#define TABLES(F) (std::is_same_v<T, float> ? &qon_pax_kernel_s##F##_ttab : &qon_pax_kernel_d##F##_ttab), #F

template <class T>
struct UCase {
    Table table;
    const char *name;
    T x, want;
    int status;
    bool check_value = true;
};

template <class T>
std::vector<UCase<T>> unary_cases() {
    using L = std::numeric_limits<T>;
    const T inf = L::infinity(), nan = L::quiet_NaN(), big = L::max(), least = L::min(), dm = L::denorm_min();
    const T sub_exp = T(L::min_exponent - 11);  // 2^sub_exp is subnormal
    return {
        {TABLES(Abs), T(-0.0), T(0), 0}, {TABLES(Abs), -inf, inf, 0},
        {TABLES(Acos), T(2), nan, 1}, {TABLES(Acos), -inf, nan, 1}, {TABLES(Acos), T(1), T(0), 0},
        {TABLES(Acos), nan, nan, 0},
        {TABLES(Acosh), T(0.5), nan, 1}, {TABLES(Acosh), T(1), T(0), 0}, {TABLES(Acosh), inf, inf, 0},
        {TABLES(Acospi), T(1), T(0), 0}, {TABLES(Acospi), T(-1), T(1), 0}, {TABLES(Acospi), T(0), T(0.5), 0},
        {TABLES(Acospi), T(-1.5), nan, 1},
        {TABLES(Asin), T(-2), nan, 1}, {TABLES(Asin), T(-0.0), T(-0.0), 0},
        {TABLES(Asinh), -inf, -inf, 0}, {TABLES(Asinh), T(-0.0), T(-0.0), 0},
        {TABLES(Asinpi), T(1), T(0.5), 0}, {TABLES(Asinpi), T(-0.0), T(-0.0), 0}, {TABLES(Asinpi), inf, nan, 1},
        {TABLES(Asinpi), least, 0, 4, no_value},
        {TABLES(Atan), T(-0.0), T(-0.0), 0},
        {TABLES(Atanh), T(1), inf, 2}, {TABLES(Atanh), T(-1), -inf, 2}, {TABLES(Atanh), T(2), nan, 1},
        {TABLES(Atanh), T(-0.0), T(-0.0), 0},
        {TABLES(Atanpi), inf, T(0.5), 0}, {TABLES(Atanpi), -inf, T(-0.5), 0}, {TABLES(Atanpi), least, 0, 4, no_value},
        {TABLES(Cbrt), T(-8), T(-2), 0}, {TABLES(Cbrt), -inf, -inf, 0}, {TABLES(Cbrt), T(-0.0), T(-0.0), 0},
        {TABLES(Ceil), T(-0.5), T(-0.0), 0}, {TABLES(Ceil), inf, inf, 0},
        {TABLES(Cos), inf, nan, 1}, {TABLES(Cos), T(0), T(1), 0},
        {TABLES(Cosd), T(90), T(0), 0}, {TABLES(Cosd), T(-270), T(0), 0}, {TABLES(Cosd), T(180), T(-1), 0},
        {TABLES(Cosd), T(3600), T(1), 0}, {TABLES(Cosd), -inf, nan, 1},
        {TABLES(Cosh), T(1000), inf, 3}, {TABLES(Cosh), -inf, inf, 0},
        {TABLES(Cospi), T(0.5), T(0), 0}, {TABLES(Cospi), T(-0.5), T(0), 0}, {TABLES(Cospi), T(1), T(-1), 0},
        {TABLES(Cospi), T(1.5), T(0), 0}, {TABLES(Cospi), inf, nan, 1},
        {TABLES(Exp10), T(400), inf, 3}, {TABLES(Exp10), T(-400), T(0), 4}, {TABLES(Exp10), -inf, T(0), 0},
        {TABLES(Exp10), T(0), T(1), 0},
        {TABLES(Exp2), T(2000), inf, 3}, {TABLES(Exp2), T(-2000), T(0), 4}, {TABLES(Exp2), -inf, T(0), 0},
        {TABLES(Exp2), T(10), T(1024), 0}, {TABLES(Exp2), sub_exp, std::ldexp(T(1), int(sub_exp)), 4},
        {TABLES(Expm1), T(1000), inf, 3}, {TABLES(Expm1), -inf, T(-1), 0}, {TABLES(Expm1), T(-0.0), T(-0.0), 0},
        {TABLES(Floor), T(-0.5), T(-1), 0}, {TABLES(Floor), T(-0.0), T(-0.0), 0},
        {TABLES(Frac), T(-2.5), T(-0.5), 0}, {TABLES(Frac), T(3), T(0), 0}, {TABLES(Frac), T(-3), T(-0.0), 0},
        {TABLES(Frac), inf, T(0), 0}, {TABLES(Frac), -inf, T(-0.0), 0},
        {TABLES(Inv), T(0), inf, 2}, {TABLES(Inv), T(-0.0), -inf, 2}, {TABLES(Inv), -inf, T(-0.0), 0},
        {TABLES(Inv), T(4), T(0.25), 0}, {TABLES(Inv), big, 0, 4, no_value},
        {TABLES(InvCbrt), T(0), inf, 2}, {TABLES(InvCbrt), T(-0.0), -inf, 2}, {TABLES(InvCbrt), T(-8), T(-0.5), 0},
        {TABLES(InvCbrt), inf, T(0), 0},
        {TABLES(InvSqrt), T(-1), nan, 1}, {TABLES(InvSqrt), T(0), inf, 2}, {TABLES(InvSqrt), T(-0.0), -inf, 2},
        {TABLES(InvSqrt), T(4), T(0.5), 0}, {TABLES(InvSqrt), inf, T(0), 0},
        {TABLES(Ln), T(-1), nan, 1}, {TABLES(Ln), T(0), -inf, 2}, {TABLES(Ln), T(-0.0), -inf, 2},
        {TABLES(Ln), T(1), T(0), 0}, {TABLES(Ln), inf, inf, 0}, {TABLES(Ln), -inf, nan, 1}, {TABLES(Ln), nan, nan, 0},
        {TABLES(Log10), T(0), -inf, 2}, {TABLES(Log10), T(-1), nan, 1}, {TABLES(Log10), T(1), T(0), 0},
        {TABLES(Log1p), T(-1), -inf, 2}, {TABLES(Log1p), T(-2), nan, 1}, {TABLES(Log1p), T(-0.0), T(-0.0), 0},
        {TABLES(Log1p), inf, inf, 0},
        {TABLES(Log2), T(0), -inf, 2}, {TABLES(Log2), T(-1), nan, 1}, {TABLES(Log2), T(8), T(3), 0},
        {TABLES(Logb), T(0), -inf, 2}, {TABLES(Logb), T(-0.0), -inf, 2}, {TABLES(Logb), -inf, inf, 0},
        {TABLES(Logb), dm, T(L::min_exponent - L::digits), 0}, {TABLES(Logb), T(-8), T(3), 0},
        {TABLES(NearbyInt), T(2.5), T(2), 0}, {TABLES(NearbyInt), T(-2.5), T(-2), 0},
        {TABLES(NearbyInt), T(-0.4), T(-0.0), 0},
        {TABLES(Pow2o3), T(-8), T(4), 0}, {TABLES(Pow2o3), -inf, inf, 0}, {TABLES(Pow2o3), T(-0.0), T(0), 0},
        {TABLES(Pow3o2), T(4), T(8), 0}, {TABLES(Pow3o2), T(-1), nan, 1}, {TABLES(Pow3o2), T(-0.0), T(0), 0},
        {TABLES(Pow3o2), -inf, inf, 0}, {TABLES(Pow3o2), big, inf, 3}, {TABLES(Pow3o2), least, 0, 4, no_value},
        {TABLES(Rint), T(2.5), T(2), 0}, {TABLES(Rint), T(-3.5), T(-4), 0}, {TABLES(Rint), T(-0.4), T(-0.0), 0},
        {TABLES(Round), T(2.5), T(3), 0}, {TABLES(Round), T(-2.5), T(-3), 0}, {TABLES(Round), T(-0.4), T(-0.0), 0},
        {TABLES(Sin), inf, nan, 1}, {TABLES(Sin), T(-0.0), T(-0.0), 0},
        {TABLES(Sind), T(180), T(0), 0}, {TABLES(Sind), T(-180), T(-0.0), 0}, {TABLES(Sind), T(90), T(1), 0},
        {TABLES(Sind), T(-450), T(-1), 0}, {TABLES(Sind), inf, nan, 1}, {TABLES(Sind), least, 0, 4, no_value},
        {TABLES(Sinh), T(1000), inf, 3}, {TABLES(Sinh), T(-1000), -inf, 3}, {TABLES(Sinh), T(-0.0), T(-0.0), 0},
        {TABLES(Sinpi), T(1), T(0), 0}, {TABLES(Sinpi), T(-1), T(-0.0), 0}, {TABLES(Sinpi), T(-2), T(-0.0), 0},
        {TABLES(Sinpi), T(0.5), T(1), 0}, {TABLES(Sinpi), T(-1.5), T(1), 0}, {TABLES(Sinpi), big, T(0), 0},
        {TABLES(Sinpi), -inf, nan, 1},
        {TABLES(Sqrt), T(-1), nan, 1}, {TABLES(Sqrt), T(-0.0), T(-0.0), 0}, {TABLES(Sqrt), inf, inf, 0},
        {TABLES(Sqrt), -inf, nan, 1}, {TABLES(Sqrt), T(4), T(2), 0},
        {TABLES(Tan), inf, nan, 1}, {TABLES(Tan), T(-0.0), T(-0.0), 0},
        {TABLES(Tand), T(90), inf, 2}, {TABLES(Tand), T(-90), -inf, 2}, {TABLES(Tand), T(270), -inf, 2},
        {TABLES(Tand), T(180), T(-0.0), 0}, {TABLES(Tand), T(-180), T(0), 0}, {TABLES(Tand), T(45), T(1), 0},
        {TABLES(Tand), T(-135), T(1), 0}, {TABLES(Tand), inf, nan, 1}, {TABLES(Tand), least, 0, 4, no_value},
        {TABLES(Tanh), inf, T(1), 0}, {TABLES(Tanh), -inf, T(-1), 0}, {TABLES(Tanh), T(-0.0), T(-0.0), 0},
        {TABLES(Tanpi), T(0.5), inf, 2}, {TABLES(Tanpi), T(1.5), -inf, 2}, {TABLES(Tanpi), T(-0.5), -inf, 2},
        {TABLES(Tanpi), T(1), T(-0.0), 0}, {TABLES(Tanpi), T(-1), T(0), 0}, {TABLES(Tanpi), T(2), T(0), 0},
        {TABLES(Tanpi), T(0.25), T(1), 0}, {TABLES(Tanpi), T(-0.75), T(1), 0}, {TABLES(Tanpi), inf, nan, 1},
        {TABLES(Trunc), T(-2.7), T(-2), 0}, {TABLES(Trunc), T(-0.5), T(-0.0), 0},
    };
}

template <class T>
void run_unary() {
    for (const auto &c : unary_cases<T>()) {
        for (int slot = 0; slot < 3; ++slot) {
            auto kernel = reinterpret_cast<void (*)(int, const T *, T *)>((*c.table)[slot]);
            check_call(c.name, slot, c.x, c.x, c.want, c.status, [&](T &r) { kernel(1, &c.x, &r); }, c.check_value);
        }
    }
}

TEST_F(ElementaryStatus, OneArgumentFunctions) {
    run_unary<float>();
    run_unary<double>();
}

template <class T>
struct BCase {
    Table table;
    const char *name;
    T x, y, want;
    int status;
    bool check_value = true;
};

template <class T>
std::vector<BCase<T>> binary_cases() {
    using L = std::numeric_limits<T>;
    const T inf = L::infinity(), nan = L::quiet_NaN(), big = L::max(), least = L::min(), dm = L::denorm_min();
    const T pi = T(3.14159265358979323846264338327950288L);
    return {
        {TABLES(Add), inf, -inf, nan, 1}, {TABLES(Add), big, big, inf, 3}, {TABLES(Add), T(-0.0), T(-0.0), T(-0.0), 0},
        {TABLES(Add), T(1.5) * least, -least, least / 2, 0}, {TABLES(Add), T(1), nan, nan, 0},
        {TABLES(Sub), inf, inf, nan, 1}, {TABLES(Sub), -big, big, -inf, 3}, {TABLES(Sub), T(0), T(0), T(0), 0},
        {TABLES(Mul), T(0), inf, nan, 1}, {TABLES(Mul), big, T(2), inf, 3}, {TABLES(Mul), least, T(0.5), least / 2, 4},
        {TABLES(Mul), least, least, T(0), 4}, {TABLES(Mul), T(-0.0), T(5), T(-0.0), 0},
        {TABLES(Mul), dm, T(0.5), T(0), 0},
        {TABLES(Div), T(1), T(0), inf, 2}, {TABLES(Div), T(-1), T(0), -inf, 2}, {TABLES(Div), T(1), T(-0.0), -inf, 2},
        {TABLES(Div), T(0), T(0), nan, 1}, {TABLES(Div), inf, inf, nan, 1}, {TABLES(Div), big, T(0.5), inf, 3},
        {TABLES(Div), least, T(4), least / 4, 4}, {TABLES(Div), inf, T(0), inf, 0}, {TABLES(Div), T(6), T(3), T(2), 0},
        {TABLES(Atan2), T(0), T(-0.0), pi, 0}, {TABLES(Atan2), T(-0.0), T(-0.0), -pi, 0},
        {TABLES(Atan2), T(-0.0), T(0), T(-0.0), 0}, {TABLES(Atan2), least, big, T(0), 4},
        {TABLES(Atan2), nan, T(1), nan, 0},
        {TABLES(Atan2pi), T(0), T(-0.0), T(1), 0}, {TABLES(Atan2pi), T(-0.0), T(-0.0), T(-1), 0},
        {TABLES(Atan2pi), T(-0.0), T(0), T(-0.0), 0}, {TABLES(Atan2pi), T(1), T(1), T(0.25), 0},
        {TABLES(Atan2pi), T(1), -inf, T(1), 0},
        {TABLES(CopySign), T(2), T(-0.0), T(-2), 0}, {TABLES(CopySign), -inf, T(1), inf, 0},
        {TABLES(Fdim), T(5), T(3), T(2), 0}, {TABLES(Fdim), T(3), T(5), T(0), 0}, {TABLES(Fdim), big, -big, inf, 3},
        {TABLES(Fdim), inf, inf, T(0), 0}, {TABLES(Fdim), nan, T(1), nan, 0},
        {TABLES(Fmax), nan, T(1), T(1), 0}, {TABLES(Fmax), T(1), nan, T(1), 0}, {TABLES(Fmax), -inf, T(3), T(3), 0},
        {TABLES(Fmin), nan, T(1), T(1), 0}, {TABLES(Fmin), -inf, T(3), -inf, 0},
        {TABLES(MaxMag), T(-3), T(2), T(-3), 0}, {TABLES(MaxMag), T(2), T(-3), T(-3), 0},
        {TABLES(MaxMag), T(-2), T(2), T(2), 0}, {TABLES(MaxMag), nan, T(-5), T(-5), 0},
        {TABLES(MaxMag), T(1), nan, T(1), 0}, {TABLES(MaxMag), -inf, big, -inf, 0},
        {TABLES(MinMag), T(-3), T(2), T(2), 0}, {TABLES(MinMag), T(-2), T(2), T(-2), 0},
        {TABLES(MinMag), nan, T(-5), T(-5), 0}, {TABLES(MinMag), T(0), -inf, T(0), 0},
        {TABLES(Fmod), T(5), T(3), T(2), 0}, {TABLES(Fmod), T(-5), T(3), T(-2), 0}, {TABLES(Fmod), T(5), T(0), nan, 1},
        {TABLES(Fmod), inf, T(1), nan, 1}, {TABLES(Fmod), T(5), inf, T(5), 0}, {TABLES(Fmod), T(-0.0), T(1), T(-0.0), 0},
        {TABLES(Remainder), T(5), T(3), T(-1), 0}, {TABLES(Remainder), T(7), T(2), T(-1), 0},
        {TABLES(Remainder), T(5), T(0), nan, 1}, {TABLES(Remainder), -inf, T(2), nan, 1},
        {TABLES(Remainder), T(3), inf, T(3), 0},
        {TABLES(Remainder), -least, T(4) * dm, T(-0.0), 0}, {TABLES(Remainder), T(-6), T(3), T(-0.0), 0},
        {TABLES(Hypot), T(3), T(4), T(5), 0}, {TABLES(Hypot), inf, nan, inf, 0}, {TABLES(Hypot), nan, -inf, inf, 0},
        {TABLES(Hypot), big, big, inf, 3},
        {TABLES(NextAfter), T(1), T(2), T(1) + L::epsilon(), 0}, {TABLES(NextAfter), big, inf, inf, 3},
        {TABLES(NextAfter), least, T(0), least - dm, 4}, {TABLES(NextAfter), T(0), T(-1), -dm, 0},
        {TABLES(NextAfter), T(1), T(1), T(1), 0},
        {TABLES(Pow), T(-8), T(1) / 3, nan, 1}, {TABLES(Pow), T(0), T(-1), inf, 2}, {TABLES(Pow), T(-0.0), T(-1), -inf, 2},
        {TABLES(Pow), T(-0.0), T(-2), inf, 2}, {TABLES(Pow), T(0), -inf, inf, 0}, {TABLES(Pow), T(1), nan, T(1), 0},
        {TABLES(Pow), nan, T(0), T(1), 0}, {TABLES(Pow), T(-1), inf, T(1), 0}, {TABLES(Pow), T(2), T(2000), inf, 3},
        {TABLES(Pow), T(2), T(-2000), T(0), 4}, {TABLES(Pow), T(-2), T(3), T(-8), 0},
        {TABLES(Pow), T(0.5), -inf, inf, 0},
        {TABLES(Powr), T(-1), T(2), nan, 1}, {TABLES(Powr), T(-0.0), T(2), T(0), 0}, {TABLES(Powr), T(0), T(-1), inf, 2},
        {TABLES(Powr), T(0), T(0), nan, 1}, {TABLES(Powr), inf, T(0), nan, 1}, {TABLES(Powr), T(1), inf, nan, 1},
        {TABLES(Powr), T(1), nan, nan, 0}, {TABLES(Powr), inf, T(-1), T(0), 0}, {TABLES(Powr), T(2), T(3), T(8), 0},
        {TABLES(Powr), T(0), -inf, inf, 0}, {TABLES(Powr), -inf, T(1), nan, 1}, {TABLES(Powr), nan, T(0), nan, 0},
        {TABLES(Powr), T(2), T(2000), inf, 3}, {TABLES(Powr), T(1), T(5), T(1), 0},
    };
}

template <class T>
void run_binary() {
    for (const auto &c : binary_cases<T>()) {
        for (int slot = 0; slot < 3; ++slot) {
            auto kernel = reinterpret_cast<void (*)(int, const T *, const T *, T *)>((*c.table)[slot]);
            check_call(c.name, slot, c.x, c.y, c.want, c.status, [&](T &r) { kernel(1, &c.x, &c.y, &r); });
        }
    }
}

TEST_F(ElementaryStatus, TwoArgumentFunctions) {
    run_binary<float>();
    run_binary<double>();
}

// A zero remainder has the sign of a, also over a subnormal b where glibc's remainder gives +0.
TEST_F(ElementaryStatus, ZeroRemainderTakesTheSignOfTheDividend) {
    const double x = -7.93619467111938e-281, y = -1.1067070466843923e-321;
    for (int slot = 0; slot < 3; ++slot) {
        auto kernel = reinterpret_cast<void (*)(int, const double *, const double *, double *)>(
            qon_pax_kernel_dRemainder_ttab[slot]);
        check_call("Remainder", slot, x, y, -0.0, 0, [&](double &r) { kernel(1, &x, &y, &r); });
    }
}

// Powx with its scalar exponent and LinearFrac with its scalars follow the same rules.
template <class T>
void run_scalar_forms() {
    using L = std::numeric_limits<T>;
    const T inf = L::infinity(), nan = L::quiet_NaN();
    struct PCase {
        T x, b, want;
        int status;
    } powx[] = {{T(-8), T(0.5), nan, 1}, {T(0), T(-1), inf, 2}, {T(2), T(2000), inf, 3}, {T(4), T(0.5), T(2), 0}};
    struct LCase {
        T a, b, sa, ha, sb, hb, want;
        int status;
    } lf[] = {{T(1), T(1), T(1), T(0), T(0), T(0), inf, 2},
              {T(1), T(1), T(-1), T(0), T(-0.0), T(-0.0), inf, 2},
              {T(1), T(1), T(1), T(-1), T(1), T(-1), nan, 1},
              {L::max(), T(1), T(2), T(0), T(0), T(1), inf, 3},
              {L::min(), T(4), T(1), T(0), T(1), T(0), L::min() / 4, 4},
              {T(3), T(2), T(2), T(1), T(0.5), T(0), T(7), 0},
              {nan, T(2), T(2), T(1), T(0.5), T(0), nan, 0}};
    const bool single = std::is_same_v<T, float>;
    qon_pax_kernel_fn const(&ptab)[3] = single ? qon_pax_kernel_sPowx_ttab : qon_pax_kernel_dPowx_ttab;
    qon_pax_kernel_fn const(&ltab)[3] = single ? qon_pax_kernel_sLinearFrac_ttab : qon_pax_kernel_dLinearFrac_ttab;
    for (int slot = 0; slot < 3; ++slot) {
        auto pk = reinterpret_cast<void (*)(int, const T *, T, T *)>(ptab[slot]);
        for (const auto &c : powx)
            check_call("Powx", slot, c.x, c.b, c.want, c.status, [&](T &r) { pk(1, &c.x, c.b, &r); });
        auto lk = reinterpret_cast<void (*)(int, const T *, const T *, T, T, T, T, T *)>(ltab[slot]);
        for (const auto &c : lf)
            check_call("LinearFrac", slot, c.a, c.b, c.want, c.status,
                       [&](T &r) { lk(1, &c.a, &c.b, c.sa, c.ha, c.sb, c.hb, &r); });
    }
}

TEST_F(ElementaryStatus, ScalarArgumentForms) {
    run_scalar_forms<float>();
    run_scalar_forms<double>();
}

// Two results: both values and one report per element.
template <class T>
void run_two_results() {
    using L = std::numeric_limits<T>;
    const T inf = L::infinity(), nan = L::quiet_NaN();
    struct Case {
        Table table;
        const char *name;
        T x, want1, want2;
        int status;
    } cases[] = {
        {TABLES(SinCos), inf, nan, nan, 1},         {TABLES(SinCos), T(-0.0), T(-0.0), T(1), 0},
        {TABLES(SinCospi), T(1), T(0), T(-1), 0},   {TABLES(SinCospi), T(-1), T(-0.0), T(-1), 0},
        {TABLES(SinCospi), T(0.5), T(1), T(0), 0},  {TABLES(SinCospi), T(-0.5), T(-1), T(0), 0},
        {TABLES(SinCospi), -inf, nan, nan, 1},      {TABLES(Modf), T(-2.5), T(-2), T(-0.5), 0},
        {TABLES(Modf), inf, inf, T(0), 0},          {TABLES(Modf), -inf, -inf, T(-0.0), 0},
        {TABLES(Modf), nan, nan, nan, 0},
    };
    for (const auto &c : cases) {
        for (int slot = 0; slot < 3; ++slot) {
            seen = qon::test::SeenError{};
            T r1 = 0, r2 = 0;
            reinterpret_cast<void (*)(int, const T *, T *, T *)>((*c.table)[slot])(1, &c.x, &r1, &r2);
            EXPECT_TRUE(same(r1, c.want1) && same(r2, c.want2))
                << describe(c.name, slot, c.x, c.x) << " gave " << r1 << ", " << r2;
            expect_report(c.name, slot, c.x, c.x, c.status);
        }
    }
}

TEST_F(ElementaryStatus, TwoResultFunctions) {
    run_two_results<float>();
    run_two_results<double>();
}

// A strided call reports under the strided name with the element's index.
TEST_F(ElementaryStatus, StridedCallsReportTheElementIndexAndStridedName) {
    const double x[6] = {1, 0, 2, 0, -1, 0};
    double r[3];
    seen = qon::test::SeenError{};
    paxdLnI(3, x, 2, r, 1);
    EXPECT_EQ(seen.count, 1);
    EXPECT_EQ(seen.code, PAX_STATUS_ERRDOM);
    EXPECT_EQ(seen.index, 2);
    EXPECT_EQ(seen.name, "paxdLnI");
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_ERRDOM);
}

}  // namespace
