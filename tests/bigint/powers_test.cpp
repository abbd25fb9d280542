// Powers of five and ten, and decimal logarithms.

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <kiv/big_uint.h>

#include "bigint/gmp_model.h"

namespace {

using namespace kivtest;

bool is(const big_uint& x, const mpz_class& z)
{
    const Words words = words_of(z, significant(z));
    return std::equal(words.begin(), words.end(), x.data(), x.data() + x.size());
}

TEST(Powers, OfFiveAndTen)
{
    big_uint reused;  // holds another power, inside the object or in a block
    for (unsigned e = 0; e < 32768; e += e < 2407 ? 1 : 330) {  // 32767 is the last
        const mpz_class five = power(5, e), ten = power(10, e / 4);
        const big_uint* const constant = big_uint::precomputed_pow10(e / 4);
        ASSERT_EQ(constant != nullptr, e / 4 < 78) << e;
        big_uint fresh;
        for (big_uint* buf : {&fresh, &reused}) {
            ASSERT_TRUE(&big_uint::pow5(e, buf) == buf && is(*buf, five)) << e;
            const big_uint& result = big_uint::pow10(e / 4, buf);
            ASSERT_TRUE(is(result, ten) && &result == (constant ? constant : buf)) << e;
            ASSERT_TRUE(constant == nullptr || is(*buf, five)) << "untouched";
        }
        ASSERT_TRUE(e >= 28 || five.get_ui() == big_uint::pow5_table[e]) << e;
        ASSERT_TRUE(e >= 80 || ten.get_ui() == big_uint::pow10_table[e / 4]) << e;
    }
    for (const unsigned i : {0U, 1U, 65536U, 1U << 31}) {
        EXPECT_EQ(error_of([&] { big_uint::pow5(32768 + i, &reused); }),
                  "std::length_error: big_uint::pow5: exponent out of range");
        EXPECT_EQ(error_of([&] { big_uint::pow10(8192 + i, &reused); }),
                  "std::out_of_range: big_uint::pow10");
        EXPECT_EQ(error_of([&] { big_uint::log10est(256 + i); }),
                  "std::out_of_range: invalid array<T, N> subscript");
        EXPECT_TRUE(is(reused, power(10, 8191)));
    }
}

// --- Logarithms --------------------------------------------------------------------

int logarithm(const mpz_class& z)
{
    // GMP's count of digits may be one too large.
    const auto digits = mpz_sizeinbase(z.get_mpz_t(), 10);
    return static_cast<int>(digits) - (z < power(10, digits - 1) ? 2 : 1);
}

void expect_logarithm(const mpz_class& z, int want)
{
    for (unsigned zeros = 0; zeros < 3; ++zeros) {
        const big_uint x = guarded(words_of(z, significant(z) + zeros));
        EXPECT_EQ(x.ilog10(), want) << z.get_str(16);
        EXPECT_EQ(x.ilog10(x.bit_length()), want) << z.get_str(16);
    }
}

TEST(Logarithms, AroundPowers)
{
    for (unsigned e = 0; e <= 50001; e += e < 401 ? 1 : 1550)
        for (int step = -1; step <= 1; ++step)
            expect_logarithm(power(10, e) + step, static_cast<int>(e) - (step < 0));
    for (unsigned h = 0; h < 1500; ++h)
        for (const mpz_class& z : {power(2, h), mpz_class(power(2, h + 1) - 1)})
            expect_logarithm(z, logarithm(z));
}

// Of a value that begins with bit h, negative if two are possible.
TEST(Logarithms, Estimates)
{
    for (unsigned h = 0; h < 256; ++h) {
        const int least = logarithm(power(2, h)), most = logarithm(power(2, h + 1) - 1);
        EXPECT_EQ(static_cast<int>(big_uint::log10est(h)), least == most ? most : -most)
            << h;
    }
}

// --- Many threads ------------------------------------------------------------------

// In a process of its own they all make the factors, which nobody has asked for before.
TEST(Concurrency, PowersAreShared)
{
    std::atomic<int> waiting{4};
    big_uint five[4], ten[4];
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (--waiting; waiting > 0;)
                std::this_thread::yield();
            big_uint::pow5(32767 - t, &five[t]);
            big_uint::pow10(8191 - t, &ten[t]);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (unsigned t = 0; t < 4; ++t)
        EXPECT_TRUE(is(five[t], power(5, 32767 - t)) && is(ten[t], power(10, 8191 - t)));
}

}  // namespace
