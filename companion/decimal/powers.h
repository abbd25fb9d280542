// companion/decimal/powers.h - powers of ten: digits of a number, and division by a power
// through multiplication by its reciprocal.

#ifndef KIV_COMPANION_DECIMAL_POWERS_H
#define KIV_COMPANION_DECIMAL_POWERS_H

#include <algorithm>

#include "companion/decimal/words.h"

namespace kiv::companion {

template <class Word>
struct PowersOfTen;

template <int N, class Word, class Factor>
struct PowerTable {
    static constexpr int MAX = N - 1;
    Word values[N];

    constexpr PowerTable() : values()
    {
        values[0] = Word{1};
        for (int i = 1; i < N; ++i)
            values[i] = product(values[i - 1], Factor{10});
    }
};

// All that fit.
template <>
struct PowersOfTen<std::uint64_t> : PowerTable<20, std::uint64_t, std::uint64_t> {
};
template <>
struct PowersOfTen<uint128> : PowerTable<39, uint128, std::uint64_t> {
};
template <>
struct PowersOfTen<uint256> : PowerTable<78, uint256, uint128> {
};

template <class Word>
inline constexpr PowersOfTen<Word> POWERS{};

template <class Word>
constexpr const Word& pow10(int n) noexcept
{
    return POWERS<Word>.values[n];
}

// Decimal digits, 0 for 0.
template <class Word>
constexpr int digits_of(const Word& x) noexcept
{
    // 78913 / 2^18 is log10(2), close enough for 256 bits.
    const int digits = (bit_length(x) * 78913) >> 18;
    return digits + (x >= pow10<Word>(digits) ? 1 : 0);
}

// --- x / 10^k for x < 10^(DIGITS + k) --------------------------------------------------

// The quotient has at most DIGITS digits, so the leading bits of x decide it but for one
// unit: shifted right until they fit a word, times the reciprocal of the power. Neither
// what the shift cuts off (less than 2^shift / 10^k) nor the error of the reciprocal
// (less than one unit of its last place times the word) takes a whole unit from the
// quotient, and both together do not either: the remainder, computed modulo the word,
// tells if a unit is missing.
template <class Word, int DIGITS>
class Reciprocals {
    static constexpr int WORD_BITS = sizeof(Word) * 8;

public:
    // The largest power whose double fits a word, so that the remainder does.
    static constexpr int MAX = PowersOfTen<Word>::MAX - (WORD_BITS == 64 ? 1 : 0);

    constexpr Reciprocals() : m_entries()
    {
        for (int k = 1; k <= MAX; ++k) {
            Entry& e = m_entries[k];
            const int bits = bit_length(pow10<Word>(k));
            e.shift = std::max(0, bit_length(pow10<uint256>(DIGITS + k)) - WORD_BITS);
            e.post_shift = bits - 1 - e.shift;
            e.reciprocal = floor_reciprocal(bits - 1, pow10<Word>(k));
        }
    }

    template <class Wide>
    Quotient<Word> divide(const Wide& x, int k) const noexcept
    {
        const Entry& e = m_entries[k];
        Word quotient = high_product(static_cast<Word>(x >> e.shift), e.reciprocal);
        quotient >>= e.post_shift;
        const Word power = pow10<Word>(k);
        Word remainder = static_cast<Word>(x) - quotient * power;
        if (remainder >= power) {
            remainder -= power;
            ++quotient;
        }
        return {quotient, remainder};
    }

private:
    struct Entry {
        Word reciprocal;  // 2^(word + shift + post_shift) / 10^k, top bit set
        int shift;
        int post_shift;
    };

    static constexpr std::uint64_t floor_reciprocal(int shift, std::uint64_t power)
    {
        return divide_wide(uint128{1} << (64 + shift), power).value;
    }
    static constexpr uint128 floor_reciprocal(int shift, uint128 power)
    {
        return divide_wide(uint256{uint128{1} << shift, 0}, power).value;
    }

    Entry m_entries[MAX + 1];
};

template <class Word, int DIGITS>
inline constexpr Reciprocals<Word, DIGITS> RECIPROCALS{};

// --- Whatever the sizes; slower --------------------------------------------------------

// x / 10^k in place; whether a digit that is gone was not 0.
constexpr bool drop_digits(uint256* x, int k) noexcept
{
    constexpr int STEP = PowersOfTen<std::uint64_t>::MAX;
    bool inexact = false;
    for (; k > 0 && *x != uint256{}; k -= STEP)
        inexact |= divide_in_place(x, pow10<std::uint64_t>(std::min(k, STEP))) != 0;
    return inexact;
}

// x * 10^k, which fits.
constexpr uint256 append_zeros(uint256 x, int k) noexcept
{
    constexpr int STEP = PowersOfTen<uint128>::MAX;
    for (; k > 0; k -= STEP)
        x = product(x, pow10<uint128>(std::min(k, STEP)));
    return x;
}

// Removes zeros at the end, at most `limit`; returns how many. A number that ends in n
// zeros is a multiple of 2^n, which spares most of the divisions.
template <class Word>
int strip_zeros(Word* x, int limit) noexcept
{
    int stripped = 0;
    for (int step = 16; step != 0;) {
        const Word power = pow10<Word>(step);
        if (limit - stripped >= step && (*x & ((Word{1} << step) - 1)) == 0 &&
            *x % power == 0) {
            *x /= power;
            stripped += step;
        } else {
            step /= 2;
        }
    }
    return stripped;
}

}  // namespace kiv::companion

#endif
