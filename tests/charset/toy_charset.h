// A toy charset whose coders log their hooks and may be scripted, alike in both
// directions.

#ifndef KIV_TESTS_CHARSET_TOY_CHARSET_H
#define KIV_TESTS_CHARSET_TOY_CHARSET_H

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include <kiv/charset.h>

namespace toy {

using namespace kiv::literals;
using kiv::Buffer;
using kiv::CoderResult;
using Action = kiv::CodingErrorAction;

// '!' is malformed, '#' unmappable, "%xy" malformed as a whole; "(x" becomes "[]" and
// all else itself.
template <class In, class Out>
CoderResult toy_step(Buffer<const In>& in, Buffer<Out>& out)
{
    while (in.hasRemaining()) {
        const auto unit = static_cast<char16_t>(in.get(in.position()));
        if (unit == '!')
            return CoderResult::malformed(1);
        if (unit == '#')
            return CoderResult::unmappable(1);
        const std::size_t length = unit == '%' ? 3 : unit == '(' ? 2 : 1;
        if (in.remaining() < length)
            return CoderResult::underflow();
        if (unit == '%')
            return CoderResult::malformed(3);
        if (out.remaining() < length)
            return CoderResult::overflow();
        in.position(in.position() + length);
        if (unit == '(')
            out.put(Out(u'[')).put(Out(u']'));
        else
            out.put(static_cast<Out>(unit));
    }
    return CoderResult::underflow();
}

// Base is CharsetDecoder or CharsetEncoder, String what it writes.
template <class Base, class InUnit, class OutUnit, class String>
class ToyCoder : public Base {
public:
    using In = InUnit;
    using Out = OutUnit;
    using Text = String;

    template <class... Replacement>
    explicit ToyCoder(const kiv::Charset* charset, float average = 1, unsigned max = 3,
                      Replacement... replacement)
        : Base(charset, average, max, replacement...)
    {
    }

    std::function<CoderResult(Buffer<const In>&, Buffer<Out>&)> on_step =
        toy_step<In, Out>;
    std::function<CoderResult(Buffer<Out>&)> on_flush = [](auto&) {
        return CoderResult::underflow();
    };
    std::string log;
    std::shared_ptr<void> token;  // of the charset that made it

private:
    void record(const char* hook, Action action)
    {
        log += hook + std::to_string(static_cast<unsigned>(action)) + ' ';
    }
    void implReplaceWith(kiv::basic_string_ref<typename String::value_type> text) override
    {
        log += "replace" + std::to_string(text.size()) + ' ';
    }
    void implOnMalformedInput(Action action) override { record("malformed", action); }
    void implOnUnmappableCharacter(Action action) override
    {
        record("unmappable", action);
    }
    void implReset() override { log += "reset "; }
    CoderResult implFlush(Buffer<Out>& out) override { return on_flush(out); }
};

struct ToyDecoder
    : ToyCoder<kiv::CharsetDecoder, unsigned char, kiv::char16, kiv::ustring> {
    static constexpr char NAME[] = "CharsetDecoder";
    static constexpr char STEP[] = "decode";
    static_assert(UNMAPPABLE == 0xDFFF);

    using ToyCoder::ToyCoder;
    auto convert(auto&... arguments) { return decode(arguments...); }
    CoderResult decodeLoop(Buffer<const In>& in, Buffer<Out>& out) override
    {
        return on_step(in, out);
    }
};

struct ToyEncoder
    : ToyCoder<kiv::CharsetEncoder, kiv::char16, unsigned char, std::string> {
    static constexpr char NAME[] = "CharsetEncoder";
    static constexpr char STEP[] = "encode";

    using CharsetEncoder::fetchSurrogatePair;
    using CharsetEncoder::unmappableCodeUnit;
    using ToyCoder::ToyCoder;
    auto convert(auto&... arguments) { return encode(arguments...); }
    CoderResult encodeLoop(Buffer<const In>& in, Buffer<Out>& out) override
    {
        return on_step(in, out);
    }
};

class ToyCharset : public kiv::Charset {
public:
    explicit ToyCharset(kiv::basic_string_ref<kiv::char16> name) : Charset(0, name, {}) {}

    std::unique_ptr<kiv::CharsetDecoder> newDecoder() const override
    {
        ++decoders;
        auto decoder = make<ToyDecoder>();
        last_decoder = decoder.get();
        return decoder;
    }
    std::unique_ptr<kiv::CharsetEncoder> newEncoder() const override
    {
        ++encoders;
        return make<ToyEncoder>();
    }

    // Coders that it made and that are still there.
    long live() const { return m_token.use_count() - 1; }

    std::function<void()> on_step;  // before each step of its coders
    mutable std::atomic<int> decoders{0}, encoders{0};
    mutable std::atomic<ToyDecoder*> last_decoder{nullptr};

private:
    template <class Coder>
    std::unique_ptr<Coder> make() const
    {
        auto coder = std::make_unique<Coder>(this);
        coder->token = m_token;
        coder->on_step = [this](auto& in, auto& out) {
            if (on_step)
                on_step();
            return toy_step(in, out);
        };
        return coder;
    }

    std::shared_ptr<void> m_token = std::make_shared<int>();
};

inline ToyCharset* charset()
{
    static auto* const charset = new ToyCharset(u"x-toy"_usv);
    return charset;
}

}  // namespace toy

#endif
