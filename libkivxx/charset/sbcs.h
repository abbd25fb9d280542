// charset/sbcs.h - the coders of single-byte charsets that have tables.

#ifndef KIV_CHARSET_SBCS_H
#define KIV_CHARSET_SBCS_H

#include <cstdint>

#include <kiv/charset.h>

#include "charset/coding_span.h"
#include "charset/tables/sbcs_tables.h"

namespace kiv {

// COMPLETE: every byte has a character.
template <bool COMPLETE>
class SBCSDecoder final : public CharsetDecoder {
public:
    SBCSDecoder(const Charset* charset, const tables::SbcsTables& tables)
        : CharsetDecoder(charset, 1.0F, 1), m_table(tables.decode)
    {
    }

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override;
    void decode_plain(DecodeSpan& span) const;

    const char16_t* m_table;
};

// What the two encoders share.
class SBCSEncoderBase : public CharsetEncoder {
protected:
    SBCSEncoderBase(const Charset* charset, const tables::SbcsTables& tables)
        : CharsetEncoder(charset, 1.0F, 1),
          m_highest(tables.highest),
          m_pages(tables.pages)
    {
    }

    // byte_of: the byte of a unit, or -1.
    template <class ByteOf>
    CoderResult encode(EncodeSpan span, ByteOf byte_of);

    std::uint32_t m_highest;

private:
    const unsigned char* m_pages;
};

// With an entry for every unit up to the highest that is mapped.
class SBCSEncoder final : public SBCSEncoderBase {
public:
    SBCSEncoder(const Charset* charset, const tables::SbcsTables& tables)
        : SBCSEncoderBase(charset, tables), m_table(tables.encode)
    {
    }

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override;

    const std::int16_t* m_table;
};

// With entries for those blocks of 2^N units that have a mapped one.
template <unsigned N>
class SBCSSparseEncoder final : public SBCSEncoderBase {
public:
    SBCSSparseEncoder(const Charset* charset, const tables::SbcsTables& tables)
        : SBCSEncoderBase(charset, tables), m_index(tables.index), m_data(tables.encode)
    {
    }

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override;

    const std::uint16_t* m_index;
    const std::int16_t* m_data;
};

extern template class SBCSDecoder<false>;
extern template class SBCSDecoder<true>;
extern template class SBCSSparseEncoder<5>;
extern template class SBCSSparseEncoder<6>;
extern template class SBCSSparseEncoder<7>;

}  // namespace kiv

#endif
