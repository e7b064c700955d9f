// Stream records: copy, state copy with its seed-word length rule, deletion, size, and the
// allocation-failure paths of creation and copy.
#include "rng_util.hpp"

#include "rng/stream.hpp"

#include <cstring>

using namespace rngtest;

namespace {

std::vector<uint32_t> draw31(RokStream *s, int32_t n) {
    std::vector<uint32_t> v(n);
    EXPECT_EQ(rokiBRngMCG31M1(s, n, v.data()), ROK_STATUS_OK);
    return v;
}

}  // namespace

TEST(Stream, HeaderAndSize) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {1u});
    EXPECT_EQ(rokGetStreamStateBrng(s.get()), ROK_BRNG_MCG31M1);
    EXPECT_EQ(s->format, 1u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(s.get()) % 128, 0u);
    EXPECT_EQ(rokGetNumChunks(s.get()), 1);
    EXPECT_EQ(rokGetStreamSize(s.get()), 24 + 8 + 352 + 24);
    rokDeleteChunks(s.get());
    EXPECT_EQ(rokGetStreamSize(s.get()), 32);
    auto c = make_stream(3, {1u});  // compatibility id of MCG59 keeps its own id
    EXPECT_EQ(rokGetStreamStateBrng(c.get()), 3);
    EXPECT_EQ(rokGetStreamSize(c.get()), 32 + 8 + 352 + 24);
}

TEST(Stream, DeleteClearsTheCallersPointer) {
    RokStream *s = nullptr;
    ASSERT_EQ(rokNewStreamEx(&s, ROK_BRNG_MCG59, 0, nullptr), ROK_STATUS_OK);
    EXPECT_EQ(rokDeleteStream(&s), ROK_STATUS_OK);
    EXPECT_EQ(s, nullptr);
}

TEST(Stream, CopyContinuesIndependently) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {4242u});
    draw31(s.get(), 13);
    RokStream *raw_copy = nullptr;
    ASSERT_EQ(rokCopyStream(&raw_copy, s.get()), ROK_STATUS_OK);
    StreamPtr copy(raw_copy);
    EXPECT_EQ(copy->format, 1u);
    EXPECT_EQ(rokGetNumChunks(copy.get()), 1);
    // The private power table is duplicated, not shared.
    EXPECT_NE(rokSearchChunk(copy.get(), 14), rokSearchChunk(s.get(), 14));
    EXPECT_EQ(std::memcmp(rokSearchChunk(copy.get(), 14), rokSearchChunk(s.get(), 14), 352), 0);
    std::vector<uint32_t> a = draw31(s.get(), 50);
    EXPECT_EQ(draw31(copy.get(), 50), a);
    double d1[30], d2[30];
    ASSERT_EQ(rokdBRngMCG31M1(s.get(), 30, d1, 0, 1), ROK_STATUS_OK);
    ASSERT_EQ(rokdBRngMCG31M1(copy.get(), 30, d2, 0, 1), ROK_STATUS_OK);
    EXPECT_EQ(std::memcmp(d1, d2, sizeof d1), 0);
}

TEST(Stream, CopyWithoutMemoryLeavesNoStream) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {1u});
    for (long k = 0; k < 3; ++k) {  // the block, the chunk data, the chunk node
        RokStream *copy = reinterpret_cast<RokStream *>(0x1);
        qon_serv_fail_allocations_after(k);
        EXPECT_EQ(rokCopyStream(&copy, s.get()), ROK_ERROR_MEM) << k;
        qon_serv_fail_allocations_after(-1);
        EXPECT_EQ(copy, nullptr);
    }
}

TEST(Stream, CopyStreamStateCopiesSeedWordsOnly) {
    auto self = make_stream(ROK_BRNG_MCG31M1, {5u});
    EXPECT_EQ(rokCopyStreamState(self.get(), self.get()), ROK_STATUS_OK);
    Lcg o{kM31, kA31, 5};
    for (uint32_t v : draw31(self.get(), 10)) EXPECT_EQ(v, o.next());

    // MCG31m1 has one 4-byte seed word: x is copied, the destination keeps its multiplier.
    auto src = make_stream(ROK_BRNG_MCG31M1, {1000u});
    auto dst = make_stream(ROK_BRNG_MCG31M1, {7u});
    ASSERT_EQ(rokLeapfrogStream(dst.get(), 0, 3), ROK_STATUS_OK);
    ASSERT_EQ(rokCopyStreamState(dst.get(), src.get()), ROK_STATUS_OK);
    Lcg every3{kM31, pow_oracle(kA31, 3, kM31), 1000};
    for (uint32_t v : draw31(dst.get(), 40)) ASSERT_EQ(v, every3.next());
    double d[40];
    ASSERT_EQ(rokdBRngMCG31M1(dst.get(), 40, d, 0, 1), ROK_STATUS_OK);
    for (double v : d) ASSERT_EQ(v, static_cast<double>(every3.next()) * 4.656612875245797e-10);
    // The source is untouched.
    Lcg from_src{kM31, kA31, 1000};
    for (uint32_t v : draw31(src.get(), 20)) ASSERT_EQ(v, from_src.next());
}

TEST(Stream, DispatchReachesTheGenerator) {
    auto s = make_stream(ROK_BRNG_MCG59, {11u});
    ASSERT_EQ(rokSkipAheadStream(s.get(), 3), ROK_STATUS_OK);
    ASSERT_EQ(rokLeapfrogStream(s.get(), 1, 2), ROK_STATUS_OK);
    Lcg o{kM59, kA59, 11};
    std::vector<uint64_t> all(30);
    for (uint64_t &v : all) v = o.next();
    uint64_t w[10];
    ASSERT_EQ(rokiBRngMCG59(s.get(), 10, w), ROK_STATUS_OK);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(w[i], all[4 + 2 * i]);
}
