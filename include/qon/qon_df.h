/* Data fitting: one-dimensional tasks (a partition, the functions sampled on it, the spline
 * description and where its coefficients go) and the cell search that maps sites to the cells
 * of the partition. Cells are numbered 0 to nx: cell k (1 <= k <= nx-1) holds
 * x[k-1] <= t < x[k], cell 0 the sites below x[0], cell nx those above x[nx-1], and the right
 * end x[nx-1] itself belongs to cell nx-1. A site that is not a number lands in cell 0. */
#ifndef QON_DF_H
#define QON_DF_H

#include <stdint.h>
#include "qon_export.h"

QON_EXTERN_C_BEGIN

/* Parameter identifiers of the edit and query operations. */
enum {
    DF_X = 1, /* partition */
    DF_Y = 2, /* function values */
    DF_IC = 3, /* internal conditions */
    DF_BC = 4, /* boundary conditions */
    DF_PP_SCOEFF = 5, /* spline coefficients */
    DF_NX = 14,
    DF_XHINT = 15,
    DF_NY = 16,
    DF_YHINT = 17,
    DF_SPLINE_ORDER = 18,
    DF_SPLINE_TYPE = 19,
    DF_IC_TYPE = 20,
    DF_BC_TYPE = 21,
    DF_COEFF_HINT = 22,
    DF_PARAM_23 = 23
};

/* Hints: partition (x hint), storage of function values and coefficients, sites. */
enum {
    DF_HINT_NONE = 0,
    DF_PARTITION_NON_UNIFORM = 1,
    DF_PARTITION_QUASI_UNIFORM = 2,
    DF_PARTITION_UNIFORM = 4,
    DF_STORAGE_BY_ROWS = 0x10,
    DF_STORAGE_BY_COLUMNS = 0x20,
    DF_STORAGE_SEPARATE = 0x80,
    DF_SITES_UNIFORM = 4,   /* only the first and the last site are given */
    DF_SITES_SORTED = 0x40  /* sites ascending */
};

/* Status codes of every data-fitting operation. */
enum {
    DF_STATUS_OK = 0,
    DF_ERROR_NULL_TASK = -1000,
    DF_ERROR_MEM_FAILURE = -1001,
    DF_ERROR_BAD_NX = -1004,
    DF_ERROR_BAD_X = -1005,
    DF_ERROR_BAD_XHINT = -1006,
    DF_ERROR_BAD_NY = -1007,
    DF_ERROR_BAD_Y = -1008,
    DF_ERROR_BAD_YHINT = -1009,
    DF_ERROR_BAD_SPLINE_ORDER = -1010,
    DF_ERROR_BAD_SPLINE_TYPE = -1011,
    DF_ERROR_BAD_IC_TYPE = -1012,
    DF_ERROR_BAD_IC = -1013,
    DF_ERROR_BAD_BC_TYPE = -1014,
    DF_ERROR_BAD_BC = -1015,
    DF_ERROR_BAD_PP_COEFF = -1016,
    DF_ERROR_BAD_COEFF_HINT = -1017,
    DF_ERROR_BAD_PARAM_ID = -1019,
    DF_ERROR_BAD_INDEX = -1020,
    DF_ERROR_BAD_SEARCH_PARAMS = -1026,
    DF_ERROR_BAD_PARAM_23 = -1036,
    DF_ERROR_NULL_RESULT = -1037
};

/* A user-defined search returns this when every cell it wrote is final. */
#define DF_USER_SEARCH_ALL_FINAL 1000

/* The caller's search function. It receives the address of the site count, the sites, the cell
 * array (32-bit cells in the unsuffixed and 32 kernels and for tasks of integer width 0, 64-bit
 * cells otherwise), one 32-bit flag per site (0 on entry; set it non-zero for a cell that is
 * final) and the two opaque values given with it. A negative return is an error status. */
typedef int (*qon_df_ssearch_fn)(int64_t *n, const float *site, void *cell, int32_t *flag,
                                 void *user1, void *user2);
typedef int (*qon_df_dsearch_fn)(int64_t *n, const double *site, void *cell, int32_t *flag,
                                 void *user1, void *user2);

/* Tasks. `intwidth` 0 means the caller's integers (and the cells the dispatchers write) are
 * 32 bits wide, any other value 64 bits. */
QON_API int qon_df_kernel_dNewTask1D(void **task, int64_t nx, const double *x, int64_t xhint,
                                     int64_t ny, const double *y, int64_t yhint,
                                     uint32_t intwidth);
QON_API int qon_df_kernel_sNewTask1D(void **task, int64_t nx, const float *x, int64_t xhint,
                                     int64_t ny, const float *y, int64_t yhint,
                                     uint32_t intwidth);
QON_API int qon_df_kernel_DeleteTask(void **task);

QON_API int qon_df_kernel_iEditVal(void *task, int64_t id, int64_t value);
QON_API int qon_df_kernel_iQueryVal(void *task, int64_t id, void *result);

QON_API int qon_df_kernel_dEditPtr(void *task, int64_t id, const double *ptr);
QON_API int qon_df_kernel_sEditPtr(void *task, int64_t id, const float *ptr);
QON_API int qon_df_kernel_dQueryPtr(void *task, int64_t id, const double **result);
QON_API int qon_df_kernel_sQueryPtr(void *task, int64_t id, const float **result);
QON_API int qon_df_kernel_dEditIdxPtr(void *task, int64_t id, int64_t index, const double *ptr);
QON_API int qon_df_kernel_sEditIdxPtr(void *task, int64_t id, int64_t index, const float *ptr);
QON_API int qon_df_kernel_dQueryIdxPtr(void *task, int64_t id, int64_t index,
                                       const double **result);
QON_API int qon_df_kernel_sQueryIdxPtr(void *task, int64_t id, int64_t index,
                                       const float **result);

QON_API int qon_df_kernel_dEditPPSpline1D(void *task, int64_t order, int64_t type,
                                          int64_t bc_type, const double *bc, int64_t ic_type,
                                          const double *ic, double *coeff, int64_t coeff_hint);
QON_API int qon_df_kernel_sEditPPSpline1D(void *task, int64_t order, int64_t type,
                                          int64_t bc_type, const float *bc, int64_t ic_type,
                                          const float *ic, float *coeff, int64_t coeff_hint);

/* Cell search of a task. `sitehint` may hold DF_SITES_SORTED and DF_SITES_UNIFORM (then `site`
 * holds the first and the last of nsite equally spaced sites). `params`, when given: params[1]
 * is 0.0, or 1.0 with params[4] the index of the knot around which the sites cluster
 * (0 <= params[4] <= nx). `cell` receives nsite cells, 32-bit for a task of integer width 0,
 * 64-bit otherwise. `fn` is an optional search function of the caller, given user1 and user2. */
QON_API int qon_df_kernel_dDFSearch1D(void *task, int64_t nsite, const double *site,
                                      int64_t sitehint, const double *params, void *cell,
                                      qon_df_dsearch_fn fn, void *user1, void *user2);
QON_API int qon_df_kernel_sDFSearch1D(void *task, int64_t nsite, const float *site,
                                      int64_t sitehint, const float *params, void *cell,
                                      qon_df_ssearch_fn fn, void *user1, void *user2);

/* The search kernels, one family per method, each in s and d and in four index widths:
 * unsuffixed and 32 write 32-bit cells, 64 and 64Pack write 64-bit cells. Their arguments:
 * nx, the partition (for the uniform families only its two ends), the site count, the sites,
 * the method's inputs, the cells. `r` is the inverse step (nx-1)/(end-start); `bins` and
 * `scale` are the task's bin table and bin scale; `running` is the sorted search's running cell,
 * read and written back; `peak` the knot index around which the sites cluster. */
#define QON_DF_SEARCH_KERNELS(P, T, W, C)                                                       \
    QON_API int qon_df_kernel_##P##DFUniformSearch1D##W(int64_t nx, const T *x, int64_t nsite,  \
                                                        const T *site, T r, C *cell);          \
    QON_API int qon_df_kernel_##P##DFQuasiUniformSearch1D##W(                                   \
        int64_t nx, const T *x, int64_t nsite, const T *site, T r, C *cell);                   \
    QON_API int qon_df_kernel_##P##DFHybridSearch1D##W(int64_t nx, const T *x, int64_t nsite,   \
                                                       const T *site, const int64_t *bins,     \
                                                       T scale, C *cell);                      \
    QON_API int qon_df_kernel_##P##DFSortedSearch1D##W(int64_t nx, const T *x, int64_t nsite,   \
                                                       const T *site, C *running, C *cell);    \
    QON_API int qon_df_kernel_##P##DFPeakSearch1D##W(int64_t nx, const T *x, int64_t nsite,     \
                                                     const T *site, T peak, C *cell);          \
    QON_API int qon_df_kernel_##P##DFUserDefSearch1D##W(                                        \
        int64_t nx, const T *x, int64_t nsite, const T *site, qon_df_##P##search_fn fn,         \
        void *user1, void *user2, C *cell);                                                    \
    QON_API int qon_df_kernel_##P##DFUniUserDefSearch1D##W(                                     \
        int64_t nx, const T *x, int64_t nsite, const T *site, T r, qon_df_##P##search_fn fn,    \
        void *user1, void *user2, C *cell);

/* Every precision and index width: X(prefix letter, element, suffix, cell type). */
#define QON_DF_SEARCH_VARIANTS(X)                                                               \
    X(s, float, , int32_t) X(s, float, 32, int32_t) X(s, float, 64, int64_t)                    \
    X(s, float, 64Pack, int64_t) X(d, double, , int32_t) X(d, double, 32, int32_t)              \
    X(d, double, 64, int64_t) X(d, double, 64Pack, int64_t)

QON_DF_SEARCH_VARIANTS(QON_DF_SEARCH_KERNELS)

QON_EXTERN_C_END

#endif
