// The data-fitting task record and the helpers that the task operations share. The record is
// laid out field by field as the core library's wrapper layer expects it; the kernels reach
// it only through this header. Tables owned by the record (function-value pointers,
// coefficient pointers, bin table) are 128-byte aligned blocks from the core allocator.
#pragma once

#include <qon/qon_df.h>

#include <cstdint>

namespace qon::fit {

struct Task {
    uint32_t intwidth;  // 0: the caller's integers are 32-bit; otherwise 64-bit
    uint8_t kind;       // 4 for a data-fitting task
    uint32_t precision; // 1 double, 0 single
    uint32_t edit_marker;
    int64_t nx;
    const void *x;
    int64_t xhint;
    int64_t ny;
    const void **ytab;
    int64_t yhint;
    int64_t order;
    int64_t type;
    int64_t ic_type;
    const void *ic;
    int64_t bc_type;
    const void *bc;
    void **coeff_tab;
    int64_t coeff_hint;
    uint32_t param23;
    int64_t nbins;
    int64_t *bins;
    union {
        double d;
        float s;
    } bin_scale;
};

inline constexpr uint8_t kTaskKind = 4;

// A storage hint is one of 0x00, 0x10, 0x20, 0x80: rotated right by four bits it must be
// 0, 1, 2 or 8, which also refuses every value with one of its low four bits set.
inline bool storage_hint_ok(int64_t hint) {
    uint64_t u = static_cast<uint64_t>(hint);
    uint64_t r = (u >> 4) | (u << 60);
    return r == 0 || r == 1 || r == 2 || r == 8;
}

inline bool xhint_ok(int64_t hint) { return hint >= 0 && hint <= 4 && hint != 3; }

// Pointer tables: freeing one (null ignored) and its slot count (0 for null).
void free_table(const void *tab);
int64_t table_slots(const void *tab);

// Frees the old y table and builds a new one for ny functions stored as yhint says; `y`
// non-null.
int rebuild_ytab(Task *task, const void *y, int64_t ny, int64_t yhint, int elem_size);
// Frees the old coefficient table and builds a new one from the task's order, type, nx, ny and
// coefficient hint; `coeff` non-null, ny checked by the caller.
int rebuild_coeff_tab(Task *task, void *coeff, int elem_size);
// Frees the old bin table and builds the bin table of the task's partition in its precision.
int rebuild_bins(Task *task);

// Bin count of a partition of nx knots: nx / 16 held within [16, 1024].
inline int64_t bin_count(int64_t nx) {
    int64_t b = nx / 16;
    if (b < 17) b = 16;
    if (b > 1024) b = 1024;
    return b;
}

// Builds the bin table of x[0..nx-1] into `bins` (2*nbins + 4 entries); returns the scale.
template <class T>
T build_bins(const T *x, int64_t nx, int64_t nbins, int64_t *bins);

template <class T>
inline const T *task_x(const Task *t) { return static_cast<const T *>(t->x); }

}  // namespace qon::fit
