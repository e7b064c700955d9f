// Special functions: the normal distribution function and its inverse in the far tail, the
// inverse error function near 1, gamma at a pole and past its overflow, and Bessel functions,
// with the statuses the exceptional elements leave.
#include <qon/qon_pax.h>

#include <cstdio>

void tour_higher_functions() {
    std::printf("Special functions\n-----------------\n");
    // CdfNorm and CdfNormInv round-trip even where the probability is 1e-300; near 1 the rounding
    // of the probability itself limits the round trip.
    const double x[3] = {-37.0, -5.0, 1.5};
    double p[3], back[3];
    paxdCdfNorm(3, x, p);
    paxdCdfNormInv(3, p, back);
    for (int i = 0; i < 3; ++i) std::printf("  x = %5g: Phi(x) = %.17g, PhiInv(Phi(x)) = %.17g\n", x[i], p[i], back[i]);

    // erfinv close to 1 and at 1 (a singularity, +inf).
    const double e[3] = {0.5, 1.0 - 0x1p-52, 1.0};
    double y[3];
    paxClearErrStatus();
    paxdErfInv(3, e, y);
    std::printf("erfinv(0.5) = %.17g, erfinv(1 - 2^-52) = %.17g, erfinv(1) = %g, status %d\n", y[0], y[1], y[2],
                paxGetErrStatus());

    // Gamma: a pole at -2 (status 2) and overflow past 171.62 (status 3).
    const double g[3] = {0.5, -2.0, 172.0};
    double t[3];
    paxClearErrStatus();
    paxdTGamma(1, g, t);
    std::printf("tgamma(0.5) = %.17g (sqrt(pi))\n", t[0]);
    paxdTGamma(1, g + 1, t + 1);
    std::printf("tgamma(-2) = %g, status %d\n", t[1], paxGetErrStatus());
    paxdTGamma(1, g + 2, t + 2);
    std::printf("tgamma(172) = %g, status %d\n", t[2], paxGetErrStatus());

    // Bessel functions of integer order.
    const double b[2] = {2.404825557695773, 10.0};
    double j[2];
    paxdJn(2, b, 0, j);
    std::printf("J0 near its first zero: %.3g; J0(10) = %.17g\n", j[0], j[1]);
    paxClearErrStatus();
    std::printf("\n");
}
