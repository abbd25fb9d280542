#include <kiv/case_insensitive.h>

#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <type_traits>
#include <unordered_set>

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
              std::is_empty_v<hash<char16>>);

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
        for (int b = 0; b < 256 && !HasFatalFailure(); ++b)
            expect_follows_keys<char>(std::string(1, static_cast<char>(a)),
                                      std::string(1, static_cast<char>(b)));
}

// Every unit beside its own other cases, letters of three forms, a unit between
// the cases, a surrogate and the last.
TEST(CaseInsensitive, EveryUnit)
{
    for (int u = 0; u < 0x10000; ++u) {
        const char16 c = static_cast<char16_t>(u);
        for (const char16 other :
             {kiv::touupper(c), kiv::toulower(c), char16(u's'), char16(u'\u017F'),
              char16(u'\u212A'), char16(u'\u1E9E'), char16(u'_'), char16(u'\xD801'),
              char16(u'\xFFFF')}) {
            expect_follows_keys<char16>({&c, 1}, {&other, 1});
            ASSERT_FALSE(HasFatalFailure()) << u << ' ' << key(other);
        }
    }
}

TEST(CaseInsensitive, Texts)
{
    std::mt19937 random(99);
    const auto check = [&](const auto& alphabet) {
        using CharT = std::remove_cvref_t<decltype(alphabet[0])>;
        for (int round = 0; round < 20000 && !HasFatalFailure(); ++round) {
            std::basic_string<CharT> texts[2];
            for (auto& text : texts)
                for (std::size_t n = random() % 5; n != 0; --n)
                    text += alphabet[random() % std::size(alphabet)];
            expect_follows_keys<CharT>(texts[0], texts[1]);
        }
    };
    static constexpr char bytes[] = {'a', 'A', 'b', '\0', '\xE9', '\xC9', '_'};
    static constexpr char16 units[] = {u'a',  u'A',      u'\u017F', u'S',
                                       u'\0', u'\uFFFF', u'\u212A', u'k'};
    check(bytes);
    check(units);
}

// Apart from the keys above, which are computed as the library does it.
TEST(CaseInsensitive, WrittenOutValues)
{
    EXPECT_TRUE(less<char>()("z", "_")) << "bytes fold to upper case";
    EXPECT_TRUE(less<char16>()(u"_"_usv, u"Z"_usv)) << "units fold to lower case";
    EXPECT_TRUE(less<char>()("ab", "ABC") && less<char>()("ABC", "abd"));
    EXPECT_EQ(hash<char>()("ab"), 1041u) << "the multiplier of bytes is 15";
    EXPECT_EQ(hash<char16>()(u"AB"_usv), 3105u) << "the multiplier of units is 31";
    EXPECT_TRUE(equal_to<char16>()(u"\u017F\u212A"_usv, u"Sk"_usv));
    EXPECT_FALSE(equal_to<char16>()(u"\u00DF"_usv, u"ss"_usv)) << "lengths never change";
    EXPECT_FALSE(equal_to<char16>()(u"\U00010400"_usv, u"\U00010428"_usv))
        << "pairs are not joined";
    const std::unordered_set<view<char>, hash<char>, equal_to<char>> hashed{
        "UTF-8", "utf-8", "ascii"};
    EXPECT_TRUE(hashed.size() == 2 && hashed.contains("AsCiI"));
}

}  // namespace
