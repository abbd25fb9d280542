// charset/tables/dbcs_tables.h - the mappings of the double-byte charsets.
//
// Every sequence has a key. A lead byte L with its trail byte T has the key
// (L - 0x80) * 192 + T, which is at least 256; a byte from 0x80 up that is no
// lead byte is its own key. Bytes and code points below 0x80 are not looked up.
//
// Both directions are cut into blocks of 2^B: the index has 0xFFFF for a block
// without a mapping, else the position of the block's entries in the data.
// The entry of key k is decode_data[decode_index[k >> B] | (k & (2^B - 1))]: the
// code point, or 0xDFFF for none. The entry of code point c is found alike and
// is 0xFFFF for none, below 0x100 one byte, else two bytes, the high one first.
// The decode index covers every key, the encode index every code point up to
// the highest that the charset's traits name. Every array has one entry more
// than that, 0, so that wide loads of the last entry stay within.

#ifndef KIV_CHARSET_TABLES_DBCS_TABLES_H
#define KIV_CHARSET_TABLES_DBCS_TABLES_H

#include <cstdint>

#include "charset/tables/no_entry.h"

namespace kiv::tables {

template <class DecodeEntry>  // char16_t, or char32_t if some lie above U+FFFF
struct DbcsTables {
    const std::uint16_t* decode_index;
    const DecodeEntry* decode_data;
    const std::uint16_t* encode_index;
    const std::uint16_t* encode_data;
};

// The two numbers of bits: B when decoding, when encoding.
extern const DbcsTables<char16_t> micsft_932;  //  6  5
extern const DbcsTables<char16_t> shift_jis;   //  6  6
extern const DbcsTables<char16_t> micsft_936;  // 14  6
extern const DbcsTables<char16_t> gbk;         // 14  6
extern const DbcsTables<char16_t> micsft_949;  //  5  5
extern const DbcsTables<char16_t> micsft_950;  //  5  6
extern const DbcsTables<char16_t> big5;        //  5  6
extern const DbcsTables<char32_t> big5_hkscs;  //  5  4

}  // namespace kiv::tables

#endif
