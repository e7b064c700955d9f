// Processor features that gate two generators: RDRAND (CPUID leaf 1, ECX bit 30) for the
// nondeterministic generator and AES-NI (leaf 1, ECX bit 25) for ARS-5.
#include <qon/qon_rok.h>

#include <cpuid.h>

namespace {

int32_t leaf1_ecx_bit(unsigned bit) {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0) return 0;
    return static_cast<int32_t>((ecx >> bit) & 1u);
}

}  // namespace

extern "C" {

QON_API int32_t rokCPUisRDRAND(void) { return leaf1_ecx_bit(30); }
QON_API int32_t rokCPUisAES(void) { return leaf1_ecx_bit(25); }

}  // extern "C"
