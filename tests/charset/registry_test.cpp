// The registry of charsets: what is in it, how names match, and what becomes of
// charsets that a program adds.

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <random>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/charset.h>

#include "charset/failing_new.h"
#include "charset/name_less.h"

namespace {

using namespace kiv::literals;
using kiv::Charset;
using kiv::ustring;
using View = kiv::basic_string_ref<kiv::char16>;
using NameLess = kiv::NameLess<View>;

static_assert(std::is_abstract_v<Charset> && !std::is_copy_constructible_v<Charset> &&
              !std::is_destructible_v<Charset>);
static_assert(std::is_same_v<decltype(Charset::UTF_8), Charset* const>);

ustring widen(const std::string& text)
{
    return ustring(text.begin(), text.end());
}

std::string narrow(View text)
{
    std::string bytes;
    for (const kiv::char16 c : text)
        bytes += static_cast<char>(static_cast<char16_t>(c));
    return bytes;
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

// The matching key of a name, by rewriting its text: zeros that begin a number
// go, unless they end the name; then all but letters and digits go.
std::string key_of(const std::string& name)
{
    static const std::regex last_zeros("(^|[^0-9])0+$");
    static const std::regex leading_zeros("(^|[^0-9])0+(?=[^0])");
    std::string key = std::regex_replace(name, last_zeros, "$010");
    key = std::regex_replace(key, leading_zeros, "$1");
    std::erase_if(key, [](char c) {
        return !(c >= '0' && c <= '9') && !(c >= 'A' && c <= 'Z') &&
               !(c >= 'a' && c <= 'z');
    });
    for (char& c : key)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return key;
}

bool equivalent(View a, View b)
{
    return !NameLess()(a, b) && !NameLess()(b, a);
}

// --- Names
// ------------------------------------------------------------------------------

TEST(CharsetNames, Match)
{
    struct Case {
        View a;
        View b;
        bool match;
    };
    static const Case cases[] = {
        {u"UTF-8"_usv, u"utf8"_usv, true},
        {u"UTF-8"_usv, u"Utf_8"_usv, true},
        {u"UTF-8"_usv, u"UTF-08"_usv, true},
        {u"UTF-8"_usv, u"UTF-8-0"_usv, false},  // the zero ends the name
        {u"UTF-8"_usv, u"UTF-8-0-"_usv, true},  // here it does not
        {u"UTF-8"_usv, u"UTF-0-8"_usv, true},
        {u"UTF-8"_usv, u"UTF-80"_usv, false},
        {u"ISO-8859-1"_usv, u"iso88591"_usv, true},
        {u"ISO-8859-1"_usv, u"ISO_8859-01"_usv, true},
        {u"ISO-8859-1"_usv, u"ISO-8859-10"_usv, false},
        {u"ISO-8859-1"_usv, u"ISO-8859-"_usv, false},
        {u"cp"_usv, u"cp0"_usv, false},
        {u"cp0"_usv, u"cp000"_usv, true},
        {u"cp"_usv, u"cp0-"_usv, true},
        {u"cp10"_usv, u"cp1"_usv, false},
        {u"cp100"_usv, u"cp10"_usv, false},  // zeros inside a number count
        {u"cp1-00"_usv, u"cp10"_usv, true},
        {u"cp00x00"_usv, u"cpx0"_usv, true},
        {u"0"_usv, u"000"_usv, true},
        {u"0"_usv, u""_usv, false},
        {u"00-"_usv, u""_usv, true},
        {u"01"_usv, u"1"_usv, true},
        {u"\u0661cp"_usv, u"cp"_usv, true},  // digits are the ASCII ones
        {u"a\U0001D7D80b"_usv, u"ab"_usv, true},
        {u"a\xD800\x0030\x0031"_usv, u"a1"_usv, true},
        {u"\u00E9"_usv, u"e"_usv, false},
        {u"a@[`{/:b"_usv, u"ab"_usv, true},  // neighbours of letters and digits
        {u"az19"_usv, u"AZ19"_usv, true},
        {u"\uFF41"_usv, u"a"_usv, false},
    };
    for (const Case& c : cases) {
        const auto printed = [](View name) {
            return testing::PrintToString(
                std::vector<kiv::char16>(name.begin(), name.end()));
        };
        EXPECT_EQ(equivalent(c.a, c.b), c.match) << printed(c.a) << printed(c.b);
    }
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
            name += "0000199aAzZ-_ .~"[random() % 16];
    }

    std::vector<ustring> texts;
    std::vector<std::string> keys;
    for (const std::string& name : names) {
        texts.push_back(widen(name));
        std::replace(texts.back().begin(), texts.back().end(), kiv::char16(u'~'),
                     kiv::char16(u'\uFF10'));  // a wide zero is punctuation
        keys.push_back(key_of(name));
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t j = 0; j < names.size(); ++j)
            ASSERT_EQ(NameLess()(texts[i], texts[j]), keys[i] < keys[j])
                << names[i] << " and " << names[j];
}

// --- The built-in charsets
// --------------------------------------------------------------

struct Row {
    const char* name;
    int mib;
    std::vector<std::string> aliases;
    const Charset* constant = nullptr;
};

const std::vector<Row>& built_in()
{
    static const std::vector<Row> rows = {
        {"US-ASCII",
         3,
         {"iso-ir-6", "ANSI_X3.4-1968", "ANSI_X3.4-1986", "ISO_646.irv:1991", "ISO646-US",
          "us", "IBM367", "cp367", "csASCII", "ASCII", "iso_646.irv:1983", "ascii7",
          "default", "646"},
         Charset::US_ASCII},
        {"UTF-8", 106, {"csUTF8", "unicode-1-1-utf-8", "UTF8"}, Charset::UTF_8},
        {"UTF-16BE",
         1013,
         {"csUTF16BE", "ISO-10646-UCS-2", "UnicodeBigUnmarked", "UTF_16BE", "X-UTF-16BE"},
         Charset::UTF_16BE},
        {"UTF-16LE",
         1014,
         {"csUTF16LE", "UnicodeLittleUnmarked", "UTF_16LE", "X-UTF-16LE"},
         Charset::UTF_16LE},
        {"CESU-8", 1016, {"csCESU8", "csCESU-8", "CESU8"}, Charset::CESU_8},
        {"ISO-8859-1",
         4,
         {"ISO_8859-1:1987", "iso-ir-100", "ISO_8859-1", "latin1", "l1", "IBM819",
          "CP819", "csISOLatin1", "819", "ISO8859-1", "8859_1", "ISO8859_1", "ISO_8859_1",
          "IBM-819"},
         Charset::ISO_8859_1},
    };
    return rows;
}

TEST(CharsetRegistry, BuiltInCharsets)
{
    for (const Row& row : built_in()) {
        SCOPED_TRACE(row.name);
        const Charset* charset = Charset::forName(widen(row.name));
        ASSERT_NE(charset, nullptr);
        EXPECT_TRUE(row.constant == nullptr || row.constant == charset);
        EXPECT_EQ(narrow(charset->name()), row.name);
        EXPECT_EQ(charset->MIBenum(), row.mib);

        std::vector<std::string> wanted = row.aliases;
        std::sort(wanted.begin(), wanted.end(),
                  [](const auto& a, const auto& b) { return lower(a) < lower(b); });
        std::vector<std::string> aliases;
        for (const View& alias : charset->aliases()) {
            aliases.push_back(narrow(alias));
            EXPECT_EQ(Charset::forName(alias), charset) << narrow(alias);
            EXPECT_TRUE(Charset::isSupported(widen(lower(narrow(alias)))));
        }
        EXPECT_EQ(aliases, wanted);
        EXPECT_EQ(charset->newDecoder()->charset(), charset);
        EXPECT_EQ(charset->newEncoder()->charset(), charset);
    }
}

TEST(CharsetRegistry, LooksUpByNameOrAlias)
{
    struct Case {
        ustring name;
        const Charset* charset;
    };
    const Case cases[] = {
        {u"utf8"_us, Charset::UTF_8},
        {u"UTF_8"_us, Charset::UTF_8},
        {u"Utf-8"_us, Charset::UTF_8},
        {u"UTF-08"_us, Charset::UTF_8},
        {u"utf 8"_us, Charset::UTF_8},  // not a legal name, yet it matches
        {u"\uFEFF(utf)/8\0"_us, Charset::UTF_8},
        {u"latin1"_us, Charset::ISO_8859_1},
        {u"L01"_us, Charset::ISO_8859_1},
        {u"ISO_8859-01"_us, Charset::ISO_8859_1},
        {u"default"_us, Charset::US_ASCII},
        {u"utf-16-le"_us, Charset::UTF_16LE},
        {u""_us, nullptr},
        {u"-"_us, nullptr},
        {u"UTF-8-0"_us, nullptr},
        {u"no-such-charset"_us, nullptr},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Charset::forName(c.name), c.charset) << narrow(c.name);
        EXPECT_EQ(Charset::isSupported(c.name), c.charset != nullptr) << narrow(c.name);
    }
}

TEST(CharsetRegistry, AvailableCharsetsAreSorted)
{
    const std::vector<Charset*> charsets = Charset::availableCharsets();
    std::vector<std::string> keys;
    for (const Charset* charset : charsets) {
        keys.push_back(key_of(narrow(charset->name())));
        EXPECT_EQ(Charset::forName(charset->name()), charset);
    }
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
    EXPECT_EQ(std::adjacent_find(keys.begin(), keys.end()), keys.end());
    for (const Row& row : built_in())
        EXPECT_EQ(std::count(charsets.begin(), charsets.end(),
                             Charset::forName(widen(row.name))),
                  1)
            << row.name;
    EXPECT_EQ(std::count(charsets.begin(), charsets.end(), Charset::defaultCharset()), 1);
}

// --- Charsets of a program
// --------------------------------------------------------------

class OwnCharset : public Charset {
public:
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

// A registration is for ever: checks that spoil names of others run in a child.
#define EXPECT_IN_CHILD(statements)                         \
    EXPECT_EXIT(                                            \
        {                                                   \
            statements;                                     \
            std::exit(testing::Test::HasFailure() ? 1 : 0); \
        },                                                  \
        testing::ExitedWithCode(0), "")

TEST(OwnCharset, IsFoundByNameAndAliases)
{
    // Two aliases may match each other, and the names of others.
    const Charset* charset = new OwnCharset(
        u"x-own-1"_usv,
        {u"ownabc"_usv, u"own-a-bc"_usv, u"UTF-8"_usv, u"+9.:_-"_usv.substr(1)});
    EXPECT_EQ(charset->MIBenum(), 7);
    EXPECT_EQ(charset->aliases().size(), 4u);
    for (const View name :
         {u"x-own-1"_usv, u"X_OWN_01"_usv, u"ownabc"_usv, u"own-a-bc"_usv, u"9"_usv})
        EXPECT_EQ(Charset::forName(name), charset) << narrow(name);
    EXPECT_EQ(Charset::forName(u"UTF-8"_usv), Charset::UTF_8);
    const auto charsets = Charset::availableCharsets();
    EXPECT_EQ(std::count(charsets.begin(), charsets.end(), charset), 1);
}

void share_alias_of_utf_8()
{
    const Charset* first =
        new OwnCharset(u"x-own-2"_usv, {u"CS-utf-08"_usv, u"own2"_usv});
    EXPECT_EQ(Charset::forName(u"csUTF8"_usv), nullptr);
    EXPECT_TRUE(Charset::isSupported(u"csUTF8"_us));
    EXPECT_EQ(Charset::forName(u"UTF8"_usv), Charset::UTF_8);
    EXPECT_EQ(Charset::forName(u"own2"_usv), first);

    // A third claim does not settle the matter, nor does one within one charset.
    new OwnCharset(u"x-own-3"_usv, {u"csUTF8"_usv, u"cs-UTF8"_usv});
    EXPECT_EQ(Charset::forName(u"csUTF8"_usv), nullptr);

    // A canonical name wins over an ambiguous alias.
    const Charset* named = new OwnCharset(u"csUTF8"_usv, {});
    EXPECT_EQ(Charset::forName(u"csUTF8"_usv), named);
}

TEST(OwnCharset, SharedAliasIsAmbiguous)
{
    EXPECT_IN_CHILD(share_alias_of_utf_8());
}

enum class Thrown { INVALID_ARGUMENT, LOGIC_ERROR };

std::pair<Thrown, std::string> failure_of(View name, std::initializer_list<View> aliases)
{
    try {
        new OwnCharset(name, aliases);
    } catch (const std::invalid_argument& e) {
        return {Thrown::INVALID_ARGUMENT, e.what()};
    } catch (const std::logic_error& e) {
        return {Thrown::LOGIC_ERROR, e.what()};
    }
    return {};
}

TEST(OwnCharset, IllegalNames)
{
    const auto before = Charset::availableCharsets();
    for (const View name :
         {u""_usv, u"+a"_usv, u"-a"_usv, u".a"_usv, u":a"_usv, u"_a"_usv, u"own 4"_usv,
          u"own/4"_usv, u"own@4"_usv, u"own[4"_usv, u"own`4"_usv, u"own{4"_usv,
          u"own,4"_usv, u"own\u00E94"_usv, u"own\U0001F600"_usv, u"own\xD800"_usv,
          u"own\uFF14"_usv}) {
        const std::string message =
            "invalid charset name: " + Charset::defaultCharset()->encode(name);
        // what() ends at a NUL, which a default of UTF-16 would write.
        const std::pair wanted(Thrown::INVALID_ARGUMENT, std::string(message.c_str()));
        EXPECT_EQ(failure_of(name, {u"own4"_usv}), wanted);
        EXPECT_EQ(failure_of(u"x-own-4"_usv, {u"own4"_usv, name, u"csUTF8"_usv}), wanted);
    }
    EXPECT_EQ(Charset::availableCharsets(), before);
    EXPECT_FALSE(Charset::isSupported(u"x-own-4"_us));
    EXPECT_FALSE(Charset::isSupported(u"own4"_us));
    EXPECT_EQ(Charset::forName(u"csUTF8"_usv), Charset::UTF_8);
}

TEST(OwnCharset, FailedRegistrationLeavesNothing)
{
    static constexpr View GOOD = u"x-own-5"_usv;
    struct Case {
        View name;
        std::initializer_list<View> aliases;
        std::pair<Thrown, std::string> failure;
    };
    const std::pair<Thrown, std::string> duplicate(Thrown::INVALID_ARGUMENT,
                                                   "duplicate alias");
    const std::pair<Thrown, std::string> ambiguous(Thrown::LOGIC_ERROR,
                                                   "ambiguous charset names");
    const Case cases[] = {
        {GOOD, {u"own5"_usv, u"csUTF8"_usv, u"OWN5"_usv}, duplicate},
        {u"utf8"_usv, {u"own5"_usv, u"own5"_usv}, duplicate},  // found before the name
        {u"utf8"_usv, {u"own5"_usv, u"csUTF8"_usv}, ambiguous},
        {u"UTF-08"_usv, {u"own5"_usv, u"latin1"_usv}, ambiguous},
    };
    const auto before = Charset::availableCharsets();
    for (const Case& c : cases) {
        EXPECT_EQ(failure_of(c.name, c.aliases), c.failure);
        EXPECT_EQ(Charset::availableCharsets(), before);
        EXPECT_FALSE(Charset::isSupported(u"own5"_us));
        EXPECT_FALSE(Charset::isSupported(GOOD));
        EXPECT_EQ(Charset::forName(u"csUTF8"_usv), Charset::UTF_8);
        EXPECT_EQ(Charset::forName(u"latin1"_usv), Charset::ISO_8859_1);
        EXPECT_EQ(Charset::forName(u"utf8"_usv), Charset::UTF_8);
    }
}

TEST(OwnCharset, SurvivesWantOfMemory)
{
    if (!failing_new::works())
        GTEST_SKIP() << "allocations cannot be made to fail";
    const Charset* other = new OwnCharset(u"x-own-6"_usv, {u"own-shared"_usv});
    const auto before = Charset::availableCharsets();
    const Charset* charset = nullptr;
    long failures = 0;
    for (; charset == nullptr && failures < 100; ++failures) {
        const long live = failing_new::live();
        failing_new::fail_after(failures);
        try {
            charset = new OwnCharset(u"x-own-7"_usv,
                                     {u"own7"_usv, u"own-a-really-long-alias"_usv,
                                      u"own-shared"_usv, u"own-7"_usv});
        } catch (const std::bad_alloc&) {
        }
        failing_new::never_fail();
        if (charset != nullptr)
            break;
        EXPECT_EQ(failing_new::live(), live);
        EXPECT_EQ(Charset::availableCharsets(), before);
        EXPECT_EQ(Charset::forName(u"own7"_usv), nullptr);
        EXPECT_EQ(Charset::forName(u"own-shared"_usv), other);
    }
    EXPECT_GE(failures, 9);  // the charset, four aliases, and nodes of both maps
    EXPECT_EQ(Charset::forName(u"own7"_usv), charset);
    EXPECT_EQ(Charset::forName(u"own-shared"_usv), nullptr);
}

class HalfMade : public OwnCharset {
public:
    HalfMade() : OwnCharset(u"x-own-8"_usv, {u"own8"_usv})
    {
        throw std::range_error("half made");
    }
};

// No look-up finds a charset that is gone, however it went.
TEST(OwnCharset, DestructionThrows)
{
    const long live = failing_new::live();
    auto* charset = new OwnCharset(u"x-own-9"_usv, {u"own9"_usv});
    charset->decode("cached coders go as well");
    charset->encode(u"cached coders go as well"_usv);
    try {
        delete charset;
        ADD_FAILURE();
    } catch (const std::logic_error& e) {
        EXPECT_STREQ(e.what(), "Charset::~Charset");
    }
    EXPECT_EQ(failing_new::live(), live);
    EXPECT_THROW(HalfMade(), std::range_error);
    for (const View name : {u"x-own-8"_usv, u"own8"_usv, u"x-own-9"_usv, u"own9"_usv})
        EXPECT_FALSE(Charset::isSupported(name));
    for (const Charset* other : Charset::availableCharsets())
        EXPECT_FALSE(other->name().empty());
}

}  // namespace
