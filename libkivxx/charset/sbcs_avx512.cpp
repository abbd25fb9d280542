// Single-byte charsets with AVX-512: tables that fit into registers.

#if defined(__x86_64__)

    #include "charset/avx512.h"
    #include "charset/tables/sbcs_tables.h"

namespace kiv::avx512 {

namespace {

// The upper half of a decode table, the code units of the bytes from 0x80 up; the lower
// half of every charset is ASCII.
struct UpperHalf {
    KIV_AVX512 explicit UpperHalf(const char16_t* table) noexcept
        : quarter0(_mm512_loadu_si512(table + 0x80)),
          quarter1(_mm512_loadu_si512(table + 0xA0)),
          quarter2(_mm512_loadu_si512(table + 0xC0)),
          quarter3(_mm512_loadu_si512(table + 0xE0))
    {
    }

    KIV_AVX512 __m512i decode(__m512i bytes_as_units) const noexcept
    {
        const __m512i lower =
            _mm512_permutex2var_epi16(quarter0, bytes_as_units, quarter1);
        const __m512i upper =
            _mm512_permutex2var_epi16(quarter2, bytes_as_units, quarter3);
        const __mmask32 in_upper = _mm512_test_epi16_mask(bytes_as_units, splat16(0x40));
        const __mmask32 not_ascii = _mm512_test_epi16_mask(bytes_as_units, splat16(0x80));
        const __m512i units = _mm512_mask_mov_epi16(lower, in_upper, upper);
        return _mm512_mask_mov_epi16(bytes_as_units, not_ascii, units);
    }

    __m512i quarter0, quarter1, quarter2, quarter3;
};

// Converts up to 32 bytes; returns how many came before one without a character.
template <bool COMPLETE>
KIV_AVX512 inline std::size_t decode_some(const UpperHalf& table, const unsigned char* in,
                                          std::size_t n, char16* out) noexcept
{
    const __m256i bytes = _mm256_maskz_loadu_epi8(low_bits32(n), in);
    const __m512i units = table.decode(_mm512_cvtepu8_epi16(bytes));
    if constexpr (!COMPLETE) {
        const __mmask32 unmappable =
            _mm512_cmpeq_epi16_mask(units, splat16(tables::NO_CHARACTER));
        if (unmappable != 0)
            n = std::min(n, static_cast<std::size_t>(std::countr_zero(unmappable)));
    }
    _mm512_mask_storeu_epi16(out, low_bits32(n), units);
    return n;
}

template <bool COMPLETE>
KIV_AVX512 DecodeProgress decode(const char16_t* table, const unsigned char* in,
                                 const unsigned char* in_end, char16* out,
                                 char16* out_end) noexcept
{
    if (!COMPLETE && in != in_end && table[*in] == tables::NO_CHARACTER)
        return {in, out};
    const UpperHalf upper_half(table);
    const std::size_t n = common_size(in, in_end, out, out_end);
    std::size_t i = 0;
    while (i < n) {
        const std::size_t size = std::min(n - i, VECTOR_UNITS);
        const std::size_t done = decode_some<COMPLETE>(upper_half, in + i, size, out + i);
        i += done;
        if (done < size)
            break;
    }
    return {in + i, out + i};
}

}  // namespace

DecodeProgress decode_sbcs_complete(const char16_t* table, const unsigned char* in,
                                    const unsigned char* in_end, char16* out,
                                    char16* out_end)
{
    return decode<true>(table, in, in_end, out, out_end);
}

DecodeProgress decode_sbcs(const char16_t* table, const unsigned char* in,
                           const unsigned char* in_end, char16* out, char16* out_end)
{
    return decode<false>(table, in, in_end, out, out_end);
}

// --- Encoding -------------------------------------------------------------------

namespace {

// The lower bytes of 64 units.
KIV_AVX512 inline __m512i low_bytes(__m512i a, __m512i b) noexcept
{
    const __m512i low = _mm512_castsi256_si512(_mm512_cvtepi16_epi8(a));
    return _mm512_inserti64x4(low, _mm512_cvtepi16_epi8(b), 1);
}

// Looks up byte values from 0 to 127 in a table of 128 bytes; the top bit of an index
// does not count.
KIV_AVX512 inline __m512i look_up(const unsigned char* table, __m512i indices) noexcept
{
    return _mm512_permutex2var_epi8(_mm512_loadu_si512(table), indices,
                                    _mm512_loadu_si512(table + VECTOR_BYTES));
}

}  // namespace

// Most texts use one or two pages beside ASCII, so the pages that a vector needs
// are looked up one after the other.
EncodeProgress encode_sbcs(const unsigned char* pages, const char16* in,
                           const char16* in_end, unsigned char* out,
                           unsigned char* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    for (std::size_t i = 0; i < n;) {
        std::size_t size = std::min(n - i, VECTOR_BYTES);
        const __m512i a = _mm512_maskz_loadu_epi16(low_bits32(size), in + i);
        const __m512i b =
            size <= VECTOR_UNITS
                ? _mm512_setzero_si512()
                : _mm512_maskz_loadu_epi16(
                      static_cast<__mmask32>(low_bits(size) >> VECTOR_UNITS),
                      in + i + VECTOR_UNITS);
        __m512i bytes = low_bytes(a, b);
        const __m512i page_of_unit =
            low_bytes(_mm512_srli_epi16(a, 7), _mm512_srli_epi16(b, 7));
        __mmask64 beyond = _mm512_cmpge_epu16_mask(a, splat16(tables::PAGED_UNITS)) |
                           static_cast<__mmask64>(
                               _mm512_cmpge_epu16_mask(b, splat16(tables::PAGED_UNITS)))
                               << VECTOR_UNITS;
        const __mmask64 not_ascii = _mm512_test_epi8_mask(page_of_unit, page_of_unit);
        const __m512i units = bytes;
        for (__mmask64 rest = not_ascii & ~beyond; rest != 0;) {
            const auto at = static_cast<std::size_t>(std::countr_zero(rest));
            const unsigned page = static_cast<char16_t>(in[i + at]) / tables::PAGE_SIZE;
            const __mmask64 same =
                _mm512_mask_cmpeq_epi8_mask(rest, page_of_unit, splat8(page));
            const unsigned char* slot = pages + tables::PAGE_SIZE * (1U + pages[page]);
            bytes = _mm512_mask_mov_epi8(bytes, same, look_up(slot, units));
            rest &= ~same;
        }
        const __mmask64 unmapped =
            beyond | _mm512_mask_testn_epi8_mask(not_ascii, bytes, bytes);
        const bool stops = (unmapped & low_bits(size)) != 0;
        if (stops)
            size = static_cast<std::size_t>(std::countr_zero(unmapped));
        _mm512_mask_storeu_epi8(out + i, low_bits(size), bytes);
        i += size;
        if (stops)
            return {in + i, out + i};
    }
    return {in + n, out + n};
}

}  // namespace kiv::avx512

#endif
