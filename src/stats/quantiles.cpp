// Quantiles and order statistics of every processed variable: validation, then the shared driver
// of order_stats.h. With order statistics the quantiles are read from each sorted run, without
// them each run is only partly ordered by selection; both give bit-identical quantiles.
#include <qon/qon_ss.h>

#include "stats/order_stats.h"

namespace ss {
namespace {

template <class T>
int quantiles(rok_ss_task *t, uint64_t estimates, uint64_t method, const qon_serv_services *services) {
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    qon::fpu::Guard fp(0);
    OrderRun<T> r;
    if (int status = read_observations(t, r.obs)) return status;
    const bool want_q = (estimates & ROK_SS_QUANTS) != 0, want_s = (estimates & ROK_SS_ORDER_STATS) != 0;
    if (want_q) {
        if (t->quants == nullptr) return ROK_SS_ERROR_BAD_QUANT_ADDR;
        if (t->quant_orders == nullptr) return ROK_SS_ERROR_BAD_QUANT_ORDER_ADDR;
        if (t->quant_norders == nullptr) return ROK_SS_ERROR_BAD_QUANT_ORDER;
        r.m = read_int(t, t->quant_norders);
        if (r.m < 0) return ROK_SS_ERROR_BAD_QUANT_ORDER;
        r.orders = static_cast<const T *>(t->quant_orders);
        auto bad = [](T q) { return q > T(1) || q < T(0); };
        int64_t j = 0;
        for (; j + 2 <= r.m; j += 2)
            if (bad(r.orders[j]) || bad(r.orders[j + 1])) return ROK_SS_ERROR_BAD_QUANT_ORDER;
        if (j < r.m && bad(r.orders[j])) return ROK_SS_ERROR_BAD_QUANT_ORDER;
        r.quants = static_cast<T *>(t->quants);
    }
    if (want_s) {
        if (t->order_stats == nullptr) return ROK_SS_ERROR_BAD_ORDER_STATS_ADDR;
        if (t->order_stats_storage == nullptr) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
        const int64_t s = read_int(t, t->order_stats_storage);
        if (!valid_storage(s)) return ROK_SS_ERROR_STORAGE_NOT_SUPPORTED;
        set_sorted_output(r, t->order_stats, s);
    }
    if (!(method & ROK_SS_METHOD_FAST)) return ROK_SS_ERROR_METHOD_NOT_SUPPORTED;
    if (!want_q && !want_s) return 0;
    return run_order_statistics<T>(t, r, services);
}

}  // namespace
}  // namespace ss

QON_SS_KERNEL_TWINS(SSQuantiles, quantiles)
