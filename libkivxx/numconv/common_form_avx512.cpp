// Numbers of the common form in one register: masks tell where the digits, the point and
// the exponent are, so that no length of any part is a branch to predict. Masked loads
// do not touch what lies behind the text.

#if defined(__x86_64__)

    #include <immintrin.h>

    #include <array>

    #include "numconv/common_form.h"
    #include "numconv/number_scan.h"
    #include "numconv/parse_kernels.h"

    #define KIV_AVX512                                                            \
        [[gnu::target(                                                            \
            "avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2," \
            "popcnt")]]

namespace kiv::numconv {
namespace {

KIV_AVX512 inline __m256i splat(char c) noexcept
{
    return _mm256_set1_epi8(c);
}

// --- Up to 16 characters: integers -------------------------------------------------

KIV_AVX512 inline __mmask16 first_16(std::ptrdiff_t n) noexcept
{
    return static_cast<__mmask16>(
        _bzhi_u32(0xFFFF, static_cast<unsigned>(n < 16 ? n : 16)));
}

// Zeros behind the end of the text.
KIV_AVX512 inline __m128i load_16(const char* p, std::ptrdiff_t n) noexcept
{
    return _mm_maskz_loadu_epi8(first_16(n), p);
}

// Units above U+00FF become 0xFF.
KIV_AVX512 inline __m128i load_16(const char16* p, std::ptrdiff_t n) noexcept
{
    const __mmask16 units = first_16(n);
    return _mm256_maskz_cvtusepi16_epi8(units, _mm256_maskz_loadu_epi16(units, p));
}

// Entry n on: positions that move the first n of 16 bytes to the end, zeros before them.
alignas(64) constexpr auto TO_THE_END_OF_16 = [] {
    std::array<signed char, 32> positions{};
    for (int i = 0; i < 32; ++i)
        positions[static_cast<unsigned>(i)] =
            static_cast<signed char>(i < 16 ? -1 : i - 16);
    return positions;
}();

// In groups of two, four and eight digits.
KIV_AVX512 inline std::uint64_t value_of_16(__m128i digits) noexcept
{
    const __m128i twos = _mm_maddubs_epi16(digits, _mm_set1_epi16(1 << 8 | 10));
    const __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
    const __m128i packed = _mm_packus_epi32(fours, fours);
    const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(1 << 16 | 10000));
    const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    return (both & 0xFFFFFFFF) * 100'000'000 + (both >> 32);
}

// The first digit in the lowest byte.
constexpr std::uint32_t four_digits(std::uint32_t digits) noexcept
{
    const std::uint32_t twos = (digits * (1 + (10U << 8)) >> 8) & 0x00FF00FF;
    return twos * (1 + (100U << 16)) >> 16;
}

template <class T, class CharT>
KIV_AVX512 from_chars_result<CharT> parse_integer_avx512(const CharT* first,
                                                         const CharT* last, T& value,
                                                         int base,
                                                         unsigned flags) noexcept
{
    const CharT* p = first;
    if (flags & WHITE_SPACE)
        for (; p != last && is_ascii_space(unit_value(*p)); ++p) {
        }
    const __m128i text = load_16(p, last - p);
    const __m128i digits = _mm_sub_epi8(text, _mm_set1_epi8('0'));
    const unsigned lanes = _mm_cmplt_epu8_mask(digits, _mm_set1_epi8(10));
    const auto sign = static_cast<unsigned char>(_mm_cvtsi128_si32(text));
    const unsigned negative = std::is_signed_v<T> & (sign == '-');
    const unsigned start = negative | (flags & PLUS & unsigned{sign == '+'});
    // 16 at most: the bits above are not set.
    const unsigned end = static_cast<unsigned>(_tzcnt_u32(~(lanes >> start))) + start;
    // A digit of another script goes on with the number.
    const bool other = sizeof(CharT) != 1 && (_mm_movepi8_mask(text) >> end & 1) != 0;
    if (end == start || other || base != 10) [[unlikely]]
        return parse_any_integer(first, last, value, base, flags);

    // Without the sign, from the end on.
    const auto kept = static_cast<__mmask16>(~start);
    const __m128i positions =
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(TO_THE_END_OF_16.data() + end));
    std::uint64_t magnitude =
        value_of_16(_mm_shuffle_epi8(_mm_maskz_mov_epi8(kept, digits), positions));
    const CharT* number_end = p + end;
    if (end == 16) {
        BoundedText<CharT> rest(number_end, last);
        const std::ptrdiff_t more = take_digits_singly(rest, magnitude);
        number_end = rest.at();
        if (more > 2 || goes_on(rest))
            return parse_any_integer(first, last, value, base, flags);
    }
    const auto flip = -static_cast<std::int64_t>(negative);
    const auto result =
        as<T>((static_cast<std::int64_t>(magnitude) ^ flip) - flip, number_end);
    if (result.end == nullptr) [[unlikely]]
        return parse_any_integer(first, last, value, base, flags);
    value = result.value;
    return {number_end, std::errc(), number_range::inside};
}

// --- Up to 32 characters: floating-point values ---------------------------------------

constexpr unsigned WINDOW = 32;

KIV_AVX512 inline __mmask32 first_32(std::ptrdiff_t n) noexcept
{
    return _bzhi_u32(~0U, static_cast<unsigned>(n < 32 ? n : 32));
}

KIV_AVX512 inline __m256i load_32(const char* p, std::ptrdiff_t n) noexcept
{
    return _mm256_maskz_loadu_epi8(first_32(n), p);
}

KIV_AVX512 inline __m256i load_32(const char16* p, std::ptrdiff_t n) noexcept
{
    const __mmask32 units = first_32(n);
    return _mm512_maskz_cvtusepi16_epi8(units, _mm512_maskz_loadu_epi16(units, p));
}

// Entry n on: positions that move the first n < 32 of 32 bytes to the end, and copies
// of the last byte before them.
alignas(64) constexpr auto TO_THE_END_OF_32 = [] {
    std::array<unsigned char, 64> positions{};
    for (unsigned i = 0; i < 64; ++i)
        positions[i] = static_cast<unsigned char>(i < 32 ? 31 : i - 32);
    return positions;
}();

// Up to 19 digits, and zeros behind them.
KIV_AVX512 inline std::uint64_t value_of(__m256i digits, unsigned count) noexcept
{
    const __m256i positions = _mm256_loadu_si256(
        reinterpret_cast<const __m256i*>(TO_THE_END_OF_32.data() + count));
    const __m256i ones = _mm256_permutexvar_epi8(positions, digits);
    const __m256i twos = _mm256_maddubs_epi16(ones, _mm256_set1_epi16(1 << 8 | 10));
    const __m256i fours = _mm256_madd_epi16(twos, _mm256_set1_epi32(1 << 16 | 100));
    const __m256i packed = _mm256_packus_epi32(fours, fours);
    const __m256i eights = _mm256_madd_epi16(packed, _mm256_set1_epi32(1 << 16 | 10000));
    const auto low =
        static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm256_castsi256_si128(eights)));
    const auto high = static_cast<std::uint64_t>(
        _mm_cvtsi128_si64(_mm256_extracti128_si256(eights, 1)));
    // Only 16 of the digits are in `high`.
    constexpr std::uint64_t GROUP = 100'000'000;
    return (low >> 32) * (GROUP * GROUP) + (high & 0xFFFFFFFF) * GROUP + (high >> 32);
}

// The lane from which on a run of lanes ends: the sum carries through it.
constexpr std::uint64_t end_of_run(std::uint64_t lanes, std::uint64_t start) noexcept
{
    return (lanes + start) & ~lanes;
}

// In 64 bits: lane 32 is not in a mask of the window.
KIV_AVX512 inline unsigned number_of(std::uint64_t lane) noexcept
{
    return static_cast<unsigned>(_tzcnt_u64(lane));
}

// The text in lanes: which hold what.
struct Lanes {
    __m256i digits;  // their values
    __m256i text;
    std::uint64_t are_digits;
    std::uint64_t others;  // digits of other scripts, which go on with a number
};

struct Exponent {
    std::int64_t value;
    std::uint64_t end;  // 0 if it is not of the common form
};

// Of up to four digits, behind the letter.
KIV_AVX512 inline Exponent exponent_behind(std::uint64_t letter, const Lanes& lanes)
{
    const std::uint64_t first = letter << 1;
    const std::uint64_t minus = _mm256_cmpeq_epi8_mask(lanes.text, splat('-')) & first;
    const std::uint64_t plus = _mm256_cmpeq_epi8_mask(lanes.text, splat('+')) & first;
    const std::uint64_t at = first << ((minus | plus) != 0);
    const std::uint64_t end = end_of_run(lanes.are_digits, at);
    const std::uint64_t digits = end - at;
    const auto n = static_cast<unsigned>(_mm_popcnt_u64(digits));
    if (n - 1 >= 4 || end >> WINDOW != 0 || (lanes.others & end) != 0)
        return {0, 0};
    const auto ones = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm256_castsi256_si128(
        _mm256_maskz_compress_epi8(static_cast<__mmask32>(digits), lanes.digits))));
    const std::int64_t value = four_digits(ones << (32 - 8 * n));
    return {minus != 0 ? -value : value, end};
}

struct LongNumber {
    bool negative;
    std::int64_t exponent;
    std::uint64_t mantissa_end;
    std::uint64_t end;
};

// More than 19 digits, leading zeros included; at most 32.
template <class Float, class CharT>
[[gnu::noinline]] KIV_AVX512 from_chars_result<CharT> parse_long_avx512(
    const Lanes& lanes, std::uint64_t kept, const LongNumber& number, const CharT* p,
    Float& value, unsigned flags) noexcept
{
    NumberScan<CharT> scan{};
    scan.kind = ScanKind::decimal;
    scan.negative = number.negative;
    scan.exponent = number.exponent;

    // From the first one that is not 0.
    const std::uint64_t nonzero =
        kept & _mm256_cmpneq_epi8_mask(lanes.digits, _mm256_setzero_si256());
    const std::uint64_t significant =
        nonzero == 0 ? 0 : kept & (0 - (nonzero & (0 - nonzero)));
    const auto count = static_cast<unsigned>(_mm_popcnt_u64(significant));
    const __m256i digits =
        _mm256_maskz_compress_epi8(static_cast<__mmask32>(significant), lanes.digits);
    scan.digits_end = p + number_of(number.mantissa_end);
    if (count <= 19) {
        scan.coefficient.low = value_of(digits, count);
    } else {
        const __m128i last = _mm256_extracti128_si256(digits, 1);
        const auto four = static_cast<std::uint32_t>(_mm_cvtsi128_si32(last));
        scan.coefficient = words::multiply_add(
            value_of_16(_mm256_castsi256_si128(digits)), 10'000, four_digits(four));
        const auto fifth = static_cast<unsigned>(_mm_extract_epi8(last, 4));
        const bool more = _mm256_cmpneq_epi8_mask(digits, _mm256_setzero_si256()) >> 21;
        scan.digits = p + number_of(significant);
        scan.dropped = rounding_of_digit<10>(fifth) | unsigned{more};
        scan.exponent += count - 20;
    }
    return finish_decimal(scan, p + number_of(number.end), value, flags);
}

template <class Float, class CharT>
KIV_AVX512 from_chars_result<CharT> parse_float_avx512(const CharT* first,
                                                       const CharT* last, Float& value,
                                                       unsigned flags) noexcept
{
    const CharT* p = first;
    if (flags & WHITE_SPACE)
        for (; p != last && is_ascii_space(unit_value(*p)); ++p) {
        }
    Lanes lanes;
    lanes.text = load_32(p, last - p);
    lanes.digits = _mm256_sub_epi8(lanes.text, splat('0'));
    lanes.are_digits = _mm256_cmplt_epu8_mask(lanes.digits, splat(10));
    lanes.others = sizeof(CharT) == 1 ? 0 : _mm256_movepi8_mask(lanes.text);

    const auto sign =
        static_cast<unsigned char>(_mm_cvtsi128_si32(_mm256_castsi256_si128(lanes.text)));
    const bool negative = sign == '-';
    const std::uint64_t start =
        std::uint64_t{1} << (unsigned{negative} | (flags & PLUS & unsigned{sign == '+'}));
    const std::uint64_t point = end_of_run(lanes.are_digits, start) &
                                _mm256_cmpeq_epi8_mask(lanes.text, splat('.'));
    const std::uint64_t with_point = lanes.are_digits | point;
    std::uint64_t end = end_of_run(with_point, start);
    const std::uint64_t mantissa = with_point & (end - start);
    const std::uint64_t kept = mantissa & ~point;
    const auto count = static_cast<unsigned>(_mm_popcnt_u64(kept));
    if (count == 0 || end >> WINDOW != 0 || (lanes.others & end) != 0) [[unlikely]]
        return parse_any_float(first, last, value, flags);
    // The lanes behind the point; none if there is no point.
    auto exponent =
        -static_cast<std::int64_t>(_mm_popcnt_u64(mantissa & (0 - (point << 1))));

    const std::uint64_t mantissa_end = end;
    const std::uint64_t letters =
        _mm256_cmpeq_epi8_mask(_mm256_or_si256(lanes.text, splat(0x20)), splat('e'));
    if ((letters & end) != 0) {
        const Exponent written = exponent_behind(end, lanes);
        if (written.end == 0) [[unlikely]]
            return parse_any_float(first, last, value, flags);
        exponent += written.value;
        end = written.end;
    }
    if (count > 19)
        return parse_long_avx512(lanes, kept, {negative, exponent, mantissa_end, end}, p,
                                 value, flags);
    const std::uint64_t coefficient = value_of(
        _mm256_maskz_compress_epi8(static_cast<__mmask32>(kept), lanes.digits), count);
    p += number_of(end);
    if (coefficient == 0) {
        if (p != last && (unit_value(*p) | 0x20) == 'x')  // perhaps a prefix
            return parse_any_float(first, last, value, flags);
        value = negative ? -Float{0} : Float{0};
    } else if (!decimal_to_binary_quickly(negative, coefficient, exponent, value))
        [[unlikely]] {
        return finish_decimal(negative, coefficient, exponent, p, value);
    }
    return {p, std::errc(), number_range::inside};
}

template <class CharT>
constexpr Parsers<CharT> AVX512 = {parse_float_avx512,   parse_float_avx512,
                                   parse_integer_avx512, parse_integer_avx512,
                                   parse_integer_avx512, parse_integer_avx512};

}  // namespace

constinit const ParseKernels avx512_parse_kernels = {AVX512<char>, AVX512<char16>};

}  // namespace kiv::numconv

#endif
