#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#ifdef KIV_TEST_ICU
    #include <unicode/uchar.h>
#endif

#include "char/companion.h"
#include "unicode_data.h"

namespace {

using kivtest::CODE_SPACE;

const std::map<std::string, int> CLASS_NUMBERS = {
    {"Lu", 0x08}, {"Ll", 0x09}, {"Lt", 0x0A}, {"Lm", 0x0B}, {"Lo", 0x0C}, {"Mn", 0x10},
    {"Mc", 0x11}, {"Me", 0x12}, {"Nd", 0x18}, {"Nl", 0x19}, {"No", 0x1A}, {"Pc", 0x20},
    {"Pd", 0x21}, {"Ps", 0x22}, {"Pe", 0x23}, {"Pi", 0x24}, {"Pf", 0x25}, {"Po", 0x26},
    {"Sm", 0x28}, {"Sc", 0x29}, {"Sk", 0x2A}, {"So", 0x2B}, {"Zs", 0x30}, {"Zl", 0x31},
    {"Zp", 0x32}, {"Cn", 0x38}, {"Cc", 57},   {"Cf", 58},   {"Cs", 0x3B}, {"Co", 0x3C},
};

// Collects mismatches over a long loop and reports the first few.
class Mismatches {
public:
    ~Mismatches() { EXPECT_EQ(m_count, 0) << m_report.str(); }

    void check(const char* what, std::uint32_t cp, int got, int want)
    {
        if (got == want)
            return;
        if (++m_count <= 20)
            m_report << what << " of U+" << std::hex << cp << ": got 0x" << got
                     << ", want 0x" << want << std::dec << '\n';
    }

private:
    int m_count = 0;
    std::ostringstream m_report;
};

std::int32_t as_argument(std::uint32_t cp)
{
    return static_cast<std::int32_t>(cp);
}

TEST(CompanionCharacter, CategoriesOfAllCodePoints)
{
    const auto categories = kivtest::read_categories("17.0.0/general_category.txt");
    Mismatches mismatches;
    for (std::uint32_t cp = 0; cp < CODE_SPACE; ++cp) {
        const std::string& category = categories[cp];
        const std::int32_t argument = as_argument(cp);
        const bool letter = category[0] == 'L';
        const bool digit = category == "Nd";
        mismatches.check("class", cp, kivUniCharClass(argument),
                         CLASS_NUMBERS.at(category));
        mismatches.check("control", cp, kivUniCharIsControl(argument) != 0,
                         category == "Cc");
        mismatches.check("digit", cp, kivUniCharIsDecimalDigit(argument) != 0, digit);
        mismatches.check("defined", cp, kivUniCharIsDefined(argument) != 0,
                         category != "Cn");
        mismatches.check("letter", cp, kivUniCharIsLetter(argument) != 0, letter);
        mismatches.check("letter or digit", cp,
                         kivUniCharIsLetterOrDecimalDigit(argument) != 0,
                         letter || digit);
        mismatches.check("title", cp, kivUniCharIsTitle(argument) != 0, category == "Lt");
        mismatches.check("separator group", cp,
                         (kivUniCharClass(argument) & kiv::UNI_CLASS_GROUP) ==
                             kiv::UNI_SEPARATOR_GROUP,
                         category[0] == 'Z');
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
    Mismatches mismatches;
    for (std::uint32_t cp = 0; cp < CODE_SPACE; ++cp) {
        const std::int32_t argument = as_argument(cp);
        mismatches.check("alphabetic", cp, kivUniCharIsAlphabetic(argument) != 0,
                         alphabetic[cp]);
        mismatches.check("lower", cp, kivUniCharIsLower(argument) != 0, lower[cp]);
        mismatches.check("upper", cp, kivUniCharIsUpper(argument) != 0, upper[cp]);
        mismatches.check("properties", cp, kivUniCharProperties(argument),
                         (start[cp] ? 0x4000 : 0) | (part[cp] ? 0x8000 : 0) |
                             (space[cp] ? 0x40000 : 0));
    }
}

TEST(CompanionCharacter, CaseMappingsOfAllCodePoints)
{
    struct Mapping {
        int lower, upper, title;
    };
    std::map<std::uint32_t, Mapping> mappings;
    kivtest::for_each_row("17.0.0/simple_case_mapping.txt",
                          [&](std::uint32_t cp, std::uint32_t, std::string_view rest) {
                              std::istringstream in{std::string(rest)};
                              char separator;
                              Mapping to{};
                              in >> std::hex >> to.lower >> separator >> to.upper >>
                                  separator >> to.title;
                              ASSERT_TRUE(in) << rest;
                              mappings[cp] = to;
                          });
    Mismatches mismatches;
    for (std::uint32_t cp = 0; cp < CODE_SPACE; ++cp) {
        const std::int32_t argument = as_argument(cp);
        const auto found = mappings.find(cp);
        const Mapping want = found == mappings.end()
                                 ? Mapping{argument, argument, argument}
                                 : found->second;
        mismatches.check("lower", cp, kivUniCharToLower(argument), want.lower);
        mismatches.check("upper", cp, kivUniCharToUpper(argument), want.upper);
        mismatches.check("title", cp, kivUniCharToTitle(argument), want.title);
    }
}

// The standard keeps the digits of a script in ascending order and in sets of
// ten; several sets may follow one another.
TEST(CompanionCharacter, DigitValuesOfAllCodePoints)
{
    std::vector<int> values(CODE_SPACE, -1);
    kivtest::for_each_row(
        "17.0.0/general_category.txt",
        [&](std::uint32_t first, std::uint32_t last, std::string_view category) {
            for (std::uint32_t cp = first; category == "Nd" && cp <= last; ++cp)
                values[cp] = static_cast<int>((cp - first) % 10);
        });
    Mismatches mismatches;
    for (std::uint32_t cp = 0; cp < CODE_SPACE; ++cp)
        mismatches.check("digit value", cp, kivUniCharDigitValue(as_argument(cp)),
                         values[cp]);
}

// Known by name, so that a misread data file cannot agree with itself.
TEST(CompanionCharacter, KnownCharacters)
{
    EXPECT_EQ(kivUniCharDigitValue(0x0663), 3) << "Arabic-Indic digit three";
    EXPECT_EQ(kivUniCharDigitValue(0xFF19), 9) << "full-width digit nine";
    EXPECT_EQ(kivUniCharDigitValue(0x1D7FF), 9)
        << "the last of five adjacent sets of digits";
    EXPECT_EQ(kivUniCharDigitValue(0x00B2), -1) << "superscript two is no decimal digit";
    EXPECT_EQ(kivUniCharDigitValue(0x4E09), -1) << "ideograph three is no decimal digit";
    EXPECT_EQ(kivUniCharToUpper(0x00DF), 0x00DF) << "sharp s has no simple capital";
    EXPECT_EQ(kivUniCharToLower(0x1E9E), 0x00DF)
        << "the capital sharp s has a small form";
    EXPECT_EQ(kivUniCharToTitle(0x01C4), 0x01C5) << "DZ with caron";
    EXPECT_EQ(kivUniCharToTitle(0x01C5), 0x01C5);
    EXPECT_EQ(kivUniCharToUpper(0x01C5), 0x01C4);
    EXPECT_EQ(kivUniCharToTitle(0x10D0), 0x10D0)
        << "Georgian has capitals but no title case";
    EXPECT_EQ(kivUniCharToUpper(0x10D0), 0x1C90);
    EXPECT_EQ(kivUniCharToLower(0x10400), 0x10428) << "Deseret, above the BMP";
    EXPECT_EQ(kivUniCharClass(0xD800), kiv::UNI_SURROGATE);
    EXPECT_EQ(kivUniCharClass(0xFFFF), kiv::UNI_UNASSIGNED) << "a noncharacter";
    EXPECT_EQ(kivUniCharClass(0x10FFFF), kiv::UNI_UNASSIGNED) << "a noncharacter";
    EXPECT_EQ(kivUniCharClass(0x10FFFD), kiv::UNI_PRIVATE_USE);
}

TEST(CompanionCharacter, ValuesOutsideTheCodeSpace)
{
    static constexpr std::int32_t values[] = {
        0x110000,
        0x110041,   // ends like 'A'
        0x1000030,  // ends like '0'
        0x7FFFFFFF,
        -1,
        -0x10FFBF,  // 'A' - 0x110000
        std::numeric_limits<std::int32_t>::min(),
        std::numeric_limits<std::int32_t>::min() + 0x41,
    };
    using Function = int (*)(std::int32_t);
    static constexpr Function false_for_all[] = {
        kivUniCharIsAlphabetic, kivUniCharIsControl, kivUniCharIsDecimalDigit,
        kivUniCharIsDefined,    kivUniCharIsLetter,  kivUniCharIsLetterOrDecimalDigit,
        kivUniCharIsLower,      kivUniCharIsTitle,   kivUniCharIsUpper,
        kivUniCharProperties,
    };
    for (const std::int32_t value : values) {
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

// Indexed by ICU's UCharCategory, which has its own order.
constexpr int CLASS_OF_ICU[] = {
    kiv::UNI_UNASSIGNED,
    kiv::UNI_UPPERCASE_LETTER,
    kiv::UNI_LOWERCASE_LETTER,
    kiv::UNI_TITLECASE_LETTER,
    kiv::UNI_MODIFIER_LETTER,
    kiv::UNI_OTHER_LETTER,
    kiv::UNI_NONSPACING_MARK,
    kiv::UNI_ENCLOSING_MARK,
    kiv::UNI_SPACING_MARK,
    kiv::UNI_DECIMAL_NUMBER,
    kiv::UNI_LETTER_NUMBER,
    kiv::UNI_OTHER_NUMBER,
    kiv::UNI_SPACE_SEPARATOR,
    kiv::UNI_LINE_SEPARATOR,
    kiv::UNI_PARAGRAPH_SEPARATOR,
    kiv::UNI_CONTROL,
    kiv::UNI_FORMAT,
    kiv::UNI_PRIVATE_USE,
    kiv::UNI_SURROGATE,
    kiv::UNI_DASH_PUNCTUATION,
    kiv::UNI_OPEN_PUNCTUATION,
    kiv::UNI_CLOSE_PUNCTUATION,
    kiv::UNI_CONNECTOR_PUNCTUATION,
    kiv::UNI_OTHER_PUNCTUATION,
    kiv::UNI_MATH_SYMBOL,
    kiv::UNI_CURRENCY_SYMBOL,
    kiv::UNI_MODIFIER_SYMBOL,
    kiv::UNI_OTHER_SYMBOL,
    kiv::UNI_INITIAL_PUNCTUATION,
    kiv::UNI_FINAL_PUNCTUATION,
};
static_assert(std::size(CLASS_OF_ICU) == U_CHAR_CATEGORY_COUNT);

int properties_of_icu(UChar32 cp)
{
    return (u_hasBinaryProperty(cp, UCHAR_ID_START) ? kiv::UNI_IDENTIFIER_START : 0) |
           (u_hasBinaryProperty(cp, UCHAR_ID_CONTINUE) ? kiv::UNI_IDENTIFIER_PART : 0) |
           (u_hasBinaryProperty(cp, UCHAR_WHITE_SPACE) ? kiv::UNI_WHITESPACE : 0);
}

// What the standard changed for characters that Unicode 15.0 already had: an older
// ICU may differ there, and nowhere else.
struct LaterChange {
    std::uint32_t first, last;
    std::string_view what;
    const char* why;
};

constexpr LaterChange LATER_CHANGES[] = {
    {0x200C, 0x200D, "properties", "15.1 lets the joiners continue identifiers"},
    {0x30FB, 0x30FB, "properties", "15.1: so does the katakana middle dot"},
    {0xFF65, 0xFF65, "properties", "15.1: so does its half-width form"},
    {0x019B, 0x019B, "to upper", "16.0 added the capital U+A7DC"},
    {0x019B, 0x019B, "to title", "16.0 added the capital U+A7DC"},
    {0x0264, 0x0264, "to upper", "16.0 added the capital U+A7CB"},
    {0x0264, 0x0264, "to title", "16.0 added the capital U+A7CB"},
    {0x0363, 0x036F, "alphabetic", "16.0 made combining small letters alphabetic"},
    {0x1DD3, 0x1DE6, "alphabetic", "16.0 made combining small letters alphabetic"},
    {0x1171E, 0x1171E, "class", "16.0 made the Ahom medial ra a spacing mark"},
    {0x0295, 0x0295, "class", "17.0 made the voiced pharyngeal fricative caseless"},
    {0x0295, 0x0295, "lower", "17.0 made the voiced pharyngeal fricative caseless"},
    {0xA7D3, 0xA7D3, "to upper", "17.0 added the capital U+A7D2"},
    {0xA7D3, 0xA7D3, "to title", "17.0 added the capital U+A7D2"},
    {0xA7D5, 0xA7D5, "to upper", "17.0 added the capital U+A7D4"},
    {0xA7D5, 0xA7D5, "to title", "17.0 added the capital U+A7D4"},
};

bool changed_later(std::string_view what, std::uint32_t cp)
{
    return std::any_of(std::begin(LATER_CHANGES), std::end(LATER_CHANGES),
                       [&](const LaterChange& change) {
                           return change.what == what && change.first <= cp &&
                                  cp <= change.last;
                       });
}

TEST(CompanionCharacter, AgreesWithIcu)
{
    UVersionInfo version;
    u_getUnicodeVersion(version);
    if (version[0] < 15 || version[0] > 17)
        GTEST_SKIP() << "the changes between Unicode " << int{version[0]}
                     << " and 17 are not listed";

    Mismatches mismatches;
    int compared = 0;
    int excused = 0;
    for (std::uint32_t value = 0; value < CODE_SPACE; ++value) {
        const auto cp = static_cast<UChar32>(value);
        if (!u_isdefined(cp))
            continue;
        ++compared;
        const auto check = [&](const char* what, int got, int want) {
            if (got != want && changed_later(what, value))
                ++excused;
            else
                mismatches.check(what, value, got, want);
        };
        check("class", kivUniCharClass(cp), CLASS_OF_ICU[u_charType(cp)]);
        check("alphabetic", kivUniCharIsAlphabetic(cp) != 0,
              u_hasBinaryProperty(cp, UCHAR_ALPHABETIC));
        check("lower", kivUniCharIsLower(cp) != 0,
              u_hasBinaryProperty(cp, UCHAR_LOWERCASE));
        check("upper", kivUniCharIsUpper(cp) != 0,
              u_hasBinaryProperty(cp, UCHAR_UPPERCASE));
        check("properties", kivUniCharProperties(cp), properties_of_icu(cp));
        check("to lower", kivUniCharToLower(cp), u_tolower(cp));
        check("to upper", kivUniCharToUpper(cp), u_toupper(cp));
        check("to title", kivUniCharToTitle(cp), u_totitle(cp));
        check("digit value", kivUniCharDigitValue(cp), u_charDigitValue(cp));
    }
    EXPECT_GT(compared, 280000) << "ICU answered for too few code points";
    if (version[0] == 15 && version[1] == 0) {
        std::uint32_t listed = 0;
        for (const LaterChange& change : LATER_CHANGES)
            listed += change.last - change.first + 1;
        EXPECT_EQ(excused, static_cast<int>(listed)) << "a listed change is none";
    }
}

#endif

}  // namespace
