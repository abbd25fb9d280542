#include "charset_names.h"

#include <langinfo.h>
#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

#include "errors.h"

namespace kivconv {
namespace {

std::string to_utf8(kiv::basic_string_ref<kiv::char16> text)
{
    return kiv::Charset::UTF_8->encode(text);
}

kiv::Charset* find_charset(const std::string& name)
{
    return kiv::Charset::forName(kiv::Charset::UTF_8->decode(name));
}

// Letters in lower case and digits: what is left to compare of a name.
std::string bare_name(std::string_view name)
{
    std::string bare;
    for (const char c : name)
        if (const int i = static_cast<unsigned char>(c); i < 0x80 && std::isalnum(i))
            bare.push_back(static_cast<char>(std::tolower(i)));
    return bare;
}

// ": did you mean UTF-16BE or UTF-16LE?" for "UTF-16", or nothing.
std::string suggestion(const std::string& name)
{
    const std::string wanted = bare_name(name);
    if (wanted.size() < 3)
        return "";
    std::vector<std::string> close;
    for (const kiv::Charset* charset : kiv::Charset::availableCharsets()) {
        const std::string known = bare_name(name_of(*charset));
        if (known.starts_with(wanted) || wanted.starts_with(known))
            close.push_back(name_of(*charset));
    }
    if (close.empty() || close.size() > 4)
        return "";
    std::string text = ": did you mean ";
    for (std::size_t i = 0; i < close.size(); ++i) {
        if (i > 0)
            text += i + 1 == close.size() ? " or " : ", ";
        text += close[i];
    }
    return text + "?";
}

kiv::Charset* find_or_throw(const std::string& name)
{
    if (kiv::Charset* charset = find_charset(name))
        return charset;
    throw UsageError("no charset is known as '" + name + "'" + suggestion(name) +
                     "\nkivconv --list shows them all.");
}

bool same_word(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) {
        return std::toupper(x) == std::toupper(y);
    });
}

}  // namespace

std::string name_of(const kiv::Charset& charset)
{
    return to_utf8(charset.name());
}

CharsetChoice choose_charset(const std::string& text)
{
    const std::size_t end = text.find("//");
    const std::string name = text.substr(0, end);
    CharsetChoice choice{nullptr, false};

    std::string_view suffixes = std::string_view(text).substr(std::min(end, text.size()));
    while (suffixes.starts_with("//")) {
        suffixes.remove_prefix(2);
        const std::string_view suffix = suffixes.substr(0, suffixes.find("//"));
        suffixes.remove_prefix(suffix.size());
        if (same_word(suffix, "IGNORE"))
            choice.ignore_faults = true;
        else if (same_word(suffix, "TRANSLIT"))
            throw UsageError(
                "'" + text +
                "': kivconv does not transliterate; --on-error=replace writes "
                "a replacement instead");
        else if (!suffix.empty())
            throw UsageError("'" + text + "': unknown suffix //" + std::string(suffix));
    }
    choice.charset = name.empty() ? default_charset() : find_or_throw(name);
    return choice;
}

kiv::Charset* default_charset()
{
    if (const char* name = std::getenv("KIV_DEFAULT_CHARSET"); name && *name) {
        if (kiv::Charset* charset = find_charset(name))
            return charset;
        throw UsageError(std::string("KIV_DEFAULT_CHARSET: no charset is known as '") +
                         name + "'");
    }
    std::setlocale(LC_CTYPE, "");
    const std::string codeset = ::nl_langinfo(CODESET);
    kiv::Charset* charset = find_charset(codeset);
    if (!charset)
        throw UsageError("the charset of the locale, " + codeset +
                         ", is not known: name both charsets with --from and --to");
    return charset == kiv::Charset::US_ASCII ? kiv::Charset::UTF_8 : charset;
}

std::string charset_list()
{
    std::vector<std::pair<std::string, const kiv::Charset*>> rows;
    std::size_t width = 0;
    for (const kiv::Charset* charset : kiv::Charset::availableCharsets()) {
        rows.emplace_back(name_of(*charset), charset);
        width = std::max(width, rows.back().first.size());
    }

    const auto pad = [](std::string text, std::size_t n) {
        text.resize(std::max(n, text.size()), ' ');
        return text;
    };
    std::string list = pad("NAME", width) + "  MIBENUM  ALIASES\n";
    for (const auto& [name, charset] : rows) {
        const int mib = charset->MIBenum();
        std::string line = pad(name, width) + "  ";
        line += pad(mib == 0 ? "-" : std::to_string(mib), 7) + " ";
        for (const kiv::basic_string_ref<kiv::char16>& alias : charset->aliases())
            line.append(1, ' ').append(to_utf8(alias));
        list += line + "\n";
    }
    return list;
}

}  // namespace kivconv
