// Chunks attached to streams and the shared read-only data table: private data is owned and
// duplicated, keyed data is shared with one reference per chunk, the table stays dense, and
// the table's last slot is never filled by rokAddChunk.
#include "rng_util.hpp"

#include "rng/stream.hpp"

#include <atomic>
#include <cstring>
#include <thread>

using namespace rngtest;

namespace {

void *bytes(uint32_t size, unsigned char fill) {
    void *p = qon_serv_allocate(size, 128);
    std::memset(p, fill, size);
    return p;
}

StreamPtr bare_stream() {
    auto s = make_stream(ROK_BRNG_MCG31M1, {1u});
    rokDeleteChunks(s.get());
    return s;
}

struct TableGuard {  // every test leaves the process-wide table as it found it
    uint32_t before = rokGetGlobRODataTableCount();
    ~TableGuard() { EXPECT_EQ(rokGetGlobRODataTableCount(), before); }
};

}  // namespace

TEST(Chunks, PrivateChunksAreListedHeadFirst) {
    TableGuard guard;
    auto s = bare_stream();
    void *a = bytes(16, 1), *b = bytes(8, 2), *c = bytes(4, 3);
    ASSERT_EQ(rokAddChunk(s.get(), 5, nullptr, a, 16), ROK_STATUS_OK);
    ASSERT_EQ(rokAddChunk(s.get(), 6, nullptr, b, 8), ROK_STATUS_OK);
    ASSERT_EQ(rokAddChunk(s.get(), 5, nullptr, c, 4), ROK_STATUS_OK);
    EXPECT_EQ(rokGetNumChunks(s.get()), 3);
    EXPECT_EQ(rokSearchChunk(s.get(), 5), c);  // the newest with that id
    EXPECT_EQ(rokSearchChunk(s.get(), 6), b);
    EXPECT_EQ(rokSearchChunk(s.get(), 7), nullptr);
    EXPECT_EQ(rokGetStreamSize(s.get()), 32 + 16 + 8 + 4 + 3 * 24);
    rokDeleteChunks(s.get());
    EXPECT_EQ(rokGetNumChunks(s.get()), 0);
    EXPECT_EQ(rokSearchChunk(s.get(), 5), nullptr);
}

TEST(Chunks, KeyedDataIsSharedAndFreedWithItsLastReference) {
    TableGuard guard;
    const uint32_t count0 = rokGetGlobRODataTableCount();
    auto s1 = bare_stream(), s2 = bare_stream(), s3 = bare_stream();
    uint64_t key[2];
    rokGenerateNewGlobalRODataTableEntryId(key, s1.get());
    EXPECT_EQ(key[1], reinterpret_cast<uintptr_t>(s1.get()));
    void *first = bytes(64, 7);
    ASSERT_EQ(rokAddChunk(s1.get(), 9, key, first, 64), ROK_STATUS_OK);
    EXPECT_EQ(rokGetGlobRODataTableCount(), count0 + 1);
    // A second stream with the same key refers to the first copy; its own copy stays its caller's.
    void *second = bytes(64, 7);
    ASSERT_EQ(rokAddChunk(s2.get(), 9, key, second, 64), ROK_STATUS_OK);
    EXPECT_EQ(rokSearchChunk(s2.get(), 9), first);
    qon_serv_deallocate(second);
    EXPECT_EQ(rokGetGlobRODataTableCount(), count0 + 1);
    // A copy of a stream shares keyed data too.
    ASSERT_EQ(rokCopyChunks(s3.get(), s1.get()), ROK_STATUS_OK);
    EXPECT_EQ(rokSearchChunk(s3.get(), 9), first);
    s1.reset();
    s3.reset();
    uint32_t size = 0;
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, &size), first);  // still referenced by s2
    EXPECT_EQ(size, 64u);
    s2.reset();
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, &size), nullptr);
    EXPECT_EQ(rokGetGlobRODataTableCount(), count0);
}

TEST(Chunks, TableStaysDenseWhenAMiddleEntryGoes) {
    TableGuard guard;
    const uint32_t count0 = rokGetGlobRODataTableCount();
    StreamPtr s[3] = {bare_stream(), bare_stream(), bare_stream()};
    uint64_t keys[3][2];
    void *data[3];
    for (int i = 0; i < 3; ++i) {
        rokGenerateNewGlobalRODataTableEntryId(keys[i], s[i].get());
        data[i] = bytes(8, static_cast<unsigned char>(i));
        ASSERT_EQ(rokAddChunk(s[i].get(), 1, keys[i], data[i], 8), ROK_STATUS_OK);
    }
    s[1].reset();
    EXPECT_EQ(rokGetGlobRODataTableCount(), count0 + 2);
    EXPECT_EQ(rokFindGlobRODataTableEntry(keys[0], nullptr), data[0]);
    EXPECT_EQ(rokFindGlobRODataTableEntry(keys[1], nullptr), nullptr);
    EXPECT_EQ(rokFindGlobRODataTableEntry(keys[2], nullptr), data[2]);
}

TEST(Chunks, FullTableMakesNewKeyedChunksPrivate) {
    TableGuard guard;
    auto s = bare_stream();
    std::vector<StreamPtr> holders;
    uint64_t key[2];
    while (rokGetGlobRODataTableCount() < 127) {
        holders.push_back(bare_stream());
        rokGenerateNewGlobalRODataTableEntryId(key, holders.back().get());
        ASSERT_EQ(rokAddChunk(holders.back().get(), 1, key, bytes(4, 0), 4), ROK_STATUS_OK);
    }
    rokGenerateNewGlobalRODataTableEntryId(key, s.get());
    void *mine = bytes(4, 1);
    ASSERT_EQ(rokAddChunk(s.get(), 2, key, mine, 4), ROK_STATUS_OK);
    EXPECT_EQ(rokGetGlobRODataTableCount(), 127u);
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), nullptr);
    EXPECT_EQ(s->chunks->key[0], 0u);
    EXPECT_EQ(s->chunks->key[1], 0u);
    EXPECT_EQ(rokSearchChunk(s.get(), 2), mine);  // owned by the stream now
}

TEST(Chunks, KeyReusedForDataOfAnotherSizeStaysPrivate) {
    TableGuard guard;
    auto s1 = bare_stream(), s2 = bare_stream();
    uint64_t key[2];
    rokGenerateNewGlobalRODataTableEntryId(key, s1.get());
    ASSERT_EQ(rokAddChunk(s1.get(), 1, key, bytes(8, 1), 8), ROK_STATUS_OK);
    void *longer = bytes(32, 2);
    ASSERT_EQ(rokAddChunk(s2.get(), 1, key, longer, 32), ROK_STATUS_OK);
    EXPECT_EQ(rokSearchChunk(s2.get(), 1), longer);
    EXPECT_EQ(rokGetStreamSize(s2.get()), 32 + 32 + 24);
}

TEST(Chunks, FailedCopyLeavesTheDestinationEmpty) {
    TableGuard guard;
    auto src = bare_stream(), dst = bare_stream();
    for (uint32_t id = 0; id < 3; ++id) ASSERT_EQ(rokAddChunk(src.get(), id, nullptr, bytes(8, 1), 8), ROK_STATUS_OK);
    for (long k = 0; k < 6; ++k) {
        qon_serv_fail_allocations_after(k);
        EXPECT_EQ(rokCopyChunks(dst.get(), src.get()), ROK_ERROR_MEM) << k;
        qon_serv_fail_allocations_after(-1);
        EXPECT_EQ(rokGetNumChunks(dst.get()), 0);
    }
    ASSERT_EQ(rokCopyChunks(dst.get(), src.get()), ROK_STATUS_OK);
    EXPECT_EQ(rokGetNumChunks(dst.get()), 3);
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(rokAddChunk(dst.get(), 9, nullptr, nullptr, 0), ROK_ERROR_MEM);
    qon_serv_fail_allocations_after(-1);
    EXPECT_EQ(rokGetNumChunks(dst.get()), 3);
}

TEST(Chunks, ReferenceCountingByKey) {
    TableGuard guard;
    uint64_t key[2];
    rokGenerateNewGlobalRODataTableEntryId(key, &key);
    void *d = bytes(16, 3);
    ASSERT_EQ(rokCreateGlobRODataTableEntry(key, d, 16), ROK_STATUS_OK);
    EXPECT_EQ(rokRegisterGlobRODataReference(key), d);
    EXPECT_EQ(rokUnregisterGlobRODataReference(key), 1);
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), d);
    EXPECT_EQ(rokUnregisterGlobRODataReference(key), 1);
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), nullptr);
    EXPECT_EQ(rokUnregisterGlobRODataReference(key), 0);
    EXPECT_EQ(rokRegisterGlobRODataReference(key), nullptr);
}

// Streams on several threads attach, copy and release the same keyed data at once: every
// reference is counted under the spin lock, so the entry lives exactly as long as a holder.
TEST(Chunks, SharedEntryUnderConcurrentUse) {
    TableGuard guard;
    auto owner = bare_stream();
    uint64_t key[2];
    rokGenerateNewGlobalRODataTableEntryId(key, owner.get());
    void *data = bytes(256, 9);
    ASSERT_EQ(rokAddChunk(owner.get(), 4, key, data, 256), ROK_STATUS_OK);
    const int rounds = quick() ? 200 : 2000;
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < rounds; ++i) {
                RokStream *s = nullptr;
                if (rokNewStreamEx(&s, ROK_BRNG_MCG59, 0, nullptr) != ROK_STATUS_OK) ++wrong;
                void *mine = bytes(256, 9);
                rokAddChunk(s, 4, key, mine, 256);
                if (rokSearchChunk(s, 4) != data) ++wrong;
                qon_serv_deallocate(mine);
                RokStream *c = nullptr;
                if (rokCopyStream(&c, s) != ROK_STATUS_OK || rokSearchChunk(c, 4) != data) ++wrong;
                rokDeleteStream(&c);
                rokDeleteStream(&s);
            }
        });
    }
    for (auto &t : threads) t.join();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), data);
    owner.reset();
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), nullptr);
}
