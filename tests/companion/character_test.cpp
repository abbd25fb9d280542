#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

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
    const auto has = [&](const char* name, std::size_t cp, int bit = 1) {
        return properties.at(name)[cp] ? bit : 0;
    };
    for (std::size_t i = 0; i < CODE_SPACE; ++i) {
        const auto cp = static_cast<std::int32_t>(i);
        ASSERT_EQ(kivUniCharIsAlphabetic(cp) != 0, has("Alphabetic", i)) << cp;
        ASSERT_EQ(kivUniCharIsLower(cp) != 0, has("Lowercase", i)) << cp;
        ASSERT_EQ(kivUniCharIsUpper(cp) != 0, has("Uppercase", i)) << cp;
        ASSERT_EQ(kivUniCharProperties(cp), has("ID_Start", i, 0x4000) |
                                                has("ID_Continue", i, 0x8000) |
                                                has("White_Space", i, 0x40000))
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

// What the standard never takes back, so that an older ICU has it as well.
TEST(CompanionCharacter, AgreesWithIcu)
{
    UVersionInfo version;
    u_getUnicodeVersion(version);
    if (version[0] > 17)
        GTEST_SKIP() << "ICU knows Unicode " << int{version[0]};
    for (UChar32 cp = 0; cp < static_cast<UChar32>(CODE_SPACE); ++cp) {
        if (!u_isdefined(cp))
            continue;
        SCOPED_TRACE(cp);
        ASSERT_EQ(kivUniCharDigitValue(cp), u_charDigitValue(cp));
        ASSERT_TRUE(u_tolower(cp) == cp || u_tolower(cp) == kivUniCharToLower(cp));
        ASSERT_TRUE(u_toupper(cp) == cp || u_toupper(cp) == kivUniCharToUpper(cp));
        ASSERT_TRUE(u_totitle(cp) == cp || u_totitle(cp) == kivUniCharToTitle(cp));
    }
}

#endif

}  // namespace
