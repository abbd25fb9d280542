// bigint/digit_text.h - decimal digits of machine integers as text, eight at a time.

#ifndef KIV_BIGINT_DIGIT_TEXT_H
#define KIV_BIGINT_DIGIT_TEXT_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
    #include <emmintrin.h>
#endif

#include <kiv/big_uint.h>
#include <kiv/char16.h>

#include "bigint/words.h"

namespace kiv::words {

constexpr char as_character(char c, char) noexcept
{
    return c;
}

constexpr char16 as_character(char c, char16) noexcept
{
    return static_cast<char16_t>(c);
}

// --- Eight digits as the bytes of a word ---------------------------------------------

// The values of the eight digits of value < 10^8, the first in the lowest byte. Each
// step splits all parts at once, the quotient into the lower half of a part and the
// remainder into the upper one: q + ((part - q * d) << w), with the products gathered.
// The factors are the reciprocals of 10^4, 100 and 10, rounded up and precise enough
// for every dividend.
constexpr std::uint64_t spell_eight(std::uint32_t value) noexcept
{
    std::uint64_t parts = value;
    std::uint64_t quotients = parts * 109'951'163 >> 40;
    parts = (parts << 32) - quotients * ((std::uint64_t{10'000} << 32) - 1);
    quotients = (parts * 5243 >> 19) & 0x0000'007F'0000'007F;
    parts = (parts << 16) - quotients * ((100 << 16) - 1);
    quotients = (parts * 103 >> 10) & 0x000F'000F'000F'000F;
    return (parts << 8) - quotients * ((10 << 8) - 1);
}

constexpr std::uint64_t EIGHT_ZEROS = 0x3030'3030'3030'3030;  // "00000000"

inline void store_eight_portable(char* to, std::uint64_t characters) noexcept
{
    for (unsigned i = 0; i < 8; ++i)
        to[i] = static_cast<char>(characters >> 8 * i);
}

inline void store_eight_portable(char16* to, std::uint64_t characters) noexcept
{
    for (unsigned i = 0; i < 8; ++i)
        to[i] = static_cast<char16_t>(characters >> 8 * i & 0xFF);
}

// Eight ASCII characters, the first in the lowest byte.
inline void store_eight(char* to, std::uint64_t characters) noexcept
{
    if constexpr (std::endian::native == std::endian::little)
        std::memcpy(to, &characters, sizeof characters);
    else
        store_eight_portable(to, characters);
}

inline void store_eight(char16* to, std::uint64_t characters) noexcept
{
#if defined(__SSE2__) && defined(__x86_64__)
    const __m128i bytes = _mm_cvtsi64_si128(static_cast<long long>(characters));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
#else
    store_eight_portable(to, characters);
#endif
}

// --- Digits in order -------------------------------------------------------------------

template <class CharT>
using DigitPairs = std::array<std::array<CharT, 2>, 100>;

// "00" to "99", and "0" to "9" followed by a zero unit, then "10" to "99".
template <class CharT>
constexpr DigitPairs<CharT> make_digit_pairs(bool leading)
{
    DigitPairs<CharT> pairs{};
    for (unsigned i = 0; i < pairs.size(); ++i) {
        const CharT high = as_character(static_cast<char>('0' + i / 10), CharT());
        const CharT low = as_character(static_cast<char>('0' + i % 10), CharT());
        if (leading && i < 10)
            pairs[i] = {low, CharT()};
        else
            pairs[i] = {high, low};
    }
    return pairs;
}

template <class CharT>
inline constexpr DigitPairs<CharT> DIGIT_PAIRS = make_digit_pairs<CharT>(false);
template <class CharT>
inline constexpr DigitPairs<CharT> LEADING_PAIRS = make_digit_pairs<CharT>(true);

template <class CharT>
void write_pair(CharT* to, std::size_t value) noexcept
{
    std::memcpy(static_cast<void*>(to), &DIGIT_PAIRS<CharT>[value], 2 * sizeof(CharT));
}

template <class CharT>
void write_eight(CharT* to, std::uint32_t value) noexcept
{
    store_eight(to, spell_eight(value) | EIGHT_ZEROS);
}

// Without leading zeros; two units are written.
template <class CharT>
CharT* write_up_to_two(CharT* to, std::size_t value) noexcept
{
    std::memcpy(static_cast<void*>(to), &LEADING_PAIRS<CharT>[value], 2 * sizeof(CharT));
    return to + 1 + (value >= 10);
}

template <class CharT>
CharT* write_up_to_four(CharT* to, std::uint32_t value) noexcept
{
    if (value < 100)
        return write_up_to_two(to, value);
    to = write_up_to_two(to, value / 100);
    write_pair(to, value % 100);
    return to + 2;
}

template <class CharT>
CharT* write_up_to_eight(CharT* to, std::uint32_t value) noexcept
{
    if (value < 10'000)
        return write_up_to_four(to, value);
    to = write_up_to_four(to, value / 10'000);
    write_pair(to, value % 10'000 / 100);
    write_pair(to + 2, value % 100);
    return to + 4;
}

// 19 digits.
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

// At least 1.
inline unsigned count_digits(Limb value) noexcept
{
    value |= 1;  // 0 has a digit too; the other powers of ten are even
    // 1233 / 4096 is log10(2), a little more than it.
    const unsigned estimate = static_cast<unsigned>(std::bit_width(value)) * 1233 >> 12;
    return estimate + (value >= big_uint::pow10_table[estimate]);
}

}  // namespace kiv::words

#endif
