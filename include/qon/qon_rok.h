/* Random streams of qon: status codes, basic-generator identifiers, the registry row
 * (BrngProperties), stream operations, saved stream images and the entry points of every
 * basic generator. A stream is an opaque heap block owned by the library; one caller uses a
 * stream at a time. Every operation returns 0 or a negative status code listed below. */
#ifndef QON_ROK_H
#define QON_ROK_H

#include <stdint.h>
#include "qon_export.h"

QON_EXTERN_C_BEGIN

/* ---------------------------------------------------------------------------------------
 * Status codes
 * ------------------------------------------------------------------------------------- */
enum {
    ROK_STATUS_OK = 0,
    ROK_ERROR_BAD_METHOD = -2,        /* init_stream with an unknown method */
    ROK_ERROR_MEM = -4,               /* an allocation failed */
    ROK_ERROR_NULL_PTR = -5,          /* registration with a null function slot */
    ROK_ERROR_BAD_BRNG = -1000,       /* unknown or unbuilt generator, sub-generator out of range */
    ROK_ERROR_NO_LEAPFROG = -1002,    /* the generator has no leapfrog */
    ROK_ERROR_NO_SKIPAHEAD = -1003,   /* the generator has no skip-ahead */
    ROK_ERROR_NO_SKIPAHEADEX = -1004, /* the generator has no extended skip-ahead */
    ROK_ERROR_BAD_STATE_SIZE = -1008, /* registration: stream_state_size < 0 */
    ROK_ERROR_BAD_WORD_SIZE = -1009,  /* registration: word_size not 4, 8 or 16 */
    ROK_ERROR_BAD_NSEEDS = -1010,     /* registration: num_seeds < 1 */
    ROK_ERROR_BAD_NBITS = -1011,      /* registration: num_bits < 1 */
    ROK_ERROR_BAD_NSTREAMS = -1013,   /* leapfrog with a negative stream count */
    ROK_ERROR_ABSTRACT_KIND = -1122,  /* an abstract stream asked for a kind it does not carry */
    ROK_ERROR_FILE_CLOSE = -1100,
    ROK_ERROR_FILE_OPEN = -1101,
    ROK_ERROR_FILE_WRITE = -1102,
    ROK_ERROR_FILE_READ = -1103,
    ROK_ERROR_BAD_FILE_FORMAT = -1110,
    ROK_ERROR_BAD_FILE_VERSION = -1111,
    ROK_ERROR_NO_RDRAND = -1130,
    ROK_ERROR_NO_AESNI = -1140,
    ROK_ERROR_BAD_MEM_FORMAT = -1200
};

/* ---------------------------------------------------------------------------------------
 * Basic-generator identifiers: (main-table row + 1) << 20, plus a sub-generator index for
 * the families (WH: + 0 .. 272, MT2203: + 0 .. 6023). Generators registered at run time get
 * 0x1100000, 0x1200000, ... Ids below 0x100000 address the compatibility table: 0 MCG31m1,
 * 1 R250, 2 MRG32k3a, 3 MCG59, 4 .. 276 WH sub-generators 0 .. 272, 277 Sobol,
 * 278 Niederreiter.
 * ------------------------------------------------------------------------------------- */
enum {
    ROK_BRNG_MCG31M1 = 0x100000,
    ROK_BRNG_R250 = 0x200000,
    ROK_BRNG_MRG32K3A = 0x300000,
    ROK_BRNG_MCG59 = 0x400000,
    ROK_BRNG_WH = 0x500000,
    ROK_BRNG_SOBOL = 0x600000,
    ROK_BRNG_NIEDERR = 0x700000,
    ROK_BRNG_MT19937 = 0x800000,
    ROK_BRNG_MT2203 = 0x900000,
    ROK_BRNG_IABSTRACT = 0xA00000,
    ROK_BRNG_DABSTRACT = 0xB00000,
    ROK_BRNG_SABSTRACT = 0xC00000,
    ROK_BRNG_SFMT19937 = 0xD00000,
    ROK_BRNG_NONDETERM = 0xE00000,
    ROK_BRNG_ARS5 = 0xF00000,
    ROK_BRNG_PHILOX4X32X10 = 0x1000000
};

/* Methods of a generator's init_stream entry. */
enum {
    ROK_INIT_SEED = 0,          /* n seed words (uint32_t array) */
    ROK_INIT_LEAPFROG = 1,      /* n = number of streams, params -> uint32_t k, this stream's index */
    ROK_INIT_SKIPAHEAD = 2,     /* n = 2, params -> the 64-bit skip count, low 32-bit word first */
    ROK_INIT_SKIPAHEAD_EX = 3   /* n uint64_t words of skip count, least significant first */
};

/* ---------------------------------------------------------------------------------------
 * Streams and the registry row
 * ------------------------------------------------------------------------------------- */
typedef struct RokStream RokStream; /* opaque */

typedef int32_t (*RokInitStreamFn)(int32_t method, RokStream *stream, int32_t n, const void *params);
typedef int32_t (*RokSBrngFn)(RokStream *stream, int32_t n, float r[], float a, float b);
typedef int32_t (*RokDBrngFn)(RokStream *stream, int32_t n, double r[], double a, double b);
typedef int32_t (*RokIBrngFn)(RokStream *stream, int32_t n, void *r);

/* One registry row: what a basic generator is and the four entry points that drive it. */
typedef struct BrngProperties {
    int32_t stream_state_size; /* bytes of the whole stream block, its 16-byte header included */
    int32_t num_seeds;         /* 32-bit seed words that seeding consumes at most */
    int32_t includes_zero;     /* 1 when a raw output can be 0 */
    int32_t word_size;         /* bytes of one raw output word: 4, 8 or 16 */
    int32_t num_bits;          /* significant bits of one raw output word */
    RokInitStreamFn init_stream;
    RokSBrngFn s_brng;         /* n floats on [a, b) */
    RokDBrngFn d_brng;         /* n doubles on [a, b) */
    RokIBrngFn i_brng;         /* n raw words of word_size bytes */
} BrngProperties;

/* Creates a stream of generator `brng` seeded with nseeds words. The abstract ids are refused
 * (ROK_ERROR_BAD_BRNG). When seeding itself fails with another code the stream stays in
 * *stream and the caller deletes it. */
QON_API int32_t rokNewStreamEx(RokStream **stream, int32_t brng, int32_t nseeds, const uint32_t seeds[]);
/* A new stream with the source's generator, state and chunks. */
QON_API int32_t rokCopyStream(RokStream **new_stream, const RokStream *src);
/* Copies num_seeds * word_size bytes of the source's state (and its chunks) onto dest. */
QON_API int32_t rokCopyStreamState(RokStream *dest, const RokStream *src);
/* Frees the stream and its chunks and sets *stream to NULL. */
QON_API int32_t rokDeleteStream(RokStream **stream);
/* Bytes of the stream's saved image: stream_state_size + 8 + sum of (chunk size + 24). */
QON_API int32_t rokGetStreamSize(const RokStream *stream);
/* The generator id the stream was created with. */
QON_API int32_t rokGetStreamStateBrng(const RokStream *stream);
/* 0 when `brng` names a usable registry row, else ROK_ERROR_BAD_BRNG. */
QON_API int32_t rokIsBrngValid(int32_t brng);
/* Number of rows of the main table: 16 plus the registered generators. */
QON_API int32_t rokGetNumRegBrngs(void);
/* Copies the registry row of `brng`. */
QON_API int32_t rokGetBrngProperties(int32_t brng, BrngProperties *properties);
/* Appends a row and returns its id (> 0) or a negative status (ROK_ERROR_MEM once all 512
 * rows of the table are taken). Not thread-safe: no other stream operation may run meanwhile. */
QON_API int32_t rokRegisterBrng(const BrngProperties *properties);
/* Makes the stream yield elements k, k + nstreams, k + 2 nstreams, ... of its sequence. */
QON_API int32_t rokLeapfrogStream(RokStream *stream, int32_t k, int32_t nstreams);
/* Advances the stream by nskip elements. */
QON_API int32_t rokSkipAheadStream(RokStream *stream, uint64_t nskip);
/* Advances the stream by a skip count of n 64-bit words, least significant first. */
QON_API int32_t rokSkipAheadStreamEx(RokStream *stream, int32_t n, const uint64_t nskip[]);

/* ---------------------------------------------------------------------------------------
 * Saved stream images (memory buffer of rokGetStreamSize bytes, or a file)
 * ------------------------------------------------------------------------------------- */
QON_API int32_t rokSaveStreamM(const RokStream *stream, char *buffer);
QON_API int32_t rokLoadStreamM(RokStream **stream, const char *buffer);
QON_API int32_t rokSaveStreamF(const RokStream *stream, const char *fname, int32_t fname_length);
QON_API int32_t rokLoadStreamF(RokStream **stream, const char *fname, int32_t fname_length);

/* Processor features that gate the nondeterministic (RDRAND) and ARS-5 (AES-NI) generators:
 * 1 when present, else 0. */
QON_API int32_t rokCPUisRDRAND(void);
QON_API int32_t rokCPUisAES(void);

/* ---------------------------------------------------------------------------------------
 * Basic-generator entry points, one group per registry row. init: (method, stream, n, params);
 * s/d: n values on [a, b); i: n raw words. Raw words are uint32_t except MCG59 (uint64_t) and
 * WH (16-byte words).
 * ------------------------------------------------------------------------------------- */
QON_API int32_t rokBRngMCG31M1InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngMCG31M1(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngMCG31M1(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngMCG31M1(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngR250InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngR250(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngR250(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngR250(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngMRG32K3AInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngMRG32K3A(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngMRG32K3A(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngMRG32K3A(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngMCG59InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngMCG59(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngMCG59(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngMCG59(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngWHInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngWH(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngWH(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngWH(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngSobolInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngSobol(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngSobol(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngSobol(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngNiederrInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngNiederr(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngNiederr(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngNiederr(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngMT19937InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngMT19937(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngMT19937(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngMT19937(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngMT2203InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngMT2203(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngMT2203(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngMT2203(RokStream *stream, int32_t n, void *r);

/* The abstract rows carry one output kind each; their other slots hold rokdBRngiAbstract,
 * which returns ROK_ERROR_ABSTRACT_KIND. */
QON_API int32_t rokBRngiAbstractInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t rokiBRngiAbstract(RokStream *stream, int32_t n, void *r);
QON_API int32_t rokBRngdAbstractInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t rokdBRngdAbstract(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokBRngsAbstractInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngsAbstract(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngiAbstract(RokStream *stream, int32_t n, double r[], double a, double b);

QON_API int32_t rokBRngSFMT19937InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngSFMT19937(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngSFMT19937(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngSFMT19937(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngTRNGInitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngTRNG(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngTRNG(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngTRNG(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngARS5InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngARS5(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngARS5(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngARS5(RokStream *stream, int32_t n, void *r);

QON_API int32_t rokBRngPHILOX4X32X10InitStream(int32_t method, RokStream *stream, int32_t n, const void *params);
QON_API int32_t roksBRngPHILOX4X32X10(RokStream *stream, int32_t n, float r[], float a, float b);
QON_API int32_t rokdBRngPHILOX4X32X10(RokStream *stream, int32_t n, double r[], double a, double b);
QON_API int32_t rokiBRngPHILOX4X32X10(RokStream *stream, int32_t n, void *r);

QON_EXTERN_C_END

#endif
