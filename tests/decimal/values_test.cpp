// Making values, taking them apart, and conversions.

#include <bit>
#include <climits>
#include <cmath>
#include <random>

#include "digits.h"

namespace {

using namespace kivtest;

TEST(DecimalValues, Making)
{
    // Rounded to 16 digits and then to 7: once would give 1234567.
    constexpr auto TWICE = 12'345'665'000'000'001, LONG = 10'000'000'000'000'000;
    const auto made = [](long long c, int e) {
        const std::string d32 = told(decimal32(_make_decimal32(c, e)));
        const std::string d64 = told(decimal64(_make_decimal64(c, e)));
        return d32 + d64 + told(decimal128(_make_decimal128(c, e)));
    };
    EXPECT_EQ(made(-9'999'999, 90), "-9999999e90 -9999999e90 -9999999e90 ");
    EXPECT_EQ(made(-1, 200), "-inf! -1e200 -1e200 ");
    EXPECT_EQ(made(1, -103), "0e-101 1e-103 1e-103 ");
    EXPECT_EQ(made(1 - LONG, 0), "-1000000e10 -9999999999999999e0 -9999999999999999e0 ");
    EXPECT_EQ(made(-LONG, 0), "-1000000e10 -1000000000000000e1 -10000000000000000e0 ");
    EXPECT_EQ(made(TWICE, 0), "1234566e10 1234566500000000e1 12345665000000001e0 ");
    EXPECT_EQ(made(LLONG_MIN, 0),
              "-9223372e12 -9223372036854776e3 -9223372036854775808e0 ");
    EXPECT_EQ(made(1, INT_MAX), "inf! inf! inf! ");
    EXPECT_EQ(made(-1, INT_MIN), "-0e-101 -0e-398 -0e-6176 ");
    EXPECT_EQ(_make_decimal64(5, 0).bits, 0x31C0000000000005);
    EXPECT_EQ(all(decimal32(_make_decimal32(ULLONG_MAX, 0)),
                  decimal64(_make_decimal64(INT_MIN, -2)), decimal128(LLONG_MIN)),
              "1844674e13 -2147483648e-2 -9223372036854775808e0 ");
    EXPECT_EQ(all(decimal32(INT_MIN), decimal64(INT_MIN), decimal64(ULLONG_MAX)),
              "-2147484e3 -2147483648e0 1844674407370955e4 ");
    static_assert(!std::is_convertible_v<int, decimal32> && std::is_trivial_v<decimal32>);
    static_assert(!std::is_convertible_v<long, decimal64> && sizeof(decimal128) == 16);
    static_assert(!std::is_constructible_v<decimal128, bool>);
}

TEST(DecimalValues, LiteralsAndLimits)
{
    EXPECT_EQ(all(1.10_d32, -0.00_d64, 1'000e3_d64, .5E-3_d128, 9999999999999999_d64),
              "110e-2 -0e-2 1000e3 5e-4 9999999999999999e0 ");
    EXPECT_EQ(all(0e999_d32, 100e-103_d32, 1e384_d64,
                  0.12345678901234567890123456789012340000_d128),
              "0e90 1e-101 1000000000000000e369 1234567890123456789012345678901234e-34 ");
    using L = std::numeric_limits<decimal64>;
    EXPECT_EQ(all(L::min(), L::max(), L::lowest(), L::denorm_min(), L::signaling_NaN()),
              "1e-383 9999999999999999e369 -9999999999999999e369 1e-398 snan ");
    EXPECT_EQ(all(std::numeric_limits<decimal32>::max(),
                  std::numeric_limits<decimal128>::max()),
              "9999999e90 9999999999999999999999999999999999e6111 ");
    EXPECT_TRUE(nextUp(1_d64) - 1 == L::epsilon() && nextUp(L::max()) == L::infinity());
}

// The C library reads digits as float or double; written out whole, a binary value or
// the middle of two is rounded once.
template <class D>
void expect_binary_conversions()
{
    std::mt19937_64 random(9);
    for (int i = 0; i < 2'000; ++i) {
        const auto binary =
            std::bit_cast<double>(random() % 0x7FE << 52 | random() >> (12 + i % 50));
        char exact[1200];
        std::snprintf(exact, sizeof exact, "%.1150e", binary);
        ASSERT_EQ(D(binary), D{std::string_view(exact)}) << exact;
        const long double above = std::nextafter(binary, HUGE_VAL);
        std::snprintf(exact, sizeof exact, "%.1150Le", binary + (above - binary) / 2);
        for (D x{std::string_view(exact)}; x > D() && x <= std::numeric_limits<D>::max();
             x = random() % 4 != 0 ? nextUp(x) : D()) {
            ASSERT_EQ(double(x), std::strtod(digits(x).c_str(), nullptr)) << digits(x);
            ASSERT_EQ(float(x), std::strtof(digits(x).c_str(), nullptr)) << digits(x);
        }
    }
}

TEST(DecimalValues, BinaryConversions)
{
    expect_binary_conversions<decimal32>();
    expect_binary_conversions<decimal64>();
    expect_binary_conversions<decimal128>();
    errno = 0;
    EXPECT_EQ(all(decimal128(0.1), decimal64(-2.5), decimal32(0x1p20F), decimal64(-0.0)),
              "1000000000000000055511151231257827e-34 -25e-1 1048576e0 -0e0 ");
    // 34 digits below the exponents that 20 need, beside half of the least double.
    EXPECT_EQ(double(decimal128("2470328229206232720882843964341106e-357")), 0);
    EXPECT_EQ(double(decimal128("2470328229206232720882843964341107e-357")), 0x1p-1074);
    EXPECT_TRUE(std::signbit(double(-0.0_d64)) && std::isnan(float(decimal64("nan"))));

    std::mt19937_64 random(10);
    for (int i = 0; i < 10'000; ++i) {
        const double d = std::ldexp(double(random() | 1), i % 300 - 150);
        const float f = std::ldexp(float(random() | 1), i % 150 - 100);
        ASSERT_EQ(binary_to_decimal128(-d), decimal128(kiv::to_string_c(-d)));
        ASSERT_EQ(binary_to_decimal64(f), decimal64(kiv::to_string_c(f)));
    }
    // Of 17, 16 and 8 digits, cut to 16, 16 and 7.
    EXPECT_EQ(all(binary_to_decimal64(0.1 + 0.2), binary_to_decimal64(9007199254740993e1),
                  binary_to_decimal32(1 / 3.0F)),
              "3e-1 9007199254740994e1 3333333e-7 ");
    const auto d64 = [](auto... v) { return all(binary_to_decimal64(v)...); };
    const auto half = [](int bits) { return kiv::binary16{std::uint16_t(bits)}; };
    EXPECT_EQ(d64(0.0, -HUGE_VAL, -NAN, 0x1p-1074, -100.0L),
              "0e-398 -inf nan 49e-325 -1e2 ");
    EXPECT_EQ(d64(half(0x3555), half(0x8001), half(0xFBFF), half(0x7E01)),
              "3333e-4 -6e-8 -655e2 nan ");
    EXPECT_EQ(all(binary_to_decimal32(1e300), binary_to_decimal128(-0.0F)),
              "inf -0e-6176 ");
}

TEST(DecimalValues, Integers)
{
    const auto least = decimal64(INT_MIN), nan = decimal64("nan");
    const decimal128 least64 = LLONG_MIN;
    EXPECT_EQ(all(lround(2.5_d64), lrint(2.5_d64), ltrunc(2.9_d64), lround(-2.5_d128),
                  llrint(3.5_d128)),
              "3 2 2 -3 4 ");
    EXPECT_EQ(all(ltrunc(least), lltrunc(least64), llround(least64 - 0.4_d128)),
              "-2147483648 -9223372036854775808 -9223372036854775808 ");
    EXPECT_EQ(told(ltrunc(least - 1)), "-2147483648! ");
    EXPECT_EQ(told(lround(decimal128(-least))), "2147483647! ");
    EXPECT_EQ(told(llround(-9.3e18_d64)), "-9223372036854775808! ");
    EXPECT_EQ(told(lltrunc(decimal64("inf"))), "9223372036854775807! ");
    EXPECT_EQ(told(llrint(nan)), "0? ");
    EXPECT_EQ(told(quantexp(nan)), "-2147483648? ");
    EXPECT_EQ(
        all(int(-1.99_d32), int(12e-40_d128), int(nan), int(1e30_d64), int(-1e99_d128)),
        "-1 0 0 2147483647 -2147483648 ");
    EXPECT_EQ(all(std::uint64_t(184467440737095516.15e2_d128), unsigned(-1_d64),
                  std::uint8_t(256_d32)),
              "18446744073709551615 0 255 ");
}

TEST(DecimalValues, PartsAndFunctions)
{
    const decimal64 raw(kiv::KDecimal64{0x6C73FFFFFFFFFFFF});
    EXPECT_EQ(all(quantexp(1.50_d64), quantexp(-0e7_d128), coefficient(raw),
                  coefficient(decimal64("inf"))),
              "-2 7 10133099161583615 0 ");
    EXPECT_EQ(coefficient(-std::numeric_limits<decimal128>::max()).to_string(),
              std::string(34, '9'));
    EXPECT_TRUE(coefficient(decimal128(kiv::KDecimal128{1, 3ULL << 61})).is_zero());
    int class_of = 0;
    for (const auto text : {"-0e3", "1e-390", "-5", "inf", "nan"})
        EXPECT_EQ(fp_classify(decimal64(text)), class_of++);
    EXPECT_EQ(fp_classify(1e-6150_d128), 1);
    int e = 7, f = 7;
    EXPECT_EQ(all(frexp(123_d64, &e), frexp(0.00_d128, &f)), "123e-3 0e-2 ");
    EXPECT_TRUE(e == 3 && f == 0);

    // Which function is behind which name.
    const auto x = 7.50_d64, y = -2_d64;
    decimal64 z = x;
    z += y, z *= 3, z -= 0.5_d64, z /= 4;
    EXPECT_EQ(all(z, fma(x, y, 1), sqrt(2.25_d64), fmod(-7_d64, 2), fmod(7_d128, -2)),
              "400e-2 -1400e-2 15e-1 -1e0 1e0 ");
    EXPECT_EQ(all(min(x, y), max(x, y), abs(y), nextUp(1_d32), -decimal64("nan")),
              "-2e0 750e-2 2e0 1000001e-6 -nan ");
    EXPECT_EQ(all(quantize(19.995_d32, 0.01_d32), quantize(-x, 1),
                  decimal32(1.23456750_d64), decimal128(-1.10_d32)),
              "2000e-2 -8e0 1234568e-6 -110e-2 ");
    EXPECT_EQ(all(rint(2.5_d32), rint(-2.5_d64, rounding::nearest_away),
                  rint(-2.5_d64, rounding::toward_zero), rint(2.1_d64, rounding::upward),
                  rint(-2.1_d128, rounding::downward)),
              "2e0 -3e0 -2e0 3e0 -3e0 ");
    EXPECT_TRUE(sameQuantum(1.10_d64, 2.35_d64) && !sameQuantum(1.1_d32, 1.10_d32));
    EXPECT_TRUE(1.10_d64 == 1.1_d64 && y < 0 && x > y && -0.0_d64 == 0 && 0 <= 0.00_d128);
    EXPECT_EQ(decimal64("nan") <=> x, std::partial_ordering::unordered);
    EXPECT_EQ(hash_value(-12e20_d128), std::hash<decimal128>()(-1200.0e18_d128));
    EXPECT_EQ(hash_value(-0_d64), hash_value(0e9_d64));
    EXPECT_NE(hash_value(1_d32), hash_value(10_d32));
}

}  // namespace
