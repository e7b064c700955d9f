// Pack and unpack of every element type against straightforward loops: increments (positive,
// negative, zero, with garbage above the 32 bits that width 1 reads), masks with no, all and
// some elements set, index vectors with repeats and negative offsets, 32- and 64-bit selectors
// through the table kernel, every length 0..17 across the eight-per-iteration loop, untouched
// elements of the destination, round trips, and the shared kernel of the three slots.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace {

using Table = qon_pax_kernel_fn const[3];

template <class E>
E value(int k) {
    if constexpr (std::is_floating_point_v<E>)
        return E(k + 1) + E(0.25);
    else
        return E(typename E::value_type(k + 1), typename E::value_type(-0.5 - k));
}
// A value no kernel writes: the destination is filled with it before each call.
template <class E>
E poison() {
    return value<E>(-1000);
}
template <class E>
bool same_bits(const E &x, const E &y) {
    return std::memcmp(&x, &y, sizeof(E)) == 0;
}

template <class E>
struct Kernels {
    Table *pack_i, *pack_m, *pack_v, *unpack_i, *unpack_m, *unpack_v;
    void (*entry_pack_i)(int, const E *, int, E *);
    void (*entry_unpack_v)(int, const E *, E *, const int *);
};
#define QON_PACK_KERNELS(t, E)                                                                               \
    template <>                                                                                              \
    Kernels<E> kernels<E>() {                                                                                \
        return {&qon_pax_kernel_##t##PackI_ttab, &qon_pax_kernel_##t##PackM_ttab,                            \
                &qon_pax_kernel_##t##PackV_ttab, &qon_pax_kernel_##t##UnpackI_ttab,                          \
                &qon_pax_kernel_##t##UnpackM_ttab, &qon_pax_kernel_##t##UnpackV_ttab,                        \
                reinterpret_cast<void (*)(int, const E *, int, E *)>(pax##t##PackI),                         \
                reinterpret_cast<void (*)(int, const E *, E *, const int *)>(pax##t##UnpackV)};              \
    }
template <class E>
Kernels<E> kernels();
QON_PACK_KERNELS(s, float)
QON_PACK_KERNELS(d, double)
QON_PACK_KERNELS(c, std::complex<float>)
QON_PACK_KERNELS(z, std::complex<double>)

template <class E>
using ByIncrement = void (*)(int, const E *, std::int64_t, E *, int);
template <class E>
using BySelector = void (*)(int, const E *, const void *, E *, int);  // pack: (n, a, sel, y, w)
template <class E>
using UnpackBySelector = void (*)(int, const E *, E *, const void *, int);
template <class E>
using UnpackByIncrement = void (*)(int, const E *, E *, std::int64_t, int);

template <class K>
K kernel(Table &t, int slot = 1) {
    return reinterpret_cast<K>(t[slot]);
}

// The selector widths a test runs: width 1 with int32 elements, width 8 with int64 ones.
struct Width {
    int arg;
    bool wide;
};
constexpr Width widths[] = {{1, false}, {8, true}, {0, true}};

// Selector elements stored at the element width the kernel reads.
struct Selector {
    std::vector<std::int32_t> narrow;
    std::vector<std::int64_t> wide;
    Selector(const std::vector<std::int64_t> &v) : narrow(v.begin(), v.end()), wide(v) {}  // NOLINT
    const void *data(Width w) const {
        return w.wide ? static_cast<const void *>(wide.data()) : static_cast<const void *>(narrow.data());
    }
};

template <class E>
class PackTest : public ::testing::Test {};
using ElementTypes = ::testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(PackTest, ElementTypes);

TYPED_TEST(PackTest, OneKernelInEverySlot) {
    const Kernels<TypeParam> k = kernels<TypeParam>();
    for (Table *t : {k.pack_i, k.pack_m, k.pack_v, k.unpack_i, k.unpack_m, k.unpack_v}) {
        ASSERT_NE((*t)[1], nullptr);
        EXPECT_EQ((*t)[0], (*t)[1]);
        EXPECT_EQ((*t)[2], (*t)[1]);
    }
}

TYPED_TEST(PackTest, ByIncrementEveryLength) {
    using E = TypeParam;
    const Kernels<E> k = kernels<E>();
    std::vector<E> src(17 * 7 + 1);
    for (std::size_t j = 0; j < src.size(); ++j) src[j] = value<E>(static_cast<int>(j));
    for (std::int64_t inc : {1, 2, 3, 7, 0, -1, -4, -7}) {
        for (int n = 0; n <= 17; ++n) {
            // a points where index n-1 times a negative increment stays inside src.
            const E *a = inc < 0 ? src.data() + (src.size() - 1) : src.data();
            for (Width w : widths) {
                std::vector<E> y(n + 3, poison<E>()), yi(n + 3, poison<E>());
                // Width 1 reads the low half only: garbage above it must not matter.
                const std::int64_t arg = w.wide ? inc : static_cast<std::int64_t>((0x5A5A5A5Aull << 32) | (std::uint32_t)inc);
                kernel<ByIncrement<E>>(*k.pack_i)(n, a, arg, y.data(), w.arg);
                std::vector<E> back(src.size(), poison<E>());
                E *b = inc < 0 ? back.data() + (back.size() - 1) : back.data();
                kernel<UnpackByIncrement<E>>(*k.unpack_i)(n, y.data(), b, arg, w.arg);
                for (int i = 0; i < n; ++i) {
                    ASSERT_TRUE(same_bits(y[i], a[i * inc])) << "inc " << inc << " n " << n << " i " << i;
                    ASSERT_TRUE(same_bits(b[i * inc], a[i * inc]));  // unpack of the pack puts each back
                }
                for (int i = n; i < n + 3; ++i) ASSERT_TRUE(same_bits(y[i], poison<E>()));
                std::size_t written = 0;
                for (const E &e : back) written += !same_bits(e, poison<E>());
                EXPECT_EQ(written, n == 0 ? 0u : inc == 0 ? 1u : static_cast<std::size_t>(n));
                if (!w.wide) {
                    k.entry_pack_i(n, a, static_cast<int>(inc), yi.data());
                    for (int i = 0; i < n + 3; ++i) ASSERT_TRUE(same_bits(yi[i], y[i]));
                }
            }
        }
    }
}

TYPED_TEST(PackTest, ByMask) {
    using E = TypeParam;
    const Kernels<E> k = kernels<E>();
    std::mt19937_64 rng(0x3A5Cu);
    for (int n = 0; n <= 17; ++n) {
        std::vector<E> a(n), full(n, poison<E>());
        for (int i = 0; i < n; ++i) a[i] = value<E>(i);
        for (int kind = 0; kind < 3; ++kind) {  // none, all (values other than 1), some
            std::vector<std::int64_t> m(n);
            for (int i = 0; i < n; ++i) m[i] = kind == 0 ? 0 : kind == 1 ? -3 - i : static_cast<std::int64_t>(rng() % 3);
            const Selector mask(m);
            for (Width w : widths) {
                std::vector<E> y(n + 2, poison<E>());
                kernel<BySelector<E>>(*k.pack_m)(n, a.data(), mask.data(w), y.data(), w.arg);
                int j = 0;
                for (int i = 0; i < n; ++i)
                    if (m[i] != 0) ASSERT_TRUE(same_bits(y[j++], a[i]));
                for (int i = j; i < n + 2; ++i) ASSERT_TRUE(same_bits(y[i], poison<E>()));
                // Unpack the packed elements into a copy of the poisoned array: the set positions
                // get the originals back, the others stay.
                std::vector<E> back = full;
                kernel<UnpackBySelector<E>>(*k.unpack_m)(n, y.data(), back.data(), mask.data(w), w.arg);
                for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(back[i], m[i] != 0 ? a[i] : poison<E>()));
            }
        }
    }
}

TYPED_TEST(PackTest, ByIndexVector) {
    using E = TypeParam;
    const Kernels<E> k = kernels<E>();
    std::mt19937_64 rng(0x1D5u);
    std::vector<E> src(64);
    for (int j = 0; j < 64; ++j) src[j] = value<E>(j);
    const E *a = src.data() + 32;  // indices in [-32, 31]
    for (int n = 0; n <= 17; ++n) {
        std::vector<std::int64_t> ix(n);
        for (int i = 0; i < n; ++i) ix[i] = static_cast<std::int64_t>(rng() % 64) - 32;
        if (n > 2) ix[n - 1] = ix[0];  // a repeated index
        const Selector sel(ix);
        for (Width w : widths) {
            std::vector<E> y(n + 2, poison<E>());
            kernel<BySelector<E>>(*k.pack_v)(n, a, sel.data(w), y.data(), w.arg);
            for (int i = 0; i < n; ++i) ASSERT_TRUE(same_bits(y[i], a[ix[i]])) << n << " " << i;
            for (int i = n; i < n + 2; ++i) ASSERT_TRUE(same_bits(y[i], poison<E>()));
            // Unpack through the same indices: the last write to a position wins.
            std::vector<E> back(64, poison<E>()), expect(64, poison<E>());
            kernel<UnpackBySelector<E>>(*k.unpack_v)(n, y.data(), back.data() + 32, sel.data(w), w.arg);
            for (int i = 0; i < n; ++i) expect[32 + ix[i]] = y[i];
            for (int j = 0; j < 64; ++j) ASSERT_TRUE(same_bits(back[j], expect[j]));
            if (!w.wide) {
                std::vector<E> viaentry(64, poison<E>());
                k.entry_unpack_v(n, y.data(), viaentry.data() + 32, sel.narrow.data());
                for (int j = 0; j < 64; ++j) ASSERT_TRUE(same_bits(viaentry[j], expect[j]));
            }
        }
    }
}

TYPED_TEST(PackTest, NonPositiveCountTouchesNothing) {
    using E = TypeParam;
    const Kernels<E> k = kernels<E>();
    for (int n : {0, -1, -100}) {
        kernel<ByIncrement<E>>(*k.pack_i)(n, nullptr, 1, nullptr, 1);
        kernel<UnpackByIncrement<E>>(*k.unpack_i)(n, nullptr, nullptr, 1, 1);
        for (Table *t : {k.pack_m, k.pack_v}) kernel<BySelector<E>>(*t)(n, nullptr, nullptr, nullptr, 1);
        for (Table *t : {k.unpack_m, k.unpack_v}) kernel<UnpackBySelector<E>>(*t)(n, nullptr, nullptr, nullptr, 1);
    }
}

// NaN payloads and signed zeros are copied bit for bit.
TEST(PackBits, PayloadsSurvive) {
    const std::uint64_t bits[] = {0x7FF0000000000001ull, 0xFFF8DEADBEEF0000ull, 0x8000000000000000ull,
                                  0x0000000000000001ull, 0x7FF4000000000000ull, 0x3FF0000000000000ull,
                                  0xFFF0000000000000ull, 0x7FEFFFFFFFFFFFFFull, 0x7FF8000000000001ull};
    double a[9], y[9];
    std::memcpy(a, bits, sizeof a);
    paxdPackI(9, a, 1, y);
    EXPECT_EQ(std::memcmp(a, y, sizeof a), 0);
}

}  // namespace
