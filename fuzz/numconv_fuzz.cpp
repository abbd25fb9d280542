// Any bytes as the text of a number: all shapes, character types and from_chars_c must
// agree, decimal text must have the value that the C library gives it, and what is
// written of a value must read back.
//
// The first byte of the input chooses the kernels, the base of integers and a
// precision.

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <kiv/numconv.h>

#include "numconv/parse_kernels.h"

namespace {

using kiv::char16;
using kiv::number_range;

void require(bool ok)
{
    if (!ok)
        std::abort();
}

// Zeros differ by their sign; NaNs are all alike.
template <class T>
bool same(T a, T b)
{
    return a == b ? std::signbit(a) == std::signbit(b) : a != a && b != b;
}

// An array of the text's exact size, so that a step beyond it is seen.
template <class CharT>
std::unique_ptr<CharT[]> exact_copy(const std::basic_string<CharT>& text, bool terminator)
{
    const std::size_t n = text.size() + (terminator ? 1 : 0);
    auto copy = std::make_unique<CharT[]>(n);
    std::copy_n(text.data(), n, copy.get());
    return copy;
}

// --- From text -----------------------------------------------------------------------

#define KIV_FUZZ_FUNCTIONS(T, suffix)          \
    T strto(T, auto... how)                    \
    {                                          \
        return kiv::strto##suffix##_c(how...); \
    }                                          \
    T sto(T, auto&&... how)                    \
    {                                          \
        return kiv::sto##suffix##_c(how...);   \
    }
KIV_FUZZ_FUNCTIONS(int, i)
KIV_FUZZ_FUNCTIONS(long long, ll)
KIV_FUZZ_FUNCTIONS(unsigned, ui)
KIV_FUZZ_FUNCTIONS(unsigned long long, ull)
KIV_FUZZ_FUNCTIONS(float, f)
KIV_FUZZ_FUNCTIONS(double, d)

template <class T>
struct Outcome {
    T value;
    std::size_t end;
    bool found, above;

    bool operator==(const Outcome& o) const
    {
        return same(value, o.value) && end == o.end && found == o.found &&
               above == o.above;
    }
};

template <class T, class CharT>
Outcome<T> by_pointer(const std::basic_string<CharT>& text, auto... base)
{
    const auto units = exact_copy(text, true);
    CharT* end = nullptr;
    errno = 0;
    const T value = strto(T(), static_cast<const CharT*>(units.get()), &end, base...);
    return {value, static_cast<std::size_t>(end - units.get()), end != units.get(),
            errno == ERANGE};
}

// By parse(&idx), which throws where the pointer shape returns `limit`.
template <class T>
Outcome<T> by_exceptions(T limit, auto parse)
{
    std::size_t idx = 0;
    try {
        const T value = parse(&idx);
        return {value, idx, true, false};
    } catch (const std::invalid_argument&) {
        require(idx == 0);
        return {0, 0, false, false};
    } catch (const std::out_of_range&) {
        return {limit, idx, true, true};
    }
}

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
    const Outcome<T> first = by_pointer<T>(text, base...);
    const auto units = exact_copy(text, false);
    const kiv::basic_string_ref<CharT> view(units.get(), text.size());
    require(first == by_exceptions(first.value, [&](std::size_t* idx) {
                return sto(T(), view, idx, base...);
            }));
    kiv::BasicCharIterator<CharT> it(view);
    require(first == by_exceptions(first.value, [&](std::size_t* idx) {
                struct SetIndex {
                    ~SetIndex() { *idx = it.position(); }
                    std::size_t* idx;
                    kiv::BasicCharIterator<CharT>& it;
                } set_index{idx, it};
                return sto(T(), it, base...);
            }));

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

template <class T>
void expect_reads_back(T value, auto... base)
{
    char room[128];
    char16 wide_room[128];
    const auto end = kiv::to_chars_c(room, room + 128, value, base...).ptr;
    const auto wide_end = kiv::to_chars_c(wide_room, wide_room + 128, value, base...).ptr;
    require(kiv::ustring(room, end) == kiv::ustring(wide_room, wide_end));
    T again = 0;
    const auto result = kiv::from_chars_c(room, end, again, base...);
    require(result.ptr == end && result.ec == std::errc() && same(value, again));
    if constexpr (sizeof...(base) == 0) {
        require(kiv::to_string_c(value) == std::string(room, end));
        require(kiv::to_ustring_c(value) == kiv::ustring(room, end));
    }
}

template <class T>
void expect_exact_digits(T value, int precision)
{
    if (!std::isfinite(value))
        return;
    char room[512], there[512];
    const auto end =
        kiv::to_chars_c(room, room + 512, value, std::chars_format::fixed, precision).ptr;
    const int n =
        std::snprintf(there, sizeof there, "%.*f", precision, static_cast<double>(value));
    require(std::string(room, end) == std::string(there, static_cast<std::size_t>(n)));
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
    expect_exact_digits(wide.value, precision);
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
    kiv::ustring units;
    for (std::size_t i = 1; i + 1 < size; i += 2)
        units += static_cast<char16_t>(data[i] | data[i + 1] << 8);
    check(text, units, data[0], false);

    std::uint64_t bits = 0;
    std::memcpy(&bits, data, std::min(size, sizeof bits));
    expect_reads_back(std::bit_cast<double>(bits));
    expect_reads_back(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    return 0;
}
