// A summary-statistics task with every basic-statistics result array attached, for both element
// types, so that tests read like the estimates they check.
#pragma once

#include <qon/qon_ss.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

#include "stats/support.h"

namespace sst {

template <class T>
struct Api;
template <>
struct Api<double> {
    static constexpr auto New = rokdSSNewTask;
    static constexpr auto Edit = rokdSSEditTask;
    static constexpr auto Basic = rokdSSBasic;
    static constexpr auto Minmax = rokdSSMinmax;
    static constexpr auto Moments = rokdSSEditMoments;
    static constexpr auto Sums = rokdSSEditSums;
    static constexpr auto CovCor = rokdSSEditCovCor;
    static constexpr auto CP = rokdSSEditCP;
    static constexpr auto Quantiles = rokdSSQuantiles;
    static constexpr auto EditQuantiles = rokdSSEditQuantiles;
    static constexpr auto MAD = rokdSSMAD;
    static constexpr auto Sort = rokdSSSort;
};
template <>
struct Api<float> {
    static constexpr auto New = roksSSNewTask;
    static constexpr auto Edit = roksSSEditTask;
    static constexpr auto Basic = roksSSBasic;
    static constexpr auto Minmax = roksSSMinmax;
    static constexpr auto Moments = roksSSEditMoments;
    static constexpr auto Sums = roksSSEditSums;
    static constexpr auto CovCor = roksSSEditCovCor;
    static constexpr auto CP = roksSSEditCP;
    static constexpr auto Quantiles = roksSSQuantiles;
    static constexpr auto EditQuantiles = roksSSEditQuantiles;
    static constexpr auto MAD = roksSSMAD;
    static constexpr auto Sort = roksSSSort;
};

constexpr uint64_t kAllBasic = ROK_SS_MEAN | ROK_SS_2R_MOM | ROK_SS_3R_MOM | ROK_SS_4R_MOM | ROK_SS_2C_MOM |
                               ROK_SS_3C_MOM | ROK_SS_4C_MOM | ROK_SS_KURTOSIS | ROK_SS_SKEWNESS | ROK_SS_VARIATION |
                               ROK_SS_COV | ROK_SS_COR | ROK_SS_SUM | ROK_SS_2R_SUM | ROK_SS_3R_SUM | ROK_SS_4R_SUM |
                               ROK_SS_2C_SUM | ROK_SS_3C_SUM | ROK_SS_4C_SUM | ROK_SS_CP;

// Integers of the task, at 32 or 64 bits.
template <class I>
struct Ints {
    I p, n, storage, cov_storage = 0, cor_storage = 0, cp_storage = 0;
    std::vector<I> indices;
};

template <class T, class I = int32_t>
struct Task {
    static constexpr T poison = static_cast<T>(-7.25e30);
    rok_ss_task *task = nullptr;
    Ints<I> ints;
    std::vector<T> x, w;
    std::vector<T> mom[7], sum[7], kurt, skew, var, cov, cor, cp, mn, mx;
    std::array<T, 2> accw{0, 0};

    Task(int64_t p, int64_t n, int64_t storage, const std::vector<double> &data, const double *weights = nullptr,
         const std::vector<int> *indices = nullptr) {
        ints.p = static_cast<I>(p);
        ints.n = static_cast<I>(n);
        ints.storage = static_cast<I>(storage);
        x.assign(data.begin(), data.end());
        if (weights) w.assign(weights, weights + n);
        if (indices) ints.indices.assign(indices->begin(), indices->end());
        for (auto &a : mom) a.assign(p, poison);
        for (auto &a : sum) a.assign(p, poison);
        for (auto *a : {&kurt, &skew, &var, &mn, &mx}) a->assign(p, poison);
        for (auto *a : {&cov, &cor, &cp}) a->assign(p * p, poison);
        Api<T>::New(&task, &ints.p, &ints.n, &ints.storage, x.data(), weights ? w.data() : nullptr,
                    indices ? ints.indices.data() : nullptr, sizeof(I) == 8 ? 1 : 0);
        Api<T>::Moments(task, mom[0].data(), mom[1].data(), mom[2].data(), mom[3].data(), mom[4].data(),
                        mom[5].data(), mom[6].data());
        Api<T>::Sums(task, sum[0].data(), sum[1].data(), sum[2].data(), sum[3].data(), sum[4].data(), sum[5].data(),
                     sum[6].data());
        Api<T>::CovCor(task, nullptr, cov.data(), &ints.cov_storage, cor.data(), &ints.cor_storage);
        Api<T>::CP(task, nullptr, nullptr, cp.data(), &ints.cp_storage);
        Api<T>::Edit(task, ROK_SS_ED_KURTOSIS, kurt.data());
        Api<T>::Edit(task, ROK_SS_ED_SKEWNESS, skew.data());
        Api<T>::Edit(task, ROK_SS_ED_VARIATION, var.data());
        Api<T>::Edit(task, ROK_SS_ED_MIN, mn.data());
        Api<T>::Edit(task, ROK_SS_ED_MAX, mx.data());
        Api<T>::Edit(task, ROK_SS_ED_ACCUM_WEIGHT, accw.data());
    }
    ~Task() { rokSSDeleteTask(&task); }
    Task(const Task &) = delete;
    Task &operator=(const Task &) = delete;

    int basic(uint64_t estimates, uint64_t method, int threads = 1) {
        return Api<T>::Basic(task, estimates, method, services_with(threads));
    }
};

}  // namespace sst
