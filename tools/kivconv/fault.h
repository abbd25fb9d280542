// fault.h - plain words for what does not convert.

#ifndef KIVCONV_FAULT_H
#define KIVCONV_FAULT_H

#include <span>
#include <string>

#include <kiv/charset.h>

namespace kivconv {

using Bytes = std::span<const unsigned char>;

// "E2 28 is not UTF-8: the byte after the lead byte E2 must be 80 to BF".
// cut_short: the bytes would be legal so far if the input did not end.
std::string describe_undecodable(const kiv::Charset& from, Bytes bytes,
                                 kiv::CoderResult::Kind kind, bool cut_short);

// "E2 82 AC (U+20AC) cannot be written in US-ASCII", for the bytes that a
// character was decoded from and its one or two units.
std::string describe_unencodable(const kiv::Charset& to, Bytes bytes,
                                 kiv::basic_string_ref<kiv::char16> units,
                                 kiv::CoderResult::Kind kind);

// "U+20AC", for a unit or a surrogate pair.
std::string code_point_text(kiv::basic_string_ref<kiv::char16> units);

}  // namespace kivconv

#endif
