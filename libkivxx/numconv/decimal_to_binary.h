// numconv/decimal_to_binary.h - the nearest float or double to a decimal coefficient of
// up to 128 bits times a power of ten, ties to even.
//
// Three ways, each for what the one before leaves undecided:
//
//   1. Both factors exact in the type: one floating-point operation.
//   2. The top bits of the product with the top 128 bits of the power of five enclose
//      the exact value, and both bounds round to the same result. After D. Lemire,
//      "Number Parsing at a Gigabyte per Second", Software: Practice and Experience 51
//      (2021), with bounds in place of its case distinctions.
//   3. The bounds round to two neighbours: integers compare the value with the midpoint
//      between them.

#ifndef KIV_NUMCONV_DECIMAL_TO_BINARY_H
#define KIV_NUMCONV_DECIMAL_TO_BINARY_H

#include <bit>
#include <cfloat>
#include <cstddef>
#include <cstdint>

#include "bigint/words.h"
#include "numconv/binary_format.h"
#include "numconv/fixed_uint.h"
#include "numconv/inline.h"
#include "numconv/tables/powers_of_five.h"

namespace kiv::numconv {

// Beyond these the result is zero or infinite for every coefficient that is not 0 and
// has up to 20 digits.
constexpr int LEAST_POWER_OF_TEN = tables::LEAST_POWER_OF_FIVE;
constexpr int MOST_POWER_OF_TEN = 308;

// That of bit 62 of the top word, of a coefficient of 64 bits times 2^shift and the 128
// bits of the power of five, which has 2^(floor - 127) in it.
inline int exponent_of_product(int shift, int exponent) noexcept
{
    return tables::floor_log2_of_power_of_five(exponent) + exponent + shift + 63;
}

constexpr bool is_power_exact(int exponent) noexcept
{
    return exponent >= 0 && exponent <= 55;
}

// --- 1. One operation --------------------------------------------------------------

template <class Float>
struct PowersOfTen {
    Float values[BinaryFormat<Float>::EXACT_POWERS];

    constexpr PowersOfTen() : values()
    {
        Float power = 1;
        for (Float& value : values) {
            value = power;
            power *= 10;
        }
    }
};

template <class Float>
constexpr PowersOfTen<Float> POWERS_OF_TEN;

static_assert(POWERS_OF_TEN<float>.values[10] == 1e10F);
static_assert(POWERS_OF_TEN<double>.values[22] == 1e22);

// A conversion from an integer rounds by itself. Otherwise every coefficient below 2^53
// (2^24) is exact in the type; the limit is a power of ten so that, among coefficients
// of as many digits, the answer is always the same. Larger ones go the second way as
// fast.
template <class Float>
bool is_exactly_scaled(std::uint64_t coefficient, std::int64_t exponent) noexcept
{
    constexpr std::uint64_t LIMIT =
        sizeof(Float) == 4 ? 10'000'000 : 1'000'000'000'000'000;
    static_assert(LIMIT >> BinaryFormat<Float>::PRECISION == 0);
    constexpr auto MAX = static_cast<std::int64_t>(BinaryFormat<Float>::EXACT_POWERS) - 1;
    return FLT_EVAL_METHOD == 0 &&
           (exponent == 0 ? coefficient >> 63 == 0
                          : coefficient < LIMIT && exponent >= -MAX && exponent <= MAX);
}

// Both factors are exact or the second is 1: one rounding.
template <class Float>
Float exactly_scaled(bool negative, std::int64_t exponent,
                     std::uint64_t coefficient) noexcept
{
    // A signed conversion is one instruction.
    const auto value = static_cast<Float>(static_cast<std::int64_t>(coefficient));
    const auto& powers = POWERS_OF_TEN<Float>.values;
    const Float result =
        exponent < 0 ? value / powers[-exponent] : value * powers[exponent];
    return negative ? -result : result;
}

// --- 2. Bounds -----------------------------------------------------------------------

// The bits of a magnitude, rounded: (high + rest / 2^64) * 2^(exponent - 62), with bit 63
// or bit 62 of high set. With `more`, something follows the rest.
template <class Float>
typename BinaryFormat<Float>::Bits rounded(std::uint64_t high, std::uint64_t rest,
                                           bool more, std::int64_t exponent) noexcept
{
    using Format = BinaryFormat<Float>;
    using Bits = typename Format::Bits;

    const auto top = static_cast<int>(high >> 63);
    exponent += top;                               // now that of the leading bit
    int shift = 63 - Format::PRECISION - 1 + top;  // leaves the round bit
    std::int64_t biased = exponent - Format::MIN_EXPONENT;
    if (biased < 0) {
        if (biased < -Format::PRECISION)
            return 0;  // below half of the smallest
        shift -= static_cast<int>(biased);
        biased = 0;
    }
    if (exponent > Format::MAX_EXPONENT)
        return Format::INFINITE;

    const std::uint64_t kept = high >> shift;
    const bool sticky =
        more || rest != 0 || (high & ((std::uint64_t{1} << shift) - 1)) != 0;
    const bool up = (kept & 1) != 0 && (sticky || (kept & 2) != 0);
    // The implicit bit adds 1 to the exponent field, and so does a carry.
    return static_cast<Bits>(
        (static_cast<std::uint64_t>(biased) << (Format::PRECISION - 1)) + (kept >> 1) +
        std::uint64_t{up});
}

// A coefficient with its top bit set, as long as the processor's word.
struct Normalized {
    std::uint64_t word;
    int shift;       // coefficient = word * 2^shift, or a little more
    bool truncated;  // a little more, less than one unit
};

inline Normalized normalized(std::uint64_t coefficient) noexcept
{
    const int zeros = std::countl_zero(coefficient);
    return {coefficient << zeros, -zeros, false};
}

// At least 64 bits long if `more` follows.
inline Normalized normalized(words::Wide coefficient, bool more) noexcept
{
    if (coefficient.high == 0) {
        Normalized result = normalized(coefficient.low);
        result.truncated = more;
        return result;
    }
    const int shift = 64 - std::countl_zero(coefficient.high);
    const std::uint64_t low = coefficient.low;
    return {
        shift == 64 ? coefficient.high : coefficient.high << (64 - shift) | low >> shift,
        shift, more || (shift == 64 ? low : low << (64 - shift)) != 0};
}

// What the exact value of coefficient * 10^exponent rounds to, or the two neighbours
// that it lies between.
template <class Float>
struct Bounds {
    using Bits = typename BinaryFormat<Float>::Bits;

    Bits low;
    Bits high;
};

// From the whole product. 10^exponent must have its place in the table of powers of
// five.
template <class Float>
Bounds<Float> bounds(const Normalized& coefficient, int exponent) noexcept;

// --- 3. Integers -------------------------------------------------------------------

struct ExactDecimal {
    FixedUint coefficient;  // at most 770 digits
    std::int64_t exponent;
};

// The one of the two that coefficient * 10^exponent is nearest to.
template <class Float>
typename BinaryFormat<Float>::Bits resolved(const Bounds<Float>& bounds,
                                            ExactDecimal value) noexcept;

// --- All three ---------------------------------------------------------------------

// What the first way, or the second with the upper half of the power alone, makes a
// normal number; false for everything else. The coefficient is not 0.
template <class Float>
KIV_INLINE bool decimal_to_binary_quickly(bool negative, std::uint64_t coefficient,
                                          std::int64_t exponent, Float& value) noexcept
{
    using Format = BinaryFormat<Float>;
    if (is_exactly_scaled<Float>(coefficient, exponent)) {
        value = exactly_scaled<Float>(negative, exponent, coefficient);
        return true;
    }
    if (exponent < LEAST_POWER_OF_TEN || exponent > MOST_POWER_OF_TEN)
        return false;

    const int e = static_cast<int>(exponent);
    const int zeros = std::countl_zero(coefficient);
    const std::uint64_t product =
        words::multiply(coefficient << zeros, tables::power_of_five(e).high).high;
    // The lower half of the power adds less than 1 to the top word, which changes
    // nothing unless that has only ones below the round bit. Only zeros may be a tie if
    // the power is exact.
    constexpr int SHIFT = 63 - Format::PRECISION - 1;
    constexpr std::uint64_t BELOW = (std::uint64_t{1} << SHIFT) - 1;
    if ((product & BELOW) == BELOW || ((product & BELOW) == 0 && is_power_exact(e)))
        return false;

    const auto top = static_cast<int>(product >> 63);
    const int biased = exponent_of_product(-zeros, e) + top - Format::MIN_EXPONENT;
    // Nor the binade that may round up to infinity.
    if (static_cast<unsigned>(biased) >=
        unsigned{Format::MAX_EXPONENT - Format::MIN_EXPONENT})
        return false;
    // No tie is left. The carry goes to the exponent.
    const std::uint64_t significand = ((product >> (SHIFT + top)) + 1) >> 1;
    value = Format::with_sign(
        negative, static_cast<typename Format::Bits>(
                      (static_cast<std::uint64_t>(biased) << (Format::PRECISION - 1)) +
                      significand));
    return true;
}

template <class Float>
Float decimal_to_binary(bool negative, std::uint64_t coefficient,
                        std::int64_t exponent) noexcept
{
    using Format = BinaryFormat<Float>;
    if (coefficient == 0 || exponent < LEAST_POWER_OF_TEN)
        return Format::with_sign(negative, 0);
    Float value;
    if (decimal_to_binary_quickly(negative, coefficient, exponent, value)) [[likely]]
        return value;
    if (exponent > MOST_POWER_OF_TEN)
        return Format::with_sign(negative, Format::INFINITE);

    const auto found = bounds<Float>(normalized(coefficient), static_cast<int>(exponent));
    if (found.low == found.high) [[likely]]
        return Format::with_sign(negative, found.low);
    return Format::with_sign(negative,
                             resolved<Float>(found, {FixedUint(coefficient), exponent}));
}

// A coefficient of up to 20 digits, and `more`, which stands for digits that follow a
// coefficient of exactly 20. exact() gives the ExactDecimal.
template <class Float, class Exact>
Float decimal_to_binary(bool negative, words::Wide coefficient, std::int64_t exponent,
                        bool more, Exact exact) noexcept
{
    using Format = BinaryFormat<Float>;
    if (coefficient.high == 0 && !more)
        return decimal_to_binary<Float>(negative, coefficient.low, exponent);
    if (exponent < LEAST_POWER_OF_TEN)
        return Format::with_sign(negative, 0);
    if (exponent > MOST_POWER_OF_TEN)
        return Format::with_sign(negative, Format::INFINITE);

    const auto found =
        bounds<Float>(normalized(coefficient, more), static_cast<int>(exponent));
    if (found.low == found.high) [[likely]]
        return Format::with_sign(negative, found.low);
    return Format::with_sign(negative, resolved<Float>(found, exact()));
}

extern template Bounds<float> bounds(const Normalized&, int) noexcept;
extern template Bounds<double> bounds(const Normalized&, int) noexcept;
extern template std::uint32_t resolved(const Bounds<float>&, ExactDecimal) noexcept;
extern template std::uint64_t resolved(const Bounds<double>&, ExactDecimal) noexcept;

}  // namespace kiv::numconv

#endif
