// big_uint: addition and subtraction.

#include <algorithm>
#include <stdexcept>

#include <kiv/big_uint.h>

#include "bigint/kernels.h"
#include "bigint/words.h"

namespace kiv {

using words::Limb;
using words::Word;

// --- Arrays ----------------------------------------------------------------------------

namespace words {

namespace {

// One word.
struct Add {
    static Word step(Word a, Word b, Limb& carry) noexcept
    {
        const Limb sum = Limb{a} + b + carry;
        carry = sum >> 32;
        return static_cast<Word>(sum);
    }
};

struct Subtract {
    static Word step(Word a, Word b, Limb& borrow) noexcept
    {
        const Limb difference = Limb{a} - b - borrow;
        borrow = difference >> 63;
        return static_cast<Word>(difference);
    }
};

// As soon as the carry dies, the rest is a copy.
template <class Operation>
Limb through(Word* r, const Word* a, unsigned n, Limb carry) noexcept
{
    unsigned i = 0;
    for (; i < n && carry != 0; ++i)
        r[i] = Operation::step(a[i], Word{0}, carry);
    if (i < n && r != a)
        copy(a + i, n - i, r + i);
    return carry;
}

}  // namespace

// Inlined into the members, the loop costs no call.
inline Limb add(Word* r, const Word* a, const Word* b, unsigned n) noexcept
{
    Limb carry = add_limbs(r, a, b, n / 2);
    if (n % 2 != 0)
        r[n - 1] = Add::step(a[n - 1], b[n - 1], carry);
    return carry;
}

inline Limb subtract(Word* r, const Word* a, const Word* b, unsigned n) noexcept
{
    Limb borrow = subtract_limbs(r, a, b, n / 2);
    if (n % 2 != 0)
        r[n - 1] = Subtract::step(a[n - 1], b[n - 1], borrow);
    return borrow;
}

// r = a + carry, r = a - borrow, with 0 or 1, n words, n may be 0. What comes out.
inline Limb carry_through(Word* r, const Word* a, unsigned n, Limb carry) noexcept
{
    return through<Add>(r, a, n, carry);
}

inline Limb borrow_through(Word* r, const Word* a, unsigned n, Limb borrow) noexcept
{
    return through<Subtract>(r, a, n, borrow);
}

}  // namespace words

namespace {

// a - b over n words each (n may be 0, words beyond an operand are 0), clamped to
// -2 .. 3: one more than what the caller returns, which may subtract a borrow.
int clamped_difference(const Word* a, unsigned na, const Word* b, unsigned nb) noexcept
{
    const unsigned n = std::max(na, nb);
    if (n == 0)
        return 0;
    Limb borrow = 0;
    Word lowest = 0;
    Word any = 0;    // of the words above the lowest
    Word all = ~0U;  // of all words
    for (unsigned i = 0; i < n; ++i) {
        const Limb wa = i < na ? a[i] : 0;
        const Limb wb = i < nb ? b[i] : 0;
        const Limb difference = wa - wb - borrow;
        borrow = difference >> 63;
        const auto word = static_cast<Word>(difference);
        all &= word;
        if (i == 0)
            lowest = word;
        else
            any |= word;
    }
    if (borrow != 0)
        return all == ~0U ? -1 : -2;
    return any != 0 ? 3 : static_cast<int>(std::min<Word>(lowest, 3));
}

}  // namespace

// --- Addition --------------------------------------------------------------------------

bool big_uint::add(const big_uint& a, const big_uint& b) noexcept
{
    const unsigned n = m_size;
    if (a.m_size == n && b.m_size == n) [[likely]]
        return words::add(m_words, a.m_words, b.m_words, n) != 0;
    return add_any(a, b);
}

bool big_uint::add_any(const big_uint& a, const big_uint& b) noexcept
{
    const unsigned n = m_size;
    const Word* longer = a.m_words;
    const Word* shorter = b.m_words;
    unsigned n_longer = words::significant(longer, a.m_size);
    unsigned n_shorter = words::significant(shorter, b.m_size);
    if (n_longer < n_shorter) {
        std::swap(longer, shorter);
        std::swap(n_longer, n_shorter);
    }
    bool overflow = n_longer > n;
    n_longer = std::min(n_longer, n);
    n_shorter = std::min(n_shorter, n);

    Limb carry = words::add(m_words, longer, shorter, n_shorter);
    carry = words::carry_through(m_words + n_shorter, longer + n_shorter,
                                 n_longer - n_shorter, carry);
    if (n_longer < n) {
        m_words[n_longer] = static_cast<Word>(carry);
        words::clear(m_words + n_longer + 1, n - n_longer - 1);
    } else {
        overflow |= carry != 0;
    }
    return overflow;
}

bool big_uint::add(const big_uint& b)
{
    if (b.m_size < m_size)
        throw std::invalid_argument("big_uint::add: operand too short");
    return words::add(m_words, m_words, b.m_words, m_size) != 0;
}

bool big_uint::add(unsigned w) noexcept
{
    const Word sum = m_words[0] + w;
    m_words[0] = sum;
    return sum < w && words::carry_through(m_words + 1, m_words + 1, m_size - 1U, 1) != 0;
}

bool big_uint::increment() noexcept
{
    return words::carry_through(m_words, m_words, m_size, 1) != 0;
}

// --- Subtraction -----------------------------------------------------------------------

int big_uint::subtract(const big_uint& a, const big_uint& b) noexcept
{
    const unsigned n = m_size;
    if (a.m_size == n && b.m_size == n) [[likely]]
        return -static_cast<int>(words::subtract(m_words, a.m_words, b.m_words, n));
    return subtract_any(a, b);
}

int big_uint::subtract_any(const big_uint& a, const big_uint& b) noexcept
{
    const unsigned n = m_size;
    const unsigned sa = words::significant(a.m_words, a.m_size);
    const unsigned sb = words::significant(b.m_words, b.m_size);
    const unsigned na = std::min(sa, n);
    const unsigned nb = std::min(sb, n);
    // An operand with words above the target is another object.
    const int high = clamped_difference(a.m_words + na, sa - na, b.m_words + nb, sb - nb);

    const unsigned common = std::min(na, nb);
    Limb borrow = words::subtract(m_words, a.m_words, b.m_words, common);
    if (na > common) {
        borrow = words::borrow_through(m_words + common, a.m_words + common, na - common,
                                       borrow);
    } else {
        for (unsigned i = common; i < nb; ++i) {
            const Limb difference = Limb{0} - b.m_words[i] - borrow;
            borrow = difference >> 63;
            m_words[i] = static_cast<Word>(difference);
        }
    }
    std::fill(m_words + std::max(na, nb), m_words + n, borrow != 0 ? ~0U : 0U);
    return std::clamp(high - static_cast<int>(borrow), -2, 2);
}

int big_uint::subtract(const big_uint& b)
{
    if (b.m_size > m_size)
        throw std::invalid_argument("big_uint::subtract: operand too long");
    const unsigned n = b.m_size;
    Limb borrow = words::subtract(m_words, m_words, b.m_words, n);
    borrow = words::borrow_through(m_words + n, m_words + n, m_size - n, borrow);
    return -static_cast<int>(borrow);
}

bool big_uint::decrement() noexcept
{
    return words::borrow_through(m_words, m_words, m_size, 1) != 0;
}

}  // namespace kiv
