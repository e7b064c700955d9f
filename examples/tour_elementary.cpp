// Real elementary functions: degree and half-turn functions exact where the mathematics is,
// statuses for poles and domain errors, pow against the IEEE powr, and the accuracy slots.
#include <qon/qon_pax.h>

#include <cstdio>

void tour_elementary() {
    std::printf("Elementary functions\n--------------------\n");
    const double deg[4] = {30.0, 90.0, 180.0, 1e22};
    double s[4], c[4];
    paxdSind(4, deg, s);
    paxdCosd(4, deg, c);
    for (int i = 0; i < 4; ++i) std::printf("  sind(%g) = %.17g, cosd(%g) = %.17g\n", deg[i], s[i], deg[i], c[i]);

    const double half[2] = {0.5, 1.0};
    double t[2];
    paxClearErrStatus();
    paxdTanpi(2, half, t);
    std::printf("tanpi(0.5) = %g, tanpi(1) = %g, status %d (singularity)\n", t[0], t[1], paxGetErrStatus());

    const double base[2] = {-8.0, -8.0}, expo[2] = {3.0, 3.0};
    double p[2];
    paxClearErrStatus();
    paxdPow(1, base, expo, &p[0]);
    paxdPowr(1, base, expo, &p[1]);
    std::printf("pow(-8, 3) = %g; powr(-8, 3) = %g, status %d (domain: powr needs a >= 0)\n", p[0], p[1],
                paxGetErrStatus());
    paxClearErrStatus();

    const double x = 0.1;
    double ha, la;
    paxdAsinpi(1, &x, &ha);
    paxdAsinpi_50(1, &x, &la);
    std::printf("asinpi(0.1): HA %.17g (within 1 ulp), LA %.17g (within 4 ulp)\n\n", ha, la);
}
