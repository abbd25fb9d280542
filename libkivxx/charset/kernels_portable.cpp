// The plain loops: what every other set must agree with.

#include "charset/kernels.h"
#include "charset/utf8_sequence.h"

#include <cstdint>
#include <cstring>

namespace kiv {
namespace {

using utf8::to_unit;

constexpr std::size_t WORD = sizeof(std::uint64_t);
constexpr std::uint64_t NON_ASCII_BYTES = 0x8080808080808080;
constexpr std::uint64_t NON_ASCII_UNITS = 0xFF80FF80FF80FF80;
constexpr std::uint64_t NON_LATIN1_UNITS = 0xFF00FF00FF00FF00;

std::uint64_t load_word(const void* p) noexcept
{
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// --- One byte, one unit ---------------------------------------------------------

void widen(const unsigned char* in, std::size_t n, char16* out) noexcept
{
    for (std::size_t i = 0; i < n; ++i)
        out[i] = to_unit(in[i]);
}

DecodeProgress decode_ascii(const unsigned char* in, const unsigned char* in_end,
                            char16* out, char16* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    std::size_t i = 0;
    while (n - i >= WORD && (load_word(in + i) & NON_ASCII_BYTES) == 0) {
        widen(in + i, WORD, out + i);
        i += WORD;
    }
    for (; i < n && in[i] < 0x80; ++i)
        out[i] = to_unit(in[i]);
    return {in + i, out + i};
}

DecodeProgress decode_latin1(const unsigned char* in, const unsigned char* in_end,
                             char16* out, char16* out_end)
{
    const std::size_t n = common_size(in, in_end, out, out_end);
    widen(in, n, out);
    return {in + n, out + n};
}

// Units that have none of the bits of `excluded`, four to a word.
template <std::uint64_t excluded>
EncodeProgress narrow(const char16* in, const char16* in_end, unsigned char* out,
                      unsigned char* out_end)
{
    constexpr std::size_t units = WORD / sizeof(char16);
    const std::size_t n = common_size(in, in_end, out, out_end);
    std::size_t i = 0;
    while (n - i >= units && (load_word(in + i) & excluded) == 0) {
        for (std::size_t k = 0; k < units; ++k, ++i)
            out[i] = static_cast<unsigned char>(static_cast<char16_t>(in[i]));
    }
    for (; i < n; ++i) {
        const char16_t unit{in[i]};
        if (unit & excluded & 0xFFFF)
            break;
        out[i] = static_cast<unsigned char>(unit);
    }
    return {in + i, out + i};
}

// --- UTF-8 ------------------------------------------------------------------------

DecodeProgress decode_utf8(const unsigned char* in, const unsigned char* in_end,
                           char16* out, char16* out_end)
{
    DecodeProgress p{in, out};
    do {
        p = decode_ascii(p.in, in_end, p.out, out_end);
        // Text that has left ASCII tends to stay outside for a while.
        while (p.in != in_end && *p.in >= 0x80) {
            if (!utf8::decode_one(p, in_end, out_end))
                return p;
        }
    } while (p.in != in_end && p.out != out_end);
    return p;
}

EncodeProgress encode_utf8(const char16* in, const char16* in_end, unsigned char* out,
                           unsigned char* out_end)
{
    EncodeProgress p{in, out};
    do {
        p = narrow<NON_ASCII_UNITS>(p.in, in_end, p.out, out_end);
        while (p.in != in_end && *p.in >= char16(u'\x80')) {
            if (!utf8::encode_one(p, in_end, out_end))
                return p;
        }
    } while (p.in != in_end && p.out != out_end);
    return p;
}

// --- UTF-16 -----------------------------------------------------------------------

bool is_surrogate(char16_t unit) noexcept
{
    return (unit & 0xF800) == 0xD800;
}

// The byte of a pair that holds the upper half of the unit.
template <bool little_endian>
constexpr std::size_t HIGH_BYTE = little_endian ? 1 : 0;

template <bool little_endian>
DecodeProgress decode_utf16(const unsigned char* in, const unsigned char* in_end,
                            char16* out, char16* out_end)
{
    constexpr std::size_t high = HIGH_BYTE<little_endian>;
    for (; in_end - in >= 2 && out != out_end; in += 2, ++out) {
        const auto unit = static_cast<char16_t>(in[high] << 8 | in[1 - high]);
        if (is_surrogate(unit) || unit == 0xFFFE)
            break;
        *out = unit;
    }
    return {in, out};
}

template <bool little_endian>
EncodeProgress encode_utf16(const char16* in, const char16* in_end, unsigned char* out,
                            unsigned char* out_end)
{
    constexpr std::size_t high = HIGH_BYTE<little_endian>;
    for (; in != in_end && out_end - out >= 2; ++in, out += 2) {
        const char16_t unit{*in};
        if (is_surrogate(unit))
            break;
        out[high] = static_cast<unsigned char>(unit >> 8);
        out[1 - high] = static_cast<unsigned char>(unit);
    }
    return {in, out};
}

}  // namespace

constinit const Kernels portable_kernels = {
    .decode_ascii = decode_ascii,
    .decode_latin1 = decode_latin1,
    .decode_utf8 = decode_utf8,
    .decode_utf16be = decode_utf16<false>,
    .decode_utf16le = decode_utf16<true>,
    .encode_ascii = narrow<NON_ASCII_UNITS>,
    .encode_latin1 = narrow<NON_LATIN1_UNITS>,
    .encode_utf8 = encode_utf8,
    .encode_utf16be = encode_utf16<false>,
    .encode_utf16le = encode_utf16<true>,
};

}  // namespace kiv
