// Sums: addition, subtraction, and the sum after an exact product.

#include "companion/decimal/entry.h"
#include "companion/decimal/rounding.h"

namespace kiv::companion {
namespace {

template <class F>
[[gnu::noinline]] typename F::Bits add_specials(typename F::Bits x,
                                                typename F::Bits y) noexcept
{
    if (is_nan<F>(x) || is_nan<F>(y))
        return first_nan<F>(x, y);
    if (is_infinite<F>(x) && is_infinite<F>(y) && ((x ^ y) & F::SIGN) != 0)
        return F::NAN_BITS;
    return canonical<F>(is_infinite<F>(x) ? x : y);
}

// The sum of two magnitudes of the same exponent, each with its sign. A difference of 0
// is positive.
template <class F, class Word>
typename F::Bits add_aligned(typename F::Bits sign_x, typename F::Bits sign_y,
                             int exponent, const Word& x, const Word& y) noexcept
{
    if (sign_x == sign_y)
        return finish<F>(sign_x, exponent, x + y);
    if (x > y)
        return finish<F>(sign_x, exponent, x - y);
    return finish<F>(x == y ? 0 : sign_y, exponent, y - x);
}

// x has all its digits, and y lies `distance` digits below: y is cut there, so that one
// word does, unless the sum has a digit more or less than x.
template <class F>
typename F::Bits add_below(const Number<F>& x, const Number<F>& y, int distance) noexcept
{
    using Word = typename F::Word;
    if (distance > F::DIGITS + 1)  // below a tenth of the last digit
        return pack<F>(x.sign, x.exponent, x.coefficient);
    const Word power = pow10<Word>(distance);
    const auto [quotient, rest] = F::RECIPROCAL.divide(y.coefficient, distance);
    const bool borrow = x.sign != y.sign && rest != 0;
    const Word sum = x.sign == y.sign ? x.coefficient + quotient
                                      : x.coefficient - quotient - Word{borrow};
    if (sum < F::LEAST_FULL || sum >= F::LIMIT) [[unlikely]]
        return add_aligned<F, typename F::Wide>(x.sign, y.sign, y.exponent,
                                                wide_product(x.coefficient, power),
                                                y.coefficient);
    const Word below = borrow ? power - rest : rest;
    return pack_rounded<F>(x.sign, x.exponent,
                           sum + Word{below + (sum & 1) > power >> 1});
}

// Exponents come in any order; a branch on it would be mispredicted half of the time.
template <class F>
void swap_if(bool condition, Number<F>* x, Number<F>* y) noexcept
{
    using Bits = typename F::Bits;
    using Word = typename F::Word;
    const auto exchange = [condition](auto all, auto* a, auto* b) {
        const auto mask = (*a ^ *b) & static_cast<decltype(all)>(condition ? all : 0);
        *a ^= mask;
        *b ^= mask;
    };
    exchange(~Bits{0}, &x->sign, &y->sign);
    exchange(-1, &x->exponent, &y->exponent);
    exchange(~Word{0}, &x->coefficient, &y->coefficient);
}

template <class F>
[[gnu::noinline]] typename F::Bits add_any(typename F::Bits bits_x,
                                           typename F::Bits bits_y) noexcept
{
    using Word = typename F::Word;
    if (!is_finite<F>(bits_x) || !is_finite<F>(bits_y)) [[unlikely]]
        return add_specials<F>(bits_x, bits_y);
    Number<F> x = unpack<F>(bits_x);
    Number<F> y = unpack<F>(bits_y);
    swap_if(x.exponent < y.exponent, &x, &y);
    if (x.coefficient == 0)
        return y.coefficient != 0 ? pack<F>(y.sign, y.exponent, y.coefficient)
                                  : pack<F>(x.sign & y.sign, y.exponent, 0);
    const int distance = x.exponent - y.exponent;
    const int room = std::min(F::DIGITS - digits_of(x.coefficient), distance);
    x.coefficient *= pow10<Word>(room);
    x.exponent -= room;
    if (room != distance)
        return add_below<F>(x, y, distance - room);
    return add_aligned<F, Word>(x.sign, y.sign, y.exponent, x.coefficient, y.coefficient);
}

template <class F>
typename F::Bits add(typename F::Bits bits_x, typename F::Bits bits_y) noexcept
{
    const Number<F> x = unpack<F>(bits_x);
    const Number<F> y = unpack<F>(bits_y);
    if (x.exponent == y.exponent && is_finite<F>(bits_x) && is_finite<F>(bits_y)) {
        if (x.sign != y.sign)
            return x.coefficient > y.coefficient
                       ? pack<F>(x.sign, x.exponent, x.coefficient - y.coefficient)
                       : pack<F>(x.coefficient == y.coefficient ? 0 : y.sign, x.exponent,
                                 y.coefficient - x.coefficient);
        const auto sum = x.coefficient + y.coefficient;
        if (sum < F::LIMIT)
            return pack<F>(x.sign, x.exponent, sum);
    }
    return add_any<F>(bits_x, bits_y);
}

template <class F>
typename F::Bits subtract(typename F::Bits x, typename F::Bits y) noexcept
{
    return add<F>(x, is_nan<F>(y) ? y : y ^ F::SIGN);
}

template <class F>
struct Term {
    typename F::Bits sign;
    int exponent;
    uint256 digits;
};

// x + y, where one has at most twice and the other one as many digits as a coefficient.
// The one with the larger exponent is given 76 digits, if it takes so many to align it;
// what the other one still lacks then falls far below the digits of the result.
template <class F>
typename F::Bits add_terms(Term<F> x, Term<F> y) noexcept
{
    constexpr int CAPACITY = PowersOfTen<uint256>::MAX - 1;  // the sum has one digit more
    if (x.exponent < y.exponent)
        return add_terms<F>(y, x);
    const int distance = x.exponent - y.exponent;
    const int count = digits_of(x.digits);
    if (count == 0)
        return finish<F>(y.digits == 0 ? x.sign & y.sign : y.sign, y.exponent, y.digits);
    const bool y_is_zero = y.digits == 0;
    const int limit = y_is_zero ? std::max(F::DIGITS, count) : CAPACITY;
    const int room = std::min(limit - count, distance);
    x.digits = append_zeros(x.digits, room);
    x.exponent -= room;
    const bool sticky = drop_digits(&y.digits, distance - room);

    if (x.sign == y.sign || y_is_zero)
        return round_digits<F>(x.sign, x.exponent, x.digits + y.digits, sticky);
    if (sticky)  // x - y is x - (y + 1), and the rest of that 1
        return round_digits<F>(x.sign, x.exponent, x.digits - y.digits - uint256(1),
                               true);
    return add_aligned<F>(x.sign, y.sign, x.exponent, x.digits, y.digits);
}

template <class F>
typename F::Bits fma(typename F::Bits x, typename F::Bits y, typename F::Bits z) noexcept
{
    if (is_nan<F>(x) || is_nan<F>(y))
        return first_nan<F>(x, y);
    if (is_nan<F>(z))
        return quiet<F>(z);
    const Number<F> a = unpack<F>(x);
    const Number<F> b = unpack<F>(y);
    const auto sign = a.sign ^ b.sign;
    if (is_infinite<F>(x) || is_infinite<F>(y)) {
        if ((is_finite<F>(x) && a.coefficient == 0) ||
            (is_finite<F>(y) && b.coefficient == 0))
            return F::NAN_BITS;
        return add<F>(sign | F::INFINITY_BITS, z);
    }
    if (is_infinite<F>(z))
        return canonical<F>(z);
    const Number<F> c = unpack<F>(z);
    return add_terms<F>({sign, a.exponent + b.exponent - F::BIAS,
                         uint256(wide_product(a.coefficient, b.coefficient))},
                        {c.sign, c.exponent, uint256(c.coefficient)});
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

KIV_DECIMAL_BINARY(Add, add)
KIV_DECIMAL_BINARY(Subtract, subtract)

#define KIV_DECIMAL_FMA(W, Name, function)                                        \
    kiv::KDecimal##W kivDec##W##Name(kiv::KDecimal##W x, kiv::KDecimal##W y,      \
                                     kiv::KDecimal##W z)                          \
    {                                                                             \
        using namespace kiv::companion;                                           \
        return value_of(function<Format##W>(bits_of(x), bits_of(y), bits_of(z))); \
    }
KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_FMA, Fma, kiv::companion::fma)

}  // extern "C"
