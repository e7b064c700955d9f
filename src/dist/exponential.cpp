// Exponential variates a - beta ln u for u uniform on [0, 1): inversion with the EP logarithm.
// The generator's call-back turns ln 0 into the logarithm of the smallest subnormal, so a
// uniform of 0 gives the finite a + 744.44 beta (a + 103.28 beta in single precision). The
// accurate method never returns a value below a.
#include "dist/frame.hpp"

namespace qon::dist {
namespace {

template <class T>
int exponential_callback(PaxErrorContext *ctx) {
    ctx->res1 = ctx->res2 = Precision<T>::ln_min_subnormal;
    return 0;
}

}  // namespace

template <class T>
int32_t exponential(int32_t method, RokStream *stream, int32_t n, T *r, T a, T beta) {
    Frame frame(exponential_callback<T>);
    int32_t status = Precision<T>::uniform(stream, n, r, T(0), T(1));
    if (status < 0) return status;
    without_ftz([&] { Precision<T>::ln_ep(n, r, r); });
    scale_shift(n, r, -beta, a);
    if (accurate(method))
        for (int i = 0; i < n; ++i) r[i] = std::max(a, r[i]);
    return 0;
}

}  // namespace qon::dist

QON_DIST_ENTRIES(Exponential, qon::dist::exponential)
