// charset/iso_8859_1.h - ISO-8859-1, the first 256 code points.

#ifndef KIV_CHARSET_ISO_8859_1_H
#define KIV_CHARSET_ISO_8859_1_H

#include "charset/builtin_charset.h"

namespace kiv {

class ISO_8859_1 final : public BuiltinCharset<ISO_8859_1> {
public:
    ISO_8859_1();
    class Decoder;
    class Encoder;
};

}  // namespace kiv

#endif
