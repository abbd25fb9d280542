// big_uint beside GMP's mpn and mpz and Boost's cpp_int: the same operands for all,
// each result compared once with that of mpz. Outputs exist where the peer lets them.

#include <benchmark/benchmark.h>
#include <gmpxx.h>
#include <kiv/big_uint.h>

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Words = std::vector<std::uint32_t>;
using boost::multiprecision::cpp_int;
using kiv::big_uint;
constexpr unsigned SHIFT = 13;

mpz_class from_limbs(const auto* limbs, std::size_t n)
{
    mpz_class number;
    mpz_import(number.get_mpz_t(), n, -1, sizeof *limbs, 0, 0, limbs);
    return number;
}

// --- Peers: each computes with the i-th operands of a Workplace ----------------------

struct Kivxx {
    using Number = big_uint;
    static Number make(const Words& words)
    {
        Number number = big_uint::make_uninitialized(static_cast<unsigned>(words.size()));
        std::copy(words.begin(), words.end(), number.data());
        return number;
    }
    static mpz_class value(const Number& a) { return from_limbs(a.data(), a.size()); }
    static void add(auto& w, unsigned i) { w.r.add(w.a[i], w.b[i]); }
    // What has a fixed width multiplies in place, the others into r.
    static Number& multiply_word(auto& w, unsigned i)
    {
        w.a[i].multiply(w.word[i]);
        return w.a[i];
    }
    static void multiply(auto& w, unsigned i) { w.r.multiply(w.a[i], w.b[i]); }
    static void divide(auto& w, unsigned i) { w.r.divide(w.twice[i], w.b[i], w.rest); }
    static void shift(auto& w, unsigned i) { w.r.shift_left(w.a[i], SHIFT); }
    static void to_text(auto& w, unsigned i) { w.text = w.a[i].to_string(); }
    static const Number& pow5(Number& r, unsigned e) { return big_uint::pow5(e, &r); }
    static const Number& pow10(Number& r, unsigned e) { return big_uint::pow10(e, &r); }
    static int ilog10(auto& w, unsigned i) { return w.a[i].ilog10(); }
};

struct Mpn {
    using Number = std::vector<mp_limb_t>;
    static Number make(const Words& words)
    {
        Number number((words.size() + 1) / 2);
        for (std::size_t i = 0; i < words.size(); ++i)
            number[i / 2] |= mp_limb_t{words[i]} << i % 2 * 32;
        return number;
    }
    static mpz_class value(const Number& a) { return from_limbs(a.data(), a.size()); }
    static mp_size_t size(const Number& a) { return static_cast<mp_size_t>(a.size()); }
    static void add(auto& w, unsigned i)
    {
        mpn_add_n(w.r.data(), w.a[i].data(), w.b[i].data(), size(w.a[i]));
    }
    static Number& multiply_word(auto& w, unsigned i)
    {
        mpn_mul_1(w.a[i].data(), w.a[i].data(), size(w.a[i]), w.word[i]);
        return w.a[i];
    }
    static void multiply(auto& w, unsigned i)
    {
        mpn_mul_n(w.r.data(), w.a[i].data(), w.b[i].data(), size(w.a[i]));
    }
    static void divide(auto& w, unsigned i)
    {
        mpn_tdiv_qr(w.r.data(), w.rest.data(), 0, w.twice[i].data(), size(w.twice[i]),
                    w.b[i].data(), size(w.b[i]));
    }
    static void shift(auto& w, unsigned i)
    {
        mpn_lshift(w.r.data(), w.a[i].data(), size(w.a[i]), SHIFT);
    }
    // The peer destroys its operand and gives the values of the digits.
    static void to_text(auto& w, unsigned i)
    {
        mpn_copyi(w.scratch.data(), w.a[i].data(), size(w.a[i]));
        auto* const digits = reinterpret_cast<unsigned char*>(w.text.data());
        const std::size_t n = mpn_get_str(digits, 10, w.scratch.data(), size(w.a[i]));
        for (std::size_t k = 0; k < n; ++k)
            digits[k] = static_cast<unsigned char>(digits[k] + '0');
        digits[n] = 0;
    }
};

// The operators of both compute into r.
template <class N>
struct Operators {
    using Number = N;
    static void add(auto& w, unsigned i) { w.r = w.a[i] + w.b[i]; }
    static Number& multiply_word(auto& w, unsigned i) { return w.r = w.a[i] * w.word[i]; }
    static void multiply(auto& w, unsigned i) { w.r = w.a[i] * w.b[i]; }
    static void shift(auto& w, unsigned i) { w.r = w.a[i] << SHIFT; }
};

struct Mpz : Operators<mpz_class> {
    static Number make(const Words& a) { return from_limbs(a.data(), a.size()); }
    static mpz_class value(const Number& a) { return a; }
    static void divide(auto& w, unsigned i)
    {
        mpz_tdiv_qr(w.r.get_mpz_t(), w.rest.get_mpz_t(), w.twice[i].get_mpz_t(),
                    w.b[i].get_mpz_t());
    }
    static void to_text(auto& w, unsigned i)
    {
        mpz_get_str(w.text.data(), 10, w.a[i].get_mpz_t());
    }
    static const Number& pow5(Number& r, unsigned long e) { return power(r, 5, e); }
    static const Number& pow10(Number& r, unsigned long e) { return power(r, 10, e); }
    static const Number& power(Number& r, unsigned long base, unsigned long e)
    {
        mpz_ui_pow_ui(r.get_mpz_t(), base, e);
        return r;
    }
    // The peer's count of digits may be one too many.
    static int ilog10(auto& w, unsigned i)
    {
        const std::size_t e = mpz_sizeinbase(w.a[i].get_mpz_t(), 10) - 1;
        return static_cast<int>(e) - (w.a[i] < pow10(w.scratch, e) ? 1 : 0);
    }
};

struct CppInt : Operators<cpp_int> {
    static Number make(const Words& words)
    {
        Number number;
        return import_bits(number, words.begin(), words.end(), 32, false);
    }
    static mpz_class value(const Number& a) { return mpz_class(a.str()); }
    static void divide(auto& w, unsigned i)
    {
        divide_qr(w.twice[i], w.b[i], w.r, w.rest);
    }
    static void to_text(auto& w, unsigned i) { w.text = w.a[i].str(); }
    static const Number& pow5(Number& r, unsigned e) { return r = pow(Number(5), e); }
    static const Number& pow10(Number& r, unsigned e) { return r = pow(Number(10), e); }
};

// --- Measuring -----------------------------------------------------------------------

// Operands and room for results. Many operands in turn, so that no branch is predicted
// from the last call alone; at most sizes they fit into the first-level cache.
template <class Peer>
struct Workplace : Peer {
    using Number = typename Peer::Number;
    Workplace(unsigned words, unsigned target_words)
        : r(Peer::make(Words(target_words))),
          rest(Peer::make(Words(words))),
          scratch(rest),
          text(10 * words + 2, '\0')
    {
        std::mt19937 random(words);
        const auto number = [&](unsigned size) {
            Words value(size);
            std::generate(value.begin(), value.end(), std::ref(random));
            value.back() |= 1;
            return Peer::make(value);
        };
        while (a.size() < std::clamp(2048 / words, 4U, 64U)) {
            a.push_back(number(words));
            b.push_back(number(words));
            twice.push_back(number(2 * words));
            word.push_back(static_cast<unsigned>(random()) | 1);
        }
    }

    std::vector<Number> a, b, twice;  // `twice` has two times the words
    Words word;
    Number r, rest, scratch;
    const Number* result = &r;
    std::string text;
    int log = 0;
};

// Of a result count the words of the target: what is above, a fixed width drops.
template <class Peer, class Run>
void measure(benchmark::State& state, unsigned words, unsigned target_words, Run run)
{
    Workplace<Peer> at(words, target_words);
    Workplace<Mpz> gmp(words, target_words);
    const mpz_class modulus = mpz_class(1) << 32 * target_words;
    const auto count = static_cast<unsigned>(at.a.size());
    for (unsigned i = 0; i < count; ++i) {
        run(at, i);
        run(gmp, i);
        const mpz_class difference = Peer::value(*at.result) - *gmp.result;
        if (difference % modulus != 0 || Peer::value(at.rest) != gmp.rest ||
            std::strcmp(at.text.c_str(), gmp.text.c_str()) != 0 || at.log != gmp.log)
            return state.SkipWithError("wrong result");
    }
    benchmark::DoNotOptimize(&at);
    while (state.KeepRunningBatch(count))
        for (unsigned i = 0; i < count; ++i) {
            run(at, i);
            benchmark::ClobberMemory();
        }
}

template <class Peer>
void add_peer(const std::string& peer)
{
    unsigned size = 0, words = 0;  // of the next one
    const auto add = [&](const std::string& subject, unsigned target_words, auto run) {
        const std::string name = subject + '/' + std::to_string(size);
        benchmark::RegisterBenchmark(name.c_str(), [=](auto& state) {
            measure<Peer>(state, words, target_words, run);
        });
    };
    const std::string tail = '/' + peer + "/words";
    for (const unsigned n : {2U, 8U, 32U, 128U, 1024U}) {
        size = words = n;
        add("add" + tail, n, [](auto& w, unsigned i) { w.add(w, i); });
        add("multiply by a word" + tail, n,
            [](auto& w, unsigned i) { w.result = &w.multiply_word(w, i); });
        add("multiply" + tail, 2 * n, [](auto& w, unsigned i) { w.multiply(w, i); });
        add("divide" + tail, n + 1, [](auto& w, unsigned i) { w.divide(w, i); });
        add("shift left" + tail, n, [](auto& w, unsigned i) { w.shift(w, i); });
        add("decimal text" + tail, n, [](auto& w, unsigned i) { w.to_text(w, i); });
        if constexpr (!std::is_same_v<Peer, Mpn> && !std::is_same_v<Peer, CppInt>)
            add("ilog10" + tail, n, [](auto& w, unsigned i) { w.log = w.ilog10(w, i); });
    }
    words = 32;
    const unsigned room = 1024;  // words, for all of the powers
    if constexpr (!std::is_same_v<Peer, Mpn>)
        for (const unsigned e : {20U, 100U, 1000U, 8000U}) {
            size = e;
            add("pow5/" + peer + "/exponent", room,
                [e](auto& w, unsigned i) { w.result = &w.pow5(w.r, e - i % 4); });
            add("pow10/" + peer + "/exponent", room,
                [e](auto& w, unsigned i) { w.result = &w.pow10(w.r, e - i % 4); });
        }
}

[[maybe_unused]] const bool added = [] {
    add_peer<Kivxx>("kivxx");
    add_peer<Mpn>("mpn");
    add_peer<Mpz>("mpz");
    add_peer<CppInt>("cpp_int");
    return true;
}();

}  // namespace
