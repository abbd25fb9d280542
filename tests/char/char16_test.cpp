#include <kiv/char16.h>

#include <array>
#include <functional>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/errors.h"

namespace {

using kiv::char16;
using kiv::char16_int;
using kiv::ustring;
using namespace kiv::literals;
using traits = std::char_traits<char16>;

// --- Types: conversions decide which overloads users can call ------------------

static_assert(std::is_trivial_v<char16> && std::is_trivial_v<char16_int>);
static_assert(!std::is_aggregate_v<char16> && !std::is_aggregate_v<char16_int>);
static_assert(!std::is_polymorphic_v<char16> && !std::is_polymorphic_v<char16_int>);
static_assert(sizeof(char16) == 2 && sizeof(char16_int) == 2 && sizeof(char16[3]) == 6);
static_assert(alignof(char16) == 2 && alignof(char16_int) == 2);
static_assert(char16() == char16(u'\0') && char16{} == char16(u'\0'));
static_assert(char16_int() == char16_int(u'\0'));

static_assert(std::is_convertible_v<char16_t, char16>);
static_assert(std::is_convertible_v<char16_t, char16_int>);
static_assert(std::is_convertible_v<char16, char16_int>);
// The ways back are explicit: else overloads for the three types are ambiguous.
static_assert(!std::is_convertible_v<char16, char16_t>);
static_assert(!std::is_convertible_v<char16_int, char16_t>);
static_assert(!std::is_convertible_v<char16_int, char16>);
static_assert(std::is_constructible_v<char16_t, char16>);
static_assert(std::is_constructible_v<char16_t, char16_int>);
static_assert(std::is_constructible_v<char16, char16_int>);
// No way to a number but through char16_t, so nothing can be sign-extended.
static_assert(!std::is_constructible_v<int, char16> &&
              !std::is_constructible_v<bool, char16>);
static_assert(!std::is_convertible_v<const char16_t*, const char16*>);

static_assert(std::is_same_v<traits::char_type, char16>);
static_assert(std::is_same_v<traits::int_type, char16_int>);
static_assert(std::is_same_v<traits::off_type, std::streamoff> &&
              sizeof(std::streamoff) == 8);
static_assert(std::is_same_v<traits::pos_type, std::streampos>);
static_assert(std::is_same_v<traits::state_type, std::mbstate_t>);
static_assert(std::is_same_v<ustring, std::basic_string<char16, std::char_traits<char16>,
                                                        std::allocator<char16>>>);
static_assert(ustring::npos == static_cast<std::size_t>(-1));

char16 unit(std::size_t value)
{
    return static_cast<char16_t>(value);
}

std::u16string plain(const ustring& s)
{
    std::u16string copy;
    for (const char16 c : s)
        copy += static_cast<char16_t>(c);
    return copy;
}

// Every member is the same relation on the same 16 bits.
TEST(Char16Traits, UnitsAreUnsignedNumbers)
{
    static constexpr unsigned values[] = {0,      1,      0x41,   0x7FFF,
                                          0x8000, 0x8001, 0xFFFE, 0xFFFF};
    for (const unsigned a : values)
        for (const unsigned b : values) {
            SCOPED_TRACE(testing::Message() << std::hex << a << ' ' << b);
            EXPECT_EQ(traits::eq(unit(a), unit(b)), a == b);
            EXPECT_EQ(traits::lt(unit(a), unit(b)), a < b);
            EXPECT_EQ(unit(a) <=> unit(b), a <=> b);
            EXPECT_EQ(char16_int(unit(a)) <=> char16_int(unit(b)), a <=> b);
            EXPECT_EQ(traits::eq_int_type(unit(a), unit(b)), a == b);
        }
    char16 stored = u'x';
    traits::assign(stored, u'\u8000');
    EXPECT_EQ(stored, char16(u'\u8000'));
}

TEST(Char16Traits, IntegersAndEndOfFile)
{
    EXPECT_EQ(static_cast<char16_t>(traits::eof()), 0xFFFF);
    for (unsigned value = 0; value < 0x10000; ++value) {
        const char16_int i = traits::to_int_type(unit(value));
        ASSERT_EQ(static_cast<char16_t>(i), value);
        ASSERT_EQ(traits::to_char_type(i), unit(value));
        ASSERT_EQ(traits::eq_int_type(i, traits::eof()), value == 0xFFFF);
        ASSERT_EQ(static_cast<char16_t>(traits::not_eof(i)), value == 0xFFFF ? 0 : value);
    }
}

TEST(Char16Traits, Compare)
{
    struct Case {
        std::u16string a, b;
        std::size_t n;
        int want;
        const char* why;
    };
    const Case cases[] = {
        {u"A", u"\u00E9", 1, -168, "the difference itself, not its sign"},
        {u"\uFFFF", {u"\0", 1}, 1, 65535, "the greatest difference"},
        {{u"\0", 1}, u"\uFFFF", 1, -65535, "the least"},
        {u"\x8000", u"\x7FFF", 1, 1, "no sign in the units"},
        {u"A", u"B", 0, 0, "no units are equal"},
        {u"AB", u"AC", 1, 0, "units past n do not count"},
        {{u"A\0B", 3}, {u"A\0C", 3}, 3, -1, "a zero unit does not end the text"},
        {u"\u0100\u0001", u"\u0001\u0100", 2, 255, "by unit, not by byte"},
    };
    for (const Case& c : cases) {
        const ustring a(c.a.begin(), c.a.end());
        const ustring b(c.b.begin(), c.b.end());
        EXPECT_EQ(traits::compare(a.data(), b.data(), c.n), c.want) << c.why;
    }
}

TEST(Char16Traits, LengthAndFind)
{
    static constexpr char16 text[] = {u'a', u'\u0061', u'\uFF61', u'\0', u'b', u'\0'};
    EXPECT_EQ(traits::length(text), 3u);
    EXPECT_EQ(traits::length(text + 3), 0u) << "the first unit is zero";
    EXPECT_EQ(traits::find(text, 6, u'a'), text);
    EXPECT_EQ(traits::find(text, 6, u'\uFF61'), text + 2) << "all 16 bits count";
    EXPECT_EQ(traits::find(text, 6, u'b'), text + 4) << "beyond a zero unit";
    EXPECT_EQ(traits::find(text, 6, u'\0'), text + 3);
    EXPECT_EQ(traits::find(text, 4, u'b'), nullptr);
    EXPECT_EQ(traits::find(text, 0, u'a'), nullptr);
    EXPECT_EQ(traits::find(nullptr, 0, u'a'), nullptr);
}

// Moves n units within 0..7; kinds 2 and 3 may not overlap.
constexpr std::array<char16, 8> moved(int kind, std::size_t to, std::size_t from,
                                      std::size_t n)
{
    std::array<char16, 8> a{};
    for (std::size_t i = 0; i < a.size(); ++i)
        a[i] = static_cast<char16_t>(i + 0x8000);
    char16* const d = a.data() + to;
    const char16* const s = a.data() + from;
    const char16* const result = kind == 0   ? traits::move(d, s, n)
                                 : kind == 1 ? traits::_Move_s(d, 0, s, n)
                                 : kind == 2 ? traits::copy(d, s, n)
                                             : traits::_Copy_s(d, 0, s, n);
    return result == d ? a : std::array<char16, 8>{};
}

// A forward copy spoils the first, a backward copy the second.
static_assert(moved(0, 2, 0, 5)[6] == char16(u'\x8004'));
static_assert(moved(0, 0, 2, 5)[4] == char16(u'\x8006'));

TEST(Char16Traits, MoveCopyAndAssign)
{
    for (int kind = 0; kind < 4; ++kind)
        for (std::size_t to = 0; to <= 4; ++to)
            for (std::size_t n = 0; n <= (kind < 2 ? 4 : to < 2 ? 2 - to : to - 2); ++n)
                for (std::size_t i = 0; i < 8; ++i) {
                    const std::size_t source = i >= to && i < to + n ? 2 + i - to : i;
                    ASSERT_EQ(moved(kind, to, 2, n)[i], unit(0x8000 + source))
                        << kind << to << n;
                }
    char16 a[4] = {u'a', u'b', u'c', u'd'};
    EXPECT_EQ(traits::assign(a + 1, 2, u'\u1234'), a + 1);
    EXPECT_EQ(traits::assign(a, 0, u'!'), a);
    EXPECT_EQ(plain(ustring(a, 4)), u"a\u1234\u1234d");
}

TEST(Ustring, Literals)
{
    EXPECT_EQ(u""_us.size(), 0u);
    EXPECT_EQ(plain(u"a\0b"_us), std::u16string(u"a\0b", 3)) << "embedded zero";
    EXPECT_EQ(plain(u"\U0001F600\xD800"_us), u"\xD83D\xDE00\xD800");
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

    ustring s;
    std::u16string model;
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
                [&] { target.erase(pos, n); },
                [&] { target.replace(pos, n, other); },
                [&] { target.replace(pos, n, target.data() + half, half / 2); },
                [&] { target.append(other.c_str()); },  // up to its first zero
                [&] { target.assign(other + target.substr(half)); },
            };
            return kivtest::what_of<std::out_of_range>(edits[choice]);
        };
        ASSERT_EQ(edit(s, a), edit(model, b)) << step << ' ' << choice;
        ASSERT_EQ(plain(s), model) << step << ' ' << choice;

        const auto sign = [](int value) { return (value > 0) - (value < 0); };
        ASSERT_EQ(sign(s.compare(a)), sign(model.compare(b)));
        ASSERT_EQ(s < a, model < b);
        ASSERT_EQ(s.find(a, pos), model.find(b, pos));
        ASSERT_EQ(s.rfind(a, pos), model.rfind(b, pos));
        ASSERT_EQ(s.find_first_not_of(a, pos), model.find_first_not_of(b, pos));
        ASSERT_EQ(s.find_last_of(a, pos), model.find_last_of(b, pos));
        if (model.size() > 40) {
            s.resize(7, u'\u1234');
            model.resize(7, u'\u1234');
        }
    }
}

}  // namespace
