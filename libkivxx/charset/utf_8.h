// charset/utf_8.h - UTF-8 and CESU-8.

#ifndef KIV_CHARSET_UTF_8_H
#define KIV_CHARSET_UTF_8_H

#include "charset/builtin_charset.h"

namespace kiv {

class UTF_8 final : public BuiltinCharset<UTF_8> {
public:
    UTF_8();
    class Decoder;
    class Encoder;
};

// UTF-8 of UTF-16 code units: each surrogate is a three-byte sequence of its
// own, and there are none of four bytes.
class CESU_8 final : public BuiltinCharset<CESU_8> {
public:
    CESU_8();
    class Decoder;
    class Encoder;
};

}  // namespace kiv

#endif
