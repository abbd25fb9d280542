// A toy charset whose coders keep a log of their hooks and may be scripted.

#ifndef KIV_TESTS_CHARSET_TOY_CHARSET_H
#define KIV_TESTS_CHARSET_TOY_CHARSET_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <kiv/charset.h>

namespace toy {

using namespace kiv::literals;
using kiv::Buffer;
using kiv::char16;
using kiv::Charset;
using kiv::CharsetDecoder;
using kiv::CharsetEncoder;
using kiv::CoderResult;
using Action = kiv::CodingErrorAction;

// '!' is malformed, '#' unmappable, "%x" malformed as a whole; "(x" becomes "[]" and
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
        const bool pair = unit == '(' || unit == '%';
        if (pair && in.remaining() < 2)
            return CoderResult::underflow();
        if (unit == '%')
            return CoderResult::malformed(2);
        if (out.remaining() < (pair ? 2 : 1))
            return CoderResult::overflow();
        in.position(in.position() + (pair ? 2 : 1));
        if (pair)
            out.put(Out(u'[')).put(Out(u']'));
        else
            out.put(static_cast<Out>(unit));
    }
    return CoderResult::underflow();
}

// What the hooks and steps of a coder do and have done.
template <class In, class Out>
struct Script {
    std::function<CoderResult(Buffer<const In>&, Buffer<Out>&)> step = toy_step<In, Out>;
    std::function<CoderResult(Buffer<Out>&)> flush = [](auto&) {
        return CoderResult::underflow();
    };
    std::function<void(const std::string&)> on_log = [](const std::string&) {};
    std::string log;

    void record(const std::string& what)
    {
        log += what + ' ';
        on_log(what);
    }
    void record(const char* what, Action action)
    {
        record(what + std::to_string(static_cast<unsigned>(action)));
    }
};

class ToyDecoder : public CharsetDecoder {
public:
    explicit ToyDecoder(const Charset* charset, float average = 1, unsigned max = 3)
        : CharsetDecoder(charset, average, max)
    {
    }
    static_assert(UNMAPPABLE == 0xDFFF);

    Script<unsigned char, char16> script;

private:
    void implReplaceWith(kiv::basic_string_ref<char16> text) override
    {
        script.record("replace" + std::to_string(text.size()));
    }
    void implOnMalformedInput(Action action) override
    {
        script.record("malformed", action);
    }
    void implOnUnmappableCharacter(Action action) override
    {
        script.record("unmappable", action);
    }
    void implReset() override { script.record("reset"); }
    CoderResult implFlush(Buffer<char16>& out) override { return script.flush(out); }
    CoderResult decodeLoop(Buffer<const unsigned char>& in, Buffer<char16>& out) override
    {
        return script.step(in, out);
    }
};

class ToyEncoder : public CharsetEncoder {
public:
    explicit ToyEncoder(const Charset* charset, float average = 1, unsigned max = 3)
        : CharsetEncoder(charset, average, max)
    {
    }
    ToyEncoder(const Charset* charset, kiv::basic_string_ref<char> replacement)
        : CharsetEncoder(charset, 1, 3, replacement)
    {
    }
    using CharsetEncoder::fetchSurrogatePair;
    using CharsetEncoder::unmappableCodeUnit;

    Script<char16, unsigned char> script;

private:
    void implReplaceWith(kiv::basic_string_ref<char> bytes) override
    {
        script.record("replace" + std::to_string(bytes.size()));
    }
    void implOnMalformedInput(Action action) override
    {
        script.record("malformed", action);
    }
    void implOnUnmappableCharacter(Action action) override
    {
        script.record("unmappable", action);
    }
    void implReset() override { script.record("reset"); }
    CoderResult implFlush(Buffer<unsigned char>& out) override
    {
        return script.flush(out);
    }
    CoderResult encodeLoop(Buffer<const char16>& in, Buffer<unsigned char>& out) override
    {
        return script.step(in, out);
    }
};

class ToyCharset : public Charset {
public:
    ToyCharset() : Charset(0, u"x-toy"_usv, {}) {}
    std::unique_ptr<CharsetDecoder> newDecoder() const override
    {
        ++decoders;
        auto decoder = std::make_unique<ToyDecoder>(this);
        decoder->script.on_log = [this](const std::string& what) {
            decoder_resets += what == "reset";
        };
        return decoder;
    }
    std::unique_ptr<CharsetEncoder> newEncoder() const override
    {
        return std::make_unique<ToyEncoder>(this);
    }

    mutable int decoders = 0;  // made, and resets of all of them
    mutable int decoder_resets = 0;
};

inline ToyCharset* charset()
{
    static auto* const charset = new ToyCharset;
    return charset;
}

// Runs the action, which must throw such an error with this message.
template <class Error, class Run>
void expect_error(Run run, const std::string& message)
{
    try {
        run();
        ADD_FAILURE() << "no error; wanted " << message;
    } catch (const Error& e) {
        EXPECT_EQ(e.what(), message);
    }
}

}  // namespace toy

#endif
