// Decimals from any text and of any bit pattern: all shapes of parsers, the incremental
// parser and streams agree, texts read back, and arithmetic gives what exact integers
// give, rounded once.
//
// The first byte of the input says whether the rest is text or operands.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

#include <kiv/decimal.h>

#include "char/companion_decimal.h"
#include "decimal_model.h"
#include "fuzz_support.h"
#include "parsing_shapes.h"

using kiv::decimal::decimal128;
using kiv::decimal::decimal32;
using kiv::decimal::decimal64;

KIV_FUZZ_PARSER(decimal32, d32);
KIV_FUZZ_PARSER(decimal64, d64);
KIV_FUZZ_PARSER(decimal128, d128);

namespace {

using namespace kivfuzz;

// What has the width in its name.
template <class D>
struct Functions;
#define KIV_FUZZ_FUNCTIONS(width)                                    \
    template <>                                                      \
    struct Functions<decimal##width> {                               \
        static constexpr auto parsed = kivDec##width##ParseGetValue; \
        static constexpr auto format = kivDec##width##FormatString;  \
        static constexpr auto pack = kiv::pack_decimal##width;       \
    }
KIV_FUZZ_FUNCTIONS(32);
KIV_FUZZ_FUNCTIONS(64);
KIV_FUZZ_FUNCTIONS(128);

template <class D>
void expect(D value, const Number& number)
{
    require(number_of(value) == number);
}

bool is_nan(auto value)
{
    return number_of(value).kind == Kind::NAN_;
}

// --- Text ---------------------------------------------------------------------------

// The number so far may be asked for at any place, and a copy of the state goes on alike.
template <class D>
void check_incremental(const std::string& text, std::size_t cut, const Outcome<D>& whole)
{
    kiv::DecParseState state;
    require(kivDecParseInit(&state, Format<D>::DIGITS, '.', 0, 1) == 0);
    std::size_t end = 0;  // of the longest number
    int told = 0;
    for (std::size_t i = 0; i < text.size() && text[i] != 0 && (told & 2) == 0; ++i) {
        if (i == cut) {
            const auto before = by_pointer<D>(text.substr(0, cut));
            const D value(Functions<D>::parsed(&state));
            require(end != 0 || is_nan(value));
            require(end == 0 || !before.found ||
                    number_of(value) == number_of(before.value));
            const kiv::DecParseState copy = state;
            std::memset(&state, 0xA5, sizeof state);
            state = copy;
        }
        told = kivDecParseNextChar(&state, static_cast<unsigned char>(text[i]));
        require(told >= 0 && told <= 3);
        if ((told & 1) != 0)
            end = i + 1;
    }
    const D value(Functions<D>::parsed(&state));
    require(end == whole.end);
    if (end != 0)
        expect(value, number_of(whole.value));
}

// A stream takes the number that the other parsers read, or fails and stores nothing.
template <class D>
void check_extraction(const std::string& text)
{
    std::istringstream in(text);
    D read(7);
    in >> read;
    const bool complete = !in.fail();
    in.clear();
    const auto left =
        static_cast<std::size_t>(std::max<std::streamsize>(in.rdbuf()->in_avail(), 0));
    const std::string taken = text.substr(0, text.size() - left);
    const auto number = by_pointer<D>(taken);
    require(complete == (number.end == taken.size() && number.found));
    expect(read, number_of(complete ? number.value : D(7)));
}

// All that the flags ask for, in two steps and in too little room.
template <class D>
void check_format(D value, Bytes& bytes)
{
    const kiv::DecFormatSpec spec{"eEfFgGx"[bytes.below(7)],
                                  bytes.one_in(2) ? '+' : '\0',
                                  bytes.one_in(2),
                                  static_cast<int>(bytes.below(300)) - 20,
                                  '.',
                                  bytes.one_in(2) ? ',' : 0,
                                  bytes.one_in(2) ? "\3" : "\2\1\177"};
    const int n = Functions<D>::format(&spec, value.pattern(), nullptr, 0);
    const auto size = static_cast<std::size_t>(n);
    const auto whole = std::make_unique<char[]>(size + 1);
    require(Functions<D>::format(&spec, value.pattern(), whole.get(), n + 1) == n);
    require(std::strlen(whole.get()) == size);
    const std::size_t room = 1 + bytes.number(2) % (size + 1);
    const auto part = std::make_unique<char[]>(room);
    require(Functions<D>::format(&spec, value.pattern(), part.get(), int(room)) == n);
    require(std::string(part.get()) == std::string(whole.get(), room - 1));

    const int precision = static_cast<int>(bytes.below(60));
    std::ostringstream out;
    out.precision(precision);
    out << std::fixed << value;
    require(out.str() == to_string(value, precision));
    if (const auto number = number_of(value); number.kind == Kind::FINITE) {
        // Either all digits are there, or those of the quantized value.
        const auto fixed = number_of(decimal128(out.str()));
        if (number.exponent + precision >= 0 && sizeof(D) < 16)
            require(ordered(fixed, number) == 0 || number.exponent > 34);
        else if (const D at = Functions<D>::pack(false, -precision, 1u); sizeof(D) < 16)
            require(ordered(fixed, number_of(quantize(value, at))) == 0);
        // The C library's reading of the digits.
        require(same(double(value), std::strtod(to_string_c(value).c_str(), nullptr)));
        require(same(float(value), std::strtof(to_string_c(value).c_str(), nullptr)));
    }
}

// Written without a locale: digits and exponent come back.
template <class D>
void expect_reads_back(D value)
{
    const std::string text = to_string_c(value);
    require(to_ustring_c(value) == kiv::ustring(text.begin(), text.end()));
    const auto back = by_all_shapes<D>(text);
    require(back.end == text.size());
    expect(back.value, number_of(value));
}

// Where there is a locale, an exponent of more than nine digits does not count as
// infinite, and the "inf" of "info" is a number.
bool reads_alike(const std::string& text, bool found)
{
    const std::size_t letter = std::min(text.find_first_of("eE"), text.size());
    const std::size_t first = text.find_first_of("0123456789", letter);
    const bool long_exponent = first <= letter + 2 && text.size() - first > 9 &&
                               text.find_first_not_of("0123456789", first) - first > 9;
    return !long_exponent && (found || text.find_first_of("nN") == text.npos);
}

template <class D>
void check_text(const std::string& text, const kiv::ustring& units, bool ascii,
                unsigned how)
{
    const auto narrow = by_all_shapes<D>(text);
    const auto wide = by_all_shapes<D>(units);
    if (ascii)
        require(narrow == wide);
    expect_reads_back(narrow.value);
    expect_reads_back(wide.value);
    if (reads_alike(text, narrow.found)) {
        check_incremental<D>(text, how % (text.size() + 1), narrow);
        if (text.find(',') == text.npos)  // a separator there, even in the classic locale
            check_extraction<D>(text);
    }

    std::string number = text.substr(0, narrow.end);
    number.erase(0, number.find_first_not_of(" \t\n\v\f\r"));
    const std::size_t exponent = number.find_first_of("eE");
    if (!number.empty() && number.find_first_not_of("+-.0123456789eE") == number.npos &&
        (exponent == number.npos || number.size() - exponent < 7))
        expect(narrow.value, spelt<D>(number));
}

// --- Arithmetic ---------------------------------------------------------------------

// Any pattern, or any digits with an exponent near to those of the others.
template <class D>
D value_from(Bytes& bytes)
{
    const unsigned how = bytes.byte();
    if (how % 4 == 0) {
        std::array<std::uint32_t, sizeof(D) / 4> words;
        for (std::uint32_t& word : words)
            word = bytes.number(4);
        return std::bit_cast<D>(words);
    }
    kiv::big_uint coefficient(bytes.number64(how / 4 % 8));
    for (unsigned i = 0; i < how / 32 % 4; ++i) {  // of nines, zeros and others
        coefficient.set_size(coefficient.size() + 1);
        coefficient.multiply(1'000'000'000);
        coefficient.add(how % 4 == 1 ? 999'999'999 : how % 4 == 2 ? 0 : bytes.number(4));
    }
    const int exponent = static_cast<int>(bytes.byte()) - 128;
    return Functions<D>::pack(how >= 128, exponent / 2, coefficient);
}

template <class To>
void check_conversion(auto value, const Number& n)
{
    if (n.kind == Kind::FINITE)
        expect(To(value),
               rounded<To>(n.negative, n.coefficient, n.exponent, false, n.exponent));
    else
        expect(To(value), n);
}

template <class D>
void check_exact(D x, D y, D z, const Number& a, const Number& b, const Number& c)
{
    const Number ab = product(a, b);
    const auto cut = [](const Number& n, long preferred) {
        return rounded<D>(n.negative, n.coefficient, n.exponent, false, preferred);
    };
    Number minus_b = b;
    minus_b.negative = !b.negative;
    expect(x + y, sum<D>(a, b));
    expect(x - y, sum<D>(a, minus_b));
    expect(x * y, cut(ab, ab.exponent));
    expect(x / y, quotient<D>(a, b));
    expect(fma(x, y, z), sum<D>(ab, c));
    expect(quantize(x, y), quantized<D>(a, b));
    expect(sqrt(x), root<D>(a));
    const auto order = ordered(a, b);
    require((x <=> y) == order && (x == y) == (order == 0));
    require(order != 0 || hash_value(x) == hash_value(y));
    require(nextUp(x) > x && nextDown(x) < x);
    require(nextDown(nextUp(x)) == x && same(nextDown(-x), -nextUp(x)));
    using kiv::decimal::rounding;
    const D down = rint(x, rounding::downward), up = rint(x, rounding::upward);
    require(down <= x && x <= up && (down == up || up - down <= D(1)));
    require(rint(x) == down || rint(x) == up);
}

template <class D>
void check_operands(Bytes& bytes)
{
    const D x = value_from<D>(bytes), y = value_from<D>(bytes), z = value_from<D>(bytes);
    const Number a = number_of(x), b = number_of(y), c = number_of(z);
    const bool finite = a.kind == Kind::FINITE && b.kind == Kind::FINITE;
    if (finite && c.kind == Kind::FINITE)
        check_exact(x, y, z, a, b, c);
    require(number_of(x + y) == number_of(y + x) && number_of(x * y) == number_of(y * x));
    if (finite) {
        require(same(x + y, y + x) && same(x * y, y * x));
    } else if (is_nan(x) || is_nan(y)) {
        require(is_nan(x + y) && is_nan(x - y) && is_nan(x * y) && is_nan(x / y));
        require(is_nan(fma(x, y, z)) && is_nan(quantize(x, y)) && !(x == y));
    } else {
        require(number_of(x + y).kind != Kind::FINITE && !(x < y && y < x));
    }
    check_conversion<decimal32>(x, a);
    check_conversion<decimal64>(x, a);
    check_conversion<decimal128>(x, a);
    expect_reads_back(x);
    check_format(x, bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    Bytes bytes(data, size);
    const unsigned how = bytes.byte();
    if (how % 2 == 0) {
        check_operands<decimal32>(bytes);
        check_operands<decimal64>(bytes);
        check_operands<decimal128>(bytes);
        return 0;
    }
    const std::string text = bytes.rest();
    const bool ascii = std::all_of(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x80;
    });
    const kiv::ustring units =
        ascii ? kiv::ustring(text.begin(), text.end()) : units_of(text);
    check_text<decimal32>(text, units, ascii, how / 2);
    check_text<decimal64>(text, units, ascii, how / 2);
    check_text<decimal128>(text, units, ascii, how / 2);
    return 0;
}
