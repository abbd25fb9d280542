#include "numconv/exact_digits.h"

#include <algorithm>
#include <bit>

#include "numconv/fixed_uint.h"

namespace kiv::numconv {
namespace {

using Limb = FixedUint::Limb;

// What is left of the value after the digits taken, and the distances to the ends of
// the rounding interval, as fractions of one unit of the last digit. Of a double the
// denominator has less than 1130 bits, and so have the others but for four bits.
class Remainder {
public:
    Remainder(BinaryValue value, BinaryShape shape) noexcept;

    // The exponent of the first digit.
    int exponent() const noexcept { return m_exponent; }

    unsigned take_digit() noexcept;
    void next_place() noexcept
    {
        m_rest.multiply_add(10, 0);
        m_low_margin.multiply_add(10, 0);
    }

    // Whether the digits taken, or those with one unit more, lie in the interval.
    bool is_low() const noexcept
    {
        return m_rest.compare(m_low_margin) < (m_ends_count ? 1 : 0);
    }
    bool is_high() const noexcept
    {
        FixedUint sum = m_low_margin;
        if (m_high_is_double)
            sum.add(m_low_margin);
        sum.add(m_rest);
        return sum.compare(m_unit) > (m_ends_count ? -1 : 0);
    }
    // Negative, 0 or positive, as the rest is below, at or above one half.
    int compare_with_half() const noexcept
    {
        FixedUint twice = m_rest;
        twice.add(m_rest);
        return twice.compare(m_unit);
    }

private:
    FixedUint m_rest;
    FixedUint m_low_margin;
    FixedUint m_unit;
    int m_exponent;
    bool m_high_is_double;  // the high margin is twice the low one
    bool m_ends_count;      // a tie reads back as the even significand
};

Remainder::Remainder(BinaryValue value, BinaryShape shape) noexcept
    : m_rest(value.significand),
      m_low_margin(1),
      m_unit(1),
      m_ends_count(value.significand % 2 == 0)
{
    // The value is 2^leading to below 2^(leading + 1); the low margin is 2^margin. The
    // neighbour below a power of two is closer than the one above.
    const int leading =
        value.exponent + static_cast<int>(std::bit_width(value.significand)) - 1;
    const int least_margin = shape.min_exponent - shape.precision;
    const bool is_power = std::has_single_bit(value.significand);
    const int margin = std::max(leading - shape.precision - int{is_power}, least_margin);
    m_high_is_double = is_power && leading - shape.precision - 1 > least_margin;
    m_rest.shift_left(static_cast<unsigned>(value.exponent - margin));

    // The exponent of the first digit, or one less.
    m_exponent = floor_log10_of_power_of_two(leading);
    // Both over 10^m_exponent, factors of two on one side only.
    if (m_exponent < 0) {
        m_rest.multiply_by_power_of_five(static_cast<unsigned>(-m_exponent));
        m_low_margin.multiply_by_power_of_five(static_cast<unsigned>(-m_exponent));
    } else {
        m_unit.multiply_by_power_of_five(static_cast<unsigned>(m_exponent));
    }
    if (const int twos = margin - m_exponent; twos < 0) {
        m_unit.shift_left(static_cast<unsigned>(-twos));
    } else {
        m_rest.shift_left(static_cast<unsigned>(twos));
        m_low_margin.shift_left(static_cast<unsigned>(twos));
    }
    FixedUint ten = m_unit;
    ten.multiply_add(10, 0);
    if (m_rest.compare(ten) >= 0) {
        ++m_exponent;
        m_unit = ten;
    }

    // take_digit wants the highest bit of the unit four places below a limb's.
    const unsigned up = (60 - m_unit.bit_length() % 64 + 64) % 64;
    m_rest.shift_left(up);
    m_low_margin.shift_left(up);
    m_unit.shift_left(up);
}

unsigned Remainder::take_digit() noexcept
{
    // The top limb of the unit is at least 2^59, so that the quotient of the top limbs
    // is right or one too small.
    const unsigned top = m_unit.size() - 1;
    Limb digit = m_rest.limb(top) / (m_unit.limb(top) + 1);
    m_rest.subtract_multiple(m_unit, digit);
    if (m_rest.compare(m_unit) >= 0) {
        m_rest.subtract(m_unit);
        ++digit;
    }
    return static_cast<unsigned>(digit);
}

// Whether to stop after the digits taken, and if so whether to round up.
struct Decision {
    bool stop;
    bool up;
};

Decision decide(const Remainder& remainder, bool last_is_odd, bool at_limit) noexcept
{
    const bool low = remainder.is_low();
    const bool high = remainder.is_high();
    if (!low && !high && !at_limit)
        return {false, false};
    if (low && !high)
        return {true, false};
    const int half = remainder.compare_with_half();
    const bool up = half > 0 || (half == 0 && last_is_odd);
    // Above a power of two the interval may hold the upper neighbour alone although
    // the lower one is nearer.
    return {low || at_limit || up, up};
}

}  // namespace

ShortDecimal exact_digits(BinaryValue value, BinaryShape shape, unsigned limit) noexcept
{
    Remainder remainder(value, shape);
    std::uint64_t coefficient = remainder.take_digit();
    Decision decision;
    unsigned count = 1;
    do {
        remainder.next_place();
        coefficient = coefficient * 10 + remainder.take_digit();
        ++count;
        decision = decide(remainder, coefficient % 2 != 0, count == limit);
    } while (!decision.stop);

    coefficient += decision.up;
    int exponent = remainder.exponent() - static_cast<int>(count) + 1;
    for (; coefficient % 10 == 0; coefficient /= 10)
        ++exponent;
    return {coefficient, exponent};
}

}  // namespace kiv::numconv
