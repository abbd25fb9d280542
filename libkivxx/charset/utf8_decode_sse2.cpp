// UTF-8 to UTF-16 with SSE2.
//
// Text is taken in blocks of 64 bytes. One bit per byte tells ASCII from the
// rest, so that the runs of both are found by bit operations and converted by
// vectors that may reach past the end of a run: what they write too much is
// overwritten by the next run. No branch depends on the length of a word,
// which is what plain loops lose their time with.

#if defined(__SSE2__)

    #include <algorithm>

    #include "charset/sse2.h"
    #include "charset/utf8_sequence.h"

namespace kiv::sse2 {
namespace {

constexpr std::size_t BLOCK = 64;
// A run inside a block is converted by up to two vectors of bytes at once, which
// may go that far past its end; as many units are written.
constexpr std::size_t EXCESS = 2 * VECTOR_BYTES;
constexpr std::size_t REACH = BLOCK + EXCESS;

// --- Runs of one kind ---------------------------------------------------------

// Eight lead-trail pairs, which are known to be good.
__m128i pairs_to_units(__m128i v) noexcept
{
    const __m128i high = _mm_slli_epi16(_mm_and_si128(v, splat16(0x1F)), 6);
    const __m128i low = _mm_and_si128(_mm_srli_epi16(v, 8), splat16(0x3F));
    return _mm_or_si128(high, low);
}

// The number of leading lanes of four bits or two that have the right shape,
// without those from the first bad value on. Bad values are so rare that a branch
// is better than waiting for them.
template <std::size_t bits>
std::size_t leading_lanes(std::uint32_t shape, std::uint32_t bad) noexcept
{
    std::size_t n = lowest_bit(~shape, 0);
    const std::uint32_t fault = bad & ((std::uint32_t{1} << n) - 1);
    if (fault)
        n = lowest_bit(fault, 0);
    return n / bits;
}

// The good 2-byte sequences at p, up to eight. Returns where they end.
DecodeProgress decode_pairs(DecodeProgress p) noexcept
{
    const __m128i v = load(p.in);
    const __m128i units = pairs_to_units(v);
    store(p.out, units);
    const __m128i shape =
        _mm_cmpeq_epi16(_mm_and_si128(v, splat16(0xC0E0)), splat16(0x80C0));
    const __m128i overlong = _mm_cmplt_epi16(units, splat16(0x80));
    const std::size_t n = leading_lanes<2>(top_bits(shape), top_bits(overlong));
    return {p.in + 2 * n, p.out + n};
}

// Four 3-byte sequences, one in each lane.
__m128i load_triples(const unsigned char* in) noexcept
{
    std::uint32_t w[4];
    std::memcpy(&w[0], in, 4);
    std::memcpy(&w[1], in + 3, 4);
    std::memcpy(&w[2], in + 6, 4);
    std::memcpy(&w[3], in + 8, 4);  // not a byte behind the last sequence
    const auto lane = [](std::uint32_t x) {
        return _mm_cvtsi32_si128(static_cast<int>(x));
    };
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(lane(w[0]), lane(w[1])),
                              _mm_unpacklo_epi32(lane(w[2]), lane(w[3] >> 8)));
}

// The units, sign-extended to 32 bits, which is what packing wants: bits are
// gathered in the upper halves and shifted down.
__m128i triples_to_units(__m128i v) noexcept
{
    const __m128i top = _mm_slli_epi32(v, 28);
    const __m128i middle = _mm_and_si128(_mm_slli_epi32(v, 14), splat32(0x0FC00000));
    const __m128i low = _mm_and_si128(v, splat32(0x003F0000));
    return _mm_srai_epi32(_mm_or_si128(_mm_or_si128(top, middle), low), 16);
}

__m128i has_triple_shape(__m128i v) noexcept
{
    return _mm_cmpeq_epi32(_mm_and_si128(v, splat32(0x00C0C0F0)), splat32(0x008080E0));
}

// The good 3-byte sequences at p, up to eight. Returns where they end.
DecodeProgress decode_triples(DecodeProgress p) noexcept
{
    const __m128i a = load_triples(p.in);
    const __m128i b = load_triples(p.in + 12);
    const __m128i units = _mm_packs_epi32(triples_to_units(a), triples_to_units(b));
    store(p.out, units);
    const __m128i shape = _mm_packs_epi32(has_triple_shape(a), has_triple_shape(b));
    const __m128i top = _mm_and_si128(units, splat16(0xF800));
    const __m128i bad = _mm_or_si128(_mm_cmpeq_epi16(top, splat16(0xD800)),
                                     _mm_cmpeq_epi16(top, _mm_setzero_si128()));
    // Long runs are common: a branch on eight lets the next step begin before
    // their number is known.
    if (top_bits(_mm_andnot_si128(bad, shape)) == 0xFFFF)
        return {p.in + 24, p.out + 8};
    const std::size_t n = leading_lanes<2>(top_bits(shape), top_bits(bad));
    return {p.in + 3 * n, p.out + n};
}

// What four 4-byte sequences say without their lead bytes: the bits of the high
// surrogates in the lower halves of the lanes, those of the low ones in the upper.
__m128i quad_trails_to_fields(__m128i v) noexcept
{
    const auto field = [](__m128i shifted, unsigned mask) {
        return _mm_and_si128(shifted, splat32(mask));
    };
    const __m128i high = _mm_or_si128(field(_mm_srli_epi32(v, 6), 0xFC),
                                      field(_mm_srli_epi32(v, 20), 0x3));
    const __m128i low = _mm_or_si128(field(_mm_slli_epi32(v, 6), 0x03C00000),
                                     field(_mm_srli_epi32(v, 8), 0x003F0000));
    return _mm_or_si128(high, low);
}

// 0xD7C0 is 0xD800 - (0x10000 >> 10).
__m128i fields_to_surrogates(__m128i fields) noexcept
{
    return _mm_add_epi32(fields, splat32(0xDC00D7C0));
}

// The good 4-byte sequences at p, up to four. Returns where they end.
DecodeProgress decode_quads(DecodeProgress p) noexcept
{
    const __m128i v = load(p.in);
    const __m128i lead = _mm_and_si128(_mm_slli_epi32(v, 8), splat32(0x700));
    const __m128i fields = _mm_or_si128(lead, quad_trails_to_fields(v));
    store(p.out, fields_to_surrogates(fields));
    const __m128i shape =
        _mm_cmpeq_epi32(_mm_and_si128(v, splat32(0xC0C0C0F8)), splat32(0x808080F0));
    // The high surrogate has ten bits, after 0x10000 is taken off.
    const __m128i high = _mm_sub_epi32(fields, splat32(0x40));
    const __m128i in_range =
        _mm_cmpeq_epi32(_mm_and_si128(high, splat32(0xFC00)), _mm_setzero_si128());
    const std::size_t n = leading_lanes<4>(top_bits(shape), ~top_bits(in_range));
    return {p.in + 4 * n, p.out + 2 * n};
}

// Converts up to the next ASCII character. Stops before that at a fault, or where
// too little is left of the input or the output.
DecodeProgress decode_non_ascii(DecodeProgress p, const unsigned char* in_end,
                                const char16* out_end) noexcept
{
    while (in_end - p.in >= 24 && out_end - p.out >= 8) {
        const unsigned lead = *p.in;
        const unsigned char* const before = p.in;
        if (lead >= 0xF0)
            p = decode_quads(p);
        else if (lead >= 0xE0)
            p = decode_triples(p);
        else if (lead >= 0xC0)
            p = decode_pairs(p);
        if (p.in == before)
            break;
    }
    return p;
}

// --- Blocks -------------------------------------------------------------------

bool any_above(__m128i bytes, unsigned limit) noexcept
{
    return !all_zero(_mm_subs_epu8(bytes, splat8(limit)));
}

struct Block {
    std::uint64_t non_ascii;
    // And those are good. The last byte of a full block may be a lead byte.
    bool pairs_only;
};

// The block of `size` bytes, at least 16.
inline Block classify(const unsigned char* in, std::size_t size) noexcept
{
    const Groups groups(size);
    const __m128i v[4] = {load(in + groups.at[0]), load(in + groups.at[1]),
                          load(in + groups.at[2]), load(in + groups.at[3])};
    const std::uint64_t non_ascii =
        groups.join({top_bits(v[0]), top_bits(v[1]), top_bits(v[2]), top_bits(v[3])});
    if (non_ascii == 0)
        return {0, true};
    const __m128i most = _mm_max_epu8(_mm_max_epu8(v[0], v[1]), _mm_max_epu8(v[2], v[3]));
    if (any_above(most, 0xDF))
        return {non_ascii, false};
    // Signed comparison: 0x80 to 0xBF are the lowest values.
    const auto trails = [](__m128i x) {
        return top_bits(_mm_cmplt_epi8(x, splat8(0xC0)));
    };
    const auto overlong = [](__m128i x) {
        return _mm_cmpeq_epi8(_mm_and_si128(x, splat8(0xFE)), splat8(0xC0));
    };
    const std::uint64_t trail =
        groups.join({trails(v[0]), trails(v[1]), trails(v[2]), trails(v[3])});
    const std::uint64_t lead = non_ascii & ~trail;
    const __m128i bad = _mm_or_si128(_mm_or_si128(overlong(v[0]), overlong(v[1])),
                                     _mm_or_si128(overlong(v[2]), overlong(v[3])));
    return {non_ascii, trail == lead << 1 && !any_top_bit(bad)};
}

// A block inside the input: vectors may reach past it, and the output has room.
struct InnerBlock {
    const unsigned char* in;
    static constexpr std::size_t size = BLOCK;

    const unsigned char* from(std::size_t) const noexcept { return in; }
    bool has_room(const char16*, std::size_t) const noexcept { return true; }
};

// A block near the end of the input or the output. Where a vector would reach
// past the input, it is read from a copy.
struct LastBlock {
    const unsigned char* in;
    const unsigned char* copy;
    std::size_t size;
    std::size_t readable;  // bytes from `in`
    const char16* out_end;

    // Where bytes before `end` are read.
    const unsigned char* from(std::size_t end) const noexcept
    {
        return end <= readable ? in : copy;
    }
    bool has_room(const char16* out, std::size_t units) const noexcept
    {
        return out_end - out >= static_cast<std::ptrdiff_t>(units);
    }
};

// ASCII from p.in up to `end`, at least `step` bytes of it at once.
template <std::size_t step>
DecodeProgress decode_ascii_run(DecodeProgress p, const unsigned char* end) noexcept
{
    const DecodeProgress result{end, p.out + (end - p.in)};
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_BYTES)
            widen16(p.in + i, p.out + i);
        p.in += step;
        p.out += step;
    } while (p.in < end);
    return result;
}

// Good pairs from p.in up to `end`, at least `step` bytes of them at once.
template <std::size_t step>
DecodeProgress decode_pair_run(DecodeProgress p, const unsigned char* end) noexcept
{
    const DecodeProgress result{end, p.out + (end - p.in) / 2};
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_BYTES)
            store(p.out + i / 2, pairs_to_units(load(p.in + i)));
        p.in += step;
        p.out += step / 2;
    } while (p.in < end);
    return result;
}

// A block of ASCII and good pairs. The steps are such that runs of a usual length
// need one.
template <std::size_t ascii_step, std::size_t pair_step, class Source>
DecodeProgress decode_pairs_block(const Source& block, std::uint64_t non_ascii,
                                  char16* out) noexcept
{
    constexpr std::size_t step = std::max(ascii_step, pair_step);
    constexpr std::size_t reach = std::max(ascii_step, pair_step / 2);  // in units
    const bool cut = block.in[block.size - 1] >= 0xC0;                  // the last pair
    const std::size_t size = block.size - (cut ? 1 : 0);
    RunEdges edges(non_ascii, size);
    std::size_t at = 0;
    do {
        const std::size_t pairs = edges.next();
        const std::size_t end = edges.next();
        if (!block.has_room(out, pairs - at + (end - pairs) / 2 + reach))
            break;
        const unsigned char* const in = block.from(end + step);
        const DecodeProgress p = decode_ascii_run<ascii_step>({in + at, out}, in + pairs);
        out = decode_pair_run<pair_step>(p, in + end).out;
        at = end;
    } while (at < size);
    return {block.in + at, out};
}

template <class Source>
DecodeProgress decode_pairs_block(const Source& block, std::uint64_t non_ascii,
                                  char16* out) noexcept
{
    // Two pairs side by side are a script like Cyrillic; in Latin text the pairs
    // are single and the runs of ASCII long.
    return non_ascii & non_ascii >> 2 ? decode_pairs_block<16, 32>(block, non_ascii, out)
                                      : decode_pairs_block<32, 16>(block, non_ascii, out);
}

// A block with longer sequences, or with a fault. A run that reaches past the
// block is converted to its end. Stops within the block as decode_non_ascii().
DecodeProgress decode_mixed_block(DecodeProgress p, std::uint64_t non_ascii,
                                  const unsigned char* in_end,
                                  const char16* out_end) noexcept
{
    const unsigned char* const begin = p.in;
    RunEdges edges(non_ascii, BLOCK);
    do {
        p = decode_ascii_run<VECTOR_BYTES>(p, begin + edges.next());
        if (p.in == begin + BLOCK)
            break;
        p = decode_non_ascii(p, in_end, out_end);
    } while (p.in == begin + edges.next() && p.in < begin + BLOCK);
    return p;
}

// --- Blocks with emoji ----------------------------------------------------------

// Emoji come in short runs, of sequences of 4 and of 3 bytes and ASCII. Where a
// run begins is known from bits before any of it is converted, so that no run has
// to wait for the one before it.

// A block of 64 bytes. One bit per byte tells of which kind its sequence is.
struct Sequences {
    std::uint64_t non_ascii;
    std::uint64_t quads;
    std::size_t size;  // without the sequence that the block's end cuts
    // ASCII and sequences of 3 and 4 bytes, all good. Not so are lead bytes whose
    // second byte has bounds of its own, but for F0, which emoji begin with.
    bool plain;
};

inline Sequences find_sequences(const unsigned char* in) noexcept
{
    std::uint64_t non_ascii = 0;
    std::uint64_t trail = 0;
    std::uint64_t low_trail = 0;
    std::uint64_t lead4 = 0;
    __m128i other = _mm_setzero_si128();
    for (std::size_t i = 0; i < BLOCK; i += VECTOR_BYTES) {
        const __m128i v = load(in + i);
        // Signed comparisons: 0x80 is the lowest value.
        non_ascii |= std::uint64_t{top_bits(v)} << i;
        trail |= std::uint64_t{top_bits(_mm_cmplt_epi8(v, splat8(0xC0)))} << i;
        low_trail |= std::uint64_t{top_bits(_mm_cmplt_epi8(v, splat8(0x90)))} << i;
        lead4 |= std::uint64_t{top_bits(_mm_cmpeq_epi8(v, splat8(0xF0)))} << i;
        // C0 to E0, moved to the lowest values; ED; F1 and above.
        const __m128i c0_to_e0 =
            _mm_cmplt_epi8(_mm_add_epi8(v, splat8(0xC0)), splat8(0xA1));
        const __m128i ed = _mm_cmpeq_epi8(v, splat8(0xED));
        const __m128i from_f1 = _mm_subs_epu8(v, splat8(0xF0));
        other = _mm_or_si128(_mm_or_si128(other, c0_to_e0), _mm_or_si128(ed, from_f1));
    }
    const std::uint64_t lead = non_ascii & ~trail;
    const std::uint64_t cut = (lead & 3ULL << 62) | (lead4 & 1ULL << 61);
    const bool good = trail == (lead << 1 | lead << 2 | lead4 << 3) &&
                      (lead4 << 1 & low_trail) == 0 && all_zero(other);
    return {non_ascii, lead4 | lead4 << 1 | lead4 << 2 | lead4 << 3,
            lowest_bit(cut, BLOCK), good};
}

inline bool has_quads(const unsigned char* in) noexcept
{
    const __m128i most = _mm_max_epu8(_mm_max_epu8(load(in), load(in + 16)),
                                      _mm_max_epu8(load(in + 32), load(in + 48)));
    return any_above(most, 0xEF);
}

// Good sequences of F0 and three trail bytes from p.in up to `end`.
inline DecodeProgress decode_quad_run(DecodeProgress p, const unsigned char* end) noexcept
{
    const DecodeProgress result{end, p.out + (end - p.in) / 2};
    do {
        store(p.out, fields_to_surrogates(quad_trails_to_fields(load(p.in))));
        p = {p.in + 16, p.out + 8};
    } while (p.in < end);
    return result;
}

// Good 3-byte sequences.
inline DecodeProgress decode_triple_run(DecodeProgress p,
                                        const unsigned char* end) noexcept
{
    const DecodeProgress result{end, p.out + (end - p.in) / 3};
    do {
        const __m128i units = triples_to_units(load_triples(p.in));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p.out),
                         _mm_packs_epi32(units, units));
        p = {p.in + 12, p.out + 4};
    } while (p.in < end);
    return result;
}

DecodeProgress decode_sequences_block(DecodeProgress p, const Sequences& kinds) noexcept
{
    const unsigned char* const begin = p.in;
    RunEdges edges(kinds.non_ascii, kinds.quads, kinds.size);
    std::size_t at = 0;
    do {
        const std::size_t next = edges.next();
        const unsigned char* const end = begin + next;
        const std::uint64_t here = std::uint64_t{1} << at;
        if (kinds.quads & here)
            p = decode_quad_run(p, end);
        else if (kinds.non_ascii & here)
            p = decode_triple_run(p, end);
        else
            p = decode_ascii_run<VECTOR_BYTES>(p, end);
        at = next;
    } while (at < kinds.size);
    return p;
}

DecodeProgress decode_block(DecodeProgress p, const unsigned char* in_end,
                            const char16* out_end) noexcept
{
    if (*p.in >= 0xE0 && *p.in < 0xF0)
        return decode_non_ascii(p, in_end, out_end);
    const Block block = classify(p.in, BLOCK);
    if (block.non_ascii == 0)
        return decode_ascii_run<BLOCK>(p, p.in + BLOCK);
    if (!block.pairs_only && has_quads(p.in)) {
        const Sequences kinds = find_sequences(p.in);
        if (kinds.plain)
            return decode_sequences_block(p, kinds);
    }
    if (!block.pairs_only)
        return decode_mixed_block(p, block.non_ascii, in_end, out_end);
    return decode_pairs_block(InnerBlock{p.in}, block.non_ascii, p.out);
}

// Converts blocks that begin before `stop`. From there, REACH bytes must be
// readable. Stops before that at a fault, or where too little is left of the
// output.
DecodeProgress decode_blocks(DecodeProgress p, const unsigned char* stop,
                             const unsigned char* in_end, const char16* out_end) noexcept
{
    while (p.in < stop && out_end - p.out >= static_cast<std::ptrdiff_t>(REACH)) {
        const unsigned char* const before = p.in;
        p = decode_block(p, in_end, out_end);
        if (p.in == before)
            break;
    }
    return p;
}

// The last bytes, fewer than REACH, as far as they are ASCII and pairs.
DecodeProgress decode_rest(DecodeProgress p, const unsigned char* in_end,
                           const char16* out_end) noexcept
{
    const auto left = static_cast<std::size_t>(in_end - p.in);
    const std::size_t size = std::min(left, BLOCK);
    unsigned char copy[REACH + VECTOR_BYTES];
    copy_padded(p.in, size, copy, EXCESS);
    const Block block = classify(p.in, size);
    if (!block.pairs_only)
        return p;
    const LastBlock last{p.in, copy, size, left, out_end};
    return decode_pairs_block(last, block.non_ascii, p.out);
}

}  // namespace

DecodeProgress decode_utf8(const unsigned char* in, const unsigned char* in_end,
                           char16* out, char16* out_end)
{
    DecodeProgress p{in, out};
    constexpr auto reach = static_cast<std::ptrdiff_t>(REACH);
    if (in_end - in >= reach)
        p = decode_blocks(p, in_end - (reach - 1), in_end, out_end);
    if (in_end - p.in < reach) {
        while (in_end - p.in >= 16 && out_end - p.out >= 16 && !any_top_bit(load(p.in))) {
            widen16(p.in, p.out);
            p = {p.in + VECTOR_BYTES, p.out + VECTOR_BYTES};
        }
        if (in_end - p.in >= 24 && *p.in >= 0xE0)
            p = decode_non_ascii(p, in_end, out_end);
        // For mixed text the plain loop is as good, so that a look at its front
        // saves the classification.
        if (in_end - p.in >= 16 && !any_above(load(p.in), 0xDF))
            p = decode_rest(p, in_end, out_end);
    }
    // What is left is short, or stands before a fault or a full output.
    if (p.in == in_end)
        return p;
    return portable_kernels.decode_utf8(p.in, in_end, p.out, out_end);
}

}  // namespace kiv::sse2

#endif
