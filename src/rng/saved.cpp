// Saved stream images, in a caller's buffer or in a file, one layout for both (little-endian):
//   0: version 2 (1 byte)   4: magic "RNG\0" (low 24 bits tested)   8: header length 24 (u16)
//  12: state length S = stream_state_size - 16 (u32)   16: chunk count (u16)   20: id (u32)
//  24: S bytes of state, then per chunk: id (u32), key (2 x u64), size D (u32), D data bytes.
// Bytes 1-3, 10-11 and 18-19 are neither written nor read. Older images (version byte 0 or 1)
// have a 20-byte header: S (u16) at 10, chunk count (u16) at 12, id (u32) at 16.
// Loading checks the header before allocating, and on any later failure deletes what it
// built: a bad image leaves no stream. Chunk 14 of a congruential generator is rebuilt from
// the loaded state rather than trusted. A file chunk longer than the rest of the file is a
// read error before anything is allocated for it.
#include "rng/mcg.hpp"
#include "rng/stream.hpp"

#include <qon/qon_serv.h>

#include <cstdio>
#include <cstring>

using namespace qon::rng;

namespace {

constexpr uint8_t kVersion = 2;
constexpr uint32_t kMagic = 0x474E52;  // "RNG"
constexpr uint32_t kMagicBytes = 0x00474E52;
constexpr uint32_t kHeaderBytes = 24;
constexpr uint32_t kOldHeaderBytes = 20;
constexpr uint32_t kChunkRecordBytes = 24;

template <class T>
T get(const unsigned char *p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class T>
void put(unsigned char *p, T v) {
    std::memcpy(p, &v, sizeof v);
}

struct Header {
    uint32_t header_bytes;  // normalised: 24 for older images
    uint32_t state_bytes;
    uint32_t chunks;
    uint32_t brng;
    uint32_t stored_bytes;  // bytes the image's header occupies
};

struct Errors {
    int32_t format;
    int32_t version;
};
constexpr Errors kMemErrors{ROK_ERROR_BAD_MEM_FORMAT, ROK_ERROR_BAD_MEM_FORMAT};
constexpr Errors kFileErrors{ROK_ERROR_BAD_FILE_FORMAT, ROK_ERROR_BAD_FILE_VERSION};

// Header checks 1 and 2 need only the first 20 bytes; their result tells how long the header is.
int32_t check_magic_and_version(const unsigned char *h, const Errors &e) {
    if ((get<uint32_t>(h + 4) & 0xFFFFFF) != kMagic) return e.format;
    if (h[0] > kVersion) return e.version;
    return ROK_STATUS_OK;
}
uint32_t stored_header_bytes(const unsigned char *h) { return h[0] == kVersion ? kHeaderBytes : kOldHeaderBytes; }

// Checks 3 to 5 on the whole header.
int32_t parse_header(const unsigned char *h, const Errors &e, Header *out, BrngRef *ref) {
    Header hd;
    if (h[0] == kVersion) {
        hd = {get<uint16_t>(h + 8), get<uint32_t>(h + 12), get<uint16_t>(h + 16), get<uint32_t>(h + 20), kHeaderBytes};
    } else {
        hd = {kHeaderBytes, get<uint16_t>(h + 10), get<uint16_t>(h + 12), get<uint32_t>(h + 16), kOldHeaderBytes};
    }
    if (brng_lookup(hd.brng, ref) != ROK_STATUS_OK) return e.format;
    if (hd.state_bytes != stream_block_bytes(ref->props) - kStreamHeaderBytes) return e.format;
    if (hd.header_bytes < kHeaderBytes) return e.format;
    *out = hd;
    return ROK_STATUS_OK;
}

// The two sources of an image. read() copies the next bytes; fits() tells whether a chunk of
// that many bytes can still be read (the memory form trusts its header).
class MemoryReader {
public:
    explicit MemoryReader(const char *buffer) : p_(reinterpret_cast<const unsigned char *>(buffer)) {}
    int32_t read(void *dst, size_t bytes) {
        if (bytes != 0) std::memcpy(dst, p_, bytes);
        p_ += bytes;
        return ROK_STATUS_OK;
    }
    bool fits(size_t) const { return true; }

private:
    const unsigned char *p_;
};

class FileReader {
public:
    explicit FileReader(std::FILE *f) : f_(f) {
        if (std::fseek(f, 0, SEEK_END) == 0) {
            long end = std::ftell(f);
            if (end >= 0) left_ = static_cast<uint64_t>(end);
        }
        std::rewind(f);
    }
    int32_t read(void *dst, size_t bytes) {
        if (bytes == 0) return ROK_STATUS_OK;
        if (std::fread(dst, bytes, 1, f_) != 1) return ROK_ERROR_FILE_READ;
        left_ -= bytes < left_ ? bytes : left_;
        return ROK_STATUS_OK;
    }
    bool fits(size_t bytes) const { return bytes <= left_; }

private:
    std::FILE *f_;
    uint64_t left_ = UINT64_MAX;
};

bool is_mcg(const RokStream *stream, RokInitStreamFn init) { return stream_brng(stream)->init_stream == init; }

// Reads one chunk record and attaches it. Keyed data joins the shared table; when an entry
// with that key already holds the data, the copy just read is dropped.
template <class Reader>
int32_t load_chunk(Reader &in, RokStream *stream, bool *saw_power_chunk) {
    unsigned char rec[kChunkRecordBytes];
    if (int32_t s = in.read(rec, sizeof rec); s != ROK_STATUS_OK) return s;
    const uint32_t id = get<uint32_t>(rec);
    const uint64_t key[2] = {get<uint64_t>(rec + 4), get<uint64_t>(rec + 12)};
    const uint32_t size = get<uint32_t>(rec + 20);
    if (!in.fits(size)) return ROK_ERROR_FILE_READ;
    void *data = qon_serv_allocate(size, kAlign);
    if (data == nullptr) return ROK_ERROR_MEM;
    if (int32_t s = in.read(data, size); s != ROK_STATUS_OK) {
        qon_serv_deallocate(data);
        return s;
    }
    if (rokAddChunk(stream, id, key, data, size) != ROK_STATUS_OK) {
        qon_serv_deallocate(data);
        return ROK_ERROR_MEM;
    }
    if (stream->chunks->data != data) qon_serv_deallocate(data);
    *saw_power_chunk = *saw_power_chunk || id == mcg::kPowerChunkId;
    return ROK_STATUS_OK;
}

// Everything after a checked header: allocation, state, processor gates, chunks.
template <class Reader>
int32_t load_body(Reader &in, const Header &hd, const BrngRef &ref, RokStream **out) {
    RokStream *stream = nullptr;
    int32_t status = rokAllocateStream(&stream, ref.props - ref.row, hd.brng, ref.row, ref.sub);
    if (status != ROK_STATUS_OK) return status;
    status = in.read(rok_state<unsigned char>(stream), hd.state_bytes);
    if (status == ROK_STATUS_OK && hd.brng == ROK_BRNG_NONDETERM && !rokCPUisRDRAND()) status = ROK_ERROR_NO_RDRAND;
    if (status == ROK_STATUS_OK && hd.brng == ROK_BRNG_ARS5 && !rokCPUisAES()) status = ROK_ERROR_NO_AESNI;
    bool saw_power_chunk = false;
    for (uint32_t c = 0; c < hd.chunks && status == ROK_STATUS_OK; ++c) status = load_chunk(in, stream, &saw_power_chunk);
    if (status == ROK_STATUS_OK && saw_power_chunk) {
        if (is_mcg(stream, rokBRngMCG31M1InitStream)) status = mcg::mcg31m1_refresh_chunk(stream);
        if (is_mcg(stream, rokBRngMCG59InitStream)) status = mcg::mcg59_refresh_chunk(stream);
    }
    if (status != ROK_STATUS_OK) {
        rokDeleteStream(&stream);
        return status;
    }
    *out = stream;
    return ROK_STATUS_OK;
}

size_t write_header(const RokStream *stream, unsigned char *h) {
    const size_t state = stream_block_bytes(stream_brng(stream)) - kStreamHeaderBytes;
    h[0] = kVersion;
    put<uint32_t>(h + 4, kMagicBytes);
    put<uint16_t>(h + 8, static_cast<uint16_t>(kHeaderBytes));
    put<uint32_t>(h + 12, static_cast<uint32_t>(state));
    put<uint16_t>(h + 16, static_cast<uint16_t>(rokGetNumChunks(stream)));
    put<uint32_t>(h + 20, stream->brng);
    return state;
}

void write_chunk_record(const RokChunk *c, unsigned char *rec) {
    put<uint32_t>(rec, c->id);
    put<uint64_t>(rec + 4, c->key[0]);
    put<uint64_t>(rec + 12, c->key[1]);
    put<uint32_t>(rec + 20, c->size);
}

// A zero-terminated copy of a name of `length` characters, from qon_serv_allocate.
char *copy_name(const char *name, int32_t length) {
    if (length < 0) length = 0;
    auto *s = static_cast<char *>(qon_serv_allocate(static_cast<size_t>(length) + 1, 1));
    if (s == nullptr) return nullptr;
    if (length > 0) std::memcpy(s, name, static_cast<size_t>(length));
    s[length] = '\0';
    return s;
}

std::FILE *open_named(const char *name, int32_t length, const char *mode, int32_t *status) {
    char *z = copy_name(name, length);
    if (z == nullptr) {
        *status = ROK_ERROR_MEM;
        return nullptr;
    }
    std::FILE *f = std::fopen(z, mode);
    qon_serv_deallocate(z);
    *status = f == nullptr ? ROK_ERROR_FILE_OPEN : ROK_STATUS_OK;
    return f;
}

int32_t write_item(std::FILE *f, const void *p, size_t bytes) {
    if (bytes == 0) return ROK_STATUS_OK;
    return std::fwrite(p, bytes, 1, f) == 1 ? ROK_STATUS_OK : ROK_ERROR_FILE_WRITE;
}

}  // namespace

extern "C" {

QON_API int32_t rokSaveStreamM(const RokStream *stream, char *buffer) {
    auto *p = reinterpret_cast<unsigned char *>(buffer);
    const size_t state = write_header(stream, p);
    p += kHeaderBytes;
    std::memcpy(p, rok_state<unsigned char>(stream), state);
    p += state;
    for (const RokChunk *c = stream->chunks; c != nullptr; c = c->next) {
        write_chunk_record(c, p);
        p += kChunkRecordBytes;
        if (c->size != 0) std::memcpy(p, c->data, c->size);
        p += c->size;
    }
    return ROK_STATUS_OK;
}

QON_API int32_t rokLoadStreamM(RokStream **stream, const char *buffer) {
    *stream = nullptr;
    const auto *h = reinterpret_cast<const unsigned char *>(buffer);
    Header hd;
    BrngRef ref;
    if (int32_t s = check_magic_and_version(h, kMemErrors); s != ROK_STATUS_OK) return s;
    if (int32_t s = parse_header(h, kMemErrors, &hd, &ref); s != ROK_STATUS_OK) return s;
    MemoryReader in(buffer + hd.stored_bytes);
    return load_body(in, hd, ref, stream);
}

QON_API int32_t rokSaveStreamF(const RokStream *stream, const char *fname, int32_t fname_length) {
    int32_t status;
    std::FILE *f = open_named(fname, fname_length, "wb", &status);
    if (f == nullptr) return status;
    unsigned char h[kHeaderBytes] = {};
    const size_t state = write_header(stream, h);
    status = write_item(f, h, sizeof h);
    if (status == ROK_STATUS_OK) status = write_item(f, rok_state<unsigned char>(stream), state);
    for (const RokChunk *c = stream->chunks; c != nullptr && status == ROK_STATUS_OK; c = c->next) {
        unsigned char rec[kChunkRecordBytes];
        write_chunk_record(c, rec);
        status = write_item(f, rec, 4);
        if (status == ROK_STATUS_OK) status = write_item(f, rec + 4, 16);
        if (status == ROK_STATUS_OK) status = write_item(f, rec + 20, 4);
        if (status == ROK_STATUS_OK) status = write_item(f, c->data, c->size);
    }
    if (std::fclose(f) != 0 && status == ROK_STATUS_OK) status = ROK_ERROR_FILE_CLOSE;
    return status;
}

QON_API int32_t rokLoadStreamF(RokStream **stream, const char *fname, int32_t fname_length) {
    *stream = nullptr;
    int32_t status;
    std::FILE *f = open_named(fname, fname_length, "rb", &status);
    if (f == nullptr) return status;
    FileReader in(f);
    unsigned char h[kHeaderBytes] = {};
    Header hd;
    BrngRef ref;
    status = in.read(h, kOldHeaderBytes);
    if (status == ROK_STATUS_OK) status = check_magic_and_version(h, kFileErrors);
    if (status == ROK_STATUS_OK && stored_header_bytes(h) > kOldHeaderBytes)
        status = in.read(h + kOldHeaderBytes, kHeaderBytes - kOldHeaderBytes);
    if (status == ROK_STATUS_OK) status = parse_header(h, kFileErrors, &hd, &ref);
    if (status == ROK_STATUS_OK) status = load_body(in, hd, ref, stream);
    if (std::fclose(f) != 0 && status == ROK_STATUS_OK) {
        rokDeleteStream(stream);
        status = ROK_ERROR_FILE_CLOSE;
    }
    return status;
}

}  // extern "C"
