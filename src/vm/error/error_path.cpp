// The error path of the vector-math kernels, written once over the element type and the
// addressing (contiguous arrays are strided arrays with increment 1).
//
// Order of actions: NOERR alone stops everything; the status is stored; IGNORE alone stops;
// the call-back runs and a non-zero answer stops; then errno, the printed report and the
// floating-point exception, in that order; last, the possibly replaced results are written
// back (narrowed to the element precision).
#include "vm/error/error_path.hpp"

#include <qon/qon_serv.h>

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/fpu.hpp"
#include "core/platform/platform.hpp"
#include "vm/mode/thread_state.hpp"

namespace qon::vm {
namespace {

constexpr int max_name_length = 47;

struct CodeInfo {
    int errno_value;
    std::uint16_t x87_flag;  // status-word flag raised in EXCEPT mode
    std::uint32_t trap;      // mode trap bit that unmasks that flag
};

CodeInfo code_info(int code) {
    switch (code) {
        case PAX_STATUS_OK: return {0, 0, 0};
        case PAX_STATUS_BADARG: return {22, 0, 0};
        case PAX_STATUS_BADPTR: return {13, 0, 0};
        case PAX_STATUS_ERRDOM: return {33, 0x01, PAX_TRAP_INVALID};
        case PAX_STATUS_SING: return {34, 0x04, PAX_TRAP_DIVBYZERO};
        case PAX_STATUS_OVERFLOW: return {34, 0x08, PAX_TRAP_OVERFLOW};
        case PAX_STATUS_UNDERFLOW: return {34, 0x10, PAX_TRAP_UNDERFLOW};
        default: return {14, 0, 0};
    }
}

// x87 control-word mask bit unmasked by each trap flag of the mode.
constexpr struct {
    std::uint32_t trap;
    std::uint16_t mask_bit;
} trap_masks[] = {
    {PAX_TRAP_INVALID, 0x01}, {PAX_TRAP_DIVBYZERO, 0x04}, {PAX_TRAP_OVERFLOW, 0x08}, {PAX_TRAP_UNDERFLOW, 0x10}};

bool same_bits(double x, double y) { return std::memcmp(&x, &y, sizeof x) == 0; }

void print_report(const PaxErrorContext &ctx) {
    const char *name = ctx.function_name;
    switch (ctx.code) {
        case PAX_STATUS_OK: return;
        case PAX_STATUS_BADPTR: qon_serv_print(1, 749, 1, name); return;
        case PAX_STATUS_BADARG: qon_serv_print(1, 748, 2, name, ctx.index); return;
        case PAX_STATUS_ERRDOM:
        case PAX_STATUS_SING:
        case PAX_STATUS_OVERFLOW:
        case PAX_STATUS_UNDERFLOW: qon_serv_print(1, 749 + ctx.code, 1, name); break;
        default: qon_serv_print(1, 754, 1, name); break;
    }
    bool one_arg = same_bits(ctx.arg1, ctx.arg2) || ctx.arg2 == 0.0;
    bool one_res = same_bits(ctx.res1, ctx.res2) || ctx.res2 == 0.0;
    auto line = [&](int msg, double v) { qon_serv_print(1, msg, 2, ctx.index, v); };
    if (one_arg && one_res) {
        line(755, ctx.arg1), line(756, ctx.res1);
    } else if (one_arg) {
        line(757, ctx.arg1), line(758, ctx.res1), line(759, ctx.res2);
    } else if (one_res) {
        line(760, ctx.arg1), line(761, ctx.arg2), line(762, ctx.res1);
    } else {
        line(763, ctx.arg1), line(764, ctx.arg2), line(765, ctx.res1), line(766, ctx.res2);
    }
}

// Raises the status's x87 flag. With a matching trap bit in the mode the exception is first
// unmasked and so delivered (SIGFPE) at the next waiting instruction; afterwards every x87
// exception is masked and the flag stays set.
void raise_exception(int code) {
    std::uint32_t mode = paxGetMode();
    CodeInfo info = code_info(code);
    fpu::X87Env saved;
    fpu::x87_store_env(saved);
    fpu::X87Env raising = saved;
    for (auto t : trap_masks)
        if (mode & t.trap) raising.control = static_cast<std::uint16_t>(raising.control & ~t.mask_bit);
    raising.status = static_cast<std::uint16_t>((raising.status & ~0x3Fu) | info.x87_flag);
    fpu::x87_load_env(raising);
    fpu::x87_wait();
    saved.control = static_cast<std::uint16_t>(saved.control | fpu::x87_exception_masks);
    saved.status = static_cast<std::uint16_t>(saved.status | info.x87_flag);
    fpu::x87_load_env(saved);
}

void common_report(const PaxErrorContext &ctx, std::uint32_t mode) {
    if (mode & PAX_ERRMODE_ERRNO) platform::set_errno(code_info(ctx.code).errno_value);
    if (mode & PAX_ERRMODE_STDERR) print_report(ctx);
    if (mode & PAX_ERRMODE_EXCEPT) raise_exception(ctx.code);
}

template <class E>
constexpr bool is_complex = !std::is_floating_point_v<E>;

template <class E>
double re(const E &v) {
    if constexpr (is_complex<E>) return static_cast<double>(v.real());
    else return static_cast<double>(v);
}
template <class E>
double im(const E &v) {
    if constexpr (is_complex<E>) return static_cast<double>(v.imag());
    else return 0.0;
}
template <class E>
E make(double r, double i) {
    if constexpr (is_complex<E>) return E(static_cast<typename E::value_type>(r), static_cast<typename E::value_type>(i));
    else return static_cast<E>(r);
}

// args, when given, holds the two argument values; the argument arrays then only locate the
// element for the index correction (an in-place kernel has overwritten them).
template <class E>
void error_path(int code, int index, const E *a1, int inc1, const E *a2, int inc2, E *r1, int incr1, E *r2,
                int incr2, const char *name, const E *args = nullptr) {
    ThreadRecord &record = initialised_record();
    std::uint32_t mode = record.mode;
    std::uint32_t errmode = mode & PAX_ERRMODE_MASK;
    if (errmode == PAX_ERRMODE_NOERR) return;
    record.status = code;
    if (errmode == PAX_ERRMODE_IGNORE) return;

    PaxErrorContext ctx{};
    ctx.code = code;
    ctx.index = index;
    if (record.input_base != nullptr) {
        constexpr int shift = sizeof(E) == 4 ? 2 : sizeof(E) == 8 ? 3 : 4;
        auto offset = reinterpret_cast<std::intptr_t>(a1) - reinterpret_cast<std::intptr_t>(record.input_base);
        ctx.index = static_cast<int>((offset >> shift) + index);
    }
    std::size_t length = std::strlen(name);
    if (length > max_name_length) length = max_name_length;
    std::memcpy(ctx.function_name, name, length);
    ctx.function_name[length] = '\0';
    ctx.function_name_length = static_cast<int>(length);

    const bool values = code != PAX_STATUS_BADARG && code != PAX_STATUS_BADPTR;
    const std::ptrdiff_t i = index;
    if (values) {
        const E x1 = args ? args[0] : a1[i * inc1], x2 = args ? args[1] : a2[i * inc2];
        ctx.arg1 = re(x1), ctx.arg2 = re(x2);
        ctx.res1 = re(r1[i * incr1]), ctx.res2 = re(r2[i * incr2]);
        if constexpr (is_complex<E>) {
            ctx.arg1_im = im(x1), ctx.arg2_im = im(x2);
            ctx.res1_im = im(r1[i * incr1]), ctx.res2_im = im(r2[i * incr2]);
        }
    }
    if ((mode & PAX_ERRMODE_CALLBACK) && record.callback != nullptr && record.callback(&ctx) != 0) return;
    if (mode & 0x2F00u) common_report(ctx, mode);
    if (values) {
        // Second result first: when both name the same array, the first result is what stays.
        r2[i * incr2] = make<E>(ctx.res2, ctx.res2_im);
        r1[i * incr1] = make<E>(ctx.res1, ctx.res1_im);
    }
}

}  // namespace

#define QON_ERROR_ENTRIES(t, E)                                                                              \
    void error_##t(int code, int index, const E *a1, const E *a2, E *r1, E *r2, const char *name) {          \
        error_path<E>(code, index, a1, 1, a2, 1, r1, 1, r2, 1, name);                                        \
    }                                                                                                        \
    void error_##t##I(int code, int index, const E *a1, int inc1, const E *a2, int inc2, E *r1, int incr1,   \
                      E *r2, int incr2, const char *name) {                                                  \
        error_path<E>(code, index, a1, inc1, a2, inc2, r1, incr1, r2, incr2, name);                          \
    }                                                                                                        \
    void error_##t##V(int code, int index, const E *a1, E x1, E x2, E *r1, int incr1, E *r2, int incr2,      \
                      const char *name) {                                                                    \
        const E args[2] = {x1, x2};                                                                          \
        error_path<E>(code, index, a1, 0, a1, 0, r1, incr1, r2, incr2, name, args);                          \
    }
QON_ERROR_ENTRIES(s, float)
QON_ERROR_ENTRIES(d, double)
QON_ERROR_ENTRIES(c, std::complex<float>)
QON_ERROR_ENTRIES(z, std::complex<double>)
#undef QON_ERROR_ENTRIES

}  // namespace qon::vm
