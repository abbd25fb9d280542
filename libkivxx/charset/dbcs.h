// charset/dbcs.h - the coders of the charsets whose characters take one or two
// bytes.

#ifndef KIV_CHARSET_DBCS_H
#define KIV_CHARSET_DBCS_H

#include <cstdint>

#include <kiv/charset.h>

#include "charset/coding_span.h"
#include "charset/dbcs_traits.h"
#include "charset/tables/dbcs_tables.h"

namespace kiv {

template <class Traits>
class DBCSDecoder final : public CharsetDecoder {
public:
    using Entry = typename Traits::DecodeEntry;

    DBCSDecoder(const Charset* charset, const tables::DbcsTables<Entry>& tables)
        : CharsetDecoder(charset, 0.5F, 1),
          m_index(tables.decode_index),
          m_data(tables.decode_data)
    {
    }

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override;
    bool decode_one(DecodeSpan& span, CoderResult& stop) const;
    char32_t character_of(unsigned key) const;

    const std::uint16_t* m_index;
    const Entry* m_data;
};

template <class Traits>
class DBCSEncoder final : public CharsetEncoder {
public:
    DBCSEncoder(const Charset* charset,
                const tables::DbcsTables<typename Traits::DecodeEntry>& tables)
        : CharsetEncoder(charset, 2.0F, 2),
          m_index(tables.encode_index),
          m_data(tables.encode_data)
    {
    }

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override;
    bool encode_one(EncodeSpan& span, CoderResult& stop) const;
    unsigned bytes_of(char32_t c) const;

    const std::uint16_t* m_index;
    const std::uint16_t* m_data;
};

}  // namespace kiv

#endif
