// numconv/float_scales.h - for each exponent of a float, the power of ten that brings an
// ulp to 1/10 to below 1.

#ifndef KIV_NUMCONV_FLOAT_SCALES_H
#define KIV_NUMCONV_FLOAT_SCALES_H

#include <array>
#include <cstdint>

namespace kiv::numconv {

// 2^e = ulp / 2^64 * 10^exponent. Double has eight times as many exponents, too many for
// a table of its own.
struct FloatScale {
    std::uint64_t ulp;  // rounded down
    std::int64_t exponent;
};

constexpr int LEAST_FLOAT_SCALE = -149;
constexpr int MOST_FLOAT_SCALE = 104;

// Entry e - LEAST_FLOAT_SCALE.
extern const std::array<FloatScale, MOST_FLOAT_SCALE - LEAST_FLOAT_SCALE + 1>
    float_scales;

}  // namespace kiv::numconv

#endif
