// Binary values to decimal ones and back, and decimal values to integers.

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <limits>

#include <kiv/decimal.h>

#include "decimal/from_binary.h"
#include "decimal/parts.h"
#include "numconv/decimal_packing.h"
#include "numconv/decimal_to_binary.h"
#include "numconv/exact_digits.h"
#include "numconv/scaling.h"

namespace kiv::decimal {

namespace {

using numconv::BinaryFormat;
using numconv::BinaryValue;
using numconv::FixedUint;

// --- From binary values ----------------------------------------------------------------

// value / 10^n, the quotient below 2^128; whether something is left.
bool divide(const FixedUint& value, unsigned n, Uint128& quotient) noexcept
{
    const std::uint64_t power = big_uint::pow10_table[n];
    const Uint128 high = Uint128{value.limb(2)} << 64 | value.limb(1);
    const Uint128 low = high % power << 64 | value.limb(0);
    quotient = high / power << 64 | low / power;
    return low % power != 0;
}

// Exactly, then rounded once. The exponent is as near to 0 as it can be.
template <class Decimal>
Decimal from_exact(double value) noexcept
{
    return from_any<Decimal>(value, 0, [value](bool negative) {
        BinaryValue binary = numconv::binary_value(value);
        const int zeros = std::countr_zero(binary.significand);
        binary.exponent += zeros;
        FixedUint rest(binary.significand >> zeros);
        int exponent = 0;
        if (binary.exponent >= 0) {
            rest.shift_left(static_cast<unsigned>(binary.exponent));
        } else {
            exponent = binary.exponent;
            rest.multiply_by_power_of_five(static_cast<unsigned>(-exponent));
        }
        // Down to 128 bits, more than any precision, if it has more.
        bool dropped = false;
        for (; rest.bit_length() > 191; exponent += static_cast<int>(words::CHUNK_DIGITS))
            dropped |= rest.divide_by_chunk() != 0;
        Uint128 coefficient = Uint128{rest.limb(1)} << 64 | rest.limb(0);
        if (const unsigned bits = rest.bit_length(); bits > 128) {
            const int n = numconv::log10_at_least(bits - 127) + 1;
            dropped |= divide(rest, static_cast<unsigned>(n), coefficient);
            exponent += n;
        }
        return numconv::pack_decimal<Decimal>(negative, exponent,
                                              words::split(coefficient),
                                              dropped ? numconv::BELOW_HALF : 0);
    });
}

// --- To binary values and integers -----------------------------------------------

// The digits behind the 20th are cut off; whether they are not all zero.
bool cut_to_twenty_digits(Uint128& coefficient, std::int64_t& exponent) noexcept
{
    std::size_t excess = 0;
    while (coefficient >= numconv::WIDE_POWERS_OF_TEN[20 + excess])
        ++excess;
    const Uint128 power = numconv::WIDE_POWERS_OF_TEN[excess];
    const bool more = coefficient % power != 0;
    coefficient /= power;
    exponent += static_cast<std::int64_t>(excess);
    return more;
}

template <class Float, class Decimal>
Float to_binary(Decimal value) noexcept
{
    using Format = BinaryFormat<Float>;
    const auto parts = parts_of(value);
    if (parts.kind == Kind::nan)
        return std::numeric_limits<Float>::quiet_NaN();
    if (parts.kind == Kind::infinite)
        return Format::with_sign(parts.negative, Format::INFINITE);

    Uint128 coefficient = parts.coefficient;
    std::int64_t exponent = parts.exponent;
    // Longer coefficients are not zero yet below the exponents that the table has.
    const bool more = exponent < numconv::LEAST_POWER_OF_TEN &&
                      cut_to_twenty_digits(coefficient, exponent);
    return numconv::decimal_to_binary<Float>(
        parts.negative, words::split(coefficient), exponent, more, [&parts] {
            return numconv::ExactDecimal{FixedUint(words::split(parts.coefficient)),
                                         parts.exponent};
        });
}

// The magnitude without its fraction, at most `most`.
template <class Decimal>
std::uint64_t whole_part(const Parts<Decimal>& parts, std::uint64_t most) noexcept
{
    constexpr int POWERS = static_cast<int>(numconv::WIDE_POWERS_OF_TEN.size());
    if (parts.kind == Kind::infinite)
        return most;
    const int places = std::abs(parts.exponent);
    const Uint128 coefficient = parts.coefficient;
    if (coefficient == 0 || (parts.exponent < 0 && places >= POWERS))
        return 0;
    if (places >= POWERS)
        return most;
    const Uint128 power = numconv::WIDE_POWERS_OF_TEN[static_cast<std::size_t>(places)];
    if (parts.exponent < 0)
        return static_cast<std::uint64_t>(std::min<Uint128>(coefficient / power, most));
    return coefficient > most / power ? most
                                      : static_cast<std::uint64_t>(coefficient * power);
}

template <class Decimal>
std::int64_t to_integer(Decimal value, std::int64_t least, std::int64_t most) noexcept
{
    const auto parts = parts_of(value);
    if (parts.kind == Kind::nan)
        return 0;
    const std::uint64_t limit = detail::magnitude(parts.negative ? least : most);
    const std::uint64_t magnitude = whole_part(parts, limit);
    return static_cast<std::int64_t>(parts.negative ? -magnitude : magnitude);
}

template <class Decimal>
std::uint64_t to_integer(Decimal value, std::uint64_t most) noexcept
{
    const auto parts = parts_of(value);
    return parts.kind == Kind::nan || parts.negative ? 0 : whole_part(parts, most);
}

}  // namespace

#define KIV_CONVERSIONS(WIDTH)                                                    \
    KDecimal##WIDTH decimal##WIDTH::from_binary(double value) noexcept            \
    {                                                                             \
        return from_exact<decimal##WIDTH>(value).pattern();                       \
    }                                                                             \
    decimal##WIDTH::operator float() const noexcept                               \
    {                                                                             \
        return to_binary<float>(*this);                                           \
    }                                                                             \
    decimal##WIDTH::operator double() const noexcept                              \
    {                                                                             \
        return to_binary<double>(*this);                                          \
    }                                                                             \
    std::int64_t decimal##WIDTH::to_signed(std::int64_t least, std::int64_t most) \
        const noexcept                                                            \
    {                                                                             \
        return to_integer(*this, least, most);                                    \
    }                                                                             \
    std::uint64_t decimal##WIDTH::to_unsigned(std::uint64_t most) const noexcept  \
    {                                                                             \
        return to_integer(*this, most);                                           \
    }
KIV_CONVERSIONS(32)
KIV_CONVERSIONS(64)
KIV_CONVERSIONS(128)
#undef KIV_CONVERSIONS

}  // namespace kiv::decimal
