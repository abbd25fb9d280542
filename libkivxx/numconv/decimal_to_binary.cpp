#include "numconv/decimal_to_binary.h"

namespace kiv::numconv {

template <class Float>
Bounds<Float> bounds(const Normalized& coefficient, int exponent) noexcept
{
    const std::uint64_t w = coefficient.word;
    const words::Wide& power = tables::power_of_five(exponent);
    const int binary_exponent = exponent_of_product(coefficient.shift, exponent);
    const words::Wide lower = words::multiply(w, power.low);
    const words::Wide product =
        words::add(words::multiply(w, power.high), {0, lower.high});

    const bool exact = is_power_exact(exponent) && !coefficient.truncated;
    const auto low = rounded<Float>(product.high, product.low, lower.low != 0 || !exact,
                                    binary_exponent);
    if (exact)
        return {low, low};
    // The power is short of the exact one by less than 1, the word by less than 1: the
    // product by less than w + power + 1, in units 2^128 below those of its top word.
    words::Wide upper = words::add(product, {0, coefficient.truncated ? power.high : 0});
    upper = words::add(upper, {0, coefficient.truncated ? 2U : 1U});
    if (upper.high < product.high)
        upper = {~std::uint64_t{0}, ~std::uint64_t{0}};  // which rounds up to the same
    return {low, rounded<Float>(upper.high, upper.low, true, binary_exponent)};
}

template <class Float>
typename BinaryFormat<Float>::Bits resolved(const Bounds<Float>& bounds,
                                            ExactDecimal value) noexcept
{
    using Format = BinaryFormat<Float>;
    using Bits = typename Format::Bits;
    constexpr Bits IMPLICIT = Bits{1} << (Format::PRECISION - 1);

    // The lower one is significand * 2^binary_exponent, the midpoint above it
    // (2 * significand + 1) * 2^(binary_exponent - 1).
    const int field = static_cast<int>(bounds.low >> (Format::PRECISION - 1));
    const Bits significand = (bounds.low & (IMPLICIT - 1)) | (field == 0 ? 0 : IMPLICIT);
    const int binary_exponent =
        Format::MIN_EXPONENT - (Format::PRECISION - 1) + (field == 0 ? 0 : field - 1);
    FixedUint midpoint(2 * std::uint64_t{significand} + 1);

    // Both without the powers of five below 1, then to the same power of two.
    const int exponent = static_cast<int>(value.exponent);
    FixedUint& exact = value.coefficient;
    if (exponent < 0)
        midpoint.multiply_by_power_of_five(static_cast<unsigned>(-exponent));
    else
        exact.multiply_by_power_of_five(static_cast<unsigned>(exponent));
    const int shift = exponent - (binary_exponent - 1);
    if (shift < 0)
        midpoint.shift_left(static_cast<unsigned>(-shift));
    else
        exact.shift_left(static_cast<unsigned>(shift));

    const int order = exact.compare(midpoint);
    const bool up = order > 0 || (order == 0 && (bounds.low & 1) != 0);
    return up ? bounds.high : bounds.low;
}

template Bounds<float> bounds(const Normalized&, int) noexcept;
template Bounds<double> bounds(const Normalized&, int) noexcept;
template std::uint32_t resolved(const Bounds<float>&, ExactDecimal) noexcept;
template std::uint64_t resolved(const Bounds<double>&, ExactDecimal) noexcept;

}  // namespace kiv::numconv
