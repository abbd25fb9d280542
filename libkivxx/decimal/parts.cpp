// Taking apart and classification.

#include <cerrno>
#include <climits>

#include <kiv/decimal.h>

#include "decimal/companion_calls.h"
#include "decimal/parts.h"

namespace kiv::decimal {

namespace {

template <class Decimal>
int exponent_of_last_digit(Decimal x) noexcept
{
    const auto parts = raw_parts(x);
    if (parts.kind == Kind::finite)
        return parts.exponent;
    errno = EDOM;
    return INT_MIN;
}

template <class Decimal>
int classify(Decimal x) noexcept
{
    enum { ZERO, SUBNORMAL, NORMAL, INFINITE, NOT_A_NUMBER };
    switch (Companion<Decimal>::class_of(x.pattern())) {
    case DEC_NEGATIVE_INFINITY:
    case DEC_POSITIVE_INFINITY:
        return INFINITE;
    case DEC_NEGATIVE_NORMAL:
    case DEC_POSITIVE_NORMAL:
        return NORMAL;
    case DEC_NEGATIVE_SUBNORMAL:
    case DEC_POSITIVE_SUBNORMAL:
        return SUBNORMAL;
    case DEC_NEGATIVE_ZERO:
    case DEC_POSITIVE_ZERO:
        return ZERO;
    default:
        return NOT_A_NUMBER;
    }
}

template <class Decimal>
Decimal fraction_and_exponent(Decimal x, int* e) noexcept
{
    using Calls = Companion<Decimal>;
    const int leading = Calls::log_b(x.pattern());
    *e = 0;
    if (leading == INT_MIN || leading == INT_MAX)  // zero, infinity, NaN
        return x;
    *e = leading + 1;
    return Decimal(Calls::scale_b(x.pattern(), -*e));
}

// Of the form with the least coefficient, which equal values share.
template <class Decimal>
std::size_t hash(Decimal x) noexcept
{
    auto parts = parts_of(x);
    if (parts.kind == Kind::nan)
        return 1;
    if (parts.kind == Kind::infinite)
        return parts.negative ? 2 : 3;
    if (parts.coefficient == 0)
        return 0;
    for (const int step : {16, 8, 4, 2, 1}) {
        const auto power = static_cast<decltype(parts.coefficient)>(
            numconv::WIDE_POWERS_OF_TEN[static_cast<std::size_t>(step)]);
        while (parts.coefficient % power == 0) {
            parts.coefficient /= power;
            parts.exponent += step;
        }
    }
    const words::Wide coefficient = words::split(parts.coefficient);
    // Odd factors, that of the golden ratio first; the upper half of a product depends
    // on all bits.
    const words::Wide product = words::multiply_add(
        coefficient.low ^ coefficient.high * 0xD1B54A32D192ED03, 0x9E3779B97F4A7C15,
        static_cast<unsigned>(parts.exponent) << 1 | unsigned{parts.negative});
    return static_cast<std::size_t>(product.high ^ product.low);
}

}  // namespace

std::uint64_t coefficient(const decimal64& x) noexcept
{
    return raw_parts(x).coefficient;
}

big_uint coefficient(const decimal128& x)
{
    const auto parts = raw_parts(x);
    const words::Wide value =
        words::split(combination(x) < LARGE_FORM ? parts.coefficient : 0);
    return {static_cast<unsigned>(value.low), static_cast<unsigned>(value.low >> 32),
            static_cast<unsigned>(value.high), static_cast<unsigned>(value.high >> 32)};
}

int quantexp(const decimal64& x) noexcept
{
    return exponent_of_last_digit(x);
}

int quantexp(const decimal128& x) noexcept
{
    return exponent_of_last_digit(x);
}

int fp_classify(const decimal64& x) noexcept
{
    return classify(x);
}

int fp_classify(const decimal128& x) noexcept
{
    return classify(x);
}

decimal64 frexp(const decimal64& x, int* e) noexcept
{
    return fraction_and_exponent(x, e);
}

decimal128 frexp(const decimal128& x, int* e) noexcept
{
    return fraction_and_exponent(x, e);
}

std::size_t hash_value(decimal32 x) noexcept
{
    return hash(x);
}

std::size_t hash_value(decimal64 x) noexcept
{
    return hash(x);
}

std::size_t hash_value(decimal128 x) noexcept
{
    return hash(x);
}

}  // namespace kiv::decimal
