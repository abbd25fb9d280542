// Conversion through the public interface: UTF-8 and UTF-16 of five texts in three
// sizes, and the single-byte encodings at 64 KiB, beside ICU, iconv and memcpy.

#include <kiv/charset.h>

#include <string>

#include "coder_loops.h"
#include "corpora.h"

namespace {

using namespace kiv::literals;

using kivbench::add;
using kivbench::make_sample;
using kivbench::Sample;

void add_utf8(const std::string& tail, const Sample& s)
{
    const kiv::Charset* utf8 = kiv::Charset::forName(u"UTF-8"_usv);
    add("decode UTF-8/kivxx/" + tail, kivbench::kivxx_decode, utf8, s);
    add("decode UTF-8/icu/" + tail, kivbench::icu_from_utf8, s);
    add("decode UTF-8/iconv/" + tail, kivbench::iconv_decode, "UTF-8", s);
    add("decode UTF-8 to a string/kivxx/" + tail, kivbench::kivxx_decode_string, utf8, s);
    add("encode UTF-8/kivxx/" + tail, kivbench::kivxx_encode, utf8, s);
    add("encode UTF-8/icu/" + tail, kivbench::icu_to_utf8, s);
    add("encode UTF-8/iconv/" + tail, kivbench::iconv_encode, "UTF-8", s);
    add("encode UTF-8 to a string/kivxx/" + tail, kivbench::kivxx_encode_string, utf8, s);
}

void add_with_memcpy(const char* name, const kiv::Charset* charset,
                     const std::string& tail, const Sample& s)
{
    kivbench::add_coders(name, charset, {name, name}, tail, s);
    for (const char* direction : {"decode ", "encode "})
        add(direction + std::string(name) + "/memcpy/" + tail, kivbench::memcpy_bytes, s);
}

std::string utf16_bytes(const std::u16string& units, bool big_endian)
{
    std::string bytes;
    for (const char16_t unit : units) {
        const char pair[] = {static_cast<char>(unit & 0xFF),
                             static_cast<char>(unit >> 8)};
        bytes += pair[big_endian ? 1 : 0];
        bytes += pair[big_endian ? 0 : 1];
    }
    return bytes;
}

bool add_all()
{
    using kiv::Charset;
    for (const kivbench::Corpus& corpus : kivbench::corpora)
        for (const std::size_t bytes :
             {std::size_t{64}, std::size_t{4096}, std::size_t{1} << 20}) {
            const std::string text = kivbench::make_text(corpus, bytes);
            add_utf8(std::string(corpus.name) + '/' + std::to_string(bytes),
                     make_sample(text, kivbench::to_utf16(text)));
        }

    constexpr std::size_t bytes = 65536;
    const std::string ascii = kivbench::make_text(kivbench::corpora[0], bytes);
    const std::u16string ascii_units = kivbench::to_utf16(ascii);
    add_with_memcpy("US-ASCII", Charset::forName(u"US-ASCII"_usv), "ascii/65536",
                    make_sample(ascii, ascii_units));
    const std::string latin1 = kivbench::make_latin1_text(bytes);
    std::u16string latin1_units;
    for (const char c : latin1)
        latin1_units += static_cast<unsigned char>(c);
    add_with_memcpy("ISO-8859-1", Charset::forName(u"ISO-8859-1"_usv), "latin/65536",
                    make_sample(latin1, latin1_units));
    const std::u16string half = ascii_units.substr(0, bytes / 2);
    add_with_memcpy("UTF-16LE", Charset::forName(u"UTF-16LE"_usv), "ascii/65536",
                    make_sample(utf16_bytes(half, false), half));
    add_with_memcpy("UTF-16BE", Charset::forName(u"UTF-16BE"_usv), "ascii/65536",
                    make_sample(utf16_bytes(half, true), half));
    return true;
}

[[maybe_unused]] const bool added = add_all();

}  // namespace
