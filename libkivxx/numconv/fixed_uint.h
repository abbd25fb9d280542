// numconv/fixed_uint.h - an unsigned integer on the stack, large enough for the exact
// decimal expansion of every double and for the integers that decide a rounding.
//
// It has only what the exact paths of parsing and formatting need, never allocates and
// never throws. Results must fit: the callers' bounds say why they do.

#ifndef KIV_NUMCONV_FIXED_UINT_H
#define KIV_NUMCONV_FIXED_UINT_H

#include <algorithm>
#include <bit>
#include <cstdint>

#include <kiv/big_uint.h>

#include "bigint/reciprocal.h"
#include "bigint/words.h"

namespace kiv::numconv {

class FixedUint {
public:
    using Limb = words::Limb;

    // 2^3072 is above 10^924: 770 digits times any shift that aligns them with a
    // midpoint of two doubles (at most 54 bits times 5^1092, 2590 bits).
    static constexpr unsigned CAPACITY = 48;

    explicit FixedUint(Limb value = 0) noexcept : m_size(value != 0)
    {
        m_limbs[0] = value;
    }
    explicit FixedUint(words::Wide value) noexcept
        : m_size(value.high != 0 ? 2 : value.low != 0)
    {
        m_limbs[0] = value.low;
        m_limbs[1] = value.high;
    }
    FixedUint(const FixedUint& other) noexcept { *this = other; }
    FixedUint& operator=(const FixedUint& other) noexcept
    {
        if (this != &other) {
            m_size = other.m_size;
            std::copy_n(other.m_limbs, m_size, m_limbs);
        }
        return *this;
    }

    bool is_zero() const noexcept { return m_size == 0; }
    unsigned bit_length() const noexcept
    {
        return m_size == 0
                   ? 0
                   : 64 * m_size -
                         static_cast<unsigned>(std::countl_zero(m_limbs[m_size - 1]));
    }

    // Limbs in use; the top one is not 0. Limbs beyond are read as 0.
    unsigned size() const noexcept { return m_size; }
    Limb limb(unsigned i) const noexcept { return i < m_size ? m_limbs[i] : 0; }

    // *this = *this * factor + addend.
    void multiply_add(Limb factor, Limb addend) noexcept
    {
        Limb carry = addend;
        for (unsigned i = 0; i < m_size; ++i) {
            const words::Wide product = words::multiply_add(m_limbs[i], factor, carry);
            m_limbs[i] = product.low;
            carry = product.high;
        }
        if (carry != 0)
            m_limbs[m_size++] = carry;
        else if (factor == 0)
            m_size = 0;
    }

    void multiply_by_power_of_five(unsigned e) noexcept
    {
        constexpr unsigned STEP = 27;  // the most that a limb holds
        for (; e >= STEP; e -= STEP)
            multiply_add(big_uint::pow5_table[STEP], 0);
        if (e != 0)
            multiply_add(big_uint::pow5_table[e], 0);
    }

    // *this / 10^19; the remainder.
    Limb divide_by_chunk() noexcept
    {
        Limb remainder = 0;
        for (unsigned i = m_size; i-- != 0;)
            m_limbs[i] = words::chunk_divisor.divide(remainder, m_limbs[i]);
        trim();
        return remainder;
    }

    void shift_left(unsigned bits) noexcept
    {
        if (m_size == 0 || bits == 0)
            return;
        const unsigned limbs = bits / 64;
        const unsigned rest = bits % 64;
        const unsigned old_size = m_size;
        m_size = old_size + limbs;
        if (rest != 0) {
            m_limbs[m_size] = m_limbs[old_size - 1] >> (64 - rest);
            for (unsigned i = old_size - 1; i != 0; --i)
                m_limbs[i + limbs] = m_limbs[i] << rest | m_limbs[i - 1] >> (64 - rest);
            m_limbs[limbs] = m_limbs[0] << rest;
            if (m_limbs[m_size] != 0)
                ++m_size;
        } else {
            std::copy_backward(m_limbs, m_limbs + old_size, m_limbs + m_size);
        }
        std::fill_n(m_limbs, limbs, Limb{0});
    }

    void add(const FixedUint& other) noexcept
    {
        const unsigned n = std::max(m_size, other.m_size);
        Limb carry = 0;
        for (unsigned i = 0; i < n; ++i)
            m_limbs[i] = words::add_carry(limb(i), other.limb(i), carry);
        m_size = n;
        if (carry != 0)
            m_limbs[m_size++] = carry;
    }

    // other must not be greater.
    void subtract(const FixedUint& other) noexcept
    {
        Limb borrow = 0;
        for (unsigned i = 0; i < m_size; ++i)
            m_limbs[i] = words::subtract_borrow(m_limbs[i], other.limb(i), borrow);
        trim();
    }

    // *this = *this - other * factor, which must not be negative.
    void subtract_multiple(const FixedUint& other, Limb factor) noexcept
    {
        Limb carry = 0;
        for (unsigned i = 0; i < m_size; ++i) {
            const words::Wide product = words::multiply_add(other.limb(i), factor, carry);
            carry = product.high + Limb{m_limbs[i] < product.low};
            m_limbs[i] -= product.low;
        }
        trim();
    }

    // Removes limb i and those above, which must be 0, and returns it.
    Limb take_limb(unsigned i) noexcept
    {
        if (i >= m_size)
            return 0;
        const Limb taken = m_limbs[i];
        m_size = i;
        trim();
        return taken;
    }

    // Negative, 0 or positive, as *this is less, equal or greater.
    int compare(const FixedUint& other) const noexcept
    {
        if (m_size != other.m_size)
            return m_size < other.m_size ? -1 : 1;
        for (unsigned i = m_size; i-- != 0;)
            if (m_limbs[i] != other.m_limbs[i])
                return m_limbs[i] < other.m_limbs[i] ? -1 : 1;
        return 0;
    }

private:
    void trim() noexcept
    {
        while (m_size != 0 && m_limbs[m_size - 1] == 0)
            --m_size;
    }

    unsigned m_size;         // limbs in use, the top one is not 0
    Limb m_limbs[CAPACITY];  // least significant first; undefined from m_size on
};

}  // namespace kiv::numconv

#endif
