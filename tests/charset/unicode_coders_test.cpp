// UTF-8, CESU-8 and UTF-16 in both byte orders, against the written model.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <gtest/gtest.h>
#include <kiv/character.h>
#include <kiv/charset.h>

#include "charset/unicode_model.h"
#include "support/coder_check.h"

namespace {

using namespace kiv::literals;
using kiv::Charset;
using kiv::CoderResult;
using support::DecodeItems;
using support::Effort;
using support::EncodeItems;

std::u16string to_u16(const kiv::ustring& text)
{
    std::u16string units;
    for (const kiv::char16 c : text)
        units.push_back(kiv::Char16::toCodeUnit(c));
    return units;
}

kiv::ustring to_ustring(const std::u16string& text)
{
    return kiv::ustring(text.begin(), text.end());
}

struct UnicodeCharset {
    const Charset* charset;
    std::string (*encode_point)(char32_t);
    DecodeItems (*decode)(const std::string&);
};

const UnicodeCharset CHARSETS[] = {
    {Charset::UTF_8, model::utf8,
     [](const std::string& bytes) { return model::decode_utf8(bytes, false); }},
    {Charset::CESU_8, model::cesu8,
     [](const std::string& bytes) { return model::decode_utf8(bytes, true); }},
    {Charset::UTF_16BE,
     [](char32_t cp) { return model::utf16_bytes(model::utf16(cp), false); },
     [](const std::string& bytes) { return model::decode_utf16(bytes, false); }},
    {Charset::UTF_16LE,
     [](char32_t cp) { return model::utf16_bytes(model::utf16(cp), true); },
     [](const std::string& bytes) { return model::decode_utf16(bytes, true); }},
};

// --- Every code point ----------------------------------------------------------------

TEST(UnicodeCoders, EveryCodePointRoundTrips)
{
    for (const UnicodeCharset& row : CHARSETS) {
        SCOPED_TRACE(kiv::cvtstr<std::string>(row.charset->name()));
        const bool utf16 = row.encode_point(0).size() == 2;  // refuses to read U+FFFE
        std::u16string text;
        std::string bytes;
        for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
            if ((cp >= 0xD800 && cp <= 0xDFFF) || (cp == 0xFFFE && utf16))
                continue;
            text += model::utf16(cp);
            bytes += row.encode_point(cp);
        }
        // By coders that report every fault.
        EXPECT_TRUE(row.charset->newEncoder()->encode(to_ustring(text)) == bytes);
        EXPECT_TRUE(to_u16(row.charset->newDecoder()->decode(bytes)) == text);
    }
}

// --- The exact length of every fault ---------------------------------------------------

struct FaultCase {
    const Charset* charset;
    std::string bytes;
    std::string lengths;  // of the faults, a digit each
    const char* why;
};

// The model must agree with these before it is trusted with more.
TEST(UnicodeCoders, LengthsOfFaults)
{
    using C = Charset;
    const std::string zero(1, '\0');
    const FaultCase cases[] = {
        {C::UTF_8, "\xC3\x28", "2", "the offending byte belongs to the fault"},
        {C::UTF_8, "\xE2\x28\x41", "2", "and only the bytes up to it"},
        {C::UTF_8, "\xE2\x82\x28", "3", "second continuation byte"},
        {C::UTF_8, "\xF0\x9F\x98\x28", "4", "third continuation byte"},
        {C::UTF_8, "\xED\xA0\x80", "3", "an encoded surrogate"},
        {C::UTF_8, "\xC0\x80", "2", "overlong"},
        {C::UTF_8, "\xE0\x9F\xBF", "3", "overlong"},
        {C::UTF_8, "\xF0\x8F\xBF\xBF", "4", "overlong"},
        {C::UTF_8, "\xF4\x90\x80\x80", "4", "above U+10FFFF"},
        {C::UTF_8, "\xF8\x88\x80\x80\x80", "11111", "no sequence begins so"},
        {C::UTF_8, "\xF0\x41\x42", "3", "all that the end has left"},
        {C::UTF_8, "\xE2\x28", "2", "all that the end has left"},
        {C::UTF_8, "\xE2\x82", "2", "cut off by the end"},
        {C::CESU_8, "\xF0\x9F\x98\x80", "1111", "no sequences of four bytes"},
        {C::CESU_8, "\xED\xA0\x80", "", "a surrogate by itself is passed on"},
        {C::CESU_8, "\xE0\x9F\xBF\xC1\xBF", "32", "overlong"},
        {C::CESU_8, "\xED\xA0", "2", "cut off by the end"},
        {C::UTF_16BE, "\xD8" + zero + "A", "3", "all that the end has left"},
        {C::UTF_16BE, "\xD8" + zero + zero + "A", "2", "the high surrogate only"},
        {C::UTF_16BE, "\xDC" + zero, "2", "low surrogate"},
        {C::UTF_16BE, "\xFF\xFE", "2", "a mark in the wrong order"},
        {C::UTF_16LE, "\xFE\xFF", "2", "a mark in the wrong order"},
        {C::UTF_16LE, "\xFF\xFE", "", "a mark is a character"},
        {C::UTF_16LE, "A" + zero + "B", "1", "odd byte"},
    };
    for (const FaultCase& c : cases) {
        SCOPED_TRACE(c.why);
        const UnicodeCharset& row =
            *std::find_if(std::begin(CHARSETS), std::end(CHARSETS),
                          [&](auto& r) { return r.charset == c.charset; });
        const DecodeItems items = row.decode(c.bytes);
        std::string lengths;
        for (const support::DecodeItem& item : items)
            if (item.fault.isError())
                lengths += std::to_string(item.fault.length());
        EXPECT_EQ(lengths, c.lengths) << "the model";
        support::check_decoder(c.charset, items);
        // The same bytes in the midst of text are cut as the text decides.
        support::check_decoder(c.charset,
                               row.decode(c.charset->encode(u"ab"_us) + c.bytes +
                                          c.charset->encode(u"cd\u00E9\u20AC"_us)));
    }
}

// All sequences of up to four bytes that stand for every class of byte.
TEST(UnicodeCoders, EverySequenceOfByteClasses)
{
    constexpr unsigned char CLASSES[] = {0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF,
                                         0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xED, 0xEE, 0xEF,
                                         0xF0, 0xF1, 0xF4, 0xF5, 0xF8, 0xFF};
    constexpr std::size_t N = std::size(CLASSES);
    for (const bool cesu : {false, true}) {
        const auto decoder = (cesu ? Charset::CESU_8 : Charset::UTF_8)->newDecoder();
        decoder->onMalformedInput(kiv::CodingErrorAction::REPLACE);
        for (std::size_t number = 0; number < N * N * N * N; ++number) {
            std::string bytes;
            for (std::size_t rest = number, k = 0; k < 4; ++k, rest /= N)
                bytes.push_back(static_cast<char>(CLASSES[rest % N]));
            std::u16string want;
            for (const auto& item : model::decode_utf8(bytes, cesu))
                want += item.fault.isError() ? u"\uFFFD" : item.out;
            ASSERT_EQ(to_u16(decoder->decode(bytes)), want) << number;
        }
    }
}

// --- Cuts, capacities and actions over mixed input

// Bytes that are mostly text of one script, with faults strewn in.
std::string noisy_bytes(const UnicodeCharset& row, std::mt19937& random, std::size_t size)
{
    constexpr char32_t SCRIPTS[][2] = {{0x20, 0x7E},       {0xA0, 0x17F},
                                       {0x400, 0x4FF},     {0x4E00, 0x9FFF},
                                       {0x1F300, 0x1F6FF}, {0, 0x10FFFF}};
    const auto below = [&random](std::size_t n) {
        return static_cast<std::size_t>(random() % n);
    };
    std::string bytes;
    const auto* script = SCRIPTS[below(std::size(SCRIPTS))];
    while (bytes.size() < size) {
        if (below(40) == 0)
            script = SCRIPTS[below(std::size(SCRIPTS))];
        const auto cp =
            static_cast<char32_t>(script[0] + below(script[1] - script[0] + 1));
        if (!(cp >= 0xD800 && cp <= 0xDFFF))
            bytes += row.encode_point(below(6) == 0 ? U' ' : cp);
        if (below(30) == 0)
            bytes.push_back(static_cast<char>(below(256)));
        if (below(30) == 0)
            bytes.pop_back();
    }
    return bytes;
}

TEST(UnicodeCoders, NoisyInputInPieces)
{
    std::mt19937 random(20240611);
    for (const UnicodeCharset& row : CHARSETS) {
        SCOPED_TRACE(kiv::cvtstr<std::string>(row.charset->name()));
        for (int round = 0; round < 4; ++round)
            support::check_decoder(row.charset, row.decode(noisy_bytes(row, random, 40)));
        for (int round = 0; round < 150; ++round)
            support::check_decoder(row.charset, row.decode(noisy_bytes(row, random, 300)),
                                   Effort::QUICK);
    }
}

TEST(UnicodeCoders, EncodingInPieces)
{
    std::mt19937 random(20240612);
    constexpr char16_t UNITS[] = {u'a',   0xD83D, 0xDE00, 0x7F,   0x80,   0x7FF,
                                  0x800,  0x4E00, 0xD7FF, 0xD800, 0xDBFF, 0xDC00,
                                  0xDFFF, 0xE000, 0xFFFE, 0xFFFF};
    for (const UnicodeCharset& row : CHARSETS) {
        SCOPED_TRACE(kiv::cvtstr<std::string>(row.charset->name()));
        for (int round = 0; round < 80; ++round) {
            const bool small = round < 20;
            std::u16string units;
            const std::size_t kinds = 1 + random() % std::size(UNITS);
            for (int i = 0; i < (small ? 1 + round : 200); ++i)
                units.push_back(UNITS[random() % kinds]);
            support::check_encoder(row.charset, model::encode(units, row.encode_point),
                                   small ? Effort::FULL : Effort::QUICK);
        }
    }
}

// --- What the charsets are made with

TEST(UnicodeCoders, RatiosAndReplacements)
{
    struct Row {
        const Charset* charset;
        float chars_per_byte, bytes_per_char;
        unsigned max_bytes;
        const char* replacement;
    };
    const Row rows[] = {{Charset::UTF_8, 1.0F, 1.1F, 3, "?"},
                        {Charset::CESU_8, 1.0F, 1.1F, 3, "?"},
                        {Charset::UTF_16BE, 0.5F, 2.0F, 2, "\xFF\xFD"},
                        {Charset::UTF_16LE, 0.5F, 2.0F, 2, "\xFD\xFF"},
                        {Charset::US_ASCII, 1.0F, 1.0F, 1, "?"},
                        {Charset::ISO_8859_1, 1.0F, 1.0F, 1, "?"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(kiv::cvtstr<std::string>(row.charset->name()));
        const auto decoder = row.charset->newDecoder();
        const auto encoder = row.charset->newEncoder();
        EXPECT_EQ(decoder->averageCharsPerByte(), row.chars_per_byte);
        EXPECT_EQ(decoder->maxCharsPerByte(), 1u);
        EXPECT_EQ(decoder->replacement(), u"\uFFFD"_us);
        EXPECT_EQ(encoder->averageBytesPerChar(), row.bytes_per_char);
        EXPECT_EQ(encoder->maxBytesPerChar(), row.max_bytes);
        EXPECT_EQ(encoder->replacement(), row.replacement);
        EXPECT_EQ(decoder->charset(), row.charset);
        EXPECT_EQ(encoder->charset(), row.charset);
        EXPECT_EQ(row.charset->encode(char16_t{0xDC00}), row.replacement);
    }
}

// Real text in many scripts, there and back.
TEST(UnicodeCoders, RealText)
{
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KIV_TEXT_DIR)) {
        if (entry.path().extension() != ".txt")
            continue;
        SCOPED_TRACE(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const kiv::ustring text = Charset::UTF_8->newDecoder()->decode(bytes);
        EXPECT_TRUE(Charset::UTF_8->encode(text) == bytes);
        for (const UnicodeCharset& row : CHARSETS)
            EXPECT_TRUE(row.charset->decode(row.charset->encode(text)) == text);
        ++files;
    }
    EXPECT_GE(files, 12);
}

}  // namespace
