// The accumulation state of the basic-statistics kernel and the two ways of combining it.
//
// A state holds, per processed variable, the weight W accumulated so far (and W2, the sum of
// the squared weights), an origin o and the power sums U_k = sum w (x - o)^k, k = 1..4, and the
// upper triangle of M = sum w (x - o)(x - o)^T. A state is centred when o is its mean rounded to
// double (U_1 = W (mean - o), a fraction of an ulp of the mean per unit weight): then U_2..U_4
// are the central sums and M the cross-product matrix.
//
// centre() moves the origin to the mean, o' = o + e with e = U_1 / W (central_sums below), and
// M' = M - U_1 U_1^T / W.
// Applied after every observation this is the one-pass (Welford) update; applied after a block
// of observations summed about the running mean it is the same update with e of the order of
// the block's standard error, so the correction terms stay small against the sums.
//
// merge() combines two centred states a and b (Chan, Golub and LeVeque; Pebay for orders 3, 4),
// with d = mean_b - mean_a = (o_b - o_a) + (U1_b / W_b - U1_a / W_a), W = W_a + W_b:
//   S2 = S2a + S2b + d^2 W_a W_b / W
//   S3 = S3a + S3b + d^3 W_a W_b (W_a - W_b) / W^2 + 3d (W_a S2b - W_b S2a) / W
//   S4 = S4a + S4b + d^4 W_a W_b (W_a^2 - W_a W_b + W_b^2) / W^3 + 6d^2 (W_a^2 S2b + W_b^2 S2a) / W^2
//        + 4d (W_a S3b - W_b S3a) / W
//   M = M_a + M_b + (W_a W_b / W) d d^T,  mean = mean_a + d W_b / W.
// Every term is a sum of quantities of the size of the result, so the merge adds a few ulps.
#pragma once

#include <qon/qon_blas.h>

#include <cstdint>

namespace ss {

struct MomentState {
    double W = 0, W2 = 0;
    double *o = nullptr;
    double *U[4] = {nullptr, nullptr, nullptr, nullptr};
    double *M = nullptr;    // q x q, upper triangle used, row-major
    double *tmp = nullptr;  // q scratch values
};

// o' = fl(o + e), returning the rounding residual (o + e) - o' exactly (Knuth's two-sum). The
// state keeps U_1 = W * residual, so that a mean far from zero (1e9 with unit spread) does not
// lose the fraction below its ulp at every move of the origin: dropping it would add a term
// 2 U_1 W_old r / W to S2 per move, ~1e-10 relative for the example.
inline double move_origin(double &o, double e) {
    const double s = o + e, b = s - o, residual = (o - (s - b)) + (e - b);
    o = s;
    return residual;
}

// Central sums from power sums about an origin o with U_1 = sum w (x - o): c = U_1 / W,
//   S_2 = U_2 - c U_1,  S_3 = U_3 - 3c U_2 + 2c^2 U_1,  S_4 = U_4 - 4c U_3 + 6c^2 U_2 - 3c^3 U_1.
inline void central_sums(const MomentState &s, int64_t v, int K, double c, double S[4]) {
    const double u1 = s.U[0][v];
    if (K >= 4) S[3] = s.U[3][v] - 4 * c * s.U[2][v] + 6 * c * c * s.U[1][v] - 3 * c * c * c * u1;
    if (K >= 3) S[2] = s.U[2][v] - 3 * c * s.U[1][v] + 2 * c * c * u1;
    if (K >= 2) S[1] = s.U[1][v] - c * u1;
}

// Stores central sums S about the exact mean o + t as power sums about the double nearest to it:
// with r the rounding residual, x - o' = (x - mean) + r, so
//   U_1 = W r,  U_2 = S_2 + W r^2,  U_3 = S_3 + 3r S_2 + W r^3,  U_4 = S_4 + 4r S_3 + 6r^2 S_2 + W r^4.
// (M changes by W r r^T, below an ulp of its diagonal, and is left as it is.)
inline void settle(MomentState &s, int64_t v, int K, double W, double t, const double S[4]) {
    const double r = move_origin(s.o[v], t);
    s.U[0][v] = W * r;
    if (K >= 2) s.U[1][v] = S[1] + W * r * r;
    if (K >= 3) s.U[2][v] = S[2] + 3 * r * S[1] + W * r * r * r;
    if (K >= 4) s.U[3][v] = S[3] + 4 * r * S[2] + 6 * r * r * S[1] + W * r * r * r * r;
}

inline void centre_variable(MomentState &s, int64_t v, int K) {
    const double c = s.U[0][v] / s.W;
    double S[4] = {0, 0, 0, 0};
    central_sums(s, v, K, c, S);
    settle(s, v, K, s.W, c, S);
}

inline void centre(MomentState &s, int64_t q, int K, bool matrix, bool worker) {
    if (s.W == 0) return;
    if (matrix)
        (worker ? qon_blas_xdsyr : qon_blas_dsyr)(QON_BLAS_ROW_MAJOR, QON_BLAS_UPPER, q, -1.0 / s.W, s.U[0], 1, s.M, q);
    for (int64_t v = 0; v < q; ++v) centre_variable(s, v, K);
}

inline void copy_state(MomentState &a, const MomentState &b, int64_t q, int K, bool matrix) {
    a.W = b.W;
    a.W2 = b.W2;
    for (int64_t v = 0; v < q; ++v) {
        a.o[v] = b.o[v];
        for (int k = 0; k < K; ++k) a.U[k][v] = b.U[k][v];
    }
    if (matrix)
        for (int64_t i = 0; i < q * q; ++i) a.M[i] = b.M[i];
}

// a <- a combined with b; both centred. Runs on the calling thread.
inline void merge(MomentState &a, const MomentState &b, int64_t q, int K, bool matrix) {
    if (b.W == 0) return;
    if (a.W == 0) {
        copy_state(a, b, q, K, matrix);
        return;
    }
    const double na = a.W, nb = b.W, W = na + nb, r = nb / W, c = na * nb / W;
    for (int64_t v = 0; v < q; ++v) {
        const double ca = a.U[0][v] / na, cb = b.U[0][v] / nb, d = (b.o[v] - a.o[v]) + (cb - ca);
        double Sa[4] = {0, 0, 0, 0}, Sb[4] = {0, 0, 0, 0}, S[4] = {0, 0, 0, 0};
        central_sums(a, v, K, ca, Sa);
        central_sums(b, v, K, cb, Sb);
        if (K >= 4)
            S[3] = Sa[3] + Sb[3] + d * d * d * d * c * (na * na - na * nb + nb * nb) / (W * W) +
                   6 * d * d * (na * na * Sb[1] + nb * nb * Sa[1]) / (W * W) + 4 * d * (na * Sb[2] - nb * Sa[2]) / W;
        if (K >= 3) S[2] = Sa[2] + Sb[2] + d * d * d * c * (na - nb) / W + 3 * d * (na * Sb[1] - nb * Sa[1]) / W;
        if (K >= 2) S[1] = Sa[1] + Sb[1] + d * d * c;
        settle(a, v, K, W, ca + d * r, S);
        a.tmp[v] = d;
    }
    if (matrix) {
        for (int64_t i = 0; i < q; ++i)
            for (int64_t j = i; j < q; ++j) a.M[i * q + j] += b.M[i * q + j];
        qon_blas_dsyr(QON_BLAS_ROW_MAJOR, QON_BLAS_UPPER, q, c, a.tmp, 1, a.M, q);
    }
    a.W = W;
    a.W2 += b.W2;
}

// a <- a + b for two states about the same origin.
inline void add(MomentState &a, const MomentState &b, int64_t q, int K, bool matrix) {
    for (int k = 0; k < K; ++k)
        for (int64_t v = 0; v < q; ++v) a.U[k][v] += b.U[k][v];
    if (matrix)
        for (int64_t i = 0; i < q; ++i)
            for (int64_t j = i; j < q; ++j) a.M[i * q + j] += b.M[i * q + j];
    a.W += b.W;
    a.W2 += b.W2;
}

}  // namespace ss
