// What decoders and encoders share: states, error actions, hooks, whole-buffer
// conversion. Most of it is driven by coders of a toy charset, alike in both
// directions, whose steps a test may script.

#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include "charset/toy_charset.h"

namespace {

using kiv::Buffer;
using kiv::char16;
using kiv::Charset;
using kiv::CoderResult;
using toy::expect_error;
using toy::ToyDecoder;
using toy::ToyEncoder;
using enum kiv::CodingErrorAction;
using Action = kiv::CodingErrorAction;

static_assert(sizeof(CoderResult) == 8 && std::is_trivially_copyable_v<CoderResult>);

// --- The two directions ----------------------------------------------------------------

template <class In>
std::vector<In> units(const std::string& text)
{
    return std::vector<In>(text.begin(), text.end());
}

template <class Unit>
std::string text_of(const Unit* p, std::size_t n)
{
    std::string text;
    for (std::size_t i = 0; i < n; ++i) {
        const auto unit = static_cast<char16_t>(p[i]);
        text += unit == 0xFFFD ? '?' : static_cast<char>(unit);
    }
    return text;
}

struct Decoding {
    using Coder = ToyDecoder;
    using In = unsigned char;
    using Out = char16;
    static constexpr const char* NAME = "CharsetDecoder::";
    static constexpr const char* STEP = "decode";
    static CoderResult step(Coder& coder, Buffer<const In>& in, Buffer<Out>& out,
                            bool last)
    {
        return coder.decode(in, out, last);
    }
    static std::string all(Coder& coder, Buffer<const In>& in)
    {
        const kiv::ustring text = coder.decode(in);
        return text_of(text.data(), text.size());
    }
    static void replace_with(Coder& coder, const std::string& text)
    {
        coder.replaceWith(kiv::ustring(text.begin(), text.end()));
    }
};

struct Encoding {
    using Coder = ToyEncoder;
    using In = char16;
    using Out = unsigned char;
    static constexpr const char* NAME = "CharsetEncoder::";
    static constexpr const char* STEP = "encode";
    static CoderResult step(Coder& coder, Buffer<const In>& in, Buffer<Out>& out,
                            bool last)
    {
        return coder.encode(in, out, last);
    }
    static std::string all(Coder& coder, Buffer<const In>& in)
    {
        return coder.encode(in);
    }
    static void replace_with(Coder& coder, const std::string& text)
    {
        coder.replaceWith(text);
    }
};

template <class Way>
class CodingEngine : public testing::Test {
protected:
    using InUnit = typename Way::In;
    using OutUnit = typename Way::Out;

    static std::string name(const char* operation)
    {
        return std::string(Way::NAME) + operation;
    }

    // One streaming step over the text, into room for `capacity` units.
    CoderResult step(const std::string& text, bool last, std::size_t capacity = 99)
    {
        const auto input = units<InUnit>(text);
        std::vector<OutUnit> output(capacity);
        Buffer<const InUnit> in(input.data(), input.size());
        Buffer<OutUnit> out(output.data(), capacity);
        const CoderResult result = Way::step(m_coder, in, out, last);
        m_consumed = in.position();
        m_written = text_of(output.data(), out.position());
        return result;
    }
    CoderResult flush()
    {
        Buffer<OutUnit> none(nullptr, 0);
        return m_coder.flush(none);
    }
    std::string all(const std::string& text)
    {
        const auto input = units<InUnit>(text);
        Buffer<const InUnit> in(input.data(), input.size());
        try {
            const std::string result = Way::all(m_coder, in);
            m_consumed = in.position();
            return result;
        } catch (...) {
            m_consumed = in.position();
            throw;
        }
    }

    typename Way::Coder m_coder{toy::charset()};
    std::size_t m_consumed = 0;
    std::string m_written;
};

using Ways = testing::Types<Decoding, Encoding>;
TYPED_TEST_SUITE(CodingEngine, Ways);

// --- Construction and settings --------------------------------------------------------

TYPED_TEST(CodingEngine, ConstructorRefusesBadRatios)
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr unsigned most = std::numeric_limits<unsigned>::max();
    using Coder = typename TypeParam::Coder;
    const std::string message = this->name(
        std::is_same_v<TypeParam, Decoding> ? "CharsetDecoder" : "CharsetEncoder");
    for (const auto& [average, max] :
         {std::pair(0.0F, 1u), std::pair(-1.0F, 1u), std::pair(1.5F, 1u),
          std::pair(nan, 1u), std::pair(inf, 1u), std::pair(inf, most),
          std::pair(-inf, 1u), std::pair(1.0F, 0u), std::pair(-0.0F, 1u),
          std::pair(std::nextafter(2.0F, 3.0F), 2u)})
        expect_error<std::invalid_argument>(
            [&, a = average, m = max] { Coder(toy::charset(), a, m); }, message);
    for (const auto& [average, max] :
         {std::pair(2.0F, 2u), std::pair(std::numeric_limits<float>::denorm_min(), 1u),
          std::pair(4294967296.0F, most)})
        EXPECT_NO_THROW(Coder(toy::charset(), average, max));
}

TYPED_TEST(CodingEngine, StartsReportingAndTellsItsHooks)
{
    auto& coder = this->m_coder;
    EXPECT_EQ(coder.charset(), toy::charset());
    EXPECT_EQ(coder.malformedInputAction(), REPORT);
    EXPECT_EQ(coder.unmappableCharacterAction(), REPORT);
    EXPECT_EQ(text_of(coder.replacement().data(), coder.replacement().size()), "?");
    EXPECT_EQ(coder.script.log, "");  // a constructor cannot reach them

    EXPECT_EQ(&coder.onMalformedInput(IGNORE), &coder);
    EXPECT_EQ(&coder.onUnmappableCharacter(REPLACE), &coder);
    TypeParam::replace_with(coder, "abc");
    EXPECT_EQ(&coder.reset(), &coder);
    for (const unsigned bad : {3u, 4u, ~0u}) {
        const auto action = static_cast<Action>(bad);
        expect_error<std::invalid_argument>([&] { coder.onMalformedInput(action); },
                                            this->name("onMalformedInput"));
        expect_error<std::invalid_argument>([&] { coder.onUnmappableCharacter(action); },
                                            this->name("onUnmappableCharacter"));
    }
    for (const char* bad : {"", "abcd"})
        expect_error<std::invalid_argument>([&] { TypeParam::replace_with(coder, bad); },
                                            this->name("replaceWith"));
    EXPECT_EQ(coder.malformedInputAction(), IGNORE);
    EXPECT_EQ(coder.unmappableCharacterAction(), REPLACE);
    EXPECT_EQ(text_of(coder.replacement().data(), coder.replacement().size()), "abc");
    EXPECT_EQ(coder.script.log, "malformed0 unmappable1 replace3 reset ");
    coder.replaceWith(coder.replacement());  // of its own text
    EXPECT_EQ(text_of(coder.replacement().data(), coder.replacement().size()), "abc");
}

TEST(CharsetDecoder, DetectsNoCharset)
{
    const auto decoder = Charset::UTF_8->newDecoder();
    EXPECT_FALSE(decoder->isAutoDetecting());
    expect_error<std::logic_error>([&] { decoder->isCharsetDetected(); },
                                   "CharsetDecoder::isCharsetDetected");
    expect_error<std::logic_error>([&] { decoder->detectedCharset(); },
                                   "CharsetDecoder::detectedCharset");
}

// --- States
// ------------------------------------------------------------------------------

TYPED_TEST(CodingEngine, States)
{
    enum State { RESET, CODING, END, FLUSHED, THROWS };
    enum Move { MORE, LAST, FLUSH, FULL_FLUSH, BAD_FLUSH, RESTART };
    // Rows by state, columns by move.
    static constexpr State NEXT[4][6] = {
        {CODING, END, THROWS, THROWS, THROWS, RESET},
        {CODING, END, THROWS, THROWS, THROWS, RESET},
        {THROWS, END, FLUSHED, END, END, RESET},
        {THROWS, THROWS, FLUSHED, FLUSHED, FLUSHED, RESET},
    };
    auto& coder = this->m_coder;
    CoderResult flushed;
    int flushes = 0;
    coder.script.flush = [&](auto&) { return ++flushes, flushed; };
    const auto make = [&](Move move) {
        flushed = move == FULL_FLUSH  ? CoderResult::overflow()
                  : move == BAD_FLUSH ? CoderResult::malformed(3)
                                      : CoderResult::underflow();
        if (move == MORE || move == LAST)
            EXPECT_TRUE(this->step("", move == LAST).isUnderflow());
        else if (move == RESTART)
            coder.reset();
        else
            return this->flush();
        return CoderResult::underflow();
    };
    // A flush that does not finish tells the states apart without changing them;
    // RESET and CODING differ for canEncode only.
    const auto state = [&] {
        try {
            return make(FULL_FLUSH).isOverflow() ? END : FLUSHED;
        } catch (const std::logic_error&) {
        }
        if constexpr (std::is_same_v<TypeParam, Encoding>) {
            try {
                coder.canEncode(kiv::ustring());  // no text, no flush
                return RESET;
            } catch (const std::logic_error& e) {
                EXPECT_STREQ(e.what(), "CharsetEncoder::canEncode: illegal state");
            }
        }
        return CODING;
    };
    const auto same = [](State a, State b) {
        return a == b ||
               (std::is_same_v<TypeParam, Decoding> && a <= CODING && b <= CODING);
    };
    for (const State from : {RESET, CODING, END, FLUSHED})
        for (const Move move : {MORE, LAST, FLUSH, FULL_FLUSH, BAD_FLUSH, RESTART}) {
            SCOPED_TRACE(testing::Message() << "from " << from << " move " << move);
            coder.reset();
            for (int i = 0; i < static_cast<int>(from); ++i)
                make(std::array{MORE, LAST, FLUSH}[static_cast<std::size_t>(i)]);
            flushes = 0;
            const State next = NEXT[from][move];
            if (next == THROWS) {
                expect_error<std::logic_error>(
                    [&] { make(move); },
                    this->name(move >= FLUSH ? "flush" : TypeParam::STEP) +
                        ": illegal state");
                EXPECT_TRUE(same(state(), from));
                continue;
            }
            const CoderResult result = make(move);
            EXPECT_EQ(result, from == FLUSHED ? CoderResult::underflow() : flushed);
            EXPECT_EQ(flushes, from == END && move >= FLUSH && move != RESTART ? 1 : 0);
            EXPECT_TRUE(same(state(), next));
        }
}

// --- Steps
// ---------------------------------------------------------------------------------

TYPED_TEST(CodingEngine, Steps)
{
    constexpr auto full = CoderResult::overflow();
    constexpr auto done = CoderResult::underflow();
    constexpr auto malformed = CoderResult::malformed;
    struct Case {
        const char* input;
        bool last;
        std::size_t capacity;
        Action on_malformed;
        Action on_unmappable;
        CoderResult result;
        const char* output;
        std::size_t consumed;
    };
    const Case cases[] = {
        {"", true, 0, REPORT, REPORT, done, "", 0},
        {"abc", false, 3, REPORT, REPORT, done, "abc", 3},
        {"abc", true, 2, REPORT, REPORT, full, "ab", 2},
        {"a(", false, 9, REPORT, REPORT, done, "a", 1},
        {"a(", true, 9, REPORT, REPORT, malformed(1), "a", 1},
        {"a(", true, 9, IGNORE, REPORT, done, "a", 2},
        {"a(", true, 9, REPLACE, REPORT, done, "a<?>", 2},
        {"a(", true, 3, REPLACE, REPORT, full, "a", 1},
        {"a!b", false, 9, REPORT, IGNORE, malformed(1), "a", 1},
        {"a%!b", false, 9, REPORT, IGNORE, malformed(2), "a", 1},
        {"a%!b", false, 9, REPLACE, REPORT, done, "a<?>b", 4},
        {"a%!!b", false, 9, IGNORE, REPORT, done, "ab", 5},
        {"a#b", false, 9, IGNORE, REPORT, CoderResult::unmappable(1), "a", 1},
        {"a#b", false, 9, REPORT, REPLACE, done, "a<?>b", 3},
        {"a#b", false, 9, REPORT, IGNORE, done, "ab", 3},
        {"!#", false, 9, REPLACE, IGNORE, done, "<?>", 2},
        {"a!b", false, 3, REPLACE, REPORT, full, "a", 1},  // no part of a replacement
        {"a!b", false, 4, REPLACE, REPORT, full, "a<?>", 2},
        {"!", false, 0, IGNORE, REPORT, done, "", 1},
        {"a(bc", true, 2, REPORT, REPORT, full, "a", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.input);
        this->m_coder.reset();
        TypeParam::replace_with(this->m_coder, "<?>");
        this->m_coder.onMalformedInput(c.on_malformed)
            .onUnmappableCharacter(c.on_unmappable);
        EXPECT_EQ(this->step(c.input, c.last, c.capacity), c.result);
        EXPECT_EQ(this->m_written, c.output);
        EXPECT_EQ(this->m_consumed, c.consumed);
    }
}

TYPED_TEST(CodingEngine, ErrorsOfSteps)
{
    auto& coder = this->m_coder;
    const std::string prefix = this->name(TypeParam::STEP) + ": unexpected buffer ";
    const auto throwing = [&](auto error) {
        coder.reset();
        coder.script.step = [error](auto&, auto&) -> CoderResult { throw error; };
    };
    throwing(kiv::BufferOverflowError());
    expect_error<kiv::CoderMalfunctionError>([&] { this->step("a", true); },
                                             prefix + "overflow");
    EXPECT_TRUE(this->flush().isUnderflow());  // the state is END all the same
    throwing(kiv::BufferUnderflowError());
    expect_error<kiv::CoderMalfunctionError>([&] { this->step("a", false); },
                                             prefix + "underflow");
    expect_error<kiv::CoderMalfunctionError>([&] { this->all("a"); },
                                             prefix + "underflow");
    throwing(std::runtime_error("other"));
    expect_error<std::runtime_error>([&] { this->step("a", true); }, "other");
    throwing(42);
    EXPECT_THROW(this->step("a", true), int);

    // A fault of no length would be met for ever.
    coder.script.step = [](auto&, auto&) { return CoderResult::malformed(0); };
    coder.onMalformedInput(REPLACE);
    EXPECT_THROW(this->all("a"), kiv::CoderMalfunctionError);
}

// --- Whole buffers
// ----------------------------------------------------------------------

TYPED_TEST(CodingEngine, WholeBuffers)
{
    using Coder = typename TypeParam::Coder;
    struct Case {
        float average;
        std::size_t length;
        std::vector<std::size_t> capacities;
    };
    const Case cases[] = {
        {1.0F, 5, {5}},           {0.5F, 7, {3, 7}},       {0.1F, 9, {0, 1, 3, 7, 15}},
        {2.5F, 3, {7}},           {0.99F, 100, {99, 199}}, {1.1F, 10, {11}},
        {0.3F, 50, {15, 31, 63}},
    };
    for (const Case& c : cases) {
        Coder coder(toy::charset(), c.average);
        std::vector<std::size_t> capacities;
        std::size_t written = 0;
        const auto toy_steps = coder.script.step;
        coder.script.step = [&](auto& in, auto& out) {
            capacities.push_back(out.capacity());
            EXPECT_EQ(out.limit(), out.capacity());
            EXPECT_EQ(out.position(), written);
            const CoderResult result = toy_steps(in, out);
            written = out.position();
            return result;
        };
        const auto input = units<typename TypeParam::In>(std::string(c.length, 'x'));
        Buffer<const typename TypeParam::In> in(input.data(), input.size());
        EXPECT_EQ(TypeParam::all(coder, in), std::string(c.length, 'x'));
        EXPECT_EQ(capacities, c.capacities);
        EXPECT_EQ(coder.script.log, "reset ");
    }
}

TYPED_TEST(CodingEngine, WholeBuffersAreResetAndFlushed)
{
    auto& coder = this->m_coder;
    this->step("ab", false);
    EXPECT_EQ(this->all(""), "");  // nothing to do leaves the coder alone
    EXPECT_EQ(coder.script.log, "");
    EXPECT_NO_THROW(this->step("ab", false));

    std::string trailer = "xyz";  // what a flush writes, a unit at a time
    coder.script.flush = [&](auto& out) {
        using Out = typename TypeParam::Out;
        while (!trailer.empty()) {
            if (!out.hasRemaining())
                return CoderResult::overflow();
            out.put(units<Out>(trailer)[0]);
            trailer.erase(0, 1);
        }
        return CoderResult::underflow();
    };
    EXPECT_EQ(this->all("a(b"), "a[]xyz");
    EXPECT_EQ(this->m_consumed, 3u);
    EXPECT_TRUE(this->flush().isUnderflow());
    EXPECT_THROW(this->step("", true), std::logic_error);  // the state is FLUSHED
    EXPECT_EQ(this->all("again"), "again");

    coder.onUnmappableCharacter(REPORT);
    for (const auto& [input, at, length] :
         {std::tuple("ab%!", 2u, 2u), std::tuple("a(b!", 3u, 1u),
          std::tuple("abc(", 3u, 1u)}) {
        try {
            this->all(input);
            ADD_FAILURE() << input;
        } catch (const kiv::MalformedInputError& e) {
            EXPECT_EQ(e.getInputLength(), length);
        }
        EXPECT_EQ(this->m_consumed, at);
    }
    EXPECT_THROW(this->all("a#"), kiv::UnmappableCharacterError);
    EXPECT_EQ(this->m_consumed, 1u);
    coder.script.flush = [](auto&) { return CoderResult::malformed(9); };
    EXPECT_THROW(this->all("a"), kiv::MalformedInputError);
}

}  // namespace
