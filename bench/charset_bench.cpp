// Conversion through the public interface: UTF-8 and UTF-16 of five texts in three
// sizes, and the single-byte encodings at 64 KiB, beside ICU, iconv and memcpy.

#include <benchmark/benchmark.h>
#include <kiv/buffer.h>
#include <kiv/charset.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "corpora.h"
#include "peers.h"

namespace {

using namespace kiv::literals;

using Body = std::function<bool()>;

// Times `body`, which says whether it converted all of its input.
void run(benchmark::State& state, std::size_t bytes, const Body& body)
{
    for (auto _ : state) {
        if (!body()) {
            state.SkipWithError("not converted");
            break;
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

// A text in both forms, and room for either.
struct Sample {
    Sample(const std::string& encoded, const std::u16string& decoded)
        : bytes(encoded),
          units(decoded),
          bytes_out(3 * decoded.size()),
          units_out(encoded.size())
    {
    }

    const unsigned char* data() const
    {
        return reinterpret_cast<const unsigned char*>(bytes.data());
    }

    std::string bytes;
    std::u16string units;
    std::vector<unsigned char> bytes_out;
    std::vector<char16_t> units_out;
};

std::int32_t size32(std::size_t n)
{
    return static_cast<std::int32_t>(n);
}

// --- The library ----------------------------------------------------------------

kiv::char16* as_char16(char16_t* p)
{
    return reinterpret_cast<kiv::char16*>(p);
}

void kivxx_decode(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    const auto decoder = charset->newDecoder();
    kiv::Buffer<const unsigned char> in(s.data(), s.bytes.size());
    kiv::Buffer<kiv::char16> out(as_char16(s.units_out.data()), s.units_out.size());
    run(state, s.bytes.size(), [&] {
        in.clear();
        out.clear();
        decoder->reset();
        return decoder->decode(in, out, true).isUnderflow() &&
               decoder->flush(out).isUnderflow();
    });
}

void kivxx_encode(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    const auto encoder = charset->newEncoder();
    kiv::Buffer<const kiv::char16> in(as_char16(s.units.data()), s.units.size());
    kiv::Buffer<unsigned char> out(s.bytes_out.data(), s.bytes_out.size());
    run(state, s.bytes.size(), [&] {
        in.clear();
        out.clear();
        encoder->reset();
        return encoder->encode(in, out, true).isUnderflow() &&
               encoder->flush(out).isUnderflow();
    });
}

// Allocation and all: a new string for each text.
void kivxx_decode_string(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    run(state, s.bytes.size(),
        [&] { return charset->decode(s.bytes).size() == s.units.size(); });
}

void kivxx_encode_string(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    const kiv::ustring text(as_char16(s.units.data()), s.units.size());
    run(state, s.bytes.size(),
        [&] { return charset->encode(text).size() == s.bytes.size(); });
}

// --- Peers ----------------------------------------------------------------------

void icu_from_utf8(benchmark::State& state, Sample s)
{
    run(state, s.bytes.size(), [&] {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t n = 0;
        u_strFromUTF8(s.units_out.data(), size32(s.units_out.size()), &n, s.bytes.data(),
                      size32(s.bytes.size()), &error);
        return U_SUCCESS(error) && n == size32(s.units.size());
    });
}

void icu_to_utf8(benchmark::State& state, Sample s)
{
    run(state, s.bytes.size(), [&] {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t n = 0;
        u_strToUTF8(reinterpret_cast<char*>(s.bytes_out.data()),
                    size32(s.bytes_out.size()), &n, s.units.data(),
                    size32(s.units.size()), &error);
        return U_SUCCESS(error) && n == size32(s.bytes.size());
    });
}

void icu_decode(benchmark::State& state, const char* name, Sample s)
{
    const kivbench::Converter converter = kivbench::open_converter(name);
    run(state, s.bytes.size(), [&] {
        UErrorCode error = U_ZERO_ERROR;
        return ucnv_toUChars(converter.get(), s.units_out.data(),
                             size32(s.units_out.size()), s.bytes.data(),
                             size32(s.bytes.size()), &error) == size32(s.units.size());
    });
}

void icu_encode(benchmark::State& state, const char* name, Sample s)
{
    const kivbench::Converter converter = kivbench::open_converter(name);
    run(state, s.bytes.size(), [&] {
        UErrorCode error = U_ZERO_ERROR;
        return ucnv_fromUChars(converter.get(),
                               reinterpret_cast<char*>(s.bytes_out.data()),
                               size32(s.bytes_out.size()), s.units.data(),
                               size32(s.units.size()), &error) == size32(s.bytes.size());
    });
}

void iconv_decode(benchmark::State& state, const char* name, Sample s)
{
    kivbench::Iconv converter("UTF-16LE", name);
    run(state, s.bytes.size(), [&] {
        return converter.convert(s.bytes.data(), s.bytes.size(), s.units_out.data(),
                                 s.units_out.size() * sizeof(char16_t));
    });
}

void iconv_encode(benchmark::State& state, const char* name, Sample s)
{
    kivbench::Iconv converter(name, "UTF-16LE");
    run(state, s.bytes.size(), [&] {
        return converter.convert(s.units.data(), s.units.size() * sizeof(char16_t),
                                 s.bytes_out.data(), s.bytes_out.size());
    });
}

// As many bytes as the byte side has, whichever the direction.
void memcpy_bytes(benchmark::State& state, Sample s)
{
    run(state, s.bytes.size(), [&] {
        std::memcpy(s.bytes_out.data(), s.bytes.data(), s.bytes.size());
        benchmark::DoNotOptimize(s.bytes_out.data());
        return true;
    });
}

// --- Table ------------------------------------------------------------------------

template <class... Args>
void add(const std::string& name, Args... args)
{
    benchmark::RegisterBenchmark(name.c_str(), args...);
}

void add_utf8(const std::string& tail, const Sample& s)
{
    const kiv::Charset* utf8 = kiv::Charset::forName(u"UTF-8"_usv);
    add("decode UTF-8/kivxx/" + tail, kivxx_decode, utf8, s);
    add("decode UTF-8/icu/" + tail, icu_from_utf8, s);
    add("decode UTF-8/iconv/" + tail, iconv_decode, "UTF-8", s);
    add("decode UTF-8 to a string/kivxx/" + tail, kivxx_decode_string, utf8, s);
    add("encode UTF-8/kivxx/" + tail, kivxx_encode, utf8, s);
    add("encode UTF-8/icu/" + tail, icu_to_utf8, s);
    add("encode UTF-8/iconv/" + tail, iconv_encode, "UTF-8", s);
    add("encode UTF-8 to a string/kivxx/" + tail, kivxx_encode_string, utf8, s);
}

void add_coders(const char* name, const kiv::Charset* charset, const std::string& tail,
                const Sample& s)
{
    const std::string decode = std::string("decode ") + name;
    const std::string encode = std::string("encode ") + name;
    add(decode + "/kivxx/" + tail, kivxx_decode, charset, s);
    add(decode + "/icu/" + tail, icu_decode, name, s);
    add(decode + "/iconv/" + tail, iconv_decode, name, s);
    add(decode + "/memcpy/" + tail, memcpy_bytes, s);
    add(encode + "/kivxx/" + tail, kivxx_encode, charset, s);
    add(encode + "/icu/" + tail, icu_encode, name, s);
    add(encode + "/iconv/" + tail, iconv_encode, name, s);
    add(encode + "/memcpy/" + tail, memcpy_bytes, s);
}

std::string utf16_bytes(const std::u16string& units, bool big_endian)
{
    std::string bytes;
    for (const char16_t unit : units) {
        const char pair[] = {static_cast<char>(unit & 0xFF),
                             static_cast<char>(unit >> 8)};
        bytes += pair[big_endian ? 1 : 0];
        bytes += pair[big_endian ? 0 : 1];
    }
    return bytes;
}

[[maybe_unused]] const bool added = [] {
    using kiv::Charset;
    for (const kivbench::Corpus& corpus : kivbench::corpora)
        for (const std::size_t bytes :
             {std::size_t{64}, std::size_t{4096}, std::size_t{1} << 20}) {
            const std::string text = kivbench::make_text(corpus, bytes);
            add_utf8(std::string(corpus.name) + '/' + std::to_string(bytes),
                     {text, kivbench::to_utf16(text)});
        }

    constexpr std::size_t bytes = 65536;
    const std::string ascii = kivbench::make_text(kivbench::corpora[0], bytes);
    const std::u16string ascii_units = kivbench::to_utf16(ascii);
    add_coders("US-ASCII", Charset::forName(u"US-ASCII"_usv), "ascii/65536",
               {ascii, ascii_units});
    const std::string latin1 = kivbench::make_latin1_text(bytes);
    std::u16string latin1_units;
    for (const char c : latin1)
        latin1_units += static_cast<unsigned char>(c);
    add_coders("ISO-8859-1", Charset::forName(u"ISO-8859-1"_usv), "latin/65536",
               {latin1, latin1_units});
    const std::u16string half = ascii_units.substr(0, bytes / 2);
    add_coders("UTF-16LE", Charset::forName(u"UTF-16LE"_usv), "ascii/65536",
               {utf16_bytes(half, false), half});
    add_coders("UTF-16BE", Charset::forName(u"UTF-16BE"_usv), "ascii/65536",
               {utf16_bytes(half, true), half});
    return true;
}();

}  // namespace
