// Arrays of 32-bit words, least significant first, worked on in limbs of 64 bits.
//
// A limb is two words wherever the words lie; an odd top word is handled apart. No
// count is 0 unless said.

#ifndef KIV_BIGINT_WORDS_H
#define KIV_BIGINT_WORDS_H

#include <bit>
#include <cstdint>
#include <cstring>

namespace kiv::words {

using Word = std::uint32_t;
using Limb = std::uint64_t;

constexpr Limb ALL_ONES = ~Limb{0};

inline Limb load(const Word* p) noexcept
{
    if constexpr (std::endian::native == std::endian::little) {
        Limb limb;
        std::memcpy(&limb, p, sizeof limb);
        return limb;
    } else {
        return p[0] | Limb{p[1]} << 32;
    }
}

inline void store(Word* p, Limb limb) noexcept
{
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(p, &limb, sizeof limb);
    } else {
        p[0] = static_cast<Word>(limb);
        p[1] = static_cast<Word>(limb >> 32);
    }
}

// One or two words, n >= 1.
inline Limb load_low(const Word* p, unsigned n) noexcept
{
    return n == 1 ? p[0] : load(p);
}

// n may be 0, for which no library function is called: it is common.
inline void copy(const Word* from, unsigned n, Word* to) noexcept
{
    if (n != 0)
        std::memmove(to, from, n * sizeof(Word));
}

inline void clear(Word* p, unsigned n) noexcept
{
    if (n != 0)
        std::memset(p, 0, n * sizeof(Word));
}

// Without the zero words at the top, at least 1.
inline unsigned significant(const Word* p, unsigned n) noexcept
{
    while (n > 1 && p[n - 1] == 0)
        --n;
    return n;
}

// --- 128 bits ------------------------------------------------------------------------

struct Wide {
    Limb high;
    Limb low;
};

#ifdef __SIZEOF_INT128__

__extension__ using Uint128 = unsigned __int128;

inline Uint128 join(Wide x) noexcept
{
    return Uint128{x.high} << 64 | x.low;
}

inline Wide split(Uint128 x) noexcept
{
    return {static_cast<Limb>(x >> 64), static_cast<Limb>(x)};
}

inline Wide multiply(Limb a, Limb b) noexcept
{
    return split(Uint128{a} * b);
}

inline Wide add(Wide a, Wide b) noexcept
{
    return split(join(a) + join(b));
}

inline Wide subtract(Wide a, Wide b) noexcept
{
    return split(join(a) - join(b));
}

// a * b + c, and a * b + c + d: both fit.
inline Wide multiply_add(Limb a, Limb b, Limb c) noexcept
{
    return split(Uint128{a} * b + c);
}

inline Wide multiply_add(Limb a, Limb b, Limb c, Limb d) noexcept
{
    return split(Uint128{a} * b + c + d);
}

#else

inline Wide add(Wide a, Wide b) noexcept
{
    const Limb low = a.low + b.low;
    return {a.high + b.high + (low < b.low), low};
}

inline Wide subtract(Wide a, Wide b) noexcept
{
    return {a.high - b.high - (a.low < b.low), a.low - b.low};
}

inline Wide multiply(Limb a, Limb b) noexcept
{
    constexpr Limb LOW = 0xFFFFFFFF;
    const Limb low = (a & LOW) * (b & LOW);
    const Limb middle = (a >> 32) * (b & LOW) + (low >> 32);
    const Limb other = (a & LOW) * (b >> 32) + (middle & LOW);
    return {(a >> 32) * (b >> 32) + (middle >> 32) + (other >> 32),
            other << 32 | (low & LOW)};
}

inline Wide multiply_add(Limb a, Limb b, Limb c) noexcept
{
    return add(multiply(a, b), {0, c});
}

inline Wide multiply_add(Limb a, Limb b, Limb c, Limb d) noexcept
{
    return add(multiply_add(a, b, c), {0, d});
}

#endif

// a + b + carry, a - b - borrow, which are 0 or 1 and become so.
inline Limb add_carry(Limb a, Limb b, Limb& carry) noexcept
{
    const Limb sum = a + b;
    const Limb result = sum + carry;
    carry = Limb{sum < a} | Limb{result < sum};
    return result;
}

inline Limb subtract_borrow(Limb a, Limb b, Limb& borrow) noexcept
{
    const Limb difference = a - b;
    const Limb result = difference - borrow;
    borrow = Limb{a < b} | Limb{difference < borrow};
    return result;
}

inline bool is_less(Wide a, Wide b) noexcept
{
    return a.high < b.high || (a.high == b.high && a.low < b.low);
}

// --- Arrays: targets may be operands -----------------------------------------------

// r = a * w + carry, n words. What is above them.
Limb multiply(Word* r, const Word* a, unsigned n, Limb w, Limb carry) noexcept;
// r = a * b, na + nb words; r is neither.
void multiply(Word* r, const Word* a, unsigned na, const Word* b, unsigned nb) noexcept;

// r = a << k, r = a >> k; the width of r is nr words.
void shift_left(Word* r, unsigned nr, const Word* a, unsigned na, unsigned k) noexcept;
void shift_right(Word* r, unsigned nr, const Word* a, unsigned na, unsigned k) noexcept;

// q = a / d, d > 0. The remainder. a has n words; of the quotient nq are stored, which
// are at least n - 1, and the one above may be left out only if it is 0.
Limb divide(Word* q, unsigned nq, const Word* a, unsigned n, Limb d) noexcept;

}  // namespace kiv::words

#endif
