// Conversion from and to the national charsets, in texts of their languages of 4 KiB
// and 1 MiB, beside ICU and iconv.

#include <kiv/charset.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "coder_loops.h"
#include "corpora.h"
#include "national_corpora.h"
#include "peers.h"

namespace {

using kivbench::PeerNames;
using kivbench::Sample;
namespace national = kivbench::national;

struct National {
    const char* name;
    PeerNames peers;
    const kivbench::Corpus* text;
};

// ICU's names are those of one mapping each: its aliases may change hands.
const National charsets[] = {
    {"ISO-8859-2", {"ibm-912_P100-1995", "ISO-8859-2"}, &national::polish},
    {"ISO-8859-3", {"ibm-913_P100-2000", "ISO-8859-3"}, &national::maltese},
    {"ISO-8859-4", {"ibm-914_P100-1995", "ISO-8859-4"}, &national::baltic},
    {"ISO-8859-5", {"ibm-915_P100-1995", "ISO-8859-5"}, &national::russian},
    {"ISO-8859-6", {"ibm-1089_P100-1995", "ISO-8859-6"}, &national::arabic},
    {"ISO-8859-7", {"ibm-9005_X110-2007", "ISO-8859-7"}, &national::greek},
    {"ISO-8859-8", {"ibm-5012_P100-1999", "ISO-8859-8"}, &national::hebrew},
    {"ISO-8859-9", {"ibm-920_P100-1995", "ISO-8859-9"}, &national::turkish},
    {"ISO-8859-10", {"iso-8859_10-1998", "ISO-8859-10"}, &national::nordic},
    {"x-iso-8859-11", {"iso-8859_11-2001", "ISO-8859-11"}, &national::thai},
    {"ISO-8859-13", {"ibm-921_P100-1995", "ISO-8859-13"}, &national::lithuanian},
    {"ISO-8859-14", {"iso-8859_14-1998", "ISO-8859-14"}, &national::welsh},
    {"ISO-8859-15", {"ibm-923_P100-1998", "ISO-8859-15"}, &national::french},
    {"ISO-8859-16", {nullptr, "ISO-8859-16"}, &national::romanian},  // ICU lacks it
    {"windows-1250", {"ibm-5346_P100-1998", "CP1250"}, &national::czech},
    {"windows-1251", {"ibm-5347_P100-1998", "CP1251"}, &national::ukrainian},
    {"windows-1252", {"ibm-5348_P100-1997", "CP1252"}, &national::french},
    {"windows-1253", {"ibm-5349_P100-1998", "CP1253"}, &national::greek},
    {"windows-1254", {"ibm-5350_P100-1998", "CP1254"}, &national::turkish},
    {"windows-1255", {"ibm-9447_P100-2002", "CP1255"}, &national::hebrew},
    {"windows-1256", {"ibm-9448_X100-2005", "CP1256"}, &national::arabic},
    {"windows-1257", {"ibm-9449_P100-2002", "CP1257"}, &national::lithuanian},
    {"windows-1258", {"ibm-5354_P100-1998", "CP1258"}, &national::vietnamese},
    {"windows-874", {"windows-874-2000", "CP874"}, &national::thai},
    {"KOI8-R", {"ibm-878_P100-1996", "KOI8-R"}, &national::russian},
    {"KOI8-U", {"ibm-1168_P100-2002", "KOI8-U"}, &national::ukrainian},
    {"Windows-31J", {"ibm-943_P15A-2003", "CP932"}, &national::japanese},
    {"Shift_JIS", {"ibm-943_P15A-2003", "SJIS"}, &national::japanese},
    {"x-mswin-936", {"windows-936-2000", "CP936"}, &national::simplified},
    {"GBK", {"windows-936-2000", "GBK"}, &national::simplified},
    {"x-windows-949", {"windows-949-2000", "UHC"}, &national::korean},
    {"x-windows-950", {"windows-950-2000", "CP950"}, &national::traditional},
    {"Big5", {"windows-950-2000", "BIG5"}, &national::traditional},
    {"Big5-HKSCS", {"ibm-1375_P100-2008", "BIG5-HKSCS"}, &national::cantonese},
    {"GB18030", {"gb18030", "GB18030"}, &national::gb18030},
};

[[noreturn]] void fail(const National& charset, const char* what, std::size_t position,
                       unsigned unit)
{
    char message[160];
    std::snprintf(message, sizeof message, "%s, text %s: %s at %zu: U+%04X", charset.name,
                  charset.text->name, what, position, unit);
    throw std::runtime_error(message);
}

void expect_equal(const National& charset, const char* what, const std::u16string& want,
                  const std::u16string& got)
{
    const auto at = std::mismatch(want.begin(), want.end(), got.begin(), got.end()).first;
    if (want != got)
        fail(charset, what, static_cast<std::size_t>(at - want.begin()),
             at != want.end() ? *at : 0u);
}

// As many characters as go into `size` bytes. Line feeds fill up the rest, one at
// least: some converters hold a last letter back that could be composed with another.
Sample make_text(const National& charset, std::size_t size)
{
    // No character takes more than three times the bytes in UTF-8.
    std::u16string units =
        kivbench::to_utf16(kivbench::make_text(*charset.text, 3 * size));
    std::string bytes(size, '\0');
    std::size_t units_left = 2 * units.size();
    std::size_t room = size - 1;
    kivbench::Iconv encoder(charset.peers.iconv, "UTF-16LE");
    const bool all = encoder.convert_some(units.data(), units_left, bytes.data(), room);
    const std::size_t taken = units.size() - units_left / 2;
    if (!all && errno != E2BIG)
        fail(charset, "iconv does not encode the character", taken, units[taken]);
    units.resize(taken);
    units.append(room + 1, u'\n');
    // iconv may have begun a character in the room that it leaves.
    bytes.resize(size - 1 - room);
    bytes.append(room + 1, '\n');
    return kivbench::make_sample(std::move(bytes), std::move(units));
}

// All peers must convert all of the text, both ways: a word that a charset does not
// have is a mistake in its list.
void check(const National& charset, const kivbench::EncodedText& text)
{
    std::u16string units(text.bytes.size(), u'\0');
    std::size_t left = text.bytes.size();
    std::size_t room = 2 * units.size();
    kivbench::Iconv decoder("UTF-16LE", charset.peers.iconv);
    decoder.convert_some(text.bytes.data(), left, units.data(), room);
    units.resize(units.size() - room / 2);
    expect_equal(charset, "iconv decodes otherwise", text.units, units);

    if (charset.peers.icu == nullptr)
        return;
    const kivbench::Converter icu = kivbench::open_converter(charset.peers.icu);
    units.assign(text.bytes.size(), u'\0');
    units.resize(kivbench::decode(*icu, text.bytes, units.data(), units.size()));
    expect_equal(charset, "ICU decodes otherwise", text.units, units);
    std::string bytes(4 * units.size(), '\0');
    bytes.resize(kivbench::encode(*icu, text.units, bytes.data(), bytes.size()));
    if (bytes != text.bytes)
        throw std::runtime_error(std::string("ICU encodes otherwise: ") + charset.name);
}

void add(const National& charset)
{
    const kiv::Charset* ours =
        kiv::Charset::forName(kiv::Charset::US_ASCII->decode(charset.name));
    for (const std::size_t size : {std::size_t{4096}, std::size_t{1} << 20}) {
        const Sample text = make_text(charset, size);
        check(charset, *text);
        kivbench::add_coders(charset.name, ours, charset.peers,
                             charset.text->name + ('/' + std::to_string(size)), text);
    }
}

}  // namespace

int main(int argc, char** argv)
try {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    for (const National& charset : charsets)
        add(charset);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
