// Values from integers.

#include <cerrno>
#include <type_traits>

#include <kiv/decimal.h>

#include "decimal/companion_calls.h"
#include "decimal/parts.h"
#include "numconv/decimal_packing.h"

namespace kiv::decimal {

namespace {

// By the companion: what has too many digits, or an exponent out of range.
template <class Decimal, integer Int>
[[gnu::noinline]] Decimal scaled(Int coefficient, int exponent) noexcept
{
    if constexpr (std::is_same_v<Decimal, decimal32>) {
        return decimal32(scaled<decimal64>(coefficient, exponent));
    } else {
        using Calls = Companion<Decimal>;
        if constexpr (std::is_signed_v<Int>)
            return Decimal(Calls::scale_b(Calls::from_int64(coefficient), exponent));
        else
            return Decimal(Calls::scale_b(Calls::from_uint64(coefficient), exponent));
    }
}

template <class Decimal, integer Int>
auto make(Int coefficient, int exponent) noexcept
{
    using Format = DecimalFormat<Decimal>;
    using Bits = typename Format::Bits;
    const std::uint64_t magnitude = detail::magnitude(coefficient);
    if (numconv::is_encodable<Format>(exponent, magnitude)) [[likely]]
        return Format::value(
                   numconv::encode<Format>(coefficient < 0, exponent, Bits{magnitude}))
            .pattern();
    const auto result = scaled<Decimal>(coefficient, exponent);
    if (combination(result) == INFINITE_FORM)
        errno = ERANGE;
    return result.pattern();
}

}  // namespace

#define KIV_MAKE(WIDTH, INT)                                                     \
    KDecimal##WIDTH _make_decimal##WIDTH(INT coefficient, int exponent) noexcept \
    {                                                                            \
        return make<decimal##WIDTH>(coefficient, exponent);                      \
    }
#define KIV_MAKE_FROM(INT) \
    KIV_MAKE(32, INT)      \
    KIV_MAKE(64, INT)      \
    KIV_MAKE(128, INT)
KIV_MAKE_FROM(int)
KIV_MAKE_FROM(unsigned)
KIV_MAKE_FROM(long)
KIV_MAKE_FROM(unsigned long)
KIV_MAKE_FROM(long long)
KIV_MAKE_FROM(unsigned long long)
#undef KIV_MAKE_FROM
#undef KIV_MAKE

KDecimal32 decimal32::from_integer(bool negative, std::uint64_t magnitude) noexcept
{
    return numconv::pack_decimal<decimal32>(negative, 0, words::Wide{0, magnitude}, 0)
        .pattern();
}

KDecimal64 decimal64::from_integer(bool negative, std::uint64_t magnitude) noexcept
{
    return numconv::pack_decimal<decimal64>(negative, 0, words::Wide{0, magnitude}, 0)
        .pattern();
}

}  // namespace kiv::decimal
