// Saved stream images: the byte layout, every header check with its memory and file codes,
// the older layout, round trips for every generator in the registry, chunk 14 rebuilt on
// load, and bad input (truncated files, missing paths, allocation failures) leaving no stream.
#include "rng_util.hpp"

#include "rng/stream.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

using namespace rngtest;
namespace fs = std::filesystem;

namespace {

std::vector<char> save(const RokStream *s, unsigned char fill = 0) {
    std::vector<char> img(rokGetStreamSize(s), static_cast<char>(fill));
    EXPECT_EQ(rokSaveStreamM(s, img.data()), ROK_STATUS_OK);
    return img;
}

template <class T>
T field(const std::vector<char> &img, size_t off) {
    T v;
    std::memcpy(&v, img.data() + off, sizeof v);
    return v;
}
template <class T>
void set_field(std::vector<char> &img, size_t off, T v) {
    std::memcpy(img.data() + off, &v, sizeof v);
}

class TempDir {
public:
    TempDir() : path_(fs::temp_directory_path() / ("qon_rng_" + std::to_string(getpid()))) { fs::create_directories(path_); }
    ~TempDir() { fs::remove_all(path_); }
    std::string file(const std::string &name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

void write_file(const std::string &path, const std::vector<char> &bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
std::vector<char> read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(in), {});
}

int32_t load_mem(const std::vector<char> &img, StreamPtr *out = nullptr) {
    RokStream *s = reinterpret_cast<RokStream *>(0x1);
    int32_t status = rokLoadStreamM(&s, img.data());
    if (status != ROK_STATUS_OK) EXPECT_EQ(s, nullptr);
    StreamPtr owned(s);
    if (out != nullptr) *out = std::move(owned);
    return status;
}

int32_t load_file(const std::string &path, StreamPtr *out = nullptr) {
    RokStream *s = reinterpret_cast<RokStream *>(0x1);
    int32_t status = rokLoadStreamF(&s, path.data(), static_cast<int32_t>(path.size()));
    if (status != ROK_STATUS_OK) EXPECT_EQ(s, nullptr);
    StreamPtr owned(s);
    if (out != nullptr) *out = std::move(owned);
    return status;
}

// Raw words of any registered generator, as bytes.
std::vector<unsigned char> draw_bytes(RokStream *s, int32_t n) {
    BrngProperties p{};
    EXPECT_EQ(rokGetBrngProperties(rokGetStreamStateBrng(s), &p), ROK_STATUS_OK);
    std::vector<unsigned char> out(static_cast<size_t>(n) * p.word_size);
    EXPECT_EQ(p.i_brng(s, n, out.data()), ROK_STATUS_OK);
    return out;
}
std::vector<double> draw_doubles(RokStream *s, int32_t n) {
    BrngProperties p{};
    EXPECT_EQ(rokGetBrngProperties(rokGetStreamStateBrng(s), &p), ROK_STATUS_OK);
    std::vector<double> out(n);
    EXPECT_EQ(p.d_brng(s, n, out.data(), -1.0, 3.0), ROK_STATUS_OK);
    return out;
}

}  // namespace

TEST(Saved, Mcg31m1ImageLayout) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {99u});
    std::vector<char> img = save(s.get(), 0xA5);
    ASSERT_EQ(img.size(), 408u);
    EXPECT_EQ(img[0], 2);
    EXPECT_EQ(field<uint32_t>(img, 4), 0x00474E52u);
    EXPECT_EQ(field<uint16_t>(img, 8), 24u);
    EXPECT_EQ(field<uint32_t>(img, 12), 8u);
    EXPECT_EQ(field<uint16_t>(img, 16), 1u);
    EXPECT_EQ(field<uint32_t>(img, 20), static_cast<uint32_t>(ROK_BRNG_MCG31M1));
    EXPECT_EQ(field<uint32_t>(img, 24), 99u);          // x
    EXPECT_EQ(field<uint32_t>(img, 28), kA31);          // a
    EXPECT_EQ(field<uint32_t>(img, 32), 14u);           // chunk id
    EXPECT_EQ(field<uint64_t>(img, 36), 0u);            // private: zero key
    EXPECT_EQ(field<uint64_t>(img, 44), 0u);
    EXPECT_EQ(field<uint32_t>(img, 52), 352u);
    for (size_t off : {1, 2, 3, 10, 11, 18, 19}) EXPECT_EQ(static_cast<unsigned char>(img[off]), 0xA5) << off;
    // A loader does not read those bytes either.
    for (size_t off : {1, 2, 3, 10, 11, 18, 19}) img[off] = static_cast<char>(off * 37);
    StreamPtr loaded;
    ASSERT_EQ(load_mem(img, &loaded), ROK_STATUS_OK);
    EXPECT_EQ(draw_bytes(loaded.get(), 20), draw_bytes(s.get(), 20));
}

TEST(Saved, HeaderChecksAndTheirCodes) {
    TempDir dir;
    auto s = make_stream(ROK_BRNG_MCG59, {5u});
    const std::vector<char> good = save(s.get());
    struct Case {
        const char *what;
        void (*damage)(std::vector<char> &);
        int32_t mem, file;
    };
    const Case cases[] = {
        {"version 3", [](auto &i) { i[0] = 3; }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_VERSION},
        {"version 255", [](auto &i) { i[0] = static_cast<char>(255); }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_VERSION},
        {"magic", [](auto &i) { i[5] = 'X'; }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"magic before version", [](auto &i) { i[4] = 0, i[0] = 9; }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"unknown id", [](auto &i) { set_field<uint32_t>(i, 20, 0x7700000); }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"empty compat row", [](auto &i) { set_field<uint32_t>(i, 20, 279); }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"state one short", [](auto &i) { set_field<uint32_t>(i, 12, 15); }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"state one long", [](auto &i) { set_field<uint32_t>(i, 12, 17); }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"header 23", [](auto &i) { set_field<uint16_t>(i, 8, 23); }, ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_FILE_FORMAT},
        {"other generator's state size", [](auto &i) { set_field<uint32_t>(i, 20, ROK_BRNG_MCG31M1); }, ROK_ERROR_BAD_MEM_FORMAT,
         ROK_ERROR_BAD_FILE_FORMAT},
    };
    for (const Case &c : cases) {
        std::vector<char> img = good;
        c.damage(img);
        EXPECT_EQ(load_mem(img), c.mem) << c.what;
        const std::string path = dir.file("bad.rng");
        write_file(path, img);
        EXPECT_EQ(load_file(path), c.file) << c.what;
    }
    // A longer header passes the length check; the compatibility id of the same row too.
    std::vector<char> img = good;
    set_field<uint16_t>(img, 8, 40);
    EXPECT_EQ(load_mem(img), ROK_STATUS_OK);
    set_field<uint32_t>(img, 20, 3);
    StreamPtr compat;
    ASSERT_EQ(load_mem(img, &compat), ROK_STATUS_OK);
    EXPECT_EQ(rokGetStreamStateBrng(compat.get()), 3);
}

TEST(Saved, OlderLayoutLoads) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {2718u});
    const std::vector<char> v2 = save(s.get());
    for (char version : {0, 1}) {
        // 20-byte header: S (u16) at 10, chunk count (u16) at 12, id at 16; the rest follows.
        std::vector<char> old(v2.size() - 4, 0);
        old[0] = version;
        std::memcpy(old.data() + 4, v2.data() + 4, 4);
        set_field<uint16_t>(old, 10, 8);
        set_field<uint16_t>(old, 12, 1);
        set_field<uint32_t>(old, 16, ROK_BRNG_MCG31M1);
        std::memcpy(old.data() + 20, v2.data() + 24, v2.size() - 24);
        StreamPtr loaded;
        ASSERT_EQ(load_mem(old, &loaded), ROK_STATUS_OK) << int(version);
        EXPECT_EQ(rokGetNumChunks(loaded.get()), 1);
        TempDir dir;
        write_file(dir.file("old.rng"), old);
        StreamPtr from_file;
        ASSERT_EQ(load_file(dir.file("old.rng"), &from_file), ROK_STATUS_OK);
        auto fresh = make_stream(ROK_BRNG_MCG31M1, {2718u});
        const std::vector<double> expect = draw_doubles(fresh.get(), 40);
        EXPECT_EQ(draw_doubles(loaded.get(), 40), expect);
        EXPECT_EQ(draw_doubles(from_file.get(), 40), expect);
    }
}

// Save, load and continue equals never having saved, for every generator the registry can
// make a stream of (generators still unbuilt are skipped; registered ones are included).
TEST(Saved, RoundTripForEveryGenerator) {
    TempDir dir;
    int built = 0;
    for (int32_t row = 0; row < rokGetNumRegBrngs(); ++row) {
        const int32_t id = (row + 1) << 20;
        RokStream *raw_stream = nullptr;
        const uint32_t seeds[6] = {12345, 678, 9, 10, 11, 12};
        if (rokNewStreamEx(&raw_stream, id, 6, seeds) != ROK_STATUS_OK) {
            rokDeleteStream(&raw_stream);
            continue;
        }
        ++built;
        StreamPtr s(raw_stream);
        draw_bytes(s.get(), 37);
        const std::vector<char> img = save(s.get());
        EXPECT_EQ(save(s.get()), img) << "saving changes nothing, id " << std::hex << id;
        const std::string path = dir.file("rt.rng");
        ASSERT_EQ(rokSaveStreamF(s.get(), path.data(), static_cast<int32_t>(path.size())), ROK_STATUS_OK);
        EXPECT_EQ(read_file(path), img) << std::hex << id;
        StreamPtr from_mem, from_file;
        ASSERT_EQ(load_mem(img, &from_mem), ROK_STATUS_OK) << std::hex << id;
        ASSERT_EQ(load_file(path, &from_file), ROK_STATUS_OK) << std::hex << id;
        EXPECT_EQ(rokGetStreamSize(from_mem.get()), rokGetStreamSize(s.get()));
        for (int32_t n : {1, 100, 1003}) {
            const std::vector<unsigned char> expect = draw_bytes(s.get(), n);
            EXPECT_EQ(draw_bytes(from_mem.get(), n), expect) << std::hex << id;
            EXPECT_EQ(draw_bytes(from_file.get(), n), expect) << std::hex << id;
            const std::vector<double> d = draw_doubles(s.get(), n);
            EXPECT_EQ(draw_doubles(from_mem.get(), n), d) << std::hex << id;
            EXPECT_EQ(draw_doubles(from_file.get(), n), d) << std::hex << id;
        }
    }
    EXPECT_GE(built, 2);
}

TEST(Saved, PowerChunkIsRebuiltFromTheLoadedState) {
    for (int32_t id : {ROK_BRNG_MCG31M1, ROK_BRNG_MCG59}) {
        auto s = make_stream(id, {31u});
        ASSERT_EQ(rokLeapfrogStream(s.get(), 1, 3), ROK_STATUS_OK);
        std::vector<char> img = save(s.get());
        const size_t data = 24 + (id == ROK_BRNG_MCG31M1 ? 8 : 16) + 24;
        std::memset(img.data() + data, 0x5A, 352);  // garbage powers and selector
        StreamPtr loaded;
        ASSERT_EQ(load_mem(img, &loaded), ROK_STATUS_OK);
        EXPECT_EQ(rokGetNumChunks(loaded.get()), 1);
        EXPECT_EQ(std::memcmp(rokSearchChunk(loaded.get(), 14), rokSearchChunk(s.get(), 14), 352), 0);
        EXPECT_EQ(draw_doubles(loaded.get(), 100), draw_doubles(s.get(), 100));
        // A chunk 14 of the wrong size is not trusted either: a fresh one serves the stream.
        img = save(s.get());
        set_field<uint32_t>(img, data - 4, 8);
        img.resize(data + 8);
        ASSERT_EQ(load_mem(img, &loaded), ROK_STATUS_OK);
        EXPECT_EQ(rokGetNumChunks(loaded.get()), 2);
        EXPECT_EQ(draw_doubles(loaded.get(), 50), draw_doubles(s.get(), 50));
    }
}

TEST(Saved, KeyedChunksJoinTheSharedTable) {
    auto s = make_stream(ROK_BRNG_MCG31M1, {1u});
    uint64_t key[2];
    rokGenerateNewGlobalRODataTableEntryId(key, s.get());
    void *data = qon_serv_allocate(12, 128);
    std::memset(data, 0x33, 12);
    ASSERT_EQ(rokAddChunk(s.get(), 40, key, data, 12), ROK_STATUS_OK);
    const uint32_t count = rokGetGlobRODataTableCount();
    const std::vector<char> img = save(s.get());
    StreamPtr a, b;
    ASSERT_EQ(load_mem(img, &a), ROK_STATUS_OK);
    ASSERT_EQ(load_mem(img, &b), ROK_STATUS_OK);
    EXPECT_EQ(rokSearchChunk(a.get(), 40), data);
    EXPECT_EQ(rokSearchChunk(b.get(), 40), data);
    EXPECT_EQ(rokGetGlobRODataTableCount(), count);
    s.reset();
    a.reset();
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), data);
    // A stream that is not the last holder still sees the data intact.
    EXPECT_EQ(static_cast<unsigned char *>(rokSearchChunk(b.get(), 40))[11], 0x33);
    b.reset();
    EXPECT_EQ(rokFindGlobRODataTableEntry(key, nullptr), nullptr);
}

TEST(Saved, TruncatedFilesAndBadPaths) {
    TempDir dir;
    auto s = make_stream(ROK_BRNG_MCG31M1, {8u});
    const std::vector<char> img = save(s.get());
    const std::string path = dir.file("cut.rng");
    for (size_t len = 0; len < img.size(); len += (len < 64 ? 1 : 29)) {
        write_file(path, std::vector<char>(img.begin(), img.begin() + static_cast<long>(len)));
        EXPECT_EQ(load_file(path), ROK_ERROR_FILE_READ) << len;
    }
    // A chunk claiming more data than the file holds is refused before any allocation.
    std::vector<char> huge = img;
    set_field<uint32_t>(huge, 52, 0xFFFFFFF0u);
    write_file(path, huge);
    EXPECT_EQ(load_file(path), ROK_ERROR_FILE_READ);

    const std::string missing = dir.file("no/such/dir/x.rng");
    EXPECT_EQ(load_file(missing), ROK_ERROR_FILE_OPEN);
    EXPECT_EQ(rokSaveStreamF(s.get(), missing.data(), static_cast<int32_t>(missing.size())), ROK_ERROR_FILE_OPEN);
    // The name is exactly `length` characters, terminated or not.
    const std::string named = dir.file("named.rng") + "IGNORED";
    const int32_t len = static_cast<int32_t>(named.size() - 7);
    ASSERT_EQ(rokSaveStreamF(s.get(), named.data(), len), ROK_STATUS_OK);
    RokStream *t = nullptr;
    ASSERT_EQ(rokLoadStreamF(&t, named.data(), len), ROK_STATUS_OK);
    StreamPtr owned(t);
    EXPECT_TRUE(fs::exists(dir.file("named.rng")));
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(rokSaveStreamF(s.get(), named.data(), len), ROK_ERROR_MEM);
    qon_serv_fail_allocations_after(-1);
}

TEST(Saved, AllocationFailuresLeaveNoStream) {
    TempDir dir;
    auto s = make_stream(ROK_BRNG_MCG31M1, {8u});
    void *extra = qon_serv_allocate(5, 128);
    std::memset(extra, 1, 5);
    ASSERT_EQ(rokAddChunk(s.get(), 3, nullptr, extra, 5), ROK_STATUS_OK);
    const std::vector<char> img = save(s.get());
    const std::string path = dir.file("mem.rng");
    write_file(path, img);
    for (long k = 0; k < 8; ++k) {
        qon_serv_fail_allocations_after(k);
        const int32_t m = load_mem(img);
        qon_serv_fail_allocations_after(k + 1);  // the file form spends one more on the name
        const int32_t f = load_file(path);
        qon_serv_fail_allocations_after(-1);
        EXPECT_TRUE(m == ROK_ERROR_MEM || m == ROK_STATUS_OK) << k;
        EXPECT_TRUE(f == ROK_ERROR_MEM || f == ROK_STATUS_OK) << k;
    }
}

TEST(Saved, HeaderByteFlipsNeverCrash) {
    auto s = make_stream(ROK_BRNG_MCG59, {77u});
    const std::vector<char> good = save(s.get());
    for (size_t off = 0; off < 56; ++off) {
        for (int bit = 0; bit < 8; ++bit) {
            std::vector<char> img = good;
            img[off] = static_cast<char>(img[off] ^ (1 << bit));
            // Counts and sizes grown by the flip need a buffer as long as the image claims
            // (extra chunk records of zeros are empty private chunks).
            const uint16_t count = field<uint16_t>(img, 16);
            if (count > 1) img.resize(img.size() + 24 * (count - 1), 0);
            if (off >= 52 && off < 56) {
                const int shift = 8 * static_cast<int>(off - 52) + bit;
                if (shift > 20) continue;
                img.resize(img.size() + (size_t{1} << shift), 0);
            }
            StreamPtr loaded;
            const int32_t status = load_mem(img, &loaded);
            EXPECT_TRUE(status == ROK_STATUS_OK || status == ROK_ERROR_BAD_MEM_FORMAT) << off << ":" << bit;
        }
    }
}

TEST(Saved, ProcessorFeaturesMatchTheKernelsView) {
    std::ifstream cpuinfo("/proc/cpuinfo");
    std::string line, flags;
    while (std::getline(cpuinfo, line))
        if (line.rfind("flags", 0) == 0) {
            flags = line + " ";
            break;
        }
    if (flags.empty()) GTEST_SKIP() << "no /proc/cpuinfo flags";
    EXPECT_EQ(rokCPUisRDRAND(), flags.find(" rdrand ") != std::string::npos ? 1 : 0);
    EXPECT_EQ(rokCPUisAES(), flags.find(" aes ") != std::string::npos ? 1 : 0);
}
