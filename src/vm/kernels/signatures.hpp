// Argument lists of the vector-math kernels by family, as macros over the element type E and
// its real component type R: QON_VM_PARAMS_<fam>(E, R) declares the parameters of the
// contiguous kernel, QON_VM_ARGS_<fam> forwards them; the ...I forms are the strided kernels.
// Pack and unpack kernels take a fifth argument `width`: 1 reads the increment (or the mask or
// index elements) as 32-bit integers, any other value as 64-bit ones.
#pragma once

#include <cstdint>

#define QON_VM_PARAMS_U(E, R) int n, const E *a, E *r
#define QON_VM_ARGS_U n, a, r
#define QON_VM_PARAMS_UI(E, R) int n, const E *a, int inca, E *r, int incr
#define QON_VM_ARGS_UI n, a, inca, r, incr

#define QON_VM_PARAMS_B(E, R) int n, const E *a, const E *b, E *r
#define QON_VM_ARGS_B n, a, b, r
#define QON_VM_PARAMS_BI(E, R) int n, const E *a, int inca, const E *b, int incb, E *r, int incr
#define QON_VM_ARGS_BI n, a, inca, b, incb, r, incr

#define QON_VM_PARAMS_U2(E, R) int n, const E *a, E *r1, E *r2
#define QON_VM_ARGS_U2 n, a, r1, r2
#define QON_VM_PARAMS_U2I(E, R) int n, const E *a, int inca, E *r1, int incr1, E *r2, int incr2
#define QON_VM_ARGS_U2I n, a, inca, r1, incr1, r2, incr2

#define QON_VM_PARAMS_PX(E, R) int n, const E *a, E b, E *r
#define QON_VM_ARGS_PX n, a, b, r
#define QON_VM_PARAMS_PXI(E, R) int n, const E *a, int inca, E b, E *r, int incr
#define QON_VM_ARGS_PXI n, a, inca, b, r, incr

#define QON_VM_PARAMS_LF(E, R) int n, const E *a, const E *b, R scalea, R shifta, R scaleb, R shiftb, E *r
#define QON_VM_ARGS_LF n, a, b, scalea, shifta, scaleb, shiftb, r
#define QON_VM_PARAMS_LFI(E, R) \
    int n, const E *a, int inca, const E *b, int incb, R scalea, R shifta, R scaleb, R shiftb, E *r, int incr
#define QON_VM_ARGS_LFI n, a, inca, b, incb, scalea, shifta, scaleb, shiftb, r, incr

#define QON_VM_PARAMS_NU(E, R) int n, const E *a, int nu, E *r
#define QON_VM_ARGS_NU n, a, nu, r
#define QON_VM_PARAMS_NUI(E, R) int n, const E *a, int inca, int nu, E *r, int incr
#define QON_VM_ARGS_NUI n, a, inca, nu, r, incr

#define QON_VM_PARAMS_CR(E, R) int n, const E *a, R *r
#define QON_VM_ARGS_CR n, a, r
#define QON_VM_PARAMS_CRI(E, R) int n, const E *a, int inca, R *r, int incr
#define QON_VM_ARGS_CRI n, a, inca, r, incr

#define QON_VM_PARAMS_RC(E, R) int n, const R *a, E *r
#define QON_VM_ARGS_RC n, a, r
#define QON_VM_PARAMS_RCI(E, R) int n, const R *a, int inca, E *r, int incr
#define QON_VM_ARGS_RCI n, a, inca, r, incr

// Pack and unpack: entry parameters, and the kernel's parameters with the width argument.
#define QON_VM_PARAMS_PKI(E, R) int n, const E *a, int inca, E *y
#define QON_VM_KPARAMS_PKI(E, R) int n, const E *a, std::int64_t inca, E *y, int width
#define QON_VM_KARGS_PKI n, a, static_cast<std::int64_t>(inca), y, 1
#define QON_VM_PARAMS_PKM(E, R) int n, const E *a, const int *mask, E *y
#define QON_VM_KPARAMS_PKM(E, R) int n, const E *a, const void *mask, E *y, int width
#define QON_VM_KARGS_PKM n, a, static_cast<const void *>(mask), y, 1
#define QON_VM_PARAMS_PKV(E, R) int n, const E *a, const int *ix, E *y
#define QON_VM_KPARAMS_PKV(E, R) int n, const E *a, const void *ix, E *y, int width
#define QON_VM_KARGS_PKV n, a, static_cast<const void *>(ix), y, 1
#define QON_VM_PARAMS_UPI(E, R) int n, const E *a, E *y, int incy
#define QON_VM_KPARAMS_UPI(E, R) int n, const E *a, E *y, std::int64_t incy, int width
#define QON_VM_KARGS_UPI n, a, y, static_cast<std::int64_t>(incy), 1
#define QON_VM_PARAMS_UPM(E, R) int n, const E *a, E *y, const int *mask
#define QON_VM_KPARAMS_UPM(E, R) int n, const E *a, E *y, const void *mask, int width
#define QON_VM_KARGS_UPM n, a, y, static_cast<const void *>(mask), 1
#define QON_VM_PARAMS_UPV(E, R) int n, const E *a, E *y, const int *ix
#define QON_VM_KPARAMS_UPV(E, R) int n, const E *a, E *y, const void *ix, int width
#define QON_VM_KARGS_UPV n, a, y, static_cast<const void *>(ix), 1

// Contiguous arguments in strided order with unit increments, and the test a strided kernel
// makes before it hands the call to the contiguous kernel of the same accuracy.
#define QON_VM_UNIT_ARGS_U n, a, 1, r, 1
#define QON_VM_UNIT_TEST_U (inca == 1 && incr == 1)
#define QON_VM_UNIT_ARGS_B n, a, 1, b, 1, r, 1
#define QON_VM_UNIT_TEST_B (inca == 1 && incb == 1 && incr == 1)
#define QON_VM_UNIT_ARGS_U2 n, a, 1, r1, 1, r2, 1
#define QON_VM_UNIT_TEST_U2 (inca == 1 && incr1 == 1 && incr2 == 1)
#define QON_VM_UNIT_ARGS_PX n, a, 1, b, r, 1
#define QON_VM_UNIT_TEST_PX (inca == 1 && incr == 1)
#define QON_VM_UNIT_ARGS_LF n, a, 1, b, 1, scalea, shifta, scaleb, shiftb, r, 1
#define QON_VM_UNIT_TEST_LF (inca == 1 && incb == 1 && incr == 1)
#define QON_VM_UNIT_ARGS_NU n, a, 1, nu, r, 1
#define QON_VM_UNIT_TEST_NU (inca == 1 && incr == 1)
#define QON_VM_UNIT_ARGS_CR n, a, 1, r, 1
#define QON_VM_UNIT_TEST_CR (inca == 1 && incr == 1)
#define QON_VM_UNIT_ARGS_RC n, a, 1, r, 1
#define QON_VM_UNIT_TEST_RC (inca == 1 && incr == 1)
