// Encoding in the charsets of one and two bytes and in GB 18030 with AVX-512:
// 16 units at a time are looked up, and the bytes that their codes have are
// packed together.

#if defined(__x86_64__)

    #include <algorithm>

    #include "charset/avx512.h"
    #include "charset/tables/dbcs_tables.h"

namespace kiv::avx512 {

namespace {

constexpr std::size_t LANES = 16;

// --- What differs between the charsets -------------------------------------------

template <class Traits>
struct Form {
    static constexpr bool SUPPLEMENTARY = Traits::HIGHEST > 0xFFFF;

    // The bytes of the code points as numbers, the last byte lowest. Takes the lanes
    // without a mapping from `lanes`.
    KIV_AVX512 static __m512i codes(const std::uint16_t* index, const std::uint16_t* data,
                                    __m512i characters, __mmask16& lanes) noexcept
    {
        if constexpr (Traits::HIGHEST != 0xFFFF)
            lanes =
                _mm512_mask_cmple_epu32_mask(lanes, characters, splat32(Traits::HIGHEST));
        const __m512i at = positions_of<Traits::ENCODE_BLOCK_BITS, Traits::HIGHEST>(
            index, characters, lanes);
        const __m512i codes = gather(data, at, lanes);
        lanes = _mm512_mask_cmpneq_epu32_mask(lanes, codes, splat32(tables::NO_CODE));
        return codes;
    }
};

template <>
struct Form<GB18030Traits> {
    static constexpr bool SUPPLEMENTARY = true;

    KIV_AVX512 static __m512i codes(const std::uint16_t* index, const std::uint16_t* data,
                                    __m512i characters, __mmask16& lanes) noexcept
    {
        using namespace gb18030;
        const __mmask16 beyond =
            _mm512_mask_cmpgt_epu32_mask(lanes, characters, splat32(0xFFFF));
        __m512i keys = look_up_gb18030(index, data, characters,
                                       static_cast<__mmask16>(lanes & ~beyond), 1);
        keys = _mm512_mask_add_epi32(keys, beyond, characters,
                                     splat32(SUPPLEMENTARY_KEY_OFFSET));
        const __m512i two = _mm512_sub_epi32(keys, splat32(FIRST_TWO_BYTE_KEY));
        const __m512i codes =
            _mm512_add_epi32(joined<TWO_BYTE_ROW>(two, 8), splat32(0x8140));
        const __mmask16 fours =
            _mm512_mask_cmpge_epu32_mask(lanes, keys, splat32(FIRST_FOUR_BYTE_KEY));
        if (fours == 0)
            return codes;
        const __m512i linear = _mm512_sub_epi32(keys, splat32(FIRST_FOUR_BYTE_KEY));
        const __m512i front = quotient<PAIRS>(linear);
        const __m512i back = remainder<PAIRS>(linear, front);
        const __m512i numbers = _mm512_or_si512(
            _mm512_slli_epi32(joined<DIGITS>(front, 8), 16), joined<DIGITS>(back, 8));
        return _mm512_mask_add_epi32(codes, fours, numbers, splat32(0x81308130));
    }

private:
    // Exact for linear indices: quotients stay 1 / 2N or more away from whole numbers,
    // and single precision, within 2^-23 of the quotient, errs by less up to 2^22 / N.
    // Rounding mode and exception flags of the caller are left alone.
    template <unsigned N>
    KIV_AVX512 static __m512i quotient(__m512i numbers) noexcept
    {
        const __m512 middle =
            _mm512_add_ps(_mm512_cvtepi32_ps(numbers), _mm512_set1_ps(0.5F));
        const __m512 product =
            _mm512_mul_round_ps(middle, _mm512_set1_ps(1.0F / N),
                                _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
        return _mm512_cvtt_roundps_epi32(product, _MM_FROUND_NO_EXC);
    }
    template <unsigned N>
    KIV_AVX512 static __m512i remainder(__m512i numbers, __m512i quotients) noexcept
    {
        return _mm512_sub_epi32(numbers, _mm512_madd_epi16(quotients, splat32(N)));
    }
    // The quotient by N in the bits from `shift` up, the remainder below.
    template <unsigned N>
    KIV_AVX512 static __m512i joined(__m512i numbers, unsigned shift) noexcept
    {
        const __m512i quotients = quotient<N>(numbers);
        return _mm512_or_si512(_mm512_slli_epi32(quotients, shift),
                               remainder<N>(numbers, quotients));
    }
};

// --- Input --------------------------------------------------------------------------

// Up to 16 units as code points, up to a surrogate that is alone or whose other
// half is not among them.
template <class F>
struct Characters {
    KIV_AVX512 Characters(const char16* in, std::size_t size) noexcept
    {
        const __m256i units = _mm256_maskz_loadu_epi16(low_bits16(size), in);
        values = _mm512_cvtepu16_epi32(units);
        n = size;
        if constexpr (F::SUPPLEMENTARY) {
            const __mmask16 surrogates = _mm512_cmpeq_epi32_mask(
                _mm512_and_si512(values, splat32(0xF800)), splat32(0xD800));
            if (surrogates != 0)
                join(surrogates);
        }
    }

    KIV_AVX512 void join(__mmask16 surrogates) noexcept
    {
        const __mmask16 highs =
            _mm512_mask_cmplt_epu32_mask(surrogates, values, splat32(0xDC00));
        const auto lows = static_cast<__mmask16>(surrogates & ~highs);
        const auto pairs = static_cast<__mmask16>(highs & (lows >> 1));
        second_halves = static_cast<__mmask16>(pairs << 1);
        const unsigned alone =
            surrogates & ~(pairs | static_cast<unsigned>(second_halves));
        if (alone != 0)
            n = static_cast<std::size_t>(std::countr_zero(alone));
        const __m512i next = _mm512_alignr_epi32(_mm512_setzero_si512(), values, 1);
        // (high - D800) * 400 + (low - DC00) + 10000, modulo 2^32
        const __m512i high_part = _mm512_slli_epi32(values, 10);
        const __m512i low_part = _mm512_sub_epi32(next, splat32(0x35FDC00));
        values = _mm512_mask_add_epi32(values, pairs, high_part, low_part);
    }

    __m512i values;
    std::size_t n;
    __mmask16 second_halves = 0;
};

// --- Output -------------------------------------------------------------------------

// The last byte of each lane.
constexpr std::uint64_t LAST_BYTES = 0x8888888888888888;

// Writes the codes of the lanes, as far as there is room. Returns the number of
// lanes, from the lowest, that are done; those not set are done with the one before.
KIV_AVX512 inline std::size_t store_codes(__m512i codes, __mmask16 lanes, std::size_t n,
                                          unsigned char*& out, std::size_t room) noexcept
{
    const __m512i reversed = _mm512_set_epi64(
        0x0C0D0E0F08090A0B, 0x0405060700010203, 0x0C0D0E0F08090A0B, 0x0405060700010203,
        0x0C0D0E0F08090A0B, 0x0405060700010203, 0x0C0D0E0F08090A0B, 0x0405060700010203);
    const __m512i bytes = _mm512_shuffle_epi8(codes, reversed);
    const __m512i all = _mm512_movm_epi32(lanes);
    // No byte of a code but a single one is 0.
    std::uint64_t keep =
        (_mm512_test_epi8_mask(bytes, bytes) | LAST_BYTES) & _mm512_movepi8_mask(all);
    if (static_cast<std::size_t>(std::popcount(keep)) > room) {
        const std::uint64_t fits = _pdep_u64(low_bits(room), keep) & LAST_BYTES;
        const auto end = static_cast<std::size_t>(std::bit_width(fits));
        keep &= low_bits(end);
        n = end / 4;
        if (n < LANES && n != 0 && (lanes >> n & 1) == 0)
            ++n;
    }
    const auto size = static_cast<std::size_t>(std::popcount(keep));
    _mm512_mask_storeu_epi8(out, low_bits(size), _mm512_maskz_compress_epi8(keep, bytes));
    out += size;
    return n;
}

// Up to 32 units of ASCII; returns how many.
KIV_AVX512 inline std::size_t encode_ascii(const char16* in, std::size_t n,
                                           unsigned char* out) noexcept
{
    const std::size_t size = std::min(n, VECTOR_UNITS);
    const __m512i units = _mm512_maskz_loadu_epi16(low_bits32(size), in);
    const __mmask32 others = _mm512_cmpge_epu16_mask(units, splat16(0x80));
    if (others != 0)
        return 0;
    _mm256_mask_storeu_epi8(out, low_bits32(size), _mm512_cvtepi16_epi8(units));
    return size;
}

}  // namespace

template <class Traits>
EncodeProgress encode_multi_byte(const std::uint16_t* index, const std::uint16_t* data,
                                 const char16* in, const char16* in_end,
                                 unsigned char* out, unsigned char* out_end)
{
    using F = Form<Traits>;
    while (in != in_end && out != out_end) {
        if (const std::size_t n =
                encode_ascii(in, common_size(in, in_end, out, out_end), out)) {
            in += n;
            out += n;
            continue;
        }
        const std::size_t size = std::min(static_cast<std::size_t>(in_end - in), LANES);
        const Characters<F> characters(in, size);
        std::size_t n = characters.n;
        const auto set =
            static_cast<__mmask16>(low_bits16(n) & ~characters.second_halves);
        const __mmask16 wanted =
            _mm512_mask_cmpge_epu32_mask(set, characters.values, splat32(0x80));
        __mmask16 found = wanted;
        const __m512i looked_up = F::codes(index, data, characters.values, found);
        const __m512i codes = _mm512_mask_mov_epi32(characters.values, found, looked_up);
        if (found != wanted)
            n = static_cast<std::size_t>(
                std::countr_zero(static_cast<unsigned>(wanted & ~found)));
        const std::size_t done =
            store_codes(codes, static_cast<__mmask16>(set & low_bits16(n)), n, out,
                        static_cast<std::size_t>(out_end - out));
        in += done;
        // In the last lane the first half of a pair is no reason to stop.
        if (done < std::min(size, LANES - 1))
            break;
    }
    return {in, out};
}

    #define KIV_INSTANTIATE(Traits)                                                   \
        template EncodeProgress encode_multi_byte<Traits>(                            \
            const std::uint16_t*, const std::uint16_t*, const char16*, const char16*, \
            unsigned char*, unsigned char*);

KIV_INSTANTIATE(Micsft_932_Traits)
KIV_INSTANTIATE(Shift_JIS_Traits)
KIV_INSTANTIATE(Micsft_936_Traits)
KIV_INSTANTIATE(GBK_Traits)
KIV_INSTANTIATE(Micsft_949_Traits)
KIV_INSTANTIATE(Micsft_950_Traits)
KIV_INSTANTIATE(Big5_Traits)
KIV_INSTANTIATE(Big5_HKSCS_Traits)
KIV_INSTANTIATE(GB18030Traits)

    #undef KIV_INSTANTIATE

}  // namespace kiv::avx512

#endif
