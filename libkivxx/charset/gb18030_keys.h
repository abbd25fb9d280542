// charset/gb18030_keys.h - the key space that the sequences of GB 18030 share, and
// what its tables have for keys and units.
//
// Keys of two bytes, of four bytes in the Basic Multilingual Plane and of
// supplementary code points follow each other; tables/gb18030_tables.h has the
// ranges and the layout.

#ifndef KIV_CHARSET_GB18030_KEYS_H
#define KIV_CHARSET_GB18030_KEYS_H

#include "charset/dbcs_traits.h"
#include "charset/tables/gb18030_tables.h"

namespace kiv::gb18030 {

constexpr ByteRanges LEAD = {{0x81, 0xFE}, NO_BYTES};
constexpr ByteRanges TRAIL = {{0x40, 0x7E}, {0x80, 0xFE}};
constexpr ByteRanges DIGIT = {{0x30, 0x39}, NO_BYTES};

constexpr unsigned LEADS = 126;
constexpr unsigned DIGITS = 10;
constexpr unsigned PAIRS = LEADS * DIGITS;  // each half of four bytes
constexpr unsigned TWO_BYTE_ROW = 191;      // trail bytes 40..FE, 7F counted

constexpr unsigned FIRST_TWO_BYTE_KEY = 256;
constexpr unsigned FIRST_FOUR_BYTE_KEY = FIRST_TWO_BYTE_KEY + LEADS * TWO_BYTE_ROW;

constexpr unsigned two_byte_key(unsigned lead, unsigned trail) noexcept
{
    return (lead - 0x81) * TWO_BYTE_ROW + (trail - 0x40) + FIRST_TWO_BYTE_KEY;
}

constexpr unsigned four_byte_key(unsigned b1, unsigned b2, unsigned b3,
                                 unsigned b4) noexcept
{
    const unsigned front = (b1 - 0x81) * DIGITS + (b2 - 0x30);
    const unsigned back = (b3 - 0x81) * DIGITS + (b4 - 0x30);
    return FIRST_FOUR_BYTE_KEY + front * PAIRS + back;
}

// Behind that of U+FFFF; and key - code point from U+10000 on.
constexpr unsigned FIRST_SUPPLEMENTARY_KEY = four_byte_key(0x84, 0x31, 0xA4, 0x39) + 1;
constexpr unsigned SUPPLEMENTARY_KEY_OFFSET =
    four_byte_key(0x90, 0x30, 0x81, 0x30) - 0x10000;

constexpr unsigned BLOCK_BITS = 6;
constexpr unsigned IN_BLOCK = (1U << BLOCK_BITS) - 1;
// Index entries from here on are an offset instead of a place in the data, the last
// but one the first offset.
constexpr unsigned FIRST_SPECIAL = 0xFFF2;
constexpr unsigned LAST_OFFSET = 0xFFFE;

inline unsigned offset_of(unsigned entry) noexcept
{
    return static_cast<unsigned>(tables::gb18030_offsets[LAST_OFFSET - entry]);
}

// The code unit of a key below FIRST_SUPPLEMENTARY_KEY.
inline char16_t unit_of(const std::uint16_t* index, const char16_t* data,
                        unsigned key) noexcept
{
    const unsigned entry = index[key >> BLOCK_BITS];
    return entry < FIRST_SPECIAL ? data[entry | (key & IN_BLOCK)]
                                 : static_cast<char16_t>(key - offset_of(entry));
}

// The key of a unit from 0x80 up that is no surrogate.
inline unsigned key_of(const std::uint16_t* index, const std::uint16_t* data,
                       unsigned unit) noexcept
{
    const unsigned entry = index[unit >> BLOCK_BITS];
    return entry < FIRST_SPECIAL ? data[entry | (unit & IN_BLOCK)]
                                 : unit + offset_of(entry);
}

inline void store_two_bytes(unsigned char* out, unsigned key) noexcept
{
    const unsigned index = key - FIRST_TWO_BYTE_KEY;
    out[0] = static_cast<unsigned char>(index / TWO_BYTE_ROW + 0x81);
    out[1] = static_cast<unsigned char>(index % TWO_BYTE_ROW + 0x40);
}

inline void store_four_bytes(unsigned char* out, unsigned key) noexcept
{
    const auto store_pair = [](unsigned char* p, unsigned pair) {
        p[0] = static_cast<unsigned char>(pair / DIGITS + 0x81);
        p[1] = static_cast<unsigned char>(pair % DIGITS + 0x30);
    };
    const unsigned index = key - FIRST_FOUR_BYTE_KEY;
    store_pair(out, index / PAIRS);
    store_pair(out + 2, index % PAIRS);
}

}  // namespace kiv::gb18030

#endif
