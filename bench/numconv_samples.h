// Texts of numbers for the benchmarks of parsing and formatting, and how they measure: an
// iteration is one number of a thousand.

#ifndef KIVXX_BENCH_NUMCONV_SAMPLES_H
#define KIVXX_BENCH_NUMCONV_SAMPLES_H

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <kiv/char16.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace kivbench {

using Random = std::mt19937_64;

inline unsigned below(Random& random, unsigned n)
{
    return static_cast<unsigned>(random() % n);
}

inline double fraction(Random& random)
{
    return static_cast<double>(random() >> 11) * 0x1p-53;
}

inline std::string digits(Random& random, unsigned n)
{
    std::string text(1, static_cast<char>('1' + below(random, 9)));
    while (text.size() < n)
        text += static_cast<char>('0' + below(random, 10));
    return text;
}

// Any finite value, in the fewest digits.
template <class T>
std::string any_bits(Random& random)
{
    T value;
    do {
        const std::uint64_t bits = random();
        if constexpr (sizeof value == 4)
            value = std::bit_cast<T>(static_cast<std::uint32_t>(bits));
        else
            value = std::bit_cast<T>(bits);
    } while (!std::isfinite(value));
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

// 1 to 6 digits, the point anywhere or nowhere.
inline std::string few_digits(Random& random)
{
    const std::string text = digits(random, 1 + below(random, 6));
    const std::size_t point = below(random, static_cast<unsigned>(text.size()) + 1);
    const std::string whole = point == 0 ? "0" : text.substr(0, point);
    return point == text.size() ? whole : whole + '.' + text.substr(point);
}

inline std::string seventeen_digits(Random& random)
{
    return fmt::format("{:.17g}", fraction(random));
}

inline std::string many_digits(Random& random)
{
    const int exponent = static_cast<int>(below(random, 61)) - 30;
    return digits(random, 1) + '.' + digits(random, 24) + 'e' + std::to_string(exponent);
}

inline std::string coordinate(Random& random)
{
    return fmt::format("{:.{}f}", 360 * fraction(random) - 180, 6 + below(random, 2));
}

// As many bits as it happens.
template <class T>
std::string any_width(Random& random)
{
    const auto bits = static_cast<std::make_unsigned_t<T>>(random());
    const unsigned width = below(random, sizeof(T) * 8);
    return std::to_string(static_cast<T>(bits) >> width);
}

struct Kind {
    const char* name;
    std::string (*make)(Random&);
};

template <class T>
constexpr Kind KINDS[] = {{"any width", any_width<T>}};
template <>
constexpr Kind KINDS<double>[] = {
    {"any bits", any_bits<double>},
    {"1-6 dig.", few_digits},
    {"17 dig.", seventeen_digits},
    {"25 dig.", many_digits},
    {"map", coordinate},
};
template <>
constexpr Kind KINDS<float>[] = {
    {"any bits", any_bits<float>}, {"1-6 dig.", few_digits}, {"map", coordinate}};

template <class T>
T c_library(const char* text, const char* = nullptr)
{
    if constexpr (std::is_same_v<T, float>)
        return std::strtof(text, nullptr);
    else if constexpr (std::is_same_v<T, double>)
        return std::strtod(text, nullptr);
    else
        return static_cast<T>(std::strtoll(text, nullptr, 10));
}

// --- Measuring -----------------------------------------------------------------------

// More than branch predictors learn by heart, which they do with a thousand.
constexpr unsigned COUNT = 30000;

template <class T>
struct Sample {
    explicit Sample(const Kind& kind)
    {
        Random random;
        while (values.size() < COUNT) {
            starts.push_back(text.size());
            text += kind.make(random) + '\0';
            values.push_back(c_library<T>(&text[starts.back()]));
        }
        starts.push_back(text.size());
        units.assign(text.begin(), text.end());
    }
    template <class CharT>
    const CharT* text_as() const
    {
        if constexpr (sizeof(CharT) == 1)
            return text.data();
        else
            return units.data();
    }

    std::string text;  // one after the other, each with a terminator
    kiv::ustring units;
    std::vector<std::size_t> starts;
    std::vector<T> values;
};

// `run` makes something of the i-th element, `right` compares it.
template <class Run, class Right>
void add(const std::string& subject, const char* peer, const Kind& kind, Run run,
         Right right)
{
    const std::string name =
        subject + '/' + peer + '/' + kind.name + '/' + std::to_string(COUNT);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        for (unsigned i = 0; i < COUNT; ++i)
            if (!right(i, run(i)))
                return state.SkipWithError("wrong result");
        while (state.KeepRunningBatch(COUNT))
            for (unsigned i = 0; i < COUNT; ++i)
                benchmark::DoNotOptimize(run(i));
        state.SetItemsProcessed(state.iterations());
    });
}

// Calls F as if by its name, so that what is inline can be inlined.
template <auto F>
constexpr std::integral_constant<decltype(F), F> direct;

}  // namespace kivbench

#endif
