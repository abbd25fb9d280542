// decimal/locale_text.h - the companion's incremental parser with a locale's characters.

#ifndef KIV_DECIMAL_LOCALE_TEXT_H
#define KIV_DECIMAL_LOCALE_TEXT_H

#include <locale>

#include "char/companion_decimal.h"

namespace kiv::decimal {

// What kivDecParseNextChar answers.
constexpr int IS_NUMBER = 1;  // the text so far
constexpr int IS_END = 2;     // the character belongs to the number only if it is one

// False if the parser refuses the locale's characters.
bool begin_parse(DecParseState& state, int digits, const std::locale& locale);

}  // namespace kiv::decimal

#endif
