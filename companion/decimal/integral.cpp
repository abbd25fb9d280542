// Whole numbers: rounding to them, and binary integers.

#include <limits>

#include "companion/decimal/entry.h"
#include "companion/decimal/rounding.h"

namespace kiv::companion {
namespace {

// Whether a quotient goes up in magnitude whose remainder is not 0.
bool goes_up(int mode, bool negative, bool odd, int order_to_half) noexcept
{
    switch (mode) {
    case DEC_TOWARD_ZERO:
        return false;
    case DEC_UPWARD:
        return !negative;
    case DEC_DOWNWARD:
        return negative;
    case DEC_NEAREST_AWAY:
        return order_to_half >= 0;
    default:
        return order_to_half > 0 || (order_to_half == 0 && odd);
    }
}

template <class F>
typename F::Bits rint(typename F::Bits bits, int mode) noexcept
{
    using Word = typename F::Word;
    if (!is_finite<F>(bits))
        return canonical<F>(bits);
    const Number<F> x = unpack<F>(bits);
    const int fraction = F::BIAS - x.exponent;  // digits
    if (fraction <= 0)
        return pack<F>(x.sign, x.exponent, x.coefficient);
    if (x.coefficient == 0)
        return pack<F>(x.sign, F::BIAS, 0);
    // One digit more than there are leaves 0 and a remainder below one half.
    const int k = std::min(fraction, F::DIGITS + 1);
    auto [whole, rest] = F::RECIPROCAL.divide(x.coefficient, k);
    const Word half = pow10<Word>(k) >> 1;
    if (rest != 0 &&
        goes_up(mode, x.sign != 0, (whole & 1) != 0, (rest > half) - (rest < half)))
        ++whole;
    return pack<F>(x.sign, F::BIAS, whole);
}

template <class F>
typename F::Bits round_half_up(typename F::Bits x) noexcept
{
    return rint<F>(x, DEC_NEAREST_AWAY);
}

template <class F>
typename F::Bits from_integer(bool negative, std::uint64_t magnitude) noexcept
{
    using Word = typename F::Word;
    return finish<F>(negative ? F::SIGN : 0, F::BIAS, Word{magnitude});
}

template <class F>
std::int64_t to_int64(typename F::Bits bits) noexcept
{
    using Word = typename F::Word;
    constexpr std::int64_t MIN = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t MAX = std::numeric_limits<std::int64_t>::max();
    if (!is_finite<F>(bits))
        return MIN;
    Number<F> x = unpack<F>(bits);
    const int exponent = x.exponent - F::BIAS;
    const int length = digits_of(x.coefficient) + exponent;
    if (x.coefficient == 0 || length <= 0)
        return 0;
    if (length > 19)
        return MIN;
    if (exponent < 0)
        x.coefficient = F::RECIPROCAL.divide(x.coefficient, -exponent).value;
    else
        x.coefficient *= pow10<Word>(exponent);
    if (x.coefficient > Word{MAX})
        return MIN;
    const auto magnitude = static_cast<std::int64_t>(x.coefficient);
    return x.sign != 0 ? -magnitude : magnitude;
}

template <class F>
std::int32_t to_int32(typename F::Bits bits) noexcept
{
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t n = to_int64<F>(bits);
    return n < Limits::min() || n > Limits::max() ? Limits::min()
                                                  : static_cast<std::int32_t>(n);
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

KIV_DECIMAL_WITH_INT(Rint, kiv::companion::rint)
KIV_DECIMAL_WITH_INT(RoundExact, kiv::companion::rint)
KIV_DECIMAL_UNARY(RoundHalfUp, round_half_up)

#define KIV_DECIMAL_INTEGERS(W, unused_name, unused_function)                     \
    kiv::KDecimal##W kivDec##W##FromInt64(std::int64_t n)                         \
    {                                                                             \
        using namespace kiv::companion;                                           \
        const auto bits = static_cast<std::uint64_t>(n);                          \
        return value_of(from_integer<Format##W>(n < 0, n < 0 ? 0 - bits : bits)); \
    }                                                                             \
    kiv::KDecimal##W kivDec##W##FromUInt64(std::uint64_t n)                       \
    {                                                                             \
        using namespace kiv::companion;                                           \
        return value_of(from_integer<Format##W>(false, n));                       \
    }                                                                             \
    std::int64_t kivDec##W##ToInt64(kiv::KDecimal##W x)                           \
    {                                                                             \
        using namespace kiv::companion;                                           \
        return to_int64<Format##W>(bits_of(x));                                   \
    }                                                                             \
    std::int32_t kivDec##W##ToInt32(kiv::KDecimal##W x)                           \
    {                                                                             \
        using namespace kiv::companion;                                           \
        return to_int32<Format##W>(bits_of(x));                                   \
    }
KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_INTEGERS, , )

}  // extern "C"
