// Lazy creation and destruction of the per-thread records. The slot index and the private heap
// are created once, each under its own core lock and tested again inside it; a record lives
// until its thread ends (the slot's exit notification) or the library is unloaded.
#include "vm/mode/thread_state.hpp"

#include <qon/qon_serv.h>

#include <atomic>

#include "core/platform/platform.hpp"

namespace qon::vm {
namespace {

constexpr int message_no_thread_state = 773;

std::atomic<platform::TlsIndex> slot{platform::tls_none};
std::atomic<platform::Heap *> heap{nullptr};

void free_record(void *record) {
    detail::current = nullptr;
    if (platform::Heap *h = heap.load(std::memory_order_acquire)) platform::heap_free(h, record);
}

platform::TlsIndex ensure_slot() {
    platform::TlsIndex index = slot.load(std::memory_order_acquire);
    if (index != platform::tls_none) return index;
    qon_serv_lock(QON_SERV_LOCK_TLS);
    index = slot.load(std::memory_order_relaxed);
    if (index == platform::tls_none) {
        index = platform::tls_alloc(free_record);
        slot.store(index, std::memory_order_release);
    }
    qon_serv_unlock(QON_SERV_LOCK_TLS);
    return index;
}

platform::Heap *ensure_heap() {
    platform::Heap *h = heap.load(std::memory_order_acquire);
    if (h != nullptr) return h;
    qon_serv_lock(QON_SERV_LOCK_HEAP);
    h = heap.load(std::memory_order_relaxed);
    if (h == nullptr) {
        h = platform::heap_create(32);
        heap.store(h, std::memory_order_release);
    }
    qon_serv_unlock(QON_SERV_LOCK_HEAP);
    return h;
}

ThreadRecord *create_record(platform::TlsIndex index) {
    platform::Heap *h = ensure_heap();
    if (h == nullptr) return nullptr;
    auto *record = static_cast<ThreadRecord *>(platform::heap_alloc(h, sizeof(ThreadRecord)));
    if (record == nullptr) return nullptr;
    if (!platform::tls_set(index, record)) {
        platform::heap_free(h, record);
        return nullptr;
    }
    record->mode = 0;
    record->status = 0;
    record->callback = nullptr;
    record->input_base = nullptr;
    return record;
}

}  // namespace

namespace detail {

constinit thread_local ThreadRecord *current = nullptr;

ThreadRecord *create_or_find_record() {
    platform::TlsIndex index = ensure_slot();
    ThreadRecord *record = nullptr;
    if (index != platform::tls_none) {
        record = static_cast<ThreadRecord *>(platform::tls_get(index));
        if (record == nullptr) record = create_record(index);
    }
    if (record == nullptr) qon_serv_print(1, message_no_thread_state, 0);
    current = record;
    return record;
}

}  // namespace detail

void exit_without_record() {
    qon_serv_exit(3);
    __builtin_unreachable();
}

std::size_t live_records() {
    platform::Heap *h = heap.load(std::memory_order_acquire);
    return h == nullptr ? 0 : platform::heap_block_count(h);
}

bool process_attach() { return thread_record() != nullptr; }

void process_detach() {
    platform::TlsIndex index = slot.exchange(platform::tls_none, std::memory_order_acq_rel);
    platform::Heap *h = heap.exchange(nullptr, std::memory_order_acq_rel);
    if (index != platform::tls_none) {
        detail::current = nullptr;
        if (void *record = platform::tls_get(index)) {
            platform::tls_set(index, nullptr);
            if (h != nullptr) platform::heap_free(h, record);
        }
        platform::tls_free(index);
    }
    platform::heap_destroy(h);
}

}  // namespace qon::vm
