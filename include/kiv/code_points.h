// kiv/code_points.h - the code points of UTF-16 and UTF-8 text, as a range.
//
//     for (const char32_t cp : kiv::code_points(text))
//         count += kiv::isualpha(cp);  // U+FFFD where text is not well-formed
//
//     for (const kiv::code_point cp : kiv::code_points(bytes))
//         if (!cp.well_formed())
//             return cp.offset();
//
// The range is a view of the text, which must outlive it. Nothing is copied or
// allocated, and iteration goes both ways.
//
// What is not well-formed comes as code points of its own with the value
// U+FFFD: in UTF-16 each surrogate without its partner; in UTF-8 each longest
// beginning of a well-formed sequence, else one byte (the Unicode Standard,
// section 3.9, "U+FFFD Substitution of Maximal Subparts"). A good character is
// never part of a fault, as it can be for the UTF-8 decoder.

#ifndef KIV_CODE_POINTS_H
#define KIV_CODE_POINTS_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <ranges>
#include <string>
#include <string_view>

#include <kiv/char16.h>
#include <kiv/string_ref.h>

namespace kiv {

// One code point of a text, and where it stands. Converts to its value.
class code_point {
public:
    constexpr code_point() noexcept = default;
    constexpr code_point(char32_t value, std::size_t offset, unsigned size,
                         bool well_formed) noexcept
        : m_value(value),
          m_size(static_cast<std::uint8_t>(size)),
          m_well_formed(well_formed),
          m_offset(offset)
    {
    }

    constexpr operator char32_t() const noexcept { return m_value; }
    constexpr char32_t value() const noexcept { return m_value; }
    constexpr bool well_formed() const noexcept { return m_well_formed; }
    // Units from the start of the text, and units taken: bytes of UTF-8.
    constexpr std::size_t offset() const noexcept { return m_offset; }
    constexpr std::size_t size() const noexcept { return m_size; }

    friend constexpr bool operator==(const code_point&,
                                     const code_point&) noexcept = default;

private:
    char32_t m_value = 0;
    std::uint8_t m_size = 0;
    bool m_well_formed = true;
    std::size_t m_offset = 0;
};

namespace detail {

// The code point that begins at p, which is not end; its offset is left 0.
template <class Unit>
requires(sizeof(Unit) == 2) constexpr code_point
    code_point_at(const Unit* p, const Unit* end) noexcept
{
    const std::uint32_t unit = static_cast<char16_t>(*p);
    if ((unit & 0xF800) != 0xD800)
        return {unit, 0, 1, true};
    if (unit < 0xDC00 && end - p > 1) {
        const std::uint32_t next = static_cast<char16_t>(p[1]);
        if ((next & 0xFC00) == 0xDC00)
            return {0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF)), 0, 2, true};
    }
    return {U'\uFFFD', 0, 1, false};
}

template <class Unit>
requires(sizeof(Unit) == 1) constexpr code_point
    code_point_at(const Unit* p, const Unit* end) noexcept
{
    const std::uint32_t lead = static_cast<unsigned char>(*p);
    if (lead < 0x80)
        return {lead, 0, 1, true};
    const unsigned length = lead < 0xC2   ? 1
                            : lead < 0xE0 ? 2
                            : lead < 0xF0 ? 3
                            : lead < 0xF5 ? 4
                                          : 1;
    // Only the second byte has bounds of its own: against overlong forms,
    // surrogates and values above 10FFFF.
    std::uint32_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    std::uint32_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    std::uint32_t value = lead & (0x7Fu >> length);
    unsigned size = 1;
    for (; size < length && size < static_cast<std::size_t>(end - p); ++size) {
        const std::uint32_t byte = static_cast<unsigned char>(p[size]);
        if (byte < low || byte > high)
            break;
        value = value << 6 | (byte & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    if (length == 1 || size != length)
        return {U'\uFFFD', 0, size, false};
    return {value, 0, length, true};
}

// Where the code point that ends before p begins; p is not begin.
template <class Unit>
constexpr const Unit* code_point_before(const Unit* begin, const Unit* p) noexcept
{
    constexpr std::ptrdiff_t LONGEST = sizeof(Unit) == 1 ? 4 : 2;
    for (std::ptrdiff_t n = 2; n <= LONGEST && n <= p - begin; ++n)
        if (code_point_at(p - n, p).size() == static_cast<std::size_t>(n))
            return p - n;
    return p - 1;
}

}  // namespace detail

// Unit is char16 for UTF-16, char or char8_t for UTF-8.
template <class Unit>
requires std::same_as<Unit, char16> || std::same_as<Unit, char> ||
    std::same_as<Unit, char8_t>
class code_point_range : public std::ranges::view_base {
public:
    class iterator {
    public:
        using iterator_concept = std::bidirectional_iterator_tag;
        using iterator_category = std::input_iterator_tag;  // it returns values
        using value_type = code_point;
        using difference_type = std::ptrdiff_t;
        using reference = code_point;
        using pointer = void;

        constexpr iterator() noexcept = default;

        constexpr code_point operator*() const noexcept { return m_current; }
        // The place in the text.
        constexpr const Unit* base() const noexcept { return m_begin + offset(); }
        constexpr std::size_t offset() const noexcept { return m_current.offset(); }

        constexpr iterator& operator++() noexcept
        {
            move_to(offset() + m_current.size());
            return *this;
        }
        constexpr iterator operator++(int) noexcept
        {
            const iterator before = *this;
            ++*this;
            return before;
        }
        constexpr iterator& operator--() noexcept
        {
            const Unit* const before = detail::code_point_before(m_begin, base());
            move_to(static_cast<std::size_t>(before - m_begin));
            return *this;
        }
        constexpr iterator operator--(int) noexcept
        {
            const iterator after = *this;
            --*this;
            return after;
        }

        friend constexpr bool operator==(const iterator& a, const iterator& b) noexcept
        {
            return a.offset() == b.offset();
        }

    private:
        friend code_point_range;
        constexpr iterator(const Unit* begin, const Unit* end,
                           std::size_t offset) noexcept
            : m_begin(begin), m_end(end)
        {
            move_to(offset);
        }

        constexpr void move_to(std::size_t offset) noexcept
        {
            const Unit* const p = m_begin + offset;
            const code_point at =
                p != m_end ? detail::code_point_at(p, m_end) : code_point();
            m_current = {at.value(), offset, static_cast<unsigned>(at.size()),
                         at.well_formed()};
        }

        const Unit* m_begin = nullptr;
        const Unit* m_end = nullptr;
        code_point m_current;
    };

    constexpr code_point_range() noexcept = default;
    constexpr code_point_range(const Unit* text, std::size_t n) noexcept
        : m_text(text), m_size(n)
    {
    }

    constexpr iterator begin() const noexcept { return {m_text, m_text + m_size, 0}; }
    constexpr iterator end() const noexcept { return {m_text, m_text + m_size, m_size}; }

    constexpr bool empty() const noexcept { return m_size == 0; }

    // Whether all of the text is well-formed. Linear.
    constexpr bool well_formed() const noexcept
    {
        for (const code_point cp : *this)
            if (!cp.well_formed())
                return false;
        return true;
    }

private:
    const Unit* m_text = nullptr;
    std::size_t m_size = 0;
};

constexpr code_point_range<char16> code_points(basic_string_ref<char16> text) noexcept
{
    return {text.data(), text.size()};
}
constexpr code_point_range<char> code_points(basic_string_ref<char> text) noexcept
{
    return {text.data(), text.size()};
}
constexpr code_point_range<char8_t> code_points(std::u8string_view text) noexcept
{
    return {text.data(), text.size()};
}

// A loop over a temporary string would read it after its end.
template <class Unit>
void code_points(const std::basic_string<Unit>&& text) = delete;

}  // namespace kiv

template <class Unit>
inline constexpr bool std::ranges::enable_borrowed_range<kiv::code_point_range<Unit>> =
    true;

#endif
