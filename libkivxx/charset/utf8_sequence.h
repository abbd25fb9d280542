// charset/utf8_sequence.h - one UTF-8 sequence at a time.
//
// The step that every UTF-8 kernel falls back to where its wide loops cannot
// go on: near an end, at a change of script, at a fault.

#ifndef KIV_CHARSET_UTF8_SEQUENCE_H
#define KIV_CHARSET_UTF8_SEQUENCE_H

#include <cstddef>
#include <cstdint>

#include <kiv/char16.h>

#include "charset/kernels.h"

namespace kiv::utf8 {

inline char16 to_unit(std::uint32_t value) noexcept
{
    return static_cast<char16_t>(value);
}

inline bool is_trail(std::uint32_t byte) noexcept
{
    return (byte & 0xC0) == 0x80;
}

// Decodes the sequence at p.in. Returns false, leaving p as it was, if it is
// not well-formed, not complete, or if its units do not fit.
inline bool decode_one(DecodeProgress& p, const unsigned char* in_end,
                       const char16* out_end) noexcept
{
    const std::ptrdiff_t bytes = in_end - p.in;
    const std::ptrdiff_t room = out_end - p.out;
    if (bytes < 1 || room < 1)
        return false;
    const std::uint32_t lead = p.in[0];
    if (lead < 0x80) {
        *p.out++ = to_unit(lead);
        p.in += 1;
        return true;
    }
    if (lead < 0xE0) {
        if (lead < 0xC2 || bytes < 2 || !is_trail(p.in[1]))
            return false;
        *p.out++ = to_unit((lead & 0x1F) << 6 | (p.in[1] & 0x3Fu));
        p.in += 2;
        return true;
    }
    if (bytes < 3 || !is_trail(p.in[1]) || !is_trail(p.in[2]))
        return false;
    const std::uint32_t high = (lead & 0x0F) << 12 | (p.in[1] & 0x3Fu) << 6 |
                               (p.in[2] & 0x3Fu);  // the first three bytes
    if (lead < 0xF0) {
        if (high < 0x800 || (high & 0xF800) == 0xD800)
            return false;
        *p.out++ = to_unit(high);
        p.in += 3;
        return true;
    }
    if (bytes < 4 || room < 2 || lead > 0xF4 || !is_trail(p.in[3]))
        return false;
    const std::uint32_t value = high << 6 | (p.in[3] & 0x3Fu);
    if (value < 0x10000 || value > 0x10FFFF)
        return false;
    // 0xD7C0 is 0xD800 - (0x10000 >> 10).
    p.out[0] = to_unit(0xD7C0 + (value >> 10));
    p.out[1] = to_unit(0xDC00 | (value & 0x3FF));
    p.out += 2;
    p.in += 4;
    return true;
}

// Encodes the character at p.in, one unit or a pair. Returns false, leaving p
// as it was, for a surrogate without its partner or if the bytes do not fit.
inline bool encode_one(EncodeProgress& p, const char16* in_end,
                       const unsigned char* out_end) noexcept
{
    const std::ptrdiff_t units = in_end - p.in;
    const std::ptrdiff_t room = out_end - p.out;
    if (units < 1 || room < 1)
        return false;
    const auto byte = [](std::uint32_t value) {
        return static_cast<unsigned char>(value);
    };
    const auto trail = [byte](std::uint32_t value) {
        return byte(0x80 | (value & 0x3F));
    };
    const std::uint32_t unit = static_cast<char16_t>(p.in[0]);
    if (unit < 0x80) {
        *p.out++ = byte(unit);
        p.in += 1;
        return true;
    }
    if (unit < 0x800) {
        if (room < 2)
            return false;
        p.out[0] = byte(0xC0 | unit >> 6);
        p.out[1] = trail(unit);
        p.out += 2;
        p.in += 1;
        return true;
    }
    if ((unit & 0xF800) != 0xD800) {
        if (room < 3)
            return false;
        p.out[0] = byte(0xE0 | unit >> 12);
        p.out[1] = trail(unit >> 6);
        p.out[2] = trail(unit);
        p.out += 3;
        p.in += 1;
        return true;
    }
    if (unit >= 0xDC00 || units < 2 || room < 4)
        return false;
    const std::uint32_t next = static_cast<char16_t>(p.in[1]);
    if ((next & 0xFC00) != 0xDC00)
        return false;
    const std::uint32_t value = 0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF));
    p.out[0] = byte(0xF0 | value >> 18);
    p.out[1] = trail(value >> 12);
    p.out[2] = trail(value >> 6);
    p.out[3] = trail(value);
    p.out += 4;
    p.in += 2;
    return true;
}

}  // namespace kiv::utf8

#endif
