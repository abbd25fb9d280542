// The oracles: std::to_chars for integers, and with a precision for the nearest decimal
// of n digits, ties to even; std::from_chars for what reads back; snprintf, exact here,
// for the forms with a precision.

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <kiv/numconv.h>

#include "numconv/exact_digits.h"
#include "numconv/sixteen_digits.h"
#include "support/guarded_array.h"

namespace {

using namespace kiv;
using std::chars_format;

template <class String>
std::string narrow(const String& text)
{
    std::string narrowed;
    for (const auto unit : text)
        narrowed += static_cast<char>(static_cast<char16_t>(unit));
    return narrowed;
}

// `value` is a value and how to write it.
template <class CharT>
void expect_in_room(const std::string& want, std::size_t room, auto... value)
{
    static support::GuardedArray<CharT> array;
    for (const auto edge : {support::Edge::START, support::Edge::END}) {
        CharT* const first = array.make(room, edge);
        const auto [ptr, ec] = to_chars_c(first, first + room, value...);
        const bool fits = want.size() <= room;
        ASSERT_EQ(ec, fits ? std::errc() : std::errc::value_too_large) << want << room;
        ASSERT_EQ(ptr, first + (fits ? want.size() : room));
        ASSERT_TRUE(!fits || narrow(std::basic_string<CharT>(first, ptr)) == want)
            << want;
    }
}

void expect_in_rooms(const std::string& want, std::size_t least, auto... value)
{
    for (std::size_t room = least; room < want.size() + 30; ++room) {
        room += room == want.size() + 2 ? 20 : 0;
        expect_in_room<char>(want, room, value...);
        expect_in_room<char16>(want, room, value...);
    }
}

void expect_text(const std::string& want, auto... value)
{
    expect_in_rooms(want, 0, value...);
    if constexpr (sizeof...(value) == 1) {
        EXPECT_EQ(to_string_c(value...), want);
        EXPECT_EQ(narrow(to_ustring_c(value...)), want);
    }
}

// Without zeros at either end.
std::string digits(std::string text)
{
    text.resize(std::min(text.find_first_of("Ee"), text.size()));
    std::erase_if(text, [](char c) { return c < '0' || c > '9'; });
    const std::size_t end = text.find_last_not_of('0') + 1;
    return text.substr(0, end).substr(std::min(text.find_first_not_of('0'), end));
}

// The rule: the nearest decimal of n digits, for the least n >= 2 with which it reads
// back. So there are at least two digits, and after a power of two, where the interval
// is narrower below, a nearest decimal outside counts even if its neighbour is inside.
template <class T>
std::string shortest_model(T value, int limit, bool is_half = false)
{
    for (int n = 2;; ++n) {
        char text[40];
        const auto end =
            std::to_chars(text, text + 40, value, chars_format::scientific, n - 1).ptr;
        T read{};
        std::from_chars(text, end, read);
        if (n == limit || read == value ||
            (is_half && _double_to_binary16(read) == _double_to_binary16(value)))
            return std::string(text, end);
    }
}

void expect_like(const std::string& want, const std::string& text)
{
    ASSERT_EQ(digits(text), digits(want));
    ASSERT_EQ(std::atof(text.c_str()), std::atof(want.c_str()));
}

template <class T>
void expect_digits(T value)
{
    if (value == 0 || !std::isfinite(value))
        return;
    expect_like(shortest_model(value, 17), to_string_c(value));
    for (const int limit : {5, 7, 9, 16, 17}) {
        const auto [coefficient, exponent] =
            numconv::exact_digits(numconv::binary_value(value), numconv::SHAPE_OF<T>,
                                  static_cast<unsigned>(limit));
        expect_like(shortest_model(value, limit),
                    std::to_string(coefficient) + 'e' + std::to_string(exponent));
    }
}

TEST(FormatFloat, Layout)
{
    using Double = std::numeric_limits<double>;
    expect_text("0.0", 0.0);
    expect_text("-0.0", -0.0f);
    expect_text("Infinity", Double::infinity());
    expect_text("-Infinity", -HUGE_VALF);
    expect_text("NaN", std::copysign(Double::quiet_NaN(), -1.0));
    expect_text("0.1", 0.1L);
    expect_text("-0.0010000000474974513", -0.0010000000474974513);  // 17 digits
    expect_text("9.999999999999998E-4", std::nextafter(0.001, 0.0));
    expect_text("8850829.0", 8850829.0f);  // one ulp is 1
    expect_text("9999999.999999998", std::nextafter(1e7, 0.0));
    expect_text("1.0E7", 1e7);
    expect_text("1.0E23", 1e23);  // an end of the interval of an even significand
    expect_text("4.9E-324", Double::denorm_min());
    expect_text("-1.7976931348623157E308", Double::lowest());
    expect_text("-2.2250738585072014E-308", -Double::min());  // the longest
    expect_text("1.4E-45", 0x1p-149f);
    expect_text("5.9604644775390625E-8", 0x1p-24);  // with 16 digits below the interval
    expect_text("6.0E-8", binary16{0x0001});
    expect_text("-65500.0", binary16{0xFBFF});
    expect_text("NaN", binary16{0xFE01});
}

TEST(FormatFloat, ShortestDigits)
{
    for (int e = -1074; e < 1024; ++e) {
        expect_digits(std::ldexp(1.0, e));
        expect_digits(std::ldexp(1.0f, e));
    }
    for (std::uint32_t bits = 1; bits < 1U << 12; ++bits) {
        expect_digits(std::bit_cast<double>(std::uint64_t{bits}));
        expect_digits(std::bit_cast<float>(bits));
    }
    for (std::uint16_t bits = 1; bits < 0x7C00; ++bits)
        expect_like(shortest_model(_binary16_to_double(binary16{bits}), 5, true),
                    to_string_c(binary16{bits}));
    std::mt19937_64 random;
    for (int i = 0; i < 3000; ++i) {
        const std::uint64_t bits = random();
        expect_digits(std::bit_cast<double>(bits >> 1));
        expect_digits(std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 33)));
        // Integers: from 2^54 on, ends of intervals are multiples of ten.
        expect_digits(static_cast<double>(bits >> (4 + i % 60)));
        expect_digits(static_cast<double>(bits >> 30) * std::pow(10.0, i % 40 - 25));
        // Ties in the last digit: 53 bits with two behind the point.
        expect_digits(std::ldexp(static_cast<double>(bits >> 11), -(i % 30)));
    }
}

TEST(FormatFloat, Precision)
{
    std::mt19937_64 random;
    for (int i = 0; i < 6000; ++i) {
        const std::uint64_t bits = random();
        const double value = i % 4 == 0   ? std::bit_cast<double>(bits)
                             : i % 4 == 1 ? static_cast<double>(bits % 20001) / 16 - 500
                             : i % 4 == 2 ? std::pow(10.0, i % 39 - 19) * (1 - 0x1p-53)
                                          : static_cast<double>(bits >> i % 64) / 1000;
        const bool scientific = i % 8 > 3;
        const int precision = static_cast<int>(random() % (i % 99 == 0 ? 1100 : 25));
        if (!std::isfinite(value))
            continue;
        char text[1500];
        std::snprintf(text, sizeof text, scientific ? "%.*e" : "%.*f", precision, value);
        std::string want = text;
        if (const std::size_t e = want.find('e'); e != want.npos)
            want = want.substr(0, e).append("E").append(
                std::to_string(std::atoi(text + e + 1)));
        const auto form = scientific ? chars_format::scientific : chars_format::fixed;
        expect_in_rooms(want, want.size() - 1, value, form, precision);
    }
    expect_text("-0.00", -0.0, chars_format::fixed, 2);
    expect_text("0E0", 0.0, chars_format::scientific, 0);
    expect_text("10.0", 9.99, chars_format::fixed, 1);
    expect_text("1.0E1", 9.99f, chars_format::scientific, 1);
    expect_text("2", 1.5L, chars_format::fixed, 0);
    expect_text("0.100000", 0.1, chars_format::fixed, -1);
    expect_text("0.10000000149", 0.1f, chars_format::fixed, 11);
    expect_in_room<char>(std::string(1000, ' '), 999, 1.0, chars_format::fixed,
                         std::numeric_limits<int>::max());
    char digit;
    EXPECT_EQ(to_chars_c(&digit, &digit + 1, 1.0, chars_format::hex, 3).ec,
              std::errc::invalid_argument);
}

template <class Int>
void expect_integer(std::uint64_t bits)
{
    const auto value = static_cast<Int>(bits);
    expect_text(std::to_string(value), value);
    for (const int base : {2, 3, 7, 8, 10, 16, 29, 32, 36}) {
        char text[70];
        const std::string want(text, std::to_chars(text, text + 70, value, base).ptr);
        expect_in_rooms(want, want.size() - 1, value, base);
    }
}

TEST(FormatInteger, AroundPowersOfTenAndTwo)
{
    for (unsigned i = 0; i < 3 * (64 + 20); ++i) {
        const std::uint64_t value =
            (i < 192 ? 1ULL << i / 3 : big_uint::pow10_table[i / 3 - 64]) + i % 3 - 1;
        expect_integer<int>(value);
        expect_integer<unsigned>(value);
        expect_integer<long>(0 - value);
        expect_integer<unsigned long>(value);
        expect_integer<unsigned long long>(value);
    }
    char digits[2];
    for (int base = -1; base < 40; ++base) {
        const auto [ptr, ec] = to_chars_c(digits, digits + 2, base, base);
        const bool valid = base >= 2 && base <= 36;
        EXPECT_EQ(ec, valid ? std::errc() : std::errc::invalid_argument);
        EXPECT_EQ(std::string(digits, ptr), valid ? "10" : "");
    }
}

TEST(SixteenDigits, VariantsAgree)
{
    std::mt19937_64 random;
    for (unsigned i = 0; i < 20000; ++i) {
        const std::uint64_t zeros = big_uint::pow10_table[i / 2 % 16];  // at the end
        const int start = i % 2;
        const std::uint64_t value =
            (random() >> 11 | 1ULL << 52) / zeros * zeros / (start == 1 ? 10 : 1);
        std::string want = start == 1 ? "0" : "";
        want += std::to_string(value);
        const auto expect = [&](const auto& digits) {
            char text[17];
            digits.store_from(start, text + start);
            ASSERT_EQ(std::string(text, 16), want);
            ASSERT_EQ(digits.leading_zeros(), start);
            ASSERT_EQ(digits.significant(), want.find_last_not_of('0') + 1);
        };
        expect(numconv::SixteenDigits(value));
        expect(numconv::SixteenDigitsPortable(value));
    }
}

}  // namespace
