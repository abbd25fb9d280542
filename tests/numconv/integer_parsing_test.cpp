// The oracle is the C library, but for what it does not know.

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <kiv/numconv.h>

#include "parsing_check.h"

namespace {

using namespace kivtest;
using namespace kiv::literals;
using namespace std::literals;

template <class T>
class IntegerParsing : public testing::Test {
};
using Integers =
    testing::Types<int, long, long long, unsigned, unsigned long, unsigned long long>;
TYPED_TEST_SUITE(IntegerParsing, Integers);

// Of the error, if the text has no number.
std::string message(int base, std::size_t end)
{
    if (end != 0)
        return "";
    const char* const name = base == 8 ? "octal" : base == 16 ? "hexadecimal" : "decimal";
    if (base == 0 || base == 8 || base == 10 || base == 16)
        return name + " number expected"s;
    const char highest = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ"[base - 1];
    return "digit ([0.."s + highest + "]) expected";
}

// Text, base, value, end.
using Row = std::tuple<std::u16string, int, int, std::size_t>;

const Row ROWS[] = {
    // White space is ASCII.
    Row(u" \t\n\v\f\r7~", 10, 7, 7), Row(u"\u00A07", 10, 0, 0), Row(u"\u30007", 10, 0, 0),
    Row(u"\0347", 10, 0, 0), Row(u"", 16, 0, 0), Row(u" ", 8, 0, 0),
    // A prefix is one before a digit only.
    Row(u"0x1A", 0, 26, 4), Row(u"0XfFg", 0, 255, 4), Row(u"0x1", 16, 1, 3),
    Row(u"017", 0, 15, 3), Row(u"08", 0, 0, 1), Row(u"0x", 0, 0, 1),
    Row(u"0xg", 16, 0, 1), Row(u"0x0x1", 16, 0, 3), Row(u"1x1", 16, 1, 1),
    Row(u"0b1", 0, 0, 1),
    // A zero unit ends the text.
    Row(u"12\0003"s, 10, 12, 2), Row(u"\0001"s, 10, 0, 0), Row(u"0x\0001"s, 0, 0, 1),
    // Digits of all scripts, mixed, behind many of ASCII, in prefixes; nothing else.
    Row(u"\u0661\u0662", 10, 12, 2), Row(u"1\u0E52\uFF13", 10, 123, 3),
    Row(u"12345678\u0669", 10, 123456789, 9),
    Row(u"000000000000000012\u0663", 10, 123, 19), Row(u"\u0967f", 16, 31, 2),
    Row(u"\u0663", 3, 0, 0), Row(u"\u0660x\u0661A", 0, 26, 4),
    Row(u"\u0660\u0661\u0667", 0, 15, 3), Row(u"0x\uFF21", 16, 0, 1),
    Row(u"1\u00B2", 10, 1, 1), Row(u"1\uFFFF", 10, 1, 1), Row(u"\uFF0D1", 10, 0, 0),
    Row(u"7\xD835\xDFCE", 10, 7, 1)};

TYPED_TEST(IntegerParsing, Text)
{
    using T = TypeParam;
    for (const auto& [text, base, value, end] : ROWS) {
        const Expected<T> want{static_cast<T>(value), end, message(base, end)};
        expect_parsed(text, want, want, base);
    }
    EXPECT_EQ(strto(T(), "10"), T(10));  // without an end and a base
    EXPECT_EQ(sto(T(), u"10"_usv), T(10));
    EXPECT_EQ(strto(T(), std::string(1'000'000, '9').c_str()),
              std::numeric_limits<T>::max());
}

// Random numbers, and those at the limits and where arithmetic of some width wraps.
TYPED_TEST(IntegerParsing, AgreesWithTheCLibrary)
{
    using T = TypeParam;
    using Limits = std::numeric_limits<T>;
    using Wide = std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>;
    static const char* const BEGINNINGS[] = {"", "0x", "-", " \t0", "-0X", "+", " +0x"};
    constexpr auto OTHERS = "/:@[`{-+. \0"sv;
    const mpz_class end = 1 + mpz_class(static_cast<unsigned long>(Limits::max()));
    Random random;
    for (unsigned i = 0; i < 3'700 && !this->HasFailure(); ++i) {
        const int base = i % 37 == 1 ? 16 : static_cast<int>(i % 37);
        mpz_class value = (mpz_class(random.engine()) << 9) >> random.below(72);
        if (i % 2 == 0)
            value = end * random.below(i % 4 == 0 ? 5 : 72) + random.below(5) - 2;
        if (i % 8 == 0)
            value += end / (1 + random.below(99));
        std::string text = BEGINNINGS[random.below(std::is_signed_v<T> ? 7 : 5)];
        text += mpz_class(abs(value)).get_str(base != 0 ? base : 10);
        if (random.below(4) == 0)
            text[random.below(static_cast<unsigned>(text.size()))] =
                OTHERS[random.below(11)];
        if (random.below(2) == 0)
            std::transform(text.begin(), text.end(), text.begin(), ::toupper);
        if (!std::is_signed_v<T> && text.find('+') != text.npos)
            continue;  // the shapes refuse it, from_chars_c need not

        char* past;
        Wide wide;
        errno = 0;
        if constexpr (std::is_signed_v<T>)
            wide = std::strtoll(text.c_str(), &past, base);
        else
            wide = std::strtoull(text.c_str(), &past, base);
        const Wide limited = std::clamp<Wide>(wide, Limits::min(), Limits::max());
        const bool above = errno == ERANGE || limited != wide;
        const auto n = static_cast<std::size_t>(past - text.c_str());
        Expected<T> want{static_cast<T>(limited), n,
                         above ? "number out of range" : message(base, n)};
        if (!std::is_signed_v<T> && text.substr(0, n).find('-') != text.npos)
            want = {0, 0, message(base, 0)};
        expect_parsed(text, want, want, base);
    }
    if (!std::is_signed_v<T>)
        expect_shapes(" +1"s, Expected<T>{0, 0, message(10, 0)}, 10);
}

TEST(CharIterator, MovesBetweenBothEnds)
{
    kiv::BasicCharIterator<char16> it(u"12 34"_usv);
    EXPECT_EQ(kiv::stoi_c(it), 12);
    EXPECT_EQ(it.rest(), u" 34"_usv);
    EXPECT_EQ(kiv::stoul_c(it, 8), 034u);
    EXPECT_EQ(*++it, char16(u'\uFFFF'));
    EXPECT_EQ(error_of([&] { it.position(6); }),
              "std::out_of_range: BasicCharIterator<CharT>::position");
    EXPECT_EQ(it.position(), 5u);
    it.position(1);
    EXPECT_EQ(*it, char16(u'2'));
    EXPECT_EQ(*kiv::CharIterator(""), '\0');
}

}  // namespace
