#include "charset/charset_model.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "charset/unicode_model.h"
#include "companion/unicode_data.h"

namespace model {

using kiv::CoderResult;
using support::DecodeItem;
using support::DecodeItems;
using support::EncodeItem;
using support::EncodeItems;

std::string bytes_of(Sequence sequence)
{
    const std::string last(1, static_cast<char>(sequence % 0x100));
    return sequence < 0x100 ? last : bytes_of(sequence / 0x100) + last;
}

Sequence sequence_of(const std::string& bytes)
{
    Sequence sequence = 0;
    for (const char c : bytes)
        sequence = sequence * 0x100 + static_cast<unsigned char>(c);
    return sequence;
}

char32_t code_point(const std::u16string& unit_or_pair)
{
    if (unit_or_pair.size() == 1)
        return unit_or_pair[0];
    return 0x10000 + (unit_or_pair[0] - 0xD800U) * 0x400 + (unit_or_pair[1] - 0xDC00U);
}

// --- Reading ----------------------------------------------------------------------

namespace {

Form form_of(const std::string& name)
{
    static const std::map<std::string, Form> forms = {
        {"Windows-31J", Form::SHIFT_JIS},     {"Shift_JIS", Form::SHIFT_JIS},
        {"x-mswin-936", Form::DOUBLE_BYTE},   {"GBK", Form::DOUBLE_BYTE},
        {"x-windows-949", Form::DOUBLE_BYTE}, {"x-windows-950", Form::DOUBLE_BYTE},
        {"Big5", Form::DOUBLE_BYTE},          {"Big5-HKSCS", Form::BIG5_HKSCS},
        {"GB18030", Form::GB18030},
    };
    const auto found = forms.find(name);
    return found == forms.end() ? Form::SINGLE_BYTE : found->second;
}

}  // namespace

CharsetModel::CharsetModel(const std::string& name) : m_form(form_of(name))
{
    std::ifstream file(KIV_DATA_DIR "/charset/" + name + ".txt");
    for (std::string line; std::getline(file, line);)
        read_line(line.substr(0, line.find('#')));
    if (m_characters.empty())
        throw std::runtime_error("no data for " + name);
}

// "[delta] bytes <-> code points", which may be ranges and belong to ascending last
// bytes; -> and <- go one way only. A delta replaces what was read before.
void CharsetModel::read_line(const std::string& line)
{
    std::istringstream words(line);
    std::string word;
    std::string kind;
    if (words >> word && word == "delta")
        words >> word;
    if (!(words >> kind))
        return;
    Sequence sequence = static_cast<Sequence>(std::stoul(word, nullptr, 16));
    const bool undefined = kind == "undefined";
    if (kind != "<->" && kind != "->" && kind != "<-" && !undefined)
        throw std::runtime_error("not understood: " + line);
    while (undefined || words >> word) {
        const std::size_t dots = word.find("..");
        const auto hex = [](const std::string& digits) {
            return static_cast<char32_t>(std::stoul(digits, nullptr, 16));
        };
        char32_t cp = hex(word);
        const char32_t last = dots == std::string::npos ? cp : hex(word.substr(dots + 2));
        for (; cp <= last; ++cp, ++sequence) {
            const auto old = m_characters.find(sequence);
            if (kind != "<-" && old != m_characters.end()) {
                const auto encoding = m_encodings.find(old->second);
                if (encoding != m_encodings.end() && encoding->second == sequence)
                    m_encodings.erase(encoding);
                m_characters.erase(old);
            }
            if (undefined)
                return;
            if (kind != "<-")
                m_characters[sequence] = cp;
            if (kind != "->")
                m_encodings[cp] = sequence;
        }
    }
}

// --- Decoding ---------------------------------------------------------------------

namespace {

bool within(unsigned byte, unsigned first, unsigned last)
{
    return byte >= first && byte <= last;
}

bool is_lead(Form form, unsigned byte)
{
    if (form == Form::SHIFT_JIS)
        return within(byte, 0x81, 0x9F) || within(byte, 0xE0, 0xFC);
    return form != Form::SINGLE_BYTE && within(byte, 0x81, 0xFE);
}

bool is_trail(Form form, unsigned byte)
{
    if (form == Form::BIG5_HKSCS)
        return within(byte, 0x40, 0x7E) || within(byte, 0xA1, 0xFE);
    return within(byte, 0x40, form == Form::SHIFT_JIS ? 0xFC : 0xFE) && byte != 0x7F;
}

// Four bytes count as digits do, in the bases 126, 10, 126 and 10. The planes above
// the first begin at 90308130.
std::string gb18030_supplementary(char32_t cp)
{
    const std::uint32_t index = (0x90 - 0x81) * 12600 + (cp - 0x10000);
    return {static_cast<char>(0x81 + index / 12600),
            static_cast<char>('0' + index / 1260 % 10),
            static_cast<char>(0x81 + index / 10 % 126),
            static_cast<char>('0' + index % 10)};
}

}  // namespace

DecodeItem CharsetModel::look_up(const std::string& sequence) const
{
    const auto found = m_characters.find(sequence_of(sequence));
    if (found != m_characters.end())
        return {sequence, utf16(found->second)};
    if (sequence.size() == 4) {
        const auto digit = [&](std::size_t k, unsigned zero) {
            return static_cast<unsigned char>(sequence[k]) - zero;
        };
        const char32_t cp = 0x10000 + digit(0, 0x90) * 12600 + digit(1, '0') * 1260 +
                            digit(2, 0x81) * 10 + digit(3, '0');
        if (cp >= 0x10000 && cp <= 0x10FFFF)  // not so below 90308130
            return {sequence, utf16(cp)};
    }
    const auto size = static_cast<std::uint32_t>(sequence.size());
    return {sequence, {}, CoderResult::unmappable(size)};
}

DecodeItem CharsetModel::front(const std::string& bytes) const
{
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(bytes[k]); };
    const auto is_digit = [&](std::size_t k) { return within(byte(k), '0', '9'); };
    const auto first = [&](std::size_t size) { return bytes.substr(0, size); };
    const DecodeItem unfinished = {bytes, {}};
    const bool gb18030 = m_form == Form::GB18030;
    if (!is_lead(m_form, byte(0)))
        return gb18030 && byte(0) >= 0x80 ? malformed(first(1)) : look_up(first(1));
    if (bytes.size() == 1)
        return unfinished;
    if (is_trail(m_form, byte(1)))
        return look_up(first(2));
    if (!gb18030)
        return malformed(first(1));  // the second byte is the next sequence's first
    if (!is_digit(1))
        return malformed(first(2));  // here it is part of the fault
    if (bytes.size() == 2)
        return unfinished;
    if (!is_lead(m_form, byte(2)))
        return malformed(first(3));
    if (bytes.size() == 3)
        return unfinished;
    return is_digit(3) ? look_up(first(4)) : malformed(first(4));
}

DecodeItems CharsetModel::decode(const std::string& bytes, bool end_of_input) const
{
    DecodeItems items;
    for (std::size_t at = 0; at < bytes.size(); at += items.back().in.size()) {
        items.push_back(front(bytes.substr(at, 4)));  // no sequence is longer
        const DecodeItem& item = items.back();
        if (item.out.empty() && !item.fault.isError() && end_of_input)
            items.back() = malformed(item.in);
    }
    return items;
}

// --- Encoding ---------------------------------------------------------------------

std::string CharsetModel::encoding_of(char32_t cp) const
{
    if (m_form == Form::GB18030 && cp > 0xFFFF)
        return gb18030_supplementary(cp);
    const auto found = m_encodings.find(cp);
    return found == m_encodings.end() ? std::string() : bytes_of(found->second);
}

EncodeItems CharsetModel::encode(const std::u16string& units, bool end_of_input) const
{
    // As of Unicode 13, which had not assigned U+180F.
    static const std::vector<bool> ignorable = kivtest::read_properties(
        "17.0.0/binary_properties.txt")["Default_Ignorable_Code_Point"];
    EncodeItems items =
        model::encode(units, [this](char32_t cp) { return encoding_of(cp); });
    for (EncodeItem& item : items) {
        if (!item.out.empty() || item.fault.isError())
            continue;
        item.fault = CoderResult::unmappable(static_cast<std::uint32_t>(item.in.size()));
        const char32_t cp = code_point(item.in);
        item.dropped = ignorable.at(cp) && cp != 0x180F;
    }
    if (!end_of_input && !units.empty() && is_high(units.back()))
        items.back().fault = CoderResult::underflow();
    return items;
}

}  // namespace model
