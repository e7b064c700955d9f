// Summary-statistics tasks: construction checks, the two generic editors with their classes and
// null codes (irregular ones included), the grouped editors, integer widths and deletion.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "stats/task.h"

namespace {

struct Fixture {
    int32_t p = 3, n = 10, storage = ROK_SS_MATRIX_STORAGE_ROWS;
    std::vector<double> x = std::vector<double>(30, 1.0);
    rok_ss_task *task = nullptr;
    Fixture() { EXPECT_EQ(rokdSSNewTask(&task, &p, &n, &storage, x.data(), nullptr, nullptr, 0), 0); }
    ~Fixture() { rokSSDeleteTask(&task); }
};

TEST(SSTask, ConstructorChecks) {
    int32_t p = 2, zero = 0, n = 5, rows = ROK_SS_MATRIX_STORAGE_ROWS, both = 0x30000;
    double x[10] = {};
    rok_ss_task *const sentinel = reinterpret_cast<rok_ss_task *>(0x1234);
    rok_ss_task *t = sentinel;
    EXPECT_EQ(rokdSSNewTask(&t, nullptr, &n, &rows, x, nullptr, nullptr, 0), ROK_SS_ERROR_BAD_DIMEN);
    EXPECT_EQ(rokdSSNewTask(&t, &zero, &n, &rows, x, nullptr, nullptr, 0), ROK_SS_ERROR_BAD_DIMEN);
    EXPECT_EQ(rokdSSNewTask(&t, &p, &n, nullptr, x, nullptr, nullptr, 0), ROK_SS_ERROR_BAD_STORAGE_ADDR);
    EXPECT_EQ(rokdSSNewTask(&t, &p, &n, &both, x, nullptr, nullptr, 0), ROK_SS_ERROR_STORAGE_NOT_SUPPORTED);
    EXPECT_EQ(rokdSSNewTask(&t, &p, nullptr, &rows, x, nullptr, nullptr, 0), ROK_SS_ERROR_BAD_OBSERV_N);
    EXPECT_EQ(rokdSSNewTask(&t, &p, &zero, &rows, x, nullptr, nullptr, 0), ROK_SS_ERROR_BAD_OBSERV_N);
    EXPECT_EQ(t, sentinel);  // a failed check leaves the handle alone
    // Without observations neither n nor the storage is examined.
    ASSERT_EQ(rokdSSNewTask(&t, &p, nullptr, &both, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(t->kind, 2);
    EXPECT_EQ(t->precision, 1u);
    EXPECT_EQ(t->n, nullptr);
    EXPECT_EQ(t->moments[0], nullptr);
    EXPECT_EQ(t->owned, nullptr);
    EXPECT_EQ(rokSSDeleteTask(&t), 0);
    EXPECT_EQ(t, nullptr);
    float xs[10] = {};
    ASSERT_EQ(roksSSNewTask(&t, &p, &n, &rows, xs, nullptr, nullptr, 0), 0);
    EXPECT_EQ(t->precision, 0u);
    EXPECT_EQ(t->x, xs);
    rokSSDeleteTask(&t);
    // Allocation failure: -4000 and a null handle.
    t = sentinel;
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(rokdSSNewTask(&t, &p, &n, &rows, x, nullptr, nullptr, 0), ROK_SS_ERROR_MEMORY);
    qon_serv_fail_allocations_after(-1);
    EXPECT_EQ(t, nullptr);
}

TEST(SSTask, IntegerWidth) {
    int64_t p = 0x100000001LL, n = 4, rows = ROK_SS_MATRIX_STORAGE_ROWS;
    rok_ss_task *t = nullptr;
    // Read at 64 bits, p is 2^32 + 1; read at 32 bits (little-endian low half) it would be 1.
    ASSERT_EQ(rokdSSNewTask(&t, &p, nullptr, nullptr, nullptr, nullptr, nullptr, 1), 0);
    EXPECT_EQ(ss::read_int(t, t->p), 0x100000001LL);
    rokSSDeleteTask(&t);
    ASSERT_EQ(rokdSSNewTask(&t, &p, nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
    EXPECT_EQ(ss::read_int(t, t->p), 1);
    rokSSDeleteTask(&t);
    // A negative 64-bit dimension is refused even though its low half is positive.
    int64_t negative = -0x100000000LL + 5;
    double x[4] = {};
    EXPECT_EQ(rokdSSNewTask(&t, &negative, &n, &rows, x, nullptr, nullptr, 1), ROK_SS_ERROR_BAD_DIMEN);
}

TEST(SSTask, EditorClassesAndRanges) {
    Fixture f;
    double a[4] = {};
    EXPECT_EQ(rokdSSEditTask(f.task, 1, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokiSSEditTask(f.task, 3, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokdSSEditTask(f.task, 2, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokdSSEditTask(f.task, 79, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokdSSEditTask(f.task, 0, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokiSSEditTask(f.task, 0, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokiSSEditTask(f.task, 80, a), ROK_SS_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(rokdSSEditTask(nullptr, 7, a), ROK_SS_ERROR_NULL_TASK_DESCRIPTOR);
    EXPECT_EQ(rokiSSEditTask(nullptr, 1, a), ROK_SS_ERROR_NULL_TASK_DESCRIPTOR);
    // Every id from 3 to 78 belongs to exactly one of the two classes.
    const int ints[] = {4, 5, 20, 22, 24, 28, 29, 32, 34, 36, 37, 41, 44, 45, 47, 49, 50, 52, 54, 56, 58, 61, 62, 64, 75};
    for (int id = 3; id <= 78; ++id) {
        bool is_int = std::find(std::begin(ints), std::end(ints), id) != std::end(ints);
        int d = rokdSSEditTask(f.task, id, a), i = rokiSSEditTask(f.task, id, a);
        EXPECT_EQ(d == 0, !is_int) << id;
        EXPECT_EQ(i == 0, is_int) << id;
        EXPECT_EQ(is_int ? d : i, ROK_SS_ERROR_BAD_PARAM_ID) << id;
    }
    EXPECT_EQ(rokiSSEditTask(f.task, 79, a), 0);
}

TEST(SSTask, NullCodesIncludingIrregularOnes) {
    Fixture f;
    struct Code {
        int id, status;
    };
    const Code floats[] = {{3, -4032},  {6, -4005},  {7, -4006},  {13, -4012}, {16, -4015}, {17, -4016}, {18, -4017},
                           {19, -4018}, {21, -4019}, {23, -4020}, {25, -4021}, {26, -4023}, {27, -4024}, {30, -4035},
                           {31, -4034}, {33, -4037}, {35, -4036}, {38, -4042}, {39, -4028}, {40, -4027}, {42, -4039},
                           {43, -4041}, {53, -4053}, {55, -4054}, {57, -4057}, {59, -4062}, {60, -4071}, {63, -4065},
                           {65, -4068}, {66, -4070}, {67, -4006}, {68, -4075}, {73, -4080}, {74, -4081}, {76, -4082},
                           {77, -4083}, {78, -4084}};
    const Code ints[] = {{1, -4001},  {2, -4002},  {4, -4044},  {5, -4004},  {24, -4022}, {28, -4038}, {29, -4044},
                         {32, -4038}, {37, -4043}, {41, -4040}, {45, -4045}, {50, -4049}, {52, -4052}, {54, -4055},
                         {56, -4056}, {58, -4061}, {62, -4066}, {64, -4069}, {79, -4044}};
    unsigned char before[sizeof(rok_ss_task)];
    std::memcpy(before, f.task, sizeof before);
    for (const Code &c : floats) EXPECT_EQ(rokdSSEditTask(f.task, c.id, nullptr), c.status) << c.id;
    for (const Code &c : ints) EXPECT_EQ(rokiSSEditTask(f.task, c.id, nullptr), c.status) << c.id;
    EXPECT_EQ(std::memcmp(before, f.task, sizeof before), 0);  // failed edits change nothing
}

TEST(SSTask, GroupedEditors) {
    Fixture f;
    unsigned char before[sizeof(rok_ss_task)];
    std::memcpy(before, f.task, sizeof before);
    EXPECT_EQ(rokdSSEditMoments(f.task, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(roksSSEditMissingVals(f.task, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                    nullptr, nullptr),
              0);
    EXPECT_EQ(std::memcmp(before, f.task, sizeof before), 0);
    EXPECT_EQ(rokdSSEditCP(nullptr, nullptr, nullptr, nullptr, nullptr), ROK_SS_ERROR_NULL_TASK_DESCRIPTOR);
    // Each argument lands in the parameter of its id, in argument order.
    double v[10][2];
    auto same_as_generic = [&](std::initializer_list<int> ids) {
        int k = 0;
        for (int id : ids) EXPECT_EQ(ss::field(f.task, ss::param_slot(id)), static_cast<void *>(v[k++])) << id;
    };
    rokdSSEditPooledCovariance(f.task, v[0], v[1], v[2], v[3], v[4], v[5]);
    same_as_generic({28, 30, 31, 32, 33, 35});
    roksSSEditMissingVals(f.task, v[0], reinterpret_cast<float *>(v[1]), v[2], reinterpret_cast<float *>(v[3]), v[4],
                          reinterpret_cast<float *>(v[5]), v[6], reinterpret_cast<float *>(v[7]), v[8],
                          reinterpret_cast<float *>(v[9]));
    same_as_generic({50, 51, 52, 53, 58, 59, 54, 55, 56, 57});
    rokdSSEditPartialCovCor(f.task, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
    same_as_generic({45, 19, 20, 21, 22, 46, 47, 48, 49});
    rokdSSEditStreamQuantiles(f.task, v[0], v[1], v[2], v[3], v[4]);
    same_as_generic({64, 65, 66, 62, 63});
    rokdSSEditRCov(f.task, v[0], v[1], v[2], v[3], v[4]);
    same_as_generic({36, 37, 38, 39, 40});
    rokdSSEditOutDetect(f.task, v[0], v[1], v[2]);
    same_as_generic({41, 42, 43});
    rokdSSEditMtxParametrz(f.task, v[0], v[1], v[2], v[3]);
    same_as_generic({21, 22, 60, 61});
    rokdSSEditQuantiles(f.task, v[0], v[1], v[2], v[3], v[4]);
    same_as_generic({24, 25, 26, 27, 44});
    rokdSSEditCovCor(f.task, v[0], v[1], v[2], v[3], v[4]);
    same_as_generic({7, 19, 20, 21, 22});
    rokdSSEditCP(f.task, v[0], v[1], v[2], v[3]);
    same_as_generic({7, 67, 74, 75});
    rokdSSEditSums(f.task, v[0], v[1], v[2], v[3], v[4], v[5], v[6]);
    same_as_generic({67, 68, 69, 70, 71, 72, 73});
}

int hook_calls = 0;
rok_ss_task *hook_task = nullptr;
void hook(rok_ss_task *t) {
    ++hook_calls;
    hook_task = t;
}

TEST(SSTask, DeleteReleasesOwnedBufferAndCallsHook) {
    int32_t p = 1;
    rok_ss_task *t = nullptr;
    ASSERT_EQ(rokdSSNewTask(&t, &p, nullptr, nullptr, nullptr, nullptr, nullptr, 0), 0);
    // What a kernel that keeps state between calls leaves attached to its task.
    t->owned = qon_serv_allocate(256, 128);
    t->nhooks = 1;
    t->release_hook = hook;
    rok_ss_task *address = t;
    EXPECT_EQ(rokSSDeleteTask(&t), 0);
    EXPECT_EQ(t, nullptr);
    EXPECT_EQ(hook_calls, 1);
    EXPECT_EQ(hook_task, address);
    EXPECT_EQ(rokSSDeleteTask(&t), ROK_SS_ERROR_NULL_TASK_DESCRIPTOR);
    EXPECT_EQ(rokSSDeleteTask(nullptr), ROK_SS_ERROR_NULL_TASK_DESCRIPTOR);
}

}  // namespace
