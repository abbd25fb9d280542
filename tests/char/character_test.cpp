#include <kiv/character.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "char/companion.h"
#include "char/tables/classification.h"
#include "support/errors.h"

namespace {

using kiv::Char16;
using kiv::char16;
using kiv::char16_int;
using kiv::ustring;
using namespace kiv::literals;
using view = kiv::basic_string_ref<char16>;

constexpr std::size_t NPOS = static_cast<std::size_t>(-1);

// Calls check(cp) for every code point and for values that are none: the next
// one, sign bits over ASCII, all ones. Stops at the first failure and names it.
template <class Check>
void for_each_code_point(Check check)
{
    std::vector<char32_t> values(0x110000);
    std::iota(values.begin(), values.end(), 0);
    values.insert(values.end(),
                  {0x110000, 0x110041, 0x7FFFFFFF, 0x80000041, 0xFFFF0037, 0xFFFFFFFF});
    for (const char32_t cp : values) {
        check(cp);
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << std::uint32_t{cp};
    }
}

// Runs the three overloads over their whole domains and beyond.
template <class Function, class Want>
void expect_answers(const std::string& name, Function function, Want want_of)
{
    SCOPED_TRACE(name);
    for_each_code_point([&](char32_t cp) {
        const int want = want_of(static_cast<std::int32_t>(cp));
        const auto bmp = static_cast<char16_t>(cp);
        ASSERT_EQ(function(cp), static_cast<decltype(function(cp))>(want));
        if (cp <= 0xFFFF) {
            const auto low = static_cast<decltype(function(bmp))>(want);
            ASSERT_EQ(function(bmp), low);
            ASSERT_EQ(function(char16(bmp)), low);
        }
    });
}

// --- Surrogates and code points --------------------------------------------------

TEST(Char16, EveryUnit)
{
    for (std::uint32_t u = 0; u < 0x10000; ++u) {
        const char16 c = static_cast<char16_t>(u);
        const bool high = u >= 0xD800 && u <= 0xDBFF;
        const bool low = u >= 0xDC00 && u <= 0xDFFF;
        ASSERT_EQ(Char16::isHighSurrogate(c), high) << u;
        ASSERT_EQ(Char16::isLowSurrogate(c), low) << u;
        ASSERT_EQ(Char16::isSurrogate(c), high || low) << u;
        ASSERT_EQ(Char16::isSurrogatePair(c, Char16::MIN_LOW_SURROGATE), high) << u;
        ASSERT_EQ(Char16::isSurrogatePair(Char16::MAX_HIGH_SURROGATE, c), low) << u;
        // Units that are no surrogates go through the same arithmetic.
        ASSERT_EQ(Char16::toCodePoint(c, u'\xDC01'), 0x10001 + u % 0x400 * 0x400) << u;
        ASSERT_EQ(Char16::toCodePoint(u'\xD801', c), 0x10400 + u % 0x400) << u;
    }
}

// Too great a value goes through the same formulas.
ustring units_of(char32_t cp)
{
    if (cp <= 0xFFFF)
        return ustring(1, static_cast<char16_t>(cp));
    const std::uint64_t wide = cp - 0x10000ull;
    return {static_cast<char16_t>(0xD800 + wide / 0x400 % 0x400),
            static_cast<char16_t>(0xDC00 + wide % 0x400)};
}

TEST(Char16, EveryCodePoint)
{
    for_each_code_point([](char32_t cp) {
        const ustring want = units_of(cp);
        ASSERT_EQ(Char16::isBmpCodePoint(cp), cp <= 0xFFFF);
        ASSERT_EQ(Char16::isSupplementaryCodePoint(cp), cp > 0xFFFF && cp <= 0x10FFFF);
        ASSERT_EQ(Char16::isValidCodePoint(cp), cp <= 0x10FFFF);
        ASSERT_EQ(Char16::charCount(cp), want.size());
        ustring s;
        ASSERT_EQ(Char16::toChars(cp, s), want.size());
        ASSERT_EQ(s, want);
        if (cp > 0xFFFF) {
            ASSERT_EQ(Char16::highSurrogate(cp), want[0]);
            ASSERT_EQ(Char16::lowSurrogate(cp), want[1]);
        }
    });
}

TEST(Char16, ToCharsAtIndex)
{
    for (const std::size_t index : {std::size_t{0}, std::size_t{2}, std::size_t{3}, NPOS})
        for (const char32_t cp : {0x21u, 0xD800u, 0x1F600u, 0x110000u}) {
            const ustring units = units_of(cp);
            const std::size_t at = std::min<std::size_t>(index, 3);  // never a gap
            ustring want = u"abc"_us;
            want.replace(at, units.size(), units);
            ustring s = u"abc"_us;
            EXPECT_EQ(Char16::toChars(cp, s, index), units.size());
            EXPECT_EQ(s, want) << index << ' ' << std::uint32_t{cp};
        }
}

// --- Walking ---------------------------------------------------------------------

template <class StringT>
void expect_walks(const ustring& text, const StringT& s)
{
    const std::size_t size = text.size();
    for (std::size_t index = 0; index <= size; ++index) {
        // A walk stops everywhere but inside pairs; where it begins inside one,
        // it sees the pair's units alone.
        std::vector<std::size_t> after{index};
        std::vector<std::size_t> before{index};
        for (std::size_t i = 0; i <= size; ++i)
            if (i == 0 || i == size || !Char16::isSurrogatePair(text[i - 1], text[i])) {
                if (i > index)
                    after.push_back(i);
                if (i < index)
                    before.insert(before.begin() + 1, i);
            }
        for (std::size_t n = 0; n <= size + 2; ++n) {
            const auto offset = static_cast<std::ptrdiff_t>(n);
            const auto within = [&](std::size_t i) { return i < size && i - index < n; };
            ASSERT_EQ(Char16::offsetByCodePoints(s, index, offset),
                      n < after.size() ? after[n] : NPOS);
            ASSERT_EQ(Char16::offsetByCodePoints(s, index, -offset),
                      n < before.size() ? before[n] : NPOS);
            ASSERT_EQ(Char16::codePointCount(s, index, n),
                      std::count_if(after.begin(), after.end(), within));
        }
        constexpr auto most = std::numeric_limits<std::ptrdiff_t>::max();
        ASSERT_EQ(Char16::offsetByCodePoints(s, index, -most - 1), NPOS);
        ASSERT_EQ(Char16::offsetByCodePoints(s, index, most), NPOS);
        ASSERT_EQ(Char16::codePointCount(s, index, NPOS), after.size() - 1);
        if (index < size) {
            ASSERT_EQ(units_of(Char16::codePointAt(s, index)),
                      text.substr(index, after[1] - index));
        }
        if (index > 0) {
            ASSERT_EQ(units_of(Char16::codePointBefore(s, index)),
                      text.substr(before[1], index - before[1]));
        }
    }
}

// The view is cut from the middle of units that would pair with its ends: a
// look beyond them shows.
TEST(Char16, WalkingFollowsPairs)
{
    std::mt19937 random(16);
    const ustring alphabet = u"a\xD7FF\xD800\xDBFF\xDC00\xDFFF\xE000"_us;
    for (int round = 0; round < 2000 && !HasFatalFailure(); ++round) {
        ustring text;
        for (std::size_t n = random() % 9; n != 0; --n)
            text += alphabet[random() % alphabet.size()];
        const ustring inside = u"\xD83D"_us + text + u"\xDE00"_us;
        expect_walks(text, text);
        expect_walks(text, view(inside).substr(1, text.size()));
    }
}

TEST(Char16, WalkingOutsideTheText)
{
    const auto message = [](auto call) {
        return kivtest::what_of<std::out_of_range>(call);
    };
    const view s = u"abc"_usv;
    for (const std::size_t beyond : {std::size_t{4}, NPOS}) {
        EXPECT_EQ(message([&] { Char16::codePointCount(s, beyond, 0); }),
                  "Char16::codePointCount(const StringT &, size_type, size_type)");
        EXPECT_EQ(message([&] { Char16::offsetByCodePoints(s, beyond, -1); }),
                  "Char16::offsetByCodePoints(const StringT &, size_type, "
                  "difference_type)");
        EXPECT_THROW(Char16::codePointAt(s, beyond - 1), std::out_of_range);
        EXPECT_THROW(Char16::codePointBefore(s, beyond), std::out_of_range);
    }
    EXPECT_THROW(Char16::codePointBefore(s, 0), std::out_of_range);
}

// --- Digits and char -------------------------------------------------------------

TEST(Char16, DigitInEveryRadix)
{
    for (const unsigned radix : {0u, 1u, 2u, 9u, 10u, 11u, 35u, 36u, 37u, ~0u})
        expect_answers(
            "radix " + std::to_string(radix),
            [&](auto c) { return Char16::digit(c, radix); },
            [&](std::int32_t cp) {
                int value = kivUniCharDigitValue(cp);
                for (const int first : {0x41, 0x61, 0xFF21, 0xFF41})
                    if (cp >= first && cp < first + 26)
                        value = 10 + cp - first;
                const bool valid =
                    radix >= 2 && radix <= 36 && value < static_cast<int>(radix);
                return valid ? value : -1;
            });
}

TEST(Char16, ForDigit)
{
    const std::string digits = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (unsigned radix = 0; radix <= 40; ++radix)
        for (unsigned digit = ~0u; digit != 40; ++digit) {
            const bool valid = radix >= 2 && radix <= 36 && digit < radix;
            EXPECT_EQ(Char16::narrow(Char16::forDigit(digit, radix), '?'),
                      valid ? digits[digit] : '\0');
        }
}

TEST(Char16, WidenAndNarrow)
{
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(Char16::toCodeUnit(Char16::widen(static_cast<char>(byte))),
                  byte < 0x80 ? byte : 0xFFFD);
    for (int u = 0; u < 0x10000; ++u) {
        const char16 unit = static_cast<char16_t>(u);
        const int digit = kivUniCharDigitValue(u);
        const int want = u < 0x80 ? u : digit >= 0 ? '0' + digit : '\xFF';
        ASSERT_EQ(Char16::narrow(unit, '\xFF'), want) << u;
    }
}

// --- Predicates and case mappings ------------------------------------------------

TEST(Char16, AsksTheCompanion)
{
#define KIV_EXPECT(NAME, COMPANION) \
    expect_answers(                 \
        #NAME, [](auto c) { return Char16::NAME(c); }, COMPANION)
    KIV_EXPECT(isAlphabetic, kivUniCharIsAlphabetic);
    KIV_EXPECT(isDefined, kivUniCharIsDefined);
    KIV_EXPECT(isDigit, kivUniCharIsDecimalDigit);
    KIV_EXPECT(isISOControl, kivUniCharIsControl);
    KIV_EXPECT(isLetter, kivUniCharIsLetter);
    KIV_EXPECT(isLetterOrDigit, kivUniCharIsLetterOrDecimalDigit);
    KIV_EXPECT(isLowerCase, kivUniCharIsLower);
    KIV_EXPECT(isUpperCase, kivUniCharIsUpper);
    KIV_EXPECT(isTitleCase, kivUniCharIsTitle);
    KIV_EXPECT(toLowerCase, kivUniCharToLower);
    KIV_EXPECT(toUpperCase, kivUniCharToUpper);
    KIV_EXPECT(toTitleCase, kivUniCharToTitle);
    KIV_EXPECT(isIdentifierStart,
               [](auto cp) { return kivUniCharProperties(cp) & 0x4000; });
    KIV_EXPECT(isIdentifierPart,
               [](auto cp) { return kivUniCharProperties(cp) & 0x8000; });
    KIV_EXPECT(isWhitespace, [](auto cp) { return kivUniCharProperties(cp) & 0x40000; });
    KIV_EXPECT(isSpaceChar, [](auto cp) -> int { return kivUniCharClass(cp) / 8 == 6; });
    KIV_EXPECT(isIdentifierIgnorable, [](auto cp) -> int {
        const int category = kivUniCharClass(cp);
        return category == 58 ||
               (category == 57 && (kivUniCharProperties(cp) & 0x40000) == 0);
    });
#undef KIV_EXPECT
}

// The free functions: masks by number, so that a misnamed class shows.
TEST(FreeFunctions, EveryUnit)
{
    struct Row {
        bool (*function)(char16_int) noexcept;
        unsigned mask;
    };
    static constexpr Row rows[] = {
        {kiv::isualnum, 0x107}, {kiv::isualpha, 0x103},  {kiv::isucntrl, 0x020},
        {kiv::isudigit, 0x004}, {kiv::isugraph, 0x117},  {kiv::isulower, 0x002},
        {kiv::isuprint, 0x1D7}, {kiv::isupunct, 0x010},  {kiv::isuspace, 0x048},
        {kiv::isuupper, 0x001}, {kiv::isuxdigit, 0x080},
    };
    for (std::uint32_t u = 0; u < 0x10000; ++u) {
        const auto unit = static_cast<char16_t>(u);
        const unsigned mask = kiv::tables::classification_mask(unit);
        for (const Row& row : rows)
            ASSERT_EQ(row.function(unit), (mask & row.mask) != 0) << u << &row - rows;
        const char16 lower(Char16::toLowerCase(unit));
        const char16 upper(Char16::toUpperCase(unit));
        ASSERT_EQ(kiv::toulower(char16(unit)), lower) << u;
        ASSERT_EQ(kiv::touupper(char16(unit)), upper) << u;
        ASSERT_EQ(kiv::toulower(char16_int(unit)), char16_int(lower)) << u;
        ASSERT_EQ(kiv::touupper(char16_int(unit)), char16_int(upper)) << u;
    }
}

}  // namespace
