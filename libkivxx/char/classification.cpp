// The isu* predicates: two array reads and a mask test each.

#include <kiv/character.h>

#include "char/companion.h"
#include "char/tables/classification.h"

namespace kiv {

namespace {

bool has_class(char16_int c, unsigned classes) noexcept
{
    return (tables::classification_mask(static_cast<char16_t>(c)) & classes) != 0;
}

constexpr unsigned ALPHA =
    tables::MASK_UPPER | tables::MASK_LOWER | tables::MASK_OTHER_ALPHA;
constexpr unsigned ALNUM = ALPHA | tables::MASK_DIGIT;
constexpr unsigned GRAPH = ALNUM | tables::MASK_PUNCT;
constexpr unsigned PRINT = GRAPH | tables::MASK_BLANK | tables::MASK_XDIGIT;

}  // namespace

bool isualnum(char16_int c) noexcept
{
    return has_class(c, ALNUM);
}
bool isualpha(char16_int c) noexcept
{
    return has_class(c, ALPHA);
}
bool isucntrl(char16_int c) noexcept
{
    return has_class(c, tables::MASK_CONTROL);
}
bool isudigit(char16_int c) noexcept
{
    return has_class(c, tables::MASK_DIGIT);
}
bool isugraph(char16_int c) noexcept
{
    return has_class(c, GRAPH);
}
bool isulower(char16_int c) noexcept
{
    return has_class(c, tables::MASK_LOWER);
}
bool isuprint(char16_int c) noexcept
{
    return has_class(c, PRINT);
}
bool isupunct(char16_int c) noexcept
{
    return has_class(c, tables::MASK_PUNCT);
}
bool isuspace(char16_int c) noexcept
{
    return has_class(c, tables::MASK_SPACE | tables::MASK_BLANK);
}
bool isuupper(char16_int c) noexcept
{
    return has_class(c, tables::MASK_UPPER);
}
bool isuxdigit(char16_int c) noexcept
{
    return has_class(c, tables::MASK_XDIGIT);
}

char16 toulower(char16 c) noexcept
{
    return Char16::toLowerCase(c);
}
char16 toulower(char16_t c) noexcept
{
    return Char16::toLowerCase(c);
}
char16_int toulower(char16_int c) noexcept
{
    using traits = std::char_traits<char16>;
    return c == traits::eof() ? c : Char16::toLowerCase(static_cast<char16_t>(c));
}

char16 touupper(char16 c) noexcept
{
    return Char16::toUpperCase(c);
}
char16 touupper(char16_t c) noexcept
{
    return Char16::toUpperCase(c);
}
char16_int touupper(char16_int c) noexcept
{
    using traits = std::char_traits<char16>;
    return c == traits::eof() ? c : Char16::toUpperCase(static_cast<char16_t>(c));
}

}  // namespace kiv
