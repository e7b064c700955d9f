// Cauchy variates a + beta tan(u) for u uniform on [-pi/2, pi/2): inversion of the
// distribution function. The bounds are the doubles nearest +-pi/2 (below pi/2 in magnitude),
// so the tangent stays finite.
#include "dist/frame.hpp"

namespace qon::dist {

template <class T>
int32_t cauchy(int32_t, RokStream *stream, int32_t n, T *r, T a, T beta) {
    int32_t status = Precision<T>::uniform(stream, n, r, -Precision<T>::half_pi, Precision<T>::half_pi);
    if (status < 0) return status;
    without_ftz([&] { Precision<T>::tan(n, r, r); });
    scale_shift(n, r, beta, a);
    return 0;
}

}  // namespace qon::dist

QON_DIST_ENTRIES(Cauchy, qon::dist::cauchy)
