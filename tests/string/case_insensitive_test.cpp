#include <kiv/case_insensitive.h>

#include <cstdint>
#include <random>
#include <string>
#include <type_traits>

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

// Every unit beside its own other cases, letters of three forms, a unit between
// the cases and the last.
TEST(CaseInsensitive, EveryUnit)
{
    for (int u = 0; u < 0x10000; ++u) {
        const char16 c = static_cast<char16_t>(u);
        for (const char16 other :
             {kiv::touupper(c), kiv::toulower(c), char16(u's'), char16(u'\u017F'),
              char16(u'\u212A'), char16(u'\u1E9E'), char16(u'_'), char16(u'\xFFFF')}) {
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
                    text += alphabet[random() % alphabet.size()];
            expect_follows_keys<CharT>(texts[0], texts[1]);
        }
    };
    std::string every_byte;
    for (int byte = 0; byte < 256; ++byte)
        every_byte += static_cast<char>(byte);
    check(every_byte);
    check(std::string("aAb\0\xE9_", 6));
    check(u"aA\u017FS\0\uFFFF\u212Ak"_us);
}

// Apart from the keys above, which are computed as the library does it.
TEST(CaseInsensitive, WrittenOutValues)
{
    EXPECT_TRUE(less<char>()("z", "_")) << "bytes fold to upper case";
    EXPECT_TRUE(less<char16>()(u"_"_usv, u"Z"_usv)) << "units fold to lower case";
    EXPECT_EQ(hash<char>()("ab"), 1041u) << "the multiplier of bytes is 15";
    EXPECT_EQ(hash<char16>()(u"AB"_usv), 3105u) << "the multiplier of units is 31";
    EXPECT_TRUE(equal_to<char16>()(u"\u017F\u212A"_usv, u"Sk"_usv));
    EXPECT_FALSE(equal_to<char16>()(u"\u00DF"_usv, u"ss"_usv)) << "lengths never change";
    EXPECT_FALSE(equal_to<char16>()(u"\U00010400"_usv, u"\U00010428"_usv))
        << "pairs are not joined";
}

}  // namespace
