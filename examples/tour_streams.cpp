// Tour section: a random stream is created, drawn from, saved to a file, loaded back, and the
// loaded stream continues exactly where the saved one stood.
#include <qon/qon_rok.h>

#include <unistd.h>

#include <cstdio>
#include <string>

#include "tour.h"

namespace {

void print_row(const char *label, const double *v, int n) {
    std::printf("  %-26s", label);
    for (int i = 0; i < n; ++i) std::printf(" %.6f", v[i]);
    std::printf("\n");
}

}  // namespace

void tour_streams() {
    std::printf("random streams\n");
    RokStream *stream = nullptr;
    const uint32_t seed = 1234567890;
    if (rokNewStreamEx(&stream, ROK_BRNG_MCG31M1, 1, &seed) != ROK_STATUS_OK) {
        std::printf("  could not create an MCG31m1 stream\n");
        rokDeleteStream(&stream);
        return;
    }
    double first[4], saved_next[4], loaded_next[4];
    rokdBRngMCG31M1(stream, 4, first, 0.0, 1.0);
    print_row("MCG31m1, seed 1234567890:", first, 4);

    char dir_template[] = "/tmp/qon_tour_XXXXXX";
    const char *dir = mkdtemp(dir_template);
    const std::string path = std::string(dir != nullptr ? dir : "/tmp") + "/stream.rng";
    const int32_t saved = rokSaveStreamF(stream, path.data(), static_cast<int32_t>(path.size()));
    std::printf("  saved %d bytes to %s (status %d)\n", rokGetStreamSize(stream), path.c_str(), saved);

    RokStream *loaded = nullptr;
    const int32_t status = rokLoadStreamF(&loaded, path.data(), static_cast<int32_t>(path.size()));
    rokdBRngMCG31M1(stream, 4, saved_next, 0.0, 1.0);
    if (status == ROK_STATUS_OK) {
        rokdBRngMCG31M1(loaded, 4, loaded_next, 0.0, 1.0);
        print_row("original continues:", saved_next, 4);
        print_row("loaded continues:", loaded_next, 4);
    } else {
        std::printf("  loading failed with status %d\n", status);
    }
    rokDeleteStream(&loaded);
    rokDeleteStream(&stream);
    unlink(path.c_str());
    if (dir != nullptr) rmdir(dir);
}
