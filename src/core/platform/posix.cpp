// POSIX implementation of the platform seam: pthread keys (whose destructor is the thread-detach
// notification) and a private heap kept as a locked list of blocks, so that destroying the heap
// releases every record still alive.
#include "core/platform/platform.hpp"

#include <pthread.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>

namespace qon::platform {

TlsIndex tls_alloc(void (*on_thread_exit)(void *value)) {
    pthread_key_t key;
    if (pthread_key_create(&key, on_thread_exit) != 0) return tls_none;
    return static_cast<TlsIndex>(key);
}

void *tls_get(TlsIndex index) { return pthread_getspecific(static_cast<pthread_key_t>(index)); }

bool tls_set(TlsIndex index, void *value) {
    return pthread_setspecific(static_cast<pthread_key_t>(index), value) == 0;
}

void tls_free(TlsIndex index) { pthread_key_delete(static_cast<pthread_key_t>(index)); }

// Each block is preceded by its list links; the payload keeps 16-byte alignment.
struct alignas(16) BlockHeader {
    BlockHeader *prev;
    BlockHeader *next;
};

struct Heap {
    std::mutex lock;
    BlockHeader head{&head, &head};
};

Heap *heap_create(std::size_t) { return new (std::nothrow) Heap; }

void *heap_alloc(Heap *heap, std::size_t size) {
    auto *block = static_cast<BlockHeader *>(std::malloc(sizeof(BlockHeader) + size));
    if (block == nullptr) return nullptr;
    std::lock_guard<std::mutex> guard(heap->lock);
    block->prev = &heap->head;
    block->next = heap->head.next;
    heap->head.next->prev = block;
    heap->head.next = block;
    return block + 1;
}

void heap_free(Heap *heap, void *payload) {
    if (payload == nullptr) return;
    BlockHeader *block = static_cast<BlockHeader *>(payload) - 1;
    {
        std::lock_guard<std::mutex> guard(heap->lock);
        block->prev->next = block->next;
        block->next->prev = block->prev;
    }
    std::free(block);
}

void heap_destroy(Heap *heap) {
    if (heap == nullptr) return;
    for (BlockHeader *b = heap->head.next; b != &heap->head;) {
        BlockHeader *next = b->next;
        std::free(b);
        b = next;
    }
    delete heap;
}

std::size_t heap_block_count(Heap *heap) {
    std::lock_guard<std::mutex> guard(heap->lock);
    std::size_t count = 0;
    for (BlockHeader *b = heap->head.next; b != &heap->head; b = b->next) ++count;
    return count;
}

void set_errno(int value) { errno = value; }

}  // namespace qon::platform
