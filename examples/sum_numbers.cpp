// sum_numbers - adds up the numbers in a text file of any charset.
//
//     sum_numbers prices.txt latin1
//
// Words that are no numbers are skipped. The sum is printed as the program would
// write it, and in the German and the Indian convention. The two are defined
// here, so that the program does not depend on what the platform has installed;
// kiv::ulocale(u"de_DE"_usv) would ask the platform.

#include <iomanip>
#include <iostream>
#include <locale>
#include <string>

#include <kiv/charset.h>
#include <kiv/locale.h>
#include <kiv/stream.h>

using namespace kiv::literals;

namespace {

// A facet says how numbers look; a grouping of "\3\2" is three digits, and then
// twos.
class Punctuation : public std::numpunct<kiv::char16> {
public:
    Punctuation(char16_t decimal_point, char16_t thousands_sep, const char* grouping)
        : m_decimal_point(decimal_point),
          m_thousands_sep(thousands_sep),
          m_grouping(grouping)
    {
    }

protected:
    char_type do_decimal_point() const override { return m_decimal_point; }
    char_type do_thousands_sep() const override { return m_thousands_sep; }
    std::string do_grouping() const override { return m_grouping; }

private:
    kiv::char16 m_decimal_point;
    kiv::char16 m_thousands_sep;
    std::string m_grouping;
};

kiv::ustring format(double value, Punctuation* punctuation)
{
    kiv::uostringstream out;
    out.imbue(std::locale(kiv::ulocale::classic(), punctuation));
    out << std::fixed << std::setprecision(2) << value;
    return out.str();
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: sum_numbers FILE [CHARSET]\n";
        return 2;
    }
    const auto* charset =
        kiv::Charset::forName(kiv::Charset::UTF_8->decode(argc == 3 ? argv[2] : "utf-8"));
    kiv::uifstream in(argv[1], charset);
    if (!in) {
        std::cerr << "cannot open the file, or no charset has that name\n";
        return 2;
    }

    double sum = 0;
    kiv::ustring word;
    while (in >> word) {
        kiv::uistringstream number(word);
        double value = 0;
        if (number >> value && number.eof())
            sum += value;
    }
    if (in.bad()) {
        std::cerr << "the file cannot be read, or is not in that charset\n";
        return 1;
    }

    const kiv::ustring lines =
        u"sum     "_us + format(sum, new Punctuation(u'.', 0, "")) + u"\nGerman  "_us +
        format(sum, new Punctuation(u',', u'.', "\3")) + u"\nIndian  "_us +
        format(sum, new Punctuation(u'.', u',', "\3\2")) + u"\n"_us;
    std::cout << kiv::Charset::UTF_8->encode(lines);
    return std::cout.flush() ? 0 : 1;
}
