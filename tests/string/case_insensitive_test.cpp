#include <kiv/case_insensitive.h>

#include <cctype>
#include <cstdint>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include <gtest/gtest.h>

#include <kiv/character.h>

namespace {

using kiv::char16;
using kiv::ustring;
using namespace kiv::literals;

template <class CharT>
using view = kiv::basic_string_ref<CharT>;
template <class CharT>
using less = kiv::case_insensitive_less<view<CharT>>;
template <class CharT>
using equal_to = kiv::case_insensitive_equal_to<view<CharT>>;
template <class CharT>
using hash = kiv::case_insensitive_hash<view<CharT>>;

static_assert(std::is_empty_v<less<char>> && std::is_empty_v<equal_to<char16>> &&
              std::is_empty_v<hash<char16>> &&
              std::is_default_constructible_v<less<char16>>);

// In the "C" locale only the ASCII letters have case.
std::uint32_t key(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'a' && byte <= 'z' ? byte - 32u : byte;
}

std::uint32_t key(char16 c)
{
    return kiv::Char16::toCodeUnit(kiv::toulower(kiv::touupper(c)));
}

template <class CharT>
std::u32string keys(view<CharT> text)
{
    std::u32string result;
    for (const CharT c : text)
        result += static_cast<char32_t>(key(c));
    return result;
}

// The three objects agree with the order of the keys, so they agree with each
// other and less is a strict weak order.
template <class CharT>
void expect_follows_keys(view<CharT> a, view<CharT> b)
{
    const std::u32string k = keys(a);
    const std::u32string m = keys(b);
    ASSERT_EQ(less<CharT>()(a, b), k < m);
    ASSERT_EQ(less<CharT>()(b, a), m < k);
    ASSERT_EQ(equal_to<CharT>()(a, b), k == m);
    std::uint64_t want = 0;
    for (const char32_t unit : k)
        want = want * (sizeof(CharT) == 1 ? 15 : 31) + unit;
    ASSERT_EQ(hash<CharT>()(a), want);
}

TEST(CaseInsensitive, EveryPairOfBytes)
{
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            const char x[] = {static_cast<char>(a)};
            const char y[] = {static_cast<char>(b)};
            expect_follows_keys<char>({x, 1}, {y, 1});
            ASSERT_FALSE(HasFatalFailure()) << a << ' ' << b;
        }
}

// A sample of the units, most of them with case: every pair.
TEST(CaseInsensitive, PairsOfUnits)
{
    std::vector<char16> sample{u'\u1E9E', u'\u212A', u'\u03A3',
                               u'\u03C2', u'\xD801', u'\xFFFF'};
    for (std::uint32_t u = 0; u < 0x10000; ++u) {
        const char16 c = static_cast<char16_t>(u);
        if (u < 0x180 || u % 1021 == 0 || (key(c) != u && u % 5 == 0))
            sample.push_back(c);
    }
    for (const char16 a : sample)
        for (const char16 b : sample) {
            expect_follows_keys<char16>({&a, 1}, {&b, 1});
            ASSERT_FALSE(HasFatalFailure()) << key(a) << ' ' << key(b);
        }
}

TEST(CaseInsensitive, Texts)
{
    std::mt19937 random(99);
    const auto check = [&](const auto& alphabet) {
        using CharT = std::remove_cvref_t<decltype(alphabet[0])>;
        for (int round = 0; round < 20000; ++round) {
            std::basic_string<CharT> texts[2];
            for (auto& text : texts)
                for (std::size_t n = random() % 5; n != 0; --n)
                    text += alphabet[random() % std::size(alphabet)];
            expect_follows_keys<CharT>(texts[0], texts[1]);
            if (HasFatalFailure())
                return;
        }
    };
    static constexpr char bytes[] = {'a', 'A', 'b', '\0', '\xE9', '\xC9', '_'};
    static constexpr char16 units[] = {u'a',  u'A',      u'\u017F', u'S',
                                       u'\0', u'\uFFFF', u'\u212A', u'k'};
    check(bytes);
    check(units);
}

TEST(CaseInsensitive, WrittenOutValues)
{
    struct Case {
        const char* a;
        const char* b;
        int order;
    };
    static constexpr Case cases[] =
        {
            {"", "", 0},       {"", "a", -1},     {"ABC", "abd", -1},
            {"abc", "ABC", 0}, {"ab", "ABC", -1}, {"UTF-8", "utf-8", 0},
            {"z", "_", -1},  // bytes fold to upper case, so '_' comes after z
        };
    for (const Case& c : cases) {
        EXPECT_EQ(less<char>()(c.a, c.b), c.order < 0) << c.a << ' ' << c.b;
        EXPECT_FALSE(less<char>()(c.b, c.a)) << c.a << ' ' << c.b;
        EXPECT_EQ(equal_to<char>()(c.a, c.b), c.order == 0) << c.a << ' ' << c.b;
    }
    EXPECT_EQ(hash<char>()(""), 0u);
    EXPECT_EQ(hash<char>()("a"), 65u);
    EXPECT_EQ(hash<char>()("ab"), 1041u) << "the multiplier of bytes is 15";
    EXPECT_EQ(hash<char>()("\xE9"), 0xE9u) << "no sign extension";
    EXPECT_EQ(hash<char16>()(u""_usv), 0u);
    EXPECT_EQ(hash<char16>()(u"A"_usv), 97u);
    EXPECT_EQ(hash<char16>()(u"AB"_usv), 3105u) << "the multiplier of units is 31";
    EXPECT_EQ(hash<char16>()(u"UTF-8"_usv), hash<char16>()(u"utf-8"_usv));
    EXPECT_TRUE(equal_to<char16>()(u"\u017F"_usv, u"s"_usv)) << "long s";
    EXPECT_TRUE(equal_to<char16>()(u"\u017F"_usv, u"S"_usv));
    EXPECT_FALSE(less<char16>()(u"\u017F"_usv, u"s"_usv) ||
                 less<char16>()(u"s"_usv, u"\u017F"_usv));
    EXPECT_TRUE(less<char16>()(u"_"_usv, u"Z"_usv)) << "units fold to lower case";
    EXPECT_FALSE(equal_to<char16>()(u"\u00DF"_usv, u"ss"_usv)) << "lengths never change";
    EXPECT_FALSE(equal_to<char16>()(u"\U00010400"_usv, u"\U00010428"_usv))
        << "pairs are not joined";
}

TEST(CaseInsensitive, Containers)
{
    const std::set<view<char16>, less<char16>> ordered{u"UTF-8"_usv, u"utf-8"_usv,
                                                       u"ASCII"_usv, u"Utf-80"_usv};
    EXPECT_EQ(ordered.size(), 3u);
    EXPECT_EQ(ordered.count(u"ascii"_usv), 1u);
    EXPECT_EQ(ordered.begin()->compare(u"ASCII"_usv), 0);
    const std::unordered_set<view<char>, hash<char>, equal_to<char>> hashed{
        "UTF-8", "utf-8", "ascii"};
    EXPECT_EQ(hashed.size(), 2u);
    EXPECT_EQ(hashed.count("AsCiI"), 1u);
    EXPECT_EQ(hashed.count("ASCI"), 0u);
}

}  // namespace
