// Numbers at the front of narrow text, with a locale's point and separator.

#include <algorithm>
#include <cctype>
#include <locale>

#include <kiv/decimal.h>

#include "decimal/companion_calls.h"
#include "decimal/locale_text.h"
#include "decimal/parts.h"

namespace kiv::decimal {

bool begin_parse(DecParseState& state, int digits, const std::locale& locale)
{
    const auto& punctuation = std::use_facet<std::numpunct<char>>(locale);
    return kivDecParseInit(
               &state, digits, static_cast<unsigned char>(punctuation.decimal_point()),
               static_cast<unsigned char>(punctuation.thousands_sep()), 1) != -1;
}

namespace {

bool is_blank(const char* s)
{
    while (std::isspace(static_cast<unsigned char>(*s)))
        ++s;
    return *s == 0;
}

// The number's end; null if there is none.
template <class Decimal>
const char* parse(const std::locale& locale, const char* s, Decimal& value)
{
    using Format = DecimalFormat<Decimal>;
    DecParseState state;
    const char* end = nullptr;
    if (begin_parse(state, Format::PRECISION, locale)) {
        for (; *s != 0; ++s) {
            const int answer =
                kivDecParseNextChar(&state, static_cast<unsigned char>(*s));
            if (answer & IS_NUMBER)
                end = s + 1;
            if (answer & IS_END)
                break;
        }
    }
    value = end != nullptr ? Decimal(Companion<Decimal>::parsed(&state))
                           : Format::value(numconv::positive_nan<Format>());
    return end;
}

template <class Decimal>
Decimal parse_whole(const std::locale& locale, const char* s)
{
    using Format = DecimalFormat<Decimal>;
    Decimal value;
    const char* const end = parse(locale, s, value);
    if (end != nullptr && !is_blank(end))
        return Format::value(numconv::positive_nan<Format>());
    return value;
}

template <class Decimal>
Decimal parse_pointer(const std::locale& locale, const char* s, const char** end)
{
    if (end == nullptr)
        return parse_whole<Decimal>(locale, s);
    *end = s;
    Decimal value;
    if (const char* const past = parse(locale, s, value); past != nullptr)
        *end = past;
    return value;
}

template <class Decimal>
Decimal parse_string(const std::locale& locale, const std::string& s, std::size_t* idx)
{
    if (idx == nullptr)
        return parse_whole<Decimal>(locale, s.c_str());
    Decimal value;
    // Behind the text there is nothing, and so no number.
    const char* const first = s.c_str() + std::min(*idx, s.size());
    if (const char* const past = parse(locale, first, value); past != nullptr)
        *idx += static_cast<std::size_t>(past - first);
    return value;
}

}  // namespace

#define KIV_STRTOD(WIDTH)                                                         \
    decimal##WIDTH strtod##WIDTH(const char* s, const char** end)                 \
    {                                                                             \
        return strtod##WIDTH(std::locale::classic(), s, end);                     \
    }                                                                             \
    decimal##WIDTH strtod##WIDTH(const std::locale& locale, const char* s,        \
                                 const char** end)                                \
    {                                                                             \
        return parse_pointer<decimal##WIDTH>(locale, s, end);                     \
    }                                                                             \
    decimal##WIDTH strtod##WIDTH(const std::string& s, std::size_t* idx)          \
    {                                                                             \
        return strtod##WIDTH(std::locale::classic(), s, idx);                     \
    }                                                                             \
    decimal##WIDTH strtod##WIDTH(const std::locale& locale, const std::string& s, \
                                 std::size_t* idx)                                \
    {                                                                             \
        return parse_string<decimal##WIDTH>(locale, s, idx);                      \
    }
KIV_STRTOD(64)
KIV_STRTOD(128)
#undef KIV_STRTOD

}  // namespace kiv::decimal
