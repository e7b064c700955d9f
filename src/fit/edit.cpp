// Editing and querying a data-fitting task by parameter identifier: integer parameters
// (14-23), pointer parameters (1-5), per-function pointers (2 and 5) and the spline description
// in one call. Every check comes before the store it guards; the pointer tables are rebuilt by
// freeing the old one first. A task whose edit marker is not 1 accepts edits and queries as
// no-ops.
#include "fit/task.hpp"

namespace qon::fit {
namespace {

Task *as_task(void *t) { return static_cast<Task *>(t); }

bool spline_type_ok(int64_t v) { return (v >= 0 && v <= 5) || v == 9; }
bool ic_type_ok(int64_t v) { return v < 3 || (v & 8) != 0; }

// The status for a null pointer given for pointer parameter id (1-5).
int null_pointer_status(int64_t id) {
    static constexpr int kStatus[] = {DF_ERROR_BAD_X, DF_ERROR_BAD_Y, DF_ERROR_BAD_IC,
                                      DF_ERROR_BAD_BC, DF_ERROR_BAD_PP_COEFF};
    return kStatus[id - 1];
}

// Slot `index` of a pointer table, null past its end.
const void *slot(const void *const *tab, int64_t index) {
    return index < table_slots(tab) ? tab[index] : nullptr;
}

template <class T>
int edit_ptr(void *handle, int64_t id, const T *ptr) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (task->edit_marker != 1) return DF_STATUS_OK;
    if (id < DF_X || id > DF_PP_SCOEFF) return DF_ERROR_BAD_PARAM_ID;
    if (ptr == nullptr) return null_pointer_status(id);
    switch (id) {
    case DF_X: task->x = ptr; break;
    case DF_IC: task->ic = ptr; break;
    case DF_BC: task->bc = ptr; break;
    case DF_Y: return rebuild_ytab(task, ptr, task->ny, task->yhint, sizeof(T));
    default:
        if (task->ny == 0) return DF_ERROR_BAD_NY;
        return rebuild_coeff_tab(task, const_cast<T *>(ptr), sizeof(T));
    }
    return DF_STATUS_OK;
}

template <class T>
int query_ptr(void *handle, int64_t id, const T **result) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (result == nullptr) return DF_ERROR_NULL_RESULT;
    if (task->edit_marker != 1) return DF_STATUS_OK;
    if (id < DF_X || id > DF_PP_SCOEFF) return DF_ERROR_BAD_PARAM_ID;
    const void *p = nullptr;
    switch (id) {
    case DF_X: p = task->x; break;
    case DF_IC: p = task->ic; break;
    case DF_BC: p = task->bc; break;
    case DF_Y: p = slot(task->ytab, 0); break;
    default: p = slot(task->coeff_tab, 0); break;
    }
    *result = static_cast<const T *>(p);
    return DF_STATUS_OK;
}

template <class T>
int edit_idx_ptr(void *handle, int64_t id, int64_t index, const T *ptr) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (task->edit_marker != 1) return DF_STATUS_OK;
    if (id == DF_PP_SCOEFF) {
        if (index < 0 || index >= task->ny || index >= table_slots(task->coeff_tab))
            return DF_ERROR_BAD_INDEX;
        if (ptr == nullptr) return DF_ERROR_BAD_PP_COEFF;
        task->coeff_tab[index] = const_cast<T *>(ptr);
        return DF_STATUS_OK;
    }
    if (id == DF_Y) {
        if (task->yhint == DF_STORAGE_BY_COLUMNS) return DF_ERROR_BAD_YHINT;
        if (index < 0 || index >= task->ny || index >= table_slots(task->ytab))
            return DF_ERROR_BAD_INDEX;
        if (ptr == nullptr) return DF_ERROR_BAD_Y;
        task->ytab[index] = ptr;
        return DF_STATUS_OK;
    }
    return DF_ERROR_BAD_PARAM_ID;
}

template <class T>
int query_idx_ptr(void *handle, int64_t id, int64_t index, const T **result) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (result == nullptr) return DF_ERROR_NULL_RESULT;
    if (index < 0 || index > task->ny) return DF_ERROR_BAD_INDEX;
    if (task->edit_marker != 1) return DF_STATUS_OK;
    if (id == DF_PP_SCOEFF) {
        *result = static_cast<const T *>(slot(task->coeff_tab, index));
        return DF_STATUS_OK;
    }
    if (id == DF_Y) {
        if (task->yhint == DF_STORAGE_BY_COLUMNS) return DF_ERROR_BAD_YHINT;
        *result = static_cast<const T *>(slot(task->ytab, index));
        return DF_STATUS_OK;
    }
    return DF_ERROR_BAD_PARAM_ID;
}

template <class T>
int edit_pp_spline(void *handle, int64_t order, int64_t type, int64_t bc_type, const T *bc,
                   int64_t ic_type, const T *ic, T *coeff, int64_t coeff_hint) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (order < 0) return DF_ERROR_BAD_SPLINE_ORDER;
    if (type < 0) return DF_ERROR_BAD_SPLINE_TYPE;
    task->order = order;
    task->type = type;
    // Free-end, not-a-knot and the periodic type (64) need no boundary values.
    if (bc == nullptr && bc_type >= 3 && bc_type != 64) return DF_ERROR_BAD_BC;
    task->bc_type = bc_type;
    task->bc = bc;
    if (ic_type != 0 && ic == nullptr) return DF_ERROR_BAD_IC;
    if (ic_type == 0 && ic != nullptr) return DF_ERROR_BAD_IC_TYPE;
    task->ic_type = ic_type;
    task->ic = ic;
    if (coeff != nullptr) {
        if (task->ny == 0) return DF_ERROR_BAD_NY;
        int st = rebuild_coeff_tab(task, coeff, sizeof(T));
        if (st != DF_STATUS_OK) return st;
    }
    task->coeff_hint = coeff_hint;
    return DF_STATUS_OK;
}

}  // namespace
}  // namespace qon::fit

using namespace qon::fit;

extern "C" {

QON_API int qon_df_kernel_iEditVal(void *handle, int64_t id, int64_t v) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (task->edit_marker != 1) return DF_STATUS_OK;
    switch (id) {
    case DF_NX:
        if (v < 2) return DF_ERROR_BAD_NX;
        task->nx = v;
        return DF_STATUS_OK;
    case DF_XHINT:
        if (!xhint_ok(v)) return DF_ERROR_BAD_XHINT;
        task->xhint = v;
        return v == DF_PARTITION_NON_UNIFORM ? rebuild_bins(task) : DF_STATUS_OK;
    case DF_NY:
        if (v < 1) return DF_ERROR_BAD_NY;
        task->ny = v;
        return DF_STATUS_OK;
    case DF_YHINT:
        if (!storage_hint_ok(v)) return DF_ERROR_BAD_YHINT;
        task->yhint = v;
        return DF_STATUS_OK;
    case DF_SPLINE_ORDER:
        if (v < 0) return DF_ERROR_BAD_SPLINE_ORDER;
        task->order = v;
        return DF_STATUS_OK;
    case DF_SPLINE_TYPE:
        if (!spline_type_ok(v)) return DF_ERROR_BAD_SPLINE_TYPE;
        task->type = v;
        return DF_STATUS_OK;
    case DF_IC_TYPE:
        if (!ic_type_ok(v)) return DF_ERROR_BAD_IC_TYPE;
        task->ic_type = v;
        return DF_STATUS_OK;
    case DF_BC_TYPE:
        if (v < 0) return DF_ERROR_BAD_BC_TYPE;
        task->bc_type = v;
        return DF_STATUS_OK;
    case DF_COEFF_HINT:
        if (!storage_hint_ok(v)) return DF_ERROR_BAD_COEFF_HINT;
        task->coeff_hint = v;
        return DF_STATUS_OK;
    case DF_PARAM_23:
        if (static_cast<uint64_t>(v) > 1) return DF_ERROR_BAD_PARAM_23;
        task->param23 = static_cast<uint32_t>(v);
        return DF_STATUS_OK;
    default:
        return DF_ERROR_BAD_PARAM_ID;
    }
}

QON_API int qon_df_kernel_iQueryVal(void *handle, int64_t id, void *result) {
    Task *task = as_task(handle);
    if (task == nullptr) return DF_ERROR_NULL_TASK;
    if (result == nullptr) return DF_ERROR_NULL_RESULT;
    if (task->edit_marker != 1) return DF_STATUS_OK;
    int64_t v = 0;
    switch (id) {
    case DF_NX: v = task->nx; break;
    case DF_XHINT: v = task->xhint; break;
    case DF_NY: v = task->ny; break;
    case DF_YHINT: v = task->yhint; break;
    case DF_SPLINE_ORDER: v = task->order; break;
    case DF_SPLINE_TYPE: v = task->type; break;
    case DF_IC_TYPE: v = task->ic_type; break;
    case DF_BC_TYPE: v = task->bc_type; break;
    case DF_COEFF_HINT: v = task->coeff_hint; break;
    case DF_PARAM_23: v = static_cast<int32_t>(task->param23); break;
    default: return DF_ERROR_BAD_PARAM_ID;
    }
    if (task->intwidth == 0)
        *static_cast<int32_t *>(result) = static_cast<int32_t>(v);
    else
        *static_cast<int64_t *>(result) = v;
    return DF_STATUS_OK;
}

// The pointer operations in both precisions: X(letter, element type).
#define QON_DF_PTR_OPS(P, T)                                                                   \
    QON_API int qon_df_kernel_##P##EditPtr(void *task, int64_t id, const T *ptr) {             \
        return edit_ptr(task, id, ptr);                                                        \
    }                                                                                          \
    QON_API int qon_df_kernel_##P##QueryPtr(void *task, int64_t id, const T **result) {        \
        return query_ptr(task, id, result);                                                    \
    }                                                                                          \
    QON_API int qon_df_kernel_##P##EditIdxPtr(void *task, int64_t id, int64_t index,           \
                                              const T *ptr) {                                  \
        return edit_idx_ptr(task, id, index, ptr);                                             \
    }                                                                                          \
    QON_API int qon_df_kernel_##P##QueryIdxPtr(void *task, int64_t id, int64_t index,          \
                                               const T **result) {                             \
        return query_idx_ptr(task, id, index, result);                                         \
    }                                                                                          \
    QON_API int qon_df_kernel_##P##EditPPSpline1D(void *task, int64_t order, int64_t type,     \
                                                  int64_t bc_type, const T *bc,                \
                                                  int64_t ic_type, const T *ic, T *coeff,      \
                                                  int64_t coeff_hint) {                        \
        return edit_pp_spline(task, order, type, bc_type, bc, ic_type, ic, coeff, coeff_hint); \
    }

QON_DF_PTR_OPS(s, float)
QON_DF_PTR_OPS(d, double)

}  // extern "C"
