// Decimal values from text, without a locale.

#include <stdexcept>

#include <kiv/decimal.h>

#include "decimal/parts.h"
#include "numconv/common_form.h"
#include "numconv/decimal_packing.h"
#include "numconv/number_scan.h"
#include "numconv/parse_shapes.h"

namespace kiv::decimal {

namespace {

using numconv::BoundedText;
using numconv::NumberScan;
using numconv::ScanKind;
using numconv::TerminatedText;

// Leaves the text past the number, or anywhere if it is not of the common form.
template <class Decimal, class Text>
KIV_INLINE bool parse_common(Text& text, Decimal& value) noexcept
{
    using Format = DecimalFormat<Decimal>;
    using Bits = typename Format::Bits;
    numconv::skip_ascii_space(text);
    const auto [found, negative, coefficient, exponent] =
        numconv::take_common_decimal(text, true);
    if (!found)
        return false;

    if (numconv::is_encodable<Format>(exponent, coefficient)) [[likely]]
        value =
            Format::value(numconv::encode<Format>(negative, exponent, Bits{coefficient}));
    else
        value = numconv::pack_decimal<Decimal>(negative, exponent,
                                               words::Wide{0, coefficient}, 0);
    return true;
}

// --- Text of every form ----------------------------------------------------------------

template <class Decimal, class Text>
auto scan_text(Text& text) noexcept
{
    constexpr unsigned DIGITS = DecimalFormat<Decimal>::PRECISION;
    numconv::skip_space(text);
    return numconv::scan_number(text, {DIGITS, 0, false});
}

template <class Decimal, class Text>
[[gnu::noinline]] from_chars_result<typename Text::value_type> parse_any(
    Text text, Decimal& value) noexcept
{
    using Format = DecimalFormat<Decimal>;
    const auto* const first = text.at();
    const auto scan = scan_text<Decimal>(text);
    switch (scan.kind) {
    case ScanKind::decimal:
        value = numconv::pack_decimal<Decimal>(scan.negative, scan.exponent,
                                               scan.coefficient, scan.dropped);
        break;
    case ScanKind::infinity:
        value = Format::value(numconv::signed_infinity<Format>(scan.negative));
        break;
    case ScanKind::nan:  // positive whatever the text says
        value = Format::value(numconv::positive_nan<Format>());
        break;
    default:
        value = Format::value(0);
        return {first, std::errc::invalid_argument, number_range::inside};
    }
    return {text.at(), std::errc(), number_range::inside};
}

template <class Decimal, class Text>
KIV_INLINE from_chars_result<typename Text::value_type> parse(Text text,
                                                              Decimal& value) noexcept
{
    Text common = text;
    if (parse_common(common, value)) [[likely]]
        return {common.at(), std::errc(), number_range::inside};
    return parse_any(text, value);
}

// --- Shapes ----------------------------------------------------------------------

// Looks at the text once more for what is wrong with it.
template <class Decimal, class CharT>
[[noreturn]] void raise(basic_string_ref<CharT> s)
{
    BoundedText<CharT> text(s.begin(), s.end());
    throw std::invalid_argument(numconv::what_is_missing(scan_text<Decimal>(text).kind));
}

template <class Decimal, class CharT>
Decimal parse_terminated(const CharT* s, CharT** end) noexcept
{
    Decimal value;
    numconv::finish_terminated(parse(TerminatedText<CharT>(s), value), end);
    return value;
}

template <class Decimal, class CharT>
KIV_INLINE Decimal parse_view(basic_string_ref<CharT> s, std::size_t* idx)
{
    Decimal value;
    const auto result = parse(BoundedText<CharT>(s.begin(), s.end()), value);
    numconv::finish_view(result, s, idx, [&](const auto&) { raise<Decimal>(s); });
    return value;
}

template <class Decimal, class CharT>
Decimal parse_cursor(BasicCharIterator<CharT>& it)
{
    return numconv::parse_at(it, [](basic_string_ref<CharT> rest, std::size_t* idx) {
        return parse_view<Decimal>(rest, idx);
    });
}

template <class Decimal>
Decimal parse_whole(std::string_view s)
{
    std::size_t end = 0;
    const auto value =
        parse_view<Decimal>(basic_string_ref<char>(s.data(), s.size()), &end);
    if (end != s.size())
        throw std::invalid_argument("text after the number");
    return value;
}

}  // namespace

decimal32::decimal32(std::string_view text) : decimal32(parse_whole<decimal32>(text)) {}
decimal64::decimal64(std::string_view text) : decimal64(parse_whole<decimal64>(text)) {}
decimal128::decimal128(std::string_view text) : decimal128(parse_whole<decimal128>(text))
{
}

}  // namespace kiv::decimal

namespace kiv {

#define KIV_DECIMAL_PARSER(TYPE, STRTO, STO)                        \
    decimal::TYPE STRTO(const char* s, char** end)                  \
    {                                                               \
        return decimal::parse_terminated<decimal::TYPE>(s, end);    \
    }                                                               \
    decimal::TYPE STRTO(const char16* s, char16** end)              \
    {                                                               \
        return decimal::parse_terminated<decimal::TYPE>(s, end);    \
    }                                                               \
    decimal::TYPE STO(basic_string_ref<char> s, std::size_t* idx)   \
    {                                                               \
        return decimal::parse_view<decimal::TYPE>(s, idx);          \
    }                                                               \
    decimal::TYPE STO(basic_string_ref<char16> s, std::size_t* idx) \
    {                                                               \
        return decimal::parse_view<decimal::TYPE>(s, idx);          \
    }                                                               \
    decimal::TYPE STO(BasicCharIterator<char>& it)                  \
    {                                                               \
        return decimal::parse_cursor<decimal::TYPE>(it);            \
    }                                                               \
    decimal::TYPE STO(BasicCharIterator<char16>& it)                \
    {                                                               \
        return decimal::parse_cursor<decimal::TYPE>(it);            \
    }
KIV_DECIMAL_PARSER(decimal32, strtod32_c, stod32_c)
KIV_DECIMAL_PARSER(decimal64, strtod64_c, stod64_c)
KIV_DECIMAL_PARSER(decimal128, strtod128_c, stod128_c)
#undef KIV_DECIMAL_PARSER

}  // namespace kiv
