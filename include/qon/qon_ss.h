/* Summary statistics: tasks over an observation matrix and the kernels that compute estimates
 * from them.
 *
 * A task keeps pointers to the caller's data and result arrays and copies nothing: every kernel
 * reads through those pointers when it runs. Integers the task points to (dimension, counts,
 * storage codes, variable indices) are 32-bit or 64-bit signed integers as chosen by the last
 * argument of the constructor. Every function returns 0 or a negative status.
 *
 * Layout conventions of this library:
 *   observation storage 0x10000 (ROK_SS_MATRIX_STORAGE_ROWS): each variable's observations are
 *     contiguous, x[i*n + j] is observation j of variable i;
 *   observation storage 0x20000 (ROK_SS_MATRIX_STORAGE_COLS): each observation's variables are
 *     contiguous, x[j*p + i];
 *   the order statistics and sorted observations follow the same two codes;
 *   matrix storage 0 is the full p x p matrix, 1 the upper triangle packed row by row
 *     (C(0,0), C(0,1), ..., C(0,p-1), C(1,1), ...), 2 the lower triangle packed row by row
 *     (C(0,0), C(1,0), C(1,1), C(2,0), ...); a null storage pointer means 0;
 *   quantiles: for processed variable i the orders are written at q[i*norders + j];
 *   matrix results of a variable selection are written at the selected rows and columns only.
 *
 * Estimates of the basic kernel (W the sum of the weights, W2 the sum of their squares, mean the
 * weighted mean):
 *   sum and raw sums S_k = sum w x^k; raw moments S_k / W;
 *   central sums sum w (x - mean)^k; central moment 2 and covariance unbiased,
 *     c2 = sum w (x - mean)^2 / (W - W2/W) (that is / (n - 1) without weights);
 *     c3 = sum w (x - mean)^3 / W, c4 = sum w (x - mean)^4 / W;
 *   skewness c3 / c2^(3/2), kurtosis c4 / c2^2 - 3, variation sqrt(c2) / mean;
 *   cross-product matrix sum w (x_i - mean_i)(x_j - mean_j), not normalised;
 *   correlation C(i,j) / sqrt(C(i,i) C(j,j)).
 * Successive calls continue the same estimates: the accumulated weights (parameter 23) and the
 * result arrays hold the state. A first call needs W = 0 (or no accumulated-weights array); the
 * arrays are then written without being read. Correlation alone (without covariance,
 * cross-product, central moment 2 or raw moment 2 arrays) cannot be continued across calls.
 * Method ROK_SS_METHOD_FAST_USER_MEAN reads the mean array as the centre and leaves it
 * unchanged; its central sums, moments and matrices are taken about that centre.
 *
 * Min/max: the minimum is estimate bit 10 (ROK_SS_MIN, parameter 16) and the maximum estimate
 * bit 11 (ROK_SS_MAX, parameter 17). The result arrays are read as well as written (the result
 * is the extreme of their contents and of the observations), so that blocks of observations can
 * be processed by successive calls: initialise them with any observation or with +/-infinity.
 *
 * ROK_SS_METHOD_SUM_TO_MOM (0x200) converts sums to moments, ROK_SS_METHOD_MOM_TO_SUM (0x400)
 * moments to sums; kurtosis, skewness and variation are then formed from the mean and the
 * central-moment arrays and correlation from the cross-product array. */
#ifndef QON_SS_H
#define QON_SS_H

#include <stdint.h>
#include "qon_export.h"
#include "qon_serv.h"

QON_EXTERN_C_BEGIN

typedef struct rok_ss_task rok_ss_task;

/* Status codes. */
enum {
    ROK_SS_OK = 0,
    ROK_SS_ERROR_BAD_PARAM_ID = -3,
    ROK_SS_ERROR_MEMORY = -4000,
    ROK_SS_ERROR_BAD_DIMEN = -4001,
    ROK_SS_ERROR_BAD_OBSERV_N = -4002,
    ROK_SS_ERROR_STORAGE_NOT_SUPPORTED = -4003,
    ROK_SS_ERROR_BAD_INDC_ADDR = -4004,
    ROK_SS_ERROR_BAD_WEIGHTS = -4005,
    ROK_SS_ERROR_BAD_MEAN_ADDR = -4006,
    ROK_SS_ERROR_BAD_2R_MOM_ADDR = -4007,
    ROK_SS_ERROR_BAD_3R_MOM_ADDR = -4008,
    ROK_SS_ERROR_BAD_4R_MOM_ADDR = -4009,
    ROK_SS_ERROR_BAD_2C_MOM_ADDR = -4010,
    ROK_SS_ERROR_BAD_3C_MOM_ADDR = -4011,
    ROK_SS_ERROR_BAD_4C_MOM_ADDR = -4012,
    ROK_SS_ERROR_BAD_KURTOSIS_ADDR = -4013,
    ROK_SS_ERROR_BAD_SKEWNESS_ADDR = -4014,
    ROK_SS_ERROR_BAD_MIN_ADDR = -4015,
    ROK_SS_ERROR_BAD_MAX_ADDR = -4016,
    ROK_SS_ERROR_BAD_VARIATION_ADDR = -4017,
    ROK_SS_ERROR_BAD_COV_ADDR = -4018,
    ROK_SS_ERROR_BAD_COR_ADDR = -4019,
    ROK_SS_ERROR_BAD_ACCUM_WEIGHT_ADDR = -4020,
    ROK_SS_ERROR_BAD_QUANT_ORDER_ADDR = -4021,
    ROK_SS_ERROR_BAD_QUANT_ORDER = -4022,
    ROK_SS_ERROR_BAD_QUANT_ADDR = -4023,
    ROK_SS_ERROR_BAD_ORDER_STATS_ADDR = -4024,
    ROK_SS_ERROR_METHOD_NOT_SUPPORTED = -4029,
    ROK_SS_ERROR_NULL_TASK_DESCRIPTOR = -4031,
    ROK_SS_ERROR_BAD_OBSERV_ADDR = -4032,
    ROK_SS_ERROR_BAD_STORAGE_ADDR = -4044,
    ROK_SS_ERROR_BAD_SUM_ADDR = -4074,
    ROK_SS_ERROR_BAD_2R_SUM_ADDR = -4075,
    ROK_SS_ERROR_BAD_3R_SUM_ADDR = -4076,
    ROK_SS_ERROR_BAD_4R_SUM_ADDR = -4077,
    ROK_SS_ERROR_BAD_2C_SUM_ADDR = -4078,
    ROK_SS_ERROR_BAD_3C_SUM_ADDR = -4079,
    ROK_SS_ERROR_BAD_4C_SUM_ADDR = -4080,
    ROK_SS_ERROR_BAD_CP_ADDR = -4081,
    ROK_SS_ERROR_BAD_MDAD_ADDR = -4082,
    ROK_SS_ERROR_BAD_MNAD_ADDR = -4083,
    ROK_SS_ERROR_BAD_SORTED_OBSERV_ADDR = -4084,
    ROK_SS_ERROR_INDICES_NOT_SUPPORTED = -4085
};

/* Parameter identifiers of the editors. */
enum {
    ROK_SS_ED_DIMEN = 1,
    ROK_SS_ED_OBSERV_N = 2,
    ROK_SS_ED_OBSERV = 3,
    ROK_SS_ED_OBSERV_STORAGE = 4,
    ROK_SS_ED_INDC = 5,
    ROK_SS_ED_WEIGHTS = 6,
    ROK_SS_ED_MEAN = 7,
    ROK_SS_ED_2R_MOM = 8,
    ROK_SS_ED_3R_MOM = 9,
    ROK_SS_ED_4R_MOM = 10,
    ROK_SS_ED_2C_MOM = 11,
    ROK_SS_ED_3C_MOM = 12,
    ROK_SS_ED_4C_MOM = 13,
    ROK_SS_ED_KURTOSIS = 14,
    ROK_SS_ED_SKEWNESS = 15,
    ROK_SS_ED_MIN = 16,
    ROK_SS_ED_MAX = 17,
    ROK_SS_ED_VARIATION = 18,
    ROK_SS_ED_COV = 19,
    ROK_SS_ED_COV_STORAGE = 20,
    ROK_SS_ED_COR = 21,
    ROK_SS_ED_COR_STORAGE = 22,
    ROK_SS_ED_ACCUM_WEIGHT = 23,
    ROK_SS_ED_QUANT_ORDER_N = 24,
    ROK_SS_ED_QUANT_ORDER = 25,
    ROK_SS_ED_QUANT_QUANTILES = 26,
    ROK_SS_ED_ORDER_STATS = 27,
    ROK_SS_ED_ORDER_STATS_STORAGE = 44,
    ROK_SS_ED_SUM = 67,
    ROK_SS_ED_2R_SUM = 68,
    ROK_SS_ED_3R_SUM = 69,
    ROK_SS_ED_4R_SUM = 70,
    ROK_SS_ED_2C_SUM = 71,
    ROK_SS_ED_3C_SUM = 72,
    ROK_SS_ED_4C_SUM = 73,
    ROK_SS_ED_CP = 74,
    ROK_SS_ED_CP_STORAGE = 75,
    ROK_SS_ED_MDAD = 76,
    ROK_SS_ED_MNAD = 77,
    ROK_SS_ED_SORTED_OBSERV = 78,
    ROK_SS_ED_SORTED_OBSERV_STORAGE = 79
};

/* Storage codes. */
#define ROK_SS_MATRIX_STORAGE_ROWS 0x10000
#define ROK_SS_MATRIX_STORAGE_COLS 0x20000
#define ROK_SS_MATRIX_STORAGE_FULL 0
#define ROK_SS_MATRIX_STORAGE_U_PACKED 1
#define ROK_SS_MATRIX_STORAGE_L_PACKED 2

/* Estimate mask bits. */
#define ROK_SS_MEAN        0x1ULL
#define ROK_SS_2R_MOM      0x2ULL
#define ROK_SS_3R_MOM      0x4ULL
#define ROK_SS_4R_MOM      0x8ULL
#define ROK_SS_2C_MOM      0x10ULL
#define ROK_SS_3C_MOM      0x20ULL
#define ROK_SS_4C_MOM      0x40ULL
#define ROK_SS_KURTOSIS    0x80ULL
#define ROK_SS_SKEWNESS    0x100ULL
#define ROK_SS_VARIATION   0x200ULL
#define ROK_SS_MIN         0x400ULL
#define ROK_SS_MAX         0x800ULL
#define ROK_SS_COV         0x1000ULL
#define ROK_SS_COR         0x2000ULL
#define ROK_SS_QUANTS      0x10000ULL
#define ROK_SS_ORDER_STATS 0x20000ULL
#define ROK_SS_SUM         0x2000000ULL
#define ROK_SS_2R_SUM      0x4000000ULL
#define ROK_SS_3R_SUM      0x8000000ULL
#define ROK_SS_4R_SUM      0x10000000ULL
#define ROK_SS_2C_SUM      0x20000000ULL
#define ROK_SS_3C_SUM      0x40000000ULL
#define ROK_SS_4C_SUM      0x80000000ULL
#define ROK_SS_CP          0x100000000ULL
#define ROK_SS_MDAD        0x200000000ULL
#define ROK_SS_MNAD        0x400000000ULL

/* Method words. */
#define ROK_SS_METHOD_FAST           0x1ULL
#define ROK_SS_METHOD_1PASS          0x2ULL
#define ROK_SS_METHOD_FAST_USER_MEAN 0x100ULL
#define ROK_SS_METHOD_SUM_TO_MOM     0x200ULL
#define ROK_SS_METHOD_MOM_TO_SUM     0x400ULL
#define ROK_SS_METHOD_RADIX          0x100000ULL

/* Tasks. p, n and xstorage point to integers of the width chosen by intwidth (0: 32-bit,
 * otherwise 64-bit); indices, when given, to p integers of that width. */
QON_API int rokdSSNewTask(rok_ss_task **task, const void *p, const void *n, const void *xstorage,
                          const double *x, const double *weights, const void *indices, int intwidth);
QON_API int roksSSNewTask(rok_ss_task **task, const void *p, const void *n, const void *xstorage,
                          const float *x, const float *weights, const void *indices, int intwidth);
QON_API int rokdSSEditTask(rok_ss_task *task, int id, const double *address);
QON_API int roksSSEditTask(rok_ss_task *task, int id, const float *address);
QON_API int rokiSSEditTask(rok_ss_task *task, int id, const void *address);
QON_API int rokSSDeleteTask(rok_ss_task **task);

/* Grouped editors: every non-null argument is stored, a null one leaves its parameter as it was.
 * Integer arguments (storage codes, counts, index arrays) are of the task's integer width. */
QON_API int rokdSSEditMoments(rok_ss_task *task, const double *mean, const double *r2m, const double *r3m,
                              const double *r4m, const double *c2m, const double *c3m, const double *c4m);
QON_API int roksSSEditMoments(rok_ss_task *task, const float *mean, const float *r2m, const float *r3m,
                              const float *r4m, const float *c2m, const float *c3m, const float *c4m);
QON_API int rokdSSEditSums(rok_ss_task *task, const double *sum, const double *r2s, const double *r3s,
                           const double *r4s, const double *c2s, const double *c3s, const double *c4s);
QON_API int roksSSEditSums(rok_ss_task *task, const float *sum, const float *r2s, const float *r3s,
                           const float *r4s, const float *c2s, const float *c3s, const float *c4s);
QON_API int rokdSSEditCovCor(rok_ss_task *task, const double *mean, const double *cov, const void *cov_storage,
                             const double *cor, const void *cor_storage);
QON_API int roksSSEditCovCor(rok_ss_task *task, const float *mean, const float *cov, const void *cov_storage,
                             const float *cor, const void *cor_storage);
QON_API int rokdSSEditCP(rok_ss_task *task, const double *mean, const double *sum, const double *cp,
                         const void *cp_storage);
QON_API int roksSSEditCP(rok_ss_task *task, const float *mean, const float *sum, const float *cp,
                         const void *cp_storage);
QON_API int rokdSSEditPartialCovCor(rok_ss_task *task, const void *pidx, const double *cov, const void *cov_storage,
                                    const double *cor, const void *cor_storage, const double *pcov,
                                    const void *pcov_storage, const double *pcor, const void *pcor_storage);
QON_API int roksSSEditPartialCovCor(rok_ss_task *task, const void *pidx, const float *cov, const void *cov_storage,
                                    const float *cor, const void *cor_storage, const float *pcov,
                                    const void *pcov_storage, const float *pcor, const void *pcor_storage);
QON_API int rokdSSEditQuantiles(rok_ss_task *task, const void *norders, const double *orders, const double *quants,
                                const double *order_stats, const void *order_stats_storage);
QON_API int roksSSEditQuantiles(rok_ss_task *task, const void *norders, const float *orders, const float *quants,
                                const float *order_stats, const void *order_stats_storage);
QON_API int rokdSSEditStreamQuantiles(rok_ss_task *task, const void *norders, const double *orders,
                                      const double *quants, const void *nparams, const double *params);
QON_API int roksSSEditStreamQuantiles(rok_ss_task *task, const void *norders, const float *orders,
                                      const float *quants, const void *nparams, const float *params);
QON_API int rokdSSEditPooledCovariance(rok_ss_task *task, const void *grp_indices, const double *pld_mean,
                                       const double *pld_cov, const void *req_grp_indices, const double *grp_means,
                                       const double *grp_cov);
QON_API int roksSSEditPooledCovariance(rok_ss_task *task, const void *grp_indices, const float *pld_mean,
                                       const float *pld_cov, const void *req_grp_indices, const float *grp_means,
                                       const float *grp_cov);
QON_API int rokdSSEditRCov(rok_ss_task *task, const void *rcov_storage, const void *nparams, const double *params,
                           const double *rmean, const double *rcov);
QON_API int roksSSEditRCov(rok_ss_task *task, const void *rcov_storage, const void *nparams, const float *params,
                           const float *rmean, const float *rcov);
QON_API int rokdSSEditOutDetect(rok_ss_task *task, const void *nparams, const double *params, const double *w);
QON_API int roksSSEditOutDetect(rok_ss_task *task, const void *nparams, const float *params, const float *w);
QON_API int rokdSSEditMissingVals(rok_ss_task *task, const void *nparams, const double *params,
                                  const void *ninit, const double *init, const void *npar, const double *par,
                                  const void *nprior, const double *prior, const void *nsimul,
                                  const double *simul);
QON_API int roksSSEditMissingVals(rok_ss_task *task, const void *nparams, const float *params,
                                  const void *ninit, const float *init, const void *npar, const float *par,
                                  const void *nprior, const float *prior, const void *nsimul,
                                  const float *simul);
QON_API int rokdSSEditMtxParametrz(rok_ss_task *task, const double *cor, const void *cor_storage,
                                   const double *pcor, const void *pcor_storage);
QON_API int roksSSEditMtxParametrz(rok_ss_task *task, const float *cor, const void *cor_storage,
                                   const float *pcor, const void *pcor_storage);

/* Kernels. `services` is the front end's service table (qon_serv_get_services() by default). */
QON_API int rokdSSBasic(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int roksSSBasic(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int rokdSSMinmax(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int roksSSMinmax(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int rokdSSQuantiles(rok_ss_task *task, uint64_t estimates, uint64_t method,
                            const qon_serv_services *services);
QON_API int roksSSQuantiles(rok_ss_task *task, uint64_t estimates, uint64_t method,
                            const qon_serv_services *services);
QON_API int rokdSSMAD(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int roksSSMAD(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int rokdSSSort(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);
QON_API int roksSSSort(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services);

QON_EXTERN_C_END

#endif
