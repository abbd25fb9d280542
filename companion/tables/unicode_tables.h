// companion/tables/unicode_tables.h - the properties of every code point.
//
// Code points with the same properties share a record. Two stages lead to the
// record: unicode_blocks numbers the block of 256 code points, in which
// unicode_numbers numbers the record; equal blocks are stored once. Case
// mappings are stored as distances, so that a whole alphabet needs few records.
// The arrays are generated.

#ifndef KIV_COMPANION_TABLES_UNICODE_TABLES_H
#define KIV_COMPANION_TABLES_UNICODE_TABLES_H

#include <cstdint>

#include "char/companion.h"

namespace kiv::companion {

// The bits of a record besides the UniCharClass (bits 0 to 5) and the public
// property bits UNI_IDENTIFIER_START, UNI_IDENTIFIER_PART and UNI_WHITESPACE.
constexpr std::uint32_t CLASS_MASK = 0x3F;
constexpr std::uint32_t ALPHABETIC = 1 << 6;
constexpr std::uint32_t LOWERCASE = 1 << 7;
constexpr std::uint32_t UPPERCASE = 1 << 8;
constexpr unsigned DIGIT_SHIFT = 24;  // above it: digit value + 1, 0 for none

constexpr std::uint32_t digit(std::uint32_t value)
{
    return (value + 1) << DIGIT_SHIFT;
}

struct CharacterRecord {
    std::uint32_t bits;
    std::int32_t to_lower;  // mapping minus code point
    std::int32_t to_upper;
    std::int32_t to_title;
};

extern const std::uint8_t unicode_blocks[0x110000 / 256];
extern const std::uint8_t unicode_numbers[];
extern const CharacterRecord unicode_records[];  // the first: unassigned

inline const CharacterRecord& record_of(std::int32_t cp) noexcept
{
    const auto value = static_cast<std::uint32_t>(cp);
    if (value > 0x10FFFF)
        return unicode_records[0];
    const std::uint32_t block = unicode_blocks[value >> 8];
    return unicode_records[unicode_numbers[block << 8 | (value & 0xFF)]];
}

}  // namespace kiv::companion

#endif
