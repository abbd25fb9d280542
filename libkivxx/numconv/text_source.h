// numconv/text_source.h - the text that a parser reads: a range, or up to a zero.
//
// Both give units as unsigned numbers and 0 at the end, which no number contains, so a
// parser never asks whether it is there.

#ifndef KIV_NUMCONV_TEXT_SOURCE_H
#define KIV_NUMCONV_TEXT_SOURCE_H

#include <cstddef>
#include <cstdint>

#include <kiv/big_uint.h>
#include <kiv/char16.h>
#include <kiv/character.h>

#include "char/tables/classification.h"
#include "numconv/digit_groups.h"
#include "numconv/inline.h"

namespace kiv::numconv {

constexpr unsigned unit_value(char c) noexcept
{
    return static_cast<unsigned char>(c);
}
constexpr unsigned unit_value(char16 c) noexcept
{
    return static_cast<char16_t>(c);
}

// [first, last).
template <class CharT>
class BoundedText {
public:
    using value_type = CharT;
    static constexpr bool IS_BOUNDED = true;

    BoundedText(const CharT* first, const CharT* last) noexcept
        : m_at(first), m_last(last)
    {
    }

    const CharT* at() const noexcept { return m_at; }
    void at(const CharT* p) noexcept { m_at = p; }
    void skip(std::ptrdiff_t n = 1) noexcept { m_at += n; }

    unsigned peek() const noexcept { return m_at == m_last ? 0 : unit_value(*m_at); }
    unsigned peek(std::ptrdiff_t ahead) const noexcept
    {
        return m_last - m_at <= ahead ? 0 : unit_value(m_at[ahead]);
    }

    std::ptrdiff_t left() const noexcept { return m_last - m_at; }

private:
    const CharT* m_at;
    const CharT* m_last;
};

// Ends with a zero.
template <class CharT>
class TerminatedText {
public:
    using value_type = CharT;
    static constexpr bool IS_BOUNDED = false;

    explicit TerminatedText(const CharT* first) noexcept : m_at(first) {}

    const CharT* at() const noexcept { return m_at; }
    void at(const CharT* p) noexcept { m_at = p; }
    void skip(std::ptrdiff_t n = 1) noexcept { m_at += n; }

    unsigned peek() const noexcept { return unit_value(*m_at); }
    // No zero may come before.
    unsigned peek(std::ptrdiff_t ahead) const noexcept { return unit_value(m_at[ahead]); }

private:
    const CharT* m_at;
};

// Appends the ASCII digits at the front of the text to `value`, which wraps beyond 19
// digits, and returns how many there are.
template <class Text>
KIV_INLINE std::ptrdiff_t take_digits_singly(Text& text, std::uint64_t& value) noexcept
{
    const auto* const first = text.at();
    for (unsigned d = text.peek() - '0'; d < 10; d = text.peek() - '0') {
        value = value * 10 + d;
        text.skip();
    }
    return text.at() - first;
}

// The same for many digits.
template <class Text>
KIV_INLINE std::ptrdiff_t take_digits(Text& text, std::uint64_t& value) noexcept
{
    const auto* const first = text.at();
    if constexpr (Text::IS_BOUNDED) {
        while (text.left() >= 8) {
            const std::uint64_t digits = load_eight(text.at()) ^ EIGHT_ZEROS;
            if (!are_eight_digits(digits))
                break;
            value = value * 100'000'000 + eight_digits(digits);
            text.skip(8);
        }
    }
    take_digits_singly(text, value);
    return text.at() - first;
}

// The ASCII digit that a digit of any script stands for, '?' for what is not ASCII
// otherwise.
template <class CharT>
unsigned narrow_unit(unsigned unit) noexcept
{
    if (sizeof(CharT) == 1 || unit < 0x80)
        return unit;
    return static_cast<unsigned char>(Char16::narrow(static_cast<char16_t>(unit), '?'));
}

// The next character, digits of all scripts as ASCII digits.
template <class Text>
unsigned peek_narrow(const Text& text) noexcept
{
    return narrow_unit<typename Text::value_type>(text.peek());
}

constexpr bool is_ascii_space(unsigned unit) noexcept
{
    return unit == ' ' || unit - '\t' < 5;  // \t \n \v \f \r
}

template <class Text>
void skip_ascii_space(Text& text) noexcept
{
    while (is_ascii_space(text.peek()))
        text.skip();
}

// What the classic locales of the two character types class as space.
template <class Text>
void skip_space(Text& text) noexcept
{
    if constexpr (sizeof(typename Text::value_type) == 1)
        skip_ascii_space(text);
    else
        while (tables::classification_mask(static_cast<std::uint16_t>(text.peek())) &
               tables::MASK_SPACE)
            text.skip();
}

}  // namespace kiv::numconv

#endif
