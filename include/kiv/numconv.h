// kiv/numconv.h - numbers from their parts, without regard to any locale.
//
//     double tenth = kiv::make_double(false, -1, 1u);           // 0.1
//     double least = kiv::pack_double(false, -1074, 1u);        // smallest subnormal
//     auto price = kiv::pack_decimal64(true, -2, 1999u);        // -19.99
//
// Every result is the value of its type that is nearest to the exact one, ties to
// even, for every coefficient and exponent. What is too large becomes an infinity,
// what is too small a subnormal number or zero; a zero coefficient gives zero
// whatever the exponent. The sign is kept in each of these cases. The processor is
// taken to round to nearest, as it does unless told otherwise.
//
// Nothing here throws but std::bad_alloc. All may be called from any thread.

#ifndef KIV_NUMCONV_H
#define KIV_NUMCONV_H

#include <kiv/big_uint.h>
#include <kiv/export.h>
#include <kiv/kdecimal.h>

namespace kiv {

// --- (-1)^negative * coefficient * 10^exponent -----------------------------------
//
// Without long arithmetic for a coefficient below 2^53 (2^24 for float) and an
// exponent from -22 to 22 (-10 to 10).

KIV_API float make_float(bool negative, int exponent, const big_uint& coefficient);
KIV_API double make_double(bool negative, int exponent, const big_uint& coefficient);
// A double in every case, wider though the type may be.
KIV_API long double make_long_double(bool negative, int exponent,
                                     const big_uint& coefficient);

// The exponent stays as it is while the coefficient fits in 7, 16 or 34 digits and
// the exponent in the type's range, so 10 * 10^0 and 1 * 10^1 differ in their bits.
KIV_API decimal::decimal32 pack_decimal32(bool negative, int exponent,
                                          const big_uint& coefficient);
KIV_API decimal::decimal64 pack_decimal64(bool negative, int exponent,
                                          const big_uint& coefficient);
KIV_API decimal::decimal128 pack_decimal128(bool negative, int exponent,
                                            const big_uint& coefficient);

// --- (-1)^negative * coefficient * 2^exponent ------------------------------------

KIV_API float pack_float(bool negative, int exponent, const big_uint& coefficient);
KIV_API double pack_double(bool negative, int exponent, const big_uint& coefficient);
// A double in every case.
KIV_API long double pack_long_double(bool negative, int exponent,
                                     const big_uint& coefficient);

}  // namespace kiv

#endif
