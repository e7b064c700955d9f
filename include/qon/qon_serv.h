/* Core services of libqon_core: what the kernel library asks of its host. Memory, process-wide
 * locks, environment, the message catalogue, exit, threads, and the BLAS bridge. Every kernel
 * of libqon_avx2 reaches the platform only through these names. */
#ifndef QON_SERV_H
#define QON_SERV_H

#include <stddef.h>
#include <stdint.h>
#include "qon_export.h"

QON_EXTERN_C_BEGIN

/* Process-wide locks of the lock service. Each guards one-time work of one kind. */
enum {
    QON_SERV_LOCK_ENV = 0,   /* reading the environment */
    QON_SERV_LOCK_TLS = 1,   /* allocating the vector-math thread-local slot */
    QON_SERV_LOCK_HEAP = 2,  /* creating the vector-math private heap */
    QON_SERV_LOCK_COUNT = 16 /* locks 3..15 are free for other one-time initialisations */
};

/* Allocates size bytes aligned to alignment (a power of two; 128 for anything vector code
 * touches). Returns NULL on failure. */
QON_API void *qon_serv_allocate(size_t size, int alignment);
/* Frees a block from qon_serv_allocate; NULL is ignored. */
QON_API void qon_serv_deallocate(void *ptr);
/* Copies count bytes to dest of capacity dest_size. Returns 0, or 22 (EINVAL) for a null
 * pointer and 34 (ERANGE) when count exceeds dest_size (dest is then zeroed). */
QON_API int qon_serv_memcpy_s(void *dest, size_t dest_size, const void *src, size_t count);
/* Testing aid: after `count` more successful allocations every allocation fails, until the
 * limit is lifted again with a negative count. */
QON_API void qon_serv_fail_allocations_after(long count);

/* Takes and releases lock number `lock` (0 .. QON_SERV_LOCK_COUNT-1); recursive. */
QON_API void qon_serv_lock(int lock);
QON_API void qon_serv_unlock(int lock);

/* Copies the value of environment variable `name` into buffer (at most size-1 characters and a
 * terminating zero). Returns the length of the whole value, or 0 when the variable is absent. */
QON_API int qon_serv_getenv(const char *name, char *buffer, int size);

/* Prints catalogue message `msg` with nargs arguments on `channel` (1: standard error).
 * Arguments follow the message's own kinds: function names as const char *, element indices
 * as int, values as double. Returns the number of characters printed, or -1. */
QON_API int qon_serv_print(int channel, int msg, int nargs, ...);
/* Ends the process with exit code `code`; does not return. */
QON_API void qon_serv_exit(int code);

/* Threads. A task is called once per thread index 0 .. nthreads-1, concurrently. */
typedef void (*qon_serv_task_fn)(int thread, int nthreads, void *context);
/* Largest useful thread count: QON_NUM_THREADS when set, else the processor count. */
QON_API int qon_serv_get_max_threads(void);
/* Runs fn for thread indices 0 .. nthreads-1 and returns when all have finished. */
QON_API void qon_serv_parallel_for(int nthreads, qon_serv_task_fn fn, void *context);

/* The service table handed to the summary-statistics kernels as their last argument. */
typedef struct qon_serv_services {
    int (*get_max_threads)(void);
    void (*parallel_for)(int nthreads, qon_serv_task_fn fn, void *context);
} qon_serv_services;
/* The default service table (the two functions above). */
QON_API const qon_serv_services *qon_serv_get_services(void);

/* Looks up a core service by name: "qon_rok_serv_threader_for" gives qon_serv_parallel_for,
 * "qon_rok_serv_threader_get_num_threads_limit" gives qon_serv_get_max_threads. NULL otherwise. */
QON_API void *qon_serv_load_thread_fun(const char *name);

QON_EXTERN_C_END

#endif
