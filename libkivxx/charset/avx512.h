// charset/avx512.h - what the AVX-512 kernels share: short names, look-ups in tables,
// and the kernels themselves.
//
// Every function that uses the instructions is marked KIV_AVX512: the files are
// compiled for the common machine, so that nothing else in them needs more.
// To be included by *_avx512.cpp files only.

#ifndef KIV_CHARSET_AVX512_H
#define KIV_CHARSET_AVX512_H

#include <immintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "charset/dbcs_traits.h"
#include "charset/gb18030_keys.h"
#include "charset/table_kernels.h"
#include "charset/tables/gb18030_tables.h"
#include "charset/tables/no_entry.h"

#define KIV_AVX512 \
    [[gnu::target( \
        "avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi,avx512vbmi2,bmi,bmi2,popcnt")]]

namespace kiv::avx512 {

constexpr std::size_t VECTOR_BYTES = 64;
constexpr std::size_t VECTOR_UNITS = 32;

// The lowest n bits, n from 0 to 64.
constexpr std::uint64_t low_bits(std::size_t n) noexcept
{
    return n < 64 ? (std::uint64_t{1} << n) - 1 : ~std::uint64_t{0};
}

constexpr __mmask32 low_bits32(std::size_t n) noexcept
{
    return static_cast<__mmask32>(low_bits(n));
}

constexpr __mmask16 low_bits16(std::size_t n) noexcept
{
    return static_cast<__mmask16>(low_bits(n));
}

KIV_AVX512 inline __m512i splat8(unsigned value) noexcept
{
    return _mm512_set1_epi8(static_cast<char>(value));
}

KIV_AVX512 inline __m512i splat16(unsigned value) noexcept
{
    return _mm512_set1_epi16(static_cast<short>(value));
}

KIV_AVX512 inline __m512i splat32(unsigned value) noexcept
{
    return _mm512_set1_epi32(static_cast<int>(value));
}

// 64 bytes to 64 units of the same values.
KIV_AVX512 inline void widen64(__m512i bytes, char16* out) noexcept
{
    const __m256i low = _mm512_castsi512_si256(bytes);
    const __m256i high = _mm512_extracti64x4_epi64(bytes, 1);
    _mm512_storeu_si512(out, _mm512_cvtepu8_epi16(low));
    _mm512_storeu_si512(out + VECTOR_UNITS, _mm512_cvtepu8_epi16(high));
}

// Which bytes lie in a range or in one of two.
template <ByteRanges RANGES>
KIV_AVX512 inline std::uint64_t in_ranges(__m512i bytes) noexcept
{
    constexpr ByteRange lower = RANGES.lower;
    constexpr ByteRange upper = RANGES.upper;
    std::uint64_t mask = _mm512_cmple_epu8_mask(
        _mm512_sub_epi8(bytes, splat8(lower.first)), splat8(lower.last - lower.first));
    if constexpr (RANGES.has_upper())
        mask |= _mm512_cmple_epu8_mask(
            _mm512_sub_epi8(bytes, splat8(upper.first)),
            splat8(static_cast<unsigned>(upper.last - upper.first)));
    return mask;
}

// table[position] of the lanes that are set, 0 in the others. 16-bit entries are
// read as 32 bits, so there must be one more entry behind the last.
KIV_AVX512 inline __m512i gather(const void* table16, __m512i positions,
                                 __mmask16 lanes) noexcept
{
    const __m512i wide =
        _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), lanes, positions, table16, 2);
    return _mm512_and_si512(wide, splat32(0xFFFF));
}

// Where a two-level table with blocks of 2^BITS keeps the entries of the keys.
// Takes the lanes from `lanes` whose block is missing. An index that covers keys up to
// LAST in no more than 16 entries is looked up in a register.
template <unsigned BITS, unsigned LAST>
KIV_AVX512 inline __m512i positions_of(const std::uint16_t* index, __m512i keys,
                                       __mmask16& lanes) noexcept
{
    constexpr std::size_t size = (LAST >> BITS) + 1;
    const __m512i numbers = _mm512_srli_epi32(keys, BITS);
    __m512i blocks;
    if constexpr (size <= 16)
        blocks = _mm512_permutexvar_epi32(
            numbers,
            _mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(low_bits16(size), index)));
    else
        blocks = gather(index, numbers, lanes);
    lanes = _mm512_mask_cmpneq_epu32_mask(lanes, blocks, splat32(tables::NO_BLOCK));
    return _mm512_or_si512(blocks, _mm512_and_si512(keys, splat32((1U << BITS) - 1)));
}

// What the tables of GB 18030 give: entries of the data, or, in a block of which
// all keys are apart from their results by one offset, keys with that offset added
// (sign 1) or taken off (-1).
KIV_AVX512 inline __m512i look_up_gb18030(const std::uint16_t* index, const void* data,
                                          __m512i keys, __mmask16 lanes,
                                          int sign) noexcept
{
    using namespace gb18030;
    const __m512i blocks = gather(index, _mm512_srli_epi32(keys, BLOCK_BITS), lanes);
    const __mmask16 stored =
        _mm512_mask_cmplt_epu32_mask(lanes, blocks, splat32(FIRST_SPECIAL));
    const __m512i in_block = _mm512_and_si512(keys, splat32(IN_BLOCK));
    const __m512i found = gather(data, _mm512_or_si512(blocks, in_block), stored);
    const auto special = static_cast<__mmask16>(lanes & ~stored);
    if (special == 0)
        return found;
    const __m512i offsets = _mm512_maskz_loadu_epi32(
        low_bits16(std::size(tables::gb18030_offsets)), tables::gb18030_offsets);
    const __m512i offset =
        _mm512_permutexvar_epi32(_mm512_sub_epi32(splat32(LAST_OFFSET), blocks), offsets);
    const __m512i shifted =
        sign > 0 ? _mm512_add_epi32(keys, offset) : _mm512_sub_epi32(keys, offset);
    return _mm512_mask_and_epi32(found, special, shifted, splat32(0xFFFF));
}

// The kernels; TableKernels says what they do.
KIV_AVX512 DecodeProgress decode_sbcs_complete(const char16_t* table,
                                               const unsigned char* in,
                                               const unsigned char* in_end, char16* out,
                                               char16* out_end);
KIV_AVX512 DecodeProgress decode_sbcs(const char16_t* table, const unsigned char* in,
                                      const unsigned char* in_end, char16* out,
                                      char16* out_end);
KIV_AVX512 EncodeProgress encode_sbcs(const unsigned char* pages, const char16* in,
                                      const char16* in_end, unsigned char* out,
                                      unsigned char* out_end);

template <class Traits>
KIV_AVX512 DecodeProgress decode_multi_byte(const std::uint16_t* index,
                                            const typename Traits::DecodeEntry* data,
                                            const unsigned char* in,
                                            const unsigned char* in_end, char16* out,
                                            char16* out_end);
template <class Traits>
KIV_AVX512 EncodeProgress encode_multi_byte(const std::uint16_t* index,
                                            const std::uint16_t* data, const char16* in,
                                            const char16* in_end, unsigned char* out,
                                            unsigned char* out_end);

}  // namespace kiv::avx512

#endif
