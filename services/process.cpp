// Locks, environment and exit: the process services of the core library.
#include <qon/qon_serv.h>

#include <cstdlib>
#include <cstring>
#include <mutex>

namespace {
std::recursive_mutex locks[QON_SERV_LOCK_COUNT];
}

extern "C" {

QON_API void qon_serv_lock(int lock) {
    if (lock >= 0 && lock < QON_SERV_LOCK_COUNT) locks[lock].lock();
}

QON_API void qon_serv_unlock(int lock) {
    if (lock >= 0 && lock < QON_SERV_LOCK_COUNT) locks[lock].unlock();
}

QON_API int qon_serv_getenv(const char *name, char *buffer, int size) {
    if (name == nullptr) return 0;
    const char *value = std::getenv(name);
    if (value == nullptr) return 0;
    size_t len = std::strlen(value);
    if (buffer != nullptr && size > 0) {
        size_t copy = len < static_cast<size_t>(size - 1) ? len : static_cast<size_t>(size - 1);
        std::memcpy(buffer, value, copy);
        buffer[copy] = '\0';
    }
    return static_cast<int>(len);
}

QON_API void qon_serv_exit(int code) { std::exit(code); }

}  // extern "C"
