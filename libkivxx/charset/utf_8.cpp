#include "charset/utf_8.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <kiv/character.h>

#include "charset/coding_span.h"
#include "charset/kernels.h"
#include "charset/unicode_stop.h"
#include "charset/utf8_sequence.h"

namespace kiv {

namespace {

enum class Form { UTF_8, CESU_8 };

// Bytes of the sequence that a lead byte begins, 0 if none begins with it.
template <Form FORM>
std::size_t sequence_length(unsigned lead) noexcept
{
    if (lead < 0x80)
        return 1;
    if (lead < 0xC0)
        return 0;
    if (lead < 0xE0)
        return 2;
    if (lead < 0xF0)
        return 3;
    return FORM == Form::UTF_8 && lead < 0xF8 ? 4 : 0;
}

// Whether a surrogate by itself, ED A0..BF 80..BF, stands at the span's front.
bool begins_with_surrogate(const DecodeSpan& span) noexcept
{
    const unsigned char* p = span.in;
    return span.in_left() >= 3 && p[0] == 0xED && (p[1] & 0xE0) == 0xA0 &&
           utf8::is_trail(p[2]);
}

// Whether the sequence at the span's front decodes, given room.
template <Form FORM>
bool well_formed(const DecodeSpan& span) noexcept
{
    char16 units[2];
    DecodeProgress progress{span.in, units};
    return utf8::decode_one(progress, span.in_end, units + 2) ||
           (FORM == Form::CESU_8 && begins_with_surrogate(span));
}

// Why the sequence at the span's front could not be decoded. The bytes left
// are counted before they are looked at, and the byte that breaks a sequence
// is part of the fault.
template <Form FORM>
CoderResult decode_stop(const DecodeSpan& span)
{
    const std::size_t n = sequence_length<FORM>(*span.in);
    if (n == 0)
        return CoderResult::malformed(1);
    if (span.in_left() < n)
        return CoderResult::underflow();
    for (std::uint32_t k = 1; k < n; ++k)
        if (!utf8::is_trail(span.in[k]))
            return CoderResult::malformed(k + 1);
    return well_formed<FORM>(span)
               ? CoderResult::overflow()
               : CoderResult::malformed(static_cast<std::uint32_t>(n));
}

bool decode_one(DecodeSpan& span)
{
    DecodeProgress progress{span.in, span.out};
    const bool decoded = utf8::decode_one(progress, span.in_end, span.out_end);
    span.in = progress.in;
    span.out = progress.out;
    return decoded;
}

bool encode_one(EncodeSpan& span)
{
    EncodeProgress progress{span.in, span.out};
    const bool encoded = utf8::encode_one(progress, span.in_end, span.out_end);
    span.in = progress.in;
    span.out = progress.out;
    return encoded;
}

// The first unit of a kind, or the end. The inner loop has no exit, so that it
// becomes wide instructions.
template <class Unit, class Kind>
const Unit* find_in_blocks(const Unit* p, const Unit* end, Kind is_kind)
{
    constexpr std::ptrdiff_t BLOCK = 32;
    for (; end - p >= BLOCK; p += BLOCK) {
        unsigned found = 0;
        for (std::ptrdiff_t i = 0; i < BLOCK; ++i)
            found |= is_kind(p[i]) ? 1U : 0U;
        if (found != 0)
            break;
    }
    return std::find_if(p, end, is_kind);
}

bool decode_surrogate(DecodeSpan& span)
{
    if (span.out_left() < 1 || !begins_with_surrogate(span))
        return false;
    const unsigned char* p = span.in;
    *span.out++ = utf8::to_unit(0xD000 | (p[1] & 0x3Fu) << 6 | (p[2] & 0x3Fu));
    span.in += 3;
    return true;
}

// Both surrogates of a pair, or nothing: six bytes.
bool encode_surrogates(EncodeSpan& span)
{
    if (span.in_left() < 2 || span.out_left() < 6 ||
        !Char16::isSurrogatePair(span.in[0], span.in[1]))
        return false;
    for (int i = 0; i < 2; ++i) {
        const unsigned unit = Char16::toCodeUnit(*span.in++);
        *span.out++ = 0xED;
        *span.out++ = static_cast<unsigned char>(0x80 | (unit >> 6 & 0x3F));
        *span.out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
    }
    return true;
}

}  // namespace

// --- UTF-8 -------------------------------------------------------------------------

class UTF_8::Decoder final : public CharsetDecoder {
public:
    explicit Decoder(const Charset* charset) : CharsetDecoder(charset, 1.0F, 1) {}

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override
    {
        DecodeSpan span(in, out);
        do {
            span.run(kernels().decode_utf8);
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
        } while (decode_one(span));
        return span.finish(decode_stop<Form::UTF_8>(span));
    }
};

class UTF_8::Encoder final : public CharsetEncoder {
public:
    explicit Encoder(const Charset* charset) : CharsetEncoder(charset, 1.1F, 3) {}

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        EncodeSpan span(in, out);
        do {
            span.run(kernels().encode_utf8);
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
        } while (encode_one(span));
        return span.finish(encode_stop(span));
    }
};

UTF_8::UTF_8()
    : BuiltinCharset(106, u"UTF-8"_usv,
                     {u"csUTF8"_usv, u"unicode-1-1-utf-8"_usv, u"UTF8"_usv})
{
}

// --- CESU-8 ------------------------------------------------------------------------

class CESU_8::Decoder final : public CharsetDecoder {
public:
    explicit Decoder(const Charset* charset) : CharsetDecoder(charset, 1.0F, 1) {}

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override
    {
        DecodeSpan span(in, out);
        // UTF-8 but for the sequences of four bytes: those are kept from the
        // kernel. A unit takes three bytes at most, so nothing is looked at
        // that this step will not reach.
        const std::size_t within = std::min(span.in_left() / 3, span.out_left()) * 3;
        const unsigned char* stop = find_in_blocks(
            span.in, span.in + within, [](unsigned char byte) { return byte >= 0xF0; });
        for (;;) {
            if (span.in < stop)
                span.run(kernels().decode_utf8, stop);
            // Surrogates come in runs, and the kernel takes none of them.
            const unsigned char* before = span.in;
            while (decode_surrogate(span))
                continue;
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            if (span.in == before && (*span.in >= 0xF0 || !decode_one(span)))
                return span.finish(decode_stop<Form::CESU_8>(span));
        }
    }
};

class CESU_8::Encoder final : public CharsetEncoder {
public:
    explicit Encoder(const Charset* charset) : CharsetEncoder(charset, 1.1F, 3) {}

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        EncodeSpan span(in, out);
        for (;;) {
            const char16* before = span.in;
            while (encode_surrogates(span))
                continue;
            // UTF-8 but for the pairs; a unit takes a byte at least.
            const std::size_t within = std::min(span.in_left(), span.out_left());
            span.run(kernels().encode_utf8,
                     find_in_blocks(span.in, span.in + within, Char16::isSurrogate));
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            if (span.in == before && (Char16::isSurrogate(*span.in) || !encode_one(span)))
                return span.finish(encode_stop(span));
        }
    }
};

CESU_8::CESU_8()
    : BuiltinCharset(1016, u"CESU-8"_usv, {u"csCESU8"_usv, u"csCESU-8"_usv, u"CESU8"_usv})
{
}

}  // namespace kiv
