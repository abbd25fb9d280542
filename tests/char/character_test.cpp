#include <kiv/character.h>

#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "../companion/unicode_data.h"
#include "char/companion.h"
#include "char/tables/classification.h"
#include "support/errors.h"

namespace {

using kiv::Char16;
using kiv::char16;
using kiv::char16_int;
using kiv::ustring;
using kivtest::what_of;
using namespace kiv::literals;
using view = kiv::basic_string_ref<char16>;

constexpr std::size_t NPOS = static_cast<std::size_t>(-1);

char16 unit(std::uint32_t value)
{
    return static_cast<char16_t>(value);
}

std::string hex(std::uint32_t value)
{
    std::ostringstream out;
    out << "0x" << std::hex << value;
    return out.str();
}

// Values that are no code points: the next one, sign bits over ASCII, all ones.
constexpr char32_t BEYOND[] = {0x110000,   0x110041,   0x7FFFFFFF,
                               0x80000041, 0xFFFF0037, 0xFFFFFFFF};

// --- Surrogates and code points --------------------------------------------------

static_assert(Char16::MIN_VALUE == char16(u'\0') && Char16::MAX_VALUE == u'\xFFFF');
static_assert(Char16::MIN_HIGH_SURROGATE == u'\xD800' &&
              Char16::MAX_HIGH_SURROGATE == u'\xDBFF');
static_assert(Char16::MIN_LOW_SURROGATE == u'\xDC00' &&
              Char16::MAX_LOW_SURROGATE == u'\xDFFF');
static_assert(Char16::MIN_SURROGATE == u'\xD800' && Char16::MAX_SURROGATE == u'\xDFFF');
static_assert(Char16::MIN_CODE_POINT == 0 && Char16::MAX_CODE_POINT == 0x10FFFF);
static_assert(Char16::MIN_SUPPLEMENTARY_CODE_POINT == 0x10000);
static_assert(Char16::MIN_RADIX == 2 && Char16::MAX_RADIX == 36);
static_assert(std::is_same_v<decltype(Char16::MAX_VALUE), const char16>);
static_assert(std::is_same_v<decltype(Char16::MAX_CODE_POINT), const char32_t>);
static_assert(std::is_same_v<decltype(Char16::MAX_RADIX), const unsigned>);

TEST(Char16, EveryUnit)
{
    for (std::uint32_t u = 0; u < 0x10000; ++u) {
        const char16 c = unit(u);
        const bool high = u >= 0xD800 && u <= 0xDBFF;
        const bool low = u >= 0xDC00 && u <= 0xDFFF;
        ASSERT_EQ(Char16::toCodeUnit(c), u);
        ASSERT_EQ(Char16::isHighSurrogate(c), high) << u;
        ASSERT_EQ(Char16::isLowSurrogate(c), low) << u;
        ASSERT_EQ(Char16::isSurrogate(c), high || low) << u;
        ASSERT_EQ(Char16::isSurrogatePair(c, u'\xDC00'), high) << u;
        ASSERT_EQ(Char16::isSurrogatePair(u'\xDBFF', c), low) << u;
        // Units that are no surrogates go through the same arithmetic.
        ASSERT_EQ(Char16::toCodePoint(c, u'\xDC01'), 0x10001 + u % 0x400 * 0x400) << u;
        ASSERT_EQ(Char16::toCodePoint(u'\xD801', c), 0x10400 + u % 0x400) << u;
    }
}

TEST(Char16, EveryCodePoint)
{
    const auto check = [](char32_t cp) {
        ASSERT_EQ(Char16::isBmpCodePoint(cp), cp <= 0xFFFF) << hex(cp);
        ASSERT_EQ(Char16::isSupplementaryCodePoint(cp), cp > 0xFFFF && cp <= 0x10FFFF)
            << hex(cp);
        ASSERT_EQ(Char16::isValidCodePoint(cp), cp <= 0x10FFFF) << hex(cp);

        std::u16string want;
        if (cp <= 0xFFFF) {
            want = {static_cast<char16_t>(cp)};
        } else {
            const std::uint64_t wide = cp - 0x10000ull;
            want = {static_cast<char16_t>(0xD800 + wide / 0x400 % 0x400),
                    static_cast<char16_t>(0xDC00 + wide % 0x400)};
            ASSERT_EQ(Char16::highSurrogate(cp), char16(want[0])) << hex(cp);
            ASSERT_EQ(Char16::lowSurrogate(cp), char16(want[1])) << hex(cp);
        }
        ASSERT_EQ(Char16::charCount(cp), want.size()) << hex(cp);
        ustring s = u"x"_us;
        ASSERT_EQ(Char16::toChars(cp, s), want.size()) << hex(cp);
        ASSERT_EQ(s, u"x"_us + ustring(want.begin(), want.end())) << hex(cp);
        if (cp <= 0x10FFFF) {
            ASSERT_EQ(Char16::codePointAt(s, 1), cp);
            ASSERT_EQ(Char16::codePointBefore(s, s.size()), cp);
        }
    };
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp)
        check(cp);
    for (const char32_t cp : BEYOND)
        check(cp);
}

TEST(Char16, ToCharsAtIndex)
{
    struct Case {
        char32_t cp;
        const char16_t* text;
        std::size_t index;
        const char16_t* want;
        const char* why;
    };
    static constexpr Case cases[] = {
        {U'!', u"abc", 1, u"a!c", "over a unit"},
        {U'!', u"abc", 3, u"abc!", "at the end"},
        {U'!', u"abc", 10, u"abc!", "beyond the end: no gap"},
        {U'!', u"abc", NPOS, u"abc!", "the greatest index"},
        {U'!', u"", 0, u"!", "into an empty string"},
        {0x1F600, u"abc", 0,
         u"\xD83D\xDE00"
         u"c",
         "over two units"},
        {0x1F600, u"abc", 1, u"a\xD83D\xDE00", "over the last two"},
        {0x1F600, u"abc", 2, u"ab\xD83D\xDE00", "over the last one, the other appended"},
        {0x1F600, u"abc", 3, u"abc\xD83D\xDE00", "both appended"},
        {0x1F600, u"abc", 10, u"abc\xD83D\xDE00", "both appended, no gap"},
        {0x1F600, u"abc", NPOS, u"abc\xD83D\xDE00", "no wrap to 0"},
        {0xD800, u"abc", 2, u"ab\xD800", "a surrogate as it is"},
        {0x110000, u"abc", 1, u"a\xD800\xDC00", "too great a value by the same formulas"},
    };
    for (const Case& c : cases) {
        const std::u16string text = c.text;
        const std::u16string want = c.want;
        ustring s(text.begin(), text.end());
        EXPECT_EQ(Char16::toChars(c.cp, s, c.index), c.cp > 0xFFFF ? 2u : 1u) << c.why;
        EXPECT_EQ(s, ustring(want.begin(), want.end())) << c.why;
    }
}

// --- Walking ---------------------------------------------------------------------

// Where code points of the whole text begin: everywhere but inside a pair.
std::vector<bool> starts(const std::u16string& text)
{
    std::vector<bool> begins(text.size() + 1, true);
    for (std::size_t i = 1; i < text.size(); ++i)
        begins[i] = !(text[i - 1] / 0x400 == 0x36 && text[i] / 0x400 == 0x37);
    return begins;
}

template <class StringT>
void expect_walks(const std::u16string& text, const StringT& s)
{
    const std::vector<bool> begins = starts(text);
    const std::size_t size = text.size();
    for (std::size_t index = 0; index <= size; ++index) {
        // Every stop of a walk from index, forward and backward.
        std::vector<std::size_t> after{index};
        std::vector<std::size_t> before{index};
        for (std::size_t i = index + 1; i <= size; ++i)
            if (begins[i])
                after.push_back(i);
        for (std::size_t i = index; i-- > 0;)
            if (begins[i])
                before.push_back(i);

        const auto value = [&](std::size_t from, std::size_t to) {
            return to - from == 2 ? 0x10000 + (text[from] - 0xD800u) * 0x400 +
                                        (text[from + 1] - 0xDC00u)
                                  : char32_t{text[from]};
        };
        if (index < size) {
            ASSERT_EQ(Char16::codePointAt(s, index), value(index, after[1]));
        }
        // Seen from inside a pair, its first unit stands alone.
        if (index > 0) {
            ASSERT_EQ(Char16::codePointBefore(s, index), value(before[1], index));
        }

        const auto offset_limit = static_cast<std::ptrdiff_t>(size + 2);
        for (std::ptrdiff_t offset = -offset_limit; offset <= offset_limit; ++offset) {
            const auto& stops = offset < 0 ? before : after;
            const auto steps = static_cast<std::size_t>(offset < 0 ? -offset : offset);
            ASSERT_EQ(Char16::offsetByCodePoints(s, index, offset),
                      steps < stops.size() ? stops[steps] : NPOS)
                << index << ' ' << offset;
        }
        for (const auto offset : {std::numeric_limits<std::ptrdiff_t>::min(),
                                  std::numeric_limits<std::ptrdiff_t>::max()})
            ASSERT_EQ(Char16::offsetByCodePoints(s, index, offset), NPOS);

        for (std::size_t n = 0; n <= size + 2; ++n) {
            std::size_t count = 0;
            for (std::size_t i = index; i < size && i - index < n; ++i)
                count += i == index || begins[i];
            ASSERT_EQ(Char16::codePointCount(s, index, n), count) << index << ' ' << n;
        }
        ASSERT_EQ(Char16::codePointCount(s, index, NPOS), after.size() - 1) << index;
    }
}

// The view is cut from the middle of units that would pair with its ends: a
// look beyond them shows.
TEST(Char16, WalkingFollowsPairs)
{
    std::mt19937 random(16);
    static constexpr char16_t alphabet[] = {u'a',   0xD7FF, 0xD800, 0xDBFF, 0xDC00,
                                            0xDFFF, 0xE000, 0xD83D, 0xDE00};
    for (int round = 0; round < 2000; ++round) {
        std::u16string text;
        for (std::size_t n = random() % 9; n != 0; --n)
            text += alphabet[random() % std::size(alphabet)];
        SCOPED_TRACE(testing::PrintToString(text));
        const ustring inside =
            u"\xD83D"_us + ustring(text.begin(), text.end()) + u"\xDE00"_us;
        expect_walks(text, inside.substr(1, text.size()));
        expect_walks(text, view(inside).substr(1, text.size()));
        if (HasFatalFailure())
            return;
    }
}

TEST(Char16, WalkingOutsideTheText)
{
    constexpr const char* COUNT =
        "Char16::codePointCount(const StringT &, size_type, size_type)";
    constexpr const char* OFFSET =
        "Char16::offsetByCodePoints(const StringT &, size_type, difference_type)";
    constexpr const char* AT = "basic_string_ref<CharT>::at";
    const ustring s = u"abc"_us;
    const view v = s;
    for (const std::size_t beyond : {std::size_t{4}, NPOS - 1, NPOS}) {
        EXPECT_EQ(
            what_of<std::out_of_range>([&] { Char16::codePointCount(s, beyond, 0); }),
            COUNT);
        EXPECT_EQ(
            what_of<std::out_of_range>([&] { Char16::codePointCount(v, beyond, NPOS); }),
            COUNT);
        EXPECT_EQ(
            what_of<std::out_of_range>([&] { Char16::offsetByCodePoints(s, beyond, 0); }),
            OFFSET);
        EXPECT_EQ(what_of<std::out_of_range>(
                      [&] { Char16::offsetByCodePoints(v, beyond, -1); }),
                  OFFSET);
        EXPECT_EQ(what_of<std::out_of_range>([&] { Char16::codePointAt(v, beyond); }),
                  AT);
        EXPECT_THROW(Char16::codePointAt(s, beyond), std::out_of_range);
        EXPECT_THROW(Char16::codePointBefore(s, beyond), std::out_of_range);
    }
    EXPECT_EQ(what_of<std::out_of_range>([&] { Char16::codePointAt(v, 3); }), AT);
    EXPECT_EQ(what_of<std::out_of_range>([&] { Char16::codePointBefore(v, 0); }), AT);
    EXPECT_EQ(what_of<std::out_of_range>([&] { Char16::codePointBefore(view(), 0); }),
              AT);
    EXPECT_THROW(Char16::codePointAt(s, 3), std::out_of_range);
    EXPECT_THROW(Char16::codePointBefore(s, 0), std::out_of_range);
    EXPECT_EQ(Char16::codePointCount(view(), 0, NPOS), 0u);
}

// --- Digits and char -------------------------------------------------------------

// The standard keeps decimal digits in runs from 0 to 9 without gaps, so their
// values follow from where the runs begin.
std::vector<int> decimal_digits()
{
    const auto categories = kivtest::read_categories("17.0.0/general_category.txt");
    std::vector<int> values(categories.size(), -1);
    for (std::size_t cp = 1; cp < categories.size(); ++cp)
        if (categories[cp] == "Nd")
            values[cp] = (values[cp - 1] + 1) % 10;
    return values;
}

TEST(Char16, DigitInEveryRadix)
{
    std::vector<int> values = decimal_digits();
    for (const char32_t first : {U'A', U'a', U'\uFF21', U'\uFF41'})
        for (char32_t i = 0; i < 26; ++i)
            values[first + i] = static_cast<int>(10 + i);

    int wrong = 0;
    for (unsigned radix = 0; radix <= 40; ++radix)
        for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
            const int value = values[cp];
            const bool is_digit = radix >= 2 && radix <= 36 && value >= 0 &&
                                  value < static_cast<int>(radix);
            bool same = Char16::digit(cp, radix) == (is_digit ? value : -1);
            if (cp <= 0xFFFF) {
                const auto bmp = static_cast<char16_t>(cp);
                same = same && Char16::digit(bmp, radix) == (is_digit ? value : -1) &&
                       Char16::digit(char16(bmp), radix) == (is_digit ? value : -1);
            }
            if (!same && ++wrong <= 10)
                ADD_FAILURE() << hex(cp) << " in radix " << radix;
        }
    for (const char32_t cp : BEYOND)
        EXPECT_EQ(Char16::digit(cp, 36), -1) << hex(cp);
    EXPECT_EQ(Char16::digit(u'1', ~0u), -1);
}

TEST(Char16, ForDigit)
{
    const std::u16string digits = u"0123456789abcdefghijklmnopqrstuvwxyz";
    for (unsigned radix = 0; radix <= 40; ++radix)
        for (unsigned digit = 0; digit <= 40; ++digit) {
            const bool valid = radix >= 2 && radix <= 36 && digit < radix;
            EXPECT_EQ(Char16::forDigit(digit, radix),
                      char16(valid ? digits[digit] : u'\0'));
        }
    EXPECT_EQ(Char16::forDigit(~0u, 36), char16());
}

TEST(Char16, WidenAndNarrow)
{
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(Char16::toCodeUnit(Char16::widen(static_cast<char>(byte))),
                  byte < 0x80 ? byte : 0xFFFD);
    const std::vector<int> values = decimal_digits();
    for (const char dflt : {'?', '\0', '\xFF'})
        for (std::uint32_t u = 0; u < 0x10000; ++u) {
            const int want = u < 0x80         ? static_cast<int>(u)
                             : values[u] >= 0 ? '0' + values[u]
                                              : dflt;
            ASSERT_EQ(Char16::narrow(unit(u), dflt), static_cast<char>(want)) << u;
        }
}

// --- Predicates and case mappings ------------------------------------------------

template <class Result16, class Result16T, class Result32>
struct Overloads {
    const char* name;
    Result16 (*units)(char16);
    Result16T (*plain)(char16_t);
    Result32 (*code_points)(char32_t);
    Result32 (*want)(std::int32_t);
};

// Runs every overload over its whole domain and beyond.
template <class Row>
void expect_answers(const Row& row)
{
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
        const auto want = row.want(static_cast<std::int32_t>(cp));
        ASSERT_EQ(row.code_points(cp), want) << row.name << ' ' << hex(cp);
        if (cp <= 0xFFFF) {
            const auto bmp = static_cast<char16_t>(cp);
            using Unit = decltype(row.plain(bmp));
            const auto low = static_cast<Unit>(want);
            ASSERT_EQ(row.plain(bmp), low) << row.name << ' ' << hex(cp);
            ASSERT_EQ(row.units(char16(bmp)), low) << row.name << ' ' << hex(cp);
        }
    }
    for (const char32_t cp : BEYOND)
        ASSERT_EQ(row.code_points(cp), row.want(static_cast<std::int32_t>(cp)))
            << row.name;
}

TEST(Char16, PredicatesAskTheCompanion)
{
    static constexpr Overloads<bool, bool, bool> rows[] = {
#define KIV_ROW(NAME, TEST)                              \
    {                                                    \
        #NAME, Char16::NAME, Char16::NAME, Char16::NAME, \
            [](std::int32_t cp) { return TEST; }         \
    }
        KIV_ROW(isAlphabetic, kivUniCharIsAlphabetic(cp) != 0),
        KIV_ROW(isDefined, kivUniCharIsDefined(cp) != 0),
        KIV_ROW(isDigit, kivUniCharIsDecimalDigit(cp) != 0),
        KIV_ROW(isISOControl, kivUniCharIsControl(cp) != 0),
        KIV_ROW(isLetter, kivUniCharIsLetter(cp) != 0),
        KIV_ROW(isLetterOrDigit, kivUniCharIsLetterOrDecimalDigit(cp) != 0),
        KIV_ROW(isLowerCase, kivUniCharIsLower(cp) != 0),
        KIV_ROW(isUpperCase, kivUniCharIsUpper(cp) != 0),
        KIV_ROW(isTitleCase, kivUniCharIsTitle(cp) != 0),
        KIV_ROW(isIdentifierStart, (kivUniCharProperties(cp) & 0x4000) != 0),
        KIV_ROW(isIdentifierPart, (kivUniCharProperties(cp) & 0x8000) != 0),
        KIV_ROW(isWhitespace, (kivUniCharProperties(cp) & 0x40000) != 0),
        KIV_ROW(isSpaceChar, (kivUniCharClass(cp) & 0x38) == 0x30),
        KIV_ROW(isIdentifierIgnorable,
                kivUniCharClass(cp) == 58 || (kivUniCharClass(cp) == 57 &&
                                              (kivUniCharProperties(cp) & 0x40000) == 0)),
#undef KIV_ROW
    };
    for (const auto& row : rows)
        expect_answers(row);
}

TEST(Char16, CaseMappingsAskTheCompanion)
{
    static constexpr Overloads<char16, char16_t, char32_t> rows[] = {
#define KIV_ROW(NAME, COMPANION)                                                 \
    {                                                                            \
        #NAME, Char16::NAME, Char16::NAME, Char16::NAME,                         \
            [](std::int32_t cp) { return static_cast<char32_t>(COMPANION(cp)); } \
    }
        KIV_ROW(toLowerCase, kivUniCharToLower),
        KIV_ROW(toUpperCase, kivUniCharToUpper),
        KIV_ROW(toTitleCase, kivUniCharToTitle),
#undef KIV_ROW
    };
    for (const auto& row : rows)
        expect_answers(row);
}

// The free functions: masks by number, so that a misnamed class shows.
TEST(FreeClassification, EveryUnit)
{
    struct Row {
        const char* name;
        bool (*function)(char16_int) noexcept;
        unsigned mask;
    };
    static constexpr Row rows[] = {
        {"isualnum", kiv::isualnum, 0x107},   {"isualpha", kiv::isualpha, 0x103},
        {"isucntrl", kiv::isucntrl, 0x020},   {"isudigit", kiv::isudigit, 0x004},
        {"isugraph", kiv::isugraph, 0x117},   {"isulower", kiv::isulower, 0x002},
        {"isuprint", kiv::isuprint, 0x1D7},   {"isupunct", kiv::isupunct, 0x010},
        {"isuspace", kiv::isuspace, 0x048},   {"isuupper", kiv::isuupper, 0x001},
        {"isuxdigit", kiv::isuxdigit, 0x080},
    };
    for (const Row& row : rows) {
        for (std::uint32_t u = 0; u < 0x10000; ++u) {
            const unsigned mask =
                kiv::tables::classification_mask(static_cast<std::uint16_t>(u));
            ASSERT_EQ(row.function(unit(u)), (mask & row.mask) != 0)
                << row.name << ' ' << u;
        }
        EXPECT_FALSE(row.function(std::char_traits<char16>::eof())) << row.name;
    }
    // All three types of argument, without casts.
    EXPECT_TRUE(kiv::isuspace(u'\u0085') && kiv::isuspace(char16(u'\u2028')) &&
                !kiv::isuspace(char16_int(u'\u200B')));
    EXPECT_TRUE(kiv::isualpha(u'\u4E00') && !kiv::isualpha(u'\uE000'));
}

TEST(FreeCaseMapping, EveryUnit)
{
    static_assert(std::is_same_v<decltype(kiv::toulower(char16())), char16>);
    static_assert(std::is_same_v<decltype(kiv::touupper(char16_int())), char16_int>);
    static_assert(std::is_same_v<decltype(kiv::touupper(u'a')), char16>);
    for (std::uint32_t u = 0; u < 0x10000; ++u) {
        const auto plain = static_cast<char16_t>(u);
        const auto lower = static_cast<char16_t>(kivUniCharToLower(static_cast<int>(u)));
        const auto upper = static_cast<char16_t>(kivUniCharToUpper(static_cast<int>(u)));
        ASSERT_EQ(kiv::toulower(char16(plain)), char16(lower)) << u;
        ASSERT_EQ(kiv::touupper(char16(plain)), char16(upper)) << u;
        ASSERT_EQ(kiv::toulower(char16_int(plain)), char16_int(lower)) << u;
        ASSERT_EQ(kiv::touupper(char16_int(plain)), char16_int(upper)) << u;
    }
}

}  // namespace
