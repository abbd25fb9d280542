#include "charset/iso_8859_1.h"

#include "charset/direct_encoder.h"

namespace kiv {

class ISO_8859_1::Decoder final : public CharsetDecoder {
public:
    explicit Decoder(const Charset* charset) : CharsetDecoder(charset, 1.0F, 1) {}

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override
    {
        DecodeSpan span(in, out);
        span.run(kernels().decode_latin1);
        return span.finish(span.in == span.in_end ? CoderResult::underflow()
                                                  : CoderResult::overflow());
    }
};

class ISO_8859_1::Encoder final : public DirectEncoder<0x100, &Kernels::encode_latin1> {
    using DirectEncoder::DirectEncoder;
};

ISO_8859_1::ISO_8859_1()
    : BuiltinCharset(4, u"ISO-8859-1"_usv,
                     {u"ISO_8859-1:1987"_usv, u"iso-ir-100"_usv, u"ISO_8859-1"_usv,
                      u"latin1"_usv, u"l1"_usv, u"IBM819"_usv, u"CP819"_usv,
                      u"csISOLatin1"_usv, u"819"_usv, u"ISO8859-1"_usv, u"8859_1"_usv,
                      u"ISO8859_1"_usv, u"ISO_8859_1"_usv, u"IBM-819"_usv})
{
}

}  // namespace kiv
