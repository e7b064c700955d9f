// The platform seam: the only place that knows how thread-local slots, the private heap and the
// C runtime's errno are reached. The POSIX implementation lives in posix.cpp; a Win32 one would
// sit beside it (TlsAlloc/TlsGetValue, HeapCreate/HeapAlloc, the runtime's _errno).
#pragma once

#include <cstddef>
#include <cstdint>

namespace qon::platform {

// A thread-local slot. `none` is the value of a slot that was never allocated.
using TlsIndex = std::uint32_t;
inline constexpr TlsIndex tls_none = 0xFFFFFFFFu;

// Allocates a slot whose non-null value is handed to on_thread_exit when its thread ends.
// Returns tls_none on failure.
TlsIndex tls_alloc(void (*on_thread_exit)(void *value));
void *tls_get(TlsIndex index);
bool tls_set(TlsIndex index, void *value);
void tls_free(TlsIndex index);

// A private heap of small blocks. heap_destroy releases every block still allocated from it.
struct Heap;
Heap *heap_create(std::size_t initial_size);
void *heap_alloc(Heap *heap, std::size_t size);
void heap_free(Heap *heap, void *block);
void heap_destroy(Heap *heap);
// Number of blocks currently allocated from the heap.
std::size_t heap_block_count(Heap *heap);

// Sets the calling thread's C runtime errno.
void set_errno(int value);

}  // namespace qon::platform
