// companion/decimal/rounding.h - the one rounding of every operation: an exact result of
// any length becomes a value of the format.

#ifndef KIV_COMPANION_DECIMAL_ROUNDING_H
#define KIV_COMPANION_DECIMAL_ROUNDING_H

#include "companion/decimal/format.h"

namespace kiv::companion {

// A coefficient that was rounded to at most F::LIMIT, with an exponent that is not below
// the range. Zeros at the end lower an exponent above it as far as there is room.
template <class F>
typename F::Bits pack_rounded(typename F::Bits sign, int exponent,
                              typename F::Word coefficient) noexcept
{
    if (coefficient == F::LIMIT) {
        coefficient = F::LEAST_FULL;
        ++exponent;
    }
    if (exponent > F::MAX_EXPONENT) [[unlikely]] {
        const int excess = exponent - F::MAX_EXPONENT;
        if (coefficient == 0)
            return pack_zero<F>(sign, exponent);
        if (excess >= F::DIGITS ||
            coefficient >= pow10<typename F::Word>(F::DIGITS - excess))
            return sign | F::INFINITY_BITS;
        coefficient *= pow10<typename F::Word>(excess);
        exponent = F::MAX_EXPONENT;
    }
    return pack<F>(sign, exponent, coefficient);
}

template <class F, class Wide>
typename F::Bits round_digits(typename F::Bits sign, int exponent, const Wide& digits,
                              bool sticky) noexcept;

// Any number of digits goes: all but one in plain divisions.
template <class F>
typename F::Bits round_many_digits(typename F::Bits sign, int exponent, uint256 digits,
                                   int excess, bool sticky) noexcept
{
    sticky |= drop_digits(&digits, excess - 1);
    return round_digits<F>(sign, exponent + excess - 1,
                           static_cast<typename F::Word>(digits), sticky);
}

// (digits + something below 1, if sticky) * 10^exponent to nearest, ties to even. Sticky
// digits must be so many that one at least is dropped.
template <class F, class Wide>
typename F::Bits round_digits(typename F::Bits sign, int exponent, const Wide& digits,
                              bool sticky) noexcept
{
    using Word = typename F::Word;
    const int count = digits_of(digits);
    const int excess = std::max(count - F::DIGITS, -exponent);
    if (excess <= 0)
        return pack_rounded<F>(sign, exponent, static_cast<Word>(digits));
    if (excess > count)  // less than a tenth of the last digit
        return pack_zero<F>(sign, exponent + excess);
    if (excess > F::RECIPROCAL.MAX)
        return round_many_digits<F>(sign, exponent, uint256(digits), excess, sticky);

    auto [quotient, remainder] = F::RECIPROCAL.divide(digits, excess);
    const Word half = pow10<Word>(excess) >> 1;
    quotient += Word{remainder + ((quotient & 1) | Word{sticky}) > half};
    return pack_rounded<F>(sign, exponent + excess, quotient);
}

template <class F>
bool is_in_range(int exponent) noexcept
{
    return static_cast<unsigned>(exponent) <= static_cast<unsigned>(F::MAX_EXPONENT);
}

// digits * 10^exponent; most results need no rounding.
template <class F, class Wide>
typename F::Bits finish(typename F::Bits sign, int exponent, const Wide& digits) noexcept
{
    if (digits < Wide{F::LIMIT} && is_in_range<F>(exponent)) [[likely]]
        return pack<F>(sign, exponent, static_cast<typename F::Word>(digits));
    return round_digits<F>(sign, exponent, digits, false);
}

}  // namespace kiv::companion

#endif
