// numconv/sixteen_digits.h - eight or sixteen decimal digits as characters in registers.

#ifndef KIV_NUMCONV_SIXTEEN_DIGITS_H
#define KIV_NUMCONV_SIXTEEN_DIGITS_H

#include <bit>
#include <cstdint>

#if defined(__SSE2__) && defined(__x86_64__)
    #define KIV_NUMCONV_SSE2
    #include <emmintrin.h>
#endif

#include <kiv/char16.h>

#include "bigint/digit_text.h"

namespace kiv::numconv {

// The digits of a value of COUNT digits or one less, in order, with a zero in front.
class EightDigits {
public:
    static constexpr int COUNT = 8;

    explicit EightDigits(std::uint64_t value) noexcept
        : m_digits(words::spell_eight(static_cast<std::uint32_t>(value)))
    {
    }

    // 0 or 1.
    int leading_zeros() const noexcept { return (m_digits & 0xFF) == 0; }
    bool is_zero() const noexcept { return m_digits == 0; }
    // Up to the last digit that is not 0.
    int significant() const noexcept { return (71 - std::countl_zero(m_digits | 1)) / 8; }

    // The seven characters from digit `start`, 0 or 1, on, the first in the lowest byte.
    std::uint64_t seven_from(int start) const noexcept
    {
        return m_digits >> 8 * start | words::EIGHT_ZEROS;
    }
    // Writes COUNT units, those from digit `start` on at `to`: one may lie before it.
    template <class CharT>
    void store_from(int start, CharT* to) const noexcept
    {
        words::store_eight(to, seven_from(start));
    }

private:
    std::uint64_t m_digits;  // values, the first in the lowest byte
};

class SixteenDigitsPortable {
public:
    static constexpr int COUNT = 16;

    explicit SixteenDigitsPortable(std::uint64_t value) noexcept
        : m_first(value / 100'000'000), m_last(value % 100'000'000)
    {
    }

    int leading_zeros() const noexcept { return m_first.leading_zeros(); }
    int significant() const noexcept
    {
        return m_last.is_zero() ? m_first.significant()
                                : EightDigits::COUNT + m_last.significant();
    }
    std::uint64_t seven_from(int start) const noexcept
    {
        return m_first.seven_from(start);
    }
    template <class CharT>
    void store_from(int start, CharT* to) const noexcept
    {
        m_first.store_from(0, to - start);
        m_last.store_from(0, to - start + EightDigits::COUNT);
    }

private:
    EightDigits m_first;
    EightDigits m_last;
};

#ifdef KIV_NUMCONV_SSE2

// The steps are those of words::spell_eight(), on both halves at once.
class SixteenDigitsSse2 {
public:
    static constexpr int COUNT = 16;

    explicit SixteenDigitsSse2(std::uint64_t value) noexcept
    {
        const std::uint64_t high = value / 100'000'000;
        const std::uint64_t low = value % 100'000'000;
        const __m128i eights =
            _mm_unpacklo_epi64(_mm_cvtsi64_si128(static_cast<long long>(high)),
                               _mm_cvtsi64_si128(static_cast<long long>(low)));
        // 10^-4 is 0xD1B71759 / 2^45, rounded up.
        const __m128i high_fours =
            _mm_srli_epi64(_mm_mul_epu32(eights, _mm_set1_epi64x(0xD1B71759)), 45);
        const __m128i low_fours =
            _mm_sub_epi64(eights, _mm_mul_epu32(high_fours, _mm_set1_epi64x(10'000)));
        const __m128i fours = _mm_or_si128(high_fours, _mm_slli_epi64(low_fours, 32));
        // 1/100 is 5243 / 2^19, rounded up.
        const __m128i high_twos =
            _mm_srli_epi32(_mm_mulhi_epu16(fours, _mm_set1_epi32(5243)), 3);
        const __m128i low_twos =
            _mm_sub_epi16(fours, _mm_mullo_epi16(high_twos, _mm_set1_epi32(100)));
        const __m128i twos = _mm_or_si128(high_twos, _mm_slli_epi32(low_twos, 16));
        // 1/10 is 6554 / 2^16, rounded up.
        const __m128i high_ones = _mm_mulhi_epu16(twos, _mm_set1_epi16(6554));
        m_digits =
            _mm_add_epi16(_mm_slli_epi16(twos, 8),
                          _mm_mullo_epi16(high_ones, _mm_set1_epi16(1 - (10 << 8))));
    }

    int leading_zeros() const noexcept { return static_cast<int>(~others() & 1); }
    int significant() const noexcept { return 32 - std::countl_zero(others() | 1); }

    std::uint64_t seven_from(int start) const noexcept
    {
        return static_cast<std::uint64_t>(_mm_cvtsi128_si64(characters())) >> 8 * start;
    }
    void store_from(int start, char* to) const noexcept
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to - start), characters());
    }
    void store_from(int start, char16* to) const noexcept
    {
        to -= start;
        const __m128i zero = _mm_setzero_si128();
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                         _mm_unpacklo_epi8(characters(), zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8),
                         _mm_unpackhi_epi8(characters(), zero));
    }

private:
    // One bit for each digit that is not 0.
    unsigned others() const noexcept
    {
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_cmpgt_epi8(m_digits, _mm_setzero_si128())));
    }
    __m128i characters() const noexcept
    {
        return _mm_or_si128(m_digits, _mm_set1_epi8('0'));
    }

    __m128i m_digits;  // values
};

using SixteenDigits = SixteenDigitsSse2;

#else

using SixteenDigits = SixteenDigitsPortable;

#endif

}  // namespace kiv::numconv

#endif
