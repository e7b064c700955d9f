// Data chunks attached to streams, and the process-wide table of shared read-only chunk data.
// A chunk with a zero key owns its data; a chunk with a non-zero key refers to an entry of the
// shared table, so that streams attaching the same precomputed data (same key) keep one copy.
// Every change of the table happens under one spin lock: a 32-bit word taken by a compare-
// exchange of 0 to 1 repeated until it succeeds, released by a store of 0. Each entry also
// records its data size, so that a stream can never refer to shared data shorter than its
// chunk claims.
#include "rng/stream.hpp"

#include <qon/qon_serv.h>

#include <x86intrin.h>

#include <atomic>
#include <cstring>

namespace {

constexpr uint32_t kSharedEntries = 128;
constexpr uint32_t kSharedLimit = 127;  // beyond this many entries new keyed chunks go private

struct SharedEntry {
    uint64_t key[2];
    uint32_t refs;
    uint32_t size;
    void *data;
};

struct SharedTable {
    uint32_t count = 0;
    SharedEntry entries[kSharedEntries] = {};
};

SharedTable shared_table;
std::atomic<uint32_t> shared_lock{0};

class SpinGuard {
public:
    SpinGuard() {
        uint32_t expected = 0;
        while (!shared_lock.compare_exchange_weak(expected, 1, std::memory_order_acquire)) expected = 0;
    }
    ~SpinGuard() { shared_lock.store(0, std::memory_order_release); }
    SpinGuard(const SpinGuard &) = delete;
    SpinGuard &operator=(const SpinGuard &) = delete;
};

bool is_zero_key(const uint64_t key[2]) { return key[0] == 0 && key[1] == 0; }

// Caller holds the lock.
SharedEntry *find_entry(const uint64_t key[2]) {
    if (is_zero_key(key)) return nullptr;
    for (uint32_t i = 0; i < shared_table.count; ++i) {
        SharedEntry &e = shared_table.entries[i];
        if (e.key[0] == key[0] && e.key[1] == key[1]) return &e;
    }
    return nullptr;
}

// Caller holds the lock. Drops one reference; the last one frees the data and fills the slot
// with the table's last entry.
void release_entry(SharedEntry *e) {
    if (--e->refs != 0) return;
    qon_serv_deallocate(e->data);
    *e = shared_table.entries[--shared_table.count];
    shared_table.entries[shared_table.count] = SharedEntry{};
}

void release_node(RokChunk *node) {
    {
        SpinGuard guard;
        if (SharedEntry *e = find_entry(node->key)) {
            release_entry(e);
            node->data = nullptr;
        }
    }
    qon_serv_deallocate(node->data);
    qon_serv_deallocate(node);
}

}  // namespace

extern "C" {

int32_t rokAddChunk(RokStream *stream, uint32_t id, const uint64_t key[2], void *data, uint32_t size) {
    auto *node = static_cast<RokChunk *>(qon_serv_allocate(sizeof(RokChunk), qon::rng::kAlign));
    if (node == nullptr) return ROK_ERROR_MEM;
    node->id = id;
    node->size = size;
    node->data = data;
    node->key[0] = key != nullptr ? key[0] : 0;
    node->key[1] = key != nullptr ? key[1] : 0;
    if (!is_zero_key(node->key)) {
        SpinGuard guard;
        SharedEntry *e = find_entry(node->key);
        if (e != nullptr && e->size == size) {
            ++e->refs;
            node->data = e->data;
        } else if (e == nullptr && shared_table.count < kSharedLimit) {
            shared_table.entries[shared_table.count++] = SharedEntry{{node->key[0], node->key[1]}, 1, size, data};
        } else {
            node->key[0] = node->key[1] = 0;  // table full, or a key reused for other data
        }
    }
    node->next = stream->chunks;
    stream->chunks = node;
    return ROK_STATUS_OK;
}

void *rokSearchChunk(const RokStream *stream, uint32_t id) {
    const RokChunk *c = qon::rng::find_chunk(stream, id);
    return c != nullptr ? c->data : nullptr;
}

int32_t rokGetNumChunks(const RokStream *stream) {
    int32_t n = 0;
    for (const RokChunk *c = stream->chunks; c != nullptr; c = c->next) ++n;
    return n;
}

void rokDeleteChunks(RokStream *stream) {
    RokChunk *c = stream->chunks;
    while (c != nullptr) {
        RokChunk *next = c->next;
        release_node(c);
        c = next;
    }
    stream->chunks = nullptr;
}

int32_t rokCopyChunks(RokStream *dest, const RokStream *src) {
    for (const RokChunk *c = src->chunks; c != nullptr; c = c->next) {
        void *shared = nullptr;
        {
            SpinGuard guard;
            if (SharedEntry *e = find_entry(c->key)) shared = e->data;
        }
        void *data = shared;
        if (data == nullptr) {
            data = qon_serv_allocate(c->size, qon::rng::kAlign);
            if (data == nullptr) {
                rokDeleteChunks(dest);
                return ROK_ERROR_MEM;
            }
            std::memcpy(data, c->data, c->size);
        }
        if (rokAddChunk(dest, c->id, shared != nullptr ? c->key : nullptr, data, c->size) != ROK_STATUS_OK) {
            if (shared == nullptr) qon_serv_deallocate(data);
            rokDeleteChunks(dest);
            return ROK_ERROR_MEM;
        }
    }
    return ROK_STATUS_OK;
}

void rokGenerateNewGlobalRODataTableEntryId(uint64_t key[2], const void *owner) {
    key[1] = reinterpret_cast<uintptr_t>(owner);
    SpinGuard guard;
    do {
        key[0] = __rdtsc();
    } while (find_entry(key) != nullptr || is_zero_key(key));
}

void *rokFindGlobRODataTableEntry(const uint64_t key[2], uint32_t *size) {
    SpinGuard guard;
    SharedEntry *e = find_entry(key);
    if (e == nullptr) return nullptr;
    if (size != nullptr) *size = e->size;
    return e->data;
}

int32_t rokCreateGlobRODataTableEntry(const uint64_t key[2], void *data, uint32_t size) {
    SpinGuard guard;
    if (shared_table.count >= kSharedEntries) return ROK_ERROR_MEM;
    shared_table.entries[shared_table.count++] = SharedEntry{{key[0], key[1]}, 1, size, data};
    return ROK_STATUS_OK;
}

void *rokRegisterGlobRODataReference(const uint64_t key[2]) {
    SpinGuard guard;
    SharedEntry *e = find_entry(key);
    if (e == nullptr) return nullptr;
    ++e->refs;
    return e->data;
}

int32_t rokUnregisterGlobRODataReference(const uint64_t key[2]) {
    SpinGuard guard;
    SharedEntry *e = find_entry(key);
    if (e == nullptr) return 0;
    release_entry(e);
    return 1;
}

uint32_t rokGetGlobRODataTableCount(void) {
    SpinGuard guard;
    return shared_table.count;
}

}  // extern "C"
