// decimal/from_binary.h - the binary values that have no digits.

#ifndef KIV_DECIMAL_FROM_BINARY_H
#define KIV_DECIMAL_FROM_BINARY_H

#include <kiv/numconv.h>

#include "numconv/decimal_format.h"

namespace kiv::decimal {

// Zeros get the exponent given; make() takes the other finite values without their sign.
template <class Decimal, class Float, class Make>
Decimal from_any(Float value, int exponent_of_zero, Make make)
{
    using Format = numconv::DecimalFormat<Decimal>;
    const bool negative = sign_bit(value);
    if (kiv::is_nan(value))
        return Format::value(numconv::positive_nan<Format>());
    if (is_inf(value))
        return Format::value(numconv::signed_infinity<Format>(negative));
    if (is_zero(value))
        return Format::value(numconv::encode<Format>(negative, exponent_of_zero, 0));
    return make(negative);
}

}  // namespace kiv::decimal

#endif
