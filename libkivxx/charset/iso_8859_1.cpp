#include "charset/iso_8859_1.h"

#include <algorithm>

#include "charset/coding_span.h"
#include "charset/kernels.h"

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

class ISO_8859_1::Encoder final : public CharsetEncoder {
public:
    explicit Encoder(const Charset* charset) : CharsetEncoder(charset, 1.0F, 1) {}

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        EncodeSpan span(in, out);
        for (;;) {
            span.run(kernels().encode_latin1);
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            if (*span.in >= char16_t{0x100})
                return span.finish(unmappableCodeUnit(span.in, span.in_end));
            if (span.out == span.out_end)
                return span.finish(CoderResult::overflow());
            *span.out++ = static_cast<unsigned char>(static_cast<char16_t>(*span.in++));
        }
    }
};

ISO_8859_1::ISO_8859_1()
    : Charset(4, u"ISO-8859-1"_usv,
              {u"ISO_8859-1:1987"_usv, u"iso-ir-100"_usv, u"ISO_8859-1"_usv,
               u"latin1"_usv, u"l1"_usv, u"IBM819"_usv, u"CP819"_usv, u"csISOLatin1"_usv,
               u"819"_usv, u"ISO8859-1"_usv, u"8859_1"_usv, u"ISO8859_1"_usv,
               u"ISO_8859_1"_usv, u"IBM-819"_usv})
{
}

std::unique_ptr<CharsetDecoder> ISO_8859_1::newDecoder() const
{
    return std::make_unique<Decoder>(this);
}

std::unique_ptr<CharsetEncoder> ISO_8859_1::newEncoder() const
{
    return std::make_unique<Encoder>(this);
}

}  // namespace kiv
