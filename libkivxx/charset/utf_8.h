// charset/utf_8.h - UTF-8 and CESU-8.

#ifndef KIV_CHARSET_UTF_8_H
#define KIV_CHARSET_UTF_8_H

#include <kiv/charset.h>

namespace kiv {

class UTF_8 final : public Charset {
public:
    UTF_8();
    std::unique_ptr<CharsetDecoder> newDecoder() const override;
    std::unique_ptr<CharsetEncoder> newEncoder() const override;

private:
    class Decoder;
    class Encoder;
};

// UTF-8 of UTF-16 code units: each surrogate is a three-byte sequence of its
// own, and there are none of four bytes.
class CESU_8 final : public Charset {
public:
    CESU_8();
    std::unique_ptr<CharsetDecoder> newDecoder() const override;
    std::unique_ptr<CharsetEncoder> newEncoder() const override;

private:
    class Decoder;
    class Encoder;
};

}  // namespace kiv

#endif
