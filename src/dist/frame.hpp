// The frame every continuous distribution generator shares: draw a block of uniforms through
// the stream's registry row, transform it in place with vector-math kernels, then scale and
// shift with fused multiply-adds. Precision<T> binds one precision's uniform source, kernels
// and replacement constants, so that each generator is written once for float and double.
#pragma once

#include <qon/qon_pax.h>
#include <qon/qon_rok_dist.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/fpu.hpp"
#include "rng/stream.hpp"
#include "vm/mode/mode_scope.hpp"

namespace qon::dist {

// Values are produced in blocks of at most this many, with fixed buffers on the stack.
inline constexpr int block = 1024;
// Mode words: the error mode the generators run under, and denormal handling switched off
// (no flush-to-zero) around each vector-math call.
inline constexpr std::uint32_t callback_mode = PAX_ERRMODE_CALLBACK;
inline constexpr std::uint32_t no_ftz_mode = PAX_FTZDAZ_OFF;

template <class T>
struct Precision;

template <>
struct Precision<double> {
    static constexpr double ln_min_subnormal = -744.4400719213812;  // ln 2^-1074
    static constexpr double erfinv_below_one = 5.8635847487551676;  // erfinv(1 - 2^-53)
    static constexpr double two_pi = 6.283185307179586;
    static constexpr double sqrt2 = 1.4142135623730951;
    // +-pi/2 rounded to double: 0x3FF921FB54442D18 (just below pi/2).
    static constexpr double half_pi = 1.5707963267948966;
    static int32_t uniform(RokStream *s, int n, double *r, double a, double b) {
        return qon::rng::stream_brng(s)->d_brng(s, n, r, a, b);
    }
    static void ln(int n, const double *a, double *r) { paxdLn(n, a, r); }
    static void sin(int n, const double *a, double *r) { paxdSin(n, a, r); }
    static void cos(int n, const double *a, double *r) { paxdCos(n, a, r); }
    static void sincos(int n, const double *a, double *s, double *c) { paxdSinCos(n, a, s, c); }
    static void sqrt(int n, const double *a, double *r) { paxdSqrt(n, a, r); }
    static void tan(int n, const double *a, double *r) { paxdTan(n, a, r); }
    static void erfinv(int n, const double *a, double *r) { paxdErfInv(n, a, r); }
    static void ln_ep(int n, const double *a, double *r) { ep_slot(qon_pax_kernel_dLn_ttab)(n, a, r); }
    static void exp_ep(int n, const double *a, double *r) { ep_slot(qon_pax_kernel_dExp_ttab)(n, a, r); }

private:
    using Kernel = void (*)(int, const double *, double *);
    static Kernel ep_slot(qon_pax_kernel_fn const (&table)[3]) { return reinterpret_cast<Kernel>(table[2]); }
};

// Single precision. The replacement values are the single-precision counterparts of the
// double ones: ln 2^-149 = -103.27893 (the logarithm of the smallest positive subnormal float)
// and erfinv(1 - 2^-24) = 3.8325069 (erfinv at the largest float below 1). The Cauchy bounds
// are +-1.5707962 (0x3FC90FDA), the largest float below pi/2: the float nearest pi/2 lies above
// it, and its tangent would have the wrong sign.
template <>
struct Precision<float> {
    static constexpr float ln_min_subnormal = -103.27893f;
    static constexpr float erfinv_below_one = 3.8325069f;
    static constexpr float two_pi = 6.2831855f;
    static constexpr float sqrt2 = 1.4142135f;
    static constexpr float half_pi = 1.5707962f;
    static int32_t uniform(RokStream *s, int n, float *r, float a, float b) {
        return qon::rng::stream_brng(s)->s_brng(s, n, r, a, b);
    }
    static void ln(int n, const float *a, float *r) { paxsLn(n, a, r); }
    static void sin(int n, const float *a, float *r) { paxsSin(n, a, r); }
    static void cos(int n, const float *a, float *r) { paxsCos(n, a, r); }
    static void sincos(int n, const float *a, float *s, float *c) { paxsSinCos(n, a, s, c); }
    static void sqrt(int n, const float *a, float *r) { paxsSqrt(n, a, r); }
    static void tan(int n, const float *a, float *r) { paxsTan(n, a, r); }
    static void erfinv(int n, const float *a, float *r) { paxsErfInv(n, a, r); }
    static void ln_ep(int n, const float *a, float *r) { ep_slot(qon_pax_kernel_sLn_ttab)(n, a, r); }
    static void exp_ep(int n, const float *a, float *r) { ep_slot(qon_pax_kernel_sExp_ttab)(n, a, r); }

private:
    using Kernel = void (*)(int, const float *, float *);
    static Kernel ep_slot(qon_pax_kernel_fn const (&table)[3]) { return reinterpret_cast<Kernel>(table[2]); }
};

// The generator's frame: every floating-point exception masked, the error mode set to the
// call-back alone with the generator's own call-back installed; on leaving, the caller's
// call-back, mode word, MXCSR and x87 control word are restored in that order.
class Frame {
public:
    explicit Frame(PaxErrorCallBack callback) : mode_(callback_mode), previous_(paxSetErrorCallBack(callback)) {}
    ~Frame() { paxSetErrorCallBack(previous_); }
    Frame(const Frame &) = delete;
    Frame &operator=(const Frame &) = delete;

private:
    fpu::MaskAll masks_;
    vm::ModeScope mode_;
    PaxErrorCallBack previous_;
};

// Runs one vector-math call with denormal handling off, restoring the mode word afterwards.
template <class Call>
void without_ftz(Call call) {
    vm::ModeScope scope(no_ftz_mode);
    call();
}

// r[i] = a + s * r[i], fused; the loop runs four (or eight) lanes at a time.
template <class T>
void scale_shift(int n, T *r, T s, T a) {
    for (int i = 0; i < n; ++i) r[i] = std::fma(s, r[i], a);
}

// Splits m interleaved pairs: u1[i] = pairs[2i], theta[i] = scale * pairs[2i + 1]. Out of
// place, so that the loop runs in vector lanes (the in-place split is a scalar loop whose
// stores wait on the loads of the same array).
template <class T>
void split_pairs(int m, const T *__restrict pairs, T *__restrict u1, T *__restrict theta, T scale) {
    for (int i = 0; i < m; ++i) {
        u1[i] = pairs[2 * i];
        theta[i] = scale * pairs[2 * i + 1];
    }
}

inline bool accurate(int32_t method) { return (method & ROK_RNG_METHOD_ACCURATE) != 0; }

}  // namespace qon::dist

// Defines the double and single entries of a generator with two (or four) distribution
// parameters from one template.
#define QON_DIST_ENTRIES(Name, impl)                                                                        \
    extern "C" QON_API int32_t rokdRng##Name(int32_t method, RokStream *stream, int32_t n, double r[],       \
                                             double p1, double p2) {                                         \
        return impl<double>(method, stream, n, r, p1, p2);                                                   \
    }                                                                                                        \
    extern "C" QON_API int32_t roksRng##Name(int32_t method, RokStream *stream, int32_t n, float r[], float p1, \
                                             float p2) {                                                     \
        return impl<float>(method, stream, n, r, p1, p2);                                                    \
    }
