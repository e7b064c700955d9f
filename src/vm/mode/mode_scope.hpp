// Sets fields of the calling thread's mode word for the length of a scope and puts the whole
// previous word back afterwards, including fields that paxSetMode alone could not clear again.
#pragma once

#include <qon/qon_pax.h>

#include <cstdint>

#include "vm/mode/thread_state.hpp"

namespace qon::vm {

class ModeScope {
public:
    explicit ModeScope(std::uint32_t fields) : saved_(qon_pax_kernel_SetMode(fields)) {}
    ~ModeScope() { initialised_record().mode = saved_; }
    ModeScope(const ModeScope &) = delete;
    ModeScope &operator=(const ModeScope &) = delete;

private:
    std::uint32_t saved_;
};

}  // namespace qon::vm
