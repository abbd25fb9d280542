// charset/utf_16.h - UTF-16 in both byte orders, without byte-order mark.

#ifndef KIV_CHARSET_UTF_16_H
#define KIV_CHARSET_UTF_16_H

#include <kiv/charset.h>

namespace kiv {

// LITTLE: the less significant byte comes first.
template <bool LITTLE>
class UTF16Base : public Charset {
public:
    std::unique_ptr<CharsetDecoder> newDecoder() const override;
    std::unique_ptr<CharsetEncoder> newEncoder() const override;

protected:
    using Charset::Charset;
};

class UTF_16BE final : public UTF16Base<false> {
public:
    UTF_16BE();
};

class UTF_16LE final : public UTF16Base<true> {
public:
    UTF_16LE();
};

}  // namespace kiv

#endif
