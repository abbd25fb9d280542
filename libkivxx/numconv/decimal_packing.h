// numconv/decimal_packing.h - the nearest decimal value of a sign, an exponent and a
// coefficient, ties to even.

#ifndef KIV_NUMCONV_DECIMAL_PACKING_H
#define KIV_NUMCONV_DECIMAL_PACKING_H

#include <cstdint>

#include <kiv/big_uint.h>
#include <kiv/kdecimal.h>

#include "bigint/words.h"

namespace kiv::numconv {

// (-1)^negative * coefficient * 10^exponent. The exponent may be as far out as a sum
// of ints is. `dropped` tells what was cut off below the coefficient's last digit, as
// big_uint::compute_rounding_info() does; 0 is nothing. A coefficient that is not
// longer than the type's precision is then rounded to its own digits.
// Instantiated for the three decimal types.
template <class Decimal>
Decimal pack_decimal(bool negative, std::int64_t exponent, const big_uint& coefficient,
                     unsigned dropped);
template <class Decimal>
Decimal pack_decimal(bool negative, std::int64_t exponent, words::Wide coefficient,
                     unsigned dropped) noexcept;

extern template decimal::decimal32 pack_decimal(bool, std::int64_t, const big_uint&,
                                                unsigned);
extern template decimal::decimal64 pack_decimal(bool, std::int64_t, const big_uint&,
                                                unsigned);
extern template decimal::decimal128 pack_decimal(bool, std::int64_t, const big_uint&,
                                                 unsigned);
extern template decimal::decimal32 pack_decimal(bool, std::int64_t, words::Wide,
                                                unsigned) noexcept;
extern template decimal::decimal64 pack_decimal(bool, std::int64_t, words::Wide,
                                                unsigned) noexcept;
extern template decimal::decimal128 pack_decimal(bool, std::int64_t, words::Wide,
                                                 unsigned) noexcept;

}  // namespace kiv::numconv

#endif
