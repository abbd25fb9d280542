#include "charset/utf_16.h"

#include <kiv/character.h>

#include "charset/coding_span.h"
#include "charset/kernels.h"
#include "charset/unicode_stop.h"

namespace kiv {

namespace {

// The unit that is a byte-order mark read in the wrong order.
constexpr char16_t SWAPPED_MARK = 0xFFFE;

template <bool LITTLE>
char16 load_unit(const unsigned char* p) noexcept
{
    return static_cast<char16_t>(LITTLE ? p[0] | p[1] << 8 : p[0] << 8 | p[1]);
}

template <bool LITTLE>
void store_unit(unsigned char* p, char16 c) noexcept
{
    const char16_t unit = Char16::toCodeUnit(c);
    p[LITTLE ? 0 : 1] = static_cast<unsigned char>(unit & 0xFF);
    p[LITTLE ? 1 : 0] = static_cast<unsigned char>(unit >> 8);
}

}  // namespace

template <bool LITTLE>
class UTF16Decoder final : public CharsetDecoder {
public:
    explicit UTF16Decoder(const Charset* charset) : CharsetDecoder(charset, 0.5F, 1) {}

private:
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override
    {
        DecodeSpan span(in, out);
        for (;;) {
            span.run(LITTLE ? kernels().decode_utf16le : kernels().decode_utf16be);
            // Pairs come in runs, and the kernel takes none of them.
            while (decode_pair(span))
                continue;
            if (span.in_left() < 2)
                return span.finish(CoderResult::underflow());
            const char16 unit = load_unit<LITTLE>(span.in);
            if (Char16::isHighSurrogate(unit))
                return span.finish(stop_at_high_surrogate(span));
            if (Char16::isLowSurrogate(unit) || unit == SWAPPED_MARK)
                return span.finish(CoderResult::malformed(2));
            if (span.out_left() < 1)
                return span.finish(CoderResult::overflow());
            *span.out++ = unit;
            span.in += 2;
        }
    }

    static bool decode_pair(DecodeSpan& span)
    {
        if (span.in_left() < 4 || span.out_left() < 2)
            return false;
        const char16 high = load_unit<LITTLE>(span.in);
        const char16 low = load_unit<LITTLE>(span.in + 2);
        if (!Char16::isSurrogatePair(high, low))
            return false;
        *span.out++ = high;
        *span.out++ = low;
        span.in += 4;
        return true;
    }

    static CoderResult stop_at_high_surrogate(const DecodeSpan& span)
    {
        if (span.in_left() < 4)
            return CoderResult::underflow();
        return Char16::isLowSurrogate(load_unit<LITTLE>(span.in + 2))
                   ? CoderResult::overflow()
                   : CoderResult::malformed(2);
    }
};

template <bool LITTLE>
class UTF16Encoder final : public CharsetEncoder {
public:
    explicit UTF16Encoder(const Charset* charset)
        : CharsetEncoder(charset, 2.0F, 2, LITTLE ? "\xFD\xFF" : "\xFF\xFD")
    {
    }

private:
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        EncodeSpan span(in, out);
        for (;;) {
            span.run(LITTLE ? kernels().encode_utf16le : kernels().encode_utf16be);
            while (encode_pair(span))
                continue;
            if (span.in == span.in_end)
                return span.finish(CoderResult::underflow());
            if (Char16::isSurrogate(*span.in) || span.out_left() < 2)
                return span.finish(encode_stop(span));
            store_unit<LITTLE>(span.out, *span.in++);
            span.out += 2;
        }
    }

    static bool encode_pair(EncodeSpan& span)
    {
        if (span.in_left() < 2 || span.out_left() < 4 ||
            !Char16::isSurrogatePair(span.in[0], span.in[1]))
            return false;
        store_unit<LITTLE>(span.out, *span.in++);
        store_unit<LITTLE>(span.out + 2, *span.in++);
        span.out += 4;
        return true;
    }
};

template <bool LITTLE>
std::unique_ptr<CharsetDecoder> UTF16Base<LITTLE>::newDecoder() const
{
    return std::make_unique<UTF16Decoder<LITTLE>>(this);
}

template <bool LITTLE>
std::unique_ptr<CharsetEncoder> UTF16Base<LITTLE>::newEncoder() const
{
    return std::make_unique<UTF16Encoder<LITTLE>>(this);
}

template class UTF16Base<false>;
template class UTF16Base<true>;

UTF_16BE::UTF_16BE()
    : UTF16Base(1013, u"UTF-16BE"_usv,
                {u"csUTF16BE"_usv, u"ISO-10646-UCS-2"_usv, u"UnicodeBigUnmarked"_usv,
                 u"UTF_16BE"_usv, u"X-UTF-16BE"_usv})
{
}

UTF_16LE::UTF_16LE()
    : UTF16Base(1014, u"UTF-16LE"_usv,
                {u"csUTF16LE"_usv, u"UnicodeLittleUnmarked"_usv, u"UTF_16LE"_usv,
                 u"X-UTF-16LE"_usv})
{
}

}  // namespace kiv
