// Charsets of one and two bytes, and GB 18030 as far as it is one, with AVX-512.
//
// Where sequences start is found for 64 bytes at once; first and second bytes
// are then packed apart, and 16 sequences at a time are looked up. That has no
// branch that depends on the text, where single steps mispredict at every
// change between ASCII and the rest.

#if defined(__x86_64__)

    #include <algorithm>

    #include "charset/avx512.h"
    #include "charset/gb18030_keys.h"
    #include "charset/tables/dbcs_tables.h"
    #include "charset/tables/gb18030_tables.h"

namespace kiv::avx512 {

namespace {

constexpr std::size_t LANES = 16;
constexpr unsigned UNMAPPABLE = 0xDFFF;

// --- What differs between the charsets -------------------------------------------

template <class Traits>
struct Form {
    static constexpr ByteRanges LEAD = Traits::LEAD;
    static constexpr ByteRanges TRAIL = Traits::TRAIL;

    // lanes: those with two bytes. The others are their first byte.
    KIV_AVX512 static __m512i keys(__m512i first, __m512i second,
                                   __mmask16 lanes) noexcept
    {
        const __m512i rows =
            _mm512_mullo_epi16(_mm512_sub_epi32(first, splat32(0x80)), splat32(DBCS_ROW));
        return _mm512_mask_add_epi32(first, lanes, rows, second);
    }

    // Takes the lanes without a single unit from `lanes`.
    KIV_AVX512 static __m512i units(const std::uint16_t* index,
                                    const typename Traits::DecodeEntry* data,
                                    __m512i keys, __mmask16& lanes) noexcept
    {
        const __m512i positions =
            positions_of<Traits::DECODE_BLOCK_BITS>(index, keys, lanes);
        __m512i units;
        if constexpr (sizeof(typename Traits::DecodeEntry) == sizeof(char16_t)) {
            units = gather(data, positions, lanes);
        } else {
            units = _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), lanes, positions,
                                                data, 4);
            lanes = _mm512_mask_cmplt_epu32_mask(lanes, units, splat32(0x10000));
        }
        lanes = _mm512_mask_cmpneq_epu32_mask(lanes, units, splat32(UNMAPPABLE));
        return units;
    }

    // One byte, or two with the first above the second. Takes the lanes without
    // a mapping from `lanes`.
    KIV_AVX512 static __m512i bytes(const std::uint16_t* index, const std::uint16_t* data,
                                    __m512i units, __mmask16& lanes) noexcept
    {
        if constexpr (Traits::HIGHEST < 0xFFFF)
            lanes = _mm512_mask_cmple_epu32_mask(lanes, units, splat32(Traits::HIGHEST));
        const __m512i positions =
            positions_of<Traits::ENCODE_BLOCK_BITS>(index, units, lanes);
        const __m512i bytes = gather(data, positions, lanes);
        lanes = _mm512_mask_cmpneq_epu32_mask(lanes, bytes, splat32(DBCS_NONE));
        return bytes;
    }
};

// Four bytes are two pairs whose second byte is a digit, so they do not disturb
// the search for starts; digits are no TRAIL, so they end a run.
template <>
struct Form<GB18030Traits> {
    static constexpr ByteRanges LEAD = gb18030::LEAD;
    static constexpr ByteRanges TRAIL = gb18030::TRAIL;

    KIV_AVX512 static __m512i keys(__m512i first, __m512i second,
                                   __mmask16 lanes) noexcept
    {
        constexpr unsigned base = gb18030::two_byte_key(0x81, 0x40);
        const __m512i rows = _mm512_mullo_epi16(_mm512_sub_epi32(first, splat32(0x81)),
                                                splat32(gb18030::TWO_BYTE_ROW));
        const __m512i in_row = _mm512_add_epi32(second, splat32(base - 0x40));
        return _mm512_mask_add_epi32(first, lanes, rows, in_row);
    }

    // What a table gives, or keys of which the block's offset is taken or added.
    KIV_AVX512 static __m512i look_up(const std::uint16_t* index, const void* data,
                                      __m512i keys, __mmask16 lanes, int sign) noexcept
    {
        using namespace gb18030;
        const __m512i blocks = gather(index, _mm512_srli_epi32(keys, BLOCK_BITS), lanes);
        const __mmask16 stored =
            _mm512_mask_cmplt_epu32_mask(lanes, blocks, splat32(FIRST_SPECIAL));
        const __m512i in_block = _mm512_and_si512(keys, splat32((1U << BLOCK_BITS) - 1));
        const __m512i found = gather(data, _mm512_or_si512(blocks, in_block), stored);
        const __mmask16 special = lanes & static_cast<__mmask16>(~stored);
        if (special == 0)
            return found;
        const __m512i offsets =
            _mm512_maskz_loadu_epi32(low_bits16(13), tables::gb18030_offsets);
        const __m512i offset = _mm512_permutexvar_epi32(
            _mm512_sub_epi32(splat32(LAST_OFFSET), blocks), offsets);
        const __m512i shifted =
            sign > 0 ? _mm512_add_epi32(keys, offset) : _mm512_sub_epi32(keys, offset);
        return _mm512_mask_and_epi32(found, special, shifted, splat32(0xFFFF));
    }

    KIV_AVX512 static __m512i units(const std::uint16_t* index, const char16_t* data,
                                    __m512i keys, __mmask16& lanes) noexcept
    {
        // 80 and FF stand alone and are no character.
        lanes = _mm512_mask_cmpge_epu32_mask(lanes, keys,
                                             splat32(gb18030::FIRST_TWO_BYTE_KEY));
        return look_up(index, data, keys, lanes, -1);
    }

    KIV_AVX512 static __m512i bytes(const std::uint16_t* index, const std::uint16_t* data,
                                    __m512i units, __mmask16& lanes) noexcept
    {
        using namespace gb18030;
        const __m512i surrogate = _mm512_and_si512(units, splat32(0xF800));
        lanes = _mm512_mask_cmpneq_epu32_mask(lanes, surrogate, splat32(0xD800));
        const __m512i keys = look_up(index, data, units, lanes, 1);
        lanes = _mm512_mask_cmplt_epu32_mask(lanes, keys, splat32(FIRST_FOUR_BYTE_KEY));
        // Division by 191: the reciprocal is rounded up by 0.3 / 2^22, too little
        // to matter below 2^22 / 0.3 / 191.
        const __m512i index_of_two = _mm512_sub_epi32(keys, splat32(FIRST_TWO_BYTE_KEY));
        const __m512i rows =
            _mm512_srli_epi32(_mm512_mullo_epi32(index_of_two, splat32(21960)), 22);
        const __m512i in_row = _mm512_sub_epi32(
            index_of_two, _mm512_mullo_epi32(rows, splat32(TWO_BYTE_ROW)));
        const __m512i first = _mm512_add_epi32(rows, splat32(0x81));
        const __m512i second = _mm512_add_epi32(in_row, splat32(0x40));
        return _mm512_or_si512(_mm512_slli_epi32(first, 8), second);
    }
};

// --- Where sequences start --------------------------------------------------------

// The bytes that belong to the lead byte before them, of 64 bytes that begin with a
// start, given which could be lead bytes. In a run of such bytes every other one is a
// trail byte, and so is the byte behind a run of odd length.
std::uint64_t trail_bytes(std::uint64_t could_lead) noexcept
{
    constexpr std::uint64_t even = 0x5555555555555555;
    const std::uint64_t run_starts = could_lead & ~(could_lead << 1);
    // Adding its start to a run carries through the run and clears it.
    const std::uint64_t odd_runs = could_lead & ~(could_lead + (run_starts & ~even));
    const std::uint64_t even_runs = could_lead & ~odd_runs;
    return (even_runs << 1 & ~even) | (odd_runs << 1 & even);
}

// Up to 64 bytes as sequences of one and two bytes.
struct Sequences {
    template <class F>
    KIV_AVX512 static Sequences find(const unsigned char* in, std::size_t size) noexcept
    {
        Sequences s;
        const std::uint64_t all = low_bits(size);
        s.first_bytes = _mm512_maskz_loadu_epi8(all, in);
        s.second_bytes = _mm512_maskz_loadu_epi8(all >> 1, in + 1);
        s.not_ascii = _mm512_movepi8_mask(s.first_bytes);
        const std::uint64_t could_lead = in_ranges<F::LEAD>(s.first_bytes);
        const std::uint64_t trails = trail_bytes(could_lead);
        s.leads = could_lead & ~trails;
        s.starts = all & ~trails;
        // A lead byte at the end has its trail byte beyond it.
        const std::uint64_t faults =
            s.leads & ~(in_ranges<F::TRAIL>(s.second_bytes) & all >> 1);
        if (faults != 0)
            s.starts &= (faults & -faults) - 1;
        return s;
    }

    KIV_AVX512 std::size_t count() const noexcept
    {
        return static_cast<std::size_t>(std::popcount(starts));
    }

    KIV_AVX512 void keep(std::size_t n) noexcept
    {
        starts = _pdep_u64(low_bits(n), starts);
    }

    // Behind the last sequence that is kept.
    KIV_AVX512 std::size_t end() const noexcept
    {
        if (starts == 0)
            return 0;
        const auto last = static_cast<std::size_t>(std::bit_width(starts)) - 1;
        return last + 1 + (leads >> last & 1);
    }

    __m512i first_bytes;
    __m512i second_bytes;     // of each byte, the one behind it
    std::uint64_t not_ascii;  // bits of bytes, as all below
    std::uint64_t leads;
    std::uint64_t starts;  // of the sequences that are kept
};

// Looks the sequences up; returns how many came before one without a unit.
template <class F, class Entry>
KIV_AVX512 inline std::size_t decode_sequences(const Sequences& s, std::size_t count,
                                               const std::uint16_t* index,
                                               const Entry* data, char16* out) noexcept
{
    __m512i firsts = _mm512_maskz_compress_epi8(s.starts, s.first_bytes);
    __m512i seconds = _mm512_maskz_compress_epi8(s.starts, s.second_bytes);
    std::uint64_t two_bytes = _pext_u64(s.leads, s.starts);
    std::uint64_t look_up = _pext_u64(s.not_ascii, s.starts);
    for (std::size_t done = 0; done < count; done += LANES) {
        const std::size_t n = std::min(count - done, LANES);
        const __m512i first = _mm512_cvtepu8_epi32(_mm512_castsi512_si128(firsts));
        const __m512i second = _mm512_cvtepu8_epi32(_mm512_castsi512_si128(seconds));
        const __m512i keys = F::keys(first, second, static_cast<__mmask16>(two_bytes));
        const auto wanted = static_cast<__mmask16>(look_up);
        __mmask16 found = wanted;
        const __m512i units = F::units(index, data, keys, found);
        const __m512i result = _mm512_mask_mov_epi32(first, found, units);
        _mm512_mask_cvtepi32_storeu_epi16(out + done, low_bits16(n), result);
        if (found != wanted) {
            const auto missing = static_cast<unsigned>(wanted & ~found);
            return done + static_cast<std::size_t>(std::countr_zero(missing));
        }
        firsts = _mm512_alignr_epi64(firsts, firsts, 2);
        seconds = _mm512_alignr_epi64(seconds, seconds, 2);
        two_bytes >>= LANES;
        look_up >>= LANES;
    }
    return count;
}

}  // namespace

template <class Traits>
DecodeProgress MultiByte<Traits>::decode(const std::uint16_t* index,
                                         const typename Traits::DecodeEntry* data,
                                         const unsigned char* in,
                                         const unsigned char* in_end, char16* out,
                                         char16* out_end)
{
    while (in != in_end && out != out_end) {
        const auto size = std::min(static_cast<std::size_t>(in_end - in), VECTOR_BYTES);
        const auto room = static_cast<std::size_t>(out_end - out);
        Sequences s = Sequences::find<Form<Traits>>(in, size);
        if (s.not_ascii == 0 && size == VECTOR_BYTES && room >= VECTOR_BYTES) {
            widen64(s.first_bytes, out);
            in += VECTOR_BYTES;
            out += VECTOR_BYTES;
            continue;
        }
        const std::size_t count = std::min(s.count(), room);
        const std::size_t done =
            decode_sequences<Form<Traits>>(s, count, index, data, out);
        s.keep(done);
        in += s.end();
        out += done;
        if (done == 0 || done < count)
            break;
    }
    return {in, out};
}

// --- Encoding ---------------------------------------------------------------------

namespace {

// The bytes of 32 units, each in 16 bits, the first byte above the second.
template <class F>
KIV_AVX512 inline __m512i encode_units(__m512i units, __mmask32 look_up, std::size_t n,
                                       const std::uint16_t* index,
                                       const std::uint16_t* data,
                                       __mmask32& missing) noexcept
{
    __m256i halves[2] = {};
    missing = 0;
    for (std::size_t half = 0; half * LANES < n; ++half) {
        const __m512i part =
            _mm512_cvtepu16_epi32(half == 0 ? _mm512_castsi512_si256(units)
                                            : _mm512_extracti64x4_epi64(units, 1));
        const auto wanted = static_cast<__mmask16>(look_up >> (half * LANES));
        __mmask16 found = wanted;
        const __m512i bytes = F::bytes(index, data, part, found);
        halves[half] = _mm512_cvtepi32_epi16(_mm512_mask_mov_epi32(part, found, bytes));
        missing |= static_cast<__mmask32>(wanted & ~found) << (half * LANES);
    }
    return _mm512_inserti64x4(_mm512_castsi256_si512(halves[0]), halves[1], 1);
}

// Every other bit: the second bytes of pairs.
constexpr std::uint64_t SECOND_BYTES = 0xAAAAAAAAAAAAAAAA;

}  // namespace

template <class Traits>
EncodeProgress MultiByte<Traits>::encode(const std::uint16_t* index,
                                         const std::uint16_t* data, const char16* in,
                                         const char16* in_end, unsigned char* out,
                                         unsigned char* out_end)
{
    while (in != in_end && out != out_end) {
        std::size_t n = std::min(static_cast<std::size_t>(in_end - in), VECTOR_UNITS);
        const auto room = static_cast<std::size_t>(out_end - out);
        const __m512i units = _mm512_maskz_loadu_epi16(low_bits32(n), in);
        const __mmask32 not_ascii = _mm512_cmpge_epu16_mask(units, splat16(0x80));
        if (not_ascii == 0) {
            n = std::min(n, room);
            _mm256_mask_storeu_epi8(out, low_bits32(n), _mm512_cvtepi16_epi8(units));
            in += n;
            out += n;
            continue;
        }
        __mmask32 missing;
        const __m512i codes =
            encode_units<Form<Traits>>(units, not_ascii, n, index, data, missing);
        // First bytes to the front; a single byte is a second byte alone.
        const __m512i pairs =
            _mm512_or_si512(_mm512_slli_epi16(codes, 8), _mm512_srli_epi16(codes, 8));
        const std::size_t whole =
            missing == 0 ? n : static_cast<std::size_t>(std::countr_zero(missing));
        std::uint64_t bytes =
            (_mm512_test_epi8_mask(pairs, pairs) | SECOND_BYTES) & low_bits(2 * whole);
        if (room < VECTOR_BYTES)
            bytes &= _pdep_u64(low_bits(room), bytes);
        // Without room for its second byte a pair stays.
        const std::uint64_t ends = bytes & SECOND_BYTES;
        const auto done = static_cast<std::size_t>(std::popcount(ends));
        bytes &= low_bits(2 * done);
        const auto size = static_cast<std::size_t>(std::popcount(bytes));
        _mm512_mask_storeu_epi8(out, low_bits(size),
                                _mm512_maskz_compress_epi8(bytes, pairs));
        in += done;
        out += size;
        if (done < n)
            break;
    }
    return {in, out};
}

template struct MultiByte<Micsft_932_Traits>;
template struct MultiByte<Shift_JIS_Traits>;
template struct MultiByte<Micsft_936_Traits>;
template struct MultiByte<GBK_Traits>;
template struct MultiByte<Micsft_949_Traits>;
template struct MultiByte<Micsft_950_Traits>;
template struct MultiByte<Big5_Traits>;
template struct MultiByte<Big5_HKSCS_Traits>;
template struct MultiByte<GB18030Traits>;

}  // namespace kiv::avx512

#endif
