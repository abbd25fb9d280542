#include "platform/code_page.h"

#include <cstddef>
#include <cstdlib>

#include <langinfo.h>
#include <locale.h>

namespace kiv::platform {

namespace {

struct CodesetNumber {
    std::string_view codeset;  // upper-case letters and digits only
    unsigned number;
};

// The codesets that locales are made with and the numbers that the Windows
// code pages of the same content have.
constexpr CodesetNumber CODESETS[] = {
    {"CP874", 874},         {"TIS620", 874},       {"ISO885911", 874},
    {"SHIFTJIS", 932},      {"SJIS", 932},         {"CP932", 932},
    {"WINDOWS31J", 932},    {"GBK", 936},          {"CP936", 936},
    {"GB2312", 936},        {"EUCCN", 936},        {"EUCKR", 949},
    {"CP949", 949},         {"UHC", 949},          {"BIG5", 950},
    {"CP950", 950},         {"BIG5HKSCS", 951},    {"CP1250", 1250},
    {"WINDOWS1250", 1250},  {"CP1251", 1251},      {"WINDOWS1251", 1251},
    {"CP1252", 1252},       {"WINDOWS1252", 1252}, {"CP1253", 1253},
    {"WINDOWS1253", 1253},  {"CP1254", 1254},      {"WINDOWS1254", 1254},
    {"CP1255", 1255},       {"WINDOWS1255", 1255}, {"CP1256", 1256},
    {"WINDOWS1256", 1256},  {"CP1257", 1257},      {"WINDOWS1257", 1257},
    {"CP1258", 1258},       {"WINDOWS1258", 1258}, {"TCVN57121", 1258},
    {"ANSIX341968", 20127}, {"USASCII", 20127},    {"KOI8R", 20866},
    {"EUCJP", 20932},       {"KOI8U", 21866},      {"ISO88591", 28591},
    {"ISO88592", 28592},    {"ISO88593", 28593},   {"ISO88594", 28594},
    {"ISO88595", 28595},    {"ISO88596", 28596},   {"ISO88597", 28597},
    {"ISO88598", 28598},    {"ISO88599", 28599},   {"ISO885913", 28603},
    {"ISO885915", 28605},   {"GB18030", 54936},    {"UTF8", 65001},
};

constexpr bool is_alnum(char c) noexcept
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

constexpr char upper(char c) noexcept
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool same_codeset(std::string_view name, std::string_view folded) noexcept
{
    std::size_t matched = 0;
    for (const char c : name) {
        if (!is_alnum(c))
            continue;
        if (matched == folded.size() || upper(c) != folded[matched])
            return false;
        ++matched;
    }
    return matched == folded.size();
}

// The character locale that the environment names; its precedence is POSIX's.
std::string_view locale_name() noexcept
{
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    return "C";
}

// What a locale name says about its codeset: language_TERRITORY.codeset@modifier.
std::string_view written_codeset(std::string_view name) noexcept
{
    name = name.substr(0, name.find('@'));
    const std::size_t dot = name.find('.');
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

}  // namespace

unsigned code_page_of(std::string_view codeset) noexcept
{
    for (const CodesetNumber& row : CODESETS)
        if (same_codeset(codeset, row.codeset))
            return row.number;
    return 0;
}

unsigned code_page() noexcept
{
    // A locale that is installed knows its codeset even if the name does not.
    if (const locale_t locale = newlocale(LC_CTYPE_MASK, "", locale_t{})) {
        const unsigned number = code_page_of(nl_langinfo_l(CODESET, locale));
        freelocale(locale);
        return number;
    }
    return code_page_of(written_codeset(locale_name()));
}

}  // namespace kiv::platform
