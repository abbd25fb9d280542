// big_uint: shifts.

#include <algorithm>
#include <cstring>

#include <kiv/big_uint.h>

#include "bigint/words.h"

namespace kiv {

// --- Arrays ----------------------------------------------------------------------------

namespace words {

namespace {

// Words that are shifted at a time: the loops over them become vectors.
constexpr unsigned BLOCK = 4;

struct Block {
    explicit Block(const Word* p) noexcept { std::memcpy(words, p, sizeof words); }

    Word words[BLOCK];
};

// high << bits | low >> (32 - bits)
void store_joined(Word* r, Block high, Block low, unsigned bits) noexcept
{
    for (unsigned i = 0; i < BLOCK; ++i)
        high.words[i] = high.words[i] << bits | low.words[i] >> (32 - bits);
    std::memcpy(r, high.words, sizeof high.words);
}

// r = a << bits, 0 < bits < 32, n words of both; from the top down, so that no word is
// written before it is read.
inline void shift_bits_left(Word* r, const Word* a, unsigned n, unsigned bits) noexcept
{
    for (; n > BLOCK; n -= BLOCK)
        store_joined(r + n - BLOCK, Block(a + n - BLOCK), Block(a + n - BLOCK - 1), bits);
    for (; n > 2; n -= 2)
        store(r + n - 2, load(a + n - 2) << bits | a[n - 3] >> (32 - bits));
    if (n == 2)
        store(r, load(a) << bits);
    else
        r[0] = a[0] << bits;
}

// r = a >> bits, 0 < bits < 32, n words of both; from the bottom up. `above` is the
// word above those of a.
inline void shift_bits_right(Word* r, const Word* a, unsigned n, unsigned bits,
                             Word above) noexcept
{
    for (; n > BLOCK; n -= BLOCK, r += BLOCK, a += BLOCK)
        store_joined(r, Block(a + 1), Block(a), 32 - bits);
    for (; n > 2; n -= 2, r += 2, a += 2)
        store(r, load(a) >> bits | Limb{a[2]} << 32 << (32 - bits));
    if (n == 2)
        store(r, load(a) >> bits | Limb{above} << 32 << (32 - bits));
    else
        r[0] = static_cast<Word>((a[0] | Limb{above} << 32) >> bits);
}

// By whole words too, or with a target that is longer than the operand.
[[gnu::noinline]] void shift_any_left(Word* r, unsigned nr, const Word* a, unsigned na,
                                      unsigned k) noexcept
{
    const unsigned skip = k / 32;
    const unsigned bits = k % 32;
    if (skip >= nr) {
        clear(r, nr);
        return;
    }
    const unsigned n = std::min(na, nr - skip);  // words of a that have a place
    Word* const to = r + skip;
    if (bits == 0) {
        copy(a, n, to);
        clear(to + n, nr - skip - n);
    } else {
        if (n < nr - skip) {
            to[n] = a[n - 1] >> (32 - bits);
            clear(to + n + 1, nr - skip - n - 1);
        }
        shift_bits_left(to, a, n, bits);
    }
    clear(r, skip);
}

[[gnu::noinline]] void shift_any_right(Word* r, unsigned nr, const Word* a, unsigned na,
                                       unsigned k) noexcept
{
    const unsigned skip = k / 32;
    const unsigned bits = k % 32;
    if (skip >= na) {
        clear(r, nr);
        return;
    }
    const unsigned n = std::min(na - skip, nr);  // words of the result
    a += skip;
    if (bits == 0)
        copy(a, n, r);
    else
        shift_bits_right(r, a, n, bits, n < na - skip ? a[n] : 0);
    clear(r + n, nr - n);
}

}  // namespace

void shift_left(Word* r, unsigned nr, const Word* a, unsigned na, unsigned k) noexcept
{
    if (nr <= na && k - 1 < 31) [[likely]]
        shift_bits_left(r, a, nr, k);
    else
        shift_any_left(r, nr, a, na, k);
}

void shift_right(Word* r, unsigned nr, const Word* a, unsigned na, unsigned k) noexcept
{
    if (nr == na && k - 1 < 31) [[likely]]
        shift_bits_right(r, a, nr, k, 0);
    else
        shift_any_right(r, nr, a, na, k);
}

}  // namespace words

// --- big_uint --------------------------------------------------------------------------

void big_uint::shift_left() noexcept
{
    shift_left(*this, 1);
}

void big_uint::shift_right() noexcept
{
    shift_right(*this, 1);
}

void big_uint::shift_left(unsigned k) noexcept
{
    shift_left(*this, k);
}

void big_uint::shift_right(unsigned k) noexcept
{
    shift_right(*this, k);
}

void big_uint::shift_left(const big_uint& a, unsigned k) noexcept
{
    words::shift_left(m_words, m_size, a.m_words, a.m_size, k);
}

void big_uint::shift_right(const big_uint& a, unsigned k) noexcept
{
    words::shift_right(m_words, m_size, a.m_words, a.m_size, k);
}

}  // namespace kiv
