// Products, quotients, remainders and roots.

#include "companion/decimal/entry.h"
#include "companion/decimal/rounding.h"

namespace kiv::companion {
namespace {

// One operand at least is infinite or a NaN.
template <class F>
typename F::Bits multiply_specials(typename F::Bits x, typename F::Bits y) noexcept
{
    if (is_nan<F>(x) || is_nan<F>(y))
        return first_nan<F>(x, y);
    const auto finite = is_infinite<F>(x) ? y : x;
    if (is_finite<F>(finite) && unpack<F>(finite).coefficient == 0)
        return F::NAN_BITS;
    return ((x ^ y) & F::SIGN) | F::INFINITY_BITS;
}

template <class F>
[[gnu::noinline]] typename F::Bits multiply_any(typename F::Bits bits_x,
                                                typename F::Bits bits_y) noexcept
{
    if (!is_finite<F>(bits_x) || !is_finite<F>(bits_y)) [[unlikely]]
        return multiply_specials<F>(bits_x, bits_y);
    const Number<F> x = unpack<F>(bits_x);
    const Number<F> y = unpack<F>(bits_y);
    return finish<F>(x.sign ^ y.sign, x.exponent + y.exponent - F::BIAS,
                     wide_product(x.coefficient, y.coefficient));
}

// Short coefficients first; what they do not need would cost them more than itself.
template <class F>
typename F::Bits multiply(typename F::Bits bits_x, typename F::Bits bits_y) noexcept
{
    const Number<F> x = unpack<F>(bits_x);
    const Number<F> y = unpack<F>(bits_y);
    constexpr int HALF_WORD = sizeof(x.coefficient) * 4;
    if ((x.coefficient | y.coefficient) >> HALF_WORD == 0 && is_finite<F>(bits_x) &&
        is_finite<F>(bits_y)) {
        const auto digits = wide_product(static_cast<std::uint64_t>(x.coefficient),
                                         static_cast<std::uint64_t>(y.coefficient));
        const int exponent = x.exponent + y.exponent - F::BIAS;
        if (digits < F::LIMIT && is_in_range<F>(exponent)) [[likely]]
            return pack<F>(x.sign ^ y.sign, exponent,
                           static_cast<typename F::Word>(digits));
    }
    return multiply_any<F>(bits_x, bits_y);
}

// An operand is infinite, a NaN or a zero divisor.
template <class F>
typename F::Bits divide_specials(typename F::Bits x, typename F::Bits y) noexcept
{
    if (is_nan<F>(x) || is_nan<F>(y))
        return first_nan<F>(x, y);
    const auto sign = (x ^ y) & F::SIGN;
    if (is_infinite<F>(y))
        return is_infinite<F>(x) ? F::NAN_BITS : pack<F>(sign, 0, 0);
    if (is_finite<F>(x) && unpack<F>(x).coefficient == 0)
        return F::NAN_BITS;
    return sign | F::INFINITY_BITS;
}

// The dividend gets so many zeros that the quotient has exactly the digits of the format;
// an exact quotient gives back those that it does not need.
template <class F>
typename F::Bits divide(typename F::Bits bits_x, typename F::Bits bits_y) noexcept
{
    using Word = typename F::Word;
    const Number<F> x = unpack<F>(bits_x);
    const Number<F> y = unpack<F>(bits_y);
    if (!is_finite<F>(bits_x) || !is_finite<F>(bits_y) || y.coefficient == 0) [[unlikely]]
        return divide_specials<F>(bits_x, bits_y);
    const auto sign = x.sign ^ y.sign;
    const int exponent = x.exponent - y.exponent + F::BIAS;
    if (x.coefficient == 0)
        return pack_zero<F>(sign, exponent);

    // Both coefficients as long as the longer one, then the zeros that are still missing.
    const int longer = digits_of(y.coefficient) - digits_of(x.coefficient);
    const Word dividend = x.coefficient * pow10<Word>(std::max(longer, 0));
    const Word divisor = y.coefficient * pow10<Word>(std::max(-longer, 0));
    const int zeros = F::DIGITS - 1 + longer + (dividend < divisor ? 1 : 0);
    const Word power = pow10<Word>(zeros - std::max(longer, 0));
    auto [quotient, remainder] =
        divide_wide(wide_product(dividend, power), y.coefficient);
    int last = exponent - zeros;
    if (remainder == 0)
        last += strip_zeros(&quotient, zeros);
    else if (last >= 0)
        quotient += 2 * remainder + (quotient & 1) > y.coefficient ? 1 : 0;
    else
        return round_digits<F>(sign, last, quotient, true);
    return last < 0 ? round_digits<F>(sign, last, quotient, false)
                    : pack_rounded<F>(sign, last, quotient);
}

// 10^n * factor mod modulus, by repeated squaring.
template <class Word>
Word scale_modulo(Word factor, int n, Word modulus) noexcept
{
    Word power = Word{10} % modulus;
    for (factor %= modulus; n != 0; n >>= 1) {
        if (n & 1)
            factor = divide_wide(wide_product(factor, power), modulus).remainder;
        power = divide_wide(wide_product(power, power), modulus).remainder;
    }
    return factor;
}

// x modulo twice y tells both the remainder and whether the quotient is odd.
template <class F>
typename F::Bits remainder(typename F::Bits bits_x, typename F::Bits bits_y) noexcept
{
    using Word = typename F::Word;
    if (is_nan<F>(bits_x) || is_nan<F>(bits_y))
        return first_nan<F>(bits_x, bits_y);
    const Number<F> x = unpack<F>(bits_x);
    const Number<F> y = unpack<F>(bits_y);
    if (is_infinite<F>(bits_x) || (is_finite<F>(bits_y) && y.coefficient == 0))
        return F::NAN_BITS;
    if (is_infinite<F>(bits_y))
        return canonical<F>(bits_x);

    const int distance = x.exponent - y.exponent;
    Word divisor = y.coefficient;
    if (distance < 0) {
        if (digits_of(divisor) - distance > F::DIGITS + 1)  // above 2 * x
            return canonical<F>(bits_x);
        divisor *= pow10<Word>(-distance);
    }
    Word rest = scale_modulo<Word>(x.coefficient, std::max(distance, 0), 2 * divisor);
    const bool odd = rest >= divisor;
    if (odd)
        rest -= divisor;
    auto sign = x.sign;
    if (rest + Word{odd} > divisor - rest) {
        rest = divisor - rest;
        sign ^= F::SIGN;
    }
    return pack<F>(sign, std::min(x.exponent, y.exponent), rest);
}

// floor(sqrt(x)), by Newton's iteration from above, for x < 2^254.
uint128 floor_sqrt(const uint256& x) noexcept
{
    uint128 root = uint128{1} << ((bit_length(x) + 1) / 2);
    for (;;) {
        const uint128 next = (root + divide_wide(x, root).value) >> 1;
        if (next >= root)
            return root;
        root = next;
    }
}

template <class F>
typename F::Bits sqrt(typename F::Bits bits) noexcept
{
    if (is_nan<F>(bits))
        return quiet<F>(bits);
    const Number<F> x = unpack<F>(bits);
    const int exponent = x.exponent - F::BIAS;
    const int preferred = exponent >> 1;
    if (is_finite<F>(bits) && x.coefficient == 0)
        return pack<F>(x.sign, preferred + F::BIAS, 0);
    if (x.sign != 0)
        return F::NAN_BITS;
    if (is_infinite<F>(bits))
        return F::INFINITY_BITS;

    // As many zeros as make a root of full length and leave an even exponent.
    int zeros = 2 * F::DIGITS - digits_of(x.coefficient);
    zeros -= (exponent - zeros) & 1;
    const uint256 square = append_zeros(x.coefficient, zeros);
    const uint128 floor = floor_sqrt(square);
    const uint256 rest = square - wide_product(floor, floor);
    auto root = static_cast<typename F::Word>(floor);
    int last = (exponent - zeros) / 2;
    if (rest == 0)
        last += strip_zeros(&root, preferred - last);
    else if (rest > floor)  // above (floor + 1/2)^2; no integer is equal to that
        ++root;
    return pack_rounded<F>(0, last + F::BIAS, root);
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

KIV_DECIMAL_BINARY(Multiply, multiply)
KIV_DECIMAL_BINARY(Divide, divide)
KIV_DECIMAL_BINARY(Remainder, kiv::companion::remainder)
KIV_DECIMAL_UNARY(Sqrt, kiv::companion::sqrt)

}  // extern "C"
