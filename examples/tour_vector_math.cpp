// Vector math: one call computes a whole array; the thread's mode word picks the accuracy and
// what happens to exceptional elements, and a call-back can repair them in place.
#include <qon/qon_pax.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include "tour.h"

namespace {

int clamp_overflow(PaxErrorContext *ctx) {
    std::printf("  call-back: %s element %d, x = %g gave %g (status %d); storing 1e308 instead\n",
                ctx->function_name, ctx->index, ctx->arg1, ctx->res1, ctx->code);
    ctx->res1 = ctx->res2 = 1e308;
    return 0;  // let the error mode continue and store the replaced result
}

}  // namespace

void tour_vector_math() {
    std::printf("Vector math\n-----------\n");
    std::printf("mode word of this thread: 0x%X (HA accuracy, errno + exception flag + call-back)\n",
                paxGetMode());

    setenv("QON_PAX_MODE", "PAX_EP,PAX_ERRMODE_IGNORE", 1);
    unsigned int other = 0;
    std::thread([&] { other = paxGetMode(); }).join();
    unsetenv("QON_PAX_MODE");
    std::printf("a new thread started with QON_PAX_MODE=PAX_EP,PAX_ERRMODE_IGNORE reads 0x%X\n", other);

    double x[6] = {-1.0, 0.0, 1.0, 10.0, 709.78, 710.0};
    double r[6];
    PaxErrorCallBack previous = paxSetErrorCallBack(clamp_overflow);
    paxClearErrStatus();
    paxdExp(6, x, r);
    std::printf("paxdExp:");
    for (double v : r) std::printf(" %.6g", v);
    std::printf("\nstatus after the call: %d (%s)\n", paxGetErrStatus(),
                paxGetErrStatus() == PAX_STATUS_OVERFLOW ? "overflow" : "other");
    paxSetErrorCallBack(previous);

    double ep[6];
    paxdExp_26(6, x, ep);
    std::printf("EP kernel (26 correct bits) at x = 1: %.17g vs HA %.17g\n\n", ep[2], r[2]);
    paxClearErrStatus();
}
