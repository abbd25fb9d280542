// charset/iso_8859_1.h - ISO-8859-1, the first 256 code points.

#ifndef KIV_CHARSET_ISO_8859_1_H
#define KIV_CHARSET_ISO_8859_1_H

#include <kiv/charset.h>

namespace kiv {

class ISO_8859_1 final : public Charset {
public:
    ISO_8859_1();
    std::unique_ptr<CharsetDecoder> newDecoder() const override;
    std::unique_ptr<CharsetEncoder> newEncoder() const override;

private:
    class Decoder;
    class Encoder;
};

}  // namespace kiv

#endif
