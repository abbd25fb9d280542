#include "charset/dbcs.h"

#include <kiv/character.h>

#include "charset/multi_byte_loop.h"

namespace kiv {

// --- Decoding -------------------------------------------------------------------

template <class Traits>
char32_t DBCSDecoder<Traits>::character_of(unsigned key) const
{
    constexpr unsigned bits = Traits::DECODE_BLOCK_BITS;
    const unsigned block = m_index[key >> bits];
    return block == tables::NO_BLOCK ? UNMAPPABLE
                                     : m_data[block | (key & ((1U << bits) - 1))];
}

template <class Traits>
bool DBCSDecoder<Traits>::decode_one(DecodeSpan& span, CoderResult& stop) const
{
    if (span.in_left() == 0)
        return false;  // UNDERFLOW, as a result starts
    const unsigned lead = *span.in;
    std::uint32_t size = 1;
    char32_t c = lead;
    if (Traits::LEAD.contains(lead)) {
        if (span.in_left() < 2)
            return false;
        const unsigned trail = span.in[1];
        if (!Traits::TRAIL.contains(trail)) {
            stop = CoderResult::malformed(1);
            return false;
        }
        size = 2;
        c = character_of(dbcs_key(lead, trail));
    } else if (lead >= 0x80) {
        c = character_of(lead);
    }
    if (c == UNMAPPABLE) {
        stop = CoderResult::unmappable(size);
        return false;
    }
    const bool pair = sizeof(Entry) > sizeof(char16_t) && c > 0xFFFF;
    if (span.out_left() < (pair ? 2U : 1U)) {
        stop = CoderResult::overflow();
        return false;
    }
    if (pair) {
        *span.out++ = Char16::highSurrogate(c);
        *span.out++ = Char16::lowSurrogate(c);
    } else {
        *span.out++ = static_cast<char16_t>(c);
    }
    span.in += size;
    return true;
}

template <class Traits>
CoderResult DBCSDecoder<Traits>::decodeLoop(Buffer<const unsigned char>& in,
                                            Buffer<char16>& out)
{
    DecodeSpan span(in, out);
    const auto one = [&](CoderResult& stop) { return decode_one(span, stop); };
    const auto kernel = table_kernels().of<Traits>().decode;
    return convert_runs(
        span, [=, this](auto... range) { return kernel(m_index, m_data, range...); },
        one);
}

// --- Encoding -------------------------------------------------------------------

template <class Traits>
unsigned DBCSEncoder<Traits>::bytes_of(char32_t c) const
{
    constexpr unsigned bits = Traits::ENCODE_BLOCK_BITS;
    if (c > Traits::HIGHEST)
        return tables::NO_CODE;
    const unsigned block = m_index[c >> bits];
    return block == tables::NO_BLOCK ? tables::NO_CODE
                                     : m_data[block | (c & ((1U << bits) - 1))];
}

template <class Traits>
bool DBCSEncoder<Traits>::encode_one(EncodeSpan& span, CoderResult& stop) const
{
    if (span.in_left() == 0)
        return false;
    char32_t c = static_cast<char16_t>(*span.in);
    const char16* next = span.in + 1;
    if constexpr (Traits::HIGHEST > 0xFFFF) {
        if (Char16::isSurrogate(*span.in)) {
            c = fetchSurrogatePair(*span.in, next, span.in_end, &stop);
            if (c == 0)
                return false;
        }
    }
    const unsigned bytes = c < 0x80 ? c : bytes_of(c);
    if (bytes == tables::NO_CODE) {
        stop = unmappableCodeUnit(span.in, span.in_end);
        return false;
    }
    if (span.out_left() < (bytes < 0x100 ? 1U : 2U)) {
        stop = CoderResult::overflow();
        return false;
    }
    if (bytes >= 0x100)
        *span.out++ = static_cast<unsigned char>(bytes >> 8);
    *span.out++ = static_cast<unsigned char>(bytes);
    span.in = next;
    return true;
}

template <class Traits>
CoderResult DBCSEncoder<Traits>::encodeLoop(Buffer<const char16>& in,
                                            Buffer<unsigned char>& out)
{
    EncodeSpan span(in, out);
    const auto one = [&](CoderResult& stop) { return encode_one(span, stop); };
    const auto kernel = table_kernels().of<Traits>().encode;
    return convert_runs(
        span, [=, this](auto... range) { return kernel(m_index, m_data, range...); },
        one);
}

template class DBCSDecoder<Micsft_932_Traits>;
template class DBCSDecoder<Shift_JIS_Traits>;
template class DBCSDecoder<Micsft_936_Traits>;
template class DBCSDecoder<GBK_Traits>;
template class DBCSDecoder<Micsft_949_Traits>;
template class DBCSDecoder<Micsft_950_Traits>;
template class DBCSDecoder<Big5_Traits>;
template class DBCSDecoder<Big5_HKSCS_Traits>;
template class DBCSEncoder<Micsft_932_Traits>;
template class DBCSEncoder<Shift_JIS_Traits>;
template class DBCSEncoder<Micsft_936_Traits>;
template class DBCSEncoder<GBK_Traits>;
template class DBCSEncoder<Micsft_949_Traits>;
template class DBCSEncoder<Micsft_950_Traits>;
template class DBCSEncoder<Big5_Traits>;
template class DBCSEncoder<Big5_HKSCS_Traits>;

}  // namespace kiv
