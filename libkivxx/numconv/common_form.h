// numconv/common_form.h - numbers of the common form: ASCII only, and short enough for
// machine words. This is about speed alone: for anything else the caller turns to the
// scanner for text of every form.

#ifndef KIV_NUMCONV_COMMON_FORM_H
#define KIV_NUMCONV_COMMON_FORM_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "numconv/decimal_to_binary.h"
#include "numconv/inline.h"
#include "numconv/text_source.h"

namespace kiv::numconv {

// Returned in two registers.
template <class T, class CharT>
struct Common {
    T value;
    const CharT* end;  // null if the number is not of this form
};

template <class Text>
KIV_INLINE bool take_sign(Text& text, bool plus) noexcept
{
    const unsigned sign = text.peek();
    text.skip(sign == '-' || (sign == '+' && plus));
    return sign == '-';
}

// Whether the next character may belong to the number: digits of other scripts do.
template <class Text>
KIV_INLINE bool goes_on(const Text& text) noexcept
{
    return sizeof(typename Text::value_type) != 1 && text.peek() >= 0x80;
}

// What is not quick; null if the result is out of range, for that needs a report.
template <class Float, class CharT>
[[gnu::noinline]] Common<Float, CharT> finished(bool negative, std::uint64_t coefficient,
                                                std::int64_t exponent,
                                                const CharT* end) noexcept
{
    const Float value = decimal_to_binary<Float>(negative, coefficient, exponent);
    const bool inside = value != 0 && value - value == 0;
    return {value, inside ? end : nullptr};
}

// `next` is what follows the number.
template <class Float, class CharT>
KIV_INLINE Common<Float, CharT> assembled(bool negative, std::uint64_t coefficient,
                                          std::int64_t exponent, const CharT* end,
                                          unsigned next) noexcept
{
    if (coefficient == 0)  // with an x it may be a prefix
        return {negative ? -Float{0} : Float{0}, (next | 0x20) == 'x' ? nullptr : end};
    Float value;
    if (decimal_to_binary_quickly(negative, coefficient, exponent, value)) [[likely]]
        return {value, end};
    return finished<Float>(negative, coefficient, exponent, end);
}

// Of a mantissa: zeros before the first other digit.
template <class CharT>
std::ptrdiff_t leading_zeros(const CharT* p, const CharT* end) noexcept
{
    std::ptrdiff_t n = 0;
    for (; p != end && (unit_value(*p) == '0' || unit_value(*p) == '.'); ++p)
        n += unit_value(*p) == '0';
    return n;
}

// A decimal number of the common form.
struct CommonDecimal {
    bool found;
    bool negative;
    std::uint64_t coefficient;
    std::int64_t exponent;
};

// '-', with `plus` also '+', digits with perhaps a point, of which 19 are significant,
// and perhaps an exponent of up to nine digits. Leaves the text past it, or anywhere.
template <class Text>
KIV_INLINE CommonDecimal take_common_decimal(Text& text, bool plus) noexcept
{
    CommonDecimal number{};
    number.negative = take_sign(text, plus);

    const auto* const mantissa = text.at();
    std::ptrdiff_t digits = take_digits_singly(text, number.coefficient);
    if (text.peek() == '.') {
        text.skip();
        const std::ptrdiff_t fraction = take_digits(text, number.coefficient);
        number.exponent = -fraction;
        digits += fraction;
    }
    if (digits == 0 || (digits > 19 && digits - leading_zeros(mantissa, text.at()) > 19))
        return number;

    if ((text.peek() | 0x20) == 'e') {
        const auto* const letter = text.at();
        text.skip();
        const bool negative_exponent = take_sign(text, true);
        std::uint64_t written = 0;
        const std::ptrdiff_t count = take_digits_singly(text, written);
        if (count > 9 || goes_on(text))
            return number;
        const auto change = static_cast<std::int64_t>(written);
        number.exponent += negative_exponent ? -change : change;
        if (count == 0)
            text.at(letter);
    }
    number.found = !goes_on(text);
    return number;
}

template <class Float, class Text, class CharT = typename Text::value_type>
KIV_INLINE Common<Float, CharT> common_float(Text text, bool plus) noexcept
{
    const CommonDecimal number = take_common_decimal(text, plus);
    if (!number.found)
        return {0, nullptr};
    return assembled<Float>(number.negative, number.coefficient, number.exponent,
                            text.at(), text.peek());
}

// A value of magnitude below 2^63 as a T, if that holds it.
template <class T, class CharT>
KIV_INLINE Common<T, CharT> as(std::int64_t value, const CharT* end) noexcept
{
    const auto result = static_cast<T>(value);
    const bool fits = sizeof(T) == sizeof value
                          ? std::is_signed_v<T> || value >= 0
                          : static_cast<std::int64_t>(result) == value;
    return {result, fits ? end : nullptr};
}

// '-' if T is signed, '+' if `plus`, and up to 18 digits.
template <class T, class Text, class CharT = typename Text::value_type>
KIV_INLINE Common<T, CharT> common_integer(Text text, bool plus) noexcept
{
    const bool negative =
        (std::is_signed_v<T> || text.peek() != '-') && take_sign(text, plus);
    std::uint64_t magnitude = 0;
    const std::ptrdiff_t digits = take_digits_singly(text, magnitude);
    if (digits == 0 || digits > 18 || goes_on(text))
        return {0, nullptr};
    const auto value = static_cast<std::int64_t>(magnitude);
    return as<T>(negative ? -value : value, text.at());
}

}  // namespace kiv::numconv

#endif
