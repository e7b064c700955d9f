// The exponential: three accuracies of paxdExp side by side, the statuses of overflow and
// underflow with the element reported to a call-back, and the strided form.
#include <qon/qon_pax.h>

#include <cstdio>

namespace {
int show(PaxErrorContext *ctx) {
    std::printf("  reported: %s element %d, exp(%g) -> %g, status %d\n", ctx->function_name, ctx->index, ctx->arg1,
                ctx->res1, ctx->code);
    return 0;
}
}  // namespace

void tour_exp() {
    std::printf("Exponential\n-----------\n");
    const double x = 1.0;
    double ha, la, ep;
    paxdExp(1, &x, &ha);
    paxdExp_50(1, &x, &la);
    paxdExp_26(1, &x, &ep);
    std::printf("exp(1): HA %.17g, LA %.17g, EP %.17g\n", ha, la, ep);

    const double a[4] = {709.78, 709.8, -710.0, -746.0};
    double r[4];
    PaxErrorCallBack saved = paxSetErrorCallBack(show);
    paxdExp(4, a, r);
    paxSetErrorCallBack(saved);
    std::printf("exp(709.78) = %g (finite, not reported), exp(-710) = %g (subnormal); last status %d\n", r[0], r[2],
                paxGetErrStatus());
    paxClearErrStatus();

    const float every_other[6] = {0.0f, 99.0f, 1.0f, 99.0f, 2.0f, 99.0f};
    float e[3];
    paxsExpI(3, every_other, 2, e, 1);
    std::printf("paxsExpI over every other element: %g %g %g\n\n", e[0], e[1], e[2]);
}
