// charset/tables/sbcs_tables.h - the mappings of the single-byte charsets.
//
// decode has the UTF-16 code unit of each byte, or 0xDFFF (a lone low
// surrogate, which no byte stands for) where the charset has no character.
//
// The inverse comes in two layouts. Flat: index is null and encode[u] is the
// byte of unit u or -1, for u from 0 to highest. Sparse: units are cut into
// blocks of 2^N; index[u >> N] is 0xFFFF for a block without a mapped unit, else
// the position of the block's entries: encode[index[u >> N] | (u & (2^N - 1))].
// Each block that has a mapped unit is stored once, in order; none is shared.
//
// pages is the inverse once more, cut for wide registers: units below
// PAGED_UNITS fall into 128 pages of PAGE_SIZE. The first 128 bytes have the slot of
// each page, then come the slots: for each unit of the page its byte, or 0. Slot
// 0 is the page without a mapped unit; ASCII has no slot of its own.

#ifndef KIV_CHARSET_TABLES_SBCS_TABLES_H
#define KIV_CHARSET_TABLES_SBCS_TABLES_H

#include <cstdint>

#include "charset/tables/no_entry.h"

namespace kiv::tables {

constexpr unsigned PAGE_SIZE = 128;
constexpr unsigned PAGED_UNITS = 128 * PAGE_SIZE;

struct SbcsTables {
    const char16_t* decode;      // 256 entries
    std::uint32_t highest;       // the highest mapped code unit
    const std::uint16_t* index;  // (highest >> N) + 1 entries, or null
    const std::int16_t* encode;
    const unsigned char* pages;
};

extern const SbcsTables iso_8859_2;   // flat
extern const SbcsTables iso_8859_3;   // flat
extern const SbcsTables iso_8859_4;   // flat
extern const SbcsTables iso_8859_5;   // N = 7
extern const SbcsTables iso_8859_6;   // 6
extern const SbcsTables iso_8859_7;   // 6
extern const SbcsTables iso_8859_8;   // 6
extern const SbcsTables iso_8859_9;   // flat
extern const SbcsTables iso_8859_10;  // 7
extern const SbcsTables iso_8859_11;  // 6
extern const SbcsTables iso_8859_13;  // 7
extern const SbcsTables iso_8859_14;  // 7
extern const SbcsTables iso_8859_15;  // 7
extern const SbcsTables iso_8859_16;  // 6
extern const SbcsTables micsft_1250;  // 6
extern const SbcsTables micsft_1251;  // 6
extern const SbcsTables micsft_1252;  // 5
extern const SbcsTables micsft_1253;  // 5
extern const SbcsTables micsft_1254;  // 5
extern const SbcsTables micsft_1255;  // 5
extern const SbcsTables micsft_1256;  // 5
extern const SbcsTables micsft_1257;  // 6
extern const SbcsTables micsft_1258;  // 5
extern const SbcsTables micsft_874;   // 6
extern const SbcsTables koi8_r;       // 7
extern const SbcsTables koi8_u;       // 5

}  // namespace kiv::tables

#endif
