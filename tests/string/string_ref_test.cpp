#include <kiv/string_ref.h>

#include <algorithm>
#include <cstdint>
#include <ios>
#include <iterator>
#include <ostream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/errors.h"

namespace {

using kiv::basic_string_ref;
using kiv::char16;
using kivtest::what_of;
using namespace kiv::literals;

constexpr std::size_t NPOS = static_cast<std::size_t>(-1);

template <class CharT>
std::uint32_t number(CharT c)
{
    if constexpr (std::is_same_v<CharT, char16>)
        return static_cast<char16_t>(c);
    else
        return static_cast<std::make_unsigned_t<CharT>>(c);
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

// The same text as unsigned numbers in the standard's own string.
template <class CharT>
std::u32string numbers(basic_string_ref<CharT> text)
{
    std::u32string copy;
    for (const CharT c : text)
        copy += static_cast<char32_t>(number(c));
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

    CharT random_unit() { return unit<CharT>(below(5)); }

    std::basic_string<CharT> random_text(std::size_t longest)
    {
        std::basic_string<CharT> s;
        for (std::size_t n = below(longest + 1); n != 0; --n)
            s += random_unit();
        return s;
    }

    // Mostly near the text, at times the greatest values.
    std::size_t random_position(std::size_t size)
    {
        const std::size_t pick = below(10);
        return pick == 0 ? NPOS : pick == 1 ? NPOS - 1 : below(size + 3);
    }

    std::mt19937 random{4711};
};

using CharTypes = testing::Types<char, char16, char16_t, wchar_t>;
TYPED_TEST_SUITE(StringRef, CharTypes);

TYPED_TEST(StringRef, ConstructionAndAccess)
{
    using view = basic_string_ref<TypeParam>;
    using string = std::basic_string<TypeParam>;
    static_assert(sizeof(view) == 2 * sizeof(void*) &&
                  std::is_trivially_copyable_v<view>);
    static_assert(std::is_convertible_v<const TypeParam*, view>);
    static_assert(std::is_convertible_v<const string&, view>);
    static_assert(std::is_convertible_v<view, string>);
    static_assert(std::is_same_v<typename view::const_reverse_iterator,
                                 std::reverse_iterator<const TypeParam*>>);
    static_assert(view::npos == NPOS);

    const string s = from_ascii<TypeParam>(std::string_view("he\0lo", 5));
    const view v = s;
    EXPECT_EQ(v.data(), s.data());
    EXPECT_EQ(v.size(), 5u) << "a string's zeros count";
    EXPECT_EQ(view(s.c_str()).size(), 2u) << "a pointer's text ends at zero";
    EXPECT_EQ(view(s.data() + 3, 1).size(), 1u);
    EXPECT_EQ(v.max_size(), NPOS) << "whatever the size of a character";
    EXPECT_TRUE(v.length() == 5 && v.end() - v.begin() == 5 && v.cend() == v.end());
    EXPECT_TRUE(&v.front() == s.data() && &v[1] == s.data() + 1);
    EXPECT_TRUE(&v.back() == s.data() + 4 && &v.at(4) == s.data() + 4);
    EXPECT_EQ(string(v.rbegin(), v.rend()), string(s.rbegin(), s.rend()));
    EXPECT_EQ(string(v.crbegin(), v.crend()), string(s.rbegin(), s.rend()));
    EXPECT_EQ(v.to_string(), s);
    EXPECT_EQ(static_cast<string>(v), s);

    view a = v;
    view b = v.substr(1, 2);
    a.swap(b);
    EXPECT_TRUE(a.data() == s.data() + 1 && a.size() == 2 && b.data() == v.data() &&
                b.size() == 5);
    b.remove_prefix(2);
    b.remove_suffix(2);
    EXPECT_TRUE(b.data() == s.data() + 2 && b.size() == 1);
    b.remove_prefix(1);
    EXPECT_TRUE(b.empty());
}

TYPED_TEST(StringRef, DefaultConstructed)
{
    using view = basic_string_ref<TypeParam>;
    const view none;
    const TypeParam zero{};
    TypeParam target[1] = {};
    EXPECT_EQ(none.data(), nullptr);
    EXPECT_TRUE(none.empty() && none.begin() == none.end() &&
                none.rbegin() == none.rend());
    EXPECT_EQ(none.to_string().size(), 0u);
    EXPECT_EQ(none.substr(0).size(), 0u);
    EXPECT_EQ(none.copy(target, 5, 0), 0u);
    EXPECT_EQ(none.find(zero, 0), NPOS);
    EXPECT_EQ(none.rfind(zero, NPOS), NPOS);
    EXPECT_EQ(none.find(none, 0), 0u);
    EXPECT_EQ(none.rfind(none, NPOS), 0u);
    EXPECT_EQ(none.find(nullptr, 0, 0), 0u);
    EXPECT_EQ(none.find_first_not_of(none, 0), NPOS);
    EXPECT_EQ(none.find_last_not_of(none, NPOS), NPOS);
    EXPECT_EQ(none.compare(view()), 0);
    EXPECT_EQ(none.compare(&zero), 0);
    EXPECT_EQ(none.compare(0, NPOS, nullptr, 0), 0);
    EXPECT_EQ(none.compare(view(target, 1)), -1);
    EXPECT_EQ(view(target, 1).compare(none), 2);
}

TYPED_TEST(StringRef, BoundsFailures)
{
    using view = basic_string_ref<TypeParam>;
    const auto text = from_ascii<TypeParam>("hello");
    const view v = text;
    TypeParam target[16];
    // The position at the end is allowed.
    EXPECT_EQ(v.substr(5, NPOS).data(), v.end());
    EXPECT_EQ(v.substr(5).size(), 0u);
    EXPECT_EQ(v.copy(target, 5, 5), 0u);
    EXPECT_EQ(v.compare(5, NPOS, view()), 0);
    EXPECT_EQ(v.compare(5, NPOS, v, 5, NPOS), 0);

    const auto message = [](auto call) { return what_of<std::out_of_range>(call); };
    const std::string prefix = "basic_string_ref<CharT>::";
    EXPECT_EQ(message([&] { v.at(5); }), prefix + "at");
    for (const std::size_t pos : {std::size_t{6}, NPOS - 1, NPOS}) {
        EXPECT_EQ(message([&] { v.at(pos); }), prefix + "at");
        EXPECT_EQ(message([&] { v.copy(target, 0, pos); }), prefix + "copy");
        EXPECT_EQ(message([&] { v.substr(pos, 0); }), prefix + "substr");
        EXPECT_EQ(message([&] { v.compare(pos, 0, v); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(pos, 0, v, 0, 0); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(0, 0, v, pos, 0); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(pos, 0, text.c_str()); }), prefix + "compare");
        EXPECT_EQ(message([&] { v.compare(pos, 0, text.data(), 1); }),
                  prefix + "compare");
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

int sign(int value)
{
    return (value > 0) - (value < 0);
}

// The value that comparing a with b should give; a byte comparison fixes only
// the sign, so that is all this returns for char.
template <class CharT>
int expected(const std::u32string& a, const std::u32string& b, int if_longer, bool plain)
{
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (a[i] != b[i] && std::is_same_v<CharT, char16> && !plain)
            return static_cast<int>(a[i]) - static_cast<int>(b[i]);
        else if (a[i] != b[i])
            return a[i] < b[i] ? -1 : 1;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? if_longer : 0;
}

TYPED_TEST(StringRef, CompareValues)
{
    using view = basic_string_ref<TypeParam>;
    for (int round = 0; round < 5000; ++round) {
        // The second text often begins like the first.
        const auto a = this->random_text(4);
        const auto b = this->below(2) != 0
                           ? a.substr(0, this->below(a.size() + 1)) + this->random_text(2)
                           : this->random_text(4);
        const view v = a;
        const view w = b;
        const std::u32string m = numbers(v);
        const std::u32string n = numbers(w);
        const std::u32string z = n.substr(0, n.find(U'\0'));
        SCOPED_TRACE(testing::Message()
                     << testing::PrintToString(m) << testing::PrintToString(n));

        const auto check = [](int got, const std::u32string& x, const std::u32string& y,
                              int if_longer, bool plain) {
            const bool prefix = x.starts_with(y) || y.starts_with(x);
            const bool sign_only = std::is_same_v<TypeParam, char> && !plain && !prefix;
            ASSERT_EQ(sign_only ? sign(got) : got,
                      expected<TypeParam>(x, y, if_longer, plain));
        };
        check(v.compare(w), m, n, 2, false);
        check(v.compare(b.c_str()), m, z, 1, true);
        check(v.compare(0, NPOS, b.data(), b.size()), m, n, 1, false);
        EXPECT_EQ(v == w, m == n);
        EXPECT_EQ(v <=> w, m <=> n);

        const std::size_t pos = this->below(a.size() + 1);
        const std::size_t len = this->random_position(a.size());
        const std::size_t vpos = this->below(b.size() + 1);
        const std::size_t vlen = this->random_position(b.size());
        const std::u32string part = m.substr(pos, len);
        check(v.compare(pos, len, w), part, n, 2, false);
        check(v.compare(pos, len, w, vpos, vlen), part, n.substr(vpos, vlen), 2, false);
        check(v.compare(pos, len, b.data() + vpos, b.size() - vpos), part, n.substr(vpos),
              1, false);
        check(v.compare(pos, len, b.c_str()), part, z, 1, true);
        if (this->HasFailure())
            return;
    }
}

// Written-out values, apart from the formulas above.
TEST(StringRefCompare, WrittenOutValues)
{
    const basic_string_ref<char> abc = "abc";
    EXPECT_EQ(abc.compare(basic_string_ref<char>("ab")), 2);
    EXPECT_EQ(abc.compare(0, 3, "ab", 2), 1);
    EXPECT_EQ(abc.compare("ab"), 1);
    EXPECT_EQ(abc.compare(1, 2, "bc"), 0);
    const basic_string_ref<char> ab = "ab";
    EXPECT_EQ(ab.compare(abc), -1);
    EXPECT_EQ(ab.compare(0, NPOS, "abc", 3), -1);
    EXPECT_EQ(ab.compare("abc"), -1);
    EXPECT_EQ(basic_string_ref<char>("a\0b", 3).compare("a"), 1) << "the view goes on";
    EXPECT_EQ(basic_string_ref<char>("a\0b", 3).compare("a\0b"), 1)
        << "the pointer's text ends";
    EXPECT_EQ((u"\u00E9"_usv).compare(u"A"_usv), 168);
    EXPECT_EQ((u"A"_usv).compare(0, 1, (u"\u00E9"_usv).data(), 1), -168);
    EXPECT_EQ((u"\u00E9"_usv).compare((u"A"_usv).data()), 1)
        << "no difference to zero-terminated text";
    EXPECT_EQ(
        basic_string_ref<char16_t>(u"\u00E9").compare(basic_string_ref<char16_t>(u"A")),
        1);
    static constexpr wchar_t negative[] = {static_cast<wchar_t>(-1), 0};
    EXPECT_EQ(
        basic_string_ref<wchar_t>(negative).compare(basic_string_ref<wchar_t>(L"A")), 1);
    EXPECT_EQ(basic_string_ref<wchar_t>(negative).compare(L"A"), 1);
}

// --- Search ------------------------------------------------------------------------

// Each search beside the same search of the standard's own view, in every form.
TYPED_TEST(StringRef, SearchFamily)
{
    using view = basic_string_ref<TypeParam>;
    for (int round = 0; round < 5000; ++round) {
        const auto text = this->random_text(8);
        const auto needle = this->random_text(3);
        const TypeParam c = this->random_unit();
        const std::size_t pos = this->random_position(text.size());
        const view v = text;
        const view w = needle;
        const std::u32string m = numbers(v);
        const std::u32string n = numbers(w);
        const std::u32string z = n.substr(0, n.find(U'\0'));
        const auto d = static_cast<char32_t>(number(c));

        const auto check = [&](const char* name, auto search) {
            SCOPED_TRACE(testing::Message() << name << " in " << testing::PrintToString(m)
                                            << " of " << testing::PrintToString(n) << ", "
                                            << number(c) << " at " << pos);
            EXPECT_EQ(search(v, w, pos), search(m, n, pos)) << "view";
            EXPECT_EQ(search(v, w), search(m, n)) << "view, default position";
            EXPECT_EQ(search(v, needle.data(), pos, needle.size()), search(m, n, pos))
                << "length";
            EXPECT_EQ(search(v, needle.c_str(), pos), search(m, z, pos)) << "pointer";
            EXPECT_EQ(search(v, needle.c_str()), search(m, z))
                << "pointer, default position";
            EXPECT_EQ(search(v, c, pos), search(m, d, pos)) << "character";
            EXPECT_EQ(search(v, c), search(m, d)) << "character, default position";
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
        if (this->HasFailure())
            return;
    }
}

TEST(StringRefLiteral, Usv)
{
    constexpr basic_string_ref<char16> text = u"a\0\xD800"_usv;
    static_assert(text.size() == 3 && text[0] == char16(u'a') &&
                  text[2] == char16(u'\xD800'));
    static_assert((u""_usv).empty() && (u"abc"_usv).find(u'c') == 2);
    EXPECT_EQ(text.data()[3], char16()) << "zero-terminated";
    EXPECT_EQ(text.data(), (u"a\0\xD800"_usv).data()) << "static text";
}

// --- Streams -----------------------------------------------------------------------

// Takes at most `room` characters, then fails or throws; notes block writes.
template <class CharT>
class Sink : public std::basic_streambuf<CharT> {
public:
    using traits = std::char_traits<CharT>;

    Sink(std::size_t room, bool throws) : m_room(room), m_throws(throws) {}

    std::basic_string<CharT> text;
    std::vector<std::streamsize> blocks;

protected:
    typename traits::int_type overflow(typename traits::int_type c) override
    {
        const CharT unit = traits::to_char_type(c);
        return take(&unit, 1) == 1 ? c : traits::eof();
    }
    std::streamsize xsputn(const CharT* s, std::streamsize n) override
    {
        blocks.push_back(n);
        return take(s, n);
    }

private:
    std::streamsize take(const CharT* s, std::streamsize n)
    {
        const std::size_t count =
            std::min(static_cast<std::size_t>(n), m_room - text.size());
        text.append(s, count);
        if (m_throws && count < static_cast<std::size_t>(n))
            throw std::runtime_error("sink");
        return static_cast<std::streamsize>(count);
    }

    std::size_t m_room;
    bool m_throws;
};

struct Setting {
    std::streamsize width;
    std::ios_base::fmtflags adjust;
    std::size_t room;
    bool throws;
    std::ios_base::iostate mask;
};

// Everything that an insertion leaves behind.
template <class CharT, class Text>
auto insert(const Text& text, const Setting& setting)
{
    Sink<CharT> sink(setting.room, setting.throws);
    std::basic_ostream<CharT> os(&sink);
    os.width(setting.width);
    os.fill(static_cast<CharT>('*'));
    os.setf(setting.adjust, std::ios_base::adjustfield);
    os.exceptions(setting.mask);
    std::string thrown;
    try {
        os << text;
    } catch (const std::exception& error) {
        thrown = error.what();
    }
    return std::tuple(sink.text, sink.blocks, os.rdstate(), os.width(), thrown);
}

template <class CharT>
void expect_inserts_like_a_string()
{
    using ios = std::ios_base;
    for (const std::string_view ascii : {std::string_view(), std::string_view("a\0b", 3)})
        for (const std::streamsize width : {0, 1, 3, 4, 7})
            for (const auto adjust :
                 {ios::fmtflags{}, ios::left, ios::right, ios::internal})
                for (const std::size_t room : {0u, 1u, 2u, 5u, 100u})
                    for (const bool throws : {false, true})
                        for (const auto mask : {ios::goodbit, ios::badbit}) {
                            const auto text = from_ascii<CharT>(ascii);
                            const Setting s{width, adjust, room, throws, mask};
                            EXPECT_EQ(insert<CharT>(basic_string_ref<CharT>(text), s),
                                      insert<CharT>(text, s))
                                << width << ' ' << adjust << ' ' << room << ' ' << throws
                                << mask;
                        }
}

TEST(StringRefStream, InsertsLikeAString)
{
    expect_inserts_like_a_string<char>();
    expect_inserts_like_a_string<wchar_t>();
}

TEST(StringRefStream, WrittenOutRows)
{
    using ios = std::ios_base;
    const basic_string_ref<char> ab = "ab";
    const std::vector<std::streamsize> one_block = {2};
    EXPECT_EQ(insert<char>(ab, {5, {}, 100, false, ios::goodbit}),
              std::tuple("***ab", one_block, ios::goodbit, 0, ""));
    EXPECT_EQ(insert<char>(ab, {5, ios::left, 100, false, ios::goodbit}),
              std::tuple("ab***", one_block, ios::goodbit, 0, ""));
    EXPECT_EQ(insert<char>(ab, {0, {}, 1, false, ios::goodbit}),
              std::tuple("a", one_block, ios::badbit, 0, ""))
        << "a short write";
    EXPECT_EQ(std::get<4>(insert<char>(ab, {0, {}, 1, true, ios::badbit})), "sink");

    std::ostringstream failed;
    failed.setstate(ios::failbit);
    EXPECT_EQ(&(failed << ab), &failed);
    EXPECT_EQ(failed.str(), "") << "no sentry, no text";
}

}  // namespace
