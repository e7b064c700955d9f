// Summary-statistics tasks: constructor, the generic editors and the destructor. One table maps
// each parameter id to its place in the record, its class (integer or floating-point array) and
// the status reported for a null pointer; the editors and the grouped editors all go through it.
#include "stats/task.h"

#include <qon/qon_serv.h>

#include <array>

namespace ss {
namespace {

constexpr int kMaxId = 79;

#define SLOT(member, is_int, code) ParamSlot{static_cast<uint16_t>(offsetof(rok_ss_task, member)), is_int, code}

constexpr std::array<ParamSlot, kMaxId + 1> make_table() {
    std::array<ParamSlot, kMaxId + 1> t{};
    t[1] = SLOT(p, true, -4001);
    t[2] = SLOT(n, true, -4002);
    t[3] = SLOT(x, false, -4032);
    t[4] = SLOT(xstorage, true, -4044);
    t[5] = SLOT(indices, true, -4004);
    t[6] = SLOT(weights, false, -4005);
    for (int k = 0; k < 7; ++k) {
        t[7 + k] = ParamSlot{static_cast<uint16_t>(offsetof(rok_ss_task, moments) + k * sizeof(void *)), false,
                             -4006 - k};
        t[67 + k] = ParamSlot{static_cast<uint16_t>(offsetof(rok_ss_task, sums) + k * sizeof(void *)), false,
                              k == 0 ? -4006 : -4074 - k};
    }
    t[14] = SLOT(kurtosis, false, -4013);
    t[15] = SLOT(skewness, false, -4014);
    t[16] = SLOT(min, false, -4015);
    t[17] = SLOT(max, false, -4016);
    t[18] = SLOT(variation, false, -4017);
    t[19] = SLOT(cov, false, -4018);
    t[20] = SLOT(cov_storage, true, -4044);
    t[21] = SLOT(cor, false, -4019);
    t[22] = SLOT(cor_storage, true, -4044);
    t[23] = SLOT(accum_weights, false, -4020);
    t[24] = SLOT(quant_norders, true, -4022);
    t[25] = SLOT(quant_orders, false, -4021);
    t[26] = SLOT(quants, false, -4023);
    t[27] = SLOT(order_stats, false, -4024);
    // Pooled covariance, record order 28, 32, 33, 35, 34, 30, 31, 29.
    t[28] = SLOT(pooled[0], true, -4038);
    t[32] = SLOT(pooled[1], true, -4038);
    t[33] = SLOT(pooled[2], false, -4037);
    t[35] = SLOT(pooled[3], false, -4036);
    t[34] = SLOT(pooled[4], true, -4044);
    t[30] = SLOT(pooled[5], false, -4035);
    t[31] = SLOT(pooled[6], false, -4034);
    t[29] = SLOT(pooled[7], true, -4044);
    t[36] = SLOT(robust[4], true, -4044);
    t[37] = SLOT(robust[0], true, -4043);
    t[38] = SLOT(robust[1], false, -4042);
    t[39] = SLOT(robust[2], false, -4028);
    t[40] = SLOT(robust[3], false, -4027);
    t[41] = SLOT(outliers[0], true, -4040);
    t[42] = SLOT(outliers[1], false, -4039);
    t[43] = SLOT(outliers[2], false, -4041);
    t[44] = SLOT(order_stats_storage, true, -4044);
    t[45] = SLOT(partial[0], true, -4045);
    t[46] = SLOT(partial[1], false, -4046);
    t[47] = SLOT(partial[2], true, -4044);
    t[48] = SLOT(partial[3], false, -4047);
    t[49] = SLOT(partial[4], true, -4044);
    // Missing values, record order 50, 51, 52, 53, 58, 59, 54, 55, 56, 57.
    t[50] = SLOT(missing[0], true, -4049);
    t[51] = SLOT(missing[1], false, -4048);
    t[52] = SLOT(missing[2], true, -4052);
    t[53] = SLOT(missing[3], false, -4053);
    t[58] = SLOT(missing[4], true, -4061);
    t[59] = SLOT(missing[5], false, -4062);
    t[54] = SLOT(missing[6], true, -4055);
    t[55] = SLOT(missing[7], false, -4054);
    t[56] = SLOT(missing[8], true, -4056);
    t[57] = SLOT(missing[9], false, -4057);
    t[60] = SLOT(param_cor, false, -4071);
    t[61] = SLOT(param_cor_storage, true, -4044);
    t[62] = SLOT(squant_nparams, true, -4066);
    t[63] = SLOT(squant_params, false, -4065);
    t[64] = SLOT(squant_norders, true, -4069);
    t[65] = SLOT(squant_orders, false, -4068);
    t[66] = SLOT(squants, false, -4070);
    t[74] = SLOT(cp, false, -4081);
    t[75] = SLOT(cp_storage, true, -4044);
    t[76] = SLOT(mdad, false, -4082);
    t[77] = SLOT(mnad, false, -4083);
    t[78] = SLOT(sorted, false, -4084);
    t[79] = SLOT(sorted_storage, true, -4044);
    return t;
}

#undef SLOT

constexpr auto kTable = make_table();

template <class T>
int new_task(rok_ss_task **task, const void *p, const void *n, const void *xstorage, const T *x,
             const T *weights, const void *indices, int intwidth) {
    if (task == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    rok_ss_task probe{};
    probe.intwidth = static_cast<uint32_t>(intwidth);
    if (p == nullptr || read_int(&probe, p) < 1) return ROK_SS_ERROR_BAD_DIMEN;
    if (x != nullptr) {
        if (xstorage == nullptr) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
        int64_t s = read_int(&probe, xstorage);
        if (s != kStorageRows && s != kStorageCols) return ROK_SS_ERROR_STORAGE_NOT_SUPPORTED;
        if (n == nullptr || read_int(&probe, n) < 1) return ROK_SS_ERROR_BAD_OBSERV_N;
    }
    auto *t = static_cast<rok_ss_task *>(qon_serv_allocate(sizeof(rok_ss_task), 128));
    if (t == nullptr) {
        *task = nullptr;
        return ROK_SS_ERROR_MEMORY;
    }
    *t = rok_ss_task{};
    t->intwidth = probe.intwidth;
    t->kind = 2;
    t->precision = sizeof(T) == sizeof(double) ? 1 : 0;
    t->p = const_cast<void *>(p);
    t->n = const_cast<void *>(n);
    t->indices = const_cast<void *>(indices);
    t->x = const_cast<T *>(x);
    t->weights = const_cast<T *>(weights);
    t->xstorage = const_cast<void *>(xstorage);
    *task = t;
    return 0;
}

}  // namespace

const ParamSlot &param_slot(int id) {
    static constexpr ParamSlot none{0, false, ROK_SS_ERROR_BAD_PARAM_ID};
    return id >= 1 && id <= kMaxId ? kTable[static_cast<size_t>(id)] : none;
}

int edit(rok_ss_task *t, int id, const void *address, bool want_int) {
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    const int lo = want_int ? 1 : 3, hi = want_int ? 79 : 78;
    if (id < lo || id > hi) return ROK_SS_ERROR_BAD_PARAM_ID;
    const ParamSlot &s = param_slot(id);
    if (s.is_int != want_int) return ROK_SS_ERROR_BAD_PARAM_ID;
    if (address == nullptr) return s.null_code;
    field(t, s) = const_cast<void *>(address);
    return 0;
}

int edit_group(rok_ss_task *t, const int *ids, const void *const *args, int count) {
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    for (int k = 0; k < count; ++k)
        if (args[k] != nullptr) field(t, param_slot(ids[k])) = const_cast<void *>(args[k]);
    return 0;
}

}  // namespace ss

extern "C" {

QON_API int rokdSSNewTask(rok_ss_task **task, const void *p, const void *n, const void *xstorage, const double *x,
                          const double *weights, const void *indices, int intwidth) {
    return ss::new_task(task, p, n, xstorage, x, weights, indices, intwidth);
}
QON_API int roksSSNewTask(rok_ss_task **task, const void *p, const void *n, const void *xstorage, const float *x,
                          const float *weights, const void *indices, int intwidth) {
    return ss::new_task(task, p, n, xstorage, x, weights, indices, intwidth);
}
QON_API int rokdSSEditTask(rok_ss_task *task, int id, const double *address) { return ss::edit(task, id, address, false); }
QON_API int roksSSEditTask(rok_ss_task *task, int id, const float *address) { return ss::edit(task, id, address, false); }
QON_API int rokiSSEditTask(rok_ss_task *task, int id, const void *address) { return ss::edit(task, id, address, true); }

QON_API int rokSSDeleteTask(rok_ss_task **task) {
    if (task == nullptr || *task == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    rok_ss_task *t = *task;
    if (t->owned != nullptr) qon_serv_deallocate(t->owned);
    t->owned = nullptr;
    if (t->nhooks > 0 && t->release_hook != nullptr) t->release_hook(t);
    qon_serv_deallocate(t);
    *task = nullptr;
    return 0;
}

}  // extern "C"
