// Array layouts of the real elementary kernels, every function, type and slot: in-place calls
// give the out-of-place results; strided calls with other and negative increments give the
// contiguous results at their positions and leave the gaps alone; unit-increment strided calls
// equal contiguous ones. Results are compared bit for bit (any NaN matches any NaN).
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

#define ELEMENTARY_U(X)                                                                                           \
    X(Abs) X(Acos) X(Acosh) X(Acospi) X(Asin) X(Asinh) X(Asinpi) X(Atan) X(Atanh) X(Atanpi) X(Cbrt) X(Ceil) X(Cos) \
    X(Cosd) X(Cosh) X(Cospi) X(Exp10) X(Exp2) X(Expm1) X(Floor) X(Frac) X(Inv) X(InvCbrt) X(InvSqrt) X(Ln)        \
    X(Log10) X(Log1p) X(Log2) X(Logb) X(NearbyInt) X(Pow2o3) X(Pow3o2) X(Rint) X(Round) X(Sin) X(Sind) X(Sinh)     \
    X(Sinpi) X(Sqrt) X(Tan) X(Tand) X(Tanh) X(Tanpi) X(Trunc)
#define ELEMENTARY_B(X)                                                                                           \
    X(Add) X(Atan2) X(Atan2pi) X(CopySign) X(Div) X(Fdim) X(Fmax) X(Fmin) X(Fmod) X(Hypot) X(MaxMag) X(MinMag)    \
    X(Mul) X(NextAfter) X(Pow) X(Powr) X(Remainder) X(Sub)
#define ELEMENTARY_U2(X) X(Modf) X(SinCos) X(SinCospi)

using Table = qon_pax_kernel_fn const (*)[3];
struct Function {
    const char *name;
    char family;  // 'U', 'B', '2' (two results), 'P' (Powx), 'L' (LinearFrac)
    Table s, s_strided, d, d_strided;
};

std::vector<Function> functions() {
    std::vector<Function> f;
#define ADD(F, fam) \
    f.push_back({#F, fam, &qon_pax_kernel_s##F##_ttab, &qon_pax_kernel_s##F##I_ttab, &qon_pax_kernel_d##F##_ttab, \
                 &qon_pax_kernel_d##F##I_ttab});
#define ADD_U(F) ADD(F, 'U')
#define ADD_B(F) ADD(F, 'B')
#define ADD_U2(F) ADD(F, '2')
    ELEMENTARY_U(ADD_U)
    ELEMENTARY_B(ADD_B)
    ELEMENTARY_U2(ADD_U2)
    ADD(Powx, 'P')
    ADD(LinearFrac, 'L')
    return f;
}

template <class T>
bool same(T a, T b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof(T)) == 0;
}

// A strided array view: element k at base[k * inc], with base placed so that every element
// lies inside the buffer (at its end for a negative increment); gaps hold a sentinel.
template <class T>
struct Strided {
    Strided(int n, int inc, const std::vector<T> *values) : inc(inc), buffer(std::size_t(n - 1) * std::abs(inc) + 1, T(-7.25)) {
        base = buffer.data() + (inc < 0 ? std::ptrdiff_t(n - 1) * -inc : 0);
        if (values != nullptr)
            for (int k = 0; k < n; ++k) base[std::ptrdiff_t(k) * inc] = (*values)[k];
    }
    int inc;
    std::vector<T> buffer;
    T *base;
    // Every element equals want and the gaps kept the sentinel.
    ::testing::AssertionResult holds(const std::vector<T> &want) const {
        std::vector<bool> used(buffer.size());
        for (std::size_t k = 0; k < want.size(); ++k) {
            std::ptrdiff_t at = (base - buffer.data()) + std::ptrdiff_t(k) * inc;
            used[at] = true;
            if (!same(buffer[at], want[k])) return ::testing::AssertionFailure() << "element " << k << " is " << buffer[at];
        }
        for (std::size_t i = 0; i < buffer.size(); ++i)
            if (!used[i] && buffer[i] != T(-7.25)) return ::testing::AssertionFailure() << "gap " << i << " written";
        return ::testing::AssertionSuccess();
    }
};

// Calls a kernel on contiguous or strided arrays of one function's family.
template <class T>
struct Caller {
    const Function &f;
    T scalars[4] = {T(1.5), T(-0.5), T(2), T(1)};
    T exponent = T(1.75);

    void contiguous(qon_pax_kernel_fn k, int n, const T *a, const T *b, T *r1, T *r2) const {
        switch (f.family) {
            case 'U': return reinterpret_cast<void (*)(int, const T *, T *)>(k)(n, a, r1);
            case 'B': return reinterpret_cast<void (*)(int, const T *, const T *, T *)>(k)(n, a, b, r1);
            case '2': return reinterpret_cast<void (*)(int, const T *, T *, T *)>(k)(n, a, r1, r2);
            case 'P': return reinterpret_cast<void (*)(int, const T *, T, T *)>(k)(n, a, exponent, r1);
            default:
                return reinterpret_cast<void (*)(int, const T *, const T *, T, T, T, T, T *)>(k)(
                    n, a, b, scalars[0], scalars[1], scalars[2], scalars[3], r1);
        }
    }
    void strided(qon_pax_kernel_fn k, int n, const T *a, int ia, const T *b, int ib, T *r1, int i1, T *r2,
                 int i2) const {
        switch (f.family) {
            case 'U': return reinterpret_cast<void (*)(int, const T *, int, T *, int)>(k)(n, a, ia, r1, i1);
            case 'B':
                return reinterpret_cast<void (*)(int, const T *, int, const T *, int, T *, int)>(k)(n, a, ia, b, ib, r1,
                                                                                                  i1);
            case '2':
                return reinterpret_cast<void (*)(int, const T *, int, T *, int, T *, int)>(k)(n, a, ia, r1, i1, r2, i2);
            case 'P': return reinterpret_cast<void (*)(int, const T *, int, T, T *, int)>(k)(n, a, ia, exponent, r1, i1);
            default:
                return reinterpret_cast<void (*)(int, const T *, int, const T *, int, T, T, T, T, T *, int)>(k)(
                    n, a, ia, b, ib, scalars[0], scalars[1], scalars[2], scalars[3], r1, i1);
        }
    }
};

// Arguments mixing (0, 1), (1, 5) and negatives, so every function sees ordinary values and
// some domain errors.
template <class T>
std::vector<T> arguments(int n, unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> u(-5, 5);
    std::vector<T> v(n);
    for (auto &x : v) x = T(u(rng));
    v[0] = T(0.375);
    return v;
}

template <class T>
void check_layouts(const Function &f, Table contiguous_table, Table strided_table) {
    constexpr int n = 37;
    const std::vector<T> a = arguments<T>(n, 11), b = arguments<T>(n, 12);
    Caller<T> call{f};
    for (int slot = 0; slot < 3; ++slot) {
        SCOPED_TRACE(std::string(sizeof(T) == 4 ? "s" : "d") + f.name + " slot " + std::to_string(slot));
        qon_pax_kernel_fn k = (*contiguous_table)[slot], ki = (*strided_table)[slot];
        ASSERT_NE(k, nullptr);
        ASSERT_NE(ki, nullptr);
        std::vector<T> r1(n), r2(n);
        call.contiguous(k, n, a.data(), b.data(), r1.data(), r2.data());

        // In place: the first argument's array receives the (first) result.
        std::vector<T> in_place = a, second(n);
        call.contiguous(k, n, in_place.data(), b.data(), in_place.data(), second.data());
        EXPECT_TRUE(Strided<T>(n, 1, &in_place).holds(r1));

        const int increments[][4] = {{1, 1, 1, 1}, {3, 2, 2, 5}, {-2, 1, -1, -3}, {2, -3, 4, 1}};
        for (const auto &inc : increments) {
            SCOPED_TRACE("increments " + std::to_string(inc[0]) + " " + std::to_string(inc[1]) + " " +
                         std::to_string(inc[2]) + " " + std::to_string(inc[3]));
            Strided<T> sa(n, inc[0], &a), sb(n, inc[1], &b), s1(n, inc[2], nullptr), s2(n, inc[3], nullptr);
            call.strided(ki, n, sa.base, inc[0], sb.base, inc[1], s1.base, inc[2], s2.base, inc[3]);
            EXPECT_TRUE(s1.holds(r1));
            if (f.family == '2') EXPECT_TRUE(s2.holds(r2));
            EXPECT_TRUE(sa.holds(a));
        }
        // Nothing happens for n <= 0.
        std::vector<T> untouched(n, T(-7.25));
        call.contiguous(k, 0, a.data(), b.data(), untouched.data(), untouched.data());
        call.strided(ki, -3, a.data(), 1, b.data(), 1, untouched.data(), 1, untouched.data(), 1);
        EXPECT_TRUE(Strided<T>(n, 1, &untouched).holds(std::vector<T>(n, T(-7.25))));
    }
}

class ElementaryLayout : public testing::TestWithParam<Function> {};

TEST_P(ElementaryLayout, InPlaceAndStridedMatchContiguous) {
    const Function &f = GetParam();
    check_layouts<float>(f, f.s, f.s_strided);
    check_layouts<double>(f, f.d, f.d_strided);
}

INSTANTIATE_TEST_SUITE_P(Elementary, ElementaryLayout, testing::ValuesIn(functions()),
                         [](const testing::TestParamInfo<Function> &info) { return std::string(info.param.name); });

}  // namespace
