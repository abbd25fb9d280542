// charset/gb18030.h - GB 18030-2000: all of Unicode in one, two or four bytes.

#ifndef KIV_CHARSET_GB18030_H
#define KIV_CHARSET_GB18030_H

#include <cstdint>

#include <kiv/charset.h>

#include "charset/coding_span.h"

namespace kiv {

class GB18030 final : public Charset {
public:
    GB18030();
    std::unique_ptr<CharsetDecoder> newDecoder() const override;
    std::unique_ptr<CharsetEncoder> newEncoder() const override;
};

class GB18030Decoder final : public CharsetDecoder {
public:
    explicit GB18030Decoder(const Charset* charset);

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override;
    bool decode_one(DecodeSpan& span, CoderResult& stop) const;

    const std::uint16_t* m_index;
    const char16_t* m_data;
};

class GB18030Encoder final : public CharsetEncoder {
public:
    explicit GB18030Encoder(const Charset* charset);

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override;
    bool encode_one(EncodeSpan& span, CoderResult& stop) const;

    const std::uint16_t* m_index;
    const std::uint16_t* m_data;
};

}  // namespace kiv

#endif
