// The BLAS bridge of the core library: every routine in both precisions and both forms (the
// calling thread's and the worker's) against straightforward loops, including the upper
// triangle that syrk and syr must leave unread below the diagonal.
#include <gtest/gtest.h>
#include <qon/qon_blas.h>

#include <cmath>
#include <vector>

namespace {

template <class T>
struct Forms;
template <>
struct Forms<double> {
    static constexpr decltype(&qon_blas_dsyrk) syrk[2] = {qon_blas_dsyrk, qon_blas_xdsyrk};
    static constexpr decltype(&qon_blas_dsyr) syr[2] = {qon_blas_dsyr, qon_blas_xdsyr};
    static constexpr decltype(&qon_blas_dgemm) gemm[2] = {qon_blas_dgemm, qon_blas_xdgemm};
};
template <>
struct Forms<float> {
    static constexpr decltype(&qon_blas_ssyrk) syrk[2] = {qon_blas_ssyrk, qon_blas_xssyrk};
    static constexpr decltype(&qon_blas_ssyr) syr[2] = {qon_blas_ssyr, qon_blas_xssyr};
    static constexpr decltype(&qon_blas_sgemm) gemm[2] = {qon_blas_sgemm, qon_blas_xsgemm};
};

template <class T>
void check_forms() {
    const int n = 7, k = 5;
    const T tol = std::is_same_v<T, float> ? T(1e-5) : T(1e-13);
    std::vector<T> a(n * k), b(k * n), x(n);
    for (int i = 0; i < n * k; ++i) a[i] = static_cast<T>(std::sin(1.0 + i));
    for (int i = 0; i < k * n; ++i) b[i] = static_cast<T>(std::cos(2.0 + i));
    for (int i = 0; i < n; ++i) x[i] = static_cast<T>(0.5 * i - 1);
    for (int form = 0; form < 2; ++form) {
        // syrk, row-major upper, no transposition: C = 2 A A^T + C, A n x k.
        std::vector<T> c(n * n, T(1));
        Forms<T>::syrk[form](QON_BLAS_ROW_MAJOR, QON_BLAS_UPPER, QON_BLAS_NO_TRANS, n, k, T(2), a.data(), k, T(1),
                             c.data(), n);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j) {
                double want = 1;
                if (j >= i)
                    for (int l = 0; l < k; ++l) want += 2.0 * a[i * k + l] * a[j * k + l];
                EXPECT_NEAR(c[i * n + j], want, tol * 10) << form << " syrk " << i << " " << j;
            }
        // syr: A = -0.5 x x^T + A on the upper triangle.
        std::vector<T> m(n * n, T(3));
        Forms<T>::syr[form](QON_BLAS_ROW_MAJOR, QON_BLAS_UPPER, n, T(-0.5), x.data(), 1, m.data(), n);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                EXPECT_NEAR(m[i * n + j], j >= i ? 3 - 0.5 * x[i] * x[j] : 3.0, tol * 10) << form << " syr";
        // gemm: C = A^T B^T with A n x k, B k x n stored row-major, so op(A) k x n and op(B) n x k.
        std::vector<T> g(k * k, T(0));
        Forms<T>::gemm[form](QON_BLAS_ROW_MAJOR, QON_BLAS_TRANS, QON_BLAS_TRANS, k, k, n, T(1), a.data(), k, b.data(),
                             n, T(0), g.data(), k);
        for (int i = 0; i < k; ++i)
            for (int j = 0; j < k; ++j) {
                double want = 0;
                for (int l = 0; l < n; ++l) want += static_cast<double>(a[l * k + i]) * b[j * n + l];
                EXPECT_NEAR(g[i * k + j], want, tol * 10) << form << " gemm";
            }
    }
}

TEST(BlasBridge, EveryFormAgainstLoops) {
    check_forms<double>();
    check_forms<float>();
}

}  // namespace
