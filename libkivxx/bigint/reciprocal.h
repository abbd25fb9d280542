// Division of two or three limbs by one or two with a precomputed reciprocal, after
// N. Moeller and T. Granlund, "Improved division by invariant integers", IEEE
// Transactions on Computers 60 (2011).

#ifndef KIV_BIGINT_RECIPROCAL_H
#define KIV_BIGINT_RECIPROCAL_H

#include "bigint/words.h"

namespace kiv::words {

// A divisor with its top bit set, and floor((2^128 - 1) / d) - 2^64.
class Reciprocal {
public:
    explicit Reciprocal(Limb d) noexcept : m_d(d), m_v(invert(d)) {}
    constexpr Reciprocal(Limb d, Limb v) noexcept : m_d(d), m_v(v) {}

    // The quotient of remainder * 2^64 + low, which leaves the new remainder; the old
    // one must be below d.
    Limb divide(Limb& remainder, Limb low) const noexcept
    {
        Wide q = add(words::multiply(m_v, remainder), {remainder, low});
        ++q.high;
        Limb r = low - q.high * m_d;
        // Both outcomes are likely: no branch.
        const Limb too_large = Limb{0} - Limb{r > q.low};
        q.high += too_large;
        r += too_large & m_d;
        if (r >= m_d) [[unlikely]] {
            ++q.high;
            r -= m_d;
        }
        remainder = r;
        return q.high;
    }

    static Limb invert(Limb d) noexcept;

private:
    Limb m_d;
    Limb m_v;
};

// Decimal text is made in chunks: digits to the base 10^19, the largest power of ten in a
// limb.
constexpr unsigned CHUNK_DIGITS = 19;
constexpr Limb CHUNK = 10'000'000'000'000'000'000U;
constexpr Reciprocal chunk_divisor(CHUNK, 0xD83C94FB6D2AC34A);

// The same for two limbs: floor((2^192 - 1) / d) - 2^64.
class WideReciprocal {
public:
    explicit WideReciprocal(Wide d) noexcept;

    // The quotient of remainder * 2^64 + low.
    Limb divide(Wide& remainder, Limb low) const noexcept
    {
        Wide q = add(words::multiply(m_v, remainder.high), remainder);
        const Limb high = remainder.low - q.high * m_d.high;
        Wide r = subtract(subtract({high, low}, m_d), words::multiply(m_d.low, q.high));
        ++q.high;
        const Limb too_large = Limb{0} - Limb{r.high >= q.low};
        q.high += too_large;
        r = add(r, {too_large & m_d.high, too_large & m_d.low});
        if (!is_less(r, m_d)) [[unlikely]] {
            ++q.high;
            r = subtract(r, m_d);
        }
        remainder = r;
        return q.high;
    }

private:
    Wide m_d;
    Limb m_v;
};

}  // namespace kiv::words

#endif
