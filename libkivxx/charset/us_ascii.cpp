#include "charset/us_ascii.h"

#include "charset/direct_encoder.h"

namespace kiv {

class US_ASCII::Decoder final : public CharsetDecoder {
public:
    explicit Decoder(const Charset* charset) : CharsetDecoder(charset, 1.0F, 1) {}

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override
    {
        DecodeSpan span(in, out);
        for (;;) {
            span.run(kernels().decode_ascii);
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            if (*span.in >= 0x80)
                return span.finish(CoderResult::malformed(1));
            if (span.out == span.out_end)
                return span.finish(CoderResult::overflow());
            *span.out++ = char16_t{*span.in++};
        }
    }
};

class US_ASCII::Encoder final : public DirectEncoder<0x80, &Kernels::encode_ascii> {
    using DirectEncoder::DirectEncoder;
};

US_ASCII::US_ASCII()
    : BuiltinCharset(3, u"US-ASCII"_usv,
                     {u"iso-ir-6"_usv, u"ANSI_X3.4-1968"_usv, u"ANSI_X3.4-1986"_usv,
                      u"ISO_646.irv:1991"_usv, u"ISO646-US"_usv, u"us"_usv, u"IBM367"_usv,
                      u"cp367"_usv, u"csASCII"_usv, u"ASCII"_usv, u"iso_646.irv:1983"_usv,
                      u"ascii7"_usv, u"default"_usv, u"646"_usv})
{
}

}  // namespace kiv
