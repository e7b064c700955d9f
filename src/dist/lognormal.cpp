// Lognormal variates b + beta exp(N(a, sigma)). The Gaussians come from Box-Muller2 when the
// method word is exactly 0 and from the inverse distribution function for any other word, so
// the accurate variant draws them by inversion; the exponential is the EP kernel. No
// call-back of its own: the Gaussian generator's frame covers its own kernels.
#include "dist/frame.hpp"

namespace qon::dist {

template <class T>
int32_t gaussian(int32_t method, RokStream *stream, int32_t n, T *r, T a, T sigma);

template <class T>
int32_t lognormal(int32_t method, RokStream *stream, int32_t n, T *r, T a, T sigma, T b, T beta) {
    const int32_t gaussian_method = method == 0 ? ROK_RNG_GAUSSIAN_BOXMULLER2 : ROK_RNG_GAUSSIAN_ICDF;
    int32_t status = gaussian(gaussian_method, stream, n, r, a, sigma);
    if (status < 0) return status;
    without_ftz([&] { Precision<T>::exp_ep(n, r, r); });
    scale_shift(n, r, beta, b);
    if (accurate(method))
        for (int i = 0; i < n; ++i) r[i] = std::max(b, r[i]);
    return status;
}

}  // namespace qon::dist

extern "C" QON_API int32_t rokdRngLognormal(int32_t method, RokStream *stream, int32_t n, double r[], double a,
                                            double sigma, double b, double beta) {
    return qon::dist::lognormal<double>(method, stream, n, r, a, sigma, b, beta);
}

extern "C" QON_API int32_t roksRngLognormal(int32_t method, RokStream *stream, int32_t n, float r[], float a,
                                            float sigma, float b, float beta) {
    return qon::dist::lognormal<float>(method, stream, n, r, a, sigma, b, beta);
}
