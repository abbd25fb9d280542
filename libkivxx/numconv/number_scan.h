// numconv/number_scan.h - floating-point text taken apart: sign, kind, coefficient,
// exponent, and what is known of the digits that were not kept.

#ifndef KIV_NUMCONV_NUMBER_SCAN_H
#define KIV_NUMCONV_NUMBER_SCAN_H

#include <algorithm>
#include <climits>
#include <cstdint>
#include <utility>

#include "bigint/words.h"
#include "char/companion.h"
#include "numconv/inline.h"
#include "numconv/scaling.h"
#include "numconv/text_source.h"

namespace kiv::numconv {

// Coefficients of up to 34 decimal digits, which 128 bits hold.
struct ScanLimits {
    unsigned decimal_digits;
    unsigned hexadecimal_digits;  // 0: "0x" is no prefix
    bool any_exponent_length;     // otherwise more than nine digits are infinite
};

enum class ScanKind {
    decimal,
    hexadecimal,
    infinity,
    nan,
    // Failures
    no_digits,
    bad_infinity,
    bad_nan,
};

constexpr bool is_failure(ScanKind kind) noexcept
{
    return kind == ScanKind::no_digits || kind == ScanKind::bad_infinity ||
           kind == ScanKind::bad_nan;
}

// For the failures.
constexpr const char* what_is_missing(ScanKind kind) noexcept
{
    return kind == ScanKind::bad_infinity ? "'infinity' expected"
           : kind == ScanKind::bad_nan    ? "'nan' expected"
                                          : "decimal digit expected";
}

template <class CharT>
struct NumberScan {
    ScanKind kind;
    bool negative;
    unsigned dropped;         // as big_uint::compute_rounding_info()
    words::Wide coefficient;  // the digits kept
    std::int64_t exponent;    // of ten, or of two; INT_MAX and INT_MIN if infinite
    const CharT* digits;      // the first significant one, where there is one
    const CharT* digits_end;  // the mantissa's end
};

constexpr unsigned NO_DIGIT = 255;

// 0 to 35 for ASCII digits and letters.
constexpr unsigned digit_value(unsigned unit) noexcept
{
    if (unit - '0' < 10)
        return unit - '0';
    const unsigned letter = (unit | 0x20) - 'a';
    return letter < 26 ? letter + 10 : NO_DIGIT;
}

// As the classic locales fold.
template <class Text>
unsigned peek_lower(const Text& text) noexcept
{
    const unsigned unit = text.peek();
    if (unit - 'A' < 26)
        return unit | 0x20;
    if (sizeof(typename Text::value_type) == 1 || unit < 0x80)
        return unit;
    return static_cast<unsigned>(kivUniCharToLower(static_cast<std::int32_t>(unit))) &
           0xFFFF;
}

// Letters and digits, as the classic locales class them, and '_'.
template <class Text>
bool continues_word(const Text& text) noexcept
{
    const unsigned unit = text.peek();
    if (unit < 0x80)
        return digit_value(unit) != NO_DIGIT || unit == '_';
    if constexpr (sizeof(typename Text::value_type) == 1)
        return false;
    constexpr unsigned ALNUM = tables::MASK_UPPER | tables::MASK_LOWER |
                               tables::MASK_OTHER_ALPHA | tables::MASK_DIGIT;
    return (tables::classification_mask(static_cast<std::uint16_t>(unit)) & ALNUM) != 0;
}

// Takes the whole word, or just its first `shortest` letters.
template <class Text>
bool take_word(Text& text, const char* word, unsigned shortest) noexcept
{
    unsigned n = 0;
    for (; word[n] != 0 && peek_lower(text) == unit_value(word[n]); ++n)
        text.skip();
    return (word[n] == 0 || n == shortest) && !continues_word(text);
}

// What the first digit that is not kept tells, if only zeros follow.
template <unsigned RADIX>
constexpr unsigned rounding_of_digit(unsigned digit) noexcept
{
    constexpr unsigned MIDDLE = RADIX / 2;
    return digit > MIDDLE    ? ABOVE_HALF
           : digit == MIDDLE ? HALF
           : digit != 0      ? BELOW_HALF
                             : 0;
}

// Takes the digits of a mantissa. Inlined, it lives in registers.
template <unsigned RADIX, class CharT>
class MantissaScan {
public:
    explicit MantissaScan(unsigned limit) noexcept : m_limit(limit) {}

    KIV_INLINE void take(unsigned digit, const CharT* at) noexcept
    {
        m_any = true;
        m_fraction += m_point;
        if (m_significant == 0) {
            if (digit == 0)
                return;
            m_digits = at;
        }
        if (++m_significant <= std::min(m_limit, IN_64_BITS)) {
            m_coefficient.low = m_coefficient.low * RADIX + digit;
        } else if (m_significant <= m_limit) {
            const words::Wide low = words::multiply_add(m_coefficient.low, RADIX, digit);
            m_coefficient = {m_coefficient.high * RADIX + low.high, low.low};
        } else if (m_significant == m_limit + std::uint64_t{1}) {
            m_dropped = rounding_of_digit<RADIX>(digit);
        } else {
            m_dropped |= unsigned{digit != 0};
        }
    }

    // Eight decimal digits, if they are all kept, in 64 bits, or all dropped.
    KIV_INLINE bool take_eight(std::uint64_t digits) noexcept
    {
        if (m_significant != 0 && m_significant + 8 <= std::min(m_limit, IN_64_BITS))
            m_coefficient.low = m_coefficient.low * 100'000'000 + eight_digits(digits);
        else if (m_significant > m_limit)
            m_dropped |= unsigned{digits != 0};
        else
            return false;
        m_significant += 8;
        m_fraction += m_point ? 8 : 0;
        return true;
    }

    bool take_point() noexcept { return !std::exchange(m_point, true); }

    // Whether there is a digit.
    bool finish(const CharT* end, NumberScan<CharT>& scan) const noexcept
    {
        const std::uint64_t beyond =
            m_significant > m_limit ? m_significant - m_limit : 0;
        scan.exponent = static_cast<std::int64_t>(beyond) - m_fraction;
        scan.coefficient = m_coefficient;
        scan.dropped = m_dropped;
        scan.digits = m_digits;
        scan.digits_end = end;
        return m_any;
    }

private:
    static constexpr unsigned IN_64_BITS = RADIX == 10 ? 19 : 16;

    unsigned m_limit;  // of the digits kept
    unsigned m_dropped = 0;
    words::Wide m_coefficient{};
    std::uint64_t m_significant = 0;
    std::int64_t m_fraction = 0;  // digits behind the point
    const CharT* m_digits = nullptr;
    bool m_any = false;
    bool m_point = false;
};

// Digits with at most one '.'; whether there is a digit.
template <unsigned RADIX, class Text, class CharT = typename Text::value_type>
bool scan_mantissa(Text& text_position, unsigned limit, NumberScan<CharT>& scan) noexcept
{
    Text text = text_position;
    MantissaScan<RADIX, CharT> mantissa(limit);
    for (;; text.skip()) {
        unsigned digit = text.peek() - '0';
        if (digit < 10) [[likely]] {
            if constexpr (RADIX == 10 && Text::IS_BOUNDED) {
                if (text.left() >= 8) {
                    const std::uint64_t digits = load_eight(text.at()) ^ EIGHT_ZEROS;
                    if (are_eight_digits(digits) && mantissa.take_eight(digits)) {
                        text.skip(7);
                        continue;
                    }
                }
            }
            mantissa.take(digit, text.at());
            continue;
        }
        digit = digit_value(peek_narrow(text));
        if (digit < RADIX) {
            mantissa.take(digit, text.at());
        } else if (text.peek() != '.' || !mantissa.take_point()) {
            text_position = text;
            return mantissa.finish(text.at(), scan);
        }
    }
}

// An exponent part, if there is one with a digit: adds it to the exponent.
template <class Text, class CharT = typename Text::value_type>
void scan_exponent(Text& text, unsigned letter, bool any_length,
                   NumberScan<CharT>& scan) noexcept
{
    const CharT* const start = text.at();
    if ((text.peek() | 0x20) != letter)
        return;
    text.skip();
    const bool negative = text.peek() == '-';
    if (negative || text.peek() == '+')
        text.skip();

    constexpr std::int64_t ENOUGH = INT64_MAX / 100;
    std::int64_t value = 0;
    unsigned count = 0;
    for (unsigned digit = peek_narrow(text) - '0'; digit < 10;
         digit = peek_narrow(text) - '0') {
        if (value < ENOUGH)
            value = value * 10 + digit;
        count += count < 10;
        text.skip();
    }
    if (count == 0)
        text.at(start);
    else if (count > 9 && !any_length)
        scan.exponent = negative ? INT_MIN : INT_MAX;
    else
        scan.exponent += negative ? -value : value;
}

// From the sign on. Leaves the text past the number, or anywhere if there is none.
template <class Text, class CharT = typename Text::value_type>
NumberScan<CharT> scan_number(Text& text, const ScanLimits& limits,
                              bool plus_allowed = true) noexcept
{
    NumberScan<CharT> scan{};
    scan.negative = text.peek() == '-';
    if (scan.negative || (plus_allowed && text.peek() == '+'))
        text.skip();

    const unsigned first = text.peek() | 0x20;
    if (first == 'i') {
        scan.kind =
            take_word(text, "infinity", 3) ? ScanKind::infinity : ScanKind::bad_infinity;
        return scan;
    }
    if (first == 'n') {
        scan.kind = take_word(text, "nan", 3) ? ScanKind::nan : ScanKind::bad_nan;
        return scan;
    }

    if (limits.hexadecimal_digits != 0 && peek_narrow(text) == '0' &&
        (text.peek(1) | 0x20) == 'x') {
        text.skip(2);
        scan.kind = ScanKind::hexadecimal;
        if (!scan_mantissa<16>(text, limits.hexadecimal_digits, scan)) {
            scan.kind = ScanKind::no_digits;
            return scan;
        }
        scan.exponent *= 4;
        scan_exponent(text, 'p', limits.any_exponent_length, scan);
        return scan;
    }
    scan.kind = ScanKind::decimal;
    if (!scan_mantissa<10>(text, limits.decimal_digits, scan)) {
        scan.kind = ScanKind::no_digits;
        return scan;
    }
    scan_exponent(text, 'e', limits.any_exponent_length, scan);
    return scan;
}

}  // namespace kiv::numconv

#endif
