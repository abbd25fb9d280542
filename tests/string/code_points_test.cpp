#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/character.h>
#include <kiv/code_points.h>

#ifdef KIV_TEST_ICU
    #include <unicode/utf16.h>
    #include <unicode/utf8.h>
#endif

namespace {

using namespace kiv;

static_assert(std::ranges::view<code_point_range<char16>>);
static_assert(std::ranges::bidirectional_range<code_point_range<char>>);
static_assert(std::ranges::common_range<code_point_range<char8_t>>);
static_assert(code_points(u"a\U0001F600"_usv).well_formed());

template <class Range>
std::u32string values(const Range& range)
{
    return {range.begin(), range.end()};
}

// There and back gives the same, each begins where the one before ends, and a fault
// is exactly what does not have a value of its own.
template <class Range>
void expect_whole(const Range& range, std::size_t size)
{
    const std::vector<code_point> there(range.begin(), range.end());
    std::vector<code_point> back;
    for (auto i = range.end(); i != range.begin();)
        back.push_back(*--i);
    std::reverse(back.begin(), back.end());
    EXPECT_TRUE(back == there);
    std::size_t offset = 0;
    for (const code_point cp : there) {
        EXPECT_EQ(cp.offset(), offset);
        offset += cp.size();
        EXPECT_TRUE(cp.well_formed() || cp == U'\uFFFD');
    }
    EXPECT_EQ(offset, size);
    EXPECT_EQ(range.well_formed(),
              std::all_of(there.begin(), there.end(),
                          [](code_point cp) { return cp.well_formed(); }));
}

// Table 3-8 of the Unicode Standard and its neighbours, and where a fault ends.
TEST(CodePoints, FaultsOfUtf8)
{
    EXPECT_EQ(values(code_points("\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41")),
              U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\x41");
    EXPECT_EQ(values(code_points("\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41")),
              U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\x41");
    EXPECT_EQ(values(code_points("\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42")),
              U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\x41\uFFFD\uFFFD\x42");
    EXPECT_EQ(values(code_points("\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41")),
              U"\uFFFD\uFFFD\uFFFD\uFFFD\x41");
    const auto in_text = code_points(u8"a\u00E4\uFFFD");
    EXPECT_TRUE(in_text.well_formed() && values(in_text) == U"a\u00E4\uFFFD");
    EXPECT_TRUE(code_points("").empty() && values(code_points("")).empty());
}

// Every boundary of the encoding forms beside every other, in all texts of up to four
// units.
template <class Unit, std::size_t N, class Model>
void all_short_texts(const std::array<unsigned, N>& units, Model model)
{
    for (std::size_t length = 1; length <= 4; ++length)
        for (std::size_t i = 0; i < static_cast<std::size_t>(std::pow(N, length)); ++i) {
            std::basic_string<Unit> text;
            for (std::size_t rest = i; text.size() < length; rest /= N)
                text += static_cast<Unit>(static_cast<char16_t>(units[rest % N]));
            const auto range = code_points(text);
            expect_whole(range, length);
            model(text, values(range));
            if (testing::Test::HasFailure())
                FAIL() << testing::PrintToString(values(range));
        }
}

TEST(CodePoints, AllShortTextsOfUtf8)
{
    constexpr std::array<unsigned, 22> BYTES{
        0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2,
        0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEF, 0xF0, 0xF3, 0xF4, 0xF5, 0xFF};
    all_short_texts<char>(BYTES, [](const std::string& text, const std::u32string& got) {
#ifdef KIV_TEST_ICU
        std::u32string want;
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
        for (int i = 0; i < static_cast<int>(text.size());) {
            UChar32 cp = 0;
            U8_NEXT_OR_FFFD(bytes, i, static_cast<int>(text.size()), cp);
            want += static_cast<char32_t>(cp);
        }
        EXPECT_EQ(got, want);
#else
        EXPECT_LE(got.size(), text.size());
#endif
    });
}

TEST(CodePoints, AllShortTextsOfUtf16)
{
    constexpr std::array<unsigned, 9> UNITS{0,      0x7F,   0xD7FF, 0xD800, 0xDBFF,
                                            0xDC00, 0xDFFF, 0xE000, 0xFFFF};
    all_short_texts<char16>(UNITS, [](const ustring& text, const std::u32string& got) {
        std::u32string want;
        for (std::size_t i = 0; i < text.size();) {
            const char32_t cp = Char16::codePointAt(text, i);
            i += Char16::charCount(cp);
            want += cp >= 0xD800 && cp <= 0xDFFF ? U'\uFFFD' : cp;
        }
        EXPECT_EQ(got, want);
    });
}

}  // namespace
