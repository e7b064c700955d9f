// Per-thread records are created on first use and freed when their thread ends; concurrent
// first use from many threads is safe (run this suite under ThreadSanitizer to check).
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <atomic>
#include <thread>
#include <vector>

#include "vm/mode/thread_state.hpp"

namespace {

TEST(ThreadState, TenThousandThreadsLeaveNoRecordBehind) {
    paxGetMode();
    const std::size_t before = qon::vm::live_records();
    const int total = std::getenv("QON_TEST_QUICK") ? 1000 : 10000;
    std::atomic<int> ok{0};
    for (int batch = 0; batch < total / 100; ++batch) {
        std::vector<std::thread> threads;
        for (int t = 0; t < 100; ++t)
            threads.emplace_back([&ok, t] {
                paxSetMode(t % 2 ? PAX_LA : PAX_EP);
                paxSetErrStatus(t);
                if (paxGetErrStatus() == t) ok.fetch_add(1);
            });
        for (std::thread &th : threads) th.join();
    }
    EXPECT_EQ(ok.load(), total);
    EXPECT_EQ(qon::vm::live_records(), before);
}

TEST(ThreadState, ConcurrentFirstUse) {
    std::atomic<int> go{0};
    std::atomic<int> correct{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 16; ++t)
        threads.emplace_back([&, t] {
            while (go.load() == 0) {
            }
            unsigned int mode = t % 3 == 0 ? PAX_LA : t % 3 == 1 ? PAX_HA : PAX_EP;
            paxSetMode(mode);
            paxSetInterfInputVectorPointer(&threads);
            if (qon_pax_kernel_GetTTableIndex() == static_cast<int>(mode) - 1) correct.fetch_add(1);
        });
    go.store(1);
    for (std::thread &th : threads) th.join();
    EXPECT_EQ(correct.load(), 16);
}

}  // namespace
