// charset/dbcs_traits.h - what sets the double-byte charsets apart.

#ifndef KIV_CHARSET_DBCS_TRAITS_H
#define KIV_CHARSET_DBCS_TRAITS_H

namespace kiv {

struct ByteRange {
    unsigned char first;
    unsigned char last;
};

// One or two ranges of bytes; the second is empty if its first is above its last.
struct ByteRanges {
    ByteRange lower;
    ByteRange upper;

    constexpr bool contains(unsigned byte) const noexcept
    {
        return (byte >= lower.first && byte <= lower.last) ||
               (byte >= upper.first && byte <= upper.last);
    }
    constexpr bool has_upper() const noexcept { return upper.first <= upper.last; }
};

constexpr ByteRange NO_BYTES = {1, 0};

// The bytes of Shift_JIS and of EUC-like encodings, each with their extensions.
struct ShiftJisBytes {
    static constexpr ByteRanges LEAD = {{0x81, 0x9F}, {0xE0, 0xFC}};
    static constexpr ByteRanges TRAIL = {{0x40, 0x7E}, {0x80, 0xFC}};
};
struct ExtendedEucBytes {
    static constexpr ByteRanges LEAD = {{0x81, 0xFE}, NO_BYTES};
    static constexpr ByteRanges TRAIL = {{0x40, 0x7E}, {0x80, 0xFE}};
};

// DecodeEntry: what a decode table holds; char32_t if there are characters
// above U+FFFF. *_BLOCK_BITS: the sizes of the blocks that the tables are cut
// into. HIGHEST: the highest code point that is looked up when encoding.

struct Micsft_932_Traits : ShiftJisBytes {
    using DecodeEntry = char16_t;
    static constexpr unsigned DECODE_BLOCK_BITS = 6;
    static constexpr unsigned ENCODE_BLOCK_BITS = 5;
    static constexpr char32_t HIGHEST = 0xFFE5;
};

struct Shift_JIS_Traits : ShiftJisBytes {
    using DecodeEntry = char16_t;
    static constexpr unsigned DECODE_BLOCK_BITS = 6;
    static constexpr unsigned ENCODE_BLOCK_BITS = 6;
    static constexpr char32_t HIGHEST = 0xFFE5;
};

struct Micsft_936_Traits : ExtendedEucBytes {
    using DecodeEntry = char16_t;
    static constexpr unsigned DECODE_BLOCK_BITS = 14;
    static constexpr unsigned ENCODE_BLOCK_BITS = 6;
    static constexpr char32_t HIGHEST = 0xFFE5;
};

struct GBK_Traits : Micsft_936_Traits {};

struct Micsft_949_Traits : ExtendedEucBytes {
    using DecodeEntry = char16_t;
    static constexpr unsigned DECODE_BLOCK_BITS = 5;
    static constexpr unsigned ENCODE_BLOCK_BITS = 5;
    static constexpr char32_t HIGHEST = 0xFFE6;
};

struct Micsft_950_Traits : ExtendedEucBytes {
    using DecodeEntry = char16_t;
    static constexpr unsigned DECODE_BLOCK_BITS = 5;
    static constexpr unsigned ENCODE_BLOCK_BITS = 6;
    static constexpr char32_t HIGHEST = 0xFFE5;
};

struct Big5_Traits : ExtendedEucBytes {
    using DecodeEntry = char16_t;
    static constexpr unsigned DECODE_BLOCK_BITS = 5;
    static constexpr unsigned ENCODE_BLOCK_BITS = 6;
    static constexpr char32_t HIGHEST = 0xFF64;
};

struct Big5_HKSCS_Traits : ExtendedEucBytes {
    using DecodeEntry = char32_t;
    static constexpr ByteRanges TRAIL = {{0x40, 0x7E}, {0xA1, 0xFE}};
    static constexpr unsigned DECODE_BLOCK_BITS = 5;
    static constexpr unsigned ENCODE_BLOCK_BITS = 4;
    static constexpr char32_t HIGHEST = 0x2FFFD;
};

// --- Keys -------------------------------------------------------------------------

// The key of a lead byte with its trail byte, by which the decode tables are
// ordered; a single byte is its own key.
constexpr unsigned DBCS_ROW = 192;
constexpr unsigned dbcs_key(unsigned lead, unsigned trail) noexcept
{
    return (lead - 0x80) * DBCS_ROW + trail;
}

constexpr unsigned DBCS_LAST_KEY = dbcs_key(0xFE, 0xFE);

}  // namespace kiv

#endif
