// Decimal arithmetic on GMP's integers: the exact result, rounded once. Values are taken
// apart by their bits, without a line of the library.

#ifndef KIV_FUZZ_DECIMAL_MODEL_H
#define KIV_FUZZ_DECIMAL_MODEL_H

#include <algorithm>
#include <compare>
#include <cstring>
#include <string>

#include <kiv/kdecimal.h>

#include "bigint/gmp_model.h"

namespace kivfuzz {

using kivtest::power;

// IEEE 754-2008, table 3.6; exponents are those of the last digit.
template <class D>
struct Format {
    static constexpr int WIDTH = 8 * sizeof(D);
    static constexpr int DIGITS = WIDTH == 32 ? 7 : WIDTH == 64 ? 16 : 34;
    static constexpr int FIELD = WIDTH == 32 ? 23 : WIDTH == 64 ? 53 : 113;
    static constexpr int LEAST = WIDTH == 32 ? -101 : WIDTH == 64 ? -398 : -6176;
    static constexpr int MOST = WIDTH == 32 ? 90 : WIDTH == 64 ? 369 : 6111;
};

enum class Kind { FINITE, INFINITE, NAN_ };

struct Number {
    Kind kind;
    bool negative = false;
    mpz_class coefficient = 0;
    long exponent = 0;

    // NaNs are all alike; -0 and 0, 1.0 and 1 are not.
    bool operator==(const Number& o) const
    {
        if (kind != o.kind || kind == Kind::NAN_)
            return kind == o.kind;
        return negative == o.negative &&
               (kind == Kind::INFINITE ||
                (coefficient == o.coefficient && exponent == o.exponent));
    }
    // With its sign, and the exponent lowered to e.
    mpz_class scaled_to(long e) const
    {
        const mpz_class z = coefficient * power(10, std::size_t(exponent - e));
        return negative ? mpz_class(-z) : z;
    }
};

inline int digits_of(const mpz_class& z)
{
    const std::size_t n = mpz_sizeinbase(z.get_mpz_t(), 10);  // or one too many
    return static_cast<int>(z < power(10, n - 1) && n > 1 ? n - 1 : n);
}

template <class D>
Number number_of(D value)
{
    using F = Format<D>;
    kivtest::Words words(sizeof value / 4);
    std::memcpy(words.data(), &value, sizeof value);  // little endian
    const mpz_class bits = kivtest::value_of(words);
    const auto field = [&bits](unsigned low, unsigned count) {
        return mpz_class((bits >> low) % power(2, count));
    };
    const auto top = static_cast<unsigned>(field(F::WIDTH - 6, 5).get_ui());
    Number number{Kind::FINITE, field(F::WIDTH - 1, 1) != 0};
    if (top >= 30) {
        number.kind = top == 30 ? Kind::INFINITE : Kind::NAN_;
        return number;
    }
    const unsigned low = top >= 24 ? F::FIELD - 2 : F::FIELD;
    number.coefficient = field(0, low);
    if (top >= 24)
        number.coefficient += power(2, F::FIELD);
    number.exponent = field(low, F::WIDTH - 1 - F::FIELD).get_si() + F::LEAST;
    if (number.coefficient >= power(10, F::DIGITS))
        number.coefficient = 0;
    return number;
}

// (-1)^negative * c * 10^e and a bit more if `more`, to nearest, ties to even; the
// exponent of an exact result as near to the preferred one as its digits allow.
template <class D>
Number rounded(bool negative, mpz_class c, long e, bool more, long preferred)
{
    using F = Format<D>;
    const long least = F::LEAST, most = F::MOST;
    if (c == 0)
        return {Kind::FINITE, negative, 0, std::clamp(preferred, least, most)};
    const long drop = std::max({0L, long{digits_of(c) - F::DIGITS}, least - e});
    bool exact = !more;
    if (drop > 0) {
        const mpz_class unit = power(10, std::size_t(drop));
        const mpz_class rest = c % unit;
        const int half = cmp(mpz_class(2 * rest), unit);
        c /= unit;
        e += drop;
        exact = exact && rest == 0;
        if (half > 0 || (half == 0 && (more || mpz_odd_p(c.get_mpz_t()))))
            ++c;
    }
    for (;
         c != 0 && c % 10 == 0 && (c >= power(10, F::DIGITS) || (exact && e < preferred));
         ++e)
        c /= 10;
    for (; c != 0 && digits_of(c) < F::DIGITS && e > least &&
           ((exact && e > preferred) || e > most);
         --e)
        c *= 10;
    return {e > most ? Kind::INFINITE : Kind::FINITE, negative, c, e};
}

// --- Of finite operands -------------------------------------------------------------

// Where an exact sum is zero its sign is minus only if both operands have it.
template <class D>
Number sum(const Number& x, const Number& y)
{
    const long e = std::min(x.exponent, y.exponent);
    const mpz_class z = x.scaled_to(e) + y.scaled_to(e);
    return rounded<D>(z == 0 ? x.negative && y.negative : z < 0, abs(z), e, false, e);
}

// Exactly.
inline Number product(const Number& x, const Number& y)
{
    return {Kind::FINITE, x.negative != y.negative, x.coefficient * y.coefficient,
            x.exponent + y.exponent};
}

template <class D>
Number quotient(const Number& x, const Number& y)
{
    const bool negative = x.negative != y.negative;
    if (y.coefficient == 0)
        return {x.coefficient == 0 ? Kind::NAN_ : Kind::INFINITE, negative};
    const int n = Format<D>::DIGITS + 2 + digits_of(y.coefficient);
    const mpz_class z = x.coefficient * power(10, std::size_t(n));
    const long e = x.exponent - y.exponent;
    return rounded<D>(negative, z / y.coefficient, e - n, z % y.coefficient != 0, e);
}

template <class D>
Number root(const Number& x)
{
    if (x.negative && x.coefficient != 0)
        return {Kind::NAN_};
    const long preferred = (x.exponent - (x.exponent % 2 != 0 && x.exponent < 0)) / 2;
    const int n = Format<D>::DIGITS + 2;
    const mpz_class z =
        x.coefficient * power(10, std::size_t(2 * n + x.exponent - 2 * preferred));
    const mpz_class root = sqrt(z);
    return rounded<D>(x.negative, root, preferred - n, root * root != z, preferred);
}

template <class D>
Number quantized(const Number& x, const Number& y)
{
    const long drop = y.exponent - x.exponent;
    mpz_class c = drop <= 0 ? abs(x.scaled_to(y.exponent)) : x.coefficient;
    if (drop > 0) {
        const mpz_class unit = power(10, std::size_t(drop)), rest = c % unit;
        const int half = cmp(mpz_class(2 * rest), unit);
        c /= unit;
        if (half > 0 || (half == 0 && mpz_odd_p(c.get_mpz_t())))
            ++c;
    }
    if (c >= power(10, Format<D>::DIGITS))
        return {Kind::NAN_};
    return {Kind::FINITE, x.negative, c, y.exponent};
}

inline std::partial_ordering ordered(const Number& x, const Number& y)
{
    const long e = std::min(x.exponent, y.exponent);
    return cmp(x.scaled_to(e), y.scaled_to(e)) <=> 0;
}

// What the digits of an ASCII number say, without its white space.
template <class D>
Number spelt(const std::string& text)
{
    const std::size_t letter = std::min(text.find_first_of("eE"), text.size());
    std::string digits = text.substr(0, letter);
    const bool negative = digits.starts_with('-');
    digits.erase(0, digits.find_first_not_of("+-"));
    long e = letter < text.size() ? std::stol(text.substr(letter + 1)) : 0;
    if (const std::size_t point = digits.find('.'); point != digits.npos) {
        e -= static_cast<long>(digits.size() - point - 1);
        digits.erase(point, 1);
    }
    return rounded<D>(negative, mpz_class(digits, 10), e, false, e);
}

}  // namespace kivfuzz

#endif
