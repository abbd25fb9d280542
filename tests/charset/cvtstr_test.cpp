// Whole strings between bytes, UTF-16 and wide characters.

#include <clocale>
#include <concepts>
#include <cstdint>
#include <string>
#include <vector>

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
    {
        cvtstr<Result>(text)
        } -> std::same_as<Result>;
};

static_assert(converts<ustring, char> && converts<std::wstring, char>);
static_assert(converts<std::string, kiv::char16> && converts<std::wstring, kiv::char16>);
static_assert(converts<std::string, wchar_t> && converts<ustring, wchar_t>);
static_assert(!converts<std::string, char> && !converts<ustring, kiv::char16> &&
              !converts<std::wstring, wchar_t>);
static_assert(!converts<std::u16string, char> && !converts<std::u32string, wchar_t>);

// The locale of the process for one test. A locale that is not there skips it.
class LocaleScope {
public:
    explicit LocaleScope(const char* name) : m_before(std::setlocale(LC_ALL, nullptr))
    {
        m_set = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~LocaleScope() { std::setlocale(LC_ALL, m_before.c_str()); }
    LocaleScope(const LocaleScope&) = delete;

    bool set() const { return m_set; }

private:
    std::string m_before;
    bool m_set;
};

// --- Bytes and UTF-16 -----------------------------------------------------------------

TEST(Cvtstr, BytesAndUtf16GoThroughTheDefaultCharset)
{
    const Charset* charset = Charset::defaultCharset();
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    EXPECT_EQ(cvtstr<ustring>(bytes), charset->decode(bytes));
    const ustring text = u"a\u00E9\u20AC\xD800\0b\xDC00"_us;
    EXPECT_EQ(cvtstr<std::string>(text), charset->encode(text));
    EXPECT_EQ(cvtstr<ustring>(std::string()), ustring());
    EXPECT_EQ(cvtstr<std::string>(ustring()), "");
    if (charset == Charset::US_ASCII) {
        EXPECT_EQ(cvtstr<ustring>("\xE9"), u"\uFFFD"_us);
        EXPECT_EQ(cvtstr<std::string>(u"\u00E9"_usv), "?");
    }
}

// --- Bytes and wide characters
// ----------------------------------------------------------

void expect_widens(const std::string& bytes, const std::wstring& wide)
{
    EXPECT_EQ(cvtstr<std::wstring>(bytes), wide) << testing::PrintToString(bytes);
}

TEST(Cvtstr, BytesToWideInUtf8)
{
    const LocaleScope locale("C.UTF-8");
    if (!locale.set())
        GTEST_SKIP() << "no such locale";
    using namespace std::string_literals;
    expect_widens("", L"");
    expect_widens("a\0b\0"s, L"a\0b\0"s);
    expect_widens("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80!", L"\u00E9\u20AC\U0001F600!");
    expect_widens(
        "a\xFF\xFE"
        "b",
        L"a\uFFFDb");  // a run is replaced once
    expect_widens("\xFF\xFF\xFF", L"\uFFFD");
    expect_widens(
        "\xFF"
        "a\xFF",
        L"\uFFFDa\uFFFD");
    expect_widens("\xFF\0\xFF"s, L"\uFFFD\0\uFFFD"s);
    expect_widens("a\xE2\x82", L"a\uFFFD");      // an unfinished end
    expect_widens("a\xFF\xE2\x82", L"a\uFFFD");  // belongs to the run before it
    expect_widens(
        "\xFF"
        "a\xE2",
        L"\uFFFDa\uFFFD");
    expect_widens("\xE2\x82z", L"\uFFFDz");
    expect_widens("\xE2\xC3\xA9", L"\uFFFD\u00E9");  // the state is cleared after a fault
    expect_widens("\xC0\x80\xC3\xA9", L"\uFFFD\u00E9");
    expect_widens("\xED\xA0\x80|", L"\uFFFD|");  // an encoded surrogate
    // A view need not end with a NUL.
    EXPECT_EQ(cvtstr<std::wstring>(kiv::basic_string_ref<char>("\xC3\xA9", 1)),
              L"\uFFFD");
}

TEST(Cvtstr, WideToBytesInUtf8)
{
    const LocaleScope locale("C.UTF-8");
    if (!locale.set())
        GTEST_SKIP() << "no such locale";
    EXPECT_EQ(
        cvtstr<std::string>(kiv::basic_string_ref<wchar_t>(L"a\0\u00E9\U0001F600", 4)),
        std::string("a\0\xC3\xA9\xF0\x9F\x98\x80", 8));
    const wchar_t surrogates[] = {L'<', wchar_t(0xD800), wchar_t(0xDC00), L'\u00E9'};
    EXPECT_EQ(cvtstr<std::string>(kiv::basic_string_ref<wchar_t>(surrogates, 4)),
              "<?\?\xC3\xA9");  // one for each, and what follows is whole
    EXPECT_EQ(cvtstr<std::string>(std::wstring()), "");
}

// The charset of this locale is ASCII.
TEST(Cvtstr, BytesAndWideInTheCLocale)
{
    const LocaleScope locale("C");
    std::string ascii;
    std::wstring wide;
    for (int i = 0; i < 128; ++i) {
        ascii += static_cast<char>(i);
        wide += static_cast<wchar_t>(i);
    }
    expect_widens(ascii, wide);
    EXPECT_EQ(cvtstr<std::string>(wide), ascii);
    EXPECT_EQ(cvtstr<std::string>(L"\u20AC|\U0001F600"), "?|?");
}

// --- UTF-16 and wide characters
// -----------------------------------------------------------

TEST(Cvtstr, Utf16AndWideOfEveryCodePoint)
{
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
        const std::wstring wide(1, static_cast<wchar_t>(cp));
        const ustring units = cvtstr<ustring>(wide);
        ASSERT_EQ(units.size(), cp < 0x10000 ? 1u : 2u) << std::hex << std::uint32_t{cp};
        ASSERT_EQ(cvtstr<std::wstring>(units), wide) << std::hex << std::uint32_t{cp};
        ASSERT_TRUE(cp >= 0x10000 || units[0] == static_cast<char16_t>(cp));
    }
}

TEST(Cvtstr, Utf16AndWide)
{
    static_assert(sizeof(wchar_t) == 4);
    struct Case {
        ustring units;
        std::vector<std::uint32_t> wide;
        const char* why;
    };
    const Case cases[] = {
        {u""_us, {}, "empty"},
        {u"\0a\0"_us, {0, 'a', 0}, "NULs are units like others"},
        {u"\xD83D\xDE00"_us, {0x1F600}, "a pair"},
        {u"\xD800"_us, {0xD800}, "half a pair at the end"},
        {u"\xDC00\xD800"_us, {0xDC00, 0xD800}, "halves in the wrong order"},
        {u"\xD800\xD83D\xDE00\xDE00"_us,
         {0xD800, 0x1F600, 0xDE00},
         "a pair among halves"},
        {u"\xFFFF\xFFFE"_us, {0xFFFF, 0xFFFE}, "noncharacters"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const std::wstring wide(c.wide.begin(), c.wide.end());
        EXPECT_EQ(cvtstr<std::wstring>(c.units), wide);
        EXPECT_EQ(cvtstr<ustring>(wide), c.units);
    }
    // These have no way back.
    for (const std::uint32_t beyond : {0x110000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_EQ(cvtstr<ustring>(std::wstring(1, static_cast<wchar_t>(beyond))),
                  u"\uFFFD"_us);
    const std::wstring halves = {wchar_t(0xD83D), wchar_t(0xDE00)};
    EXPECT_EQ(cvtstr<ustring>(halves), u"\xD83D\xDE00"_us);
}

}  // namespace
