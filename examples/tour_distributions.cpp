// Distributions: Gaussian values drawn from a stream, and their sample mean and deviation.
#include <qon/qon_rok_dist.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "tour.h"

void tour_distributions() {
    std::printf("Distributions\n-------------\n");
    RokStream *stream = nullptr;
    uint32_t seed = 2026;
    rokNewStreamEx(&stream, ROK_BRNG_MCG31M1, 1, &seed);
    const int n = 1000000;
    std::vector<double> x(n);
    rokdRngGaussian(ROK_RNG_GAUSSIAN_BOXMULLER2, stream, n, x.data(), 10.0, 2.0);
    double sum = 0, sq = 0;
    for (double v : x) sum += v;
    const double mean = sum / n;
    for (double v : x) sq += (v - mean) * (v - mean);
    std::printf("%d Gaussian values with mean 10 and deviation 2 (Box-Muller2 over MCG31m1):\n", n);
    std::printf("  first three: %.6f %.6f %.6f\n", x[0], x[1], x[2]);
    std::printf("  sample mean %.5f, sample deviation %.5f\n\n", mean, std::sqrt(sq / (n - 1)));
    rokDeleteStream(&stream);
}
