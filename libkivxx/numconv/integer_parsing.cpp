// Integers from text.

#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <kiv/numconv.h>

#include "bigint/words.h"
#include "numconv/common_form.h"
#include "numconv/number_scan.h"
#include "numconv/parse_kernels.h"
#include "numconv/parse_shapes.h"
#include "numconv/text_source.h"

namespace kiv::numconv {
namespace {

struct Magnitude {
    std::uint64_t value;
    bool overflow;  // of 64 bits
    bool found;     // at least one digit
};

// Any base, digits of every script, any length: the run is consumed to its end.
template <class Text>
KIV_INLINE Magnitude take_magnitude(Text& text, unsigned base) noexcept
{
    Magnitude result{};
    for (;; text.skip()) {
        const unsigned digit = digit_value(peek_narrow(text));
        if (digit >= base || digit == NO_DIGIT)
            return result;
        result.found = true;
        const words::Wide next = words::multiply_add(result.value, base, digit);
        result.value = next.low;
        result.overflow = result.overflow || next.high != 0;
    }
}

// Skips a prefix of base 16 and makes base 0 another.
template <class Text>
unsigned take_prefix(Text& text, int base) noexcept
{
    if ((base != 0 && base != 16) || peek_narrow(text) != '0')
        return base == 0 ? 10 : static_cast<unsigned>(base);
    if ((text.peek(1) | 0x20) == 'x' &&
        digit_value(narrow_unit<typename Text::value_type>(text.peek(2))) < 16) {
        text.skip(2);
        return 16;
    }
    return base == 0 ? 8 : 16;
}

// As from_chars_c(), but the value becomes 0 without a number and the limit beyond.
template <class T, class Text, class CharT = typename Text::value_type>
from_chars_result<CharT> parse_any(Text text, T& value, int base, unsigned flags) noexcept
{
    using Limits = std::numeric_limits<T>;

    const CharT* const first = text.at();
    if (flags & WHITE_SPACE)
        skip_ascii_space(text);
    const bool negative = std::is_signed_v<T> && text.peek() == '-';
    if (negative || ((flags & PLUS) && text.peek() == '+'))
        text.skip();
    const Magnitude magnitude = take_magnitude(text, take_prefix(text, base));
    value = 0;
    if (!magnitude.found)
        return {first, std::errc::invalid_argument, number_range::inside};

    // The least value of a signed type is one further from 0 than the greatest.
    constexpr auto MOST = static_cast<std::uint64_t>(Limits::max());
    if (magnitude.overflow || magnitude.value > MOST + std::uint64_t{negative}) {
        value = negative ? Limits::min() : Limits::max();
        return {text.at(), std::errc::result_out_of_range, number_range::above};
    }
    // Modulo 2^64, which the conversion back to a signed type undoes.
    value = static_cast<T>(negative ? 0 - magnitude.value : magnitude.value);
    return {text.at(), std::errc(), number_range::inside};
}

// --- Shapes ------------------------------------------------------------------------

// A sign of an unsigned type is no number.
template <class T>
constexpr unsigned AS_STRTOL = std::is_signed_v<T> ? PLUS | WHITE_SPACE : WHITE_SPACE;

[[noreturn]] void raise(std::errc error, int base)
{
    if (error == std::errc::result_out_of_range)
        throw std::out_of_range("number out of range");
    switch (base) {
    case 8:
        throw std::invalid_argument("octal number expected");
    case 0:  // without a digit no other base is chosen
    case 10:
        throw std::invalid_argument("decimal number expected");
    case 16:
        throw std::invalid_argument("hexadecimal number expected");
    default:
        throw std::invalid_argument(
            std::string("digit ([0..") +
            static_cast<char>(base <= 10 ? '0' + base - 1 : 'A' + base - 11) +
            "]) expected");
    }
}

// One of the four types that the kernels know, as wide.
template <class T>
using Computed = std::conditional_t<
    sizeof(T) != sizeof(long long), T,
    std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>>;

template <class T, class CharT>
KIV_INLINE T parse_terminated(const CharT* s, CharT** end, int base)
{
    if (base == 10) [[likely]] {
        TerminatedText<CharT> text(s);
        skip_ascii_space(text);
        const auto common = common_integer<T>(text, std::is_signed_v<T>);
        if (common.end != nullptr) [[likely]] {
            if (end != nullptr)
                *end = const_cast<CharT*>(common.end);
            return common.value;
        }
    }
    T value;
    finish_terminated(parse_any(TerminatedText<CharT>(s), value, base, AS_STRTOL<T>),
                      end);
    return value;
}

template <class T, class CharT>
KIV_INLINE T parse_view(basic_string_ref<CharT> s, std::size_t* idx, int base)
{
    Computed<T> value;
    const auto result =
        parse_kernel<Computed<T>, CharT>()(s.begin(), s.end(), value, base, AS_STRTOL<T>);
    finish_view(result, s, idx, [&](const auto&) { raise(result.ec, base); });
    return value;
}

template <class T, class CharT>
T parse_cursor(BasicCharIterator<CharT>& it, int base)
{
    return parse_at(it, [base](basic_string_ref<CharT> rest, std::size_t* idx) {
        return parse_view<T>(rest, idx, base);
    });
}

template <class T, class CharT>
KIV_INLINE from_chars_result<CharT> parse_range(const CharT* first, const CharT* last,
                                                T& value, int base,
                                                leading allowed) noexcept
{
    const auto kernel = parse_kernel<Computed<T>, CharT>();
    const auto flags = static_cast<unsigned>(allowed);
    if constexpr (std::is_same_v<T, Computed<T>>) {
        return kernel(first, last, value, base, flags);
    } else {
        Computed<T> computed;
        const auto result = kernel(first, last, computed, base, flags);
        if (result.ec == std::errc())
            value = computed;
        return result;
    }
}

}  // namespace

template <class T, class CharT>
from_chars_result<CharT> parse_any_integer(const CharT* first, const CharT* last,
                                           T& value, int base, unsigned flags) noexcept
{
    T parsed;
    const auto result = parse_any(BoundedText<CharT>(first, last), parsed, base, flags);
    if (result.ec == std::errc())
        value = parsed;
    return result;
}

#define KIV_PARSE_ANY_INTEGER(TYPE, CHAR)                                               \
    template from_chars_result<CHAR> parse_any_integer(const CHAR*, const CHAR*, TYPE&, \
                                                       int, unsigned) noexcept;
KIV_PARSE_ANY_INTEGER(int, char)
KIV_PARSE_ANY_INTEGER(int, char16)
KIV_PARSE_ANY_INTEGER(unsigned, char)
KIV_PARSE_ANY_INTEGER(unsigned, char16)
KIV_PARSE_ANY_INTEGER(long long, char)
KIV_PARSE_ANY_INTEGER(long long, char16)
KIV_PARSE_ANY_INTEGER(unsigned long long, char)
KIV_PARSE_ANY_INTEGER(unsigned long long, char16)
#undef KIV_PARSE_ANY_INTEGER

}  // namespace kiv::numconv

namespace kiv {

// The six shapes and from_chars_c of one type.
#define KIV_INTEGER_PARSER(TYPE, STRTO, STO)                                        \
    TYPE STRTO(const char* s, char** end, int base)                                 \
    {                                                                               \
        return numconv::parse_terminated<TYPE>(s, end, base);                       \
    }                                                                               \
    TYPE STRTO(const char16* s, char16** end, int base)                             \
    {                                                                               \
        return numconv::parse_terminated<TYPE>(s, end, base);                       \
    }                                                                               \
    TYPE STO(basic_string_ref<char> s, std::size_t* idx, int base)                  \
    {                                                                               \
        return numconv::parse_view<TYPE>(s, idx, base);                             \
    }                                                                               \
    TYPE STO(basic_string_ref<char16> s, std::size_t* idx, int base)                \
    {                                                                               \
        return numconv::parse_view<TYPE>(s, idx, base);                             \
    }                                                                               \
    TYPE STO(BasicCharIterator<char>& it, int base)                                 \
    {                                                                               \
        return numconv::parse_cursor<TYPE>(it, base);                               \
    }                                                                               \
    TYPE STO(BasicCharIterator<char16>& it, int base)                               \
    {                                                                               \
        return numconv::parse_cursor<TYPE>(it, base);                               \
    }                                                                               \
    from_chars_result<char> from_chars_c(const char* first, const char* last,       \
                                         TYPE& value, int base,                     \
                                         leading allowed) noexcept                  \
    {                                                                               \
        return numconv::parse_range(first, last, value, base, allowed);             \
    }                                                                               \
    from_chars_result<char16> from_chars_c(const char16* first, const char16* last, \
                                           TYPE& value, int base,                   \
                                           leading allowed) noexcept                \
    {                                                                               \
        return numconv::parse_range(first, last, value, base, allowed);             \
    }

KIV_INTEGER_PARSER(int, strtoi_c, stoi_c)
KIV_INTEGER_PARSER(long, strtol_c, stol_c)
KIV_INTEGER_PARSER(long long, strtoll_c, stoll_c)
KIV_INTEGER_PARSER(unsigned, strtoui_c, stoui_c)
KIV_INTEGER_PARSER(unsigned long, strtoul_c, stoul_c)
KIV_INTEGER_PARSER(unsigned long long, strtoull_c, stoull_c)

#undef KIV_INTEGER_PARSER

}  // namespace kiv
