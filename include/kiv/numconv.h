// kiv/numconv.h - numbers from text and to text, without regard to any locale.
//
//     double d = kiv::stod_c("6.02214076e23");                  // nearest, ties to even
//     std::string s = kiv::to_string_c(0.1 + 0.2);              // 0.30000000000000004
//
//     int port = 0;                                             // no exceptions
//     auto [end, error] = kiv::from_chars_c(p, p + n, port);
//     if (error != std::errc()) ...
//
//     kiv::CharIterator it("12 34");                            // one after the other
//     int sum = kiv::stoi_c(it) + kiv::stoi_c(it);
//
// Everything exists for char and char16 text, u"1.5"_usv for one. The decimal point is
// '.', always. In UTF-16 text the decimal digits of every script count as digits.
//
// The processor is taken to round to nearest, as it does unless told otherwise. All
// may be called from any thread. Parsing and formatting allocate nothing but strings
// that they return and errors that they throw.

#ifndef KIV_NUMCONV_H
#define KIV_NUMCONV_H

#include <charconv>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <system_error>
#include <tuple>

#include <kiv/big_uint.h>
#include <kiv/char16.h>
#include <kiv/export.h>
#include <kiv/kdecimal.h>
#include <kiv/string_ref.h>

namespace kiv {

// --- Parsing: three shapes -------------------------------------------------------
//
// strtoX_c(s, &end)   s ends with a zero; its length is not measured first. end may be
//                     null; it is set past the number, or to s if there is none, which
//                     gives 0. A value out of range sets errno to ERANGE and gives the
//                     nearest limit of the type or the infinity; errno is untouched
//                     otherwise.
// stoX_c(s, &idx)     s is a view; idx may be null. idx is set to the number of units
//                     read, white space included. std::invalid_argument without a
//                     number (idx untouched), std::out_of_range beyond the type (idx
//                     set past the number).
// stoX_c(it)          reads from a BasicCharIterator and moves it past the number;
//                     throws as above, idx being its position.
//
// A zero unit ends every text. What follows the number is not looked at.

// A cursor over text that someone else owns.
template <class CharT>
class BasicCharIterator {
public:
    using value_type = CharT;

    // What current() is at the end of the text: zero, U+FFFF.
    static constexpr CharT END = static_cast<CharT>(sizeof(CharT) == 1 ? 0 : 0xFFFF);

    constexpr explicit BasicCharIterator(basic_string_ref<CharT> text) noexcept
        : m_data(text.data()), m_size(text.size()), m_position(0), m_current(unit_at(0))
    {
    }

    constexpr const CharT* data() const noexcept { return m_data; }
    constexpr std::size_t size() const noexcept { return m_size; }
    constexpr std::size_t position() const noexcept { return m_position; }
    constexpr CharT current() const noexcept { return m_current; }
    constexpr bool at_end() const noexcept { return m_position == m_size; }
    // From the position on.
    constexpr basic_string_ref<CharT> rest() const
    {
        return basic_string_ref<CharT>(m_data, m_size).substr(m_position);
    }

    // Throws std::out_of_range if pos > size() and changes nothing.
    constexpr void position(std::size_t pos)
    {
        if (pos > m_size)
            throw std::out_of_range("BasicCharIterator<CharT>::position");
        m_position = pos;
        m_current = unit_at(pos);
    }

    constexpr CharT operator*() const noexcept { return m_current; }
    // Stays at the end.
    constexpr BasicCharIterator& operator++() noexcept
    {
        if (m_position != m_size)
            m_current = unit_at(++m_position);
        return *this;
    }

private:
    constexpr CharT unit_at(std::size_t pos) const noexcept
    {
        return pos == m_size ? END : m_data[pos];
    }

    const CharT* m_data;
    std::size_t m_size;
    std::size_t m_position;
    CharT m_current;
};

using CharIterator = BasicCharIterator<char>;
using UCharIterator = BasicCharIterator<char16>;

// --- Integers from text ----------------------------------------------------------
//
// White space (the six ASCII ones), for signed types '+' or '-', then digits: 0 to 9, a
// to z and A to Z, below the base. Base 16 skips "0x" or "0X" before a digit. Base 0
// takes "0x" before a digit as base 16, another leading 0 as base 8 and the rest as
// base 10. Bases are 2 to 36, which is not checked.

KIV_API int strtoi_c(const char* s, char** end = nullptr, int base = 10);
KIV_API int strtoi_c(const char16* s, char16** end = nullptr, int base = 10);
KIV_API int stoi_c(basic_string_ref<char> s, std::size_t* idx = nullptr, int base = 10);
KIV_API int stoi_c(basic_string_ref<char16> s, std::size_t* idx = nullptr, int base = 10);
KIV_API int stoi_c(BasicCharIterator<char>& it, int base = 10);
KIV_API int stoi_c(BasicCharIterator<char16>& it, int base = 10);

KIV_API long strtol_c(const char* s, char** end = nullptr, int base = 10);
KIV_API long strtol_c(const char16* s, char16** end = nullptr, int base = 10);
KIV_API long stol_c(basic_string_ref<char> s, std::size_t* idx = nullptr, int base = 10);
KIV_API long stol_c(basic_string_ref<char16> s, std::size_t* idx = nullptr,
                    int base = 10);
KIV_API long stol_c(BasicCharIterator<char>& it, int base = 10);
KIV_API long stol_c(BasicCharIterator<char16>& it, int base = 10);

KIV_API long long strtoll_c(const char* s, char** end = nullptr, int base = 10);
KIV_API long long strtoll_c(const char16* s, char16** end = nullptr, int base = 10);
KIV_API long long stoll_c(basic_string_ref<char> s, std::size_t* idx = nullptr,
                          int base = 10);
KIV_API long long stoll_c(basic_string_ref<char16> s, std::size_t* idx = nullptr,
                          int base = 10);
KIV_API long long stoll_c(BasicCharIterator<char>& it, int base = 10);
KIV_API long long stoll_c(BasicCharIterator<char16>& it, int base = 10);

KIV_API unsigned strtoui_c(const char* s, char** end = nullptr, int base = 10);
KIV_API unsigned strtoui_c(const char16* s, char16** end = nullptr, int base = 10);
KIV_API unsigned stoui_c(basic_string_ref<char> s, std::size_t* idx = nullptr,
                         int base = 10);
KIV_API unsigned stoui_c(basic_string_ref<char16> s, std::size_t* idx = nullptr,
                         int base = 10);
KIV_API unsigned stoui_c(BasicCharIterator<char>& it, int base = 10);
KIV_API unsigned stoui_c(BasicCharIterator<char16>& it, int base = 10);

KIV_API unsigned long strtoul_c(const char* s, char** end = nullptr, int base = 10);
KIV_API unsigned long strtoul_c(const char16* s, char16** end = nullptr, int base = 10);
KIV_API unsigned long stoul_c(basic_string_ref<char> s, std::size_t* idx = nullptr,
                              int base = 10);
KIV_API unsigned long stoul_c(basic_string_ref<char16> s, std::size_t* idx = nullptr,
                              int base = 10);
KIV_API unsigned long stoul_c(BasicCharIterator<char>& it, int base = 10);
KIV_API unsigned long stoul_c(BasicCharIterator<char16>& it, int base = 10);

KIV_API unsigned long long strtoull_c(const char* s, char** end = nullptr, int base = 10);
KIV_API unsigned long long strtoull_c(const char16* s, char16** end = nullptr,
                                      int base = 10);
KIV_API unsigned long long stoull_c(basic_string_ref<char> s, std::size_t* idx = nullptr,
                                    int base = 10);
KIV_API unsigned long long stoull_c(basic_string_ref<char16> s,
                                    std::size_t* idx = nullptr, int base = 10);
KIV_API unsigned long long stoull_c(BasicCharIterator<char>& it, int base = 10);
KIV_API unsigned long long stoull_c(BasicCharIterator<char16>& it, int base = 10);

// --- Floating-point values from text ---------------------------------------------
//
// White space (in UTF-16 text that of all scripts), a sign, and one of
//
//     digits with at most one '.', then perhaps e or E, a sign and digits
//     0x, hexadecimal digits with at most one '.', then perhaps p or P, a sign and
//         decimal digits: a power of two
//     inf, infinity or nan in any case, not followed by a letter, a digit or '_'; a
//         nan is positive
//
// The nearest value, ties to even, of up to 20 significant digits (14 hexadecimal
// ones). A longer decimal number is rounded to 20 digits and then to the type, unless its
// exponent, counted from the 20th digit, is 0; from_chars_c rounds any length once. An
// exponent of more than nine digits, zeros included, counts as infinite. What is too
// small becomes a subnormal number or zero, without an error. O(length).
//
// strtold_c and stold_c return a double's value, wider though the type may be.

KIV_API float strtof_c(const char* s, char** end = nullptr);
KIV_API float strtof_c(const char16* s, char16** end = nullptr);
KIV_API float stof_c(basic_string_ref<char> s, std::size_t* idx = nullptr);
KIV_API float stof_c(basic_string_ref<char16> s, std::size_t* idx = nullptr);
KIV_API float stof_c(BasicCharIterator<char>& it);
KIV_API float stof_c(BasicCharIterator<char16>& it);

KIV_API double strtod_c(const char* s, char** end = nullptr);
KIV_API double strtod_c(const char16* s, char16** end = nullptr);
KIV_API double stod_c(basic_string_ref<char> s, std::size_t* idx = nullptr);
KIV_API double stod_c(basic_string_ref<char16> s, std::size_t* idx = nullptr);
KIV_API double stod_c(BasicCharIterator<char>& it);
KIV_API double stod_c(BasicCharIterator<char16>& it);

KIV_API long double strtold_c(const char* s, char** end = nullptr);
KIV_API long double strtold_c(const char16* s, char16** end = nullptr);
KIV_API long double stold_c(basic_string_ref<char> s, std::size_t* idx = nullptr);
KIV_API long double stold_c(basic_string_ref<char16> s, std::size_t* idx = nullptr);
KIV_API long double stold_c(BasicCharIterator<char>& it);
KIV_API long double stold_c(BasicCharIterator<char16>& it);

// --- From text without exceptions ------------------------------------------------

// Why an error is std::errc::result_out_of_range.
enum class number_range : unsigned char {
    inside,
    above,  // or below the least value: too large in magnitude
    below,  // a number that is not zero rounds to zero
};

// As std::from_chars_result, so `auto [ptr, ec] = from_chars_c(...)` works.
template <class CharT>
struct from_chars_result {
    const CharT* ptr;  // past the number; first if there is none
    std::errc ec;      // none, invalid_argument or result_out_of_range
    number_range range;

    friend bool operator==(const from_chars_result&, const from_chars_result&) = default;

    template <std::size_t I>
    constexpr auto get() const noexcept
    {
        static_assert(I < 2);
        if constexpr (I == 0)
            return ptr;
        else
            return ec;
    }
};

// What may stand before the number besides a '-'.
enum class leading : unsigned {
    none = 0,
    plus = 1,         // a '+'
    white_space = 2,  // as the functions above skip it
};
constexpr leading operator|(leading a, leading b) noexcept
{
    return static_cast<leading>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool operator&(leading a, leading b) noexcept
{
    return (static_cast<unsigned>(a) & static_cast<unsigned>(b)) != 0;
}

// The same text as above in [first, last), prefixes of base 16 included, but without
// white space and '+' unless `allowed` says so, a '+' of an unsigned type then, too.
// They never throw and leave errno alone. Without a number, and where an integer is out
// of range, value is untouched.

KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             int& value, int base = 10,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               int& value, int base = 10,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             long& value, int base = 10,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               long& value, int base = 10,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             long long& value, int base = 10,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               long long& value, int base = 10,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             unsigned& value, int base = 10,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               unsigned& value, int base = 10,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             unsigned long& value, int base = 10,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               unsigned long& value, int base = 10,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             unsigned long long& value, int base = 10,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               unsigned long long& value, int base = 10,
                                               leading allowed = leading::none) noexcept;

// To the base 10: from_chars_c(p, p + n, port, leading::white_space).
template <class CharT, std::integral T>
from_chars_result<CharT> from_chars_c(const CharT* first, const CharT* last, T& value,
                                      leading allowed) noexcept
{
    return from_chars_c(first, last, value, 10, allowed);
}

// Correctly rounded at any length; an exponent may have any number of digits. Out of
// range, value becomes the infinity or the zero with the number's sign.

KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             float& value,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               float& value,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             double& value,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               double& value,
                                               leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char> from_chars_c(const char* first, const char* last,
                                             long double& value,
                                             leading allowed = leading::none) noexcept;
KIV_API from_chars_result<char16> from_chars_c(const char16* first, const char16* last,
                                               long double& value,
                                               leading allowed = leading::none) noexcept;

// --- To text ---------------------------------------------------------------------
//
// Floating-point values: the fewest digits, at least two, that read back to the same
// value, and of those the nearest to it; from 0.001 to below 10^7 as 0.001, 1.0,
// 123456.75, beyond as 1.0E7, 4.9E-324. Also 0.0, -0.0, Infinity, -Infinity, and NaN
// without a sign. A long double is written as the double that it rounds to.

struct binary16;

KIV_API std::string to_string_c(int value);
KIV_API std::string to_string_c(long value);
KIV_API std::string to_string_c(long long value);
KIV_API std::string to_string_c(unsigned value);
KIV_API std::string to_string_c(unsigned long value);
KIV_API std::string to_string_c(unsigned long long value);
KIV_API std::string to_string_c(float value);
KIV_API std::string to_string_c(double value);
KIV_API std::string to_string_c(long double value);
KIV_API std::string to_string_c(binary16 value);

KIV_API ustring to_ustring_c(int value);
KIV_API ustring to_ustring_c(long value);
KIV_API ustring to_ustring_c(long long value);
KIV_API ustring to_ustring_c(unsigned value);
KIV_API ustring to_ustring_c(unsigned long value);
KIV_API ustring to_ustring_c(unsigned long long value);
KIV_API ustring to_ustring_c(float value);
KIV_API ustring to_ustring_c(double value);
KIV_API ustring to_ustring_c(long double value);
KIV_API ustring to_ustring_c(binary16 value);

// As std::to_chars_result.
template <class CharT>
struct to_chars_result {
    CharT* ptr;    // past the text; last if there is no room
    std::errc ec;  // none, value_too_large, or invalid_argument as said below

    friend bool operator==(const to_chars_result&, const to_chars_result&) = default;
};

// The same text in [first, last), without a terminator. Units from ptr to last, up to
// 27 from first on, have unspecified values afterwards, without an error too. Bases are 2
// to 36 with small letters; for another ec is invalid_argument and ptr is first.

KIV_API to_chars_result<char> to_chars_c(char* first, char* last, int value,
                                         int base = 10) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, int value,
                                           int base = 10) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, long value,
                                         int base = 10) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, long value,
                                           int base = 10) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, long long value,
                                         int base = 10) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, long long value,
                                           int base = 10) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, unsigned value,
                                         int base = 10) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, unsigned value,
                                           int base = 10) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, unsigned long value,
                                         int base = 10) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                           unsigned long value, int base = 10) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last,
                                         unsigned long long value,
                                         int base = 10) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                           unsigned long long value,
                                           int base = 10) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, float value) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                           float value) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, double value) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                           double value) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last,
                                         long double value) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                           long double value) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last,
                                         binary16 value) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                           binary16 value) noexcept;

// The exact value with `precision` digits behind the point, rounded to nearest, ties
// to even: with std::chars_format::fixed 1234.50, with scientific 1.23E3; no point
// without digits behind it. A negative precision is 6. For other formats ec is
// invalid_argument and ptr is first.

KIV_API to_chars_result<char> to_chars_c(char* first, char* last, float value,
                                         std::chars_format format,
                                         int precision) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, float value,
                                           std::chars_format format,
                                           int precision) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, double value,
                                         std::chars_format format,
                                         int precision) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, double value,
                                           std::chars_format format,
                                           int precision) noexcept;
KIV_API to_chars_result<char> to_chars_c(char* first, char* last, long double value,
                                         std::chars_format format,
                                         int precision) noexcept;
KIV_API to_chars_result<char16> to_chars_c(char16* first, char16* last, long double value,
                                           std::chars_format format,
                                           int precision) noexcept;

// --- Half precision --------------------------------------------------------------

// An IEEE 754 binary16 value. Compares as a number: zeros are equal, a NaN is
// unordered.
struct binary16 {
    std::uint16_t bits;

    friend constexpr bool operator==(binary16 a, binary16 b) noexcept
    {
        return (a <=> b) == 0;
    }
    friend constexpr std::partial_ordering operator<=>(binary16 a, binary16 b) noexcept
    {
        constexpr int INFINITE = 0x7C00;
        const int x = a.bits & 0x7FFF;
        const int y = b.bits & 0x7FFF;
        if (x > INFINITE || y > INFINITE)
            return std::partial_ordering::unordered;
        return (a.bits >> 15 != 0 ? -x : x) <=> (b.bits >> 15 != 0 ? -y : y);
    }
};

// To the nearest, ties to even; a NaN becomes the positive quiet 0x7E00.
KIV_API binary16 _float_to_binary16(float value) noexcept;
KIV_API binary16 _double_to_binary16(double value) noexcept;
// Exact; a NaN keeps its sign and payload.
KIV_API float _binary16_to_float(binary16 value) noexcept;
KIV_API double _binary16_to_double(binary16 value) noexcept;

// --- Classification --------------------------------------------------------------
//
// By the bits, without the floating-point environment, each type by its own format.

KIV_API bool is_finite(binary16 value) noexcept;  // neither infinite nor NaN
KIV_API bool is_finite(float value) noexcept;
KIV_API bool is_finite(double value) noexcept;
KIV_API bool is_finite(long double value) noexcept;

KIV_API bool is_inf(binary16 value) noexcept;
KIV_API bool is_inf(float value) noexcept;
KIV_API bool is_inf(double value) noexcept;
KIV_API bool is_inf(long double value) noexcept;

KIV_API bool is_nan(binary16 value) noexcept;
KIV_API bool is_nan(float value) noexcept;
KIV_API bool is_nan(double value) noexcept;
KIV_API bool is_nan(long double value) noexcept;

KIV_API bool is_normal(binary16 value) noexcept;  // not zero, subnormal, infinite or NaN
KIV_API bool is_normal(float value) noexcept;
KIV_API bool is_normal(double value) noexcept;
KIV_API bool is_normal(long double value) noexcept;

KIV_API bool is_zero(binary16 value) noexcept;  // of either sign
KIV_API bool is_zero(float value) noexcept;
KIV_API bool is_zero(double value) noexcept;
KIV_API bool is_zero(long double value) noexcept;

KIV_API bool sign_bit(binary16 value) noexcept;  // also of zeros and NaNs
KIV_API bool sign_bit(float value) noexcept;
KIV_API bool sign_bit(double value) noexcept;
KIV_API bool sign_bit(long double value) noexcept;

// Integers are finite, and normal unless they are 0.
template <std::integral T>
constexpr bool is_finite(T) noexcept
{
    return true;
}
template <std::integral T>
constexpr bool is_inf(T) noexcept
{
    return false;
}
template <std::integral T>
constexpr bool is_nan(T) noexcept
{
    return false;
}
template <std::integral T>
constexpr bool is_normal(T value) noexcept
{
    return value != 0;
}
template <std::integral T>
constexpr bool is_zero(T value) noexcept
{
    return value == 0;
}
template <std::integral T>
constexpr bool sign_bit(T value) noexcept
{
    return value < 0;
}

// --- Assembly --------------------------------------------------------------------
//
//     double tenth = kiv::make_double(false, -1, 1u);           // 0.1
//     double least = kiv::pack_double(false, -1074, 1u);        // smallest subnormal
//     auto price = kiv::pack_decimal64(true, -2, 1999u);        // -19.99
//
// Every result is the value of its type that is nearest to the exact one, ties to
// even, for every coefficient and exponent. What is too large becomes an infinity,
// what is too small a subnormal number or zero; a zero coefficient gives zero
// whatever the exponent. The sign is kept in each of these cases. Long coefficients and
// products may allocate, and throw std::bad_alloc but nothing else.

// (-1)^negative * coefficient * 10^exponent. Without long arithmetic for a coefficient
// below 2^53 (2^24 for float) and an exponent from -22 to 22 (-10 to 10).

KIV_API float make_float(bool negative, int exponent, const big_uint& coefficient);
KIV_API double make_double(bool negative, int exponent, const big_uint& coefficient);
// A double in every case, wider though the type may be.
KIV_API long double make_long_double(bool negative, int exponent,
                                     const big_uint& coefficient);

// The exponent stays as it is while the coefficient fits in 7, 16 or 34 digits and
// the exponent in the type's range, so 10 * 10^0 and 1 * 10^1 differ in their bits.
KIV_API decimal::decimal32 pack_decimal32(bool negative, int exponent,
                                          const big_uint& coefficient);
KIV_API decimal::decimal64 pack_decimal64(bool negative, int exponent,
                                          const big_uint& coefficient);
KIV_API decimal::decimal128 pack_decimal128(bool negative, int exponent,
                                            const big_uint& coefficient);

// (-1)^negative * coefficient * 2^exponent.

KIV_API float pack_float(bool negative, int exponent, const big_uint& coefficient);
KIV_API double pack_double(bool negative, int exponent, const big_uint& coefficient);
// A double in every case.
KIV_API long double pack_long_double(bool negative, int exponent,
                                     const big_uint& coefficient);

}  // namespace kiv

template <class CharT>
struct std::tuple_size<kiv::from_chars_result<CharT>>
    : std::integral_constant<std::size_t, 2> {
};
template <std::size_t I, class CharT>
struct std::tuple_element<I, kiv::from_chars_result<CharT>> {
    using type =
        decltype(std::declval<const kiv::from_chars_result<CharT>&>().template get<I>());
};

#endif
