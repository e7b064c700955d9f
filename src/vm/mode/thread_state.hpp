// The per-thread vector-math record: mode word, last error status, error call-back and the
// caller's input-vector base. One record per thread that has used vector math, created lazily
// on first use and freed when the thread ends.
#pragma once

#include <qon/qon_pax.h>

#include <cstddef>
#include <cstdint>

namespace qon::vm {

struct ThreadRecord {
    std::uint32_t mode;         // 0: not yet initialised in this thread
    std::int32_t status;        // last reported error status
    PaxErrorCallBack callback;  // user's error call-back or null
    std::uint64_t reserved;
    const void *input_base;     // start of the caller's whole vector, or null
};

namespace detail {
// The calling thread's record once it exists: the fast path in front of the platform slot,
// which owns the record's lifetime.
extern constinit thread_local ThreadRecord *current __attribute__((tls_model("initial-exec")));
ThreadRecord *create_or_find_record();
}  // namespace detail

// The calling thread's record, or null when it cannot be created (message 773 printed).
inline ThreadRecord *thread_record() {
    ThreadRecord *record = detail::current;
    return record != nullptr ? record : detail::create_or_find_record();
}
// Ends the process with exit code 3: the thread's record cannot be had.
[[noreturn]] void exit_without_record();
// The mode a thread starts with: QON_PAX_MODE when it parses, else 0x1A02.
std::uint32_t initial_mode();

// The calling thread's record; ends the process when it cannot be had.
inline ThreadRecord &thread_record_or_exit() {
    ThreadRecord *record = thread_record();
    if (record == nullptr) exit_without_record();
    return *record;
}

// The record with its mode initialised when it still reads 0.
inline ThreadRecord &initialised_record() {
    ThreadRecord &record = thread_record_or_exit();
    if (record.mode == 0) record.mode = initial_mode();
    return record;
}

// Number of per-thread records alive now.
std::size_t live_records();

// Library attach: allocates the slot and the attaching thread's record; false on failure.
bool process_attach();
// Explicit unload: frees the calling thread's record, the slot and the private heap.
void process_detach();

}  // namespace qon::vm
