// The mode word: its lazy initialisation from QON_PAX_MODE, the field-by-field merge of
// qon_pax_kernel_SetMode (a zero field of the argument leaves the thread's field as it is; the
// consistency field and bits 22-23 and 28-31 are never taken from the argument), and the
// accuracy index into a table of kernels.
#include <qon/qon_pax.h>
#include <qon/qon_serv.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>

#include "vm/mode/thread_state.hpp"

namespace qon::vm {
namespace {

constexpr std::uint32_t default_mode = 0x1A02;
constexpr int env_buffer_size = 256;

struct Token {
    const char *text;
    int length;
    std::uint64_t value;
};

// Matched in this order, each over its own length; the sixth is sixteen characters long and is
// compared without a final T.
constexpr Token tokens[] = {
    {"LA", 2, 0x1},
    {"HA", 2, 0x2},
    {"EP", 2, 0x3},
    {"DEFAULT_PRECISION", 17, 0x0},
    {"FLOAT_CONSISTENT", 16, 0x10},
    {"DOUBLE_CONSISTEN", 16, 0x20},
    {"RESTORE", 7, 0x30},
    {"ERRMODE_IGNORE", 14, 0x100},
    {"ERRMODE_ERRNO", 13, 0x200},
    {"ERRMODE_STDERR", 14, 0x400},
    {"ERRMODE_EXCEPT", 14, 0x800},
    {"ERRMODE_CALLBACK", 16, 0x1000},
    {"ERRMODE_NOERR", 13, 0x2000},
    {"ERRMODE_DEFAULT", 15, 0x1A00},
    {"TRAP_INVALID", 12, 0x1000000},
    {"TRAP_DIVBYZERO", 14, 0x2000000},
    {"TRAP_OVERFLOW", 13, 0x4000000},
    {"TRAP_UNDERFLOW", 14, 0x8000000},
};

// Parses a comma-separated list of PAX_ tokens, ORing their values. Any malformed part (a
// missing prefix, an unknown token, a character other than a comma or the end after a token)
// rejects the whole value: returns false.
bool parse_mode(const char *text, std::uint64_t &value) {
    std::uint64_t acc = 0;
    int pos = 0;
    for (;;) {
        if (pos + 4 > env_buffer_size || std::strncmp(text + pos, "PAX_", 4) != 0) return false;
        pos += 4;
        const Token *match = nullptr;
        for (const Token &t : tokens) {
            if (pos + t.length < env_buffer_size && std::strncmp(text + pos, t.text, t.length) == 0) {
                match = &t;
                break;
            }
        }
        if (match == nullptr) return false;
        pos += match->length;
        if (text[pos] == ',') {
            acc |= match->value;
            ++pos;
        } else if (text[pos] == '\0') {
            value = acc | match->value;
            return true;
        } else {
            return false;
        }
    }
}

}  // namespace

std::uint32_t initial_mode() {
    char buffer[env_buffer_size];
    qon_serv_lock(QON_SERV_LOCK_ENV);
    int length = qon_serv_getenv("QON_PAX_MODE", buffer, env_buffer_size);
    qon_serv_unlock(QON_SERV_LOCK_ENV);
    std::uint64_t value = 0;
    if (length < 1 || !parse_mode(buffer, value)) return default_mode;
    auto mode = static_cast<std::uint32_t>(value);
    if ((mode & 0xF) == 0) mode |= 0x2;
    if ((mode & 0xFF00) == 0) mode |= 0x1A00;
    return mode;
}

}  // namespace qon::vm

namespace {

// Replaces the field `mask` of `current` by the argument's field when that one is non-zero.
constexpr std::uint32_t merge_field(std::uint32_t current, std::uint32_t arg, std::uint32_t mask) {
    return (arg & mask) != 0 ? (current & ~mask) | (arg & mask) : current;
}

}  // namespace

using qon::vm::initialised_record;

extern "C" {

QON_API unsigned int qon_pax_kernel_SetMode(unsigned int mode) {
    qon::vm::ThreadRecord &record = initialised_record();
    std::uint32_t previous = record.mode;
    std::uint32_t merged = previous;
    for (std::uint32_t mask : {0xFu, 0xFF00u, 0x3C0000u, 0xF000000u, 0x30000u})
        merged = merge_field(merged, mode, mask);
    record.mode = merged;
    return previous;
}

QON_API unsigned int paxSetMode(unsigned int mode) { return qon_pax_kernel_SetMode(mode); }

QON_API unsigned int paxGetMode(void) { return initialised_record().mode; }
QON_API unsigned int qon_pax_kernel_GetMode(void) __attribute__((alias("paxGetMode")));

QON_API int qon_pax_kernel_GetTTableIndex(void) {
    return static_cast<int>(initialised_record().mode & 0xF) - 1;
}

QON_API int qon_pax_kernel_GetTTableIndexM(int, unsigned int mode) { return static_cast<int>(mode & 0xF) - 1; }

QON_API const void *paxSetInterfInputVectorPointer(const void *ptr) {
    qon::vm::thread_record_or_exit().input_base = ptr;
    return ptr;
}
QON_API const void *qon_pax_kernel_SetInterfInputVectorPointer(const void *ptr)
    __attribute__((alias("paxSetInterfInputVectorPointer")));

QON_API int dll_cpu_version(void) { return 7; }

}  // extern "C"
