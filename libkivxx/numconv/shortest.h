// numconv/shortest.h - the shortest decimal of a binary value by one multiplication.
//
// After R. Giulietti, "The Schubfach way to render doubles" (2021): with the power of
// ten scaled so that one ulp is 1/10 to below 1, the rounding interval is too narrow for
// two integers and too wide for no multiple of 1/10. So its integer, if there is one, is
// the shortest decimal but for trailing zeros, and the nearest multiple of 1/10 is
// otherwise. The scaled value is known to a few units of its last bit; what that does
// not decide goes to exact_digits().

#ifndef KIV_NUMCONV_SHORTEST_H
#define KIV_NUMCONV_SHORTEST_H

#include <cstddef>
#include <cstdint>

#include "bigint/words.h"
#include "numconv/exact_digits.h"
#include "numconv/float_scales.h"
#include "numconv/tables/powers_of_five.h"

namespace kiv::numconv {

// (tens * 10 + ones) * 10^exponent.
struct SplitDecimal {
    std::uint64_t tens;
    unsigned ones;
    std::int64_t exponent;
};

inline SplitDecimal split(ShortDecimal decimal) noexcept
{
    return {decimal.coefficient / 10, static_cast<unsigned>(decimal.coefficient % 10),
            decimal.exponent};
}

// A value over a power of ten that makes one ulp 1/10 to below 1, with fractions in units
// of 2^-64. `Float` tells how precise it is.
template <class Float>
class ScaledValue {
public:
    // The margin is half an ulp >> narrower.
    explicit ScaledValue(BinaryValue value, unsigned narrower = 0) noexcept;

    // For certain: if neither holds, it is too close to call.
    bool has_integer() const noexcept
    {
        return m_fraction + m_margin - ERROR < 2 * (m_margin - ERROR);
    }
    bool has_no_integer() const noexcept
    {
        return m_fraction + m_margin + ERROR >= 2 * (m_margin + ERROR);
    }

    SplitDecimal integer() const noexcept
    {
        return {m_integer + (m_fraction >> 63), 0, m_exponent - 1};
    }
    // The nearest multiple of 1/10, unless two are too close to call.
    bool tenths(SplitDecimal& result) const noexcept
    {
        constexpr std::uint64_t HALF = std::uint64_t{1} << 63;
        const words::Wide tenths = words::multiply(m_fraction, 10);
        result = {m_integer, static_cast<unsigned>(tenths.high + (tenths.low >> 63)),
                  m_exponent - 1};
        return tenths.low - HALF + ERROR > 2 * ERROR;
    }

private:
    // More than ten times what the fractions may be off. The powers are rounded down by
    // less than one unit of 2^-128, or 2^-64 for float, which is multiplied by less than
    // 2^57 or 2^24; all else is truncations.
    static constexpr std::uint64_t ERROR = sizeof(Float) == 8 ? 32 : 1 << 28;

    std::uint64_t m_integer;
    std::uint64_t m_fraction;
    std::uint64_t m_margin;
    std::int64_t m_exponent;  // of the power of ten
};

template <>
inline ScaledValue<double>::ScaledValue(BinaryValue value, unsigned narrower) noexcept
{
    constexpr int SPARE_BITS = 4;

    // One ulp is power * 2^(up - SPARE_BITS - 128), and up is from 1 to 4.
    const std::int64_t n = ~floor_log10_of_power_of_two(value.exponent);
    const words::Wide& power = tables::powers_of_five[n - tables::LEAST_POWER_OF_FIVE];
    const int log2 = tables::floor_log2_of_power_of_five(static_cast<int>(n));
    const std::int64_t up = value.exponent + n + log2 + 1 + SPARE_BITS;
    const std::uint64_t significand = value.significand << up;
    const words::Wide product = words::multiply_add(
        significand, power.high, words::multiply(significand, power.low).high);
    m_integer = product.high >> SPARE_BITS;
    m_fraction = product.high << (64 - SPARE_BITS) | product.low >> SPARE_BITS;
    m_margin = power.high >> (SPARE_BITS + 1 - up) >> narrower;
    m_exponent = -n;
}

template <>
inline ScaledValue<float>::ScaledValue(BinaryValue value, unsigned narrower) noexcept
{
    const FloatScale& scale =
        float_scales[static_cast<std::size_t>(value.exponent - LEAST_FLOAT_SCALE)];
    const words::Wide product = words::multiply(value.significand, scale.ulp);
    m_integer = product.high;
    m_fraction = product.low;
    m_margin = scale.ulp >> 1 >> narrower;
    m_exponent = scale.exponent;
}

}  // namespace kiv::numconv

#endif
