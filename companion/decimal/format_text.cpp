// The text of a value, as printf would write it.

#include <climits>

#include "companion/decimal/entry.h"

namespace kiv::companion {
namespace {

// Counts everything and keeps what there is room for.
class Output {
public:
    Output(char* buffer, int size) noexcept : m_buffer(buffer), m_size(size) {}

    void put(char c, std::int64_t times = 1) noexcept
    {
        for (std::int64_t i = m_length; i < std::min(m_length + times, room()); ++i)
            m_buffer[i] = c;
        m_length += times;
    }
    void put(const char* text, bool capitals) noexcept
    {
        for (; *text != 0; ++text)
            put(capitals ? static_cast<char>(*text - 'a' + 'A') : *text);
    }
    int end() noexcept
    {
        if (m_size > 0)
            m_buffer[std::min(m_length, room())] = 0;
        return static_cast<int>(std::min<std::int64_t>(m_length, INT_MAX));
    }

private:
    std::int64_t room() const noexcept { return m_size - 1; }

    char* m_buffer;
    int m_size;
    std::int64_t m_length = 0;
};

// The digits of a finite value, without leading zeros but for zero itself.
class DigitText {
public:
    DigitText(uint128 coefficient, int last) noexcept : m_last(last)
    {
        char reversed[PowersOfTen<uint128>::MAX + 1];
        constexpr int HALF = 19;
        auto rest = low_word(coefficient % pow10<uint128>(HALF));
        const auto high = low_word(coefficient / pow10<uint128>(HALF));
        for (; rest != 0 || (high != 0 && m_count < HALF); rest /= 10)
            reversed[m_count++] = static_cast<char>('0' + rest % 10);
        for (rest = high; rest != 0; rest /= 10)
            reversed[m_count++] = static_cast<char>('0' + rest % 10);
        if (m_count == 0)
            reversed[m_count++] = '0';
        std::reverse_copy(reversed, reversed + m_count, m_digits);
    }

    int count() const noexcept { return m_count; }
    int last() const noexcept { return m_last; }  // exponent of the last digit
    int first() const noexcept { return m_last + m_count - 1; }
    bool is_zero() const noexcept { return m_digits[0] == '0'; }
    char digit(std::int64_t exponent) const noexcept
    {
        return exponent < m_last || exponent > first() ? '0'
                                                       : m_digits[first() - exponent];
    }

    // Only the first `kept` digits, which may be none: to nearest, ties to even.
    void round(std::int64_t kept) noexcept
    {
        if (kept >= m_count)
            return;
        const int n = static_cast<int>(std::max<std::int64_t>(kept, 0));
        const bool odd = n != 0 && (m_digits[n - 1] & 1) != 0;
        const bool sticky = odd || std::any_of(m_digits + n + 1, m_digits + m_count,
                                               [](char c) { return c != '0'; });
        const bool up = kept >= 0 && m_digits[n] + (sticky ? 1 : 0) > '5';
        m_last += m_count - n;
        m_count = n;
        if (up)
            increment();
        else if (n == 0)
            m_digits[m_count++] = '0';
    }
    void strip_zeros() noexcept
    {
        for (; m_count > 1 && m_digits[m_count - 1] == '0'; ++m_last)
            --m_count;
    }

private:
    // One unit more in the last digit; the next one if there is none, or only nines.
    void increment() noexcept
    {
        int i = m_count;
        while (i != 0 && m_digits[i - 1] == '9')
            m_digits[--i] = '0';
        if (i != 0) {
            ++m_digits[i - 1];
        } else {
            m_digits[0] = '1';
            if (m_count == 0)
                m_count = 1;
            else
                ++m_last;
        }
    }

    char m_digits[PowersOfTen<uint128>::MAX + 1];
    int m_count = 0;
    int m_last;
};

// Whether a separator follows the digit of 10^exponent.
bool ends_group(const char* grouping, int exponent) noexcept
{
    for (;; ++grouping) {
        const auto size = static_cast<signed char>(*grouping);
        if (size <= 0 || size == SCHAR_MAX || exponent < size)
            return false;
        if (grouping[1] == 0)
            return exponent % size == 0;
        exponent -= size;
        if (exponent == 0)
            return true;
    }
}

void put_fraction(Output* out, const DecFormatSpec& spec, const DigitText& text,
                  int point, std::int64_t decimals) noexcept
{
    if (decimals > 0 || spec.alternate)
        out->put(static_cast<char>(spec.decimal_point));
    const std::int64_t end = point - decimals;
    std::int64_t i = point - 1;
    for (; i >= std::max<std::int64_t>(end, text.last()); --i)
        out->put(text.digit(i));
    if (i >= end)
        out->put('0', i - end + 1);
}

void put_fixed(Output* out, const DecFormatSpec& spec, const DigitText& text,
               std::int64_t decimals) noexcept
{
    const bool grouped = spec.thousands_sep != 0 && spec.grouping != nullptr;
    for (int i = std::max(text.first(), 0); i >= 0; --i) {
        out->put(text.digit(i));
        if (grouped && i != 0 && ends_group(spec.grouping, i))
            out->put(static_cast<char>(spec.thousands_sep));
    }
    put_fraction(out, spec, text, 0, decimals);
}

void put_scientific(Output* out, const DecFormatSpec& spec, const DigitText& text,
                    bool capitals, std::int64_t decimals) noexcept
{
    int exponent = text.first();
    out->put(text.digit(exponent));
    put_fraction(out, spec, text, exponent, decimals);
    out->put(capitals ? 'E' : 'e');
    out->put(exponent < 0 ? '-' : '+');
    exponent = exponent < 0 ? -exponent : exponent;
    for (int power = exponent >= 1000  ? 1000
                     : exponent >= 100 ? 100
                                       : 10;
         power != 0; power /= 10)
        out->put(static_cast<char>('0' + exponent / power % 10));
}

void put_general(Output* out, const DecFormatSpec& spec, DigitText text,
                 bool capitals) noexcept
{
    const bool whole = spec.precision < 0;
    std::int64_t precision = whole ? text.count() : std::max(spec.precision, 1);
    text.round(precision);
    if (!whole && !spec.alternate) {
        text.strip_zeros();
        if (text.first() < precision)
            precision = std::max(text.count(), text.first() + 1);
    }
    const int first = text.first();
    if (first < -4 || first >= precision)
        put_scientific(out, spec, text, capitals,
                       whole || spec.alternate ? precision - 1 : text.count() - 1);
    else
        put_fixed(out, spec, text, precision - 1 - first);
}

template <class F>
int format_text(const DecFormatSpec& spec, typename F::Bits bits, char* buffer,
                int size) noexcept
{
    Output out(buffer, size);
    const bool capitals = spec.conversion >= 'A' && spec.conversion <= 'Z';
    if ((bits & F::SIGN) != 0)
        out.put('-');
    else if (spec.sign == '+')
        out.put('+');
    if (!is_finite<F>(bits)) {
        out.put(is_nan<F>(bits) ? "nan" : "inf", capitals);
        return out.end();
    }

    const Number<F> number = unpack<F>(bits);
    // With a precision, zeros have no exponent of their own.
    const char conversion = static_cast<char>(spec.conversion | ('a' ^ 'A'));
    const bool general = conversion != 'e' && conversion != 'f';
    const bool plain_zero = number.coefficient == 0 && !(general && spec.precision < 0);
    DigitText text(number.coefficient, plain_zero ? 0 : number.exponent - F::BIAS);
    const std::int64_t decimals = spec.precision < 0 ? 6 : spec.precision;
    if (general) {
        put_general(&out, spec, text, capitals);
    } else if (conversion == 'e') {
        text.round(decimals + 1);
        put_scientific(&out, spec, text, capitals, decimals);
    } else {
        text.round(text.first() + 1 + decimals);
        put_fixed(&out, spec, text, decimals);
    }
    return out.end();
}

}  // namespace
}  // namespace kiv::companion

extern "C" {

#define KIV_DECIMAL_FORMAT(W, Name, function)                               \
    int kivDec##W##Name(const kiv::DecFormatSpec* spec, kiv::KDecimal##W x, \
                        char* buffer, int size)                             \
    {                                                                       \
        using namespace kiv::companion;                                     \
        return function<Format##W>(*spec, bits_of(x), buffer, size);        \
    }
KIV_DECIMAL_EACH_WIDTH(KIV_DECIMAL_FORMAT, FormatString, format_text)

}  // extern "C"
