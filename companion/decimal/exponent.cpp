// What works on the exponent: scaling, quantizing, neighbours and the other widths.

#include <limits>

#include "companion/decimal/entry.h"
#include "companion/decimal/rounding.h"

namespace kiv::companion {
namespace {

template <class F>
typename F::Bits scale_b(typename F::Bits bits, int n) noexcept
{
    if (!is_finite<F>(bits))
        return canonical<F>(bits);
    const Number<F> x = unpack<F>(bits);
    constexpr int FAR = 2 * (F::MAX_EXPONENT + F::DIGITS);  // from any value to any end
    return finish<F>(x.sign, x.exponent + std::clamp(n, -FAR, FAR), x.coefficient);
}

template <class F>
int log_b(typename F::Bits bits) noexcept
{
    if (is_infinite<F>(bits))
        return std::numeric_limits<int>::max();
    const Number<F> x = unpack<F>(bits);
    if (is_nan<F>(bits) || x.coefficient == 0)
        return std::numeric_limits<int>::min();
    return x.exponent - F::BIAS + digits_of(x.coefficient) - 1;
}

template <class F>
typename F::Bits quantize(typename F::Bits bits_x, typename F::Bits bits_y) noexcept
{
    using Word = typename F::Word;
    if (is_nan<F>(bits_x) || is_nan<F>(bits_y))
        return first_nan<F>(bits_x, bits_y);
    if (is_infinite<F>(bits_x) || is_infinite<F>(bits_y))
        return is_infinite<F>(bits_x) && is_infinite<F>(bits_y) ? canonical<F>(bits_x)
                                                                : F::NAN_BITS;
    const Number<F> x = unpack<F>(bits_x);
    const int exponent = unpack<F>(bits_y).exponent;
    const int zeros = x.exponent - exponent;
    if (x.coefficient == 0)
        return pack<F>(x.sign, exponent, 0);
    if (zeros > F::DIGITS - digits_of(x.coefficient))
        return F::NAN_BITS;
    if (zeros >= 0)
        return pack<F>(x.sign, exponent, x.coefficient * pow10<Word>(zeros));
    // As if the exponent of y were the least one: rounding then ends there.
    const auto rounded = round_digits<F>(x.sign, zeros, x.coefficient, false);
    return pack<F>(x.sign, exponent, unpack<F>(rounded).coefficient);
}

template <class F>
typename F::Bits next_up(typename F::Bits bits) noexcept
{
    using Word = typename F::Word;
    if (is_nan<F>(bits))
        return quiet<F>(bits);
    if (is_infinite<F>(bits))
        return (bits & F::SIGN) != 0 ? pack<F>(F::SIGN, F::MAX_EXPONENT, F::LIMIT - 1)
                                     : F::INFINITY_BITS;
    Number<F> x = unpack<F>(bits);
    if (x.coefficient == 0)
        return pack<F>(0, 0, 1);
    const int zeros = std::min(F::DIGITS - digits_of(x.coefficient), x.exponent);
    x.coefficient *= pow10<Word>(zeros);
    x.exponent -= zeros;
    if (x.sign == 0)
        return pack_rounded<F>(0, x.exponent, x.coefficient + 1);
    if (x.coefficient == F::LEAST_FULL && x.exponent != 0)
        return pack<F>(x.sign, x.exponent - 1, F::LIMIT - 1);
    return pack<F>(x.sign, x.exponent, x.coefficient - 1);
}

template <class F>
typename F::Bits next_down(typename F::Bits bits) noexcept
{
    return is_nan<F>(bits) ? quiet<F>(bits) : next_up<F>(bits ^ F::SIGN) ^ F::SIGN;
}

template <class To, class From>
typename To::Bits convert(typename From::Bits bits) noexcept
{
    const auto sign = (bits & From::SIGN) != 0 ? To::SIGN : 0;
    if (is_nan<From>(bits)) {
        const auto payload = quiet<From>(bits) & From::PAYLOAD_MASK;
        return sign | To::NAN_BITS |
               (payload < To::LEAST_FULL ? static_cast<typename To::Bits>(payload) : 0);
    }
    if (is_infinite<From>(bits))
        return sign | To::INFINITY_BITS;
    const Number<From> x = unpack<From>(bits);
    return finish<To>(sign, x.exponent - From::BIAS + To::BIAS,
                      typename To::Wide{x.coefficient});
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

KIV_DECIMAL_WITH_INT(ScaleB, scale_b)
KIV_DECIMAL_QUERY(LogB, log_b)
KIV_DECIMAL_BINARY(Quantize, quantize)
KIV_DECIMAL_UNARY(NextUp, next_up)
KIV_DECIMAL_UNARY(NextDown, next_down)

#define KIV_DECIMAL_CONVERSION(From, To)                                \
    kiv::KDecimal##To kivDec##From##ToDec##To(kiv::KDecimal##From x)    \
    {                                                                   \
        using namespace kiv::companion;                                 \
        return value_of(convert<Format##To, Format##From>(bits_of(x))); \
    }
KIV_DECIMAL_CONVERSION(32, 64)
KIV_DECIMAL_CONVERSION(32, 128)
KIV_DECIMAL_CONVERSION(64, 32)
KIV_DECIMAL_CONVERSION(64, 128)
KIV_DECIMAL_CONVERSION(128, 32)
KIV_DECIMAL_CONVERSION(128, 64)

}  // extern "C"
