// Floating-point values with a given number of digits behind the point.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

#include <kiv/numconv.h>

#include "bigint/digit_text.h"
#include "numconv/exact_chunks.h"
#include "numconv/layout.h"

namespace kiv {

namespace {

using numconv::ExactChunks;
using words::Limb;

constexpr std::ptrdiff_t CHUNK_DIGITS = words::CHUNK_DIGITS;

// Writes the last n digits.
template <class CharT>
void write_last(CharT* to, Limb chunk, std::ptrdiff_t n) noexcept
{
    CharT digits[CHUNK_DIGITS];
    words::write_chunk(digits, chunk);
    std::copy_n(digits + CHUNK_DIGITS - n, n, to);
}

template <class CharT>
class PreciseFormatter {
public:
    PreciseFormatter(numconv::BinaryValue value, bool scientific, int precision) noexcept
        : m_chunks(value), m_scientific(scientific), m_precision(precision)
    {
    }

    to_chars_result<CharT> write(CharT* to, CharT* last) noexcept;

private:
    void find_first_digit() noexcept;
    bool write_digits(CharT* to, std::ptrdiff_t count) noexcept;
    static bool round_up(CharT* first, CharT* last) noexcept;

    ExactChunks m_chunks;
    bool m_scientific;
    std::ptrdiff_t m_precision;
    Limb m_chunk;  // with the first digit
    std::ptrdiff_t m_chunk_digits;
    std::ptrdiff_t m_exponent;  // of the first digit
};

// In fixed form that is the 0 before the point if there is nothing else.
template <class CharT>
void PreciseFormatter<CharT>::find_first_digit() noexcept
{
    std::ptrdiff_t end = m_chunks.integer_chunks() * CHUNK_DIGITS;
    do {
        m_chunk = m_chunks.next();
        end -= CHUNK_DIGITS;
    } while (m_chunk == 0 && m_scientific && m_chunks.has_more());
    if (m_chunk == 0 && end < 0)
        end = 0;
    m_chunk_digits = words::count_digits(m_chunk);
    m_exponent = end + m_chunk_digits - 1;
}

// Writes `count` digits from the first one on, cut off. Whether they are to be rounded
// up.
template <class CharT>
bool PreciseFormatter<CharT>::write_digits(CharT* to, std::ptrdiff_t count) noexcept
{
    Limb chunk = m_chunk;
    std::ptrdiff_t digits = m_chunk_digits;
    while (count > digits) {
        write_last(to, chunk, digits);
        to += digits;
        count -= digits;
        if (!m_chunks.has_more()) {
            std::fill_n(to, count, words::as_character('0', CharT()));
            return false;
        }
        chunk = m_chunks.next();
        digits = CHUNK_DIGITS;
    }
    const Limb unit = big_uint::pow10_table[digits - count];
    const Limb kept = chunk / unit;
    Limb rest = chunk % unit;
    Limb half = unit / 2;
    write_last(to, kept, count);
    if (count == digits) {
        rest = m_chunks.next();
        half = words::CHUNK / 2;
    }
    return rest > half || (rest == half && (kept % 2 != 0 || m_chunks.has_more()));
}

// Adds 1 to the last digit. Whether there were only nines, which become zeros.
template <class CharT>
bool PreciseFormatter<CharT>::round_up(CharT* first, CharT* last) noexcept
{
    const CharT nine = words::as_character('9', CharT());
    while (last != first && last[-1] == nine)
        *--last = words::as_character('0', CharT());
    if (last == first)
        return true;
    const auto digit = static_cast<char>(static_cast<char16_t>(last[-1]));
    last[-1] = words::as_character(static_cast<char>(digit + 1), CharT());
    return false;
}

template <class CharT>
to_chars_result<CharT> PreciseFormatter<CharT>::write(CharT* to, CharT* last) noexcept
{
    const to_chars_result<CharT> too_large = {last, std::errc::value_too_large};

    find_first_digit();
    std::ptrdiff_t before_point = m_scientific ? 1 : m_exponent + 1;
    std::ptrdiff_t count = before_point + m_precision;
    const bool has_point = m_precision != 0;
    if (count + has_point > last - to)
        return too_large;
    // The point comes last, when all carries are done.
    CharT* const digits = to + has_point;
    if (write_digits(digits, count) && round_up(digits, digits + count)) {
        *digits = words::as_character('1', CharT());
        ++m_exponent;
        if (!m_scientific) {
            if (digits + count == last)
                return too_large;
            digits[count++] = words::as_character('0', CharT());
            ++before_point;
        }
    }
    if (has_point) {
        std::copy_n(digits, before_point, to);
        to[before_point] = words::as_character('.', CharT());
    }
    to = digits + count;
    if (!m_scientific)
        return {to, std::errc()};

    CharT text[8];
    const CharT* const end = numconv::write_exponent(text, m_exponent);
    if (end - text > last - to)
        return too_large;
    return {std::copy<const CharT*>(text, end, to), std::errc()};
}

template <class CharT>
to_chars_result<CharT> to_chars_precise(CharT* first, CharT* last, double value,
                                        std::chars_format format, int precision) noexcept
{
    const bool scientific = format == std::chars_format::scientific;
    if (!scientific && format != std::chars_format::fixed)
        return {first, std::errc::invalid_argument};
    if (!is_finite(value))  // has no such forms
        return to_chars_c(first, last, value);
    if (sign_bit(value)) {
        if (first == last)
            return {last, std::errc::value_too_large};
        *first++ = words::as_character('-', CharT());
    }
    constexpr int DEFAULT_PRECISION = 6;
    return PreciseFormatter<CharT>(numconv::binary_value(value), scientific,
                                   precision < 0 ? DEFAULT_PRECISION : precision)
        .write(first, last);
}

}  // namespace

#define KIV_FORMAT_PRECISE(TYPE)                                                         \
    to_chars_result<char> to_chars_c(char* first, char* last, TYPE value,                \
                                     std::chars_format format, int precision) noexcept   \
    {                                                                                    \
        return to_chars_precise(first, last, static_cast<double>(value), format,         \
                                precision);                                              \
    }                                                                                    \
    to_chars_result<char16> to_chars_c(char16* first, char16* last, TYPE value,          \
                                       std::chars_format format, int precision) noexcept \
    {                                                                                    \
        return to_chars_precise(first, last, static_cast<double>(value), format,         \
                                precision);                                              \
    }

KIV_FORMAT_PRECISE(float)
KIV_FORMAT_PRECISE(double)
KIV_FORMAT_PRECISE(long double)

#undef KIV_FORMAT_PRECISE

}  // namespace kiv
