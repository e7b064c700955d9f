// The vector kernel driver: everything a vector-math kernel does besides its method.
//
// A function's source supplies a method class:
//
//     struct ExpHA {
//         using T = double;                                  // element type
//         static constexpr int groups = 4;                   // vectors per main-loop iteration
//         template <class V> static V eval(V x);             // the vector method
//         template <bool tail, class V> static simd::Mask<V> special(V x);  // the lane test
//         static int scalar(T x, T &r);                      // careful routine, returns status
//     };
//
// (for two results: `static constexpr int results = 2;`, `void eval(V x, V &r1, V &r2)` and
// `int scalar(T x, T &r1, T &r2)`), and QON_VM_VECTOR_KERNELS(t, Func, T, LA, HA, EP) defines
// the six kernels of the function and element type from the three methods.
//
// What the driver does, inside the floating-point guard (src/core/fpu.hpp):
//   main loop  groups*lanes elements per iteration: load, eval, one test of the OR of the lane
//              masks, store; an iteration with a flagged lane is redone vector by vector with
//              the flagged lanes, in order, passed to the scalar routine after the vector
//              results are stored (the scalar result overwrites the vector one);
//   tail       the remaining whole vectors one by one, then the last part of a vector with
//              masked loads and stores (lanes past the end read as 0 and are never flagged);
//   reports    an element whose scalar routine returns a non-zero status is reported through
//              the error path after its result is stored; the call-back may replace it.
// The lane test receives `tail` so a method may use a different threshold in the tail. It must
// flag every lane the vector method cannot compute (non-finite, out-of-range arguments) and
// every lane whose scalar routine returns a status.
//
// Strided kernels hand a call with both increments 1 to the contiguous kernel of the same
// accuracy through the function's table of kernels, without touching the floating-point state.
// Other increments are gathered into blocks, computed by the same vector method and scattered
// back; flagged elements are computed by the scalar routine and reported through the strided
// error-path entry with their index in the call. A reported element's arguments are read from
// the caller's arrays, as the error path does for every kernel.
#pragma once

#include <qon/qon_pax.h>

#include <algorithm>
#include <bit>
#include <cstddef>

#include "core/fpu.hpp"
#include "vm/error/error_path.hpp"
#include "vm/kernels/element_loop.hpp"
#include "vm/kernels/simd.hpp"

namespace qon::vm {

template <class Method>
struct VectorKernel {
    using T = typename Method::T;
    using V = simd::Wide<T>;
    static constexpr int results = [] {
        if constexpr (requires { Method::results; }) return Method::results;
        else return 1;
    }();
    static constexpr int L = simd::lanes<V>;
    static constexpr int G = Method::groups;
    static_assert(results == 1 || results == 2);

    // Output arrays of a call: results pointers, stored at element k.
    struct Out {
        T *r[results];
    };

    // The vector method on one vector; ys receives its results.
    static void eval(V x, V (&ys)[results]) {
        if constexpr (results == 1) ys[0] = Method::template eval<V>(x);
        else Method::template eval<V>(x, ys[0], ys[1]);
    }
    static int scalar(T x, T (&ys)[results]) {
        if constexpr (results == 1) return Method::scalar(x, ys[0]);
        else return Method::scalar(x, ys[0], ys[1]);
    }

    // Calls redo(base + lane, xs[lane]) for each lane set in flags, in lane order.
    template <class Redo>
    static void each_flagged(unsigned flags, const T *xs, int base, Redo &redo) {
        while (flags != 0) {
            int lane = std::countr_zero(flags);
            flags &= flags - 1;
            redo(base + lane, xs[lane]);
        }
    }

    // Main-loop groups from element i on, while no lane is flagged; returns the start of the
    // first group with a flagged lane (its results not stored), or of the tail. No call in this
    // loop (flatten inlines the whole method): the method's constants stay in registers.
    // A method whose rare lanes are those with |x| above Method::limit (NaN gives NaN, unreported,
    // in the vector method as in the scalar routine) is tested once per group on the largest
    // |x|, two operations per vector instead of three. max(|x|, top) returns top where x is NaN,
    // so a NaN never hides a large argument of an earlier vector. Such a method may also screen
    // its lanes with Method::screen(x) (an intermediate of its method, so two operations more),
    // whose smallest value in the group must be at least Method::margin, else the group is redone
    // vector by vector with the exact lane test (the screen may flag lanes the test passes).
    [[gnu::noinline, gnu::flatten]] static int clean_groups(int i, int n, const T *a, Out out) {
        constexpr bool bounded = requires { Method::limit; };
        constexpr bool screened = requires(V v) { Method::screen(v); };
        if constexpr (screened) static_assert(Method::margin < 1);  // the running minimum starts at 1
        for (; i <= n - G * L; i += G * L) {
            V y[G][results];
            simd::Mask<V> flagged;
            V top = simd::splat<V>(T(0)), low = simd::splat<V>(T(1));
            for (int g = 0; g < G; ++g) {
                const V x = simd::load<V>(a + i + g * L);
                eval(x, y[g]);
                if constexpr (bounded) {
                    top = simd::max(simd::abs(x), top);
                    if constexpr (screened) low = simd::min(Method::screen(x), low);
                } else {
                    const simd::Mask<V> f = Method::template special<false>(x);
                    flagged = g == 0 ? f : simd::mask_or(flagged, f);
                }
            }
            if constexpr (bounded) flagged = simd::gt(top, simd::splat<V>(T(Method::limit)));
            if constexpr (screened) flagged = simd::mask_or(flagged, simd::lt(low, simd::splat<V>(T(Method::margin))));
            if (simd::any(flagged)) [[unlikely]]
                return i;
            for (int g = 0; g < G; ++g)
                for (int o = 0; o < results; ++o) simd::store(out.r[o] + i + g * L, y[g][o]);
        }
        return i;
    }

    // One vector of m <= L elements at i (masked when m < L): results stored, then redo(k, x)
    // for each flagged lane in order. The arguments are copied first (r may be a).
    template <bool tail, class Redo>
    static void vector_with_redo(int i, int m, const T *a, Out out, Redo &redo) {
        const V x = tail ? simd::load_first<V>(a + i, m) : simd::load<V>(a + i);
        V y[results];
        eval(x, y);
        simd::Mask<V> f = Method::template special<tail>(x);
        if constexpr (tail) f = simd::mask_and(f, simd::first_lanes<V>(m));
        alignas(32) T xs[L];
        simd::store(xs, x);
        for (int o = 0; o < results; ++o) simd::store_first(out.r[o] + i, y[o], m);
        for (unsigned bits = simd::lane_bits(f); bits != 0; bits &= bits - 1) {
            const int lane = std::countr_zero(bits);
            redo(i + lane, xs[lane]);
        }
    }

    // The vector loops over n contiguous elements of a, results to out; redo(k, x) is called
    // for every flagged element after the vector results of its vector are stored.
    template <class Redo>
    static void run(int n, const T *a, Out out, Redo redo) {
        int i = 0;
        while ((i = clean_groups(i, n, a, out)) <= n - G * L) {
            for (int g = 0; g < G; ++g) vector_with_redo<false>(i + g * L, L, a, out, redo);
            i += G * L;
        }
        for (; i <= n - L; i += L) vector_with_redo<false>(i, L, a, out, redo);
        if (i < n) vector_with_redo<true>(i, n - i, a, out, redo);
    }

    // A flagged element is reported with the argument it was computed from: an in-place call has
    // already overwritten it in the caller's array.
    static void report_contiguous(int st, int k, const T *a, T x, Out out, const char *name) {
        report_values(st, k, a, x, x, out.r[0], 1, out.r[results - 1], 1, name);
    }
    static void report_strided(int st, int k, const T *a, T x, Out out, const int (&inc)[results],
                               const char *name) {
        report_values(st, k, a, x, x, out.r[0], inc[0], out.r[results - 1], inc[results - 1], name);
    }

    static void contiguous(int n, const T *a, Out out, const char *name) {
        if (n <= 0) return;
        fpu::Guard guard(paxGetMode());
        run(n, a, out, [&](int k, T x) {
            T ys[results];
            int st = scalar(x, ys);
            for (int o = 0; o < results; ++o) out.r[o][k] = ys[o];
            if (st != 0) report_contiguous(st, k, a, x, out, name);
        });
    }

    static void strided(int n, const T *a, int inca, Out out, const int (&inc)[results], const char *name) {
        if (n <= 0) return;
        fpu::Guard guard(paxGetMode());
        constexpr int B = 64;  // elements per gathered block
        T xs[B], ys[results][B];
        int flagged[B], status[B];
        for (int i0 = 0; i0 < n; i0 += B) {
            const int m = std::min(B, n - i0);
            for (int k = 0; k < m; ++k) xs[k] = a[static_cast<std::ptrdiff_t>(i0 + k) * inca];
            Out block;
            for (int o = 0; o < results; ++o) block.r[o] = ys[o];
            int nf = 0;
            run(m, xs, block, [&](int k, T x) {
                T y[results];
                int st = scalar(x, y);
                for (int o = 0; o < results; ++o) ys[o][k] = y[o];
                if (st != 0) flagged[nf] = k, status[nf++] = st;
            });
            for (int o = 0; o < results; ++o)
                for (int k = 0; k < m; ++k) out.r[o][static_cast<std::ptrdiff_t>(i0 + k) * inc[o]] = ys[o][k];
            for (int f = 0; f < nf; ++f) report_strided(status[f], i0 + flagged[f], a, xs[flagged[f]], out, inc, name);
        }
    }
};

}  // namespace qon::vm

// The six kernels of a one-argument function (t s or d) from its LA, HA and EP methods.
#define QON_VM_VECTOR_KERNEL_U(t, F, T, Method, acc)                                                        \
    extern "C" void qon_vmk_##t##F##_##acc(int n, const T *a, T *r) {                                        \
        qon::vm::VectorKernel<Method>::contiguous(n, a, {{r}}, "pax" #t #F);                                 \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##F##I_##acc(int n, const T *a, int inca, T *r, int incr) {                   \
        if (inca == 1 && incr == 1) {                                                                        \
            using Contiguous = void (*)(int, const T *, T *);                                                \
            return qon::vm::table_slot<Contiguous>(qon_pax_kernel_##t##F##_ttab, qon::vm::acc)(n, a, r);     \
        }                                                                                                    \
        qon::vm::VectorKernel<Method>::strided(n, a, inca, {{r}}, {incr}, "pax" #t #F "I");                  \
    }
#define QON_VM_VECTOR_KERNELS(t, F, T, LAMethod, HAMethod, EPMethod)                                        \
    QON_VM_VECTOR_KERNEL_U(t, F, T, LAMethod, LA)                                                            \
    QON_VM_VECTOR_KERNEL_U(t, F, T, HAMethod, HA)                                                            \
    QON_VM_VECTOR_KERNEL_U(t, F, T, EPMethod, EP)

// The same for a function of two results (SinCos): r1 and r2 with their increments.
#define QON_VM_VECTOR_KERNEL_U2(t, F, T, Method, acc)                                                       \
    extern "C" void qon_vmk_##t##F##_##acc(int n, const T *a, T *r1, T *r2) {                                \
        qon::vm::VectorKernel<Method>::contiguous(n, a, {{r1, r2}}, "pax" #t #F);                            \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##F##I_##acc(int n, const T *a, int inca, T *r1, int incr1, T *r2, int incr2) { \
        if (inca == 1 && incr1 == 1 && incr2 == 1) {                                                         \
            using Contiguous = void (*)(int, const T *, T *, T *);                                           \
            return qon::vm::table_slot<Contiguous>(qon_pax_kernel_##t##F##_ttab, qon::vm::acc)(n, a, r1, r2); \
        }                                                                                                    \
        qon::vm::VectorKernel<Method>::strided(n, a, inca, {{r1, r2}}, {incr1, incr2}, "pax" #t #F "I");     \
    }
#define QON_VM_VECTOR_KERNELS_U2(t, F, T, LAMethod, HAMethod, EPMethod)                                     \
    QON_VM_VECTOR_KERNEL_U2(t, F, T, LAMethod, LA)                                                           \
    QON_VM_VECTOR_KERNEL_U2(t, F, T, HAMethod, HA)                                                           \
    QON_VM_VECTOR_KERNEL_U2(t, F, T, EPMethod, EP)
