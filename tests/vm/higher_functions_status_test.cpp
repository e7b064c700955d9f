// Special values and statuses of the special functions in every slot of the s and d tables
// (C99 Annex F values where it gives them; 1 domain, 2 singularity, 3 overflow, 4 underflow),
// seen through an error call-back; in-place calls with a call-back that replaces results;
// strided forms against the contiguous ones; n <= 0.
#include "common/error_recorder.hpp"

#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using Table = qon_pax_kernel_fn const (*)[3];

qon::test::SeenError &seen = qon::test::seen_error;

class SpecialStatus : public qon::test::RecordingErrors {};

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double any = 12345.678;  // the value is not checked (accuracy tests measure it)
enum Types { F = 1, D = 2, FD = 3 };

struct Case {
    Table s, d;
    const char *name;
    int types;
    int nu;  // order for Jn and Yn
    double x, want;
    int status;
};

#define FN(Func) &qon_pax_kernel_s##Func##_ttab, &qon_pax_kernel_d##Func##_ttab, #Func

// clang-format off
const Case cases[] = {
    {FN(Erf), FD, 0, 0.0, 0.0, 0}, {FN(Erf), FD, 0, -0.0, -0.0, 0}, {FN(Erf), FD, 0, inf, 1, 0},
    {FN(Erf), FD, 0, -inf, -1, 0}, {FN(Erf), FD, 0, nan, nan, 0},
    {FN(Erfc), FD, 0, inf, 0.0, 0}, {FN(Erfc), FD, 0, -inf, 2, 0}, {FN(Erfc), FD, 0, 0.0, 1, 0},
    {FN(Erfc), D, 0, 27, any, 4}, {FN(Erfc), F, 0, 10, any, 4}, {FN(Erfc), FD, 0, 30, 0.0, 4},
    {FN(Erfc), FD, 0, nan, nan, 0},
    {FN(ErfInv), FD, 0, 1, inf, 2}, {FN(ErfInv), FD, 0, -1, -inf, 2}, {FN(ErfInv), FD, 0, 1.5, nan, 1},
    {FN(ErfInv), FD, 0, -inf, nan, 1}, {FN(ErfInv), FD, 0, inf, nan, 1}, {FN(ErfInv), FD, 0, 0.0, 0.0, 0},
    {FN(ErfInv), FD, 0, -0.0, -0.0, 0}, {FN(ErfInv), FD, 0, nan, nan, 0},
    {FN(ErfInv), D, 0, 2.3e-308, any, 4}, {FN(ErfInv), F, 0, 1.2e-38, any, 4}, {FN(ErfInv), D, 0, 4e-308, any, 0},
    {FN(ErfcInv), FD, 0, 0.0, inf, 2}, {FN(ErfcInv), FD, 0, -0.0, inf, 2}, {FN(ErfcInv), FD, 0, 2, -inf, 2},
    {FN(ErfcInv), FD, 0, -1e-30, nan, 1}, {FN(ErfcInv), FD, 0, 2.5, nan, 1}, {FN(ErfcInv), FD, 0, inf, nan, 1},
    {FN(ErfcInv), FD, 0, 1, 0.0, 0}, {FN(ErfcInv), D, 0, 4.9e-324, any, 0}, {FN(ErfcInv), FD, 0, nan, nan, 0},
    {FN(CdfNormInv), FD, 0, 0.0, -inf, 2}, {FN(CdfNormInv), FD, 0, 1, inf, 2}, {FN(CdfNormInv), FD, 0, 0.5, 0.0, 0},
    {FN(CdfNormInv), FD, 0, -0.5, nan, 1}, {FN(CdfNormInv), FD, 0, 1.5, nan, 1}, {FN(CdfNormInv), FD, 0, nan, nan, 0},
    {FN(Erfcx), FD, 0, inf, 0.0, 0}, {FN(Erfcx), FD, 0, -inf, inf, 0}, {FN(Erfcx), FD, 0, 0.0, 1, 0},
    {FN(Erfcx), D, 0, -26.7, inf, 3}, {FN(Erfcx), F, 0, -9.5, inf, 3}, {FN(Erfcx), FD, 0, -1e30, inf, 3},
    {FN(Erfcx), D, 0, 1e308, any, 4}, {FN(Erfcx), F, 0, 1e38, any, 4}, {FN(Erfcx), D, 0, 1e307, any, 0},
    {FN(CdfNorm), FD, 0, -inf, 0.0, 0}, {FN(CdfNorm), FD, 0, inf, 1, 0}, {FN(CdfNorm), FD, 0, 0.0, 0.5, 0},
    {FN(CdfNorm), D, 0, -38, any, 4}, {FN(CdfNorm), D, 0, -37.5, any, 0}, {FN(CdfNorm), F, 0, -13.5, any, 4},
    {FN(CdfNorm), FD, 0, -40, 0.0, 4}, {FN(CdfNorm), FD, 0, -1e30, 0.0, 4}, {FN(CdfNorm), FD, 0, nan, nan, 0},
    {FN(ExpInt1), FD, 0, 0.0, inf, 2}, {FN(ExpInt1), FD, 0, -0.0, inf, 2}, {FN(ExpInt1), FD, 0, -1, nan, 1},
    {FN(ExpInt1), FD, 0, -inf, nan, 1}, {FN(ExpInt1), FD, 0, inf, 0.0, 0}, {FN(ExpInt1), D, 0, 710, any, 4},
    {FN(ExpInt1), F, 0, 100, any, 4}, {FN(ExpInt1), FD, 0, 1e10, 0.0, 4}, {FN(ExpInt1), FD, 0, nan, nan, 0},
    {FN(I0), FD, 0, 0.0, 1, 0}, {FN(I0), FD, 0, inf, inf, 0}, {FN(I0), FD, 0, -inf, inf, 0},
    {FN(I0), D, 0, -715, inf, 3}, {FN(I0), F, 0, 92, inf, 3}, {FN(I0), FD, 0, nan, nan, 0},
    {FN(I1), FD, 0, 0.0, 0.0, 0}, {FN(I1), FD, 0, -0.0, -0.0, 0}, {FN(I1), FD, 0, -inf, -inf, 0},
    {FN(I1), D, 0, -715, -inf, 3}, {FN(I1), F, 0, 92, inf, 3}, {FN(I1), D, 0, 0x1p-1022, any, 4},
    {FN(I1), F, 0, 0x1p-126, any, 4}, {FN(I1), D, 0, 0x1p-1021, any, 0},
    {FN(J0), FD, 0, 0.0, 1, 0}, {FN(J0), FD, 0, inf, 0.0, 0}, {FN(J0), FD, 0, -inf, 0.0, 0},
    {FN(J0), FD, 0, nan, nan, 0},
    {FN(J1), FD, 0, -0.0, -0.0, 0}, {FN(J1), FD, 0, inf, 0.0, 0}, {FN(J1), FD, 0, -inf, -0.0, 0},
    {FN(J1), D, 0, -0x1p-1022, any, 4}, {FN(J1), F, 0, 0x1p-126, any, 4},
    {FN(Y0), FD, 0, 0.0, -inf, 2}, {FN(Y0), FD, 0, -0.0, -inf, 2}, {FN(Y0), FD, 0, -1, nan, 1},
    {FN(Y0), FD, 0, -inf, nan, 1}, {FN(Y0), FD, 0, inf, 0.0, 0}, {FN(Y0), FD, 0, nan, nan, 0},
    {FN(Y1), FD, 0, 0.0, -inf, 2}, {FN(Y1), FD, 0, -1, nan, 1}, {FN(Y1), FD, 0, inf, 0.0, 0},
    {FN(Y1), D, 0, 1e-309, -inf, 3}, {FN(Y1), F, 0, 1e-39, -inf, 3}, {FN(Y1), D, 0, 1e-300, any, 0},
    {FN(Jn), FD, 0, 0.0, 1, 0}, {FN(Jn), FD, 3, 0.0, 0.0, 0}, {FN(Jn), FD, 3, -0.0, -0.0, 0},
    {FN(Jn), FD, -3, 0.0, -0.0, 0}, {FN(Jn), FD, 3, -inf, -0.0, 0}, {FN(Jn), FD, 2, -inf, 0.0, 0},
    {FN(Jn), FD, 50, 1e-10, 0.0, 4}, {FN(Jn), FD, -51, 1e-10, -0.0, 4}, {FN(Jn), D, 50, 1e-6, any, 4},
    {FN(Jn), FD, INT_MIN, 1, 0.0, 4}, {FN(Jn), FD, INT_MIN, -0.0, 0.0, 0}, {FN(Jn), FD, 3, nan, nan, 0},
    {FN(Yn), FD, 3, 0.0, -inf, 2}, {FN(Yn), FD, -3, 0.0, inf, 2}, {FN(Yn), FD, -2, 0.0, -inf, 2},
    {FN(Yn), FD, 3, -1, nan, 1}, {FN(Yn), FD, 3, inf, 0.0, 0}, {FN(Yn), FD, 50, 1e-10, -inf, 3},
    {FN(Yn), FD, -51, 1e-10, inf, 3}, {FN(Yn), FD, INT_MIN, 1, -inf, 3}, {FN(Yn), D, 5, 1e-62, -inf, 3},
    {FN(Yn), FD, 3, nan, nan, 0},
    {FN(LGamma), FD, 0, 1, 0.0, 0}, {FN(LGamma), FD, 0, 2, 0.0, 0}, {FN(LGamma), FD, 0, 0.0, inf, 2},
    {FN(LGamma), FD, 0, -0.0, inf, 2}, {FN(LGamma), FD, 0, -3, inf, 2}, {FN(LGamma), FD, 0, -1e30, inf, 2},
    {FN(LGamma), FD, 0, inf, inf, 0}, {FN(LGamma), FD, 0, -inf, inf, 0}, {FN(LGamma), D, 0, 3e305, inf, 3},
    {FN(LGamma), F, 0, 5e36, inf, 3}, {FN(LGamma), FD, 0, nan, nan, 0},
    {FN(TGamma), FD, 0, 0.0, inf, 2}, {FN(TGamma), FD, 0, -0.0, -inf, 2}, {FN(TGamma), FD, 0, -1, nan, 2},
    {FN(TGamma), FD, 0, -1e30, nan, 2}, {FN(TGamma), FD, 0, -inf, nan, 1}, {FN(TGamma), FD, 0, inf, inf, 0},
    {FN(TGamma), FD, 0, 1, 1, 0}, {FN(TGamma), FD, 0, 5, 24, 0}, {FN(TGamma), D, 0, 172, inf, 3},
    {FN(TGamma), F, 0, 36, inf, 3}, {FN(TGamma), D, 0, -1e-309, -inf, 3}, {FN(TGamma), D, 0, -180.5, any, 4},
    {FN(TGamma), D, 0, -200.5, -0.0, 4}, {FN(TGamma), F, 0, -50.5, -0.0, 4}, {FN(TGamma), FD, 0, nan, nan, 0},
};
// clang-format on

template <class T>
bool same(T got, double want) {
    if (want == any) return true;
    if (std::isnan(want)) return std::isnan(got);
    return got == static_cast<T>(want) && std::signbit(got) == std::signbit(want);
}

template <class T>
void check(const Case &c, Table table) {
    for (int slot = 0; slot < 3; ++slot) {
        std::string where = std::string(sizeof(T) == 4 ? "s" : "d") + c.name + " slot " + std::to_string(slot) +
                            " nu " + std::to_string(c.nu) + " x " + std::to_string(c.x);
        seen = qon::test::SeenError{};
        T x = static_cast<T>(c.x), r = T(-7);
        if (std::string(c.name) == "Jn" || std::string(c.name) == "Yn")
            reinterpret_cast<void (*)(int, const T *, int, T *)>((*table)[slot])(1, &x, c.nu, &r);
        else
            reinterpret_cast<void (*)(int, const T *, T *)>((*table)[slot])(1, &x, &r);
        EXPECT_TRUE(same(r, c.want)) << where << ": got " << r << ", want " << c.want;
        if (c.status == 0) {
            EXPECT_EQ(seen.count, 0) << where << " reported " << seen.code;
            continue;
        }
        EXPECT_EQ(seen.count, 1) << where;
        EXPECT_EQ(seen.code, c.status) << where;
        EXPECT_EQ(seen.index, 0) << where;
        EXPECT_EQ(seen.name, std::string("pax") + (sizeof(T) == 4 ? "s" : "d") + c.name) << where;
    }
}

TEST_F(SpecialStatus, SpecialValuesAndStatusesInEverySlot) {
    for (const Case &c : cases) {
        if (c.types & F) check<float>(c, c.s);
        if (c.types & D) check<double>(c, c.d);
    }
}

// The replacement the Gaussian generator's call-back makes: erfinv(+-1) = +-5.8635847487551676.
int finite_erfinv(PaxErrorContext *c) {
    if (c->code == PAX_STATUS_SING) c->res1 = c->res2 = std::copysign(5.8635847487551676, c->arg1);
    return 0;
}

TEST_F(SpecialStatus, ErfInvInPlaceKeepsReplacedResults) {
    paxSetErrorCallBack(finite_erfinv);
    std::vector<double> a = {0.25, -1, 0.999999, 1, -0.5, 1e-300, -0.0, 0.75};
    std::vector<double> expect(a.size());
    paxdErfInv(static_cast<int>(a.size()), a.data(), expect.data());
    std::vector<double> v = a;
    paxdErfInv(static_cast<int>(v.size()), v.data(), v.data());
    for (std::size_t i = 0; i < a.size(); ++i) EXPECT_EQ(v[i], expect[i]) << i;
    EXPECT_EQ(v[1], -5.8635847487551676);
    EXPECT_EQ(v[3], 5.8635847487551676);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_SING);
    // An accurate result gives back the argument through erf.
    EXPECT_NEAR(std::erf(v[0]), 0.25, 1e-16);
    EXPECT_NEAR(std::erf(v[7]), 0.75, 2e-16);

    std::vector<float> f = {0.5f, -1.0f, 0.125f};
    paxsErfInv(3, f.data(), f.data());
    EXPECT_EQ(f[1], -5.8635847487551676f);
    EXPECT_NEAR(std::erf(double(f[0])), 0.5, 1e-7);
}

// A domain error or a pole at each position of a call of every length up to 19 (main loop,
// redone groups and masked tails) is reported once with its index, and leaves every other
// element as a call on that element alone gives it: near-1 arguments (the vector's far branch)
// mixed with ordinary ones in every lane.
template <class T>
void expect_erfinv_lanes(Table table) {
    const T ordinary[] = {T(0.3), T(-0.9999999), T(0.999), T(-0.6), T(1e-5), T(0.99999994), T(-0.9985), T(0.75)};
    for (int slot = 0; slot < 3; ++slot) {
        auto kernel = reinterpret_cast<void (*)(int, const T *, T *)>((*table)[slot]);
        for (int n = 1; n <= 19; ++n) {
            for (int k = 0; k < n; ++k) {
                std::vector<T> a(n), r(n, T(-7));
                for (int i = 0; i < n; ++i) a[i] = ordinary[(i * 5 + k) % 8];
                a[k] = k % 2 == 0 ? T(-1) : T(1.5);
                seen = qon::test::SeenError{};
                kernel(n, a.data(), r.data());
                EXPECT_EQ(seen.count, 1);
                EXPECT_EQ(seen.index, k);
                EXPECT_EQ(seen.code, k % 2 == 0 ? PAX_STATUS_SING : PAX_STATUS_ERRDOM);
                EXPECT_TRUE(k % 2 == 0 ? r[k] == -std::numeric_limits<T>::infinity() : std::isnan(r[k]));
                for (int i = 0; i < n; ++i) {
                    if (i == k) continue;
                    T alone;
                    kernel(1, &a[i], &alone);
                    EXPECT_EQ(r[i], alone) << "slot " << slot << " n " << n << " k " << k << " i " << i;
                }
            }
        }
    }
}

TEST_F(SpecialStatus, ErfInvEveryLaneAndTailLength) {
    expect_erfinv_lanes<double>(&qon_pax_kernel_dErfInv_ttab);
    expect_erfinv_lanes<float>(&qon_pax_kernel_sErfInv_ttab);
}

// Strided forms give the contiguous results at their positions (statuses and results left by
// the call-back included), leave the gaps alone, and report with the strided name and the
// element index.
template <class T>
void expect_strided_like_contiguous(Table contiguous, Table strided, const char *name, bool order) {
    const std::vector<T> args = {T(0.5), T(-1), T(0.25), T(3), T(1), T(-0.75), T(2.5)};
    const int n = static_cast<int>(args.size()), inca = 2, incr = 3;
    for (int slot = 0; slot < 3; ++slot) {
        std::vector<T> a(n * inca, T(99)), r(n * incr, T(-5)), want(n);
        for (int i = 0; i < n; ++i) a[i * inca] = args[i];
        seen = qon::test::SeenError{};
        if (order) {
            reinterpret_cast<void (*)(int, const T *, int, T *)>((*contiguous)[slot])(n, args.data(), 3, want.data());
            seen = qon::test::SeenError{};
            reinterpret_cast<void (*)(int, const T *, int, int, T *, int)>((*strided)[slot])(n, a.data(), inca, 3,
                                                                                             r.data(), incr);
        } else {
            reinterpret_cast<void (*)(int, const T *, T *)>((*contiguous)[slot])(n, args.data(), want.data());
            seen = qon::test::SeenError{};
            reinterpret_cast<void (*)(int, const T *, int, T *, int)>((*strided)[slot])(n, a.data(), inca, r.data(),
                                                                                        incr);
        }
        for (int i = 0; i < n * incr; ++i) {
            if (i % incr == 0) {
                T w = want[i / incr];
                EXPECT_TRUE(std::isnan(w) ? std::isnan(r[i]) : r[i] == w) << name << " slot " << slot << " " << i;
            } else {
                EXPECT_EQ(r[i], T(-5)) << name << " gap " << i;
            }
        }
        if (seen.count > 0) EXPECT_EQ(seen.name, std::string("pax") + (sizeof(T) == 4 ? "s" : "d") + name + "I");
    }
}

#define STRIDED(T, t, Func, order) \
    expect_strided_like_contiguous<T>(&qon_pax_kernel_##t##Func##_ttab, &qon_pax_kernel_##t##Func##I_ttab, #Func, order)

TEST_F(SpecialStatus, StridedFormsMatchContiguous) {
    STRIDED(double, d, ErfInv, false);
    STRIDED(float, s, ErfInv, false);
    STRIDED(double, d, TGamma, false);
    STRIDED(float, s, Y0, false);
    STRIDED(double, d, Yn, true);
    STRIDED(float, s, Jn, true);
    // The offending element's index: the second element (-1) of ErfInv.
    std::vector<double> a = {0.5, 0, -1, 0}, r(4, 0);
    seen = qon::test::SeenError{};
    paxdErfInvI(2, a.data(), 2, r.data(), 2);
    EXPECT_EQ(seen.count, 1);
    EXPECT_EQ(seen.index, 1);
    EXPECT_EQ(seen.code, PAX_STATUS_SING);
}

TEST_F(SpecialStatus, NonPositiveCountsTouchNothing) {
    double a = 1, r = 42;
    for (int n : {0, -1, INT_MIN}) {
        paxdErfInv(n, &a, &r);
        paxdTGamma(n, &a, &r);
        paxdJn(n, &a, 3, &r);
        paxdCdfNormInvI(n, &a, 1, &r, 1);
    }
    EXPECT_EQ(r, 42);
    EXPECT_EQ(seen.count, 0);
}

}  // namespace
