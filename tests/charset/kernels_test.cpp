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
#include <utility>
#include <vector>

#ifdef KIV_TEST_ICU
    #include <unicode/ustring.h>
#endif

namespace {

using kiv::char16;
using Bytes = std::vector<unsigned char>;
using Units = std::vector<std::uint16_t>;

// --- Reference ----------------------------------------------------------------

// One step of an encoding adds the output of the character at the front to `out`
// and returns its size in the input, 0 if there is no complete legal character.
template <class In, class Out>
using Step = std::size_t (*)(const std::vector<In>&, std::size_t at, std::vector<Out>&);

bool is_surrogate(unsigned long value)
{
    return value >= 0xD800 && value <= 0xDFFF;
}

void append(Units& units, unsigned long value)
{
    if (value >= 0x10000)
        units.push_back(static_cast<std::uint16_t>(0xD7C0 + value / 0x400));
    units.push_back(
        static_cast<std::uint16_t>(value < 0x10000 ? value : 0xDC00 + value % 0x400));
}

template <unsigned limit, class In, class Out>
std::size_t single(const std::vector<In>& in, std::size_t at, std::vector<Out>& out)
{
    if (in[at] >= limit)
        return 0;
    out.push_back(static_cast<Out>(in[at]));
    return 1;
}

std::size_t decode_utf8(const Bytes& in, std::size_t at, Units& out)
{
    static constexpr unsigned long least[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned lead = in[at];
    const std::size_t n = lead < 0x80   ? 1
                          : lead < 0xC0 ? 0
                          : lead < 0xE0 ? 2
                          : lead < 0xF0 ? 3
                          : lead < 0xF8 ? 4
                                        : 0;
    if (n == 0 || in.size() - at < n)
        return 0;
    unsigned long value = n == 1 ? lead : lead % (0x80u >> n);
    for (std::size_t k = 1; k < n; ++k) {
        if (in[at + k] / 0x40 != 2)
            return 0;
        value = value * 0x40 + in[at + k] % 0x40;
    }
    if (value < least[n] || value > 0x10FFFF || is_surrogate(value))
        return 0;
    append(out, value);
    return n;
}

std::size_t encode_utf8(const Units& in, std::size_t at, Bytes& out)
{
    unsigned long value = in[at];
    if (is_surrogate(value)) {
        if (value > 0xDBFF || at + 1 == in.size() || in[at + 1] / 0x400 != 0x37)
            return 0;
        value = 0x10000 + (value - 0xD800) * 0x400 + in[at + 1] % 0x400;
    }
    static constexpr unsigned marks[] = {0, 0xC0, 0xE0, 0xF0};
    std::size_t trails = (value >= 0x80) + (value >= 0x800) + (value >= 0x10000);
    out.push_back(static_cast<unsigned char>(marks[trails] + (value >> 6 * trails)));
    while (trails-- != 0)
        out.push_back(static_cast<unsigned char>(0x80 + (value >> 6 * trails) % 0x40));
    return value < 0x10000 ? 1 : 2;
}

template <std::size_t high>  // where the upper byte is
std::size_t decode_utf16(const Bytes& in, std::size_t at, Units& out)
{
    if (in.size() - at < 2)
        return 0;
    const unsigned unit = in[at + high] * 256u + in[at + 1 - high];
    if (is_surrogate(unit) || unit == 0xFFFE)
        return 0;
    append(out, unit);
    return 2;
}

template <std::size_t high>
std::size_t encode_utf16(const Units& in, std::size_t at, Bytes& out)
{
    if (is_surrogate(in[at]))
        return 0;
    out.resize(out.size() + 2);
    out[out.size() - 2 + high] = static_cast<unsigned char>(in[at] / 256);
    out[out.size() - 1 - high] = static_cast<unsigned char>(in[at] % 256);
    return 1;
}

struct Codec {
    const char* name;
    kiv::DecodeKernel kiv::Kernels::*decode;
    kiv::EncodeKernel kiv::Kernels::*encode;
    Step<unsigned char, std::uint16_t> decode_step;
    Step<std::uint16_t, unsigned char> encode_step;
};

using K = kiv::Kernels;
constexpr Codec utf8 = {"UTF-8", &K::decode_utf8, &K::encode_utf8, decode_utf8,
                        encode_utf8};
constexpr Codec codecs[] = {
    {"ASCII", &K::decode_ascii, &K::encode_ascii, single<0x80>, single<0x80>},
    {"Latin-1", &K::decode_latin1, &K::encode_latin1, single<0x100>, single<0x100>},
    utf8,
    {"UTF-16BE", &K::decode_utf16be, &K::encode_utf16be, decode_utf16<0>,
     encode_utf16<0>},
    {"UTF-16LE", &K::decode_utf16le, &K::encode_utf16le, decode_utf16<1>,
     encode_utf16<1>},
};

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

template <class In, class Out>
struct Converted {
    std::size_t in = 0;
    std::vector<Out> out;
};

template <class In, class Out>
Converted<In, Out> convert(const std::vector<In>& text, Step<In, Out> step,
                           std::size_t room = SIZE_MAX)
{
    Converted<In, Out> result;
    while (result.in < text.size()) {
        const std::size_t before = result.out.size();
        const std::size_t n = step(text, result.in, result.out);
        if (result.out.size() > room) {
            result.out.resize(before);
            break;
        }
        if (n == 0)
            break;
        result.in += n;
    }
    return result;
}

// The kernels end with the plain loop, so that none stops early.
template <class Progress, class KernelIn, class KernelOut, class In, class Out>
void check(Progress (*kernel)(const KernelIn*, const KernelIn*, KernelOut*, KernelOut*),
           const std::vector<In>& text, Step<In, Out> step, std::size_t room)
{
    const std::size_t skew = (text.size() + room) % 32;
    const Exact<KernelIn> in(text.size(), skew);
    std::copy(text.begin(), text.end(), in.begin);
    const Exact<KernelOut> out(room, skew);
    const Progress progress = kernel(in.begin, in.end, out.begin, out.end);

    const Converted<In, Out> want = convert(text, step, room);
    ASSERT_EQ(progress.in - in.begin, static_cast<std::ptrdiff_t>(want.in));
    ASSERT_EQ(progress.out - out.begin, static_cast<std::ptrdiff_t>(want.out.size()));
    ASSERT_TRUE(std::equal(want.out.begin(), want.out.end(), out.begin,
                           [](Out a, KernelOut b) { return KernelOut(a) == b; }));
}

// --- Texts --------------------------------------------------------------------

// Kinds of characters, mixed in runs as scripts do: the share of each in eighths.
struct Mix {
    const char* name;
    unsigned ascii, two, three, four;
    unsigned longest_run;
    // From U+2000 and U+1F000 on, as in messages; else from everywhere.
    bool common = false;
};

constexpr Mix mixes[] = {
    {"ascii", 8, 0, 0, 0, 40},      {"long ascii, two", 6, 2, 0, 0, 40},
    {"latin", 4, 4, 0, 0, 2},       {"cyrillic", 4, 4, 0, 0, 12},
    {"long two", 1, 7, 0, 0, 60},   {"korean", 4, 0, 4, 0, 5},
    {"chinese", 1, 0, 7, 0, 40},    {"rare", 4, 0, 1, 3, 4},
    {"long rare", 1, 0, 0, 7, 20},  {"everything", 2, 2, 2, 2, 9},
    {"emoji", 3, 0, 2, 3, 5, true}, {"long emoji", 1, 0, 1, 6, 20, true},
};

using Random = std::mt19937;

unsigned below(Random& random, std::size_t n)
{
    return static_cast<unsigned>(random() % n);
}

// The first and last characters of each form are often among them.
Units make_text(const Mix& mix, std::size_t characters, Random& random)
{
    static constexpr char32_t edges[4][4] = {{0, 0x7F, 0x20, 0x41},
                                             {0x80, 0x7FF, 0xFF, 0x100},
                                             {0x800, 0xD7FF, 0xE000, 0xFFFF},
                                             {0x10000, 0x10FFFF, 0x1F600, 0x40000}};
    static constexpr char32_t first[2][4] = {{0x20, 0x80, 0x800, 0x10000},
                                             {0x20, 0x80, 0x2000, 0x1F000}};
    static constexpr char32_t count[2][4] = {{0x5F, 0x780, 0xD000, 0x100000},
                                             {0x5F, 0x780, 0x1000, 0x1000}};
    Units text;
    for (std::size_t left = characters; left != 0;) {
        const unsigned share = below(random, 8);
        const std::size_t kind = (share >= mix.ascii) + (share >= mix.ascii + mix.two) +
                                 (share >= mix.ascii + mix.two + mix.three);
        for (unsigned n = 1 + below(random, mix.longest_run); n != 0 && left != 0; --n) {
            const bool edge = !mix.common && below(random, 8) == 0;
            unsigned long value =
                edge ? edges[kind][below(random, 4)]
                     : first[mix.common][kind] + below(random, count[mix.common][kind]);
            append(text, is_surrogate(value) ? value - 0x800 : value);
            --left;
        }
    }
    return text;
}

Units all_characters()
{
    Units all;
    for (unsigned long c = 0; c <= 0x10FFFF; ++c)
        if (!is_surrogate(c))
            append(all, c);
    return all;
}

// --- Tests --------------------------------------------------------------------

struct Set {
    const char* name;
    const kiv::Kernels* kernels;
};

void PrintTo(const Set& set, std::ostream* os)
{
    *os << set.name;
}

class KernelSet : public testing::TestWithParam<Set> {
protected:
    void decodes(const Codec& codec, const Bytes& text, std::size_t room) const
    {
        check(GetParam().kernels->*codec.decode, text, codec.decode_step, room);
    }
    void encodes(const Codec& codec, const Units& text, std::size_t room) const
    {
        check(GetParam().kernels->*codec.encode, text, codec.encode_step, room);
    }
};

constexpr Set sets[] = {
    {"portable", &kiv::portable_kernels},
#if defined(__SSE2__)
    {"sse2", &kiv::sse2_kernels},
#endif
};

INSTANTIATE_TEST_SUITE_P(Kernels, KernelSet, testing::ValuesIn(sets),
                         [](const auto& set) { return std::string(set.param.name); });

TEST_P(KernelSet, EveryCharacter)
{
    const Units units = all_characters();
    const Bytes bytes = convert(units, utf8.encode_step).out;
    decodes(utf8, bytes, units.size());
    encodes(utf8, units, bytes.size());
}

// Whether input of the right kind, with and without one wrong unit somewhere in
// it, is converted up to the right place at every size, alignment and room.
TEST_P(KernelSet, ConvertsWhatTheReferenceConverts)
{
    static constexpr std::uint16_t wrong[] = {0x7F,   0x80,   0xFF,   0x100,  0x7FF,
                                              0x800,  0xD7FF, 0xD800, 0xDBFF, 0xDC00,
                                              0xDFFF, 0xE000, 0xFFFD, 0xFFFE, 0xFFFF};
    Random random(1);
    for (const Codec& codec : codecs)
        for (const Mix& mix : mixes)
            for (std::size_t size = 0; size <= 300; ++size) {
                SCOPED_TRACE(std::string(codec.name) + ", " + mix.name + ", " +
                             std::to_string(size));
                const bool wide = codec.name[3] == '-' && codec.name[4] == '1';
                Units units = make_text(mix, size, random);
                Bytes bytes =
                    convert(units, wide ? codec.encode_step : utf8.encode_step).out;
                units.resize(size);  // may cut a pair
                bytes.resize(std::min(bytes.size(), size));
                if (size % 3 == 1) {
                    const std::uint16_t unit = wrong[below(random, std::size(wrong))];
                    units[below(random, size)] = unit;
                    if (wide && bytes.size() >= 2) {
                        const std::size_t at = 2 * below(random, bytes.size() / 2);
                        bytes[at] = static_cast<unsigned char>(unit / 256);
                        bytes[at + 1] = static_cast<unsigned char>(unit);
                        if (codec.name[6] == 'L')
                            std::swap(bytes[at], bytes[at + 1]);
                    } else if (!bytes.empty()) {
                        bytes[below(random, bytes.size())] =
                            static_cast<unsigned char>(random());
                    }
                }
                for (const std::size_t room :
                     {size, std::size_t{below(random, size + 1)}, 3 * size + 300}) {
                    decodes(codec, bytes, room);
                    encodes(codec, units, room);
                }
                ASSERT_FALSE(HasFatalFailure());
            }
}

// Every lead byte with second bytes from both sides of each bound that the forms
// have, in the midst of characters of every size, at each lane of a vector.
TEST_P(KernelSet, Utf8SequencesAtTheBoundsOfTheirForms)
{
    static constexpr unsigned char seconds[] = {0x00, 0x7F, 0x80, 0x8F, 0x90,
                                                0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
    static const Bytes ends[] = {{},           {0x80},       {0x7F},       {0x80, 0x80},
                                 {0xBF, 0xBF}, {0xC0, 0x80}, {0x80, 0x7F}, {0x80, 0xC0}};
    constexpr std::size_t count = 60;
    for (const char32_t c : {U'a', U'\u044F', U'\u4E2D', U'\U0001F600'}) {
        Units fill;
        for (std::size_t i = 0; i < count; ++i)
            append(fill, c);
        const Bytes filled = convert(fill, utf8.encode_step).out;
        std::size_t before = 0;  // characters in front of the sequence
        for (unsigned lead = 0x80; lead <= 0xFF; ++lead)
            for (const unsigned char second : seconds)
                for (const Bytes& end : ends) {
                    before = (before + 1) % 9;
                    Bytes sequence = {static_cast<unsigned char>(lead), second};
                    sequence.insert(sequence.end(), end.begin(), end.end());
                    Bytes text = filled;
                    text.insert(text.begin() + static_cast<std::ptrdiff_t>(
                                                   before * filled.size() / count),
                                sequence.begin(), sequence.end());
                    decodes(utf8, text, text.size());
                    ASSERT_FALSE(HasFatalFailure())
                        << testing::PrintToString(sequence) << " among "
                        << static_cast<std::uint32_t>(c);
                }
    }
}

#ifdef KIV_TEST_ICU
// The reference itself, against ICU.
TEST(KernelReference, AgreesWithIcu)
{
    const Units units = all_characters();
    const Bytes bytes = convert(units, utf8.encode_step).out;
    std::vector<UChar> icu(units.size());
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t n = 0;
    u_strFromUTF8(icu.data(), static_cast<std::int32_t>(icu.size()), &n,
                  reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::int32_t>(bytes.size()), &error);
    ASSERT_TRUE(U_SUCCESS(error));
    EXPECT_TRUE(std::equal(units.begin(), units.end(), icu.begin(), icu.end()));
    EXPECT_EQ(convert(bytes, utf8.decode_step).out, units);
}
#endif

}  // namespace
