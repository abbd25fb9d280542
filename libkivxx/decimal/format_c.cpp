// The text of decimal values, without a locale: all digits, trailing zeros included.

#include <algorithm>
#include <string>
#include <type_traits>

#include <kiv/decimal.h>

#include "bigint/digit_text.h"
#include "decimal/parts.h"
#include "numconv/layout.h"

namespace kiv::decimal {

namespace {

// Digits are moved in whole blocks that hold all of them.
template <class Decimal>
constexpr int BLOCK = DecimalFormat<Decimal>::PRECISION <= 16 ? 16 : 40;

// Sign, "0.00" or a first digit and a point, a block, and an exponent of up to six
// characters behind the last digit.
template <class Decimal>
constexpr int ROOM = 1 + 4 + BLOCK<Decimal> + 8;

// Up to sixteen digits. Writes up to seven units more.
template <class CharT>
CharT* write_digits(CharT* to, std::uint64_t value) noexcept
{
    constexpr std::uint64_t EIGHT = 100'000'000;
    if (value < EIGHT)
        return words::write_up_to_eight(to, static_cast<std::uint32_t>(value));
    to = words::write_up_to_eight(to, static_cast<std::uint32_t>(value / EIGHT));
    words::write_eight(to, static_cast<std::uint32_t>(value % EIGHT));
    return to + 8;
}

// Up to 34.
template <class CharT>
CharT* write_digits(CharT* to, Uint128 value) noexcept
{
    constexpr std::uint64_t SIXTEEN = 10'000'000'000'000'000;
    if (value < SIXTEEN)
        return write_digits(to, static_cast<std::uint64_t>(value));
    const Uint128 high = value / SIXTEEN;
    const auto low = static_cast<std::uint64_t>(value - high * SIXTEEN);
    to = write_digits(to, high);
    words::write_eight(to, static_cast<std::uint32_t>(low / 100'000'000));
    words::write_eight(to + 8, static_cast<std::uint32_t>(low % 100'000'000));
    return to + 16;
}

template <class CharT>
CharT* write_exponent(CharT* to, int exponent) noexcept
{
    *to++ = words::as_character('E', CharT());
    if (exponent < 0)
        *to++ = words::as_character('-', CharT());
    return words::write_up_to_eight(to, static_cast<std::uint32_t>(std::abs(exponent)));
}

// Of a block of digits; `exponent` is that of the last one.
template <int BLOCK, class CharT>
CharT* lay_out(CharT* to, const CharT* digits, int count, int exponent) noexcept
{
    const CharT point = words::as_character('.', CharT());
    const int leading = exponent + count - 1;
    if (exponent > 0 || leading > numconv::MOST_PLAIN_EXPONENT ||
        leading < numconv::LEAST_PLAIN_EXPONENT) {
        to[0] = digits[0];
        to[1] = point;
        std::copy_n(digits + 1, BLOCK, to + 2);
        return write_exponent(to + 1 + count, leading);
    }
    if (leading >= 0) {
        std::copy_n(digits, 8, to);
        to += leading + 1;
        *to++ = point;
        std::copy_n(digits + leading + 1, BLOCK, to);
        return to - exponent;
    }
    numconv::write_ascii(to, "0.00");
    std::copy_n(digits, BLOCK, to + 1 - leading);
    return to + 1 - leading + count;
}

template <class CharT, class Decimal>
CharT* write(CharT* to, Decimal value) noexcept
{
    const auto parts = parts_of(value);
    if (parts.kind == Kind::nan)
        return numconv::write_ascii(to, numconv::NAN_TEXT);
    *to = words::as_character('-', CharT());
    to += parts.negative;
    if (parts.kind == Kind::infinite)
        return numconv::write_ascii(to, numconv::INFINITY_TEXT);
    constexpr int SIZE = BLOCK<Decimal>;
    CharT digits[SIZE + 8]{};
    const CharT* const end = write_digits(digits, parts.coefficient);
    return lay_out<SIZE>(to, digits, static_cast<int>(end - digits), parts.exponent);
}

template <class String, class Decimal>
String to_text(Decimal value)
{
    using CharT = typename String::value_type;
    CharT text[ROOM<Decimal>];
    return String(text, static_cast<std::size_t>(write(text, value) - text));
}

}  // namespace

}  // namespace kiv::decimal

namespace kiv {

std::string to_string_c(decimal::decimal32 x)
{
    return decimal::to_text<std::string>(x);
}

std::string to_string_c(decimal::decimal64 x)
{
    return decimal::to_text<std::string>(x);
}

std::string to_string_c(decimal::decimal128 x)
{
    return decimal::to_text<std::string>(x);
}

ustring to_ustring_c(decimal::decimal32 x)
{
    return decimal::to_text<ustring>(x);
}

ustring to_ustring_c(decimal::decimal64 x)
{
    return decimal::to_text<ustring>(x);
}

ustring to_ustring_c(decimal::decimal128 x)
{
    return decimal::to_text<ustring>(x);
}

}  // namespace kiv
