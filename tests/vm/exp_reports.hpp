// What the error path reported, for the exponential tests: a call-back that records every
// element it is offered (and optionally replaces its first result), and a fixture that installs
// it under the ERRNO and CALLBACK error modes and restores the thread's state afterwards.
#pragma once

#include <gtest/gtest.h>

#include <qon/qon_pax.h>

#include <string>
#include <vector>

namespace qon::test::exp {

struct Report {
    int code, index;
    double arg, res1, res2;
    std::string name;
};

inline std::vector<Report> reports;
inline double replacement = 0;  // a non-zero value is stored by the call-back in res1

inline int record(PaxErrorContext *ctx) {
    reports.push_back({ctx->code, ctx->index, ctx->arg1, ctx->res1, ctx->res2, ctx->function_name});
    if (replacement != 0) ctx->res1 = replacement;
    return 0;
}

class Recorded : public ::testing::Test {
protected:
    void SetUp() override {
        saved_mode_ = paxGetMode();
        paxSetMode(PAX_ERRMODE_ERRNO | PAX_ERRMODE_CALLBACK);
        saved_callback_ = paxSetErrorCallBack(record);
        paxClearErrStatus();
        reports.clear();
        replacement = 0;
    }
    void TearDown() override {
        paxSetErrorCallBack(saved_callback_);
        paxSetMode(saved_mode_);
        paxSetInterfInputVectorPointer(nullptr);
        paxClearErrStatus();
    }
    unsigned saved_mode_ = 0;
    PaxErrorCallBack saved_callback_ = nullptr;
};

}  // namespace qon::test::exp
