// Floating-point values in the fewest digits.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <system_error>
#include <type_traits>

#include <kiv/numconv.h>

#include "numconv/binary_format.h"
#include "numconv/layout.h"
#include "numconv/shortest.h"

namespace kiv {

namespace {

using numconv::BinaryFormat;
using numconv::BinaryValue;
using numconv::EightDigits;
using numconv::ScaledValue;
using numconv::SixteenDigits;
using numconv::SplitDecimal;

template <class Float>
using Digits = std::conditional_t<sizeof(Float) == 8, SixteenDigits, EightDigits>;

// The longest text and all that is written on the way to it.
template <class Float>
constexpr std::ptrdiff_t ROOM = 1 + numconv::LAYOUT_ROOM<Digits<Float>>;

// --- Fast: most values --------------------------------------------------------------

// Writes up to ROOM<Float> units. Null if the value needs care.
template <class Float, class CharT>
inline CharT* write_fast(CharT* to, Float value) noexcept
{
    using Format = BinaryFormat<Float>;
    using Bits = typename Format::Bits;
    constexpr int STORED_BITS = Format::PRECISION - 1;
    constexpr Bits LEAST_NORMAL = Bits{1} << STORED_BITS;
    constexpr int BIAS = Format::MAX_EXPONENT;

    const Bits bits = std::bit_cast<Bits>(value);
    const Bits fraction = bits & (LEAST_NORMAL - 1);
    const std::uint64_t significand = fraction | LEAST_NORMAL;
    const auto biased = static_cast<int>((bits & ~Format::SIGN) >> STORED_BITS);
    *to = words::as_character('-', CharT());
    to += bits >> (sizeof bits * 8 - 1);

    // Integers of up to seven digits.
    constexpr int SEVEN_DIGITS = 23;  // bits
    if (const int exponent = biased - BIAS;
        static_cast<unsigned>(exponent) < SEVEN_DIGITS &&
        significand << (64 - STORED_BITS + exponent) == 0) {
        to = words::write_up_to_eight(
            to, static_cast<std::uint32_t>(significand >> (STORED_BITS - exponent)));
        to[0] = words::as_character('.', CharT());
        to[1] = words::as_character('0', CharT());
        return to + 2;
    }

    if (static_cast<unsigned>(biased - 1) >= 2 * BIAS || fraction == 0) [[unlikely]]
        return biased == 0 && fraction == 0 ? numconv::write_ascii(to, "0.0") : nullptr;
    const ScaledValue<Float> scaled({significand, biased - BIAS - STORED_BITS});
    const auto lay_out = [to](const SplitDecimal& decimal) {
        if constexpr (sizeof(Float) == 8)  // 15 or 16 digits and one, padded in any case
            return numconv::lay_out<Digits<Float>>(to, decimal);
        else
            return numconv::lay_out<Digits<Float>>(
                to, numconv::padded<Digits<Float>>(decimal));
    };
    if (scaled.has_integer())
        return lay_out(scaled.integer());
    SplitDecimal decimal;
    if (scaled.has_no_integer() && scaled.tenths(decimal)) [[likely]]
        return lay_out(decimal);
    return nullptr;
}

// --- With care: the others ------------------------------------------------------------

template <class CharT>
CharT* write_special(CharT* to, bool negative, bool zero, bool infinite) noexcept
{
    if (negative && (zero || infinite))
        *to++ = words::as_character('-', CharT());
    return numconv::write_ascii(to, zero       ? "0.0"
                                    : infinite ? numconv::INFINITY_TEXT
                                               : numconv::NAN_TEXT);
}

template <class Float>
SplitDecimal careful_digits(Float value) noexcept
{
    const BinaryValue binary = numconv::binary_value(value);
    // Without two digits in front of it the last one is not optional.
    if (binary.significand >= 100) {
        // Below a power of two the interval ends after half the distance. The same is
        // asked above: the rest of that interval is not worth a case of its own.
        const bool is_power = std::has_single_bit(binary.significand);
        const ScaledValue<Float> scaled(binary, is_power);
        if (scaled.has_integer())
            return scaled.integer();
        SplitDecimal decimal;
        if (!is_power && scaled.has_no_integer() && scaled.tenths(decimal))
            return decimal;
    }
    return split(numconv::exact_digits(binary, numconv::SHAPE_OF<Float>,
                                       numconv::DIGITS_OF<Float>));
}

SplitDecimal careful_digits(binary16 value) noexcept
{
    return split(numconv::exact_digits(
        numconv::binary_value(value), numconv::BINARY16_SHAPE, numconv::BINARY16_DIGITS));
}

template <class Float, class CharT>
[[gnu::noinline]] CharT* write_carefully(CharT* to, Float value) noexcept
{
    if (is_zero(value) || !is_finite(value))
        return write_special(to, sign_bit(value), is_zero(value), is_inf(value));
    *to = words::as_character('-', CharT());
    to += sign_bit(value);
    const SplitDecimal decimal = careful_digits(value);
    return numconv::lay_out<Digits<Float>>(to, numconv::padded<Digits<Float>>(decimal));
}

// --- Into strings and buffers --------------------------------------------------------

template <class Float, class CharT>
CharT* write(CharT* to, Float value) noexcept
{
    CharT* const end = write_fast(to, value);
    return end != nullptr ? end : write_carefully(to, value);
}

template <class CharT>
CharT* write(CharT* to, binary16 value) noexcept
{
    return write_carefully(to, value);
}

template <class String, class Float>
inline String to_text(Float value)
{
    typename String::value_type text[ROOM<Float>];
    return String(text, static_cast<std::size_t>(write(text, value) - text));
}

// Where the room may not suffice or the value needs care.
template <class CharT, class Float>
[[gnu::noinline]] to_chars_result<CharT> to_chars_carefully(CharT* first, CharT* last,
                                                            Float value) noexcept
{
    CharT text[ROOM<Float>];
    CharT* const end = write(text, value);
    if (end - text > last - first)
        return {last, std::errc::value_too_large};
    return {std::copy(text, end, first), std::errc()};
}

}  // namespace

// The result of to_chars_carefully is returned by these functions themselves: g++ takes
// the result of an inlined one apart and puts it together again.
#define KIV_FORMAT_FLOAT(TYPE)                                                           \
    std::string to_string_c(TYPE value)                                                  \
    {                                                                                    \
        return to_text<std::string>(value);                                              \
    }                                                                                    \
    ustring to_ustring_c(TYPE value)                                                     \
    {                                                                                    \
        return to_text<ustring>(value);                                                  \
    }                                                                                    \
    to_chars_result<char> to_chars_c(char* first, char* last, TYPE value) noexcept       \
    {                                                                                    \
        if (last - first >= ROOM<TYPE>) [[likely]]                                       \
            if (char* const end = write_fast(first, value)) [[likely]]                   \
                return {end, std::errc()};                                               \
        return to_chars_carefully(first, last, value);                                   \
    }                                                                                    \
    to_chars_result<char16> to_chars_c(char16* first, char16* last, TYPE value) noexcept \
    {                                                                                    \
        if (last - first >= ROOM<TYPE>) [[likely]]                                       \
            if (char16* const end = write_fast(first, value)) [[likely]]                 \
                return {end, std::errc()};                                               \
        return to_chars_carefully(first, last, value);                                   \
    }

KIV_FORMAT_FLOAT(float)
KIV_FORMAT_FLOAT(double)

#undef KIV_FORMAT_FLOAT

std::string to_string_c(long double value)
{
    return to_string_c(static_cast<double>(value));
}

std::string to_string_c(binary16 value)
{
    return to_text<std::string>(value);
}

ustring to_ustring_c(long double value)
{
    return to_ustring_c(static_cast<double>(value));
}

ustring to_ustring_c(binary16 value)
{
    return to_text<ustring>(value);
}

to_chars_result<char> to_chars_c(char* first, char* last, long double value) noexcept
{
    return to_chars_c(first, last, static_cast<double>(value));
}

to_chars_result<char16> to_chars_c(char16* first, char16* last,
                                   long double value) noexcept
{
    return to_chars_c(first, last, static_cast<double>(value));
}

to_chars_result<char> to_chars_c(char* first, char* last, binary16 value) noexcept
{
    return to_chars_carefully(first, last, value);
}

to_chars_result<char16> to_chars_c(char16* first, char16* last, binary16 value) noexcept
{
    return to_chars_carefully(first, last, value);
}

}  // namespace kiv
