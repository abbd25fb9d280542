#include "fault.h"

#include <cstdio>

#include "charset_names.h"

namespace kivconv {
namespace {

std::string hex(char32_t value, int digits)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, static_cast<unsigned>(value));
    return text;
}

std::string hex(Bytes bytes)
{
    std::string text;
    for (const unsigned char byte : bytes)
        text.append(text.empty() ? "" : " ").append(hex(byte, 2));
    return text;
}

bool is_high_surrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}
bool is_low_surrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr const char* ENDS_WITHIN = "the input ends within a character";

// For a sequence of UTF-8 or CESU-8 all of whose bytes are in their ranges.
std::string explain_utf8_value(Bytes bytes)
{
    char32_t value = bytes[0] & (bytes.size() == 2   ? 0x1F
                                 : bytes.size() == 3 ? 0x0F
                                                     : 0x07);
    for (const unsigned char byte : bytes.subspan(1))
        value = value << 6 | (byte & 0x3F);

    if (is_high_surrogate(value) || is_low_surrogate(value))
        return "U+" + hex(value, 4) +
               " is half of a surrogate pair, which only CESU-8 would encode";
    if (value > 0x10FFFF)
        return "U+" + hex(value, 4) + " is beyond the last code point, U+10FFFF";
    return "U+" + hex(value, 4) + " has a shorter form, which must be used";
}

std::string explain_utf8(Bytes bytes, bool cesu)
{
    const unsigned char lead = bytes[0];
    const std::string lead_text = hex(lead, 2);
    if (lead < 0xC0)
        return "the byte " + lead_text + " can only continue a character, not begin one";
    if (lead > 0xF7)
        return "the byte " + lead_text + " never occurs in it";
    if (cesu && lead >= 0xF0)
        return "characters above U+FFFF are two 3-byte sequences; the input may be UTF-8";

    const std::size_t size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    for (std::size_t i = 1; i < bytes.size(); ++i)
        if ((bytes[i] & 0xC0) != 0x80)
            return i == 1
                       ? "the byte after the lead byte " + lead_text + " must be 80 to BF"
                       : "byte " + std::to_string(i + 1) + " of " + std::to_string(size) +
                             " must be 80 to BF";
    if (bytes.size() < size)
        return std::string(ENDS_WITHIN) + " of " + std::to_string(size) + " bytes";
    return explain_utf8_value(bytes);
}

std::string explain_utf16(Bytes bytes, bool little, bool cut_short)
{
    if (bytes.size() == 1)
        return "the input ends within a unit of 2 bytes";
    const unsigned first = bytes[little ? 1 : 0];
    const unsigned second = bytes[little ? 0 : 1];
    const char32_t unit = first << 8 | second;
    if (unit == 0xFFFE)
        return std::string(
                   "it is a byte-order mark with its bytes swapped; the input may be ") +
               (little ? "UTF-16BE" : "UTF-16LE");
    if (is_low_surrogate(unit))
        return "a low surrogate must follow a high one (D800 to DBFF)";
    if (cut_short)
        return "the input ends within a surrogate pair";
    return "a low surrogate (DC00 to DFFF) must follow the high one";
}

std::string explain(const kiv::Charset& from, Bytes bytes, bool cut_short)
{
    if (&from == kiv::Charset::UTF_8 || &from == kiv::Charset::CESU_8)
        return explain_utf8(bytes, &from == kiv::Charset::CESU_8);
    if (&from == kiv::Charset::UTF_16BE || &from == kiv::Charset::UTF_16LE)
        return explain_utf16(bytes, &from == kiv::Charset::UTF_16LE, cut_short);
    if (&from == kiv::Charset::US_ASCII)
        return "its bytes are 00 to 7F";
    return cut_short ? ENDS_WITHIN : "no character is encoded so";
}

// What a charset without a table can write, for the reader of an error.
std::string repertoire(const kiv::Charset& to)
{
    if (&to == kiv::Charset::US_ASCII)
        return ", which has U+0000 to U+007F";
    if (&to == kiv::Charset::ISO_8859_1)
        return ", which has U+0000 to U+00FF";
    return {};
}

}  // namespace

std::string describe_undecodable(const kiv::Charset& from, Bytes bytes,
                                 kiv::CoderResult::Kind kind, bool cut_short)
{
    const std::string name = name_of(from);
    if (kind == kiv::CoderResult::UNMAPPABLE)
        return hex(bytes) + " stands for no character in " + name;
    return hex(bytes) + " is not " + name + ": " + explain(from, bytes, cut_short);
}

std::string code_point_text(kiv::basic_string_ref<kiv::char16> units)
{
    char32_t value = char16_t{units[0]};
    if (units.size() == 2)
        value = 0x10000 + ((value & 0x3FF) << 10 | (char16_t{units[1]} & 0x3FFu));
    return "U+" + hex(value, 4);
}

std::string describe_unencodable(const kiv::Charset& to, Bytes bytes,
                                 kiv::basic_string_ref<kiv::char16> units,
                                 kiv::CoderResult::Kind kind)
{
    const std::string character = hex(bytes) + " (" + code_point_text(units) + ")";
    if (kind == kiv::CoderResult::MALFORMED)
        return character + " is half of a surrogate pair; the other half is missing";
    return character + " cannot be written in " + name_of(to) + repertoire(to);
}

}  // namespace kivconv
