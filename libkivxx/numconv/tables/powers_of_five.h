// numconv/tables/powers_of_five.h - the top 128 bits of powers of five.

#ifndef KIV_NUMCONV_TABLES_POWERS_OF_FIVE_H
#define KIV_NUMCONV_TABLES_POWERS_OF_FIVE_H

#include <cstdint>

#include "bigint/words.h"

namespace kiv::tables {

constexpr int LEAST_POWER_OF_FIVE = -343;
constexpr int MOST_POWER_OF_FIVE = 324;

// Entry e - LEAST_POWER_OF_FIVE is floor(5^e * 2^s) for the s that makes it 128 bits
// long. Exact for 0 <= e <= 55; 64 bits hold it for e <= 27. The array is generated.
extern const words::Wide powers_of_five[668];

inline const words::Wide& power_of_five(int e) noexcept
{
    return powers_of_five[e - LEAST_POWER_OF_FIVE];
}

// floor(e * log2(5)), so that 5^e is power_of_five(e) * 2^(it - 127), to 128 bits. Also
// floor(log2(10^e)) less e. The constant is log2(5) * 2^16 to nearest: right for
// every e of the table.
constexpr int floor_log2_of_power_of_five(int e) noexcept
{
    return static_cast<int>(e * std::int64_t{152170} >> 16);
}

}  // namespace kiv::tables

#endif
