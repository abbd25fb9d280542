// numconv/binary_format.h - the formats binary32 and binary64 as numbers and bits.

#ifndef KIV_NUMCONV_BINARY_FORMAT_H
#define KIV_NUMCONV_BINARY_FORMAT_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kiv::numconv {

template <class Float>
struct BinaryFormat {
    using Limits = std::numeric_limits<Float>;
    static_assert(Limits::is_iec559 && sizeof(Float) <= 8);
    using Bits = std::conditional_t<sizeof(Float) == 4, std::uint32_t, std::uint64_t>;

    static constexpr int PRECISION = Limits::digits;  // with the implicit bit
    // Of the leading bit, while it is implicit.
    static constexpr int MAX_EXPONENT = Limits::max_exponent - 1;
    static constexpr int MIN_EXPONENT = Limits::min_exponent - 1;
    // Values from 10^(MAX_LOG10 + 1) on are above the largest finite value, values
    // below 10^MIN_LOG10 are below half of the smallest subnormal one.
    static constexpr int MAX_LOG10 = Limits::max_exponent10;
    static constexpr int MIN_LOG10 = sizeof(Float) == 4 ? -46 : -324;
    // 10^n is exact as long as 5^n fits in the significand.
    static constexpr std::size_t EXACT_POWERS = sizeof(Float) == 4 ? 11 : 23;

    static constexpr Bits SIGN = Bits{1} << (sizeof(Bits) * 8 - 1);
    static constexpr Bits INFINITE = std::bit_cast<Bits>(Limits::infinity());

    static constexpr Float with_sign(bool negative, Bits magnitude) noexcept
    {
        return std::bit_cast<Float>(
            static_cast<Bits>(magnitude | (negative ? SIGN : Bits{0})));
    }
};

}  // namespace kiv::numconv

#endif
