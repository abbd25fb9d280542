// Floating-point values from text.

#include <algorithm>
#include <bit>
#include <limits>
#include <stdexcept>
#include <type_traits>

#include <kiv/numconv.h>

#include "numconv/binary_assembly.h"
#include "numconv/common_form.h"
#include "numconv/decimal_to_binary.h"
#include "numconv/number_scan.h"
#include "numconv/parse_kernels.h"
#include "numconv/parse_shapes.h"

namespace kiv::numconv {
namespace {

constexpr unsigned DIGITS = 20;
// 14 hexadecimal digits are more bits than either significand has, whatever the first
// one is.
constexpr ScanLimits TWENTY_DIGITS{DIGITS, 14, false};
constexpr ScanLimits EVERY_DIGIT{DIGITS, 14, true};

// All digits up to 768; a digit 1 stands for the rest, if that is not zero. No midpoint
// between two doubles has more than 767.
template <class CharT>
ExactDecimal all_digits(const NumberScan<CharT>& scan)
{
    constexpr unsigned MOST = 768;
    ExactDecimal result{FixedUint(), 0};
    std::uint64_t chunk = 0;
    unsigned chunk_digits = 0;
    std::uint64_t significant = 0;
    bool rest = false;
    for (const CharT* p = scan.digits; p != scan.digits_end; ++p) {
        const unsigned digit = narrow_unit<CharT>(unit_value(*p)) - '0';
        if (digit >= 10)
            continue;  // the point
        if (++significant > MOST) {
            rest = rest || digit != 0;
            continue;
        }
        chunk = chunk * 10 + digit;
        if (++chunk_digits == words::CHUNK_DIGITS) {
            result.coefficient.multiply_add(words::CHUNK, chunk);
            chunk = chunk_digits = 0;
        }
    }
    result.coefficient.multiply_add(big_uint::pow10_table[chunk_digits], chunk);
    const auto kept =
        static_cast<std::int64_t>(std::min<std::uint64_t>(significant, MOST));
    result.exponent = scan.exponent - (kept - DIGITS);
    if (rest) {
        result.coefficient.multiply_add(10, 1);
        --result.exponent;
    }
    return result;
}

// Long numbers are rounded to 20 digits first.
struct RoundTwice {
    template <class Float, class CharT>
    static Float decimal(const NumberScan<CharT>& scan)
    {
        if (scan.dropped != 0 && scan.exponent == 0)  // an integer and a fraction: once
            return assemble_decimal<Float>(scan.negative, 0, big(scan.coefficient),
                                           scan.dropped);
        words::Wide coefficient = scan.coefficient;
        if (scan.dropped == ABOVE_HALF ||
            (scan.dropped == HALF && (coefficient.low & 1) != 0))
            coefficient = words::add(coefficient, {0, 1});
        return decimal_to_binary<Float>(
            scan.negative, coefficient, scan.exponent, false, [&] {
                return ExactDecimal{FixedUint(coefficient), scan.exponent};
            });
    }

    static big_uint big(words::Wide value)
    {
        return {static_cast<unsigned>(value.low), static_cast<unsigned>(value.low >> 32),
                static_cast<unsigned>(value.high),
                static_cast<unsigned>(value.high >> 32)};
    }
};

struct RoundOnce {
    template <class Float, class CharT>
    static Float decimal(const NumberScan<CharT>& scan)
    {
        return decimal_to_binary<Float>(scan.negative, scan.coefficient, scan.exponent,
                                        scan.dropped != 0,
                                        [&] { return all_digits(scan); });
    }
};

template <class Float>
number_range range_of(Float value, bool zero) noexcept
{
    using Format = BinaryFormat<Float>;
    const auto magnitude = std::bit_cast<typename Format::Bits>(value) & ~Format::SIGN;
    if (magnitude == Format::INFINITE)
        return number_range::above;
    return magnitude == 0 && !zero ? number_range::below : number_range::inside;
}

// Not for failures.
template <class Float, class Rounding, class CharT>
number_range evaluate(const NumberScan<CharT>& scan, Float& value)
{
    using Format = BinaryFormat<Float>;
    switch (scan.kind) {
    case ScanKind::infinity:
        value = Format::with_sign(scan.negative, Format::INFINITE);
        return number_range::inside;
    case ScanKind::nan:  // positive whatever the text says
        value = std::numeric_limits<Float>::quiet_NaN();
        return number_range::inside;
    case ScanKind::decimal:
        value = Rounding::template decimal<Float>(scan);
        break;
    default:
        value = assemble_binary<Float>(scan.negative, scan.exponent, scan.coefficient.low,
                                       scan.dropped);
    }
    return range_of(value, scan.coefficient.low == 0 && scan.coefficient.high == 0);
}

template <class Float, class CharT>
from_chars_result<CharT> evaluate(const NumberScan<CharT>& scan, const CharT* end,
                                  Float& value, unsigned flags) noexcept
{
    const number_range range = flags & ROUNDS_TWICE
                                   ? evaluate<Float, RoundTwice>(scan, value)
                                   : evaluate<Float, RoundOnce>(scan, value);
    return {end,
            range == number_range::inside ? std::errc() : std::errc::result_out_of_range,
            range};
}

template <class Text>
auto scan_text(Text& text, unsigned flags) noexcept
{
    if (flags & WHITE_SPACE)
        skip_space(text);
    return scan_number(text, flags & ROUNDS_TWICE ? TWENTY_DIGITS : EVERY_DIGIT,
                       flags & PLUS);
}

template <class Float, class Text, class CharT = typename Text::value_type>
from_chars_result<CharT> parse_any(Text text, Float& value, unsigned flags) noexcept
{
    const CharT* const first = text.at();
    const NumberScan<CharT> scan = scan_text(text, flags);
    if (is_failure(scan.kind))
        return {first, std::errc::invalid_argument, number_range::inside};
    return evaluate(scan, text.at(), value, flags);
}

// --- Shapes ------------------------------------------------------------------------

constexpr unsigned AS_STRTOD = PLUS | WHITE_SPACE | ROUNDS_TWICE;

template <class T>
constexpr const char* OUT_OF_RANGE = "string to double conversion out of range";
template <>
constexpr const char* OUT_OF_RANGE<float> = "string to float conversion out of range";
template <>
constexpr const char* OUT_OF_RANGE<long double> =
    "string to long double conversion out of range";

// Looks at the text once more for what is wrong with it.
template <class T, class CharT>
[[noreturn]] void raise(basic_string_ref<CharT> s)
{
    BoundedText<CharT> text(s.begin(), s.end());
    const ScanKind kind = scan_text(text, AS_STRTOD).kind;
    if (is_failure(kind))
        throw std::invalid_argument(what_is_missing(kind));
    throw std::out_of_range(OUT_OF_RANGE<T>);
}

// What a long double is computed as.
template <class T>
using Computed = std::conditional_t<std::is_same_v<T, float>, float, double>;

template <class T, class CharT>
KIV_INLINE T parse_terminated(const CharT* s, CharT** end)
{
    TerminatedText<CharT> text(s);
    skip_ascii_space(text);
    const auto common = common_float<Computed<T>>(text, true);
    if (common.end != nullptr) [[likely]] {
        if (end != nullptr)
            *end = const_cast<CharT*>(common.end);
        return common.value;
    }
    Computed<T> value = 0;
    finish_terminated(parse_any(TerminatedText<CharT>(s), value, AS_STRTOD), end);
    return value;
}

template <class T, class CharT>
KIV_INLINE T parse_view(basic_string_ref<CharT> s, std::size_t* idx)
{
    Computed<T> value;
    const auto result =
        parse_kernel<Computed<T>, CharT>()(s.begin(), s.end(), value, AS_STRTOD);
    finish_view(result, s, idx, [&](const auto&) { raise<T>(s); });
    return value;
}

template <class T, class CharT>
T parse_cursor(BasicCharIterator<CharT>& it)
{
    return parse_at(it, [](basic_string_ref<CharT> rest, std::size_t* idx) {
        return parse_view<T>(rest, idx);
    });
}

template <class T, class CharT>
KIV_INLINE from_chars_result<CharT> parse_range(const CharT* first, const CharT* last,
                                                T& value, leading allowed) noexcept
{
    const auto kernel = parse_kernel<Computed<T>, CharT>();
    const auto flags = static_cast<unsigned>(allowed) & (PLUS | WHITE_SPACE);
    if constexpr (std::is_same_v<T, Computed<T>>) {
        return kernel(first, last, value, flags);
    } else {
        Computed<T> computed;
        const auto result = kernel(first, last, computed, flags);
        if (result.ec != std::errc::invalid_argument)
            value = computed;
        return result;
    }
}

}  // namespace

template <class Float, class CharT>
from_chars_result<CharT> parse_any_float(const CharT* first, const CharT* last,
                                         Float& value, unsigned flags) noexcept
{
    return parse_any(BoundedText<CharT>(first, last), value, flags);
}

template <class Float, class CharT>
from_chars_result<CharT> finish_decimal(const NumberScan<CharT>& scan, const CharT* end,
                                        Float& value, unsigned flags) noexcept
{
    return evaluate(scan, end, value, flags);
}

template <class Float, class CharT>
from_chars_result<CharT> finish_decimal(bool negative, std::uint64_t coefficient,
                                        std::int64_t exponent, const CharT* end,
                                        Float& value) noexcept
{
    NumberScan<CharT> scan{};
    scan.kind = ScanKind::decimal;
    scan.negative = negative;
    scan.coefficient.low = coefficient;
    scan.exponent = exponent;
    return evaluate(scan, end, value, 0);
}

#define KIV_PARSE_FLOAT(FLOAT, CHAR)                                                   \
    template from_chars_result<CHAR> parse_any_float(const CHAR*, const CHAR*, FLOAT&, \
                                                     unsigned) noexcept;               \
    template from_chars_result<CHAR> finish_decimal(                                   \
        const NumberScan<CHAR>&, const CHAR*, FLOAT&, unsigned) noexcept;              \
    template from_chars_result<CHAR> finish_decimal(bool, std::uint64_t, std::int64_t, \
                                                    const CHAR*, FLOAT&) noexcept;
KIV_PARSE_FLOAT(float, char)
KIV_PARSE_FLOAT(float, char16)
KIV_PARSE_FLOAT(double, char)
KIV_PARSE_FLOAT(double, char16)
#undef KIV_PARSE_FLOAT

}  // namespace kiv::numconv

namespace kiv {

// The six shapes and from_chars_c of one type.
#define KIV_FLOAT_PARSER(TYPE, STRTO, STO)                                          \
    TYPE STRTO(const char* s, char** end)                                           \
    {                                                                               \
        return numconv::parse_terminated<TYPE>(s, end);                             \
    }                                                                               \
    TYPE STRTO(const char16* s, char16** end)                                       \
    {                                                                               \
        return numconv::parse_terminated<TYPE>(s, end);                             \
    }                                                                               \
    TYPE STO(basic_string_ref<char> s, std::size_t* idx)                            \
    {                                                                               \
        return numconv::parse_view<TYPE>(s, idx);                                   \
    }                                                                               \
    TYPE STO(basic_string_ref<char16> s, std::size_t* idx)                          \
    {                                                                               \
        return numconv::parse_view<TYPE>(s, idx);                                   \
    }                                                                               \
    TYPE STO(BasicCharIterator<char>& it)                                           \
    {                                                                               \
        return numconv::parse_cursor<TYPE>(it);                                     \
    }                                                                               \
    TYPE STO(BasicCharIterator<char16>& it)                                         \
    {                                                                               \
        return numconv::parse_cursor<TYPE>(it);                                     \
    }                                                                               \
    from_chars_result<char> from_chars_c(const char* first, const char* last,       \
                                         TYPE& value, leading allowed) noexcept     \
    {                                                                               \
        return numconv::parse_range(first, last, value, allowed);                   \
    }                                                                               \
    from_chars_result<char16> from_chars_c(const char16* first, const char16* last, \
                                           TYPE& value, leading allowed) noexcept   \
    {                                                                               \
        return numconv::parse_range(first, last, value, allowed);                   \
    }

KIV_FLOAT_PARSER(float, strtof_c, stof_c)
KIV_FLOAT_PARSER(double, strtod_c, stod_c)
KIV_FLOAT_PARSER(long double, strtold_c, stold_c)

#undef KIV_FLOAT_PARSER

}  // namespace kiv
