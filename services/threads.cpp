// Threads of the core library: an OpenMP team runs one task per thread index. The kernel
// library never creates threads itself; it only calls these through the service table.
#include <qon/qon_serv.h>

#include <omp.h>

#include <cstdlib>
#include <cstring>
#include <thread>

extern "C" {

QON_API int qon_serv_get_max_threads(void) {
    if (const char *env = std::getenv("QON_NUM_THREADS")) {
        int n = std::atoi(env);
        if (n > 0) return n;
    }
    unsigned hw = std::thread::hardware_concurrency();
    return hw == 0 ? 1 : static_cast<int>(hw);
}

QON_API void qon_serv_parallel_for(int nthreads, qon_serv_task_fn fn, void *context) {
    if (nthreads <= 0 || fn == nullptr) return;
    if (nthreads == 1) {
        fn(0, 1, context);
        return;
    }
#pragma omp parallel for num_threads(nthreads) schedule(static, 1)
    for (int t = 0; t < nthreads; ++t) fn(t, nthreads, context);
}

QON_API const qon_serv_services *qon_serv_get_services(void) {
    static const qon_serv_services services = {qon_serv_get_max_threads, qon_serv_parallel_for};
    return &services;
}

QON_API void *qon_serv_load_thread_fun(const char *name) {
    if (name == nullptr) return nullptr;
    if (std::strcmp(name, "qon_rok_serv_threader_for") == 0)
        return reinterpret_cast<void *>(&qon_serv_parallel_for);
    if (std::strcmp(name, "qon_rok_serv_threader_get_num_threads_limit") == 0)
        return reinterpret_cast<void *>(&qon_serv_get_max_threads);
    return nullptr;
}

}  // extern "C"
