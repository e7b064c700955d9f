// The error status, the call-back and the error path: order of the error-mode actions,
// write-back of results a call-back changed, the index correction, errno, the printed report
// and the floating-point exception. Elements are reported through a real kernel (Sqr overflows
// for |x| > ~1.3e154) and through the error-path entries directly.
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cerrno>
#include <csignal>
#include <cmath>
#include <complex>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "core/fpu.hpp"
#include "vm/error/error_path.hpp"

namespace {

constexpr double huge = 1e200;  // its square overflows

// Restores the thread's mode, call-back and status after each test.
class ErrorPath : public ::testing::Test {
protected:
    void SetUp() override {
        mode_ = paxGetMode();
        callback_ = paxGetErrorCallBack();
        paxClearErrStatus();
        calls = 0;
        seen = PaxErrorContext{};
    }
    void TearDown() override {
        paxSetErrorCallBack(callback_);
        // SetMode cannot clear fields, so undo through explicit values of each field.
        paxSetMode((mode_ & (PAX_ACCURACY_MASK | PAX_ERRMODE_MASK)));
        paxClearErrStatus();
        paxSetInterfInputVectorPointer(nullptr);
    }
    static inline int calls = 0;
    static inline PaxErrorContext seen{};
    static int record_and_continue(PaxErrorContext *ctx) {
        ++calls;
        seen = *ctx;
        ctx->res1 = 42.0;
        return 0;
    }
    static int record_and_stop(PaxErrorContext *ctx) {
        ++calls;
        seen = *ctx;
        ctx->res1 = 42.0;
        return 1;
    }

private:
    unsigned int mode_ = 0;
    PaxErrorCallBack callback_ = nullptr;
};

TEST_F(ErrorPath, StatusOperationsReturnThePreviousValue) {
    EXPECT_EQ(paxSetErrStatus(3), 0);
    EXPECT_EQ(paxGetErrStatus(), 3);
    EXPECT_EQ(qon_pax_kernel_GetErrStatus(), 3);
    EXPECT_EQ(paxClearErrStatus(), 3);
    EXPECT_EQ(paxGetErrStatus(), 0);
    double a[2] = {2.0, 3.0}, r[2];
    paxSetErrStatus(-7);
    paxdSqr(2, a, r);  // success does not clear the stored status
    EXPECT_EQ(paxGetErrStatus(), -7);
}

TEST_F(ErrorPath, CallBackBitFollowsInstallation) {
    paxSetMode(PAX_ERRMODE_DEFAULT);
    EXPECT_EQ(paxSetErrorCallBack(record_and_continue), nullptr);
    EXPECT_EQ(paxGetErrorCallBack(), &record_and_continue);
    EXPECT_EQ(paxClearErrorCallBack(), &record_and_continue);
    EXPECT_EQ(paxGetErrorCallBack(), nullptr);
    EXPECT_EQ(paxGetMode() & PAX_ERRMODE_MASK, 0x0A00u);

    paxSetMode(PAX_ERRMODE_CALLBACK);
    paxSetErrorCallBack(record_and_continue);
    paxClearErrorCallBack();  // the merge keeps a zero error field: the bit stays
    EXPECT_EQ(paxGetMode() & PAX_ERRMODE_MASK, PAX_ERRMODE_CALLBACK);
    EXPECT_EQ(paxGetErrorCallBack(), nullptr);
}

TEST_F(ErrorPath, NoErrLeavesTheStatusAlone) {
    paxSetMode(PAX_ERRMODE_NOERR);
    paxSetErrorCallBack(record_and_continue);
    paxSetMode(PAX_ERRMODE_NOERR);
    double a = huge, r = 0;
    paxdSqr(1, &a, &r);
    EXPECT_EQ(paxGetErrStatus(), 0);
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(std::isinf(r));
}

TEST_F(ErrorPath, IgnoreStoresTheStatusButCallsNothing) {
    paxSetErrorCallBack(record_and_continue);
    paxSetMode(PAX_ERRMODE_IGNORE);
    double a = huge, r = 0;
    paxdSqr(1, &a, &r);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_OVERFLOW);
    EXPECT_EQ(calls, 0);
}

TEST_F(ErrorPath, CallBackSeesTheElementAndItsResultIsStored) {
    paxSetMode(PAX_ERRMODE_CALLBACK);
    paxSetErrorCallBack(record_and_continue);
    double a[5] = {1, 2, huge, 3, -huge}, r[5];
    paxdSqr(5, a, r);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(seen.code, PAX_STATUS_OVERFLOW);
    EXPECT_EQ(seen.index, 4);
    EXPECT_EQ(seen.arg1, -huge);
    EXPECT_EQ(seen.arg2, -huge);
    EXPECT_TRUE(std::isinf(seen.res1));
    EXPECT_STREQ(seen.function_name, "paxdSqr");
    EXPECT_EQ(seen.function_name_length, 7);
    EXPECT_EQ(r[2], 42.0);
    EXPECT_EQ(r[4], 42.0);
    EXPECT_EQ(r[3], 9.0);
    EXPECT_EQ(paxGetErrStatus(), PAX_STATUS_OVERFLOW);
}

TEST_F(ErrorPath, NonZeroAnswerStopsAndKeepsTheKernelResult) {
    paxSetMode(PAX_ERRMODE_CALLBACK | PAX_ERRMODE_ERRNO);
    paxSetErrorCallBack(record_and_stop);
    errno = 0;
    float a = 1e30f, r = 0;
    paxsSqr(1, &a, &r);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(std::isinf(r));
    EXPECT_EQ(errno, 0);
    EXPECT_STREQ(seen.function_name, "paxsSqr");
}

TEST_F(ErrorPath, IndexCountsFromTheInputVectorPointer) {
    paxSetMode(PAX_ERRMODE_CALLBACK);
    paxSetErrorCallBack(record_and_continue);
    std::vector<double> whole(20, 1.0);
    whole[15] = huge;
    std::vector<double> r(20);
    paxSetInterfInputVectorPointer(whole.data());
    paxdSqr(15, whole.data() + 5, r.data());  // element 10 of this block
    EXPECT_EQ(seen.index, 15);
    std::vector<float> wholef(20, 1.0f);
    wholef[12] = 1e30f;
    std::vector<float> rf(20);
    paxSetInterfInputVectorPointer(wholef.data());
    paxsSqr(10, wholef.data() + 4, rf.data());
    EXPECT_EQ(seen.index, 12);
}

TEST_F(ErrorPath, StridedKernelReportsStridedElements) {
    paxSetMode(PAX_ERRMODE_CALLBACK);
    paxSetErrorCallBack(record_and_continue);
    double a[9] = {1, 0, 0, huge, 0, 0, 2, 0, 0}, r[6] = {};
    paxdSqrI(3, a, 3, r, 2);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen.index, 1);
    EXPECT_EQ(seen.arg1, huge);
    EXPECT_STREQ(seen.function_name, "paxdSqrI");
    EXPECT_EQ(r[0], 1.0);
    EXPECT_EQ(r[2], 42.0);
    EXPECT_EQ(r[4], 4.0);
}

TEST_F(ErrorPath, ErrnoSetFromTheStatusTable) {
    paxSetMode(PAX_ERRMODE_ERRNO);
    paxClearErrorCallBack();
    struct {
        int code, expected;
    } cases[] = {{PAX_STATUS_BADARG, 22}, {PAX_STATUS_BADPTR, 13}, {PAX_STATUS_ERRDOM, 33},
                 {PAX_STATUS_SING, 34},   {PAX_STATUS_OVERFLOW, 34}, {PAX_STATUS_UNDERFLOW, 34}, {9, 14}};
    for (auto c : cases) {
        errno = 0;
        double a = 1, r = 1;
        qon::vm::error_d(c.code, 0, &a, &a, &r, &r, "paxdTest");
        EXPECT_EQ(errno, c.expected) << c.code;
    }
}

TEST_F(ErrorPath, LongNamesAreCutAndComplexPartsFilled) {
    paxSetMode(PAX_ERRMODE_CALLBACK);
    paxSetErrorCallBack(record_and_continue);
    const std::string name(60, 'x');
    std::complex<double> a1(1, 2), a2(3, 4), r1(5, 6), r2(7, 8);
    qon::vm::error_z(PAX_STATUS_SING, 0, &a1, &a2, &r1, &r2, name.c_str());
    EXPECT_EQ(seen.function_name_length, 47);
    EXPECT_EQ(std::string(seen.function_name), name.substr(0, 47));
    EXPECT_EQ(seen.arg1_im, 2.0);
    EXPECT_EQ(seen.arg2, 3.0);
    EXPECT_EQ(seen.arg2_im, 4.0);
    EXPECT_EQ(seen.res1_im, 6.0);
    EXPECT_EQ(seen.res2, 7.0);
    EXPECT_EQ(seen.res2_im, 8.0);
    EXPECT_EQ(r1, std::complex<double>(42.0, 6.0));

    seen = PaxErrorContext{};
    seen.arg1 = -1;
    double x = 9, y = 9;
    qon::vm::error_dI(PAX_STATUS_BADARG, 3, &x, 0, &x, 0, &y, 0, &y, 0, "paxdExp");
    EXPECT_EQ(seen.index, 3);
    EXPECT_EQ(seen.arg1, 0.0);  // values are not filled for bad arguments
    EXPECT_EQ(y, 9.0);          // nor written back
}

TEST_F(ErrorPath, StderrReportNamesTheElement) {
    paxSetMode(PAX_ERRMODE_STDERR);
    paxClearErrorCallBack();
    double a[3] = {1, huge, 1}, r[3];
    ::testing::internal::CaptureStderr();
    paxdSqr(3, a, r);
    double b1 = 2, b2 = 3, s1 = 4, s2 = 5;
    qon::vm::error_dI(PAX_STATUS_ERRDOM, 7, &b1, 0, &b2, 0, &s1, 0, &s2, 0, "paxdPow");
    std::string out = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(out.find("paxdSqr"), std::string::npos);
    EXPECT_NE(out.find("overflow"), std::string::npos);
    EXPECT_NE(out.find("a[1] = 9.9999999999999997e+199"), std::string::npos) << out;
    EXPECT_NE(out.find("paxdPow"), std::string::npos);
    EXPECT_NE(out.find("b[7] = 3"), std::string::npos);
    EXPECT_NE(out.find("r2[7] = 5"), std::string::npos);
}

TEST_F(ErrorPath, ExceptModeWithoutTrapsRaisesTheFlagOnly) {
    paxSetMode(PAX_ERRMODE_EXCEPT);
    paxClearErrorCallBack();
    qon::fpu::x87_clear_exceptions();
    double a = huge, r = 0;
    paxdSqr(1, &a, &r);
    qon::fpu::X87Env env;
    qon::fpu::x87_store_env(env);
    qon::fpu::x87_load_env(env);
    EXPECT_EQ(env.status & 0x3F, 0x08);  // overflow flag
    EXPECT_EQ(env.control & 0x3F, 0x3F);  // everything masked
    qon::fpu::x87_clear_exceptions();
}

void overflow_with_trap() {
    paxSetMode(PAX_ERRMODE_EXCEPT | PAX_TRAP_OVERFLOW);
    double a = huge, r = 0;
    paxdSqr(1, &a, &r);
    std::exit(0);
}

TEST_F(ErrorPath, ExceptModeWithTrapDeliversTheException) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(overflow_with_trap(), ::testing::KilledBySignal(SIGFPE), "");
}

TEST_F(ErrorPath, KernelsRunUnderTheModesDenormalSetting) {
    static unsigned int csr_inside = 0;
    paxSetErrorCallBack([](PaxErrorContext *) -> int {
        csr_inside = _mm_getcsr() & ~0x3Fu;
        return 0;
    });
    const unsigned int before = _mm_getcsr();
    double a = huge, r;
    paxSetMode(PAX_ERRMODE_CALLBACK | PAX_FTZDAZ_ON);
    paxdSqr(1, &a, &r);
    EXPECT_EQ(csr_inside, 0x9FC0u);
    paxSetMode(PAX_FTZDAZ_OFF);
    paxdSqr(1, &a, &r);
    EXPECT_EQ(csr_inside, 0x1F80u);
    EXPECT_EQ(_mm_getcsr() & ~0x3Fu, before & ~0x3Fu);
}

}  // namespace
