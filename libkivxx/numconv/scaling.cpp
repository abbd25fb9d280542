#include "numconv/scaling.h"

#include <algorithm>
#include <utility>

namespace kiv::numconv {

big_uint shifted(const big_uint& value, int shift)
{
    const int bits = std::max(value.highest_set_bit() + 1 + shift, 1);
    auto result = big_uint::make_uninitialized((static_cast<unsigned>(bits) + 31) / 32);
    if (shift < 0)
        result.shift_right(value, static_cast<unsigned>(-shift));
    else
        result.shift_left(value, static_cast<unsigned>(shift));
    return result;
}

Quotient divide(const big_uint& coefficient, int shift, const big_uint& divisor)
{
    const big_uint dividend = shifted(coefficient, shift);
    const unsigned words =
        dividend.size() < divisor.size() ? 1 : dividend.size() - divisor.size() + 1;
    auto quotient = big_uint::make_uninitialized(words);
    auto remainder = big_uint::make_uninitialized(divisor.size());
    quotient.divide(dividend, divisor, remainder);
    const bool inexact = coefficient.lowest_set_bit() < -shift || !remainder.is_zero();
    return {std::move(quotient), inexact};
}

}  // namespace kiv::numconv
