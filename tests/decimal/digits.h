// What a decimal value is, read from its bits without a line of the library.

#ifndef KIV_TESTS_DECIMAL_DIGITS_H
#define KIV_TESTS_DECIMAL_DIGITS_H

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <kiv/decimal.h>

namespace kivtest {

using namespace kiv::decimal;
using namespace kiv::literals;
using namespace std::literals;

__extension__ using u128 = unsigned __int128;

template <class D>
constexpr int BIAS = sizeof(D) == 4   ? 101
                     : sizeof(D) == 8 ? 398
                                      : 6176;

// Coefficient and exponent of the last digit, as in -150e-2; or -inf, nan, snan.
template <class D>
std::string digits(D value)
{
    constexpr int WIDTH = 8 * sizeof(D);
    constexpr int FIELD = WIDTH == 32 ? 23 : WIDTH == 64 ? 53 : 113;
    u128 bits = 0;
    std::memcpy(&bits, &value, sizeof value);  // little endian
    const auto field = [bits](int low, int count) {
        return bits >> low & ((u128{1} << count) - 1);
    };
    const std::string sign = field(WIDTH - 1, 1) != 0 ? "-" : "";
    const auto top = static_cast<unsigned>(field(WIDTH - 7, 6));
    if (top >= 60)
        return sign + (top >= 62 ? (top == 62 ? "nan" : "snan") : "inf");
    const int low = top >= 48 ? FIELD - 2 : FIELD;
    u128 coefficient = field(0, low) | (top >= 48 ? u128{1} << FIELD : 0);
    const auto biased = static_cast<int>(field(low, WIDTH - 1 - FIELD));
    char text[40];
    char* first = text + sizeof text;
    do
        *--first = static_cast<char>('0' + static_cast<int>(coefficient % 10));
    while ((coefficient /= 10) != 0);
    return sign + std::string(first, text + sizeof text) + "e" +
           std::to_string(biased - BIAS<D>);
}

// A result and what is in errno: '!' is ERANGE, '?' EDOM.
std::string told(auto result)
{
    std::string text;
    if constexpr (decimal_type<decltype(result)>)
        text = digits(result);
    else
        text = std::to_string(result);
    return text + (errno == 0 ? " " : std::exchange(errno, 0) == EDOM ? "? " : "! ");
}

std::string all(auto... results)
{
    return (told(results) + ...);
}

}  // namespace kivtest

#endif
