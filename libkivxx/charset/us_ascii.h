// charset/us_ascii.h - US-ASCII.

#ifndef KIV_CHARSET_US_ASCII_H
#define KIV_CHARSET_US_ASCII_H

#include <kiv/charset.h>

namespace kiv {

class US_ASCII final : public Charset {
public:
    US_ASCII();
    std::unique_ptr<CharsetDecoder> newDecoder() const override;
    std::unique_ptr<CharsetEncoder> newEncoder() const override;

private:
    class Decoder;
    class Encoder;
};

}  // namespace kiv

#endif
