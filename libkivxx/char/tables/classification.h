// char/tables/classification.h - the class masks of UTF-16 code units.
//
// The masks fix the repertoire of Unicode 4.1: a unit that was unassigned then,
// a surrogate, a private-use unit and a noncharacter have mask 0.
//
// Two levels: classification_index has one entry for each block of 16 units.
// An entry with bit 15 set is a uniform block, its low 15 bits are the mask of
// all 16 units; otherwise the entry is where the block's run of 16 masks begins
// in classification_data. The arrays are generated.

#ifndef KIV_CHAR_TABLES_CLASSIFICATION_H
#define KIV_CHAR_TABLES_CLASSIFICATION_H

#include <cstdint>

namespace kiv::tables {

constexpr std::uint16_t MASK_UPPER = 0x001;
constexpr std::uint16_t MASK_LOWER = 0x002;
constexpr std::uint16_t MASK_DIGIT = 0x004;
constexpr std::uint16_t MASK_SPACE = 0x008;
constexpr std::uint16_t MASK_PUNCT = 0x010;  // punctuation and symbols
constexpr std::uint16_t MASK_CONTROL = 0x020;
constexpr std::uint16_t MASK_BLANK = 0x040;  // space that does not end a line by itself
constexpr std::uint16_t MASK_XDIGIT = 0x080;
constexpr std::uint16_t MASK_OTHER_ALPHA = 0x100;  // letters and marks without case

constexpr std::uint16_t CLASSIFICATION_UNIFORM = 0x8000;

extern const std::uint16_t classification_index[4096];
extern const std::uint16_t classification_data[5856];

// The MASK_ bits of any unit. Without a branch: in mixed text, which kind of
// block comes next is a coin toss.
inline unsigned classification_mask(std::uint16_t unit) noexcept
{
    const unsigned entry = classification_index[unit >> 4];
    const unsigned uniform = 0U - (entry >> 15);  // all ones or all zeros
    const unsigned at = (entry + (unit & 15U)) & ~uniform;
    return (entry & 0x7FFF & uniform) | (classification_data[at] & ~uniform);
}

}  // namespace kiv::tables

#endif
