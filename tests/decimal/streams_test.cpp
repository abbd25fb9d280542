// Text with a locale.

#include <iomanip>
#include <locale>
#include <sstream>
#include <stdexcept>

#include "digits.h"

namespace {

using namespace kivtest;

struct Punctuation : std::numpunct<char> {
    Punctuation(const char* grouping, char decimal) : sizes(grouping), point(decimal) {}
    char do_decimal_point() const override { return point; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return sizes; }
    std::string sizes;
    char point;
};

std::locale with(const char* grouping, char point = ',')
{
    return {std::locale::classic(), new Punctuation(grouping, point)};
}

TEST(DecimalStreams, Insertion)
{
    const auto x = 1234567.890_d64;
    std::ostringstream out;
    out << x << '|' << std::setprecision(0) << x << '|' << 1_d32 / 3_d32 << '|'
        << std::fixed << std::setprecision(1) << std::showpos << x << '|'
        << std::scientific << std::uppercase << x << '|';
    out.setf(std::ios_base::floatfield);  // both
    out << x << '|' << std::defaultfloat << std::setprecision(3) << std::showpoint
        << std::setw(7) << std::setfill('*') << 2_d128 << 2_d64;
    EXPECT_EQ(
        out.str(),
        "1.23457e+06|1234567.890|0.3333333|+1234567.9|+1.2E+06|+1E+06|**+2.00+2.00");
    // A size not above 0 ends the grouping, eight sizes are none.
    const auto grouped = [&x](auto... sizes) {
        return (to_string(with(sizes), x * 1000, 2) + ...);
    };
    EXPECT_EQ(grouped("\3", "\2\1\xFF", "\3\3\3\3\3\3\3\3"),
              "1.234.567.890,001234567.8.90,001234567890,00");
    EXPECT_EQ(to_string(-0.125_d32, 2) + to_string(with(""), 0.5_d128, 0), "-0.120");
    for (const int n : {60, 61, 62, 63, 200})  // texts of 62 characters to 202
        EXPECT_EQ(to_string(1_d64, n), "1." + std::string(std::size_t(n), '0'));
}

TEST(DecimalStreams, Extraction)
{
    const auto read = [](const std::string& text) {
        std::istringstream in(text);
        in.imbue(with("\3"));
        decimal64 x = 7;
        in >> x;
        const std::string state =
            (in.fail() ? " fail"s : ""s) + (in.eof() ? " eof " : " ");
        in.clear();
        return digits(x) + state + std::string(std::istreambuf_iterator<char>(in), {});
    };
    EXPECT_EQ(read(" 1.234,50x") + read("-12"), "123450e-2 x-12e0 eof ");
    EXPECT_EQ(read("1,5e") + read("x") + read(""),
              "7e0 fail eof 7e0 fail x7e0 fail eof ");
    std::istringstream in("1.5 2.5 5");
    decimal32 x;
    decimal128 y;
    in >> x >> y;
    in.imbue(with("\3", '5'));  // refused
    EXPECT_TRUE(in >> x);
    EXPECT_EQ(digits(x) + digits(y) + static_cast<char>(in.get()), "15e-125e-15");

    struct Broken : std::streambuf {
        int underflow() override { throw std::length_error("broken"); }
    } broken;
    std::istream failing(&broken);
    failing >> std::noskipws >> x;
    EXPECT_EQ(failing.rdstate(), std::ios_base::badbit);
    failing.clear();
    failing.exceptions(std::ios_base::badbit);
    EXPECT_THROW(failing >> x, std::length_error);
    EXPECT_EQ(digits(x), "15e-1");
}

TEST(DecimalStreams, Strings)
{
    const auto german = with("\3");
    const char* const s = "1.234,5 EUR";
    const char* end = s;
    EXPECT_EQ(digits(strtod64(german, s, &end)), "12345e-1");
    EXPECT_EQ(end, s + 7);
    EXPECT_EQ(digits(strtod64(german, s)) + digits(strtod64("1.50 \n")), "nan150e-2");
    EXPECT_EQ(digits(strtod128("x1", &end)), "nan");
    EXPECT_STREQ(end, "x1");
    std::size_t idx = 2;
    EXPECT_EQ(digits(strtod128("a:-2.50;"s, &idx)), "-250e-2");
    EXPECT_EQ(digits(strtod64(german, "a:"s, &idx)) + digits(strtod64(""s)), "nannan");
    EXPECT_EQ(idx, 7u);
    EXPECT_EQ(digits(strtod128(with("", '5'), "1")) + digits(strtod128(" 1e3"s)),
              "nan1e3");
}

}  // namespace
