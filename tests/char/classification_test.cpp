#include "char/tables/classification.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "companion/unicode_data.h"

namespace {

using namespace kiv::tables;

using Properties = std::map<std::string, std::vector<bool>>;

// The same masks as the generator's, from other facts: that one starts from
// lists of units, this one from the standard's own Lowercase, Uppercase,
// White_Space and Hex_Digit.
unsigned expected_mask(const std::string& category, const Properties& properties,
                       std::uint32_t unit)
{
    if (category == "Cn" || category == "Cs" || category == "Co")
        return 0;
    if (category == "Lt")
        return MASK_UPPER | MASK_LOWER;

    unsigned mask = 0;
    const bool symbol =
        category[0] == 'P' || category[0] == 'S' || category == "No" || category == "Me";
    if (symbol)
        mask |= MASK_PUNCT;  // circled letters too, although they have case
    else if (properties.at("Uppercase")[unit])
        mask |= MASK_UPPER;
    else if (properties.at("Lowercase")[unit])
        mask |= MASK_LOWER;
    else if (category == "Nd")
        mask |= MASK_DIGIT;
    else if (category[0] == 'L' || category[0] == 'M' || category[0] == 'N')
        mask |= MASK_OTHER_ALPHA;

    if (category == "Cc" || category == "Cf")
        mask |= MASK_CONTROL;
    if (properties.at("White_Space")[unit])
        mask |=
            category == "Zl" || category == "Zp" ? MASK_SPACE : MASK_SPACE | MASK_BLANK;
    if (properties.at("Hex_Digit")[unit])
        mask |= MASK_XDIGIT;
    return mask;
}

TEST(Classification, EveryUnitFollowsUnicode41)
{
    const auto categories = kivtest::read_categories("4.1.0/general_category.txt");
    const auto properties = kivtest::read_properties("4.1.0/binary_properties.txt");
    for (std::uint32_t unit = 0; unit < 0x10000; ++unit)
        ASSERT_EQ(classification_mask(static_cast<std::uint16_t>(unit)),
                  expected_mask(categories[unit], properties, unit))
            << std::hex << "U+" << unit << ' ' << categories[unit];
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
        {0xAD, 0xAD, 0x020, "soft hyphen, a format character"},
        {0x01C5, 0x01C5, BOTH_CASES, "title case"},
        {0x0242, 0x024F, 0, "assigned in 5.0"},
        {0x0294, 0x0294, MASK_LOWER, "caseless from 5.0 on"},
        {0x02EC, 0x02EC, MASK_PUNCT, "a modifier letter from 5.1 on"},
        {0x0345, 0x0345, MASK_LOWER, "the mark that has case"},
        {0x10D0, 0x10FA, MASK_OTHER_ALPHA, "Georgian, no case before 11.0"},
        {0x17B4, 0x17B5, MASK_CONTROL, "marks from 6.1 on"},
        {0x180E, 0x180E, MASK_SPACE | MASK_BLANK, "a format character from 6.3 on"},
        {0x200B, 0x200B, MASK_CONTROL, "zero width, no space"},
        {0x2028, 0x2029, MASK_SPACE, "they end a line, so they are not blank"},
        {0x24B6, 0x24E9, MASK_PUNCT, "circled letters"},
        {0xFF21, 0xFF26, MASK_UPPER | MASK_XDIGIT, "full-width A to F"},
    };
    for (const Row& row : rows)
        for (std::uint32_t unit = row.first; unit <= row.last; ++unit)
            EXPECT_EQ(classification_mask(static_cast<std::uint16_t>(unit)), row.mask)
                << std::hex << "U+" << unit << ": " << row.why;
}

}  // namespace
