// numconv/digit_groups.h - eight characters of text at a time: whether they are decimal
// digits, and their value.

#ifndef KIV_NUMCONV_DIGIT_GROUPS_H
#define KIV_NUMCONV_DIGIT_GROUPS_H

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
    #include <emmintrin.h>
#endif

#include <kiv/char16.h>

namespace kiv::numconv {

// The first character in the lowest byte. A character above U+00FF becomes a byte that
// is no ASCII character.
inline std::uint64_t as_byte(char c) noexcept
{
    return static_cast<unsigned char>(c);
}

inline std::uint64_t as_byte(char16 c) noexcept
{
    const char16_t unit{c};
    return unit < 0x100 ? unit : 0xFF;
}

template <class CharT>
std::uint64_t load_eight_portable(const CharT* p) noexcept
{
    std::uint64_t bytes = 0;
    for (unsigned i = 0; i < 8; ++i)
        bytes |= as_byte(p[i]) << 8 * i;
    return bytes;
}

inline std::uint64_t load_eight(const char* p) noexcept
{
    if constexpr (std::endian::native == std::endian::little) {
        std::uint64_t bytes;
        std::memcpy(&bytes, p, sizeof bytes);
        return bytes;
    } else {
        return load_eight_portable(p);
    }
}

inline std::uint64_t load_eight(const char16* p) noexcept
{
#if defined(__SSE2__) && defined(__x86_64__)
    // Saturates: units from U+8000 on, negative to it, become 0, other large ones 0xFF.
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_packus_epi16(units, units)));
#else
    return load_eight_portable(p);
#endif
}

constexpr std::uint64_t EIGHT_ZEROS = 0x3030303030303030;  // "00000000"

// Of bytes from which EIGHT_ZEROS was taken by exclusive or.
constexpr bool are_eight_digits(std::uint64_t digits) noexcept
{
    return (((digits + 0x7676767676767676) | digits) & 0x8080808080808080) == 0;
}

// The value of eight digits: pairs, then four pairs by two multiplications.
inline std::uint64_t eight_digits(std::uint64_t digits) noexcept
{
    constexpr std::uint64_t PAIR = 0x000000FF000000FF;
    constexpr std::uint64_t OUTER = 100 + (std::uint64_t{1'000'000} << 32);
    constexpr std::uint64_t INNER = 1 + (std::uint64_t{10'000} << 32);
    digits = digits * 10 + (digits >> 8);
    return ((digits & PAIR) * OUTER + (digits >> 16 & PAIR) * INNER) >> 32;
}

}  // namespace kiv::numconv

#endif
