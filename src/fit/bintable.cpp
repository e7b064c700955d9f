// Bin table of a non-uniform partition. The range [x[0], x[nx-1]] is cut into B equal bins
// (B = nx/16 held within [16, 1024]); bin k stores the pair (lo_k, hi_k): lo_k the last knot
// that lies in an earlier bin (knot 0 for the first bins) and hi_k the first knot that lies in
// a later bin. Because the bin of a value, trunc((v - x[0]) * s), is monotone in v and is
// computed by the search exactly as here, a site of bin k lies strictly between x[lo_k] and
// x[hi_k], so the search only looks inside that range. One pass over the knots and one over
// the bins; a spare pair after the last holds a copy of it for sites whose bin is B.
#include <qon/qon_serv.h>

#include "fit/simd.hpp"
#include "fit/task.hpp"

namespace qon::fit {

template <class T>
T build_bins(const T *x, int64_t nx, int64_t nbins, int64_t *bins) {
    for (int64_t k = 0; k < 2 * nbins + 4; ++k) bins[k] = -1;
    const T x0 = x[0];
    const T scale = static_cast<T>(nbins) / (x[nx - 1] - x0);
    bins[0] = 0;
    for (int64_t i = 1; i < nx; ++i) {
        int64_t b = trunc_i64((x[i] - x0) * scale);
        // A partition that is not ascending (or holds non-numbers) must not write outside
        // the table: bins below 1 are skipped as bin 0 is, bins above B count as B.
        if (b <= 0) continue;
        if (b > nbins) b = nbins;
        if (bins[2 * (b - 1) + 1] == -1) bins[2 * (b - 1) + 1] = i;
        bins[2 * (b + 1)] = i;
    }
    bins[2 * (nbins - 1) + 1] = nx - 1;
    for (int64_t j = 1; j < nbins; ++j) {
        int64_t f = j, r = nbins - 1 - j;
        if (bins[2 * f] == -1) bins[2 * f] = bins[2 * (f - 1)];
        if (bins[2 * r + 1] == -1) bins[2 * r + 1] = bins[2 * (r + 1) + 1];
    }
    bins[2 * nbins] = bins[2 * (nbins - 1)];
    bins[2 * nbins + 1] = bins[2 * (nbins - 1) + 1];
    return scale;
}

template float build_bins<float>(const float *, int64_t, int64_t, int64_t *);
template double build_bins<double>(const double *, int64_t, int64_t, int64_t *);

int rebuild_bins(Task *task) {
    qon_serv_deallocate(task->bins);
    task->bins = nullptr;
    const int64_t nbins = bin_count(task->nx);
    task->nbins = nbins;
    auto *bins = static_cast<int64_t *>(
        qon_serv_allocate(static_cast<size_t>(nbins) * 16 + 32, 128));
    if (bins == nullptr) return DF_ERROR_MEM_FAILURE;
    if (task->precision == 1)
        task->bin_scale.d = build_bins(task_x<double>(task), task->nx, nbins, bins);
    else
        task->bin_scale.s = build_bins(task_x<float>(task), task->nx, nbins, bins);
    task->bins = bins;
    return DF_STATUS_OK;
}

}  // namespace qon::fit
