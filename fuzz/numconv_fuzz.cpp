// Any bytes as the text of a number: all shapes, character types and from_chars_c must
// agree, decimal text must have the value that the C library gives it, and what is
// written of a value must read back.
//
// The first byte of the input chooses the kernels, the base of integers and a
// precision.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include <kiv/numconv.h>

#include "fuzz_support.h"
#include "numconv/parse_kernels.h"
#include "parsing_shapes.h"

KIV_FUZZ_PARSER(int, i);
KIV_FUZZ_PARSER(long long, ll);
KIV_FUZZ_PARSER(unsigned, ui);
KIV_FUZZ_PARSER(unsigned long long, ull);
KIV_FUZZ_PARSER(float, f);
KIV_FUZZ_PARSER(double, d);

namespace {

using namespace kivfuzz;

using kiv::char16;
using kiv::number_range;

// --- From text -----------------------------------------------------------------------

// Whether from_chars_c does what the other functions do: a number has at most 20 digits
// and an exponent of at most nine, and no unsigned number has a sign.
template <class T, class CharT>
bool from_chars_agrees(const std::basic_string<CharT>& text, std::size_t end)
{
    std::string number;
    for (std::size_t i = 0; i < end; ++i)
        number += text[i] < CharT(u'\x7F')
                      ? static_cast<char>(static_cast<char16_t>(text[i]))
                      : '0';
    if (!std::is_floating_point_v<T>)
        return std::is_signed_v<T> || number.find('+') == number.npos;
    const bool hexadecimal = number.find_first_of("xX") != number.npos;
    const std::size_t letter = number.find_first_of(hexadecimal ? "pP" : "eE");
    const std::size_t exponent = letter == number.npos ? 0 : number.size() - letter;
    return number.size() - exponent <= 20 && exponent <= 10;
}

// What all shapes make of a text.
template <class T, class CharT>
Outcome<T> parse(const std::basic_string<CharT>& text, auto... base)
{
    const Outcome<T> first = by_all_shapes<T>(text, base...);
    const auto units = exact_copy(text, false);
    const kiv::basic_string_ref<CharT> view(units.get(), text.size());
    T value = 0;
    const auto allowed = kiv::leading::plus | kiv::leading::white_space;
    const auto result =
        kiv::from_chars_c(view.begin(), view.end(), value, base..., allowed);
    const Outcome<T> last{result.range == number_range::above ? first.value : value,
                          static_cast<std::size_t>(result.ptr - view.begin()),
                          result.ec != std::errc::invalid_argument,
                          result.range == number_range::above};
    if (from_chars_agrees<T>(text, last.end))
        require(first == last);
    if (std::is_floating_point_v<T> && result.range != number_range::inside)
        require(result.range == number_range::above ? std::isinf(value) : value == 0);
    return first;
}

// Digits and a point, perhaps with an exponent.
template <class T>
void expect_as_c_library(const std::string& text)
{
    T value = 0;
    const char* const first = text.c_str();
    const auto [end, ec] = kiv::from_chars_c(first, first + text.size(), value);
    const std::string number(first, end);
    if (ec == std::errc::invalid_argument ||
        number.find_first_not_of("+-.0123456789eE") != number.npos)
        return;
    char* end_there;
    T there;
    if constexpr (sizeof(T) == 4)
        there = std::strtof(number.c_str(), &end_there);
    else
        there = std::strtod(number.c_str(), &end_there);
    require(*end_there == 0 && same(value, there));
}

// --- To text -------------------------------------------------------------------------

// Room for fewer units than the text has is refused, and nothing behind it is touched.
template <class CharT, class T>
void expect_needs_room(T value, std::size_t size, auto... how)
{
    for (const std::size_t n : {size / 2, size - 1, size}) {
        const auto room = std::make_unique<CharT[]>(n);
        CharT* const end = room.get() + n;
        const auto result = kiv::to_chars_c(room.get(), end, value, how...);
        require(result.ptr == end);
        require(result.ec == (n < size ? std::errc::value_too_large : std::errc()));
    }
}

template <class T>
void expect_reads_back(T value, auto... base)
{
    char room[128];
    char16 wide_room[128];
    const auto end = kiv::to_chars_c(room, room + 128, value, base...).ptr;
    const auto wide_end = kiv::to_chars_c(wide_room, wide_room + 128, value, base...).ptr;
    require(kiv::ustring(room, end) == kiv::ustring(wide_room, wide_end));
    expect_needs_room<char>(value, std::size_t(end - room), base...);
    expect_needs_room<char16>(value, std::size_t(end - room), base...);
    T again = 0;
    const auto result = kiv::from_chars_c(room, end, again, base...);
    require(result.ptr == end && result.ec == std::errc() && same(value, again));
    if constexpr (sizeof...(base) == 0) {
        require(kiv::to_string_c(value) == std::string(room, end));
        require(kiv::to_ustring_c(value) == kiv::ustring(room, end));
    }
}

// The C library's exponent has a sign and two digits at least: 1.5e+02, here 1.5E2.
std::string plain_exponent(const std::string& text)
{
    const std::size_t letter = text.find('e');
    return letter == text.npos ? text
                               : text.substr(0, letter) + "E" +
                                     std::to_string(std::stoi(text.substr(letter + 1)));
}

template <class T>
void expect_exact_digits(T value, std::chars_format format, int precision)
{
    if (!std::isfinite(value))
        return;
    char room[512], there[512];
    const auto end = kiv::to_chars_c(room, room + 512, value, format, precision).ptr;
    std::snprintf(there, sizeof there,
                  format == std::chars_format::fixed ? "%.*f" : "%.*e", precision,
                  static_cast<double>(value));
    require(std::string(room, end) == plain_exponent(there));
    expect_needs_room<char>(value, std::size_t(end - room), format, precision);
}

void expect_half_reads_back(kiv::binary16 half)
{
    char room[32];
    const auto end = kiv::to_chars_c(room, room + 32, half).ptr;
    double value = 0;
    const auto result = kiv::from_chars_c(static_cast<const char*>(room),
                                          static_cast<const char*>(end), value);
    require(result.ptr == end && result.ec == std::errc());
    require(kiv::is_nan(half) || kiv::_double_to_binary16(value).bits == half.bits);
    require(same(static_cast<float>(kiv::_binary16_to_double(half)),
                 kiv::_binary16_to_float(half)));
    require(kiv::to_string_c(half) == std::string(room, end));
}

// --- Assembly ------------------------------------------------------------------------

template <class T>
void expect_assembled(bool negative, const std::string& decimal,
                      const std::string& hexadecimal, T made, T packed)
{
    const auto there = [negative](const std::string& text) {
        T value;
        if constexpr (sizeof(T) == 4)
            value = std::strtof(text.c_str(), nullptr);
        else
            value = std::strtod(text.c_str(), nullptr);
        return negative ? -value : value;
    };
    require(same(made, there(decimal)) && same(packed, there(hexadecimal)));
}

// A long coefficient and both kinds of exponent, beside the C library.
void check_assembly(Bytes bytes)
{
    const bool negative = bytes.one_in(2);
    const int exponent = static_cast<int>(bytes.below(2400)) - 1200;
    kiv::big_uint coefficient;
    coefficient.set_size(1 + bytes.below(10));
    std::string hexadecimal = "0x";
    for (unsigned i = 0; i < coefficient.size(); ++i)
        coefficient[i] = bytes.number(4);
    for (unsigned i = coefficient.size(); i-- > 0;) {
        char word[9];
        std::snprintf(word, sizeof word, "%08x", coefficient[i]);
        hexadecimal += word;
    }
    hexadecimal.append("p").append(std::to_string(exponent));
    const std::string decimal = coefficient.to_string() + "e" + std::to_string(exponent);
    expect_assembled(negative, decimal, hexadecimal,
                     kiv::make_float(negative, exponent, coefficient),
                     kiv::pack_float(negative, exponent, coefficient));
    expect_assembled(negative, decimal, hexadecimal,
                     kiv::make_double(negative, exponent, coefficient),
                     kiv::pack_double(negative, exponent, coefficient));
}

// --- All of it -----------------------------------------------------------------------

template <class T>
void check_integer(const std::string& text, const kiv::ustring& units, int base,
                   bool ascii)
{
    const Outcome<T> narrow = parse<T>(text, base);
    const Outcome<T> wide = parse<T>(units, base);
    if (ascii)
        require(narrow == wide);
    expect_reads_back(wide.value);
    expect_reads_back(wide.value, base < 2 ? 10 : base);
}

template <class T>
void check_float(const std::string& text, const kiv::ustring& units, int precision,
                 bool ascii)
{
    const Outcome<T> narrow = parse<T>(text);
    const Outcome<T> wide = parse<T>(units);
    if (ascii)
        require(narrow == wide);
    expect_as_c_library<T>(text);
    expect_reads_back(wide.value);
    expect_exact_digits(wide.value, std::chars_format::fixed, precision);
    expect_exact_digits(wide.value, std::chars_format::scientific, precision);
}

void check(const std::string& text, const kiv::ustring& units, int how, bool ascii)
{
    const int base = how % 37 == 1 ? 0 : how % 37;
    check_integer<int>(text, units, base, ascii);
    check_integer<unsigned>(text, units, base, ascii);
    check_integer<long long>(text, units, base, ascii);
    check_integer<unsigned long long>(text, units, base, ascii);
    check_float<float>(text, units, how % 128, ascii);
    check_float<double>(text, units, how % 128, ascii);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    using kiv::numconv::chosen_parse_kernels, kiv::numconv::portable_parse_kernels;
    static const auto* const best = chosen_parse_kernels.load();
    chosen_parse_kernels = data[0] / 37 % 2 == 0 ? best : &portable_parse_kernels;
    const std::string text(data + 1, data + size);
    const bool ascii = std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x80;
    });
    check(text, kiv::ustring(text.begin(), text.end()), data[0], ascii);

    // The same bytes as any code units, the lower of which come often enough.
    check(text, units_of(text), data[0], false);

    std::uint64_t bits = 0;
    std::memcpy(&bits, data, std::min(size, sizeof bits));
    expect_reads_back(std::bit_cast<double>(bits));
    expect_reads_back(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    expect_half_reads_back({static_cast<std::uint16_t>(bits)});
    check_assembly(Bytes(data, size));
    return 0;
}
