"""The powers of five that the conversion of floating-point numbers multiplies with:
the top 128 bits of each, rounded down."""

import tablegen

OUTPUT = "libkivxx/numconv/tables/powers_of_five.cpp"
HEADER = "numconv/tables/powers_of_five.h"

# 20 digits times 10^-344 are below half of the smallest double, 10^309 is above the
# largest. Formatting divides by the power of ten that is just below an ulp, from
# 10^-324 to 10^292.
LEAST = -343
MOST = 324


def top_bits(exponent):
    """floor(5^exponent * 2^s), with the s for which 2^127 <= it < 2^128."""
    power = 5**abs(exponent)
    bits = power.bit_length()
    if exponent < 0:
        # 2^(bits - 1) <= power < 2^bits, and 1 / power is no power of two.
        return (1 << (bits + 127)) // power
    return power >> (bits - 128) if bits > 128 else power << (128 - bits)


def generate(root):
    entries = []
    for exponent in range(LEAST, MOST + 1):
        bits = top_bits(exponent)
        if bits.bit_length() != 128:
            raise SystemExit(f"5^{exponent}: {bits.bit_length()} bits")
        entries.append(f"{{0x{bits >> 64:016X}, 0x{bits & (1 << 64) - 1:016X}}}")
    array = tablegen.cpp_array("words::Wide", "powers_of_five", entries, 2,
                               lambda first: f"5^{LEAST + first}")
    text = tablegen.cpp_file("powers_of_five.py", [], HEADER, "kiv::tables", [array], root)
    return [tablegen.Table(OUTPUT, text, f"{len(entries)} powers, {16 * len(entries)} bytes")]
