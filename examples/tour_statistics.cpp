// Summary statistics: mean, variance, skewness, kurtosis and quartiles of Gaussian draws, through
// one task that points at the data and at the result arrays.
#include <qon/qon_rok_dist.h>
#include <qon/qon_ss.h>

#include <cstdio>
#include <vector>

#include "tour.h"

void tour_statistics() {
    std::printf("Summary statistics\n------------------\n");
    const int32_t n = 100000;
    std::vector<double> x(n);
    RokStream *stream = nullptr;
    uint32_t seed = 7;
    rokNewStreamEx(&stream, ROK_BRNG_MCG31M1, 1, &seed);
    rokdRngGaussian(ROK_RNG_GAUSSIAN_BOXMULLER2, stream, n, x.data(), 3.0, 2.0);
    rokDeleteStream(&stream);

    int32_t p = 1, storage = ROK_SS_MATRIX_STORAGE_ROWS, norders = 3;
    double mean, r2, r3, r4, c2, c3, c4, skewness, kurtosis, quartiles[3];
    const double orders[3] = {0.25, 0.5, 0.75};
    rok_ss_task *task = nullptr;
    rokdSSNewTask(&task, &p, &n, &storage, x.data(), nullptr, nullptr, 0);
    rokdSSEditMoments(task, &mean, &r2, &r3, &r4, &c2, &c3, &c4);
    rokdSSEditTask(task, ROK_SS_ED_SKEWNESS, &skewness);
    rokdSSEditTask(task, ROK_SS_ED_KURTOSIS, &kurtosis);
    rokdSSEditQuantiles(task, &norders, orders, quartiles, nullptr, nullptr);
    const qon_serv_services *services = qon_serv_get_services();
    const int basic = rokdSSBasic(task, ROK_SS_MEAN | ROK_SS_2C_MOM | ROK_SS_SKEWNESS | ROK_SS_KURTOSIS,
                                  ROK_SS_METHOD_1PASS, services);
    const int quant = rokdSSQuantiles(task, ROK_SS_QUANTS, ROK_SS_METHOD_FAST, services);
    rokSSDeleteTask(&task);

    std::printf("%d Gaussian draws with mean 3 and deviation 2 (status %d, %d):\n", n, basic, quant);
    std::printf("  mean %.4f, variance %.4f (expected 3 and 4)\n", mean, c2);
    std::printf("  skewness %.4f, excess kurtosis %.4f (expected 0 and 0)\n", skewness, kurtosis);
    std::printf("  quartiles %.4f %.4f %.4f (expected %.4f %.4f %.4f)\n\n", quartiles[0], quartiles[1], quartiles[2],
                3 - 2 * 0.6744897501960817, 3.0, 3 + 2 * 0.6744897501960817);
}
