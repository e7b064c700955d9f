// The summary-statistics task record and the reading of its integer parameters. The record holds
// only the caller's pointers (and one owned buffer and a release hook); the field order is the
// public record layout. Integers are read at the width chosen when the task was created.
#pragma once

#include <qon/qon_ss.h>

#include <cstddef>
#include <cstdint>

struct rok_ss_task {
    uint32_t intwidth;   // 0: integer parameters are int32_t, otherwise int64_t
    uint8_t kind;        // 2 for a summary-statistics task
    uint32_t precision;  // 1 double, 0 single
    void *p, *n, *indices, *x, *weights, *accum_weights, *xstorage;
    void *param_cor, *param_cor_storage;
    void *moments[7];  // mean, raw moments 2-4, central moments 2-4
    void *sums[7];     // sum, raw sums 2-4, central sums 2-4
    void *kurtosis, *skewness, *variation, *min, *max;
    void *cov_storage, *cov, *cor_storage, *cor, *cp_storage, *cp;
    void *pooled[8];
    void *quant_norders, *quant_orders, *quants, *order_stats, *order_stats_storage;
    void *squant_norders, *squant_orders, *squants, *squant_nparams, *squant_params;
    void *mnad, *mdad;
    void *robust[5];
    void *outliers[3];
    void *partial[5];
    void *missing[10];
    int32_t nhooks;
    void (*release_hook)(rok_ss_task *);
    void *sorted, *sorted_storage;
    void *owned;
};

namespace ss {

constexpr int64_t kStorageRows = ROK_SS_MATRIX_STORAGE_ROWS;  // x[i*n + j]
constexpr int64_t kStorageCols = ROK_SS_MATRIX_STORAGE_COLS;  // x[j*p + i]

// Reads the integer parameter at `ptr` at the task's width.
inline int64_t read_int(const rok_ss_task *t, const void *ptr) {
    return t->intwidth != 0 ? *static_cast<const int64_t *>(ptr)
                            : static_cast<int64_t>(*static_cast<const int32_t *>(ptr));
}
inline int64_t read_int(const rok_ss_task *t, const void *ptr, int64_t i) {
    return t->intwidth != 0 ? static_cast<const int64_t *>(ptr)[i]
                            : static_cast<int64_t>(static_cast<const int32_t *>(ptr)[i]);
}

// Where parameter `id` lives in the record, its class and the status for a null pointer.
struct ParamSlot {
    uint16_t offset;  // 0: unknown id
    bool is_int;
    int32_t null_code;
};
const ParamSlot &param_slot(int id);

inline void *&field(rok_ss_task *t, const ParamSlot &s) {
    return *reinterpret_cast<void **>(reinterpret_cast<char *>(t) + s.offset);
}

// Stores `address` into parameter `id` with the checks of the editors: class `want_int`.
int edit(rok_ss_task *t, int id, const void *address, bool want_int);

// The grouped editors: store each non-null argument into its parameter.
int edit_group(rok_ss_task *t, const int *ids, const void *const *args, int count);

}  // namespace ss
