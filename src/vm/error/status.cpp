// The thread's error status and error call-back. Installing a call-back sets the call-back bit
// of the error mode; removing it clears the bit through the mode merge, which leaves a zero
// error-mode field alone: with the call-back bit as the only error flag, removal keeps it.
#include <qon/qon_pax.h>

#include "vm/mode/thread_state.hpp"

using qon::vm::initialised_record;
using qon::vm::thread_record_or_exit;

extern "C" {

QON_API int paxSetErrStatus(int status) {
    qon::vm::ThreadRecord &record = thread_record_or_exit();
    int previous = record.status;
    record.status = status;
    return previous;
}
QON_API int qon_pax_kernel_SetErrStatus(int status) __attribute__((alias("paxSetErrStatus")));

QON_API int paxGetErrStatus(void) { return thread_record_or_exit().status; }
QON_API int qon_pax_kernel_GetErrStatus(void) __attribute__((alias("paxGetErrStatus")));

QON_API int paxClearErrStatus(void) { return paxSetErrStatus(PAX_STATUS_OK); }
QON_API int qon_pax_kernel_ClearErrStatus(void) __attribute__((alias("paxClearErrStatus")));

QON_API PaxErrorCallBack paxSetErrorCallBack(PaxErrorCallBack callback) {
    qon::vm::ThreadRecord &record = initialised_record();
    PaxErrorCallBack previous = record.callback;
    unsigned int mode = record.mode & ~PAX_ERRMODE_CALLBACK;
    if (callback != nullptr) mode |= PAX_ERRMODE_CALLBACK;
    record.callback = callback;
    qon_pax_kernel_SetMode(mode);
    return previous;
}
QON_API PaxErrorCallBack qon_pax_kernel_SetErrorCallBack(PaxErrorCallBack callback)
    __attribute__((alias("paxSetErrorCallBack")));

QON_API PaxErrorCallBack paxGetErrorCallBack(void) { return thread_record_or_exit().callback; }
QON_API PaxErrorCallBack qon_pax_kernel_GetErrorCallBack(void) __attribute__((alias("paxGetErrorCallBack")));

QON_API PaxErrorCallBack paxClearErrorCallBack(void) { return paxSetErrorCallBack(nullptr); }
QON_API PaxErrorCallBack qon_pax_kernel_ClearErrorCallBack(void) __attribute__((alias("paxClearErrorCallBack")));

}  // extern "C"
