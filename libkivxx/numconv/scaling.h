// numconv/scaling.h - what the binary and the decimal assemblers share: sizes,
// powers and quotients of coefficients of any size.

#ifndef KIV_NUMCONV_SCALING_H
#define KIV_NUMCONV_SCALING_H

#include <cstdint>

#include <kiv/big_uint.h>

namespace kiv::numconv {

// floor(log10) of a value of `bits` bits, at least 1, is one of these two; they
// differ by 1 at most. A big_uint has less than 2^21 bits, and the constants are
// log10(2) * 2^32 rounded down and up, so the error stays below 2^-11.
constexpr int log10_at_least(unsigned bits) noexcept
{
    return static_cast<int>((std::uint64_t{bits} - 1) * 1292913986 >> 32);
}
constexpr int log10_at_most(unsigned bits) noexcept
{
    return static_cast<int>(std::uint64_t{bits} * 1292913987 >> 32);
}

// What is known of a discarded part, in units of the last digit or bit kept: the values
// of big_uint::compute_rounding_info(), 0 if there is none.
constexpr unsigned BELOW_HALF = 1;
constexpr unsigned HALF = 2;
constexpr unsigned ABOVE_HALF = 3;

// floor(value * 2^shift), without leading zero words.
big_uint shifted(const big_uint& value, int shift);

struct Quotient {
    big_uint value;  // floor(coefficient * 2^shift / divisor)
    bool inexact;    // the exact quotient is greater
};

// Both of any length that a big_uint may have; the divisor is not zero.
Quotient divide(const big_uint& coefficient, int shift, const big_uint& divisor);

}  // namespace kiv::numconv

#endif
