// Single-byte charsets with AVX2. A table of 128 entries is eight rows of 16, each
// looked up by a byte shuffle that gives 0 for what lies in another row.

#if defined(__x86_64__)

    #include <immintrin.h>

    #include <bit>
    #include <cstddef>
    #include <cstdint>

    #include "charset/table_kernels.h"
    #include "charset/tables/sbcs_tables.h"

    // The file is compiled for the common machine: only what is so marked needs more.
    #define KIV_AVX2 [[gnu::target("avx2")]]

namespace kiv {

namespace {

constexpr std::size_t STEP = 32;
constexpr int ROWS = 8;

KIV_AVX2 inline __m256i splat8(unsigned value) noexcept
{
    return _mm256_set1_epi8(static_cast<char>(value));
}

KIV_AVX2 inline __m256i load(const void* p) noexcept
{
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
}

KIV_AVX2 inline void store(void* p, __m256i v) noexcept
{
    _mm256_storeu_si256(static_cast<__m256i*>(p), v);
}

KIV_AVX2 inline std::uint32_t top_bits(__m256i v) noexcept
{
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(v));
}

// The places in a row of the indices, or values from 0x80 up if they belong to
// another row or are no index (from 0x80 up).
KIV_AVX2 inline __m256i in_row(__m256i indices, int row) noexcept
{
    const __m256i from_row =
        _mm256_xor_si256(indices, splat8(static_cast<unsigned>(row * 16)));
    return _mm256_adds_epu8(from_row, splat8(0x70));
}

// --- Decoding ---------------------------------------------------------------------

// The code units of the bytes from 0x80 up, their low and high bytes apart.
struct UpperHalf {
    KIV_AVX2 explicit UpperHalf(const char16_t* table) noexcept
    {
        for (int row = 0; row < ROWS; ++row) {
            const auto* units = reinterpret_cast<const __m128i*>(table + 0x80 + 16 * row);
            const __m128i a = _mm_loadu_si128(units);
            const __m128i b = _mm_loadu_si128(units + 1);
            const __m128i byte = _mm_set1_epi16(0xFF);
            low[row] = _mm256_broadcastsi128_si256(
                _mm_packus_epi16(_mm_and_si128(a, byte), _mm_and_si128(b, byte)));
            high[row] = _mm256_broadcastsi128_si256(
                _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8)));
        }
    }

    __m256i low[ROWS];
    __m256i high[ROWS];
};

// 32 bytes to 32 units, if all have a character. Returns whether;
// if not, nothing is written and the plain loop takes over.
template <bool COMPLETE>
KIV_AVX2 inline bool decode_step(const UpperHalf& table, const unsigned char* in,
                                 char16* out) noexcept
{
    const __m256i bytes = load(in);
    __m256i low = bytes;
    __m256i high = _mm256_setzero_si256();
    if (top_bits(bytes) != 0) {
        const __m256i indices = _mm256_xor_si256(bytes, splat8(0x80));
        low = _mm256_andnot_si256(_mm256_cmpgt_epi8(high, bytes), bytes);
        for (int row = 0; row < ROWS; ++row) {
            const __m256i places = in_row(indices, row);
            low = _mm256_or_si256(low, _mm256_shuffle_epi8(table.low[row], places));
            high = _mm256_or_si256(high, _mm256_shuffle_epi8(table.high[row], places));
        }
        if constexpr (!COMPLETE) {
            if (top_bits(_mm256_and_si256(
                    _mm256_cmpeq_epi8(low, splat8(tables::NO_CHARACTER & 0xFF)),
                    _mm256_cmpeq_epi8(high, splat8(tables::NO_CHARACTER >> 8)))) != 0)
                return false;
        }
    }
    const __m256i a = _mm256_unpacklo_epi8(low, high);
    const __m256i b = _mm256_unpackhi_epi8(low, high);
    store(out, _mm256_permute2x128_si256(a, b, 0x20));
    store(out + STEP / 2, _mm256_permute2x128_si256(a, b, 0x31));
    return true;
}

template <bool COMPLETE>
KIV_AVX2 DecodeProgress decode(const char16_t* table, const unsigned char* in,
                               const unsigned char* in_end, char16* out, char16* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    if (n < STEP || (!COMPLETE && table[*in] == tables::NO_CHARACTER))
        return {in, out};
    const UpperHalf upper_half(table);
    std::size_t i = 0;
    while (n - i >= STEP && decode_step<COMPLETE>(upper_half, in + i, out + i))
        i += STEP;
    return {in + i, out + i};
}

// --- Encoding ---------------------------------------------------------------------

// 32 units to bytes. Most texts use one or two pages beside ASCII, which are looked up
// one after the other. Returns whether all have a byte; if not, nothing is written.
KIV_AVX2 inline bool encode_step(const unsigned char* pages, const char16* in,
                                 unsigned char* out) noexcept
{
    const __m256i a = load(in);
    const __m256i b = load(in + STEP / 2);
    constexpr int in_order = 0xD8;  // packing works in halves
    const __m256i page_of_unit = _mm256_permute4x64_epi64(
        _mm256_packus_epi16(_mm256_srli_epi16(a, 7), _mm256_srli_epi16(b, 7)), in_order);
    const __m256i in_page = _mm256_set1_epi16(tables::PAGE_SIZE - 1);
    const __m256i units = _mm256_permute4x64_epi64(
        _mm256_packus_epi16(_mm256_and_si256(a, in_page), _mm256_and_si256(b, in_page)),
        in_order);
    const __m256i is_ascii = _mm256_cmpeq_epi8(page_of_unit, _mm256_setzero_si256());
    __m256i bytes = _mm256_and_si256(units, is_ascii);
    const std::uint32_t not_ascii = ~top_bits(is_ascii);
    const std::uint32_t beyond = top_bits(page_of_unit);  // from page 128 up
    for (std::uint32_t rest = not_ascii & ~beyond; rest != 0;) {
        const auto unit = static_cast<char16_t>(in[std::countr_zero(rest)]);
        const unsigned page = unit / tables::PAGE_SIZE;
        const __m256i same = _mm256_cmpeq_epi8(page_of_unit, splat8(page));
        rest &= ~top_bits(same);
        // Units of other pages become no index.
        const __m256i indices =
            _mm256_or_si256(units, _mm256_andnot_si256(same, splat8(0x80)));
        const unsigned char* slot = pages + tables::PAGE_SIZE * (1U + pages[page]);
        for (int row = 0; row < ROWS; ++row) {
            const __m256i values = _mm256_broadcastsi128_si256(
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(slot + 16 * row)));
            bytes =
                _mm256_or_si256(bytes, _mm256_shuffle_epi8(values, in_row(indices, row)));
        }
    }
    const std::uint32_t none = top_bits(_mm256_cmpeq_epi8(bytes, _mm256_setzero_si256()));
    if (((none & not_ascii) | beyond) != 0)
        return false;
    store(out, bytes);
    return true;
}

KIV_AVX2 EncodeProgress encode(const unsigned char* pages, const char16* in,
                               const char16* in_end, unsigned char* out,
                               unsigned char* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    std::size_t i = 0;
    while (n - i >= STEP && encode_step(pages, in + i, out + i))
        i += STEP;
    return {in + i, out + i};
}

}  // namespace

constinit const TableKernels avx2_table_kernels = {
    .decode_sbcs_complete = decode<true>,
    .decode_sbcs = decode<false>,
    .encode_sbcs = encode,
    .multi_byte = {},
};

}  // namespace kiv

#endif
