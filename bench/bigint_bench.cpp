// big_uint beside GMP's mpn and mpz and Boost's cpp_int: the same operands for all,
// each result compared once with GMP's.

#include <benchmark/benchmark.h>
#include <gmpxx.h>
#include <kiv/big_uint.h>

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned SHIFT = 13;

// --- Operands ------------------------------------------------------------------------

template <class Limb>
mpz_class from_limbs(const Limb* limbs, std::size_t n)
{
    mpz_class value;
    mpz_import(value.get_mpz_t(), n, -1, sizeof(Limb), 0, 0, limbs);
    return value;
}

template <class Limb>
std::vector<Limb> to_limbs(const mpz_class& value)
{
    const std::size_t bits = 8 * sizeof(Limb);
    std::vector<Limb> limbs((mpz_sizeinbase(value.get_mpz_t(), 2) + bits - 1) / bits);
    mpz_export(limbs.data(), nullptr, -1, sizeof(Limb), 0, 0, value.get_mpz_t());
    return limbs;
}

// Many operands in turn, so that no branch is predicted from the last call alone;
// together they fit into the first-level cache.
struct Operands {
    explicit Operands(unsigned words) : count(std::clamp(2048 / words, 4U, 64U))
    {
        std::mt19937 random(words);
        const auto number = [&](unsigned size) {
            std::vector<std::uint32_t> value(size);
            std::generate(value.begin(), value.end(), std::ref(random));
            value.back() |= 1;
            return from_limbs(value.data(), size);
        };
        for (unsigned i = 0; i < count; ++i) {
            a.push_back(number(words));
            b.push_back(number(words));
            dividend.push_back(number(2 * words));
            word.push_back(static_cast<unsigned>(random()) | 1);
        }
    }

    unsigned count;
    std::vector<mpz_class> a, b, dividend;
    std::vector<unsigned> word;
};

// --- Peers ---------------------------------------------------------------------------

struct Kivxx {
    using Number = kiv::big_uint;
    // What has a fixed width multiplies by a word in place, the others into a target.
    static constexpr bool IN_PLACE = true;

    static Number target(unsigned words) { return Number::make_uninitialized(words); }
    static Number make(const mpz_class& value)
    {
        const auto words = to_limbs<std::uint32_t>(value);
        Number number = target(static_cast<unsigned>(words.size()));
        std::copy(words.begin(), words.end(), number.data());
        return number;
    }
    static mpz_class value(const Number& a) { return from_limbs(a.data(), a.size()); }
    static void add(Number& r, const Number& a, const Number& b) { r.add(a, b); }
    static void multiply(Number&, Number& a, unsigned w) { a.multiply(w); }
    static void multiply(Number& r, const Number& a, const Number& b) { r.multiply(a, b); }
    static void divide(Number& q, Number& r, const Number& a, const Number& b)
    {
        q.divide(a, b, r);
    }
    static void shift(Number& r, const Number& a) { r.shift_left(a, SHIFT); }
    static void text(std::string& out, const Number& a, Number&) { out = a.to_string(); }
    static const Number& pow5(Number& r, unsigned e) { return Number::pow5(e, &r); }
    static const Number& pow10(Number& r, unsigned e) { return Number::pow10(e, &r); }
    static unsigned long ilog10(Number&, const Number& a)
    {
        return static_cast<unsigned long>(a.ilog10());
    }
};

struct Mpn {
    using Number = std::vector<mp_limb_t>;
    static constexpr bool IN_PLACE = true;

    static Number target(unsigned words) { return Number((words + 1) / 2); }
    static Number make(const mpz_class& value) { return to_limbs<mp_limb_t>(value); }
    static mpz_class value(const Number& a) { return from_limbs(a.data(), a.size()); }
    static mp_size_t size(const Number& a) { return static_cast<mp_size_t>(a.size()); }
    static void add(Number& r, const Number& a, const Number& b)
    {
        mpn_add_n(r.data(), a.data(), b.data(), size(a));
    }
    static void multiply(Number&, Number& a, unsigned w)
    {
        mpn_mul_1(a.data(), a.data(), size(a), w);
    }
    static void multiply(Number& r, const Number& a, const Number& b)
    {
        mpn_mul_n(r.data(), a.data(), b.data(), size(a));
    }
    static void divide(Number& q, Number& r, const Number& a, const Number& b)
    {
        mpn_tdiv_qr(q.data(), r.data(), 0, a.data(), size(a), b.data(), size(b));
    }
    static void shift(Number& r, const Number& a)
    {
        mpn_lshift(r.data(), a.data(), size(a), SHIFT);
    }
    // Destroys its operand and gives the values of the digits.
    static void text(std::string& out, const Number& a, Number& scratch)
    {
        mpn_copyi(scratch.data(), a.data(), size(a));
        auto* const digits = reinterpret_cast<unsigned char*>(out.data());
        const std::size_t n = mpn_get_str(digits, 10, scratch.data(), size(a));
        for (std::size_t i = 0; i < n; ++i)
            digits[i] = static_cast<unsigned char>(digits[i] + '0');
        digits[n] = 0;
    }
};

struct Mpz {
    using Number = mpz_class;
    static constexpr bool IN_PLACE = false;

    static Number target(unsigned words)
    {
        Number number;
        mpz_realloc2(number.get_mpz_t(), 32UL * words + 64);
        return number;
    }
    static Number make(const mpz_class& value) { return value; }
    static mpz_class value(const Number& a) { return a; }
    static void add(Number& r, const Number& a, const Number& b)
    {
        mpz_add(r.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
    }
    static void multiply(Number& r, const Number& a, unsigned w)
    {
        mpz_mul_ui(r.get_mpz_t(), a.get_mpz_t(), w);
    }
    static void multiply(Number& r, const Number& a, const Number& b)
    {
        mpz_mul(r.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
    }
    static void divide(Number& q, Number& r, const Number& a, const Number& b)
    {
        mpz_tdiv_qr(q.get_mpz_t(), r.get_mpz_t(), a.get_mpz_t(), b.get_mpz_t());
    }
    static void shift(Number& r, const Number& a)
    {
        mpz_mul_2exp(r.get_mpz_t(), a.get_mpz_t(), SHIFT);
    }
    static void text(std::string& out, const Number& a, Number&)
    {
        mpz_get_str(out.data(), 10, a.get_mpz_t());
    }
    static const Number& pow5(Number& r, unsigned e) { return power(r, 5, e); }
    static const Number& pow10(Number& r, unsigned e) { return power(r, 10, e); }
    static const Number& power(Number& r, unsigned base, unsigned e)
    {
        mpz_ui_pow_ui(r.get_mpz_t(), base, e);
        return r;
    }
    // GMP's count of digits may be one too many.
    static unsigned long ilog10(Number& r, const Number& a)
    {
        const unsigned long e = mpz_sizeinbase(a.get_mpz_t(), 10) - 1;
        return a < pow10(r, static_cast<unsigned>(e)) ? e - 1 : e;
    }
};

struct CppInt {
    using Number = boost::multiprecision::cpp_int;
    static constexpr bool IN_PLACE = false;

    static Number target(unsigned words)
    {
        Number number;
        number.backend().resize(words / 2 + 1, words / 2 + 1);
        return number;
    }
    static Number make(const mpz_class& value)
    {
        const auto limbs = to_limbs<std::uint64_t>(value);
        Number number;
        import_bits(number, limbs.begin(), limbs.end(), 64, false);
        return number;
    }
    static mpz_class value(const Number& a)
    {
        return from_limbs(a.backend().limbs(), a.backend().size());
    }
    static void add(Number& r, const Number& a, const Number& b) { r = a + b; }
    static void multiply(Number& r, const Number& a, unsigned w) { r = a * w; }
    static void multiply(Number& r, const Number& a, const Number& b) { r = a * b; }
    static void divide(Number& q, Number& r, const Number& a, const Number& b)
    {
        divide_qr(a, b, q, r);
    }
    static void shift(Number& r, const Number& a) { r = a << SHIFT; }
    static void text(std::string& out, const Number& a, Number&) { out = a.str(); }
    static const Number& pow5(Number& r, unsigned e) { return r = pow(Number(5), e); }
    static const Number& pow10(Number& r, unsigned e) { return r = pow(Number(10), e); }
};

// --- Measuring -----------------------------------------------------------------------

// The operands as a peer has them, and room for its results.
template <class Peer>
struct Workplace {
    Workplace(const Operands& operands, unsigned words, unsigned target_words)
        : word(operands.word),
          r(Peer::target(target_words)),
          remainder(Peer::target(words)),
          text(10 * words + 2, '\0')
    {
        for (unsigned i = 0; i < operands.count; ++i) {
            a.push_back(Peer::make(operands.a[i]));
            b.push_back(Peer::make(operands.b[i]));
            dividend.push_back(Peer::make(operands.dividend[i]));
        }
    }

    std::vector<typename Peer::Number> a, b, dividend;
    std::vector<unsigned> word;
    typename Peer::Number r, remainder;
    const typename Peer::Number* power = nullptr;
    std::string text;
    unsigned long log = 0;
};

// Of the result, the low target_words count: what is above them a fixed width drops.
template <class Peer, class Run, class Result, class Expected>
void add(const char* subject, const std::string& tail, unsigned words,
         unsigned target_words, Run run, Result result, Expected expected)
{
    const auto measure = [=](benchmark::State& state) {
        const Operands operands(words);
        Workplace<Peer> at(operands, words, target_words);
        const mpz_class modulus = mpz_class(1) << 32 * target_words;
        for (unsigned i = 0; i < operands.count; ++i) {
            run(at, i);
            const mpz_class difference = result(at, i) - expected(operands, i);
            if (difference % modulus != 0)
                return state.SkipWithError("wrong result");
        }
        benchmark::DoNotOptimize(&at);
        while (state.KeepRunningBatch(operands.count))
            for (unsigned i = 0; i < operands.count; ++i) {
                run(at, i);
                benchmark::ClobberMemory();
            }
    };
    benchmark::RegisterBenchmark((subject + tail).c_str(), measure);
}

