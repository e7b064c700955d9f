// Accuracy of the real elementary functions, every slot of the s and d tables, against
// __float128 references (libquadmath) through the accuracy harness: random arguments over
// each function's domain plus the harness's special and boundary values. Exact functions
// (rounding, remainders, selection, arithmetic) must be exact (0.5 ulp for the correctly
// rounded arithmetic); the others meet HA 1, LA 4 ulp, EP 11/26 bits. Larger runs:
// QON_ACCURACY_SAMPLES=<per region>.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>
#include <quadmath.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "common/accuracy.hpp"

namespace acc = qon::test::accuracy;
using Q = __float128;

namespace {

// The range limits of a type, so one region list serves float and double.
struct Lim {
    double max, tiny, min_normal, log_max;  // largest, smallest subnormal, smallest normal, ln(max)
};
template <class T>
Lim lim() {
    using L = std::numeric_limits<T>;
    return {double(L::max()), double(L::denorm_min()), double(L::min()), std::log(double(L::max()))};
}

using Regions = std::function<std::vector<acc::Region>(const Lim &)>;
using Table = qon_pax_kernel_fn const (*)[3];

const Q qpi = acosq(-1);

// Exact zeros and poles of the pi- and degree-scaled functions, from their definitions; other
// arguments through the quad functions of the exactly reduced argument.
bool is_integer(Q x) { return truncq(x) == x; }
bool is_half_odd(Q x) { return !is_integer(x) && is_integer(2 * x); }  // n + 1/2
Q sinpi_ref(Q x) { return is_integer(x) ? copysignq(0, x) : sinq(qpi * fmodq(x, 2)); }
Q cospi_ref(Q x) { return is_half_odd(x) ? Q(0) : cosq(qpi * fmodq(x, 2)); }
Q tanpi_ref(Q x) {
    if (is_integer(x)) return fmodq(x, 2) == 0 ? copysignq(0, x) : -copysignq(0, x);
    if (is_half_odd(x)) return fmodq(fabsq(x - Q(0.5)), 2) == 0 ? HUGE_VALQ : -HUGE_VALQ;
    return tanq(qpi * fmodq(x, 1));
}
Q deg(Q x) { return fmodq(x, 360) / 180; }  // in half turns, exact for float and double x
Q sind_ref(Q x) { return isinfq(x) ? nanq("") : sinpi_ref(deg(x)); }
Q cosd_ref(Q x) { return isinfq(x) ? nanq("") : cospi_ref(deg(x)); }
Q tand_ref(Q x) { return isinfq(x) ? nanq("") : tanpi_ref(deg(x)); }
Q pi_ref(Q (*f)(Q), Q x) { return isinfq(x) ? nanq("") : f(x); }

struct UCase {
    const char *name;
    Table s, d;
    acc::Ref1 ref;
    Regions regions;
    bool exact = false;
};

std::vector<acc::Region> symmetric_log(const Lim &l) { return {acc::log_both_signs(l.tiny, l.max)}; }
std::vector<acc::Region> positive_log(const Lim &l) { return {acc::log_uniform(l.tiny, l.max)}; }
std::vector<acc::Region> unit_interval(const Lim &l) {
    return {acc::uniform(-1, 1), acc::log_both_signs(l.tiny, 1)};
}
std::vector<acc::Region> periodic(const Lim &l) {
    return {acc::uniform(-10, 10), acc::log_both_signs(l.min_normal, l.max), acc::log_both_signs(1e-3, 1e7)};
}
std::vector<acc::Region> logarithmic(const Lim &l) {
    return {acc::log_uniform(l.tiny, l.max), acc::uniform(0.5, 2)};
}

std::vector<UCase> unary_cases() {
    return {
        {"Abs", &qon_pax_kernel_sAbs_ttab, &qon_pax_kernel_dAbs_ttab, fabsq, symmetric_log, true},
        {"Acos", &qon_pax_kernel_sAcos_ttab, &qon_pax_kernel_dAcos_ttab, acosq, unit_interval},
        {"Acosh", &qon_pax_kernel_sAcosh_ttab, &qon_pax_kernel_dAcosh_ttab, acoshq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_uniform(1, l.max), acc::uniform(1, 3)}; }},
        {"Acospi", &qon_pax_kernel_sAcospi_ttab, &qon_pax_kernel_dAcospi_ttab, [](Q x) { return acosq(x) / qpi; },
         unit_interval},
        {"Asin", &qon_pax_kernel_sAsin_ttab, &qon_pax_kernel_dAsin_ttab, asinq, unit_interval},
        {"Asinh", &qon_pax_kernel_sAsinh_ttab, &qon_pax_kernel_dAsinh_ttab, asinhq, symmetric_log},
        {"Asinpi", &qon_pax_kernel_sAsinpi_ttab, &qon_pax_kernel_dAsinpi_ttab, [](Q x) { return asinq(x) / qpi; },
         unit_interval},
        {"Atan", &qon_pax_kernel_sAtan_ttab, &qon_pax_kernel_dAtan_ttab, atanq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; }},
        {"Atanh", &qon_pax_kernel_sAtanh_ttab, &qon_pax_kernel_dAtanh_ttab, atanhq, unit_interval},
        {"Atanpi", &qon_pax_kernel_sAtanpi_ttab, &qon_pax_kernel_dAtanpi_ttab, [](Q x) { return atanq(x) / qpi; },
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; }},
        {"Cbrt", &qon_pax_kernel_sCbrt_ttab, &qon_pax_kernel_dCbrt_ttab, cbrtq, symmetric_log},
        {"Ceil", &qon_pax_kernel_sCeil_ttab, &qon_pax_kernel_dCeil_ttab, ceilq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
        {"Cos", &qon_pax_kernel_sCos_ttab, &qon_pax_kernel_dCos_ttab, cosq, periodic},
        {"Cosd", &qon_pax_kernel_sCosd_ttab, &qon_pax_kernel_dCosd_ttab, cosd_ref,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-720, 720), acc::log_both_signs(l.min_normal, l.max)};
         }},
        {"Cosh", &qon_pax_kernel_sCosh_ttab, &qon_pax_kernel_dCosh_ttab, coshq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::uniform(-l.log_max - 1, l.log_max + 1)}; }},
        {"Cospi", &qon_pax_kernel_sCospi_ttab, &qon_pax_kernel_dCospi_ttab, [](Q x) { return pi_ref(cospi_ref, x); },
         periodic},
        {"Exp10", &qon_pax_kernel_sExp10_ttab, &qon_pax_kernel_dExp10_ttab, [](Q x) { return powq(10, x); },
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-l.log_max / 2.3 - 17, l.log_max / 2.3 + 1),
                                             acc::log_both_signs(l.tiny, 1)};
         }},
        {"Exp2", &qon_pax_kernel_sExp2_ttab, &qon_pax_kernel_dExp2_ttab, exp2q,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-l.log_max / 0.69 - 55, l.log_max / 0.69 + 1),
                                             acc::log_both_signs(l.tiny, 1)};
         }},
        {"Expm1", &qon_pax_kernel_sExpm1_ttab, &qon_pax_kernel_dExpm1_ttab, expm1q,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-40, l.log_max + 1), acc::log_both_signs(l.tiny, 1)};
         }},
        {"Floor", &qon_pax_kernel_sFloor_ttab, &qon_pax_kernel_dFloor_ttab, floorq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
        {"Frac", &qon_pax_kernel_sFrac_ttab, &qon_pax_kernel_dFrac_ttab,
         [](Q x) {
             Q whole;
             return modfq(x, &whole);
         },
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
        {"Inv", &qon_pax_kernel_sInv_ttab, &qon_pax_kernel_dInv_ttab, [](Q x) { return 1 / x; }, symmetric_log},
        {"InvCbrt", &qon_pax_kernel_sInvCbrt_ttab, &qon_pax_kernel_dInvCbrt_ttab, [](Q x) { return 1 / cbrtq(x); },
         symmetric_log},
        {"InvSqrt", &qon_pax_kernel_sInvSqrt_ttab, &qon_pax_kernel_dInvSqrt_ttab, [](Q x) { return 1 / sqrtq(x); },
         positive_log},
        {"Ln", &qon_pax_kernel_sLn_ttab, &qon_pax_kernel_dLn_ttab, logq, logarithmic},
        {"Log10", &qon_pax_kernel_sLog10_ttab, &qon_pax_kernel_dLog10_ttab, log10q, logarithmic},
        {"Log1p", &qon_pax_kernel_sLog1p_ttab, &qon_pax_kernel_dLog1p_ttab, log1pq,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::log_both_signs(l.tiny, 1), acc::uniform(-1, 4),
                                             acc::log_uniform(1, l.max)};
         }},
        {"Log2", &qon_pax_kernel_sLog2_ttab, &qon_pax_kernel_dLog2_ttab, log2q, logarithmic},
        {"Logb", &qon_pax_kernel_sLogb_ttab, &qon_pax_kernel_dLogb_ttab, logbq, symmetric_log, true},
        {"NearbyInt", &qon_pax_kernel_sNearbyInt_ttab, &qon_pax_kernel_dNearbyInt_ttab, nearbyintq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
        {"Pow2o3", &qon_pax_kernel_sPow2o3_ttab, &qon_pax_kernel_dPow2o3_ttab, [](Q x) { return cbrtq(x * x); },
         symmetric_log},
        {"Pow3o2", &qon_pax_kernel_sPow3o2_ttab, &qon_pax_kernel_dPow3o2_ttab, [](Q x) { return powq(x, Q(1.5)); },
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_uniform(l.tiny, l.max), acc::uniform(-1, 4)}; }},
        {"Rint", &qon_pax_kernel_sRint_ttab, &qon_pax_kernel_dRint_ttab, rintq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
        {"Round", &qon_pax_kernel_sRound_ttab, &qon_pax_kernel_dRound_ttab, roundq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
        {"Sin", &qon_pax_kernel_sSin_ttab, &qon_pax_kernel_dSin_ttab, sinq, periodic},
        {"Sind", &qon_pax_kernel_sSind_ttab, &qon_pax_kernel_dSind_ttab, sind_ref,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-720, 720), acc::log_both_signs(l.min_normal, l.max)};
         }},
        {"Sinh", &qon_pax_kernel_sSinh_ttab, &qon_pax_kernel_dSinh_ttab, sinhq,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-l.log_max - 1, l.log_max + 1), acc::log_both_signs(l.tiny, 1)};
         }},
        {"Sinpi", &qon_pax_kernel_sSinpi_ttab, &qon_pax_kernel_dSinpi_ttab, [](Q x) { return pi_ref(sinpi_ref, x); },
         periodic},
        {"Sqrt", &qon_pax_kernel_sSqrt_ttab, &qon_pax_kernel_dSqrt_ttab, sqrtq, positive_log},
        {"Tan", &qon_pax_kernel_sTan_ttab, &qon_pax_kernel_dTan_ttab, tanq, periodic},
        {"Tand", &qon_pax_kernel_sTand_ttab, &qon_pax_kernel_dTand_ttab, tand_ref,
         [](const Lim &l) {
             return std::vector<acc::Region>{acc::uniform(-720, 720), acc::log_both_signs(l.min_normal, l.max)};
         }},
        {"Tanh", &qon_pax_kernel_sTanh_ttab, &qon_pax_kernel_dTanh_ttab, tanhq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::uniform(-20, 20), acc::log_both_signs(l.tiny, 1)}; }},
        {"Tanpi", &qon_pax_kernel_sTanpi_ttab, &qon_pax_kernel_dTanpi_ttab, [](Q x) { return pi_ref(tanpi_ref, x); },
         periodic},
        {"Trunc", &qon_pax_kernel_sTrunc_ttab, &qon_pax_kernel_dTrunc_ttab, truncq,
         [](const Lim &l) { return std::vector<acc::Region>{acc::log_both_signs(l.tiny, l.max), acc::uniform(-4, 4)}; },
         true},
    };
}

constexpr acc::Bounds exact_bounds{0, 0, 0};
constexpr long long default_samples = 4096;

template <class T>
acc::Sweep spec_of(const Regions &regions, std::vector<std::array<double, 2>> special = {}) {
    return {regions(lim<T>()), std::move(special), acc::sample_count(default_samples)};
}

class UnaryAccuracy : public testing::TestWithParam<UCase> {};

TEST_P(UnaryAccuracy, EverySlotWithinItsBound) {
    const UCase &c = GetParam();
    std::string s_name = std::string("s") + c.name, d_name = std::string("d") + c.name;
    auto fs = acc::measure_u<float>(*c.s, c.ref, spec_of<float>(c.regions));
    acc::expect_accuracy<float>(s_name.c_str(), fs, c.exact ? exact_bounds : acc::standard_bounds<float>());
    auto fd = acc::measure_u<double>(*c.d, c.ref, spec_of<double>(c.regions));
    acc::expect_accuracy<double>(d_name.c_str(), fd, c.exact ? exact_bounds : acc::standard_bounds<double>());
}

INSTANTIATE_TEST_SUITE_P(Elementary, UnaryAccuracy, testing::ValuesIn(unary_cases()),
                         [](const testing::TestParamInfo<UCase> &info) { return std::string(info.param.name); });

struct BCase {
    const char *name;
    Table s, d;
    acc::Ref2 ref;
    Regions regions;
    double bound;  // < 0: the standard bounds; otherwise every slot within this many ulps
};

std::vector<acc::Region> plane(const Lim &l) {
    return {{acc::log_both_signs(l.tiny, l.max), acc::log_both_signs(l.tiny, l.max)},
            {acc::uniform(-8, 8), acc::uniform(-8, 8)},
            {acc::log_both_signs(1e-3, 1e3), acc::log_both_signs(1e-3, 1e3)}};
}
std::vector<acc::Region> powers(const Lim &l) {
    double e = l.log_max / std::log(1e3);  // 1e3^e stays near the range
    return {{acc::log_uniform(1e-3, 1e3), acc::uniform(-e, e)},
            {acc::uniform(0.9, 1.1), acc::uniform(-300 * e, 300 * e)},
            {acc::uniform(-8, 8), acc::uniform(-8, 8)},
            {acc::log_uniform(l.tiny, l.max), acc::uniform(-1.5, 1.5)}};
}

std::vector<BCase> binary_cases() {
    return {
        {"Add", &qon_pax_kernel_sAdd_ttab, &qon_pax_kernel_dAdd_ttab, [](Q x, Q y) { return x + y; }, plane, 0.5},
        {"Atan2", &qon_pax_kernel_sAtan2_ttab, &qon_pax_kernel_dAtan2_ttab, atan2q, plane, -1},
        {"Atan2pi", &qon_pax_kernel_sAtan2pi_ttab, &qon_pax_kernel_dAtan2pi_ttab,
         [](Q x, Q y) { return atan2q(x, y) / qpi; }, plane, -1},
        {"CopySign", &qon_pax_kernel_sCopySign_ttab, &qon_pax_kernel_dCopySign_ttab, copysignq, plane, 0},
        {"Div", &qon_pax_kernel_sDiv_ttab, &qon_pax_kernel_dDiv_ttab, [](Q x, Q y) { return x / y; }, plane, 0.5},
        {"Fdim", &qon_pax_kernel_sFdim_ttab, &qon_pax_kernel_dFdim_ttab, fdimq, plane, 0.5},
        {"Fmax", &qon_pax_kernel_sFmax_ttab, &qon_pax_kernel_dFmax_ttab, fmaxq, plane, 0},
        {"Fmin", &qon_pax_kernel_sFmin_ttab, &qon_pax_kernel_dFmin_ttab, fminq, plane, 0},
        {"Fmod", &qon_pax_kernel_sFmod_ttab, &qon_pax_kernel_dFmod_ttab, fmodq, plane, 0},
        {"Hypot", &qon_pax_kernel_sHypot_ttab, &qon_pax_kernel_dHypot_ttab, hypotq, plane, -1},
        {"Mul", &qon_pax_kernel_sMul_ttab, &qon_pax_kernel_dMul_ttab, [](Q x, Q y) { return x * y; }, plane, 0.5},
        {"Pow", &qon_pax_kernel_sPow_ttab, &qon_pax_kernel_dPow_ttab, powq, powers, -1},
        // powr(x, y) = exp(y ln x), whose special values are those of the IEEE powr.
        {"Powr", &qon_pax_kernel_sPowr_ttab, &qon_pax_kernel_dPowr_ttab, [](Q x, Q y) { return expq(y * logq(x)); },
         powers, -1},
        {"Remainder", &qon_pax_kernel_sRemainder_ttab, &qon_pax_kernel_dRemainder_ttab, remainderq, plane, 0},
        {"Sub", &qon_pax_kernel_sSub_ttab, &qon_pax_kernel_dSub_ttab, [](Q x, Q y) { return x - y; }, plane, 0.5},
    };
}

class BinaryAccuracy : public testing::TestWithParam<BCase> {};

TEST_P(BinaryAccuracy, EverySlotWithinItsBound) {
    const BCase &c = GetParam();
    std::string s_name = std::string("s") + c.name, d_name = std::string("d") + c.name;
    acc::Bounds fixed{c.bound, c.bound, c.bound};
    auto fs = acc::measure_b<float>(*c.s, c.ref, spec_of<float>(c.regions));
    acc::expect_accuracy<float>(s_name.c_str(), fs, c.bound < 0 ? acc::standard_bounds<float>() : fixed);
    auto fd = acc::measure_b<double>(*c.d, c.ref, spec_of<double>(c.regions));
    acc::expect_accuracy<double>(d_name.c_str(), fd, c.bound < 0 ? acc::standard_bounds<double>() : fixed);
}

INSTANTIATE_TEST_SUITE_P(Elementary, BinaryAccuracy, testing::ValuesIn(binary_cases()),
                         [](const testing::TestParamInfo<BCase> &info) { return std::string(info.param.name); });

// Two results: SinCos and SinCospi against the quad functions, Modf exactly.
template <class T>
void two_results(const char *name, qon_pax_kernel_fn const (&table)[3], const acc::RefPair &ref,
                 const Regions &regions, bool exact) {
    auto slots = acc::measure_u2<T>(table, ref, spec_of<T>(regions));
    acc::expect_accuracy<T>(name, slots, exact ? exact_bounds : acc::standard_bounds<T>());
}

TEST(ElementaryAccuracy, TwoResultFunctions) {
    auto sincos = [](Q x, Q &s, Q &c) { sincosq(x, &s, &c); };
    auto sincospi = [](Q x, Q &s, Q &c) {
        s = pi_ref(sinpi_ref, x);
        c = pi_ref(cospi_ref, x);
    };
    auto modf = [](Q x, Q &whole, Q &fraction) { fraction = modfq(x, &whole); };
    two_results<float>("sSinCos", qon_pax_kernel_sSinCos_ttab, sincos, periodic, false);
    two_results<double>("dSinCos", qon_pax_kernel_dSinCos_ttab, sincos, periodic, false);
    two_results<float>("sSinCospi", qon_pax_kernel_sSinCospi_ttab, sincospi, periodic, false);
    two_results<double>("dSinCospi", qon_pax_kernel_dSinCospi_ttab, sincospi, periodic, false);
    two_results<float>("sModf", qon_pax_kernel_sModf_ttab, modf, symmetric_log, true);
    two_results<double>("dModf", qon_pax_kernel_dModf_ttab, modf, symmetric_log, true);
}

// The reductions near their hard cases: the three nearest values of T to k*pi/2 for k up to
// past the vector range, where r is a few ulps of x or less and every bit of pi/2 counts.
template <class T>
std::vector<std::array<double, 2>> near_half_pi_multiples() {
    std::vector<std::array<double, 2>> xs;
    for (double k = 1; k < 4e6; k = k < 64 ? k + 1 : std::floor(k * 1.37)) {
        const T x = static_cast<T>(k * (qpi / 2));
        for (T v : {std::nextafter(x, T(0)), x, std::nextafter(x, std::numeric_limits<T>::infinity())})
            xs.push_back({double(v), 0.0}), xs.push_back({-double(v), 0.0});
    }
    return xs;
}

template <class T>
void near_multiples(const char *name, qon_pax_kernel_fn const (&table)[3], const acc::Ref1 &ref) {
    const acc::Sweep sweep{{}, near_half_pi_multiples<T>(), 0};
    acc::expect_accuracy<T>(name, acc::measure_u<T>(table, ref, sweep), acc::standard_bounds<T>());
}

TEST(ElementaryAccuracy, TrigonometryNextToMultiplesOfHalfPi) {
    near_multiples<double>("dSin", qon_pax_kernel_dSin_ttab, sinq);
    near_multiples<double>("dCos", qon_pax_kernel_dCos_ttab, cosq);
    near_multiples<double>("dTan", qon_pax_kernel_dTan_ttab, tanq);
    near_multiples<float>("sSin", qon_pax_kernel_sSin_ttab, sinq);
    near_multiples<float>("sCos", qon_pax_kernel_sCos_ttab, cosq);
    near_multiples<float>("sTan", qon_pax_kernel_sTan_ttab, tanq);
    auto sincos = [](Q x, Q &s, Q &c) { sincosq(x, &s, &c); };
    const acc::Sweep sweep{{}, near_half_pi_multiples<double>(), 0};
    acc::expect_accuracy<double>("dSinCos", acc::measure_u2<double>(qon_pax_kernel_dSinCos_ttab, sincos, sweep),
                                 acc::standard_bounds<double>());
}

// Where the reduced argument reaches the ends of its interval, next to the peaks of the sine and
// the cosine, a polynomial may overshoot by its error: no slot may give a value above 1 in
// magnitude there, nor at 0 and the values next to it. Arguments: 0, +-2^-k, and runs of
// consecutive values of T around k pi/2.
template <class T>
void within_one(const char *name, qon_pax_kernel_fn const (&table)[3], int results) {
    std::vector<T> xs = {T(0), -T(0), T(0x1p-30), -T(0x1p-30), T(0x1p-10), -T(0x1p-10)};
    for (double k = 1; k < 3e5; k = k < 16 ? k + 1 : std::floor(k * 2.3)) {
        T x = static_cast<T>(k * (qpi / 2));
        for (int i = 0; i < 64; ++i) x = std::nextafter(x, T(0));
        for (int i = 0; i < 129; ++i, x = std::nextafter(x, std::numeric_limits<T>::infinity()))
            xs.push_back(x), xs.push_back(-x);
    }
    const int n = static_cast<int>(xs.size());
    std::vector<T> r1(n), r2(n);
    for (int s = 0; s < 3; ++s) {
        if (results == 1) reinterpret_cast<void (*)(int, const T *, T *)>(table[s])(n, xs.data(), r1.data());
        else reinterpret_cast<void (*)(int, const T *, T *, T *)>(table[s])(n, xs.data(), r1.data(), r2.data());
        for (int i = 0; i < n; ++i) {
            EXPECT_LE(std::fabs(r1[i]), T(1)) << name << " slot " << s << " at " << xs[i];
            if (results == 2) EXPECT_LE(std::fabs(r2[i]), T(1)) << name << " slot " << s << " at " << xs[i];
        }
    }
}

TEST(ElementaryAccuracy, SineAndCosineStayWithinOne) {
    within_one<double>("dSin", qon_pax_kernel_dSin_ttab, 1);
    within_one<double>("dCos", qon_pax_kernel_dCos_ttab, 1);
    within_one<double>("dSinCos", qon_pax_kernel_dSinCos_ttab, 2);
    within_one<float>("sSin", qon_pax_kernel_sSin_ttab, 1);
    within_one<float>("sCos", qon_pax_kernel_sCos_ttab, 1);
    within_one<float>("sSinCos", qon_pax_kernel_sSinCos_ttab, 2);
}

// The main loop of the sine and cosine tests a group of vectors at once for arguments past the
// vector range; a NaN in a later vector must not hide such an argument in the same lane. Every
// lane of a 64-element array holds 1e30 (far past the range: the vector reduction would give a
// value with no correct bit), then NaN in the next vector, for every offset within a group.
template <class T>
void huge_before_nan(const char *name, Table table) {
    const T huge = T(1e30);
    const Q want = sinq(Q(huge));
    for (int s = 0; s < 3; ++s) {
        auto f = reinterpret_cast<void (*)(int, const T *, T *)>((*table)[s]);
        for (int lanes : {4, 8}) {
            for (int k = 0; k < 64; ++k) {
                std::vector<T> a(64, T(0.5)), r(64);
                a[k] = huge;
                if (k + lanes < 64) a[k + lanes] = std::numeric_limits<T>::quiet_NaN();
                f(64, a.data(), r.data());
                ASSERT_LE(acc::ulp_error<T>(r[k], want), 1.0) << name << " slot " << s << " at " << k;
            }
        }
    }
}

TEST(ElementaryAccuracy, NaNDoesNotHideAHugeArgument) {
    huge_before_nan<double>("dSin", &qon_pax_kernel_dSin_ttab);
    huge_before_nan<float>("sSin", &qon_pax_kernel_sSin_ttab);
}

// NextAfter against the neighbour found by stepping the bit pattern as an integer.
template <class T, class Bits>
Q next_by_bits(Q qx, Q qy) {
    T x = static_cast<T>(qx), y = static_cast<T>(qy);
    if (std::isnan(x) || std::isnan(y)) return nanq("");
    if (x == y) return y;
    if (x == 0) return y > 0 ? Q(std::numeric_limits<T>::denorm_min()) : -Q(std::numeric_limits<T>::denorm_min());
    Bits b = std::bit_cast<Bits>(x);
    b = ((x < y) == (x > 0)) ? b + 1 : b - 1;
    return std::bit_cast<T>(b);
}

TEST(ElementaryAccuracy, NextAfterIsTheNeighbourInTheBitPattern) {
    auto fs = acc::measure_b<float>(qon_pax_kernel_sNextAfter_ttab, next_by_bits<float, std::uint32_t>,
                                    spec_of<float>(plane));
    acc::expect_accuracy<float>("sNextAfter", fs, exact_bounds);
    auto fd = acc::measure_b<double>(qon_pax_kernel_dNextAfter_ttab, next_by_bits<double, std::uint64_t>,
                                     spec_of<double>(plane));
    acc::expect_accuracy<double>("dNextAfter", fd, exact_bounds);
}

// Powx: one exponent per call, so the caller runs the kernel element by element.
template <class T>
void powx_accuracy(const char *name, qon_pax_kernel_fn const (&table)[3]) {
    acc::Caller<T> caller = [&](int slot, int n, const T *x, const T *y, T *r, T *) {
        auto kernel = reinterpret_cast<void (*)(int, const T *, T, T *)>(table[slot]);
        for (int i = 0; i < n; ++i) kernel(1, x + i, y[i], r + i);
    };
    auto slots = acc::measure<T>(caller, acc::Ref2(powq), spec_of<T>(powers), true);
    acc::expect_accuracy<T>(name, slots);
}

TEST(ElementaryAccuracy, Powx) {
    powx_accuracy<float>("sPowx", qon_pax_kernel_sPowx_ttab);
    powx_accuracy<double>("dPowx", qon_pax_kernel_dPowx_ttab);
}

// LinearFrac with scalars that cancel in the numerator, a plain quotient, and an affine map
// (denominator 1).
template <class T>
void linear_frac_accuracy(const char *name, qon_pax_kernel_fn const (&table)[3]) {
    const T scalars[3][4] = {{T(3), T(-1.5), T(0.25), T(-2)}, {T(1), T(0), T(1), T(0)}, {T(-2.5), T(7), T(0), T(1)}};
    for (const auto &sc : scalars) {
        acc::Caller<T> caller = [&](int slot, int n, const T *x, const T *y, T *r, T *) {
            reinterpret_cast<void (*)(int, const T *, const T *, T, T, T, T, T *)>(table[slot])(n, x, y, sc[0], sc[1],
                                                                                             sc[2], sc[3], r);
        };
        acc::Ref2 ref = [&](Q a, Q b) { return (sc[0] * a + sc[1]) / (sc[2] * b + sc[3]); };
        auto regions = [](const Lim &) {
            return std::vector<acc::Region>{{acc::uniform(-4, 4), acc::uniform(-4, 4)},
                                            {acc::log_both_signs(1e-6, 1e6), acc::log_both_signs(1e-6, 1e6)}};
        };
        auto slots = acc::measure<T>(caller, ref, spec_of<T>(regions, {{0.5, 8}, {0.5, -4}}), true);
        acc::expect_accuracy<T>(name, slots);
    }
}

TEST(ElementaryAccuracy, LinearFrac) {
    linear_frac_accuracy<float>("sLinearFrac", qon_pax_kernel_sLinearFrac_ttab);
    linear_frac_accuracy<double>("dLinearFrac", qon_pax_kernel_dLinearFrac_ttab);
}

}  // namespace
