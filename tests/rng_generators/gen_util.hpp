// Helpers of the basic-generator tests: an owning stream handle, drawing words through the
// registry row of a stream, generate-and-discard, and the saved image of a stream (used to
// compare whole states).
#pragma once

#include <qon/qon_rok.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace gentest {

struct StreamDeleter {
    void operator()(RokStream *s) const { rokDeleteStream(&s); }
};
using StreamPtr = std::unique_ptr<RokStream, StreamDeleter>;

inline StreamPtr make_stream(int32_t brng, const std::vector<uint32_t> &seeds) {
    RokStream *s = nullptr;
    EXPECT_EQ(rokNewStreamEx(&s, brng, static_cast<int32_t>(seeds.size()), seeds.data()), ROK_STATUS_OK)
        << std::hex << brng;
    return StreamPtr(s);
}

inline StreamPtr copy_of(const StreamPtr &s) {
    RokStream *c = nullptr;
    EXPECT_EQ(rokCopyStream(&c, s.get()), ROK_STATUS_OK);
    return StreamPtr(c);
}

inline BrngProperties props_of(const StreamPtr &s) {
    BrngProperties p{};
    EXPECT_EQ(rokGetBrngProperties(rokGetStreamStateBrng(s.get()), &p), ROK_STATUS_OK);
    return p;
}

// n raw 32-bit words through the stream's registry row.
inline std::vector<uint32_t> words(const StreamPtr &s, int32_t n) {
    std::vector<uint32_t> r(static_cast<size_t>(n) + 1, 0xDEADBEEFu);  // poisoned, one guard word
    EXPECT_EQ(props_of(s).i_brng(s.get(), n, r.data()), ROK_STATUS_OK);
    EXPECT_EQ(r.back(), 0xDEADBEEFu) << "wrote past the request";
    r.pop_back();
    return r;
}

// The same n words drawn in requests of the given sizes, cycled.
inline std::vector<uint32_t> words_in_pieces(const StreamPtr &s, int32_t n, const std::vector<int32_t> &pieces) {
    std::vector<uint32_t> r;
    for (size_t k = 0; static_cast<int32_t>(r.size()) < n; ++k) {
        const int32_t want = std::min<int32_t>(pieces[k % pieces.size()], n - static_cast<int32_t>(r.size()));
        auto part = words(s, want);
        r.insert(r.end(), part.begin(), part.end());
    }
    return r;
}

inline void discard(const StreamPtr &s, uint64_t n) {
    std::vector<uint32_t> sink(1 << 16);
    const BrngProperties p = props_of(s);
    while (n > 0) {
        const int32_t k = static_cast<int32_t>(std::min<uint64_t>(n, sink.size()));
        ASSERT_EQ(p.i_brng(s.get(), k, sink.data()), ROK_STATUS_OK);
        n -= static_cast<uint64_t>(k);
    }
}

inline std::vector<char> image(const StreamPtr &s) {
    std::vector<char> buf(static_cast<size_t>(rokGetStreamSize(s.get())));
    EXPECT_EQ(rokSaveStreamM(s.get(), buf.data()), ROK_STATUS_OK);
    return buf;
}

// Smaller sweeps under the sanitizers.
inline bool quick() { return std::getenv("QON_TEST_QUICK") != nullptr; }

}  // namespace gentest
