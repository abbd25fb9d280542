// Decimal values with the fewest digits that tell a binary value from its neighbours.

#include <algorithm>
#include <bit>

#include <kiv/decimal.h>

#include "decimal/from_binary.h"
#include "decimal/parts.h"
#include "numconv/decimal_packing.h"
#include "numconv/exact_digits.h"
#include "numconv/shortest.h"

namespace kiv::decimal {

namespace {

using numconv::BinaryValue;
using numconv::ShortDecimal;

template <class Decimal>
Decimal pack(bool negative, ShortDecimal digits) noexcept
{
    return numconv::pack_decimal<Decimal>(negative, digits.exponent,
                                          words::Wide{0, digits.coefficient}, 0);
}

// By one multiplication, if that is enough; all digits, trailing zeros included.
template <class Float>
bool shortest_quickly(BinaryValue value, ShortDecimal& result) noexcept
{
    if (value.significand < 100 || std::has_single_bit(value.significand))
        return false;
    const numconv::ScaledValue<Float> scaled(value);
    numconv::SplitDecimal split{};
    if (scaled.has_integer())
        split = scaled.integer();
    else if (!scaled.has_no_integer() || !scaled.tenths(split))
        return false;
    result = {split.tens * 10 + split.ones, static_cast<int>(split.exponent)};
    return true;
}

// The fewest digits that tell the value from its neighbours, at most `limit`.
template <class Float>
ShortDecimal shortest_digits(BinaryValue value, unsigned limit) noexcept
{
    ShortDecimal result;
    if (shortest_quickly<Float>(value, result)) {
        for (; result.coefficient % 10 == 0; result.coefficient /= 10)
            ++result.exponent;
        if (result.coefficient < big_uint::pow10_table[limit])
            return result;
    }
    return numconv::exact_digits(value, numconv::SHAPE_OF<Float>, limit);
}

template <class Decimal, class Float>
Decimal from_shortest(Float value) noexcept
{
    using Format = DecimalFormat<Decimal>;
    constexpr unsigned LIMIT =
        std::min<unsigned>(Format::PRECISION, numconv::DIGITS_OF<Float>);
    return from_any<Decimal>(value, -Format::BIAS, [value](bool negative) {
        return pack<Decimal>(negative,
                             shortest_digits<Float>(numconv::binary_value(value), LIMIT));
    });
}

template <class Decimal>
Decimal from_shortest(binary16 value) noexcept
{
    return from_any<Decimal>(
        value, -DecimalFormat<Decimal>::BIAS, [value](bool negative) {
            return pack<Decimal>(
                negative,
                numconv::exact_digits(numconv::binary_value(value),
                                      numconv::BINARY16_SHAPE, numconv::BINARY16_DIGITS));
        });
}

}  // namespace

#define KIV_BINARY_TO_DECIMAL(WIDTH)                                    \
    decimal##WIDTH binary_to_decimal##WIDTH(float value) noexcept       \
    {                                                                   \
        return from_shortest<decimal##WIDTH>(value);                    \
    }                                                                   \
    decimal##WIDTH binary_to_decimal##WIDTH(double value) noexcept      \
    {                                                                   \
        return from_shortest<decimal##WIDTH>(value);                    \
    }                                                                   \
    decimal##WIDTH binary_to_decimal##WIDTH(long double value) noexcept \
    {                                                                   \
        return binary_to_decimal##WIDTH(static_cast<double>(value));    \
    }                                                                   \
    decimal##WIDTH binary_to_decimal##WIDTH(binary16 value) noexcept    \
    {                                                                   \
        return from_shortest<decimal##WIDTH>(value);                    \
    }

KIV_BINARY_TO_DECIMAL(32)
KIV_BINARY_TO_DECIMAL(64)
KIV_BINARY_TO_DECIMAL(128)
#undef KIV_BINARY_TO_DECIMAL

}  // namespace kiv::decimal
