#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "char/companion_decimal.h"

namespace {

__extension__ using u128 = unsigned __int128;

// The low bytes of an object in those of another one, as little endian has them.
template <class To, class From>
To as(const From& from)
{
    To to{};
    std::memcpy(&to, &from, std::min(sizeof to, sizeof from));
    return to;
}

template <class Value>
std::string hex(Value value)
{
    char text[40];
    const u128 bits = as<u128>(value);
    std::snprintf(text, sizeof text, "%016llx%016llx",
                  static_cast<unsigned long long>(bits >> 64),
                  static_cast<unsigned long long>(bits));
    return text + 32 - 2 * sizeof value;
}

// Operands of every kind. Their fields are laid out here without a line of the library.
template <class Width>
class Samples {
public:
    using Value = typename Width::Value;

    explicit Samples(unsigned seed) : m_random(seed) {}

    std::uint64_t below(std::uint64_t n) { return m_random() % n; }
    int between(int low, int high)
    {
        return low + static_cast<int>(below(static_cast<std::uint64_t>(high - low + 1)));
    }
    static u128 power_of_ten(std::uint64_t n)
    {
        return n == 0 ? 1 : 10 * power_of_ten(n - 1);
    }
    u128 any_bits() { return u128{m_random()} << 64 | m_random(); }

    Value any()
    {
        const int near_end = between(0, 2 * Width::DIGITS);
        const int exponents[] = {near_end, Width::TOP - near_end, between(0, Width::TOP),
                                 Width::BIAS + between(-12, 12)};
        const auto kind = below(12);
        return kind == 0   ? as<Value>(any_bits())
               : kind == 1 ? special()
                           : finite(exponents[std::min<std::uint64_t>(kind - 2, 3)]);
    }

    // Of an exponent that lets the sum, or the product or quotient, meet the other one
    // or an end of the range.
    Value partner(Value x)
    {
        const int mine = static_cast<int>(as<u128>(x) >> Width::N) & Width::TOP;
        const int near = between(-Width::DIGITS - 4, Width::DIGITS + 4);
        const int exponents[] = {
            Width::BIAS - mine + near, mine - Width::TOP + Width::BIAS + near,
            Width::TOP + Width::BIAS - mine + near, mine, mine + near};
        return below(6) == 0 ? any() : finite(exponents[below(5)]);
    }

private:
    // Any number of digits; often one beside which digits carry, borrow or tie.
    u128 coefficient()
    {
        const auto length = below(Width::DIGITS + 1);
        const u128 power = power_of_ten(length);
        const u128 any = any_bits() % power;
        const u128 zeros = power_of_ten(below(length + 1));
        const u128 digits[] = {power - 1, power / 10 + below(3), any / zeros * zeros,
                               power / 2 + below(2)};
        const auto kind = below(8);
        return kind < 4 ? digits[kind] : any;
    }

    Value finite(int exponent)
    {
        const u128 digits = coefficient();
        const bool large = digits >> Width::N != 0;
        const int n = large ? Width::N - 2 : Width::N;
        u128 bits = u128{below(2)} << (Width::WIDTH - 1);
        bits |= static_cast<u128>(std::clamp(exponent, 0, Width::TOP)) << n;
        bits |= large ? u128{3} << (Width::WIDTH - 3) : 0;
        return as<Value>(bits | (digits & ((u128{1} << n) - 1)));
    }

    // Infinities, NaNs with any payload, coefficients that are too large.
    Value special()
    {
        constexpr unsigned heads[] = {0x78, 0x7C, 0x7E, 0x6C, 0x77};
        const u128 head = u128{heads[below(5)] | below(2) << 7} << (Width::WIDTH - 8);
        return as<Value>(head | (below(2) != 0 ? any_bits() >> (136 - Width::WIDTH) : 0));
    }

    std::mt19937_64 m_random;
};

// clang-format off
#define KIV_TEST_MEMBER(W, Name) static constexpr auto Name = kivDec##W##Name;
#define KIV_TEST_MEMBERS(W, M)                                                         \
    M(W, Add) M(W, Subtract) M(W, Multiply) M(W, Divide) M(W, Remainder) M(W, Fma)     \
    M(W, Sqrt) M(W, Compare) M(W, QuietNotEqual) M(W, MinNum) M(W, MaxNum) M(W, Class) \
    M(W, IsInfinite) M(W, IsNaN) M(W, ScaleB) M(W, LogB) M(W, Quantize) M(W, NextUp)   \
    M(W, NextDown) M(W, SameQuantum) M(W, Rint) M(W, RoundExact) M(W, RoundHalfUp)     \
    M(W, FromInt64) M(W, FromUInt64) M(W, ToInt64) M(W, ToInt32) M(W, FormatString)    \
    M(W, ParseGetValue) M(W, Abs) M(W, Negate) M(W, CopySign)
// clang-format on
// N is the width of the small form's coefficient, TOP the largest biased exponent.
#define KIV_TEST_FUNCTIONS(W, A, B, DIGITS_, TOP_, BIAS_, N_)                       \
    extern "C" int kivtest_decimal##W(char, const void*, const void*, void*);       \
    struct Decimal##W {                                                             \
        using Value = kiv::KDecimal##W;                                             \
        static constexpr int WIDTH = W, DIGITS = DIGITS_, TOP = TOP_, BIAS = BIAS_; \
        static constexpr int N = N_;                                                \
        KIV_TEST_MEMBERS(W, KIV_TEST_MEMBER)                                        \
        static constexpr auto to_a = kivDec##W##ToDec##A;                           \
        static constexpr auto to_b = kivDec##W##ToDec##B;                           \
        [[maybe_unused]] static constexpr auto oracle = kivtest_decimal##W;         \
    };
KIV_TEST_FUNCTIONS(32, 64, 128, 7, 191, 101, 23)
KIV_TEST_FUNCTIONS(64, 32, 128, 16, 767, 398, 53)
KIV_TEST_FUNCTIONS(128, 32, 64, 34, 12287, 6176, 113)

template <class T>
class DecimalArithmetic : public testing::Test {
};
using Widths = testing::Types<Decimal32, Decimal64, Decimal128>;
TYPED_TEST_SUITE(DecimalArithmetic, Widths);

#ifdef KIV_TEST_DECIMAL_ORACLE

TYPED_TEST(DecimalArithmetic, AgreesWithTheCompiler)
{
    using T = TypeParam;
    using Value = typename T::Value;
    constexpr decltype(T::Add) functions[] = {T::Add, T::Subtract, T::Multiply,
                                              T::Divide};
    Samples<T> samples(1);
    for (int i = 0; i < 200'000; ++i) {
        const Value x = samples.any();
        const Value y = samples.partner(x);
        for (int k = 0; k < 4; ++k) {
            Value want;
            const int order = T::oracle("+-*/"[k], &x, &y, &want);
            const Value got = functions[k](x, y);
            // The peer computes decimal32 in decimal64, and the payloads get lost there.
            const bool equal = as<u128>(got) == as<u128>(want) ||
                               (T::WIDTH == 32 && T::IsNaN(got) && T::IsNaN(want));
            ASSERT_TRUE(equal && T::Compare(x, y) == order)
                << hex(x) << "+-*/"[k] << hex(y) << " = " << hex(got) << ", not "
                << hex(want) << "; order " << order;
        }
    }
}

#endif

// A line "name operands result" for python3, whose decimal module is independent of all
// this: patterns after '#', else numbers and text.
template <class... Fields>
void put_line(std::FILE* python, const char* name, const Fields&... fields)
{
    std::ostringstream line;
    const auto put = [&line](const auto& field) {
        if constexpr (requires { line << field; })
            line << ' ' << field;
        else
            line << " #" << hex(field);
    };
    (put(fields), ...);
    std::fprintf(python, "%s%s\n", name, line.str().c_str());
}

TYPED_TEST(DecimalArithmetic, AgreesWithPython)
{
    using T = TypeParam;
    Samples<T> samples(2);
    std::FILE* python =
        popen("python3 -B " KIV_DATA_DIR "/../tests/companion/decimal_oracle.py", "w");
#define CHECK(Name, ...) put_line(python, #Name, __VA_ARGS__, T::Name(__VA_ARGS__))
    for (int i = 0; i < 250; ++i) {
        const auto x = samples.any();
        const auto y = samples.partner(x);
        const auto z = samples.partner(T::Multiply(x, y));
        const int n = samples.between(-T::TOP, T::TOP) >> samples.below(12);
        const auto s = static_cast<std::int64_t>(samples.any_bits()) >> samples.below(64);
        const auto u = static_cast<std::uint64_t>(s);
        CHECK(Add, x, y), CHECK(Subtract, x, y), CHECK(Multiply, x, y), CHECK(Sqrt, x);
        CHECK(Divide, x, y), CHECK(Fma, x, y, z), CHECK(Remainder, x, y), CHECK(LogB, x);
        CHECK(MinNum, x, y), CHECK(MaxNum, x, y), CHECK(NextUp, x), CHECK(NextDown, x);
        CHECK(Compare, x, y), CHECK(QuietNotEqual, x, y), CHECK(SameQuantum, x, y);
        CHECK(Class, x), CHECK(IsInfinite, x), CHECK(IsNaN, x), CHECK(Quantize, x, y);
        CHECK(FromInt64, s), CHECK(FromUInt64, u), CHECK(ToInt32, x), CHECK(ToInt64, x);
        CHECK(ToInt64, T::FromInt64(s)), CHECK(to_a, x), CHECK(to_b, x);
        CHECK(ScaleB, x, n), CHECK(RoundHalfUp, x), CHECK(RoundExact, x, 0);
        for (int mode = 0; mode < 5; ++mode)
            CHECK(Rint, x, mode);
        const u128 top = u128{1} << (T::WIDTH - 1);
        // The end of the normal numbers: the next one has no exponent below.
        CHECK(NextUp, as<typename T::Value>(top | samples.power_of_ten(T::DIGITS - 1)));
        ASSERT_TRUE(as<u128>(T::Abs(x)) == (as<u128>(x) & ~top)) << hex(x);
        ASSERT_TRUE(as<u128>(T::Negate(x)) == (as<u128>(x) ^ top)) << hex(x);
        ASSERT_EQ(hex(T::CopySign(T::Negate(y), y)), hex(y));

        const kiv::DecFormatSpec spec = {"efgEFG"[u % 6],
                                         "\0+"[u % 2],
                                         u % 4 < 2,
                                         samples.between(-1, 20),
                                         '.',
                                         0,
                                         ""};
        char buffer[7000];
        T::FormatString(&spec, x, buffer, sizeof buffer);
        put_line(python, "Format", x, spec.conversion, int{spec.sign}, spec.alternate,
                 spec.precision, buffer);

        // Digits that may be many more than are kept, zeros and nines among them.
        std::string number = samples.below(2) != 0 ? "-" : "";
        const std::uint64_t point = samples.below(90);
        for (std::uint64_t k = 0, length = 1 + samples.below(45); k < length; ++k) {
            number += k == point ? "." : "";
            number += "0123456789000995"[samples.below(k > 8 ? 16 : 10)];
        }
        number += samples.below(2) != 0 ? 'e' + std::to_string(n) : "";
        kiv::DecParseState state;
        ASSERT_EQ(kivDecParseInit(&state, T::DIGITS, '.', ',', 1), 0);
        for (const char c : number)
            kivDecParseNextChar(&state, c);
        put_line(python, "Parse", number, T::ParseGetValue(&state));
    }
    std::fputs("end of lines\n", python);
    EXPECT_EQ(pclose(python), 0);
}

// Groups of the locale's sizes, and buffers of every size.
TEST(DecimalText, GroupingAndBuffers)
{
    // clang-format off
    static constexpr const char* cases[][2] = {
        {"\3", "1.234.567.890,50"}, {"\3\2", "1.23.45.67.890,50"}, {"", "1234567890,50"},
        {"\2\177", "12345678.90,50"}, {"\1\2\3", "1.234.567.89.0,50"}, {"\12", "1234567890,50"},
        {"\4\3\177", "123.456.7890,50"}, {"\177", "1234567890,50"}, {"\11", "1.234567890,50"},
    };
    // clang-format on
    const auto value = kivDec128ScaleB(kivDec128FromInt64(12345678905), -1);
    for (const auto& [grouping, text] : cases) {
        const kiv::DecFormatSpec spec = {'f', 0, false, 2, ',', '.', grouping};
        const std::string want = text;
        for (std::size_t size = 0; size <= want.size() + 1; ++size) {
            char buffer[64] = "what was there before all this";
            const std::string before = buffer;
            ASSERT_EQ(kivDec128FormatString(&spec, value, buffer, static_cast<int>(size)),
                      static_cast<int>(want.size()));
            const std::string cut = size == 0 ? "" : want.substr(0, size - 1) + '\0';
            ASSERT_EQ(std::string(buffer, before.size()), cut + before.substr(size));
        }
    }
}

// The answer to each character, and what is then read; '2' and '3' end the number.
TEST(DecimalText, IncrementalAnswers)
{
    // clang-format off
    static constexpr const char* cases[][3] = {
        {"", "", "nan"}, {"1.,", "112", "1"}, {",1", "22", "nan"}, {"7e-", "100", "7"},
        {"0x1", "122", "0"}, {"1,,2", "1022", "1"}, {".e1", "022", "nan"},
        {"+-1", "022", "nan"}, {"7E+-1", "10022", "7"}, {"nANa", "0032", "nan"},
        {"1.2.3", "11122", "1.2"}, {" \t+.5 ", "000012", "0.5"},
        {"infinix", "0010002", "inf"}, {"-InFiNiTy1", "0001000032", "-inf"},
        {"1e99999999999", "1011111111111", "inf"},
        {"-1,234.50e+1x7", "01011111100122", "-12345.0"},
        {"-0.00e-99999999999", "011110011111111111", "-0e-398"},
        {"12345678901234565", "11111111111111111", "1.234567890123456e+16"},
        {"1000000000000005.1e-399", "11111111111111111100111", "1.00000000000001e-384"},
        {"12345678901234565000000000000001", "11111111111111111111111111111111", "1.234567890123457e+31"},
    };
    // clang-format on
    for (const auto& [text, want, value] : cases) {
        kiv::DecParseState state;
        ASSERT_EQ(kivDecParseInit(&state, 16, '.', ',', 1), 0);
        std::string answers;
        for (const char* p = text; *p != 0; ++p)
            answers += std::to_string(kivDecParseNextChar(&state, *p));
        EXPECT_EQ(answers, want) << text;
        const kiv::DecFormatSpec spec = {'g', 0, false, -1, '.', 0, nullptr};
        char buffer[64];
        kivDec64FormatString(&spec, kivDec64ParseGetValue(&state), buffer, sizeof buffer);
        EXPECT_STREQ(buffer, value) << text;
    }
    kiv::DecParseState state;
    EXPECT_EQ(kivDecParseInit(&state, 15, '.', ',', 1), -1);
    EXPECT_EQ(kivDecParseInit(&state, 16, 'e', ',', 1), -1);
    EXPECT_EQ(kivDecParseInit(&state, 16, '.', '-', 1), -1);
    EXPECT_EQ(kivDecParseInit(&state, 16, '.', ',', 0), -1);
    ASSERT_EQ(kivDecParseInit(&state, 34, ',', ',', 1), 0) << "no separator";
    EXPECT_EQ(kivDecParseNextChar(&state, '1') + kivDecParseNextChar(&state, ','), 2);
}

}  // namespace
