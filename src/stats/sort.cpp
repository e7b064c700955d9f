// Sorting of every processed variable's observations into the sorted-observations array, in its
// own storage, or in place over the observations. Each variable is copied to a run of keys,
// radix-sorted (quicksorted beyond 2^31 - 1 values) and written back in the output layout, by
// the shared driver of order_stats.h; a thread owns whole variables, so an in-place sort reads
// each variable completely before any of its elements is written.
#include <qon/qon_ss.h>

#include "stats/order_stats.h"

namespace ss {
namespace {

template <class T>
int sort(rok_ss_task *t, uint64_t, uint64_t method, const qon_serv_services *services) {
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    qon::fpu::Guard fp(0);
    if (t->sorted == nullptr) return ROK_SS_ERROR_BAD_SORTED_OBSERV_ADDR;
    if (t->sorted_storage == nullptr) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
    const int64_t out_storage = read_int(t, t->sorted_storage);
    if (t->sorted == t->x) {
        if (t->xstorage == nullptr || read_int(t, t->xstorage) != out_storage) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
        if (t->indices != nullptr) return ROK_SS_ERROR_INDICES_NOT_SUPPORTED;
    }
    if (t->xstorage == nullptr) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
    if (!valid_storage(read_int(t, t->xstorage)) || !valid_storage(out_storage))
        return ROK_SS_ERROR_STORAGE_NOT_SUPPORTED;
    if (!(method & ROK_SS_METHOD_RADIX)) return ROK_SS_ERROR_METHOD_NOT_SUPPORTED;
    OrderRun<T> r;
    if (int status = read_observations(t, r.obs)) return status;
    set_sorted_output<T>(r, t->sorted, out_storage);
    return run_order_statistics<T>(t, r, services);
}

}  // namespace
}  // namespace ss

QON_SS_KERNEL_TWINS(SSSort, sort)
