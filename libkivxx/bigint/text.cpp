// big_uint: decimal text.

#include <cstddef>

#include <kiv/big_uint.h>

#include "bigint/digit_text.h"
#include "bigint/reciprocal.h"
#include "bigint/scratch.h"
#include "bigint/words.h"

namespace kiv {

namespace {

using words::CHUNK;
using words::CHUNK_DIGITS;
using words::chunk_divisor;
using words::Limb;
using words::Word;

// --- Chunks ------------------------------------------------------------------------

// Divides n limbs by 10^19 as many times as there are remainders, in one pass: each
// digit of a quotient goes into the next division at once. One division waits for its
// remainder from limb to limb, several fill the time.
template <unsigned N>
void divide_times(Word* limbs, unsigned n, Limb (&remainders)[N]) noexcept
{
    for (Limb& remainder : remainders)
        remainder = 0;
    for (unsigned i = 2 * n; i != 0; i -= 2) {
        Limb limb = words::load(limbs + i - 2);
        for (Limb& remainder : remainders)
            limb = chunk_divisor.divide(remainder, limb);
        words::store(limbs + i - 2, limb);
    }
}

// Takes the number apart and returns how many chunks there are, at least one; the top
// one is not 0 unless the number is.
unsigned to_chunks(Word* limbs, unsigned n, Word* chunks) noexcept
{
    unsigned count = 0;
    const auto take = [&]<unsigned N>(Limb(&remainders)[N]) {
        divide_times(limbs, n, remainders);
        for (const Limb remainder : remainders)
            words::store(chunks + 2 * count++, remainder);
        while (n > 1 && words::load(limbs + 2 * n - 2) == 0)
            --n;
    };
    // Five limbs are at least 2^256 and so have more than four chunks.
    while (n >= 5) {
        Limb remainders[4];
        take(remainders);
    }
    while (n > 1) {
        Limb remainders[1];
        take(remainders);
    }
    const Limb last = words::load(limbs);
    words::store(chunks + 2 * count++, last >= CHUNK ? last - CHUNK : last);
    if (last >= CHUNK)
        words::store(chunks + 2 * count++, 1);
    return count;
}

// --- Text ---------------------------------------------------------------------------

template <class String>
String to_text(const Word* words, unsigned size)
{
    using CharT = typename String::value_type;

    size = words::significant(words, size);
    const unsigned n = (size + 1) / 2;
    // 32 bits are 9.64 digits, so there are fewer than 10 * size / 19 + 2 chunks.
    words::Scratch scratch(2 * (n + 10 * size / CHUNK_DIGITS + 2));
    Word* const limbs = scratch.get();
    Word* const chunks = limbs + 2 * n;
    limbs[2 * n - 1] = 0;
    words::copy(words, size, limbs);
    const unsigned count = to_chunks(limbs, n, chunks);

    CharT top[CHUNK_DIGITS];
    const Limb top_chunk = words::load(chunks + 2 * count - 2);
    const unsigned top_digits = words::count_digits(top_chunk);
    words::write_chunk(top, top_chunk);
    String text;
    text.resize(top_digits + std::size_t{count - 1} * CHUNK_DIGITS);
    CharT* to = text.data();
    String::traits_type::copy(to, top + CHUNK_DIGITS - top_digits, top_digits);
    to += top_digits;
    for (unsigned i = count - 1; i-- != 0; to += CHUNK_DIGITS)
        words::write_chunk(to, words::load(chunks + 2 * i));
    return text;
}

}  // namespace

std::string big_uint::to_string() const
{
    return to_text<std::string>(m_words, m_size);
}

ustring big_uint::to_ustring() const
{
    return to_text<ustring>(m_words, m_size);
}

}  // namespace kiv
