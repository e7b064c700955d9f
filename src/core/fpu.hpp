// Floating-point control words of x87 and SSE, and the guard every kernel wraps its work in:
// all exceptions masked, round to nearest, and flush-to-zero with denormals-are-zero only when
// the thread's mode asks for it. Only a register whose value differs is written, and only a
// written register is restored.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace qon::fpu {

inline constexpr std::uint16_t x87_exception_masks = 0x3F;
inline constexpr std::uint32_t mxcsr_flags = 0x3F;
inline constexpr std::uint32_t mxcsr_masked_nearest = 0x1F80;          // all masked, FTZ/DAZ off
inline constexpr std::uint32_t mxcsr_masked_nearest_ftz_daz = 0x9FC0;  // all masked, FTZ and DAZ on

inline std::uint16_t x87_control() {
    std::uint16_t cw;
    asm volatile("fnstcw %0" : "=m"(cw));
    return cw;
}
inline void set_x87_control(std::uint16_t cw) { asm volatile("fldcw %0" : : "m"(cw)); }
inline void x87_clear_exceptions() { asm volatile("fnclex"); }

// The x87 environment as fnstenv stores it (28 bytes in 32-bit protected-mode layout).
struct X87Env {
    std::uint16_t control, r0, status, r1, tag, r2;
    std::uint32_t ip;
    std::uint16_t cs, opcode;
    std::uint32_t data_offset;
    std::uint16_t data_selector, r3;
};
inline void x87_store_env(X87Env &env) { asm volatile("fnstenv %0" : "=m"(env)); }
inline void x87_load_env(const X87Env &env) { asm volatile("fldenv %0" : : "m"(env)); }
// Executes a waiting x87 instruction: a pending unmasked exception is delivered here.
inline void x87_wait() { asm volatile("fwait"); }

// Both control words as found, and which of them a scope changed: on destruction the changed
// ones are put back. The MXCSR exception flags raised inside the scope are kept; only the
// control bits are restored.
class ControlScope {
public:
    ControlScope(const ControlScope &) = delete;
    ControlScope &operator=(const ControlScope &) = delete;

protected:
    ControlScope() : saved_csr_(_mm_getcsr()), saved_cw_(x87_control()) {}
    ~ControlScope() {
        if (csr_changed_) _mm_setcsr((saved_csr_ & ~mxcsr_flags) | (_mm_getcsr() & mxcsr_flags));
        if (cw_changed_) set_x87_control(saved_cw_);
    }
    void set_x87(std::uint16_t cw) {
        set_x87_control(cw);
        cw_changed_ = true;
    }
    void set_csr(std::uint32_t csr) {
        _mm_setcsr(csr);
        csr_changed_ = true;
    }

    std::uint32_t saved_csr_;
    std::uint16_t saved_cw_;

private:
    bool cw_changed_ = false;
    bool csr_changed_ = false;
};

// The state every kernel runs in: all exceptions masked in both units, round to nearest, and
// flush-to-zero with denormals-are-zero exactly when the mode's denormal field is 0x280000.
class Guard : ControlScope {
public:
    explicit Guard(std::uint32_t mode) {
        if ((saved_cw_ & x87_exception_masks) != x87_exception_masks) {
            x87_clear_exceptions();
            set_x87(static_cast<std::uint16_t>(saved_cw_ | x87_exception_masks));
        }
        std::uint32_t required =
            (mode & 0x3C0000u) == 0x280000u ? mxcsr_masked_nearest_ftz_daz : mxcsr_masked_nearest;
        if ((saved_csr_ & ~mxcsr_flags) != required) set_csr(required | (saved_csr_ & mxcsr_flags));
    }
};

// Masks every exception in both units (control word | 0x3F, MXCSR | 0x1F80), leaving the
// rest as it is; used by the distribution generators around their work.
class MaskAll : ControlScope {
public:
    MaskAll() {
        if ((saved_cw_ | x87_exception_masks) != saved_cw_)
            set_x87(static_cast<std::uint16_t>(saved_cw_ | x87_exception_masks));
        if ((saved_csr_ | 0x1F80u) != saved_csr_) set_csr(saved_csr_ | 0x1F80u);
    }
};

}  // namespace qon::fpu
