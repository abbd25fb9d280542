#include "replacement.h"

#include "charset_names.h"
#include "errors.h"
#include "fault.h"

namespace kivconv {
namespace {

using UnitsView = kiv::basic_string_ref<kiv::char16>;

// Empty for a character that the charset lacks: an encoder drops ignorable
// characters without a word, others it refuses.
std::string encode_character(kiv::CharsetEncoder& encoder, UnitsView character)
{
    try {
        return encoder.encode(character);
    } catch (const kiv::CharacterCodingError&) {
        return "";
    }
}

kiv::ustring decode_text(const std::string& utf8_text)
{
    try {
        return kiv::Charset::UTF_8->newDecoder()->decode(utf8_text);
    } catch (const kiv::CharacterCodingError&) {
        throw UsageError("--replacement: the text is not UTF-8");
    }
}

}  // namespace

std::string replacement_bytes(const kiv::Charset& to,
                              const std::optional<std::string>& utf8_text)
{
    const auto encoder = to.newEncoder();
    if (!utf8_text) {
        const kiv::char16 replacement_character = u'\uFFFD';
        return encoder->canEncode(replacement_character)
                   ? encoder->encode(UnitsView(&replacement_character, 1))
                   : encoder->replacement();
    }
    const kiv::ustring text = decode_text(*utf8_text);
    std::string bytes;
    for (std::size_t i = 0, n = 0; i < text.size(); i += n) {
        const char16_t unit{text[i]};
        n = unit >= 0xD800 && unit <= 0xDBFF ? 2 : 1;  // decoded text has whole pairs
        const UnitsView character(text.data() + i, n);
        const std::string encoded = encode_character(*encoder, character);
        if (encoded.empty())
            throw UsageError("--replacement: " + code_point_text(character) +
                             " cannot be written in " + name_of(to));
        bytes += encoded;
    }
    return bytes;
}

}  // namespace kivconv
