// charset/builtin_charset.h - what the charsets of the library have in common.

#ifndef KIV_CHARSET_BUILTIN_CHARSET_H
#define KIV_CHARSET_BUILTIN_CHARSET_H

#include <memory>

#include <kiv/charset.h>

namespace kiv {

// Makes the coders of Self, its nested classes Decoder and Encoder. Those may
// be incomplete in Self's header: the file that defines Self's constructor
// defines them first.
template <class Self>
class BuiltinCharset : public Charset {
public:
    std::unique_ptr<CharsetDecoder> newDecoder() const override
    {
        return std::make_unique<typename Self::Decoder>(this);
    }
    std::unique_ptr<CharsetEncoder> newEncoder() const override
    {
        return std::make_unique<typename Self::Encoder>(this);
    }

protected:
    using Charset::Charset;
};

}  // namespace kiv

#endif
