// The UTF-8 kernels by themselves, each set: what the vectors bring over the plain
// loops, and what of a coder's time is spent elsewhere.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "charset/kernels.h"
#include "corpora.h"

namespace {

void decode(benchmark::State& state, const kiv::Kernels* kernels, std::string text)
{
    const auto* in = reinterpret_cast<const unsigned char*>(text.data());
    std::vector<kiv::char16> out(text.size());
    for (auto _ : state) {
        const kiv::DecodeProgress p = kernels->decode_utf8(
            in, in + text.size(), out.data(), out.data() + out.size());
        if (p.in != in + text.size())
            throw std::runtime_error("not converted");
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void encode(benchmark::State& state, const kiv::Kernels* kernels, std::u16string text)
{
    const std::vector<kiv::char16> units(text.begin(), text.end());
    std::vector<unsigned char> out(3 * units.size());
    const kiv::char16* const end = units.data() + units.size();
    std::size_t bytes = 0;
    for (auto _ : state) {
        const kiv::EncodeProgress p =
            kernels->encode_utf8(units.data(), end, out.data(), out.data() + out.size());
        if (p.in != end)
            throw std::runtime_error("not converted");
        bytes = static_cast<std::size_t>(p.out - out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void add(const char* peer, const kiv::Kernels* kernels)
{
    for (const kivbench::Corpus& corpus : kivbench::corpora)
        for (const std::size_t bytes :
             {std::size_t{64}, std::size_t{4096}, std::size_t{1} << 20}) {
            const std::string text = kivbench::make_text(corpus, bytes);
            const std::string tail =
                '/' + std::string(corpus.name) + '/' + std::to_string(bytes);
            benchmark::RegisterBenchmark(("decode UTF-8/" + (peer + tail)).c_str(),
                                         decode, kernels, text);
            benchmark::RegisterBenchmark(("encode UTF-8/" + (peer + tail)).c_str(),
                                         encode, kernels, kivbench::to_utf16(text));
        }
}

[[maybe_unused]] const bool added = [] {
    add("kivxx", &kiv::kernels());
    add("portable", &kiv::portable_kernels);
    return true;
}();

}  // namespace
