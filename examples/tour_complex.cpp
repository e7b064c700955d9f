// Complex vector math: principal branches and signed zeros on the cuts, a pole reported through
// the error status, and pack/unpack moving strided elements in and out of a dense array.
#include <qon/qon_pax.h>

#include <cstdio>

void tour_complex() {
    std::printf("Complex vector math\n-------------------\n");
    // sqrt and ln on both sides of the cut along the negative real axis: the sign of the zero
    // imaginary part picks the side.
    const QON_Complex16 a[4] = {{-4.0, 0.0}, {-4.0, -0.0}, {0.0, 0.0}, {0.0, 2.0}};
    QON_Complex16 s[4], l[4];
    paxClearErrStatus();
    paxzSqrt(4, a, s);
    paxzLn(4, a, l);
    for (int i = 0; i < 4; ++i)
        std::printf("  z = (%g, %g): sqrt z = (%g, %g), ln z = (%g, %.17g)\n", a[i].real, a[i].imag, s[i].real,
                    s[i].imag, l[i].real, l[i].imag);
    std::printf("status after ln(0): %d (singularity)\n", paxGetErrStatus());
    paxClearErrStatus();

    // (1 + i)^(1/2 + i) in every accuracy: each slot is within its bound of the same value.
    const QON_Complex16 x{1.0, 1.0}, e{0.5, 1.0};
    QON_Complex16 ha, la;
    paxzPowx(1, &x, e, &ha);
    paxzPowx_50(1, &x, e, &la);
    std::printf("(1+i)^(0.5+i): HA (%.17g, %.17g), LA (%.17g, %.17g)\n", ha.real, ha.imag, la.real, la.imag);

    // Every third element packed into a dense array, conjugated there, and put back.
    QON_Complex16 v[9], dense[3];
    for (int i = 0; i < 9; ++i) v[i] = {double(i), 1.0};
    paxzPackI(3, v, 3, dense);
    paxzConj(3, dense, dense);
    paxzUnpackI(3, dense, v, 3);
    std::printf("after PackI/Conj/UnpackI with increment 3:");
    for (const QON_Complex16 &t : v) std::printf(" (%g,%g)", t.real, t.imag);
    std::printf("\n\n");
}
