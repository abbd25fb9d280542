// kiv/character.h - code units and code points: surrogates, walking, digits,
// case and classification.
//
//     std::size_t n = kiv::Char16::codePointCount(s, 0, kiv::ustring::npos);
//     bool letter = kiv::Char16::isLetter(U'\u00E9');
//     bool space = kiv::isuspace(s[0]);
//
// Char16 answers from the newest Unicode data over the whole code space. The
// free isu* functions answer for single UTF-16 units from a fixed table of the
// Unicode 4.1 repertoire, so that text files and stored orders keep their
// meaning. Everything here is stateless and may be called from any thread.

#ifndef KIV_CHARACTER_H
#define KIV_CHARACTER_H

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include <kiv/char16.h>
#include <kiv/export.h>
#include <kiv/string_ref.h>

namespace kiv {

// A high surrogate combines only with a low surrogate directly after it; every
// other unit, a lone surrogate too, is a code point of its own value.
class KIV_API Char16 {
public:
    static constexpr char16 MIN_VALUE = u'\0';
    static constexpr char16 MAX_VALUE = char16_t{0xFFFF};
    static constexpr char16 MIN_HIGH_SURROGATE = char16_t{0xD800};
    static constexpr char16 MAX_HIGH_SURROGATE = char16_t{0xDBFF};
    static constexpr char16 MIN_LOW_SURROGATE = char16_t{0xDC00};
    static constexpr char16 MAX_LOW_SURROGATE = char16_t{0xDFFF};
    static constexpr char16 MIN_SURROGATE = char16_t{0xD800};
    static constexpr char16 MAX_SURROGATE = char16_t{0xDFFF};
    static constexpr char32_t MIN_SUPPLEMENTARY_CODE_POINT = 0x10000;
    static constexpr char32_t MIN_CODE_POINT = 0;
    static constexpr char32_t MAX_CODE_POINT = 0x10FFFF;
    static constexpr unsigned MIN_RADIX = 2;
    static constexpr unsigned MAX_RADIX = 36;

    // --- Surrogates and code points; nothing is validated ------------------

    static constexpr char16_t toCodeUnit(char16 c) noexcept
    {
        return static_cast<char16_t>(c);
    }
    static constexpr bool isHighSurrogate(char16 c) noexcept
    {
        return (toCodeUnit(c) & 0xFC00) == 0xD800;
    }
    static constexpr bool isLowSurrogate(char16 c) noexcept
    {
        return (toCodeUnit(c) & 0xFC00) == 0xDC00;
    }
    static constexpr bool isSurrogate(char16 c) noexcept
    {
        return (toCodeUnit(c) & 0xF800) == 0xD800;
    }
    static constexpr bool isSurrogatePair(char16 high, char16 low) noexcept
    {
        return isHighSurrogate(high) && isLowSurrogate(low);
    }
    static constexpr bool isBmpCodePoint(char32_t cp) noexcept { return cp < 0x10000; }
    static constexpr bool isSupplementaryCodePoint(char32_t cp) noexcept
    {
        return cp - MIN_SUPPLEMENTARY_CODE_POINT <= MAX_CODE_POINT - 0x10000;
    }
    static constexpr bool isValidCodePoint(char32_t cp) noexcept
    {
        return cp <= MAX_CODE_POINT;
    }

    // Units that toChars writes: 2 from 0x10000 up, also above 0x10FFFF.
    static constexpr std::size_t charCount(char32_t cp) noexcept
    {
        return cp >= MIN_SUPPLEMENTARY_CODE_POINT ? 2 : 1;
    }
    static constexpr char32_t toCodePoint(char16 high, char16 low) noexcept
    {
        const char32_t top = toCodeUnit(high) & 0x3FFu;
        return (top << 10 | (toCodeUnit(low) & 0x3FFu)) + MIN_SUPPLEMENTARY_CODE_POINT;
    }
    static constexpr char16 highSurrogate(char32_t cp) noexcept
    {
        return static_cast<char16_t>(0xD800 | ((cp - 0x10000) >> 10 & 0x3FF));
    }
    static constexpr char16 lowSurrogate(char32_t cp) noexcept
    {
        return static_cast<char16_t>(0xDC00 | (cp & 0x3FF));
    }

    // --- Walking; StringT is ustring or basic_string_ref<char16> -----------

    // The code point that starts at index. Throws std::out_of_range (from the
    // string's at) unless index < s.size().
    template <class StringT>
    static char32_t codePointAt(const StringT& s, std::size_t index);

    // The code point that ends before index. Throws std::out_of_range (from
    // the string's at) unless 0 < index <= s.size().
    template <class StringT>
    static char32_t codePointBefore(const StringT& s, std::size_t index);

    // The code points among the min(n, s.size() - pos) units from pos; a pair
    // cut by the end counts as one. Throws std::out_of_range if pos > s.size().
    template <class StringT>
    static std::size_t codePointCount(const StringT& s, std::size_t pos, std::size_t n);

    // The position that is offset code points after (before, if negative)
    // index, or size_t(-1) if the text ends first. Throws std::out_of_range if
    // index > s.size().
    template <class StringT>
    static std::size_t offsetByCodePoints(const StringT& s, std::size_t index,
                                          std::ptrdiff_t offset);

    // Appends the units of cp; returns their number, 1 or 2. Surrogates and
    // values above 0x10FFFF go through the same formulas.
    static std::size_t toChars(char32_t cp, ustring& s);

    // Writes the units of cp over those from index on, appending where the
    // string has ended; returns their number.
    static std::size_t toChars(char32_t cp, ustring& s, std::size_t index);

    // --- Digits ------------------------------------------------------------

    // The value of a digit in radix: ASCII letters and digits, every Unicode
    // decimal digit and the full-width Latin letters. -1 if it is none or if
    // radix is not 2 to 36.
    static int digit(char16 c, unsigned radix) noexcept;
    static int digit(char16_t c, unsigned radix) noexcept;
    static int digit(char32_t cp, unsigned radix) noexcept;

    // '0' to '9', 'a' to 'z'; the zero unit if digit or radix is out of range.
    static char16 forDigit(unsigned digit, unsigned radix) noexcept;

    // --- To and from char --------------------------------------------------

    // ASCII as it is, any other byte as U+FFFD.
    static constexpr char16 widen(char c) noexcept
    {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 ? char16_t{byte} : u'\uFFFD';
    }
    // ASCII as it is, any other decimal digit as '0' to '9', the rest as dflt.
    static char narrow(char16 c, char dflt) noexcept;

    // --- Simple case mapping -----------------------------------------------

    static char16 toLowerCase(char16 c) noexcept;
    static char16_t toLowerCase(char16_t c) noexcept;
    static char32_t toLowerCase(char32_t cp) noexcept;
    static char16 toUpperCase(char16 c) noexcept;
    static char16_t toUpperCase(char16_t c) noexcept;
    static char32_t toUpperCase(char32_t cp) noexcept;
    static char16 toTitleCase(char16 c) noexcept;
    static char16_t toTitleCase(char16_t c) noexcept;
    static char32_t toTitleCase(char32_t cp) noexcept;

    // --- Classification ----------------------------------------------------

    static bool isAlphabetic(char16 c) noexcept;
    static bool isAlphabetic(char16_t c) noexcept;
    static bool isAlphabetic(char32_t cp) noexcept;
    static bool isDefined(char16 c) noexcept;
    static bool isDefined(char16_t c) noexcept;
    static bool isDefined(char32_t cp) noexcept;
    static bool isDigit(char16 c) noexcept;
    static bool isDigit(char16_t c) noexcept;
    static bool isDigit(char32_t cp) noexcept;
    static bool isISOControl(char16 c) noexcept;
    static bool isISOControl(char16_t c) noexcept;
    static bool isISOControl(char32_t cp) noexcept;
    static bool isLetter(char16 c) noexcept;
    static bool isLetter(char16_t c) noexcept;
    static bool isLetter(char32_t cp) noexcept;
    static bool isLetterOrDigit(char16 c) noexcept;
    static bool isLetterOrDigit(char16_t c) noexcept;
    static bool isLetterOrDigit(char32_t cp) noexcept;
    static bool isLowerCase(char16 c) noexcept;
    static bool isLowerCase(char16_t c) noexcept;
    static bool isLowerCase(char32_t cp) noexcept;
    static bool isUpperCase(char16 c) noexcept;
    static bool isUpperCase(char16_t c) noexcept;
    static bool isUpperCase(char32_t cp) noexcept;
    static bool isTitleCase(char16 c) noexcept;
    static bool isTitleCase(char16_t c) noexcept;
    static bool isTitleCase(char32_t cp) noexcept;
    static bool isIdentifierStart(char16 c) noexcept;
    static bool isIdentifierStart(char16_t c) noexcept;
    static bool isIdentifierStart(char32_t cp) noexcept;
    static bool isIdentifierPart(char16 c) noexcept;
    static bool isIdentifierPart(char16_t c) noexcept;
    static bool isIdentifierPart(char32_t cp) noexcept;
    static bool isIdentifierIgnorable(char16 c) noexcept;
    static bool isIdentifierIgnorable(char16_t c) noexcept;
    static bool isIdentifierIgnorable(char32_t cp) noexcept;
    static bool isWhitespace(char16 c) noexcept;
    static bool isWhitespace(char16_t c) noexcept;
    static bool isWhitespace(char32_t cp) noexcept;
    // The separators only: space, line and paragraph.
    static bool isSpaceChar(char16 c) noexcept;
    static bool isSpaceChar(char16_t c) noexcept;
    static bool isSpaceChar(char32_t cp) noexcept;
};

// --- Definitions of the walking templates ----------------------------------

template <class StringT>
char32_t Char16::codePointAt(const StringT& s, std::size_t index)
{
    const char16 unit = s.at(index);
    if (isHighSurrogate(unit) && index + 1 != s.size() && isLowSurrogate(s[index + 1]))
        return toCodePoint(unit, s[index + 1]);
    return toCodeUnit(unit);
}

template <class StringT>
char32_t Char16::codePointBefore(const StringT& s, std::size_t index)
{
    const char16 unit = s.at(index - 1);  // index 0 wraps and fails the check
    if (isLowSurrogate(unit) && index != 1 && isHighSurrogate(s[index - 2]))
        return toCodePoint(s[index - 2], unit);
    return toCodeUnit(unit);
}

template <class StringT>
std::size_t Char16::codePointCount(const StringT& s, std::size_t pos, std::size_t n)
{
    if (pos > s.size())
        throw std::out_of_range(
            "Char16::codePointCount(const StringT &, size_type, size_type)");
    const std::size_t end = pos + std::min(n, s.size() - pos);
    std::size_t count = 0;
    while (pos < end) {
        const char16 unit = s[pos++];
        if (isHighSurrogate(unit) && pos < end && isLowSurrogate(s[pos]))
            ++pos;
        ++count;
    }
    return count;
}

template <class StringT>
std::size_t Char16::offsetByCodePoints(const StringT& s, std::size_t index,
                                       std::ptrdiff_t offset)
{
    constexpr auto outside = static_cast<std::size_t>(-1);
    if (index > s.size())
        throw std::out_of_range(
            "Char16::offsetByCodePoints(const StringT &, size_type, difference_type)");
    for (; offset > 0; --offset) {
        if (index == s.size())
            return outside;
        const char16 unit = s[index++];
        if (isHighSurrogate(unit) && index != s.size() && isLowSurrogate(s[index]))
            ++index;
    }
    for (; offset < 0; ++offset) {
        if (index == 0)
            return outside;
        const char16 unit = s[--index];
        if (isLowSurrogate(unit) && index != 0 && isHighSurrogate(s[index - 1]))
            --index;
    }
    return index;
}

extern template KIV_API char32_t Char16::codePointAt(const ustring&, std::size_t);
extern template KIV_API char32_t Char16::codePointAt(const basic_string_ref<char16>&,
                                                     std::size_t);
extern template KIV_API char32_t Char16::codePointBefore(const ustring&, std::size_t);
extern template KIV_API char32_t Char16::codePointBefore(const basic_string_ref<char16>&,
                                                         std::size_t);
extern template KIV_API std::size_t Char16::codePointCount(const ustring&, std::size_t,
                                                           std::size_t);
extern template KIV_API std::size_t Char16::codePointCount(
    const basic_string_ref<char16>&, std::size_t, std::size_t);
extern template KIV_API std::size_t Char16::offsetByCodePoints(const ustring&,
                                                               std::size_t,
                                                               std::ptrdiff_t);
extern template KIV_API std::size_t Char16::offsetByCodePoints(
    const basic_string_ref<char16>&, std::size_t, std::ptrdiff_t);

// --- Classification of units, in the manner of <cctype> ---------------------
//
// Each is false for end of file. char16 and char16_t convert to char16_int.

KIV_API bool isualnum(char16_int c) noexcept;
KIV_API bool isualpha(char16_int c) noexcept;
KIV_API bool isucntrl(char16_int c) noexcept;
KIV_API bool isudigit(char16_int c) noexcept;
KIV_API bool isugraph(char16_int c) noexcept;
KIV_API bool isulower(char16_int c) noexcept;
KIV_API bool isuprint(char16_int c) noexcept;
KIV_API bool isupunct(char16_int c) noexcept;
KIV_API bool isuspace(char16_int c) noexcept;
KIV_API bool isuupper(char16_int c) noexcept;
KIV_API bool isuxdigit(char16_int c) noexcept;

// The simple case mappings of Char16; end of file maps to itself.
KIV_API char16 toulower(char16 c) noexcept;
KIV_API char16 toulower(char16_t c) noexcept;
KIV_API char16_int toulower(char16_int c) noexcept;
KIV_API char16 touupper(char16 c) noexcept;
KIV_API char16 touupper(char16_t c) noexcept;
KIV_API char16_int touupper(char16_int c) noexcept;

}  // namespace kiv

#endif
