#!/usr/bin/env python3
"""Generates src/vm/kernels/ln_tables.cpp: the interval tables of the logarithm kernels, and
checks the properties the kernels rely on.

    python3 tools/gen_ln_tables.py > src/vm/kernels/ln_tables.cpp
    python3 tools/gen_ln_tables.py --check        (prints the bounds, fails on a violation)

x = 2^k z with z in [OFF, 2*OFF); a set of N intervals (8: the single-precision kernels, 4: the
double LA kernel) splits that range by the bits of z just past OFF. OFF is placed so that 1.0
sits two thirds into its interval (the interval's relative half-widths below and above 1 are then
equal, 1/(3N)), rounded down to a float so that double and float split at the same points.

For each interval a short c_j near 1/z (c = 1 on the interval of 1) is chosen among the multiples
of 2^-q (q = 1..12) so that r = z*c_j - 1 is exactly representable for every z of the interval,
in double and in float (z*c_j - 1 is a multiple of ulp(z)*ulp(c_j) and fits when
|r| < 2^(precision) * ulp(z)*ulp(c_j)), minimising max |r|. Then
    ln x = k ln2 - ln c_j + log1p(r),
  8 intervals  c8_f (c_j, at most 7 significant bits), logc8_f = RN_float(-ln c_j), and
               logc8_hi_f = -ln c_j rounded to a multiple of 2^-16 (so that k*L1 + logc_hi is
               exact in float, L1 = ln2 rounded to a multiple of 2^-16, |k| <= 150) with
               logc8_lo_f = RN_float(-ln c_j - logc8_hi_f)
  4 intervals  c4 and logc4 = RN(-ln c_j)
-ln c_j is evaluated with mpmath at 200 bits and rounded once with exact rational arithmetic.
"""
import struct
import sys
from fractions import Fraction

import mpmath

mpmath.mp.prec = 200

# Table sets: (name, N, j1): 1.0 sits two thirds into interval j1 of N over [OFF, 2*OFF), so that
# the interval of c = 1 is balanced: |r| <= 1/(3N) there.
SETS = (('8', 8, 4), ('4', 4, 2))
N = 16
OFF = 0
SHIFT = 48


def use(n, j1):
    """Selects a table set: interval width 2^(52 - log2 n) in the bits, offset from j1."""
    global N, OFF, SHIFT
    N = n
    SHIFT = 52 - (n.bit_length() - 1)
    third = (1 << SHIFT) // 3 * 2
    off = 0x3FF0000000000000 - (j1 << SHIFT) - third
    # rounded down to a float so that the float kernels split at the same points
    OFF = off & ~((1 << 29) - 1)


def bits_to_double(b):
    return struct.unpack('<d', struct.pack('<Q', b))[0]


def rn(q):
    """q rounded to the nearest double (int/int division rounds correctly)."""
    return q.numerator / q.denominator


def rn_float(q):
    return struct.unpack('<f', struct.pack('<f', rn(q)))[0]


def round_to(q, step):
    """q rounded to the nearest multiple of step (both Fractions)."""
    return Fraction(round(q / step)) * step


def neg_log(c):
    v = -mpmath.log(mpmath.mpf(c.numerator) / c.denominator)
    m, e = mpmath.frexp(v)
    return Fraction(int(mpmath.ldexp(m, 190))) * Fraction(2) ** (e - 190)


def ulp_exp(q, prec):
    """Exponent of the unit in the last place of q (> 0) in a format of prec bits."""
    e = q.numerator.bit_length() - q.denominator.bit_length()
    if Fraction(2) ** e > q:
        e -= 1
    return e - prec + 1


def interval(j):
    lo = Fraction(bits_to_double(OFF + (j << SHIFT)))
    hi = Fraction(bits_to_double(OFF + ((j + 1) << SHIFT)))
    return lo, hi  # z in [lo, hi); hi - one ulp is the last z


def exact_for(lo, hi, c):
    """r = z*c - 1 representable for every z in [lo, hi) in double and float."""
    if c == 1:
        return True
    rmax = max(abs(lo * c - 1), abs(hi * c - 1))
    cq = c.denominator.bit_length() - 1  # c = m/2^cq, m odd
    for prec in (53, 24):
        ez = ulp_exp(lo, prec)  # no interval but the one of c = 1 straddles 1
        if rmax >= Fraction(2) ** (prec + ez - cq):
            return False
    return True


def choose_c(j):
    lo, hi = interval(j)
    if lo <= 1 < hi:
        return Fraction(1)
    best = None
    for q in range(1, 13):
        step = Fraction(1, 2 ** q)
        centre = 2 / (lo + hi)
        for m in range(int(centre / step) - 2, int(centre / step) + 3):
            c = m * step
            if c <= 0 or not exact_for(lo, hi, c):
                continue
            rmax = max(abs(lo * c - 1), abs(hi * c - 1))
            if best is None or rmax < best[0]:
                best = (rmax, c)
    return best[1]


L1 = round_to(neg_log(Fraction(1, 2)), Fraction(1, 2 ** 42))
L1_F = round_to(neg_log(Fraction(1, 2)), Fraction(1, 2 ** 16))


def rows():
    out = []
    for j in range(N):
        c = choose_c(j)
        v = neg_log(c)
        hi_f = round_to(v, Fraction(1, 2 ** 16))
        out.append((c, rn(v), rn_float(v), interval(j), hi_f, rn_float(v - hi_f)))
    return out


def hexd(x):
    return float(x).hex()


# Per set: the arrays written (name, type, comment, entry).
ARRAYS = {
    '8': (('c8_f', 'float', 'c_j as floats.', lambda r: hexd(r[0]) + 'f'),
          ('logc8_f', 'float', '-ln c_j rounded to float.', lambda r: hexd(r[2]) + 'f'),
          ('logc8_hi_f', 'float', '-ln c_j rounded to a multiple of 2^-16.', lambda r: hexd(r[4]) + 'f'),
          ('logc8_lo_f', 'float', '-ln c_j - logc8_hi_f[j] rounded to float.', lambda r: hexd(r[5]) + 'f')),
    '4': (('c4', 'double', 'c_j.', lambda r: hexd(r[0])),
          ('logc4', 'double', '-ln c_j rounded to double.', lambda r: hexd(r[1]))),
}


def table_file():
    out = ['// Tables of the logarithm kernels, generated by tools/gen_ln_tables.py (intervals of z, the',
           '// short factors c_j with exact r = z*c_j - 1, and -ln c_j); regenerate with',
           '//     python3 tools/gen_ln_tables.py > src/vm/kernels/ln_tables.cpp',
           '#include "vm/kernels/ln_tables.hpp"', '', 'namespace qon::vm::ln_tables {', '']
    for name, n, j1 in SETS:
        use(n, j1)
        rs = rows()
        out.append('// %d intervals, z in [OFF, 2 OFF) with OFF bits 0x%016X.' % (n, OFF))
        for arr, ty, comment, fmt in ARRAYS[name]:
            out.append('// ' + comment)
            out.append('alignas(32) const %s %s[%d] = {' % (ty, arr, n))
            for j in range(0, n, 4):
                out.append('    ' + ' '.join(fmt(rs[i]) + ',' for i in range(j, j + 4)))
            out.append('};')
        out.append('')
    out.append('}  // namespace qon::vm::ln_tables')
    return '\n'.join(out) + '\n'


def check():
    ok = True
    print('L1 = %s  0x%016X  L2 = %s' % (hexd(L1), struct.unpack('<Q', struct.pack('<d', float(L1)))[0],
                                          hexd(rn(neg_log(Fraction(1, 2)) - L1))))
    print('float L1 = %s  0x%08X  L2 = %s  0x%08X' % (
        hexd(L1_F), struct.unpack('<I', struct.pack('<f', float(L1_F)))[0], hexd(rn_float(neg_log(Fraction(1, 2)) - L1_F)),
        struct.unpack('<I', struct.pack('<f', rn_float(neg_log(Fraction(1, 2)) - L1_F)))[0]))
    for name, n, j1 in SETS:
        use(n, j1)
        print('%d intervals, offset 0x%016X (float 0x%08X)' % (n, OFF, struct.unpack('<I', struct.pack('<f', bits_to_double(OFF)))[0]))
        for j, (c, full, lf, (zlo, zhi), hi_f, lo_f) in enumerate(rows()):
            rmax = max(abs(zlo * c - 1), abs(zhi * c - 1))
            lnmin = 0 if zlo <= 1 < zhi else min(abs(float(mpmath.log(float(zlo)))), abs(float(mpmath.log(float(zhi)))))
            # Fast2Sum of logc_hi + r needs exponent(logc_hi) >= exponent(r) (or logc_hi = 0)
            f2s = hi_f == 0 or ulp_exp(abs(hi_f), 53) >= ulp_exp(rmax, 53)
            ok &= f2s and exact_for(zlo, zhi, c)
            print('%2d z [%.5f, %.5f) c %-6s r_max %.5f  -ln c %+.5f  min|ln z| %.4f  fast2sum %s' % (
                j, zlo, zhi, str(c), rmax, float(full), lnmin, f2s))
    return ok


if __name__ == '__main__':
    if '--check' in sys.argv:
        sys.exit(0 if check() else 1)
    sys.stdout.write(table_file())
