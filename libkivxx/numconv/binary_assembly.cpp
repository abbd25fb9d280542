#include "numconv/binary_assembly.h"

#include <bit>

#include <kiv/numconv.h>

#include "bigint/powers.h"
#include "numconv/decimal_to_binary.h"
#include "numconv/scaling.h"

namespace kiv::numconv {
namespace {

// Rounds once: subnormal values too go from all bits straight to those that stay.
template <class Float>
Float assemble(bool negative, std::int64_t exponent, std::uint64_t coefficient,
               unsigned dropped)
{
    using Format = BinaryFormat<Float>;
    using Bits = typename Format::Bits;
    if (coefficient == 0)
        return Format::with_sign(negative, 0);

    const int length = 64 - std::countl_zero(coefficient);
    const std::int64_t leading = exponent + length - 1;  // exponent of the leading bit
    if (leading > Format::MAX_EXPONENT)
        return Format::with_sign(negative, Format::INFINITE);
    std::int64_t excess = length - Format::PRECISION;  // bits to remove
    int biased = 0;
    if (leading < Format::MIN_EXPONENT) {
        excess += Format::MIN_EXPONENT - leading;
        if (excess > length)
            return Format::with_sign(negative, 0);  // below half of the last bit
    } else {
        biased = static_cast<int>(leading) + Format::MAX_EXPONENT;
    }

    unsigned info = dropped;
    if (excess > 0) {
        const std::uint64_t halves = coefficient >> (excess - 1);
        const bool sticky = dropped != 0 || halves << (excess - 1) != coefficient;
        info = static_cast<unsigned>(halves & 1) << 1 | unsigned{sticky};
        coefficient = halves >> 1;
    } else {
        coefficient <<= -excess;
    }

    constexpr std::uint64_t FRACTION = (std::uint64_t{1} << (Format::PRECISION - 1)) - 1;
    auto bits = static_cast<Bits>(
        (static_cast<std::uint64_t>(biased) << (Format::PRECISION - 1)) |
        (coefficient & FRACTION));
    // The carry runs into the exponent: the next binade, the smallest normal number
    // or infinity.
    if (info == ABOVE_HALF || (info == HALF && (coefficient & 1) != 0))
        ++bits;
    return Format::with_sign(negative, bits);
}

// coefficient / 5^n * 2^exponent, rounded from the exact quotient: of it, 63 or 64
// bits and whether anything follows, more than any significand and one bit.
template <class Float>
Float assemble_quotient(bool negative, std::int64_t exponent, const big_uint& coefficient,
                        unsigned n)
{
    big_uint buf;
    const big_uint& divisor = bigint::pow5(n, &buf);
    const int shift = divisor.highest_set_bit() - coefficient.highest_set_bit() + 63;
    const Quotient quotient = divide(coefficient, shift, divisor);
    return assemble<Float>(negative, exponent - shift, quotient.value.to_uint64(),
                           quotient.inexact ? BELOW_HALF : 0);
}

}  // namespace

template <class Float>
Float assemble_binary(bool negative, std::int64_t exponent, const big_uint& coefficient,
                      unsigned dropped)
{
    const unsigned length = coefficient.bit_length();
    if (length <= 64)
        return assemble<Float>(negative, exponent, coefficient.to_uint64(), dropped);

    // 64 bits hold the significand and the bit below; the rest is only zero or not.
    const unsigned excess = length - 64;
    auto top = big_uint::make_uninitialized(2);
    top.shift_right(coefficient, excess);
    if (coefficient.compute_rounding_info(excess) != 0)
        dropped = BELOW_HALF;
    return assemble<Float>(negative, exponent + excess, top.to_uint64(), dropped);
}

template <class Float>
Float assemble_decimal(bool negative, std::int64_t exponent, const big_uint& coefficient,
                       unsigned dropped)
{
    using Format = BinaryFormat<Float>;

    const unsigned length = coefficient.bit_length();
    if (length == 0)
        return Format::with_sign(negative, 0);
    if (length <= 64 && dropped == 0)
        return decimal_to_binary<Float>(negative, coefficient.to_uint64(), exponent);
    if (log10_at_least(length) + exponent > Format::MAX_LOG10)
        return Format::with_sign(negative, Format::INFINITE);
    if (log10_at_most(length) + exponent < Format::MIN_LOG10)
        return Format::with_sign(negative, 0);
    if (exponent == 0)
        return assemble_binary<Float>(negative, 0, coefficient, dropped);

    big_uint kept = shifted(coefficient, 0);
    if (dropped == ABOVE_HALF || (dropped == HALF && kept.lsb())) {
        if (kept.increment())
            kept.prepend(1);
    }
    // Both directions leave the powers of two of 10^exponent to the binary exponent.
    if (exponent < 0)
        return assemble_quotient<Float>(negative, exponent, kept,
                                        static_cast<unsigned>(-exponent));
    big_uint buf;
    const big_uint& power = bigint::pow5(static_cast<unsigned>(exponent), &buf);
    auto product = big_uint::make_uninitialized(kept.size() + power.size());
    product.multiply(kept, power);
    return assemble_binary<Float>(negative, exponent, product, 0);
}

template float assemble_binary(bool, std::int64_t, const big_uint&, unsigned);
template double assemble_binary(bool, std::int64_t, const big_uint&, unsigned);
template float assemble_decimal(bool, std::int64_t, const big_uint&, unsigned);
template double assemble_decimal(bool, std::int64_t, const big_uint&, unsigned);

}  // namespace kiv::numconv

namespace kiv {

float make_float(bool negative, int exponent, const big_uint& coefficient)
{
    return numconv::assemble_decimal<float>(negative, exponent, coefficient, 0);
}

double make_double(bool negative, int exponent, const big_uint& coefficient)
{
    return numconv::assemble_decimal<double>(negative, exponent, coefficient, 0);
}

long double make_long_double(bool negative, int exponent, const big_uint& coefficient)
{
    return make_double(negative, exponent, coefficient);
}

float pack_float(bool negative, int exponent, const big_uint& coefficient)
{
    return numconv::assemble_binary<float>(negative, exponent, coefficient, 0);
}

double pack_double(bool negative, int exponent, const big_uint& coefficient)
{
    return numconv::assemble_binary<double>(negative, exponent, coefficient, 0);
}

long double pack_long_double(bool negative, int exponent, const big_uint& coefficient)
{
    return pack_double(negative, exponent, coefficient);
}

}  // namespace kiv
