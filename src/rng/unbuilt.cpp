// Entry points of the registry's generators that are not built yet. Each refuses every call
// with ROK_ERROR_BAD_BRNG and touches nothing, so that their registry rows can carry their
// exact properties while no stream of them can be made. Building a generator means deleting
// its line here and defining the same four entries in its own source.
#include "rng/stream.hpp"

#define ROK_UNBUILT_INIT(init)                                                                  \
    extern "C" QON_API int32_t init(int32_t, RokStream *, int32_t, const void *) { return ROK_ERROR_BAD_BRNG; }
#define ROK_UNBUILT_S(fn) \
    extern "C" QON_API int32_t fn(RokStream *, int32_t, float *, float, float) { return ROK_ERROR_BAD_BRNG; }
#define ROK_UNBUILT_D(fn) \
    extern "C" QON_API int32_t fn(RokStream *, int32_t, double *, double, double) { return ROK_ERROR_BAD_BRNG; }
#define ROK_UNBUILT_I(fn) \
    extern "C" QON_API int32_t fn(RokStream *, int32_t, void *) { return ROK_ERROR_BAD_BRNG; }
#define ROK_UNBUILT_BRNG(Name)                      \
    ROK_UNBUILT_INIT(rokBRng##Name##InitStream)     \
    ROK_UNBUILT_S(roksBRng##Name)                   \
    ROK_UNBUILT_D(rokdBRng##Name)                   \
    ROK_UNBUILT_I(rokiBRng##Name)

ROK_UNBUILT_BRNG(WH)
ROK_UNBUILT_BRNG(Sobol)
ROK_UNBUILT_BRNG(Niederr)
ROK_UNBUILT_BRNG(SFMT19937)
ROK_UNBUILT_BRNG(TRNG)
ROK_UNBUILT_BRNG(ARS5)

// The abstract generators: each carries one output kind (the others are the registry's
// ROK_ERROR_ABSTRACT_KIND stub).
ROK_UNBUILT_INIT(rokBRngiAbstractInitStream)
ROK_UNBUILT_I(rokiBRngiAbstract)
ROK_UNBUILT_INIT(rokBRngdAbstractInitStream)
ROK_UNBUILT_D(rokdBRngdAbstract)
ROK_UNBUILT_INIT(rokBRngsAbstractInitStream)
ROK_UNBUILT_S(roksBRngsAbstract)
