/* Distribution generators of qon: n variates at a time from any stream, through its basic
 * generator's uniform output and the vector-math kernels. Each returns 0, the negative status
 * of the stream's generator, or ROK_ERROR_MEM. Parameters are not checked (sigma > 0, beta > 0,
 * a < b and a known method are the caller's to ensure). */
#ifndef QON_ROK_DIST_H
#define QON_ROK_DIST_H

#include "qon_rok.h"

QON_EXTERN_C_BEGIN

/* Methods. */
enum {
    ROK_RNG_METHOD_STD = 0,               /* uniform, exponential, lognormal, Cauchy: standard */
    ROK_RNG_METHOD_ACCURATE = 0x40000000, /* added to a method: results forced into range */
    ROK_RNG_GAUSSIAN_BOXMULLER = 0,       /* one variate per pair of uniforms */
    ROK_RNG_GAUSSIAN_BOXMULLER2 = 1,      /* two variates per pair; an unused one is kept */
    ROK_RNG_GAUSSIAN_ICDF = 2             /* inverse distribution function */
};

/* Uniform on [a, b): the basic generator's own values; accurate: clamped into [a, b]. */
QON_API int32_t rokdRngUniform(int32_t method, RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t roksRngUniform(int32_t method, RokStream *stream, int32_t n, float r[], float a, float b);
/* Gaussian with mean a and standard deviation sigma. */
QON_API int32_t rokdRngGaussian(int32_t method, RokStream *stream, int32_t n, double r[], double a, double sigma);
QON_API int32_t roksRngGaussian(int32_t method, RokStream *stream, int32_t n, float r[], float a, float sigma);
/* Cauchy with location a and scale beta. */
QON_API int32_t rokdRngCauchy(int32_t method, RokStream *stream, int32_t n, double r[], double a, double beta);
QON_API int32_t roksRngCauchy(int32_t method, RokStream *stream, int32_t n, float r[], float a, float beta);
/* Exponential with displacement a and scale beta: a - beta ln u; accurate: never below a. */
QON_API int32_t rokdRngExponential(int32_t method, RokStream *stream, int32_t n, double r[], double a, double beta);
QON_API int32_t roksRngExponential(int32_t method, RokStream *stream, int32_t n, float r[], float a, float beta);
/* Lognormal: b + beta exp(N(a, sigma)); method 0 draws the Gaussians by Box-Muller2, any other
 * method word (the accurate one included) by the inverse distribution function. */
QON_API int32_t rokdRngLognormal(int32_t method, RokStream *stream, int32_t n, double r[], double a, double sigma,
                                 double b, double beta);
QON_API int32_t roksRngLognormal(int32_t method, RokStream *stream, int32_t n, float r[], float a, float sigma,
                                 float b, float beta);

QON_EXTERN_C_END

#endif
