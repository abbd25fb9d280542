#include "charset/us_ascii.h"

#include "charset/coding_span.h"
#include "charset/kernels.h"

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

class US_ASCII::Encoder final : public CharsetEncoder {
public:
    explicit Encoder(const Charset* charset) : CharsetEncoder(charset, 1.0F, 1) {}

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        EncodeSpan span(in, out);
        for (;;) {
            span.run(kernels().encode_ascii);
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            if (*span.in >= char16_t{0x80})
                return span.finish(unmappableCodeUnit(span.in, span.in_end));
            if (span.out == span.out_end)
                return span.finish(CoderResult::overflow());
            *span.out++ = static_cast<unsigned char>(static_cast<char16_t>(*span.in++));
        }
    }
};

US_ASCII::US_ASCII()
    : Charset(3, u"US-ASCII"_usv,
              {u"iso-ir-6"_usv, u"ANSI_X3.4-1968"_usv, u"ANSI_X3.4-1986"_usv,
               u"ISO_646.irv:1991"_usv, u"ISO646-US"_usv, u"us"_usv, u"IBM367"_usv,
               u"cp367"_usv, u"csASCII"_usv, u"ASCII"_usv, u"iso_646.irv:1983"_usv,
               u"ascii7"_usv, u"default"_usv, u"646"_usv})
{
}

std::unique_ptr<CharsetDecoder> US_ASCII::newDecoder() const
{
    return std::make_unique<Decoder>(this);
}

std::unique_ptr<CharsetEncoder> US_ASCII::newEncoder() const
{
    return std::make_unique<Encoder>(this);
}

}  // namespace kiv
