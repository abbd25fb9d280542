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

const big_uint& pow5(unsigned exponent, big_uint* buf)
{
    constexpr unsigned TABLE_LIMIT = 32768;
    if (exponent < TABLE_LIMIT)
        return big_uint::pow5(exponent, buf);

    big_uint root_buf;
    const big_uint& root = pow5(exponent / 2, &root_buf);
    auto power = big_uint::make_uninitialized(2 * root.size());
    power.multiply(root, root);
    if (exponent % 2 != 0) {
        if (const unsigned carry = power.multiply(5))
            power.prepend(carry);
    }
    power.trim();
    buf->swap(power);
    return *buf;
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
