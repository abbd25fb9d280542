// The inner loops of the coders against coders written the long way here (and
// against ICU): what a kernel wrote must be what the reference makes of what the
// kernel read, it may stop at no other place than the contract allows, and it may
// touch nothing outside its arrays, which are of exactly the size it is told so
// that a sanitizer sees it.

#include "charset/kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#ifdef KIV_TEST_ICU
    #include <unicode/ustring.h>
#endif

namespace {

using kiv::char16;
using Bytes = std::vector<unsigned char>;
using Units = std::vector<std::uint16_t>;

// --- Reference ----------------------------------------------------------------

// One step of an encoding: input and output sizes of the character at the front,
// its output added to `out`; {0, 0} if there is no complete legal character.
struct Step {
    std::size_t in;
    std::size_t out;
};

Step decode_single(const Bytes& in, std::size_t at, Units& out, unsigned limit)
{
    if (in[at] >= limit)
        return {0, 0};
    out.push_back(in[at]);
    return {1, 1};
}

// By the table of well-formed byte sequences in the Unicode Standard (3-7): the
// range of the second byte depends on the first.
Step decode_utf8(const Bytes& in, std::size_t at, Units& out)
{
    static constexpr struct {
        unsigned first, last, second_min, second_max, bytes;
    } forms[] = {
        {0x00, 0x7F, 0, 0, 1},       {0xC2, 0xDF, 0x80, 0xBF, 2},
        {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
        {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
        {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4},
        {0xF4, 0xF4, 0x80, 0x8F, 4},
    };
    for (const auto& form : forms) {
        const unsigned lead = in[at];
        if (lead < form.first || lead > form.last)
            continue;
        if (in.size() - at < form.bytes)
            return {0, 0};
        unsigned long value = form.bytes == 1 ? lead : lead % (0x80u >> form.bytes);
        for (std::size_t k = 1; k < form.bytes; ++k) {
            const unsigned b = in[at + k];
            if (b < (k == 1 ? form.second_min : 0x80u) ||
                b > (k == 1 ? form.second_max : 0xBFu))
                return {0, 0};
            value = value * 64 + b % 64;
        }
        if (value < 0x10000) {
            out.push_back(static_cast<std::uint16_t>(value));
            return {form.bytes, 1};
        }
        out.push_back(static_cast<std::uint16_t>(0xD800 + (value - 0x10000) / 0x400));
        out.push_back(static_cast<std::uint16_t>(0xDC00 + value % 0x400));
        return {4, 2};
    }
    return {0, 0};
}

Step decode_utf16(const Bytes& in, std::size_t at, Units& out, std::size_t high)
{
    if (in.size() - at < 2)
        return {0, 0};
    const unsigned unit = in[at + high] * 256u + in[at + 1 - high];
    if ((unit >= 0xD800 && unit <= 0xDFFF) || unit == 0xFFFE)
        return {0, 0};
    out.push_back(static_cast<std::uint16_t>(unit));
    return {2, 1};
}

Step encode_single(const Units& in, std::size_t at, Bytes& out, unsigned limit)
{
    if (in[at] >= limit)
        return {0, 0};
    out.push_back(static_cast<unsigned char>(in[at]));
    return {1, 1};
}

Step encode_utf8(const Units& in, std::size_t at, Bytes& out)
{
    unsigned long value = in[at];
    std::size_t units = 1;
    if (value >= 0xD800 && value <= 0xDFFF) {
        if (value > 0xDBFF || at + 1 == in.size() || in[at + 1] < 0xDC00 ||
            in[at + 1] > 0xDFFF)
            return {0, 0};
        value = 0x10000 + (value - 0xD800) * 0x400 + (in[at + 1] - 0xDC00u);
        units = 2;
    }
    const std::size_t bytes = value < 0x80      ? 1
                              : value < 0x800   ? 2
                              : value < 0x10000 ? 3
                                                : 4;
    static constexpr unsigned marks[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (std::size_t k = 0; k < bytes; ++k) {
        const unsigned long bits = value >> (6 * (bytes - 1 - k));
        out.push_back(
            static_cast<unsigned char>(k == 0 ? marks[bytes] + bits : 0x80 + bits % 64));
    }
    return {units, bytes};
}

Step encode_utf16(const Units& in, std::size_t at, Bytes& out, std::size_t high)
{
    if (in[at] >= 0xD800 && in[at] <= 0xDFFF)
        return {0, 0};
    const unsigned char bytes[] = {static_cast<unsigned char>(in[at] % 256),
                                   static_cast<unsigned char>(in[at] / 256)};
    out.push_back(bytes[1 - high]);
    out.push_back(bytes[high]);
    return {1, 2};
}

// --- The check ----------------------------------------------------------------

template <class Unit>
struct Exact {  // an array without a byte to spare, `skew` elements from alignment
    Exact(std::size_t n, std::size_t skew)
        : memory(new Unit[n + skew]), begin(memory.get() + skew), end(begin + n)
    {
    }
    std::unique_ptr<Unit[]> memory;
    Unit* begin;
    Unit* end;
};

// Runs the kernel over the text and compares with the reference, which is called
// as step(text, at, out). The kernels end with the plain loop, so none stops early.
template <class KernelIn, class KernelOut, class In, class Out, class Kernel>
void check(Kernel kernel, const std::vector<In>& text, std::size_t room, std::size_t skew,
           Step (*step)(const std::vector<In>&, std::size_t, std::vector<Out>&))
{
    const Exact<KernelIn> in(text.size(), skew);
    std::copy(text.begin(), text.end(), in.begin);
    const Exact<KernelOut> out(room, skew);
    const auto progress = kernel(in.begin, in.end, out.begin, out.end);

    std::vector<Out> want;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t before = want.size();
        const Step s = step(text, at, want);
        if (s.in == 0)
            break;
        if (before + s.out > room) {
            want.resize(before);
            break;
        }
        at += s.in;
    }
    ASSERT_EQ(progress.in - in.begin, static_cast<std::ptrdiff_t>(at));
    ASSERT_EQ(progress.out - out.begin, static_cast<std::ptrdiff_t>(want.size()));
    ASSERT_TRUE(std::equal(want.begin(), want.end(), out.begin,
                           [](Out a, KernelOut b) { return KernelOut(a) == b; }));
}

struct DecodeCase {
    const char* name;
    kiv::DecodeKernel kiv::Kernels::*kernel;
    Step (*step)(const Bytes&, std::size_t, Units&);
};

constexpr DecodeCase decode_cases[] = {
    {"ASCII", &kiv::Kernels::decode_ascii,
     [](const Bytes& in, std::size_t at, Units& out) {
         return decode_single(in, at, out, 0x80);
     }},
    {"Latin-1", &kiv::Kernels::decode_latin1,
     [](const Bytes& in, std::size_t at, Units& out) {
         return decode_single(in, at, out, 0x100);
     }},
    {"UTF-8", &kiv::Kernels::decode_utf8, decode_utf8},
    {"UTF-16BE", &kiv::Kernels::decode_utf16be,
     [](const Bytes& in, std::size_t at, Units& out) {
         return decode_utf16(in, at, out, 0);
     }},
    {"UTF-16LE", &kiv::Kernels::decode_utf16le,
     [](const Bytes& in, std::size_t at, Units& out) {
         return decode_utf16(in, at, out, 1);
     }},
};

struct EncodeCase {
    const char* name;
    kiv::EncodeKernel kiv::Kernels::*kernel;
    Step (*step)(const Units&, std::size_t, Bytes&);
};

constexpr EncodeCase encode_cases[] = {
    {"ASCII", &kiv::Kernels::encode_ascii,
     [](const Units& in, std::size_t at, Bytes& out) {
         return encode_single(in, at, out, 0x80);
     }},
    {"Latin-1", &kiv::Kernels::encode_latin1,
     [](const Units& in, std::size_t at, Bytes& out) {
         return encode_single(in, at, out, 0x100);
     }},
    {"UTF-8", &kiv::Kernels::encode_utf8, encode_utf8},
    {"UTF-16BE", &kiv::Kernels::encode_utf16be,
     [](const Units& in, std::size_t at, Bytes& out) {
         return encode_utf16(in, at, out, 0);
     }},
    {"UTF-16LE", &kiv::Kernels::encode_utf16le,
     [](const Units& in, std::size_t at, Bytes& out) {
         return encode_utf16(in, at, out, 1);
     }},
};

// --- Texts --------------------------------------------------------------------

// Kinds of characters, mixed in runs as scripts do: the share of each in eighths.
struct Mix {
    const char* name;
    unsigned ascii, two, three, four;
    unsigned longest_run;
};

constexpr Mix mixes[] = {
    {"ascii", 8, 0, 0, 0, 40},      {"long ascii, two", 6, 2, 0, 0, 40},
    {"latin", 4, 4, 0, 0, 2},       {"cyrillic", 4, 4, 0, 0, 12},
    {"long two", 1, 7, 0, 0, 60},   {"korean", 4, 0, 4, 0, 5},
    {"chinese", 1, 0, 7, 0, 40},    {"emoji", 4, 0, 1, 3, 4},
    {"long emoji", 1, 0, 0, 7, 20}, {"everything", 2, 2, 2, 2, 9},
};

using Random = std::mt19937;

unsigned below(Random& random, std::size_t n)
{
    return static_cast<unsigned>(random() % n);
}

// Code points, the first and last of each form often among them.
std::u32string make_text(const Mix& mix, std::size_t size, Random& random)
{
    static constexpr char32_t edges[4][4] = {{0, 0x7F, 0x20, 0x41},
                                             {0x80, 0x7FF, 0xFF, 0x100},
                                             {0x800, 0xD7FF, 0xE000, 0xFFFF},
                                             {0x10000, 0x10FFFF, 0x1F600, 0x40000}};
    static constexpr char32_t first[] = {0x20, 0x80, 0x800, 0x10000};
    static constexpr char32_t count[] = {0x5F, 0x780, 0xD000, 0x100000};
    std::u32string text;
    while (text.size() < size) {
        const unsigned share = below(random, 8);
        const std::size_t kind = share < mix.ascii                         ? 0
                                 : share < mix.ascii + mix.two             ? 1
                                 : share < mix.ascii + mix.two + mix.three ? 2
                                                                           : 3;
        for (unsigned n = 1 + below(random, mix.longest_run); n != 0; --n)
            text += below(random, 8) == 0 ? edges[kind][below(random, 4)]
                                          : first[kind] + below(random, count[kind]);
    }
    text.resize(size);
    return text;
}

Units to_units(const std::u32string& text)
{
    Units units;
    for (const char32_t c : text) {
        if (c < 0x10000) {
            units.push_back(static_cast<std::uint16_t>(c));
        } else {
            units.push_back(static_cast<std::uint16_t>(0xD800 + (c - 0x10000) / 0x400));
            units.push_back(static_cast<std::uint16_t>(0xDC00 + c % 0x400));
        }
    }
    return units;
}

template <class In, class Out>
std::vector<Out> convert(const std::vector<In>& text,
                         Step (*step)(const std::vector<In>&, std::size_t,
                                      std::vector<Out>&))
{
    std::vector<Out> out;
    for (std::size_t at = 0; at < text.size();) {
        const Step s = step(text, at, out);
        if (s.in == 0)
            break;
        at += s.in;
    }
    return out;
}

// --- Tests --------------------------------------------------------------------

struct Set {
    const char* name;
    const kiv::Kernels* kernels;
};

class KernelSet : public testing::TestWithParam<Set> {
protected:
    const kiv::Kernels& kernels() const { return *GetParam().kernels; }
};

constexpr Set sets[] = {
    {"portable", &kiv::portable_kernels},
#if defined(__SSE2__)
    {"sse2", &kiv::sse2_kernels},
#endif
};

INSTANTIATE_TEST_SUITE_P(Kernels, KernelSet, testing::ValuesIn(sets),
                         [](const auto& set) { return std::string(set.param.name); });

std::u32string all_characters()
{
    std::u32string all;
    for (char32_t c = 0; c <= 0x10FFFF; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            all += c;
    return all;
}

TEST_P(KernelSet, EveryCharacter)
{
    const Units units = to_units(all_characters());
    const Bytes utf8 = convert(units, encode_utf8);
    check<unsigned char, char16>(kernels().decode_utf8, utf8, units.size(), 0,
                                 decode_utf8);
    check<char16, unsigned char>(kernels().encode_utf8, units, utf8.size(), 0,
                                 encode_utf8);
}

// Whether input of the right kind, with and without one wrong unit somewhere in
// it, is converted up to the right place at every size, alignment and room.
TEST_P(KernelSet, DecodesWhatTheReferenceDecodes)
{
    Random random(1);
    for (const DecodeCase& c : decode_cases) {
        const bool wide = c.kernel == &kiv::Kernels::decode_utf16be ||
                          c.kernel == &kiv::Kernels::decode_utf16le;
        const EncodeCase& opposite = encode_cases[&c - decode_cases];
        for (const Mix& mix : mixes) {
            for (std::size_t size = 0; size <= 300; ++size) {
                SCOPED_TRACE(std::string(c.name) + ", " + mix.name + ", " +
                             std::to_string(size));
                const Units units = to_units(make_text(mix, size, random));
                Bytes text = convert(units, wide ? opposite.step : encode_utf8);
                text.resize(std::min(text.size(), size));  // may cut a character
                if (size % 3 == 1 && !text.empty())
                    text[below(random, text.size())] =
                        static_cast<unsigned char>(random());
                const std::size_t rooms[] = {size, below(random, size + 1), size + 300};
                for (const std::size_t room : rooms)
                    check<unsigned char, char16>(kernels().*c.kernel, text, room,
                                                 (size + room) % 32, c.step);
                if (HasFatalFailure())
                    return;
            }
        }
    }
}

TEST_P(KernelSet, EncodesWhatTheReferenceEncodes)
{
    Random random(2);
    for (const EncodeCase& c : encode_cases) {
        for (const Mix& mix : mixes) {
            for (std::size_t size = 0; size <= 300; ++size) {
                SCOPED_TRACE(std::string(c.name) + ", " + mix.name + ", " +
                             std::to_string(size));
                Units text = to_units(make_text(mix, size, random));
                text.resize(size);  // may cut a pair
                if (size % 3 == 1)
                    text[below(random, size)] = static_cast<std::uint16_t>(
                        size % 2 ? 0xD800 + below(random, 0x800) : random());
                const std::size_t all = convert(text, c.step).size();
                const std::size_t rooms[] = {all, below(random, all + 1), all + 300};
                for (const std::size_t room : rooms)
                    check<char16, unsigned char>(kernels().*c.kernel, text, room,
                                                 (size + room) % 32, c.step);
                if (HasFatalFailure())
                    return;
            }
        }
    }
}

TEST_P(KernelSet, EveryRoom)
{
    Random random(3);
    for (const Mix& mix : mixes) {
        SCOPED_TRACE(mix.name);
        const Units units = to_units(make_text(mix, 130, random));
        const Bytes utf8 = convert(units, encode_utf8);
        for (std::size_t room = 0; room <= units.size() + 1; ++room)
            check<unsigned char, char16>(kernels().decode_utf8, utf8, room, room % 32,
                                         decode_utf8);
        for (std::size_t room = 0; room <= utf8.size() + 1; ++room)
            check<char16, unsigned char>(kernels().encode_utf8, units, room, room % 32,
                                         encode_utf8);
        if (HasFatalFailure())
            return;
    }
}

// Every lead byte with second bytes from both sides of each bound that the forms
// have, in the midst of characters of every size, at each lane of a vector.
TEST_P(KernelSet, Utf8SequencesAtTheBoundsOfTheirForms)
{
    static constexpr unsigned char seconds[] = {0x00, 0x7F, 0x80, 0x8F, 0x90,
                                                0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
    static constexpr struct {
        std::size_t bytes;  // of the sequence
        unsigned char third, fourth;
    } ends[] = {{2, 0, 0},       {3, 0x80, 0},    {3, 0x7F, 0},    {4, 0x80, 0x80},
                {4, 0xBF, 0xBF}, {4, 0xC0, 0x80}, {4, 0x80, 0x7F}, {4, 0x80, 0xC0}};
    constexpr std::size_t count = 60;
    for (const char32_t c : {U'a', U'\u044F', U'\u4E2D', U'\U0001F600'}) {
        const Bytes fill = convert(to_units(std::u32string(count, c)), encode_utf8);
        std::size_t before = 0;  // characters in front of the sequence
        for (unsigned i = 0; i < 0x80 * std::size(seconds) * std::size(ends); ++i) {
            const auto& end = ends[i % std::size(ends)];
            const unsigned char second =
                seconds[i / std::size(ends) % std::size(seconds)];
            const auto lead = static_cast<unsigned char>(
                0x80 + i / (std::size(ends) * std::size(seconds)));
            before = (before + 1) % 9;
            Bytes text = fill;
            const unsigned char sequence[] = {lead, second, end.third, end.fourth};
            text.insert(
                text.begin() + static_cast<std::ptrdiff_t>(before * fill.size() / count),
                sequence, sequence + end.bytes);
            check<unsigned char, char16>(kernels().decode_utf8, text, text.size(), i % 32,
                                         decode_utf8);
            ASSERT_FALSE(HasFatalFailure())
                << std::hex << unsigned{lead} << ' ' << unsigned{second} << ' '
                << unsigned{end.third} << ' ' << unsigned{end.fourth} << '/' << end.bytes
                << " among " << static_cast<std::uint32_t>(c);
        }
    }
}

// A lone surrogate or a swapped byte-order mark at each lane of a vector.
TEST_P(KernelSet, Utf16StopsAtEachLane)
{
    static constexpr std::uint16_t stops[] = {0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF,
                                              0xE000, 0xFFFD, 0xFFFE, 0xFFFF};
    for (const std::size_t k : {3u, 4u})
        for (const std::uint16_t stop : stops)
            for (std::size_t at = 0; at < 40; ++at) {
                Units units(40, 0x1234);
                units[at] = stop;
                check<char16, unsigned char>(kernels().*encode_cases[k].kernel, units, 80,
                                             at, encode_cases[k].step);
                Bytes bytes;
                for (const std::uint16_t u : units) {
                    const unsigned char pair[] = {static_cast<unsigned char>(u / 256),
                                                  static_cast<unsigned char>(u % 256)};
                    bytes.push_back(pair[k - 3]);
                    bytes.push_back(pair[4 - k]);
                }
                check<unsigned char, char16>(kernels().*decode_cases[k].kernel, bytes, 40,
                                             at, decode_cases[k].step);
                ASSERT_FALSE(HasFatalFailure()) << stop << " at " << at;
            }
}

#ifdef KIV_TEST_ICU
// The reference itself, against ICU.
TEST(KernelReference, AgreesWithIcu)
{
    const Units units = to_units(all_characters());
    const Bytes utf8 = convert(units, encode_utf8);
    std::vector<UChar> icu(units.size());
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t n = 0;
    u_strFromUTF8(icu.data(), static_cast<std::int32_t>(icu.size()), &n,
                  reinterpret_cast<const char*>(utf8.data()),
                  static_cast<std::int32_t>(utf8.size()), &error);
    ASSERT_TRUE(U_SUCCESS(error));
    EXPECT_TRUE(std::equal(units.begin(), units.end(), icu.begin(), icu.end()));
    EXPECT_EQ(convert(utf8, decode_utf8), units);
}
#endif

}  // namespace
