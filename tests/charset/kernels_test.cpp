// The inner loops of the coders against the written model: what a kernel wrote
// must be what the model makes of what the kernel read, it may stop at no other
// place than the contract allows, and it may touch nothing outside its arrays,
// which are of exactly the size it is told so that a sanitizer sees it.

#include "charset/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "charset/unicode_model.h"

namespace {

using support::DecodeItems;
using support::EncodeItems;

// --- Model -----------------------------------------------------------------------

// A kernel stops before the first item without output: a fault, or what it
// leaves to the slow path.
template <unsigned limit>
DecodeItems decode_single(const std::string& bytes)
{
    DecodeItems items;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        items.push_back({std::string(1, c), std::u16string(byte < limit, byte)});
    }
    return items;
}

template <unsigned limit>
std::string encode_single(char32_t cp)
{
    return std::string(cp < limit, static_cast<char>(cp));
}

template <bool little>
DecodeItems decode_utf16(const std::string& bytes)
{
    DecodeItems items = model::decode_utf16(bytes, little);
    for (support::DecodeItem& item : items)
        if (item.out.size() == 2)
            item.out.clear();
    return items;
}

template <bool little>
std::string encode_utf16(char32_t cp)
{
    return cp < 0x10000 ? model::utf16_bytes(model::utf16(cp), little) : std::string();
}

DecodeItems decode_utf8(const std::string& bytes)
{
    return model::decode_utf8(bytes, false);
}

template <bool little>
std::string utf16_bytes(const std::u16string& units)
{
    return model::utf16_bytes(units, little);
}

std::string utf8_bytes(const std::u16string& units)
{
    std::string bytes;
    for (const support::EncodeItem& item : model::encode(units, model::utf8))
        bytes += item.out;
    return bytes;
}

struct Codec {
    const char* name;
    kiv::DecodeKernel kiv::Kernels::*decode;
    kiv::EncodeKernel kiv::Kernels::*encode;
    DecodeItems (*decode_items)(const std::string&);
    std::string (*encode_point)(char32_t);
    std::string (*bytes)(const std::u16string&);  // mostly legal ones
};

using K = kiv::Kernels;
constexpr Codec utf8 = {"UTF-8",     &K::decode_utf8, &K::encode_utf8,
                        decode_utf8, model::utf8,     utf8_bytes};
constexpr Codec codecs[] = {
    {"ASCII", &K::decode_ascii, &K::encode_ascii, decode_single<0x80>,
     encode_single<0x80>, utf8_bytes},
    {"Latin-1", &K::decode_latin1, &K::encode_latin1, decode_single<0x100>,
     encode_single<0x100>, utf8_bytes},
    utf8,
    {"UTF-16BE", &K::decode_utf16be, &K::encode_utf16be, decode_utf16<false>,
     encode_utf16<false>, utf16_bytes<false>},
    {"UTF-16LE", &K::decode_utf16le, &K::encode_utf16le, decode_utf16<true>,
     encode_utf16<true>, utf16_bytes<true>},
};

// --- The check -------------------------------------------------------------------

// The kernels end with the plain loop, so that none stops early.
template <class Progress, class In, class Out, class Text, class Items>
void check(Progress (*kernel)(const In*, const In*, Out*, Out*), const Text& text,
           const Items& items, std::size_t room)
{
    const std::size_t skew = (text.size() + room) % 32;  // from alignment
    std::vector<In> in(skew, In());
    in.reserve(skew + text.size());
    in.insert(in.end(), text.begin(), text.end());
    std::vector<Out> out(skew + room);
    const In* const begin = in.data() + skew;
    Out* const target = out.data() + skew;
    const Progress progress = kernel(begin, in.data() + in.size(), target, target + room);

    std::size_t read = 0;
    std::size_t written = 0;
    for (const auto& item : items) {
        if (item.out.empty() || written + item.out.size() > room)
            break;
        for (const auto unit : item.out)
            ASSERT_EQ(target[written++], static_cast<Out>(unit));
        read += item.in.size();
    }
    ASSERT_EQ(progress.in, begin + read);
    ASSERT_EQ(progress.out, target + written);
}

// --- Texts -----------------------------------------------------------------------

// Forms of UTF-8 by their sizes, and what is common in messages.
struct Range {
    char kind;
    char32_t first, last;
};

constexpr Range ranges[] = {
    {'1', 0, 0x7F},           {'2', 0x80, 0x7FF},    {'3', 0x800, 0xFFFF},
    {'4', 0x10000, 0x10FFFF}, {'m', 0x2000, 0x2FFF}, {'e', 0x1F000, 0x1FFFF},
};

// Kinds of characters, mixed in runs as scripts do.
struct Mix {
    const char* kinds;
    unsigned longest_run;
};

constexpr Mix mixes[] = {
    {"1", 40},        {"1112", 40}, {"12", 2},        {"12", 12},
    {"12222222", 60}, {"13", 5},    {"13333333", 40}, {"11113444", 4},
    {"14444444", 20}, {"1234", 9},  {"111mmeee", 5},  {"1meeeeee", 20},
};

using Random = std::mt19937;

unsigned below(Random& random, std::size_t n)
{
    return static_cast<unsigned>(random() % n);
}

// The first and last characters of each range are often among them.
std::u16string make_text(const Mix& mix, std::size_t size, Random& random)
{
    const std::string kinds = mix.kinds;
    std::u16string text;
    while (text.size() < size) {
        const char kind = kinds[below(random, kinds.size())];
        const Range& range = *std::find_if(std::begin(ranges), std::end(ranges),
                                           [&](auto& r) { return r.kind == kind; });
        for (unsigned n = 1 + below(random, mix.longest_run); n != 0; --n) {
            const unsigned edge = below(random, 16);
            char32_t cp = range.first + below(random, range.last - range.first + 1);
            if (edge < 2)
                cp = edge == 0 ? range.first : range.last;
            if (!model::is_high(cp) && !model::is_low(cp))
                text += model::utf16(cp);
        }
    }
    text.resize(size);  // may cut a pair
    return text;
}

// --- Tests -----------------------------------------------------------------------

constexpr const kiv::Kernels* sets[] = {
    &kiv::portable_kernels,
#if defined(__SSE2__)
    &kiv::sse2_kernels,
#endif
};

using Rooms = std::initializer_list<std::size_t>;

void decodes(const Codec& codec, const std::string& text, Rooms rooms)
{
    const DecodeItems items = codec.decode_items(text);
    for (const kiv::Kernels* set : sets)
        for (const std::size_t room : rooms)
            check(set->*codec.decode, text, items, room);
}

void encodes(const Codec& codec, const std::u16string& text, Rooms rooms)
{
    const EncodeItems items = model::encode(text, codec.encode_point);
    for (const kiv::Kernels* set : sets)
        for (const std::size_t room : rooms)
            check(set->*codec.encode, text, items, room);
}

TEST(Kernels, EveryCharacter)
{
    std::u16string units;
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp)
        if (!model::is_high(cp) && !model::is_low(cp))
            units += model::utf16(cp);
    const std::string bytes = utf8_bytes(units);
    decodes(utf8, bytes, {units.size()});
    encodes(utf8, units, {bytes.size()});
}

// Whether input of the right kind, with and without one wrong unit somewhere in
// it, is converted up to the right place at every size, alignment and room.
TEST(Kernels, ConvertsWhatTheModelConverts)
{
    static constexpr char16_t wrong[] = {0x7F,   0x80,   0xFF,   0x100,  0x7FF,
                                         0x800,  0xD7FF, 0xD800, 0xDBFF, 0xDC00,
                                         0xDFFF, 0xE000, 0xFFFD, 0xFFFE, 0xFFFF};
    Random random(1);
    for (const Codec& codec : codecs)
        for (const Mix& mix : mixes)
            for (std::size_t size = 0; size <= 300; ++size) {
                std::u16string units = make_text(mix, size, random);
                if (size % 3 == 1)
                    units[below(random, size)] = wrong[below(random, std::size(wrong))];
                std::string bytes = codec.bytes(units);
                bytes.resize(std::min(bytes.size(), size));
                if (size % 3 == 2 && !bytes.empty())
                    bytes[below(random, bytes.size())] = static_cast<char>(random());
                const std::size_t few = below(random, size + 1);
                decodes(codec, bytes, {size, few, 3 * size + 300});
                encodes(codec, units, {size, few, 3 * size + 300});
                ASSERT_FALSE(HasFatalFailure())
                    << codec.name << ", " << mix.kinds << ", " << size;
            }
}

// Every lead byte with second bytes from both sides of each bound that the
// forms have, in the midst of characters of every size, at each lane of a
// vector.
TEST(Kernels, Utf8SequencesAtTheBoundsOfTheirForms)
{
    static constexpr unsigned char seconds[] = {0x00, 0x7F, 0x80, 0x8F, 0x90,
                                                0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
    static const std::string ends[] = {"",         "\x80",     "\x7F",     "\x80\x80",
                                       "\xBF\xBF", "\xC0\x80", "\x80\x7F", "\x80\xC0"};
    for (const char32_t c : {U'a', U'\u044F', U'\u4E2D', U'\U0001F600'}) {
        const std::string character = model::utf8(c);
        std::size_t before = 0;  // characters in front of the sequence
        for (unsigned lead = 0x80; lead <= 0xFF; ++lead)
            for (const unsigned char second : seconds)
                for (const std::string& end : ends) {
                    before = (before + 1) % 9;
                    std::string text;
                    for (std::size_t i = 0; i < 60; ++i) {
                        if (i == before)
                            text += {static_cast<char>(lead), static_cast<char>(second)};
                        if (i == before)
                            text += end;
                        text += character;
                    }
                    decodes(utf8, text, {text.size()});
                    ASSERT_FALSE(HasFatalFailure()) << testing::PrintToString(text);
                }
    }
}

}  // namespace
