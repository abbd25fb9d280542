// kiv/decimal.h - decimal floating-point types of 7, 16 and 34 digits.
//
// The types are plain values, defined in kiv/kdecimal.h; kiv/numconv.h makes them.
//
//     kiv::decimal::decimal64 price = kiv::pack_decimal64(false, -2, 1999u);  // 19.99

#ifndef KIV_DECIMAL_H
#define KIV_DECIMAL_H

#include <kiv/kdecimal.h>
#include <kiv/numconv.h>

#endif
