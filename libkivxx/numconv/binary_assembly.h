// numconv/binary_assembly.h - the nearest float or double of a sign, an exponent and
// a coefficient, ties to even.
//
// Instantiated for float and double. Exponents may be as far out as a sum of ints
// is. `dropped` tells what was cut off below the coefficient, in units of its last
// digit or bit, as big_uint::compute_rounding_info() does; 0 is nothing.

#ifndef KIV_NUMCONV_BINARY_ASSEMBLY_H
#define KIV_NUMCONV_BINARY_ASSEMBLY_H

#include <cstdint>

#include <kiv/big_uint.h>

namespace kiv::numconv {

// coefficient * 2^exponent. If something was dropped from a coefficient of fewer
// bits than the significand has, it counts as if it lay below the significand.
template <class Float>
Float assemble_binary(bool negative, std::int64_t exponent, const big_uint& coefficient,
                      unsigned dropped);

// coefficient * 10^exponent. If something was dropped, the coefficient is rounded to
// its own digits first, unless the exponent is 0.
template <class Float>
Float assemble_decimal(bool negative, std::int64_t exponent, const big_uint& coefficient,
                       unsigned dropped);

extern template float assemble_binary(bool, std::int64_t, const big_uint&, unsigned);
extern template double assemble_binary(bool, std::int64_t, const big_uint&, unsigned);
extern template float assemble_decimal(bool, std::int64_t, const big_uint&, unsigned);
extern template double assemble_decimal(bool, std::int64_t, const big_uint&, unsigned);

}  // namespace kiv::numconv

#endif
