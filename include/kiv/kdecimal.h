// kiv/kdecimal.h - decimal floating-point values of 7, 16 and 34 digits, and their
// bit patterns.
//
// IEEE 754-2008 interchange formats in the binary-integer-decimal encoding: sign
// bit, biased exponent and coefficient, the coefficient as a binary integer. What
// can be done with the values is in kiv/decimal.h; this header depends on nothing,
// so that the assembly of values can return them.

#ifndef KIV_KDECIMAL_H
#define KIV_KDECIMAL_H

#include <cstdint>

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
