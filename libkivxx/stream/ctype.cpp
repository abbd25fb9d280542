// Classification answers from the class masks of the character tables, which
// have bits of their own: they are translated into the masks of std::ctype_base
// and back.

#include <array>
#include <cstdint>

#include <kiv/locale.h>

#include "char/companion.h"
#include "char/tables/classification.h"

namespace {

using kiv::char16;
using std_mask = std::ctype_base::mask;
namespace tables = kiv::tables;

constexpr unsigned ALPHA =
    tables::MASK_UPPER | tables::MASK_LOWER | tables::MASK_OTHER_ALPHA;
constexpr unsigned GRAPH = ALPHA | tables::MASK_DIGIT | tables::MASK_PUNCT;

// The standard's single classes; alnum and graph are made of them. The classes
// on the right are the ones that the isu* functions test.
constexpr struct {
    std_mask standard;
    unsigned table;
} CLASSES[] = {
    {std::ctype_base::upper, tables::MASK_UPPER},
    {std::ctype_base::lower, tables::MASK_LOWER},
    {std::ctype_base::alpha, ALPHA},
    {std::ctype_base::digit, tables::MASK_DIGIT},
    {std::ctype_base::xdigit, tables::MASK_XDIGIT},
    {std::ctype_base::punct, tables::MASK_PUNCT},
    {std::ctype_base::space, tables::MASK_SPACE | tables::MASK_BLANK},
    {std::ctype_base::blank, tables::MASK_BLANK},
    {std::ctype_base::cntrl, tables::MASK_CONTROL},
    {std::ctype_base::print, GRAPH | tables::MASK_BLANK | tables::MASK_XDIGIT},
};

constexpr unsigned TABLE_MASKS = 0x200;  // all combinations of the nine bits

constexpr auto TO_STANDARD = [] {
    std::array<std_mask, TABLE_MASKS> masks{};
    for (unsigned table = 0; table < TABLE_MASKS; ++table)
        for (const auto& c : CLASSES)
            if (table & c.table)
                masks[table] = static_cast<std_mask>(masks[table] | c.standard);
    return masks;
}();

constexpr unsigned to_table(std_mask m) noexcept
{
    unsigned table = 0;
    for (const auto& c : CLASSES)
        table |= m & c.standard ? c.table : 0;
    return table;
}

std_mask classes_of(char16 c) noexcept
{
    return TO_STANDARD[tables::classification_mask(static_cast<char16_t>(c))];
}

bool is_ascii(char16 c) noexcept
{
    return c < char16(u'\x80');
}

using case_mapping = std::int32_t (*)(std::int32_t);

char16 map_case(char16 c, case_mapping mapping) noexcept
{
    return static_cast<char16_t>(mapping(static_cast<char16_t>(c)));
}

constexpr char16_t REPLACEMENT = 0xFFFD;

char16 widen_byte(char c) noexcept
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x80 ? char16_t{byte} : REPLACEMENT;
}

char narrow_unit(char16 c, char dflt) noexcept
{
    if (is_ascii(c))
        return static_cast<char>(static_cast<char16_t>(c));
    const int digit = kivUniCharDigitValue(static_cast<char16_t>(c));
    return digit >= 0 ? static_cast<char>('0' + digit) : dflt;
}

}  // namespace

namespace std {

locale::id ctype<char16>::id;

ctype<char16>::~ctype() = default;

const char16* ctype<char16>::do_is(const char16* first, const char16* last,
                                   mask* masks) const
{
    for (; first != last; ++first)
        *masks++ = classes_of(*first);
    return last;
}

bool ctype<char16>::do_is(mask m, char16 c) const
{
    return (classes_of(c) & m) != 0;
}

const char16* ctype<char16>::do_scan_is(mask m, const char16* first,
                                        const char16* last) const
{
    const unsigned classes = to_table(m);
    while (first != last &&
           !(tables::classification_mask(static_cast<char16_t>(*first)) & classes))
        ++first;
    return first;
}

const char16* ctype<char16>::do_scan_not(mask m, const char16* first,
                                         const char16* last) const
{
    const unsigned classes = to_table(m);
    while (first != last &&
           (tables::classification_mask(static_cast<char16_t>(*first)) & classes))
        ++first;
    return first;
}

const char16* ctype<char16>::do_toupper(char16* first, const char16* last) const
{
    for (; first != last; ++first)
        *first = map_case(*first, kivUniCharToUpper);
    return last;
}

char16 ctype<char16>::do_toupper(char16 c) const
{
    return map_case(c, kivUniCharToUpper);
}

const char16* ctype<char16>::do_tolower(char16* first, const char16* last) const
{
    for (; first != last; ++first)
        *first = map_case(*first, kivUniCharToLower);
    return last;
}

char16 ctype<char16>::do_tolower(char16 c) const
{
    return map_case(c, kivUniCharToLower);
}

const char* ctype<char16>::do_widen(const char* first, const char* last,
                                    char16* dest) const
{
    while (first != last)
        *dest++ = widen_byte(*first++);
    return last;
}

char16 ctype<char16>::do_widen(char c) const
{
    return widen_byte(c);
}

const char16* ctype<char16>::do_narrow(const char16* first, const char16* last, char dflt,
                                       char* dest) const
{
    while (first != last)
        *dest++ = narrow_unit(*first++, dflt);
    return last;
}

char ctype<char16>::do_narrow(char16 c, char dflt) const
{
    return narrow_unit(c, dflt);
}

}  // namespace std
