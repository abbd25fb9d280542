#include "charset/single_byte_charsets.h"

namespace kiv {

ISO_8859_2::ISO_8859_2()
    : TableCharset(
          tables::iso_8859_2, 5, u"ISO-8859-2"_usv,
          {u"ISO_8859-2:1987"_usv, u"iso-ir-101"_usv, u"ISO_8859-2"_usv, u"latin2"_usv,
           u"l2"_usv, u"csISOLatin2"_usv, u"ISO8859-2"_usv, u"ibm912"_usv, u"8859_2"_usv,
           u"cp912"_usv, u"iso8859_2"_usv, u"912"_usv, u"ibm-912"_usv})
{
}

ISO_8859_3::ISO_8859_3()
    : TableCharset(
          tables::iso_8859_3, 6, u"ISO-8859-3"_usv,
          {u"ISO_8859-3:1988"_usv, u"iso-ir-109"_usv, u"ISO_8859-3"_usv, u"latin3"_usv,
           u"l3"_usv, u"csISOLatin3"_usv, u"ISO8859-3"_usv, u"ibm913"_usv, u"8859_3"_usv,
           u"cp913"_usv, u"iso8859_3"_usv, u"913"_usv, u"ibm-913"_usv})
{
}

ISO_8859_4::ISO_8859_4()
    : TableCharset(
          tables::iso_8859_4, 7, u"ISO-8859-4"_usv,
          {u"ISO_8859-4:1988"_usv, u"iso-ir-110"_usv, u"ISO_8859-4"_usv, u"latin4"_usv,
           u"l4"_usv, u"csISOLatin4"_usv, u"8859_4"_usv, u"cp914"_usv, u"ibm914"_usv,
           u"iso8859_4"_usv, u"iso8859-4"_usv, u"914"_usv, u"ibm-914"_usv})
{
}

ISO_8859_5::ISO_8859_5()
    : TableCharset(
          tables::iso_8859_5, 8, u"ISO-8859-5"_usv,
          {u"ISO_8859-5:1988"_usv, u"iso-ir-144"_usv, u"ISO_8859-5"_usv, u"cyrillic"_usv,
           u"csISOLatinCyrillic"_usv, u"iso8859_5"_usv, u"cp915"_usv, u"8859_5"_usv,
           u"ibm-915"_usv, u"ibm915"_usv, u"915"_usv, u"ISO8859-5"_usv})
{
}

ISO_8859_6::ISO_8859_6()
    : TableCharset(
          tables::iso_8859_6, 9, u"ISO-8859-6"_usv,
          {u"ISO_8859-6:1987"_usv, u"iso-ir-127"_usv, u"ISO_8859-6"_usv, u"ECMA-114"_usv,
           u"ASMO-708"_usv, u"arabic"_usv, u"csISOLatinArabic"_usv, u"8859_6"_usv,
           u"iso8859_6"_usv, u"ibm1089"_usv, u"ibm-1089"_usv, u"1089"_usv,
           u"ISO8859-6"_usv, u"cp1089"_usv})
{
}

ISO_8859_7::ISO_8859_7()
    : TableCharset(
          tables::iso_8859_7, 10, u"ISO-8859-7"_usv,
          {u"ISO_8859-7:1987"_usv, u"iso-ir-126"_usv, u"ISO_8859-7"_usv, u"ELOT_928"_usv,
           u"ECMA-118"_usv, u"greek"_usv, u"greek8"_usv, u"csISOLatinGreek"_usv,
           u"8859_7"_usv, u"ibm813"_usv, u"iso8859_7"_usv, u"cp813"_usv,
           u"sun_eu_greek"_usv, u"813"_usv, u"iso8859-7"_usv, u"ibm-813"_usv})
{
}

ISO_8859_8::ISO_8859_8()
    : TableCharset(
          tables::iso_8859_8, 11, u"ISO-8859-8"_usv,
          {u"ISO_8859-8:1988"_usv, u"iso-ir-138"_usv, u"ISO_8859-8"_usv, u"hebrew"_usv,
           u"csISOLatinHebrew"_usv, u"8859_8"_usv, u"cp916"_usv, u"ISO8859-8"_usv,
           u"iso8859_8"_usv, u"ibm-916"_usv, u"916"_usv, u"ibm916"_usv})
{
}

ISO_8859_9::ISO_8859_9()
    : TableCharset(
          tables::iso_8859_9, 12, u"ISO-8859-9"_usv,
          {u"ISO_8859-9:1989"_usv, u"iso-ir-148"_usv, u"ISO_8859-9"_usv, u"latin5"_usv,
           u"l5"_usv, u"csISOLatin5"_usv, u"ibm-920"_usv, u"8859_9"_usv, u"ibm920"_usv,
           u"iso8859_9"_usv, u"cp920"_usv, u"920"_usv, u"ISO8859-9"_usv})
{
}

ISO_8859_10::ISO_8859_10()
    : TableCharset(tables::iso_8859_10, 13, u"ISO-8859-10"_usv,
                   {u"ISO_8859-10:1992"_usv, u"iso-ir-157"_usv, u"l6"_usv,
                    u"csISOLatin6"_usv, u"latin6"_usv})
{
}

ISO_8859_11::ISO_8859_11()
    : TableCharset(tables::iso_8859_11, 0, u"x-iso-8859-11"_usv,
                   {u"iso-8859-11"_usv, u"iso8859_11"_usv})
{
}

ISO_8859_13::ISO_8859_13()
    : TableCharset(tables::iso_8859_13, 109, u"ISO-8859-13"_usv,
                   {u"csISO885913"_usv, u"iso_8859-13"_usv, u"ISO8859-13"_usv,
                    u"iso8859_13"_usv, u"8859_13"_usv})
{
}

ISO_8859_14::ISO_8859_14()
    : TableCharset(tables::iso_8859_14, 110, u"ISO-8859-14"_usv,
                   {u"ISO_8859-14:1998"_usv, u"iso-ir-199"_usv, u"ISO_8859-14"_usv,
                    u"latin8"_usv, u"iso-celtic"_usv, u"l8"_usv, u"csISO885914"_usv})
{
}

ISO_8859_15::ISO_8859_15()
    : TableCharset(
          tables::iso_8859_15, 111, u"ISO-8859-15"_usv,
          {u"ISO_8859-15"_usv, u"Latin-9"_usv, u"csISO885915"_usv, u"ISO8859-15"_usv,
           u"LATIN0"_usv, u"ISO8859_15_FDIS"_usv, u"ISO8859_15"_usv, u"cp923"_usv,
           u"8859_15"_usv, u"L9"_usv, u"IBM923"_usv, u"csISOlatin9"_usv, u"IBM-923"_usv,
           u"csISOlatin0"_usv, u"923"_usv, u"LATIN9"_usv})
{
}

ISO_8859_16::ISO_8859_16()
    : TableCharset(tables::iso_8859_16, 112, u"ISO-8859-16"_usv,
                   {u"ISO_8859-16:2001"_usv, u"iso-ir-226"_usv, u"ISO_8859-16"_usv,
                    u"latin10"_usv, u"l10"_usv, u"csISO885916"_usv})
{
}

Micsft_1250::Micsft_1250()
    : TableCharset(tables::micsft_1250, 2250, u"windows-1250"_usv,
                   {u"cswindows1250"_usv, u"cp1250"_usv, u"cp5346"_usv})
{
}

Micsft_1251::Micsft_1251()
    : TableCharset(tables::micsft_1251, 2251, u"windows-1251"_usv,
                   {u"cswindows1251"_usv, u"ansi-1251"_usv, u"cp1251"_usv, u"cp5347"_usv})
{
}

Micsft_1252::Micsft_1252()
    : TableCharset(tables::micsft_1252, 2252, u"windows-1252"_usv,
                   {u"cswindows1252"_usv, u"cp1252"_usv, u"cp5348"_usv})
{
}

Micsft_1253::Micsft_1253()
    : TableCharset(tables::micsft_1253, 2253, u"windows-1253"_usv,
                   {u"cswindows1253"_usv, u"cp1253"_usv, u"cp5349"_usv})
{
}

Micsft_1254::Micsft_1254()
    : TableCharset(tables::micsft_1254, 2254, u"windows-1254"_usv,
                   {u"cswindows1254"_usv, u"cp1254"_usv, u"cp5350"_usv})
{
}

Micsft_1255::Micsft_1255()
    : TableCharset(tables::micsft_1255, 2255, u"windows-1255"_usv,
                   {u"cswindows1255"_usv, u"cp1255"_usv})
{
}

Micsft_1256::Micsft_1256()
    : TableCharset(tables::micsft_1256, 2256, u"windows-1256"_usv,
                   {u"cswindows1256"_usv, u"cp1256"_usv})
{
}

Micsft_1257::Micsft_1257()
    : TableCharset(tables::micsft_1257, 2257, u"windows-1257"_usv,
                   {u"cswindows1257"_usv, u"cp1257"_usv, u"cp5353"_usv})
{
}

Micsft_1258::Micsft_1258()
    : TableCharset(tables::micsft_1258, 2258, u"windows-1258"_usv,
                   {u"cswindows1258"_usv, u"cp1258"_usv})
{
}

Micsft_874::Micsft_874()
    : TableCharset(
          tables::micsft_874, 2109, u"windows-874"_usv,
          {u"cswindows874"_usv, u"ms-874"_usv, u"ms874"_usv, u"x-windows-874"_usv})
{
}

KOI8_R::KOI8_R()
    : TableCharset(tables::koi8_r, 2084, u"KOI8-R"_usv,
                   {u"csKOI8R"_usv, u"cp878"_usv, u"ibm-878"_usv,
                    u"ibm-878_P100-1996"_usv, u"koi8"_usv, u"windows-20866"_usv})
{
}

KOI8_U::KOI8_U()
    : TableCharset(tables::koi8_u, 2088, u"KOI8-U"_usv,
                   {u"csKOI8U"_usv, u"ibm-1168"_usv, u"ibm-1168_P100-2002"_usv,
                    u"windows-21866"_usv})
{
}

}  // namespace kiv
