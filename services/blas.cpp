// The BLAS bridge: forwards the kernel library's dense linear algebra to OpenBLAS. The plain
// forms let the BLAS use the core's thread budget; the x forms, called inside a worker of a
// parallel-for, make it run on the calling thread. One template per routine serves both
// precisions and both forms.
#include <qon/qon_blas.h>
#include <qon/qon_serv.h>

#include <cblas.h>

#include <atomic>
#include <mutex>

namespace {

std::mutex thread_setting_lock;
std::atomic<int> thread_setting{0};  // 0: not set yet, otherwise the count last given to the BLAS

// Sets the BLAS thread count for the form about to run: one thread for the x forms.
void use_threads(bool worker) {
    int want = worker ? 1 : qon_serv_get_max_threads();
    if (thread_setting.load(std::memory_order_acquire) == want) return;
    std::lock_guard<std::mutex> guard(thread_setting_lock);
    if (thread_setting.load(std::memory_order_relaxed) != want) {
        openblas_set_num_threads(want);
        thread_setting.store(want, std::memory_order_release);
    }
}

template <class T>
struct Cblas;
template <>
struct Cblas<double> {
    static constexpr auto syrk = cblas_dsyrk;
    static constexpr auto syr = cblas_dsyr;
    static constexpr auto gemm = cblas_dgemm;
};
template <>
struct Cblas<float> {
    static constexpr auto syrk = cblas_ssyrk;
    static constexpr auto syr = cblas_ssyr;
    static constexpr auto gemm = cblas_sgemm;
};

template <class T>
void syrk(bool worker, int layout, int uplo, int trans, int64_t n, int64_t k, T alpha, const T *a, int64_t lda, T beta,
          T *c, int64_t ldc) {
    if (n <= 0) return;
    use_threads(worker);
    Cblas<T>::syrk(static_cast<CBLAS_ORDER>(layout), static_cast<CBLAS_UPLO>(uplo), static_cast<CBLAS_TRANSPOSE>(trans),
                   static_cast<blasint>(n), static_cast<blasint>(k), alpha, a, static_cast<blasint>(lda), beta, c,
                   static_cast<blasint>(ldc));
}

template <class T>
void syr(bool worker, int layout, int uplo, int64_t n, T alpha, const T *x, int64_t incx, T *a, int64_t lda) {
    if (n <= 0) return;
    use_threads(worker);
    Cblas<T>::syr(static_cast<CBLAS_ORDER>(layout), static_cast<CBLAS_UPLO>(uplo), static_cast<blasint>(n), alpha, x,
                  static_cast<blasint>(incx), a, static_cast<blasint>(lda));
}

template <class T>
void gemm(bool worker, int layout, int ta, int tb, int64_t m, int64_t n, int64_t k, T alpha, const T *a, int64_t lda,
          const T *b, int64_t ldb, T beta, T *c, int64_t ldc) {
    if (m <= 0 || n <= 0) return;
    use_threads(worker);
    Cblas<T>::gemm(static_cast<CBLAS_ORDER>(layout), static_cast<CBLAS_TRANSPOSE>(ta), static_cast<CBLAS_TRANSPOSE>(tb),
                   static_cast<blasint>(m), static_cast<blasint>(n), static_cast<blasint>(k), alpha, a,
                   static_cast<blasint>(lda), b, static_cast<blasint>(ldb), beta, c, static_cast<blasint>(ldc));
}

}  // namespace

#define QON_BLAS_FORMS(t, T, x, worker)                                                                        \
    QON_API void qon_blas_##x##t##syrk(int layout, int uplo, int trans, int64_t n, int64_t k, T alpha, const T *a, \
                                       int64_t lda, T beta, T *c, int64_t ldc) {                              \
        syrk<T>(worker, layout, uplo, trans, n, k, alpha, a, lda, beta, c, ldc);                               \
    }                                                                                                          \
    QON_API void qon_blas_##x##t##syr(int layout, int uplo, int64_t n, T alpha, const T *xv, int64_t incx, T *a, \
                                      int64_t lda) {                                                           \
        syr<T>(worker, layout, uplo, n, alpha, xv, incx, a, lda);                                              \
    }                                                                                                          \
    QON_API void qon_blas_##x##t##gemm(int layout, int ta, int tb, int64_t m, int64_t n, int64_t k, T alpha,    \
                                       const T *a, int64_t lda, const T *b, int64_t ldb, T beta, T *c,         \
                                       int64_t ldc) {                                                          \
        gemm<T>(worker, layout, ta, tb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);                         \
    }

extern "C" {
QON_BLAS_FORMS(d, double, , false)
QON_BLAS_FORMS(d, double, x, true)
QON_BLAS_FORMS(s, float, , false)
QON_BLAS_FORMS(s, float, x, true)
}
