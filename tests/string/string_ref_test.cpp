#include <kiv/string_ref.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <ranges>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_set>

#include <gtest/gtest.h>

#include "support/errors.h"

namespace {

using kiv::basic_string_ref;
using kiv::char16;
using kivtest::what_of;
using namespace kiv::literals;

constexpr std::size_t NPOS = static_cast<std::size_t>(-1);

// What a unit counts as: unsigned.
template <class CharT>
char32_t number(CharT c)
{
    if constexpr (std::is_same_v<CharT, char16>)
        return static_cast<char16_t>(c);
    else
        return static_cast<char32_t>(static_cast<std::make_unsigned_t<CharT>>(c));
}

// Zero, a letter, the greatest and the least value that a signed type could
// misplace, all ones.
template <class CharT>
CharT unit(std::size_t i)
{
    constexpr std::uint32_t TOP = std::uint32_t{1} << (8 * sizeof(CharT) - 1);
    constexpr std::uint32_t values[] = {0, 'a', TOP - 1, TOP, TOP - 1 + TOP};
    if constexpr (std::is_same_v<CharT, char16>)
        return static_cast<char16_t>(values[i]);
    else
        return static_cast<CharT>(values[i]);
}

// The same text in the standard's own string.
template <class CharT>
std::u32string numbers(basic_string_ref<CharT> text)
{
    std::u32string copy;
    for (const CharT c : text)
        copy += number(c);
    return copy;
}

template <class CharT>
std::basic_string<CharT> from_ascii(std::string_view text)
{
    std::basic_string<CharT> s;
    for (const char c : text)
        s += static_cast<CharT>(static_cast<char16_t>(c));
    return s;
}

template <class CharT>
class StringRef : public testing::Test {
protected:
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(random() % n); }

    std::basic_string<CharT> random_text(std::size_t longest)
    {
        std::basic_string<CharT> s;
        for (std::size_t n = below(longest + 1); n != 0; --n)
            s += unit<CharT>(below(5));
        return s;
    }

    // Mostly near the text, at times the greatest values.
    std::size_t random_position(std::size_t size)
    {
        const std::size_t pick = below(size + 5);
        return pick < size + 3 ? pick : pick - size - 5;
    }

    std::mt19937 random{4711};
};

using CharTypes = testing::Types<char, char16, char16_t, wchar_t>;
TYPED_TEST_SUITE(StringRef, CharTypes);

TYPED_TEST(StringRef, ConstructionAndAccess)
{
    using view = basic_string_ref<TypeParam>;
    using string = std::basic_string<TypeParam>;
    static_assert(std::is_trivially_copyable_v<view> && sizeof(view) == 16);
    const string s = from_ascii<TypeParam>(std::string_view("he\0lo", 5));
    const view v = s;
    EXPECT_EQ(view(s.c_str()).size(), 2u) << "a pointer's text ends at zero";
    EXPECT_EQ(v.max_size(), NPOS) << "whatever the size of a character";
    EXPECT_TRUE(&v.front() == s.data() && &v.back() == &v.at(4));
    EXPECT_EQ(string(v.rbegin(), v.rend()), string(s.rbegin(), s.rend()));
    EXPECT_EQ(string(v), s);
    EXPECT_EQ(view().to_string(), string());

    view a = v.substr(1, 3);
    view b;
    a.swap(b);
    b.remove_prefix(1);
    b.remove_suffix(1);
    EXPECT_TRUE(a.empty() && b.data() == s.data() + 2 && b.size() == 1);
}

TYPED_TEST(StringRef, Bounds)
{
    const auto text = from_ascii<TypeParam>("hello");
    const basic_string_ref<TypeParam> v = text;
    const auto message = [](auto call) { return what_of<std::out_of_range>(call); };
    const std::string prefix = "basic_string_ref<CharT>::";
    TypeParam target[5];
    // The position at the end is allowed.
    EXPECT_TRUE(v.substr(5).data() == v.end() && v.substr(5).empty());
    EXPECT_EQ(v.copy(target, 5, 5), 0u);
    EXPECT_EQ(message([&] { v.at(5); }), prefix + "at");
    for (const std::size_t pos : {std::size_t{6}, NPOS}) {
        EXPECT_EQ(message([&] { v.copy(target, 0, pos); }), prefix + "copy");
        EXPECT_EQ(message([&] { v.substr(pos, 0); }), prefix + "substr");
        EXPECT_EQ(message([&] { v.compare(pos, 0, v); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(0, 0, v, pos, 0); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(pos, 0, v.data()); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(pos, 0, v.data(), 1); }), prefix + "compare");
    }
}

TYPED_TEST(StringRef, CopyMayOverlap)
{
    for (std::size_t to = 0; to <= 5; ++to)
        for (std::size_t pos = 0; pos <= 5; ++pos)
            for (const std::size_t n : {std::size_t{0}, std::size_t{3}, NPOS}) {
                auto s = from_ascii<TypeParam>("hello.....");
                const basic_string_ref<TypeParam> v(s.data(), 5);
                const std::size_t count = std::min(n, 5 - pos);
                auto want = s;
                want.replace(to, count, s.substr(pos, count));
                EXPECT_EQ(v.copy(s.data() + to, n, pos), count);
                EXPECT_EQ(s, want) << to << ' ' << pos << ' ' << n;
            }
}

// --- Comparison --------------------------------------------------------------------

// What comparing a with b gives; a longer text gives 2 against a view, 1 against
// a pointer. A byte comparison fixes only the sign.
template <class CharT>
void expect_compares(int got, const std::u32string& a, const std::u32string& b,
                     int if_longer)
{
    const auto [x, y] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (x == a.end() || y == b.end())
        EXPECT_EQ(got, x != a.end() ? if_longer : y != b.end() ? -1 : 0);
    else if (std::is_same_v<CharT, char16>)
        EXPECT_EQ(got, static_cast<int>(*x) - static_cast<int>(*y));
    else if (std::is_same_v<CharT, char>)
        EXPECT_EQ(got > 0, *x > *y);
    else
        EXPECT_EQ(got, *x > *y ? 1 : -1);
}

TYPED_TEST(StringRef, CompareValues)
{
    for (int round = 0; round < 5000 && !this->HasFailure(); ++round) {
        // The second text often begins like the first.
        const auto a = this->random_text(4);
        const auto b =
            a.substr(0, this->below(2) * this->below(5)) + this->random_text(3);
        const basic_string_ref<TypeParam> v = a;
        const basic_string_ref<TypeParam> w = b;
        const std::u32string m = numbers(v);
        const std::u32string n = numbers(w);
        const std::size_t pos = this->below(a.size() + 1);
        const std::size_t len = this->random_position(a.size());
        const std::size_t vpos = this->below(b.size() + 1);
        const std::size_t vlen = this->random_position(b.size());
        const std::u32string part = m.substr(pos, len);
        SCOPED_TRACE(testing::PrintToString(m) + testing::PrintToString(n));

        expect_compares<TypeParam>(v.compare(w), m, n, 2);
        expect_compares<TypeParam>(v.compare(pos, len, w), part, n, 2);
        expect_compares<TypeParam>(v.compare(pos, len, w, vpos, vlen), part,
                                   n.substr(vpos, vlen), 2);
        expect_compares<TypeParam>(v.compare(pos, len, w.data(), w.size()), part, n, 1);
        // Zero-terminated text gives no difference.
        const std::u32string z = n.substr(0, n.find(U'\0'));
        EXPECT_EQ(v.compare(b.c_str()), (m > z) - (m < z));
        EXPECT_EQ(v.compare(pos, len, b.c_str()), (part > z) - (part < z));
        EXPECT_EQ(v == w, m == n);
        EXPECT_EQ(v <=> w, m <=> n);
    }
}

// --- Search ------------------------------------------------------------------------

// Each search beside the same search of the standard's own string, in every form.
TYPED_TEST(StringRef, SearchFamily)
{
    for (int round = 0; round < 5000 && !this->HasFailure(); ++round) {
        const auto text = this->random_text(8);
        const auto needle = this->random_text(3);
        const TypeParam c = unit<TypeParam>(this->below(5));
        const std::size_t pos = this->random_position(text.size());
        const basic_string_ref<TypeParam> v = text;
        const basic_string_ref<TypeParam> w = needle;
        const std::u32string m = numbers(v);
        const std::u32string n = numbers(w);
        const std::u32string z = n.substr(0, n.find(U'\0'));
        const char32_t d = number(c);
        SCOPED_TRACE(testing::PrintToString(m) + testing::PrintToString(n) +
                     std::to_string(std::uint32_t{d}) + " at " + std::to_string(pos));

        const auto check = [&](const char* name, auto search) {
            EXPECT_EQ(search(v, w, pos), search(m, n, pos)) << name;
            EXPECT_EQ(search(v, w), search(m, n)) << name;
            EXPECT_EQ(search(v, w.data(), pos, w.size()), search(m, n, pos)) << name;
            EXPECT_EQ(search(v, needle.c_str(), pos), search(m, z, pos)) << name;
            EXPECT_EQ(search(v, needle.c_str()), search(m, z)) << name;
            EXPECT_EQ(search(v, c, pos), search(m, d, pos)) << name;
            EXPECT_EQ(search(v, c), search(m, d)) << name;
        };
#define KIV_SEARCH(NAME) \
    check(#NAME, [](const auto& in, auto... args) { return in.NAME(args...); })
        KIV_SEARCH(find);
        KIV_SEARCH(rfind);
        KIV_SEARCH(find_first_of);
        KIV_SEARCH(find_first_not_of);
        KIV_SEARCH(find_last_of);
        KIV_SEARCH(find_last_not_of);
#undef KIV_SEARCH
        EXPECT_EQ(v.starts_with(w), m.starts_with(n));
        EXPECT_EQ(v.ends_with(w), m.ends_with(n));
        EXPECT_EQ(v.contains(w), m.find(n) != m.npos);
        EXPECT_EQ(v.starts_with(c), m.starts_with(d));
        EXPECT_EQ(v.ends_with(c), m.ends_with(d));
        EXPECT_EQ(v.contains(c), m.find(d) != m.npos);
        EXPECT_EQ(std::hash<basic_string_ref<TypeParam>>()(v),
                  std::hash<basic_string_ref<TypeParam>>()(decltype(text)(text)));
    }
}

// A text in every type that holds it: equal in either order, and before a longer one.
template <class View, class... Texts>
void expect_one_text(View view, const Texts&... texts)
{
    const typename View::value_type longer_units[] = {view[0], view[1], u'!'};
    const View longer(longer_units, 3);
    const auto check = [&](const auto& text) {
        EXPECT_TRUE(view == text && text == view && longer != text && text != longer);
        EXPECT_TRUE(text < longer && longer > text && view <= text && text >= view);
        EXPECT_TRUE(longer.starts_with(text) && view.find(text) == 0);
        EXPECT_EQ(View(text).size(), view.size());
    };
    (check(texts), ...);
}

TEST(StringRefConversion, FromAndToTheStandards)
{
    const basic_string_ref<char> bytes = "ab";
    expect_one_text(bytes, bytes, std::string_view("ab"), std::string("ab"), "ab");
    const basic_string_ref<char16> text = u"ab"_usv;
    expect_one_text(text, text, std::basic_string_view<char16>(text), u"ab"_us,
                    std::u16string_view(u"ab"), std::u16string(u"ab"), u"ab");

    const std::string_view standard = bytes;
    const std::u16string_view units = text;
    EXPECT_TRUE(standard == "ab" && units == u"ab" && units.size() == text.size());
    std::string copy(bytes);
    copy = bytes;
    kiv::ustring wide = text;
    wide = text;
    wide += text;
    EXPECT_TRUE(copy == "ab" && wide == u"abab"_us);
    static_assert(std::ranges::view<basic_string_ref<char>> &&
                  std::ranges::borrowed_range<basic_string_ref<char16>>);
    const std::unordered_set<kiv::ustring> words{u"one"_us, u"two"_us};
    EXPECT_TRUE(words.contains(u"two"_us) && !words.contains(u"2"_us));
    EXPECT_EQ(std::hash<kiv::ustring>()(wide),
              std::hash<basic_string_ref<char16>>()(u"abab"));
}

TEST(StringRefLiteral, Usv)
{
    constexpr basic_string_ref<char16> text = u"a\0\xD800"_usv;
    static_assert(text.size() == 3 && text[2] == char16(u'\xD800'));
    static_assert((u""_usv).empty() && (u"abc"_usv).find(u'c') == 2);
    EXPECT_EQ(text.data()[3], char16()) << "zero-terminated";
}

// --- Streams -----------------------------------------------------------------------

// Everything that an insertion leaves behind.
template <class CharT, class Text>
auto insert(const Text& text, std::ios_base::fmtflags adjust,
            std::ios_base::iostate state)
{
    std::basic_ostringstream<CharT> os;
    os.width(7);
    os.fill(static_cast<CharT>('*'));
    os.setf(adjust, std::ios_base::adjustfield);
    os.setstate(state);
    os << text << text;
    return std::tuple(os.str(), os.rdstate(), os.width());
}

TEST(StringRefStream, InsertsLikeAString)
{
    using ios = std::ios_base;
    const std::string text("a\0b", 3);
    const std::wstring wide(L"a\0b", 3);
    for (const auto adjust : {ios::left, ios::right})
        for (const auto state : {ios::goodbit, ios::failbit}) {
            EXPECT_EQ(insert<char>(basic_string_ref<char>(text), adjust, state),
                      insert<char>(text, adjust, state));
            EXPECT_EQ(insert<wchar_t>(basic_string_ref<wchar_t>(wide), adjust, state),
                      insert<wchar_t>(wide, adjust, state));
        }
}

}  // namespace
