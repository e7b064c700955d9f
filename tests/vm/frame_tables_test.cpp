// Every exported name of the function list resolves in the shared library, every table of
// kernels has its three kernels and its figures table directly after it, and the entries run
// the kernel of their slot.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <qon/qon_pax.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

struct Function {
    std::string name;  // type letter and function, e.g. "dExpI"
    char type;
    bool pack;
};

std::vector<Function> all_functions() {
    std::vector<Function> list;
    auto add = [&](const char *types, const char *name, const char *family) {
        bool pack = family[0] == 'P' && family[1] == 'K';
        pack = pack || (family[0] == 'U' && family[1] == 'P');
        for (const char *t = types; *t; ++t) {
            list.push_back({std::string(1, *t) + name, *t, pack});
            if (!pack) list.push_back({std::string(1, *t) + name + "I", *t, false});
        }
    };
#define QON_TEST_REAL(F, fam, cost) add("sd", #F, #fam);
#define QON_TEST_COMPLEX(F, fam, cost) add("cz", #F, #fam);
    QON_PAX_REAL_FUNCTIONS(QON_TEST_REAL)
    QON_PAX_COMPLEX_FUNCTIONS(QON_TEST_COMPLEX)
    return list;
}

class SharedLibrary : public ::testing::Test {
protected:
    static void SetUpTestSuite() { handle = dlopen(QON_AVX2_LIBRARY, RTLD_NOW | RTLD_LOCAL); }
    static void *symbol(const std::string &name) { return handle ? dlsym(handle, name.c_str()) : nullptr; }
    static inline void *handle = nullptr;
};

TEST_F(SharedLibrary, ListHasEveryFunction) {
    auto list = all_functions();
    EXPECT_EQ(list.size(), 480u);
    int real = 0;
    for (const Function &f : list) real += f.type == 's' || f.type == 'd';
    EXPECT_EQ(real, 360);
}

TEST_F(SharedLibrary, EveryEntryAndTableIsExported) {
    ASSERT_NE(handle, nullptr) << dlerror();
    std::vector<std::string> missing;
    for (const Function &f : all_functions()) {
        const bool single = f.type == 's' || f.type == 'c';
        const std::string base = "pax" + f.name;
        for (const std::string &suffix : {std::string(), std::string("_HA"), std::string(single ? "_21" : "_50"),
                                          std::string(single ? "_11" : "_26")})
            if (!symbol(base + suffix)) missing.push_back(base + suffix);
        for (const char *tab : {"_ttab", "_ctab"})
            if (!symbol("qon_pax_kernel_" + f.name + tab)) missing.push_back("qon_pax_kernel_" + f.name + tab);
        EXPECT_EQ(symbol(base), symbol(base + "_HA")) << base;
        EXPECT_NE(symbol(base), symbol(base + (single ? "_21" : "_50"))) << base;
    }
    EXPECT_TRUE(missing.empty()) << missing.size() << " missing, first " << missing.front();
    for (const char *name : {"paxSetMode", "paxGetMode", "paxSetErrStatus", "paxGetErrStatus", "paxClearErrStatus",
                             "paxSetErrorCallBack", "paxGetErrorCallBack", "paxClearErrorCallBack",
                             "paxSetInterfInputVectorPointer", "qon_pax_kernel_SetMode", "qon_pax_kernel_GetMode",
                             "qon_pax_kernel_SetErrStatus", "qon_pax_kernel_GetErrStatus",
                             "qon_pax_kernel_ClearErrStatus", "qon_pax_kernel_SetErrorCallBack",
                             "qon_pax_kernel_GetErrorCallBack", "qon_pax_kernel_ClearErrorCallBack",
                             "qon_pax_kernel_SetInterfInputVectorPointer", "qon_pax_kernel_GetTTableIndex",
                             "qon_pax_kernel_GetTTableIndexM", "dll_cpu_version"})
        EXPECT_NE(symbol(name), nullptr) << name;
    EXPECT_NE(symbol("paxSetMode"), symbol("qon_pax_kernel_SetMode"));
    EXPECT_EQ(symbol("paxGetErrStatus"), symbol("qon_pax_kernel_GetErrStatus"));
    // Kernels and the error path stay internal.
    EXPECT_EQ(symbol("qon_vmk_dSqr_HA"), nullptr);
    EXPECT_EQ(symbol("_ZN3qon2vm7error_dEiiPKdS2_PdS3_PKc"), nullptr);
}

TEST_F(SharedLibrary, TablesHoldThreeKernelsAndTheirFigures) {
    ASSERT_NE(handle, nullptr) << dlerror();
    std::vector<std::string> empty_slots;
    for (const Function &f : all_functions()) {
        auto *ttab = static_cast<const qon_pax_kernel_fn *>(symbol("qon_pax_kernel_" + f.name + "_ttab"));
        auto *ctab = static_cast<const unsigned char *>(symbol("qon_pax_kernel_" + f.name + "_ctab"));
        ASSERT_TRUE(ttab && ctab) << f.name;
        EXPECT_EQ(ctab, reinterpret_cast<const unsigned char *>(ttab) + 24) << f.name;
        for (int slot = 0; slot < 3; ++slot)
            if (ttab[slot] == nullptr) empty_slots.push_back(f.name + "[" + std::to_string(slot) + "]");
        float fig[3];
        std::memcpy(fig, ctab, sizeof fig);
        EXPECT_TRUE(fig[2] > 0 && fig[2] <= fig[0] && fig[0] <= fig[1]) << f.name;
        for (int b = 12; b < 24; ++b) EXPECT_EQ(ctab[b], 0) << f.name;
        if (f.pack) EXPECT_TRUE(ttab[0] == ttab[1] && ttab[1] == ttab[2]) << f.name;
    }
    EXPECT_TRUE(empty_slots.empty()) << empty_slots.size() << " empty slots, first " << empty_slots.front();
}

TEST(Tables, MeasuredFiguresAreKeptExactly) {
    struct {
        const float *ctab;
        float la, ha, ep;
    } cases[] = {
        {qon_pax_kernel_sExp_ctab, 1.046f, 1.241f, 0.795f}, {qon_pax_kernel_dExp_ctab, 3.444f, 4.628f, 3.237f},
        {qon_pax_kernel_dLn_ctab, 5.213f, 6.254f, 4.853f},  {qon_pax_kernel_dAdd_ctab, 0.52f, 0.521f, 0.52f},
        {qon_pax_kernel_zExp_ctab, 22.333f, 42.017f, 22.333f}, {qon_pax_kernel_dPackI_ctab, 1111, 1111, 1111},
    };
    for (auto c : cases) {
        EXPECT_EQ(c.ctab[0], c.la);
        EXPECT_EQ(c.ctab[1], c.ha);
        EXPECT_EQ(c.ctab[2], c.ep);
    }
}

}  // namespace
