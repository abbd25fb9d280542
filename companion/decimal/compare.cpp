// Order, classes and signs.

#include <utility>

#include "companion/decimal/entry.h"

namespace kiv::companion {
namespace {

// The order of two magnitudes.
template <class F>
int compare_magnitudes(Number<F> x, Number<F> y) noexcept
{
    using Word = typename F::Word;
    if (x.exponent == y.exponent)
        return (x.coefficient > y.coefficient) - (x.coefficient < y.coefficient);
    const int flip = x.exponent < y.exponent ? -1 : 1;
    if (flip < 0)
        std::swap(x, y);
    if (x.coefficient == 0)
        return y.coefficient == 0 ? 0 : -flip;
    const int distance = x.exponent - y.exponent;
    if (distance >= F::DIGITS)
        return flip;
    const typename F::Wide scaled = wide_product(x.coefficient, pow10<Word>(distance));
    return scaled > y.coefficient ? flip : scaled == y.coefficient ? 0 : -flip;
}

template <class F>
int compare(typename F::Bits bits_x, typename F::Bits bits_y) noexcept
{
    if (is_nan<F>(bits_x) || is_nan<F>(bits_y)) [[unlikely]]
        return DEC_UNORDERED;
    const bool negative = (bits_x & F::SIGN) != 0;
    const int greater = negative ? -1 : 1;
    Number<F> x = unpack<F>(bits_x);
    Number<F> y = unpack<F>(bits_y);
    if (!is_finite<F>(bits_x) || !is_finite<F>(bits_y)) [[unlikely]] {
        // An infinity is a number above all others.
        const auto comparable = [](typename F::Bits bits, Number<F>* number) {
            if (!is_finite<F>(bits))
                *number = {number->sign, F::MAX_EXPONENT + F::DIGITS, 1};
        };
        comparable(bits_x, &x);
        comparable(bits_y, &y);
    }
    if (x.sign != y.sign)
        return x.coefficient == 0 && y.coefficient == 0 ? 0 : greater;
    return greater * compare_magnitudes<F>(x, y);
}

template <class F>
int not_equal(typename F::Bits x, typename F::Bits y) noexcept
{
    return compare<F>(x, y) != DEC_EQUAL;
}

// Whether x comes before y; neither is a NaN. Of equal values the one with the sign
// comes first, then the one with the smaller exponent, or if negative the larger one.
template <class F>
bool precedes(typename F::Bits x, typename F::Bits y) noexcept
{
    const int order = compare<F>(x, y);
    if (order != DEC_EQUAL)
        return order == DEC_LESS;
    const bool negative = (x & F::SIGN) != 0;
    if (((x ^ y) & F::SIGN) != 0)
        return negative;
    if (!is_finite<F>(x))
        return true;
    const int difference = unpack<F>(x).exponent - unpack<F>(y).exponent;
    return negative ? difference > 0 : difference < 0;
}

// A quiet NaN gives way to a number, a signalling one does not.
template <class F, bool LESSER>
typename F::Bits choose(typename F::Bits x, typename F::Bits y) noexcept
{
    if (is_signalling<F>(x) || (is_signalling<F>(y) && !is_nan<F>(x)))
        return quiet<F>(is_nan<F>(x) ? x : y);
    if (is_signalling<F>(y))
        return quiet<F>(x);
    if (is_nan<F>(x))
        return canonical<F>(is_nan<F>(y) ? x : y);
    return canonical<F>(is_nan<F>(y) || precedes<F>(x, y) == LESSER ? x : y);
}

template <class F>
typename F::Bits min_num(typename F::Bits x, typename F::Bits y) noexcept
{
    return choose<F, true>(x, y);
}

template <class F>
typename F::Bits max_num(typename F::Bits x, typename F::Bits y) noexcept
{
    return choose<F, false>(x, y);
}

template <class F>
int class_of(typename F::Bits x) noexcept
{
    if (is_nan<F>(x))
        return is_signalling<F>(x) ? DEC_SIGNALLING_NAN : DEC_QUIET_NAN;
    const bool negative = (x & F::SIGN) != 0;
    if (!is_finite<F>(x))
        return negative ? DEC_NEGATIVE_INFINITY : DEC_POSITIVE_INFINITY;
    const Number<F> number = unpack<F>(x);
    if (number.coefficient == 0)
        return negative ? DEC_NEGATIVE_ZERO : DEC_POSITIVE_ZERO;
    // Normal: the leading digit is not below that of 10^(DIGITS - 1) with exponent 0.
    if (digits_of(number.coefficient) + number.exponent < F::DIGITS)
        return negative ? DEC_NEGATIVE_SUBNORMAL : DEC_POSITIVE_SUBNORMAL;
    return negative ? DEC_NEGATIVE_NORMAL : DEC_POSITIVE_NORMAL;
}

template <class F>
int same_quantum(typename F::Bits x, typename F::Bits y) noexcept
{
    if (is_finite<F>(x) && is_finite<F>(y))
        return unpack<F>(x).exponent == unpack<F>(y).exponent;
    return (is_nan<F>(x) && is_nan<F>(y)) || (is_infinite<F>(x) && is_infinite<F>(y));
}

template <class F>
typename F::Bits abs(typename F::Bits x) noexcept
{
    return x & ~F::SIGN;
}

template <class F>
typename F::Bits negate(typename F::Bits x) noexcept
{
    return x ^ F::SIGN;
}

template <class F>
typename F::Bits copy_sign(typename F::Bits x, typename F::Bits y) noexcept
{
    return (x & ~F::SIGN) | (y & F::SIGN);
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

KIV_DECIMAL_RELATION(Compare, compare)
KIV_DECIMAL_RELATION(QuietNotEqual, not_equal)
KIV_DECIMAL_RELATION(SameQuantum, same_quantum)
KIV_DECIMAL_BINARY(MinNum, min_num)
KIV_DECIMAL_BINARY(MaxNum, max_num)
KIV_DECIMAL_QUERY(Class, class_of)
KIV_DECIMAL_QUERY(IsInfinite, is_infinite)
KIV_DECIMAL_QUERY(IsNaN, is_nan)
KIV_DECIMAL_UNARY(Abs, kiv::companion::abs)
KIV_DECIMAL_UNARY(Negate, negate)
KIV_DECIMAL_BINARY(CopySign, copy_sign)

}  // extern "C"
