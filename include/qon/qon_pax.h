/* qon vector math: element-wise functions over arrays in four element types, three accuracies.
 *
 *   s float, d double, c float complex (QON_Complex8), z double complex (QON_Complex16).
 *   pax<t><Func>      high accuracy (HA), whatever the thread's mode; also named pax<t><Func>_HA
 *   pax<s|c><Func>_21 low accuracy (LA)       pax<d|z><Func>_50 low accuracy (LA)
 *   pax<s|c><Func>_11 enhanced performance    pax<d|z><Func>_26 enhanced performance (EP)
 *   pax<t><Func>I     the strided form: every array is followed by its increment (in elements).
 *
 * Accuracy: HA within 1 ulp, LA within 4 ulp, EP at least 11 correct bits (single) and 26 (double).
 * Elements with exceptional arguments get their special result and are reported through the
 * thread's error status, error mode and call-back (paxSetMode, paxSetErrorCallBack).
 *
 * Argument lists by family (E the element type, R its real component type, n elements):
 *   one argument          (int n, const E *a, E *r)                       Exp, Ln, Sin, ...
 *   two arguments         (int n, const E *a, const E *b, E *r)           Add, Pow, Atan2, ...
 *   two results           (int n, const E *a, E *r1, E *r2)               SinCos (sin, cos),
 *                                                                          SinCospi, Modf (trunc, frac)
 *   scalar exponent       (int n, const E *a, E b, E *r)                  Powx: r = a^b
 *   linear fraction       (int n, const E *a, const E *b, R scalea, R shifta, R scaleb, R shiftb,
 *                          E *r)       r = (scalea*a + shifta) / (scaleb*b + shiftb)
 *   integer order         (int n, const E *a, int nu, E *r)               Jn, Yn of order nu
 *   complex to real       (int n, const E *a, R *r)                       Abs, Arg of c and z
 *   real to complex       (int n, const R *a, E *r)                       CIS: r = cos a + i sin a
 *   PackI   (int n, const E *a, int inca, E *y)        y[i] = a[i*inca],            i < n
 *   PackM   (int n, const E *a, const int *mask, E *y) y[j++] = a[i] where mask[i] != 0
 *   PackV   (int n, const E *a, const int *ix, E *y)   y[i] = a[ix[i]],             i < n
 *   UnpackI (int n, const E *a, E *y, int incy)        y[i*incy] = a[i],            i < n
 *   UnpackM (int n, const E *a, E *y, const int *mask) y[i] = a[j++] where mask[i] != 0, i < n
 *   UnpackV (int n, const E *a, E *y, const int *ix)   y[ix[i]] = a[i],             i < n
 * Strided forms insert `int inc` after each array: paxdExpI(n, a, inca, r, incr),
 * paxdPowxI(n, a, inca, b, r, incr), paxdSinCosI(n, a, inca, r1, incr1, r2, incr2).
 * Every kernel accepts r == a (in place). n <= 0 does nothing. */
#ifndef QON_PAX_H
#define QON_PAX_H

#include <stdint.h>
#include "qon_export.h"
#include "qon_pax_list.h"

QON_EXTERN_C_BEGIN

typedef struct QON_Complex8 { float real, imag; } QON_Complex8;
typedef struct QON_Complex16 { double real, imag; } QON_Complex16;

/* Mode word fields (paxSetMode, paxGetMode, QON_PAX_MODE). */
#define PAX_LA 0x1u
#define PAX_HA 0x2u
#define PAX_EP 0x3u
#define PAX_ACCURACY_MASK 0xFu
#define PAX_DEFAULT_PRECISION 0x0u
#define PAX_FLOAT_CONSISTENT 0x10u
#define PAX_DOUBLE_CONSISTENT 0x20u
#define PAX_RESTORE 0x30u
#define PAX_FPUMODE_MASK 0xF0u
#define PAX_ERRMODE_IGNORE 0x100u
#define PAX_ERRMODE_ERRNO 0x200u
#define PAX_ERRMODE_STDERR 0x400u
#define PAX_ERRMODE_EXCEPT 0x800u
#define PAX_ERRMODE_CALLBACK 0x1000u
#define PAX_ERRMODE_NOERR 0x2000u
#define PAX_ERRMODE_DEFAULT 0x1A00u
#define PAX_ERRMODE_MASK 0xFF00u
#define PAX_FTZDAZ_ON 0x280000u
#define PAX_FTZDAZ_OFF 0x140000u
#define PAX_FTZDAZ_MASK 0x3C0000u
#define PAX_TRAP_INVALID 0x1000000u
#define PAX_TRAP_DIVBYZERO 0x2000000u
#define PAX_TRAP_OVERFLOW 0x4000000u
#define PAX_TRAP_UNDERFLOW 0x8000000u
#define PAX_TRAP_MASK 0xF000000u
#define PAX_DEFAULT_MODE 0x1A02u

/* Error status codes. */
#define PAX_STATUS_OK 0
#define PAX_STATUS_BADARG (-1)
#define PAX_STATUS_BADPTR (-2)
#define PAX_STATUS_ERRDOM 1
#define PAX_STATUS_SING 2
#define PAX_STATUS_OVERFLOW 3
#define PAX_STATUS_UNDERFLOW 4

/* What the error call-back receives for one offending element. Single-precision values are
 * widened to double; the imaginary fields are written for complex functions only. */
typedef struct PaxErrorContext {
    int32_t code;                /* the status code */
    int32_t index;               /* element index, counted from the input-vector pointer if set */
    double arg1;                 /* first argument (real part) */
    double arg2;                 /* second argument (real part); equals arg1 for one argument */
    double res1;                 /* first result as computed; may be replaced by the call-back */
    double res2;                 /* second result; equals res1 for one result */
    char function_name[64];      /* short name such as "paxdExp", at most 47 characters */
    int32_t function_name_length;
    double arg1_im, arg2_im, res1_im, res2_im;
} PaxErrorContext;

/* A call-back returns 0 to let the error mode continue and store its results, non-zero to stop. */
typedef int (*PaxErrorCallBack)(PaxErrorContext *context);

/* Mode word of the calling thread: sets the non-zero fields of mode, returns the previous mode. */
QON_API unsigned int paxSetMode(unsigned int mode);
QON_API unsigned int qon_pax_kernel_SetMode(unsigned int mode);
/* The calling thread's mode word (0x1A02 unless QON_PAX_MODE or paxSetMode said otherwise). */
QON_API unsigned int paxGetMode(void);
QON_API unsigned int qon_pax_kernel_GetMode(void);
/* Stores an error status; returns the previous one. */
QON_API int paxSetErrStatus(int status);
QON_API int qon_pax_kernel_SetErrStatus(int status);
/* The last error status reported in this thread (not cleared by successful calls). */
QON_API int paxGetErrStatus(void);
QON_API int qon_pax_kernel_GetErrStatus(void);
/* Stores status 0; returns the previous status. */
QON_API int paxClearErrStatus(void);
QON_API int qon_pax_kernel_ClearErrStatus(void);
/* Installs a call-back (NULL removes it) and sets or clears the call-back bit of the error mode;
 * returns the previous call-back. */
QON_API PaxErrorCallBack paxSetErrorCallBack(PaxErrorCallBack callback);
QON_API PaxErrorCallBack qon_pax_kernel_SetErrorCallBack(PaxErrorCallBack callback);
/* The installed call-back, or NULL. */
QON_API PaxErrorCallBack paxGetErrorCallBack(void);
QON_API PaxErrorCallBack qon_pax_kernel_GetErrorCallBack(void);
/* Removes the call-back as paxSetErrorCallBack(NULL) does; returns the previous one. */
QON_API PaxErrorCallBack paxClearErrorCallBack(void);
QON_API PaxErrorCallBack qon_pax_kernel_ClearErrorCallBack(void);
/* Declares the start of the caller's whole input vector, so that reported indices count from
 * it when the caller processes the vector in blocks; returns ptr. */
QON_API const void *paxSetInterfInputVectorPointer(const void *ptr);
QON_API const void *qon_pax_kernel_SetInterfInputVectorPointer(const void *ptr);
/* Index of the thread's accuracy in a table of kernels: 0 LA, 1 HA, 2 EP. */
QON_API int qon_pax_kernel_GetTTableIndex(void);
/* The same for an explicit mode word (the first argument is ignored); -1 when it has no accuracy. */
QON_API int qon_pax_kernel_GetTTableIndexM(int ignored, unsigned int mode);
/* The instruction-set level this kernel library is built for: 7 (AVX2 with FMA). */
QON_API int dll_cpu_version(void);

/* ---- Generated declarations of every function entry and table --------------------------- */

#define QON_PAX_DECL_U(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, E *r); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, E *r, int incr);
#define QON_PAX_DECL_B(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, const E *b, E *r); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, const E *b, int incb, E *r, int incr);
#define QON_PAX_DECL_U2(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, E *r1, E *r2); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, E *r1, int incr1, E *r2, int incr2);
#define QON_PAX_DECL_PX(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, E b, E *r); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, E b, E *r, int incr);
#define QON_PAX_DECL_LF(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, const E *b, R scalea, R shifta, R scaleb, R shiftb, E *r); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, const E *b, int incb, R scalea, R shifta, \
                                   R scaleb, R shiftb, E *r, int incr);
#define QON_PAX_DECL_NU(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, int nu, E *r); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, int nu, E *r, int incr);
#define QON_PAX_DECL_CR(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const E *a, R *r); \
    QON_API void pax##t##F##I##sfx(int n, const E *a, int inca, R *r, int incr);
#define QON_PAX_DECL_RC(t, E, R, F, sfx) \
    QON_API void pax##t##F##sfx(int n, const R *a, E *r); \
    QON_API void pax##t##F##I##sfx(int n, const R *a, int inca, E *r, int incr);
#define QON_PAX_DECL_PKI(t, E, R, F, sfx) QON_API void pax##t##F##sfx(int n, const E *a, int inca, E *y);
#define QON_PAX_DECL_PKM(t, E, R, F, sfx) QON_API void pax##t##F##sfx(int n, const E *a, const int *mask, E *y);
#define QON_PAX_DECL_PKV(t, E, R, F, sfx) QON_API void pax##t##F##sfx(int n, const E *a, const int *ix, E *y);
#define QON_PAX_DECL_UPI(t, E, R, F, sfx) QON_API void pax##t##F##sfx(int n, const E *a, E *y, int incy);
#define QON_PAX_DECL_UPM(t, E, R, F, sfx) QON_API void pax##t##F##sfx(int n, const E *a, E *y, const int *mask);
#define QON_PAX_DECL_UPV(t, E, R, F, sfx) QON_API void pax##t##F##sfx(int n, const E *a, E *y, const int *ix);

#define QON_PAX_DECL4(t, E, R, F, fam, la, ep) \
    QON_PAX_DECL_##fam(t, E, R, F, ) QON_PAX_DECL_##fam(t, E, R, F, _HA) \
    QON_PAX_DECL_##fam(t, E, R, F, la) QON_PAX_DECL_##fam(t, E, R, F, ep)
#define QON_PAX_DECL_REAL(F, fam, cost) \
    QON_PAX_DECL4(s, float, float, F, fam, _21, _11) QON_PAX_DECL4(d, double, double, F, fam, _50, _26)
#define QON_PAX_DECL_COMPLEX(F, fam, cost) \
    QON_PAX_DECL4(c, QON_Complex8, float, F, fam, _21, _11) QON_PAX_DECL4(z, QON_Complex16, double, F, fam, _50, _26)

QON_PAX_REAL_FUNCTIONS(QON_PAX_DECL_REAL)
QON_PAX_COMPLEX_FUNCTIONS(QON_PAX_DECL_COMPLEX)

/* Tables of kernels: qon_pax_kernel_<t><Func>_ttab holds the LA, HA and EP kernels (call them
 * with the function's argument list; pack and unpack kernels take a fifth argument, 1 for
 * 32-bit increments, masks and indices); qon_pax_kernel_<t><Func>_ctab, directly after it,
 * holds three figures (relative cost per element of LA, HA, EP) and 12 zero bytes. */
typedef void (*qon_pax_kernel_fn)(void);
#ifndef QON_PAX_NO_TABLE_DECLS
#define QON_PAX_DECL_TAB(t, F) \
    QON_API extern qon_pax_kernel_fn const qon_pax_kernel_##t##F##_ttab[3]; \
    QON_API extern const float qon_pax_kernel_##t##F##_ctab[6];
#define QON_PAX_DECL_TAB_U(t, F) QON_PAX_DECL_TAB(t, F) QON_PAX_DECL_TAB(t, F##I)
#define QON_PAX_DECL_TAB_B QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_U2 QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_PX QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_LF QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_NU QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_CR QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_RC QON_PAX_DECL_TAB_U
#define QON_PAX_DECL_TAB_PKI QON_PAX_DECL_TAB
#define QON_PAX_DECL_TAB_PKM QON_PAX_DECL_TAB
#define QON_PAX_DECL_TAB_PKV QON_PAX_DECL_TAB
#define QON_PAX_DECL_TAB_UPI QON_PAX_DECL_TAB
#define QON_PAX_DECL_TAB_UPM QON_PAX_DECL_TAB
#define QON_PAX_DECL_TAB_UPV QON_PAX_DECL_TAB
#define QON_PAX_DECL_TAB_REAL(F, fam, cost) QON_PAX_DECL_TAB_##fam(s, F) QON_PAX_DECL_TAB_##fam(d, F)
#define QON_PAX_DECL_TAB_COMPLEX(F, fam, cost) QON_PAX_DECL_TAB_##fam(c, F) QON_PAX_DECL_TAB_##fam(z, F)
QON_PAX_REAL_FUNCTIONS(QON_PAX_DECL_TAB_REAL)
QON_PAX_COMPLEX_FUNCTIONS(QON_PAX_DECL_TAB_COMPLEX)
#endif

QON_EXTERN_C_END

#endif
