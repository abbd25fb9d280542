// numconv/decimal_format.h - the decimal interchange formats as numbers and bits.

#ifndef KIV_NUMCONV_DECIMAL_FORMAT_H
#define KIV_NUMCONV_DECIMAL_FORMAT_H

#include <array>
#include <cstddef>
#include <cstdint>

#include <kiv/kdecimal.h>

#include "bigint/words.h"

namespace kiv::numconv {

using words::Uint128;

// `Bits` holds the bit pattern, and twice any coefficient with one digit too many.
template <class Decimal>
struct DecimalFormat;

template <>
struct DecimalFormat<decimal::decimal32> {
    using Bits = std::uint64_t;
    static constexpr int WIDTH = 32;
    static constexpr int PRECISION = 7;
    static constexpr int BIAS = 101;
    static constexpr int MAX_EXPONENT = 90;      // of the last digit
    static constexpr int COEFFICIENT_BITS = 23;  // of the short form

    static decimal::decimal32 value(Bits bits) noexcept
    {
        return decimal::decimal32(KDecimal32{static_cast<std::uint32_t>(bits)});
    }
    static Bits bits(decimal::decimal32 value) noexcept { return value.pattern().bits; }
};

template <>
struct DecimalFormat<decimal::decimal64> {
    using Bits = std::uint64_t;
    static constexpr int WIDTH = 64;
    static constexpr int PRECISION = 16;
    static constexpr int BIAS = 398;
    static constexpr int MAX_EXPONENT = 369;
    static constexpr int COEFFICIENT_BITS = 53;

    static decimal::decimal64 value(Bits bits) noexcept
    {
        return decimal::decimal64(KDecimal64{bits});
    }
    static Bits bits(decimal::decimal64 value) noexcept { return value.pattern().bits; }
};

template <>
struct DecimalFormat<decimal::decimal128> {
    using Bits = Uint128;
    static constexpr int WIDTH = 128;
    static constexpr int PRECISION = 34;
    static constexpr int BIAS = 6176;
    static constexpr int MAX_EXPONENT = 6111;
    static constexpr int COEFFICIENT_BITS = 113;

    static decimal::decimal128 value(Bits bits) noexcept
    {
        return decimal::decimal128(KDecimal128{static_cast<std::uint64_t>(bits),
                                               static_cast<std::uint64_t>(bits >> 64)});
    }
    static Bits bits(decimal::decimal128 value) noexcept
    {
        return words::join({value.pattern().high, value.pattern().low});
    }
};

// 10^0 to 10^38, as many as 128 bits hold.
inline constexpr auto WIDE_POWERS_OF_TEN = [] {
    std::array<Uint128, 39> powers{};
    Uint128 power = 1;
    for (Uint128& value : powers) {
        value = power;
        power *= 10;
    }
    return powers;
}();

// n from 0 to PRECISION + 1.
template <class Format>
constexpr typename Format::Bits power_of_ten(std::int64_t n) noexcept
{
    return static_cast<typename Format::Bits>(
        WIDE_POWERS_OF_TEN[static_cast<std::size_t>(n)]);
}

// The first coefficient with too many digits.
template <class Format>
inline constexpr
    typename Format::Bits COEFFICIENT_END = power_of_ten<Format>(Format::PRECISION);

template <class Format>
constexpr typename Format::Bits signed_infinity(bool negative) noexcept
{
    using Bits = typename Format::Bits;
    return Bits{negative} << (Format::WIDTH - 1) | Bits{0x78} << (Format::WIDTH - 8);
}

template <class Format>
constexpr typename Format::Bits positive_nan() noexcept
{
    return typename Format::Bits{0x7C} << (Format::WIDTH - 8);
}

// A coefficient that needs one bit more than the short form has begins with the bits
// 100; the large form leaves them out and marks itself by two ones after the sign.
template <class Format>
constexpr typename Format::Bits encode(bool negative, std::int64_t exponent,
                                       typename Format::Bits coefficient) noexcept
{
    using Bits = typename Format::Bits;
    constexpr int N = Format::COEFFICIENT_BITS;
    Bits bits = Bits{negative} << (Format::WIDTH - 1);
    exponent += Format::BIAS;
    const auto biased = static_cast<Bits>(exponent);
    if (coefficient >> N == 0) {
        bits |= biased << N | coefficient;
    } else {
        bits |= Bits{3} << (Format::WIDTH - 3);
        bits |= biased << (N - 2) | (coefficient & ((Bits{1} << (N - 2)) - 1));
    }
    return bits;
}

// Whether encode() takes them.
template <class Format>
constexpr bool is_encodable(std::int64_t exponent, Uint128 coefficient) noexcept
{
    return coefficient < COEFFICIENT_END<Format> && exponent >= -Format::BIAS &&
           exponent <= Format::MAX_EXPONENT;
}

}  // namespace kiv::numconv

#endif
