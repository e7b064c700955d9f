// Tour section: the long-period and counter-based basic generators. Each draws a few uniforms;
// an MT19937 stream jumps 2^60 values ahead in one call; two MT2203 sub-generators give
// independent streams from the same seed.
#include <qon/qon_rok.h>

#include <chrono>
#include <cstdio>

#include "tour.h"

namespace {

void show(const char *name, int32_t brng) {
    const uint32_t seed[6] = {2026, 11, 22, 1, 2, 3};
    RokStream *s = nullptr;
    if (rokNewStreamEx(&s, brng, 6, seed) != ROK_STATUS_OK) {
        std::printf("  %-16s could not be created\n", name);
        rokDeleteStream(&s);
        return;
    }
    BrngProperties p{};
    rokGetBrngProperties(brng, &p);
    double u[4];
    p.d_brng(s, 4, u, 0.0, 1.0);
    std::printf("  %-16s %.6f %.6f %.6f %.6f\n", name, u[0], u[1], u[2], u[3]);
    rokDeleteStream(&s);
}

}  // namespace

void tour_generators() {
    std::printf("basic generators (seed 2026, 11, 22, 1, 2, 3)\n");
    show("MT19937", ROK_BRNG_MT19937);
    show("MT2203 #0", ROK_BRNG_MT2203);
    show("MT2203 #6023", ROK_BRNG_MT2203 + 6023);
    show("Philox4x32-10", ROK_BRNG_PHILOX4X32X10);
    show("R250", ROK_BRNG_R250);
    show("MRG32k3a", ROK_BRNG_MRG32K3A);

    RokStream *s = nullptr;
    const uint32_t seed = 5489;
    if (rokNewStreamEx(&s, ROK_BRNG_MT19937, 1, &seed) == ROK_STATUS_OK) {
        const auto t0 = std::chrono::steady_clock::now();
        const int32_t status = rokSkipAheadStream(s, uint64_t{1} << 60);
        const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        uint32_t w[2];
        rokiBRngMT19937(s, 2, w);
        std::printf("  MT19937 jump by 2^60: status %d, %.1f ms, next words %u %u\n", status, ms, w[0], w[1]);
    }
    rokDeleteStream(&s);
}
