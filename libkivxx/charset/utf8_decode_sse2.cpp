// UTF-8 to UTF-16 with SSE2.
//
// Text is taken in blocks of 64 bytes. One bit per byte tells ASCII from the
// rest, so that the runs of both are found by bit operations and converted by
// vectors that may reach past the end of a run: what they write too much is
// overwritten by the next run. No branch depends on the length of a word,
// which is what plain loops lose their time with.

#if defined(__SSE2__)

#include <iterator>

#include "charset/sse2.h"
#include "charset/utf8_sequence.h"

namespace kiv::sse2 {
namespace {

constexpr std::size_t BLOCK = 64;
// A run inside a block is converted by two vectors of bytes at once, which
// reach that far past the block; as many units are written.
constexpr std::size_t REACH = BLOCK + 2 * VECTOR_BYTES;

// --- Runs of one kind ---------------------------------------------------------

// Eight lead-trail pairs, which are known to be good.
__m128i pairs_to_units(__m128i v) noexcept
{
    const __m128i high = _mm_slli_epi16(_mm_and_si128(v, splat16(0x1F)), 6);
    const __m128i low = _mm_and_si128(_mm_srli_epi16(v, 8), splat16(0x3F));
    return _mm_or_si128(high, low);
}

// Moves p past the leading good lanes, of which each holds `bytes` and gave
// `units`. Whether any was good. That all are is common, and a branch on it lets
// the next step begin before their number is known.
template <std::size_t bytes, std::size_t units, std::size_t lanes>
bool advance(DecodeProgress& p, std::uint32_t good) noexcept
{
    std::size_t n = lanes;
    if (good != 0xFFFF)
        n = lowest_bit(~good, 0) / (VECTOR_BYTES / lanes);
    p.in += bytes * n;
    p.out += units * n;
    return n != 0;
}

// The good 2-byte sequences at p, up to eight. Whether there is one.
bool decode_pairs(DecodeProgress& p) noexcept
{
    const __m128i v = load(p.in);
    const __m128i units = pairs_to_units(v);
    store(p.out, units);
    const __m128i shape =
        _mm_cmpeq_epi16(_mm_and_si128(v, splat16(0xC0E0)), splat16(0x80C0));
    const __m128i overlong = _mm_cmplt_epi16(units, splat16(0x80));
    const std::uint32_t good = top_bits(_mm_andnot_si128(overlong, shape));
    return advance<2, 1, 8>(p, good);
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

// The good 3-byte sequences at p, up to eight. Whether there is one.
bool decode_triples(DecodeProgress& p) noexcept
{
    const __m128i a = load_triples(p.in);
    const __m128i b = load_triples(p.in + 12);
    const __m128i units = _mm_packs_epi32(triples_to_units(a), triples_to_units(b));
    store(p.out, units);
    const __m128i shape = _mm_packs_epi32(has_triple_shape(a), has_triple_shape(b));
    const __m128i top = _mm_and_si128(units, splat16(0xF800));
    const __m128i bad = _mm_or_si128(_mm_cmpeq_epi16(top, splat16(0xD800)),
                                     _mm_cmpeq_epi16(top, _mm_setzero_si128()));
    const std::uint32_t good = top_bits(_mm_andnot_si128(bad, shape));
    return advance<3, 1, 8>(p, good);
}

// The good 4-byte sequences at p, up to four. Whether there is one.
bool decode_quads(DecodeProgress& p) noexcept
{
    const auto field = [](__m128i shifted, unsigned mask) {
        return _mm_and_si128(shifted, splat32(mask));
    };
    const __m128i v = load(p.in);
    // The value without its low ten bits, less 0x10000: the high surrogate's.
    const __m128i high =
        _mm_sub_epi32(_mm_or_si128(_mm_or_si128(field(_mm_slli_epi32(v, 8), 0x700),
                                                field(_mm_srli_epi32(v, 6), 0xFC)),
                                   field(_mm_srli_epi32(v, 20), 0x3)),
                      splat32(0x40));
    // The low surrogate's ten bits, in the upper half.
    const __m128i low = _mm_or_si128(field(_mm_slli_epi32(v, 6), 0x03C00000),
                                     field(_mm_srli_epi32(v, 8), 0x003F0000));
    store(p.out, _mm_or_si128(_mm_or_si128(high, low), splat32(0xDC00D800)));
    const __m128i shape = _mm_cmpeq_epi32(field(v, 0xC0C0C0F8), splat32(0x808080F0));
    const __m128i in_range =
        _mm_cmpeq_epi32(field(high, 0xFFFFFC00), _mm_setzero_si128());
    const std::uint32_t good = top_bits(_mm_and_si128(shape, in_range));
    return advance<4, 2, 4>(p, good);
}

// One 3-byte sequence. Whether it is good. Reads four bytes.
bool decode_triple(DecodeProgress& p) noexcept
{
    std::uint32_t w;
    std::memcpy(&w, p.in, sizeof w);
    const std::uint32_t value =
        (w << 12 & 0xF000) | (w >> 2 & 0x0FC0) | (w >> 16 & 0x003F);
    if ((w & 0x00C0C0F0) != 0x008080E0 || value < 0x800 || (value & 0xF800) == 0xD800)
        return false;
    *p.out++ = utf8::to_unit(value);
    p.in += 3;
    return true;
}

// One 4-byte sequence. Whether it is good.
bool decode_quad(DecodeProgress& p) noexcept
{
    std::uint32_t w;
    std::memcpy(&w, p.in, sizeof w);
    const std::uint32_t high =
        ((w << 8 & 0x700) | (w >> 6 & 0xFC) | (w >> 20 & 0x3)) - 0x40;
    const std::uint32_t low = (w << 6 & 0x03C00000) | (w >> 8 & 0x003F0000);
    if ((w & 0xC0C0C0F8) != 0x808080F0 || high > 0x3FF)
        return false;
    const std::uint32_t both = high | low | 0xDC00D800;
    std::memcpy(static_cast<void*>(p.out), &both, sizeof both);
    p.out += 2;
    p.in += 4;
    return true;
}

// Converts up to the next ASCII character. Returns false at a fault, or where
// too little is left of the input or the output. Vectors pay off only for long
// runs, which the last lead byte that they would take tells.
bool decode_non_ascii(DecodeProgress& p, const unsigned char* in_end,
                      const char16* out_end) noexcept
{
    while (in_end - p.in >= 24 && out_end - p.out >= 8) {
        const unsigned lead = *p.in;
        if (lead < 0x80)
            return true;
        bool good;
        if (lead >= 0xF0)
            good = p.in[12] >= 0xF0 ? decode_quads(p) : decode_quad(p);
        else if (lead >= 0xE0)
            good = p.in[21] >= 0xE0 ? decode_triples(p) : decode_triple(p);
        else
            good = decode_pairs(p);
        if (!good)
            return false;
    }
    return false;
}

// --- Blocks -------------------------------------------------------------------

struct Block {
    std::uint64_t non_ascii;
    bool pairs_only;  // and those are good, but for a lead byte at the end
};

Block classify(const unsigned char* in) noexcept
{
    const __m128i v[4] = {load(in), load(in + 16), load(in + 32), load(in + 48)};
    const std::uint64_t non_ascii =
        join(top_bits(v[0]), top_bits(v[1]), top_bits(v[2]), top_bits(v[3]));
    if (non_ascii == 0)
        return {0, true};
    const __m128i most =
        _mm_max_epu8(_mm_max_epu8(v[0], v[1]), _mm_max_epu8(v[2], v[3]));
    if (!all_zero(_mm_subs_epu8(most, splat8(0xDF))))
        return {non_ascii, false};
    // Signed comparison: 0x80 to 0xBF are the lowest values.
    const auto trails = [](__m128i x) {
        return top_bits(_mm_cmplt_epi8(x, splat8(0xC0)));
    };
    const auto overlong = [](__m128i x) {
        return _mm_cmpeq_epi8(_mm_and_si128(x, splat8(0xFE)), splat8(0xC0));
    };
    const std::uint64_t trail = join(trails(v[0]), trails(v[1]), trails(v[2]), trails(v[3]));
    const std::uint64_t lead = non_ascii & ~trail;
    const __m128i bad = _mm_or_si128(_mm_or_si128(overlong(v[0]), overlong(v[1])),
                                     _mm_or_si128(overlong(v[2]), overlong(v[3])));
    return {non_ascii, trail == lead << 1 && !any_top_bit(bad)};
}

// ASCII from p.in up to `end`, at least `step` bytes of it at once.
template <std::size_t step>
void decode_ascii_run(DecodeProgress& p, const unsigned char* end) noexcept
{
    const unsigned char* in = p.in;
    char16* out = p.out;
    p.out += end - in;
    p.in = end;
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_BYTES)
            widen16(in + i, out + i);
        in += step;
        out += step;
    } while (in < end);
}

// Good pairs from p.in up to `end`, at least `step` bytes of them at once.
template <std::size_t step>
void decode_pair_run(DecodeProgress& p, const unsigned char* end) noexcept
{
    const unsigned char* in = p.in;
    char16* out = p.out;
    p.out += (end - in) / 2;
    p.in = end;
    do {
        for (std::size_t i = 0; i < step; i += VECTOR_BYTES)
            store(out + i / 2, pairs_to_units(load(in + i)));
        in += step;
        out += step / 2;
    } while (in < end);
}

// The steps are such that runs of a usual length need one.
template <std::size_t ascii_step, std::size_t pair_step>
void decode_pairs_block(DecodeProgress& p, std::uint64_t non_ascii) noexcept
{
    const unsigned char* const begin = p.in;
    const std::size_t size = begin[BLOCK - 1] >= 0xC0 ? BLOCK - 1 : BLOCK;
    RunEdges edges(non_ascii, size);
    do {
        const std::size_t pairs = edges.next();
        const std::size_t ascii = edges.next();
        decode_ascii_run<ascii_step>(p, begin + pairs);
        decode_pair_run<pair_step>(p, begin + ascii);
    } while (p.in < begin + size);
}

// A block with longer sequences, or with a fault. A run that reaches past the
// block is converted to its end.
bool decode_mixed_block(DecodeProgress& p, std::uint64_t non_ascii,
                        const unsigned char* in_end, const char16* out_end) noexcept
{
    const unsigned char* const begin = p.in;
    RunEdges edges(non_ascii, BLOCK);
    do {
        decode_ascii_run<VECTOR_BYTES>(p, begin + edges.next());
        edges.next();
        if (p.in >= begin + BLOCK)
            break;
        if (!decode_non_ascii(p, in_end, out_end))
            return false;
    } while (p.in < begin + BLOCK);
    return true;
}

// Converts blocks that begin before `stop`. From there, REACH bytes must be
// readable. Returns false as decode_non_ascii().
bool decode_blocks(DecodeProgress& p, const unsigned char* stop,
                   const unsigned char* in_end, const char16* out_end) noexcept
{
    while (p.in < stop && out_end - p.out >= static_cast<std::ptrdiff_t>(REACH)) {
        if (*p.in >= 0xE0) {
            if (!decode_non_ascii(p, in_end, out_end))
                return false;
            continue;
        }
        const Block block = classify(p.in);
        if (block.non_ascii == 0) {
            for (std::size_t i = 0; i < BLOCK; i += VECTOR_BYTES)
                widen16(p.in + i, p.out + i);
            p.in += BLOCK;
            p.out += BLOCK;
        } else if (block.pairs_only) {
            // Two pairs side by side are a script like Cyrillic; in Latin text
            // the pairs are single and the runs of ASCII long.
            if (block.non_ascii & block.non_ascii >> 2)
                decode_pairs_block<16, 32>(p, block.non_ascii);
            else
                decode_pairs_block<32, 16>(p, block.non_ascii);
        } else if (!decode_mixed_block(p, block.non_ascii, in_end, out_end)) {
            return false;
        }
    }
    return true;
}

// The last bytes, fewer than REACH, by way of a copy with zeros behind it. The
// zeros are decoded too and taken back. Does nothing if the units do not fit.
void decode_rest(DecodeProgress& p, const unsigned char* in_end,
                 const char16* out_end) noexcept
{
    unsigned char bytes[2 * REACH];
    char16 units[3 * REACH];
    const auto size = static_cast<std::size_t>(in_end - p.in);
    copy_padded(p.in, size, bytes, REACH);

    const bool direct = out_end - p.out >= static_cast<std::ptrdiff_t>(std::size(units));
    DecodeProgress q{bytes, direct ? p.out : units};
    decode_blocks(q, bytes + size, std::end(bytes), direct ? out_end : std::end(units));

    std::size_t done = static_cast<std::size_t>(q.in - bytes);
    if (done > size) {
        q.out -= done - size;
        done = size;
    }
    if (direct) {
        p.out = q.out;
    } else {
        const std::ptrdiff_t n = q.out - units;
        if (n > out_end - p.out)
            return;
        copy_short(units, static_cast<std::size_t>(n) * sizeof(char16), p.out);
        p.out += n;
    }
    p.in += done;
}

}  // namespace

DecodeProgress decode_utf8(const unsigned char* in, const unsigned char* in_end,
                           char16* out, char16* out_end)
{
    DecodeProgress p{in, out};
    constexpr auto reach = static_cast<std::ptrdiff_t>(REACH);
    if (in_end - in >= reach)
        decode_blocks(p, in_end - (reach - 1), in_end, out_end);
    if (in_end - p.in < reach) {
        while (in_end - p.in >= 16 && out_end - p.out >= 16 && !any_top_bit(load(p.in))) {
            widen16(p.in, p.out);
            p.in += VECTOR_BYTES;
            p.out += VECTOR_BYTES;
        }
        if (in_end - p.in >= 16)
            decode_rest(p, in_end, out_end);
    }
    // What is left is short, or stands before a fault or a full output.
    if (p.in == in_end)
        return p;
    return portable_kernels.decode_utf8(p.in, in_end, p.out, out_end);
}

}  // namespace kiv::sse2

#endif
