// Gaussian variates a + sigma N(0, 1) by three methods, in blocks of at most 1024 values:
//   0 Box-Muller:  rho = sqrt(-2 ln u1), one variate rho sin(2 pi u2) per pair of uniforms;
//   1 Box-Muller2: both rho sin(2 pi u2) and rho cos(2 pi u2); when the caller's count is odd
//                  the pair of the last sine is kept in chunk 2 of the stream, and the next call
//                  starts with its cosine;
//   2 inverse distribution function: sqrt(2) erfinv(u) for u uniform on [-1, 1).
// The generator's call-back makes the vector-math special values finite: ln 0 becomes the
// logarithm of the smallest subnormal (a u1 of 0 gives rho = 38.6 in double), erfinv(+-1) the
// value of erfinv just inside +-1.
#include "dist/frame.hpp"

#include <qon/qon_serv.h>

namespace qon::dist {
namespace {

constexpr std::uint32_t pending_chunk_id = 2;
constexpr double nothing_pending = -1.0;

template <class T>
int gaussian_callback(PaxErrorContext *ctx) {
    const double inside_one = Precision<T>::erfinv_below_one;
    double value;
    if (ctx->code == PAX_STATUS_ERRDOM) {
        value = ctx->arg1 < 0 ? -inside_one : inside_one;
    } else if (ctx->code == PAX_STATUS_SING) {
        value = ctx->arg1 == 0 ? Precision<T>::ln_min_subnormal : ctx->arg1 < 0 ? -inside_one : inside_one;
    } else {
        return 0;
    }
    ctx->res1 = ctx->res2 = value;
    return 0;
}

// rho(i) = sqrt(-2 ln u(i)) in place.
template <class T>
void radii(int m, T *u) {
    using P = Precision<T>;
    without_ftz([&] { P::ln(m, u, u); });
    for (int i = 0; i < m; ++i) u[i] *= T(-2);
    without_ftz([&] { P::sqrt(m, u, u); });
}

template <class T>
int32_t box_muller(RokStream *stream, int32_t n, T *r, T a, T sigma) {
    alignas(64) T pairs[2 * block];
    alignas(64) T u[block];
    alignas(64) T theta[block];
    for (int done = 0; done < n;) {
        const int m = std::min(n - done, block);
        int32_t status = Precision<T>::uniform(stream, 2 * m, pairs, T(0), T(1));
        if (status < 0) return status;
        split_pairs(m, pairs, u, theta, Precision<T>::two_pi);
        without_ftz([&] { Precision<T>::sin(m, theta, theta); });
        radii(m, u);
        for (int i = 0; i < m; ++i) r[done + i] = std::fma(sigma * u[i], theta[i], a);
        done += m;
    }
    return 0;
}

// The pending pair of Box-Muller2: (u1, u2) as doubles, -1 when empty; made on first use.
double *pending_pair(RokStream *stream, int32_t &status) {
    if (void *data = rokSearchChunk(stream, pending_chunk_id)) return static_cast<double *>(data);
    auto *pair = static_cast<double *>(qon_serv_allocate(2 * sizeof(double), qon::rng::kAlign));
    if (pair == nullptr) {
        status = ROK_ERROR_MEM;
        return nullptr;
    }
    pair[0] = pair[1] = nothing_pending;
    status = rokAddChunk(stream, pending_chunk_id, nullptr, pair, 2 * sizeof(double));
    if (status < 0) {
        qon_serv_deallocate(pair);
        return nullptr;
    }
    return pair;
}

template <class T>
int32_t box_muller2(RokStream *stream, int32_t n, T *r, T a, T sigma) {
    using P = Precision<T>;
    if (n <= 0) return 0;
    int32_t status = 0;
    double *pending = pending_pair(stream, status);
    if (pending == nullptr) return status;
    int i = 0;
    if (pending[0] != nothing_pending) {
        T rho = static_cast<T>(pending[0]);
        T theta = P::two_pi * static_cast<T>(pending[1]);
        without_ftz([&] { P::cos(1, &theta, &theta); });
        without_ftz([&] { P::ln(1, &rho, &rho); });
        rho *= T(-2);
        without_ftz([&] { P::sqrt(1, &rho, &rho); });
        r[i++] = std::fma(sigma * rho, theta, a);
        pending[0] = pending[1] = nothing_pending;
    }
    alignas(64) T pairs[block];
    alignas(64) T u[block / 2];
    alignas(64) T theta[block / 2];
    alignas(64) T cosine[block / 2];
    while (i < n) {
        const int m = std::min((n - i + 1) / 2, block / 2);
        status = P::uniform(stream, 2 * m, pairs, T(0), T(1));
        if (status < 0) return status;
        const T last_u1 = pairs[2 * m - 2], last_u2 = pairs[2 * m - 1];
        split_pairs(m, pairs, u, theta, P::two_pi);
        without_ftz([&] { P::sincos(m, theta, theta, cosine); });
        radii(m, u);
        for (int k = 0; k < m; ++k) {
            const T rho = sigma * u[k];
            r[i++] = std::fma(rho, theta[k], a);
            if (i < n) {
                r[i++] = std::fma(rho, cosine[k], a);
            } else {
                pending[0] = last_u1;
                pending[1] = last_u2;
            }
        }
    }
    return 0;
}

template <class T>
int32_t inverse_cdf(RokStream *stream, int32_t n, T *r, T a, T sigma) {
    int32_t status = Precision<T>::uniform(stream, n, r, T(-1), T(1));
    if (status < 0) return status;
    without_ftz([&] { Precision<T>::erfinv(n, r, r); });
    scale_shift(n, r, sigma * Precision<T>::sqrt2, a);
    return 0;
}

template <class T>
using Method = int32_t (*)(RokStream *, int32_t, T *, T, T);

template <class T>
constexpr Method<T> methods[3] = {box_muller<T>, box_muller2<T>, inverse_cdf<T>};

}  // namespace

template <class T>
int32_t gaussian(int32_t method, RokStream *stream, int32_t n, T *r, T a, T sigma) {
    Frame frame(gaussian_callback<T>);
    return methods<T>[method](stream, n, r, a, sigma);
}

template int32_t gaussian<double>(int32_t, RokStream *, int32_t, double *, double, double);
template int32_t gaussian<float>(int32_t, RokStream *, int32_t, float *, float, float);

}  // namespace qon::dist

QON_DIST_ENTRIES(Gaussian, qon::dist::gaussian)
