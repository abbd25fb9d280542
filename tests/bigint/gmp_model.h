// GMP's integers as the model of big_uint, and operands for differential tests.

#ifndef KIV_TESTS_BIGINT_GMP_MODEL_H
#define KIV_TESTS_BIGINT_GMP_MODEL_H

#include <algorithm>
#include <cstdint>
#include <exception>
#include <random>
#include <string>
#include <typeinfo>
#include <vector>

#include <gmpxx.h>
#include <kiv/big_uint.h>
#include <kiv/utility.h>

namespace kivtest {

using kiv::big_uint;
using Words = std::vector<std::uint32_t>;

// Of the low n words, by default of all.
inline mpz_class value_of(const Words& words, std::size_t n = ~std::size_t{0})
{
    mpz_class z;
    mpz_import(z.get_mpz_t(), std::min(n, words.size()), -1, 4, 0, 0, words.data());
    return z;
}

inline unsigned significant(const mpz_class& z)
{
    return static_cast<unsigned>((mpz_sizeinbase(z.get_mpz_t(), 2) + 31) / 32);
}

// Modulo 2^(32 * n), also of a negative value.
inline Words words_of(mpz_class z, std::size_t n)
{
    mpz_fdiv_r_2exp(z.get_mpz_t(), z.get_mpz_t(), 32 * n);
    Words words(n);
    mpz_export(words.data(), nullptr, -1, 4, 0, 0, z.get_mpz_t());
    return words;
}

inline mpz_class power(unsigned base, unsigned long e)
{
    mpz_class z;
    mpz_ui_pow_ui(z.get_mpz_t(), base, e);
    return z;
}

// Storage above the size is full of guards. Every third number of words has none: it
// fills its block, so that the address sanitizer sees who reads beyond.
constexpr std::uint32_t GUARD = 0xA5A5A5A5;

inline big_uint guarded(const Words& words)
{
    const auto n = static_cast<unsigned>(words.size());
    big_uint x = big_uint::make_uninitialized(n, n + n % 3);
    const auto end = std::copy(words.begin(), words.end(), x.data());
    std::fill(end, x.data() + x.reserved(), GUARD);
    return x;
}

inline bool holds(const big_uint& x, const Words& words)
{
    return x.size() == words.size() && std::equal(words.begin(), words.end(), x.data()) &&
           std::all_of(x.data() + x.size(), x.data() + x.reserved(),
                       [](auto w) { return w == GUARD; });
}

// Type and text of what a call throws, empty if it does not.
template <class Call>
std::string error_of(Call call)
{
    try {
        call();
    } catch (const std::exception& e) {
        return kiv::type_info_name(typeid(e)) + ": " + e.what();
    }
    return "";
}

struct Random {
    unsigned below(unsigned n) { return static_cast<unsigned>(engine() % n); }

    // Words that make carries long and quotient digits hard to guess, at times with
    // zeros on top.
    Words words(unsigned n)
    {
        static constexpr std::uint32_t HARD[] = {0,          1,          0x7FFFFFFF,
                                                 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
        Words words(below(4) == 0 ? below(n + 1) : n);
        const unsigned hard = below(3) == 0 ? 1 : 5;  // words of six
        for (std::uint32_t& w : words)
            w = below(6) < hard ? HARD[below(6)] : static_cast<std::uint32_t>(engine());
        words.resize(n);
        return words;
    }

    std::mt19937_64 engine;
};

}  // namespace kivtest

#endif
