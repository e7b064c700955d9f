// Internal layout of a random stream and the services every basic generator and distribution
// generator builds on: the stream record, the generator-id lookup, chunks attached to a
// stream and the process-wide table of shared read-only chunk data.
//
// A stream is one block of the registry row's stream_state_size bytes, 128-byte aligned:
//   bytes 0..3   generator id as given at creation (u32)
//   bytes 4..7   format mark, 1 when created or copied (u32)
//   bytes 8..15  head of the chunk list (null when none)
//   bytes 16..   the generator's state, private to the generator's source file; a generator
//                reaches it with rok_state<State>(stream) and keeps its State struct to itself.
//
// How a basic generator plugs in: its source (src/rng/<name>.cpp) defines the four entry
// points declared in <qon/qon_rok.h> (rokBRng<Name>InitStream, roksBRng<Name>,
// rokdBRng<Name>, rokiBRng<Name>) with extern "C" QON_API. The registry rows in registry.cpp
// name them directly. A generator that is not built yet has its four entries in unbuilt.cpp,
// made by one ROK_UNBUILT_BRNG(<Name>) line that returns ROK_ERROR_BAD_BRNG; building the
// generator means deleting that line and adding its source.
#pragma once

#include <qon/qon_rok.h>

#include <cstddef>
#include <cstdint>

// One chunk attached to a stream (40 bytes, 128-byte aligned). A key of two zero words marks
// data owned by this node alone; a non-zero key names an entry of the shared table.
struct RokChunk {
    uint32_t id;
    uint32_t size;  // bytes of data
    void *data;
    RokChunk *next;
    uint64_t key[2];
};
static_assert(sizeof(RokChunk) == 40);

struct RokStream {
    uint32_t brng;
    uint32_t format;
    RokChunk *chunks;
};
static_assert(sizeof(RokStream) == 16);

namespace qon::rng {

inline constexpr size_t kStreamHeaderBytes = sizeof(RokStream);
inline constexpr int kAlign = 128;  // streams, chunk nodes and chunk data

// A generator's private state, 16 bytes into the stream block.
template <class State>
inline State *rok_state(RokStream *stream) {
    return reinterpret_cast<State *>(reinterpret_cast<unsigned char *>(stream) + kStreamHeaderBytes);
}
template <class State>
inline const State *rok_state(const RokStream *stream) {
    return reinterpret_cast<const State *>(reinterpret_cast<const unsigned char *>(stream) + kStreamHeaderBytes);
}

// Bytes of a stream block of this row. Registration accepts any state size >= 0; a block is
// never smaller than its header.
inline size_t stream_block_bytes(const BrngProperties *props) {
    size_t size = static_cast<size_t>(props->stream_state_size);
    return size < kStreamHeaderBytes ? kStreamHeaderBytes : size;
}

// The first node of the stream's chunk list with this id, or null.
inline RokChunk *find_chunk(const RokStream *stream, uint32_t id) {
    RokChunk *c = stream->chunks;
    while (c != nullptr && c->id != id) c = c->next;
    return c;
}
inline bool is_private_chunk(const RokChunk *c) { return c->key[0] == 0 && c->key[1] == 0; }

// The one identifier rule. Ids >= 0x100000 address the main table (row (id >> 20) - 1,
// sub-generator id & 0xFFFFF); smaller ids the compatibility table (ids 4 .. 276 are row 4,
// sub-generator id - 4; any other id is its own row, sub-generator 0).
enum class BrngTable : uint32_t { compat = 0, main = 1 };
struct BrngRef {
    BrngTable table;
    uint32_t row;
    uint32_t sub;                 // sub-generator index (MT2203 parameter set, WH generator)
    const BrngProperties *props;  // the row, valid only after a successful lookup
};

// Splits the id into table, row and sub-generator without validating it.
BrngRef brng_decode(uint32_t id);
// Decodes and validates the id: the row must exist and hold a generator (empty compatibility
// rows are refused) and the sub-generator must be in range. 0 or ROK_ERROR_BAD_BRNG.
int32_t brng_lookup(uint32_t id, BrngRef *ref);
// The registry row of a stream's generator (the stream's id was validated at creation).
const BrngProperties *stream_brng(const RokStream *stream);

}  // namespace qon::rng

extern "C" {

// Allocation and header steps of stream creation: a block of the row's state size, id,
// format mark 1, no chunks. `table` is the row array the row index refers to. 0 or -4.
int32_t rokAllocateStream(RokStream **stream, const BrngProperties *table, uint32_t brng, uint32_t row,
                          uint32_t sub);

// Chunks. `data` of rokAddChunk must come from qon_serv_allocate(size, 128); the stream owns
// it from then on, except when `key` names an existing shared entry of the same size: the new
// node (the list head) then refers to the shared copy, and the caller, seeing
// stream->chunks->data != data, frees its own. key may be null (private data). The new node
// goes to the head of the list; rokSearchChunk finds the first node with the id.
int32_t rokAddChunk(RokStream *stream, uint32_t id, const uint64_t key[2], void *data, uint32_t size);
void *rokSearchChunk(const RokStream *stream, uint32_t id);
int32_t rokGetNumChunks(const RokStream *stream);
void rokDeleteChunks(RokStream *stream);
int32_t rokCopyChunks(RokStream *dest, const RokStream *src);

// Shared read-only data table. Keys are two u64 words; a fresh key is (time-stamp counter,
// owner pointer), re-drawn until it matches no entry.
void rokGenerateNewGlobalRODataTableEntryId(uint64_t key[2], const void *owner);
// Data pointer of the entry with this key, or null. *size receives its byte count when found.
void *rokFindGlobRODataTableEntry(const uint64_t key[2], uint32_t *size);
// Appends {key, reference count 1, data}; 0, or -4 when the table is full.
int32_t rokCreateGlobRODataTableEntry(const uint64_t key[2], void *data, uint32_t size);
// Adds one reference to the entry; returns its data pointer, or null when there is none.
void *rokRegisterGlobRODataReference(const uint64_t key[2]);
// Drops one reference; at zero the data is freed and the table compacted. 1 when the key
// was found, 0 otherwise.
int32_t rokUnregisterGlobRODataReference(const uint64_t key[2]);
// Number of live entries (for tests and diagnostics).
uint32_t rokGetGlobRODataTableCount(void);

}  // extern "C"
