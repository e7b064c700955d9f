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

// The calling thread's record, or null when it cannot be created (message 773 printed).
ThreadRecord *thread_record();
// The calling thread's record; ends the process with exit code 3 when it cannot be had.
ThreadRecord &thread_record_or_exit();
// The record with its mode initialised from QON_PAX_MODE when it still reads 0.
ThreadRecord &initialised_record();

// Number of per-thread records alive now.
std::size_t live_records();

// Library attach: allocates the slot and the attaching thread's record; false on failure.
bool process_attach();
// Explicit unload: frees the calling thread's record, the slot and the private heap.
void process_detach();

}  // namespace qon::vm
