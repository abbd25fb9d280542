// Integers as text.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <system_error>
#include <type_traits>

#include <kiv/numconv.h>

#include "bigint/digit_text.h"

namespace kiv {

namespace {

// --- Base 10 -------------------------------------------------------------------------

constexpr std::uint64_t EIGHT = 100'000'000;

// A '-' and all digits: the longest text, and as much is written for any.
template <class Int>
constexpr std::ptrdiff_t ROOM =
    std::numeric_limits<Int>::digits10 + 1 + std::ptrdiff_t{std::is_signed_v<Int>};

template <class CharT>
inline CharT* write_decimal(CharT* to, std::uint32_t value) noexcept
{
    if (value < EIGHT) [[likely]]
        return words::write_up_to_eight(to, value);
    to = words::write_up_to_two(to, value / EIGHT);
    words::write_eight(to, static_cast<std::uint32_t>(value % EIGHT));
    return to + 8;
}

template <class CharT>
inline CharT* write_decimal(CharT* to, std::uint64_t value) noexcept
{
    if (value < EIGHT) [[likely]]
        return words::write_up_to_eight(to, static_cast<std::uint32_t>(value));
    const std::uint64_t high = value / EIGHT;
    const auto low = static_cast<std::uint32_t>(value % EIGHT);
    if (high < EIGHT) {
        to = words::write_up_to_eight(to, static_cast<std::uint32_t>(high));
        words::write_eight(to, low);
        return to + 8;
    }
    to = words::write_up_to_four(to, static_cast<std::uint32_t>(high / EIGHT));
    words::write_eight(to, static_cast<std::uint32_t>(high % EIGHT));
    words::write_eight(to + 8, low);
    return to + 16;
}

template <class Int>
constexpr auto magnitude(Int value) noexcept
{
    using UInt = std::make_unsigned_t<Int>;
    const auto bits = static_cast<UInt>(value);
    return value < 0 ? UInt{0} - bits : bits;
}

template <class CharT, class Int>
inline CharT* write(CharT* to, Int value) noexcept
{
    using Word = std::conditional_t<sizeof(Int) == 4, std::uint32_t, std::uint64_t>;
    if constexpr (std::is_signed_v<Int>) {
        *to = words::as_character('-', CharT());
        to += value < 0;
    }
    return write_decimal(to, Word{magnitude(value)});
}

// --- Other bases -----------------------------------------------------------------------

// Writes down from `end`, to where the text begins.
template <class CharT>
CharT* write_backwards(CharT* end, std::uint64_t value, unsigned base) noexcept
{
    static constexpr char DIGITS[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    const auto digit = [](std::uint64_t d) {
        return words::as_character(DIGITS[d], CharT());
    };
    if (std::has_single_bit(base)) {
        const int shift = std::countr_zero(base);
        for (; value >= base; value >>= shift)
            *--end = digit(value & (base - 1));
    } else {
        for (; value >= base; value /= base)
            *--end = digit(value % base);
    }
    *--end = digit(value);
    return end;
}

// --- Into strings and buffers ----------------------------------------------------------

template <class CharT>
to_chars_result<CharT> copy(const CharT* text, const CharT* end, CharT* first,
                            CharT* last) noexcept
{
    if (end - text > last - first)
        return {last, std::errc::value_too_large};
    return {std::copy(text, end, first), std::errc()};
}

// Another base than 10, or less room than some value takes.
template <class CharT, class Int>
[[gnu::noinline]] to_chars_result<CharT> to_chars_slowly(CharT* first, CharT* last,
                                                         Int value, int base) noexcept
{
    if (base == 10) {
        CharT text[ROOM<Int>];
        return copy<CharT>(text, write(text, value), first, last);
    }
    if (base < 2 || base > 36)
        return {first, std::errc::invalid_argument};
    CharT text[1 + std::numeric_limits<std::make_unsigned_t<Int>>::digits];
    CharT* const end = std::end(text);
    CharT* begin = write_backwards(end, magnitude(value), static_cast<unsigned>(base));
    if (value < 0)
        *--begin = words::as_character('-', CharT());
    return copy<CharT>(begin, end, first, last);
}

template <class String, class Int>
inline String to_text(Int value)
{
    typename String::value_type text[ROOM<Int>];
    return String(text, static_cast<std::size_t>(write(text, value) - text));
}

}  // namespace

// The result of to_chars_slowly is returned by these functions themselves: g++ takes the
// result of an inlined one apart and puts it together again.
#define KIV_FORMAT_INTEGER(TYPE)                                                \
    std::string to_string_c(TYPE value)                                         \
    {                                                                           \
        return to_text<std::string>(value);                                     \
    }                                                                           \
    ustring to_ustring_c(TYPE value)                                            \
    {                                                                           \
        return to_text<ustring>(value);                                         \
    }                                                                           \
    to_chars_result<char> to_chars_c(char* first, char* last, TYPE value,       \
                                     int base) noexcept                         \
    {                                                                           \
        if (last - first >= ROOM<TYPE> && base == 10) [[likely]]                \
            return {write(first, value), std::errc()};                          \
        return to_chars_slowly(first, last, value, base);                       \
    }                                                                           \
    to_chars_result<char16> to_chars_c(char16* first, char16* last, TYPE value, \
                                       int base) noexcept                       \
    {                                                                           \
        if (last - first >= ROOM<TYPE> && base == 10) [[likely]]                \
            return {write(first, value), std::errc()};                          \
        return to_chars_slowly(first, last, value, base);                       \
    }

KIV_FORMAT_INTEGER(int)
KIV_FORMAT_INTEGER(long)
KIV_FORMAT_INTEGER(long long)
KIV_FORMAT_INTEGER(unsigned)
KIV_FORMAT_INTEGER(unsigned long)
KIV_FORMAT_INTEGER(unsigned long long)

#undef KIV_FORMAT_INTEGER

}  // namespace kiv
