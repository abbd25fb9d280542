// numconv/exact_digits.h - the shortest decimal of a binary value, in exact arithmetic.
//
// The decimal is the shortest of at least two digits that rounds back to the value:
// the least n >= 2 for which the decimal of n digits nearest to the value, ties to the
// even last digit, lies in the value's rounding interval; with n = limit the nearest one
// whether or not it does. Trailing zeros are then removed.
//
// This is the reference for the fast path and its way out where that cannot decide.

#ifndef KIV_NUMCONV_EXACT_DIGITS_H
#define KIV_NUMCONV_EXACT_DIGITS_H

#include <bit>
#include <cstdint>

#include <kiv/numconv.h>

#include "numconv/binary_format.h"

namespace kiv::numconv {

// coefficient * 10^exponent.
struct ShortDecimal {
    std::uint64_t coefficient;
    int exponent;

    friend bool operator==(const ShortDecimal&, const ShortDecimal&) = default;
};

// significand * 2^exponent, a value of a binary format: significand has at most
// PRECISION bits, and as many unless exponent is the least, MIN_EXPONENT - PRECISION + 1.
struct BinaryValue {
    std::uint64_t significand;
    int exponent;
};

// Of a finite value; the sign is ignored.
template <class Float>
inline BinaryValue binary_value(Float value) noexcept
{
    using Format = BinaryFormat<Float>;
    using Bits = typename Format::Bits;
    constexpr int STORED_BITS = Format::PRECISION - 1;
    constexpr Bits LEAST_NORMAL = Bits{1} << STORED_BITS;

    const Bits magnitude = std::bit_cast<Bits>(value) & ~Format::SIGN;
    const int exponent = Format::MIN_EXPONENT - STORED_BITS;
    if (magnitude < LEAST_NORMAL)
        return {magnitude, exponent};
    return {(magnitude & (LEAST_NORMAL - 1)) | LEAST_NORMAL,
            exponent - 1 + static_cast<int>(magnitude >> STORED_BITS)};
}

inline BinaryValue binary_value(binary16 value) noexcept
{
    const unsigned fraction = value.bits & 0x3FFU;
    const int biased = value.bits >> 10 & 0x1F;
    if (biased == 0)
        return {fraction, -24};
    return {fraction | 0x400U, biased - 25};
}

// What the digits depend on of the format.
struct BinaryShape {
    int precision;
    int min_exponent;  // of the leading bit of normal values
};

inline constexpr BinaryShape BINARY16_SHAPE = {11, -14};
template <class Float>
inline constexpr BinaryShape SHAPE_OF = {BinaryFormat<Float>::PRECISION,
                                         BinaryFormat<Float>::MIN_EXPONENT};

// As many digits as any value of the format needs.
inline constexpr unsigned BINARY16_DIGITS = 5;
template <class Float>
inline constexpr unsigned DIGITS_OF = BinaryFormat<Float>::Limits::max_digits10;

// floor(log10(2^e)) for |e| <= 1650: the constant is log10(2) * 2^20 to nearest.
constexpr int floor_log10_of_power_of_two(std::int64_t e) noexcept
{
    return static_cast<int>(e * 315653 >> 20);
}

// The value is not 0; 2 <= limit <= 19.
ShortDecimal exact_digits(BinaryValue value, BinaryShape shape, unsigned limit) noexcept;

}  // namespace kiv::numconv

#endif
