#!/usr/bin/env python3
"""Writes send/BlowfishTables.cpp: the initial words of Blowfish are the hexadecimal digits of the fraction
of pi, computed here by Machin's formula, pi = 16 arctan(1/5) - 4 arctan(1/239).

usage: tools/make-blowfish-tables.py >send/BlowfishTables.cpp
"""

WORDS = 18 + 4 * 256
BITS = 32 * WORDS
GUARD = 64


def arctan_inverse(x, one):
    """one * arctan(1/x) by its power series, in whole numbers."""
    total = term = one // x
    n, sign = 3, -1
    while term:
        term //= x * x
        total += sign * (term // n)
        n, sign = n + 2, -sign
    return total


def pi_words():
    one = 1 << (BITS + GUARD)
    pi = 4 * (4 * arctan_inverse(5, one) - arctan_inverse(239, one))
    digits = (pi - 3 * one) >> GUARD
    return [(digits >> (BITS - 32 * (i + 1))) & 0xFFFFFFFF for i in range(WORDS)]


def rows(words, indent):
    lines = [words[i:i + 8] for i in range(0, len(words), 8)]
    return ",\n".join(" " * indent + ", ".join(f"0x{w:08x}" for w in line) for line in lines)


def main():
    words = pi_words()
    boxes = [words[18 + 256 * i:18 + 256 * (i + 1)] for i in range(4)]
    print("// Made by tools/make-blowfish-tables.py.\n")
    print('#include "send/BlowfishTables.h"\n')
    print("// clang-format off")
    print("const uint32_t kBlowfishP[kBlowfishPWords] = {\n" + rows(words[:18], 4) + "};\n")
    print("const uint32_t kBlowfishS[kBlowfishBoxes][kBlowfishBoxWords] = {")
    print(",\n".join("    {\n" + rows(box, 4) + "}" for box in boxes) + "};")
    print("// clang-format on")


main()
