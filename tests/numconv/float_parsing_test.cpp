// The oracles: the C library, which rounds decimal text of any length correctly, and
// long double for hexadecimal text, where it does not.

#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <kiv/character.h>
#include <kiv/numconv.h>

#include "parsing_check.h"
#include "support/failing_new.h"

namespace {

using namespace kivtest;
using namespace std::literals;

template <class T>
class FloatParsing : public testing::Test {
};
using Floats = testing::Types<float, double, long double>;
TYPED_TEST_SUITE(FloatParsing, Floats);

template <class T>
using Computed = std::conditional_t<std::is_same_v<T, float>, float, double>;

// Of a finite number the value that it rounds to.
template <class T>
Expected<T> expected(const std::string& text, Computed<T> value)
{
    const std::size_t digit = text.find_first_of("123456789abcdfABCDF");
    const bool zero = digit >= text.find_first_of("eEpP");
    const auto type = kiv::type_info_name(typeid(T));
    const auto error = "string to " + type + " conversion out of range";
    return {value, text.size(), std::isinf(value) ? error : "", value == 0 && !zero};
}

// As the C library reads it.
template <class T>
Expected<T> correct(const std::string& text)
{
    if constexpr (sizeof(T) == 4)
        return expected<T>(text, std::strtof(text.c_str(), nullptr));
    else
        return expected<T>(text, std::strtod(text.c_str(), nullptr));
}

using Row = std::tuple<std::u16string, double, std::size_t>;

const Row NUMBERS[] = {
    // Words, folded as the facets do; a zero unit ends every text.
    Row(u"  +Inf", INFINITY, 6), Row(u"-infinity", -INFINITY, 9), Row(u"NaN", NAN, 3),
    Row(u"-nan", NAN, 4), Row(u"nan(1)", NAN, 3), Row(u"inf\0y"s, INFINITY, 3),
    Row(u"INF\u0130NITY", INFINITY, 8),
    // Digits, a point, an exponent with digits.
    Row(u"5.", 5, 2), Row(u"-.5", -.5, 3), Row(u"1..5", 1, 2), Row(u"1.5.3", 1.5, 3),
    Row(u"1e", 1, 1), Row(u"1e+", 1, 1), Row(u"1e-x", 1, 1), Row(u"+1E+2", 100, 5),
    Row(u"1p3", 1, 1), Row(u"-0.0", -0.0, 4), Row(u"1\0005"s, 1, 1),
    Row(u"1e\0005"s, 1, 1),
    // Hexadecimal.
    Row(u"0x1.8p1", 3, 7), Row(u"0X.8P-1", .25, 7), Row(u"0x1e2", 482, 5),
    Row(u"0x1p", 1, 3), Row(u"0x1p-", 1, 3), Row(u"-0x0p99", -0.0, 7), Row(u"00x1", 0, 2),
    // White space and digits of all scripts, but no other characters.
    Row(u" \t\n\v\f\r1", 1, 7), Row(u" \u00A0\u3000\u20031", 1, 5),
    Row(u"\u0661\u0662.\u0665e\u0661", 125, 6),
    Row(u"\u0660x\u0661\u0662p\u0663", 144, 6), Row(u"00000001\u0660", 10, 9),
    Row(u"1.5\u0660", 1.5, 4), Row(u"1e0\u0661", 10, 4), Row(u"1e\u0661", 10, 3),
    // Nine digits of an exponent do not make it infinite.
    Row(u"0x1p000000003", 8, 13), Row(u"1e00000000\u0663", 1000, 11),
    Row(u"1e00012", 1e12, 7), Row(u"1.\uFF15e-\u0E50", 1.5, 6), Row(u"1\uFF0E5", 1, 1),
    Row(u"1\uFF455", 1, 1)};

// By what is expected in their place.
const std::pair<std::string, std::vector<std::u16string>> NO_NUMBERS[] = {
    {"decimal digit",
     {u"", u" ", u".", u"-", u"+-1", u"- 1", u"e5", u".e5", u"\0001"s, u"0x", u"0xg",
      u"0x.", u"-0x.p1", u"0x-1", u"\u0130nf", u"\u066B5", u"\uFF0D5"}},
    {"'infinity'", {u"infin", u"infinityx", u"-i"}},
    {"'nan'", {u"nana", u"na", u"nan_"}}};

TYPED_TEST(FloatParsing, Text)
{
    using T = TypeParam;
    for (const auto& [text, value, end] : NUMBERS) {
        const Expected<T> want{static_cast<T>(value), end};
        expect_parsed(text, want, want);
    }
    for (const auto& [expected, texts] : NO_NUMBERS)
        for (const auto& text : texts) {
            const Expected<T> want{0, 0, expected + " expected"};
            expect_parsed(text, want, want);
        }
    // Above the midpoint by more than 20 digits can tell.
    const std::u16string above = u"9\u066007199254740993.000000000\u0661";
    expect_parsed(above, Expected<T>{static_cast<T>(9007199254740992), above.size()},
                  Expected<T>{static_cast<T>(std::is_same_v<T, float> ? 9007199254740992
                                                                      : 9007199254740994),
                              above.size()});
    EXPECT_EQ(std::bit_cast<std::uint64_t>(kiv::strtod_c("-nan")), 0x7FF8000000000000);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(kiv::strtof_c("-nan")), 0x7FC00000u);
}

// digits * 10^exponent, or times the power of 2 that hexadecimal digits have.
struct Number {
    std::string digits;
    long exponent;
    int bits = 1;  // of a digit, 4 if hexadecimal

    void set(const std::string& others)  // beginning in the same place
    {
        exponent -= (std::ssize(others) - std::ssize(digits)) * bits;
        digits = others;
    }
};

// A longer number is rounded to 20 digits, if its exponent is not 0 then.
Number kept(Number n)
{
    n.digits.erase(0, std::min(n.digits.find_first_not_of('0'), n.digits.size() - 1));
    const long beyond = std::ssize(n.digits) - 20;
    if (beyond <= 0 || n.exponent + beyond == 0)
        return n;
    const std::string rest = n.digits.substr(20, n.digits.find_last_not_of('0') - 19);
    mpz_class head(n.digits.substr(0, 20));
    if (rest > "5" || (rest == "5" && head % 2 == 1))
        ++head;
    return {head.get_str(), n.exponent + beyond};
}

// Half way between two neighbours of the type, odd * 2^exponent: all of its range, with
// more from the ends, or numbers of up to 20 digits.
template <class F>
struct Tie {
    Tie(Random& random, bool brief)
    {
        using Limits = std::numeric_limits<F>;
        constexpr int BITS = Limits::digits + 1;
        constexpr std::uint64_t ONES = ~0ull >> (64 - BITS), LONG = 1ull << (BITS - 1);
        odd = (random.engine() & ONES) | LONG | 1;
        if (random.below(4) == 0)
            odd = (random.below(2) == 0 ? odd : ONES) >> random.below(BITS) | 1;
        const int least = brief ? -3 : Limits::min_exponent - BITS;
        const int most = brief ? 64 - BITS : Limits::max_exponent - BITS;
        exponent = least + static_cast<int>(random.below(1 << 20)) % (most - least + 1);
        if (random.below(8) == 0)
            exponent = random.below(2) == 0 ? least : most;
    }
    std::uint64_t odd;
    int exponent;
};

// One of many forms.
std::string spell(Random& random, Number n)
{
    const std::string zeros(random.below(4) == 0 ? random.below(30) : 0, '0');
    const long fraction = static_cast<long>(random.engine() % (n.digits.size() + 1));
    n.exponent += fraction * n.bits;
    if (fraction != 0 || random.below(2) == 0)
        n.digits.insert(n.digits.end() - fraction, '.');
    std::string text(random.below(2), '-');
    text += (n.bits == 4 ? "0x" : "") + zeros + n.digits;
    if (n.exponent != 0 || random.below(2) == 0)
        text += (n.bits == 4 ? 'p' : 'e') + std::to_string(n.exponent);
    if (random.below(2) == 0)
        std::transform(text.begin(), text.end(), text.begin(), ::toupper);
    return text;
}

constexpr const char* PUBLISHED =
    "1e23 8.5e22 9007199254740993 -9007199254740992e22 1e22 1e-22 16777217 16777216e-10 "
    "2.2250738585072011e-308 2.2250738585072012e-308 2.2250738585072014e-308 4.9e-324 "
    "2.4703282292062328e-324 2.4703282292062327e-324 -1.7976931348623157e308 "
    "1.7976931348623159e308 -1.8e308 1e-400 -1e-400 3.4028235e38 -3.4028236e38 "
    "7.006492e-46 7.006493e-46 -0e9999999999 0e-9999999999 -1e99999999999999999999 "
    "1e-9999999999";
const char* const TAILS[] = {"",  "0",          "1",  "8",
                             "5", "4999999999", "51", "50000000000001"};

// Ties, numbers of more digits near to them or cut from them, and others.
TYPED_TEST(FloatParsing, DecimalValues)
{
    using T = TypeParam;
    std::istringstream published(PUBLISHED);
    for (std::string text; published >> text;)
        expect_parsed(text, correct<T>(text), correct<T>(text));
    Random random;
    for (unsigned i = 0; i < 6'000 && !this->HasFailure(); ++i) {
        const Tie<Computed<T>> tie(random, i % 4 == 0);
        const auto e = static_cast<unsigned>(std::abs(tie.exponent));
        const mpz_class exact = tie.odd * power(tie.exponent < 0 ? 5 : 2, e);
        const mpz_class near = exact - (random.below(4) == 0 ? 1 : 0);
        Number n{near.get_str(), std::min(tie.exponent, 0)};
        if (i % 4 == 3)
            n = {std::to_string(random.engine()), 20L - random.below(60)};
        if (i % 4 >= 2)
            n.set(n.digits.substr(0, 1 + random.below(20)));
        if (i % 4 == 0)
            n.set(n.digits + std::string(20 - n.digits.size(), '0'));
        if (i % 4 < 2)
            n.set(n.digits + TAILS[random.below(std::size(TAILS))]);
        const std::string text = spell(random, n);
        const Number k = kept(n);
        Expected<T> want = correct<T>(std::string(text[0] == '-', '-') + k.digits + 'e' +
                                      std::to_string(k.exponent));
        want.end = text.size();
        expect_parsed(text, want, correct<T>(text));
    }
    // More than nine digits of an exponent are infinite, but not for from_chars_c.
    for (const std::string text : {"1e0000000001", "0x1p0000000001", "1e-0000000001"})
        expect_parsed(text, expected<T>(text, text[2] == '-' ? 0 : INFINITY),
                      correct<T>(text));
}

// Rounded once, however many digits there are.
TYPED_TEST(FloatParsing, HexadecimalValues)
{
    using T = TypeParam;
    Random random;
    for (int i = 0; i < 4'000 && !this->HasFailure(); ++i) {
        const Tie<Computed<T>> tie(random, false);
        const int shift = 1 + static_cast<int>(random.below(3));
        const mpz_class head((tie.odd << shift) - random.below(2));
        Number n{head.get_str(16), tie.exponent - shift, 4};
        n.set(n.digits + TAILS[random.below(std::size(TAILS))]);
        // Of many digits, bit 0 of 60 tells if there are others.
        std::uint64_t top = std::stoull(n.digits.substr(0, 15), nullptr, 16);
        top |= n.digits.find_last_not_of('0') >= 15 ? 1 : 0;
        const long e = n.exponent + 4 * std::max(std::ssize(n.digits) - 15, 0L);
        const auto exact = std::ldexp(static_cast<long double>(top), static_cast<int>(e));
        const std::string text = spell(random, n);
        const auto value = static_cast<Computed<T>>(text[0] == '-' ? -exact : exact);
        expect_parsed(text, expected<T>(text, value), expected<T>(text, value));
    }
}

// Each unit before a digit, as the C library reads it, and behind a word.
TEST(Parsing, EveryUnit)
{
    const auto check = [](const auto& units, char integer, char real, bool in_word) {
        constexpr auto flags = leading::plus | leading::white_space;
        const char text[] = {integer, '1', '\0', real, '1', '\0'};
        const auto* const p = units.data();
        char* end;
        long a = 0;
        double b = 0;
        const auto read_a = kiv::from_chars_c(p, p + 2, a, 36, flags).ptr - p;
        EXPECT_EQ(a, std::strtol(text, &end, 36));
        EXPECT_EQ(read_a, end - text);
        const auto read_b = kiv::from_chars_c(p, p + 2, b, flags).ptr - p;
        EXPECT_EQ(b, std::strtod(text + 3, &end));
        EXPECT_EQ(read_b, end - text - 3);
        EXPECT_EQ(kiv::from_chars_c(p + 2, p + 6, b).ptr - p, in_word ? 2 : 5);
    };
    for (int i = 0; i <= 0xFFFF; ++i) {
        SCOPED_TRACE(i);
        const auto unit = static_cast<char16_t>(i);
        const std::u16string text = {unit, u'1', u'i', u'n', u'f', unit};
        const char narrow = kiv::Char16::narrow(unit, '?'), byte = static_cast<char>(i);
        check(kiv::ustring(text.begin(), text.end()), narrow,
              kiv::isuspace(unit) ? ' ' : narrow, kiv::isualnum(unit) || i == '_');
        if (i <= 0xFF)
            check(std::string(text.begin(), text.end()), byte, byte,
                  std::isalnum(i) != 0 || i == '_');
    }
}

// Megabytes of digits in no time, and no allocation, not even without a number.
TEST(Parsing, Resources)
{
    const std::string text = "9007199254740993." + std::string(4'000'000, '0') + "1e00";
    const kiv::ustring units(text.begin(), text.end());
    double once = 0, once_wide = 0;
    failing_new::remaining = 0;
    const double twice = kiv::strtod_c(text.c_str()), twice_wide = kiv::stod_c(units);
    kiv::from_chars_c(text.data(), text.data() + text.size(), once);
    kiv::from_chars_c(units.data(), units.data() + units.size(), once_wide);
    const double hexadecimal = kiv::strtod_c("0x1.fffffffffffff7ffffffffffp1023");
    const double none = kiv::strtod_c("infini") + kiv::strtoi_c("-");
    failing_new::remaining = -1;
    EXPECT_EQ(twice, 9007199254740992);
    EXPECT_EQ(twice_wide, 9007199254740992);
    EXPECT_EQ(once, 9007199254740994);
    EXPECT_EQ(once_wide, 9007199254740994);
    EXPECT_EQ(hexadecimal, 0x1.fffffffffffffp1023);
    EXPECT_EQ(none, 0);
}

}  // namespace
