// UTF-16 to UTF-8 with SSE2: the mirror of the decoder. Blocks of 64 units, one
// bit per unit that tells ASCII from the rest, runs converted by vectors that
// may reach past their end.

#if defined(__SSE2__)

    #include <algorithm>

    #include "charset/sse2.h"

namespace kiv::sse2 {
namespace {

constexpr std::size_t BLOCK = 64;
// How far the vectors may go past the end of a run, in units and in bytes.
constexpr std::size_t EXCESS = 32;
// Units that must be readable from the start of a block, and bytes that must be
// writable.
constexpr std::size_t REACH = BLOCK + EXCESS;
constexpr std::size_t ROOM = 3 * BLOCK + EXCESS;

// --- Runs of one kind ---------------------------------------------------------

// Eight units from 0x80 to 0x7FF to lead-trail pairs.
__m128i units_to_pairs(__m128i units) noexcept
{
    const __m128i lead = _mm_srli_epi16(units, 6);
    const __m128i trail = _mm_slli_epi16(_mm_and_si128(units, splat16(0x3F)), 8);
    return _mm_or_si128(_mm_or_si128(lead, trail), splat16(0x80C0));
}

// The units of 0x80 to 0x7FF at p, up to eight. Returns where they end.
EncodeProgress encode_pairs(EncodeProgress p) noexcept
{
    const __m128i units = load(p.in);
    store(p.out, units_to_pairs(units));
    // Signed comparison, after moving 0x80 to the lowest value.
    const __m128i shifted = _mm_add_epi16(units, splat16(0x8000 - 0x80));
    const __m128i good = _mm_cmplt_epi16(shifted, splat16(0x8000 + 0x800 - 0x80));
    const std::size_t n = lowest_bit(~top_bits(good), 0) / 2;
    return {p.in + n, p.out + 2 * n};
}

// Stores the lower three bytes of each lane, and two bytes more.
void store_triples(unsigned char* out, __m128i lanes) noexcept
{
    const __m128i even = _mm_and_si128(lanes, _mm_set1_epi64x(0xFFFFFF));
    const __m128i odd =
        _mm_and_si128(_mm_srli_epi64(lanes, 8), _mm_set1_epi64x(0xFFFFFF000000));
    const __m128i packed = _mm_or_si128(even, odd);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), packed);
    _mm_storeh_pd(reinterpret_cast<double*>(out + 6), _mm_castsi128_pd(packed));
}

// Units of 0x800 and more, one in each lane, to lead and two trail bytes.
__m128i units_to_triples(__m128i lanes) noexcept
{
    const __m128i lead = _mm_srli_epi32(lanes, 12);
    const __m128i middle = _mm_and_si128(_mm_slli_epi32(lanes, 2), splat32(0x3F00));
    const __m128i last = _mm_and_si128(_mm_slli_epi32(lanes, 16), splat32(0x3F0000));
    return _mm_or_si128(_mm_or_si128(lead, middle),
                        _mm_or_si128(last, splat32(0x8080E0)));
}

// The units from 0x800 on that are no surrogates at p, up to eight. Needs room
// for 26 bytes. Returns where they end.
EncodeProgress encode_triples(EncodeProgress p) noexcept
{
    const __m128i units = load(p.in);
    const __m128i zero = _mm_setzero_si128();
    store_triples(p.out, units_to_triples(_mm_unpacklo_epi16(units, zero)));
    store_triples(p.out + 12, units_to_triples(_mm_unpackhi_epi16(units, zero)));
    const __m128i top = _mm_and_si128(units, splat16(0xF800));
    const __m128i bad =
        _mm_or_si128(_mm_cmpeq_epi16(top, zero), _mm_cmpeq_epi16(top, splat16(0xD800)));
    // As in the decoder, a branch on eight lets the next step begin early.
    if (!any_top_bit(bad))
        return {p.in + 8, p.out + 24};
    const std::size_t n = lowest_bit(top_bits(bad), 0) / 2;
    return {p.in + n, p.out + 3 * n};
}

// Four surrogate pairs to lead and three trail bytes.
__m128i surrogates_to_quads(__m128i v) noexcept
{
    const auto field = [](__m128i shifted, unsigned mask) {
        return _mm_and_si128(shifted, splat32(mask));
    };
    // The code point without its low ten bits, of which the high surrogate
    // lacks 0x10000.
    const __m128i high = _mm_add_epi32(field(v, 0x3FF), splat32(0x40));
    const __m128i first =
        _mm_or_si128(_mm_srli_epi32(high, 8), field(_mm_slli_epi32(high, 6), 0x3F00));
    const __m128i third = _mm_or_si128(field(_mm_slli_epi32(high, 20), 0x300000),
                                       field(_mm_srli_epi32(v, 6), 0x0F0000));
    const __m128i last = field(_mm_slli_epi32(v, 8), 0x3F000000);
    return _mm_or_si128(_mm_or_si128(first, third),
                        _mm_or_si128(last, splat32(0x808080F0)));
}

// The surrogate pairs at p, up to four. Returns where they end.
EncodeProgress encode_surrogates(EncodeProgress p) noexcept
{
    const __m128i v = load(p.in);
    store(p.out, surrogates_to_quads(v));
    const std::uint32_t good = top_bits(
        _mm_cmpeq_epi32(_mm_and_si128(v, splat32(0xFC00FC00)), splat32(0xDC00D800)));
    const std::size_t n = lowest_bit(~good, 0) / 4;
    return {p.in + 2 * n, p.out + 4 * n};
}

bool is_surrogate(char16_t unit) noexcept
{
    return (unit & 0xF800) == 0xD800;
}

// Converts up to the next ASCII character. Stops before that at a fault, or where
// too little is left of the input or the output.
EncodeProgress encode_non_ascii(EncodeProgress p, const char16* in_end,
                                const unsigned char* out_end) noexcept
{
    while (in_end - p.in >= 8 && out_end - p.out >= 26) {
        const char16_t unit{*p.in};
        const char16* const before = p.in;
        if (is_surrogate(unit))
            p = encode_surrogates(p);
        else if (unit >= 0x800)
            p = encode_triples(p);
        else if (unit >= 0x80)
            p = encode_pairs(p);
        if (p.in == before)
            break;
    }
    return p;
}

// --- Blocks -------------------------------------------------------------------

struct Block {
    std::uint64_t non_ascii;  // if pairs_only
    bool pairs_only;          // no unit from 0x800 on
};

// The block of `size` units, at least 16.
inline Block classify(const char16* in, std::size_t size) noexcept
{
    const Groups groups(size);
    __m128i v[8];
    __m128i any = _mm_setzero_si128();
    for (std::size_t i = 0; i < 8; ++i) {
        v[i] = load(in + groups.at[i / 2] + i % 2 * VECTOR_UNITS);
        any = _mm_or_si128(any, v[i]);
    }
    if (all_zero(_mm_and_si128(any, splat16(0xF800)))) {
        // Narrowing with saturation leaves the top bit to units from 0x80 on.
        const auto bits = [](__m128i a, __m128i b) {
            return top_bits(_mm_packus_epi16(a, b));
        };
        return {groups.join({bits(v[0], v[1]), bits(v[2], v[3]), bits(v[4], v[5]),
                             bits(v[6], v[7])}),
                true};
    }
    return {0, false};
}

// As in the decoder: a block inside the input.
struct InnerBlock {
    const char16* in;
    static constexpr std::size_t size = BLOCK;

    const char16* from(std::size_t) const noexcept { return in; }
    bool has_room(const unsigned char*, std::size_t) const noexcept { return true; }
};

// A block near the end of the input or the output.
struct LastBlock {
    const char16* in;
    const char16* copy;
    std::size_t size;
    std::size_t readable;  // units from `in`
    const unsigned char* out_end;

    // Where units before `end` are read.
    const char16* from(std::size_t end) const noexcept
    {
        return end <= readable ? in : copy;
    }
    bool has_room(const unsigned char* out, std::size_t bytes) const noexcept
    {
        return out_end - out >= static_cast<std::ptrdiff_t>(bytes);
    }
};

// ASCII from p.in up to `end`, at least `step` units of it at once.
template <std::size_t step>
EncodeProgress encode_ascii_run(EncodeProgress p, const char16* end) noexcept
{
    const EncodeProgress result{end, p.out + (end - p.in)};
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_BYTES)
            narrow16(p.in + i, p.out + i);
        p.in += step;
        p.out += step;
    } while (p.in < end);
    return result;
}

// Units of 0x80 to 0x7FF from p.in up to `end`, at least `step` at once.
template <std::size_t step>
EncodeProgress encode_pair_run(EncodeProgress p, const char16* end) noexcept
{
    const EncodeProgress result{end, p.out + 2 * (end - p.in)};
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_UNITS)
            store(p.out + 2 * i, units_to_pairs(load(p.in + i)));
        p.in += step;
        p.out += 2 * step;
    } while (p.in < end);
    return result;
}

// A block of units below 0x800. The steps are such that runs of a usual length
// need one; both write at most 32 bytes past their run.
template <std::size_t ascii_step, std::size_t pair_step, class Source>
EncodeProgress encode_pairs_block(const Source& block, std::uint64_t non_ascii,
                                  unsigned char* out) noexcept
{
    constexpr std::size_t step = std::max(ascii_step, pair_step);
    RunEdges edges(non_ascii, block.size);
    std::size_t at = 0;
    do {
        const std::size_t pairs = edges.next();
        const std::size_t end = edges.next();
        if (!block.has_room(out, pairs - at + 2 * (end - pairs) + 32))
            break;
        const char16* const in = block.from(end + step);
        const EncodeProgress p = encode_ascii_run<ascii_step>({in + at, out}, in + pairs);
        out = encode_pair_run<pair_step>(p, in + end).out;
        at = end;
    } while (at < block.size);
    return {block.in + at, out};
}

template <class Source>
EncodeProgress encode_pairs_block(const Source& block, std::uint64_t non_ascii,
                                  unsigned char* out) noexcept
{
    // As in the decoder: Cyrillic and the like, or Latin.
    return non_ascii & non_ascii >> 1 ? encode_pairs_block<16, 8>(block, non_ascii, out)
                                      : encode_pairs_block<32, 8>(block, non_ascii, out);
}

// A block with longer sequences. A run that reaches past the block is converted
// to its end. Stops within the block as encode_non_ascii().
EncodeProgress encode_mixed_block(EncodeProgress p, std::uint64_t non_ascii,
                                  const char16* in_end,
                                  const unsigned char* out_end) noexcept
{
    const char16* const begin = p.in;
    RunEdges edges(non_ascii, BLOCK);
    do {
        p = encode_ascii_run<VECTOR_BYTES>(p, begin + edges.next());
        if (p.in == begin + BLOCK)
            break;
        p = encode_non_ascii(p, in_end, out_end);
    } while (p.in == begin + edges.next() && p.in < begin + BLOCK);
    return p;
}

// --- Blocks with emoji ----------------------------------------------------------

// As in the decoder: the edges of all runs before any of them is converted.
struct Sequences {
    std::uint64_t non_ascii;
    std::uint64_t surrogates;
    std::size_t size;  // without a high surrogate at the block's end
    bool plain;        // ASCII, units from 0x800 on and pairs of surrogates
};

inline Sequences find_sequences(const char16* in) noexcept
{
    std::uint64_t ascii = 0;
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    __m128i other = _mm_setzero_si128();
    for (std::size_t i = 0; i < BLOCK; i += 2 * VECTOR_UNITS) {
        const __m128i a = load(in + i);
        const __m128i b = load(in + i + VECTOR_UNITS);
        const auto below_0x80 = [](__m128i v) {
            return _mm_cmpeq_epi16(_mm_and_si128(v, splat16(0xFF80)),
                                   _mm_setzero_si128());
        };
        const __m128i one = _mm_packs_epi16(below_0x80(a), below_0x80(b));
        const __m128i upper =
            _mm_packus_epi16(_mm_srli_epi16(a, 8), _mm_srli_epi16(b, 8));
        const __m128i top = _mm_and_si128(upper, splat8(0xFC));
        ascii |= std::uint64_t{top_bits(one)} << i;
        high |= std::uint64_t{top_bits(_mm_cmpeq_epi8(top, splat8(0xD8)))} << i;
        low |= std::uint64_t{top_bits(_mm_cmpeq_epi8(top, splat8(0xDC)))} << i;
        const __m128i below_0x800 =
            _mm_cmpeq_epi8(_mm_and_si128(upper, splat8(0xF8)), _mm_setzero_si128());
        other = _mm_or_si128(other, _mm_andnot_si128(one, below_0x800));
    }
    return {~ascii, high | low, lowest_bit(high & 1ULL << 63, BLOCK),
            low == high << 1 && !any_top_bit(other)};
}

// Pairs of surrogates from p.in up to `end`.
inline EncodeProgress encode_surrogate_run(EncodeProgress p, const char16* end) noexcept
{
    const EncodeProgress result{end, p.out + 2 * (end - p.in)};
    do {
        store(p.out, surrogates_to_quads(load(p.in)));
        p = {p.in + 8, p.out + 16};
    } while (p.in < end);
    return result;
}

// Units from 0x800 on that are no surrogates.
inline EncodeProgress encode_triple_run(EncodeProgress p, const char16* end) noexcept
{
    const EncodeProgress result{end, p.out + 3 * (end - p.in)};
    do {
        const __m128i units = _mm_unpacklo_epi16(load(p.in), _mm_setzero_si128());
        store_triples(p.out, units_to_triples(units));
        p = {p.in + 4, p.out + 12};
    } while (p.in < end);
    return result;
}

EncodeProgress encode_sequences_block(EncodeProgress p, const Sequences& kinds) noexcept
{
    const char16* const begin = p.in;
    RunEdges edges(kinds.non_ascii, kinds.surrogates, kinds.size);
    std::size_t at = 0;
    do {
        const std::size_t next = edges.next();
        const char16* const end = begin + next;
        const std::uint64_t here = std::uint64_t{1} << at;
        if (kinds.surrogates & here)
            p = encode_surrogate_run(p, end);
        else if (kinds.non_ascii & here)
            p = encode_triple_run(p, end);
        else
            p = encode_ascii_run<VECTOR_BYTES>(p, end);
        at = next;
    } while (at < kinds.size);
    return p;
}

EncodeProgress encode_block(EncodeProgress p, const char16* in_end,
                            const unsigned char* out_end) noexcept
{
    const char16_t first{*p.in};
    if (first >= 0x800 && !is_surrogate(first))
        return encode_non_ascii(p, in_end, out_end);
    const Block block = classify(p.in, BLOCK);
    if (!block.pairs_only) {
        const Sequences kinds = find_sequences(p.in);
        return kinds.plain ? encode_sequences_block(p, kinds)
                           : encode_mixed_block(p, kinds.non_ascii, in_end, out_end);
    }
    if (block.non_ascii == 0)
        return encode_ascii_run<BLOCK>(p, p.in + BLOCK);
    return encode_pairs_block(InnerBlock{p.in}, block.non_ascii, p.out);
}

// Converts blocks that begin before `stop`. From there, REACH units must be
// readable. Stops before that at a fault, or where too little is left of the
// output. Inlined, its registers would cost short texts a fifth of their time.
[[gnu::noinline]] EncodeProgress encode_blocks(EncodeProgress p, const char16* stop,
                                               const char16* in_end,
                                               const unsigned char* out_end) noexcept
{
    while (p.in < stop && out_end - p.out >= static_cast<std::ptrdiff_t>(ROOM)) {
        const char16* const before = p.in;
        p = encode_block(p, in_end, out_end);
        if (p.in == before)
            break;
    }
    return p;
}

// The last units, fewer than REACH, as far as they are below 0x800.
EncodeProgress encode_rest(EncodeProgress p, const char16* in_end,
                           const unsigned char* out_end) noexcept
{
    char16 copy[REACH + VECTOR_UNITS];
    const auto left = static_cast<std::size_t>(in_end - p.in);
    const std::size_t size = std::min(left, BLOCK);
    copy_padded(p.in, size * sizeof(char16), copy, EXCESS * sizeof(char16));
    const Block block = classify(p.in, size);
    if (!block.pairs_only)
        return p;
    const LastBlock last{p.in, copy, size, left, out_end};
    return encode_pairs_block(last, block.non_ascii, p.out);
}

}  // namespace

EncodeProgress encode_utf8(const char16* in, const char16* in_end, unsigned char* out,
                           unsigned char* out_end)
{
    EncodeProgress p{in, out};
    constexpr auto reach = static_cast<std::ptrdiff_t>(REACH);
    if (in_end - in >= reach)
        p = encode_blocks(p, in_end - (reach - 1), in_end, out_end);
    if (in_end - p.in < reach) {
        const __m128i non_ascii = splat16(0xFF80);
        while (in_end - p.in >= 16 && out_end - p.out >= 16) {
            const __m128i all = _mm_or_si128(load(p.in), load(p.in + VECTOR_UNITS));
            if (!all_zero(_mm_and_si128(all, non_ascii)))
                break;
            narrow16(p.in, p.out);
            p = {p.in + 16, p.out + 16};
        }
        if (in_end - p.in >= 8 && *p.in >= char16(u'\x800'))
            p = encode_non_ascii(p, in_end, out_end);
        // As in the decoder: mixed text is left to the plain loop.
        if (in_end - p.in >= 16 && all_zero(_mm_and_si128(load(p.in), splat16(0xF800))))
            p = encode_rest(p, in_end, out_end);
    }
    // What is left is short, or stands before a fault or a full output.
    if (p.in == in_end)
        return p;
    return portable_kernels.encode_utf8(p.in, in_end, p.out, out_end);
}

}  // namespace kiv::sse2

#endif
