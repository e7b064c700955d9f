// Writes one saved image of every generator the registry can make a stream of (after a few
// draws, and for the congruential ones also after leapfrog) into the directory given as the
// first argument: the seed corpus of rng_load_fuzz.
#include <qon/qon_rok.h>

#include <cstdio>
#include <string>
#include <vector>

int main(int argc, char **argv) {
    if (argc < 2) return 2;
    const uint32_t seeds[6] = {2024, 7, 8, 9, 10, 11};
    int written = 0;
    for (int32_t row = 0; row < rokGetNumRegBrngs(); ++row) {
        RokStream *s = nullptr;
        if (rokNewStreamEx(&s, (row + 1) << 20, 6, seeds) != ROK_STATUS_OK) {
            rokDeleteStream(&s);
            continue;
        }
        BrngProperties p{};
        rokGetBrngProperties((row + 1) << 20, &p);
        std::vector<double> d(33);
        p.d_brng(s, 33, d.data(), 0.0, 1.0);
        if (row == 0 || row == 3) rokLeapfrogStream(s, 1, 3);
        std::vector<char> image(static_cast<size_t>(rokGetStreamSize(s)));
        rokSaveStreamM(s, image.data());
        const std::string path = std::string(argv[1]) + "/row" + std::to_string(row) + ".rng";
        if (std::FILE *f = std::fopen(path.c_str(), "wb")) {
            std::fwrite(image.data(), image.size(), 1, f);
            std::fclose(f);
            ++written;
        }
        rokDeleteStream(&s);
    }
    std::printf("%d images\n", written);
    return 0;
}
