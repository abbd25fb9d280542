// charset/charset_model.h - the charsets with tables written down once more: the
// mapping as data/charset has it and the rules of each form, one sequence at a
// time and without any speed. The library's own tables are never read.

#ifndef TESTS_CHARSET_CHARSET_MODEL_H
#define TESTS_CHARSET_CHARSET_MODEL_H

#include <cstdint>
#include <map>
#include <string>

#include "support/coder_check.h"

namespace model {

// The charsets with tables, the single-byte ones first.
inline constexpr const char* NAMES[] = {
    "ISO-8859-2",    "ISO-8859-3",    "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-6",
    "ISO-8859-7",    "ISO-8859-8",    "ISO-8859-9",   "ISO-8859-10",  "x-iso-8859-11",
    "ISO-8859-13",   "ISO-8859-14",   "ISO-8859-15",  "ISO-8859-16",  "windows-1250",
    "windows-1251",  "windows-1252",  "windows-1253", "windows-1254", "windows-1255",
    "windows-1256",  "windows-1257",  "windows-1258", "windows-874",  "KOI8-R",
    "KOI8-U",        "Windows-31J",   "Shift_JIS",    "x-mswin-936",  "GBK",
    "x-windows-949", "x-windows-950", "Big5",         "Big5-HKSCS",   "GB18030"};

// Which bytes make up a sequence.
enum class Form { SINGLE_BYTE, SHIFT_JIS, DOUBLE_BYTE, BIG5_HKSCS, GB18030 };

// The number that the bytes are, the first one highest. Sequences of several
// bytes begin with 0x81 or more, so none is confused with a shorter one.
using Sequence = std::uint32_t;

std::string bytes_of(Sequence sequence);
Sequence sequence_of(const std::string& bytes);
char32_t code_point(const std::u16string& unit_or_pair);

class CharsetModel {
public:
    explicit CharsetModel(const std::string& name);

    Form form() const { return m_form; }

    // What becomes of the input. What is left of a sequence is malformed at the
    // end of the input, else an item without output or fault.
    support::DecodeItems decode(const std::string& bytes, bool end_of_input = true) const;
    support::EncodeItems encode(const std::u16string& units,
                                bool end_of_input = true) const;

    // What the file lists.
    const std::map<Sequence, char32_t>& characters() const { return m_characters; }
    const std::map<char32_t, Sequence>& encodings() const { return m_encodings; }

private:
    void read_line(const std::string& line);
    support::DecodeItem front(const std::string& bytes) const;
    support::DecodeItem look_up(const std::string& sequence) const;
    std::string encoding_of(char32_t cp) const;

    Form m_form;
    std::map<Sequence, char32_t> m_characters;
    std::map<char32_t, Sequence> m_encodings;
};

}  // namespace model

#endif
