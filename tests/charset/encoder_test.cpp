// What only encoders do: replacements that must decode, default-ignorable
// characters, trials, help for surrogates.

#include <ios>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <kiv/character.h>
#include <kiv/charset.h>

#include "charset/toy_charset.h"
#include "companion/unicode_data.h"
#include "support/errors.h"

namespace {

using namespace kiv::literals;
using kiv::Buffer;
using kiv::char16;
using kiv::Charset;
using kiv::CoderResult;
using kiv::ustring;
using kivtest::what_of;
using toy::ToyEncoder;
using enum kiv::CodingErrorAction;

TEST(CharsetEncoder, ReplacementMustDecode)
{
    ToyEncoder encoder(toy::charset(), 1, 3, "(x");
    const int decoders = toy::charset()->decoders;
    EXPECT_TRUE(encoder.isLegalReplacement("longer than max is still legal"));
    for (const char* bad : {"!", "a#", "%xy", "("})  // the last is unfinished
        EXPECT_EQ(what_of<std::invalid_argument>([&] { encoder.replaceWith(bad); }),
                  "CharsetEncoder::replaceWith");
    EXPECT_EQ(encoder.replacement(), "(x");
    EXPECT_EQ(toy::charset()->decoders, decoders);  // it is kept
    EXPECT_THROW(ToyEncoder(toy::charset(), 1, 3, "!"), std::invalid_argument);
}

// --- Default-ignorable characters -----------------------------------------------------

// The set is that of Unicode 13; one code point of it was assigned later.
TEST(CharsetEncoder, EveryCodePointThatIsUnmappable)
{
    const auto ignorable = kivtest::read_properties(
        "17.0.0/binary_properties.txt")["Default_Ignorable_Code_Point"];
    ASSERT_TRUE(ignorable.at(0x180F));
    const std::pair<const Charset*, char32_t> charsets[] = {{Charset::US_ASCII, 0x80},
                                                            {Charset::ISO_8859_1, 0x100}};
    for (const auto& [charset, mapped] : charsets) {
        const auto encoder = charset->newEncoder();
        for (char32_t cp = 0; cp < kivtest::CODE_SPACE; ++cp) {
            if (cp >= 0xD800 && cp <= 0xDFFF)
                continue;
            ustring text;
            const std::size_t units = kiv::Char16::toChars(cp, text);
            Buffer<const char16> in(text.data(), text.size());
            Buffer<unsigned char> none(nullptr, 0);
            const bool dropped = cp >= mapped && ignorable.at(cp) && cp != 0x180F;
            ASSERT_EQ(encoder->encode(in, none, false),
                      cp < mapped ? CoderResult::overflow()
                      : dropped   ? CoderResult::underflow()
                                  : CoderResult::unmappable(static_cast<unsigned>(units)))
                << std::hex << static_cast<std::uint32_t>(cp);
            ASSERT_EQ(in.position(), dropped ? units : 0);
        }
    }
}

TEST(CharsetEncoder, DropsDefaultIgnorablesWhateverTheAction)
{
    const auto encoder = Charset::US_ASCII->newEncoder();
    for (const auto action : {IGNORE, REPLACE, REPORT}) {
        encoder->onUnmappableCharacter(action).onMalformedInput(action);
        EXPECT_EQ(encoder->encode(u"a\u00ADb\U000E0FFFc\u200B"_usv), "abc");
    }
    // Only what is unmappable is dropped, not what a step finds malformed.
    ToyEncoder toy(toy::charset());
    toy.on_step = [](auto&, auto&) { return CoderResult::malformed(1); };
    EXPECT_THROW(toy.encode(u"\u200B"_usv), kiv::MalformedInputError);
}

// --- Trials ---------------------------------------------------------------------------

// Whatever a trial met, the actions are as before and the state is RESET.
TEST(CharsetEncoder, CanEncodeLeavesNoTrace)
{
    EXPECT_TRUE(Charset::ISO_8859_1->newEncoder()->canEncode(u'\u00E9'));
    EXPECT_FALSE(Charset::UTF_8->newEncoder()->canEncode(char16_t{0xD83D}));

    ToyEncoder encoder(toy::charset());
    encoder.onMalformedInput(IGNORE).onUnmappableCharacter(REPLACE);
    const auto can_encode = [&](const ustring& text) {
        encoder.log.clear();
        return encoder.canEncode(text);
    };
    const auto expect_untouched = [&] {
        EXPECT_EQ(encoder.log,
                  "malformed2 unmappable2 reset reset malformed0 unmappable1 ");
        EXPECT_TRUE(encoder.canEncode(ustring()));
    };
    EXPECT_TRUE(can_encode(u"a"_us));
    expect_untouched();
    for (const ustring& text : {u"a!"_us, u"a#"_us, u"a("_us}) {
        EXPECT_FALSE(can_encode(text));
        expect_untouched();
    }
    // Errors that are not about coding pass, stream failures among them.
    encoder.on_step = [](auto&, auto&) -> CoderResult {
        throw std::ios_base::failure("other");
    };
    EXPECT_THROW(can_encode(u"a"_us), std::ios_base::failure);
    expect_untouched();
}

// --- Help for conversion steps --------------------------------------------------------

// Every pair of units at the edges of the ranges, and each unit alone.
TEST(CharsetEncoder, Surrogates)
{
    constexpr auto untouched = CoderResult::unmappable(77);
    constexpr auto malformed = CoderResult::malformed(1);
    constexpr char16_t edges[] = {0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0};
    for (const char16_t unit : edges)
        for (const char16_t next : edges) {  // 0: there is none
            SCOPED_TRACE(testing::PrintToString(std::pair(unit, next)));
            const char16 text[] = {unit, next};
            const char16* const end = text + (next != 0 ? 2 : 1);
            const bool high = unit >> 10 == 0x36;
            const bool cut = high && next == 0;
            const bool pair = high && next >> 10 == 0x37;
            const char16* p = text + 1;
            CoderResult result = untouched;
            const char32_t cp = ToyEncoder::fetchSurrogatePair(unit, p, end, &result);
            EXPECT_EQ(cp, pair ? kiv::Char16::toCodePoint(unit, next) : 0u);
            EXPECT_EQ(result, pair || cut ? untouched : malformed);
            EXPECT_EQ(p, high ? end : text + 1);
            EXPECT_EQ(ToyEncoder::unmappableCodeUnit(text, end),
                      pair                 ? CoderResult::unmappable(2)
                      : cut                ? CoderResult::underflow()
                      : unit >> 11 == 0x1B ? malformed
                                           : CoderResult::unmappable(1));
        }
}

}  // namespace
