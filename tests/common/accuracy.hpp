// Accuracy harness for real vector-math kernels: the largest error, in ulps of the result type,
// of the three kernels of a function's table (LA, HA, EP) against a __float128 reference.
//
// Arguments come from
//   - regions the test names: for each argument a range sampled uniformly, or log-uniformly in
//     magnitude (one sign or both), from fixed seeds, so every run sees the same arguments;
//   - the special and boundary values of the type, always: +-0, +-smallest subnormal,
//     +-largest subnormal, +-smallest normal, +-0.5, +-1, +-2, +-largest finite, +-inf, NaN
//     (every pair of them for two-argument functions), and any extra ones the test adds.
// The reference is evaluated once per argument and every slot is compared with it.
//
// Error measure: |computed - exact| / ulp(exact), ulp(exact) being the spacing of T in the
// binade of the exact value (never below the smallest subnormal), so a correctly rounded result
// is within 0.5. A computed infinity counts as +-2^(emax+1) when the exact value is finite, so an
// overflow at the edge of the range is measured in ulps too. Exact-match checks: where the
// exact value is NaN, infinite or zero, the result must be NaN, the same infinity, or a zero of
// the same sign; a NaN computed for any other exact value fails too. A failed check counts as
// a mismatch (an infinite error), recorded apart from max_ulp.
//
// API (T is float or double):
//   uniform(lo, hi), log_uniform(lo, hi), log_both_signs(lo, hi)       ranges (0 < lo for log)
//   Region{x} / Region{x, y}                                            one region of arguments
//   Sweep{regions, extra special arguments {x, y}, samples per region (0: default)}
//   measure_u<T>(table, Ref1, sweep)        one argument, one result   (n, a, r)
//   measure_b<T>(table, Ref2, sweep)        two arguments, one result  (n, a, b, r)
//   measure_u2<T>(table, RefPair, sweep)    one argument, two results  (n, a, r1, r2)
//   measure<T>(Caller, Ref2 or RefPair, sweep, two_args)   any other argument list (Powx,
//                                          LinearFrac...): the caller evaluates slot s on n
//                                          arguments x[i], y[i] into r1 (and r2)
//   expect_accuracy<T>(name, slots [, bounds])   gtest: no mismatch, each slot within its bound
//                                          (HA 1, LA 4, EP 11 correct bits in float, 26 in double)
//   ulp_error<T>(computed, exact)          the measure above for one value (inf on mismatch)
//   sample_count(default)                  QON_ACCURACY_SAMPLES if set, default/8 under
//                                          QON_TEST_QUICK, else default
// With QON_ACCURACY_SAMPLES or QON_ACCURACY_VERBOSE set, expect_accuracy prints one line per
// function with the largest error of each slot.
#pragma once

#include <qon/qon_pax.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace qon::test::accuracy {

enum class Spacing { Uniform, Log, LogBothSigns };

struct Range {
    double lo = 0, hi = 0;
    Spacing spacing = Spacing::Uniform;
};
inline Range uniform(double lo, double hi) { return {lo, hi, Spacing::Uniform}; }
inline Range log_uniform(double lo, double hi) { return {lo, hi, Spacing::Log}; }
inline Range log_both_signs(double lo, double hi) { return {lo, hi, Spacing::LogBothSigns}; }

struct Region {
    Region(Range x_range) : x(x_range), y(x_range) {}  // NOLINT: a one-argument region
    Region(Range x_range, Range y_range) : x(x_range), y(y_range) {}
    Range x, y;
};

struct Sweep {
    std::vector<Region> regions;
    std::vector<std::array<double, 2>> special;  // extra arguments {x, y} (y unused for one argument)
    long long samples = 0;                       // per region; 0 takes sample_count(1 << 14)
};

struct Result {
    double max_ulp = 0;              // largest error of the arguments compared in ulps
    double worst_x = 0, worst_y = 0; // arguments of that error
    long long checked = 0;           // argument sets evaluated
    long long mismatches = 0;        // failed exact-match checks
    std::string first_mismatch;      // the first of them, readable
};
using Slots = std::array<Result, 3>;  // indexed as the table: 0 LA, 1 HA, 2 EP

using Ref1 = std::function<__float128(__float128)>;
using Ref2 = std::function<__float128(__float128, __float128)>;
using RefPair = std::function<void(__float128, __float128 &, __float128 &)>;
template <class T>
using Caller = std::function<void(int slot, int n, const T *x, const T *y, T *r1, T *r2)>;

struct Bounds {
    double la, ha, ep;
};
template <class T>
Bounds standard_bounds();

long long sample_count(long long default_count);

template <class T>
double ulp_error(T computed, __float128 exact);

template <class T>
Slots measure_u(qon_pax_kernel_fn const (&table)[3], const Ref1 &ref, const Sweep &sweep);
template <class T>
Slots measure_b(qon_pax_kernel_fn const (&table)[3], const Ref2 &ref, const Sweep &sweep);
template <class T>
Slots measure_u2(qon_pax_kernel_fn const (&table)[3], const RefPair &ref, const Sweep &sweep);
template <class T>
Slots measure(const Caller<T> &caller, const Ref2 &ref, const Sweep &sweep, bool two_args);
template <class T>
Slots measure(const Caller<T> &caller, const RefPair &ref, const Sweep &sweep);

template <class T>
void expect_accuracy(const char *name, const Slots &slots, Bounds bounds = standard_bounds<T>());

}  // namespace qon::test::accuracy
