// The accuracy harness (see accuracy.hpp): argument generation, one reference evaluation per
// argument set, comparison of every slot in ulps, and the gtest verdict.
#include "common/accuracy.hpp"

#include <gtest/gtest.h>
#include <quadmath.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

namespace qon::test::accuracy {
namespace {

constexpr int batch = 1024;
constexpr double infinity = std::numeric_limits<double>::infinity();

using RefAny = std::function<void(__float128, __float128, __float128 &, __float128 &)>;

template <class T>
std::vector<T> special_values() {
    using L = std::numeric_limits<T>;
    std::vector<T> v;
    for (T m : {T(0), L::denorm_min(), T(L::min() - L::denorm_min()), L::min(), T(0.5), T(1), T(2), L::max(),
                L::infinity()}) {
        v.push_back(m);
        v.push_back(-m);
    }
    v.push_back(L::quiet_NaN());
    return v;
}

double draw(const Range &range, std::mt19937_64 &rng) {
    std::uniform_real_distribution<double> u01(0.0, 1.0);
    double u = u01(rng);
    if (range.spacing == Spacing::Uniform) return range.lo + u * (range.hi - range.lo);
    double l = std::log2(range.lo), h = std::log2(range.hi);
    double m = std::exp2(l + u * (h - l));
    if (range.spacing == Spacing::LogBothSigns && (rng() & 1) != 0) m = -m;
    return m;
}

std::string text(double x) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.17g", x);
    return buf;
}
std::string text(__float128 x) {
    char buf[64];
    quadmath_snprintf(buf, sizeof buf, "%.25Qg", x);
    return buf;
}

template <class T>
class Runner {
public:
    Runner(const Caller<T> &caller, std::array<bool, 3> present, int results, bool two_args, const RefAny &ref)
        : caller_(caller), present_(present), results_(results), two_args_(two_args), ref_(ref) {
        for (int s = 0; s < 3; ++s)
            if (!present_[s]) {
                slots_[s].mismatches = 1;
                slots_[s].first_mismatch = "no kernel in this slot";
            }
    }

    void add(T x, T y) {
        x_.push_back(x);
        y_.push_back(two_args_ ? y : x);
        if (static_cast<int>(x_.size()) == batch) flush();
    }

    Slots finish() {
        flush();
        return slots_;
    }

private:
    void flush() {
        int n = static_cast<int>(x_.size());
        if (n == 0) return;
        std::vector<__float128> e1(n), e2(n);
        for (int i = 0; i < n; ++i) ref_(x_[i], y_[i], e1[i], e2[i]);
        std::vector<T> r1(n), r2(n);
        for (int s = 0; s < 3; ++s) {
            if (!present_[s]) continue;
            caller_(s, n, x_.data(), y_.data(), r1.data(), r2.data());
            for (int i = 0; i < n; ++i) {
                check(slots_[s], i, r1[i], e1[i]);
                if (results_ == 2) check(slots_[s], i, r2[i], e2[i]);
            }
            slots_[s].checked += n;
        }
        x_.clear();
        y_.clear();
    }

    void check(Result &res, int i, T got, __float128 exact) {
        double err = ulp_error<T>(got, exact);
        if (err == infinity) {
            if (res.mismatches++ == 0) {
                res.first_mismatch = "x=" + text(double(x_[i])) + (two_args_ ? " y=" + text(double(y_[i])) : "") +
                                     ": got " + text(double(got)) + ", want " + text(exact);
            }
        } else if (err > res.max_ulp) {
            res.max_ulp = err;
            res.worst_x = x_[i];
            res.worst_y = y_[i];
        }
    }

    const Caller<T> &caller_;
    std::array<bool, 3> present_;
    int results_;
    bool two_args_;
    const RefAny &ref_;
    std::vector<T> x_, y_;
    Slots slots_{};
};

template <class T>
Slots run(const Caller<T> &caller, std::array<bool, 3> present, int results, bool two_args, const RefAny &ref,
          const Sweep &sweep) {
    Runner<T> runner(caller, present, results, two_args, ref);
    std::vector<T> specials = special_values<T>();
    for (T x : specials) {
        if (!two_args) runner.add(x, x);
        else
            for (T y : specials) runner.add(x, y);
    }
    for (const auto &s : sweep.special) runner.add(static_cast<T>(s[0]), static_cast<T>(s[1]));
    long long count = sweep.samples > 0 ? sweep.samples : sample_count(1 << 14);
    for (std::size_t k = 0; k < sweep.regions.size(); ++k) {
        std::mt19937_64 rng(0x5EED0000u + k);
        for (long long i = 0; i < count; ++i) {
            T x = static_cast<T>(draw(sweep.regions[k].x, rng));
            T y = static_cast<T>(draw(sweep.regions[k].y, rng));
            runner.add(x, y);
        }
    }
    return runner.finish();
}

std::array<bool, 3> presence(qon_pax_kernel_fn const (&table)[3]) {
    return {table[0] != nullptr, table[1] != nullptr, table[2] != nullptr};
}

}  // namespace

template <class T>
Bounds standard_bounds() {
    // 11 (float) or 26 (double) correct bits: relative error 2^-bits, 2^(digits-1-bits) ulps.
    constexpr int bits = sizeof(T) == 4 ? 11 : 26;
    return {4.0, 1.0, std::ldexp(1.0, std::numeric_limits<T>::digits - 1 - bits)};
}

long long sample_count(long long default_count) {
    if (const char *env = std::getenv("QON_ACCURACY_SAMPLES")) {
        long long n = std::atoll(env);
        if (n > 0) return n;
    }
    if (std::getenv("QON_TEST_QUICK") != nullptr) return std::max(default_count / 8, 1LL);
    return default_count;
}

template <class T>
double ulp_error(T computed, __float128 exact) {
    using L = std::numeric_limits<T>;
    if (isnanq(exact)) return std::isnan(computed) ? 0.0 : infinity;
    if (std::isnan(computed)) return infinity;
    if (isinfq(exact)) return std::isinf(computed) && (computed > 0) == (exact > 0) ? 0.0 : infinity;
    if (exact == 0) return computed == 0 && std::signbit(computed) == (signbitq(exact) != 0) ? 0.0 : infinity;
    // An exact value at or beyond the rounding threshold of overflow, 2^emax (2 - 2^-digits).
    __float128 overflow = ldexpq(2 - ldexpq(1, -L::digits), L::max_exponent - 1);
    if (std::isinf(computed) && (computed > 0) == (exact > 0) && fabsq(exact) >= overflow) return 0.0;
    __float128 c = std::isinf(computed) ? copysignq(ldexpq(1, L::max_exponent), computed) : __float128(computed);
    int e = std::max(static_cast<int>(ilogbq(exact)), L::min_exponent - 1);
    return static_cast<double>(fabsq(c - exact) / ldexpq(1, e - (L::digits - 1)));
}

template <class T>
Slots measure(const Caller<T> &caller, const Ref2 &ref, const Sweep &sweep, bool two_args) {
    RefAny any = [&](__float128 x, __float128 y, __float128 &e1, __float128 &e2) { e1 = e2 = ref(x, y); };
    return run<T>(caller, {true, true, true}, 1, two_args, any, sweep);
}

template <class T>
Slots measure(const Caller<T> &caller, const RefPair &ref, const Sweep &sweep) {
    RefAny any = [&](__float128 x, __float128, __float128 &e1, __float128 &e2) { ref(x, e1, e2); };
    return run<T>(caller, {true, true, true}, 2, false, any, sweep);
}

template <class T>
Slots measure_u(qon_pax_kernel_fn const (&table)[3], const Ref1 &ref, const Sweep &sweep) {
    Caller<T> caller = [&](int s, int n, const T *x, const T *, T *r, T *) {
        reinterpret_cast<void (*)(int, const T *, T *)>(table[s])(n, x, r);
    };
    RefAny any = [&](__float128 x, __float128, __float128 &e1, __float128 &e2) { e1 = e2 = ref(x); };
    return run<T>(caller, presence(table), 1, false, any, sweep);
}

template <class T>
Slots measure_b(qon_pax_kernel_fn const (&table)[3], const Ref2 &ref, const Sweep &sweep) {
    Caller<T> caller = [&](int s, int n, const T *x, const T *y, T *r, T *) {
        reinterpret_cast<void (*)(int, const T *, const T *, T *)>(table[s])(n, x, y, r);
    };
    RefAny any = [&](__float128 x, __float128 y, __float128 &e1, __float128 &e2) { e1 = e2 = ref(x, y); };
    return run<T>(caller, presence(table), 1, true, any, sweep);
}

template <class T>
Slots measure_u2(qon_pax_kernel_fn const (&table)[3], const RefPair &ref, const Sweep &sweep) {
    Caller<T> caller = [&](int s, int n, const T *x, const T *, T *r1, T *r2) {
        reinterpret_cast<void (*)(int, const T *, T *, T *)>(table[s])(n, x, r1, r2);
    };
    RefAny any = [&](__float128 x, __float128, __float128 &e1, __float128 &e2) { ref(x, e1, e2); };
    return run<T>(caller, presence(table), 2, false, any, sweep);
}

template <class T>
void expect_accuracy(const char *name, const Slots &slots, Bounds bounds) {
    static const char *const slot_names[3] = {"LA", "HA", "EP"};
    const double limit[3] = {bounds.la, bounds.ha, bounds.ep};
    if (std::getenv("QON_ACCURACY_SAMPLES") != nullptr || std::getenv("QON_ACCURACY_VERBOSE") != nullptr) {
        std::printf("[accuracy] %-16s", name);
        for (int s = 0; s < 3; ++s) std::printf("  %s %.3g", slot_names[s], slots[s].max_ulp);
        std::printf("  ulp over %lld arguments\n", slots[1].checked);
    }
    for (int s = 0; s < 3; ++s) {
        const Result &r = slots[s];
        EXPECT_EQ(r.mismatches, 0) << name << " " << slot_names[s] << ": " << r.first_mismatch;
        EXPECT_LE(r.max_ulp, limit[s]) << name << " " << slot_names[s] << " worst at x=" << text(r.worst_x)
                                       << " y=" << text(r.worst_y);
    }
}

#define QON_ACCURACY_INSTANTIATE(T)                                                                   \
    template Bounds standard_bounds<T>();                                                             \
    template double ulp_error<T>(T, __float128);                                                      \
    template Slots measure<T>(const Caller<T> &, const Ref2 &, const Sweep &, bool);                   \
    template Slots measure<T>(const Caller<T> &, const RefPair &, const Sweep &);                      \
    template Slots measure_u<T>(qon_pax_kernel_fn const (&)[3], const Ref1 &, const Sweep &);          \
    template Slots measure_b<T>(qon_pax_kernel_fn const (&)[3], const Ref2 &, const Sweep &);          \
    template Slots measure_u2<T>(qon_pax_kernel_fn const (&)[3], const RefPair &, const Sweep &);      \
    template void expect_accuracy<T>(const char *, const Slots &, Bounds);
QON_ACCURACY_INSTANTIATE(float)
QON_ACCURACY_INSTANTIATE(double)

}  // namespace qon::test::accuracy
