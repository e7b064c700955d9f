// The vector layer of the vector-math kernels: named inline operations over AVX2/FMA with
// overloads on distinct types, so that one kernel template serves every width.
//
//   VD  four doubles      MD  its lane mask     QD  its lanes as 64-bit integers
//   VF  eight floats      MF  its lane mask     QF  its lanes as 32-bit integers
//   double, float         the one-lane forms: mask bool, integers std::uint64_t, std::uint32_t
//
// A method written as `template <class V> V f(V x)` against these operations compiles for VD and
// VF (the kernel's main loop and masked tail) and for double and float (a same-algorithm
// reference, or a scalar fallback that must give bit-identical results). Traits<V> gives the
// element type T, the mask M, the integer lanes Q and the lane count.
//
// Operations (V a vector or one-lane type, M its mask, Q its integer lanes):
//   splat<V>(t), constant<V>(bits)             broadcast a value, or a value given by its bits
//   load<V>(p), store(p, v)                    unaligned full-width access
//   first_lanes<V>(m), load_first<V>(p, m), store_first(p, v, m)
//                                              the first m lanes only (0 <= m <= lanes); the
//                                              other lanes of a load read as 0, of a store stay
//   + - * / , mul_add(a,b,c) = a*b+c, mul_sub = a*b-c, neg_mul_add = c-a*b (one rounding),
//   horner(s, a, b, ...) = (a*s + b)*s + ... (highest degree first)
//   abs, sqrt, min, max, round_nearest, floor, trunc
//   lt le gt ge eq ne (ordered), gt_or_nan (a > b or unordered), is_nan
//   mask_or, mask_and, mask_andnot(a, b) = a & ~b, any(m), lane_bits(m) (bit i = lane i),
//   select(m, a, b) (a where m, else b)
//   bits(v) -> Q, from_bits(q) -> V; for Q: + - & | ^, shl<k>, shr<k> (logical), int_gt(a, b)
//   (signed, as a mask of V), splat_q<V>(i)
//   gather<S>(base, q)                         lane i reads the T at byte base + q[i]*S
//   lookup<S, mask>(base, q)                   the same at (q[i] & mask)*S, by scalar loads
//   gather_pairs<S, mask>(base, q, first, second)  lane i reads the two doubles there
//   Double pieces of floats: to_double_lo/hi(VF) -> VD, to_float(VD lo, VD hi) -> VF,
//   and in_double(x, f): f applied to the float lanes widened to double, rounded back once.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <type_traits>
#include <utility>

namespace qon::simd {

struct VD { __m256d v; };
struct VF { __m256 v; };
struct MD { __m256d v; };
struct MF { __m256 v; };
struct QD { __m256i v; };
struct QF { __m256i v; };

template <class V>
struct Traits;
template <>
struct Traits<VD> {
    using T = double;
    using M = MD;
    using Q = QD;
    using U = std::uint64_t;
    static constexpr int lanes = 4;
};
template <>
struct Traits<VF> {
    using T = float;
    using M = MF;
    using Q = QF;
    using U = std::uint32_t;
    static constexpr int lanes = 8;
};
template <>
struct Traits<double> {
    using T = double;
    using M = bool;
    using Q = std::uint64_t;
    using U = std::uint64_t;
    static constexpr int lanes = 1;
};
template <>
struct Traits<float> {
    using T = float;
    using M = bool;
    using Q = std::uint32_t;
    using U = std::uint32_t;
    static constexpr int lanes = 1;
};
template <class V>
using Elem = typename Traits<V>::T;
template <class V>
using Mask = typename Traits<V>::M;
template <class V>
using Ints = typename Traits<V>::Q;
template <class V>
inline constexpr int lanes = Traits<V>::lanes;

// The full-width vector of an element type.
template <class T>
struct WideOf;
template <>
struct WideOf<double> { using type = VD; };
template <>
struct WideOf<float> { using type = VF; };
template <class T>
using Wide = typename WideOf<T>::type;

// ---- broadcast, loads and stores -------------------------------------------------------------

template <class V>
inline V splat(Elem<V> t) {
    if constexpr (std::is_same_v<V, VD>) return {_mm256_set1_pd(t)};
    else if constexpr (std::is_same_v<V, VF>) return {_mm256_set1_ps(t)};
    else return t;
}
template <class V>
inline V constant(typename Traits<V>::U b) {
    return splat<V>(std::bit_cast<Elem<V>>(b));
}
template <class V>
inline Ints<V> splat_q(typename Traits<V>::U i) {
    if constexpr (std::is_same_v<V, VD>) return {_mm256_set1_epi64x(static_cast<long long>(i))};
    else if constexpr (std::is_same_v<V, VF>) return {_mm256_set1_epi32(static_cast<int>(i))};
    else return i;
}

template <class V>
inline V load(const Elem<V> *p) {
    if constexpr (std::is_same_v<V, VD>) return {_mm256_loadu_pd(p)};
    else if constexpr (std::is_same_v<V, VF>) return {_mm256_loadu_ps(p)};
    else return *p;
}
inline void store(double *p, VD v) { _mm256_storeu_pd(p, v.v); }
inline void store(float *p, VF v) { _mm256_storeu_ps(p, v.v); }
inline void store(double *p, double v) { *p = v; }
inline void store(float *p, float v) { *p = v; }

// Rows of all-ones lanes: eight 32-bit words of -1 followed by eight of 0; the window that
// starts 8 - m words before the zeros has its first m words set (2m for 64-bit lanes).
alignas(64) inline constexpr std::int32_t lane_rows[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};

template <class V>
inline Mask<V> first_lanes(int m) {
    if constexpr (std::is_same_v<V, VD>)
        return {_mm256_castsi256_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(lane_rows + 8 - 2 * m)))};
    else if constexpr (std::is_same_v<V, VF>)
        return {_mm256_castsi256_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(lane_rows + 8 - m)))};
    else return m > 0;
}
template <class V>
inline V load_first(const Elem<V> *p, int m) {
    if constexpr (std::is_same_v<V, VD>) return {_mm256_maskload_pd(p, _mm256_castpd_si256(first_lanes<VD>(m).v))};
    else if constexpr (std::is_same_v<V, VF>) return {_mm256_maskload_ps(p, _mm256_castps_si256(first_lanes<VF>(m).v))};
    else return m > 0 ? *p : Elem<V>(0);
}
// The first m lanes through a buffer: a masked store costs more than the short copy on the
// processors measured (AMD Zen 3: a call with a partial vector 3-9% faster).
template <class V>
inline void store_first(Elem<V> *p, V v, int m) requires(lanes<V> > 1) {
    alignas(32) Elem<V> b[lanes<V>];
    store(b, v);
    for (int k = 0; k < m; ++k) p[k] = b[k];
}
template <class T>
inline void store_first(T *p, T v, int m) {
    if (m > 0) *p = v;
}

// ---- arithmetic ------------------------------------------------------------------------------

inline VD operator+(VD a, VD b) { return {_mm256_add_pd(a.v, b.v)}; }
inline VD operator-(VD a, VD b) { return {_mm256_sub_pd(a.v, b.v)}; }
inline VD operator*(VD a, VD b) { return {_mm256_mul_pd(a.v, b.v)}; }
inline VD operator/(VD a, VD b) { return {_mm256_div_pd(a.v, b.v)}; }
inline VF operator+(VF a, VF b) { return {_mm256_add_ps(a.v, b.v)}; }
inline VF operator-(VF a, VF b) { return {_mm256_sub_ps(a.v, b.v)}; }
inline VF operator*(VF a, VF b) { return {_mm256_mul_ps(a.v, b.v)}; }
inline VF operator/(VF a, VF b) { return {_mm256_div_ps(a.v, b.v)}; }

inline VD mul_add(VD a, VD b, VD c) { return {_mm256_fmadd_pd(a.v, b.v, c.v)}; }
inline VD mul_sub(VD a, VD b, VD c) { return {_mm256_fmsub_pd(a.v, b.v, c.v)}; }
inline VD neg_mul_add(VD a, VD b, VD c) { return {_mm256_fnmadd_pd(a.v, b.v, c.v)}; }
inline VF mul_add(VF a, VF b, VF c) { return {_mm256_fmadd_ps(a.v, b.v, c.v)}; }
inline VF mul_sub(VF a, VF b, VF c) { return {_mm256_fmsub_ps(a.v, b.v, c.v)}; }
inline VF neg_mul_add(VF a, VF b, VF c) { return {_mm256_fnmadd_ps(a.v, b.v, c.v)}; }
template <class T>
inline T mul_add(T a, T b, T c) requires std::is_floating_point_v<T> { return std::fma(a, b, c); }
template <class T>
inline T mul_sub(T a, T b, T c) requires std::is_floating_point_v<T> { return std::fma(a, b, -c); }
template <class T>
inline T neg_mul_add(T a, T b, T c) requires std::is_floating_point_v<T> { return std::fma(-a, b, c); }

// Horner's scheme over coefficients from the highest degree down: horner(s, a, b, c) =
// (a*s + b)*s + c, each step one fused multiply-add.
template <class V, class... R>
inline V horner(V s, V a, V b, R... rest) {
    if constexpr (sizeof...(rest) == 0) return mul_add(a, s, b);
    else return horner(s, mul_add(a, s, b), rest...);
}

// The coefficients of a generated table c (highest degree first) as the schemes below take them:
// the coefficient of degree i, in the element type of V.
template <const auto &c, class V>
inline constexpr auto highest_first = [](auto i) {
    return splat<V>(static_cast<Elem<V>>(c[std::size(c) - 1 - i]));
};

// Horner's scheme over every step-th coefficient from first on: sum over i < count of
// coef(first + i step) w^i (coef called with std::integral_constant<int, index>, returning a V).
template <int first, int step, int count, class V, class F>
inline V horner_every(V w, const F &coef) {
    const V c = coef(std::integral_constant<int, first>{});
    if constexpr (count == 1) return c;
    else return mul_add(horner_every<first + step, step, count - 1>(w, coef), w, c);
}
// A generated table c (highest degree first) at s by Horner's scheme: the fewest operations.
template <const auto &c, class V>
inline V horner_of(V s) {
    return horner_every<0, 1, std::size(c)>(s, highest_first<c, V>);
}
// sum over i < n of coef(i) s^i as its even and odd parts in s^2: two Horner chains of half the
// length, for one multiplication more.
template <int n, class V, class F>
inline V even_odd(V s, const F &coef) {
    if constexpr (n <= 3) {
        return horner_every<0, 1, n>(s, coef);
    } else {
        const V s2 = s * s;
        return mul_add(horner_every<1, 2, n / 2>(s2, coef), s, horner_every<0, 2, (n + 1) / 2>(s2, coef));
    }
}

// Estrin's scheme: sum over i < n of coef(i) s^i (coef called with std::integral_constant<int,
// i>, returning a V), split at the largest power of two h < n as low(s) + s^h high(s) down to
// single coefficients; pw[k] holds s^(2^k). The dependency chain is about log2(n) fused
// multiply-adds and squarings long instead of n - 1, for one squaring more per level: the
// better trade for long polynomials, whose kernels are bound by latency. With horner_low > 0
// the lowest coefficients are added last by Horner steps, so that the rounding errors of the
// rest are scaled by s^horner_low, as in Horner's scheme.
template <int first, int n, class V, class F>
inline V estrin_from(const V *pw, const F &coef) {
    if constexpr (n == 1) {
        return coef(std::integral_constant<int, first>{});
    } else {
        constexpr unsigned h = std::bit_floor(static_cast<unsigned>(n - 1));
        constexpr int level = std::countr_zero(h);
        return mul_add(estrin_from<first + h, n - h>(pw, coef), pw[level], estrin_from<first, h>(pw, coef));
    }
}
template <int n, int horner_low = 0, class V, class F>
inline V estrin(V s, const F &coef) {
    V pw[5] = {s, s, s, s, s};
    for (int k = 1; k < 5 && (1 << k) < n - horner_low; ++k) pw[k] = pw[k - 1] * pw[k - 1];
    V p = estrin_from<horner_low, n - horner_low>(pw, coef);
    [&]<int... i>(std::integer_sequence<int, i...>) {
        ((p = mul_add(p, s, coef(std::integral_constant<int, horner_low - 1 - i>{}))), ...);
    }(std::make_integer_sequence<int, horner_low>{});
    return p;
}

inline VD abs(VD a) { return {_mm256_andnot_pd(_mm256_set1_pd(-0.0), a.v)}; }
inline VF abs(VF a) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v)}; }
inline VD sqrt(VD a) { return {_mm256_sqrt_pd(a.v)}; }
inline VF sqrt(VF a) { return {_mm256_sqrt_ps(a.v)}; }
inline VD min(VD a, VD b) { return {_mm256_min_pd(a.v, b.v)}; }
inline VF min(VF a, VF b) { return {_mm256_min_ps(a.v, b.v)}; }
inline VD max(VD a, VD b) { return {_mm256_max_pd(a.v, b.v)}; }
inline VF max(VF a, VF b) { return {_mm256_max_ps(a.v, b.v)}; }
inline VD round_nearest(VD a) { return {_mm256_round_pd(a.v, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)}; }
inline VF round_nearest(VF a) { return {_mm256_round_ps(a.v, _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC)}; }
inline VD floor(VD a) { return {_mm256_round_pd(a.v, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC)}; }
inline VF floor(VF a) { return {_mm256_round_ps(a.v, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC)}; }
inline VD trunc(VD a) { return {_mm256_round_pd(a.v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC)}; }
inline VF trunc(VF a) { return {_mm256_round_ps(a.v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC)}; }
template <class T>
inline T abs(T a) requires std::is_floating_point_v<T> { return std::fabs(a); }
template <class T>
inline T sqrt(T a) requires std::is_floating_point_v<T> { return std::sqrt(a); }
// min and max return b when either is NaN, as the vector instructions do.
template <class T>
inline T min(T a, T b) requires std::is_floating_point_v<T> { return a < b ? a : b; }
template <class T>
inline T max(T a, T b) requires std::is_floating_point_v<T> { return a > b ? a : b; }
template <class T>
inline T round_nearest(T a) requires std::is_floating_point_v<T> { return std::nearbyint(a); }
template <class T>
inline T floor(T a) requires std::is_floating_point_v<T> { return std::floor(a); }
template <class T>
inline T trunc(T a) requires std::is_floating_point_v<T> { return std::trunc(a); }

// ---- comparisons and masks -------------------------------------------------------------------

#define QON_SIMD_COMPARE(name, pred, op)                                                                    \
    inline MD name(VD a, VD b) { return {_mm256_cmp_pd(a.v, b.v, pred)}; }                                   \
    inline MF name(VF a, VF b) { return {_mm256_cmp_ps(a.v, b.v, pred)}; }                                   \
    template <class T>                                                                                       \
    inline bool name(T a, T b) requires std::is_floating_point_v<T> { return op; }
QON_SIMD_COMPARE(lt, _CMP_LT_OQ, a < b)
QON_SIMD_COMPARE(le, _CMP_LE_OQ, a <= b)
QON_SIMD_COMPARE(gt, _CMP_GT_OQ, a > b)
QON_SIMD_COMPARE(ge, _CMP_GE_OQ, a >= b)
QON_SIMD_COMPARE(eq, _CMP_EQ_OQ, a == b)
QON_SIMD_COMPARE(ne, _CMP_NEQ_UQ, a != b)
QON_SIMD_COMPARE(gt_or_nan, _CMP_NLE_UQ, !(a <= b))
#undef QON_SIMD_COMPARE
template <class V>
inline Mask<V> is_nan(V a) {
    if constexpr (lanes<V> == 1) return a != a;
    else return ne(a, a);
}

// The lanes whose top bit is set, as a mask. Only the top bit of such a mask is meaningful; every
// mask operation here reads only that bit (blends, movemask, testz) or works bit by bit.
inline MD sign_lanes(QD a) { return {_mm256_castsi256_pd(a.v)}; }
inline MF sign_lanes(QF a) { return {_mm256_castsi256_ps(a.v)}; }
template <class U>
inline bool sign_lanes(U a) requires std::is_unsigned_v<U> { return (a >> (sizeof(U) * 8 - 1)) != 0; }

inline MD mask_or(MD a, MD b) { return {_mm256_or_pd(a.v, b.v)}; }
inline MF mask_or(MF a, MF b) { return {_mm256_or_ps(a.v, b.v)}; }
inline bool mask_or(bool a, bool b) { return a || b; }
inline MD mask_and(MD a, MD b) { return {_mm256_and_pd(a.v, b.v)}; }
inline MF mask_and(MF a, MF b) { return {_mm256_and_ps(a.v, b.v)}; }
inline bool mask_and(bool a, bool b) { return a && b; }
inline MD mask_andnot(MD a, MD b) { return {_mm256_andnot_pd(b.v, a.v)}; }
inline MF mask_andnot(MF a, MF b) { return {_mm256_andnot_ps(b.v, a.v)}; }
inline bool mask_andnot(bool a, bool b) { return a && !b; }
inline unsigned lane_bits(MD m) { return static_cast<unsigned>(_mm256_movemask_pd(m.v)); }
inline unsigned lane_bits(MF m) { return static_cast<unsigned>(_mm256_movemask_ps(m.v)); }
inline unsigned lane_bits(bool m) { return m ? 1u : 0u; }
inline bool any(MD m) { return !_mm256_testz_pd(m.v, m.v); }
inline bool any(MF m) { return !_mm256_testz_ps(m.v, m.v); }
inline bool any(bool m) { return m; }
inline VD select(MD m, VD a, VD b) { return {_mm256_blendv_pd(b.v, a.v, m.v)}; }
inline VF select(MF m, VF a, VF b) { return {_mm256_blendv_ps(b.v, a.v, m.v)}; }
template <class T>
inline T select(bool m, T a, T b) { return m ? a : b; }

// ---- integer lanes ---------------------------------------------------------------------------

inline QD bits(VD a) { return {_mm256_castpd_si256(a.v)}; }
inline QF bits(VF a) { return {_mm256_castps_si256(a.v)}; }
inline std::uint64_t bits(double a) { return std::bit_cast<std::uint64_t>(a); }
inline std::uint32_t bits(float a) { return std::bit_cast<std::uint32_t>(a); }
inline VD from_bits(QD a) { return {_mm256_castsi256_pd(a.v)}; }
inline VF from_bits(QF a) { return {_mm256_castsi256_ps(a.v)}; }
inline double from_bits(std::uint64_t a) { return std::bit_cast<double>(a); }
inline float from_bits(std::uint32_t a) { return std::bit_cast<float>(a); }

inline QD operator+(QD a, QD b) { return {_mm256_add_epi64(a.v, b.v)}; }
inline QD operator-(QD a, QD b) { return {_mm256_sub_epi64(a.v, b.v)}; }
inline QF operator+(QF a, QF b) { return {_mm256_add_epi32(a.v, b.v)}; }
inline QF operator-(QF a, QF b) { return {_mm256_sub_epi32(a.v, b.v)}; }
inline QD operator&(QD a, QD b) { return {_mm256_and_si256(a.v, b.v)}; }
inline QF operator&(QF a, QF b) { return {_mm256_and_si256(a.v, b.v)}; }
inline QD operator|(QD a, QD b) { return {_mm256_or_si256(a.v, b.v)}; }
inline QF operator|(QF a, QF b) { return {_mm256_or_si256(a.v, b.v)}; }
inline QD operator^(QD a, QD b) { return {_mm256_xor_si256(a.v, b.v)}; }
inline QF operator^(QF a, QF b) { return {_mm256_xor_si256(a.v, b.v)}; }
template <int k>
inline QD shl(QD a) { return {_mm256_slli_epi64(a.v, k)}; }
template <int k>
inline QF shl(QF a) { return {_mm256_slli_epi32(a.v, k)}; }
template <int k, class U>
inline U shl(U a) requires std::is_unsigned_v<U> { return static_cast<U>(a << k); }
template <int k>
inline QD shr(QD a) { return {_mm256_srli_epi64(a.v, k)}; }
template <int k>
inline QF shr(QF a) { return {_mm256_srli_epi32(a.v, k)}; }
template <int k, class U>
inline U shr(U a) requires std::is_unsigned_v<U> { return static_cast<U>(a >> k); }
inline MD int_gt(QD a, QD b) { return {_mm256_castsi256_pd(_mm256_cmpgt_epi64(a.v, b.v))}; }
inline MF int_gt(QF a, QF b) { return {_mm256_castsi256_ps(_mm256_cmpgt_epi32(a.v, b.v))}; }
template <class U>
inline bool int_gt(U a, U b) requires std::is_unsigned_v<U> {
    return static_cast<std::make_signed_t<U>>(a) > static_cast<std::make_signed_t<U>>(b);
}

// ---- table lookup ----------------------------------------------------------------------------

template <int S>
inline VD gather(const double *base, QD q) { return {_mm256_i64gather_pd(base, q.v, S)}; }
// The lanes of q through memory, each ANDed with mask: the scalar loads of lookup and
// gather_pairs then take their offsets from the integer units, which leaves the vector pipes to
// the method (extracting the lanes in registers would cost four vector operations).
template <std::int64_t mask>
struct LaneOffsets {
    alignas(32) std::int64_t o[4];
    explicit LaneOffsets(QD q) {
        _mm256_store_si256(reinterpret_cast<__m256i *>(o), q.v);
        asm("" : "+m"(o));
    }
    std::int64_t operator[](int i) const { return o[i] & mask; }
};
// The same as gather, with one scalar load per lane, at the low bits of q selected by mask.
template <int S, std::int64_t mask = -1>
inline VD lookup(const double *base, QD q) {
    const LaneOffsets<mask> o(q);
    auto at = [&](int i) { return reinterpret_cast<const double *>(reinterpret_cast<const char *>(base) + o[i] * S); };
    const __m128d l = _mm_loadh_pd(_mm_load_sd(at(0)), at(1));
    const __m128d h = _mm_loadh_pd(_mm_load_sd(at(2)), at(3));
    return {_mm256_insertf128_pd(_mm256_castpd128_pd256(l), h, 1)};
}
template <int S>
inline VF gather(const float *base, QF q) { return {_mm256_i32gather_ps(base, q.v, S)}; }
template <int S, class T, class U>
inline T gather(const T *base, U q) requires std::is_unsigned_v<U> {
    T t;
    std::memcpy(&t, reinterpret_cast<const char *>(base) + static_cast<std::size_t>(q) * S, sizeof t);
    return t;
}

// Lane i of first and second read the two doubles at byte base + (q[i] & mask)*S: pairs stored
// side by side, fetched with one 16-byte load per lane (cheaper than two gathers).
template <int S, std::int64_t mask = -1>
inline void gather_pairs(const double *base, QD q, VD &first, VD &second) {
    const LaneOffsets<mask> o(q);
    auto at = [&](int i) { return _mm_loadu_pd(reinterpret_cast<const double *>(reinterpret_cast<const char *>(base) + o[i] * S)); };
    const __m256d a = _mm256_insertf128_pd(_mm256_castpd128_pd256(at(0)), at(2), 1);  // lanes 0, 2
    const __m256d c = _mm256_insertf128_pd(_mm256_castpd128_pd256(at(1)), at(3), 1);  // lanes 1, 3
    first.v = _mm256_unpacklo_pd(a, c);
    second.v = _mm256_unpackhi_pd(a, c);
}
template <int S, std::int64_t mask = -1>
inline void gather_pairs(const double *base, std::uint64_t q, double &first, double &second) {
    const char *b = reinterpret_cast<const char *>(base) + static_cast<std::size_t>(q & mask) * S;
    std::memcpy(&first, b, sizeof first);
    std::memcpy(&second, b + sizeof first, sizeof second);
}
template <int S, std::int64_t mask = -1, class T, class U>
inline T lookup(const T *base, U q) requires std::is_unsigned_v<U> { return gather<S>(base, q & static_cast<U>(mask)); }

// ---- floats through double -------------------------------------------------------------------

inline VD to_double_lo(VF a) { return {_mm256_cvtps_pd(_mm256_castps256_ps128(a.v))}; }
inline VD to_double_hi(VF a) { return {_mm256_cvtps_pd(_mm256_extractf128_ps(a.v, 1))}; }
inline VF to_float(VD lo, VD hi) {
    return {_mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(lo.v)), _mm256_cvtpd_ps(hi.v), 1)};
}

// f (a template over the double type) applied to each float lane in double precision and
// rounded once back to float.
template <class F>
inline VF in_double(VF x, F f) {
    return to_float(f(to_double_lo(x)), f(to_double_hi(x)));
}
template <class F>
inline float in_double(float x, F f) {
    return static_cast<float>(f(static_cast<double>(x)));
}

}  // namespace qon::simd

// ---- small tables through permutes -------------------------------------------------------------

namespace qon::simd {

// Lane i reads table[j[i] mod N] for a table of N entries (double: 4, 8 or 16; float: 8 or 16)
// held in registers: one cross-lane permute per 32 bytes of table and a blend per doubling of
// the entry count, far cheaper than a gather. Only the low log2(N) bits of each lane of j are
// used. The table must be 32-byte aligned.
template <int N>
inline VD permute_table(const double *table, QD j) {
    static_assert(N == 4 || N == 8 || N == 16);
    // Selectors of the two 32-bit halves of entry j mod 4: 2j and 2j + 1 (mod 8), from the low
    // 32 bits of j copied into both halves and doubled.
    const __m256i d = _mm256_or_si256(_mm256_slli_epi32(_mm256_shuffle_epi32(j.v, 0xA0), 1),
                                      _mm256_set1_epi64x(std::int64_t{1} << 32));
    auto part = [&](int k) {
        return _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(_mm256_load_pd(table + 4 * k)), d));
    };
    if constexpr (N == 4) return {part(0)};
    else {
        const __m256d bit2 = _mm256_castsi256_pd(_mm256_slli_epi64(j.v, 61));
        const __m256d low = _mm256_blendv_pd(part(0), part(1), bit2);
        if constexpr (N == 8) return {low};
        else {
            const __m256d high = _mm256_blendv_pd(part(2), part(3), bit2);
            return {_mm256_blendv_pd(low, high, _mm256_castsi256_pd(_mm256_slli_epi64(j.v, 60)))};
        }
    }
}
template <int N>
inline VF permute_table(const float *table, QF j) {
    static_assert(N == 8 || N == 16);
    const __m256 low = _mm256_permutevar8x32_ps(_mm256_load_ps(table), j.v);
    if constexpr (N == 8) return {low};
    else return {_mm256_blendv_ps(low, _mm256_permutevar8x32_ps(_mm256_load_ps(table + 8), j.v),
                                  _mm256_castsi256_ps(_mm256_slli_epi32(j.v, 28)))};
}
template <int N, class T, class U>
inline T permute_table(const T *table, U j) requires std::is_unsigned_v<U> {
    return table[j % N];
}

// 32-bit lanes only (AVX2 has no 64-bit forms): arithmetic shift right of the lanes read as
// signed, and the signed lanes converted to float.
template <int k>
inline QF sra(QF a) { return {_mm256_srai_epi32(a.v, k)}; }
template <int k>
inline std::uint32_t sra(std::uint32_t a) { return static_cast<std::uint32_t>(static_cast<std::int32_t>(a) >> k); }
inline VF int_to_float(QF a) { return {_mm256_cvtepi32_ps(a.v)}; }
inline float int_to_float(std::uint32_t a) { return static_cast<float>(static_cast<std::int32_t>(a)); }

}  // namespace qon::simd
