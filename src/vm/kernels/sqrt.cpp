// Sqrt: square root. The vector square-root instruction is correctly rounded (within 0.5 ulp),
// so one method serves every accuracy: lanes are computed as they come, and only lanes with
// x < 0 (including -inf) go to the scalar routine, which returns NaN with a domain error.
// sqrt(-0) = -0, sqrt(+inf) = +inf and NaN gives NaN unreported, straight from the instruction.
#include <cmath>

#include "vm/kernels/vector_driver.hpp"

namespace {

using namespace qon::simd;

template <class E>
struct SqrtMethod {
    using T = E;
    static constexpr int groups = 2;

    template <class V>
    static V eval(V x) { return sqrt(x); }
    template <bool tail, class V>
    static Mask<V> special(V x) { return lt(x, splat<V>(T(0))); }
    static int scalar(T x, T &r) {
        r = std::sqrt(x);
        return x < 0 ? PAX_STATUS_ERRDOM : PAX_STATUS_OK;
    }
};

}  // namespace

QON_VM_VECTOR_KERNELS(d, Sqrt, double, SqrtMethod<double>, SqrtMethod<double>, SqrtMethod<double>)
QON_VM_VECTOR_KERNELS(s, Sqrt, float, SqrtMethod<float>, SqrtMethod<float>, SqrtMethod<float>)
