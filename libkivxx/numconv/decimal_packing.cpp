#include "numconv/decimal_packing.h"

#include <algorithm>

#include <kiv/numconv.h>

#include "bigint/powers.h"
#include "numconv/scaling.h"

namespace kiv::numconv {
namespace {

__extension__ using uint128 = unsigned __int128;

// A decimal interchange format. `Bits` holds the bit pattern, and twice any
// coefficient with one digit too many.
template <class Decimal>
struct DecimalFormat;

template <>
struct DecimalFormat<decimal::decimal32> {
    using Bits = std::uint64_t;
    static constexpr int WIDTH = 32;
    static constexpr int PRECISION = 7;
    static constexpr int BIAS = 101;
    static constexpr int MAX_EXPONENT = 90;
    static constexpr int COEFFICIENT_BITS = 23;  // of the short form

    static decimal::decimal32 value(Bits bits)
    {
        return decimal::decimal32(KDecimal32{static_cast<std::uint32_t>(bits)});
    }
};

template <>
struct DecimalFormat<decimal::decimal64> {
    using Bits = std::uint64_t;
    static constexpr int WIDTH = 64;
    static constexpr int PRECISION = 16;
    static constexpr int BIAS = 398;
    static constexpr int MAX_EXPONENT = 369;
    static constexpr int COEFFICIENT_BITS = 53;

    static decimal::decimal64 value(Bits bits)
    {
        return decimal::decimal64(KDecimal64{bits});
    }
};

template <>
struct DecimalFormat<decimal::decimal128> {
    using Bits = uint128;
    static constexpr int WIDTH = 128;
    static constexpr int PRECISION = 34;
    static constexpr int BIAS = 6176;
    static constexpr int MAX_EXPONENT = 6111;
    static constexpr int COEFFICIENT_BITS = 113;

    static decimal::decimal128 value(Bits bits)
    {
        return decimal::decimal128(KDecimal128{static_cast<std::uint64_t>(bits),
                                               static_cast<std::uint64_t>(bits >> 64)});
    }
};

// 10^0 to 10^(PRECISION + 1).
template <class Format>
struct PowersOfTen {
    typename Format::Bits values[Format::PRECISION + 2];

    constexpr PowersOfTen() : values()
    {
        typename Format::Bits power = 1;
        for (auto& value : values) {
            value = power;
            power *= 10;
        }
    }
};

template <class Format>
constexpr PowersOfTen<Format> POWERS_OF_TEN;

// A value that was cut below one half: halves / 2, and more if sticky. In this form
// digits can be dropped as often as it takes, and rounding still happens once.
template <class Format>
struct Halves {
    typename Format::Bits halves;
    bool sticky;

    void drop_digits(std::int64_t n)
    {
        constexpr std::int64_t ALL = Format::PRECISION + 1;
        const auto power = POWERS_OF_TEN<Format>.values[std::min(n, ALL)];
        sticky = sticky || halves % power != 0;
        halves /= power;
    }

    typename Format::Bits to_nearest_even() const
    {
        const auto floor = halves >> 1;
        const bool up = (halves & 1) != 0 && (sticky || (floor & 1) != 0);
        return floor + (up ? 1 : 0);
    }
};

template <class Bits>
Bits low_bits(const big_uint& value)
{
    Bits bits = 0;
    for (unsigned i = std::min<unsigned>(value.size(), sizeof(Bits) / 4); i-- > 0;)
        bits = bits << 32 | value[i];
    return bits;
}

// Cuts a coefficient to the precision, except for one digit that may be too many, and
// raises the exponent by the number of digits that are gone.
template <class Format>
Halves<Format> cut(const big_uint& coefficient, unsigned dropped, std::int64_t* exponent)
{
    using Bits = typename Format::Bits;
    const int excess = log10_at_least(coefficient.bit_length()) + 1 - Format::PRECISION;
    if (excess <= 0) {
        const Bits doubled = low_bits<Bits>(coefficient) << 1;
        return {doubled | dropped >> 1, (dropped & 1) != 0};
    }
    // The divisor is 10^excess / 2.
    big_uint buf;
    const Quotient quotient = divide(coefficient, 1 - excess,
                                     bigint::pow5(static_cast<unsigned>(excess), &buf));
    *exponent += excess;
    return {low_bits<Bits>(quotient.value), quotient.inexact || dropped != 0};
}

template <class Format>
typename Format::Bits signed_infinity(bool negative)
{
    using Bits = typename Format::Bits;
    return Bits{negative} << (Format::WIDTH - 1) | Bits{0x78} << (Format::WIDTH - 8);
}

// A coefficient that needs one bit more than the short form has begins with the bits
// 100; the large form leaves them out and marks itself by two ones after the sign.
template <class Format>
typename Format::Bits encode(bool negative, std::int64_t exponent,
                             typename Format::Bits coefficient)
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

template <class Format>
typename Format::Bits pack(bool negative, std::int64_t exponent,
                           const big_uint& coefficient, unsigned dropped)
{
    constexpr int P = Format::PRECISION;
    constexpr std::int64_t MIN = -Format::BIAS;
    constexpr std::int64_t MAX = Format::MAX_EXPONENT;
    const auto& powers = POWERS_OF_TEN<Format>.values;

    const unsigned length = coefficient.bit_length();
    // Decided before the powers of a long coefficient are computed.
    if (length == 0 || log10_at_most(length) + exponent < MIN - 1)
        return encode<Format>(negative, std::clamp(exponent, MIN, MAX), 0);
    if (log10_at_least(length) + exponent >= MAX + P)
        return signed_infinity<Format>(negative);

    Halves<Format> value = cut<Format>(coefficient, dropped, &exponent);
    if (value.halves >> 1 >= powers[P]) {
        value.drop_digits(1);
        ++exponent;
    }
    if (exponent < MIN) {
        value.drop_digits(MIN - exponent);
        exponent = MIN;
    }
    auto digits = value.to_nearest_even();
    if (digits == powers[P]) {
        digits = powers[P - 1];
        ++exponent;
    }
    if (exponent > MAX) {
        // Zeros at the end lower the exponent as long as there is room for them.
        const std::int64_t excess = exponent - MAX;
        if (excess >= P || digits >= powers[P - excess])
            return signed_infinity<Format>(negative);
        digits *= powers[excess];
        exponent = MAX;
    }
    return encode<Format>(negative, exponent, digits);
}

}  // namespace

template <class Decimal>
Decimal pack_decimal(bool negative, std::int64_t exponent, const big_uint& coefficient,
                     unsigned dropped)
{
    using Format = DecimalFormat<Decimal>;
    return Format::value(pack<Format>(negative, exponent, coefficient, dropped));
}

template decimal::decimal32 pack_decimal(bool, std::int64_t, const big_uint&, unsigned);
template decimal::decimal64 pack_decimal(bool, std::int64_t, const big_uint&, unsigned);
template decimal::decimal128 pack_decimal(bool, std::int64_t, const big_uint&, unsigned);

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
