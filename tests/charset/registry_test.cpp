// The registry of charsets: what is in it, how names match, and what becomes of
// charsets that a program adds.

#include <algorithm>
#include <cctype>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include "charset/name_less.h"
#include "support/errors.h"
#include "support/failing_new.h"

namespace {

using namespace kiv::literals;
using kiv::Charset;
using kiv::ustring;
using kivtest::what_of;
using View = kiv::basic_string_ref<kiv::char16>;
using NameLess = kiv::NameLess<View>;

ustring widen(const std::string& text)
{
    return ustring(text.begin(), text.end());
}

std::string narrow(View text)
{
    return Charset::US_ASCII->encode(text);
}

// --- Names ----------------------------------------------------------------------------

// The matching key of a name, by rewriting its text: zeros that begin a number
// go, unless they end the name; then all but letters and digits go.
std::string key_of(const std::string& name)
{
    static const std::regex last_zeros("(^|[^0-9])0+$");
    static const std::regex leading_zeros("(^|[^0-9])0+(?=[^0])");
    std::string key = std::regex_replace(name, last_zeros, "$010");
    key = std::regex_replace(key, leading_zeros, "$1");
    std::erase_if(key, [](unsigned char c) { return !std::isalnum(c); });
    for (char& c : key)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return key;
}

// The order is that of keys, for all pairs: so it is a strict weak order.
TEST(CharsetNames, OrderIsThatOfTheirKeys)
{
    std::vector<std::string> names = {""};
    for (std::size_t i = 0; names[i].size() < 4; ++i)
        for (const char c : {'0', '1', 'a', '-'})
            names.push_back(names[i] + c);
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        std::string& name = names.emplace_back();
        for (auto n = random() % 14; n != 0; --n)
            name += "0000199aAzZ-_ ./"[random() % 16];
    }

    std::vector<std::pair<ustring, std::string>> keyed;
    for (const std::string& name : names)
        keyed.emplace_back(widen(name), key_of(name));
    for (const auto& [a, key_a] : keyed)
        for (const auto& [b, key_b] : keyed)
            ASSERT_EQ(NameLess()(a, b), key_a < key_b) << narrow(a) << ' ' << narrow(b);
}

TEST(CharsetNames, OnlyAsciiLettersAndDigitsCount)
{
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const ustring name = {static_cast<char16_t>(unit), u'0', u'1'};
        const char c = unit < 0x80 ? static_cast<char>(unit) : '-';
        const ustring key = widen(key_of({c, '0', '1'}));
        ASSERT_FALSE(NameLess()(name, key) || NameLess()(key, name)) << unit;
    }
}

// --- The built-in charsets ------------------------------------------------------------

struct Row {
    const Charset* constant;  // if it has one
    const char* name;
    int mib;
    const char* aliases;  // in their order
};

// Aliases are in the order of their folded units: '_' before the letters.
const Row BUILT_IN[] = {
    {Charset::US_ASCII, "US-ASCII", 3,
     "646 ANSI_X3.4-1968 ANSI_X3.4-1986 ASCII ascii7 cp367 csASCII default IBM367 "
     "iso-ir-6 ISO646-US iso_646.irv:1983 ISO_646.irv:1991 us "},
    {Charset::UTF_8, "UTF-8", 106, "csUTF8 unicode-1-1-utf-8 UTF8 "},
    {Charset::UTF_16BE, "UTF-16BE", 1013,
     "csUTF16BE ISO-10646-UCS-2 UnicodeBigUnmarked UTF_16BE X-UTF-16BE "},
    {Charset::UTF_16LE, "UTF-16LE", 1014,
     "csUTF16LE UnicodeLittleUnmarked UTF_16LE X-UTF-16LE "},
    {Charset::CESU_8, "CESU-8", 1016, "CESU8 csCESU-8 csCESU8 "},
    {Charset::ISO_8859_1, "ISO-8859-1", 4,
     "819 8859_1 CP819 csISOLatin1 IBM-819 IBM819 iso-ir-100 ISO8859-1 ISO8859_1 "
     "ISO_8859-1 ISO_8859-1:1987 ISO_8859_1 l1 latin1 "},
    {nullptr, "ISO-8859-2", 5,
     "8859_2 912 cp912 csISOLatin2 ibm-912 ibm912 iso-ir-101 ISO8859-2 iso8859_2 "
     "ISO_8859-2 ISO_8859-2:1987 l2 latin2 "},
    {nullptr, "ISO-8859-3", 6,
     "8859_3 913 cp913 csISOLatin3 ibm-913 ibm913 iso-ir-109 ISO8859-3 iso8859_3 "
     "ISO_8859-3 ISO_8859-3:1988 l3 latin3 "},
    {nullptr, "ISO-8859-4", 7,
     "8859_4 914 cp914 csISOLatin4 ibm-914 ibm914 iso-ir-110 iso8859-4 iso8859_4 "
     "ISO_8859-4 ISO_8859-4:1988 l4 latin4 "},
    {nullptr, "ISO-8859-5", 8,
     "8859_5 915 cp915 csISOLatinCyrillic cyrillic ibm-915 ibm915 iso-ir-144 "
     "ISO8859-5 iso8859_5 ISO_8859-5 ISO_8859-5:1988 "},
    {nullptr, "ISO-8859-6", 9,
     "1089 8859_6 arabic ASMO-708 cp1089 csISOLatinArabic ECMA-114 ibm-1089 "
     "ibm1089 iso-ir-127 ISO8859-6 iso8859_6 ISO_8859-6 ISO_8859-6:1987 "},
    {nullptr, "ISO-8859-7", 10,
     "813 8859_7 cp813 csISOLatinGreek ECMA-118 ELOT_928 greek greek8 ibm-813 "
     "ibm813 iso-ir-126 iso8859-7 iso8859_7 ISO_8859-7 ISO_8859-7:1987 "
     "sun_eu_greek "},
    {nullptr, "ISO-8859-8", 11,
     "8859_8 916 cp916 csISOLatinHebrew hebrew ibm-916 ibm916 iso-ir-138 "
     "ISO8859-8 iso8859_8 ISO_8859-8 ISO_8859-8:1988 "},
    {nullptr, "ISO-8859-9", 12,
     "8859_9 920 cp920 csISOLatin5 ibm-920 ibm920 iso-ir-148 ISO8859-9 iso8859_9 "
     "ISO_8859-9 ISO_8859-9:1989 l5 latin5 "},
    {nullptr, "ISO-8859-10", 13, "csISOLatin6 iso-ir-157 ISO_8859-10:1992 l6 latin6 "},
    {nullptr, "x-iso-8859-11", 0, "iso-8859-11 iso8859_11 "},
    {nullptr, "ISO-8859-13", 109,
     "8859_13 csISO885913 ISO8859-13 iso8859_13 iso_8859-13 "},
    {nullptr, "ISO-8859-14", 110,
     "csISO885914 iso-celtic iso-ir-199 ISO_8859-14 ISO_8859-14:1998 l8 latin8 "},
    {nullptr, "ISO-8859-15", 111,
     "8859_15 923 cp923 csISO885915 csISOlatin0 csISOlatin9 IBM-923 IBM923 "
     "ISO8859-15 ISO8859_15 ISO8859_15_FDIS ISO_8859-15 L9 Latin-9 LATIN0 LATIN9 "},
    {nullptr, "ISO-8859-16", 112,
     "csISO885916 iso-ir-226 ISO_8859-16 ISO_8859-16:2001 l10 latin10 "},
    {nullptr, "windows-1250", 2250, "cp1250 cp5346 cswindows1250 "},
    {nullptr, "windows-1251", 2251, "ansi-1251 cp1251 cp5347 cswindows1251 "},
    {nullptr, "windows-1252", 2252, "cp1252 cp5348 cswindows1252 "},
    {nullptr, "windows-1253", 2253, "cp1253 cp5349 cswindows1253 "},
    {nullptr, "windows-1254", 2254, "cp1254 cp5350 cswindows1254 "},
    {nullptr, "windows-1255", 2255, "cp1255 cswindows1255 "},
    {nullptr, "windows-1256", 2256, "cp1256 cswindows1256 "},
    {nullptr, "windows-1257", 2257, "cp1257 cp5353 cswindows1257 "},
    {nullptr, "windows-1258", 2258, "cp1258 cswindows1258 "},
    {nullptr, "windows-874", 2109, "cswindows874 ms-874 ms874 x-windows-874 "},
    {nullptr, "Windows-31J", 2024, "csWindows31J MS932 windows-932 "},
    {nullptr, "x-mswin-936", 0, "ms936 ms_936 "},
    {nullptr, "x-windows-949", 0, "ms949 ms_949 windows-949 windows949 "},
    {nullptr, "x-windows-950", 0, "ms950 windows-950 "},
    {nullptr, "KOI8-R", 2084,
     "cp878 csKOI8R ibm-878 ibm-878_P100-1996 koi8 windows-20866 "},
    {nullptr, "KOI8-U", 2088, "csKOI8U ibm-1168 ibm-1168_P100-2002 windows-21866 "},
    {nullptr, "Big5", 2026, "csBig5 "},
    {nullptr, "Big5-HKSCS", 2101, "Big5_HKSCS big5hk big5hkscs csBig5HKSCS "},
    {nullptr, "GBK", 113, "CP936 csGBK windows-936 "},
    {nullptr, "GB18030", 114, "csGB18030 GB18030-2000 "},
    {nullptr, "Shift_JIS", 17, "csShiftJIS MS_Kanji shift-jis sjis x-sjis "},
};

// Before a test adds charsets of its own.
const std::vector<Charset*> AT_START = Charset::availableCharsets();

TEST(CharsetRegistry, AvailableAreTheBuiltInInTheOrderOfTheirKeys)
{
    std::string names;
    for (const Charset* charset : AT_START)
        names += narrow(charset->name()) + ' ';
    EXPECT_EQ(names,
              "Big5 Big5-HKSCS CESU-8 GB18030 GBK ISO-8859-1 ISO-8859-10 ISO-8859-13 "
              "ISO-8859-14 ISO-8859-15 ISO-8859-16 ISO-8859-2 ISO-8859-3 ISO-8859-4 "
              "ISO-8859-5 ISO-8859-6 ISO-8859-7 ISO-8859-8 ISO-8859-9 KOI8-R KOI8-U "
              "Shift_JIS US-ASCII UTF-16BE UTF-16LE UTF-8 windows-1250 windows-1251 "
              "windows-1252 windows-1253 windows-1254 windows-1255 windows-1256 "
              "windows-1257 windows-1258 Windows-31J windows-874 x-iso-8859-11 "
              "x-mswin-936 x-windows-949 x-windows-950 ");
}

TEST(CharsetRegistry, BuiltInCharsets)
{
    for (const Row& row : BUILT_IN) {
        SCOPED_TRACE(row.name);
        const Charset* charset = Charset::forName(widen(row.name));
        ASSERT_NE(charset, nullptr);
        EXPECT_TRUE(row.constant == nullptr || row.constant == charset);
        EXPECT_EQ(narrow(charset->name()), row.name);
        EXPECT_EQ(charset->MIBenum(), row.mib);
        std::string aliases;
        for (const View& alias : charset->aliases()) {
            aliases += narrow(alias) + ' ';
            EXPECT_EQ(Charset::forName(alias), charset) << narrow(alias);
            EXPECT_TRUE(Charset::isSupported(alias.to_string()));
        }
        EXPECT_EQ(aliases, row.aliases);
    }
}

TEST(CharsetRegistry, LooksUpByNameOrAlias)
{
    // The last one is no legal name.
    for (const ustring& name : {u"utf8"_us, u"Utf-08"_us, u"\uFEFF(utf)/8\0"_us})
        EXPECT_EQ(Charset::forName(name), Charset::UTF_8) << narrow(name);
    for (const ustring& name : {u""_us, u"UTF-8-0"_us, u"no-such-charset"_us}) {
        EXPECT_EQ(Charset::forName(name), nullptr) << narrow(name);
        EXPECT_FALSE(Charset::isSupported(name)) << narrow(name);
    }
}

// --- Charsets of a program ------------------------------------------------------------

struct OwnCharset : Charset {
    OwnCharset(View name, std::initializer_list<View> aliases) : Charset(7, name, aliases)
    {
    }
    ~OwnCharset() = default;
    std::unique_ptr<kiv::CharsetDecoder> newDecoder() const override
    {
        return UTF_8->newDecoder();
    }
    std::unique_ptr<kiv::CharsetEncoder> newEncoder() const override
    {
        return UTF_8->newEncoder();
    }
};

TEST(OwnCharset, NamesAndAliases)
{
    // Two aliases may match each other, and the names of others.
    const Charset* own = new OwnCharset(
        u"x-own-1"_usv,
        {u"ownabc"_usv, u"own-a-bc"_usv, u"UTF-8"_usv, u"9+.:_-"_usv, u"shared"_usv});
    EXPECT_EQ(own->aliases().size(), 5u);
    for (const View name :
         {u"X_OWN_01"_usv, u"ownabc"_usv, u"own-a-bc"_usv, u"9"_usv, u"shared"_usv})
        EXPECT_EQ(Charset::forName(name), own) << narrow(name);
    EXPECT_EQ(Charset::forName(u"UTF-8"_usv), Charset::UTF_8);
    // An alias of two is ambiguous. A third claim does not settle the matter, nor do
    // two within one charset; but a canonical name does.
    new OwnCharset(u"x-own-2"_usv, {u"Sha_red"_usv});
    EXPECT_EQ(Charset::forName(u"shared"_usv), nullptr);
    EXPECT_TRUE(Charset::isSupported(u"shared"_us));
    new OwnCharset(u"x-own-3"_usv, {u"shared"_usv, u"sha-red"_usv});
    EXPECT_EQ(Charset::forName(u"shared"_usv), nullptr);
    const Charset* named = new OwnCharset(u"shared"_usv, {});
    EXPECT_EQ(Charset::forName(u"shared"_usv), named);
}

std::string failure_of(View name, std::initializer_list<View> aliases)
{
    return what_of<std::logic_error>([&] { new OwnCharset(name, aliases); });
}

TEST(OwnCharset, FailedRegistrationLeavesNothing)
{
    const auto before = Charset::availableCharsets();
    const auto expect_illegal = [](View name) {
        const std::string message =
            "invalid charset name: " + Charset::defaultCharset()->encode(name);
        // what() ends at a NUL, which a default of UTF-16 would write.
        EXPECT_EQ(failure_of(name, {u"own4"_usv}), message.c_str());
        EXPECT_EQ(failure_of(u"x-own-4"_usv, {u"own4"_usv, name}), message.c_str());
    };
    expect_illegal(u""_usv);
    for (unsigned unit = 0; unit < 0x300; ++unit) {
        const ustring first = {static_cast<char16_t>(unit), u'a'};
        const ustring second = {u'a', static_cast<char16_t>(unit)};
        const bool alnum = unit < 0x80 && std::isalnum(static_cast<int>(unit)) != 0;
        if (!alnum)
            expect_illegal(first);
        if (!alnum && u"+-.:_"_usv.find(second[1]) == View::npos)
            expect_illegal(second);
        else  // legal, and found before the name is
            EXPECT_EQ(failure_of(u"utf8"_usv, {second, second}), "duplicate alias");
    }
    EXPECT_THROW(OwnCharset(u"-"_usv, {}), std::invalid_argument);
    EXPECT_THROW(OwnCharset(u"x-own-4"_usv, {u"own4"_usv, u"OWN4"_usv}),
                 std::invalid_argument);
    EXPECT_EQ(failure_of(u"UTF-08"_usv, {u"own4"_usv, u"csUTF8"_usv}),
              "ambiguous charset names");

    EXPECT_EQ(Charset::availableCharsets(), before);
    EXPECT_FALSE(Charset::isSupported(u"x-own-4"_us));
    EXPECT_FALSE(Charset::isSupported(u"own4"_us));
    EXPECT_EQ(Charset::forName(u"csUTF8"_usv), Charset::UTF_8);
}

TEST(OwnCharset, SurvivesWantOfMemory)
{
    if (failing_new::live == 0)
        GTEST_SKIP() << "allocations cannot be made to fail";
    const Charset* other = new OwnCharset(u"x-own-5"_usv, {u"shared-5"_usv});
    const auto before = Charset::availableCharsets();
    const Charset* charset = nullptr;
    long failures = -1;
    while (charset == nullptr && failures < 100) {
        EXPECT_EQ(Charset::availableCharsets(), before);
        EXPECT_EQ(Charset::forName(u"own6"_usv), nullptr);
        EXPECT_EQ(Charset::forName(u"shared-5"_usv), other);
        const long live = failing_new::live;
        failing_new::remaining = ++failures;
        try {
            charset = new OwnCharset(u"x-own-6"_usv,
                                     {u"own6"_usv, u"own-6"_usv, u"shared-5"_usv});
        } catch (const std::bad_alloc&) {
        }
        failing_new::remaining = -1;
        EXPECT_TRUE(charset != nullptr || failing_new::live == live);
    }
    EXPECT_GE(failures, 7);  // the charset, its aliases, nodes of both maps
    EXPECT_EQ(Charset::forName(u"own6"_usv), charset);
    EXPECT_EQ(Charset::forName(u"shared-5"_usv), nullptr);
}

struct HalfMade : OwnCharset {
    HalfMade() : OwnCharset(u"x-own-7"_usv, {u"own7"_usv})
    {
        throw std::range_error("half made");
    }
};

// No look-up finds a charset that is gone, however it went.
TEST(OwnCharset, DestructionThrows)
{
    const long live = failing_new::live;
    auto* charset = new OwnCharset(u"x-own-8"_usv, {u"own8"_usv});
    charset->encode(charset->decode("cached coders go as well"));
    EXPECT_EQ(what_of<std::logic_error>([&] { delete charset; }), "Charset::~Charset");
    EXPECT_EQ(failing_new::live, live);
    EXPECT_THROW(HalfMade(), std::range_error);
    for (const View name : {u"x-own-7"_usv, u"own7"_usv, u"x-own-8"_usv, u"own8"_usv})
        EXPECT_FALSE(Charset::isSupported(name.to_string()));
}

}  // namespace
