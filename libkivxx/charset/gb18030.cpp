#include "charset/gb18030.h"

#include <kiv/character.h>

#include "charset/gb18030_keys.h"
#include "charset/multi_byte_loop.h"
#include "charset/tables/gb18030_tables.h"

namespace kiv {

using namespace gb18030;

namespace {

constexpr unsigned IN_BLOCK = (1U << BLOCK_BITS) - 1;

unsigned offset_of(unsigned entry) noexcept
{
    return static_cast<unsigned>(tables::gb18030_offsets[LAST_OFFSET - entry]);
}

}  // namespace

// --- Decoding -------------------------------------------------------------------

GB18030Decoder::GB18030Decoder(const Charset* charset)
    : CharsetDecoder(charset, 1.0F, 1),
      m_index(tables::gb18030_decode_index),
      m_data(tables::gb18030_decode_data)
{
}

char16_t GB18030Decoder::unit_of(unsigned key) const
{
    const unsigned entry = m_index[key >> BLOCK_BITS];
    return entry < FIRST_SPECIAL ? m_data[entry | (key & IN_BLOCK)]
                                 : static_cast<char16_t>(key - offset_of(entry));
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
        const unsigned key =
            size == 2 ? two_byte_key(span.in[0], span.in[1]) : four_byte_key(span.in);
        if (key < FIRST_SUPPLEMENTARY_KEY) {
            c = unit_of(key);
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
    if (kernel == nullptr)
        return convert_plainly(span, kernels().decode_ascii, one);
    return convert_by_kernel(
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

unsigned GB18030Encoder::key_of(unsigned unit) const
{
    const unsigned entry = m_index[unit >> BLOCK_BITS];
    return entry < FIRST_SPECIAL ? m_data[entry | (unit & IN_BLOCK)]
                                 : unit + offset_of(entry);
}

namespace {

// The bytes of a key; size is 2 or 4, as the key's range says.
void store_key(unsigned char* out, unsigned key, unsigned size) noexcept
{
    const auto byte = [](unsigned value) { return static_cast<unsigned char>(value); };
    if (size == 2) {
        const unsigned index = key - FIRST_TWO_BYTE_KEY;
        out[0] = byte(index / TWO_BYTE_ROW + 0x81);
        out[1] = byte(index % TWO_BYTE_ROW + 0x40);
        return;
    }
    const unsigned index = key - FIRST_FOUR_BYTE_KEY;
    out[0] = byte(index / 12600 + 0x81);
    out[1] = byte(index % 12600 / 1260 + 0x30);
    out[2] = byte(index % 1260 / 10 + 0x81);
    out[3] = byte(index % 10 + 0x30);
}

}  // namespace

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
        key = key_of(key);
        size = key < FIRST_FOUR_BYTE_KEY ? 2 : 4;
    }
    if (span.out_left() < size) {
        stop = CoderResult::overflow();
        return false;
    }
    if (size == 1)
        *span.out = static_cast<unsigned char>(key);
    else
        store_key(span.out, key, size);
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
    if (kernel == nullptr)
        return convert_plainly(span, kernels().encode_ascii, one);
    return convert_by_kernel(
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
