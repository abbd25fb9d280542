// UTF-16 to UTF-8 with SSE2: the mirror of the decoder. Blocks of 64 units, one
// bit per unit that tells ASCII from the rest, runs converted by vectors that
// may reach past their end.

#if defined(__SSE2__)

#include <iterator>

#include "charset/sse2.h"

namespace kiv::sse2 {
namespace {

constexpr std::size_t BLOCK = 64;
// Units that must be readable from the start of a block, and bytes that must be
// writable: a run is converted by vectors of 32 units and 32 bytes at once.
constexpr std::size_t REACH = BLOCK + 32;
constexpr std::size_t ROOM = 3 * BLOCK + 32;

// --- Runs of one kind ---------------------------------------------------------

// Eight units from 0x80 to 0x7FF to lead-trail pairs.
__m128i units_to_pairs(__m128i units) noexcept
{
    const __m128i lead = _mm_srli_epi16(units, 6);
    const __m128i trail = _mm_slli_epi16(_mm_and_si128(units, splat16(0x3F)), 8);
    return _mm_or_si128(_mm_or_si128(lead, trail), splat16(0x80C0));
}

// Moves p past the leading good lanes, of which each holds `units` and gave
// `bytes`. Whether any was good. As in the decoder, all of them is worth a branch.
template <std::size_t units, std::size_t bytes, std::size_t lanes>
bool advance(EncodeProgress& p, std::uint32_t good) noexcept
{
    std::size_t n = lanes;
    if (good != 0xFFFF)
        n = lowest_bit(~good, 0) / (VECTOR_BYTES / lanes);
    p.in += units * n;
    p.out += bytes * n;
    return n != 0;
}

// The units of 0x80 to 0x7FF at p, up to eight. Whether there is one.
bool encode_pairs(EncodeProgress& p) noexcept
{
    const __m128i units = load(p.in);
    store(p.out, units_to_pairs(units));
    // Signed comparison, after moving 0x80 to the lowest value.
    const __m128i shifted = _mm_add_epi16(units, splat16(0x8000 - 0x80));
    const __m128i good = _mm_cmplt_epi16(shifted, splat16(0x8000 + 0x800 - 0x80));
    return advance<1, 2, 8>(p, top_bits(good));
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
// for 26 bytes. Whether there is one.
bool encode_triples(EncodeProgress& p) noexcept
{
    const __m128i units = load(p.in);
    const __m128i zero = _mm_setzero_si128();
    store_triples(p.out, units_to_triples(_mm_unpacklo_epi16(units, zero)));
    store_triples(p.out + 12, units_to_triples(_mm_unpackhi_epi16(units, zero)));
    const __m128i top = _mm_and_si128(units, splat16(0xF800));
    const __m128i bad =
        _mm_or_si128(_mm_cmpeq_epi16(top, zero), _mm_cmpeq_epi16(top, splat16(0xD800)));
    return advance<1, 3, 8>(p, top_bits(bad) ^ 0xFFFF);
}

// The surrogate pairs at p, up to four. Whether there is one.
bool encode_surrogates(EncodeProgress& p) noexcept
{
    const auto field = [](__m128i shifted, unsigned mask) {
        return _mm_and_si128(shifted, splat32(mask));
    };
    const __m128i v = load(p.in);
    // The code point without its low ten bits, of which the high surrogate
    // lacks 0x10000.
    const __m128i high = _mm_add_epi32(field(v, 0x3FF), splat32(0x40));
    const __m128i first = _mm_or_si128(_mm_srli_epi32(high, 8),
                                       field(_mm_slli_epi32(high, 6), 0x3F00));
    const __m128i third = _mm_or_si128(field(_mm_slli_epi32(high, 20), 0x300000),
                                       field(_mm_srli_epi32(v, 6), 0x0F0000));
    const __m128i last = field(_mm_slli_epi32(v, 8), 0x3F000000);
    store(p.out, _mm_or_si128(_mm_or_si128(first, third),
                              _mm_or_si128(last, splat32(0x808080F0))));
    const std::uint32_t good =
        top_bits(_mm_cmpeq_epi32(field(v, 0xFC00FC00), splat32(0xDC00D800)));
    return advance<2, 4, 4>(p, good);
}

// One unit from 0x800 on that is no surrogate. Writes four bytes.
bool encode_triple(EncodeProgress& p, std::uint32_t unit) noexcept
{
    const std::uint32_t w =
        0x8080E0 | unit >> 12 | (unit << 2 & 0x3F00) | (unit << 16 & 0x3F0000);
    std::memcpy(p.out, &w, sizeof w);
    p.in += 1;
    p.out += 3;
    return true;
}

// One surrogate pair. Whether it is one.
bool encode_surrogate(EncodeProgress& p) noexcept
{
    std::uint32_t v;
    std::memcpy(&v, p.in, sizeof v);
    if ((v & 0xFC00FC00) != 0xDC00D800)
        return false;
    const std::uint32_t high = (v & 0x3FF) + 0x40;
    const std::uint32_t w = 0x808080F0 | high >> 8 | (high << 6 & 0x3F00) |
                            (high << 20 & 0x300000) | (v >> 6 & 0x0F0000) |
                            (v << 8 & 0x3F000000);
    std::memcpy(p.out, &w, sizeof w);
    p.in += 2;
    p.out += 4;
    return true;
}

bool is_surrogate(char16_t unit) noexcept { return (unit & 0xF800) == 0xD800; }

// Converts up to the next ASCII character. Returns false at a fault, or where
// too little is left of the input or the output. Vectors pay off only for long
// runs, which the last unit that they would take tells.
bool encode_non_ascii(EncodeProgress& p, const char16* in_end,
                      const unsigned char* out_end) noexcept
{
    while (in_end - p.in >= 8 && out_end - p.out >= 26) {
        const char16_t unit{*p.in};
        const char16_t eighth{p.in[7]};
        if (unit < 0x80)
            return true;
        bool good;
        if (unit < 0x800)
            good = encode_pairs(p);
        else if (is_surrogate(unit))
            good = is_surrogate(eighth) ? encode_surrogates(p) : encode_surrogate(p);
        else
            good = eighth >= 0x800 ? encode_triples(p) : encode_triple(p, unit);
        if (!good)
            return false;
    }
    return false;
}

// --- Blocks -------------------------------------------------------------------

struct Block {
    std::uint64_t non_ascii;
    bool pairs_only;  // no unit from 0x800 on
};

Block classify(const char16* in) noexcept
{
    __m128i v[8];
    __m128i all = _mm_setzero_si128();
    for (std::size_t i = 0; i < 8; ++i) {
        v[i] = load(in + i * VECTOR_UNITS);
        all = _mm_or_si128(all, v[i]);
    }
    if (all_zero(_mm_and_si128(all, splat16(0xF800)))) {
        // Narrowing with saturation leaves the top bit to units from 0x80 on.
        const auto mask = [](__m128i a, __m128i b) {
            return top_bits(_mm_packus_epi16(a, b));
        };
        return {join(mask(v[0], v[1]), mask(v[2], v[3]), mask(v[4], v[5]), mask(v[6], v[7])),
                true};
    }
    const auto ascii = [](__m128i x) {
        return _mm_cmpeq_epi16(_mm_and_si128(x, splat16(0xFF80)), _mm_setzero_si128());
    };
    const auto mask = [ascii](__m128i a, __m128i b) {
        return top_bits(_mm_packs_epi16(ascii(a), ascii(b)));
    };
    return {~join(mask(v[0], v[1]), mask(v[2], v[3]), mask(v[4], v[5]), mask(v[6], v[7])),
            false};
}

// ASCII from p.in up to `end`, at least `step` units of it at once.
template <std::size_t step>
void encode_ascii_run(EncodeProgress& p, const char16* end) noexcept
{
    const char16* in = p.in;
    unsigned char* out = p.out;
    p.out += end - in;
    p.in = end;
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_BYTES)
            narrow16(in + i, out + i);
        in += step;
        out += step;
    } while (in < end);
}

// Units of 0x80 to 0x7FF from p.in up to `end`, at least `step` at once.
template <std::size_t step>
void encode_pair_run(EncodeProgress& p, const char16* end) noexcept
{
    const char16* in = p.in;
    unsigned char* out = p.out;
    p.out += 2 * (end - in);
    p.in = end;
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_UNITS)
            store(out + 2 * i, units_to_pairs(load(in + i)));
        in += step;
        out += 2 * step;
    } while (in < end);
}

// The steps are such that runs of a usual length need one.
template <std::size_t ascii_step, std::size_t pair_step>
void encode_pairs_block(EncodeProgress& p, std::uint64_t non_ascii) noexcept
{
    const char16* const begin = p.in;
    RunEdges edges(non_ascii, BLOCK);
    do {
        const std::size_t pairs = edges.next();
        const std::size_t ascii = edges.next();
        encode_ascii_run<ascii_step>(p, begin + pairs);
        encode_pair_run<pair_step>(p, begin + ascii);
    } while (p.in < begin + BLOCK);
}

// A block with longer sequences. A run that reaches past the block is converted
// to its end.
bool encode_mixed_block(EncodeProgress& p, std::uint64_t non_ascii, const char16* in_end,
                        const unsigned char* out_end) noexcept
{
    const char16* const begin = p.in;
    RunEdges edges(non_ascii, BLOCK);
    do {
        encode_ascii_run<VECTOR_BYTES>(p, begin + edges.next());
        edges.next();
        if (p.in >= begin + BLOCK)
            break;
        if (!encode_non_ascii(p, in_end, out_end))
            return false;
    } while (p.in < begin + BLOCK);
    return true;
}

// Converts blocks that begin before `stop`. From there, REACH units must be
// readable. Returns false as encode_non_ascii().
bool encode_blocks(EncodeProgress& p, const char16* stop, const char16* in_end,
                   const unsigned char* out_end) noexcept
{
    while (p.in < stop && out_end - p.out >= static_cast<std::ptrdiff_t>(ROOM)) {
        if (*p.in >= char16(u'\x800')) {
            if (!encode_non_ascii(p, in_end, out_end))
                return false;
            continue;
        }
        const Block block = classify(p.in);
        if (block.non_ascii == 0) {
            for (std::size_t i = 0; i < BLOCK; i += VECTOR_BYTES)
                narrow16(p.in + i, p.out + i);
            p.in += BLOCK;
            p.out += BLOCK;
        } else if (block.pairs_only) {
            // As in the decoder: Cyrillic and the like, or Latin.
            if (block.non_ascii & block.non_ascii >> 1)
                encode_pairs_block<16, 16>(p, block.non_ascii);
            else
                encode_pairs_block<32, 8>(p, block.non_ascii);
        } else if (!encode_mixed_block(p, block.non_ascii, in_end, out_end)) {
            return false;
        }
    }
    return true;
}

// The last units, fewer than REACH, by way of a copy with zeros behind it. The
// zeros are encoded too and taken back. Does nothing if the bytes do not fit.
void encode_rest(EncodeProgress& p, const char16* in_end,
                 const unsigned char* out_end) noexcept
{
    char16 units[2 * REACH];
    unsigned char bytes[3 * REACH + ROOM];
    const auto size = static_cast<std::size_t>(in_end - p.in);
    copy_padded(p.in, size * sizeof(char16), units, REACH * sizeof(char16));

    const bool direct = out_end - p.out >= static_cast<std::ptrdiff_t>(sizeof bytes);
    EncodeProgress q{units, direct ? p.out : bytes};
    encode_blocks(q, units + size, std::end(units), direct ? out_end : std::end(bytes));

    std::size_t done = static_cast<std::size_t>(q.in - units);
    if (done > size) {
        q.out -= done - size;
        done = size;
    }
    if (direct) {
        p.out = q.out;
    } else {
        const std::ptrdiff_t n = q.out - bytes;
        if (n > out_end - p.out)
            return;
        copy_short(bytes, static_cast<std::size_t>(n), p.out);
        p.out += n;
    }
    p.in += done;
}

}  // namespace

EncodeProgress encode_utf8(const char16* in, const char16* in_end, unsigned char* out,
                           unsigned char* out_end)
{
    EncodeProgress p{in, out};
    constexpr auto reach = static_cast<std::ptrdiff_t>(REACH);
    if (in_end - in >= reach)
        encode_blocks(p, in_end - (reach - 1), in_end, out_end);
    if (in_end - p.in < reach) {
        p = sse2_kernels.encode_ascii(p.in, in_end, p.out, out_end);
        if (in_end - p.in >= 8)
            encode_rest(p, in_end, out_end);
    }
    // What is left is short, or stands before a fault or a full output.
    if (p.in == in_end)
        return p;
    return portable_kernels.encode_utf8(p.in, in_end, p.out, out_end);
}

}  // namespace kiv::sse2

#endif
