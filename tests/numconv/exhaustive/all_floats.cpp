// all_floats [STRIDE]: formats every float, or every STRIDE-th one, and compares the
// digits with those of the exact generator and the value with what is read back. All
// take about ten minutes on two processors; the exact generator has its own tests.

#include <algorithm>
#include <atomic>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <kiv/numconv.h>

#include "numconv/exact_digits.h"

namespace {

using namespace kiv::numconv;

constexpr std::uint32_t SIGN = 0x80000000;
constexpr std::uint32_t INFINITE = 0x7F800000;

std::string_view write(char (&text)[40], std::uint32_t bits)
{
    const char* end = kiv::to_chars_c(text, text + 40, std::bit_cast<float>(bits)).ptr;
    return {text, static_cast<std::size_t>(end - text)};
}

// Of a text in one of the forms without a sign, without zeros at the end.
ShortDecimal decimal(std::string_view text)
{
    ShortDecimal decimal = {0, 0};
    const std::size_t end = std::min(text.find('E'), text.size()), point = text.find('.');
    if (end != text.size())
        std::from_chars(text.data() + end + 1, text.data() + text.size(),
                        decimal.exponent);
    for (std::size_t i = 0; i < end; ++i)
        if (i != point)
            decimal.coefficient =
                decimal.coefficient * 10 + static_cast<unsigned>(text[i] - '0');
    decimal.exponent -= static_cast<int>(end - point - 1);
    for (; decimal.coefficient % 10 == 0; decimal.coefficient /= 10)
        ++decimal.exponent;
    return decimal;
}

// Of both signs.
bool is_right(std::uint32_t magnitude)
{
    char text[40], negative_text[40];
    const std::string_view positive = write(text, magnitude);
    const std::string_view negative = write(negative_text, magnitude | SIGN);
    if (magnitude > INFINITE)
        return positive == "NaN" && negative == "NaN";
    if (negative[0] != '-' || negative.substr(1) != positive)
        return false;
    if (magnitude == 0 || magnitude == INFINITE)
        return positive == (magnitude == 0 ? "0.0" : "Infinity");
    const auto value = std::bit_cast<float>(magnitude);
    float read = 0;
    std::from_chars(positive.data(), positive.data() + positive.size(), read);
    return read == value &&
           decimal(positive) ==
               exact_digits(binary_value(value), SHAPE_OF<float>, DIGITS_OF<float>);
}

}  // namespace

int main(int argc, char** argv)
{
    const std::uint64_t stride = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1;
    const std::uint64_t threads = std::max(1U, std::thread::hardware_concurrency());
    std::atomic<unsigned> wrong = 0;
    std::vector<std::jthread> workers;
    for (std::uint64_t i = 0; i < threads; ++i)
        workers.emplace_back([&, i] {
            for (std::uint64_t n = i * stride; n < SIGN; n += threads * stride)
                if (!is_right(static_cast<std::uint32_t>(n)) && ++wrong < 20)
                    std::printf("wrong: 0x%08X\n", static_cast<unsigned>(n));
        });
    workers.clear();  // joins
    std::printf("%llu of both signs, %u wrong\n", (SIGN - 1ULL) / stride + 1,
                wrong.load());
    return wrong != 0;
}
