// Layout of an exported table of kernels with its figures table directly after it, and the
// figures themselves: a relative cost per element of the LA, HA and EP kernels, derived from the
// double-precision HA cost in the function list, with a few measured values kept exactly.
#pragma once

#include <qon/qon_pax.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qon::vm {

struct Figures {
    float la, ha, ep;
};

struct KernelTable {
    qon_pax_kernel_fn kernels[3];  // LA, HA, EP
    Figures figures;               // exported as qon_pax_kernel_<t><Func>_ctab
    std::uint32_t zero[3];
};
static_assert(sizeof(KernelTable) == 48 && offsetof(KernelTable, figures) == 24);

// Reads a slot of a table as a load the compiler cannot fold into a direct jump: an entry always
// runs whatever kernel its table holds.
inline qon_pax_kernel_fn slot_of(const KernelTable &table, int slot) {
    qon_pax_kernel_fn kernel = table.kernels[slot];
    asm("" : "+r"(kernel));
    return kernel;
}

struct MeasuredFigures {
    std::string_view name;
    Figures figures;
};

inline constexpr MeasuredFigures measured_figures[] = {
    {"sExp", {1.046f, 1.241f, 0.795f}},  {"dExp", {3.444f, 4.628f, 3.237f}},
    {"dLn", {5.213f, 6.254f, 4.853f}},   {"dAdd", {0.52f, 0.521f, 0.52f}},
    {"zExp", {22.333f, 42.017f, 22.333f}}, {"dPackI", {1111.0f, 1111.0f, 1111.0f}},
};

// name is the type letter and function name ("dExp", "sExpI"); cost the double HA figure.
constexpr Figures figures_for(std::string_view name, float cost, bool strided) {
    for (const MeasuredFigures &m : measured_figures)
        if (m.name == name) return m.figures;
    if (cost >= 1000.0f) return {cost, cost, cost};  // pack and unpack: one kernel in every slot
    const bool single = name[0] == 's' || name[0] == 'c';
    float ha = cost * (single ? 0.27f : 1.0f) * (strided ? 1.12f : 1.0f);
    if (cost < 1.0f) return {ha * 0.998f, ha, ha * 0.998f};  // arithmetic: LA and EP share a kernel
    return {ha * 0.745f, ha, ha * 0.70f};
}

}  // namespace qon::vm
