#include "numconv/float_scales.h"

#include <array>
#include <cstddef>
#include <utility>

#include "numconv/exact_digits.h"

namespace kiv::numconv {
namespace {

// A fixed-point number, rounded down: 10^44 has 147 bits, and 64 bits of 10^-32 * 2^104
// end 168 bits behind the point.
class FixedPoint {
public:
    constexpr explicit FixedPoint(std::uint32_t value) { m_words[POINT] = value; }

    constexpr void multiply_by_ten()
    {
        std::uint64_t carry = 0;
        for (std::uint32_t& word : m_words) {
            carry += std::uint64_t{word} * 10;
            word = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }
    constexpr void divide_by_ten()
    {
        std::uint64_t remainder = 0;
        for (std::size_t i = m_words.size(); i-- != 0;) {
            remainder = remainder << 32 | m_words[i];
            m_words[i] = static_cast<std::uint32_t>(remainder / 10);
            remainder %= 10;
        }
    }
    // *this * 2^e, which is below 2^64.
    constexpr std::uint64_t scaled(int e) const
    {
        std::uint64_t result = 0;
        for (int i = 32 * POINT - e + 63; i >= 32 * POINT - e; --i)
            result = result << 1 | (m_words[static_cast<unsigned>(i) / 32] >> i % 32 & 1);
        return result;
    }

private:
    static constexpr int POINT = 6;

    std::array<std::uint32_t, POINT + 5> m_words{};
};

using Scales = std::array<FloatScale, MOST_FLOAT_SCALE - LEAST_FLOAT_SCALE + 1>;

constexpr Scales make_scales()
{
    Scales scales{};
    FixedPoint power(1);  // 10^-exponent
    int exponent = 0;
    for (; exponent > floor_log10_of_power_of_two(LEAST_FLOAT_SCALE) + 1; --exponent)
        power.multiply_by_ten();
    for (int e = LEAST_FLOAT_SCALE; e <= MOST_FLOAT_SCALE; ++e) {
        for (; exponent < floor_log10_of_power_of_two(e) + 1; ++exponent)
            power.divide_by_ten();
        scales[static_cast<std::size_t>(e - LEAST_FLOAT_SCALE)] = {power.scaled(64 + e),
                                                                   exponent};
    }
    return scales;
}

}  // namespace

constexpr Scales float_scales = make_scales();

}  // namespace kiv::numconv
