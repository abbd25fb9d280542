#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#ifdef KIV_TEST_ICU
    #include <unicode/uchar.h>
#endif

#include "char/companion.h"
#include "companion/unicode_data.h"

namespace {

using kivtest::CODE_SPACE;

const std::map<std::string, int> CLASS_NUMBERS = {
    {"Lu", 0x08}, {"Ll", 0x09}, {"Lt", 0x0A}, {"Lm", 0x0B}, {"Lo", 0x0C}, {"Mn", 0x10},
    {"Mc", 0x11}, {"Me", 0x12}, {"Nd", 0x18}, {"Nl", 0x19}, {"No", 0x1A}, {"Pc", 0x20},
    {"Pd", 0x21}, {"Ps", 0x22}, {"Pe", 0x23}, {"Pi", 0x24}, {"Pf", 0x25}, {"Po", 0x26},
    {"Sm", 0x28}, {"Sc", 0x29}, {"Sk", 0x2A}, {"So", 0x2B}, {"Zs", 0x30}, {"Zl", 0x31},
    {"Zp", 0x32}, {"Cn", 0x38}, {"Cc", 57},   {"Cf", 58},   {"Cs", 0x3B}, {"Co", 0x3C},
};

TEST(CompanionCharacter, CategoriesOfAllCodePoints)
{
    const auto categories = kivtest::read_categories("17.0.0/general_category.txt");
    // The standard keeps the digits of a script in ascending order and in sets
    // of ten; several sets may follow one another.
    int digit = -1;
    for (std::int32_t cp = 0; cp < static_cast<std::int32_t>(CODE_SPACE); ++cp) {
        const std::string& category = categories[static_cast<std::size_t>(cp)];
        const bool letter = category[0] == 'L';
        digit = category == "Nd" ? (digit + 1) % 10 : -1;
        SCOPED_TRACE(cp);
        ASSERT_EQ(kivUniCharClass(cp), CLASS_NUMBERS.at(category));
        ASSERT_EQ(kivUniCharDigitValue(cp), digit);
        ASSERT_EQ(kivUniCharIsControl(cp) != 0, category == "Cc");
        ASSERT_EQ(kivUniCharIsDecimalDigit(cp) != 0, digit >= 0);
        ASSERT_EQ(kivUniCharIsDefined(cp) != 0, category != "Cn");
        ASSERT_EQ(kivUniCharIsLetter(cp) != 0, letter);
        ASSERT_EQ(kivUniCharIsLetterOrDecimalDigit(cp) != 0, letter || digit >= 0);
        ASSERT_EQ(kivUniCharIsTitle(cp) != 0, category == "Lt");
    }
}

TEST(CompanionCharacter, PropertiesOfAllCodePoints)
{
    const auto properties = kivtest::read_properties("17.0.0/binary_properties.txt");
    const std::vector<bool>& alphabetic = properties.at("Alphabetic");
    const std::vector<bool>& lower = properties.at("Lowercase");
    const std::vector<bool>& upper = properties.at("Uppercase");
    const std::vector<bool>& start = properties.at("ID_Start");
    const std::vector<bool>& part = properties.at("ID_Continue");
    const std::vector<bool>& space = properties.at("White_Space");
    for (std::uint32_t value = 0; value < CODE_SPACE; ++value) {
        const auto cp = static_cast<std::int32_t>(value);
        ASSERT_EQ(kivUniCharIsAlphabetic(cp) != 0, alphabetic[value]) << cp;
        ASSERT_EQ(kivUniCharIsLower(cp) != 0, lower[value]) << cp;
        ASSERT_EQ(kivUniCharIsUpper(cp) != 0, upper[value]) << cp;
        ASSERT_EQ(kivUniCharProperties(cp), (start[value] ? 0x4000 : 0) |
                                                (part[value] ? 0x8000 : 0) |
                                                (space[value] ? 0x40000 : 0))
            << cp;
    }
}

TEST(CompanionCharacter, CaseMappingsOfAllCodePoints)
{
    using Mapping = std::array<int, 3>;
    std::map<std::int32_t, Mapping> mappings;
    const auto add = [&](std::uint32_t cp, std::uint32_t, std::string_view rest) {
        std::istringstream in{std::string(rest)};
        char separator;
        Mapping& to = mappings[static_cast<std::int32_t>(cp)];
        in >> std::hex >> to[0] >> separator >> to[1] >> separator >> to[2];
        ASSERT_TRUE(in) << rest;
    };
    kivtest::for_each_row("17.0.0/simple_case_mapping.txt", add);
    for (std::int32_t cp = 0; cp < static_cast<std::int32_t>(CODE_SPACE); ++cp) {
        const auto found = mappings.find(cp);
        const Mapping want =
            found == mappings.end() ? Mapping{cp, cp, cp} : found->second;
        const Mapping got{kivUniCharToLower(cp), kivUniCharToUpper(cp),
                          kivUniCharToTitle(cp)};
        ASSERT_EQ(got, want) << cp;
    }
}

// Known by name, so that a misread data file cannot agree with itself.
TEST(CompanionCharacter, KnownCharacters)
{
    EXPECT_EQ(kivUniCharDigitValue(0x0663), 3) << "Arabic-Indic digit three";
    EXPECT_EQ(kivUniCharDigitValue(0x1D7FF), 9) << "the last of five sets of digits";
    EXPECT_EQ(kivUniCharDigitValue(0x00B2), -1) << "superscript two is no decimal digit";
    EXPECT_EQ(kivUniCharToUpper(0x00DF), 0x00DF) << "sharp s has no simple capital";
    EXPECT_EQ(kivUniCharToLower(0x1E9E), 0x00DF) << "but the capital has a small form";
    EXPECT_EQ(kivUniCharToTitle(0x01C4), 0x01C5) << "DZ with caron";
    EXPECT_EQ(kivUniCharToTitle(0x10D0), 0x10D0) << "Georgian has no title case";
    EXPECT_EQ(kivUniCharToUpper(0x10D0), 0x1C90) << "but capitals";
    EXPECT_EQ(kivUniCharClass(0xD800), kiv::UNI_SURROGATE);
    EXPECT_EQ(kivUniCharClass(0xFFFF), kiv::UNI_UNASSIGNED) << "a noncharacter";
    EXPECT_EQ(kivUniCharClass(0x10FFFD), kiv::UNI_PRIVATE_USE);
}

TEST(CompanionCharacter, ValuesOutsideTheCodeSpace)
{
    using Function = int (*)(std::int32_t);
    static constexpr Function false_for_all[] = {
        kivUniCharIsAlphabetic, kivUniCharIsControl, kivUniCharIsDecimalDigit,
        kivUniCharIsDefined,    kivUniCharIsLetter,  kivUniCharIsLetterOrDecimalDigit,
        kivUniCharIsLower,      kivUniCharIsTitle,   kivUniCharIsUpper,
        kivUniCharProperties,
    };
    // The next one, values that end like 'A' or '0', the extremes.
    for (const std::int32_t value :
         {0x110000, 0x110041, 0x1000030, std::numeric_limits<std::int32_t>::max(), -1,
          0x41 - 0x110000, std::numeric_limits<std::int32_t>::min() + 0x41}) {
        SCOPED_TRACE(value);
        for (const Function function : false_for_all)
            EXPECT_EQ(function(value), 0) << "function " << &function - false_for_all;
        EXPECT_EQ(kivUniCharToLower(value), value);
        EXPECT_EQ(kivUniCharToUpper(value), value);
        EXPECT_EQ(kivUniCharToTitle(value), value);
        EXPECT_EQ(kivUniCharDigitValue(value), -1);
        EXPECT_EQ(kivUniCharClass(value), kiv::UNI_UNASSIGNED);
    }
}

#ifdef KIV_TEST_ICU

// Characters of Unicode 15.0 that later versions changed: the joiners and
// katakana middle dots (15.1), letters with new capitals (16.0 and 17.0),
// combining small letters and the Ahom medial ra (16.0), U+0295 (17.0).
constexpr std::pair<UChar32, UChar32> CHANGED_LATER[] = {
    {0x019B, 0x019B}, {0x0264, 0x0264}, {0x0295, 0x0295},   {0x0363, 0x036F},
    {0x1DD3, 0x1DE6}, {0x200C, 0x200D}, {0x30FB, 0x30FB},   {0xA7D3, 0xA7D3},
    {0xA7D5, 0xA7D5}, {0xFF65, 0xFF65}, {0x1171E, 0x1171E},
};

TEST(CompanionCharacter, AgreesWithIcu)
{
    UVersionInfo version;
    u_getUnicodeVersion(version);
    if (version[0] < 15 || version[0] > 17)
        GTEST_SKIP() << "the changes between " << int{version[0]}
                     << " and 17 are unknown";

    const std::string categories =  // in the order of ICU
        "CnLuLlLtLmLoMnMeMcNdNlNoZsZlZpCcCfCoCsPdPsPePcPoSmScSkSoPiPf";
    const auto has = [](UChar32 cp, UProperty property, int bit) {
        return u_hasBinaryProperty(cp, property) ? bit : 0;
    };
    int compared = 0;
    for (UChar32 cp = 0; cp < static_cast<UChar32>(CODE_SPACE); ++cp) {
        if (!u_isdefined(cp))
            continue;
        ++compared;
        const std::size_t category = static_cast<std::size_t>(u_charType(cp));
        const std::array<int, 9> want{
            CLASS_NUMBERS.at(categories.substr(2 * category, 2)),
            has(cp, UCHAR_ALPHABETIC, 1),
            has(cp, UCHAR_LOWERCASE, 1),
            has(cp, UCHAR_UPPERCASE, 1),
            has(cp, UCHAR_ID_START, kiv::UNI_IDENTIFIER_START) |
                has(cp, UCHAR_ID_CONTINUE, kiv::UNI_IDENTIFIER_PART) |
                has(cp, UCHAR_WHITE_SPACE, kiv::UNI_WHITESPACE),
            u_tolower(cp),
            u_toupper(cp),
            u_totitle(cp),
            u_charDigitValue(cp)};
        const std::array<int, 9> got{
            kivUniCharClass(cp),        kivUniCharIsAlphabetic(cp) != 0,
            kivUniCharIsLower(cp) != 0, kivUniCharIsUpper(cp) != 0,
            kivUniCharProperties(cp),   kivUniCharToLower(cp),
            kivUniCharToUpper(cp),      kivUniCharToTitle(cp),
            kivUniCharDigitValue(cp)};
        const bool changed = std::any_of(
            std::begin(CHANGED_LATER), std::end(CHANGED_LATER),
            [&](const auto& range) { return range.first <= cp && cp <= range.second; });
        if (!changed) {
            ASSERT_EQ(got, want) << cp;
        } else if (version[0] == 15 && version[1] == 0) {
            EXPECT_NE(got, want) << cp << " is listed as changed";
        }
    }
    EXPECT_GT(compared, 280000) << "ICU answered for too few code points";
}

#endif

}  // namespace
