#include "charset/gb18030.h"

#include <kiv/character.h>

#include "charset/gb18030_keys.h"
#include "charset/multi_byte_loop.h"
#include "charset/tables/gb18030_tables.h"

namespace kiv {

using namespace gb18030;

// --- Decoding -------------------------------------------------------------------

GB18030Decoder::GB18030Decoder(const Charset* charset)
    : CharsetDecoder(charset, 1.0F, 1),
      m_index(tables::gb18030_decode_index),
      m_data(tables::gb18030_decode_data)
{
}

namespace {

// The size of the sequence at the front, 0 if it is unfinished or malformed:
// then `stop` tells. What follows a wrong byte is not part of the fault, the
// wrong byte is.
unsigned sequence_size(const DecodeSpan& span, CoderResult& stop)
{
    const unsigned char* in = span.in;
    const auto malformed = [&](unsigned size) {
        stop = CoderResult::malformed(size);
        return 0U;
    };
    if (in[0] < 0x80)
        return 1;
    if (!LEAD.contains(in[0]))
        return malformed(1);
    if (span.in_left() < 2)
        return 0;
    if (TRAIL.contains(in[1]))
        return 2;
    if (!DIGIT.contains(in[1]))
        return malformed(2);
    if (span.in_left() < 3)
        return 0;
    if (!LEAD.contains(in[2]))
        return malformed(3);
    if (span.in_left() < 4)
        return 0;
    return DIGIT.contains(in[3]) ? 4 : malformed(4);
}

}  // namespace

bool GB18030Decoder::decode_one(DecodeSpan& span, CoderResult& stop) const
{
    if (span.in_left() == 0)
        return false;  // UNDERFLOW, as a result starts
    const unsigned size = sequence_size(span, stop);
    if (size == 0)
        return false;
    unsigned units = 1;
    char32_t c = *span.in;
    if (size != 1) {
        const unsigned char* b = span.in;
        const unsigned key =
            size == 2 ? two_byte_key(b[0], b[1]) : four_byte_key(b[0], b[1], b[2], b[3]);
        if (key < FIRST_SUPPLEMENTARY_KEY) {
            c = unit_of(m_index, m_data, key);
        } else {
            units = 2;
            c = key - SUPPLEMENTARY_KEY_OFFSET;  // of a key too low: out of range too
            if (!Char16::isSupplementaryCodePoint(c)) {
                stop = CoderResult::unmappable(size);
                return false;
            }
        }
    }
    if (span.out_left() < units) {
        stop = CoderResult::overflow();
        return false;
    }
    if (units == 2) {
        *span.out++ = Char16::highSurrogate(c);
        *span.out++ = Char16::lowSurrogate(c);
    } else {
        *span.out++ = static_cast<char16_t>(c);
    }
    span.in += size;
    return true;
}

CoderResult GB18030Decoder::decodeLoop(Buffer<const unsigned char>& in,
                                       Buffer<char16>& out)
{
    DecodeSpan span(in, out);
    const auto one = [&](CoderResult& stop) { return decode_one(span, stop); };
    const auto kernel = table_kernels().of<GB18030Traits>().decode;
    return convert_runs(
        span, [=, this](auto... range) { return kernel(m_index, m_data, range...); },
        one);
}

// --- Encoding -------------------------------------------------------------------

GB18030Encoder::GB18030Encoder(const Charset* charset)
    : CharsetEncoder(charset, 2.0F, 4),
      m_index(tables::gb18030_encode_index),
      m_data(tables::gb18030_encode_data)
{
}

bool GB18030Encoder::encode_one(EncodeSpan& span, CoderResult& stop) const
{
    if (span.in_left() == 0)
        return false;
    const char16 unit = *span.in;
    const char16* next = span.in + 1;
    unsigned key = Char16::toCodeUnit(unit);
    unsigned size = 1;
    if (Char16::isSurrogate(unit)) {
        const char32_t c = fetchSurrogatePair(unit, next, span.in_end, &stop);
        if (c == 0)
            return false;
        key = c + SUPPLEMENTARY_KEY_OFFSET;
        size = 4;
    } else if (key >= 0x80) {
        key = key_of(m_index, m_data, key);
        size = key < FIRST_FOUR_BYTE_KEY ? 2 : 4;
    }
    if (span.out_left() < size) {
        stop = CoderResult::overflow();
        return false;
    }
    if (size == 1)
        *span.out = static_cast<unsigned char>(key);
    else if (size == 2)
        store_two_bytes(span.out, key);
    else
        store_four_bytes(span.out, key);
    span.out += size;
    span.in = next;
    return true;
}

CoderResult GB18030Encoder::encodeLoop(Buffer<const char16>& in,
                                       Buffer<unsigned char>& out)
{
    EncodeSpan span(in, out);
    const auto one = [&](CoderResult& stop) { return encode_one(span, stop); };
    const auto kernel = table_kernels().of<GB18030Traits>().encode;
    return convert_runs(
        span, [=, this](auto... range) { return kernel(m_index, m_data, range...); },
        one);
}

// --- Charset --------------------------------------------------------------------

std::unique_ptr<CharsetDecoder> GB18030::newDecoder() const
{
    return std::make_unique<GB18030Decoder>(this);
}

std::unique_ptr<CharsetEncoder> GB18030::newEncoder() const
{
    return std::make_unique<GB18030Encoder>(this);
}

GB18030::GB18030() : Charset(114, u"GB18030"_usv, {u"csGB18030"_usv, u"GB18030-2000"_usv})
{
}

}  // namespace kiv
