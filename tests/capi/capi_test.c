/* A C program that sees only the public headers and links the two shared libraries: vector
 * math through its entries and a table of kernels, the error call-back, and the core services. */
#include <math.h>
#include <qon/qon.h>
#include <qon/qon_serv.h>
#include <stdint.h>
#include <stdio.h>

static int failures = 0;
static int checks = 0;

static void check(int ok, const char *what) {
    ++checks;
    if (!ok) {
        ++failures;
        fprintf(stderr, "capi: failed: %s\n", what);
    }
}

static int overflow_seen = 0;
static int on_error(PaxErrorContext *ctx) {
    overflow_seen = ctx->code == PAX_STATUS_OVERFLOW;
    ctx->res1 = 1.0;
    return 0;
}

int main(void) {
    void *p = qon_serv_allocate(100, 128);
    check(p != NULL && ((uintptr_t)p % 128) == 0, "aligned allocation");
    qon_serv_deallocate(p);

    check(paxGetMode() == PAX_DEFAULT_MODE, "default mode");
    check(paxSetMode(PAX_EP) == PAX_DEFAULT_MODE, "set mode returns the previous one");
    check(qon_pax_kernel_GetTTableIndex() == 2, "EP index");

    double a[3] = {2.0, 1e200, -3.0}, r[3];
    paxSetErrorCallBack(on_error);
    paxdSqr(3, a, r);
    check(r[0] == 4.0 && r[2] == 9.0, "Sqr values");
    check(overflow_seen && r[1] == 1.0, "call-back replaced the overflowing result");
    check(paxGetErrStatus() == PAX_STATUS_OVERFLOW, "status");

    typedef void (*unary_d)(int, const double *, double *);
    unary_d ha = (unary_d)qon_pax_kernel_dSqr_ttab[1];
    double x = 3.0, y = 0.0;
    ha(1, &x, &y);
    check(y == 9.0, "kernel from the table");
    check(qon_pax_kernel_dExp_ctab[1] > qon_pax_kernel_dExp_ctab[2], "figures");

    RokStream *stream = NULL;
    uint32_t seed = 1;
    check(rokNewStreamEx(&stream, ROK_BRNG_MCG31M1, 1, &seed) == ROK_STATUS_OK, "stream");
    double g[1000], mean = 0;
    check(rokdRngGaussian(ROK_RNG_GAUSSIAN_BOXMULLER, stream, 1000, g, 0.0, 1.0) == 0, "Gaussian draws");
    for (int i = 0; i < 1000; ++i) mean += g[i] / 1000;
    check(fabs(mean) < 0.2, "Gaussian mean");
    check(rokDeleteStream(&stream) == 0 && stream == NULL, "stream deleted");

    printf("%d passed, %d failed\n", checks - failures, failures);
    return failures != 0;
}
