// Data-fitting tasks: creation checks in order, the storage-hint rule, integer, pointer and
// per-function edits and queries, the spline description, the edit marker, deletion, and
// behaviour under allocation failure.
#include <gtest/gtest.h>
#include <qon/qon_df.h>
#include <qon/qon_serv.h>

#include <cstdint>
#include <vector>

#include "fit/task.hpp"

namespace {

using qon::fit::Task;

std::vector<double> ramp(int64_t n) {
    std::vector<double> x(static_cast<size_t>(n));
    for (int64_t i = 0; i < n; ++i) x[static_cast<size_t>(i)] = static_cast<double>(i);
    return x;
}

struct TaskGuard {
    void *task = nullptr;
    ~TaskGuard() {
        if (task != nullptr) qon_df_kernel_DeleteTask(&task);
    }
    Task *rec() const { return static_cast<Task *>(task); }
};

TEST(FitTaskCreate, ChecksInOrder) {
    auto x = ramp(8);
    std::vector<double> y(24);
    void *t = reinterpret_cast<void *>(1);
    // Each refusal leaves the handle untouched; the first failing check wins.
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 1, nullptr, 3, 0, y.data(), 0x11, 0), DF_ERROR_BAD_NX);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, nullptr, 3, 0, y.data(), 0x11, 0), DF_ERROR_BAD_X);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), 3, 0, y.data(), 0x11, 0), DF_ERROR_BAD_XHINT);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), 5, 0, y.data(), 0x11, 0), DF_ERROR_BAD_XHINT);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), -1, 0, y.data(), 0x11, 0), DF_ERROR_BAD_XHINT);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), 1, 0, y.data(), 0x11, 0), DF_ERROR_BAD_NY);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), 1, 3, nullptr, 0x11, 0), DF_ERROR_BAD_Y);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), 1, 3, y.data(), 0x11, 0), DF_ERROR_BAD_YHINT);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 8, x.data(), 1, 3, y.data(), 0x40, 0), DF_ERROR_BAD_YHINT);
    EXPECT_EQ(t, reinterpret_cast<void *>(1));
}

TEST(FitTaskCreate, StorageHintsAcceptedExactly) {
    auto x = ramp(8);
    std::vector<double> y(24);
    for (int64_t h = -1; h < 0x200; ++h) {
        const bool want = h == 0 || h == 0x10 || h == 0x20 || h == 0x80;
        EXPECT_EQ(qon::fit::storage_hint_ok(h), want) << h;
    }
    EXPECT_FALSE(qon::fit::storage_hint_ok(INT64_MIN));
    EXPECT_FALSE(qon::fit::storage_hint_ok(0x800));
    TaskGuard g;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 8, x.data(), 1, 3, y.data(), 0x80, 0), 0);
}

TEST(FitTaskCreate, RecordFields) {
    auto x = ramp(40);
    std::vector<float> xs(x.begin(), x.end());
    TaskGuard d, s;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&d.task, 40, x.data(), 0, 0, nullptr, 0, 7), 0);
    ASSERT_EQ(qon_df_kernel_sNewTask1D(&s.task, 40, xs.data(), 2, 0, nullptr, 0, 0), 0);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(d.task) % 128, 0u);
    EXPECT_EQ(d.rec()->intwidth, 7u);
    EXPECT_EQ(d.rec()->kind, 4);
    EXPECT_EQ(d.rec()->precision, 1u);
    EXPECT_EQ(s.rec()->precision, 0u);
    EXPECT_EQ(d.rec()->edit_marker, 1u);
    EXPECT_EQ(d.rec()->ytab, nullptr);
    EXPECT_EQ(d.rec()->order, 0);
    EXPECT_EQ(d.rec()->coeff_tab, nullptr);
    EXPECT_EQ(d.rec()->bin_scale.d, 16.0 / 39.0);
    EXPECT_EQ(s.rec()->bin_scale.s, 16.0f / 39.0f);
}

TEST(FitTaskCreate, NyAndYCombinations) {
    auto x = ramp(5);
    std::vector<double> y(15);
    TaskGuard a;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&a.task, 5, x.data(), 1, 0, nullptr, 0, 0), 0);
    EXPECT_EQ(a.rec()->ytab, nullptr);
    void *t = nullptr;
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 5, x.data(), 1, 0, y.data(), 0, 0), -1007);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 5, x.data(), 1, 3, nullptr, 0, 0), -1008);
    EXPECT_EQ(t, nullptr);
}

TEST(FitTaskCreate, YTableByHint) {
    auto x = ramp(5);
    std::vector<double> y(15);
    for (int64_t hint : {0x00, 0x10, 0x20, 0x80}) {
        TaskGuard g;
        ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 5, x.data(), 1, 3, y.data(), hint, 0), 0);
        const void **tab = g.rec()->ytab;
        ASSERT_NE(tab, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(tab) % 128, 0u);
        EXPECT_EQ(tab[0], y.data());
        if (hint <= 0x10) {
            EXPECT_EQ(tab[1], y.data() + 5);
            EXPECT_EQ(tab[2], y.data() + 10);
        } else if (hint == 0x80) {
            EXPECT_EQ(tab[1], nullptr);
            EXPECT_EQ(tab[2], nullptr);
        }
    }
}

TEST(FitTaskCreate, AllocationFailures) {
    auto x = ramp(64);
    std::vector<double> y(64);
    void *t = reinterpret_cast<void *>(1);
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 64, x.data(), 1, 1, y.data(), 0, 0), DF_ERROR_MEM_FAILURE);
    EXPECT_EQ(t, nullptr);
    // The record is had, the y table is not: a live record without a y table.
    qon_serv_fail_allocations_after(1);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 64, x.data(), 1, 1, y.data(), 0, 0), DF_ERROR_MEM_FAILURE);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(static_cast<Task *>(t)->ytab, nullptr);
    EXPECT_EQ(qon_df_kernel_DeleteTask(&t), 0);
    // Record and y table but no bin table.
    qon_serv_fail_allocations_after(2);
    EXPECT_EQ(qon_df_kernel_dNewTask1D(&t, 64, x.data(), 1, 1, y.data(), 0, 0), DF_ERROR_MEM_FAILURE);
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(static_cast<Task *>(t)->bins, nullptr);
    qon_serv_fail_allocations_after(-1);
    // A hybrid search without a bin table still finds exact cells.
    double sites[3] = {-1.0, 10.5, 63.0};
    int32_t cell[3] = {};
    EXPECT_EQ(qon_df_kernel_dDFSearch1D(t, 3, sites, 0, nullptr, cell, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(cell[0], 0);
    EXPECT_EQ(cell[1], 11);
    EXPECT_EQ(cell[2], 63);
    EXPECT_EQ(qon_df_kernel_DeleteTask(&t), 0);
    EXPECT_EQ(t, nullptr);
}

TEST(FitTaskDelete, NullHandles) {
    void *t = nullptr;
    EXPECT_EQ(qon_df_kernel_DeleteTask(&t), DF_ERROR_NULL_TASK);
    EXPECT_EQ(qon_df_kernel_DeleteTask(nullptr), DF_ERROR_NULL_TASK);
}

class FitTaskEdit : public ::testing::Test {
protected:
    void SetUp() override {
        x = ramp(300);
        y.assign(900, 0.0);
        ASSERT_EQ(qon_df_kernel_dNewTask1D(&g.task, 300, x.data(), 1, 3, y.data(), 0, 1), 0);
    }
    int64_t query(int64_t id) {
        int64_t v = -12345;
        EXPECT_EQ(qon_df_kernel_iQueryVal(g.task, id, &v), 0);
        return v;
    }
    std::vector<double> x, y;
    TaskGuard g;
};

TEST_F(FitTaskEdit, IntegerParametersAcceptAndRefuse) {
    struct Case {
        int64_t id, good, bad;
        int err;
    };
    const Case cases[] = {
        {DF_NX, 2, 1, DF_ERROR_BAD_NX},
        {DF_XHINT, 2, 3, DF_ERROR_BAD_XHINT},
        {DF_NY, 1, 0, DF_ERROR_BAD_NY},
        {DF_YHINT, 0x80, 0x11, DF_ERROR_BAD_YHINT},
        {DF_SPLINE_ORDER, 0, -1, DF_ERROR_BAD_SPLINE_ORDER},
        {DF_SPLINE_TYPE, 9, 6, DF_ERROR_BAD_SPLINE_TYPE},
        {DF_IC_TYPE, 15, 4, DF_ERROR_BAD_IC_TYPE},
        {DF_BC_TYPE, 0, -1, DF_ERROR_BAD_BC_TYPE},
        {DF_COEFF_HINT, 0x20, 0x40, DF_ERROR_BAD_COEFF_HINT},
        {DF_PARAM_23, 1, 2, DF_ERROR_BAD_PARAM_23},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(qon_df_kernel_iEditVal(g.task, c.id, c.good), 0) << c.id;
        EXPECT_EQ(query(c.id), c.good) << c.id;
        EXPECT_EQ(qon_df_kernel_iEditVal(g.task, c.id, c.bad), c.err) << c.id;
        EXPECT_EQ(query(c.id), c.good) << c.id;
    }
    for (int64_t v : {6, 7, 8, 10, -1}) EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_SPLINE_TYPE, v), -1011);
    for (int64_t v : {0, 1, 2, 3, 4, 5, 9}) EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_SPLINE_TYPE, v), 0);
    for (int64_t v : {3, 4, 5, 6, 7, 16}) EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_IC_TYPE, v), -1012);
    for (int64_t v : {0, 1, 2, 8, 9, 15, 24}) EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_IC_TYPE, v), 0);
    // Parameter 23 is compared unsigned: -1 is far above 1.
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_PARAM_23, -1), DF_ERROR_BAD_PARAM_23);
    for (int64_t id : {0, 1, 13, 24, -14}) {
        int64_t v = 0;
        EXPECT_EQ(qon_df_kernel_iEditVal(g.task, id, 2), DF_ERROR_BAD_PARAM_ID);
        EXPECT_EQ(qon_df_kernel_iQueryVal(g.task, id, &v), DF_ERROR_BAD_PARAM_ID);
    }
    EXPECT_EQ(qon_df_kernel_iEditVal(nullptr, DF_NX, 5), DF_ERROR_NULL_TASK);
    EXPECT_EQ(qon_df_kernel_iQueryVal(g.task, DF_NX, nullptr), DF_ERROR_NULL_RESULT);
    EXPECT_EQ(qon_df_kernel_iQueryVal(nullptr, DF_NX, nullptr), DF_ERROR_NULL_TASK);
}

TEST_F(FitTaskEdit, QueryWidthFollowsTheFlag) {
    auto xs = ramp(10);
    TaskGuard narrow;
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&narrow.task, 10, xs.data(), 0, 0, nullptr, 0, 0), 0);
    int32_t words[2] = {-7, -7};
    ASSERT_EQ(qon_df_kernel_iQueryVal(narrow.task, DF_NX, words), 0);
    EXPECT_EQ(words[0], 10);
    EXPECT_EQ(words[1], -7);
    int64_t wide = -7;
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_NY, int64_t{1} << 40), 0);
    ASSERT_EQ(qon_df_kernel_iQueryVal(g.task, DF_NY, &wide), 0);
    EXPECT_EQ(wide, int64_t{1} << 40);
}

TEST_F(FitTaskEdit, BinTableRebuiltOnlyForHintOne) {
    const int64_t *before = g.rec()->bins;
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(g.rec()->nbins, 18);
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_XHINT, 2), 0);
    EXPECT_EQ(g.rec()->bins, before);
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_NX, 100), 0);
    EXPECT_EQ(g.rec()->bins, before);
    EXPECT_EQ(g.rec()->nbins, 18);
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_XHINT, 1), 0);
    EXPECT_EQ(g.rec()->nbins, 16);
    EXPECT_EQ(g.rec()->bins[2 * 15 + 1], 99);
    EXPECT_EQ(g.rec()->bin_scale.d, 16.0 / 99.0);
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_XHINT, 1), DF_ERROR_MEM_FAILURE);
    qon_serv_fail_allocations_after(-1);
    EXPECT_EQ(g.rec()->bins, nullptr);
}

TEST_F(FitTaskEdit, PointerParameters) {
    double other[8] = {};
    const double *p = nullptr;
    const int nulls[] = {DF_ERROR_BAD_X, DF_ERROR_BAD_Y, DF_ERROR_BAD_IC, DF_ERROR_BAD_BC,
                         DF_ERROR_BAD_PP_COEFF};
    for (int64_t id = 1; id <= 5; ++id) EXPECT_EQ(qon_df_kernel_dEditPtr(g.task, id, nullptr), nulls[id - 1]);
    for (int64_t id : {0, 6, 14}) {
        EXPECT_EQ(qon_df_kernel_dEditPtr(g.task, id, other), DF_ERROR_BAD_PARAM_ID);
        EXPECT_EQ(qon_df_kernel_dQueryPtr(g.task, id, &p), DF_ERROR_BAD_PARAM_ID);
    }
    for (int64_t id : {DF_X, DF_IC, DF_BC}) {
        ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, id, other + id), 0);
        ASSERT_EQ(qon_df_kernel_dQueryPtr(g.task, id, &p), 0);
        EXPECT_EQ(p, other + id);
    }
    std::vector<double> y2(900);
    ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, DF_Y, y2.data()), 0);
    ASSERT_EQ(qon_df_kernel_dQueryPtr(g.task, DF_Y, &p), 0);
    EXPECT_EQ(p, y2.data());
    ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_Y, 2, &p), 0);
    EXPECT_EQ(p, y2.data() + 600);
    EXPECT_EQ(qon_df_kernel_dQueryPtr(g.task, DF_X, nullptr), DF_ERROR_NULL_RESULT);
    EXPECT_EQ(qon_df_kernel_dQueryPtr(nullptr, DF_X, &p), DF_ERROR_NULL_TASK);
    EXPECT_EQ(qon_df_kernel_dEditPtr(nullptr, DF_X, other), DF_ERROR_NULL_TASK);
}

TEST_F(FitTaskEdit, CoefficientStrideByType) {
    std::vector<double> c(4000);
    const double *p = nullptr;
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_SPLINE_ORDER, 4), 0);
    for (int64_t type : {0, 1, 2, 9}) {
        ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_SPLINE_TYPE, type), 0);
        ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, DF_PP_SCOEFF, c.data()), 0);
        const int64_t stride = type == 1 ? 4 * 300 : 4 * 299;
        for (int64_t i = 0; i < 3; ++i) {
            ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_PP_SCOEFF, i, &p), 0);
            EXPECT_EQ(p, c.data() + i * stride) << type;
        }
    }
}

TEST_F(FitTaskEdit, CoefficientHintAsymmetry) {
    std::vector<double> c(4000);
    const double *p = nullptr;
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_SPLINE_ORDER, 2), 0);
    // Column storage builds a full table for coefficients (one slot for function values).
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_COEFF_HINT, DF_STORAGE_BY_COLUMNS), 0);
    ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, DF_PP_SCOEFF, c.data()), 0);
    ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_PP_SCOEFF, 2, &p), 0);
    EXPECT_EQ(p, c.data() + 2 * 2 * 299);
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_COEFF_HINT, DF_STORAGE_SEPARATE), 0);
    ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, DF_PP_SCOEFF, c.data()), 0);
    ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_PP_SCOEFF, 0, &p), 0);
    EXPECT_EQ(p, c.data());
    ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_PP_SCOEFF, 2, &p), 0);
    EXPECT_EQ(p, nullptr);
    ASSERT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_PP_SCOEFF, 2, c.data() + 7), 0);
    ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_PP_SCOEFF, 2, &p), 0);
    EXPECT_EQ(p, c.data() + 7);
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_YHINT, DF_STORAGE_BY_COLUMNS), 0);
    ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, DF_Y, y.data()), 0);
    EXPECT_EQ(qon::fit::table_slots(g.rec()->ytab), 1);
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_Y, 0, y.data()), DF_ERROR_BAD_YHINT);
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_Y, 0, &p), DF_ERROR_BAD_YHINT);
}

TEST_F(FitTaskEdit, PerFunctionBounds) {
    std::vector<double> c(4000);
    const double *p = nullptr;
    ASSERT_EQ(qon_df_kernel_dEditPtr(g.task, DF_PP_SCOEFF, c.data()), 0);
    for (int64_t id : {DF_Y, DF_PP_SCOEFF}) {
        EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, id, 3, c.data()), DF_ERROR_BAD_INDEX) << id;
        EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, id, -1, c.data()), DF_ERROR_BAD_INDEX) << id;
        // The query admits index == ny (it reads past the table as null) but not beyond.
        EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, id, 3, &p), 0) << id;
        EXPECT_EQ(p, nullptr);
        EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, id, 4, &p), DF_ERROR_BAD_INDEX) << id;
        EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, id, -1, &p), DF_ERROR_BAD_INDEX) << id;
    }
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_Y, 1, nullptr), DF_ERROR_BAD_Y);
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_PP_SCOEFF, 1, nullptr), DF_ERROR_BAD_PP_COEFF);
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_X, 1, c.data()), DF_ERROR_BAD_PARAM_ID);
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_X, 1, &p), DF_ERROR_BAD_PARAM_ID);
    // Raising ny past the table does not let a write land outside it.
    ASSERT_EQ(qon_df_kernel_iEditVal(g.task, DF_NY, 10), 0);
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_Y, 5, c.data()), DF_ERROR_BAD_INDEX);
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_Y, 5, &p), 0);
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_Y, 1, nullptr), DF_ERROR_NULL_RESULT);
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(nullptr, DF_Y, 1, &p), DF_ERROR_NULL_TASK);
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(nullptr, DF_Y, 1, c.data()), DF_ERROR_NULL_TASK);
}

TEST_F(FitTaskEdit, CoefficientsNeedFunctions) {
    auto xs = ramp(10);
    TaskGuard none;
    std::vector<double> c(100);
    ASSERT_EQ(qon_df_kernel_dNewTask1D(&none.task, 10, xs.data(), 1, 0, nullptr, 0, 0), 0);
    EXPECT_EQ(qon_df_kernel_dEditPtr(none.task, DF_PP_SCOEFF, c.data()), DF_ERROR_BAD_NY);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(none.task, 4, 0, 0, nullptr, 0, nullptr, c.data(), 0),
              DF_ERROR_BAD_NY);
    qon_serv_fail_allocations_after(0);
    EXPECT_EQ(qon_df_kernel_dEditPtr(g.task, DF_PP_SCOEFF, c.data()), DF_ERROR_MEM_FAILURE);
    EXPECT_EQ(qon_df_kernel_dEditPtr(g.task, DF_Y, y.data()), DF_ERROR_MEM_FAILURE);
    qon_serv_fail_allocations_after(-1);
    EXPECT_EQ(g.rec()->coeff_tab, nullptr);
    EXPECT_EQ(g.rec()->ytab, nullptr);
}

TEST_F(FitTaskEdit, SplineDescriptionStoresAsItGoes) {
    double bc[2] = {1, 2}, ic[3] = {};
    std::vector<double> c(4000);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(nullptr, 4, 0, 0, nullptr, 0, nullptr, nullptr, 0),
              DF_ERROR_NULL_TASK);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, -1, 0, 0, nullptr, 0, nullptr, nullptr, 0),
              DF_ERROR_BAD_SPLINE_ORDER);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 4, -1, 0, nullptr, 0, nullptr, nullptr, 0),
              DF_ERROR_BAD_SPLINE_TYPE);
    EXPECT_EQ(query(DF_SPLINE_ORDER), 0);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 4, 2, 64, nullptr, 0, nullptr, nullptr, 0), 0);
    EXPECT_EQ(query(DF_BC_TYPE), 64);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 3, 5, 4, nullptr, 0, nullptr, nullptr, 0),
              DF_ERROR_BAD_BC);
    EXPECT_EQ(query(DF_SPLINE_ORDER), 3);
    EXPECT_EQ(query(DF_SPLINE_TYPE), 5);
    EXPECT_EQ(query(DF_BC_TYPE), 64);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 4, 0, 4, bc, 1, nullptr, nullptr, 0),
              DF_ERROR_BAD_IC);
    EXPECT_EQ(query(DF_BC_TYPE), 4);
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 4, 0, 4, bc, 0, ic, nullptr, 0),
              DF_ERROR_BAD_IC_TYPE);
    // Unchecked here: the coefficient hint; a null coefficient array keeps the old table.
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 4, 1, 4, bc, 1, ic, c.data(), 0x40), 0);
    EXPECT_EQ(query(DF_COEFF_HINT), 0x40);
    const double *p = nullptr;
    ASSERT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_PP_SCOEFF, 1, &p), 0);
    EXPECT_EQ(p, c.data() + 4 * 300);
    ASSERT_EQ(qon_df_kernel_dQueryPtr(g.task, DF_BC, &p), 0);
    EXPECT_EQ(p, bc);
    ASSERT_EQ(qon_df_kernel_dQueryPtr(g.task, DF_IC, &p), 0);
    EXPECT_EQ(p, ic);
    void **tab = g.rec()->coeff_tab;
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 2, 0, 0, nullptr, 0, nullptr, nullptr, 0), 0);
    EXPECT_EQ(g.rec()->coeff_tab, tab);
}

TEST_F(FitTaskEdit, MarkerOtherThanOneMakesNoOps) {
    const Task saved = *g.rec();
    g.rec()->edit_marker = 2;
    double other[4] = {};
    const double *p = other;
    int64_t v = -9;
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, DF_NX, 1), 0);
    EXPECT_EQ(qon_df_kernel_iEditVal(g.task, 99, 1), 0);
    EXPECT_EQ(qon_df_kernel_iQueryVal(g.task, DF_NX, &v), 0);
    EXPECT_EQ(v, -9);
    EXPECT_EQ(qon_df_kernel_dEditPtr(g.task, DF_X, nullptr), 0);
    EXPECT_EQ(qon_df_kernel_dEditPtr(g.task, DF_Y, other), 0);
    EXPECT_EQ(qon_df_kernel_dQueryPtr(g.task, DF_X, &p), 0);
    EXPECT_EQ(qon_df_kernel_dEditIdxPtr(g.task, DF_Y, 0, other), 0);
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_Y, 0, &p), 0);
    EXPECT_EQ(p, other);
    // The index bound of the per-function query comes before the marker.
    EXPECT_EQ(qon_df_kernel_dQueryIdxPtr(g.task, DF_Y, 4, &p), DF_ERROR_BAD_INDEX);
    EXPECT_EQ(g.rec()->nx, saved.nx);
    EXPECT_EQ(g.rec()->x, saved.x);
    EXPECT_EQ(g.rec()->ytab, saved.ytab);
    EXPECT_EQ(g.rec()->ytab[0], y.data());
    // The spline description does not consult the marker.
    EXPECT_EQ(qon_df_kernel_dEditPPSpline1D(g.task, 3, 0, 0, nullptr, 0, nullptr, nullptr, 0), 0);
    EXPECT_EQ(g.rec()->order, 3);
}

}  // namespace
