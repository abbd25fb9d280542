#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>
#include <kiv/numconv.h>

namespace {

using namespace kiv;

double half_model(unsigned bits)
{
    const int exponent = (bits & 0x7C00) != 0 ? bits >> 10 & 31 : 1;
    double value = std::ldexp((bits & 0x3FF) + (bits & 0x7C00 ? 1024 : 0), exponent - 25);
    if (exponent == 31)
        value = std::bit_cast<double>(0x7FFULL << 52 | (bits & 0x3FFULL) << 42);
    return std::copysign(value, bits >> 15 != 0 ? -1 : 1);
}

void expect_class(auto x, int is, bool negative)
{
    ASSERT_TRUE(is_zero(x) == (is == FP_ZERO) && is_normal(x) == (is == FP_NORMAL) &&
                is_inf(x) == (is == FP_INFINITE) && is_nan(x) == (is == FP_NAN) &&
                is_finite(x) != (is_inf(x) || is_nan(x)) && sign_bit(x) == negative);
}

TEST(Half, WidensExactlyAndComesBack)
{
    for (unsigned bits = 0; bits < 0x10000; ++bits) {
        const binary16 half{static_cast<std::uint16_t>(bits)};
        const binary16 other{static_cast<std::uint16_t>(bits * 40503 ^ 0x8000)};
        const double model = half_model(bits);
        const float single = _binary16_to_float(half);
        const int is = std::abs(model) < 0x1p-14 && model != 0 ? FP_SUBNORMAL
                                                               : std::fpclassify(model);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(_binary16_to_double(half)),
                  std::bit_cast<std::uint64_t>(model));
        ASSERT_TRUE(single == model ||
                    std::bit_cast<std::uint32_t>(single) << 9 == bits << 22);
        ASSERT_EQ(std::signbit(single), bits >> 15 != 0);
        ASSERT_EQ(_double_to_binary16(model).bits, is == FP_NAN ? 0x7E00 : bits);
        ASSERT_EQ(_float_to_binary16(single).bits, is == FP_NAN ? 0x7E00 : bits);
        ASSERT_EQ(half <=> other, model <=> half_model(other.bits));
        expect_class(half, is, bits >> 15 != 0);
    }
}

void expect_narrows(double value, unsigned bits)
{
    ASSERT_EQ(_double_to_binary16(value).bits, bits) << value;
    ASSERT_EQ(_double_to_binary16(-value).bits, bits | 0x8000) << value;
    const auto single = static_cast<float>(value);
    ASSERT_TRUE(single != value || _float_to_binary16(single).bits == bits) << value;
}

TEST(Half, NarrowsTiesOfNeighboursAndWhatIsNextToThem)
{
    for (unsigned bits = 0; bits < 0x7C00; ++bits) {
        const double tie =
            (half_model(bits) + std::fmin(half_model(bits + 1), 0x1p16)) / 2;
        expect_narrows(tie, bits + bits % 2);
        expect_narrows(std::nextafter(tie, 0.0), bits);
        expect_narrows(std::nextafter(tie, HUGE_VAL), bits + 1);
        expect_narrows(std::nextafter(static_cast<float>(tie), 0.0f), bits);
        expect_narrows(std::nextafter(static_cast<float>(tie), HUGE_VALF), bits + 1);
    }
    expect_narrows(0x1p1023, 0x7C00);
}

TEST(Classification, OfEveryKind)
{
    const auto expect_classes = []<class T>(T zero) {
        using Limits = std::numeric_limits<T>;
        for (const T x : {zero, Limits::denorm_min(), Limits::min() / 2, Limits::min(),
                          Limits::max(), Limits::infinity(), Limits::signaling_NaN()}) {
            expect_class(x, std::fpclassify(x), false);
            expect_class(-x, std::fpclassify(x), true);
        }
    };
    expect_classes(0.0f), expect_classes(0.0), expect_classes(0.0L);
    long double unnormal = 1;  // without its leading bit, if that is stored
    std::memset(&unnormal, 0, 8);
    if (std::numeric_limits<long double>::digits == 64)
        expect_class(unnormal, FP_NAN, false);
    EXPECT_TRUE(is_zero(0) && is_normal(-3) && sign_bit(-3) && is_finite(3u) &&
                !is_nan(3));
}

}  // namespace
