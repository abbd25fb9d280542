// The floating-point predicates, by the bits.

#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>

#include <kiv/numconv.h>

#include "numconv/binary_format.h"

namespace kiv {

namespace {

// The fields of a value; one without a number, which only the format with an explicit
// leading bit has, is a NaN as it is to the processor.
struct Fields {
    bool negative;
    bool least_exponent;
    bool most_exponent;
    bool zero_significand;  // without the leading bit unless the exponent is least
    bool not_a_number = most_exponent && !zero_significand;
};

Fields fields(binary16 value) noexcept
{
    const unsigned exponent = value.bits & 0x7C00U;
    return {value.bits >> 15 != 0, exponent == 0, exponent == 0x7C00,
            (value.bits & 0x3FF) == 0};
}

template <class Float>
Fields fields(Float value) noexcept
{
    using Format = numconv::BinaryFormat<Float>;
    using Bits = typename Format::Bits;
    const auto bits = std::bit_cast<Bits>(value);
    const Bits exponent = bits & Format::INFINITE;
    return {(bits & Format::SIGN) != 0, exponent == 0, exponent == Format::INFINITE,
            (bits & ~Format::SIGN & ~Format::INFINITE) == 0};
}

// A long double is a double, the extended format with 64 bits of significand in 10
// bytes, or binary128.
Fields fields(long double value) noexcept
{
    constexpr int PRECISION = std::numeric_limits<long double>::digits;
    static_assert(PRECISION == 53 || PRECISION == 64 || PRECISION == 113);
    if constexpr (PRECISION == 53) {
        return fields(static_cast<double>(value));
    } else {
        constexpr bool LITTLE = std::endian::native == std::endian::little;
        constexpr unsigned MOST = 0x7FFF;
        std::uint64_t words[2] = {};
        std::memcpy(words, &value, PRECISION == 64 ? 10 : sizeof value);
        const std::uint64_t low = words[LITTLE ? 0 : 1];
        const std::uint64_t high = words[LITTLE ? 1 : 0];
        if constexpr (PRECISION == 64) {
            static_assert(LITTLE);
            const unsigned exponent = high & MOST;
            const bool leading = low >> 63 != 0;
            Fields result = {high >> 15 != 0, exponent == 0, exponent == MOST,
                             (exponent == 0 ? low : low << 1) == 0};
            result.not_a_number |= exponent != 0 && !leading;
            return result;
        } else {
            const auto exponent = static_cast<unsigned>(high >> 48) & MOST;
            return {high >> 63 != 0, exponent == 0, exponent == MOST,
                    (high << 16 | low) == 0};
        }
    }
}

}  // namespace

#define KIV_CLASSIFY(TYPE)                                               \
    bool is_finite(TYPE value) noexcept                                  \
    {                                                                    \
        const Fields f = fields(value);                                  \
        return !f.most_exponent && !f.not_a_number;                      \
    }                                                                    \
    bool is_inf(TYPE value) noexcept                                     \
    {                                                                    \
        const Fields f = fields(value);                                  \
        return f.most_exponent && !f.not_a_number;                       \
    }                                                                    \
    bool is_nan(TYPE value) noexcept                                     \
    {                                                                    \
        return fields(value).not_a_number;                               \
    }                                                                    \
    bool is_normal(TYPE value) noexcept                                  \
    {                                                                    \
        const Fields f = fields(value);                                  \
        return !f.least_exponent && !f.most_exponent && !f.not_a_number; \
    }                                                                    \
    bool is_zero(TYPE value) noexcept                                    \
    {                                                                    \
        const Fields f = fields(value);                                  \
        return f.least_exponent && f.zero_significand;                   \
    }                                                                    \
    bool sign_bit(TYPE value) noexcept                                   \
    {                                                                    \
        return fields(value).negative;                                   \
    }

KIV_CLASSIFY(binary16)
KIV_CLASSIFY(float)
KIV_CLASSIFY(double)
KIV_CLASSIFY(long double)

#undef KIV_CLASSIFY

}  // namespace kiv
