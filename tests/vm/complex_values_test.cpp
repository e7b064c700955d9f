// Special values and statuses of the complex functions in every slot: C99 Annex G values
// (branch cuts, signed zeros, infinities, NaNs) from the standard's tables; the status each
// exceptional element reports (domain, singularity, overflow, underflow) and none for NaN or
// subnormal arguments; in-place calls; strided forms against the contiguous ones.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <random>
#include <limits>
#include <string>
#include <vector>

#include "vm/complex_reference.hpp"

namespace acc = qon::test::accuracy;
namespace cx = qon::test::cx;

namespace {

using Table = qon_pax_kernel_fn const[3];
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = 3.14159265358979323846;

// Collects the statuses and names the error path reports; restores the thread's state.
class ComplexStatus : public ::testing::Test {
protected:
    void SetUp() override {
        callback_ = paxSetErrorCallBack(record);
        paxClearErrStatus();
        codes.clear();
        names.clear();
        indices.clear();
    }
    void TearDown() override {
        paxSetErrorCallBack(callback_);
        paxClearErrStatus();
    }
    static int record(PaxErrorContext *ctx) {
        codes.push_back(ctx->code);
        indices.push_back(ctx->index);
        names.emplace_back(ctx->function_name);
        return 0;
    }
    static inline std::vector<int> codes, indices;
    static inline std::vector<std::string> names;

private:
    PaxErrorCallBack callback_ = nullptr;
};

// A part matches when both are NaN, or equal with the same sign of zero, or (finite non-zero
// values such as pi/2) within 1 ulp.
template <class T>
bool part_matches(T got, double want) {
    if (std::isnan(want)) return std::isnan(got);
    if (want == 0 || std::isinf(want)) return got == static_cast<T>(want) && std::signbit(got) == std::signbit(want);
    return acc::ulp_error<T>(got, want) <= 1.0;
}

struct Case {
    const char *func;
    Table *c, *z;
    double re, im, want_re, want_im;
    int status;
};

#define QON_CASE(F, re, im, wre, wim, st) {#F, &qon_pax_kernel_c##F##_ttab, &qon_pax_kernel_z##F##_ttab, re, im, wre, wim, st}
constexpr int OK = PAX_STATUS_OK, DOM = PAX_STATUS_ERRDOM, SING = PAX_STATUS_SING;
const Case annex_g[] = {
    // Square root: principal branch, +0 real part on the cut, sign of the imaginary zero kept.
    QON_CASE(Sqrt, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Sqrt, -0.0, 0.0, 0.0, 0.0, OK),
    QON_CASE(Sqrt, -4.0, 0.0, 0.0, 2.0, OK), QON_CASE(Sqrt, -4.0, -0.0, 0.0, -2.0, OK),
    QON_CASE(Sqrt, 1.0, inf, inf, inf, OK), QON_CASE(Sqrt, nan, inf, inf, inf, OK),
    QON_CASE(Sqrt, -inf, 1.0, 0.0, inf, OK), QON_CASE(Sqrt, inf, 1.0, inf, 0.0, OK),
    QON_CASE(Sqrt, inf, nan, inf, nan, OK), QON_CASE(Sqrt, 1.0, nan, nan, nan, OK),
    // Logarithms: pole at zero, cut along the negative real axis.
    QON_CASE(Ln, -0.0, 0.0, -inf, pi, SING), QON_CASE(Ln, 0.0, 0.0, -inf, 0.0, SING),
    QON_CASE(Ln, 0.0, -0.0, -inf, -0.0, SING), QON_CASE(Ln, -1.0, 0.0, 0.0, pi, OK),
    QON_CASE(Ln, -1.0, -0.0, 0.0, -pi, OK), QON_CASE(Ln, 1.0, inf, inf, pi / 2, OK),
    QON_CASE(Ln, -inf, 1.0, inf, pi, OK), QON_CASE(Ln, inf, 1.0, inf, 0.0, OK),
    QON_CASE(Ln, -inf, inf, inf, 3 * pi / 4, OK), QON_CASE(Ln, inf, inf, inf, pi / 4, OK),
    QON_CASE(Ln, inf, nan, inf, nan, OK), QON_CASE(Ln, nan, inf, inf, nan, OK),
    QON_CASE(Log10, 0.0, 0.0, -inf, 0.0, SING), QON_CASE(Log10, -inf, -0.0, inf, -pi / std::log(10.0), OK),
    // Inverse functions.
    QON_CASE(Acos, 0.0, 0.0, pi / 2, -0.0, OK), QON_CASE(Acos, -0.0, 0.0, pi / 2, -0.0, OK),
    QON_CASE(Acos, 0.0, nan, pi / 2, nan, OK), QON_CASE(Acos, 1.0, inf, pi / 2, -inf, OK),
    QON_CASE(Acos, -inf, 1.0, pi, -inf, OK), QON_CASE(Acos, inf, 1.0, 0.0, -inf, OK),
    QON_CASE(Acos, -inf, inf, 3 * pi / 4, -inf, OK), QON_CASE(Acos, inf, inf, pi / 4, -inf, OK),
    QON_CASE(Acos, nan, inf, nan, -inf, OK), QON_CASE(Acos, 1.0, 0.0, 0.0, -0.0, OK),
    QON_CASE(Acos, -1.0, 0.0, pi, -0.0, OK),
    QON_CASE(Acosh, 0.0, 0.0, 0.0, pi / 2, OK), QON_CASE(Acosh, 1.0, inf, inf, pi / 2, OK),
    QON_CASE(Acosh, -inf, 1.0, inf, pi, OK), QON_CASE(Acosh, inf, 1.0, inf, 0.0, OK),
    QON_CASE(Acosh, -inf, inf, inf, 3 * pi / 4, OK), QON_CASE(Acosh, inf, inf, inf, pi / 4, OK),
    QON_CASE(Acosh, -1.0, 0.0, 0.0, pi, OK), QON_CASE(Acosh, -1.0, -0.0, 0.0, -pi, OK),
    QON_CASE(Asinh, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Asinh, -0.0, -0.0, -0.0, -0.0, OK),
    QON_CASE(Asinh, 1.0, inf, inf, pi / 2, OK), QON_CASE(Asinh, inf, 1.0, inf, 0.0, OK),
    QON_CASE(Asinh, inf, inf, inf, pi / 4, OK), QON_CASE(Asinh, nan, 0.0, nan, 0.0, OK),
    QON_CASE(Asin, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Asin, -0.0, -0.0, -0.0, -0.0, OK),
    QON_CASE(Atanh, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Atanh, 0.0, nan, 0.0, nan, OK),
    QON_CASE(Atanh, 1.0, 0.0, inf, 0.0, SING), QON_CASE(Atanh, -1.0, -0.0, -inf, -0.0, SING),
    QON_CASE(Atanh, 1.0, inf, 0.0, pi / 2, OK), QON_CASE(Atanh, inf, 1.0, 0.0, pi / 2, OK),
    QON_CASE(Atanh, inf, inf, 0.0, pi / 2, OK), QON_CASE(Atanh, inf, nan, 0.0, nan, OK),
    QON_CASE(Atan, 0.0, 1.0, 0.0, inf, SING), QON_CASE(Atan, 0.0, 0.0, 0.0, 0.0, OK),
    // Hyperbolic functions, and the circular ones through sin z = -i sinh(iz), cos z = cosh(iz).
    QON_CASE(Cosh, 0.0, 0.0, 1.0, 0.0, OK), QON_CASE(Cosh, inf, 0.0, inf, 0.0, OK),
    QON_CASE(Cosh, 1.0, inf, nan, nan, DOM), QON_CASE(Cosh, inf, pi / 4, inf, inf, OK),
    QON_CASE(Cosh, nan, 0.0, nan, 0.0, OK),
    QON_CASE(Sinh, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Sinh, inf, 0.0, inf, 0.0, OK),
    QON_CASE(Sinh, 1.0, inf, nan, nan, DOM), QON_CASE(Sinh, -inf, pi / 4, -inf, inf, OK),
    QON_CASE(Tanh, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Tanh, inf, 1.0, 1.0, 0.0, OK),
    QON_CASE(Tanh, -inf, 2.0, -1.0, -0.0, OK), QON_CASE(Tanh, 1.0, inf, nan, nan, DOM),
    QON_CASE(Sin, 0.0, 0.0, 0.0, 0.0, OK), QON_CASE(Sin, 0.0, -inf, 0.0, -inf, OK),
    QON_CASE(Sin, inf, 1.0, nan, nan, DOM), QON_CASE(Cos, 0.0, 0.0, 1.0, -0.0, OK),
    QON_CASE(Cos, 0.0, inf, inf, -0.0, OK), QON_CASE(Tan, 0.0, 0.0, 0.0, 0.0, OK),
    QON_CASE(Tan, 1.0, inf, 0.0, 1.0, OK), QON_CASE(Conj, nan, -0.0, nan, 0.0, OK),
};

template <class T>
void check_case(const Case &k, Table &table, const char *prefix) {
    using C = std::complex<T>;
    for (int s = 0; s < 3; ++s) {
        const C a(static_cast<T>(k.re), static_cast<T>(k.im));
        C r(T(-7), T(-7));
        paxClearErrStatus();
        cx::slot<cx::UnaryKernel<C>>(table, s)(1, &a, &r);
        const std::string where = std::string(prefix) + k.func + "(" + std::to_string(k.re) + ", " +
                                  std::to_string(k.im) + ") slot " + std::to_string(s);
        EXPECT_TRUE(part_matches(r.real(), k.want_re) && part_matches(r.imag(), k.want_im))
            << where << " gave (" << r.real() << ", " << r.imag() << ")";
        EXPECT_EQ(paxGetErrStatus(), k.status) << where;
    }
}

TEST_F(ComplexStatus, AnnexGValues) {
    for (const Case &k : annex_g) {
        check_case<float>(k, *k.c, "c");
        check_case<double>(k, *k.z, "z");
    }
}


// Statuses of elements outside the special-value tables, in every slot: overflow of finite
// arguments, underflow of normal ones, poles, and none for NaN or subnormal arguments.
struct StatusCase {
    const char *func;
    Table *table;  // z
    std::complex<double> x, y;  // y: second argument of two-argument functions
    int status;
};
const std::complex<double> zero(0, 0);
#define QON_ZCASE(F, x, y, st) {#F, &qon_pax_kernel_z##F##_ttab, x, y, st}
const StatusCase z_unary_status[] = {
    QON_ZCASE(Sinh, std::complex<double>(800, 0.5), zero, PAX_STATUS_OVERFLOW),
    QON_ZCASE(Cosh, std::complex<double>(-711, 0), zero, PAX_STATUS_OVERFLOW),
    QON_ZCASE(Sin, std::complex<double>(1, 720), zero, PAX_STATUS_OVERFLOW),
    QON_ZCASE(Sin, std::complex<double>(nan, 0), zero, PAX_STATUS_OK),
    QON_ZCASE(Sin, std::complex<double>(1e-310, 0), zero, PAX_STATUS_OK),
    QON_ZCASE(Tanh, std::complex<double>(1e-310, 1e-310), zero, PAX_STATUS_OK),
    QON_ZCASE(Sqrt, std::complex<double>(1e300, 1e300), zero, PAX_STATUS_OK),
    QON_ZCASE(Ln, std::complex<double>(1e-320, 0), zero, PAX_STATUS_OK),
    QON_ZCASE(Atanh, std::complex<double>(1, 1e-300), zero, PAX_STATUS_OK),
    // A part that underflows while the other does not: Im tanh(-800 + i) is about 4e-695,
    // Im sin(x + 1e-300 i) = cos x sinh(1e-300) about 6e-317 at x = fl(pi/2), Im sqrt(1 + 3e-308 i)
    // = 1.5e-308.
    QON_ZCASE(Tanh, std::complex<double>(-800, 1), zero, PAX_STATUS_UNDERFLOW),
    QON_ZCASE(Sin, std::complex<double>(1.5707963267948966, 1e-300), zero, PAX_STATUS_UNDERFLOW),
    QON_ZCASE(Sqrt, std::complex<double>(1, 3e-308), zero, PAX_STATUS_UNDERFLOW),
    QON_ZCASE(Sqrt, std::complex<double>(1, 1e-308), zero, PAX_STATUS_OK),  // a subnormal argument
};
const StatusCase z_binary_status[] = {
    QON_ZCASE(Mul, std::complex<double>(1e200, 0), std::complex<double>(1e200, 1), PAX_STATUS_OVERFLOW),
    QON_ZCASE(Mul, std::complex<double>(1e-200, 1e-200), std::complex<double>(1e-200, 0), PAX_STATUS_UNDERFLOW),
    QON_ZCASE(Mul, std::complex<double>(1e200, 1e200), std::complex<double>(1e200, -1e200), PAX_STATUS_OVERFLOW),
    QON_ZCASE(Mul, std::complex<double>(inf, 0), std::complex<double>(0, 0), PAX_STATUS_ERRDOM),
    QON_ZCASE(MulByConj, std::complex<double>(1e300, 1), std::complex<double>(1e10, 1), PAX_STATUS_OVERFLOW),
    QON_ZCASE(Div, std::complex<double>(1, 1), zero, PAX_STATUS_SING),
    QON_ZCASE(Div, zero, zero, PAX_STATUS_ERRDOM),
    QON_ZCASE(Div, std::complex<double>(1e-300, 1), std::complex<double>(1e300, 1), PAX_STATUS_UNDERFLOW),
    QON_ZCASE(Div, std::complex<double>(1e300, 1e300), std::complex<double>(1e-300, 1e-300), PAX_STATUS_OVERFLOW),
    QON_ZCASE(Div, std::complex<double>(1e300, 1e300), std::complex<double>(1e300, 1e300), PAX_STATUS_OK),
    QON_ZCASE(Add, std::complex<double>(1.7e308, 0), std::complex<double>(1.7e308, 0), PAX_STATUS_OVERFLOW),
    QON_ZCASE(Sub, std::complex<double>(inf, 0), std::complex<double>(inf, 0), PAX_STATUS_ERRDOM),
    QON_ZCASE(Pow, std::complex<double>(10, 0), std::complex<double>(400, 0), PAX_STATUS_OVERFLOW),
    QON_ZCASE(Pow, std::complex<double>(10, 0), std::complex<double>(-400, 0), PAX_STATUS_UNDERFLOW),
    QON_ZCASE(Pow, zero, std::complex<double>(-1, 2), PAX_STATUS_SING),
    QON_ZCASE(Pow, zero, std::complex<double>(0, 2), PAX_STATUS_ERRDOM),
    QON_ZCASE(Pow, zero, std::complex<double>(0.5, 2), PAX_STATUS_OK),
    QON_ZCASE(Pow, std::complex<double>(nan, 0), zero, PAX_STATUS_OK),
};

TEST_F(ComplexStatus, ExceptionalElementsEverySlot) {
    using C = std::complex<double>;
    for (const StatusCase &k : z_unary_status)
        for (int s = 0; s < 3; ++s) {
            C r;
            paxClearErrStatus();
            cx::slot<cx::UnaryKernel<C>>(*k.table, s)(1, &k.x, &r);
            EXPECT_EQ(paxGetErrStatus(), k.status) << k.func << k.x << " slot " << s << " gave " << r;
        }
    for (const StatusCase &k : z_binary_status)
        for (int s = 0; s < 3; ++s) {
            C r;
            paxClearErrStatus();
            cx::slot<cx::BinaryKernel<C>>(*k.table, s)(1, &k.x, &k.y, &r);
            EXPECT_EQ(paxGetErrStatus(), k.status) << k.func << k.x << k.y << " slot " << s << " gave " << r;
        }
}

// Single precision reaches its limits far earlier; values that are ordinary in double.
TEST_F(ComplexStatus, SinglePrecisionLimits) {
    const QON_Complex8 big{1e20f, 1e20f}, small{1e-20f, 1e-20f}, h{100.0f, 0.0f};
    QON_Complex8 r;
    paxcMul(1, &big, &big, &r);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_OVERFLOW);
    paxClearErrStatus();
    paxcMul(1, &small, &small, &r);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_UNDERFLOW);
    paxClearErrStatus();
    paxcCosh_21(1, &h, &r);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_OVERFLOW);
    EXPECT_TRUE(std::isinf(r.real));
    paxClearErrStatus();
    const float x = 1e30f, xinf = std::numeric_limits<float>::infinity();
    float m;
    paxcAbs(1, &big, &m);
    paxcCIS(1, &x, &r);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_OK);
    EXPECT_FLOAT_EQ(m, 1.41421356e20f);
    paxcCIS(1, &xinf, &r);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_ERRDOM);
}

// The reported element: its index and the function's name, strided forms with the I suffix.
TEST_F(ComplexStatus, ReportsIndexAndName) {
    std::vector<std::complex<double>> a(7, {2.0, 1.0});
    a[4] = 0.0;
    std::vector<std::complex<double>> r(7), rs(14);
    paxzLn(7, reinterpret_cast<const QON_Complex16 *>(a.data()), reinterpret_cast<QON_Complex16 *>(r.data()));
    paxzLnI(7, reinterpret_cast<const QON_Complex16 *>(a.data()), 1, reinterpret_cast<QON_Complex16 *>(rs.data()), 2);
    ASSERT_EQ(codes.size(), 2u);
    EXPECT_EQ(codes[0], PAX_STATUS_SING);
    EXPECT_EQ(indices[0], 4);
    EXPECT_EQ(names[0], "paxzLn");
    EXPECT_EQ(indices[1], 4);
    EXPECT_EQ(names[1], "paxzLnI");
    EXPECT_TRUE(std::isinf(r[4].real()) && r[4].real() < 0);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(rs[2 * i], r[i]);
        EXPECT_EQ(rs[2 * i + 1], std::complex<double>(0.0, 0.0));
    }
}

// ---- In place and strided -----------------------------------------------------------------

template <class T>
std::vector<std::complex<T>> sample_arguments(int n, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::vector<std::complex<T>> v;
    for (int i = 0; i < n; ++i) v.push_back(cx::draw<T>({acc::uniform(-3, 3), acc::uniform(-3, 3)}, rng));
    return v;
}

template <class T>
bool same(std::complex<T> x, std::complex<T> y) {
    return std::memcmp(&x, &y, sizeof x) == 0;
}

struct UnaryPair {
    Table *contiguous, *strided;
};
#define QON_UPAIR(t, F) {&qon_pax_kernel_##t##F##_ttab, &qon_pax_kernel_##t##F##I_ttab}

template <class T>
void check_in_place_and_strided(const std::vector<UnaryPair> &unary, const std::vector<UnaryPair> &binary) {
    using C = std::complex<T>;
    using UI = void (*)(int, const C *, int, C *, int);
    using BI = void (*)(int, const C *, int, const C *, int, C *, int);
    const int n = 19;
    const std::vector<C> a = sample_arguments<T>(n, 11), b = sample_arguments<T>(n, 12);
    for (const UnaryPair &f : unary)
        for (int s = 0; s < 3; ++s) {
            std::vector<C> r(n), inplace = a, strided_r(3 * n, C(-9, -9)), strided_a(2 * n), unit(n);
            for (int i = 0; i < n; ++i) strided_a[2 * i] = a[i];
            cx::slot<cx::UnaryKernel<C>>(*f.contiguous, s)(n, a.data(), r.data());
            cx::slot<cx::UnaryKernel<C>>(*f.contiguous, s)(n, inplace.data(), inplace.data());
            cx::slot<UI>(*f.strided, s)(n, strided_a.data(), 2, strided_r.data(), 3);
            cx::slot<UI>(*f.strided, s)(n, a.data(), 1, unit.data(), 1);
            for (int i = 0; i < n; ++i) {
                ASSERT_TRUE(same(inplace[i], r[i])) << "in place, slot " << s;
                ASSERT_TRUE(same(strided_r[3 * i], r[i])) << "strided, slot " << s;
                ASSERT_TRUE(same(unit[i], r[i])) << "unit increments, slot " << s;
                ASSERT_TRUE(same(strided_r[3 * i + 1], C(-9, -9)));
            }
        }
    for (const UnaryPair &f : binary)
        for (int s = 0; s < 3; ++s) {
            std::vector<C> r(n), in_a = a, in_b = b, strided_r(2 * n), strided_b(3 * n);
            for (int i = 0; i < n; ++i) strided_b[3 * i] = b[i];
            cx::slot<cx::BinaryKernel<C>>(*f.contiguous, s)(n, a.data(), b.data(), r.data());
            cx::slot<cx::BinaryKernel<C>>(*f.contiguous, s)(n, in_a.data(), b.data(), in_a.data());
            cx::slot<cx::BinaryKernel<C>>(*f.contiguous, s)(n, a.data(), in_b.data(), in_b.data());
            cx::slot<BI>(*f.strided, s)(n, a.data(), 1, strided_b.data(), 3, strided_r.data(), 2);
            for (int i = 0; i < n; ++i) {
                ASSERT_TRUE(same(in_a[i], r[i]) && same(in_b[i], r[i])) << "in place, slot " << s;
                ASSERT_TRUE(same(strided_r[2 * i], r[i])) << "strided, slot " << s;
            }
        }
}

#define QON_UNARY_PAIRS(t)                                                                                   \
    {QON_UPAIR(t, Sqrt), QON_UPAIR(t, Ln),    QON_UPAIR(t, Log10), QON_UPAIR(t, Sin),   QON_UPAIR(t, Cos),   \
     QON_UPAIR(t, Tan),  QON_UPAIR(t, Sinh),  QON_UPAIR(t, Cosh),  QON_UPAIR(t, Tanh),  QON_UPAIR(t, Asin),  \
     QON_UPAIR(t, Acos), QON_UPAIR(t, Atan),  QON_UPAIR(t, Asinh), QON_UPAIR(t, Acosh), QON_UPAIR(t, Atanh), \
     QON_UPAIR(t, Conj)}
#define QON_BINARY_PAIRS(t)                                                                                  \
    {QON_UPAIR(t, Add), QON_UPAIR(t, Sub), QON_UPAIR(t, Mul), QON_UPAIR(t, MulByConj), QON_UPAIR(t, Div),    \
     QON_UPAIR(t, Pow)}

TEST(ComplexLayout, InPlaceAndStridedMatchContiguous) {
    check_in_place_and_strided<float>(QON_UNARY_PAIRS(c), QON_BINARY_PAIRS(c));
    check_in_place_and_strided<double>(QON_UNARY_PAIRS(z), QON_BINARY_PAIRS(z));
}

// Powx, Abs, Arg and CIS: in place where the types allow, strided against contiguous.
TEST(ComplexLayout, OtherFamilies) {
    using C = std::complex<double>;
    const int n = 13;
    const std::vector<C> a = sample_arguments<double>(n, 21);
    const C e(0.5, -1.5);
    std::vector<C> r(n), inplace = a, rs(2 * n);
    paxzPowx(n, reinterpret_cast<const QON_Complex16 *>(a.data()), {0.5, -1.5}, reinterpret_cast<QON_Complex16 *>(r.data()));
    cx::slot<cx::PowxKernel<C>>(qon_pax_kernel_zPowx_ttab, 1)(n, inplace.data(), e, inplace.data());
    using PXI = void (*)(int, const C *, int, C, C *, int);
    cx::slot<PXI>(qon_pax_kernel_zPowxI_ttab, 0)(n, a.data(), 1, e, rs.data(), 2);
    std::vector<double> m(n), ms(3 * n), t(n), cis_arg(2 * n);
    paxzAbs(n, reinterpret_cast<const QON_Complex16 *>(a.data()), m.data());
    paxzAbsI(n, reinterpret_cast<const QON_Complex16 *>(a.data()), 1, ms.data(), 3);
    for (int i = 0; i < n; ++i) {
        EXPECT_TRUE(same(inplace[i], r[i]) && same(rs[2 * i], r[i]));
        EXPECT_EQ(ms[3 * i], m[i]);
        cis_arg[2 * i] = a[i].real();
    }
    paxzArg(n, reinterpret_cast<const QON_Complex16 *>(a.data()), t.data());
    paxzArgI(n, reinterpret_cast<const QON_Complex16 *>(a.data()), 1, ms.data(), 3);
    std::vector<C> c(n), cs(n);
    paxzCISI(n, cis_arg.data(), 2, reinterpret_cast<QON_Complex16 *>(cs.data()), 1);
    for (int i = 0; i < n; ++i) {
        EXPECT_EQ(ms[3 * i], t[i]);
        c[i] = std::polar(1.0, a[i].real());
        EXPECT_NEAR(cs[i].real(), c[i].real(), 1e-15);
        EXPECT_NEAR(cs[i].imag(), c[i].imag(), 1e-15);
    }
}

}  // namespace
