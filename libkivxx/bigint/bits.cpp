// big_uint: comparison, bits, rounding information.

#include <algorithm>
#include <bit>
#include <stdexcept>

#include <kiv/big_uint.h>

#include "bigint/words.h"

namespace kiv {

using words::Limb;

namespace {

bool all_zero(const std::uint32_t* first, const std::uint32_t* last) noexcept
{
    return std::all_of(first, last, [](std::uint32_t w) { return w == 0; });
}

// The processor's own instruction is not in the base architecture.
constexpr unsigned count_bits(std::uint64_t x) noexcept
{
    x -= x >> 1 & 0x5555555555555555;
    x = (x & 0x3333333333333333) + (x >> 2 & 0x3333333333333333);
    x = (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<unsigned>(x * 0x0101010101010101 >> 56);
}

}  // namespace

// --- Comparison ------------------------------------------------------------------------

int big_uint::compare(const big_uint& other) const noexcept
{
    unsigned n = std::min(m_size, other.m_size);
    if (!all_zero(m_words + n, m_words + m_size))
        return 1;
    if (!all_zero(other.m_words + n, other.m_words + other.m_size))
        return -1;
    while (n >= 2) {
        n -= 2;
        const Limb a = words::load(m_words + n);
        const Limb b = words::load(other.m_words + n);
        if (a != b)
            return a < b ? -1 : 1;
    }
    if (n != 0 && m_words[0] != other.m_words[0])
        return m_words[0] < other.m_words[0] ? -1 : 1;
    return 0;
}

bool big_uint::equals(const big_uint& other) const noexcept
{
    const unsigned n = std::min(m_size, other.m_size);
    return std::equal(m_words, m_words + n, other.m_words) &&
           all_zero(m_words + n, m_words + m_size) &&
           all_zero(other.m_words + n, other.m_words + other.m_size);
}

bool big_uint::is_power_of_two() const noexcept
{
    bool found = false;
    for (unsigned i = 0; i < m_size; ++i) {
        if (m_words[i] == 0)
            continue;
        if (found || !std::has_single_bit(m_words[i]))
            return false;
        found = true;
    }
    return true;
}

// --- Bits ------------------------------------------------------------------------------

int big_uint::highest_set_bit() const noexcept
{
    const unsigned top = words::significant(m_words, m_size) - 1;
    return static_cast<int>(32 * top) + 31 - std::countl_zero(m_words[top]);
}

int big_uint::lowest_set_bit() const noexcept
{
    for (unsigned i = 0; i < m_size; ++i)
        if (m_words[i] != 0)
            return static_cast<int>(32 * i) + std::countr_zero(m_words[i]);
    return -1;
}

unsigned big_uint::bit_count() const noexcept
{
    unsigned count = 0;
    for (unsigned i = 0; i + 1 < m_size; i += 2)
        count += count_bits(words::load(m_words + i));
    return m_size % 2 != 0 ? count + count_bits(msw()) : count;
}

void big_uint::bit_and(const big_uint& a, const big_uint& b)
{
    if (a.m_size < m_size || b.m_size < m_size)
        throw std::invalid_argument("big_uint::bit_and: operand too short");
    for (unsigned i = 0; i < m_size; ++i)
        m_words[i] = a.m_words[i] & b.m_words[i];
}

void big_uint::bit_not(const big_uint& a)
{
    if (a.m_size < m_size)
        throw std::invalid_argument("big_uint::bit_not: operand too short");
    for (unsigned i = 0; i < m_size; ++i)
        m_words[i] = ~a.m_words[i];
}

unsigned big_uint::bit_count(unsigned w) noexcept
{
    return count_bits(w);
}

unsigned big_uint::bit_count(unsigned long w) noexcept
{
    return count_bits(w);
}

unsigned big_uint::bit_count(unsigned long long w) noexcept
{
    return count_bits(w);
}

unsigned big_uint::lzcnt32(unsigned w) noexcept
{
    return static_cast<unsigned>(std::countl_zero(w));
}

unsigned big_uint::lzcnt64(unsigned long long w) noexcept
{
    return static_cast<unsigned>(std::countl_zero(w));
}

unsigned big_uint::tzcnt(unsigned w) noexcept
{
    return static_cast<unsigned>(std::countr_zero(w));
}

unsigned big_uint::tzcnt(unsigned long w) noexcept
{
    return static_cast<unsigned>(std::countr_zero(w));
}

unsigned big_uint::tzcnt(unsigned long long w) noexcept
{
    return static_cast<unsigned>(std::countr_zero(w));
}

std::uint64_t big_uint::to_uint64() const noexcept
{
    return m_size == 1 ? m_words[0] : words::load(m_words);
}

// --- Rounding --------------------------------------------------------------------------

// Looks at the round bit's own word first: random digits end the search there.
unsigned big_uint::compute_rounding_info(unsigned k) const noexcept
{
    constexpr unsigned ROUND_BIT = 2;   // the highest discarded bit
    constexpr unsigned STICKY_BIT = 1;  // any lower discarded bit

    if (k == 0)
        return 0;
    unsigned info = 0;
    unsigned full = (k - 1) / 32;  // words that lie wholly below the round bit
    if (full < m_size) {
        const std::uint32_t round_mask = std::uint32_t{1} << (k - 1) % 32;
        info = (m_words[full] & round_mask) != 0 ? ROUND_BIT : 0;
        if ((m_words[full] & (round_mask - 1)) != 0)
            return info | STICKY_BIT;
    } else {
        full = m_size;  // the round bit is above the value
    }
    return all_zero(m_words, m_words + full) ? info : info | STICKY_BIT;
}

}  // namespace kiv
