// Aligned allocation for everything vector code touches, with a fault-injection switch so that
// every allocation-failure path of the kernel library can be tested.
#include <qon/qon_serv.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {
std::atomic<long> allocations_left{-1};  // negative: no limit

bool allocation_permitted() {
    long left = allocations_left.load(std::memory_order_relaxed);
    while (left >= 0) {
        if (left == 0) return false;
        if (allocations_left.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) return true;
    }
    return true;
}
}  // namespace

extern "C" {

QON_API void *qon_serv_allocate(size_t size, int alignment) {
    if (!allocation_permitted()) return nullptr;
    size_t align = alignment < static_cast<int>(sizeof(void *)) ? sizeof(void *) : static_cast<size_t>(alignment);
    if ((align & (align - 1)) != 0) return nullptr;
    void *p = nullptr;
    if (posix_memalign(&p, align, size == 0 ? 1 : size) != 0) return nullptr;
    return p;
}

QON_API void qon_serv_deallocate(void *ptr) { std::free(ptr); }

QON_API void qon_serv_fail_allocations_after(long count) {
    allocations_left.store(count < 0 ? -1 : count, std::memory_order_relaxed);
}

QON_API int qon_serv_memcpy_s(void *dest, size_t dest_size, const void *src, size_t count) {
    if (dest == nullptr || (src == nullptr && count != 0)) return EINVAL;
    if (count > dest_size) {
        std::memset(dest, 0, dest_size);
        return ERANGE;
    }
    if (count != 0) std::memmove(dest, src, count);
    return 0;
}

}  // extern "C"
