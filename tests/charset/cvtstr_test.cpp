// Whole strings between bytes, UTF-16 and wide characters.

#include <clocale>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <kiv/charset.h>

namespace {

using namespace kiv::literals;
using kiv::Charset;
using kiv::cvtstr;
using kiv::ustring;

template <class Result, class CharT>
concept converts = requires(kiv::basic_string_ref<CharT> text)
{
    cvtstr<Result>(text);
};

static_assert(!converts<std::string, char> && !converts<ustring, kiv::char16> &&
              !converts<std::wstring, wchar_t> && !converts<std::u16string, char>);

TEST(Cvtstr, BytesAndUtf16GoThroughTheDefaultCharset)
{
    const Charset* charset = Charset::defaultCharset();
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    EXPECT_EQ(cvtstr<ustring>(bytes), charset->decode(bytes));
    const ustring text = u"a\u00E9\u20AC\xD800\0b\xDC00"_us;
    EXPECT_EQ(cvtstr<std::string>(text), charset->encode(text));
}

// --- Bytes and wide characters --------------------------------------------------------

TEST(Cvtstr, BytesToWideInUtf8)
{
    if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr)
        GTEST_SKIP() << "no such locale";
    using namespace std::string_literals;
    const std::pair<std::string, std::wstring> cases[] = {
        {"", L""},
        {"a\0b\0"s, L"a\0b\0"s},
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80!", L"\u00E9\u20AC\U0001F600!"},
        {"a\xFF\xFE.", L"a\uFFFD."},  // a run is replaced once
        {"\xFF\0\xFF"s, L"\uFFFD\0\uFFFD"s},
        {"a\xE2\x82", L"a\uFFFD"},          // an unfinished end
        {"a\xFF\xE2\x82", L"a\uFFFD"},      // belongs to the run before it
        {"\xE2\xC3\xA9", L"\uFFFD\u00E9"},  // the state is cleared after a fault
        {"\xED\xA0\x80|", L"\uFFFD|"},      // an encoded surrogate
    };
    for (const auto& [bytes, wide] : cases)
        EXPECT_EQ(cvtstr<std::wstring>(bytes), wide) << testing::PrintToString(bytes);
    // A view need not end with a NUL.
    EXPECT_EQ(cvtstr<std::wstring>(kiv::basic_string_ref<char>("\xC3\xA9", 1)),
              L"\uFFFD");
    // One for each, and what follows is whole.
    const std::wstring halves = {L'<', wchar_t(0xD800), wchar_t(0xDC00), 0, L'\u00E9'};
    EXPECT_EQ(cvtstr<std::string>(halves), "<?\?\0\xC3\xA9"s);
    EXPECT_EQ(cvtstr<std::string>(L"\U0001F600"), "\xF0\x9F\x98\x80");
    std::setlocale(LC_ALL, "C");
}

// The charset of this locale is ASCII.
TEST(Cvtstr, BytesAndWideInTheCLocale)
{
    std::string ascii;
    for (int i = 0; i < 128; ++i)
        ascii += static_cast<char>(i);
    const std::wstring wide(ascii.begin(), ascii.end());
    EXPECT_EQ(cvtstr<std::wstring>(ascii), wide);
    EXPECT_EQ(cvtstr<std::string>(wide), ascii);
    EXPECT_EQ(cvtstr<std::string>(L"\u20AC|\U0001F600"), "?|?");
}

// --- UTF-16 and wide characters -------------------------------------------------------

TEST(Cvtstr, Utf16AndWideOfEveryCodePoint)
{
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
        const std::wstring wide(1, static_cast<wchar_t>(cp));
        const ustring units = cvtstr<ustring>(wide);
        ASSERT_EQ(units.size(), cp < 0x10000 ? 1u : 2u) << std::uint32_t{cp};
        ASSERT_EQ(cvtstr<std::wstring>(units), wide) << std::hex << std::uint32_t{cp};
        ASSERT_TRUE(cp >= 0x10000 || units[0] == static_cast<char16_t>(cp));
    }
}

TEST(Cvtstr, Utf16AndWideWithHalfPairs)
{
    const ustring units = u"\0\xDC00\xD800\xD83D\xDE00\xDE00\0\xD800"_us;
    const std::wstring wide = {
        0, wchar_t(0xDC00), wchar_t(0xD800), wchar_t(0x1F600), wchar_t(0xDE00),
        0, wchar_t(0xD800)};
    EXPECT_EQ(cvtstr<std::wstring>(units), wide);
    EXPECT_EQ(cvtstr<ustring>(wide), units);
    for (const std::uint32_t beyond : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(cvtstr<ustring>(std::wstring(1, static_cast<wchar_t>(beyond))),
                  u"\uFFFD"_us);
}

}  // namespace
