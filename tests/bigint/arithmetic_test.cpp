// Every arithmetic operation beside GMP: result, return value, refusal, operands
// that are the target, and words that must stay as they are.

#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <kiv/big_uint.h>

#include "bigint/gmp_model.h"
#include "bigint/kernels.h"
#include "platform/cpu.h"

namespace {

using namespace kivtest;

constexpr const char* BY_ZERO = "std::overflow_error: divide by zero";
const std::string INVALID = "std::invalid_argument: big_uint::";

struct Objects {
    big_uint &t, &a, &b, &r;
};

// Four objects, and which of them are target, operands and remainder.
struct Setting {
    mpz_class value(unsigned i, unsigned n = ~0U) const
    {
        return value_of(before[at[i]], n);
    }
    unsigned size(unsigned i) const { return unsigned(before[at[i]].size()); }

    // The value is not cut to the target. What throws changes nothing.
    template <class Run>
    void expect(const std::string& error, const mpz_class& value, const mpz_class& result,
                Run run, const mpz_class* rest = nullptr,
                int line = __builtin_LINE()) const
    {
        big_uint x[] = {guarded(before[0]), guarded(before[1]), guarded(before[2]),
                        guarded(before[3])};
        Objects o{x[at[0]], x[at[1]], x[at[2]], x[at[3]]};
        long got = 0;
        const std::string thrown = error_of([&] {
            if constexpr (std::is_void_v<decltype(run(o))>)
                run(o);
            else
                got = static_cast<long>(run(o));
        });
        EXPECT_TRUE(error.empty() ? thrown.empty() && got == result
                                  : thrown.starts_with(error))
            << "line " << line << ": returned " << got << ", threw " << thrown;
        for (unsigned i = 0; i < 4; ++i) {
            const mpz_class* const z = i == at[0] ? &value : i == at[3] ? rest : nullptr;
            const bool same = !error.empty() || z == nullptr;
            EXPECT_TRUE(holds(x[i], same ? before[i] : words_of(*z, before[i].size())))
                << "line " << line << ": objects " << at[0] << at[1] << at[2] << at[3]
                << ", object " << i << " was " << value_of(before[i]).get_str(16);
        }
    }

    Words before[4];
    unsigned at[4];
};

void expect_operations(const Setting& s)
{
    const mpz_class t = s.value(0), a = s.value(1), b = s.value(2),
                    sum = t + s.value(2, s.size(0));
    const unsigned n = s.size(0), na = s.size(1), nb = s.size(2);
    const unsigned w = s.before[s.at[2]][0], d = std::max(w, 1U);
    const auto high = [n](const mpz_class& z) { return mpz_class(z >> (32 * n)); };
    const auto unless = [](bool valid, const char* name) {
        return valid ? "" : INVALID + name;
    };
    const bool apart = s.at[0] != s.at[1] && s.at[0] != s.at[2];

    s.expect("", a + b, high(a + b) != 0, [](auto& o) { return o.t.add(o.a, o.b); });
    s.expect(unless(nb >= n, "add"), sum, high(sum),
             [](auto& o) { return o.t.add(o.b); });
    s.expect("", t + w, high(t + w), [](auto& o) { return o.t.add(o.b[0]); });
    s.expect("", t + 1, high(t + 1), [](auto& o) { return o.t.increment(); });
    s.expect("", a - b, std::clamp<mpz_class>(high(a - b), -2, 2),
             [](auto& o) { return o.t.subtract(o.a, o.b); });
    s.expect(unless(nb <= n, "subtract"), t - b, high(t - b),
             [](auto& o) { return o.t.subtract(o.b); });
    s.expect("", t - 1, t == 0, [](auto& o) { return o.t.decrement(); });

    s.expect("", t * w, high(t * w), [](auto& o) { return o.t.multiply(o.b[0]); });
    s.expect("", t * 10, high(t * 10), [](auto& o) { return o.t.multiply_by_10(); });
    s.expect("", t * 100, high(t * 100), [](auto& o) { return o.t.multiply_by_100(); });
    s.expect(unless(n >= na + nb && apart, "multiply"), a * b, 0,
             [](auto& o) { o.t.multiply(o.a, o.b); });
    s.expect(w == 0 ? BY_ZERO : "", t / d, t % d,
             [](auto& o) { return o.t.divide(o.b[0]); });
    s.expect("", t / 10, t % 10, [](auto& o) { return o.t.divide_by_10(); });

    s.expect("", t * 2, 0, [](auto& o) { o.t.shift_left(); });
    s.expect("", t / 2, 0, [](auto& o) { o.t.shift_right(); });
    s.expect(unless(na >= n && nb >= n, "bit_and"), a & b, 0,
             [](auto& o) { o.t.bit_and(o.a, o.b); });
    s.expect(unless(na >= n, "bit_not"), -1 - a, 0, [](auto& o) { o.t.bit_not(o.a); });
}

void expect_shifts(const Setting& s, unsigned k)
{
    const mpz_class t = s.value(0), a = s.value(1);
    const unsigned far = std::min(k, 32 * (s.size(0) + s.size(1)));  // nothing is left
    s.expect("", t << far, 0, [k](auto& o) { o.t.shift_left(k); });
    s.expect("", t >> far, 0, [k](auto& o) { o.t.shift_right(k); });
    s.expect("", a << far, 0, [k](auto& o) { o.t.shift_left(o.a, k); });
    s.expect("", a >> far, 0, [k](auto& o) { o.t.shift_right(o.a, k); });
}

// By the low words: all of them in the overloads without counts.
void expect_division(const Setting& s, bool counts, unsigned na, unsigned nb)
{
    na = counts ? na : s.size(1);
    nb = counts ? nb : s.size(2);
    const mpz_class a = s.value(1, na), b = s.value(2, nb), d = b == 0 ? mpz_class(1) : b;
    const mpz_class rest = a % d;
    std::string error = b == 0 ? BY_ZERO : "";
    const bool has_words = na != 0 && na <= s.size(1) && nb != 0 && nb <= s.size(2);
    if (!has_words || (b != 0 && s.size(0) + significant(b) < significant(a) + 1))
        error = INVALID + "divide";
    s.expect(error, a / d, 0, [&](auto& o) {
        counts ? o.t.divide(o.a, na, o.b, nb) : o.t.divide(o.a, o.b);
    });
    if (error.empty() && (s.size(3) < significant(b) || s.at[3] == s.at[0]))
        error = INVALID + "divide";
    const auto run = [&](auto& o) {
        counts ? o.t.divide(o.a, na, o.b, nb, o.r) : o.t.divide(o.a, o.b, o.r);
    };
    s.expect(error, a / d, 0, run, &rest);
}

constexpr unsigned ALIASES[][4] = {
    {0, 1, 2, 3}, {1, 1, 2, 3}, {2, 1, 2, 3}, {0, 1, 1, 3}, {1, 1, 1, 3}, {0, 1, 2, 1},
    {0, 1, 2, 2}, {1, 1, 2, 2}, {2, 1, 2, 1}, {0, 1, 1, 1}, {0, 1, 2, 0}, {1, 1, 1, 1},
};

Setting make(Random& random, const unsigned (&sizes)[4], const unsigned (&at)[4])
{
    Setting s{{}, {at[0], at[1], at[2], at[3]}};
    for (unsigned i = 0; i < 4; ++i)
        s.before[i] = random.words(sizes[i]);
    return s;
}

const kiv::words::Kernels* const SETS[] = {
    &kiv::words::portable_kernels,
#if defined(__x86_64__)
    &kiv::words::adx_kernels,
    &kiv::words::ifma_kernels,
#endif
};

// With each set of inner loops that the machine has.
class Arithmetic : public testing::TestWithParam<int> {
    void SetUp() override { use_kernels(*SETS[GetParam()]); }
    void TearDown() override { use_kernels(before); }
    const kiv::words::Kernels& before = kiv::words::kernels();

protected:
    Random random;
};

TEST_P(Arithmetic, AllSizes)
{
    for (unsigned i = 0; i < 2 * 9 * 9 * 9 && !HasFailure(); ++i)
        for (const auto& at : ALIASES) {
            const unsigned n = 1 + i % 9, na = 1 + i / 9 % 9, nb = 1 + i / 81 % 9;
            const Setting s = make(random, {n, na, nb, 1 + random.below(9)}, at);
            expect_operations(s);
            expect_division(s, i % 2 == 0, random.below(na + 2), random.below(nb + 2));
            expect_division(make(random, {na, na, nb, nb}, at), false, 0, 0);
        }
}

TEST_P(Arithmetic, ManyWords)
{
    for (unsigned i = 1; i < 300 && !HasFailure(); ++i) {
        const unsigned na = 1 + random.below(i), nb = 1 + random.below(150);
        const unsigned n[] = {na, nb, na + nb, std::max(na, nb), 1 + random.below(300)};
        const Setting s = make(random, {n[i % 5], na, nb, nb}, ALIASES[random.below(12)]);
        expect_operations(s);
        expect_division(s, false, 0, 0);
        expect_shifts(s, random.below(32 * (na + nb)));
    }
}

// Sides of as many limbs as a block of a product has, or more, and odd top words.
TEST_P(Arithmetic, SeveralBlocks)
{
    static constexpr unsigned SIZES[][2] = {{512, 512},  {513, 514},  {511, 577},
                                            {1025, 600}, {600, 1025}, {1030, 1029}};
    for (unsigned i = 0; i < 72 && !HasFailure(); ++i) {
        const auto [na, nb] = SIZES[i % 6];
        Setting s = make(random, {na + nb, na, nb, nb}, ALIASES[0]);
        if (i < 6)  // the longest carries
            s.before[1].assign(na, ~0U), s.before[2].assign(nb, ~0U);
        expect_operations(s);
        expect_division(s, false, 0, 0);
        s.before[1] = words_of(s.value(1) * s.value(2) + i / 6 % 3 - 1, na + nb);
        expect_division(s, false, 0, 0);
    }
}

TEST(Shifts, AllCounts)
{
    Random random;
    for (unsigned i = 0; i < 9 * 9 * 360 && !HasFailure(); ++i)
        for (const unsigned k : {i / 81, 0U - i / 81})
            expect_shifts(make(random, {1 + i % 9, 1 + i / 9 % 9, 1, 1}, ALIASES[k % 2]),
                          k);
}

// Counts how often in schoolbook division, in digits of so many bits, the guess from the
// top digit of the divisor is too large by one or two, and the one from two digits is
// (Knuth, The Art of Computer Programming 2, 4.3.1).
void count_rare_branches(mpz_class u, mpz_class v, unsigned bits, unsigned (&taken)[3])
{
    const auto length = mpz_sizeinbase(v.get_mpz_t(), 2), n = (length + bits - 1) / bits;
    u <<= n * bits - length;  // the top digit of v gets its top bit
    v <<= n * bits - length;
    const mpz_class base = mpz_class(1) << bits, two = v >> ((n - 2) * bits);
    for (auto j = mpz_sizeinbase(u.get_mpz_t(), 2) / bits + 1; j-- > 0;) {
        const mpz_class digit = (u >> (j * bits)) / v, part = u >> ((j + n - 2) * bits);
        const mpz_class guess = part / base / (two / base), better = part / two;
        taken[0] += guess == better + 1;
        taken[1] += guess == better + 2;
        taken[2] += better == digit + 1;
        u -= (digit * v) << (j * bits);
    }
}

TEST_P(Arithmetic, RareBranchesOfDivision)
{
    for (const unsigned bits : {32U, 64U}) {
        const mpz_class base = mpz_class(1) << bits, half = base / 2;
        const mpz_class hard[] = {0, 1, half - 1, half, base - 2, base - 1};
        unsigned taken[3] = {};
        for (unsigned i = 0; i < 6000 && !HasFailure(); ++i) {
            mpz_class u, v = half + hard[random.below(3)];
            for (unsigned j = random.below(3); j < 6; ++j)
                u = u * base + hard[random.below(6)];
            for (unsigned j = random.below(2); j < 3; ++j)
                v = v * base + hard[random.below(6)];
            v >>= i % 3 == 0 ? random.below(bits) : 0;  // to be shifted back
            const unsigned n = 6 * bits / 32;
            const Words x[] = {words_of(u, n), words_of(v, n)};
            expect_division({{Words(n), x[0], x[1], Words(n)}, {0, 1, 2, 3}}, false, 0,
                            0);
            count_rare_branches(u, v, bits, taken);
        }
        EXPECT_GT(*std::min_element(taken, taken + 3), 100U);
    }
}

int number_of_sets()
{
    using namespace kiv::platform;
    return !cpu_has_adx() ? 1 : cpu_has_avx512_ifma() ? 3 : 2;
}
INSTANTIATE_TEST_SUITE_P(Kernels, Arithmetic, testing::Range(0, number_of_sets()));

TEST(Kernels, PortableSums)
{
    using namespace kiv::words;
    Random random;
    for (unsigned n = 0; n < 5000 && !HasFailure(); ++n) {
        const Words a = random.words(42), b = random.words(42);
        Words x = a, y = a;
        const auto expect_same = [&](auto count) {
            EXPECT_EQ(add_limbs_portable(x.data(), a.data(), b.data(), count),
                      add_limbs(y.data(), a.data(), b.data(), count));
            EXPECT_EQ(subtract_limbs_portable(x.data(), x.data(), a.data(), count),
                      subtract_limbs(y.data(), y.data(), a.data(), count));
            EXPECT_EQ(x, y) << count << " limbs";
        };
        // A count that the compiler knows lets operands of assembly share a register.
        [&]<unsigned... N>(std::integer_sequence<unsigned, N...>)
        {
            (expect_same(std::integral_constant<unsigned, N>()), ...,
             expect_same(n % 11));
        }
        (std::make_integer_sequence<unsigned, 21>());
    }
}

}  // namespace
