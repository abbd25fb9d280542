// decimal/parts.h - sign, exponent and coefficient of a decimal value, from its bits.

#ifndef KIV_DECIMAL_PARTS_H
#define KIV_DECIMAL_PARTS_H

#include "numconv/decimal_format.h"

namespace kiv::decimal {

using numconv::DecimalFormat;
using numconv::Uint128;

enum class Kind { finite, infinite, nan };

template <class Decimal>
struct Parts {
    using Bits = typename DecimalFormat<Decimal>::Bits;

    bool negative;
    Kind kind;
    // Of finite values: (-1)^negative * coefficient * 10^exponent.
    int exponent;
    Bits coefficient;
};

template <class Decimal>
bool is_negative(Decimal value) noexcept
{
    using Format = DecimalFormat<Decimal>;
    return Format::bits(value) >> (Format::WIDTH - 1) != 0;
}

// The five bits below the sign; the upper two are ones in the large form.
template <class Decimal>
unsigned combination(Decimal value) noexcept
{
    using Format = DecimalFormat<Decimal>;
    return static_cast<unsigned>(Format::bits(value) >> (Format::WIDTH - 6)) & 31;
}

constexpr unsigned LARGE_FORM = 24;
constexpr unsigned INFINITE_FORM = 30;
constexpr unsigned NAN_FORM = 31;

template <class Decimal>
bool is_nan(Decimal value) noexcept
{
    return combination(value) == NAN_FORM;
}

// With the coefficient as it stands in the bits, canonical or not.
template <class Decimal>
Parts<Decimal> raw_parts(Decimal value) noexcept
{
    using Format = DecimalFormat<Decimal>;
    using Bits = typename Format::Bits;
    constexpr int N = Format::COEFFICIENT_BITS;
    constexpr Bits BIASED = (Bits{1} << (Format::WIDTH - 1 - N)) - 1;

    const Bits bits = Format::bits(value);
    const unsigned form = combination(value);
    Parts<Decimal> parts{is_negative(value), Kind::finite, 0, 0};
    if (form < LARGE_FORM) {
        parts.exponent = static_cast<int>(bits >> N & BIASED) - Format::BIAS;
        parts.coefficient = bits & ((Bits{1} << N) - 1);
    } else if (form < INFINITE_FORM) {
        parts.exponent = static_cast<int>(bits >> (N - 2) & BIASED) - Format::BIAS;
        parts.coefficient = (bits & ((Bits{1} << (N - 2)) - 1)) | Bits{1} << N;
    } else {
        parts.kind = form == INFINITE_FORM ? Kind::infinite : Kind::nan;
    }
    return parts;
}

// With 0 for a coefficient that is not canonical: every large one of decimal128 is.
template <class Decimal>
Parts<Decimal> parts_of(Decimal value) noexcept
{
    Parts<Decimal> parts = raw_parts(value);
    if (parts.coefficient >= numconv::COEFFICIENT_END<DecimalFormat<Decimal>>)
        parts.coefficient = 0;
    return parts;
}

}  // namespace kiv::decimal

#endif
