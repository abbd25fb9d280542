// char/companion_decimal.h - the decimal functions of the companion library.
//
// IEEE 754-2008 arithmetic on decimal32, decimal64 and decimal128 values in the
// binary-integer-decimal encoding, for every bit pattern: a coefficient above the
// format's digits counts as zero. A result that is not exact is rounded once, to the
// nearest value, ties to even, unless the function names another direction; an exact
// one keeps the exponent that the standard prefers as far as its digits allow.
//
// A NaN among the operands makes a quiet NaN with the sign and the payload of the first
// one, the payload 0 if it is out of range; an invalid operation makes the positive
// quiet NaN with payload 0. There are no flags, so signalling NaNs differ from quiet
// ones in kivDec64Class, kivDec64MinNum and kivDec64MaxNum only. All functions are pure
// and may be called from any thread; none allocates or touches errno.

#ifndef KIV_CHAR_COMPANION_DECIMAL_H
#define KIV_CHAR_COMPANION_DECIMAL_H

#include <cstdint>

#include <kiv/kdecimal.h>

namespace kiv {

// Directions of kivDec64Rint.
enum DecRounding : int {
    DEC_NEAREST_EVEN = 0,  // to nearest, ties to the even neighbour
    DEC_TOWARD_ZERO = 1,
    DEC_UPWARD = 2,
    DEC_DOWNWARD = 3,
    DEC_NEAREST_AWAY = 4,  // to nearest, ties away from zero
};

// What kivDec64Compare returns.
enum DecOrder : int {
    DEC_LESS = -1,
    DEC_EQUAL = 0,
    DEC_GREATER = 1,
    DEC_UNORDERED = 2,  // one is a NaN
};

// What kivDec64Class returns.
enum DecClass : int {
    DEC_SIGNALLING_NAN = 0,
    DEC_QUIET_NAN = 1,
    DEC_NEGATIVE_INFINITY = 2,
    DEC_NEGATIVE_NORMAL = 3,
    DEC_NEGATIVE_SUBNORMAL = 4,
    DEC_NEGATIVE_ZERO = 5,
    DEC_POSITIVE_ZERO = 6,
    DEC_POSITIVE_SUBNORMAL = 7,
    DEC_POSITIVE_NORMAL = 8,
    DEC_POSITIVE_INFINITY = 9,
};

// How a value is written, with printf's meaning of each field.
struct DecFormatSpec {
    char conversion;             // 'e', 'E', 'f', 'F', 'g' or 'G'; others count as 'g'
    char sign;                   // '+' or 0
    bool alternate;              // printf's '#'
    std::int32_t precision;      // negative: the default, see kivDec64FormatString
    std::int32_t decimal_point;  // a character of the text, as unsigned char
    std::int32_t thousands_sep;  // likewise; 0: no grouping
    const char* grouping;        // group sizes from the point on, NUL-ended; the last one
                                 // repeats, 127 ends the grouping; may be null
};

// Of an incremental parse; owned by the caller, filled by kivDecParseInit.
struct DecParseState {
    std::uint64_t coefficient_low;  // the digits kept, at most max_digits
    std::uint64_t coefficient_high;
    std::int64_t scale;     // exponent of the last kept digit, without `exponent`
    std::int32_t exponent;  // magnitude of the written exponent, saturated
    std::int16_t decimal_point;
    std::int16_t thousands_sep;  // -1: none
    std::uint8_t max_digits;
    std::uint8_t digits;   // kept, from the first that is not 0
    std::uint8_t dropped;  // what is below the last kept digit
    std::uint8_t phase;
    std::uint8_t flags;
    std::uint8_t unused[3];
};

static_assert(sizeof(DecFormatSpec) == 24 && sizeof(DecParseState) == 40);

}  // namespace kiv

extern "C" {

// --- Arithmetic -------------------------------------------------------------------

// x + y.
kiv::KDecimal32 kivDec32Add(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64Add(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128Add(kiv::KDecimal128 x, kiv::KDecimal128 y);

// x - y.
kiv::KDecimal32 kivDec32Subtract(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64Subtract(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128Subtract(kiv::KDecimal128 x, kiv::KDecimal128 y);

// x * y.
kiv::KDecimal32 kivDec32Multiply(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64Multiply(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128Multiply(kiv::KDecimal128 x, kiv::KDecimal128 y);

// x / y.
kiv::KDecimal32 kivDec32Divide(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64Divide(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128Divide(kiv::KDecimal128 x, kiv::KDecimal128 y);

// x * y + z with one rounding.
kiv::KDecimal32 kivDec32Fma(kiv::KDecimal32 x, kiv::KDecimal32 y, kiv::KDecimal32 z);
kiv::KDecimal64 kivDec64Fma(kiv::KDecimal64 x, kiv::KDecimal64 y, kiv::KDecimal64 z);
kiv::KDecimal128 kivDec128Fma(kiv::KDecimal128 x, kiv::KDecimal128 y, kiv::KDecimal128 z);

// The square root.
kiv::KDecimal32 kivDec32Sqrt(kiv::KDecimal32 x);
kiv::KDecimal64 kivDec64Sqrt(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec128Sqrt(kiv::KDecimal128 x);

// x - n * y, exact, where n is the whole number nearest to x / y, the even one in a tie.
kiv::KDecimal32 kivDec32Remainder(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64Remainder(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128Remainder(kiv::KDecimal128 x, kiv::KDecimal128 y);

// --- Order and class ---------------------------------------------------------------

// A kiv::DecOrder.
int kivDec32Compare(kiv::KDecimal32 x, kiv::KDecimal32 y);
int kivDec64Compare(kiv::KDecimal64 x, kiv::KDecimal64 y);
int kivDec128Compare(kiv::KDecimal128 x, kiv::KDecimal128 y);

// Nonzero if x and y are not equal, and if one is a NaN.
int kivDec32QuietNotEqual(kiv::KDecimal32 x, kiv::KDecimal32 y);
int kivDec64QuietNotEqual(kiv::KDecimal64 x, kiv::KDecimal64 y);
int kivDec128QuietNotEqual(kiv::KDecimal128 x, kiv::KDecimal128 y);

// The lesser; the other one if one is a quiet NaN. Among equal values the total order of
// the standard decides: -0 is below 0, and 1.0 below 1.
kiv::KDecimal32 kivDec32MinNum(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64MinNum(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128MinNum(kiv::KDecimal128 x, kiv::KDecimal128 y);

// The greater; the other one if one is a quiet NaN. Equal values as above.
kiv::KDecimal32 kivDec32MaxNum(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64MaxNum(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128MaxNum(kiv::KDecimal128 x, kiv::KDecimal128 y);

// A kiv::DecClass.
int kivDec32Class(kiv::KDecimal32 x);
int kivDec64Class(kiv::KDecimal64 x);
int kivDec128Class(kiv::KDecimal128 x);

// Nonzero for an infinity.
int kivDec32IsInfinite(kiv::KDecimal32 x);
int kivDec64IsInfinite(kiv::KDecimal64 x);
int kivDec128IsInfinite(kiv::KDecimal128 x);

// Nonzero for a NaN.
int kivDec32IsNaN(kiv::KDecimal32 x);
int kivDec64IsNaN(kiv::KDecimal64 x);
int kivDec128IsNaN(kiv::KDecimal128 x);

// --- Sign: one bit of the pattern, nothing else is changed ---------------------------

// Positive.
kiv::KDecimal32 kivDec32Abs(kiv::KDecimal32 x);
kiv::KDecimal64 kivDec64Abs(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec128Abs(kiv::KDecimal128 x);

// The other sign.
kiv::KDecimal32 kivDec32Negate(kiv::KDecimal32 x);
kiv::KDecimal64 kivDec64Negate(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec128Negate(kiv::KDecimal128 x);

// The sign of y.
kiv::KDecimal32 kivDec32CopySign(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64CopySign(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128CopySign(kiv::KDecimal128 x, kiv::KDecimal128 y);

// --- Exponent and neighbours ---------------------------------------------------------

// x * 10^n.
kiv::KDecimal32 kivDec32ScaleB(kiv::KDecimal32 x, int n);
kiv::KDecimal64 kivDec64ScaleB(kiv::KDecimal64 x, int n);
kiv::KDecimal128 kivDec128ScaleB(kiv::KDecimal128 x, int n);

// The exponent of the leading digit; INT_MIN for zero and NaN, INT_MAX for infinity.
int kivDec32LogB(kiv::KDecimal32 x);
int kivDec64LogB(kiv::KDecimal64 x);
int kivDec128LogB(kiv::KDecimal128 x);

// x rounded to the exponent of y; a NaN if that takes too many digits or one is infinite.
kiv::KDecimal32 kivDec32Quantize(kiv::KDecimal32 x, kiv::KDecimal32 y);
kiv::KDecimal64 kivDec64Quantize(kiv::KDecimal64 x, kiv::KDecimal64 y);
kiv::KDecimal128 kivDec128Quantize(kiv::KDecimal128 x, kiv::KDecimal128 y);

// Nonzero if the exponents are the same, or both are infinite, or both NaN.
int kivDec32SameQuantum(kiv::KDecimal32 x, kiv::KDecimal32 y);
int kivDec64SameQuantum(kiv::KDecimal64 x, kiv::KDecimal64 y);
int kivDec128SameQuantum(kiv::KDecimal128 x, kiv::KDecimal128 y);

// The least value above x.
kiv::KDecimal32 kivDec32NextUp(kiv::KDecimal32 x);
kiv::KDecimal64 kivDec64NextUp(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec128NextUp(kiv::KDecimal128 x);

// The greatest value below x.
kiv::KDecimal32 kivDec32NextDown(kiv::KDecimal32 x);
kiv::KDecimal64 kivDec64NextDown(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec128NextDown(kiv::KDecimal128 x);

// --- Whole numbers -------------------------------------------------------------------

// x as a whole number, rounded as the kiv::DecRounding says; others count as 0.
kiv::KDecimal32 kivDec32Rint(kiv::KDecimal32 x, int mode);
kiv::KDecimal64 kivDec64Rint(kiv::KDecimal64 x, int mode);
kiv::KDecimal128 kivDec128Rint(kiv::KDecimal128 x, int mode);

// Likewise; its callers pass DEC_NEAREST_EVEN.
kiv::KDecimal32 kivDec32RoundExact(kiv::KDecimal32 x, int mode);
kiv::KDecimal64 kivDec64RoundExact(kiv::KDecimal64 x, int mode);
kiv::KDecimal128 kivDec128RoundExact(kiv::KDecimal128 x, int mode);

// x as a whole number, halves away from zero.
kiv::KDecimal32 kivDec32RoundHalfUp(kiv::KDecimal32 x);
kiv::KDecimal64 kivDec64RoundHalfUp(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec128RoundHalfUp(kiv::KDecimal128 x);

// n with exponent 0, rounded if it has too many digits.
kiv::KDecimal32 kivDec32FromInt64(std::int64_t n);
kiv::KDecimal64 kivDec64FromInt64(std::int64_t n);
kiv::KDecimal128 kivDec128FromInt64(std::int64_t n);

kiv::KDecimal32 kivDec32FromUInt64(std::uint64_t n);
kiv::KDecimal64 kivDec64FromUInt64(std::uint64_t n);
kiv::KDecimal128 kivDec128FromUInt64(std::uint64_t n);

// Truncated toward zero; the type's minimum for a NaN and for what is out of range.
std::int64_t kivDec32ToInt64(kiv::KDecimal32 x);
std::int64_t kivDec64ToInt64(kiv::KDecimal64 x);
std::int64_t kivDec128ToInt64(kiv::KDecimal128 x);

std::int32_t kivDec32ToInt32(kiv::KDecimal32 x);
std::int32_t kivDec64ToInt32(kiv::KDecimal64 x);
std::int32_t kivDec128ToInt32(kiv::KDecimal128 x);

// --- Other widths: the value, rounded if need be, and the payload of a NaN ------------

kiv::KDecimal64 kivDec32ToDec64(kiv::KDecimal32 x);
kiv::KDecimal128 kivDec32ToDec128(kiv::KDecimal32 x);
kiv::KDecimal32 kivDec64ToDec32(kiv::KDecimal64 x);
kiv::KDecimal128 kivDec64ToDec128(kiv::KDecimal64 x);
kiv::KDecimal32 kivDec128ToDec32(kiv::KDecimal128 x);
kiv::KDecimal64 kivDec128ToDec64(kiv::KDecimal128 x);

// --- Text ----------------------------------------------------------------------------

// Writes at most `size` bytes of the text, the last of them a NUL, nothing if size is 0;
// returns the length of the whole text without the NUL.
//
// As in printf the default precision of 'e' and 'f' is 6. That of 'g' writes the value
// as it is, trailing zeros included: all digits of the coefficient, with an exponent
// only if the last digit is above the units or the first one below 10^-4. In all other
// forms a zero is 0, whatever its exponent. Digits that are cut off are rounded to
// nearest, ties to even.
int kivDec32FormatString(const kiv::DecFormatSpec* spec, kiv::KDecimal32 x, char* buffer,
                         int size);
int kivDec64FormatString(const kiv::DecFormatSpec* spec, kiv::KDecimal64 x, char* buffer,
                         int size);
int kivDec128FormatString(const kiv::DecFormatSpec* spec, kiv::KDecimal128 x,
                          char* buffer, int size);

// Prepares for a number of 7, 16 or 34 digits: white space, a sign, digits with single
// separators between them, a point, more digits, an exponent; or "inf", "infinity" or
// "nan" in any case. A separator of 0 or one that is the point counts as none. Returns
// 0, or -1 if it refuses: other digits, a point or a separator that means something
// else in a number, a syntax other than 1.
int kivDecParseInit(kiv::DecParseState* state, int digits, std::int32_t decimal_point,
                    std::int32_t thousands_sep, int syntax);

// Bit 0: the text so far, c included, is a number. Bit 1: the number ends at c, which
// belongs to it only if bit 0 is set too. After that every call returns 2.
int kivDecParseNextChar(kiv::DecParseState* state, std::int32_t c);

// The number: the longest text that was one, rounded once, however long it was. A NaN if
// there was none.
kiv::KDecimal32 kivDec32ParseGetValue(const kiv::DecParseState* state);
kiv::KDecimal64 kivDec64ParseGetValue(const kiv::DecParseState* state);
kiv::KDecimal128 kivDec128ParseGetValue(const kiv::DecParseState* state);

}  // extern "C"

#endif
