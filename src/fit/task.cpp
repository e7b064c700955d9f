// Creation and deletion of data-fitting tasks, and the pointer tables a task owns. The record
// is zeroed before any field is set; the y table gives one pointer per function (or a single
// pointer for interleaved or separately stored values), the coefficient table one pointer per
// function block, order*nx or order*(nx-1) elements apart.
#include <qon/qon_serv.h>

#include <cstring>

#include "fit/task.hpp"

namespace qon::fit {
namespace {

// Pointer tables carry their slot count in a 128-byte header ahead of the slots, so that a
// table outlives edits of ny safely: slots past the table read as null and are never written.
constexpr size_t kTableHeader = 128;

// A zeroed table of `slots` pointers, or null when it cannot be had.
void **new_table(int64_t slots) {
    if (slots < 0 || slots > (int64_t{1} << 40)) return nullptr;
    const size_t bytes = static_cast<size_t>(slots) * sizeof(void *);
    auto *block = static_cast<char *>(qon_serv_allocate(kTableHeader + bytes, 128));
    if (block == nullptr) return nullptr;
    std::memset(block + kTableHeader, 0, bytes);
    *reinterpret_cast<int64_t *>(block) = slots;
    return reinterpret_cast<void **>(block + kTableHeader);
}

void fill_table(void **tab, int64_t count, const void *base, int64_t stride, int elem_size) {
    auto *p = static_cast<const char *>(base);
    const int64_t step = stride * elem_size;
    for (int64_t i = 0; i < count; ++i) tab[i] = const_cast<char *>(p + i * step);
}

template <class T>
int new_task(void **handle, int64_t nx, const T *x, int64_t xhint, int64_t ny, const T *y,
             int64_t yhint, uint32_t intwidth) {
    if (nx < 2) return DF_ERROR_BAD_NX;
    if (x == nullptr) return DF_ERROR_BAD_X;
    if (!xhint_ok(xhint)) return DF_ERROR_BAD_XHINT;
    if (ny == 0 && y != nullptr) return DF_ERROR_BAD_NY;
    if (ny != 0 && y == nullptr) return DF_ERROR_BAD_Y;
    if (!storage_hint_ok(yhint)) return DF_ERROR_BAD_YHINT;
    if (handle == nullptr) return DF_ERROR_NULL_TASK;

    auto *task = static_cast<Task *>(qon_serv_allocate(sizeof(Task), 128));
    *handle = task;
    if (task == nullptr) return DF_ERROR_MEM_FAILURE;
    std::memset(static_cast<void *>(task), 0, sizeof(Task));
    task->nx = nx;
    task->x = x;
    task->xhint = xhint;
    if (y != nullptr) {
        int st = rebuild_ytab(task, y, ny, yhint, sizeof(T));
        if (st != DF_STATUS_OK) return st;
    }
    task->ny = ny;
    task->yhint = yhint;
    task->intwidth = intwidth;
    task->kind = kTaskKind;
    task->precision = sizeof(T) == sizeof(double) ? 1 : 0;
    task->edit_marker = 1;
    if (xhint == DF_PARTITION_UNIFORM) return DF_STATUS_OK;
    return rebuild_bins(task);
}

}  // namespace

void free_table(const void *tab) {
    if (tab != nullptr)
        qon_serv_deallocate(const_cast<char *>(static_cast<const char *>(tab)) - kTableHeader);
}

int64_t table_slots(const void *tab) {
    if (tab == nullptr) return 0;
    return *reinterpret_cast<const int64_t *>(static_cast<const char *>(tab) - kTableHeader);
}

int rebuild_ytab(Task *task, const void *y, int64_t ny, int64_t yhint, int elem_size) {
    free_table(task->ytab);
    task->ytab = nullptr;
    const bool one_slot = yhint == DF_STORAGE_BY_COLUMNS;
    const int64_t slots = one_slot ? 1 : static_cast<int32_t>(static_cast<uint32_t>(ny));
    void **tab = new_table(slots);
    if (tab == nullptr) return DF_ERROR_MEM_FAILURE;
    if (yhint == DF_HINT_NONE || yhint == DF_STORAGE_BY_ROWS)
        fill_table(tab, slots, y, task->nx, elem_size);
    else if (slots > 0)
        tab[0] = const_cast<void *>(y);
    task->ytab = const_cast<const void **>(tab);
    return DF_STATUS_OK;
}

int rebuild_coeff_tab(Task *task, void *coeff, int elem_size) {
    free_table(task->coeff_tab);
    task->coeff_tab = nullptr;
    void **tab = new_table(task->ny);
    if (tab == nullptr) return DF_ERROR_MEM_FAILURE;
    if (static_cast<int8_t>(task->coeff_hint) < 0) {
        if (task->ny > 0) tab[0] = coeff;
    } else {
        const int64_t stride = task->type == 1 ? task->order * task->nx
                                               : task->order * task->nx - task->order;
        fill_table(tab, task->ny, coeff, stride, elem_size);
    }
    task->coeff_tab = tab;
    return DF_STATUS_OK;
}

}  // namespace qon::fit

using namespace qon::fit;

extern "C" {

QON_API int qon_df_kernel_dNewTask1D(void **task, int64_t nx, const double *x, int64_t xhint,
                                     int64_t ny, const double *y, int64_t yhint,
                                     uint32_t intwidth) {
    return new_task(task, nx, x, xhint, ny, y, yhint, intwidth);
}

QON_API int qon_df_kernel_sNewTask1D(void **task, int64_t nx, const float *x, int64_t xhint,
                                     int64_t ny, const float *y, int64_t yhint,
                                     uint32_t intwidth) {
    return new_task(task, nx, x, xhint, ny, y, yhint, intwidth);
}

QON_API int qon_df_kernel_DeleteTask(void **handle) {
    if (handle == nullptr || *handle == nullptr) return DF_ERROR_NULL_TASK;
    auto *task = static_cast<Task *>(*handle);
    free_table(task->ytab);
    free_table(task->coeff_tab);
    qon_serv_deallocate(task->bins);
    qon_serv_deallocate(task);
    *handle = nullptr;
    return DF_STATUS_OK;
}

}  // extern "C"
