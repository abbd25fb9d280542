// binary16: conversions by the bits, without floating-point arithmetic.

#include <bit>
#include <cstdint>

#include <kiv/numconv.h>

#include "numconv/binary_format.h"

namespace kiv {

namespace {

using numconv::BinaryFormat;

constexpr int HALF_STORED_BITS = 10;
constexpr int HALF_BIAS = 15;
constexpr unsigned HALF_SIGN = 0x8000;
constexpr unsigned HALF_INFINITE = 0x7C00;
constexpr unsigned HALF_NAN = 0x7E00;

template <class Float>
struct Format : BinaryFormat<Float> {
    using Bits = typename BinaryFormat<Float>::Bits;

    static constexpr int STORED_BITS = BinaryFormat<Float>::PRECISION - 1;
    static constexpr int BIAS = BinaryFormat<Float>::MAX_EXPONENT;
    static constexpr int EXTRA_BITS = STORED_BITS - HALF_STORED_BITS;
    static constexpr int SIGN_SHIFT = sizeof(Bits) * 8 - 16;  // between the two signs
};

// value / 2^shift to nearest, ties to even; 0 < shift < the width of Bits.
template <class Bits>
constexpr Bits shift_right_rounded(Bits value, int shift) noexcept
{
    const Bits half = Bits{1} << (shift - 1);
    // The last bit kept breaks a tie: one less than a half is added to an even result.
    return (value + half - 1 + (value >> shift & 1)) >> shift;
}

template <class Float>
binary16 narrow(Float value) noexcept
{
    using F = Format<Float>;
    using Bits = typename F::Bits;

    const Bits bits = std::bit_cast<Bits>(value);
    const Bits magnitude = bits & ~F::SIGN;
    const auto sign = static_cast<unsigned>(bits >> F::SIGN_SHIFT) & HALF_SIGN;
    const auto with_sign = [sign](Bits half) {
        return binary16{static_cast<std::uint16_t>(sign | half)};
    };
    const int exponent = static_cast<int>(magnitude >> F::STORED_BITS) - F::BIAS;
    if (exponent < -HALF_BIAS - HALF_STORED_BITS)  // below half of the least value
        return with_sign(0);
    if (exponent > HALF_BIAS)
        return magnitude > F::INFINITE ? binary16{HALF_NAN} : with_sign(HALF_INFINITE);
    if (exponent > -HALF_BIAS) {
        // A carry out of the significand goes into the exponent, as it should.
        const Bits rebiased = magnitude - (Bits{F::BIAS - HALF_BIAS} << F::STORED_BITS);
        return with_sign(shift_right_rounded(rebiased, F::EXTRA_BITS));
    }
    constexpr Bits IMPLICIT = Bits{1} << F::STORED_BITS;
    const Bits significand = (magnitude & (IMPLICIT - 1)) | IMPLICIT;
    return with_sign(
        shift_right_rounded(significand, F::EXTRA_BITS + 1 - HALF_BIAS - exponent));
}

template <class Float>
Float widen(binary16 value) noexcept
{
    using F = Format<Float>;
    using Bits = typename F::Bits;
    constexpr Bits REBIAS = Bits{F::BIAS - HALF_BIAS} << F::STORED_BITS;

    const unsigned magnitude = value.bits & ~HALF_SIGN;
    Bits wide = Bits{magnitude} << F::EXTRA_BITS;
    if (magnitude >= HALF_INFINITE) {
        wide |= F::INFINITE;
    } else if (magnitude >> HALF_STORED_BITS != 0) {
        wide += REBIAS;
    } else if (magnitude != 0) {
        // The highest bit becomes the implicit one and adds 1 to the exponent.
        const int up = HALF_STORED_BITS + 1 - static_cast<int>(std::bit_width(magnitude));
        wide = (wide << up) + REBIAS - (Bits(up) << F::STORED_BITS);
    }
    return F::with_sign((value.bits & HALF_SIGN) != 0, wide);
}

}  // namespace

binary16 _float_to_binary16(float value) noexcept
{
    return narrow(value);
}

binary16 _double_to_binary16(double value) noexcept
{
    return narrow(value);
}

float _binary16_to_float(binary16 value) noexcept
{
    return widen<float>(value);
}

double _binary16_to_double(binary16 value) noexcept
{
    return widen<double>(value);
}

}  // namespace kiv
