#include "coder_loops.h"

#include <kiv/buffer.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "peers.h"

namespace kivbench {

namespace {

// Bytes of the encoded side, and UTF-16 units as items.
void set_processed(benchmark::State& state, const Sample& s)
{
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(s->bytes.size()));
    state.SetItemsProcessed(state.iterations() *
                            static_cast<std::int64_t>(s->units.size()));
}

// Times `body`, which writes to `out` and says whether it converted all of its
// input; the result must be `want`.
template <class T, class Text, class Body>
void run(benchmark::State& state, const Sample& s, const std::vector<T>& out,
         const Text& want, Body body)
{
    for (auto _ : state) {
        if (!body()) {
            state.SkipWithError("not converted");
            return;
        }
        benchmark::ClobberMemory();
    }
    set_processed(state, s);
    if (std::memcmp(out.data(), want.data(), want.size() * sizeof(T)) != 0)
        state.SkipWithError("wrong result");
}

// Room for the result, and to write more than that.
std::vector<unsigned char> room_for_bytes(const Sample& s)
{
    return std::vector<unsigned char>(std::max(3 * s->units.size(), s->bytes.size()));
}

std::vector<char16_t> room_for_units(const Sample& s)
{
    return std::vector<char16_t>(s->bytes.size());
}

template <class Body>
void run_decode(benchmark::State& state, const Sample& s, Body body)
{
    std::vector<char16_t> out = room_for_units(s);
    run(state, s, out, s->units, [&] { return body(out); });
}

template <class Body>
void run_encode(benchmark::State& state, const Sample& s, Body body)
{
    std::vector<unsigned char> out = room_for_bytes(s);
    run(state, s, out, s->bytes, [&] { return body(out); });
}

std::int32_t size32(std::size_t n)
{
    return static_cast<std::int32_t>(n);
}

const unsigned char* as_bytes(const std::string& text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

kiv::char16* as_char16(char16_t* p)
{
    return reinterpret_cast<kiv::char16*>(p);
}

const kiv::char16* as_char16(const char16_t* p)
{
    return reinterpret_cast<const kiv::char16*>(p);
}

}  // namespace

// --- The library ----------------------------------------------------------------

void kivxx_decode(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    if (charset == nullptr) {
        state.SkipWithError("the library does not have this charset");
        return;
    }
    const auto decoder = charset->newDecoder();
    kiv::Buffer<const unsigned char> in(as_bytes(s->bytes), s->bytes.size());
    std::vector<char16_t> room = room_for_units(s);
    kiv::Buffer<kiv::char16> out(as_char16(room.data()), room.size());
    run(state, s, room, s->units, [&] {
        in.clear();
        out.clear();
        decoder->reset();
        return decoder->decode(in, out, true).isUnderflow() &&
               decoder->flush(out).isUnderflow() && out.position() == s->units.size();
    });
}

void kivxx_encode(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    if (charset == nullptr) {
        state.SkipWithError("the library does not have this charset");
        return;
    }
    const auto encoder = charset->newEncoder();
    kiv::Buffer<const kiv::char16> in(as_char16(s->units.data()), s->units.size());
    std::vector<unsigned char> room = room_for_bytes(s);
    kiv::Buffer<unsigned char> out(room.data(), room.size());
    run(state, s, room, s->bytes, [&] {
        in.clear();
        out.clear();
        encoder->reset();
        return encoder->encode(in, out, true).isUnderflow() &&
               encoder->flush(out).isUnderflow() && out.position() == s->bytes.size();
    });
}

void kivxx_decode_string(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    for (auto _ : state)
        if (charset->decode(s->bytes).size() != s->units.size()) {
            state.SkipWithError("not converted");
            break;
        }
    set_processed(state, s);
}

void kivxx_encode_string(benchmark::State& state, const kiv::Charset* charset, Sample s)
{
    const kiv::ustring text(as_char16(s->units.data()), s->units.size());
    for (auto _ : state)
        if (charset->encode(text).size() != s->bytes.size()) {
            state.SkipWithError("not converted");
            break;
        }
    set_processed(state, s);
}

// --- Peers ----------------------------------------------------------------------

void icu_from_utf8(benchmark::State& state, Sample s)
{
    run_decode(state, s, [&](std::vector<char16_t>& out) {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t n = 0;
        u_strFromUTF8(out.data(), size32(out.size()), &n, s->bytes.data(),
                      size32(s->bytes.size()), &error);
        return U_SUCCESS(error) && n == size32(s->units.size());
    });
}

void icu_to_utf8(benchmark::State& state, Sample s)
{
    run_encode(state, s, [&](std::vector<unsigned char>& out) {
        UErrorCode error = U_ZERO_ERROR;
        std::int32_t n = 0;
        u_strToUTF8(reinterpret_cast<char*>(out.data()), size32(out.size()), &n,
                    s->units.data(), size32(s->units.size()), &error);
        return U_SUCCESS(error) && n == size32(s->bytes.size());
    });
}

void icu_decode(benchmark::State& state, const char* name, Sample s)
{
    const Converter converter = open_converter(name);
    run_decode(state, s, [&](std::vector<char16_t>& out) {
        return decode(*converter, s->bytes, out.data(), out.size()) == s->units.size();
    });
}

void icu_encode(benchmark::State& state, const char* name, Sample s)
{
    const Converter converter = open_converter(name);
    run_encode(state, s, [&](std::vector<unsigned char>& out) {
        return encode(*converter, s->units, reinterpret_cast<char*>(out.data()),
                      out.size()) == s->bytes.size();
    });
}

void iconv_decode(benchmark::State& state, const char* name, Sample s)
{
    Iconv converter("UTF-16LE", name);
    run_decode(state, s, [&](std::vector<char16_t>& out) {
        return converter.convert(s->bytes.data(), s->bytes.size(), out.data(),
                                 out.size() * sizeof(char16_t));
    });
}

void iconv_encode(benchmark::State& state, const char* name, Sample s)
{
    Iconv converter(name, "UTF-16LE");
    run_encode(state, s, [&](std::vector<unsigned char>& out) {
        return converter.convert(s->units.data(), s->units.size() * sizeof(char16_t),
                                 out.data(), out.size());
    });
}

void memcpy_bytes(benchmark::State& state, Sample s)
{
    run_encode(state, s, [&](std::vector<unsigned char>& out) {
        std::memcpy(out.data(), s->bytes.data(), s->bytes.size());
        benchmark::DoNotOptimize(out.data());
        return true;
    });
}

// --- Table ------------------------------------------------------------------------

void add_coders(const std::string& name, const kiv::Charset* charset,
                const PeerNames& peers, const std::string& tail, const Sample& s)
{
    const std::string decode = "decode " + name;
    const std::string encode = "encode " + name;
    add(decode + "/kivxx/" + tail, kivxx_decode, charset, s);
    add(encode + "/kivxx/" + tail, kivxx_encode, charset, s);
    if (peers.icu != nullptr) {
        add(decode + "/icu/" + tail, icu_decode, peers.icu, s);
        add(encode + "/icu/" + tail, icu_encode, peers.icu, s);
    }
    if (peers.iconv != nullptr) {
        add(decode + "/iconv/" + tail, iconv_decode, peers.iconv, s);
        add(encode + "/iconv/" + tail, iconv_encode, peers.iconv, s);
    }
}

}  // namespace kivbench
