#include "numconv/decimal_packing.h"

#include <algorithm>
#include <bit>

#include <kiv/numconv.h>

#include "bigint/powers.h"
#include "numconv/decimal_format.h"
#include "numconv/scaling.h"

namespace kiv::numconv {
namespace {

// A value that was cut below one half: halves / 2, and more if sticky. In this form
// digits can be dropped as often as it takes, and rounding still happens once.
template <class Format>
struct Halves {
    typename Format::Bits halves;
    bool sticky;

    void drop_digits(std::int64_t n) noexcept
    {
        constexpr std::int64_t ALL = Format::PRECISION + 1;
        const auto power = power_of_ten<Format>(std::min(n, ALL));
        sticky = sticky || halves % power != 0;
        halves /= power;
    }

    typename Format::Bits to_nearest_even() const noexcept
    {
        const auto floor = halves >> 1;
        const bool up = (halves & 1) != 0 && (sticky || (floor & 1) != 0);
        return floor + (up ? 1 : 0);
    }
};

template <class Bits>
Bits low_bits(const big_uint& value) noexcept
{
    Bits bits = 0;
    for (unsigned i = std::min<unsigned>(value.size(), sizeof(Bits) / 4); i-- > 0;)
        bits = bits << 32 | value[i];
    return bits;
}

// Of a coefficient below the precision or one digit above.
template <class Format>
Halves<Format> with_dropped(typename Format::Bits coefficient, unsigned dropped) noexcept
{
    return {coefficient << 1 | dropped >> 1, (dropped & 1) != 0};
}

// Cuts a coefficient to the precision, except for one digit that may be too many, and
// raises the exponent by the number of digits that are gone.
template <class Format>
Halves<Format> cut(const big_uint& coefficient, unsigned dropped, std::int64_t* exponent)
{
    using Bits = typename Format::Bits;
    const int excess = log10_at_least(coefficient.bit_length()) + 1 - Format::PRECISION;
    if (excess <= 0)
        return with_dropped<Format>(low_bits<Bits>(coefficient), dropped);
    // The divisor is 10^excess / 2.
    big_uint buf;
    const Quotient quotient = divide(coefficient, 1 - excess,
                                     bigint::pow5(static_cast<unsigned>(excess), &buf));
    *exponent += excess;
    return {low_bits<Bits>(quotient.value), quotient.inexact || dropped != 0};
}

unsigned bit_length(Uint128 value) noexcept
{
    const words::Wide wide = words::split(value);
    return static_cast<unsigned>(wide.high != 0 ? 64 + std::bit_width(wide.high)
                                                : std::bit_width(wide.low));
}

template <class Format>
Halves<Format> cut(Uint128 coefficient, unsigned dropped, std::int64_t* exponent) noexcept
{
    using Bits = typename Format::Bits;
    const int excess = log10_at_least(bit_length(coefficient)) + 1 - Format::PRECISION;
    if (excess <= 0)
        return with_dropped<Format>(static_cast<Bits>(coefficient), dropped);
    const Uint128 half = WIDE_POWERS_OF_TEN[static_cast<std::size_t>(excess)] >> 1;
    const Uint128 halves = coefficient / half;
    *exponent += excess;
    return {static_cast<Bits>(halves), coefficient != halves * half || dropped != 0};
}

unsigned bit_length(const big_uint& value) noexcept
{
    return value.bit_length();
}

template <class Format, class Coefficient>
typename Format::Bits pack(bool negative, std::int64_t exponent,
                           const Coefficient& coefficient, unsigned dropped)
{
    constexpr int P = Format::PRECISION;
    constexpr std::int64_t MIN = -Format::BIAS;
    constexpr std::int64_t MAX = Format::MAX_EXPONENT;

    const unsigned length = bit_length(coefficient);
    // Decided before the powers of a long coefficient are computed.
    if (length == 0 || log10_at_most(length) + exponent < MIN - 1)
        return encode<Format>(negative, std::clamp(exponent, MIN, MAX), 0);
    if (log10_at_least(length) + exponent >= MAX + P)
        return signed_infinity<Format>(negative);

    Halves<Format> value = cut<Format>(coefficient, dropped, &exponent);
    if (value.halves >> 1 >= COEFFICIENT_END<Format>) {
        value.drop_digits(1);
        ++exponent;
    }
    if (exponent < MIN) {
        value.drop_digits(MIN - exponent);
        exponent = MIN;
    }
    auto digits = value.to_nearest_even();
    if (digits == COEFFICIENT_END<Format>) {
        digits = power_of_ten<Format>(P - 1);
        ++exponent;
    }
    if (exponent > MAX) {
        // Zeros at the end lower the exponent as long as there is room for them.
        const std::int64_t excess = exponent - MAX;
        if (excess >= P || digits >= power_of_ten<Format>(P - excess))
            return signed_infinity<Format>(negative);
        digits *= power_of_ten<Format>(excess);
        exponent = MAX;
    }
    return encode<Format>(negative, exponent, digits);
}

}  // namespace

template <class Decimal>
Decimal pack_decimal(bool negative, std::int64_t exponent, words::Wide coefficient,
                     unsigned dropped) noexcept
{
    using Format = DecimalFormat<Decimal>;
    return Format::value(
        pack<Format>(negative, exponent, words::join(coefficient), dropped));
}

template <class Decimal>
Decimal pack_decimal(bool negative, std::int64_t exponent, const big_uint& coefficient,
                     unsigned dropped)
{
    using Format = DecimalFormat<Decimal>;
    if (coefficient.bit_length() <= 128)
        return pack_decimal<Decimal>(
            negative, exponent, words::split(low_bits<Uint128>(coefficient)), dropped);
    return Format::value(pack<Format>(negative, exponent, coefficient, dropped));
}

template decimal::decimal32 pack_decimal(bool, std::int64_t, const big_uint&, unsigned);
template decimal::decimal64 pack_decimal(bool, std::int64_t, const big_uint&, unsigned);
template decimal::decimal128 pack_decimal(bool, std::int64_t, const big_uint&, unsigned);
template decimal::decimal32 pack_decimal(bool, std::int64_t, words::Wide,
                                         unsigned) noexcept;
template decimal::decimal64 pack_decimal(bool, std::int64_t, words::Wide,
                                         unsigned) noexcept;
template decimal::decimal128 pack_decimal(bool, std::int64_t, words::Wide,
                                          unsigned) noexcept;

}  // namespace kiv::numconv

namespace kiv {

decimal::decimal32 pack_decimal32(bool negative, int exponent,
                                  const big_uint& coefficient)
{
    return numconv::pack_decimal<decimal::decimal32>(negative, exponent, coefficient, 0);
}

decimal::decimal64 pack_decimal64(bool negative, int exponent,
                                  const big_uint& coefficient)
{
    return numconv::pack_decimal<decimal::decimal64>(negative, exponent, coefficient, 0);
}

decimal::decimal128 pack_decimal128(bool negative, int exponent,
                                    const big_uint& coefficient)
{
    return numconv::pack_decimal<decimal::decimal128>(negative, exponent, coefficient, 0);
}

}  // namespace kiv
