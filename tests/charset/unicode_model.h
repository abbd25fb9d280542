// charset/unicode_model.h - the Unicode encodings written down once more, one
// sequence at a time and without any speed, for the tests to compare with.

#ifndef TESTS_CHARSET_UNICODE_MODEL_H
#define TESTS_CHARSET_UNICODE_MODEL_H

#include <cstdint>
#include <string>

#include "support/coder_check.h"

namespace model {

inline bool is_high(char32_t u)
{
    return u >= 0xD800 && u <= 0xDBFF;
}
inline bool is_low(char32_t u)
{
    return u >= 0xDC00 && u <= 0xDFFF;
}

inline std::u16string utf16(char32_t cp)
{
    if (cp < 0x10000)
        return {static_cast<char16_t>(cp)};
    return {static_cast<char16_t>(0xD800 + (cp - 0x10000) / 0x400),
            static_cast<char16_t>(0xDC00 + (cp - 0x10000) % 0x400)};
}

inline std::string utf8(char32_t cp)
{
    const auto trail = [cp](int shift) {
        return static_cast<char>(0x80 + (cp >> shift) % 0x40);
    };
    if (cp < 0x80)
        return {static_cast<char>(cp)};
    if (cp < 0x800)
        return {static_cast<char>(0xC0 + cp / 0x40), trail(0)};
    if (cp < 0x10000)
        return {static_cast<char>(0xE0 + cp / 0x1000), trail(6), trail(0)};
    return {static_cast<char>(0xF0 + cp / 0x40000), trail(12), trail(6), trail(0)};
}

inline std::string cesu8(char32_t cp)
{
    std::string bytes;
    for (const char16_t unit : utf16(cp))
        bytes += utf8(unit);
    return bytes;
}

inline std::string utf16_bytes(const std::u16string& units, bool little)
{
    std::string bytes;
    for (const char16_t unit : units) {
        const char high = static_cast<char>(unit / 0x100);
        const char low = static_cast<char>(unit % 0x100);
        bytes += little ? std::string{low, high} : std::string{high, low};
    }
    return bytes;
}

inline support::DecodeItem malformed(const std::string& bytes)
{
    const auto length = static_cast<std::uint32_t>(bytes.size());
    return {bytes, {}, kiv::CoderResult::malformed(length)};
}

// What becomes of any bytes when all of them are there: the end of `bytes` is
// the end of the input.
inline support::DecodeItems decode_utf8(const std::string& bytes, bool cesu)
{
    support::DecodeItems items;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto byte = [&](std::size_t k) {
            return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + k]));
        };
        const std::size_t left = bytes.size() - at;
        const std::uint32_t lead = byte(0);
        const std::size_t length = lead < 0x80            ? 1
                                   : lead < 0xC0          ? 0
                                   : lead < 0xE0          ? 2
                                   : lead < 0xF0          ? 3
                                   : lead < 0xF8 && !cesu ? 4
                                                          : 0;
        std::size_t faulty = 0;
        char32_t cp = 0;
        if (length == 0) {
            faulty = 1;
        } else if (left < length) {
            faulty = left;
        } else {
            cp = length == 1 ? lead : lead & (0xFFu >> (length + 1));
            for (std::size_t k = 1; k < length && faulty == 0; ++k) {
                if (byte(k) < 0x80 || byte(k) > 0xBF)
                    faulty = k + 1;
                cp = cp << 6 | (byte(k) & 0x3F);
            }
            constexpr char32_t LEAST[] = {0, 0, 0x80, 0x800, 0x10000};
            const bool surrogate = cp >= 0xD800 && cp <= 0xDFFF && !cesu;
            if (faulty == 0 && (cp < LEAST[length] || cp > 0x10FFFF || surrogate))
                faulty = length;
        }
        if (faulty != 0)
            items.push_back(malformed(bytes.substr(at, faulty)));
        else
            items.push_back({bytes.substr(at, length), utf16(cp)});
        at += items.back().in.size();
    }
    return items;
}

inline support::DecodeItems decode_utf16(const std::string& bytes, bool little)
{
    support::DecodeItems items;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto unit = [&](std::size_t k) {
            const auto first = static_cast<unsigned char>(bytes[at + k]);
            const auto second = static_cast<unsigned char>(bytes[at + k + 1]);
            return static_cast<char16_t>(little ? second * 0x100 + first
                                                : first * 0x100 + second);
        };
        const std::size_t left = bytes.size() - at;
        const bool high = left >= 2 && is_high(unit(0));
        if (left < (high ? 4 : 2))
            items.push_back(malformed(bytes.substr(at)));
        else if (high && is_low(unit(2)))
            items.push_back({bytes.substr(at, 4), {unit(0), unit(2)}});
        else if (high || is_low(unit(0)) || unit(0) == 0xFFFE)
            items.push_back(malformed(bytes.substr(at, 2)));
        else
            items.push_back({bytes.substr(at, 2), {unit(0)}});
        at += items.back().in.size();
    }
    return items;
}

// Any units, by an encoding that has all code points.
template <class EncodePoint>
support::EncodeItems encode(const std::u16string& units, EncodePoint encode_point)
{
    support::EncodeItems items;
    for (std::size_t at = 0; at < units.size();) {
        const char16_t unit = units[at];
        if (is_high(unit) && at + 1 < units.size() && is_low(units[at + 1])) {
            const char32_t cp =
                0x10000 + (unit - 0xD800u) * 0x400 + (units[at + 1] - 0xDC00u);
            items.push_back({units.substr(at, 2), encode_point(cp)});
        } else if (is_high(unit) || is_low(unit)) {
            items.push_back({units.substr(at, 1), {}, kiv::CoderResult::malformed(1)});
        } else {
            items.push_back({units.substr(at, 1), encode_point(unit)});
        }
        at += items.back().in.size();
    }
    return items;
}

}  // namespace model

#endif
