// Helpers of the random-stream tests: an owning stream handle and the exact-arithmetic oracle
// of the congruential generators (128-bit products, no code shared with the library).
#pragma once

#include <qon/qon_rok.h>
#include <qon/qon_serv.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace rngtest {

struct StreamDeleter {
    void operator()(RokStream *s) const { rokDeleteStream(&s); }
};
using StreamPtr = std::unique_ptr<RokStream, StreamDeleter>;

inline StreamPtr make_stream(int32_t brng, std::vector<uint32_t> seeds) {
    RokStream *s = nullptr;
    int32_t status = rokNewStreamEx(&s, brng, static_cast<int32_t>(seeds.size()), seeds.data());
    EXPECT_EQ(status, ROK_STATUS_OK) << "brng " << std::hex << brng;
    return StreamPtr(s);
}

using u128 = unsigned __int128;

// x(k) = a^k * x(0) mod m, by repeated 128-bit products.
struct Lcg {
    u128 m;
    uint64_t a;
    uint64_t x;
    uint64_t next() {
        uint64_t r = x;
        x = static_cast<uint64_t>(static_cast<u128>(a) * x % m);
        return r;
    }
};

inline uint64_t pow_oracle(uint64_t a, uint64_t e, u128 m) {
    u128 r = 1 % m, b = a % m;
    for (; e != 0; e >>= 1) {
        if (e & 1) r = r * b % m;
        b = b * b % m;
    }
    return static_cast<uint64_t>(r);
}

constexpr u128 kM31 = 2147483647u;
constexpr u128 kM59 = u128{1} << 59;
constexpr uint64_t kA31 = 1132489760u;
constexpr uint64_t kA59 = 302875106592253ull;

// Smaller sweeps under the sanitizers.
inline bool quick() { return std::getenv("QON_TEST_QUICK") != nullptr; }

}  // namespace rngtest
