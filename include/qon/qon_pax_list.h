/* The list of vector-math functions. Every declaration, entry, table of kernels and figure
 * table is generated from these two lists; nothing about a function is written twice.
 *
 * QON_PAX_REAL_FUNCTIONS(X) names the functions of the s (float) and d (double) types,
 * QON_PAX_COMPLEX_FUNCTIONS(X) those of the c (float complex) and z (double complex) types.
 * X(Func, family, cost) with:
 *   Func    the function name; every function except pack and unpack also has a strided
 *           form named Func##I;
 *   family  the argument family (see qon_pax.h, QON_PAX_SIG_*):
 *           U   one argument, one result              (n, a, r)
 *           B   two arguments, one result             (n, a, b, r)
 *           U2  one argument, two results             (n, a, r1, r2)
 *           PX  array and scalar exponent             (n, a, b, r)
 *           LF  linear fraction                       (n, a, b, scalea, shifta, scaleb, shiftb, r)
 *           NU  integer order and array               (n, a, nu, r)
 *           CR  complex argument, real result         (n, a, r)
 *           RC  real argument, complex result         (n, a, r)
 *           PI, PM, PV, UI, UM, UV  pack and unpack by increment, mask and index vector
 *   cost    the HA figure of the double (or double complex) form: a relative cost per element
 *           that the core library may use to split work; the other figures derive from it. */
#ifndef QON_PAX_LIST_H
#define QON_PAX_LIST_H

#define QON_PAX_REAL_FUNCTIONS(X) \
    X(Abs, U, 0.52f) \
    X(Acos, U, 6.1f) \
    X(Acosh, U, 7.9f) \
    X(Acospi, U, 6.3f) \
    X(Add, B, 0.521f) \
    X(Asin, U, 6.1f) \
    X(Asinh, U, 8.4f) \
    X(Asinpi, U, 6.3f) \
    X(Atan, U, 6.2f) \
    X(Atan2, B, 9.8f) \
    X(Atan2pi, B, 10.1f) \
    X(Atanh, U, 7.4f) \
    X(Atanpi, U, 6.4f) \
    X(Cbrt, U, 5.6f) \
    X(CdfNorm, U, 9.1f) \
    X(CdfNormInv, U, 11.3f) \
    X(Ceil, U, 0.6f) \
    X(CopySign, B, 0.55f) \
    X(Cos, U, 6.9f) \
    X(Cosd, U, 7.6f) \
    X(Cosh, U, 7.7f) \
    X(Cospi, U, 6.1f) \
    X(Div, B, 1.3f) \
    X(Erf, U, 7.3f) \
    X(ErfInv, U, 8.8f) \
    X(Erfc, U, 8.6f) \
    X(ErfcInv, U, 10.9f) \
    X(Erfcx, U, 9.7f) \
    X(Exp, U, 4.628f) \
    X(Exp10, U, 5.1f) \
    X(Exp2, U, 4.4f) \
    X(ExpInt1, U, 19.5f) \
    X(Expm1, U, 6.2f) \
    X(Fdim, B, 0.6f) \
    X(Floor, U, 0.6f) \
    X(Fmax, B, 0.6f) \
    X(Fmin, B, 0.6f) \
    X(Fmod, B, 9.5f) \
    X(Frac, U, 0.7f) \
    X(Hypot, B, 2.9f) \
    X(I0, U, 14.2f) \
    X(I1, U, 14.6f) \
    X(Inv, U, 1.2f) \
    X(InvCbrt, U, 6.0f) \
    X(InvSqrt, U, 1.9f) \
    X(J0, U, 21.7f) \
    X(J1, U, 22.1f) \
    X(Jn, NU, 48.3f) \
    X(LGamma, U, 24.6f) \
    X(LinearFrac, LF, 1.6f) \
    X(Ln, U, 6.254f) \
    X(Log10, U, 6.4f) \
    X(Log1p, U, 6.9f) \
    X(Log2, U, 6.3f) \
    X(Logb, U, 0.9f) \
    X(MaxMag, B, 0.7f) \
    X(MinMag, B, 0.7f) \
    X(Modf, U2, 0.9f) \
    X(Mul, B, 0.521f) \
    X(NearbyInt, U, 0.6f) \
    X(NextAfter, B, 0.9f) \
    X(PackI, PKI, 1111.0f) \
    X(PackM, PKM, 1111.0f) \
    X(PackV, PKV, 1111.0f) \
    X(Pow, B, 14.3f) \
    X(Pow2o3, U, 6.1f) \
    X(Pow3o2, U, 6.6f) \
    X(Powr, B, 14.1f) \
    X(Powx, PX, 13.2f) \
    X(Remainder, B, 9.9f) \
    X(Rint, U, 0.6f) \
    X(Round, U, 0.6f) \
    X(Sin, U, 6.9f) \
    X(SinCos, U2, 9.3f) \
    X(SinCospi, U2, 8.2f) \
    X(Sind, U, 7.6f) \
    X(Sinh, U, 7.7f) \
    X(Sinpi, U, 6.1f) \
    X(Sqr, U, 0.53f) \
    X(Sqrt, U, 1.7f) \
    X(Sub, B, 0.521f) \
    X(TGamma, U, 29.8f) \
    X(Tan, U, 8.7f) \
    X(Tand, U, 9.2f) \
    X(Tanh, U, 7.9f) \
    X(Tanpi, U, 8.1f) \
    X(Trunc, U, 0.6f) \
    X(UnpackI, UPI, 1111.0f) \
    X(UnpackM, UPM, 1111.0f) \
    X(UnpackV, UPV, 1111.0f) \
    X(Y0, U, 22.9f) \
    X(Y1, U, 23.3f) \
    X(Yn, NU, 51.7f)

#define QON_PAX_COMPLEX_FUNCTIONS(X) \
    X(Abs, CR, 3.1f) \
    X(Acos, U, 61.2f) \
    X(Acosh, U, 62.4f) \
    X(Add, B, 1.04f) \
    X(Arg, CR, 9.9f) \
    X(Asin, U, 61.5f) \
    X(Asinh, U, 61.9f) \
    X(Atan, U, 48.6f) \
    X(Atanh, U, 48.3f) \
    X(CIS, RC, 9.4f) \
    X(Conj, U, 1.02f) \
    X(Cos, U, 31.7f) \
    X(Cosh, U, 31.9f) \
    X(Div, B, 4.6f) \
    X(Exp, U, 42.017f) \
    X(Ln, U, 29.6f) \
    X(Log10, U, 30.4f) \
    X(Mul, B, 2.2f) \
    X(MulByConj, B, 2.2f) \
    X(PackI, PKI, 1111.0f) \
    X(PackM, PKM, 1111.0f) \
    X(PackV, PKV, 1111.0f) \
    X(Pow, B, 78.3f) \
    X(Powx, PX, 76.9f) \
    X(Sin, U, 31.7f) \
    X(Sinh, U, 31.9f) \
    X(Sqrt, U, 14.9f) \
    X(Sub, B, 1.04f) \
    X(Tan, U, 44.8f) \
    X(Tanh, U, 44.6f) \
    X(UnpackI, UPI, 1111.0f) \
    X(UnpackM, UPM, 1111.0f) \
    X(UnpackV, UPV, 1111.0f)

#endif
