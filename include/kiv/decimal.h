// kiv/decimal.h - decimal floating-point types of 7, 16 and 34 digits.
//
// Values of the IEEE 754-2008 interchange formats, copied like numbers. Each holds
// nothing but its bit pattern.
//
//     kiv::decimal::decimal64 price = kiv::pack_decimal64(false, -2, 1999u);  // 19.99

#ifndef KIV_DECIMAL_H
#define KIV_DECIMAL_H

#include <kiv/export.h>
#include <kiv/kdecimal.h>

namespace kiv::decimal {

// As with numbers, decimal32() and its siblings are 0 (with the smallest exponent),
// and what is declared without an initialiser has some value.

class KIV_API decimal32 {
public:
    decimal32() = default;
    constexpr explicit decimal32(KDecimal32 pattern) noexcept : m_pattern(pattern) {}
    constexpr KDecimal32 pattern() const noexcept { return m_pattern; }

private:
    KDecimal32 m_pattern;
};

class KIV_API decimal64 {
public:
    decimal64() = default;
    constexpr explicit decimal64(KDecimal64 pattern) noexcept : m_pattern(pattern) {}
    constexpr KDecimal64 pattern() const noexcept { return m_pattern; }

private:
    KDecimal64 m_pattern;
};

class KIV_API decimal128 {
public:
    decimal128() = default;
    constexpr explicit decimal128(KDecimal128 pattern) noexcept : m_pattern(pattern) {}
    constexpr KDecimal128 pattern() const noexcept { return m_pattern; }

private:
    KDecimal128 m_pattern;
};

}  // namespace kiv::decimal

#endif
