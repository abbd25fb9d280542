#include "char/tables/classification.h"

#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "../companion/unicode_data.h"

namespace {

using namespace kiv::tables;

struct Repertoire {
    std::vector<std::string> categories =
        kivtest::read_categories("4.1.0/general_category.txt");
    std::map<std::string, std::vector<bool>> properties =
        kivtest::read_properties("4.1.0/binary_properties.txt");

    bool has(const char* property, std::uint32_t unit) const
    {
        return properties.at(property)[unit];
    }
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
    else if (unicode.has("Uppercase", unit))
        mask |= MASK_UPPER;
    else if (unicode.has("Lowercase", unit))
        mask |= MASK_LOWER;
    else if (category == "Nd")
        mask |= MASK_DIGIT;
    else if (category[0] == 'L' || category[0] == 'M' || category[0] == 'N')
        mask |= MASK_OTHER_ALPHA;

    if (category == "Cc" || category == "Cf")
        mask |= MASK_CONTROL;
    if (unicode.has("White_Space", unit))
        mask |=
            category == "Zl" || category == "Zp" ? MASK_SPACE : MASK_SPACE | MASK_BLANK;
    if (unicode.has("Hex_Digit", unit))
        mask |= MASK_XDIGIT;
    return mask;
}

TEST(Classification, EveryUnitFollowsUnicode41)
{
    const Repertoire unicode;
    int wrong = 0;
    for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
        const unsigned got = classification_mask(static_cast<std::uint16_t>(unit));
        const unsigned want = expected_mask(unicode, unit);
        if (got != want && ++wrong <= 20)
            ADD_FAILURE() << std::hex << "U+" << unit << " (" << unicode.categories[unit]
                          << "): got 0x" << got << ", want 0x" << want;
    }
    EXPECT_EQ(wrong, 0);
}

struct Range {
    std::uint32_t first, last;
    unsigned mask;
};

void expect_masks(const Range& range)
{
    for (std::uint32_t unit = range.first; unit <= range.last; ++unit)
        EXPECT_EQ(classification_mask(static_cast<std::uint16_t>(unit)), range.mask)
            << std::hex << "U+" << unit;
}

// Written out, independent of data and generator.
TEST(Classification, FirstRows)
{
    static constexpr Range ranges[] = {
        {0x00, 0x08, 0x020}, {0x09, 0x0D, 0x068}, {0x0E, 0x1F, 0x020},
        {0x20, 0x20, 0x048}, {0x21, 0x2F, 0x010}, {0x30, 0x39, 0x084},
        {0x3A, 0x40, 0x010}, {0x41, 0x46, 0x081}, {0x47, 0x5A, 0x001},
        {0x5B, 0x60, 0x010}, {0x61, 0x66, 0x082}, {0x67, 0x7A, 0x002},
        {0x7B, 0x7E, 0x010}, {0x7F, 0x84, 0x020}, {0x85, 0x85, 0x068},
        {0x86, 0x9F, 0x020}, {0xA0, 0xA0, 0x048}, {0xA1, 0xA9, 0x010},
        {0xAA, 0xAA, 0x002}, {0xAB, 0xAC, 0x010}, {0xAD, 0xAD, 0x020},
        {0xAE, 0xB4, 0x010}, {0xB5, 0xB5, 0x002}, {0xB6, 0xB9, 0x010},
        {0xBA, 0xBA, 0x002}, {0xBB, 0xBF, 0x010}, {0xC0, 0xD6, 0x001},
        {0xD7, 0xD7, 0x010}, {0xD8, 0xDE, 0x001}, {0xDF, 0xF6, 0x002},
        {0xF7, 0xF7, 0x010}, {0xF8, 0xFF, 0x002},
    };
    std::uint32_t next = 0;
    for (const Range& range : ranges) {
        ASSERT_EQ(range.first, next) << "the rows leave a gap";
        next = range.last + 1;
        expect_masks(range);
    }
    EXPECT_EQ(next, 0x100u);
}

TEST(Classification, UnitsThatOtherVersionsAndRulesTreatDifferently)
{
    static constexpr unsigned SPACE_AND_BLANK = MASK_SPACE | MASK_BLANK;
    static constexpr unsigned BOTH_CASES = MASK_UPPER | MASK_LOWER;
    static constexpr Range ranges[] = {
        {0x01C4, 0x01C4, MASK_UPPER},        // DZ with caron
        {0x01C5, 0x01C5, BOTH_CASES},        // its title case form
        {0x0221, 0x0221, MASK_LOWER},        // lower case without a capital
        {0x0242, 0x024F, 0},                 // assigned in 5.0
        {0x0294, 0x0294, MASK_LOWER},        // caseless from 5.0 on
        {0x02EC, 0x02EC, MASK_PUNCT},        // a modifier letter from 5.1 on
        {0x0300, 0x0300, MASK_OTHER_ALPHA},  // a mark
        {0x0345, 0x0345, MASK_LOWER},        // the mark that has case
        {0x0374, 0x0374, MASK_PUNCT},        // a modifier letter from 5.1 on
        {0x0488, 0x0489, MASK_PUNCT},        // enclosing marks
        {0x0660, 0x0669, MASK_DIGIT},        // digits, but not hexadecimal ones
        {0x0F00, 0x0F00, MASK_OTHER_ALPHA},  // a letter
        {0x0F2A, 0x0F33, MASK_PUNCT},        // half digits
        {0x10A0, 0x10C5, MASK_UPPER},        // Georgian capitals
        {0x10D0, 0x10FA, MASK_OTHER_ALPHA},  // Georgian letters, no case before 11.0
        {0x13A0, 0x13F4, MASK_OTHER_ALPHA},  // Cherokee, no case before 8.0
        {0x17B4, 0x17B5, MASK_CONTROL},      // marks from 6.1 on
        {0x180E, 0x180E, SPACE_AND_BLANK},   // a format character from 6.3 on
        {0x1FBC, 0x1FBC, BOTH_CASES},        // title case
        {0x200B, 0x200B, MASK_CONTROL},      // zero width, no space
        {0x2028, 0x2029, MASK_SPACE},        // end a line, so not blank
        {0x2132, 0x2132, MASK_PUNCT},        // a letter from 5.0 on
        {0x2160, 0x216F, MASK_UPPER},        // Roman numerals
        {0x2170, 0x217F, MASK_LOWER},        //
        {0x2183, 0x2183, MASK_OTHER_ALPHA},  // a numeral without case before 5.0
        {0x24B6, 0x24E9, MASK_PUNCT},        // circled letters
        {0x3007, 0x3007, MASK_OTHER_ALPHA},  // ideographic zero, a letter number
        {0x4E00, 0x9FBB, MASK_OTHER_ALPHA},  // ideographs
        {0x9FBC, 0x9FFF, 0},                 // ideographs of later versions
        {0xAC00, 0xD7A3, MASK_OTHER_ALPHA},  // Hangul
        {0xD800, 0xF8FF, 0},                 // surrogates and private use
        {0xFDD0, 0xFDEF, 0},                 // noncharacters
        {0xFEFF, 0xFEFF, MASK_CONTROL},      // byte order mark
        {0xFF10, 0xFF19, MASK_DIGIT | MASK_XDIGIT},
        {0xFF21, 0xFF26, MASK_UPPER | MASK_XDIGIT},
        {0xFF27, 0xFF3A, MASK_UPPER},
        {0xFF41, 0xFF46, MASK_LOWER | MASK_XDIGIT},
        {0xFFFE, 0xFFFF, 0},  // noncharacters, the last is end of file
    };
    for (const Range& range : ranges)
        expect_masks(range);
}

// Blocks are uniform whenever they can be; the others have their own run each,
// in order and inside the array.
TEST(Classification, Layout)
{
    std::size_t next_run = 0;
    for (std::uint32_t block = 0; block < 0x1000; ++block) {
        const std::uint16_t entry = classification_index[block];
        if (entry & CLASSIFICATION_UNIFORM)
            continue;
        EXPECT_EQ(entry, next_run) << "block " << block;
        next_run += 16;
        ASSERT_LE(next_run, std::size(classification_data));
        const std::uint16_t* run = classification_data + entry;
        bool mixed = false;
        for (int i = 1; i < 16; ++i)
            mixed = mixed || run[i] != run[0];
        EXPECT_TRUE(mixed) << "block " << block;
    }
    EXPECT_EQ(next_run, std::size(classification_data));
}

}  // namespace
