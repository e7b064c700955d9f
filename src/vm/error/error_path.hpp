// The error path: kernels call it once per offending element after storing that element's
// special result. It stores the status, offers the element to the user's call-back (which may
// replace the results), and, as the thread's error mode asks, sets errno, prints a report and
// raises the floating-point exception. Eight entries: single and double, real and complex,
// contiguous and strided. One-argument functions pass their argument array twice and
// one-result functions their result array twice.
#pragma once

#include <qon/qon_pax.h>

#include <complex>

namespace qon::vm {

// Contiguous forms: element i of every array.
void error_s(int code, int index, const float *a1, const float *a2, float *r1, float *r2, const char *name);
void error_d(int code, int index, const double *a1, const double *a2, double *r1, double *r2, const char *name);
void error_c(int code, int index, const std::complex<float> *a1, const std::complex<float> *a2,
             std::complex<float> *r1, std::complex<float> *r2, const char *name);
void error_z(int code, int index, const std::complex<double> *a1, const std::complex<double> *a2,
             std::complex<double> *r1, std::complex<double> *r2, const char *name);

// Strided forms: element i of an array lies at i * its increment (an increment of 0 addresses a
// single value for every index).
void error_sI(int code, int index, const float *a1, int inc1, const float *a2, int inc2, float *r1, int incr1,
              float *r2, int incr2, const char *name);
void error_dI(int code, int index, const double *a1, int inc1, const double *a2, int inc2, double *r1, int incr1,
              double *r2, int incr2, const char *name);
void error_cI(int code, int index, const std::complex<float> *a1, int inc1, const std::complex<float> *a2,
              int inc2, std::complex<float> *r1, int incr1, std::complex<float> *r2, int incr2, const char *name);
void error_zI(int code, int index, const std::complex<double> *a1, int inc1, const std::complex<double> *a2,
              int inc2, std::complex<double> *r1, int incr1, std::complex<double> *r2, int incr2,
              const char *name);

// Forms for kernels that may run in place: the element's argument values are passed, since the
// result may already stand where the argument was; a1 still locates the element in the
// caller's vector for the index correction.
void error_sV(int code, int index, const float *a1, float x1, float x2, float *r1, int incr1, float *r2, int incr2,
              const char *name);
void error_dV(int code, int index, const double *a1, double x1, double x2, double *r1, int incr1, double *r2,
              int incr2, const char *name);
void error_cV(int code, int index, const std::complex<float> *a1, std::complex<float> x1, std::complex<float> x2,
              std::complex<float> *r1, int incr1, std::complex<float> *r2, int incr2, const char *name);
void error_zV(int code, int index, const std::complex<double> *a1, std::complex<double> x1,
              std::complex<double> x2, std::complex<double> *r1, int incr1, std::complex<double> *r2, int incr2,
              const char *name);

inline void report_values(int code, int index, const float *a1, float x1, float x2, float *r1, int incr1, float *r2,
                          int incr2, const char *name) {
    error_sV(code, index, a1, x1, x2, r1, incr1, r2, incr2, name);
}
inline void report_values(int code, int index, const double *a1, double x1, double x2, double *r1, int incr1,
                          double *r2, int incr2, const char *name) {
    error_dV(code, index, a1, x1, x2, r1, incr1, r2, incr2, name);
}
inline void report_values(int code, int index, const std::complex<float> *a1, std::complex<float> x1,
                          std::complex<float> x2, std::complex<float> *r1, int incr1, std::complex<float> *r2,
                          int incr2, const char *name) {
    error_cV(code, index, a1, x1, x2, r1, incr1, r2, incr2, name);
}
inline void report_values(int code, int index, const std::complex<double> *a1, std::complex<double> x1,
                          std::complex<double> x2, std::complex<double> *r1, int incr1, std::complex<double> *r2,
                          int incr2, const char *name) {
    error_zV(code, index, a1, x1, x2, r1, incr1, r2, incr2, name);
}

// The same entries selected by element type, for templates.
inline void report(int code, int index, const float *a1, int inc1, const float *a2, int inc2, float *r1,
                   int incr1, float *r2, int incr2, const char *name) {
    error_sI(code, index, a1, inc1, a2, inc2, r1, incr1, r2, incr2, name);
}
inline void report(int code, int index, const double *a1, int inc1, const double *a2, int inc2, double *r1,
                   int incr1, double *r2, int incr2, const char *name) {
    error_dI(code, index, a1, inc1, a2, inc2, r1, incr1, r2, incr2, name);
}
inline void report(int code, int index, const std::complex<float> *a1, int inc1, const std::complex<float> *a2,
                   int inc2, std::complex<float> *r1, int incr1, std::complex<float> *r2, int incr2,
                   const char *name) {
    error_cI(code, index, a1, inc1, a2, inc2, r1, incr1, r2, incr2, name);
}
inline void report(int code, int index, const std::complex<double> *a1, int inc1,
                   const std::complex<double> *a2, int inc2, std::complex<double> *r1, int incr1,
                   std::complex<double> *r2, int incr2, const char *name) {
    error_zI(code, index, a1, inc1, a2, inc2, r1, incr1, r2, incr2, name);
}
inline void report(int code, int index, const float *a1, const float *a2, float *r1, float *r2, const char *name) {
    error_s(code, index, a1, a2, r1, r2, name);
}
inline void report(int code, int index, const double *a1, const double *a2, double *r1, double *r2,
                   const char *name) {
    error_d(code, index, a1, a2, r1, r2, name);
}
inline void report(int code, int index, const std::complex<float> *a1, const std::complex<float> *a2,
                   std::complex<float> *r1, std::complex<float> *r2, const char *name) {
    error_c(code, index, a1, a2, r1, r2, name);
}
inline void report(int code, int index, const std::complex<double> *a1, const std::complex<double> *a2,
                   std::complex<double> *r1, std::complex<double> *r2, const char *name) {
    error_z(code, index, a1, a2, r1, r2, name);
}

}  // namespace qon::vm
