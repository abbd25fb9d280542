// What decoders and encoders share: states, error actions, hooks, whole-buffer
// conversion. It is driven by the coders of a toy charset, alike in both directions.

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include "charset/toy_charset.h"
#include "support/errors.h"

namespace {

using kiv::Buffer;
using kiv::CoderResult;
using kivtest::what_of;
using toy::Action;
using enum kiv::CodingErrorAction;

template <class Text>
std::string plain(const Text& text)
{
    std::string bytes;
    for (const auto unit : text)
        bytes += static_cast<char>(static_cast<char16_t>(unit));
    return bytes;
}

template <class Coder>
class CodingEngine : public testing::Test {
protected:
    using In = typename Coder::In;
    using Out = typename Coder::Out;

    template <class Call>
    static void expect_refused(Call call, const std::string& operation)
    {
        EXPECT_EQ(what_of<std::logic_error>(call), Coder::NAME + ("::" + operation));
    }

    // One streaming step over the text, into room for `capacity` units.
    CoderResult step(const std::string& input, bool last, std::size_t capacity = 99)
    {
        m_output.assign(capacity, Out(0));
        Buffer<Out> out(m_output.data(), capacity);
        const CoderResult result = m_coder.convert(fill(input), out, last);
        m_output.resize(out.position());
        return result;
    }
    CoderResult flush()
    {
        Buffer<Out> none(nullptr, 0);
        return m_coder.flush(none);
    }
    std::string all(const std::string& input)
    {
        return plain(m_coder.convert(fill(input)));
    }
    void replace_with(const std::string& text)
    {
        m_coder.replaceWith(typename Coder::Text(text.begin(), text.end()));
    }

    Coder m_coder{toy::charset()};
    Buffer<const In> m_in{nullptr, 0};
    std::vector<Out> m_output;

private:
    Buffer<const In>& fill(const std::string& input)
    {
        m_input.assign(input.begin(), input.end());
        return m_in = Buffer<const In>(m_input.data(), m_input.size());
    }

    std::vector<In> m_input;
};

using Coders = testing::Types<toy::ToyDecoder, toy::ToyEncoder>;
TYPED_TEST_SUITE(CodingEngine, Coders);

// --- Construction and settings --------------------------------------------------------

TYPED_TEST(CodingEngine, ConstructorRefusesBadRatios)
{
    constexpr auto nan = std::numeric_limits<float>::quiet_NaN();
    constexpr auto most = std::numeric_limits<unsigned>::max();
    using Ratio = std::pair<float, unsigned>;
    for (const auto& [average, max] :
         {Ratio(0, 1), Ratio(-1, 1), Ratio(nan, 1), Ratio(HUGE_VALF, most), Ratio(1, 0),
          Ratio(std::nextafter(2.0F, 3.0F), 2)})
        this->expect_refused([a = average, m = max] { TypeParam(toy::charset(), a, m); },
                             TypeParam::NAME);
    EXPECT_NO_THROW(TypeParam(toy::charset(), 2, 2));
    EXPECT_NO_THROW(TypeParam(toy::charset(), 4294967296.0F, most));
    EXPECT_THROW(TypeParam(toy::charset(), 2, 1), std::invalid_argument);
}

TYPED_TEST(CodingEngine, StartsReportingAndTellsItsHooks)
{
    auto& coder = this->m_coder;
    EXPECT_EQ(coder.log, "");  // a constructor cannot reach them

    coder.onMalformedInput(IGNORE).onUnmappableCharacter(REPLACE);
    this->replace_with("abc");
    coder.reset();
    for (const auto bad : {Action(3), Action(~0u)}) {
        this->expect_refused([&] { coder.onMalformedInput(bad); }, "onMalformedInput");
        this->expect_refused([&] { coder.onUnmappableCharacter(bad); },
                             "onUnmappableCharacter");
    }
    for (const char* bad : {"", "abcd"})
        this->expect_refused([&] { this->replace_with(bad); }, "replaceWith");
    EXPECT_THROW(coder.onMalformedInput(Action(3)), std::invalid_argument);
    EXPECT_THROW(coder.onUnmappableCharacter(Action(3)), std::invalid_argument);
    EXPECT_THROW(this->replace_with(""), std::invalid_argument);
    EXPECT_EQ(coder.malformedInputAction(), IGNORE);
    EXPECT_EQ(coder.unmappableCharacterAction(), REPLACE);
    EXPECT_EQ(coder.log, "malformed0 unmappable1 replace3 reset ");
    coder.replaceWith(coder.replacement());  // of its own text
    EXPECT_EQ(plain(coder.replacement()), "abc");
}

TEST(CharsetDecoder, DetectsNoCharset)
{
    const auto decoder = kiv::Charset::UTF_8->newDecoder();
    EXPECT_FALSE(decoder->isAutoDetecting());
    EXPECT_EQ(what_of<std::logic_error>([&] { decoder->isCharsetDetected(); }),
              "CharsetDecoder::isCharsetDetected");
    EXPECT_EQ(what_of<std::logic_error>([&] { decoder->detectedCharset(); }),
              "CharsetDecoder::detectedCharset");
}

// --- States ---------------------------------------------------------------------------

// Every sequence of five moves: the state after one shows in what the next ones do.
TYPED_TEST(CodingEngine, States)
{
    enum State { RESET, CODING, END, FLUSHED, THROWS };
    enum Move { MORE, LAST, FLUSH, FULL_FLUSH, BAD_FLUSH, RESTART, TRIAL, MOVES };
    static constexpr State NEXT[4][MOVES] = {
        {CODING, END, THROWS, THROWS, THROWS, RESET, RESET},
        {CODING, END, THROWS, THROWS, THROWS, RESET, THROWS},
        {THROWS, END, FLUSHED, END, END, RESET, THROWS},
        {THROWS, THROWS, FLUSHED, FLUSHED, FLUSHED, RESET, RESET},
    };
    auto& coder = this->m_coder;
    CoderResult flushed;
    coder.on_flush = [&](auto&) { return flushed; };
    const auto make = [&](Move move) {
        if (move == MORE || move == LAST)
            return this->step("", move == LAST);
        if (move != RESTART && move != TRIAL)
            return this->flush();
        if constexpr (requires { coder.canEncode(u'a'); })
            if (move == TRIAL)
                return coder.canEncode(kiv::ustring()), CoderResult();
        return coder.reset(), CoderResult();
    };
    for (int sequence = 0; sequence < MOVES * MOVES * MOVES * MOVES * MOVES; ++sequence) {
        SCOPED_TRACE(sequence);
        coder.reset();
        State state = RESET;
        for (int i = 0, moves = sequence; i < 5; ++i, moves /= MOVES) {
            Move move = static_cast<Move>(moves % MOVES);
            if (move == TRIAL && std::is_same_v<TypeParam, toy::ToyDecoder>)
                move = RESTART;
            flushed = move == FULL_FLUSH  ? CoderResult::overflow()
                      : move == BAD_FLUSH ? CoderResult::malformed(3)
                                          : CoderResult::underflow();
            if (NEXT[state][move] == THROWS) {
                const std::string name = move == TRIAL   ? "canEncode"
                                         : move >= FLUSH ? "flush"
                                                         : TypeParam::STEP;
                this->expect_refused([&] { make(move); }, name + ": illegal state");
            } else {
                ASSERT_EQ(make(move), state == END ? flushed : CoderResult());
                state = NEXT[state][move];
            }
        }
    }
}

// --- Steps ----------------------------------------------------------------------------

TYPED_TEST(CodingEngine, Steps)
{
    constexpr auto full = CoderResult::overflow();
    constexpr auto done = CoderResult::underflow();
    constexpr auto malformed = CoderResult::malformed;
    struct Case {
        const char* input;
        bool last;
        std::size_t capacity;
        Action on_malformed, on_unmappable;
        CoderResult result;
        const char* output;
        std::size_t consumed;
    };
    const Case cases[] = {
        {"abc", true, 2, REPORT, REPORT, full, "ab", 2},
        {"a%b", false, 9, REPORT, REPORT, done, "a", 1},
        {"a%b", true, 9, REPORT, REPORT, malformed(2), "a", 1},
        {"a(", true, 3, REPLACE, REPORT, full, "a", 1},
        {"a%bc!d", false, 9, REPORT, IGNORE, malformed(3), "a", 1},
        {"a%bc!d", false, 9, REPLACE, REPORT, done, "a<?><?>d", 6},
        {"a#b", false, 9, IGNORE, REPORT, CoderResult::unmappable(1), "a", 1},
        {"a#b", false, 9, REPORT, REPLACE, done, "a<?>b", 3},
        {"!#", false, 9, REPLACE, IGNORE, done, "<?>", 2},
        {"a!b", false, 3, REPLACE, REPORT, full, "a", 1},  // no part of a replacement
        {"a!b", false, 4, REPLACE, REPORT, full, "a<?>", 2},
    };
    this->replace_with("<?>");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.input);
        this->m_coder.reset()
            .onMalformedInput(c.on_malformed)
            .onUnmappableCharacter(c.on_unmappable);
        EXPECT_EQ(this->step(c.input, c.last, c.capacity), c.result);
        EXPECT_EQ(plain(this->m_output), c.output);
        EXPECT_EQ(this->m_in.position(), c.consumed);
    }
}

TYPED_TEST(CodingEngine, ErrorsOfSteps)
{
    auto& coder = this->m_coder;
    const std::string prefix = TypeParam::STEP + std::string(": unexpected buffer ");
    const auto step = [&] { this->step("a", true); };
    coder.on_step = [](auto&, auto&) -> CoderResult { throw kiv::BufferOverflowError(); };
    this->expect_refused(step, prefix + "overflow");
    EXPECT_TRUE(this->flush().isUnderflow());  // the state is END all the same
    coder.reset();
    coder.on_step = [](auto&, auto&) -> CoderResult {
        throw kiv::BufferUnderflowError();
    };
    this->expect_refused(step, prefix + "underflow");
    EXPECT_THROW(this->all("a"), kiv::CoderMalfunctionError);

    // A fault of no length would be met for ever, one of too many passes the limit.
    coder.onMalformedInput(REPLACE).onUnmappableCharacter(REPLACE);
    for (const CoderResult fault : {CoderResult::malformed(0), CoderResult::malformed(2),
                                    CoderResult::unmappable(2)}) {
        coder.on_step = [fault](auto&, auto&) { return fault; };
        EXPECT_THROW(this->all("a"), kiv::CoderMalfunctionError);
    }
    coder.on_step = [](auto&, auto&) { return CoderResult(CoderResult::Kind{9}, 1); };
    coder.onUnmappableCharacter(kiv::CodingErrorAction::REPORT);
    EXPECT_THROW(this->all("a"), kiv::CharacterCodingError);
}

// --- Whole buffers --------------------------------------------------------------------

// The room that steps are given: the product is cut, then doubled and one added.
TYPED_TEST(CodingEngine, WholeBuffersGrow)
{
    std::vector<std::size_t> sizes;
    TypeParam coder(toy::charset(), 0.1F);
    coder.on_step = [&](auto& in, auto& out) {
        sizes.push_back(out.limit());
        return toy::toy_step(in, out);
    };
    const std::vector<typename TypeParam::In> input(19, 'x');
    Buffer<const typename TypeParam::In> in(input.data(), input.size());
    EXPECT_EQ(plain(coder.convert(in)), std::string(19, 'x'));
    EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 3, 7, 15, 31}));
}

TYPED_TEST(CodingEngine, WholeBuffersAreResetAndFlushed)
{
    auto& coder = this->m_coder;
    this->step("ab", false);
    EXPECT_EQ(this->all(""), "");  // nothing to do leaves the coder alone
    EXPECT_EQ(coder.log, "");
    EXPECT_NO_THROW(this->step("ab", false));

    std::string trailer = "zyx";  // what a flush writes, a unit at a time
    coder.on_flush = [&](auto& out) {
        for (; !trailer.empty(); trailer.pop_back()) {
            if (!out.hasRemaining())
                return CoderResult::overflow();
            out.put(static_cast<unsigned char>(trailer.back()));
        }
        return CoderResult::underflow();
    };
    coder.log.clear();
    EXPECT_EQ(this->all("a(b"), "a[]xyz");
    EXPECT_EQ(coder.log, "reset ");
    EXPECT_EQ(this->m_in.position(), 3u);
    EXPECT_THROW(this->step("", true), std::logic_error);  // the state is FLUSHED
    EXPECT_THROW(this->all("ab%cd!"), kiv::MalformedInputError);
    EXPECT_EQ(this->m_in.position(), 2u);
    EXPECT_THROW(this->all("a#"), kiv::UnmappableCharacterError);
    EXPECT_EQ(this->m_in.position(), 1u);
    coder.on_flush = [](auto&) { return CoderResult::malformed(9); };
    EXPECT_THROW(this->all("a"), kiv::MalformedInputError);
}

}  // namespace
