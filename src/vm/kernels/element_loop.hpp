// The element-loop kernel driver: a kernel that applies a scalar routine element by element,
// inside the floating-point guard, and sends every element whose routine returns a non-zero
// status through the error path (after storing the routine's result).
//
// A routine is a class with
//     template <int A, class T> static int eval(<arguments>, <results>&);
// where A is the accuracy (0 LA, 1 HA, 2 EP) and the status is 0 or a PAX_STATUS code. The
// arguments by family: U (x, r), B (x, y, r), U2 (x, r1, r2), PX (x, b, r), LF (x, y, scalea,
// shifta, scaleb, shiftb, r), NU (x, nu, r), CR (complex x, real r), RC (real x, complex r).
//
// QON_VM_LOOP_KERNELS(fam, t, Func, E, R, Routine) defines the six kernels of one function and
// element type: qon_vmk_<t><Func>_<LA|HA|EP> and the strided qon_vmk_<t><Func>I_<LA|HA|EP>,
// which hand a call with unit increments to the contiguous kernel of the same accuracy
// through the function's table of kernels. E and R are the element and real types
// (std::complex<float> and float for c).
#pragma once

#include <qon/qon_pax.h>

#include <complex>
#include <cstddef>

#include "core/fpu.hpp"
#include "vm/error/error_path.hpp"
#include "vm/kernels/signatures.hpp"

namespace qon::vm {

enum Accuracy : int { LA = 0, HA = 1, EP = 2 };

// The kernel in a slot of a table of kernels, as a function of the given type.
template <class Fn>
Fn table_slot(qon_pax_kernel_fn const (&table)[3], int slot) {
    return reinterpret_cast<Fn>(table[slot]);
}

template <class Step>
void element_loop(int n, Step step) {
    if (n <= 0) return;
    fpu::Guard guard(paxGetMode());
    for (int i = 0; i < n; ++i) step(i, static_cast<std::ptrdiff_t>(i));
}

template <class Routine, int A, class E>
void loop_U(int n, const E *a, int inca, E *r, int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca];
        E y{};
        int st = Routine::template eval<A>(x, y);
        r[k * incr] = y;
        if (st != 0) report_values(st, i, a, x, x, r, incr, r, incr, name);
    });
}

template <class Routine, int A, class E>
void loop_B(int n, const E *a, int inca, const E *b, int incb, E *r, int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca], z = b[k * incb];
        E y{};
        int st = Routine::template eval<A>(x, z, y);
        r[k * incr] = y;
        if (st != 0) report_values(st, i, a, x, z, r, incr, r, incr, name);
    });
}

template <class Routine, int A, class E>
void loop_U2(int n, const E *a, int inca, E *r1, int incr1, E *r2, int incr2, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca];
        E y1{}, y2{};
        int st = Routine::template eval<A>(x, y1, y2);
        r1[k * incr1] = y1;
        r2[k * incr2] = y2;
        if (st != 0) report_values(st, i, a, x, x, r1, incr1, r2, incr2, name);
    });
}

template <class Routine, int A, class E>
void loop_PX(int n, const E *a, int inca, E b, E *r, int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca];
        E y{};
        int st = Routine::template eval<A>(x, b, y);
        r[k * incr] = y;
        if (st != 0) report_values(st, i, a, x, b, r, incr, r, incr, name);
    });
}

template <class Routine, int A, class E, class R>
void loop_LF(int n, const E *a, int inca, const E *b, int incb, R scalea, R shifta, R scaleb, R shiftb, E *r,
             int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca], z = b[k * incb];
        E y{};
        int st = Routine::template eval<A>(x, z, scalea, shifta, scaleb, shiftb, y);
        r[k * incr] = y;
        if (st != 0) report_values(st, i, a, x, z, r, incr, r, incr, name);
    });
}

template <class Routine, int A, class E>
void loop_NU(int n, const E *a, int inca, int nu, E *r, int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca];
        E y{};
        int st = Routine::template eval<A>(x, nu, y);
        r[k * incr] = y;
        if (st != 0) report_values(st, i, a, x, x, r, incr, r, incr, name);
    });
}

// Complex argument, real result: the element is reported with its result as a complex value
// of zero imaginary part, and the real part of what the error path leaves is stored.
template <class Routine, int A, class E, class R>
void loop_CR(int n, const E *a, int inca, R *r, int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const E x = a[k * inca];
        R y{};
        int st = Routine::template eval<A>(x, y);
        r[k * incr] = y;
        if (st != 0) {
            E result(y, R(0));
            report_values(st, i, a, x, x, &result, 0, &result, 0, name);
            r[k * incr] = result.real();
        }
    });
}

// Real argument, complex result: reported through the real entry with the real part of the
// result; the imaginary part stays as computed.
template <class Routine, int A, class R, class E>
void loop_RC(int n, const R *a, int inca, E *r, int incr, const char *name) {
    element_loop(n, [&](int i, std::ptrdiff_t k) {
        const R x = a[k * inca];
        E y{};
        int st = Routine::template eval<A>(x, y);
        r[k * incr] = y;
        if (st != 0) {
            R real = y.real();
            report_values(st, i, a, x, x, &real, 0, &real, 0, name);
            r[k * incr] = E(real, y.imag());
        }
    });
}

}  // namespace qon::vm

#define QON_VM_LOOP_KERNEL(fam, t, F, E, R, Routine, acc)                                                   \
    extern "C" void qon_vmk_##t##F##_##acc(QON_VM_PARAMS_##fam(E, R)) {                                      \
        qon::vm::loop_##fam<Routine, qon::vm::acc>(QON_VM_UNIT_ARGS_##fam, "pax" #t #F);                     \
    }                                                                                                        \
    extern "C" void qon_vmk_##t##F##I_##acc(QON_VM_PARAMS_##fam##I(E, R)) {                                  \
        if (QON_VM_UNIT_TEST_##fam) {                                                                        \
            using Contiguous = void (*)(QON_VM_PARAMS_##fam(E, R));                                          \
            return qon::vm::table_slot<Contiguous>(qon_pax_kernel_##t##F##_ttab, qon::vm::acc)(QON_VM_ARGS_##fam); \
        }                                                                                                    \
        qon::vm::loop_##fam<Routine, qon::vm::acc>(QON_VM_ARGS_##fam##I, "pax" #t #F "I");                   \
    }

#define QON_VM_LOOP_KERNELS(fam, t, F, E, R, Routine)                                                       \
    QON_VM_LOOP_KERNEL(fam, t, F, E, R, Routine, LA)                                                         \
    QON_VM_LOOP_KERNEL(fam, t, F, E, R, Routine, HA)                                                         \
    QON_VM_LOOP_KERNEL(fam, t, F, E, R, Routine, EP)

// One routine serving all three accuracies: the HA kernels are defined and the LA and EP slots
// name the same addresses.
#define QON_VM_LOOP_ALIAS(fam, t, F, E, R, acc)                                                             \
    extern "C" void qon_vmk_##t##F##_##acc(QON_VM_PARAMS_##fam(E, R))                                        \
        __attribute__((alias("qon_vmk_" #t #F "_HA")));                                                      \
    extern "C" void qon_vmk_##t##F##I_##acc(QON_VM_PARAMS_##fam##I(E, R))                                    \
        __attribute__((alias("qon_vmk_" #t #F "I_HA")));
#define QON_VM_LOOP_KERNELS_SHARED(fam, t, F, E, R, Routine)                                                \
    QON_VM_LOOP_KERNEL(fam, t, F, E, R, Routine, HA)                                                         \
    QON_VM_LOOP_ALIAS(fam, t, F, E, R, LA)                                                                   \
    QON_VM_LOOP_ALIAS(fam, t, F, E, R, EP)
