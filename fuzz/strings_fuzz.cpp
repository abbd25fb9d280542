// Views of any text: searches and comparisons beside std::basic_string_view, the
// case-insensitive function objects beside folded copies, code points beside the coders,
// and the character functions, which must agree with each other for every value.
//
// The first two bytes of the input choose where texts are cut; the rest is the text.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kiv/case_insensitive.h>
#include <kiv/character.h>
#include <kiv/charset.h>
#include <kiv/code_points.h>
#include <kiv/string_ref.h>

#include "fuzz_support.h"

namespace {

using namespace kivfuzz;
using kiv::basic_string_ref;
using kiv::Char16;
using kiv::char16;
using kiv::ustring;

int sign(int value)
{
    return (value > 0) - (value < 0);
}

template <class CharT>
void check_searches(basic_string_ref<CharT> a, basic_string_ref<CharT> b, std::size_t pos)
{
    const std::basic_string_view<CharT> x = a, y = b;
    const CharT c = b.empty() ? CharT() : b[0];
    require(a.find(b, pos) == x.find(y, pos) && a.rfind(b, pos) == x.rfind(y, pos));
    require(a.find(c, pos) == x.find(c, pos) && a.rfind(c, pos) == x.rfind(c, pos));
    require(a.find_first_of(b, pos) == x.find_first_of(y, pos));
    require(a.find_last_of(b, pos) == x.find_last_of(y, pos));
    require(a.find_first_not_of(b, pos) == x.find_first_not_of(y, pos));
    require(a.find_last_not_of(b, pos) == x.find_last_not_of(y, pos));
    require(a.starts_with(b) == x.starts_with(y) && a.ends_with(b) == x.ends_with(y));
    require(a.contains(b) == (x.find(y) != x.npos));
    const bool less = std::lexicographical_compare(
        x.begin(), x.end(), y.begin(), y.end(), [](CharT p, CharT q) {
            if constexpr (sizeof(CharT) == 1)
                return static_cast<unsigned char>(p) < static_cast<unsigned char>(q);
            else
                return p < q;
        });
    require(sign(a.compare(b)) == (x == y ? 0 : less ? -1 : 1));
    require(sign(b.compare(a)) == -sign(a.compare(b)));
    const std::basic_string<CharT> terminated = b;
    if (terminated.find(CharT()) == terminated.npos)
        require(a.compare(terminated.c_str()) == sign(a.compare(b)));
    if (pos <= a.size()) {
        const auto part = a.substr(pos, b.size());
        require(part == basic_string_ref<CharT>(x.substr(pos, b.size())));
        require(sign(a.compare(pos, b.size(), b)) == sign(part.compare(b)));
    }
    using View = basic_string_ref<CharT>;
    require(std::hash<View>()(a) == std::hash<View>()(a.to_string()));
}

ustring folded(basic_string_ref<char16> text)
{
    ustring fold;
    for (const char16 unit : text)
        fold += kiv::toulower(kiv::touupper(unit));
    return fold;
}

// In the C locale bytes are folded as ASCII, to capitals.
std::string folded(basic_string_ref<char> text)
{
    std::string fold;
    for (const char c : text)
        fold += c >= 'a' && c <= 'z' ? static_cast<char>(c - 0x20) : c;
    return fold;
}

template <class CharT>
void check_case_insensitive(basic_string_ref<CharT> a, basic_string_ref<CharT> b)
{
    using View = basic_string_ref<CharT>;
    const auto x = folded(a), y = folded(b);
    const kiv::case_insensitive_less<View> less;
    const kiv::case_insensitive_equal_to<View> equal;
    const kiv::case_insensitive_hash<View> hash;
    require(less(a, b) == (View(x) < View(y)) && less(b, a) == (View(y) < View(x)));
    require(equal(a, b) == (x == y) && (!equal(a, b) || hash(a) == hash(b)));
}

// Forwards and backwards the same; well-formed text is what decoders take.
template <class Unit>
void check_code_points(basic_string_ref<Unit> text)
{
    const auto range = kiv::code_points(text);
    std::vector<kiv::code_point> forward, backward;
    std::size_t at = 0;
    bool well_formed = true;
    for (const kiv::code_point cp : range) {
        require(cp.offset() == at && cp.size() > 0);
        at += cp.size();
        well_formed = well_formed && cp.well_formed();
        forward.push_back(cp);
    }
    require(at == text.size() && range.well_formed() == well_formed);
    for (auto i = range.end(); i != range.begin();)
        backward.insert(backward.begin(), *--i);
    require(forward == backward);
    ustring units;
    for (const kiv::code_point cp : forward)
        Char16::toChars(cp, units);
    if constexpr (sizeof(Unit) == 2) {
        require(Char16::codePointCount(text, 0, text.npos) == forward.size());
        require(!well_formed || text == units);
        require(kiv::Charset::UTF_8->newEncoder()->canEncode(text) == well_formed);
    } else {
        require(!well_formed || kiv::Charset::UTF_8->decode(text) == units);
        require((kiv::Charset::UTF_8->decode(text).find(u'\uFFFD') == units.npos) ==
                (units.find(u'\uFFFD') == units.npos));
    }
}

void check_walking(basic_string_ref<char16> text, std::size_t index)
{
    index %= text.size() + 1;
    const std::size_t after = Char16::offsetByCodePoints(text, index, 1);
    require((after == text.npos) == (index == text.size()));
    if (index == text.size())
        return;
    const char32_t cp = Char16::codePointAt(text, index);
    require(after == index + Char16::charCount(cp));
    const bool within_pair =
        index > 0 && Char16::isSurrogatePair(text[index - 1], text[index]);
    require((Char16::codePointBefore(text, after) == cp) != within_pair);
    ustring units;
    Char16::toChars(cp, units);
    require(text.substr(index, after - index) == basic_string_ref<char16>(units));
}

void check_character(char32_t cp)
{
    require(Char16::isLetterOrDigit(cp) == (Char16::isLetter(cp) || Char16::isDigit(cp)));
    require(!Char16::isDefined(cp) || Char16::isValidCodePoint(cp));
    require(!Char16::isIdentifierStart(cp) || Char16::isIdentifierPart(cp));
    require(!Char16::isTitleCase(cp) || Char16::isLetter(cp));
    require(!Char16::isSpaceChar(cp) || Char16::isDefined(cp));
    const int digit = Char16::digit(cp, 36);
    require(digit >= -1 && digit < 36 && (!Char16::isDigit(cp) || digit < 10));
    for (const char32_t other :
         {Char16::toLowerCase(cp), Char16::toUpperCase(cp), Char16::toTitleCase(cp)})
        require(Char16::isValidCodePoint(other) == Char16::isValidCodePoint(cp));
    if (cp > 0xFFFF)
        return;
    const auto unit = static_cast<char16_t>(cp);
    require(Char16::isLetter(unit) == Char16::isLetter(cp));
    require(char32_t{Char16::toLowerCase(unit)} == Char16::toLowerCase(cp));
    require(kiv::isualnum(unit) == (kiv::isualpha(unit) || kiv::isudigit(unit)));
    require(!kiv::isupunct(unit) || !kiv::isualnum(unit));
    require(!kiv::isugraph(unit) || kiv::isuprint(unit));
}

template <class CharT>
void check_texts(basic_string_ref<CharT> text, std::size_t cut, std::size_t pos)
{
    // Two texts that often share much.
    const auto a = text.substr(0, cut % (text.size() + 1));
    const auto b = text.substr(a.size(), pos / 8);
    check_searches(text, b, pos % 16);
    check_searches(a, b, pos % 16);
    check_case_insensitive(a, b);
    check_case_insensitive(text, a);
    check_code_points(text);
    check_code_points(a);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    Bytes source(data, size);
    const unsigned cut = source.byte(), pos = source.byte();
    const std::string bytes = source.rest();
    const ustring units = units_of(bytes);
    const auto narrow = exact_copy(bytes, false);
    const auto wide = exact_copy(units, false);
    const basic_string_ref<char16> text(wide.get(), units.size());
    check_texts(basic_string_ref<char>(narrow.get(), bytes.size()), cut, pos);
    check_texts(text, cut, pos);
    check_walking(text, cut);
    const std::wstring wider = kiv::cvtstr<std::wstring>(text);
    require(kiv::cvtstr<ustring>(wider) == units);
    check_searches(basic_string_ref<wchar_t>(wider),
                   basic_string_ref<wchar_t>(wider).substr(pos % (wider.size() + 1)),
                   cut % 16);
    for (std::size_t i = 0; i + 3 < bytes.size(); i += 4)
        check_character(Bytes(data + 2 + i, 4).number(4));
    for (const char16 unit : units)
        check_character(static_cast<char16_t>(unit));
    for (const kiv::code_point cp : kiv::code_points(text))
        check_character(cp);
    return 0;
}
