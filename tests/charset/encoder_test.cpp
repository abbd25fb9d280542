// What only encoders do: replacements that must decode, default-ignorable
// characters, trials, help for surrogates; and the layout of the coding classes.

#include <array>
#include <bit>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/character.h>
#include <kiv/charset.h>

#include "charset/toy_charset.h"
#include "companion/unicode_data.h"

namespace {

using namespace kiv::literals;
using kiv::Buffer;
using kiv::char16;
using kiv::Charset;
using kiv::CoderResult;
using kiv::ustring;
using toy::expect_error;
using toy::ToyEncoder;
using enum kiv::CodingErrorAction;

TEST(CharsetEncoder, ReplacementMustDecode)
{
    const int before = toy::charset()->decoders;
    ToyEncoder encoder(toy::charset(), "(x");
    EXPECT_EQ(toy::charset()->decoders, before + 1);
    EXPECT_EQ(encoder.replacement(), "(x");
    for (const char* bad :
         {"!", "#", "a#", "%x", "%", "("}) {  // the last two are unfinished
        EXPECT_FALSE(encoder.isLegalReplacement(bad)) << bad;
        expect_error<std::invalid_argument>([&] { encoder.replaceWith(bad); },
                                            "CharsetEncoder::replaceWith");
        expect_error<std::invalid_argument>([&] { ToyEncoder(toy::charset(), bad); },
                                            "CharsetEncoder::replaceWith");
    }
    const int resets = toy::charset()->decoder_resets;
    EXPECT_TRUE(encoder.isLegalReplacement(""));
    EXPECT_EQ(toy::charset()->decoder_resets, resets + 1);  // the decoder that was kept
    EXPECT_TRUE(encoder.isLegalReplacement("longer than max is still legal"));
    EXPECT_EQ(encoder.replacement(), "(x");
    EXPECT_EQ(toy::charset()->decoders, before + 7);  // one for each encoder

    const auto ascii = Charset::US_ASCII->newEncoder();
    for (const char* bad : {"\x80", "??"})
        expect_error<std::invalid_argument>([&] { ascii->replaceWith(bad); },
                                            "CharsetEncoder::replaceWith");
}

// --- Default-ignorable characters
// -------------------------------------------------------

// The set is that of Unicode 13; one code point of it was assigned later.
TEST(CharsetEncoder, DropsDefaultIgnorables)
{
    const auto ignorable = kivtest::read_properties(
        "17.0.0/binary_properties.txt")["Default_Ignorable_Code_Point"];
    ASSERT_TRUE(ignorable.at(0x180F));
    const auto encoder = Charset::US_ASCII->newEncoder();
    for (char32_t cp = 0x80; cp < kivtest::CODE_SPACE; ++cp) {
        if (cp >= 0xD800 && cp <= 0xDFFF)
            continue;
        ustring text;
        const std::size_t units = kiv::Char16::toChars(cp, text);
        Buffer<const char16> in(text.data(), text.size());
        Buffer<unsigned char> none(nullptr, 0);
        const CoderResult result = encoder->encode(in, none, false);
        const bool dropped = ignorable.at(cp) && cp != 0x180F;
        ASSERT_EQ(result,
                  dropped ? CoderResult::underflow()
                          : CoderResult::unmappable(static_cast<std::uint32_t>(units)))
            << std::hex << static_cast<std::uint32_t>(cp);
        ASSERT_EQ(in.position(), dropped ? units : 0);
    }
}

TEST(CharsetEncoder, DropsDefaultIgnorablesWhateverTheAction)
{
    const ustring text = u"a\u00ADb\U000E0FFFc\u200B"_us;
    const auto encoder = Charset::US_ASCII->newEncoder();
    for (const auto action : {IGNORE, REPLACE, REPORT}) {
        encoder->onUnmappableCharacter(action).onMalformedInput(action);
        EXPECT_EQ(encoder->encode(text), "abc");
    }
    EXPECT_TRUE(encoder->canEncode(text));
    EXPECT_EQ(Charset::ISO_8859_1->encode(text),
              "a\xAD"
              "bc");  // it has the soft hyphen
    EXPECT_EQ(Charset::UTF_16BE->encode(char16(u'\u200B')), "\x20\x0B");

    // Only what is unmappable is dropped, not what a step finds malformed.
    ToyEncoder toy(toy::charset());
    toy.script.step = [](auto&, auto&) { return CoderResult::malformed(1); };
    EXPECT_THROW(toy.encode(u"\u200B"_usv), kiv::MalformedInputError);
}

// --- Trials
// -----------------------------------------------------------------------------

TEST(CharsetEncoder, CanEncode)
{
    const auto latin1 = Charset::ISO_8859_1->newEncoder();
    const auto ascii = Charset::US_ASCII->newEncoder();
    const auto utf_8 = Charset::UTF_8->newEncoder();
    utf_8->onMalformedInput(IGNORE).onUnmappableCharacter(REPLACE);
    EXPECT_TRUE(latin1->canEncode(u'\u00E9'));
    EXPECT_FALSE(ascii->canEncode(u'\u00E9'));
    EXPECT_FALSE(utf_8->canEncode(char16_t{0xD83D}));
    EXPECT_FALSE(utf_8->canEncode(char16_t{0xDE00}));
    EXPECT_TRUE(utf_8->canEncode(u"\U0001F600"_usv));
    EXPECT_TRUE(ascii->canEncode(ustring()));
    EXPECT_FALSE(ascii->canEncode(u"text\u20AC"_usv));
    EXPECT_EQ(utf_8->malformedInputAction(), IGNORE);
    EXPECT_EQ(utf_8->unmappableCharacterAction(), REPLACE);
    EXPECT_EQ(ascii->unmappableCharacterAction(), REPORT);
}

TEST(CharsetEncoder, CanEncodeLeavesNoTrace)
{
    ToyEncoder encoder(toy::charset());
    encoder.onMalformedInput(IGNORE).onUnmappableCharacter(REPLACE);
    const auto toy_step = encoder.script.step;
    const auto expect_untouched = [&] {
        EXPECT_EQ(encoder.malformedInputAction(), IGNORE);
        EXPECT_EQ(encoder.unmappableCharacterAction(), REPLACE);
        EXPECT_TRUE(encoder.script.log.ends_with("reset ")) << encoder.script.log;
        encoder.script.log.clear();
        encoder.script.step = toy_step;
        EXPECT_TRUE(encoder.canEncode(u'a'));  // the state is RESET
        encoder.script.log.clear();
    };
    for (const auto* text : {u"", u"a", u"a!", u"a#", u"a("}) {
        EXPECT_EQ(
            encoder.canEncode(ustring(text, text + std::u16string_view(text).size())),
            std::u16string_view(text).size() < 2);
        expect_untouched();
        // Whatever the coder was told during the trial, it was told to undo.
        EXPECT_EQ(encoder.encode(u"!#"_usv), "?");  // FLUSHED will do, too
        encoder.script.log.clear();
    }

    // Errors that are not about coding pass, iostream failures among them.
    encoder.reset();
    encoder.script.step = [&](auto&, auto&) -> CoderResult {
        EXPECT_EQ(encoder.malformedInputAction(), REPORT);
        EXPECT_EQ(encoder.unmappableCharacterAction(), REPORT);
        throw std::ios_base::failure("other");
    };
    EXPECT_THROW(encoder.canEncode(u'a'), std::ios_base::failure);
    expect_untouched();
    encoder.script.step = [](auto&, auto&) -> CoderResult { throw 42; };
    EXPECT_THROW(encoder.canEncode(u'a'), int);
    expect_untouched();
    encoder.script.step = [](auto&, auto&) -> CoderResult {
        throw kiv::BufferOverflowError();
    };
    EXPECT_THROW(encoder.canEncode(u'a'), kiv::CoderMalfunctionError);
    expect_untouched();
    encoder.script.step = [](auto&, auto&) -> CoderResult {
        throw kiv::CharacterCodingError("of a derived coder");
    };
    EXPECT_FALSE(encoder.canEncode(u'a'));
    expect_untouched();
}

// Hooks hear of both changes, the way there and the way back.
TEST(CharsetEncoder, CanEncodeTellsTheHooks)
{
    ToyEncoder encoder(toy::charset());
    encoder.onMalformedInput(IGNORE).onUnmappableCharacter(REPLACE);
    encoder.script.log.clear();
    encoder.canEncode(u'a');
    EXPECT_EQ(encoder.script.log,
              "malformed2 unmappable2 reset malformed0 unmappable1 reset ");
}

// --- Help for conversion steps
// ------------------------------------------------------------

TEST(CharsetEncoder, Surrogates)
{
    constexpr auto untouched = CoderResult::unmappable(77);
    struct Case {
        ustring units;
        char32_t pair;
        CoderResult pair_result;
        std::ptrdiff_t consumed;
        CoderResult unmappable;
    };
    const Case cases[] = {
        {u"\xD800\xDC00"_us, 0x10000, untouched, 2, CoderResult::unmappable(2)},
        {u"\xDBFF\xDFFF"_us, 0x10FFFF, untouched, 2, CoderResult::unmappable(2)},
        {u"\xD83D\xDE00x"_us, 0x1F600, untouched, 2, CoderResult::unmappable(2)},
        {u"\xD800"_us, 0, untouched, 1, CoderResult::underflow()},
        {u"\xDBFFx"_us, 0, CoderResult::malformed(1), 2, CoderResult::malformed(1)},
        {u"\xD800\xDBFF"_us, 0, CoderResult::malformed(1), 2, CoderResult::malformed(1)},
        {u"\xD800\xE000"_us, 0, CoderResult::malformed(1), 2, CoderResult::malformed(1)},
        {u"\xDC00"_us, 0, CoderResult::malformed(1), 1, CoderResult::malformed(1)},
        {u"\xDFFF\xDC00"_us, 0, CoderResult::malformed(1), 1, CoderResult::malformed(1)},
        {u"\xD7FF"_us, 0, CoderResult::malformed(1), 1, CoderResult::unmappable(1)},
        {u"\xE000\xDC00"_us, 0, CoderResult::malformed(1), 1, CoderResult::unmappable(1)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(static_cast<char16_t>(c.units[0])));
        const char16* const begin = c.units.data();
        const char16* const end = begin + c.units.size();
        const char16* p = begin + 1;
        CoderResult result = untouched;
        EXPECT_EQ(ToyEncoder::fetchSurrogatePair(*begin, p, end, &result), c.pair);
        EXPECT_EQ(result, c.pair_result);
        EXPECT_EQ(p - begin, c.consumed);
        EXPECT_EQ(ToyEncoder::unmappableCodeUnit(begin, end), c.unmappable);
    }
}

// --- Layout
// -----------------------------------------------------------------------------

#if defined(__x86_64__) && defined(__GNUC__)

// The place in the table of virtual functions, as the Itanium C++ ABI defines the
// first word of a pointer to a virtual member function.
template <class Function>
std::ptrdiff_t slot(Function function)
{
    const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(function);
    return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

template <class... Functions>
std::vector<std::ptrdiff_t> slots(Functions... functions)
{
    return {slot(functions)...};
}

struct DecoderSlots : kiv::CharsetDecoder {
    static std::vector<std::ptrdiff_t> get()
    {
        using T = DecoderSlots;
        return slots(&T::malformedInputAction, &T::unmappableCharacterAction,
                     &T::isAutoDetecting, &T::isCharsetDetected, &T::detectedCharset,
                     &T::implReplaceWith, &T::implOnMalformedInput,
                     &T::implOnUnmappableCharacter, &T::implFlush, &T::implReset,
                     &T::decodeLoop);
    }
};

struct EncoderSlots : kiv::CharsetEncoder {
    static std::vector<std::ptrdiff_t> get()
    {
        using T = EncoderSlots;
        return slots(
            static_cast<bool (T::*)(kiv::basic_string_ref<char16>)>(&T::canEncode),
            static_cast<bool (T::*)(char16)>(&T::canEncode), &T::implReplaceWith,
            &T::implOnMalformedInput, &T::implOnUnmappableCharacter, &T::implFlush,
            &T::implReset, &T::encodeLoop);
    }
};

// Coders of others are compiled against the order: it may only grow at the end.
TEST(CodingClasses, OrderOfVirtualFunctions)
{
    using Bytes = kiv::basic_string_ref<char>;
    using Text = kiv::basic_string_ref<char16>;
    // A virtual destructor takes two places.
    EXPECT_EQ(DecoderSlots::get(),
              (std::vector<std::ptrdiff_t>{2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(EncoderSlots::get(), (std::vector<std::ptrdiff_t>{2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(slots(&Charset::newDecoder, &Charset::newEncoder,
                    static_cast<ustring (Charset::*)(Bytes) const>(&Charset::decode),
                    static_cast<std::string (Charset::*)(Text) const>(&Charset::encode)),
              (std::vector<std::ptrdiff_t>{0, 1, 2, 3}));
}

#endif

}  // namespace
