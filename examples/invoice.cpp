// invoice - amounts and tax to the cent, and what double makes of them.
//
// Prices are read as they are written and stay exact; only the tax is rounded, once per
// line, halves away from zero as is usual in trade. The German convention is defined
// here, so that the program does not depend on what the platform has installed;
// std::locale would ask the platform for "de_DE".

#include <cmath>
#include <iomanip>
#include <iostream>
#include <locale>
#include <string>

#include <kiv/decimal.h>
#include <kiv/numconv.h>

using namespace kiv::literals;
using kiv::decimal::decimal64;
using kiv::decimal::rounding;

namespace {

class German : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

struct Item {
    const char* name;
    int quantity;
    const char* price;
};

constexpr Item ITEMS[] = {
    {"Phone call", 1, "0.70"},     {"Machine", 3, "1499.50"},
    {"Screws, per kg", 17, "2.3"}, {"Repair, per minute", 1415, "1.10"},
    {"Voucher", -1, "10.50"},
};
constexpr decimal64 TAX = 0.05_d64;

decimal64 to_cents(decimal64 amount)
{
    return rint(amount * 100, rounding::nearest_away) * 0.01_d64;
}

double to_cents(double amount)
{
    return std::round(amount * 100) / 100;
}

void print_line(const char* name, decimal64 net, decimal64 tax, double double_tax)
{
    std::cout << std::left << std::setw(20) << name << std::right << std::setw(12) << net
              << std::setw(10) << tax << std::setw(12) << net + tax << std::setw(10)
              << double_tax << (decimal64(double_tax) == tax ? "" : "  !") << '\n';
}

}  // namespace

int main()
{
    std::cout.imbue(std::locale(std::locale::classic(), new German));
    std::cout << std::fixed << std::setprecision(2);
    std::cout << "                             net    tax 5%       gross    double\n";

    decimal64 net = 0;
    decimal64 tax = 0;
    double double_tax = 0;
    for (const Item& item : ITEMS) {
        const decimal64 amount = item.quantity * kiv::stod64_c(item.price);
        const decimal64 amount_tax = to_cents(amount * TAX);
        const double double_amount = item.quantity * kiv::stod_c(item.price);
        const double double_amount_tax = to_cents(double_amount * 0.05);
        print_line(item.name, amount, amount_tax, double_amount_tax);
        net += amount;
        tax += amount_tax;
        double_tax += double_amount_tax;
    }
    print_line("Total", net, tax, double_tax);

    const bool exact = tax == decimal64(double_tax);
    std::cout << "\nTax in all digits: " << std::defaultfloat << std::setprecision(0)
              << tax << ", as double " << std::setprecision(17) << double_tax
              << (exact ? "\n" : " - not the same\n");
    return 0;
}
