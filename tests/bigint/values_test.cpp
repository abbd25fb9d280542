// Comparison, bits and text beside GMP.

#include <bit>
#include <compare>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>
#include <kiv/big_uint.h>

#include "bigint/gmp_model.h"

namespace {

using namespace kivtest;

void expect_order(const Words& a, const Words& b)
{
    const big_uint x = guarded(a), y = guarded(b);
    const int order = cmp(value_of(a), value_of(b)), by_word = cmp(value_of(a), b[0]);
    EXPECT_EQ(x.compare(y), (order > 0) - (order < 0));
    EXPECT_TRUE((x <=> y) == (order <=> 0) && (x == y) == (order == 0) &&
                x.equals(y) == (order == 0));
    EXPECT_TRUE(
        x.is_equal(b[0]) == (by_word == 0) && x.is_not_equal(b[0]) == (by_word != 0) &&
        x.is_less(b[0]) == (by_word < 0) && x.is_less_equal(b[0]) == (by_word <= 0) &&
        x.is_greater(b[0]) == (by_word > 0) &&
        x.is_greater_equal(b[0]) == (by_word >= 0));
}

TEST(Values, Order)
{
    Random random;
    for (unsigned i = 0; i < 4000 && !HasFailure(); ++i) {
        const Words a = random.words(1 + i % 9);
        Words near = a;  // but for one word at most, and zeros on top
        near[random.below(1 + i % 9)] += random.below(3) - 1;
        near.insert(near.end(), random.below(4), 0);
        for (const Words& b : {random.words(1 + i / 9 % 9), near, Words{a[0]}}) {
            expect_order(a, b);
            expect_order(b, a);
        }
    }
}

TEST(Values, BesideIntegers)
{
    const big_uint five = 5, one = true;
    EXPECT_TRUE(five == 5 && five == 5U && 5ULL == five && one == std::uint8_t{1});
    EXPECT_TRUE(4U < five && five < 6 && five >= 5L && !(5U < five) && 0 <= one);
    EXPECT_TRUE(big_uint::bit_count(5) == 2 && big_uint::lzcnt32(5) == 29);
    EXPECT_TRUE(big_uint::tzcnt(8) == 3 && big_uint::tzcnt(0) == 32);
}

void expect_bits(const Words& words)
{
    const big_uint x = guarded(words);
    const mpz_class z = value_of(words);
    const auto bits = static_cast<unsigned>(32 * words.size());
    const int length = z == 0 ? 0 : static_cast<int>(mpz_sizeinbase(z.get_mpz_t(), 2));
    const int lowest = z == 0 ? -1 : static_cast<int>(mpz_scan1(z.get_mpz_t(), 0));
    const auto count = mpz_popcount(z.get_mpz_t());
    EXPECT_TRUE(x.highest_set_bit() == length - 1 && x.lowest_set_bit() == lowest);
    EXPECT_TRUE(x.bit_length() == static_cast<unsigned>(length) &&
                x.bit_count() == count);
    EXPECT_TRUE(x.is_power_of_two() == (count <= 1) && x.is_zero() == (count == 0));
    EXPECT_TRUE(x.msw() == words.back() && x.msb() == (words.back() >> 31 != 0) &&
                x.msbx() == 0U - (words.back() >> 31) && x.lsb() == (words[0] % 2 != 0));

    const std::uint64_t low = value_of(words, 2).get_ui();
    EXPECT_TRUE(x.to_uint32() == words[0] && x.to_uint64() == low);
    const auto expect = [](auto w, unsigned leading_zeros) {
        EXPECT_TRUE(leading_zeros == static_cast<unsigned>(std::countl_zero(w)) &&
                    big_uint::tzcnt(w) == static_cast<unsigned>(std::countr_zero(w)) &&
                    big_uint::bit_count(w) == static_cast<unsigned>(std::popcount(w)))
            << w;
    };
    expect(words[0], big_uint::lzcnt32(words[0]));
    expect(0UL + low, big_uint::lzcnt64(low));
    expect(0ULL + low, big_uint::lzcnt64(low));

    big_uint set = guarded(Words(words.size())), cleared = guarded(words);
    for (unsigned i = 0; i < bits; ++i) {
        EXPECT_EQ(x.test_bit(i), mpz_tstbit(z.get_mpz_t(), i) != 0) << i;
        if (x.test_bit(i)) {
            set.set_bit(i);
            cleared.clear_bit(i);
        }
    }
    EXPECT_TRUE(holds(set, words) && holds(cleared, Words(words.size())));

    for (unsigned i = 0; i < bits + 70; ++i)
        for (const unsigned k : {i, 0U - i, 0x80000000U - i}) {
            // What a right shift by k loses, and the half of its range.
            const mpz_class unit = mpz_class(1) << std::min(k, bits + 2);
            const mpz_class lost = z % unit;
            const unsigned info = lost == 0         ? 0
                                  : lost * 2 < unit ? 1
                                                    : 2 + (lost * 2 > unit);
            EXPECT_EQ(x.compute_rounding_info(k), info) << z.get_str(16) << " by " << k;
        }
}

TEST(Values, Bits)
{
    Random random;
    for (unsigned i = 0; i < 9 * 32 && !HasFailure(); ++i) {
        expect_bits(random.words(1 + i % 11));
        for (int step = -1; step <= 1; ++step)  // a half and its neighbours
            expect_bits(
                words_of((mpz_class(1) << i) + step, 1 + i / 32 + random.below(3)));
    }
    expect_bits(random.words(100));
}

TEST(Values, DecimalText)
{
    Random random;
    const auto expect = [](const Words& words) {
        const big_uint x = guarded(words);
        const std::string text = value_of(words).get_str();
        EXPECT_EQ(x.to_string(), text);
        EXPECT_TRUE(x.to_ustring() == kiv::ustring(text.begin(), text.end())) << text;
        EXPECT_TRUE(holds(x, words));
    };
    for (unsigned e = 0; e < 500 && !HasFailure(); ++e) {
        expect(random.words(1 + random.below(e < 450 ? 12 : 600)));
        // Zeros and nines across the pieces that the digits are made in.
        for (const mpz_class& z : {power(10, e), mpz_class(power(10, e) - 1),
                                   mpz_class(power(10, e) * (1 + random.below(999)))})
            expect(words_of(z, significant(z) + random.below(3)));
    }
}

}  // namespace
