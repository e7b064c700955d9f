// Accuracy of every complex function in each slot of its table of kernels, against libquadmath's
// __complex128 functions over random arguments from fixed seeds (sample_count per region;
// QON_ACCURACY_SAMPLES for a big run). Errors are componentwise ulps, normwise for the powers
// (see complex_pow.hpp). Bounds: HA 1 ulp, LA 4 ulp, EP 11 (c) or 26 (z) correct bits.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "vm/complex_reference.hpp"

namespace acc = qon::test::accuracy;
namespace cx = qon::test::cx;
using cx::Q;

namespace {

using Table = qon_pax_kernel_fn const[3];

// How far each part of the argument may range: Any (the whole exponent range), Trig (a limited
// imaginary part, where cosh and sinh stay finite), Hyp (a limited real part).
enum class Shape { Any, Trig, Hyp };

template <class T>
std::vector<cx::Region> regions(Shape shape) {
    const bool single = sizeof(T) == 4;
    const double h = single ? 80.0 : 700.0;      // cosh(h) is finite
    const double big = single ? 0x1p100 : 0x1p1000;
    const double tiny = 1.0 / big;
    const acc::Range wide = acc::log_both_signs(tiny, big), mid = acc::log_both_signs(0x1p-20, 0x1p20),
                     box = acc::uniform(-4, 4), near0 = acc::log_both_signs(tiny, 0x1p-10),
                     bounded = acc::uniform(-h, h), small = acc::log_both_signs(tiny, 2);
    std::vector<cx::Region> r = {{box, box}, {box, near0}, {near0, box}};
    switch (shape) {
        case Shape::Any: r.insert(r.end(), {{mid, mid}, {wide, wide}}); break;
        case Shape::Trig: r.insert(r.end(), {{mid, bounded}, {wide, small}}); break;
        case Shape::Hyp: r.insert(r.end(), {{bounded, mid}, {small, wide}}); break;
    }
    return r;
}

struct Report {
    std::array<double, 3> err{};
    std::array<std::string, 3> worst;
};

std::string text(double re, double im) {
    char buf[96];
    std::snprintf(buf, sizeof buf, "(%.17g, %.17g)", re, im);
    return buf;
}

bool verbose() { return std::getenv("QON_ACCURACY_SAMPLES") != nullptr || std::getenv("QON_ACCURACY_VERBOSE") != nullptr; }

template <class T>
void expect_bounds(const std::string &name, const Report &rep) {
    const acc::Bounds b = acc::standard_bounds<T>();
    const double bound[3] = {b.la, b.ha, b.ep};
    const char *slot_name[3] = {"LA", "HA", "EP"};
    for (int s = 0; s < 3; ++s)
        EXPECT_LE(rep.err[s], bound[s]) << name << " " << slot_name[s] << " worst at " << rep.worst[s];
    if (verbose())
        std::printf("%-12s LA %8.3f  HA %8.3f  EP %8.3f ulp\n", name.c_str(), rep.err[0], rep.err[1], rep.err[2]);
}

// Runs `eval(slot, x, y, r)` on every argument and measures each slot against ref.
template <class T, class Arg, class Res>
Report measure(const std::vector<Arg> &x, const std::vector<Arg> &y,
               const std::function<void(int, const std::vector<Arg> &, const std::vector<Arg> &, std::vector<Res> &)> &eval,
               const std::function<double(Res, Arg, Arg)> &error) {
    Report rep;
    std::vector<Res> r(x.size());
    for (int s = 0; s < 3; ++s) {
        eval(s, x, y, r);
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double e = error(r[i], x[i], y[i]);
            if (!(e <= rep.err[s])) {
                rep.err[s] = e;
                rep.worst[s] = text(std::real(x[i]), std::imag(x[i])) + " " + text(std::real(y[i]), std::imag(y[i]));
            }
        }
    }
    return rep;
}

template <class T>
std::vector<std::complex<T>> arguments(const std::vector<cx::Region> &regs, unsigned seed, long long per_region = 1 << 12) {
    const long long count = acc::sample_count(per_region);
    std::vector<std::complex<T>> v;
    for (std::size_t k = 0; k < regs.size(); ++k) {
        std::mt19937_64 rng(seed + 977 * k);
        for (long long i = 0; i < count; ++i) v.push_back(cx::draw<T>(regs[k], rng));
    }
    return v;
}

// ---- One argument, one result -------------------------------------------------------------

struct UnaryCase {
    const char *name;
    Table *c, *z;
    Q (*ref)(Q);
    Shape shape;
};

template <class T>
void check_unary(const UnaryCase &f, Table &table) {
    using C = std::complex<T>;
    const std::vector<C> x = arguments<T>(regions<T>(f.shape), 0xC0FFEEu);
    Report rep = measure<T, C, C>(
        x, x,
        [&](int s, const std::vector<C> &a, const std::vector<C> &, std::vector<C> &r) {
            cx::slot<cx::UnaryKernel<C>>(table, s)(static_cast<int>(a.size()), a.data(), r.data());
        },
        [&](C got, C a, C) { return cx::componentwise_error(got, f.ref(cx::q_of(a))); });
    expect_bounds<T>(std::string(sizeof(T) == 4 ? "c" : "z") + f.name, rep);
}

Q q_sqrt(Q z) { return csqrtq(z); }
Q q_ln(Q z) { return clogq(z); }
Q q_log10(Q z) { return clog10q(z); }
Q q_sin(Q z) { return csinq(z); }
Q q_cos(Q z) { return ccosq(z); }
Q q_tan(Q z) { return ctanq(z); }
Q q_sinh(Q z) { return csinhq(z); }
Q q_cosh(Q z) { return ccoshq(z); }
Q q_tanh(Q z) { return ctanhq(z); }
Q q_asin(Q z) { return casinq(z); }
Q q_acos(Q z) { return cacosq(z); }
Q q_atan(Q z) { return catanq(z); }
Q q_asinh(Q z) { return casinhq(z); }
Q q_acosh(Q z) { return cacoshq(z); }
Q q_atanh(Q z) { return catanhq(z); }
Q q_conj(Q z) { return cx::q_of(__real__ z, -__imag__ z); }

#define QON_UNARY_CASE(F, ref, shape) {#F, &qon_pax_kernel_c##F##_ttab, &qon_pax_kernel_z##F##_ttab, ref, shape}
const UnaryCase unary_cases[] = {
    QON_UNARY_CASE(Sqrt, q_sqrt, Shape::Any),   QON_UNARY_CASE(Ln, q_ln, Shape::Any),
    QON_UNARY_CASE(Log10, q_log10, Shape::Any), QON_UNARY_CASE(Sin, q_sin, Shape::Trig),
    QON_UNARY_CASE(Cos, q_cos, Shape::Trig),    QON_UNARY_CASE(Tan, q_tan, Shape::Trig),
    QON_UNARY_CASE(Sinh, q_sinh, Shape::Hyp),   QON_UNARY_CASE(Cosh, q_cosh, Shape::Hyp),
    QON_UNARY_CASE(Tanh, q_tanh, Shape::Hyp),   QON_UNARY_CASE(Asin, q_asin, Shape::Any),
    QON_UNARY_CASE(Acos, q_acos, Shape::Any),   QON_UNARY_CASE(Atan, q_atan, Shape::Any),
    QON_UNARY_CASE(Asinh, q_asinh, Shape::Any), QON_UNARY_CASE(Acosh, q_acosh, Shape::Any),
    QON_UNARY_CASE(Atanh, q_atanh, Shape::Any), QON_UNARY_CASE(Conj, q_conj, Shape::Any),
};

class ComplexUnaryAccuracy : public ::testing::TestWithParam<UnaryCase> {};

TEST_P(ComplexUnaryAccuracy, SinglePrecision) { check_unary<float>(GetParam(), *GetParam().c); }
TEST_P(ComplexUnaryAccuracy, DoublePrecision) { check_unary<double>(GetParam(), *GetParam().z); }

INSTANTIATE_TEST_SUITE_P(Functions, ComplexUnaryAccuracy, ::testing::ValuesIn(unary_cases),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- Two arguments ------------------------------------------------------------------------

struct BinaryCase {
    const char *name;
    Table *c, *z;
    Q (*ref)(Q, Q);
    bool normwise;
    double scale;  // parts range over 2^-scale .. 2^scale times the type's exponent range / 1024
};

template <class T>
std::vector<cx::Region> binary_regions(double scale) {
    const double e = (sizeof(T) == 4 ? 100.0 : 1000.0) * scale;
    const acc::Range wide = acc::log_both_signs(std::exp2(-e), std::exp2(e)), box = acc::uniform(-4, 4);
    return {{box, box}, {wide, wide}, {wide, box}};
}

template <class T>
void check_binary(const BinaryCase &f, Table &table) {
    using C = std::complex<T>;
    const std::vector<cx::Region> regs = binary_regions<T>(f.scale);
    const std::vector<C> x = arguments<T>(regs, 0xA11CEu), y = arguments<T>(regs, 0xB0Bu);
    Report rep = measure<T, C, C>(
        x, y,
        [&](int s, const std::vector<C> &a, const std::vector<C> &b, std::vector<C> &r) {
            cx::slot<cx::BinaryKernel<C>>(table, s)(static_cast<int>(a.size()), a.data(), b.data(), r.data());
        },
        [&](C got, C a, C b) {
            const Q want = f.ref(cx::q_of(a), cx::q_of(b));
            return f.normwise ? cx::normwise_error(got, want) : cx::componentwise_error(got, want);
        });
    expect_bounds<T>(std::string(sizeof(T) == 4 ? "c" : "z") + f.name, rep);
}

// The reference products and quotient in __float128: the parts of a product of two doubles are
// exact there, so each reference part carries one rounding of 2^-113.
Q q_add(Q a, Q b) { return a + b; }
Q q_sub(Q a, Q b) { return a - b; }
Q q_mul(Q a, Q b) {
    return cx::q_of(__real__ a * __real__ b - __imag__ a * __imag__ b, __real__ a * __imag__ b + __imag__ a * __real__ b);
}
Q q_mulbyconj(Q a, Q b) { return q_mul(a, cx::q_of(__real__ b, -__imag__ b)); }
Q q_div(Q a, Q b) {
    const __float128 d = __real__ b * __real__ b + __imag__ b * __imag__ b;
    return cx::q_of((__real__ a * __real__ b + __imag__ a * __imag__ b) / d,
                    (__imag__ a * __real__ b - __real__ a * __imag__ b) / d);
}
Q q_pow(Q a, Q b) { return cpowq(a, b); }

#define QON_BINARY_CASE(F, ref, normwise, scale) \
    {#F, &qon_pax_kernel_c##F##_ttab, &qon_pax_kernel_z##F##_ttab, ref, normwise, scale}
const BinaryCase binary_cases[] = {
    QON_BINARY_CASE(Add, q_add, false, 1.0),   QON_BINARY_CASE(Sub, q_sub, false, 1.0),
    QON_BINARY_CASE(Mul, q_mul, false, 0.45),  QON_BINARY_CASE(MulByConj, q_mulbyconj, false, 0.45),
    QON_BINARY_CASE(Div, q_div, false, 0.45),  QON_BINARY_CASE(Pow, q_pow, true, 0.004),
};

class ComplexBinaryAccuracy : public ::testing::TestWithParam<BinaryCase> {};

TEST_P(ComplexBinaryAccuracy, SinglePrecision) { check_binary<float>(GetParam(), *GetParam().c); }
TEST_P(ComplexBinaryAccuracy, DoublePrecision) { check_binary<double>(GetParam(), *GetParam().z); }

INSTANTIATE_TEST_SUITE_P(Functions, ComplexBinaryAccuracy, ::testing::ValuesIn(binary_cases),
                         [](const auto &info) { return std::string(info.param.name); });

// Products with heavy cancellation in a part: (a + ib)(c + id) with ac close to bd.
template <class T>
void check_cancelling_products(Table &table, const char *name) {
    using C = std::complex<T>;
    std::mt19937_64 rng(0xCA7CE1u);
    std::vector<C> x, y;
    for (long long i = 0; i < acc::sample_count(1 << 12); ++i) {
        const C a = cx::draw<T>({acc::uniform(-4, 4), acc::uniform(-4, 4)}, rng);
        const T nudge = static_cast<T>(std::ldexp(cx::draw(acc::uniform(-1, 1), rng), -int(rng() % 40)));
        x.push_back(a);
        y.push_back(C(a.imag() * (1 + nudge), a.real()));  // Re(xy) = ab(1 + nudge) - ba
    }
    Report rep = measure<T, C, C>(
        x, y,
        [&](int s, const std::vector<C> &a, const std::vector<C> &b, std::vector<C> &r) {
            cx::slot<cx::BinaryKernel<C>>(table, s)(static_cast<int>(a.size()), a.data(), b.data(), r.data());
        },
        [&](C got, C a, C b) { return cx::componentwise_error(got, q_mul(cx::q_of(a), cx::q_of(b))); });
    expect_bounds<T>(name, rep);
}

TEST(ComplexProductAccuracy, CancellingParts) {
    check_cancelling_products<float>(qon_pax_kernel_cMul_ttab, "cMul cancelling");
    check_cancelling_products<double>(qon_pax_kernel_zMul_ttab, "zMul cancelling");
}

// ---- Scalar exponent -----------------------------------------------------------------------

template <class T>
void check_powx(Table &table) {
    using C = std::complex<T>;
    const std::vector<C> x = arguments<T>(binary_regions<T>(0.004), 0x9A9Au, 1 << 10);
    const C exponents[] = {C(-0.5, 0), C(1.0 / 3, 0), C(0.75, -1.25), C(-3, 0.5)};
    Report all;
    for (C b : exponents) {
        const std::vector<C> y(x.size(), b);
        Report rep = measure<T, C, C>(
            x, y,
            [&](int s, const std::vector<C> &a, const std::vector<C> &, std::vector<C> &r) {
                cx::slot<cx::PowxKernel<C>>(table, s)(static_cast<int>(a.size()), a.data(), b, r.data());
            },
            [&](C got, C a, C e) { return cx::normwise_error(got, cpowq(cx::q_of(a), cx::q_of(e))); });
        for (int s = 0; s < 3; ++s)
            if (rep.err[s] > all.err[s]) all.err[s] = rep.err[s], all.worst[s] = rep.worst[s];
    }
    expect_bounds<T>(sizeof(T) == 4 ? "cPowx" : "zPowx", all);
}

TEST(ComplexPowxAccuracy, SinglePrecision) { check_powx<float>(qon_pax_kernel_cPowx_ttab); }
TEST(ComplexPowxAccuracy, DoublePrecision) { check_powx<double>(qon_pax_kernel_zPowx_ttab); }

// ---- Complex to real and real to complex ---------------------------------------------------

template <class T>
void check_abs_arg(Table &abs_table, Table &arg_table) {
    using C = std::complex<T>;
    using K = void (*)(int, const C *, T *);
    const std::vector<C> x = arguments<T>(regions<T>(Shape::Any), 0xAB5u);
    const char *prefix = sizeof(T) == 4 ? "c" : "z";
    for (int which = 0; which < 2; ++which) {
        Table &table = which == 0 ? abs_table : arg_table;
        Report rep = measure<T, C, T>(
            x, x,
            [&](int s, const std::vector<C> &a, const std::vector<C> &, std::vector<T> &r) {
                cx::slot<K>(table, s)(static_cast<int>(a.size()), a.data(), r.data());
            },
            [&](T got, C a, C) {
                const Q q = cx::q_of(a);
                return acc::ulp_error<T>(got, which == 0 ? cabsq(q) : cargq(q));
            });
        expect_bounds<T>(std::string(prefix) + (which == 0 ? "Abs" : "Arg"), rep);
    }
}

TEST(ComplexAbsArgAccuracy, SinglePrecision) { check_abs_arg<float>(qon_pax_kernel_cAbs_ttab, qon_pax_kernel_cArg_ttab); }
TEST(ComplexAbsArgAccuracy, DoublePrecision) { check_abs_arg<double>(qon_pax_kernel_zAbs_ttab, qon_pax_kernel_zArg_ttab); }

template <class T>
void check_cis(Table &table) {
    using C = std::complex<T>;
    using K = void (*)(int, const T *, C *);
    std::vector<T> x;
    std::mt19937_64 rng(0xC15u);
    for (const acc::Range &range : {acc::uniform(-10, 10), acc::log_both_signs(0x1p-40, 0x1p40)})
        for (long long i = 0; i < acc::sample_count(1 << 12); ++i) x.push_back(static_cast<T>(cx::draw(range, rng)));
    Report rep = measure<T, T, C>(
        x, x,
        [&](int s, const std::vector<T> &a, const std::vector<T> &, std::vector<C> &r) {
            cx::slot<K>(table, s)(static_cast<int>(a.size()), a.data(), r.data());
        },
        [&](C got, T a, T) { return cx::componentwise_error(got, cexpiq(a)); });
    expect_bounds<T>(sizeof(T) == 4 ? "cCIS" : "zCIS", rep);
}

TEST(ComplexCISAccuracy, SinglePrecision) { check_cis<float>(qon_pax_kernel_cCIS_ttab); }
TEST(ComplexCISAccuracy, DoublePrecision) { check_cis<double>(qon_pax_kernel_zCIS_ttab); }

}  // namespace
