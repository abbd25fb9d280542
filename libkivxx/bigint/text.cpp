// big_uint: decimal text.

#include <bit>
#include <cstddef>

#include <kiv/big_uint.h>

#include "bigint/reciprocal.h"
#include "bigint/scratch.h"
#include "bigint/words.h"

namespace kiv {

namespace {

using words::Limb;
using words::Word;

// --- Chunks: digits to the base 10^19, the largest power of ten in a limb ----------

constexpr unsigned CHUNK_DIGITS = 19;
constexpr Limb CHUNK = 10'000'000'000'000'000'000U;
constexpr words::Reciprocal chunk_divisor(CHUNK, 0xD83C94FB6D2AC34A);

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

// --- Digits ------------------------------------------------------------------------

constexpr char DIGIT_PAIRS[] =
    "00010203040506070809101112131415161718192021222324"
    "25262728293031323334353637383940414243444546474849"
    "50515253545556575859606162636465666768697071727374"
    "75767778798081828384858687888990919293949596979899";

char as_character(char c, char) noexcept
{
    return c;
}

char16 as_character(char c, char16) noexcept
{
    return static_cast<char16_t>(c);
}

template <class CharT>
void write_pair(CharT* to, unsigned value) noexcept
{
    to[0] = as_character(DIGIT_PAIRS[2 * value], CharT());
    to[1] = as_character(DIGIT_PAIRS[2 * value + 1], CharT());
}

template <class CharT>
void write_eight(CharT* to, std::uint32_t value) noexcept
{
    const std::uint32_t high = value / 10000;
    const std::uint32_t low = value % 10000;
    write_pair(to, high / 100);
    write_pair(to + 2, high % 100);
    write_pair(to + 4, low / 100);
    write_pair(to + 6, low % 100);
}

template <class CharT>
void write_chunk(CharT* to, Limb value) noexcept
{
    const Limb low = value % 10'000'000'000'000'000;
    const auto high = static_cast<unsigned>(value / 10'000'000'000'000'000);
    to[0] = as_character(static_cast<char>('0' + high / 100), CharT());
    write_pair(to + 1, high % 100);
    write_eight(to + 3, static_cast<std::uint32_t>(low / 100'000'000));
    write_eight(to + 11, static_cast<std::uint32_t>(low % 100'000'000));
}

unsigned count_digits(Limb value) noexcept
{
    // 1233 / 4096 is log10(2), a little more than it.
    const auto bits = static_cast<unsigned>(64 - std::countl_zero(value | 1));
    const unsigned estimate = bits * 1233 >> 12;
    return value < big_uint::pow10_table[estimate] && estimate != 0 ? estimate
                                                                    : estimate + 1;
}

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
    const unsigned top_digits = count_digits(top_chunk);
    write_chunk(top, top_chunk);
    String text;
    text.resize(top_digits + std::size_t{count - 1} * CHUNK_DIGITS);
    CharT* to = text.data();
    String::traits_type::copy(to, top + CHUNK_DIGITS - top_digits, top_digits);
    to += top_digits;
    for (unsigned i = count - 1; i-- != 0; to += CHUNK_DIGITS)
        write_chunk(to, words::load(chunks + 2 * i));
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
