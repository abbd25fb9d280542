// Text without a locale.

#include <random>

#include "digits.h"

namespace kivtest {

// What expect_shapes() asks of a type.
decimal64 strto(decimal64, auto... how)
{
    return kiv::strtod64_c(how...);
}
decimal64 sto(decimal64, auto&&... how)
{
    return kiv::stod64_c(how...);
}
bool same(decimal64 a, decimal64 b)
{
    return digits(a) == digits(b);
}

}  // namespace kivtest

#include "numconv/parsing_check.h"

namespace {

using namespace kivtest;

// Digits or an error, '|', and a text with '^' at the end of its number.
void expect_parsed(const std::u16string& row)
{
    const std::size_t bar = row.find(u'|');
    std::u16string text = row.substr(bar + 1);
    const std::string want(row.begin(), row.begin() + std::ptrdiff_t(bar));
    SCOPED_TRACE(want);
    Expected<decimal64> expected{decimal64(), 0, want + " expected"};
    if (const std::size_t end = text.find(u'^'); end != text.npos) {
        text.erase(end, 1);
        expected = {decimal64(want), end};
        EXPECT_EQ(digits(expected.value), want);
    }
    expect_shapes(kiv::ustring(text.begin(), text.end()), expected);
    if (std::all_of(text.begin(), text.end(), [](auto unit) { return unit < 0x80; }))
        expect_shapes(std::string(text.begin(), text.end()), expected);
}

TEST(DecimalText, Parsing)
{
    std::u16string rows =
        u"150e-2|1.50^;-0e-2| \t\n\v\f\r-0.00^;5e0|+5.^x;5e-1|.5^;12e3|00012e3^;1e0|1^e;"
        u"1e0|1^E+;1e-2|1e-2^.5;0e0|0^x10;1e0|1.^.2;inf|Inf^;-inf|-iNFINITY^;nan|-nan^;"
        u"nan|nan^(1);'infinity'|info;'nan'|nanx;decimal digit|;decimal digit| ;"
        u"decimal digit|-.;decimal digit|e5;decimal digit|+-1;105e-1|\u0661\u0660.5^;"
        u"5e1|\u00A0\uFF15e\u0661^;1000000000000000e369|1e384^;"
        u"1234567890123456e1|12345678901234565^;";
    for (; !rows.empty(); rows.erase(0, rows.find(u';') + 1))
        expect_parsed(rows.substr(0, rows.find(u';')));
    errno = 0;
    const auto all32 = [](auto... texts) {
        return all(kiv::stod32_c(std::string_view(texts))...);
    };
    EXPECT_EQ(all32("12345678", "12345665", "12345675", "9999999.5",
                    "123456650000000000000000001"),
              "1234568e1 1234566e1 1234568e1 1000000e1 1234567e20 ");
    // Below the least exponent, above the largest one.
    EXPECT_EQ(
        all32("1234567e-104", "25e-102", "35e-102", "5e-102", "51e-103", "1e-0000000001"),
        "1235e-101 2e-101 4e-101 0e-101 1e-101 0e-101 ");
    EXPECT_EQ(all32("1e96", "1e97", "-9999999.5e90", "9999999.4999e90", "-1e0000000001",
                    "0e9999999999"),
              "1000000e90 inf -inf 9999999e90 -inf 0e90 ");
    EXPECT_EQ(
        all(kiv::stod128_c("1234567890123456789012345678901234.50"sv),
            kiv::stod128_c(u"1234567890123456789012345678901234.501"_usv)),
        "1234567890123456789012345678901234e0 1234567890123456789012345678901235e0 ");
    for (const auto text : {"1.5 ", "x", ""})
        EXPECT_THROW(decimal64{text}, std::invalid_argument);
}

void expect_text(auto value, std::string_view want)
{
    EXPECT_EQ(kiv::to_string_c(value), want);
    EXPECT_EQ(to_ustring_c(value), kiv::ustring(want.begin(), want.end()));
}

TEST(DecimalText, Formatting)
{
    // What has this form is how its value is written.
    for (const auto text :
         {"150.",     "1.50",    "1.E2",       "1.23E-5",   "1234567.",
          "0.00",     "-0.5",    "0.",         "-0.",       "0.001",
          "-0.00123", "1.E-4",   "0.E1",       "1.0E-4",    "1.234567E7",
          "1.234567", "1.E-101", "9.99999E89", "-Infinity", "NaN"}) {
        expect_text(decimal32(text), text);
        expect_text(decimal64(text), text);
        expect_text(decimal128(text), text);
    }
    for (const auto text : {"1.2345670E7", "1234567.0"})
        expect_text(decimal64(text), text);
    for (const auto text : {"9.999999999999999999999999999999999E6144", "-1.E-6176",
                            "-0.001234567890123456789012345678901234"})
        expect_text(decimal128(text), text);
    // Not canonical: zero with its exponent and sign.
    expect_text(decimal32(kiv::KDecimal32{0x6CBFFFFF}), "0.");
    expect_text(decimal64(kiv::KDecimal64{0xEC73FFFFFFFFFFFF}), "-0.");
    expect_text(decimal128(kiv::KDecimal128{7, 0x3041FFFFFFFFFFFF}), "0.");
    expect_text(decimal128(kiv::KDecimal128{0, 0xE00FFFFFFFFFFFFF}), "-0.E-6145");
}

// Rounded by another hand: 34 digits are exact in the widest type.
TEST(DecimalText, RandomDigits)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 20'000; ++i) {
        std::string text = std::to_string(random()).substr(0, i % 2 == 0 ? 7 : 16) + "." +
                           (i % 3 == 0 ? "5" : "499999999") + std::to_string(random());
        text = text.substr(0, 18 + random() % 18) + "e" + std::to_string(i % 250 - 130);
        const decimal128 exact(text);
        ASSERT_EQ(digits(decimal128(to_string_c(exact))), digits(exact));
        ASSERT_EQ(decimal64(text), decimal64(exact)) << text;
        ASSERT_EQ(decimal32(text), decimal32(exact)) << text;
    }
}

}  // namespace
