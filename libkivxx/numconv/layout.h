// numconv/layout.h - the text of a floating-point number: where its digits, its point
// and its exponent stand.
//
// Digits are written in whole groups and the point is put between them by overlapping
// stores, so that nothing depends on how many digits there are but the end.

#ifndef KIV_NUMCONV_LAYOUT_H
#define KIV_NUMCONV_LAYOUT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "bigint/digit_text.h"
#include "numconv/shortest.h"
#include "numconv/sixteen_digits.h"

namespace kiv::numconv {

// From 10^-3 to below 10^7 a number is written without an exponent.
constexpr int LEAST_PLAIN_EXPONENT = -3;
constexpr int MOST_PLAIN_EXPONENT = 6;

template <class CharT>
inline CharT* write_ascii(CharT* to, std::string_view text) noexcept
{
    for (const char c : text)
        *to++ = words::as_character(c, CharT());
    return to;
}

inline constexpr std::string_view INFINITY_TEXT = "Infinity";
inline constexpr std::string_view NAN_TEXT = "NaN";

// "E" and an exponent, the first character in the lowest byte, the count in the highest.
constexpr int MOST_EXPONENT = 324;
inline constexpr auto EXPONENT_TEXTS = [] {
    std::array<std::uint64_t, 2 * MOST_EXPONENT + 1> texts{};
    for (int exponent = -MOST_EXPONENT; exponent <= MOST_EXPONENT; ++exponent) {
        std::uint64_t text = 0;
        unsigned count = 0;
        for (int rest = exponent < 0 ? -exponent : exponent; rest != 0 || count == 0;
             rest /= 10, ++count)
            text = text << 8 | static_cast<unsigned>('0' + rest % 10);
        if (exponent < 0) {
            text = text << 8 | '-';
            ++count;
        }
        texts[static_cast<std::size_t>(exponent + MOST_EXPONENT)] =
            text << 8 | 'E' | std::uint64_t{count + 1} << 56;
    }
    return texts;
}();

// Writes eight units.
template <class CharT>
inline CharT* write_exponent(CharT* to, std::int64_t exponent) noexcept
{
    const std::uint64_t text =
        EXPONENT_TEXTS[static_cast<std::size_t>(exponent + MOST_EXPONENT)];
    words::store_eight(to, text);
    return to + (text >> 56);
}

// Puts a point behind the first `before` < 8 of seven characters.
inline std::uint64_t with_point(std::uint64_t seven, std::int64_t before) noexcept
{
    const std::int64_t shift = 8 * before;
    const std::uint64_t behind = seven >> shift << shift;
    return seven + behind * 255 + (std::uint64_t{'.'} << shift);
}

// Filled up with zeros, so that the tens have all digits or one less.
template <class Digits>
inline SplitDecimal padded(SplitDecimal decimal) noexcept
{
    constexpr std::uint64_t LEAST = Digits::COUNT == 8 ? 1'000'000 : 100'000'000'000'000;
    for (; decimal.tens < LEAST; --decimal.exponent) {
        decimal.tens = decimal.tens * 10 + decimal.ones;
        decimal.ones = 0;
    }
    return decimal;
}

// Digits is EightDigits or SixteenDigits; the decimal is padded. Returns the end of the
// text; up to LAYOUT_ROOM<Digits> units are written.
template <class Digits, class CharT>
inline CharT* lay_out(CharT* to, SplitDecimal decimal) noexcept
{
    // Half of all values have a digit less and so a zero in front: everything moves by
    // it, and what is written later covers it.
    const Digits digits(decimal.tens);
    const int zeros = digits.leading_zeros();
    const std::int64_t count =
        (decimal.ones != 0 ? Digits::COUNT + 1 : digits.significant()) - zeros;
    const std::int64_t exponent = decimal.exponent + Digits::COUNT - zeros;
    const auto write_digits = [&](CharT* at) {
        digits.store_from(zeros, at);
        if (decimal.ones != 0)
            at[Digits::COUNT - zeros] =
                words::as_character(static_cast<char>('0' + decimal.ones), CharT());
    };
    if (exponent > MOST_PLAIN_EXPONENT || exponent < LEAST_PLAIN_EXPONENT) {
        write_digits(to + 1);
        to[0] = to[1];
        to[1] = words::as_character('.', CharT());
        return write_exponent(to + 1 + std::max(count, std::int64_t{2}), exponent);
    }
    if (exponent >= 0) {
        write_digits(to + 1);
        words::store_eight(to, with_point(digits.seven_from(zeros), exponent + 1));
        return to + 1 + std::max(count, exponent + 2);
    }
    write_ascii(to, "0.00");
    write_digits(to + 1 - exponent);
    to[1] = words::as_character('.', CharT());
    return to + 1 - exponent + count;
}

// Without a sign: all digits, the point and an exponent.
template <class Digits>
inline constexpr int LAYOUT_ROOM = Digits::COUNT + 2 + 8;

}  // namespace kiv::numconv

#endif
