// Basic statistics: mean, raw and central moments and sums of orders 2-4, kurtosis, skewness,
// variation, covariance, correlation and cross-product matrices, in one pass over the
// observations, continuing the state the task's arrays hold from earlier calls.
//
// Each thread sums powers of deviations from an origin over blocks of its observations
// (accumulate.h) and, for the matrices, copies each block's deviations and adds D^T D with a
// symmetric rank-k update of the BLAS (a matrix product when weighted). The one-pass method
// moves the origin to the running mean after every block (moments.h: the blocked form of the
// Welford update), the fast method once, at the end of the thread's share, from an origin that is
// the previous mean or the first observation; the user-mean method sums about the caller's mean
// and never moves. The calling thread merges the threads' states and the state recovered from
// the result arrays, then writes every array the request needs. All sums are kept in double for
// both element types. The variance of data with mean 1e9 and unit spread keeps about 1e-15
// relative accuracy with the one-pass and fast methods, where raw sums would lose all digits.
#include "stats/basic.h"

#include <qon/qon_blas.h>
#include <qon/qon_pax.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "stats/accumulate.h"
#include "stats/common.h"
#include "stats/moments.h"

namespace ss {
namespace {

enum Pos { kMean, kR2, kR3, kR4, kC2, kC3, kC4, kCov, kCor, kKurt, kSkew, kVar, kSum, kRS2, kRS3, kRS4, kCS2, kCS3,
           kCS4, kCP, kPositions };
constexpr uint32_t bit(int pos) { return 1u << pos; }
constexpr uint32_t kUnsupported = 1u << 20;
constexpr uint32_t kMatrices = bit(kCov) | bit(kCor) | bit(kCP);

// Estimate-mask bit of each working-mask position.
constexpr int kEstimateBit[kPositions] = {0, 1, 2, 3, 4, 5, 6, 12, 13, 7, 8, 9, 25, 26, 27, 28, 29, 30, 31, 32};

// Arrays each estimate needs, by method: A one-pass and user mean, B fast, C conversions.
constexpr uint32_t kTableA[kPositions] = {0x1,    0x2,    0x4,    0x8,     0x13,    0x27,    0x4f,
                                          0x81,   0x101,  0x25f,  0x437,   0x813,   0x1000,  0x2000,
                                          0x4000, 0x8000, 0x10001, 0x20001, 0x40001, 0x80001};
constexpr uint32_t kTableB[kPositions] = {0x1,    0x2,    0x4,    0x8,     0x13,    0x27,    0x4f,
                                          0x81,   0x101,  0x25f,  0x437,   0x813,   0x1000,  0x2000,
                                          0x4000, 0x8000, 0x10003, 0x20007, 0x4000f, 0x80001};
constexpr uint32_t kTableC[kPositions] = {
    0x1001,        0x2002,        0x4004,        0x8008,        0x10010,       0x20020,       0x40040,
    0x80080,       0x80100,       0x251,         0x431,         0x811,         kUnsupported,  kUnsupported,
    kUnsupported,  kUnsupported,  kUnsupported,  kUnsupported,  kUnsupported,  kUnsupported};

constexpr int kMissing[kPositions] = {-4006, -4007, -4008, -4009, -4010, -4011, -4012, -4018, -4019, -4013,
                                      -4014, -4017, -4074, -4075, -4076, -4077, -4078, -4079, -4080, -4081};

enum class Method { Fast, OnePass, UserMean, SumToMom, MomToSum };

int method_of(uint64_t m, Method &out) {
    const int pass = ((m & ROK_SS_METHOD_FAST) != 0) + ((m & ROK_SS_METHOD_1PASS) != 0) +
                     ((m & ROK_SS_METHOD_FAST_USER_MEAN) != 0);
    if (pass > 1) return ROK_SS_ERROR_METHOD_NOT_SUPPORTED;
    if (pass == 1) {
        out = (m & ROK_SS_METHOD_FAST) ? Method::Fast : (m & ROK_SS_METHOD_1PASS) ? Method::OnePass : Method::UserMean;
        return 0;
    }
    const bool s2m = (m & ROK_SS_METHOD_SUM_TO_MOM) != 0, m2s = (m & ROK_SS_METHOD_MOM_TO_SUM) != 0;
    if (s2m == m2s) return ROK_SS_ERROR_METHOD_NOT_SUPPORTED;
    out = s2m ? Method::SumToMom : Method::MomToSum;
    return 0;
}

void *result_array(const rok_ss_task *t, int pos) {
    if (pos <= kC4) return t->moments[pos];
    if (pos >= kSum && pos <= kCS4) return t->sums[pos - kSum];
    switch (pos) {
        case kCov: return t->cov;
        case kCor: return t->cor;
        case kKurt: return t->kurtosis;
        case kSkew: return t->skewness;
        case kVar: return t->variation;
        default: return t->cp;
    }
}

const void *storage_pointer(const rok_ss_task *t, int pos) {
    return pos == kCov ? t->cov_storage : pos == kCor ? t->cor_storage : t->cp_storage;
}

// A p x p result matrix in one of the three storages, addressed by task indices.
template <class T>
struct Matrix {
    T *a = nullptr;
    int64_t storage = 0, p = 0;
    double get(int64_t i, int64_t j) const { return static_cast<double>(a[matrix_index(storage, p, i, j)]); }
    void set(int64_t i, int64_t j, double v) const {
        a[matrix_index(storage, p, i, j)] = static_cast<T>(v);
        if (storage == 0) a[matrix_index(storage, p, j, i)] = static_cast<T>(v);
    }
};

// d <- 1/sqrt(d) through the vector-math entry, with denormals kept for the call.
void inv_sqrt(int64_t q, double *d) {
    const unsigned previous = qon_pax_kernel_SetMode(PAX_FTZDAZ_OFF);
    paxdInvSqrt_50(static_cast<int>(q), d, d);
    qon_pax_kernel_SetMode(previous);
}

// Everything the workers read; each works on parts[thread].
template <class T>
struct Run {
    const T *x = nullptr, *w = nullptr;
    int64_t n = 0, p = 0, storage = 0, q = 0;
    const int64_t *vars = nullptr;
    bool identity = true, matrix = false;
    int K = 1;
    Method method = Method::OnePass;
    int64_t block = 0, mblock = 0;
    const double *s0 = nullptr;
    MomentState *parts = nullptr;
    double **D = nullptr, **E = nullptr;
    T **row = nullptr;
};

template <class T, int K, bool Weighted>
void sums_block(const Run<T> &r, MomentState &s, T *row_buf, int64_t b, int64_t e) {
    if (r.storage == kStorageRows) {
        sums_by_variable<K, Weighted, T>(r.x, r.n, r.vars, r.q, r.w, b, e, s.o, s.U);
        return;
    }
    if (r.identity && r.q <= 16) {
        switch ((r.q + 3) / 4) {
            case 1: sums_short_rows<K, Weighted, T, 1>(r.x, r.p, r.w, b, e, s.o, s.U); return;
            case 2: sums_short_rows<K, Weighted, T, 2>(r.x, r.p, r.w, b, e, s.o, s.U); return;
            case 3: sums_short_rows<K, Weighted, T, 3>(r.x, r.p, r.w, b, e, s.o, s.U); return;
            default: sums_short_rows<K, Weighted, T, 4>(r.x, r.p, r.w, b, e, s.o, s.U); return;
        }
    }
    if (r.identity) {
        sums_by_observation_rows<K, Weighted, T>(r.x, r.p, r.w, b, e, s.o, s.U);
        return;
    }
    // A selection of variables: gather each row's selected variables first.
    for (int64_t j = b; j < e; ++j) {
        const T *row = r.x + j * r.p;
        for (int64_t v = 0; v < r.q; ++v) row_buf[v] = row[r.vars[v]];
        sums_by_observation_row<K, Weighted, T>(row_buf, Weighted ? static_cast<double>(r.w[j]) : 1.0, r.q, s.o, s.U);
    }
}

template <class T>
using SumsFn = void (*)(const Run<T> &, MomentState &, T *, int64_t, int64_t);

template <class T>
SumsFn<T> sums_for(int K, bool weighted) {
    static constexpr SumsFn<T> table[2][4] = {
        {sums_block<T, 1, false>, sums_block<T, 2, false>, sums_block<T, 3, false>, sums_block<T, 4, false>},
        {sums_block<T, 1, true>, sums_block<T, 2, true>, sums_block<T, 3, true>, sums_block<T, 4, true>}};
    return table[weighted ? 1 : 0][K - 1];
}

// M += sum over observations b..e of w d d^T, d the deviations from the origin.
template <class T>
void matrix_block(const Run<T> &r, MomentState &s, double *D, double *E, int64_t b, int64_t e) {
    const int64_t len = e - b, q = r.q;
    const bool rows = r.storage == kStorageRows;
    const int64_t ld = rows ? len : q;
    // Copy in the order of the observation layout: along each variable's run, or along each row.
    auto put = [&](int64_t v, int64_t j) {
        const int64_t i = r.vars[v];
        const double d = static_cast<double>(rows ? r.x[i * r.n + j] : r.x[j * r.p + i]) - s.o[v];
        const int64_t at = rows ? v * len + (j - b) : (j - b) * q + v;
        D[at] = d;
        if (E != nullptr) E[at] = d * static_cast<double>(r.w[j]);
    };
    if (rows)
        for (int64_t v = 0; v < q; ++v)
            for (int64_t j = b; j < e; ++j) put(v, j);
    else
        for (int64_t j = b; j < e; ++j)
            for (int64_t v = 0; v < q; ++v) put(v, j);
    if (E == nullptr)
        qon_blas_xdsyrk(QON_BLAS_ROW_MAJOR, QON_BLAS_UPPER, rows ? QON_BLAS_NO_TRANS : QON_BLAS_TRANS, q, len, 1.0, D,
                        ld, 1.0, s.M, q);
    else
        qon_blas_xdgemm(QON_BLAS_ROW_MAJOR, rows ? QON_BLAS_NO_TRANS : QON_BLAS_TRANS,
                        rows ? QON_BLAS_TRANS : QON_BLAS_NO_TRANS, q, q, len, 1.0, D, ld, E, ld, 1.0, s.M, q);
}

template <class T>
void accumulate(int thread, int nthreads, Run<T> *r) {
    MomentState &s = r->parts[thread];
    const int64_t chunk = r->n / nthreads, j0 = thread * chunk, j1 = thread == nthreads - 1 ? r->n : j0 + chunk;
    const int64_t q = r->q;
    s.W = s.W2 = 0;
    for (int64_t v = 0; v < q; ++v) {
        s.o[v] = r->s0[v];
        for (int k = 0; k < r->K; ++k) s.U[k][v] = 0;
    }
    if (r->matrix) std::fill(s.M, s.M + q * q, 0.0);
    const SumsFn<T> sums = sums_for<T>(r->K, r->w != nullptr);
    const int64_t block = r->method == Method::OnePass ? r->block : std::max<int64_t>(j1 - j0, 1);
    auto add_weights = [&](MomentState &to, int64_t b, int64_t e) {
        if (r->w == nullptr) {
            to.W += static_cast<double>(e - b);
            to.W2 += static_cast<double>(e - b);
        }
        for (int64_t j = b; r->w != nullptr && j < e; ++j) {
            const double wj = static_cast<double>(r->w[j]);
            to.W += wj;
            to.W2 += wj * wj;
        }
    };
    if (r->storage == kStorageRows && !r->matrix && r->method == Method::OnePass) {
        // Variables are independent here: run along each variable's observations in turn, one
        // contiguous stream at a time, moving its origin after every block.
        for (int64_t v = 0; v < q; ++v) {
            MomentState one = s;
            one.W = one.W2 = 0;
            one.o = s.o + v;
            for (int k = 0; k < r->K; ++k) one.U[k] = s.U[k] + v;
            Run<T> single = *r;
            single.vars = r->vars + v;
            single.q = 1;
            for (int64_t b = j0; b < j1; b += block) {
                const int64_t e = std::min(b + block, j1);
                sums(single, one, nullptr, b, e);
                add_weights(one, b, e);
                if (one.W != 0) centre_variable(one, 0, r->K);
            }
            s.W = one.W;
            s.W2 = one.W2;
        }
        return;
    }
    for (int64_t b = j0; b < j1; b += block) {
        const int64_t e = std::min(b + block, j1);
        sums(*r, s, r->row[thread], b, e);
        if (r->matrix)
            for (int64_t mb = b; mb < e; mb += r->mblock)
                matrix_block(*r, s, r->D[thread], r->E[thread], mb, std::min(mb + r->mblock, e));
        add_weights(s, b, e);
        if (r->method == Method::OnePass) centre(s, q, r->K, r->matrix, true);
    }
    if (r->method == Method::Fast) centre(s, q, r->K, r->matrix, true);
}

// Adds the sums of w x^k (k = 1..K) of a state, from its origin and power sums by the binomial theorem.
void raw_sums(const MomentState &s, int64_t q, int K, double *const *P) {
    for (int64_t v = 0; v < q; ++v) {
        const double o = s.o[v], u1 = s.U[0][v], u2 = K >= 2 ? s.U[1][v] : 0, u3 = K >= 3 ? s.U[2][v] : 0;
        P[0][v] += s.W * o + u1;
        if (K >= 2) P[1][v] += s.W * o * o + 2 * o * u1 + u2;
        if (K >= 3) P[2][v] += s.W * o * o * o + 3 * o * o * u1 + 3 * o * u2 + u3;
        if (K >= 4) P[3][v] += s.W * o * o * o * o + 4 * o * o * o * u1 + 6 * o * o * u2 + 4 * o * u3 + s.U[3][v];
    }
}

struct Layout {
    const int64_t *vars;
    int64_t q, p;
    int64_t mstore[3];  // storages of covariance, correlation, cross-product
};

int64_t mstore_of(const Layout &l, int pos) { return l.mstore[pos == kCov ? 0 : pos == kCor ? 1 : 2]; }

template <class T>
Matrix<T> matrix_of(const rok_ss_task *t, const Layout &l, int pos) {
    return Matrix<T>{static_cast<T *>(result_array(t, pos)), mstore_of(l, pos), l.p};
}

// The state of earlier calls, recovered from the arrays the request keeps up to date.
template <class T>
bool read_prior(const rok_ss_task *t, uint32_t need, Method method, const Layout &l, int K, bool matrix,
                MomentState &pr, double *const *P) {
    auto at = [&](int pos, int64_t v) { return static_cast<double>(static_cast<const T *>(result_array(t, pos))[l.vars[v]]); };
    auto has = [&](int pos) { return (need & bit(pos)) != 0; };
    const double Wp = pr.W, Dp = Wp - pr.W2 / Wp;
    const bool user = method == Method::UserMean;
    for (int k = 1; k <= K; ++k) {
        const int sum_pos = kSum + k - 1, mom_pos = k == 1 ? kMean : kR2 + k - 2;
        for (int64_t v = 0; v < l.q; ++v) {
            if (has(sum_pos))
                P[k - 1][v] += at(sum_pos, v);
            else if (has(mom_pos) && !(user && k == 1))
                P[k - 1][v] += Wp * at(mom_pos, v);
        }
    }
    if (!user && !has(kMean) && !has(kSum)) return false;
    for (int64_t v = 0; v < l.q; ++v) {
        const double m = user ? pr.o[v] : has(kMean) ? at(kMean, v) : at(kSum, v) / Wp;
        pr.o[v] = m;
        pr.U[0][v] = 0;
        const double r2 = has(kR2) ? at(kR2, v) : 0, r3 = has(kR3) ? at(kR3, v) : 0, r4 = has(kR4) ? at(kR4, v) : 0;
        for (int k = 2; k <= K; ++k) {
            const int cs = kCS2 + k - 2, cm = kC2 + k - 2;
            double s = 0;
            if (has(cs))
                s = at(cs, v);
            else if (has(cm))
                s = k == 2 ? (Dp > 0 ? at(cm, v) * Dp : 0) : at(cm, v) * Wp;
            else if (!user && k == 2 && has(kR2))
                s = Wp * (r2 - m * m);
            else if (!user && k == 3 && has(kR2) && has(kR3))
                s = Wp * (r3 - 3 * m * r2 + 2 * m * m * m);
            else if (!user && k == 4 && has(kR2) && has(kR3) && has(kR4))
                s = Wp * (r4 - 4 * m * r3 + 6 * m * m * r2 - 3 * m * m * m * m);
            pr.U[k - 1][v] = s;
        }
    }
    if (matrix) {
        const int64_t q = l.q;
        for (int64_t a = 0; a < q; ++a)
            for (int64_t b = a; b < q; ++b) {
                const int64_t i = l.vars[a], j = l.vars[b];
                double c = 0;
                if (has(kCP))
                    c = matrix_of<T>(t, l, kCP).get(i, j);
                else if (has(kCov))
                    c = Dp > 0 ? matrix_of<T>(t, l, kCov).get(i, j) * Dp : 0;
                else if (has(kCor))
                    c = matrix_of<T>(t, l, kCor).get(i, j) * std::sqrt(pr.U[1][a] * pr.U[1][b]);
                pr.M[a * q + b] = c;
            }
    }
    return true;
}

// Writes every array of `need` from the final state F and raw sums P.
template <class T>
void write_results(rok_ss_task *t, uint32_t need, Method method, const Layout &l, const MomentState &F,
                   double *const *P) {
    const double W = F.W, D = W - F.W2 / W;
    const int64_t q = l.q;
    auto out = [&](int pos, int64_t v, double value) {
        if (need & bit(pos)) static_cast<T *>(result_array(t, pos))[l.vars[v]] = static_cast<T>(value);
    };
    const bool user = method == Method::UserMean;
    int K = 1;
    while (K < 4 && F.U[K] != nullptr) ++K;
    for (int64_t v = 0; v < q; ++v) {
        // Central sums about the mean; about the caller's centre for the user-mean method.
        double S[4] = {0, 0, 0, 0};
        central_sums(F, v, K, user ? 0.0 : F.U[0][v] / W, S);
        const double c2 = S[1] / D, c3 = S[2] / W, c4 = S[3] / W;
        const double mean = user ? F.o[v] : F.o[v] + F.U[0][v] / W;
        if (method != Method::UserMean) out(kMean, v, mean);
        out(kSum, v, P[0][v]);
        for (int k = 2; k <= K; ++k) {
            out(kR2 + k - 2, v, P[k - 1][v] / W);
            out(kRS2 + k - 2, v, P[k - 1][v]);
            out(kCS2 + k - 2, v, S[k - 1]);
        }
        out(kC2, v, c2);
        out(kC3, v, c3);
        out(kC4, v, c4);
        out(kKurt, v, c4 / (c2 * c2) - 3);
        out(kSkew, v, c3 / (c2 * std::sqrt(c2)));
        out(kVar, v, std::sqrt(c2) / mean);
    }
    if (need & kMatrices) {
        for (int64_t a = 0; a < q; ++a) F.tmp[a] = F.M[a * q + a];
        if (need & bit(kCor)) inv_sqrt(q, F.tmp);
        for (int64_t a = 0; a < q; ++a)
            for (int64_t b = a; b < q; ++b) {
                const int64_t i = l.vars[a], j = l.vars[b];
                const double c = F.M[a * q + b];
                if (need & bit(kCP)) matrix_of<T>(t, l, kCP).set(i, j, c);
                if (need & bit(kCov)) matrix_of<T>(t, l, kCov).set(i, j, c / D);
                if (need & bit(kCor)) matrix_of<T>(t, l, kCor).set(i, j, c * F.tmp[a] * F.tmp[b]);
            }
    }
    if (t->accum_weights != nullptr) {
        static_cast<T *>(t->accum_weights)[0] = static_cast<T>(W);
        static_cast<T *>(t->accum_weights)[1] = static_cast<T>(F.W2);
    }
}

// Conversions between sums and moments: no pass over the observations.
template <class T>
int convert(rok_ss_task *t, uint32_t want, Method method, const Layout &l) {
    double W, W2;
    if (t->accum_weights != nullptr) {
        W = static_cast<const T *>(t->accum_weights)[0];
        W2 = static_cast<const T *>(t->accum_weights)[1];
    } else if (t->n != nullptr && t->weights == nullptr) {
        W = W2 = static_cast<double>(read_int(t, t->n));
    } else {
        return ROK_SS_ERROR_BAD_ACCUM_WEIGHT_ADDR;
    }
    const double D = W - W2 / W;
    const bool to_moments = method == Method::SumToMom;
    auto arr = [&](int pos) { return static_cast<T *>(result_array(t, pos)); };
    const int64_t q = l.q;
    for (int pos = kMean; pos <= kC4; ++pos) {
        if (!(want & bit(pos))) continue;
        const double f = pos == kC2 ? D : W;
        T *mom = arr(pos), *sum = arr(pos + kSum);
        for (int64_t v = 0; v < q; ++v) {
            const int64_t i = l.vars[v];
            if (to_moments)
                mom[i] = static_cast<T>(static_cast<double>(sum[i]) / f);
            else
                sum[i] = static_cast<T>(static_cast<double>(mom[i]) * f);
        }
    }
    if (want & bit(kCov)) {
        const Matrix<T> cov = matrix_of<T>(t, l, kCov), cp = matrix_of<T>(t, l, kCP);
        for (int64_t a = 0; a < q; ++a)
            for (int64_t b = a; b < q; ++b) {
                const int64_t i = l.vars[a], j = l.vars[b];
                if (to_moments)
                    cov.set(i, j, cp.get(i, j) / D);
                else
                    cp.set(i, j, cov.get(i, j) * D);
            }
    }
    for (int64_t v = 0; v < q; ++v) {
        const int64_t i = l.vars[v];
        auto val = [&](int pos) { return static_cast<double>(arr(pos)[i]); };
        if (want & bit(kKurt)) arr(kKurt)[i] = static_cast<T>(val(kC4) / (val(kC2) * val(kC2)) - 3);
        if (want & bit(kSkew)) arr(kSkew)[i] = static_cast<T>(val(kC3) / (val(kC2) * std::sqrt(val(kC2))));
        if (want & bit(kVar)) arr(kVar)[i] = static_cast<T>(std::sqrt(val(kC2)) / val(kMean));
    }
    if (want & bit(kCor)) {
        Buffer buf;
        if (!buf.allocate(sizeof(double) * static_cast<size_t>(q))) return ROK_SS_ERROR_MEMORY;
        double *is = buf.as<double>();
        const Matrix<T> cp = matrix_of<T>(t, l, kCP), cor = matrix_of<T>(t, l, kCor);
        for (int64_t a = 0; a < q; ++a) is[a] = cp.get(l.vars[a], l.vars[a]);
        inv_sqrt(q, is);
        for (int64_t a = 0; a < q; ++a)
            for (int64_t b = a; b < q; ++b)
                cor.set(l.vars[a], l.vars[b], cp.get(l.vars[a], l.vars[b]) * is[a] * is[b]);
    }
    return 0;
}

// Order of power sums the request needs.
int order_needed(uint32_t need) {
    int K = 1;
    if (need & (bit(kR2) | bit(kRS2) | bit(kC2) | bit(kCS2) | bit(kVar) | kMatrices)) K = 2;
    if (need & (bit(kR3) | bit(kRS3) | bit(kC3) | bit(kCS3) | bit(kSkew))) K = 3;
    if (need & (bit(kR4) | bit(kRS4) | bit(kC4) | bit(kCS4) | bit(kKurt))) K = 4;
    return K;
}

template <class T>
int pass(rok_ss_task *t, uint32_t need, Method method, const Layout &l, const qon_serv_services *services) {
    Run<T> r;
    r.x = static_cast<const T *>(t->x);
    r.w = static_cast<const T *>(t->weights);
    r.n = read_int(t, t->n);
    r.p = l.p;
    r.storage = read_int(t, t->xstorage);
    r.vars = l.vars;
    r.q = l.q;
    r.identity = r.q == r.p;
    r.matrix = (need & kMatrices) != 0;
    r.K = order_needed(need);
    r.method = method;
    r.block = r.matrix ? std::clamp<int64_t>((int64_t{1} << 18) / r.q, 64, 512) : 1024;
    r.mblock = r.block;
    const int nthreads = basic_threads(max_threads(services), r.n, r.p, r.matrix);
    const int nstates = nthreads + 1;  // the last one holds the state of earlier calls
    const int64_t q = r.q;
    const int K = r.K;
    const bool user = method == Method::UserMean;

    const size_t qd = round_line(sizeof(double) * static_cast<size_t>(q));
    const size_t md = r.matrix ? round_line(sizeof(double) * static_cast<size_t>(q) * static_cast<size_t>(q)) : 0;
    const size_t bd = r.matrix ? round_line(sizeof(double) * static_cast<size_t>(q) * static_cast<size_t>(r.mblock)) : 0;
    const size_t rowd = round_line(sizeof(T) * static_cast<size_t>(q));
    const size_t heads = round_line(sizeof(MomentState) * nstates) + 3 * round_line(sizeof(void *) * nthreads);
    const size_t per_state = qd * (2 + static_cast<size_t>(K)) + md;
    const size_t per_thread = bd * (r.w != nullptr ? 2 : 1) + rowd;
    Buffer work;
    if (!work.allocate(heads + per_state * nstates + per_thread * nthreads + qd * (1 + static_cast<size_t>(K))))
        return ROK_SS_ERROR_MEMORY;
    char *cursor = work.as<char>();
    auto take = [&](size_t bytes) {
        char *at = cursor;
        cursor += bytes;
        return at;
    };
    auto *parts = reinterpret_cast<MomentState *>(take(round_line(sizeof(MomentState) * nstates)));
    r.D = reinterpret_cast<double **>(take(round_line(sizeof(void *) * nthreads)));
    r.E = reinterpret_cast<double **>(take(round_line(sizeof(void *) * nthreads)));
    r.row = reinterpret_cast<T **>(take(round_line(sizeof(void *) * nthreads)));
    for (int i = 0; i < nstates; ++i) {
        MomentState *s = new (&parts[i]) MomentState{};
        s->o = reinterpret_cast<double *>(take(qd));
        s->tmp = reinterpret_cast<double *>(take(qd));
        for (int k = 0; k < K; ++k) s->U[k] = reinterpret_cast<double *>(take(qd));
        if (r.matrix) s->M = reinterpret_cast<double *>(take(md));
    }
    for (int i = 0; i < nthreads; ++i) {
        r.D[i] = r.matrix ? reinterpret_cast<double *>(take(bd)) : nullptr;
        r.E[i] = r.matrix && r.w != nullptr ? reinterpret_cast<double *>(take(bd)) : nullptr;
        r.row[i] = reinterpret_cast<T *>(take(rowd));
    }
    auto *s0 = reinterpret_cast<double *>(take(qd));
    double *P[4] = {nullptr, nullptr, nullptr, nullptr};
    for (int k = 0; k < K; ++k) P[k] = std::fill_n(reinterpret_cast<double *>(take(qd)), q, 0.0) - q;

    MomentState &pr = parts[nthreads];
    for (int k = 0; k < K; ++k) std::fill_n(pr.U[k], q, 0.0);
    if (r.matrix) std::fill_n(pr.M, q * q, 0.0);
    const T *mean = static_cast<const T *>(t->moments[0]);
    for (int64_t v = 0; v < q; ++v) pr.o[v] = user && mean != nullptr ? static_cast<double>(mean[l.vars[v]]) : 0.0;
    if (t->accum_weights != nullptr) {
        pr.W = static_cast<const T *>(t->accum_weights)[0];
        pr.W2 = static_cast<const T *>(t->accum_weights)[1];
    }
    const bool prior = pr.W != 0 && read_prior<T>(t, need, method, l, K, r.matrix, pr, P);
    // First origin: the caller's centre, the previous mean, or the mean of the first (up to) 32
    // observations, which keeps the sums of the first block within a few spreads of the mean.
    const int64_t lead = std::min<int64_t>(r.n, 32);
    for (int64_t v = 0; v < q; ++v) {
        if (user || prior) {
            s0[v] = pr.o[v];
            continue;
        }
        double sum = 0;
        for (int64_t j = 0; j < lead; ++j)
            sum += static_cast<double>(r.x[r.storage == kStorageRows ? l.vars[v] * r.n + j : j * r.p + l.vars[v]]);
        s0[v] = sum / static_cast<double>(lead);
    }
    r.s0 = s0;
    r.parts = parts;
    parallel<Run<T>, accumulate<T>>(services, nthreads, &r);

    MomentState &c = parts[0];
    for (int i = 1; i < nthreads; ++i) (user ? add : merge)(c, parts[i], q, K, r.matrix);
    raw_sums(c, q, K, P);
    const MomentState *F = &pr;
    if (user)
        add(pr, c, q, K, r.matrix);
    else if (prior)
        merge(pr, c, q, K, r.matrix);
    else {
        c.W += pr.W;
        c.W2 += pr.W2;
        F = &c;
    }
    write_results<T>(t, need, method, l, *F, P);
    return 0;
}

}  // namespace

uint32_t pack_estimates(uint64_t estimates) {
    uint32_t m = 0;
    for (int pos = 0; pos < kPositions; ++pos)
        if ((estimates >> kEstimateBit[pos]) & 1u) m |= bit(pos);
    return m;
}

int basic_threads(int tmax, int64_t n, int64_t p, bool matrix) {
    const unsigned __int128 m = matrix ? static_cast<unsigned __int128>(p) : 1u;
    const unsigned __int128 work = static_cast<unsigned __int128>(n) * static_cast<unsigned __int128>(p) * m;
    unsigned __int128 threads = work >> 13;
    threads = std::min<unsigned __int128>(threads, static_cast<unsigned __int128>(std::max(tmax, 1)));
    threads = std::min<unsigned __int128>(threads, static_cast<unsigned __int128>(n >> 4));
    return threads == 0 ? 1 : static_cast<int>(threads);
}

}  // namespace ss

namespace ss {

template <class T>
int basic(rok_ss_task *t, uint64_t estimates, uint64_t method_word, const qon_serv_services *services) {
    if (t == nullptr) return ROK_SS_ERROR_NULL_TASK_DESCRIPTOR;
    qon::fpu::Guard fp(0);
    Method method;
    if (int status = method_of(method_word, method)) return status;
    const uint32_t *table = method == Method::Fast                                        ? kTableB
                            : method == Method::OnePass || method == Method::UserMean ? kTableA
                                                                                      : kTableC;
    const uint32_t want = pack_estimates(estimates);
    uint32_t need = 0;
    for (int pos = 0; pos < kPositions; ++pos)
        if (want & bit(pos)) need |= table[pos];
    for (int pos = 0; pos < kPositions; ++pos)
        if ((need & bit(pos)) && result_array(t, pos) == nullptr) return kMissing[pos];
    if (need & kUnsupported) return ROK_SS_ERROR_METHOD_NOT_SUPPORTED;
    const bool conversion = method == Method::SumToMom || method == Method::MomToSum;
    if (!conversion) {
        if (t->n == nullptr || read_int(t, t->n) < 1) return ROK_SS_ERROR_BAD_OBSERV_N;
        if (t->x == nullptr) return ROK_SS_ERROR_BAD_OBSERV_ADDR;
        if (t->xstorage == nullptr) return ROK_SS_ERROR_BAD_STORAGE_ADDR;
        if (!valid_storage(read_int(t, t->xstorage))) return ROK_SS_ERROR_STORAGE_NOT_SUPPORTED;
    }
    Layout l{};
    const int pos_of[3] = {kCov, kCor, kCP};
    for (int m = 0; m < 3; ++m) {
        const void *sp = storage_pointer(t, pos_of[m]);
        l.mstore[m] = (need & bit(pos_of[m])) && sp != nullptr ? read_int(t, sp) : 0;
        if (l.mstore[m] < 0 || l.mstore[m] > 2) return ROK_SS_ERROR_STORAGE_NOT_SUPPORTED;
    }
    l.p = t->p != nullptr ? read_int(t, t->p) : 0;
    if (l.p < 1 || need == 0) return 0;
    Buffer vars;
    if (!vars.allocate(sizeof(int64_t) * static_cast<size_t>(l.p))) return ROK_SS_ERROR_MEMORY;
    l.vars = vars.as<int64_t>();
    l.q = processed_variables(t, l.p, vars.as<int64_t>());
    if (l.q == 0) return 0;
    if (conversion) return convert<T>(t, want, method, l);
    return pass<T>(t, need, method, l, services_or_default(services));
}

template int basic<double>(rok_ss_task *, uint64_t, uint64_t, const qon_serv_services *);
template int basic<float>(rok_ss_task *, uint64_t, uint64_t, const qon_serv_services *);

}  // namespace ss

QON_SS_KERNEL_TWINS(SSBasic, basic)
