#include "char/tables/classification.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "companion/unicode_data.h"

namespace {

using namespace kiv::tables;

struct Repertoire {
    std::vector<std::string> categories =
        kivtest::read_categories("4.1.0/general_category.txt");
    std::map<std::string, std::vector<bool>> properties =
        kivtest::read_properties("4.1.0/binary_properties.txt");
};

// The same masks as the generator's, from other facts: that one starts from
// lists of units, this one from the standard's own Lowercase, Uppercase,
// White_Space and Hex_Digit.
unsigned expected_mask(const Repertoire& unicode, std::uint32_t unit)
{
    const std::string& category = unicode.categories[unit];
    if (category == "Cn" || category == "Cs" || category == "Co")
        return 0;
    if (category == "Lt")
        return MASK_UPPER | MASK_LOWER;

    unsigned mask = 0;
    const bool symbol =
        category[0] == 'P' || category[0] == 'S' || category == "No" || category == "Me";
    if (symbol)
        mask |= MASK_PUNCT;  // circled letters too, although they have case
    else if (unicode.properties.at("Uppercase")[unit])
        mask |= MASK_UPPER;
    else if (unicode.properties.at("Lowercase")[unit])
        mask |= MASK_LOWER;
    else if (category == "Nd")
        mask |= MASK_DIGIT;
    else if (category[0] == 'L' || category[0] == 'M' || category[0] == 'N')
        mask |= MASK_OTHER_ALPHA;

    if (category == "Cc" || category == "Cf")
        mask |= MASK_CONTROL;
    if (unicode.properties.at("White_Space")[unit])
        mask |=
            category == "Zl" || category == "Zp" ? MASK_SPACE : MASK_SPACE | MASK_BLANK;
    if (unicode.properties.at("Hex_Digit")[unit])
        mask |= MASK_XDIGIT;
    return mask;
}

TEST(Classification, EveryUnitFollowsUnicode41)
{
    const Repertoire unicode;
    for (std::uint32_t unit = 0; unit < 0x10000; ++unit)
        ASSERT_EQ(classification_mask(static_cast<std::uint16_t>(unit)),
                  expected_mask(unicode, unit))
            << std::hex << "U+" << unit << ' ' << unicode.categories[unit];
}

// Units that other versions or rules treat differently, written out: neither
// the data nor the generator has a part in them.
TEST(Classification, KnownUnits)
{
    static constexpr unsigned BOTH_CASES = MASK_UPPER | MASK_LOWER;
    struct Row {
        std::uint32_t first, last;
        unsigned mask;
        const char* why;
    };
    static constexpr Row rows[] = {
        {0x09, 0x0D, 0x068, "controls that are space and blank"},
        {0x20, 0x20, 0x048, "space"},
        {0x41, 0x46, 0x081, "hexadecimal capitals"},
        {0xAD, 0xAD, 0x020, "soft hyphen, a format character"},
        {0x01C5, 0x01C5, BOTH_CASES, "title case"},
        {0x0242, 0x024F, 0, "assigned in 5.0"},
        {0x0294, 0x0294, MASK_LOWER, "caseless from 5.0 on"},
        {0x02EC, 0x02EC, MASK_PUNCT, "a modifier letter from 5.1 on"},
        {0x0345, 0x0345, MASK_LOWER, "the mark that has case"},
        {0x0488, 0x0489, MASK_PUNCT, "enclosing marks"},
        {0x10D0, 0x10FA, MASK_OTHER_ALPHA, "Georgian, no case before 11.0"},
        {0x17B4, 0x17B5, MASK_CONTROL, "marks from 6.1 on"},
        {0x180E, 0x180E, MASK_SPACE | MASK_BLANK, "a format character from 6.3 on"},
        {0x200B, 0x200B, MASK_CONTROL, "zero width, no space"},
        {0x2028, 0x2029, MASK_SPACE, "they end a line, so they are not blank"},
        {0x2183, 0x2183, MASK_OTHER_ALPHA, "a numeral without case before 5.0"},
        {0x24B6, 0x24E9, MASK_PUNCT, "circled letters"},
        {0x9FBC, 0x9FFF, 0, "ideographs of later versions"},
        {0xD800, 0xF8FF, 0, "surrogates and private use"},
        {0xFF21, 0xFF26, MASK_UPPER | MASK_XDIGIT, "full-width A to F"},
        {0xFFFE, 0xFFFF, 0, "noncharacters, the last is end of file"},
    };
    for (const Row& row : rows)
        for (std::uint32_t unit = row.first; unit <= row.last; ++unit)
            EXPECT_EQ(classification_mask(static_cast<std::uint16_t>(unit)), row.mask)
                << std::hex << "U+" << unit << ": " << row.why;
}

// Blocks are uniform whenever they can be; the others have a run each, in order.
TEST(Classification, Layout)
{
    std::size_t next_run = 0;
    for (const std::uint16_t entry : classification_index)
        if ((entry & CLASSIFICATION_UNIFORM) == 0) {
            EXPECT_EQ(entry, next_run);
            next_run += 16;
            ASSERT_LE(next_run, std::size(classification_data));
            const std::uint16_t* const run = classification_data + entry;
            EXPECT_FALSE(std::equal(run + 1, run + 16, run)) << "could be uniform";
        }
    EXPECT_EQ(next_run, std::size(classification_data));
}

}  // namespace
