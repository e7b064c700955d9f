// Accuracy of the special functions in every slot of the s and d tables against __float128
// references: libquadmath's erf, erfc, gamma and Bessel functions; Newton's method on them for
// the inverse error functions; quadrature and series references for I0, I1 and E1
// (higher_functions_reference.hpp). Bessel functions and lgamma at negative arguments are measured
// against the envelope of their oscillation near the zeros and relatively elsewhere.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>
#include <quadmath.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "common/accuracy.hpp"
#include "vm/higher_functions_reference.hpp"

namespace {

namespace acc = qon::test::accuracy;
namespace sp = qon::test::special;
using sp::Q;
using Table = qon_pax_kernel_fn const (&)[3];

template <class T>
constexpr double tiny = std::numeric_limits<T>::denorm_min();
template <class T>
constexpr double big = std::numeric_limits<T>::max();
template <class T>
constexpr bool is_double = sizeof(T) == sizeof(double);

// A default sample count per region, raised by QON_ACCURACY_SAMPLES for a big run.
long long count(long long default_count) { return acc::sample_count(default_count); }

template <class T>
std::string full_name(const char *name) {
    return std::string(is_double<T> ? "d" : "s") + name;
}

template <class T>
void expect_u(const char *name, Table table, const acc::Ref1 &ref, const acc::Sweep &sweep) {
    acc::expect_accuracy<T>(full_name<T>(name).c_str(), acc::measure_u<T>(table, ref, sweep));
}

// Error in ulps of max(|exact|, floor(x)) within the slot bounds.
template <class T>
void expect_envelope(const std::string &name, const acc::Caller<T> &caller, const std::function<Q(Q)> &ref,
                     const std::function<double(double)> &floor, double lo, double hi, long long samples) {
    auto worst = sp::envelope_error<T>(caller, ref, floor, lo, hi, samples);
    acc::Bounds b = acc::standard_bounds<T>();
    if (std::getenv("QON_ACCURACY_SAMPLES") != nullptr || std::getenv("QON_ACCURACY_VERBOSE") != nullptr)
        std::printf("[accuracy] %-16s  LA %.3g  HA %.3g  EP %.3g  envelope ulp on [%g, %g]\n", name.c_str(), worst[0],
                    worst[1], worst[2], lo, hi);
    EXPECT_LE(worst[0], b.la) << name << " LA on [" << lo << ", " << hi << "]";
    EXPECT_LE(worst[1], b.ha) << name << " HA on [" << lo << ", " << hi << "]";
    EXPECT_LE(worst[2], b.ep) << name << " EP on [" << lo << ", " << hi << "]";
}

double bessel_envelope(double x) { return std::sqrt(2 / (M_PI * std::fabs(x))); }

template <class T>
Table pick(Table s, Table d) {
    if constexpr (is_double<T>) return d;
    else return s;
}
#define TABLE(F) pick<T>(qon_pax_kernel_s##F##_ttab, qon_pax_kernel_d##F##_ttab)

template <class T>
void check_ErrorFunctions() {
    expect_u<T>("Erf", TABLE(Erf), [](Q x) { return erfq(x); },
                {{acc::uniform(-6, 6), acc::log_both_signs(tiny<T>, 6)}, {}, count(4096)});
    expect_u<T>("Erfc", TABLE(Erfc), [](Q x) { return erfcq(x); },
                {{acc::uniform(-6, is_double<T> ? 28 : 11), acc::log_both_signs(tiny<T>, 30)}, {}, count(4096)});
    // erfcx = e^(x^2) erfc(x): x^2 is exact in quad; beyond 100 the asymptotic series.
    auto erfcx = [](Q x) -> Q {
        if (isinfq(x)) return x > 0 ? 0 : HUGE_VALQ;
        if (x < 100) return expq(x * x) * erfcq(x);
        Q q = 1 / (2 * x * x), term = 1, sum = 1;
        for (int k = 1; k < 20; ++k) sum += term *= -(2 * k - 1) * q;
        return sum / (x * sqrtq(sp::q_pi()));
    };
    expect_u<T>("Erfcx", TABLE(Erfcx), erfcx,
                {{acc::uniform(-27, 30), acc::uniform(20, 200), acc::log_both_signs(tiny<T>, big<T>)},
                 {},
                 count(4096)});
    expect_u<T>("CdfNorm", TABLE(CdfNorm), [](Q x) { return erfcq(-x / sqrtq(2)) / 2; },
                {{acc::uniform(is_double<T> ? -40 : -14, 10), acc::log_both_signs(tiny<T>, 40)}, {}, count(4096)});
}
TEST(SpecialAccuracy, ErrorFunctions) {
    check_ErrorFunctions<float>();
    check_ErrorFunctions<double>();
}

template <class T>
void check_InverseErrorFunctions() {
    using L = std::numeric_limits<T>;
    T below_one = std::nextafter(T(1), T(0));
    acc::Sweep erfinv{{acc::uniform(-1, 1), acc::log_both_signs(tiny<T>, 1), acc::uniform(0.99999, 1)},
                     {{below_one, 0}, {-below_one, 0}, {1 - L::epsilon() * 8, 0}},
                     count(1024)};
    expect_u<T>("ErfInv", TABLE(ErfInv), sp::erfinv_q, erfinv);
    // Near +-1: the argument is sign(d) (1 - |d|) for d log-uniform in [2^-53, 1/2] (rounded to
    // T the same way for the kernel and the reference).
    auto near_one = [](double d) { return std::copysign(T(1) - T(std::fabs(d)), T(d)); };
    acc::Caller<T> erfinv_near_one = [&](int s, int n, const T *d, const T *, T *r, T *) {
        std::vector<T> a(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) a[static_cast<std::size_t>(i)] = near_one(static_cast<double>(d[i]));
        reinterpret_cast<void (*)(int, const T *, T *)>(TABLE(ErfInv)[s])(n, a.data(), r);
    };
    acc::expect_accuracy<T>(full_name<T>("ErfInv near 1").c_str(),
                            acc::measure<T>(
                                erfinv_near_one, [&](Q d, Q) { return sp::erfinv_q(near_one(static_cast<double>(d))); },
                                {{acc::log_both_signs(0x1p-53, 0.5)}, {}, count(1024)}, false));
    acc::Sweep erfcinv{{acc::uniform(0, 2), acc::log_uniform(tiny<T>, 2), acc::uniform(1.99999, 2)},
                      {{std::nextafter(T(2), T(0)), 0}, {T(1) + L::epsilon(), 0}},
                      count(1024)};
    expect_u<T>("ErfcInv", TABLE(ErfcInv), sp::erfcinv_q, erfcinv);
    acc::Sweep cdfnorminv{{acc::uniform(0, 1), acc::log_uniform(tiny<T>, 1), acc::uniform(0.99999, 1)},
                         {{below_one, 0}, {0.5, 0}},
                         count(1024)};
    auto cdfnorminv_q = [](Q p) {
        return p < 0.5 ? -sqrtq(2) * sp::erfcinv_q(2 * p) : sqrtq(2) * sp::erfcinv_q(2 - 2 * p);
    };
    expect_u<T>("CdfNormInv", TABLE(CdfNormInv), cdfnorminv_q,
                cdfnorminv);
}
TEST(SpecialAccuracy, InverseErrorFunctions) {
    check_InverseErrorFunctions<float>();
    check_InverseErrorFunctions<double>();
}

template <class T>
void check_GammaFunctions() {
    double top = is_double<T> ? 175 : 40;
    expect_u<T>("TGamma", TABLE(TGamma), [](Q x) { return tgammaq(x); },
                {{acc::uniform(-top - 10, top), acc::uniform(-5, 5), acc::log_both_signs(tiny<T>, top)},
                 {},
                 count(4096)});
    // Positive arguments relatively (the zeros 1 and 2 included); negative ones against 1.
    expect_u<T>("LGamma", TABLE(LGamma), [](Q x) { return isinfq(x) ? HUGE_VALQ : lgammaq(x); },
                {{acc::uniform(0, 10), acc::uniform(0.99, 2.01), acc::log_uniform(tiny<T>, big<T>)}, {}, count(4096)});
    expect_envelope<T>(full_name<T>("LGamma"), sp::caller_u<T>(TABLE(LGamma)), [](Q x) { return lgammaq(x); },
                       [](double) { return 1.0; }, -top, 0, 4096);
}
TEST(SpecialAccuracy, GammaFunctions) {
    check_GammaFunctions<float>();
    check_GammaFunctions<double>();
}

template <class T>
void check_ExponentialIntegralAndModifiedBessel() {
    expect_u<T>("ExpInt1", TABLE(ExpInt1), sp::expint1_q,
                {{acc::uniform(0, 60), acc::log_uniform(tiny<T>, 800)}, {}, count(1024)});
    expect_u<T>("I0", TABLE(I0), [](Q x) { return sp::bessel_i_q(0, x); },
                {{acc::uniform(-40, 40), acc::log_both_signs(tiny<T>, 750)}, {}, count(1024)});
    expect_u<T>("I1", TABLE(I1), [](Q x) { return sp::bessel_i_q(1, x); },
                {{acc::uniform(-40, 40), acc::log_both_signs(tiny<T>, 750)}, {}, count(1024)});
}
TEST(SpecialAccuracy, ExponentialIntegralAndModifiedBessel) {
    check_ExponentialIntegralAndModifiedBessel<float>();
    check_ExponentialIntegralAndModifiedBessel<double>();
}

// Below their first zeros relatively; beyond, against the envelope sqrt(2/(pi x)).
template <class T>
void check_BesselOrdersZeroAndOne() {
    expect_u<T>("J0", TABLE(J0), [](Q x) { return isinfq(x) ? 0 : j0q(x); },
                {{acc::uniform(-2.3, 2.3), acc::log_both_signs(tiny<T>, 2.3)}, {}, count(4096)});
    expect_u<T>("J1", TABLE(J1), [](Q x) { return isinfq(x) ? copysignq(0, x) : j1q(x); },
                {{acc::uniform(-3.8, 3.8), acc::log_both_signs(tiny<T>, 3.8)}, {}, count(4096)});
    expect_u<T>("Y0", TABLE(Y0), [](Q x) { return x < 0 ? nanq("") : isinfq(x) ? 0 : y0q(x); },
                {{acc::uniform(0, 0.85), acc::log_uniform(tiny<T>, 0.85)}, {}, count(4096)});
    expect_u<T>("Y1", TABLE(Y1), [](Q x) { return x < 0 ? nanq("") : isinfq(x) ? 0 : y1q(x); },
                {{acc::uniform(0, 2.1), acc::log_uniform(tiny<T>, 2.1)}, {}, count(4096)});
    for (auto [lo, hi] : {std::pair{0.8, 100.0}, std::pair{100.0, 1e6}}) {
        expect_envelope<T>(full_name<T>("J0"), sp::caller_u<T>(TABLE(J0)), [](Q x) { return j0q(x); },
                           bessel_envelope, -hi, -lo, 2048);
        expect_envelope<T>(full_name<T>("J1"), sp::caller_u<T>(TABLE(J1)), [](Q x) { return j1q(x); },
                           bessel_envelope, lo, hi, 2048);
        expect_envelope<T>(full_name<T>("Y0"), sp::caller_u<T>(TABLE(Y0)), [](Q x) { return y0q(x); },
                           bessel_envelope, lo, hi, 2048);
        expect_envelope<T>(full_name<T>("Y1"), sp::caller_u<T>(TABLE(Y1)), [](Q x) { return y1q(x); },
                           bessel_envelope, lo, hi, 2048);
    }
}
TEST(SpecialAccuracy, BesselOrdersZeroAndOne) {
    check_BesselOrdersZeroAndOne<float>();
    check_BesselOrdersZeroAndOne<double>();
}

template <class T>
void check_BesselIntegerOrders() {
    for (int nu : {2, -3, 7, 40}) {
        int n = std::abs(nu);
        std::string jname = full_name<T>("Jn") + " order " + std::to_string(nu);
        std::string yname = full_name<T>("Yn") + " order " + std::to_string(nu);
        // J_nu(+-inf) = 0 with the sign of the odd function's parity.
        auto jref = [nu](Q x, Q) {
            return isinfq(x) ? (nu % 2 != 0 && (x < 0) != (nu < 0) ? -Q(0) : Q(0)) : jnq(nu, x);
        };
        auto yref = [nu](Q x, Q) { return x < 0 ? nanq("") : isinfq(x) ? Q(0) : ynq(nu, x); };
        acc::Sweep below{{acc::log_both_signs(tiny<T>, 0.9 * n), acc::uniform(-0.9 * n, 0.9 * n)}, {}, count(4096)};
        acc::Sweep below_positive{{acc::log_uniform(tiny<T>, 0.9 * n), acc::uniform(0, 0.9 * n)}, {}, count(1024)};
        acc::expect_accuracy<T>(jname.c_str(), acc::measure<T>(sp::caller_nu<T>(TABLE(Jn), nu), jref, below, false));
        acc::expect_accuracy<T>(yname.c_str(),
                                acc::measure<T>(sp::caller_nu<T>(TABLE(Yn), nu), yref, below_positive, false));
        auto floor = [n](double x) { return std::fabs(x) >= n ? bessel_envelope(x) : 0.0; };
        expect_envelope<T>(jname, sp::caller_nu<T>(TABLE(Jn), nu), [nu](Q x) { return jnq(nu, x); }, floor,
                           -n - 200.0, n + 200.0, 2048);
        expect_envelope<T>(yname, sp::caller_nu<T>(TABLE(Yn), nu), [nu](Q x) { return ynq(nu, x); }, floor,
                           0.9 * n, n + 200.0, 2048);
    }
}
TEST(SpecialAccuracy, BesselIntegerOrders) {
    check_BesselIntegerOrders<float>();
    check_BesselIntegerOrders<double>();
}

}  // namespace
