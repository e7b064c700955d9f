// The mode word: its default, QON_PAX_MODE read once per thread, the field-by-field merge of
// paxSetMode, the accuracy index, and the independence of threads.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace {

// Runs fn on a new thread (whose record is fresh) and returns its result.
template <class Fn>
auto on_fresh_thread(Fn fn) {
    decltype(fn()) result{};
    std::thread([&] { result = fn(); }).join();
    return result;
}

unsigned int fresh_mode_with_env(const char *value) {
    if (value == nullptr) unsetenv("QON_PAX_MODE");
    else setenv("QON_PAX_MODE", value, 1);
    unsigned int mode = on_fresh_thread([] { return paxGetMode(); });
    unsetenv("QON_PAX_MODE");
    return mode;
}

TEST(ModeEnvironment, TokensAreParsedOrRejectedAsAWhole) {
    struct Case {
        const char *value;
        unsigned int mode;
    } cases[] = {
        {nullptr, 0x1A02},
        {"", 0x1A02},
        {"PAX_EP", 0x1A03},
        {"PAX_ERRMODE_IGNORE", 0x0102},
        {"PAX_DEFAULT_PRECISION", 0x1A02},
        {"PAX_DOUBLE_CONSISTENT", 0x1A02},  // the 17th character is neither a comma nor the end
        {"PAX_DOUBLE_CONSISTEN", 0x1A22},
        {"PAX_LA,PAX_HA", 0x1A03},          // values are ORed
        {"PAX_HA,", 0x1A02},                // trailing comma
        {"PAX_HA, PAX_LA", 0x1A02},         // space
        {"PAX_FLOAT_CONSISTENT,PAX_DOUBLE_CONSISTEN", 0x1A32},
        {"PAX_LA,PAX_ERRMODE_STDERR,PAX_TRAP_OVERFLOW", 0x4000401},
        {"PAX_HA,PAX_HA", 0x1A02},
        {"pax_HA", 0x1A02},
        {"PAX_XX", 0x1A02},
        {"PAX_ERRMODE_ERRNOX", 0x1A02},
        {"PAX_ERRMODE_DEFAULT,PAX_EP", 0x1A03},
        {"PAX_RESTORE,PAX_ERRMODE_NOERR", 0x2032},
    };
    for (const Case &c : cases)
        EXPECT_EQ(fresh_mode_with_env(c.value), c.mode) << (c.value ? c.value : "(unset)");
}

TEST(ModeEnvironment, OverlongValueIsRejected) {
    std::string value = "PAX_HA";
    while (value.size() < 300) value += ",PAX_LA";
    EXPECT_EQ(fresh_mode_with_env(value.c_str()), 0x1A02u);
}

TEST(ModeEnvironment, ReadOncePerThread) {
    setenv("QON_PAX_MODE", "PAX_EP", 1);
    unsigned int first = 0, second = 0;
    std::thread([&] {
        first = paxGetMode();
        setenv("QON_PAX_MODE", "PAX_LA", 1);
        second = paxGetMode();
    }).join();
    unsetenv("QON_PAX_MODE");
    EXPECT_EQ(first, 0x1A03u);
    EXPECT_EQ(second, 0x1A03u);
}

TEST(SetMode, MergesNonZeroFieldsAndReturnsThePreviousMode) {
    on_fresh_thread([] {
        EXPECT_EQ(paxSetMode(0), 0x1A02u);
        EXPECT_EQ(paxGetMode(), 0x1A02u);
        EXPECT_EQ(paxSetMode(0x100), 0x1A02u);
        EXPECT_EQ(paxGetMode(), 0x0102u);
        EXPECT_EQ(paxSetMode(0x10), 0x0102u);  // consistency is never taken from the argument
        EXPECT_EQ(paxGetMode(), 0x0102u);
        paxSetMode(0xF0C00000u);  // bits 22-23 and 28-31 are never taken either
        EXPECT_EQ(paxGetMode(), 0x0102u);
        paxSetMode(PAX_EP | PAX_TRAP_OVERFLOW | PAX_FTZDAZ_ON | 0x10000u);
        EXPECT_EQ(paxGetMode(), 0x0102u | 0x1u | PAX_TRAP_OVERFLOW | PAX_FTZDAZ_ON | 0x10000u);
        paxSetMode(PAX_LA);  // a zero trap field cannot clear the traps
        EXPECT_EQ(paxGetMode() & PAX_TRAP_MASK, PAX_TRAP_OVERFLOW);
        paxSetMode(PAX_TRAP_INVALID);  // a different non-zero combination replaces them
        EXPECT_EQ(paxGetMode() & PAX_TRAP_MASK, PAX_TRAP_INVALID);
        paxSetMode(PAX_ERRMODE_ERRNO | PAX_ERRMODE_STDERR);  // the error mode is replaced whole
        EXPECT_EQ(paxGetMode() & PAX_ERRMODE_MASK, PAX_ERRMODE_ERRNO | PAX_ERRMODE_STDERR);
        return 0;
    });
}

TEST(SetMode, UserAndKernelNamesShareTheState) {
    on_fresh_thread([] {
        EXPECT_EQ(qon_pax_kernel_SetMode(PAX_LA), 0x1A02u);
        EXPECT_EQ(qon_pax_kernel_GetMode(), 0x1A01u);
        EXPECT_EQ(paxGetMode(), 0x1A01u);
        return 0;
    });
    EXPECT_EQ(reinterpret_cast<void *>(&qon_pax_kernel_GetMode), reinterpret_cast<void *>(&paxGetMode));
}

TEST(TableIndex, FollowsTheAccuracyField) {
    on_fresh_thread([] {
        EXPECT_EQ(qon_pax_kernel_GetTTableIndex(), 1);
        paxSetMode(PAX_LA);
        EXPECT_EQ(qon_pax_kernel_GetTTableIndex(), 0);
        paxSetMode(PAX_EP);
        EXPECT_EQ(qon_pax_kernel_GetTTableIndex(), 2);
        EXPECT_EQ(qon_pax_kernel_GetTTableIndexM(12345, 0x1A01), 0);
        EXPECT_EQ(qon_pax_kernel_GetTTableIndexM(0, 0x1A00), -1);
        EXPECT_EQ(paxGetMode(), 0x1A03u);  // the M form does not touch the thread
        return 0;
    });
    EXPECT_EQ(dll_cpu_version(), 7);
}

TEST(ThreadState, ThreadsKeepIndependentModes) {
    unsigned int other = 0;
    paxSetMode(PAX_EP);
    std::thread([&] {
        paxSetMode(PAX_LA | PAX_ERRMODE_IGNORE);
        other = paxGetMode();
    }).join();
    EXPECT_EQ(other, 0x0101u);
    EXPECT_EQ(paxGetMode() & PAX_ACCURACY_MASK, PAX_EP);
    paxSetMode(PAX_HA);
}

}  // namespace
