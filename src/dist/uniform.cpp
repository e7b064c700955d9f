// Uniform variates on [a, b): the values of the stream's basic generator itself. The accurate
// method then forces every value into [a, b], since a + (b - a) u can round to b or, for
// ranges that straddle zero with large magnitudes, just outside.
#include "dist/frame.hpp"

namespace qon::dist {

template <class T>
int32_t uniform(int32_t method, RokStream *stream, int32_t n, T *r, T a, T b) {
    int32_t status = Precision<T>::uniform(stream, n, r, a, b);
    if (status < 0) return status;
    if (accurate(method))
        for (int i = 0; i < n; ++i) r[i] = std::min(b, std::max(a, r[i]));
    return status;
}

}  // namespace qon::dist

QON_DIST_ENTRIES(Uniform, qon::dist::uniform)
