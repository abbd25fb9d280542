// kiv/char16.h - the UTF-16 code unit, its traits and its string.
//
// All UTF-16 text of the library is made of char16, a trivial 16-bit class of
// its own; ustring is the standard string of it:
//
//     kiv::ustring s = u"text"_us;
//     s += u'!';                       // char16_t converts implicitly
//     char16_t unit{s[0]};             // and back explicitly
//
// An array of char16 has the layout of an array of UTF-16 code units in
// machine byte order.

#ifndef KIV_CHAR16_H
#define KIV_CHAR16_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <ios>
#include <string>
#include <string_view>
#include <type_traits>

#include <kiv/export.h>

namespace kiv {

class char16_int;

// One UTF-16 code unit, 0 to 0xFFFF, ordered as an unsigned number. Trivial:
// char16() and char16{} are 0, a char16 without an initialiser is
// indeterminate, as with the built-in character types.
class KIV_API char16 {
public:
    char16() = default;
    constexpr char16(char16_t unit) noexcept : m_unit(unit) {}
    constexpr explicit char16(char16_int i) noexcept;

    constexpr explicit operator char16_t() const noexcept { return m_unit; }

    friend constexpr bool operator==(char16, char16) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(char16, char16) noexcept = default;

private:
    friend class char16_int;
    char16_t m_unit;
};

// The integer type of char16 in traits and streams. It is as wide as char16,
// so its end-of-file value 0xFFFF is also the noncharacter U+FFFF.
class KIV_API char16_int {
public:
    char16_int() = default;
    constexpr char16_int(char16_t value) noexcept : m_value(value) {}
    constexpr char16_int(char16 unit) noexcept : m_value(unit.m_unit) {}

    constexpr explicit operator char16_t() const noexcept { return m_value; }

    friend constexpr bool operator==(char16_int, char16_int) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(char16_int,
                                                      char16_int) noexcept = default;

private:
    char16_t m_value;
};

constexpr char16::char16(char16_int i) noexcept : m_unit(static_cast<char16_t>(i)) {}

static_assert(std::is_trivial_v<char16> && std::is_standard_layout_v<char16>);
static_assert(sizeof(char16) == 2 && alignof(char16) == alignof(char16_t));
static_assert(std::is_trivial_v<char16_int> && sizeof(char16_int) == 2);

}  // namespace kiv

// The traits of UTF-16 text: units compare as unsigned 16-bit numbers.
template <>
struct KIV_API std::char_traits<kiv::char16> {
    using char_type = kiv::char16;
    using int_type = kiv::char16_int;
    using off_type = std::streamoff;
    using pos_type = std::streampos;
    using state_type = std::mbstate_t;
    using comparison_category = std::strong_ordering;

    static constexpr void assign(char_type& r, const char_type& a) noexcept { r = a; }

    static constexpr char_type* assign(char_type* p, std::size_t n, char_type a) noexcept
    {
        for (std::size_t i = 0; i < n; ++i)
            p[i] = a;
        return p;
    }

    static constexpr bool eq(char_type a, char_type b) noexcept { return a == b; }
    static constexpr bool lt(char_type a, char_type b) noexcept { return a < b; }

    // The difference p[i] - q[i] of the first units that differ, 0 if none do.
    static constexpr int compare(const char_type* p, const char_type* q,
                                 std::size_t n) noexcept
    {
        for (std::size_t i = 0; i < n; ++i)
            if (p[i] != q[i])
                return static_cast<int>(static_cast<char16_t>(p[i])) -
                       static_cast<int>(static_cast<char16_t>(q[i]));
        return 0;
    }

    static constexpr std::size_t length(const char_type* p) noexcept
    {
        std::size_t n = 0;
        while (p[n] != char_type())
            ++n;
        return n;
    }

    static constexpr const char_type* find(const char_type* p, std::size_t n,
                                           const char_type& a) noexcept
    {
        for (std::size_t i = 0; i < n; ++i)
            if (p[i] == a)
                return p + i;
        return nullptr;
    }

    static constexpr char_type* move(char_type* d, const char_type* s,
                                     std::size_t n) noexcept
    {
        if (n == 0)
            return d;
        if (std::is_constant_evaluated())
            return move_each(d, s, n);
        return static_cast<char_type*>(__builtin_memmove(d, s, bytes(n)));
    }

    static constexpr char_type* copy(char_type* d, const char_type* s,
                                     std::size_t n) noexcept
    {
        if (n == 0)
            return d;
        if (std::is_constant_evaluated())
            return move_each(d, s, n);
        return static_cast<char_type*>(__builtin_memcpy(d, s, bytes(n)));
    }

    // Some standard libraries ask for variants that know the room; the caller
    // has checked it, so it is ignored.
    static constexpr char_type* _Copy_s(char_type* d, std::size_t, const char_type* s,
                                        std::size_t n) noexcept
    {
        return copy(d, s, n);
    }

    static constexpr char_type* _Move_s(char_type* d, std::size_t, const char_type* s,
                                        std::size_t n) noexcept
    {
        return move(d, s, n);
    }

    static constexpr char_type to_char_type(int_type i) noexcept { return char_type(i); }
    static constexpr int_type to_int_type(char_type c) noexcept { return c; }
    static constexpr bool eq_int_type(int_type a, int_type b) noexcept { return a == b; }
    static constexpr int_type eof() noexcept { return char16_t{0xFFFF}; }

    static constexpr int_type not_eof(int_type i) noexcept
    {
        return i == eof() ? int_type(char16_t{0}) : i;
    }

private:
    // No array is larger. Unless told, g++ warns of copies that cannot be.
    static constexpr std::size_t bytes(std::size_t n) noexcept
    {
        if (n > PTRDIFF_MAX / sizeof(char_type))
            __builtin_unreachable();
        return n * sizeof(char_type);
    }

    // Constant evaluation can order pointers only within one array: copying
    // through the direction that equality finds is enough there.
    static constexpr char_type* move_each(char_type* d, const char_type* s,
                                          std::size_t n) noexcept
    {
        bool into_tail = false;
        for (std::size_t i = 1; i < n; ++i)
            into_tail = into_tail || s + i == d;
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t at = into_tail ? n - 1 - i : i;
            d[at] = s[at];
        }
        return d;
    }
};

extern template class KIV_API std::basic_string<kiv::char16>;

namespace kiv {

using ustring = std::basic_string<char16>;

inline namespace literals {

// u"text"_us makes a ustring, embedded zero units included.
inline ustring operator""_us(const char16_t* units, std::size_t n)
{
    return ustring(units, units + n);
}

}  // namespace literals
}  // namespace kiv

#endif
