// charset/gb18030_keys.h - the key space that the sequences of GB 18030 share.
//
// Keys of two bytes, of four bytes in the Basic Multilingual Plane and of
// supplementary code points follow each other; tables/gb18030_tables.h has the
// ranges.

#ifndef KIV_CHARSET_GB18030_KEYS_H
#define KIV_CHARSET_GB18030_KEYS_H

#include "charset/dbcs_traits.h"

namespace kiv::gb18030 {

constexpr ByteRanges LEAD = {{0x81, 0xFE}, NO_BYTES};
constexpr ByteRanges TRAIL = {{0x40, 0x7E}, {0x80, 0xFE}};
constexpr ByteRanges DIGIT = {{0x30, 0x39}, NO_BYTES};

constexpr unsigned TWO_BYTE_ROW = 191;  // trail bytes 40..FE, 7F counted
constexpr unsigned FIRST_TWO_BYTE_KEY = 256;
constexpr unsigned FIRST_FOUR_BYTE_KEY = FIRST_TWO_BYTE_KEY + 126 * TWO_BYTE_ROW;
constexpr unsigned FIRST_SUPPLEMENTARY_KEY = 63742;    // behind 8431A439, U+FFFF
constexpr unsigned SUPPLEMENTARY_KEY_OFFSET = 147786;  // key - code point

constexpr unsigned BLOCK_BITS = 6;
// Index entries: up to here the block is one offset instead of a place in the data.
constexpr unsigned FIRST_SPECIAL = 0xFFF2;
constexpr unsigned LAST_OFFSET = 0xFFFE;  // of offset 0; they go downwards

constexpr unsigned two_byte_key(unsigned lead, unsigned trail) noexcept
{
    return (lead - 0x81) * TWO_BYTE_ROW + (trail - 0x40) + FIRST_TWO_BYTE_KEY;
}

constexpr unsigned four_byte_key(const unsigned char* b) noexcept
{
    const unsigned front = (b[0] - 0x81U) * 10 + (b[1] - 0x30U);
    const unsigned back = (b[2] - 0x81U) * 10 + (b[3] - 0x30U);
    return FIRST_FOUR_BYTE_KEY + front * 1260 + back;
}

}  // namespace kiv::gb18030

#endif
