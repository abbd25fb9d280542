// Whole strings between bytes, UTF-16 and wide characters.

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cwchar>

#include <kiv/character.h>
#include <kiv/charset.h>

namespace kiv {

namespace {

constexpr wchar_t REPLACEMENT = L'\uFFFD';
constexpr bool WIDE_IS_UTF16 = sizeof(wchar_t) == sizeof(char16_t);

}  // namespace

template <>
ustring cvtstr<ustring>(basic_string_ref<char> bytes)
{
    return Charset::defaultCharset()->decode(bytes);
}

template <>
std::string cvtstr<std::string>(basic_string_ref<char16> text)
{
    return Charset::defaultCharset()->encode(text);
}

template <>
std::string cvtstr<std::string>(basic_string_ref<wchar_t> text)
{
    std::string bytes;
    bytes.reserve(2 * text.size());
    std::mbstate_t state{};
    char buffer[MB_LEN_MAX];
    for (const wchar_t c : text) {
        const std::mbstate_t before = state;  // a failure leaves the state open
        const std::size_t n = std::wcrtomb(buffer, c, &state);
        if (n != static_cast<std::size_t>(-1)) {
            bytes.append(buffer, n);
        } else {
            bytes.push_back('?');
            state = before;
        }
    }
    return bytes;
}

template <>
std::wstring cvtstr<std::wstring>(basic_string_ref<char> bytes)
{
    constexpr auto INVALID = static_cast<std::size_t>(-1);
    constexpr auto INCOMPLETE = static_cast<std::size_t>(-2);
    std::wstring text;
    text.reserve(bytes.size());
    std::mbstate_t state{};
    bool in_error = false;  // a run of invalid bytes is replaced once
    while (!bytes.empty()) {
        wchar_t c = 0;
        const std::size_t n = std::mbrtowc(&c, bytes.data(), bytes.size(), &state);
        if (n != INVALID && n != INCOMPLETE) {
            text.push_back(c);
            in_error = false;
            bytes.remove_prefix(std::max<std::size_t>(n, 1));  // 0 for a NUL
            continue;
        }
        if (!in_error)
            text.push_back(REPLACEMENT);
        if (n == INCOMPLETE)
            break;
        in_error = true;
        state = {};
        bytes.remove_prefix(1);
    }
    return text;
}

template <>
std::wstring cvtstr<std::wstring>(basic_string_ref<char16> text)
{
    std::wstring wide;
    wide.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t cp = WIDE_IS_UTF16 ? char32_t{Char16::toCodeUnit(text[i])}
                                          : Char16::codePointAt(text, i);
        i += Char16::charCount(cp) - 1;
        wide.push_back(static_cast<wchar_t>(cp));
    }
    return wide;
}

template <>
ustring cvtstr<ustring>(basic_string_ref<wchar_t> text)
{
    ustring units;
    units.reserve(text.size());
    for (const wchar_t c : text) {
        const auto cp = static_cast<char32_t>(c);
        Char16::toChars(Char16::isValidCodePoint(cp) ? cp : U'\uFFFD', units);
    }
    return units;
}

}  // namespace kiv
