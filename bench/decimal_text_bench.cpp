// Decimals to and from text beside doubles of the same digits: the double's functions
// are the peer, so that a user sees what exact decimals cost.

#include <benchmark/benchmark.h>
#include <kiv/decimal.h>
#include <kiv/numconv.h>

#include <memory>
#include <string>
#include <vector>

#include "numconv_samples.h"

namespace {

using namespace kivbench;

// 12345.67
std::string price(Random& random)
{
    return digits(random, 1 + below(random, 5)) + '.' + digits(random, 2);
}

std::string sixteen_digits(Random& random)
{
    return digits(random, 1) + '.' + digits(random, 15);
}

std::string with_exponent(Random& random)
{
    const int exponent = static_cast<int>(below(random, 401)) - 200;
    return digits(random, 1) + '.' + digits(random, 15) + 'e' + std::to_string(exponent);
}

constexpr Kind DECIMAL_KINDS[] = {{"1-6 dig.", few_digits},
                                  {"prices", price},
                                  {"16 dig.", sixteen_digits},
                                  {"16 + exp.", with_exponent}};

kiv::decimal::decimal64 parse(const std::string& text, kiv::decimal::decimal64*)
{
    return kiv::stod64_c(text);
}
kiv::decimal::decimal128 parse(const std::string& text, kiv::decimal::decimal128*)
{
    return kiv::stod128_c(text);
}
double parse(const std::string& text, double*)
{
    return kiv::stod_c(text);
}

template <class T>
struct Texts {
    explicit Texts(const Kind& kind)
    {
        Random random;
        while (texts.size() < COUNT) {
            texts.push_back(kind.make(random));
            values.push_back(parse(texts.back(), static_cast<T*>(nullptr)));
        }
    }
    std::vector<std::string> texts;
    std::vector<T> values;
};

template <class T>
void add_type(const std::string& type, const char* peer, const Kind& kind)
{
    const auto sample = std::make_shared<const Texts<T>>(kind);
    const auto read = [](const std::string& text) {
        return parse(text, static_cast<T*>(nullptr));
    };
    add(
        "parse " + type, peer, kind, [=](unsigned i) { return read(sample->texts[i]); },
        [=](unsigned i, T value) { return value == sample->values[i]; });
    add(
        "format " + type, peer, kind,
        [=](unsigned i) { return kiv::to_string_c(sample->values[i]); },
        [=](unsigned i, const std::string& text) {
            return read(text) == sample->values[i];
        });
}

const bool registered = [] {
    for (const Kind& kind : DECIMAL_KINDS) {
        add_type<kiv::decimal::decimal64>("decimal64", "kivxx", kind);
        add_type<double>("decimal64", "double", kind);
        add_type<kiv::decimal::decimal128>("decimal128", "kivxx", kind);
        add_type<double>("decimal128", "double", kind);
    }
    return true;
}();

}  // namespace
