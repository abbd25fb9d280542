#include <cstdint>

#include <kiv/character.h>

#include "char/companion.h"

namespace kiv {

namespace {

constexpr std::int32_t value(char16 c) noexcept
{
    return Char16::toCodeUnit(c);
}
constexpr std::int32_t value(char16_t c) noexcept
{
    return c;
}
constexpr std::int32_t value(char32_t cp) noexcept
{
    return static_cast<std::int32_t>(cp);
}

bool has_property(std::int32_t cp, int bit) noexcept
{
    return (kivUniCharProperties(cp) & bit) != 0;
}

bool is_separator(std::int32_t cp) noexcept
{
    return (kivUniCharClass(cp) & UNI_CLASS_GROUP) == UNI_SEPARATOR_GROUP;
}

bool is_identifier_ignorable(std::int32_t cp) noexcept
{
    const int category = kivUniCharClass(cp);
    return category == UNI_FORMAT ||
           (category == UNI_CONTROL && !has_property(cp, UNI_WHITESPACE));
}

}  // namespace

template char32_t Char16::codePointAt(const ustring&, std::size_t);
template char32_t Char16::codePointAt(const basic_string_ref<char16>&, std::size_t);
template char32_t Char16::codePointBefore(const ustring&, std::size_t);
template char32_t Char16::codePointBefore(const basic_string_ref<char16>&, std::size_t);
template std::size_t Char16::codePointCount(const ustring&, std::size_t, std::size_t);
template std::size_t Char16::codePointCount(const basic_string_ref<char16>&, std::size_t,
                                            std::size_t);
template std::size_t Char16::offsetByCodePoints(const ustring&, std::size_t,
                                                std::ptrdiff_t);
template std::size_t Char16::offsetByCodePoints(const basic_string_ref<char16>&,
                                                std::size_t, std::ptrdiff_t);

std::size_t Char16::toChars(char32_t cp, ustring& s)
{
    return toChars(cp, s, s.size());
}

std::size_t Char16::toChars(char32_t cp, ustring& s, std::size_t index)
{
    const std::size_t n = charCount(cp);
    const char16 units[2] = {
        n == 2 ? highSurrogate(cp) : char16(static_cast<char16_t>(cp)), lowSurrogate(cp)};
    // Beyond the end everything is appended, and nothing wraps.
    const std::size_t at = std::min(index, s.size());
    s.replace(at, n, units, n);
    return n;
}

// --- Digits ------------------------------------------------------------------

int Char16::digit(char32_t cp, unsigned radix) noexcept
{
    if (radix < MIN_RADIX || radix > MAX_RADIX)
        return -1;
    int d = -1;
    if (cp - U'0' < 10) {
        d = static_cast<int>(cp - U'0');
    } else if ((cp | 0x20) - U'a' < 26) {
        d = static_cast<int>((cp | 0x20) - U'a') + 10;
    } else {
        d = kivUniCharDigitValue(value(cp));
        for (const char32_t base : {U'\uFF21', U'\uFF41'})  // full-width A and a
            if (d < 0 && cp - base < 26)
                d = static_cast<int>(cp - base) + 10;
    }
    return static_cast<unsigned>(d) < radix ? d : -1;
}

int Char16::digit(char16 c, unsigned radix) noexcept
{
    return digit(char32_t{toCodeUnit(c)}, radix);
}

int Char16::digit(char16_t c, unsigned radix) noexcept
{
    return digit(char32_t{c}, radix);
}

char16 Char16::forDigit(unsigned digit, unsigned radix) noexcept
{
    if (radix < MIN_RADIX || radix > MAX_RADIX || digit >= radix)
        return char16();
    return static_cast<char16_t>(digit < 10 ? u'0' + digit : u'a' + digit - 10);
}

char Char16::narrow(char16 c, char dflt) noexcept
{
    const char16_t unit = toCodeUnit(c);
    if (unit < 0x80)
        return static_cast<char>(unit);
    const int d = kivUniCharDigitValue(unit);
    return d >= 0 ? static_cast<char>('0' + d) : dflt;
}

// --- Case mapping and predicates: one companion call for three widths ----------

#define KIV_CASE_MAPPING(NAME, COMPANION)                   \
    char16 Char16::NAME(char16 c) noexcept                  \
    {                                                       \
        return static_cast<char16_t>(COMPANION(value(c)));  \
    }                                                       \
    char16_t Char16::NAME(char16_t c) noexcept              \
    {                                                       \
        return static_cast<char16_t>(COMPANION(value(c)));  \
    }                                                       \
    char32_t Char16::NAME(char32_t cp) noexcept             \
    {                                                       \
        return static_cast<char32_t>(COMPANION(value(cp))); \
    }

#define KIV_PREDICATE(NAME, TEST)          \
    bool Char16::NAME(char16 c) noexcept   \
    {                                      \
        const std::int32_t cp = value(c);  \
        return TEST;                       \
    }                                      \
    bool Char16::NAME(char16_t c) noexcept \
    {                                      \
        const std::int32_t cp = value(c);  \
        return TEST;                       \
    }                                      \
    bool Char16::NAME(char32_t c) noexcept \
    {                                      \
        const std::int32_t cp = value(c);  \
        return TEST;                       \
    }

KIV_CASE_MAPPING(toLowerCase, kivUniCharToLower)
KIV_CASE_MAPPING(toUpperCase, kivUniCharToUpper)
KIV_CASE_MAPPING(toTitleCase, kivUniCharToTitle)

KIV_PREDICATE(isAlphabetic, kivUniCharIsAlphabetic(cp) != 0)
KIV_PREDICATE(isDefined, kivUniCharIsDefined(cp) != 0)
KIV_PREDICATE(isDigit, kivUniCharIsDecimalDigit(cp) != 0)
KIV_PREDICATE(isISOControl, kivUniCharIsControl(cp) != 0)
KIV_PREDICATE(isLetter, kivUniCharIsLetter(cp) != 0)
KIV_PREDICATE(isLetterOrDigit, kivUniCharIsLetterOrDecimalDigit(cp) != 0)
KIV_PREDICATE(isLowerCase, kivUniCharIsLower(cp) != 0)
KIV_PREDICATE(isUpperCase, kivUniCharIsUpper(cp) != 0)
KIV_PREDICATE(isTitleCase, kivUniCharIsTitle(cp) != 0)
KIV_PREDICATE(isIdentifierStart, has_property(cp, UNI_IDENTIFIER_START))
KIV_PREDICATE(isIdentifierPart, has_property(cp, UNI_IDENTIFIER_PART))
KIV_PREDICATE(isIdentifierIgnorable, is_identifier_ignorable(cp))
KIV_PREDICATE(isWhitespace, has_property(cp, UNI_WHITESPACE))
KIV_PREDICATE(isSpaceChar, is_separator(cp))

}  // namespace kiv
