// coder_loops.h - the timed loops: one conversion of a whole text per iteration, by
// the library and by its peers. Each compares what it wrote with what it should
// have written, so a figure is never that of a wrong result.

#ifndef KIVXX_BENCH_CODER_LOOPS_H
#define KIVXX_BENCH_CODER_LOOPS_H

#include <benchmark/benchmark.h>
#include <kiv/charset.h>

#include <memory>
#include <string>
#include <utility>

namespace kivbench {

// A text in both forms.
struct EncodedText {
    std::string bytes;
    std::u16string units;
};

// Shared by the benchmarks of a text.
using Sample = std::shared_ptr<const EncodedText>;

inline Sample make_sample(std::string bytes, std::u16string units)
{
    return std::make_shared<EncodedText>(EncodedText{std::move(bytes), std::move(units)});
}

// A coder is made once; an iteration resets it, converts into a buffer that exists,
// and flushes. A null charset makes the row an error.
void kivxx_decode(benchmark::State& state, const kiv::Charset* charset, Sample s);
void kivxx_encode(benchmark::State& state, const kiv::Charset* charset, Sample s);

// Allocation and all: a new string for each text.
void kivxx_decode_string(benchmark::State& state, const kiv::Charset* charset, Sample s);
void kivxx_encode_string(benchmark::State& state, const kiv::Charset* charset, Sample s);

void icu_from_utf8(benchmark::State& state, Sample s);
void icu_to_utf8(benchmark::State& state, Sample s);
void icu_decode(benchmark::State& state, const char* name, Sample s);
void icu_encode(benchmark::State& state, const char* name, Sample s);

// The other side is UTF-16LE.
void iconv_decode(benchmark::State& state, const char* name, Sample s);
void iconv_encode(benchmark::State& state, const char* name, Sample s);

// As many bytes as the byte side has, whichever the direction.
void memcpy_bytes(benchmark::State& state, Sample s);

template <class... Args>
void add(const std::string& name, Args... args)
{
    benchmark::RegisterBenchmark(name.c_str(), args...);
}

// Both directions of one charset on one text, named <direction> <name>/<peer>/<tail>.
// A peer without a name is left out.
struct PeerNames {
    const char* icu;
    const char* iconv;
};
void add_coders(const std::string& name, const kiv::Charset* charset,
                const PeerNames& peers, const std::string& tail, const Sample& s);

}  // namespace kivbench

#endif
