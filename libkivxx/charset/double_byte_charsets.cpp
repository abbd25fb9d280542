#include "charset/double_byte_charsets.h"

namespace kiv {

Micsft_932::Micsft_932()
    : TableCharset(tables::micsft_932, 2024, u"Windows-31J"_usv,
                   {u"csWindows31J"_usv, u"MS932"_usv, u"windows-932"_usv})
{
}

Micsft_936::Micsft_936()
    : TableCharset(tables::micsft_936, 0, u"x-mswin-936"_usv,
                   {u"ms936"_usv, u"ms_936"_usv})
{
}

Micsft_949::Micsft_949()
    : TableCharset(tables::micsft_949, 0, u"x-windows-949"_usv,
                   {u"ms949"_usv, u"ms_949"_usv, u"windows-949"_usv, u"windows949"_usv})
{
}

Micsft_950::Micsft_950()
    : TableCharset(tables::micsft_950, 0, u"x-windows-950"_usv,
                   {u"ms950"_usv, u"windows-950"_usv})
{
}

Big5::Big5() : TableCharset(tables::big5, 2026, u"Big5"_usv, {u"csBig5"_usv}) {}

Big5_HKSCS::Big5_HKSCS()
    : TableCharset(
          tables::big5_hkscs, 2101, u"Big5-HKSCS"_usv,
          {u"csBig5HKSCS"_usv, u"Big5_HKSCS"_usv, u"big5hk"_usv, u"big5hkscs"_usv})
{
}

GBK::GBK()
    : TableCharset(tables::gbk, 113, u"GBK"_usv,
                   {u"CP936"_usv, u"windows-936"_usv, u"csGBK"_usv})
{
}

Shift_JIS::Shift_JIS()
    : TableCharset(tables::shift_jis, 17, u"Shift_JIS"_usv,
                   {u"MS_Kanji"_usv, u"csShiftJIS"_usv, u"shift-jis"_usv, u"sjis"_usv,
                    u"x-sjis"_usv})
{
}

}  // namespace kiv
