/* The BLAS bridge of the core library: the dense linear algebra that the kernel library calls,
 * forwarded to the system's optimised CBLAS (OpenBLAS). Arguments follow CBLAS: layout, uplo and
 * transposition codes take the CBLAS values below, dimensions and leading dimensions are counts
 * of elements and must fit in 32 bits.
 *
 * Two forms of each routine:
 *   qon_blas_<t><op>   for the calling thread of a kernel: the BLAS may use as many threads as
 *                      qon_serv_get_max_threads() allows;
 *   qon_blas_x<t><op>  for a worker thread of a parallel-for: the BLAS runs on the calling thread
 *                      only, so that T workers do not each start a team of their own.
 * The BLAS's thread count is switched between the two settings on the first call of a form after
 * a call of the other, under a lock; the switch is process-wide, so concurrent callers of the two
 * forms see correct results in any case and only the speed depends on the setting.
 *
 * syrk: C = alpha * A * A^T + beta * C (trans = NO_TRANS, A n x k) or alpha * A^T * A + beta * C
 *       (trans = TRANS, A k x n), one triangle of the n x n matrix C.
 * syr:  A = alpha * x * x^T + A, one triangle of the n x n matrix A.
 * gemm: C = alpha * op(A) * op(B) + beta * C, C m x n. */
#ifndef QON_BLAS_H
#define QON_BLAS_H

#include <stdint.h>
#include "qon_export.h"

QON_EXTERN_C_BEGIN

enum {
    QON_BLAS_ROW_MAJOR = 101,
    QON_BLAS_COL_MAJOR = 102,
    QON_BLAS_NO_TRANS = 111,
    QON_BLAS_TRANS = 112,
    QON_BLAS_UPPER = 121,
    QON_BLAS_LOWER = 122
};

QON_API void qon_blas_dsyrk(int layout, int uplo, int trans, int64_t n, int64_t k, double alpha, const double *a,
                            int64_t lda, double beta, double *c, int64_t ldc);
QON_API void qon_blas_xdsyrk(int layout, int uplo, int trans, int64_t n, int64_t k, double alpha, const double *a,
                             int64_t lda, double beta, double *c, int64_t ldc);
QON_API void qon_blas_ssyrk(int layout, int uplo, int trans, int64_t n, int64_t k, float alpha, const float *a,
                            int64_t lda, float beta, float *c, int64_t ldc);
QON_API void qon_blas_xssyrk(int layout, int uplo, int trans, int64_t n, int64_t k, float alpha, const float *a,
                             int64_t lda, float beta, float *c, int64_t ldc);

QON_API void qon_blas_dsyr(int layout, int uplo, int64_t n, double alpha, const double *x, int64_t incx, double *a,
                           int64_t lda);
QON_API void qon_blas_xdsyr(int layout, int uplo, int64_t n, double alpha, const double *x, int64_t incx, double *a,
                            int64_t lda);
QON_API void qon_blas_ssyr(int layout, int uplo, int64_t n, float alpha, const float *x, int64_t incx, float *a,
                           int64_t lda);
QON_API void qon_blas_xssyr(int layout, int uplo, int64_t n, float alpha, const float *x, int64_t incx, float *a,
                            int64_t lda);

QON_API void qon_blas_dgemm(int layout, int transa, int transb, int64_t m, int64_t n, int64_t k, double alpha,
                            const double *a, int64_t lda, const double *b, int64_t ldb, double beta, double *c,
                            int64_t ldc);
QON_API void qon_blas_xdgemm(int layout, int transa, int transb, int64_t m, int64_t n, int64_t k, double alpha,
                             const double *a, int64_t lda, const double *b, int64_t ldb, double beta, double *c,
                             int64_t ldc);
QON_API void qon_blas_sgemm(int layout, int transa, int transb, int64_t m, int64_t n, int64_t k, float alpha,
                            const float *a, int64_t lda, const float *b, int64_t ldb, float beta, float *c,
                            int64_t ldc);
QON_API void qon_blas_xsgemm(int layout, int transa, int transb, int64_t m, int64_t n, int64_t k, float alpha,
                             const float *a, int64_t lda, const float *b, int64_t ldb, float beta, float *c,
                             int64_t ldc);

QON_EXTERN_C_END

#endif
