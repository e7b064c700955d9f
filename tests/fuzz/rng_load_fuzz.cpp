// libFuzzer target for saved stream images. Each input is handed to the file form (written to
// a scratch file) and, when the buffer is as long as its header claims, to the memory form.
// A loaded stream is then used: sized, copied, saved and reloaded, and drawn from through
// its registry row (QON_FUZZ_DRAW below), so that any state a loader accepts is exercised.
// Every other outcome must be one of the documented status codes with no stream left behind.
#include <qon/qon_rok.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

template <class T>
T get(const uint8_t *p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// The number of bytes the image claims: header, state, and every chunk record with its data,
// or 0 when the buffer is shorter than that.
size_t claimed_length(const uint8_t *data, size_t size) {
    if (size < 24) return 0;
    const bool v2 = data[0] == 2;
    uint64_t at = v2 ? 24 : 20;
    const uint64_t state = v2 ? get<uint32_t>(data + 12) : get<uint16_t>(data + 10);
    const uint32_t chunks = v2 ? get<uint16_t>(data + 16) : get<uint16_t>(data + 12);
    at += state;
    for (uint32_t c = 0; c < chunks; ++c) {
        if (at + 24 > size) return 0;
        at += 24 + uint64_t{get<uint32_t>(data + at + 20)};
    }
    return at <= size ? static_cast<size_t>(at) : 0;
}

bool documented(int32_t status) {
    switch (status) {
    case ROK_ERROR_MEM:
    case ROK_ERROR_FILE_READ:
    case ROK_ERROR_BAD_FILE_FORMAT:
    case ROK_ERROR_BAD_FILE_VERSION:
    case ROK_ERROR_BAD_MEM_FORMAT:
    case ROK_ERROR_NO_RDRAND:
    case ROK_ERROR_NO_AESNI:
        return true;
    default:
        return false;
    }
}

void exercise(RokStream *s) {
    BrngProperties p{};
    if (rokGetBrngProperties(rokGetStreamStateBrng(s), &p) != ROK_STATUS_OK) std::abort();
    std::vector<char> image(static_cast<size_t>(rokGetStreamSize(s)));
    rokSaveStreamM(s, image.data());
    RokStream *again = nullptr;
    if (rokLoadStreamM(&again, image.data()) != ROK_STATUS_OK) std::abort();  // what loads, saves and reloads
    rokDeleteStream(&again);
    RokStream *copy = nullptr;
    if (rokCopyStream(&copy, s) == ROK_STATUS_OK) rokDeleteStream(&copy);
    // QON_FUZZ_DRAW=all draws from every loaded stream, QON_FUZZ_DRAW=<hex ids, comma-separated>
    // only from those generators' streams; unset, nothing is drawn.
    const char *draw = std::getenv("QON_FUZZ_DRAW");
    if (draw == nullptr) return;
    bool listed = std::strcmp(draw, "all") == 0;
    for (const char *p = draw; !listed && *p != '\0';) {
        char *end = nullptr;
        const long id = std::strtol(p, &end, 16);
        if (end == p) break;
        listed = id == rokGetStreamStateBrng(s);
        p = *end == ',' ? end + 1 : end;
    }
    if (!listed) return;
    std::vector<uint8_t> words(16 * 40);
    double d[40];
    float f[40];
    p.i_brng(s, 40, words.data());
    p.d_brng(s, 40, d, 0.0, 1.0);
    p.s_brng(s, 40, f, 0.0f, 1.0f);
}

void check(int32_t status, RokStream *s) {
    if (status == ROK_STATUS_OK) {
        if (s == nullptr) std::abort();
        exercise(s);
        rokDeleteStream(&s);
    } else if (s != nullptr || !documented(status)) {
        std::abort();
    }
}

// The scratch file lives in memory (/dev/shm) where there is one: a disk round trip per input
// would cost more than the load itself.
const std::string &scratch_path() {
    static const std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") +
                                    "/qon_rng_fuzz_" + std::to_string(getpid()) + ".rng";
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string &path = scratch_path();
    if (std::FILE *f = std::fopen(path.c_str(), "wb")) {
        if (size != 0) std::fwrite(data, size, 1, f);
        std::fclose(f);
        RokStream *s = nullptr;
        check(rokLoadStreamF(&s, path.data(), static_cast<int32_t>(path.size())), s);
    }
    if (claimed_length(data, size) != 0) {
        std::vector<char> buffer(data, data + size);
        RokStream *s = nullptr;
        check(rokLoadStreamM(&s, buffer.data()), s);
    }
    return 0;
}
