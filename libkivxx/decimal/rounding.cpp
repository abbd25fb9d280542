// To machine integers, and the truncated remainder.

#include <cerrno>
#include <cstdint>
#include <limits>

#include <kiv/decimal.h>

#include "decimal/companion_calls.h"
#include "decimal/parts.h"

namespace kiv::decimal {

namespace {

// The fraction is cut off. The companion answers with the least integer for what does
// not fit, too.
template <class Int, class Decimal>
Int to_integer(Decimal x) noexcept
{
    using Calls = Companion<Decimal>;
    using Limits = std::numeric_limits<Int>;
    Int result;
    if constexpr (sizeof(Int) == 4)
        result = Calls::to_int32(x.pattern());
    else
        result = Calls::to_int64(x.pattern());
    if (result != Limits::min()) [[likely]]
        return result;

    if (is_nan(x)) {
        errno = EDOM;
        return 0;
    }
    if (!is_negative(x)) {
        errno = ERANGE;
        return Limits::max();
    }
    const bool representable = Limits::digits10 < DecimalFormat<Decimal>::PRECISION;
    if (!representable ||
        Calls::not_equal(x.pattern(), Calls::from_int64(Limits::min())) != 0)
        errno = ERANGE;
    return result;
}

template <class Int, class Decimal>
Int to_nearest_even(Decimal x) noexcept
{
    return to_integer<Int>(
        Decimal(Companion<Decimal>::round_exact(x.pattern(), DEC_NEAREST_EVEN)));
}

template <class Int, class Decimal>
Int to_nearest_away(Decimal x) noexcept
{
    return to_integer<Int>(Decimal(Companion<Decimal>::round_half_up(x.pattern())));
}

// From the remainder of the nearest quotient, which is negative where that is the
// greater one.
template <class Decimal>
Decimal truncated_remainder(Decimal x, Decimal y) noexcept
{
    using Calls = Companion<Decimal>;
    const auto divisor = Calls::absolute(y.pattern());
    auto rest = Calls::remainder(Calls::absolute(x.pattern()), divisor);
    if (is_negative(Decimal(rest)))
        rest = Calls::add(rest, divisor);
    return Decimal(Calls::copy_sign(rest, x.pattern()));
}

}  // namespace

#define KIV_ROUNDING(TYPE)                           \
    TYPE fmod(const TYPE& x, const TYPE& y) noexcept \
    {                                                \
        return truncated_remainder(x, y);            \
    }                                                \
    long lrint(const TYPE& x) noexcept               \
    {                                                \
        return to_nearest_even<std::int32_t>(x);     \
    }                                                \
    long long llrint(const TYPE& x) noexcept         \
    {                                                \
        return to_nearest_even<std::int64_t>(x);     \
    }                                                \
    long lround(const TYPE& x) noexcept              \
    {                                                \
        return to_nearest_away<std::int32_t>(x);     \
    }                                                \
    long long llround(const TYPE& x) noexcept        \
    {                                                \
        return to_nearest_away<std::int64_t>(x);     \
    }                                                \
    long ltrunc(const TYPE& x) noexcept              \
    {                                                \
        return to_integer<std::int32_t>(x);          \
    }                                                \
    long long lltrunc(const TYPE& x) noexcept        \
    {                                                \
        return to_integer<std::int64_t>(x);          \
    }
KIV_ROUNDING(decimal64)
KIV_ROUNDING(decimal128)
#undef KIV_ROUNDING

}  // namespace kiv::decimal
