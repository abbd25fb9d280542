// numconv/exact_chunks.h - all decimal digits of a double, from the first to the last.

#ifndef KIV_NUMCONV_EXACT_CHUNKS_H
#define KIV_NUMCONV_EXACT_CHUNKS_H

#include <cstdint>

#include "bigint/reciprocal.h"
#include "numconv/exact_digits.h"
#include "numconv/fixed_uint.h"

namespace kiv::numconv {

// Hands out the digits in chunks of words::CHUNK_DIGITS, which meet at the point. The
// first chunk is that with the first digit before the point, or the 0 there.
class ExactChunks {
public:
    using Limb = FixedUint::Limb;

    explicit ExactChunks(BinaryValue value) noexcept
    {
        if (value.exponent >= 0) {
            FixedUint integer(value.significand);
            integer.shift_left(static_cast<unsigned>(value.exponent));
            do
                m_integer[m_count++] = integer.divide_by_chunk();
            while (!integer.is_zero());
            return;
        }
        const auto bits = static_cast<unsigned>(-value.exponent);
        m_integer[m_count++] = bits < 64 ? value.significand >> bits : 0;
        m_point = (bits + 63) / 64;
        m_fraction = FixedUint(bits < 64 ? value.significand & ((Limb{1} << bits) - 1)
                                         : value.significand);
        m_fraction.shift_left(64 * m_point - bits);
    }

    // Chunks before the point that are left.
    unsigned integer_chunks() const noexcept { return m_count; }
    // Whether some digit that is left is not 0.
    bool has_more() const noexcept
    {
        for (unsigned i = 0; i < m_count; ++i)
            if (m_integer[i] != 0)
                return true;
        return !m_fraction.is_zero();
    }

    Limb next() noexcept
    {
        if (m_count != 0)
            return m_integer[--m_count];
        m_fraction.multiply_add(words::CHUNK, 0);
        return m_fraction.take_limb(m_point);
    }

private:
    Limb m_integer[17];  // the last one first; 10^323 is above every double
    unsigned m_count = 0;
    FixedUint m_fraction;  // of 2^(64 * m_point)
    unsigned m_point = 0;
};

}  // namespace kiv::numconv

#endif
