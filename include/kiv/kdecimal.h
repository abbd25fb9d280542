// kiv/kdecimal.h - bit patterns of the decimal floating-point types.
//
// IEEE 754-2008 interchange formats in the binary-integer-decimal encoding: sign
// bit, biased exponent and coefficient, the coefficient as a binary integer. They
// carry values between the library and the companion library; to compute with them,
// use the types of kiv/decimal.h.

#ifndef KIV_KDECIMAL_H
#define KIV_KDECIMAL_H

#include <cstdint>

namespace kiv {

struct KDecimal32 {
    std::uint32_t bits;
};

struct KDecimal64 {
    std::uint64_t bits;
};

struct KDecimal128 {
    std::uint64_t low;   // bits 0 to 63
    std::uint64_t high;  // bits 64 to 127, with sign and exponent
};

}  // namespace kiv

#endif
