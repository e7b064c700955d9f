// Stream records: creation, copy, state copy, deletion, size, and the dispatch of leapfrog and
// skip-ahead to the generator's init_stream entry. A stream is one 128-byte aligned block
// (16-byte header, then the generator's state) plus its chunk list.
#include "rng/stream.hpp"

#include <qon/qon_serv.h>

#include <algorithm>
#include <iterator>
#include <cstring>

using namespace qon::rng;

namespace {

constexpr uint32_t kFormatMark = 1;
constexpr uint32_t kAbstractIds[] = {ROK_BRNG_IABSTRACT, ROK_BRNG_DABSTRACT, ROK_BRNG_SABSTRACT};

void free_stream(RokStream *stream) {
    rokDeleteChunks(stream);
    qon_serv_deallocate(stream);
}

}  // namespace

extern "C" {

int32_t rokAllocateStream(RokStream **stream, const BrngProperties *table, uint32_t brng, uint32_t row, uint32_t) {
    auto *s = static_cast<RokStream *>(qon_serv_allocate(stream_block_bytes(&table[row]), kAlign));
    *stream = s;
    if (s == nullptr) return ROK_ERROR_MEM;
    s->brng = brng;
    s->format = kFormatMark;
    s->chunks = nullptr;
    return ROK_STATUS_OK;
}

QON_API int32_t rokNewStreamEx(RokStream **stream, int32_t brng, int32_t nseeds, const uint32_t seeds[]) {
    *stream = nullptr;
    const auto id = static_cast<uint32_t>(brng);
    if (std::find(std::begin(kAbstractIds), std::end(kAbstractIds), id) != std::end(kAbstractIds))
        return ROK_ERROR_BAD_BRNG;
    BrngRef ref;
    int32_t status = brng_lookup(id, &ref);
    if (status != ROK_STATUS_OK) return status;
    status = rokAllocateStream(stream, ref.props - ref.row, id, ref.row, ref.sub);
    if (status != ROK_STATUS_OK) return status;
    status = ref.props->init_stream(ROK_INIT_SEED, *stream, nseeds, seeds);
    // A generator that refuses the id altogether (one not built) leaves no stream behind;
    // any other seeding failure leaves the stream to the caller.
    if (status == ROK_ERROR_BAD_BRNG) rokDeleteStream(stream);
    return status;
}

QON_API int32_t rokCopyStream(RokStream **new_stream, const RokStream *src) {
    *new_stream = nullptr;
    BrngRef ref;
    int32_t status = brng_lookup(src->brng, &ref);
    if (status != ROK_STATUS_OK) return status;
    RokStream *copy = nullptr;
    status = rokAllocateStream(&copy, ref.props - ref.row, src->brng, ref.row, ref.sub);
    if (status != ROK_STATUS_OK) return status;
    std::memcpy(copy, src, stream_block_bytes(ref.props));
    copy->format = kFormatMark;
    copy->chunks = nullptr;
    status = rokCopyChunks(copy, src);
    if (status != ROK_STATUS_OK) {
        free_stream(copy);
        return status;
    }
    *new_stream = copy;
    return ROK_STATUS_OK;
}

// The copied length is num_seeds * word_size of the source's row, not its state size; it is
// bounded by the state bytes of both blocks so that a row whose seed words outnumber its
// state (WH) or a smaller destination never writes past a block.
QON_API int32_t rokCopyStreamState(RokStream *dest, const RokStream *src) {
    if (dest == src) return ROK_STATUS_OK;
    const BrngProperties *sp = stream_brng(src);
    const BrngProperties *dp = stream_brng(dest);
    size_t bytes = static_cast<size_t>(sp->num_seeds) * static_cast<size_t>(sp->word_size);
    bytes = std::min({bytes, stream_block_bytes(sp) - kStreamHeaderBytes, stream_block_bytes(dp) - kStreamHeaderBytes});
    std::memcpy(rok_state<unsigned char>(dest), rok_state<unsigned char>(src), bytes);
    rokDeleteChunks(dest);
    return rokCopyChunks(dest, src);
}

QON_API int32_t rokDeleteStream(RokStream **stream) {
    if (*stream != nullptr) free_stream(*stream);
    *stream = nullptr;
    return ROK_STATUS_OK;
}

QON_API int32_t rokGetStreamSize(const RokStream *stream) {
    int64_t size = static_cast<int64_t>(stream_block_bytes(stream_brng(stream))) + 8;
    for (const RokChunk *c = stream->chunks; c != nullptr; c = c->next) size += static_cast<int64_t>(c->size) + 24;
    return static_cast<int32_t>(size);
}

QON_API int32_t rokGetStreamStateBrng(const RokStream *stream) { return static_cast<int32_t>(stream->brng); }

QON_API int32_t rokLeapfrogStream(RokStream *stream, int32_t k, int32_t nstreams) {
    if (nstreams < 0) return ROK_ERROR_BAD_NSTREAMS;
    return stream_brng(stream)->init_stream(ROK_INIT_LEAPFROG, stream, nstreams, &k);
}

QON_API int32_t rokSkipAheadStream(RokStream *stream, uint64_t nskip) {
    return stream_brng(stream)->init_stream(ROK_INIT_SKIPAHEAD, stream, 2, &nskip);
}

QON_API int32_t rokSkipAheadStreamEx(RokStream *stream, int32_t n, const uint64_t nskip[]) {
    return stream_brng(stream)->init_stream(ROK_INIT_SKIPAHEAD_EX, stream, n, nskip);
}

}  // extern "C"
