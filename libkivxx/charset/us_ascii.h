// charset/us_ascii.h - US-ASCII.

#ifndef KIV_CHARSET_US_ASCII_H
#define KIV_CHARSET_US_ASCII_H

#include "charset/builtin_charset.h"

namespace kiv {

class US_ASCII final : public BuiltinCharset<US_ASCII> {
public:
    US_ASCII();
    class Decoder;
    class Encoder;
};

}  // namespace kiv

#endif
