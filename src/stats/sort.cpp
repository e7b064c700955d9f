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
    if (t->x == nullptr) return ROK_SS_ERROR_BAD_OBSERV_ADDR;
    if (r.obs.p < 1) return 0;
    r.x = static_cast<const T *>(t->x);
    r.stats = static_cast<T *>(t->sorted);
    r.stats_sv = out_storage == kStorageRows ? r.obs.n : 1;
    r.stats_so = out_storage == kStorageRows ? 1 : r.obs.p;
    return run_order_statistics<T>(t, r, services);
}

}  // namespace
}  // namespace ss

extern "C" {

QON_API int rokdSSSort(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services) {
    return ss::sort<double>(task, estimates, method, services);
}
QON_API int roksSSSort(rok_ss_task *task, uint64_t estimates, uint64_t method, const qon_serv_services *services) {
    return ss::sort<float>(task, estimates, method, services);
}

}  // extern "C"
