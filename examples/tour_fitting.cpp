// Data fitting: a task over a non-uniform partition and the cells of a few sites. Cell k holds
// the sites in [x[k-1], x[k]); cell 0 lies below the partition, cell nx above it, and the
// right end belongs to the last interior cell.
#include <qon/qon_df.h>

#include <cstdint>
#include <cstdio>

#include "tour.h"

void tour_fitting() {
    const double x[6] = {0.0, 0.5, 0.75, 2.0, 4.5, 10.0};
    void *task = nullptr;
    if (qon_df_kernel_dNewTask1D(&task, 6, x, DF_PARTITION_NON_UNIFORM, 0, nullptr, 0, 0) != 0) {
        std::printf("data fitting: task creation failed\n");
        return;
    }
    const double sites[7] = {-1.0, 0.0, 0.6, 2.0, 3.3, 10.0, 12.0};
    int32_t cells[7] = {};
    const int st = qon_df_kernel_dDFSearch1D(task, 7, sites, 0, nullptr, cells, nullptr, nullptr,
                                             nullptr);
    std::printf("data fitting: partition 0 0.5 0.75 2 4.5 10 (nx = 6), search status %d\n", st);
    for (int i = 0; i < 7; ++i) std::printf("  site %5.2f -> cell %d\n", sites[i], cells[i]);
    qon_df_kernel_DeleteTask(&task);
}
