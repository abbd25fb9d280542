// kiv/decimal_literals.h - what the compiler knows of decimal numbers: literals, signs
// and limits. kiv/decimal.h includes it.
//
//     using namespace kiv::literals;
//     constexpr auto rate = 0.190_d64;   // 190 * 10^-3

#ifndef KIV_DECIMAL_LITERALS_H
#define KIV_DECIMAL_LITERALS_H

#include <cstdint>
#include <limits>
#include <type_traits>

#include <kiv/kdecimal.h>

namespace kiv::decimal {

template <class T>
concept decimal_type = one_of<T, decimal32, decimal64, decimal128>;

// --- Sign: changes one bit, of zeros and NaNs too ------------------------------------

namespace detail {

constexpr KDecimal32 with_sign(KDecimal32 x, KDecimal32 sign) noexcept
{
    return {(x.bits & ~(1U << 31)) | (sign.bits & 1U << 31)};
}
constexpr KDecimal64 with_sign(KDecimal64 x, KDecimal64 sign) noexcept
{
    constexpr std::uint64_t SIGN = std::uint64_t{1} << 63;
    return {(x.bits & ~SIGN) | (sign.bits & SIGN)};
}
constexpr KDecimal128 with_sign(KDecimal128 x, KDecimal128 sign) noexcept
{
    constexpr std::uint64_t SIGN = std::uint64_t{1} << 63;
    return {x.low, (x.high & ~SIGN) | (sign.high & SIGN)};
}

constexpr KDecimal32 opposite(KDecimal32 x) noexcept
{
    return {~x.bits};
}
constexpr KDecimal64 opposite(KDecimal64 x) noexcept
{
    return {~x.bits};
}
constexpr KDecimal128 opposite(KDecimal128 x) noexcept
{
    return {x.low, ~x.high};
}

}  // namespace detail

template <decimal_type D>
constexpr D copySign(D x, std::type_identity_t<D> sign) noexcept
{
    return D(detail::with_sign(x.pattern(), sign.pattern()));
}
template <decimal_type D>
constexpr D abs(D x) noexcept
{
    return copySign(x, D());
}
template <decimal_type D>
constexpr D operator+(D x) noexcept
{
    return x;
}
template <decimal_type D>
constexpr D operator-(D x) noexcept
{
    return D(detail::with_sign(x.pattern(), detail::opposite(x.pattern())));
}

// --- Literals ------------------------------------------------------------------------

namespace detail {

constexpr bool is_digit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

// value * 10 + digit, modulo 2^128.
constexpr KDecimal128 append_digit(KDecimal128 value, unsigned digit) noexcept
{
    constexpr std::uint64_t LOW = 0xFFFFFFFF;
    const std::uint64_t low = (value.low & LOW) * 10 + digit;
    const std::uint64_t high = (value.low >> 32) * 10 + (low >> 32);
    return {high << 32 | (low & LOW), value.high * 10 + (high >> 32)};
}

// For a coefficient and an exponent that the type has.
template <decimal_type D>
constexpr D assemble(KDecimal128 coefficient, int exponent) noexcept
{
    if constexpr (std::is_same_v<D, decimal32>) {
        const auto biased = static_cast<std::uint32_t>(exponent + 101);
        const auto c = static_cast<std::uint32_t>(coefficient.low);
        return D(KDecimal32{c >> 23 == 0 ? biased << 23 | c
                                         : std::uint32_t{3} << 29 | biased << 21 |
                                               (c & 0x1FFFFF)});
    } else if constexpr (std::is_same_v<D, decimal64>) {
        const auto biased = static_cast<std::uint64_t>(exponent) + 398;
        const std::uint64_t c = coefficient.low;
        return D(KDecimal64{c >> 53 == 0 ? biased << 53 | c
                                         : std::uint64_t{3} << 61 | biased << 51 |
                                               (c & 0x7FFFFFFFFFFFF)});
    } else {
        const auto biased = static_cast<std::uint64_t>(exponent) + 6176;
        return D(KDecimal128{coefficient.low, biased << 49 | coefficient.high});
    }
}

// Infinities and NaNs.
template <decimal_type D>
constexpr D with_top_byte(unsigned byte) noexcept
{
    if constexpr (std::is_same_v<D, decimal32>)
        return D(KDecimal32{std::uint32_t{byte} << 24});
    else if constexpr (std::is_same_v<D, decimal64>)
        return D(KDecimal64{std::uint64_t{byte} << 56});
    else
        return D(KDecimal128{0, std::uint64_t{byte} << 56});
}

// The digits of a literal, which is not one of base 16 or 2.
struct Spelling {
    int digits = 0;    // from the first that is not 0
    int zeros = 0;     // at the end of these
    int exponent = 0;  // of the last digit
    const char* text;

    // A throw ends the compilation.
    consteval explicit Spelling(const char* spelling) : text(spelling)
    {
        bool point = false;
        for (; *spelling != 0 && (*spelling | 0x20) != 'e'; ++spelling) {
            if (*spelling == '.')
                point = true;
            else if (is_digit(*spelling))
                count(*spelling, point);
            else if (*spelling != '\'')
                throw "not a decimal literal";
        }
        if (*spelling != 0)
            exponent += written_exponent(spelling + 1);
    }

private:
    consteval void count(char digit, bool behind_point)
    {
        exponent -= behind_point;
        if (digits == 0 && digit == '0')
            return;
        ++digits;
        zeros = digit == '0' ? zeros + 1 : 0;
    }
    static consteval int written_exponent(const char* p)
    {
        const bool negative = *p == '-';
        int value = 0;
        for (; *p != 0; ++p)
            if (is_digit(*p) && value < 1'000'000)
                value = value * 10 + (*p - '0');
        return negative ? -value : value;
    }
};

// A literal's coefficient, and its exponent within the range.
struct LiteralParts {
    KDecimal128 coefficient{0, 0};
    int exponent;

    consteval LiteralParts(const char* text, int precision, int least, int most)
    {
        const Spelling spelling(text);
        exponent = spelling.exponent;
        if (spelling.digits == 0) {
            exponent = exponent < least ? least : exponent > most ? most : exponent;
            return;
        }
        int excess = spelling.digits > precision ? spelling.digits - precision : 0;
        if (exponent + excess < least)
            excess = least - exponent;
        if (excess > spelling.zeros)
            throw "the type does not hold this number exactly";
        exponent += excess;
        int count = spelling.digits - excess;
        for (int taken = 0; taken < count; ++text) {
            if (is_digit(*text) && (taken != 0 || *text != '0')) {
                coefficient =
                    append_digit(coefficient, static_cast<unsigned>(*text - '0'));
                ++taken;
            }
        }
        for (; exponent > most; --exponent) {
            if (++count > precision)
                throw "the type does not hold this number exactly";
            coefficient = append_digit(coefficient, 0);
        }
    }
};

}  // namespace detail
}  // namespace kiv::decimal

namespace kiv {

// 1.10_d64 has the digits that are written, trailing zeros included, as far as the type
// has room for them. What it does not hold exactly does not compile.
inline namespace literals {

consteval decimal::decimal32 operator""_d32(const char* spelling)
{
    const decimal::detail::LiteralParts parts(spelling, 7, -101, 90);
    return decimal::detail::assemble<decimal::decimal32>(parts.coefficient,
                                                         parts.exponent);
}

consteval decimal::decimal64 operator""_d64(const char* spelling)
{
    const decimal::detail::LiteralParts parts(spelling, 16, -398, 369);
    return decimal::detail::assemble<decimal::decimal64>(parts.coefficient,
                                                         parts.exponent);
}

consteval decimal::decimal128 operator""_d128(const char* spelling)
{
    const decimal::detail::LiteralParts parts(spelling, 34, -6176, 6111);
    return decimal::detail::assemble<decimal::decimal128>(parts.coefficient,
                                                          parts.exponent);
}

}  // namespace literals

namespace decimal::detail {

// What std::numeric_limits says of a type of `Precision` digits with exponents of the
// leading digit up to `Most`.
template <decimal_type D, int Precision, int Most>
class Limits {
public:
    static constexpr bool is_specialized = true;
    static constexpr bool is_signed = true;
    static constexpr bool is_integer = false;
    static constexpr bool is_exact = false;
    static constexpr bool has_infinity = true;
    static constexpr bool has_quiet_NaN = true;
    static constexpr bool has_signaling_NaN = true;
    static constexpr std::float_denorm_style has_denorm = std::denorm_present;
    static constexpr bool has_denorm_loss = false;
    static constexpr std::float_round_style round_style = std::round_to_nearest;
    static constexpr bool is_iec559 = false;  // that is about binary formats
    static constexpr bool is_bounded = true;
    static constexpr bool is_modulo = false;
    static constexpr bool traps = false;
    static constexpr bool tinyness_before = true;
    static constexpr int radix = 10;
    static constexpr int digits = Precision;
    static constexpr int digits10 = Precision;
    static constexpr int max_digits10 = Precision;
    static constexpr int min_exponent = 2 - Most;
    static constexpr int min_exponent10 = 1 - Most;
    static constexpr int max_exponent = Most + 1;
    static constexpr int max_exponent10 = Most;

    static constexpr D min() noexcept { return assemble<D>({1, 0}, 1 - Most); }
    static constexpr D max() noexcept
    {
        KDecimal128 nines{0, 0};
        for (int i = 0; i < Precision; ++i)
            nines = append_digit(nines, 9);
        return assemble<D>(nines, Most - Precision + 1);
    }
    static constexpr D lowest() noexcept { return -max(); }
    static constexpr D epsilon() noexcept { return assemble<D>({1, 0}, 1 - Precision); }
    static constexpr D round_error() noexcept { return assemble<D>({5, 0}, -1); }
    static constexpr D denorm_min() noexcept
    {
        return assemble<D>({1, 0}, 2 - Most - Precision);
    }
    static constexpr D infinity() noexcept { return with_top_byte<D>(0x78); }
    static constexpr D quiet_NaN() noexcept { return with_top_byte<D>(0x7C); }
    static constexpr D signaling_NaN() noexcept { return with_top_byte<D>(0x7E); }
};

}  // namespace decimal::detail
}  // namespace kiv

template <>
class std::numeric_limits<kiv::decimal::decimal32>
    : public kiv::decimal::detail::Limits<kiv::decimal::decimal32, 7, 96> {
};
template <>
class std::numeric_limits<kiv::decimal::decimal64>
    : public kiv::decimal::detail::Limits<kiv::decimal::decimal64, 16, 384> {
};
template <>
class std::numeric_limits<kiv::decimal::decimal128>
    : public kiv::decimal::detail::Limits<kiv::decimal::decimal128, 34, 6144> {
};

#endif
