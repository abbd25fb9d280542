// charset/coding_engine.h - what decoders and encoders share: the four states,
// the streaming step with its error actions, and whole-buffer conversion.

#ifndef KIV_CHARSET_CODING_ENGINE_H
#define KIV_CHARSET_CODING_ENGINE_H

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

#include <kiv/character.h>
#include <kiv/charset.h>

namespace kiv {

struct CodingEngine {
    enum State : unsigned { RESET, CODING, END, FLUSHED };

    // Coder is CharsetDecoder or CharsetEncoder, Names holds its messages, In
    // and Out are the units that it reads and writes.

    // The comparisons are worded so that NaN is refused.
    static bool valid_ratio(float average, unsigned max) noexcept
    {
        return average > 0 && max != 0 && average <= static_cast<float>(max);
    }

    static bool valid_action(CodingErrorAction action) noexcept
    {
        return action <= CodingErrorAction::REPORT;
    }

    template <class Names, class Coder, class In, class Out>
    static CoderResult convert(Coder& coder, Buffer<const In>& in, Buffer<Out>& out,
                               bool end_of_input)
    {
        if (coder.m_state == FLUSHED || (coder.m_state == END && !end_of_input))
            throw std::logic_error(Names::ILLEGAL_STATE);
        coder.m_state = end_of_input ? END : CODING;
        try {
            return run<Names>(coder, in, out, end_of_input);
        } catch (const BufferOverflowError&) {
            throw CoderMalfunctionError(Names::UNEXPECTED_OVERFLOW);
        } catch (const BufferUnderflowError&) {
            throw CoderMalfunctionError(Names::UNEXPECTED_UNDERFLOW);
        }
    }

    template <class Names, class Coder, class Out>
    static CoderResult flush(Coder& coder, Buffer<Out>& out)
    {
        if (coder.m_state == FLUSHED)
            return CoderResult::underflow();
        if (coder.m_state != END)
            throw std::logic_error(Names::FLUSH_ILLEGAL_STATE);
        const CoderResult result = coder.implFlush(out);
        if (result.isUnderflow())
            coder.m_state = FLUSHED;
        return result;
    }

    // The result is converted in place: it starts at the expected size and
    // grows when the output is full.
    template <class Names, class String, class Out, class Coder, class In>
    static String convert_all(Coder& coder, Buffer<const In>& in, float average)
    {
        if (!in.hasRemaining())
            return String();
        coder.reset();
        String text;
        std::size_t size = expected_size(in.remaining(), average, text.max_size());
        std::size_t written = 0;
        for (;;) {
            text.resize(size);
            Buffer<Out> out(reinterpret_cast<Out*>(text.data()), size);
            out.position(written);
            CoderResult result = convert<Names>(coder, in, out, true);
            if (result.isUnderflow())
                result = flush<Names>(coder, out);
            if (!result.isUnderflow() && !result.isOverflow())
                result.throwException();
            written = out.position();
            if (result.isUnderflow())
                break;
            size = 2 * size + 1;
        }
        text.resize(written);
        return text;
    }

private:
    template <class Names, class Coder, class In, class Out>
    static CoderResult run(Coder& coder, Buffer<const In>& in, Buffer<Out>& out,
                           bool end_of_input)
    {
        for (;;) {
            CoderResult result = step(coder, in, out);
            if (result.isUnderflow()) {
                if (!end_of_input || !in.hasRemaining())
                    return result;
                result = truncated(in.remaining());
            }
            if (result.isOverflow())
                return result;
            // A fault of no length would be met again for ever.
            const bool legal = result.length() != 0 && result.length() <= in.remaining();
            if (!legal || !drops(coder, in, result)) {
                const CodingErrorAction action = result.isMalformed()
                                                     ? coder.m_malformedInputAction
                                                     : coder.m_unmappableCharacterAction;
                if (action == CodingErrorAction::REPORT)
                    return result;
                if (!legal)
                    throw CoderMalfunctionError(Names::ILLEGAL_LENGTH);
                if (action == CodingErrorAction::REPLACE) {
                    const auto& replacement = coder.m_replacement;
                    if (out.remaining() < replacement.size())
                        return CoderResult::overflow();
                    out.put(reinterpret_cast<const Out*>(replacement.data()),
                            replacement.size());
                }
            }
            in.position(in.position() + result.length());
        }
    }

    static CoderResult step(CharsetDecoder& coder, Buffer<const unsigned char>& in,
                            Buffer<char16>& out)
    {
        return coder.decodeLoop(in, out);
    }
    static CoderResult step(CharsetEncoder& coder, Buffer<const char16>& in,
                            Buffer<unsigned char>& out)
    {
        return coder.encodeLoop(in, out);
    }

    // Whether faulty input is to vanish without asking the action.
    static bool drops(CharsetDecoder&, Buffer<const unsigned char>&, CoderResult)
    {
        return false;
    }
    static bool drops(CharsetEncoder&, Buffer<const char16>& in, CoderResult result)
    {
        if (!result.isUnmappable())
            return false;
        const char16 unit = in.get(in.position());
        return CharsetEncoder::isDefaultIgnorable(
            result.length() == 1 ? char32_t{Char16::toCodeUnit(unit)}
                                 : Char16::toCodePoint(unit, in.get(in.position() + 1)));
    }

    // What is left of a sequence when the input ends.
    static CoderResult truncated(std::size_t length) noexcept
    {
        constexpr std::size_t MAX = std::numeric_limits<std::uint32_t>::max();
        return CoderResult::malformed(static_cast<std::uint32_t>(std::min(length, MAX)));
    }

    static std::size_t expected_size(std::size_t units, float average, std::size_t max)
    {
        const double size = static_cast<double>(units) * static_cast<double>(average);
        if (size > static_cast<double>(max))
            throw std::length_error("CharsetCoder: result too long");
        return static_cast<std::size_t>(size);
    }
};

}  // namespace kiv

#endif
