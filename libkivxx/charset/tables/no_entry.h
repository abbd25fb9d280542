// charset/tables/no_entry.h - what the tables of charsets hold where there is nothing.

#ifndef KIV_CHARSET_TABLES_NO_ENTRY_H
#define KIV_CHARSET_TABLES_NO_ENTRY_H

#include <cstdint>

namespace kiv::tables {

// Decode tables, for bytes without a character: a lone low surrogate.
constexpr char16_t NO_CHARACTER = 0xDFFF;
// Encode tables of several bytes, for a code point without any.
constexpr std::uint16_t NO_CODE = 0xFFFF;
// Indices, for a block without a mapping.
constexpr std::uint16_t NO_BLOCK = 0xFFFF;

}  // namespace kiv::tables

#endif
