// Every exported vector-math entry and table of kernels, generated from the function list.
//
// A table holds the LA, HA and EP kernels of one function and element type; its figures table
// follows it directly. Each entry is a tail call through its slot: the bare name and _HA are one
// entry (slot 1), the LA suffix (_21 on s and c, _50 on d and z) takes slot 0, the EP suffix
// (_11, _26) slot 2. Pack and unpack entries add the width argument 1 (32-bit increments,
// masks and indices). Kernels are named qon_vmk_<t><Func>_<LA|HA|EP> and live in
// src/vm/kernels/, one source per function.
#define QON_PAX_NO_TABLE_DECLS
#include <qon/qon_pax.h>

#include "vm/entries/tables.hpp"
#include "vm/kernels/signatures.hpp"

#define QON_VM_WEAK __attribute__((weak, visibility("hidden")))
#define QON_VM_STR(x) QON_VM_STR_(x)
#define QON_VM_STR_(x) #x
#define QON_VM_UNPAREN(...) __VA_ARGS__

#define QON_VM_TABLE(t, F, cost, strided)                                                                   \
    extern "C" void qon_vmk_##t##F##_LA() QON_VM_WEAK;                                                       \
    extern "C" void qon_vmk_##t##F##_HA() QON_VM_WEAK;                                                       \
    extern "C" void qon_vmk_##t##F##_EP() QON_VM_WEAK;                                                       \
    extern "C" QON_API const qon::vm::KernelTable qon_pax_kernel_##t##F##_ttab = {                           \
        {qon_vmk_##t##F##_LA, qon_vmk_##t##F##_HA, qon_vmk_##t##F##_EP},                                     \
        qon::vm::figures_for(#t #F, cost, strided),                                                          \
        {0, 0, 0}};                                                                                          \
    asm(".globl qon_pax_kernel_" #t #F "_ctab\n\t"                                                           \
        ".set qon_pax_kernel_" #t #F "_ctab, qon_pax_kernel_" #t #F "_ttab + 24\n\t"                        \
        ".type qon_pax_kernel_" #t #F "_ctab, @object\n\t"                                                   \
        ".size qon_pax_kernel_" #t #F "_ctab, 24");

#define QON_VM_ENTRY(t, F, name, slot, params, args)                                                        \
    extern "C" QON_API void name(QON_VM_UNPAREN params) {                                                   \
        using Kernel = void (*)(QON_VM_UNPAREN params);                                                      \
        return reinterpret_cast<Kernel>(qon::vm::slot_of(qon_pax_kernel_##t##F##_ttab, slot))(QON_VM_UNPAREN args); \
    }

#define QON_VM_ENTRIES(t, F, la, ep, params, args)                                                          \
    QON_VM_ENTRY(t, F, pax##t##F, 1, params, args)                                                           \
    extern "C" QON_API void pax##t##F##_HA(QON_VM_UNPAREN params) __attribute__((alias(QON_VM_STR(pax##t##F)))); \
    QON_VM_ENTRY(t, F, pax##t##F##la, 0, params, args)                                                       \
    QON_VM_ENTRY(t, F, pax##t##F##ep, 2, params, args)

#define QON_VM_PACK_ENTRY(t, F, name, slot, params, kparams, kargs)                                         \
    extern "C" QON_API void name(QON_VM_UNPAREN params) {                                                   \
        using Kernel = void (*)(QON_VM_UNPAREN kparams);                                                     \
        reinterpret_cast<Kernel>(qon::vm::slot_of(qon_pax_kernel_##t##F##_ttab, slot))(QON_VM_UNPAREN kargs); \
    }

// A function with a strided form: two tables and eight entries.
#define QON_VM_FUNCTION(t, E, R, la, ep, F, fam, cost)                                                      \
    QON_VM_TABLE(t, F, cost, false)                                                                          \
    QON_VM_ENTRIES(t, F, la, ep, (QON_VM_PARAMS_##fam(E, R)), (QON_VM_ARGS_##fam))                               \
    QON_VM_TABLE(t, F##I, cost, true)                                                                        \
    QON_VM_ENTRIES(t, F##I, la, ep, (QON_VM_PARAMS_##fam##I(E, R)), (QON_VM_ARGS_##fam##I))

// A pack or unpack function: one table and four entries.
#define QON_VM_PACK(t, E, R, la, ep, F, fam, cost)                                                          \
    QON_VM_TABLE(t, F, cost, false)                                                                          \
    QON_VM_PACK_ENTRY(t, F, pax##t##F, 1, (QON_VM_PARAMS_##fam(E, R)), (QON_VM_KPARAMS_##fam(E, R)),             \
                      (QON_VM_KARGS_##fam))                                                                    \
    extern "C" QON_API void pax##t##F##_HA(QON_VM_PARAMS_##fam(E, R))                                         \
        __attribute__((alias(QON_VM_STR(pax##t##F))));                                                       \
    QON_VM_PACK_ENTRY(t, F, pax##t##F##la, 0, (QON_VM_PARAMS_##fam(E, R)), (QON_VM_KPARAMS_##fam(E, R)),         \
                      (QON_VM_KARGS_##fam))                                                                    \
    QON_VM_PACK_ENTRY(t, F, pax##t##F##ep, 2, (QON_VM_PARAMS_##fam(E, R)), (QON_VM_KPARAMS_##fam(E, R)),         \
                      (QON_VM_KARGS_##fam))

#define QON_VM_KIND_U QON_VM_FUNCTION
#define QON_VM_KIND_B QON_VM_FUNCTION
#define QON_VM_KIND_U2 QON_VM_FUNCTION
#define QON_VM_KIND_PX QON_VM_FUNCTION
#define QON_VM_KIND_LF QON_VM_FUNCTION
#define QON_VM_KIND_NU QON_VM_FUNCTION
#define QON_VM_KIND_CR QON_VM_FUNCTION
#define QON_VM_KIND_RC QON_VM_FUNCTION
#define QON_VM_KIND_PKI QON_VM_PACK
#define QON_VM_KIND_PKM QON_VM_PACK
#define QON_VM_KIND_PKV QON_VM_PACK
#define QON_VM_KIND_UPI QON_VM_PACK
#define QON_VM_KIND_UPM QON_VM_PACK
#define QON_VM_KIND_UPV QON_VM_PACK

#define QON_VM_REAL(F, fam, cost)                                                                           \
    QON_VM_KIND_##fam(s, float, float, _21, _11, F, fam, cost)                                               \
    QON_VM_KIND_##fam(d, double, double, _50, _26, F, fam, cost)
#define QON_VM_COMPLEX(F, fam, cost)                                                                        \
    QON_VM_KIND_##fam(c, QON_Complex8, float, _21, _11, F, fam, cost)                                        \
    QON_VM_KIND_##fam(z, QON_Complex16, double, _50, _26, F, fam, cost)

QON_PAX_REAL_FUNCTIONS(QON_VM_REAL)
QON_PAX_COMPLEX_FUNCTIONS(QON_VM_COMPLEX)
