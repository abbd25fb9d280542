#include "char/companion.h"

#include "companion/tables/unicode_tables.h"

namespace {

using kiv::companion::record_of;

constexpr std::uint32_t PUBLIC_PROPERTIES =
    kiv::UNI_IDENTIFIER_START | kiv::UNI_IDENTIFIER_PART | kiv::UNI_WHITESPACE;

// Lu, Ll, Lt, Lm and Lo fill the group of this class.
constexpr int LETTER_GROUP = kiv::UNI_UPPERCASE_LETTER & kiv::UNI_CLASS_GROUP;

int class_of(std::int32_t cp) noexcept
{
    return static_cast<int>(record_of(cp).bits & kiv::companion::CLASS_MASK);
}

int has_bit(std::int32_t cp, std::uint32_t bit) noexcept
{
    return (record_of(cp).bits & bit) != 0;
}

bool is_letter_class(int char_class) noexcept
{
    return (char_class & kiv::UNI_CLASS_GROUP) == LETTER_GROUP;
}

}  // namespace

extern "C" {

int kivUniCharIsAlphabetic(std::int32_t cp)
{
    return has_bit(cp, kiv::companion::ALPHABETIC);
}

int kivUniCharIsControl(std::int32_t cp)
{
    return class_of(cp) == kiv::UNI_CONTROL;
}

int kivUniCharIsDecimalDigit(std::int32_t cp)
{
    return class_of(cp) == kiv::UNI_DECIMAL_NUMBER;
}

int kivUniCharIsDefined(std::int32_t cp)
{
    return class_of(cp) != kiv::UNI_UNASSIGNED;
}

int kivUniCharIsLetter(std::int32_t cp)
{
    return is_letter_class(class_of(cp));
}

int kivUniCharIsLetterOrDecimalDigit(std::int32_t cp)
{
    const int char_class = class_of(cp);
    return is_letter_class(char_class) || char_class == kiv::UNI_DECIMAL_NUMBER;
}

int kivUniCharIsLower(std::int32_t cp)
{
    return has_bit(cp, kiv::companion::LOWERCASE);
}

int kivUniCharIsTitle(std::int32_t cp)
{
    return class_of(cp) == kiv::UNI_TITLECASE_LETTER;
}

int kivUniCharIsUpper(std::int32_t cp)
{
    return has_bit(cp, kiv::companion::UPPERCASE);
}

int kivUniCharToLower(std::int32_t cp)
{
    return cp + record_of(cp).to_lower;
}

int kivUniCharToUpper(std::int32_t cp)
{
    return cp + record_of(cp).to_upper;
}

int kivUniCharToTitle(std::int32_t cp)
{
    return cp + record_of(cp).to_title;
}

int kivUniCharDigitValue(std::int32_t cp)
{
    return static_cast<int>(record_of(cp).bits >> kiv::companion::DIGIT_SHIFT) - 1;
}

int kivUniCharClass(std::int32_t cp)
{
    return class_of(cp);
}

int kivUniCharProperties(std::int32_t cp)
{
    return static_cast<int>(record_of(cp).bits & PUBLIC_PROPERTIES);
}

}  // extern "C"
