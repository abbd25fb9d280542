// Decoding of the charsets of one and two bytes and of GB 18030 with AVX-512.
//
// Where sequences start is found for 64 bytes at once; their bytes are then
// packed apart, and 16 sequences at a time are looked up. That has no branch
// per character, where single steps mispredict at every change between ASCII
// and the rest.

#if defined(__x86_64__)

    #include <algorithm>

    #include "charset/avx512.h"
    #include "charset/tables/dbcs_tables.h"

namespace kiv::avx512 {

namespace {

constexpr std::size_t LANES = 16;

// 16 sequences, a byte to a lane; the third and fourth bytes are those of the
// next sequence. `fours` are the lanes with four bytes.
struct Bytes {
    __m512i first, second, third, fourth;
    __mmask16 twos;
    __mmask16 fours;
};

// --- What differs between the charsets -------------------------------------------

template <class Traits>
struct Form {
    static constexpr ByteRanges LEAD = Traits::LEAD;
    static constexpr ByteRanges TRAIL = Traits::TRAIL;
    static constexpr bool HAS_FOURS = false;
    static constexpr bool SUPPLEMENTARY = sizeof(typename Traits::DecodeEntry) > 2;

    // Code points. Takes the lanes without one from `lanes`.
    KIV_AVX512 static __m512i characters(const std::uint16_t* index,
                                         const typename Traits::DecodeEntry* data,
                                         const Bytes& bytes, __mmask16& lanes) noexcept
    {
        const __m512i row = _mm512_mullo_epi16(
            _mm512_sub_epi32(bytes.first, splat32(0x80)), splat32(DBCS_ROW));
        const __m512i keys =
            _mm512_mask_add_epi32(bytes.first, bytes.twos, row, bytes.second);
        const __m512i at =
            positions_of<Traits::DECODE_BLOCK_BITS, DBCS_LAST_KEY>(index, keys, lanes);
        __m512i characters;
        if constexpr (SUPPLEMENTARY)
            characters =
                _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), lanes, at, data, 4);
        else
            characters = gather(data, at, lanes);
        lanes = _mm512_mask_cmpneq_epu32_mask(lanes, characters,
                                              splat32(tables::NO_CHARACTER));
        return characters;
    }
};

template <>
struct Form<GB18030Traits> {
    static constexpr ByteRanges LEAD = gb18030::LEAD;
    static constexpr ByteRanges TRAIL = gb18030::TRAIL;
    static constexpr bool HAS_FOURS = true;
    static constexpr bool SUPPLEMENTARY = true;

    KIV_AVX512 static __m512i characters(const std::uint16_t* index, const char16_t* data,
                                         const Bytes& bytes, __mmask16& lanes) noexcept
    {
        using namespace gb18030;
        lanes &= bytes.twos;  // 80 and FF stand alone and are no character
        const auto fours = static_cast<__mmask16>(bytes.fours & lanes);
        const auto twos = static_cast<__mmask16>(lanes & ~fours);
        // The blocks of two-byte keys stand at the front of the data.
        const __m512i row = _mm512_mullo_epi16(
            _mm512_sub_epi32(bytes.first, splat32(0x81)), splat32(TWO_BYTE_ROW));
        const __m512i in_row = _mm512_sub_epi32(bytes.second, splat32(0x40));
        const __m512i units = gather(data, _mm512_add_epi32(row, in_row), twos);
        if (fours == 0)
            return units;

        const __m512i front = digit_pair(bytes.first, bytes.second);
        const __m512i back = digit_pair(bytes.third, bytes.fourth);
        const __m512i linear =
            _mm512_add_epi32(_mm512_madd_epi16(front, splat32(PAIRS)), back);
        const __m512i keys = _mm512_add_epi32(linear, splat32(FIRST_FOUR_BYTE_KEY));
        const __mmask16 beyond =
            _mm512_mask_cmpge_epu32_mask(fours, keys, splat32(FIRST_SUPPLEMENTARY_KEY));
        const __m512i plane0 = look_up_gb18030(
            index, data, keys, static_cast<__mmask16>(fours & ~beyond), -1);
        const __m512i supplementary =
            _mm512_sub_epi32(keys, splat32(SUPPLEMENTARY_KEY_OFFSET));
        // 0x10000 to 0x10FFFF; what lies below wraps around.
        const __mmask16 wrong = _mm512_mask_cmpge_epu32_mask(
            beyond, _mm512_sub_epi32(supplementary, splat32(0x10000)), splat32(0x100000));
        lanes &= static_cast<__mmask16>(~wrong);
        const __m512i all = _mm512_mask_mov_epi32(units, fours, plane0);
        return _mm512_mask_mov_epi32(all, beyond, supplementary);
    }

private:
    KIV_AVX512 static __m512i digit_pair(__m512i lead, __m512i digit) noexcept
    {
        const __m512i row = _mm512_mullo_epi16(_mm512_sub_epi32(lead, splat32(0x81)),
                                               splat32(gb18030::DIGITS));
        return _mm512_add_epi32(row, _mm512_sub_epi32(digit, splat32(0x30)));
    }
};

// --- Where sequences start --------------------------------------------------------

// Which elements are the second of a pair, of 64 that begin with a first one,
// given which could be the first. In a run of such elements every other one is
// a second, and so is the element behind a run of odd length.
std::uint64_t seconds_of_pairs(std::uint64_t could_be_first) noexcept
{
    constexpr std::uint64_t even = 0x5555555555555555;
    const std::uint64_t run_starts = could_be_first & ~(could_be_first << 1);
    // Adding its start to a run carries through the run and clears it.
    const std::uint64_t odd_runs =
        could_be_first & ~(could_be_first + (run_starts & ~even));
    const std::uint64_t even_runs = could_be_first & ~odd_runs;
    return (even_runs << 1 & ~even) | (odd_runs << 1 & even);
}

constexpr std::uint64_t below_lowest(std::uint64_t bits) noexcept
{
    return bits == 0 ? ~std::uint64_t{0} : (bits & (~bits + 1)) - 1;
}

// Up to 64 bytes as sequences of one and two bytes, up to the first fault. A
// sequence of four is two of two, both with a digit behind.
template <class F>
class Sequences {
public:
    KIV_AVX512 Sequences(const unsigned char* in, std::size_t size) noexcept
    {
        const std::uint64_t all = low_bits(size);
        m_bytes = _mm512_maskz_loadu_epi8(all, in);
        m_next_bytes = _mm512_maskz_loadu_epi8(all >> 1, in + 1);
        m_not_ascii = _mm512_movepi8_mask(m_bytes);
        const std::uint64_t could_lead = in_ranges<F::LEAD>(m_bytes);
        const std::uint64_t trails = seconds_of_pairs(could_lead);
        m_leads = could_lead & ~trails;
        // A lead byte at the end has its trail byte beyond it.
        std::uint64_t legal = in_ranges<F::TRAIL>(m_next_bytes);
        if constexpr (F::HAS_FOURS) {
            m_digits = in_ranges<gb18030::DIGIT>(m_next_bytes) & m_leads & all >> 1;
            legal |= m_digits;
        }
        const std::uint64_t faults = m_leads & ~(legal & all >> 1);
        m_starts = all & ~trails & below_lowest(faults);
    }

    KIV_AVX512 bool is_ascii() const noexcept { return m_not_ascii == 0; }
    KIV_AVX512 __m512i bytes() const noexcept { return m_bytes; }

    // Makes the first `most` sequences ready, or as many as there are; returns
    // how many.
    KIV_AVX512 std::size_t pack(std::size_t most) noexcept
    {
        std::size_t n = static_cast<std::size_t>(std::popcount(m_starts));
        if constexpr (F::HAS_FOURS) {
            const std::uint64_t halves = _pext_u64(m_digits, m_starts);
            m_second_halves = seconds_of_pairs(halves);
            m_fours = halves & ~m_second_halves;
            const std::uint64_t cut = m_fours & ~(halves >> 1);
            if (cut != 0)
                n = static_cast<std::size_t>(std::countr_zero(cut));
            m_second_halves &= halves;
        }
        n = std::min(n, most);
        if (F::HAS_FOURS && n < VECTOR_BYTES && (m_second_halves >> n & 1) != 0)
            --n;
        m_first = _mm512_maskz_compress_epi8(m_starts, m_bytes);
        m_second = _mm512_maskz_compress_epi8(m_starts, m_next_bytes);
        m_twos = _pext_u64(m_leads, m_starts);
        m_wanted = _pext_u64(m_not_ascii, m_starts) & ~m_second_halves;
        if (m_fours != 0) {
            const std::uint64_t later = m_starts & (m_starts - 1);
            m_third = _mm512_maskz_compress_epi8(later, m_bytes);
            m_fourth = _mm512_maskz_compress_epi8(later, m_next_bytes);
        }
        return n;
    }

    // 16 of the sequences that are ready, from number i, a multiple of 16.
    KIV_AVX512 Bytes lanes(std::size_t i) const noexcept
    {
        Bytes lanes;
        lanes.first = lane_bytes(m_first, i);
        lanes.second = lane_bytes(m_second, i);
        lanes.twos = static_cast<__mmask16>(m_twos >> i);
        lanes.fours = static_cast<__mmask16>(m_fours >> i);
        if (F::HAS_FOURS && lanes.fours != 0) {
            lanes.third = lane_bytes(m_third, i);
            lanes.fourth = lane_bytes(m_fourth, i);
        }
        return lanes;
    }
    // Those that are to be looked up, and those that are the rest of another.
    __mmask16 wanted(std::size_t i) const noexcept
    {
        return static_cast<__mmask16>(m_wanted >> i);
    }
    __mmask16 second_halves(std::size_t i) const noexcept
    {
        return static_cast<__mmask16>(m_second_halves >> i);
    }

    // n, and the second half of the sequence before it.
    std::size_t with_rest(std::size_t n) const noexcept
    {
        return n < VECTOR_BYTES && (m_second_halves >> n & 1) != 0 ? n + 1 : n;
    }

    // The bytes of the first n sequences.
    KIV_AVX512 std::size_t size_of(std::size_t n) const noexcept
    {
        if (n == 0)
            return 0;
        const std::uint64_t starts = _pdep_u64(low_bits(n), m_starts);
        const auto last = static_cast<std::size_t>(std::bit_width(starts)) - 1;
        return last + 1 + (m_leads >> last & 1);
    }

private:
    KIV_AVX512 static __m512i lane_bytes(__m512i bytes, std::size_t i) noexcept
    {
        const __m512i quarter = _mm512_set1_epi64(static_cast<long long>(i / 8));
        const __m512i pair =
            _mm512_add_epi64(quarter, _mm512_set_epi64(0, 0, 0, 0, 0, 0, 1, 0));
        return _mm512_cvtepu8_epi32(
            _mm512_castsi512_si128(_mm512_permutexvar_epi64(pair, bytes)));
    }

    // By byte:
    __m512i m_bytes;
    __m512i m_next_bytes;
    std::uint64_t m_not_ascii;
    std::uint64_t m_leads;
    std::uint64_t m_digits = 0;  // lead bytes before a digit
    std::uint64_t m_starts;
    // By sequence:
    __m512i m_first, m_second;
    __m512i m_third = _mm512_setzero_si512(), m_fourth = _mm512_setzero_si512();
    std::uint64_t m_twos;
    std::uint64_t m_wanted;
    std::uint64_t m_fours = 0;
    std::uint64_t m_second_halves = 0;
};

// --- Output -------------------------------------------------------------------------

// Every other bit.
constexpr std::uint32_t EVEN = 0x55555555;
constexpr std::uint32_t ODD = 0xAAAAAAAA;

KIV_AVX512 inline bool has_pairs(__m512i characters) noexcept
{
    return _mm512_cmpgt_epu32_mask(characters, splat32(0xFFFF)) != 0;
}

// Writes the code points of the lanes that are set as UTF-16, as far as there is
// room. Returns how many of the n lanes are done.
KIV_AVX512 inline std::size_t store_utf16(__m512i characters, __mmask16 lanes,
                                          std::size_t n, char16*& out,
                                          std::size_t room) noexcept
{
    const __mmask16 pairs =
        _mm512_mask_cmpgt_epu32_mask(lanes, characters, splat32(0xFFFF));
    // High surrogates are D7C0 and more behind the ten bits; low ones above them.
    const __m512i high =
        _mm512_add_epi32(_mm512_srli_epi32(characters, 10), splat32(0xD7C0));
    const __m512i low =
        _mm512_or_si512(_mm512_and_si512(characters, splat32(0x3FF)), splat32(0xDC00));
    const __m512i units =
        _mm512_mask_or_epi32(characters, pairs, high, _mm512_slli_epi32(low, 16));
    std::uint32_t keep = _pdep_u32(lanes, EVEN) | _pdep_u32(pairs, ODD);
    if (static_cast<std::size_t>(std::popcount(keep)) > room) {
        const std::uint32_t ends =
            _pdep_u32(lanes & ~static_cast<unsigned>(pairs), EVEN) |
            _pdep_u32(pairs, ODD);
        const auto fits = _pdep_u32(static_cast<unsigned>(low_bits(room)), keep) & ends;
        const auto end = static_cast<std::size_t>(std::bit_width(fits));
        keep &= static_cast<std::uint32_t>(low_bits(end));
        n = (end + 1) / 2;
    }
    const auto size = static_cast<std::size_t>(std::popcount(keep));
    _mm512_mask_storeu_epi16(out, low_bits32(size),
                             _mm512_maskz_compress_epi16(keep, units));
    out += size;
    return n;
}

// Decodes n sequences that are ready; returns how many came before one without
// a character or without room. Text in which some have two units is `uneven` and
// stays so: to decide anew each time would be mispredicted.
template <class F, class Entry>
KIV_AVX512 inline std::size_t decode_sequences(const Sequences<F>& s, std::size_t n,
                                               const std::uint16_t* index,
                                               const Entry* data, char16*& out,
                                               const char16* out_end,
                                               bool& uneven) noexcept
{
    for (std::size_t i = 0; i < n; i += LANES) {
        std::size_t lanes = std::min(n - i, LANES);
        const Bytes bytes = s.lanes(i);
        const auto wanted = static_cast<__mmask16>(s.wanted(i) & low_bits16(lanes));
        __mmask16 found = wanted;
        const __m512i looked_up = F::characters(index, data, bytes, found);
        const __m512i characters = _mm512_mask_mov_epi32(bytes.first, found, looked_up);
        bool stops = found != wanted;
        if (stops)
            lanes = static_cast<std::size_t>(
                std::countr_zero(static_cast<unsigned>(wanted & ~found)));
        const __mmask16 all = low_bits16(lanes);
        const auto set = static_cast<__mmask16>(all & ~s.second_halves(i));
        const auto room = static_cast<std::size_t>(out_end - out);
        // Without supplementary characters there is a unit of room for each lane.
        if (F::SUPPLEMENTARY &&
            (uneven || set != all || room < lanes || has_pairs(characters))) {
            uneven = true;
            const std::size_t done = store_utf16(characters, set, lanes, out, room);
            stops = stops || done < lanes;
            lanes = done;
        } else {
            _mm512_mask_cvtepi32_storeu_epi16(out, all, characters);
            out += lanes;
        }
        if (stops)
            return s.with_rest(i + lanes);
    }
    return n;
}

}  // namespace

template <class Traits>
DecodeProgress decode_multi_byte(const std::uint16_t* index,
                                 const typename Traits::DecodeEntry* data,
                                 const unsigned char* in, const unsigned char* in_end,
                                 char16* out, char16* out_end)
{
    bool uneven = false;
    while (in != in_end && out != out_end) {
        const auto size = std::min(static_cast<std::size_t>(in_end - in), VECTOR_BYTES);
        const auto room = static_cast<std::size_t>(out_end - out);
        Sequences<Form<Traits>> sequences(in, size);
        if (sequences.is_ascii() && size == VECTOR_BYTES && room >= VECTOR_BYTES) {
            widen64(sequences.bytes(), out);
            in += VECTOR_BYTES;
            out += VECTOR_BYTES;
            continue;
        }
        const std::size_t n = sequences.pack(room);
        const std::size_t done =
            decode_sequences(sequences, n, index, data, out, out_end, uneven);
        in += sequences.size_of(done);
        if (done == 0 || done < n)
            break;
    }
    return {in, out};
}

    #define KIV_INSTANTIATE(Traits)                                                 \
        template DecodeProgress decode_multi_byte<Traits>(                          \
            const std::uint16_t*, const Traits::DecodeEntry*, const unsigned char*, \
            const unsigned char*, char16*, char16*);

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
