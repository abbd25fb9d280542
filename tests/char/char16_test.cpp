#include <kiv/char16.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/errors.h"

namespace {

using kiv::char16;
using kiv::char16_int;
using kiv::ustring;
using namespace kiv::literals;
using traits = std::char_traits<char16>;

// Conversions decide which overloads users can call: the ways in are implicit,
// the ways back explicit, and none leads to a number that could be sign-extended.
static_assert(!std::is_aggregate_v<char16> && sizeof(char16[3]) == 6);
static_assert(std::is_convertible_v<char16_t, char16> &&
              std::is_convertible_v<char16, char16_int>);
static_assert(!std::is_convertible_v<char16, char16_t> &&
              !std::is_convertible_v<char16_int, char16_t> &&
              !std::is_convertible_v<char16_int, char16> &&
              !std::is_constructible_v<int, char16>);

char16 unit(std::size_t value)
{
    return static_cast<char16_t>(value);
}

TEST(Char16Traits, EveryUnit)
{
    for (unsigned value = 0; value < 0x10000; ++value) {
        const char16_int i = traits::to_int_type(unit(value));
        ASSERT_EQ(static_cast<char16_t>(i), value);
        ASSERT_EQ(traits::to_char_type(i), unit(value));
        ASSERT_EQ(traits::eq_int_type(i, traits::eof()), value == 0xFFFF);
        ASSERT_EQ(static_cast<char16_t>(traits::not_eof(i)), value == 0xFFFF ? 0 : value);
        ASSERT_EQ(traits::lt(unit(value), u'\x8000'), value < 0x8000) << "no sign";
        ASSERT_EQ(i <=> char16_int(u'\x8000'), value <=> 0x8000u);
    }
}

TEST(Char16Traits, CompareGivesTheDifference)
{
    const ustring a = u"A\0\uFFFF"_us;
    const ustring b = u"A\uFFFF\0"_us;
    EXPECT_EQ(traits::compare(a.data(), b.data(), 1), 0) << "units past n do not count";
    EXPECT_EQ(traits::compare(a.data(), b.data(), 3), -65535);
    EXPECT_EQ(traits::compare(a.data() + 1, b.data() + 2, 2), 65535)
        << "a zero unit does not end the text";
}

// A forward copy spoils the first move, a backward copy the second.
constexpr bool overlapping_moves_keep_text()
{
    char16 a[5] = {u'a', u'b', u'c', u'd', u'e'};
    const bool returns_target = traits::move(a + 1, a, 3) == a + 1 &&        // aabce
                                traits::_Move_s(a, 0, a + 2, 3) == a &&      // bcece
                                traits::_Copy_s(a + 3, 0, a, 2) == a + 3 &&  // bcebc
                                traits::move(nullptr, a, 0) == nullptr;
    constexpr std::u16string_view want = u"bcebc";
    return returns_target && std::equal(a, a + 5, want.begin());
}

TEST(Char16Traits, OverlappingMoves)
{
    static_assert(overlapping_moves_keep_text());
    EXPECT_TRUE(overlapping_moves_keep_text()) << "at run time it is another path";
}

// The string template leans on the traits for everything: run it beside the
// one of char16_t through random edits of small strings from a small alphabet,
// so that matches, overlaps and self-references are common.
TEST(Ustring, BehavesAsU16String)
{
    std::mt19937 random(20240611);
    const auto below = [&](std::size_t n) {
        return static_cast<std::size_t>(random() % n);
    };
    static constexpr char16_t alphabet[] = {0, u'a', 0x7FFF, 0x8000, 0xD83D, 0xFFFF};
    ustring s = u"a\0\xD83D"_us;
    std::u16string model(u"a\0\xD83D", 3);
    for (int step = 0; step < 20000; ++step) {
        std::u16string b;
        for (std::size_t i = below(6); i != 0; --i)
            b += alphabet[below(std::size(alphabet))];
        const ustring a(b.begin(), b.end());
        const std::size_t pos = below(model.size() + 2);  // one past the end throws
        const std::size_t n = below(4) == 0 ? ustring::npos : below(4);
        const std::size_t choice = below(6);
        const auto edit = [&](auto& target, const auto& other) {
            const std::size_t half = target.size() / 2;
            const std::function<void()> edits[] = {
                [&] { target.insert(pos, other); },
                [&] { target.replace(pos, n, other); },
                [&] { target.replace(pos, n, target.data() + half, half / 2); },
                [&] { target.append(other.c_str()); },  // up to its first zero
                [&] { target.assign(other + target.substr(half)); },
                [&] { target.resize(half + 2, u'\u1234'); },
            };
            return kivtest::what_of<std::out_of_range>(edits[choice]);
        };
        ASSERT_EQ(edit(s, a), edit(model, b)) << step << ' ' << choice;
        ASSERT_EQ(s, ustring(model.begin(), model.end())) << step << ' ' << choice;

        ASSERT_EQ(s <=> a, model <=> b);
        ASSERT_EQ(s.find(a, pos), model.find(b, pos));
        ASSERT_EQ(s.find_last_of(a, pos), model.find_last_of(b, pos));
    }
}

}  // namespace
