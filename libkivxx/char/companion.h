// char/companion.h - the character functions of the companion library.
//
// Plain functions over the whole 32-bit range: a value that is not a Unicode
// code point (above U+10FFFF) is undefined, has no properties and maps to
// itself. All are pure and may be called from any thread.

#ifndef KIV_CHAR_COMPANION_H
#define KIV_CHAR_COMPANION_H

#include <cstdint>

namespace kiv {

// What kivUniCharClass returns: the general category, grouped by its first
// letter in the upper three bits so that one mask tests a group.
enum UniCharClass : int {
    UNI_UPPERCASE_LETTER = 0x08,       // Lu
    UNI_LOWERCASE_LETTER = 0x09,       // Ll
    UNI_TITLECASE_LETTER = 0x0A,       // Lt
    UNI_MODIFIER_LETTER = 0x0B,        // Lm
    UNI_OTHER_LETTER = 0x0C,           // Lo
    UNI_NONSPACING_MARK = 0x10,        // Mn
    UNI_SPACING_MARK = 0x11,           // Mc
    UNI_ENCLOSING_MARK = 0x12,         // Me
    UNI_DECIMAL_NUMBER = 0x18,         // Nd
    UNI_LETTER_NUMBER = 0x19,          // Nl
    UNI_OTHER_NUMBER = 0x1A,           // No
    UNI_CONNECTOR_PUNCTUATION = 0x20,  // Pc
    UNI_DASH_PUNCTUATION = 0x21,       // Pd
    UNI_OPEN_PUNCTUATION = 0x22,       // Ps
    UNI_CLOSE_PUNCTUATION = 0x23,      // Pe
    UNI_INITIAL_PUNCTUATION = 0x24,    // Pi
    UNI_FINAL_PUNCTUATION = 0x25,      // Pf
    UNI_OTHER_PUNCTUATION = 0x26,      // Po
    UNI_MATH_SYMBOL = 0x28,            // Sm
    UNI_CURRENCY_SYMBOL = 0x29,        // Sc
    UNI_MODIFIER_SYMBOL = 0x2A,        // Sk
    UNI_OTHER_SYMBOL = 0x2B,           // So
    UNI_SPACE_SEPARATOR = 0x30,        // Zs
    UNI_LINE_SEPARATOR = 0x31,         // Zl
    UNI_PARAGRAPH_SEPARATOR = 0x32,    // Zp
    UNI_UNASSIGNED = 0x38,             // Cn
    UNI_CONTROL = 0x39,                // Cc
    UNI_FORMAT = 0x3A,                 // Cf
    UNI_SURROGATE = 0x3B,              // Cs
    UNI_PRIVATE_USE = 0x3C,            // Co
};

constexpr int UNI_CLASS_GROUP = 0x38;      // the group bits of a class
constexpr int UNI_SEPARATOR_GROUP = 0x30;  // Zs, Zl, Zp

// Bits of kivUniCharProperties.
constexpr int UNI_IDENTIFIER_START = 1 << 14;  // ID_Start
constexpr int UNI_IDENTIFIER_PART = 1 << 15;   // ID_Continue
constexpr int UNI_WHITESPACE = 1 << 18;        // White_Space

}  // namespace kiv

extern "C" {

// Predicates: nonzero is true.
int kivUniCharIsAlphabetic(std::int32_t cp);            // Alphabetic
int kivUniCharIsControl(std::int32_t cp);               // Cc
int kivUniCharIsDecimalDigit(std::int32_t cp);          // Nd
int kivUniCharIsDefined(std::int32_t cp);               // not Cn
int kivUniCharIsLetter(std::int32_t cp);                // Lu Ll Lt Lm Lo
int kivUniCharIsLetterOrDecimalDigit(std::int32_t cp);  // L* Nd
int kivUniCharIsLower(std::int32_t cp);                 // Lowercase
int kivUniCharIsTitle(std::int32_t cp);                 // Lt
int kivUniCharIsUpper(std::int32_t cp);                 // Uppercase

// The simple (one to one) case mappings; a code point without one is returned
// as it is.
int kivUniCharToLower(std::int32_t cp);
int kivUniCharToUpper(std::int32_t cp);
int kivUniCharToTitle(std::int32_t cp);

// The value 0 to 9 of a decimal digit (Nd), -1 for everything else.
int kivUniCharDigitValue(std::int32_t cp);

// The general category as a kiv::UniCharClass.
int kivUniCharClass(std::int32_t cp);

// The property bits named above.
int kivUniCharProperties(std::int32_t cp);

}  // extern "C"

#endif
