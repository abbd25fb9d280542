// charset/double_byte_charsets.h - the charsets of one and two bytes.

#ifndef KIV_CHARSET_DOUBLE_BYTE_CHARSETS_H
#define KIV_CHARSET_DOUBLE_BYTE_CHARSETS_H

#include "charset/dbcs.h"
#include "charset/table_charset.h"

namespace kiv {

template <class Traits>
using DoubleByteCharset = TableCharset<tables::DbcsTables<typename Traits::DecodeEntry>,
                                       DBCSDecoder<Traits>, DBCSEncoder<Traits>>;

class Micsft_932 final : public DoubleByteCharset<Micsft_932_Traits> {
public:
    Micsft_932();
};

class Micsft_936 final : public DoubleByteCharset<Micsft_936_Traits> {
public:
    Micsft_936();
};

class Micsft_949 final : public DoubleByteCharset<Micsft_949_Traits> {
public:
    Micsft_949();
};

class Micsft_950 final : public DoubleByteCharset<Micsft_950_Traits> {
public:
    Micsft_950();
};

class Big5 final : public DoubleByteCharset<Big5_Traits> {
public:
    Big5();
};

class Big5_HKSCS final : public DoubleByteCharset<Big5_HKSCS_Traits> {
public:
    Big5_HKSCS();
};

class GBK final : public DoubleByteCharset<GBK_Traits> {
public:
    GBK();
};

class Shift_JIS final : public DoubleByteCharset<Shift_JIS_Traits> {
public:
    Shift_JIS();
};

}  // namespace kiv

#endif
