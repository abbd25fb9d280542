// kiv/decimal.h - decimal floating-point numbers of 7, 16 and 34 digits.
//
//     using namespace kiv::literals;
//     using kiv::decimal::decimal64;
//
//     decimal64 price = 19.99_d64;
//     decimal64 total = price * 3 + kiv::stod64_c("0.05");   // 60.02, exactly
//     decimal64 cents = kiv::decimal::quantize(total / 7, 0.01_d64);
//     std::cout << std::fixed << std::setprecision(2) << cents << '\n';
//
// A value is a coefficient times a power of ten, and both are kept: 1.10 and 1.1 are
// equal, but 1.10 prints as 1.10. Sums and products that fit are exact and have the
// exponent that one writes by hand; everything else is rounded once, to the nearest
// value, ties to even. There are subnormal values, signed zeros, infinities and NaNs as
// in IEEE 754-2008. There are no traps and no flags.
//
// The conversions are declared with the types in kiv/kdecimal.h; none between two
// decimal types is implicit, so mixed operands do not compile. Integers mix with them
// as far as they convert implicitly.
//
// Arithmetic does not throw, allocate or look at errno or at a global state. Everything
// may be called from any thread.

#ifndef KIV_DECIMAL_H
#define KIV_DECIMAL_H

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <locale>
#include <string>
#include <type_traits>

#include <kiv/big_uint.h>
#include <kiv/char16.h>
#include <kiv/decimal_literals.h>
#include <kiv/export.h>
#include <kiv/kdecimal.h>
#include <kiv/numconv.h>
#include <kiv/string_ref.h>

namespace kiv::decimal {

// --- Arithmetic ----------------------------------------------------------------------

KIV_API decimal32 operator+(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 operator+(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 operator+(decimal128 x, decimal128 y) noexcept;
KIV_API decimal32 operator-(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 operator-(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 operator-(decimal128 x, decimal128 y) noexcept;
KIV_API decimal32 operator*(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 operator*(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 operator*(decimal128 x, decimal128 y) noexcept;
KIV_API decimal32 operator/(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 operator/(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 operator/(decimal128 x, decimal128 y) noexcept;

template <decimal_type D>
D& operator+=(D& x, std::type_identity_t<D> y) noexcept
{
    return x = x + y;
}
template <decimal_type D>
D& operator-=(D& x, std::type_identity_t<D> y) noexcept
{
    return x = x - y;
}
template <decimal_type D>
D& operator*=(D& x, std::type_identity_t<D> y) noexcept
{
    return x = x * y;
}
template <decimal_type D>
D& operator/=(D& x, std::type_identity_t<D> y) noexcept
{
    return x = x / y;
}

// x * y + z, rounded once.
KIV_API decimal32 fma(decimal32 x, decimal32 y, decimal32 z) noexcept;
KIV_API decimal64 fma(decimal64 x, decimal64 y, decimal64 z) noexcept;
KIV_API decimal128 fma(decimal128 x, decimal128 y, decimal128 z) noexcept;

KIV_API decimal32 sqrt(decimal32 x) noexcept;
KIV_API decimal64 sqrt(decimal64 x) noexcept;
KIV_API decimal128 sqrt(decimal128 x) noexcept;

// x - n * y, exactly, n being x / y without its fraction. Has the sign of x, NaNs
// included.
KIV_API decimal64 fmod(const decimal64& x, const decimal64& y) noexcept;
KIV_API decimal128 fmod(const decimal128& x, const decimal128& y) noexcept;

// --- Comparison: by value; zeros are equal, a NaN is unordered -----------------------

KIV_API bool operator==(decimal32 x, decimal32 y) noexcept;
KIV_API bool operator==(decimal64 x, decimal64 y) noexcept;
KIV_API bool operator==(decimal128 x, decimal128 y) noexcept;
KIV_API std::partial_ordering operator<=>(decimal32 x, decimal32 y) noexcept;
KIV_API std::partial_ordering operator<=>(decimal64 x, decimal64 y) noexcept;
KIV_API std::partial_ordering operator<=>(decimal128 x, decimal128 y) noexcept;

// Of a number and a quiet NaN the number. Of equal values min takes the one that is
// lower in the total order of the standard: -0 before 0, 1.0 before 1.
KIV_API decimal32 min(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 min(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 min(decimal128 x, decimal128 y) noexcept;
KIV_API decimal32 max(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 max(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 max(decimal128 x, decimal128 y) noexcept;

// The same for equal values, whatever their exponents.
KIV_API std::size_t hash_value(decimal32 x) noexcept;
KIV_API std::size_t hash_value(decimal64 x) noexcept;
KIV_API std::size_t hash_value(decimal128 x) noexcept;

// 0 zero, 1 subnormal, 2 normal, 3 infinite, 4 NaN.
KIV_API int fp_classify(const decimal64& x) noexcept;
KIV_API int fp_classify(const decimal128& x) noexcept;

// --- Rounding ------------------------------------------------------------------------

// x with the exponent of y, rounded to nearest, ties to even: to cents with 0.01. A NaN
// if that takes more digits than the type has.
KIV_API decimal32 quantize(decimal32 x, decimal32 y) noexcept;
KIV_API decimal64 quantize(decimal64 x, decimal64 y) noexcept;
KIV_API decimal128 quantize(decimal128 x, decimal128 y) noexcept;

// Whether the exponents are the same, or both are infinite, or both NaN.
KIV_API bool sameQuantum(decimal32 x, decimal32 y) noexcept;
KIV_API bool sameQuantum(decimal64 x, decimal64 y) noexcept;
KIV_API bool sameQuantum(decimal128 x, decimal128 y) noexcept;

enum class rounding {
    nearest_even,  // to the nearest, halves to the even neighbour
    nearest_away,  // to the nearest, halves away from zero
    toward_zero,
    upward,
    downward,
};

// A whole number; keeps an exponent above 0.
KIV_API decimal32 rint(decimal32 x, rounding direction = rounding::nearest_even) noexcept;
KIV_API decimal64 rint(decimal64 x, rounding direction = rounding::nearest_even) noexcept;
KIV_API decimal128 rint(decimal128 x,
                        rounding direction = rounding::nearest_even) noexcept;

// As an integer of 32 (long) or 64 bits: lrint rounds halves to even, lround away from
// zero, ltrunc cuts the fraction off. What does not fit sets errno to ERANGE and gives
// the nearest limit, also where long is wider; a NaN sets EDOM and gives 0.
KIV_API long lrint(const decimal64& x) noexcept;
KIV_API long lrint(const decimal128& x) noexcept;
KIV_API long long llrint(const decimal64& x) noexcept;
KIV_API long long llrint(const decimal128& x) noexcept;
KIV_API long lround(const decimal64& x) noexcept;
KIV_API long lround(const decimal128& x) noexcept;
KIV_API long long llround(const decimal64& x) noexcept;
KIV_API long long llround(const decimal128& x) noexcept;
KIV_API long ltrunc(const decimal64& x) noexcept;
KIV_API long ltrunc(const decimal128& x) noexcept;
// The least 64-bit integer is reported as out of range for decimal64, which has no
// value equal to it.
KIV_API long long lltrunc(const decimal64& x) noexcept;
KIV_API long long lltrunc(const decimal128& x) noexcept;

// The next greater and the next lesser value.
KIV_API decimal32 nextUp(decimal32 x) noexcept;
KIV_API decimal64 nextUp(decimal64 x) noexcept;
KIV_API decimal128 nextUp(decimal128 x) noexcept;
KIV_API decimal32 nextDown(decimal32 x) noexcept;
KIV_API decimal64 nextDown(decimal64 x) noexcept;
KIV_API decimal128 nextDown(decimal128 x) noexcept;

// --- Making and taking apart ---------------------------------------------------------

// coefficient * 10^exponent, with that exponent as long as it and the coefficient fit.
// What is too large becomes an infinity and sets errno to ERANGE. A decimal32 of more
// than 7 digits, or of an exponent out of range, is rounded to 16 digits first.
KIV_API KDecimal32 _make_decimal32(int coefficient, int exponent) noexcept;
KIV_API KDecimal32 _make_decimal32(unsigned coefficient, int exponent) noexcept;
KIV_API KDecimal32 _make_decimal32(long coefficient, int exponent) noexcept;
KIV_API KDecimal32 _make_decimal32(unsigned long coefficient, int exponent) noexcept;
KIV_API KDecimal32 _make_decimal32(long long coefficient, int exponent) noexcept;
KIV_API KDecimal32 _make_decimal32(unsigned long long coefficient, int exponent) noexcept;
KIV_API KDecimal64 _make_decimal64(int coefficient, int exponent) noexcept;
KIV_API KDecimal64 _make_decimal64(unsigned coefficient, int exponent) noexcept;
KIV_API KDecimal64 _make_decimal64(long coefficient, int exponent) noexcept;
KIV_API KDecimal64 _make_decimal64(unsigned long coefficient, int exponent) noexcept;
KIV_API KDecimal64 _make_decimal64(long long coefficient, int exponent) noexcept;
KIV_API KDecimal64 _make_decimal64(unsigned long long coefficient, int exponent) noexcept;
KIV_API KDecimal128 _make_decimal128(int coefficient, int exponent) noexcept;
KIV_API KDecimal128 _make_decimal128(unsigned coefficient, int exponent) noexcept;
KIV_API KDecimal128 _make_decimal128(long coefficient, int exponent) noexcept;
KIV_API KDecimal128 _make_decimal128(unsigned long coefficient, int exponent) noexcept;
KIV_API KDecimal128 _make_decimal128(long long coefficient, int exponent) noexcept;
KIV_API KDecimal128 _make_decimal128(unsigned long long coefficient,
                                     int exponent) noexcept;

// The fewest digits that tell the binary value from its neighbours, rounded to the
// decimal type: 0.1 becomes 0.1. Zeros have the least exponent. errno is left alone. A
// long double counts as a double.
KIV_API decimal32 binary_to_decimal32(float value) noexcept;
KIV_API decimal32 binary_to_decimal32(double value) noexcept;
KIV_API decimal32 binary_to_decimal32(long double value) noexcept;
KIV_API decimal32 binary_to_decimal32(binary16 value) noexcept;
KIV_API decimal64 binary_to_decimal64(float value) noexcept;
KIV_API decimal64 binary_to_decimal64(double value) noexcept;
KIV_API decimal64 binary_to_decimal64(long double value) noexcept;
KIV_API decimal64 binary_to_decimal64(binary16 value) noexcept;
KIV_API decimal128 binary_to_decimal128(float value) noexcept;
KIV_API decimal128 binary_to_decimal128(double value) noexcept;
KIV_API decimal128 binary_to_decimal128(long double value) noexcept;
KIV_API decimal128 binary_to_decimal128(binary16 value) noexcept;

// As it stands in the bits, canonical or not; 0 for an infinity, a NaN and, of
// decimal128, for the large form.
KIV_API std::uint64_t coefficient(const decimal64& x) noexcept;
KIV_API big_uint coefficient(const decimal128& x);

// The exponent of the last digit. An infinity or a NaN sets errno to EDOM and gives the
// least int.
KIV_API int quantexp(const decimal64& x) noexcept;
KIV_API int quantexp(const decimal128& x) noexcept;

// x = result * 10^*e with 0.1 <= abs(result) < 1; the digits stay. Of zeros, infinities
// and NaNs x itself and *e = 0.
KIV_API decimal64 frexp(const decimal64& x, int* e) noexcept;
KIV_API decimal128 frexp(const decimal128& x, int* e) noexcept;

// --- Text with a locale --------------------------------------------------------------
//
// Point, separator and grouping are those of the locale's std::numpunct<char>, the
// classic one's if none is given.

// A number at the start of s, rounded to nearest. With `end` or `idx` text may follow:
// *end is set past the number; reading starts at s[*idx], and the characters read are
// added to *idx. Without, only white space may (that of the C library's locale).
// Without a number: a NaN, *end is s, *idx stays.
KIV_API decimal64 strtod64(const char* s, const char** end = nullptr);
KIV_API decimal64 strtod64(const std::locale& locale, const char* s,
                           const char** end = nullptr);
KIV_API decimal64 strtod64(const std::string& s, std::size_t* idx = nullptr);
KIV_API decimal64 strtod64(const std::locale& locale, const std::string& s,
                           std::size_t* idx = nullptr);
KIV_API decimal128 strtod128(const char* s, const char** end = nullptr);
KIV_API decimal128 strtod128(const std::locale& locale, const char* s,
                             const char** end = nullptr);
KIV_API decimal128 strtod128(const std::string& s, std::size_t* idx = nullptr);
KIV_API decimal128 strtod128(const std::locale& locale, const std::string& s,
                             std::size_t* idx = nullptr);

// Extraction stores complete numbers only; otherwise the failbit is set.
KIV_API std::basic_istream<char>& operator>>(std::basic_istream<char>& in, decimal32& x);
KIV_API std::basic_istream<char>& operator>>(std::basic_istream<char>& in, decimal64& x);
KIV_API std::basic_istream<char>& operator>>(std::basic_istream<char>& in, decimal128& x);

// With std::fixed, std::scientific, std::setprecision, std::showpos, std::showpoint,
// std::uppercase, std::setw and so on, as for a double. With a precision of 0 and
// neither notation all digits are written, as they are; a stream begins with 6.
KIV_API std::basic_ostream<char>& operator<<(std::basic_ostream<char>& out,
                                             const decimal32& x);
KIV_API std::basic_ostream<char>& operator<<(std::basic_ostream<char>& out,
                                             const decimal64& x);
KIV_API std::basic_ostream<char>& operator<<(std::basic_ostream<char>& out,
                                             const decimal128& x);

// In fixed notation with `precision` digits behind the point.
KIV_API std::string to_string(const decimal32& x, int precision);
KIV_API std::string to_string(const decimal64& x, int precision);
KIV_API std::string to_string(const decimal128& x, int precision);
KIV_API std::string to_string(const std::locale& locale, const decimal32& x,
                              int precision);
KIV_API std::string to_string(const std::locale& locale, const decimal64& x,
                              int precision);
KIV_API std::string to_string(const std::locale& locale, const decimal128& x,
                              int precision);

}  // namespace kiv::decimal

namespace kiv {

// --- Text without a locale -----------------------------------------------------------
//
// The three shapes of parsers that kiv/numconv.h explains, for the same text but
// hexadecimal. The digits stay as they are written: 1.50 is 150 * 10^-2. A text of more
// digits than the type has is rounded once, to nearest, ties to even. What is too large
// is an infinity and no error; without a number strtoX_c gives 0 with the least
// exponent, stoX_c throws std::invalid_argument.

KIV_API decimal::decimal32 strtod32_c(const char* s, char** end = nullptr);
KIV_API decimal::decimal32 strtod32_c(const char16* s, char16** end = nullptr);
KIV_API decimal::decimal32 stod32_c(basic_string_ref<char> s, std::size_t* idx = nullptr);
KIV_API decimal::decimal32 stod32_c(basic_string_ref<char16> s,
                                    std::size_t* idx = nullptr);
KIV_API decimal::decimal32 stod32_c(BasicCharIterator<char>& it);
KIV_API decimal::decimal32 stod32_c(BasicCharIterator<char16>& it);

KIV_API decimal::decimal64 strtod64_c(const char* s, char** end = nullptr);
KIV_API decimal::decimal64 strtod64_c(const char16* s, char16** end = nullptr);
KIV_API decimal::decimal64 stod64_c(basic_string_ref<char> s, std::size_t* idx = nullptr);
KIV_API decimal::decimal64 stod64_c(basic_string_ref<char16> s,
                                    std::size_t* idx = nullptr);
KIV_API decimal::decimal64 stod64_c(BasicCharIterator<char>& it);
KIV_API decimal::decimal64 stod64_c(BasicCharIterator<char16>& it);

KIV_API decimal::decimal128 strtod128_c(const char* s, char** end = nullptr);
KIV_API decimal::decimal128 strtod128_c(const char16* s, char16** end = nullptr);
KIV_API decimal::decimal128 stod128_c(basic_string_ref<char> s,
                                      std::size_t* idx = nullptr);
KIV_API decimal::decimal128 stod128_c(basic_string_ref<char16> s,
                                      std::size_t* idx = nullptr);
KIV_API decimal::decimal128 stod128_c(BasicCharIterator<char>& it);
KIV_API decimal::decimal128 stod128_c(BasicCharIterator<char16>& it);

// All digits of the coefficient: 1.50, and 150. with nothing behind the point; with an
// exponent from 10^7 on, below 0.001 and where the last digit is above the units:
// 1.E2, 1.23E-5. Also 0.00, -0., Infinity, -Infinity, and NaN without a sign. Reading
// the text back gives the same digits and exponent.

KIV_API std::string to_string_c(decimal::decimal32 x);
KIV_API std::string to_string_c(decimal::decimal64 x);
KIV_API std::string to_string_c(decimal::decimal128 x);
KIV_API ustring to_ustring_c(decimal::decimal32 x);
KIV_API ustring to_ustring_c(decimal::decimal64 x);
KIV_API ustring to_ustring_c(decimal::decimal128 x);

namespace decimal {

// Where argument-dependent look-up goes.
using kiv::to_string_c;
using kiv::to_ustring_c;

}  // namespace decimal
}  // namespace kiv

template <kiv::decimal::decimal_type D>
struct std::hash<D> {
    std::size_t operator()(D x) const noexcept { return hash_value(x); }
};

#endif
