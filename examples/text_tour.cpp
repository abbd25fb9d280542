// text_tour - bytes become text, the text is looked at, and becomes bytes again.

#include <cstddef>
#include <iomanip>
#include <iostream>
#include <string>

#include <kiv/character.h>
#include <kiv/charset.h>

using namespace kiv::literals;

namespace {

// Text goes to the terminal as UTF-8.
std::string utf8(kiv::basic_string_ref<kiv::char16> text)
{
    return kiv::Charset::UTF_8->encode(text);
}

std::string hex(const std::string& bytes)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text.append(text.empty() ? "" : " ");
        text.append(1, DIGITS[byte >> 4]).append(1, DIGITS[byte & 15]);
    }
    return text;
}

void show_charset(const kiv::Charset& charset, const kiv::ustring& text)
{
    std::cout << std::setw(10) << std::left << utf8(charset.name()) << "  "
              << hex(charset.encode(text)) << '\n';
}

const char* kind_of(char32_t cp)
{
    if (kiv::Char16::isUpperCase(cp))
        return "upper-case letter";
    if (kiv::Char16::isLowerCase(cp))
        return "lower-case letter";
    if (kiv::Char16::isLetter(cp))
        return "letter";
    if (kiv::Char16::isDigit(cp))
        return "digit";
    return kiv::Char16::isWhitespace(cp) ? "white space" : "something else";
}

void show_code_points(const kiv::ustring& text)
{
    // A supplementary character is one code point and two units.
    for (std::size_t i = 0; i < text.size();) {
        const char32_t cp = kiv::Char16::codePointAt(text, i);
        const std::size_t units = kiv::Char16::charCount(cp);
        std::cout << "U+" << std::setw(6) << std::left << std::hex << std::uppercase
                  << static_cast<unsigned long>(cp) << std::dec << utf8({&text[i], units})
                  << "  " << units << (units == 1 ? " unit,  " : " units, ")
                  << kind_of(cp) << '\n';
        i += units;
    }
}

kiv::ustring to_upper(const kiv::ustring& text)
{
    kiv::ustring upper;
    for (std::size_t i = 0; i < text.size();) {
        const char32_t cp = kiv::Char16::codePointAt(text, i);
        kiv::Char16::toChars(kiv::Char16::toUpperCase(cp), upper);
        i += kiv::Char16::charCount(cp);
    }
    return upper;
}

}  // namespace

int main()
{
    // Names match whatever their case and punctuation.
    const kiv::Charset* latin1 = kiv::Charset::forName(u"latin1"_usv);
    kiv::ustring text = latin1->decode("Caf\xE9 7 ");
    text += u"\u03A9\U00010428"_us;

    std::cout << utf8(text) << ": " << text.size() << " units, "
              << kiv::Char16::codePointCount(text, 0, text.size()) << " code points\n\n";
    show_code_points(text);
    std::cout << "\nIn upper case: " << utf8(to_upper(text)) << "\n\n";

    // Where a charset lacks a character, its replacement stands for it.
    for (const kiv::Charset* charset :
         {kiv::Charset::UTF_8, kiv::Charset::CESU_8, kiv::Charset::UTF_16BE,
          kiv::Charset::UTF_16LE, kiv::Charset::ISO_8859_1, kiv::Charset::US_ASCII})
        show_charset(*charset, text);

    // A coder of one's own reports faults instead of replacing them.
    try {
        latin1->newEncoder()->encode(text);
    } catch (const kiv::UnmappableCharacterError& error) {
        std::cout << "\nNot all of it fits into " << utf8(latin1->name()) << ": "
                  << error.what() << '\n';
    }
}
