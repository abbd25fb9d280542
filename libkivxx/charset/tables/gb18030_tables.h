// charset/tables/gb18030_tables.h - GB 18030-2000.
//
// Two-byte and four-byte sequences share one space of keys:
//   two bytes   (b1 - 0x81) * 191 + (b2 - 0x40) + 256       256 .. 24321
//   four bytes  24322 + L, where the linear index L of 81308130 is 0
// Keys up to 63741 (8431A439) stand for characters of the Basic Multilingual
// Plane; a higher key k stands for the code point k - 147786.
//
// Both directions are cut into blocks of 64. An index entry below 0xFFF2 is the
// position of the block's entries in the data: code units by key, keys by code
// unit. An entry e from 0xFFF4 to 0xFFFE is a block in which all keys are the
// code units plus gb18030_offsets[0xFFFE - e]. 0xFFFF is a block that is never
// looked up: keys below 256, code units below 0x80, surrogates. Keys of trail byte
// 0x7F, which are no sequences, have 0xDFFF in the data. Indices and data have one
// entry more, 0, so that wide loads of the last entry stay within.

#ifndef KIV_CHARSET_TABLES_GB18030_TABLES_H
#define KIV_CHARSET_TABLES_GB18030_TABLES_H

#include <cstdint>

namespace kiv::tables {

extern const std::int32_t gb18030_offsets[13];         // key - code point
extern const std::uint16_t gb18030_decode_index[997];  // of keys 0 .. 63743
extern const char16_t gb18030_decode_data[31489];
extern const std::uint16_t gb18030_encode_index[1025];  // of all code units
extern const std::uint16_t gb18030_encode_data[31425];

}  // namespace kiv::tables

#endif
