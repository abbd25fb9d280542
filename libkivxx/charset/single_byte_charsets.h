// charset/single_byte_charsets.h - the single-byte charsets that have tables.

#ifndef KIV_CHARSET_SINGLE_BYTE_CHARSETS_H
#define KIV_CHARSET_SINGLE_BYTE_CHARSETS_H

#include "charset/sbcs.h"
#include "charset/table_charset.h"

namespace kiv {

// COMPLETE: every byte has a character.
template <bool COMPLETE, class Encoder>
using SingleByteCharset =
    TableCharset<tables::SbcsTables, SBCSDecoder<COMPLETE>, Encoder>;

class ISO_8859_2 final : public SingleByteCharset<true, SBCSEncoder> {
public:
    ISO_8859_2();
};

class ISO_8859_3 final : public SingleByteCharset<false, SBCSEncoder> {
public:
    ISO_8859_3();
};

class ISO_8859_4 final : public SingleByteCharset<true, SBCSEncoder> {
public:
    ISO_8859_4();
};

class ISO_8859_5 final : public SingleByteCharset<true, SBCSSparseEncoder<7>> {
public:
    ISO_8859_5();
};

class ISO_8859_6 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    ISO_8859_6();
};

class ISO_8859_7 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    ISO_8859_7();
};

class ISO_8859_8 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    ISO_8859_8();
};

class ISO_8859_9 final : public SingleByteCharset<true, SBCSEncoder> {
public:
    ISO_8859_9();
};

class ISO_8859_10 final : public SingleByteCharset<true, SBCSSparseEncoder<7>> {
public:
    ISO_8859_10();
};

class ISO_8859_11 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    ISO_8859_11();
};

class ISO_8859_13 final : public SingleByteCharset<true, SBCSSparseEncoder<7>> {
public:
    ISO_8859_13();
};

class ISO_8859_14 final : public SingleByteCharset<true, SBCSSparseEncoder<7>> {
public:
    ISO_8859_14();
};

class ISO_8859_15 final : public SingleByteCharset<true, SBCSSparseEncoder<7>> {
public:
    ISO_8859_15();
};

class ISO_8859_16 final : public SingleByteCharset<true, SBCSSparseEncoder<6>> {
public:
    ISO_8859_16();
};

class Micsft_1250 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    Micsft_1250();
};

class Micsft_1251 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    Micsft_1251();
};

class Micsft_1252 final : public SingleByteCharset<false, SBCSSparseEncoder<5>> {
public:
    Micsft_1252();
};

class Micsft_1253 final : public SingleByteCharset<false, SBCSSparseEncoder<5>> {
public:
    Micsft_1253();
};

class Micsft_1254 final : public SingleByteCharset<false, SBCSSparseEncoder<5>> {
public:
    Micsft_1254();
};

class Micsft_1255 final : public SingleByteCharset<false, SBCSSparseEncoder<5>> {
public:
    Micsft_1255();
};

class Micsft_1256 final : public SingleByteCharset<true, SBCSSparseEncoder<5>> {
public:
    Micsft_1256();
};

class Micsft_1257 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    Micsft_1257();
};

class Micsft_1258 final : public SingleByteCharset<false, SBCSSparseEncoder<5>> {
public:
    Micsft_1258();
};

class Micsft_874 final : public SingleByteCharset<false, SBCSSparseEncoder<6>> {
public:
    Micsft_874();
};

class KOI8_R final : public SingleByteCharset<true, SBCSSparseEncoder<7>> {
public:
    KOI8_R();
};

class KOI8_U final : public SingleByteCharset<true, SBCSSparseEncoder<5>> {
public:
    KOI8_U();
};

}  // namespace kiv

#endif
