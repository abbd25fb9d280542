// What the headers promise about memory, by counting calls of operator new.

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/kiv.h>

#include "support/failing_new.h"

namespace {

using namespace kiv;

bool counting_works()
{
    const long before = failing_new::live;
    const std::vector<int> kept(1);
    return failing_new::live != before;
}

template <class F>
long allocations(F f)
{
    constexpr long PLENTY = 1L << 40;
    failing_new::remaining = PLENTY;
    f();
    return PLENTY - failing_new::remaining.exchange(-1);
}

class Allocation : public testing::Test {
protected:
    void SetUp() override
    {
        if (!counting_works())
            GTEST_SKIP() << "the sanitizer keeps the allocation functions to itself";
    }

    std::mt19937_64 random{99};
};

template <class T>
void read_in_all_shapes(const std::string& text, const ustring& units)
{
    T value{};
    from_chars_c(text.data(), text.data() + text.size(), value);
    from_chars_c(units.data(), units.data() + units.size(), value);
}

// From common texts to those that the exact path of the parsers decides.
TEST_F(Allocation, NoneInParsing)
{
    std::vector<std::string> texts{"0", "-12", "3.25e7", "0x1.8p3", "inf", "1e400", "x"};
    texts.push_back("2.4703282292062327208e-324");
    texts.push_back("9007199254740993" + std::string(5000, '0') + "1e-5001");
    texts.push_back("0." + std::string(300, '0') + std::string(800, '7'));
    std::vector<ustring> wide;
    for (const std::string& text : texts)
        wide.emplace_back(text.begin(), text.end());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const char* const text = texts[i].c_str();
        const char16* const units = wide[i].c_str();
        EXPECT_EQ(allocations([&] {
                      read_in_all_shapes<int>(texts[i], wide[i]);
                      read_in_all_shapes<unsigned long>(texts[i], wide[i]);
                      read_in_all_shapes<float>(texts[i], wide[i]);
                      read_in_all_shapes<double>(texts[i], wide[i]);
                      strtoi_c(text, nullptr, 0);
                      strtod_c(text, nullptr);
                      strtod_c(units, nullptr);
                      strtof_c(text, nullptr);
                      strtod64_c(text);
                      strtod128_c(text);
                      strtod128_c(units);
                  }),
                  0)
            << texts[i].substr(0, 40);
    }
}

TEST_F(Allocation, NoneInFormattingButTheString)
{
    std::array<char, 2000> room;
    std::array<char16, 2000> units;
    const auto format = [&](auto value, auto... how) {
        to_chars_c(room.data(), room.data() + room.size(), value, how...);
        to_chars_c(units.data(), units.data() + units.size(), value, how...);
    };
    for (int i = 0; i < 10000 && !HasFailure(); ++i) {
        const auto bits = random();
        const auto value = std::bit_cast<double>(bits);
        EXPECT_EQ(allocations([&] {
                      format(value);
                      format(static_cast<float>(value));
                      format(value, std::chars_format::fixed,
                             static_cast<int>(bits % 900));
                      format(value, std::chars_format::scientific, 40);
                      format(bits);
                  }),
                  0)
            << value;
        EXPECT_LE(allocations([&] { to_string_c(value); }), 1);
        EXPECT_LE(allocations([&] { to_ustring_c(value); }), 1);
        const decimal::decimal128 exact(value);
        EXPECT_LE(allocations([&] { to_string_c(exact); }), 1);
    }
    EXPECT_EQ(allocations([] { to_string_c(-12345); }), 0);
}

template <class D>
void calculate(D x, D y)
{
    D z = x + y;
    z = z - x * y;
    z = x / y;
    z = fma(x, y, z);
    z = sqrt(x);
    z = quantize(z, y);
    z = nextUp(rint(z));
    z = min(max(x, y), z);
    (void)(x < y || x == z);
    (void)hash_value(z);
}

TEST_F(Allocation, NoneInDecimalArithmetic)
{
    using namespace decimal;
    for (int i = 0; i < 10000 && !HasFailure(); ++i) {
        const auto x = std::bit_cast<KDecimal64>(random());
        const auto y = std::bit_cast<KDecimal64>(random());
        const auto wide = [&] {
            return std::bit_cast<KDecimal128>(std::array{random(), random()});
        };
        const auto u = wide();
        const auto v = wide();
        EXPECT_EQ(allocations([&] {
                      calculate(decimal64(x), decimal64(y));
                      calculate(decimal128(u), decimal128(v));
                      calculate(decimal32(decimal64(x)), decimal32(decimal64(y)));
                      fmod(decimal128(u), decimal128(v));
                      int e = 0;
                      frexp(decimal64(x), &e);
                  }),
                  0);
    }
}

TEST_F(Allocation, NoneInBigUintUpTo256Bits)
{
    for (int i = 0; i < 1000 && !HasFailure(); ++i)
        EXPECT_EQ(allocations([&] {
                      big_uint a(random());
                      big_uint b(random() | 1);
                      big_uint product = big_uint::make_uninitialized(4);
                      product.multiply(a, b);
                      big_uint copy(product);
                      big_uint power;
                      big_uint wide = big_uint::make_uninitialized(8);
                      wide.multiply(copy, big_uint::pow10(30, &power));
                      wide.shift_right(7);
                      wide.multiply_by_10();
                      big_uint quotient = big_uint::make_uninitialized(8);
                      quotient.divide(wide, b);
                      a.swap(copy);
                  }),
                  0);
}

// All that a coder needs, it gets when it is made; faults are no exception.
TEST_F(Allocation, NoneInCodersOnceMade)
{
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += static_cast<char>(random() % (i % 100 < 50 ? 128 : 256));
    ustring text;
    for (int i = 0; i < 5000; ++i)
        text += static_cast<char16_t>(random() % (i % 100 < 50 ? 128 : 65536));
    std::vector<unsigned char> out_bytes(40000);
    std::vector<char16> out_units(40000);
    for (const Charset* charset : Charset::availableCharsets()) {
        const auto decoder = charset->newDecoder();
        const auto encoder = charset->newEncoder();
        for (const auto action : {CodingErrorAction::REPLACE, CodingErrorAction::IGNORE})
            EXPECT_EQ(allocations([&] {
                          decoder->onMalformedInput(action).onUnmappableCharacter(action);
                          encoder->onMalformedInput(action).onUnmappableCharacter(action);
                          Buffer<const unsigned char> in(
                              reinterpret_cast<const unsigned char*>(bytes.data()),
                              bytes.size());
                          Buffer<char16> units(out_units.data(), out_units.size());
                          decoder->reset().decode(in, units, true);
                          decoder->flush(units);
                          Buffer<const char16> from(text.data(), text.size());
                          Buffer<unsigned char> to(out_bytes.data(), out_bytes.size());
                          encoder->reset().encode(from, to, true);
                          encoder->flush(to);
                      }),
                      0)
                << charset->name().to_string().size();
    }
}

TEST_F(Allocation, NoneInLookingAtText)
{
    const ustring name = u"windows-1252"_us;
    const ustring text = u"Gr\u00FC\u00DFe \U0001F600\xD800!"_us;
    const std::string bytes =
        "Gr\xC3\xBC\xC3\x9F"
        "e \xF0\x9F\x98\x80\xFF!";
    Charset::forName(name);
    long seen = 0;
    EXPECT_EQ(allocations([&] {
                  seen += Charset::forName(name) != nullptr;
                  seen += basic_string_ref<char16>(text).contains(u"\u00FC"_usv);
                  for (const code_point cp : code_points(text))
                      seen += cp.well_formed();
                  for (const code_point cp : code_points(bytes))
                      seen += cp.well_formed();
                  for (const char16 unit : text)
                      seen += isualpha(unit) + isuupper(unit);
                  seen +=
                      case_insensitive_equal_to<basic_string_ref<char16>>()(name, name);
                  seen += case_insensitive_hash<basic_string_ref<char16>>()(name) != 0;
              }),
              0);
    EXPECT_GT(seen, 10);
}

}  // namespace
