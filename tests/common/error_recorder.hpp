// A vector-math error call-back that records the last report (status, element index and the
// reporting function's name) and counts them, and a fixture that installs it around each test
// with the error status cleared.
#pragma once

#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cstddef>
#include <string>

namespace qon::test {

struct SeenError {
    int count = 0, code = 0, index = -1;
    std::string name;
};
inline SeenError seen_error;

inline int record_error(PaxErrorContext *c) {
    ++seen_error.count;
    seen_error.code = c->code;
    seen_error.index = c->index;
    seen_error.name.assign(c->function_name, static_cast<std::size_t>(c->function_name_length));
    return 0;
}

class RecordingErrors : public testing::Test {
protected:
    void SetUp() override {
        saved_ = paxSetErrorCallBack(record_error);
        paxClearErrStatus();
        seen_error = SeenError{};
    }
    void TearDown() override {
        paxSetErrorCallBack(saved_);
        paxClearErrStatus();
    }
    PaxErrorCallBack saved_ = nullptr;
};

}  // namespace qon::test
