// What only encoders do: replacements that must decode, default-ignorable
// characters, trials, help for surrogates; and the layout of the coding classes.

#include <array>
#include <bit>
#include <ios>
#include <stdexcept>
#include <string>
#include <tuple>

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
    const auto& log = toy::charset()->last_decoder.load()->log;
    EXPECT_TRUE(encoder.isLegalReplacement("longer than max is still legal"));
    for (const char* bad : {"!", "a#", "%xy", "("}) {  // the last is unfinished
        EXPECT_FALSE(encoder.isLegalReplacement(bad)) << bad;
        EXPECT_EQ(what_of<std::invalid_argument>([&] { encoder.replaceWith(bad); }),
                  "CharsetEncoder::replaceWith");
    }
    EXPECT_EQ(encoder.replacement(), "(x");
    // The decoder is kept, and reset for each check.
    EXPECT_EQ(toy::charset()->decoders, decoders);
    EXPECT_TRUE(log.starts_with("malformed2 unmappable2 reset reset reset ")) << log;

    EXPECT_THROW(ToyEncoder(toy::charset(), 1, 3, "!"), std::invalid_argument);
    for (const char* bad : {"\x80", "??"})
        EXPECT_THROW(Charset::US_ASCII->newEncoder()->replaceWith(bad),
                     std::invalid_argument);
}

// --- Default-ignorable characters -----------------------------------------------------

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
    EXPECT_EQ(Charset::ISO_8859_1->encode(text), "a\255bc");  // it has the soft hyphen

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
    EXPECT_FALSE(Charset::US_ASCII->newEncoder()->canEncode(u'\u00E9'));
    EXPECT_FALSE(Charset::UTF_8->newEncoder()->canEncode(char16_t{0xD83D}));

    ToyEncoder encoder(toy::charset());
    encoder.onMalformedInput(IGNORE).onUnmappableCharacter(REPLACE);
    const auto can_encode = [&](const ustring& text) {
        encoder.log.clear();
        return encoder.canEncode(text);
    };
    const auto expect_untouched = [&] {
        EXPECT_EQ(encoder.malformedInputAction(), IGNORE);
        EXPECT_EQ(encoder.unmappableCharacterAction(), REPLACE);
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
    const auto throwing = [&](auto error) {
        encoder.on_step = [=](auto&, auto&) -> CoderResult { throw error; };
    };
    throwing(kiv::CharacterCodingError("of a derived coder"));
    EXPECT_FALSE(can_encode(u"a"_us));
    expect_untouched();
    // Errors that are not about coding pass, stream failures among them.
    throwing(std::ios_base::failure("other"));
    EXPECT_THROW(can_encode(u"a"_us), std::ios_base::failure);
    expect_untouched();
}

// --- Help for conversion steps --------------------------------------------------------

// Every pair of units at the edges of the ranges, and each unit alone.
TEST(CharsetEncoder, Surrogates)
{
    constexpr auto untouched = CoderResult::unmappable(77);
    constexpr auto malformed = CoderResult::malformed(1);
    constexpr char16_t edges[] = {0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000};
    for (const char16_t unit : edges)
        for (const char16_t next : edges)
            for (const int size : {1, 2}) {
                SCOPED_TRACE(testing::PrintToString(std::tuple(unit, next, size)));
                const char16 text[] = {unit, next};
                const char16* const end = text + size;
                const bool high = unit >> 10 == 0x36;
                const bool cut = high && size == 1;
                const bool pair = high && size == 2 && next >> 10 == 0x37;
                const char16* p = text + 1;
                CoderResult result = untouched;
                const char32_t cp = ToyEncoder::fetchSurrogatePair(unit, p, end, &result);
                EXPECT_EQ(
                    cp, pair ? 0x10000u + (unit - 0xD800u) * 0x400 + next - 0xDC00u : 0u);
                EXPECT_EQ(result, pair || cut ? untouched : malformed);
                EXPECT_EQ(p, high ? end : text + 1);
                EXPECT_EQ(ToyEncoder::unmappableCodeUnit(text, end),
                          pair                 ? CoderResult::unmappable(2)
                          : cut                ? CoderResult::underflow()
                          : unit >> 11 == 0x1B ? malformed
                                               : CoderResult::unmappable(1));
            }
}

// --- Layout ---------------------------------------------------------------------------

#if defined(__x86_64__) && defined(__GNUC__)

// Whether the functions follow each other in the table of virtual functions, as the
// Itanium C++ ABI lays out pointers to members.
template <class... Functions>
bool in_order(std::ptrdiff_t first, Functions... functions)
{
    using Words = std::array<std::ptrdiff_t, 2>;
    constexpr std::ptrdiff_t SIZE = sizeof(void*);
    return ((std::bit_cast<Words>(functions)[0] == 1 + SIZE * first++) && ...);
}

// A virtual destructor takes two places.
struct DecoderOrder : kiv::CharsetDecoder {
    using T = DecoderOrder;
    static bool holds()
    {
        return in_order(2, &T::malformedInputAction, &T::unmappableCharacterAction,
                        &T::isAutoDetecting, &T::isCharsetDetected, &T::detectedCharset,
                        &T::implReplaceWith, &T::implOnMalformedInput,
                        &T::implOnUnmappableCharacter, &T::implFlush, &T::implReset,
                        &T::decodeLoop);
    }
};

struct EncoderOrder : kiv::CharsetEncoder {
    using T = EncoderOrder;
    static bool holds()
    {
        return in_order(
            2, static_cast<bool (T::*)(kiv::basic_string_ref<char16>)>(&T::canEncode),
            static_cast<bool (T::*)(char16)>(&T::canEncode), &T::implReplaceWith,
            &T::implOnMalformedInput, &T::implOnUnmappableCharacter, &T::implFlush,
            &T::implReset, &T::encodeLoop);
    }
};

// Coders of others are compiled against the order: it may only grow at the end.
TEST(CodingClasses, OrderOfVirtualFunctions)
{
    using Decode = ustring (Charset::*)(kiv::basic_string_ref<char>) const;
    using Encode = std::string (Charset::*)(kiv::basic_string_ref<char16>) const;
    EXPECT_TRUE(DecoderOrder::holds());
    EXPECT_TRUE(EncoderOrder::holds());
    EXPECT_TRUE(in_order(0, &Charset::newDecoder, &Charset::newEncoder,
                         static_cast<Decode>(&Charset::decode),
                         static_cast<Encode>(&Charset::encode)));
}

#endif

}  // namespace
