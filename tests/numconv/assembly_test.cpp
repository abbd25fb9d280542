// The oracles: the C library, whose strtod rounds decimal text of any length correctly
// (hexadecimal text of subnormal numbers it does not) and whose ldexp is exact for long
// double; midpoints between neighbours, whose results are known; for the decimal types
// a model on GMP's integers that rounds once.

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <gmpxx.h>
#include <gtest/gtest.h>
#include <kiv/decimal.h>
#include <kiv/numconv.h>

#include "numconv/binary_assembly.h"
#include "numconv/decimal_packing.h"

namespace {

using namespace kiv;
using namespace kiv::decimal;

struct Random {
    int between(int low, int high)
    {
        return low + static_cast<int>(engine() % static_cast<unsigned>(high - low + 1));
    }
    mpz_class bits(int n) { return longer.get_z_bits(static_cast<unsigned>(n)); }

    std::mt19937_64 engine;
    gmp_randclass longer{gmp_randinit_mt};
};

mpz_class power(unsigned base, int e)
{
    mpz_class result;
    mpz_ui_pow_ui(result.get_mpz_t(), base, static_cast<unsigned>(e));
    return result;
}

// Of 0: 1.
int bit_length(const mpz_class& value)
{
    return static_cast<int>(mpz_sizeinbase(value.get_mpz_t(), 2));
}

big_uint big(const mpz_class& value, int leading_zero_words = 0)
{
    const int words = (bit_length(value) + 31) / 32 + leading_zero_words;
    auto result = big_uint::make_uninitialized(static_cast<unsigned>(words));
    std::fill_n(result.data(), result.size(), 0u);
    mpz_export(result.data(), nullptr, -1, 4, 0, 0, value.get_mpz_t());
    return result;
}

constexpr int LONGEST = 32 * 65'535;  // in bits

template <class Float>
auto bits_of(Float value)
{
    using Bits = std::conditional_t<sizeof value == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<Bits>(value);
}

// Zeros differ by their sign.
template <class Float>
bool same(Float a, Float b)
{
    return bits_of(a) == bits_of(b);
}

// --- Binary types --------------------------------------------------------------------

template <class Float>
constexpr auto make = make_double;
template <>
constexpr auto make<float> = make_float;
template <class Float>
constexpr auto pack = pack_double;
template <>
constexpr auto pack<float> = pack_float;

template <class Float>
Float parsed(const std::string& text)
{
    const char* p = text.c_str();
    return static_cast<Float>(sizeof(Float) == 4 ? std::strtof(p, nullptr)
                                                 : std::strtod(p, nullptr));
}

// c * 2^e. Cut to 64 bits and rounded to odd, so that only the last step rounds.
template <class Float>
Float nearest(const mpz_class& c, int e)
{
    static_assert(std::numeric_limits<long double>::digits >= 64);
    const int excess = std::max(bit_length(c) - 64, 0);
    mpz_class top = c / power(2, excess);
    if (top * power(2, excess) != c)
        top |= 1;
    return static_cast<Float>(
        std::ldexp(static_cast<long double>(top.get_ui()), e + excess));
}

template <class Float>
class Binary : public testing::Test {
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(Binary, Floats);

TYPED_TEST(Binary, MakeAgreesWithTheCLibrary)
{
    using Float = TypeParam;
    // Around the range of exactly scaled values, and the whole range.
    constexpr int FAST = sizeof(Float) == 4 ? 11 : 23;
    constexpr int WIDE = sizeof(Float) == 4 ? 66 : 346;
    Random random;
    for (int i = 0; i < 500'000; ++i) {
        const mpz_class c = random.bits(random.between(0, i % 32 == 0 ? 1500 : 64));
        std::string text = c.get_str();
        const int range = i % 2 == 0 ? WIDE : FAST;
        const int e = random.between(-range, range) - bit_length(c) / 64 * 19;
        text += 'e' + std::to_string(e);
        ASSERT_TRUE(same(make<Float>(false, e, big(c, i % 3)), parsed<Float>(text)))
            << text;
    }
}

TYPED_TEST(Binary, PackAgreesWithTheCLibrary)
{
    using Float = TypeParam;
    constexpr int RANGE = std::numeric_limits<Float>::max_exponent + 90;
    Random random;
    for (int i = 0; i < 1'000'000; ++i) {
        const mpz_class c = random.bits(random.between(0, i % 32 == 0 ? 400 : 64));
        const int e = random.between(-RANGE, RANGE) - bit_length(c) / 64 * 64;
        ASSERT_TRUE(same(pack<Float>(true, e, big(c, i % 3)), -nearest<Float>(c, e)))
            << c.get_str() << " * 2^" << e;
    }
}

// Half way between the value that has these bits and the next one: odd * 2^exponent.
template <class Float>
struct Midpoint {
    using Bits = decltype(bits_of(Float{}));
    static constexpr int FRACTION = std::numeric_limits<Float>::digits - 1;
    static constexpr int BIAS = std::numeric_limits<Float>::max_exponent - 1 + FRACTION;

    explicit Midpoint(Bits below) : bits(below)
    {
        const Bits hidden = bits >> FRACTION != 0 ? Bits{1} << FRACTION : 0;
        odd = 2 * mpz_class(hidden + bits % (Bits{1} << FRACTION)) + 1;
        exponent = std::max(static_cast<int>(bits >> FRACTION), 1) - BIAS - 1;
    }
    // The nearest value of the midpoint and something that has the sign of offset.
    Float rounded(int offset) const
    {
        const bool up = offset > 0 || (offset == 0 && bits % 2 == 1);
        return std::bit_cast<Float>(bits + Bits{up});
    }
    // Times 10^(tens - min(exponent, 0)).
    mpz_class times_power_of_ten(int tens) const
    {
        return odd * power(exponent < 0 ? 5 : 2, std::abs(exponent)) * power(10, tens);
    }

    Bits bits;
    int exponent;
    mpz_class odd;
};

// Ties and what lies one unit beside them, the border of infinity included.
TYPED_TEST(Binary, Midpoints)
{
    using Float = TypeParam;
    using Bits = typename Midpoint<Float>::Bits;
    const Bits infinite = bits_of(std::numeric_limits<Float>::infinity());
    const Bits normal = bits_of(std::numeric_limits<Float>::min());
    std::vector<Bits> values = {0, 1, normal - 1, normal, infinite - 2, infinite - 1};
    Random random;
    for (int i = 0; i < 15'000; ++i) {
        const auto bits = static_cast<Bits>(random.engine());
        values.push_back(i % 8 == 0 ? bits % normal >> i % 23 : bits % infinite);
    }
    for (const Bits bits : values) {
        const Midpoint<Float> mid(bits);
        const int twos = random.between(0, 100);
        const int tens = random.between(0, 30);
        const mpz_class binary = mid.odd * power(2, twos);
        const mpz_class whole = mid.times_power_of_ten(tens);
        const int e2 = mid.exponent - twos;
        const int e10 = std::min(mid.exponent, 0) - tens;
        for (const int i : {-1, 0, 1}) {
            SCOPED_TRACE(testing::Message() << bits << ' ' << i);
            ASSERT_TRUE(same(pack<Float>(false, e2, big(binary + i)), mid.rounded(i)));
            ASSERT_TRUE(same(make<Float>(false, e10, big(whole + i)), mid.rounded(i)));
        }
    }
}

TYPED_TEST(Binary, LongestCoefficients)
{
    using Float = TypeParam;
    for (const Float x : {Float(0.1), std::numeric_limits<Float>::denorm_min()}) {
        const Midpoint<Float> mid(bits_of(x));
        for (const int i : {-1, 0, 1}) {
            constexpr int TWOS = 2'000'000;
            const big_uint binary = big(mid.odd * power(2, TWOS) + i);
            EXPECT_EQ(pack<Float>(false, mid.exponent - TWOS, binary), mid.rounded(i));
            for (const int tens : {8'191, 32'768, x < 0.1 ? 100'000 : 300'001}) {
                const big_uint c = big(mid.times_power_of_ten(tens) + i);
                EXPECT_EQ(make<Float>(false, mid.exponent - tens, c), mid.rounded(i))
                    << tens;
            }
        }
    }

    const mpz_class value = power(2, LONGEST) - 1;  // 631297 digits
    const big_uint longest = big(value);
    for (const int e : {600'000, 631'000, 631'296, 631'340, 640'000}) {
        const mpz_class quotient = (value << 1200) / power(10, e);  // never exact
        const auto want = nearest<Float>(quotient * 2 + 1, -1201);
        EXPECT_EQ(make<Float>(false, -e, longest), want) << e;
    }
    EXPECT_EQ(pack<Float>(false, -LONGEST, longest), 1);
    EXPECT_EQ(make<Float>(false, 30, big(3, 65'534)), Float(3e30));
    EXPECT_EQ(make<Float>(false, -30, big(3, 65'534)), Float(3e-30));
}

// Counts as the bits would that it stands for; rounds the digits if there is an exponent.
TYPED_TEST(Binary, DroppedInformation)
{
    using Float = TypeParam;
    Random random;
    for (int i = 0; i < 200'000; ++i) {
        const std::uint64_t c = random.engine() >> i % 11 | 1ull << 53;
        const auto dropped = static_cast<unsigned>(i % 4);
        const int e = random.between(-1140, -1000);  // double: subnormal at times
        const big_uint all = big(mpz_class(c) * 4 + dropped);
        ASSERT_TRUE(same(numconv::assemble_binary<Float>(false, e, c, dropped),
                         pack<Float>(false, e - 2, all)));
        ASSERT_TRUE(same(numconv::assemble_decimal<Float>(false, 0, c, dropped),
                         pack<Float>(false, -2, all)));
        const bool up = dropped == 3 || (dropped == 2 && c % 2 == 1);
        for (const int e10 : {-30, 15})
            ASSERT_TRUE(same(numconv::assemble_decimal<Float>(false, e10, c, dropped),
                             make<Float>(false, e10, big(mpz_class(c) + up))));
    }
    EXPECT_EQ(numconv::assemble_decimal<Float>(false, 1, ~0u, 3), Float(0x1p32 * 10));
}

// --- Decimal types -------------------------------------------------------------------

// The public function or, if something was dropped, the one below it.
template <class Decimal, Decimal PACK(bool, int, const big_uint&)>
mpz_class packed(bool negative, int exponent, const big_uint& c, unsigned dropped)
{
    const auto pattern =
        dropped == 0
            ? PACK(negative, exponent, c).pattern()
            : numconv::pack_decimal<Decimal>(negative, exponent, c, dropped).pattern();
    mpz_class bits;
    mpz_import(bits.get_mpz_t(), 1, 0, sizeof pattern, 0, 0, &pattern);
    return bits;
}

struct Format {
    int width, coefficient_bits;  // of the pattern, of a coefficient in the short form
    int digits, min, max;
    const char* largest;  // pattern of the largest finite value
    decltype(&packed<decimal32, pack_decimal32>) bits;

    mpz_class limit() const { return power(10, digits); }
    std::string pack(bool negative, int exponent, const big_uint& c,
                     unsigned dropped = 0) const;
    std::string expected(bool negative, int exponent, mpz_class c) const;
};

const Format FORMATS[] = {
    {32, 23, 7, -101, 90, "77f8967f", packed<decimal32, pack_decimal32>},
    {64, 53, 16, -398, 369, "77fb86f26fc0ffff", packed<decimal64, pack_decimal64>},
    {128, 113, 34, -6176, 6111, "5fffed09bead87c0378d8e63ffffffff",
     packed<decimal128, pack_decimal128>},
};

std::string text(bool negative, const mpz_class& digits, int exponent)
{
    std::string result = negative ? "-" : "";
    return result += digits.get_str() + 'e' + std::to_string(exponent);
}

// Decodes the bits.
std::string Format::pack(bool negative, int exponent, const big_uint& c,
                         unsigned dropped) const
{
    const mpz_class all = bits(negative, exponent, c, dropped);
    const auto field = [&](int low, int count) -> mpz_class {
        return all / power(2, low) % power(2, count);
    };
    if (all == (negative ? 0xF8 : 0x78) * power(2, width - 8))
        return negative ? "-inf" : "inf";
    const bool large = field(width - 3, 2) == 3;
    const int low = coefficient_bits - (large ? 2 : 0);
    const mpz_class value = field(0, low) + (large ? power(2, coefficient_bits) : 0);
    const mpz_class biased = field(low, width - 1 - coefficient_bits);
    return text(field(width - 1, 1) == 1, value, static_cast<int>(biased.get_si()) + min);
}

std::string Format::expected(bool negative, int exponent, mpz_class c) const
{
    if (c == 0)
        return text(negative, c, std::clamp(exponent, min, max));
    const int length = static_cast<int>(c.get_str().size());
    int e = std::max({exponent, exponent + length - digits, min});
    const mpz_class unit = power(10, e - exponent);
    const int order = cmp(mpz_class(c % unit * 2), unit);
    c /= unit;
    if (order > 0 || (order == 0 && c % 2 == 1))
        ++c;
    if (c == limit()) {
        c /= 10;
        ++e;
    }
    for (; e > max && c < limit(); --e)
        c *= 10;
    return c < limit() ? text(negative, c, e) : negative ? "-inf" : "inf";
}

TEST(DecimalPacking, AgreesWithTheModel)
{
    Random random;
    for (int i = 0; i < 90'000; ++i) {
        const Format& f = FORMATS[i % 3];
        // Digits to keep, at times all nines, and digits to round, often near a tie.
        mpz_class c = random.bits(128) % power(10, random.between(0, f.digits));
        if (i % 16 == 0)
            c = f.limit() - 1;
        const mpz_class unit = power(10, random.between(0, i % 64 == 0 ? 90 : 9));
        mpz_class rest = unit / 2 + random.between(-1, 1);
        if (i % 2 == 0)
            rest = random.bits(320);
        c = abs(c * unit + rest % unit);
        // Exponents around the ends of the range.
        const int length = static_cast<int>(c.get_str().size());
        const int places[] = {f.min, f.max - length, 0};
        const int e =
            places[random.between(0, 2)] + random.between(-length - 3, f.digits + 3);
        const bool negative = i % 5 == 0;
        const std::string want = f.expected(negative, e, c);
        ASSERT_EQ(f.pack(negative, e, big(c, i % 4)), want) << c.get_str() << 'e' << e;
        // The same with what exceeds the precision as dropped information.
        const int n = std::max(length - f.digits, 0);
        const mpz_class high = c / power(10, n);
        const mpz_class low = c % power(10, n);
        const int order = cmp(mpz_class(low * 2), power(10, n));
        const unsigned dropped = low == 0 ? 0 : order < 0 ? 1 : order == 0 ? 2 : 3;
        ASSERT_EQ(f.pack(negative, e + n, big(high), dropped), want)
            << c.get_str() << 'e' << e;
    }
    for (const Format& f : FORMATS) {
        EXPECT_EQ(f.bits(false, f.max, big(f.limit() - 1), 0).get_str(16), f.largest);
        for (const int n : {8'192, 300'001}) {
            for (const int i : {-1, 0, 1}) {
                const big_uint c = big(1'234 * power(10, n) + power(10, n) / 2 + i);
                const std::string want = text(false, i > 0 ? 1'235 : 1'234, f.min);
                EXPECT_EQ(f.pack(false, f.min - n, c), want);
            }
        }
    }
}

// --- All types -----------------------------------------------------------------------

// Sums of exponents and lengths do not run over.
TEST(Assembly, ExtremesOfInt)
{
    for (const mpz_class& value : {mpz_class(0), mpz_class(1), power(2, LONGEST - 1)}) {
        const big_uint c = big(value);
        for (const int e : {INT_MIN, INT_MIN + 1, INT_MAX - 1, INT_MAX}) {
            const bool infinite = value != 0 && e > 0;
            const double want =
                infinite ? -std::numeric_limits<double>::infinity() : -0.0;
            for (const auto call : {make_double, pack_double})
                EXPECT_TRUE(same(call(true, e, c), want));
            for (const auto call : {make_float, pack_float})
                EXPECT_TRUE(same(call(true, e, c), static_cast<float>(want)));
            for (const Format& f : FORMATS)
                EXPECT_EQ(f.pack(true, e, c),
                          infinite ? "-inf" : text(true, 0, e > 0 ? f.max : f.min));
        }
    }
}

TEST(Assembly, LongDoubleIsADouble)
{
    EXPECT_TRUE(same(make_double(false, -1, 1), 0.1));
    EXPECT_EQ(make_long_double(true, -1, 1), static_cast<long double>(-0.1));
    EXPECT_EQ(pack_long_double(true, 0, ~0ull), -0x1p64L);
}

}  // namespace
