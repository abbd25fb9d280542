// kiv/kdecimal.h - decimal floating-point values of 7, 16 and 34 digits, and their
// bit patterns.
//
// IEEE 754-2008 interchange formats in the binary-integer-decimal encoding: sign
// bit, biased exponent and coefficient, the coefficient as a binary integer. What
// can be done with the values is in kiv/decimal.h; this header depends on nothing,
// so that the assembly of values can return them.

#ifndef KIV_KDECIMAL_H
#define KIV_KDECIMAL_H

#include <concepts>
#include <cstdint>
#include <limits>
#include <string_view>

#include <kiv/export.h>

namespace kiv {

// The patterns, which also pass between the library and the companion library.

struct KDecimal32 {
    std::uint32_t bits;
};

struct KDecimal64 {
    std::uint64_t bits;
};

struct KDecimal128 {
    std::uint64_t low;   // bits 0 to 63
    std::uint64_t high;  // bits 64 to 127, with sign and exponent
};

}  // namespace kiv

namespace kiv::decimal {

// Copied like numbers; each holds nothing but its pattern. As with numbers, decimal32()
// and its siblings are 0 (with the smallest exponent), and what is declared without an
// initialiser has some value.
//
// All conversions give the nearest value, ties to even; what is too large becomes an
// infinity, what is too small a subnormal value or zero. None of them sets errno.
//
// Integers convert implicitly as far as the type holds all of theirs: those of 16 bits
// to decimal32, of 32 to decimal64, of 64 to decimal128. Everything else is explicit.
// Binary values convert exactly and are then rounded, so decimal128(0.1) shows what 0.1
// is in binary; binary_to_decimal128(0.1) is 0.1. A text must be a number as stod64_c
// reads it and nothing else: std::invalid_argument tells what is wrong.
//
// To an integer the fraction is cut off; what is too large becomes the nearest limit of
// the integer's type, a NaN 0.

// Numbers, not truth values or characters.
template <class T, class... Others>
concept one_of = (std::same_as<T, Others> || ...);
template <class T>
concept integer = std::integral<T> && sizeof(T) <= 8 &&
                  !one_of<T, bool, char, wchar_t, char8_t, char16_t, char32_t>;
// There is no exact way from and to a wider type.
template <class T>
concept binary_value = one_of<T, float, double>;

namespace detail {

template <integer T>
constexpr std::uint64_t magnitude(T value) noexcept
{
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? -bits : bits;
}

}  // namespace detail

class decimal64;
class decimal128;

class KIV_API decimal32 {
public:
    decimal32() = default;
    constexpr explicit decimal32(KDecimal32 pattern) noexcept : m_pattern(pattern) {}

    template <integer T>
    constexpr explicit(sizeof(T) > 2) decimal32(T value) noexcept
    {
        if constexpr (sizeof(T) <= 2) {
            m_pattern.bits = std::uint32_t{value < 0} << 31 | 101U << 23 |
                             static_cast<std::uint32_t>(detail::magnitude(value));
        } else {
            m_pattern = from_integer(value < 0, detail::magnitude(value));
        }
    }
    template <binary_value T>
    explicit decimal32(T value) noexcept : m_pattern(from_binary(value))
    {
    }
    explicit decimal32(std::string_view text);
    explicit decimal32(decimal64 value) noexcept;
    explicit decimal32(decimal128 value) noexcept;

    explicit operator float() const noexcept;
    explicit operator double() const noexcept;
    template <integer T>
    explicit operator T() const noexcept
    {
        using Limits = std::numeric_limits<T>;
        if constexpr (Limits::is_signed)
            return static_cast<T>(to_signed(Limits::min(), Limits::max()));
        else
            return static_cast<T>(to_unsigned(Limits::max()));
    }

    constexpr KDecimal32 pattern() const noexcept { return m_pattern; }

private:
    static KDecimal32 from_integer(bool negative, std::uint64_t magnitude) noexcept;
    static KDecimal32 from_binary(double value) noexcept;
    std::int64_t to_signed(std::int64_t least, std::int64_t most) const noexcept;
    std::uint64_t to_unsigned(std::uint64_t most) const noexcept;

    KDecimal32 m_pattern;
};

class KIV_API decimal64 {
public:
    decimal64() = default;
    constexpr explicit decimal64(KDecimal64 pattern) noexcept : m_pattern(pattern) {}

    template <integer T>
    constexpr explicit(sizeof(T) > 4) decimal64(T value) noexcept
    {
        if constexpr (sizeof(T) <= 4) {
            m_pattern.bits = std::uint64_t{value < 0} << 63 | std::uint64_t{398} << 53 |
                             detail::magnitude(value);
        } else {
            m_pattern = from_integer(value < 0, detail::magnitude(value));
        }
    }
    template <binary_value T>
    explicit decimal64(T value) noexcept : m_pattern(from_binary(value))
    {
    }
    explicit decimal64(std::string_view text);
    explicit decimal64(decimal32 value) noexcept;
    explicit decimal64(decimal128 value) noexcept;

    explicit operator float() const noexcept;
    explicit operator double() const noexcept;
    template <integer T>
    explicit operator T() const noexcept
    {
        using Limits = std::numeric_limits<T>;
        if constexpr (Limits::is_signed)
            return static_cast<T>(to_signed(Limits::min(), Limits::max()));
        else
            return static_cast<T>(to_unsigned(Limits::max()));
    }

    constexpr KDecimal64 pattern() const noexcept { return m_pattern; }

private:
    static KDecimal64 from_integer(bool negative, std::uint64_t magnitude) noexcept;
    static KDecimal64 from_binary(double value) noexcept;
    std::int64_t to_signed(std::int64_t least, std::int64_t most) const noexcept;
    std::uint64_t to_unsigned(std::uint64_t most) const noexcept;

    KDecimal64 m_pattern;
};

class KIV_API decimal128 {
public:
    decimal128() = default;
    constexpr explicit decimal128(KDecimal128 pattern) noexcept : m_pattern(pattern) {}

    template <integer T>
    constexpr decimal128(T value) noexcept
        : m_pattern{detail::magnitude(value),
                    std::uint64_t{value < 0} << 63 | std::uint64_t{6176} << 49}
    {
    }
    template <binary_value T>
    explicit decimal128(T value) noexcept : m_pattern(from_binary(value))
    {
    }
    explicit decimal128(std::string_view text);
    explicit decimal128(decimal32 value) noexcept;
    explicit decimal128(decimal64 value) noexcept;

    explicit operator float() const noexcept;
    explicit operator double() const noexcept;
    template <integer T>
    explicit operator T() const noexcept
    {
        using Limits = std::numeric_limits<T>;
        if constexpr (Limits::is_signed)
            return static_cast<T>(to_signed(Limits::min(), Limits::max()));
        else
            return static_cast<T>(to_unsigned(Limits::max()));
    }

    constexpr KDecimal128 pattern() const noexcept { return m_pattern; }

private:
    static KDecimal128 from_binary(double value) noexcept;
    std::int64_t to_signed(std::int64_t least, std::int64_t most) const noexcept;
    std::uint64_t to_unsigned(std::uint64_t most) const noexcept;

    KDecimal128 m_pattern;
};

}  // namespace kiv::decimal

#endif
