// Library attach and detach. Loading the library creates the vector-math slot and the loading
// thread's record; a library that cannot do so refuses to load. Unloading releases the slot,
// so that no thread-exit notification can reach unmapped code, and the private heap with every
// record in it. On POSIX an unload by dlclose and the end of the process run the same
// destructor; releasing at process end is harmless because nothing runs after it.
#include <cstdlib>

#include "vm/mode/thread_state.hpp"

namespace {

__attribute__((constructor)) void qon_library_attach() {
    if (!qon::vm::process_attach()) std::abort();
}

__attribute__((destructor)) void qon_library_detach() { qon::vm::process_detach(); }

}  // namespace
