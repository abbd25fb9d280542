// numconv/parse_kernels.h - from_chars_c for every type, as the machine does it best.
//
// A kernel knows the common form of a number and passes its arguments on to
// parse_any_*() for everything else.

#ifndef KIV_NUMCONV_PARSE_KERNELS_H
#define KIV_NUMCONV_PARSE_KERNELS_H

#include <atomic>
#include <cstdint>
#include <type_traits>

#include <kiv/numconv.h>

#include "numconv/inline.h"
#include "numconv/number_scan.h"

namespace kiv::numconv {

// Those of `leading`, and for floating-point values how more than 20 digits count:
// rounded to 20 first, or once.
constexpr unsigned PLUS = static_cast<unsigned>(leading::plus);
constexpr unsigned WHITE_SPACE = static_cast<unsigned>(leading::white_space);
constexpr unsigned ROUNDS_TWICE = 4;

// Set the value as from_chars_c() does.
template <class Float, class CharT>
from_chars_result<CharT> parse_any_float(const CharT* first, const CharT* last,
                                         Float& value, unsigned flags) noexcept;
template <class T, class CharT>
from_chars_result<CharT> parse_any_integer(const CharT* first, const CharT* last,
                                           T& value, int base, unsigned flags) noexcept;

// The rest of the way from a scan of decimal digits, and from one without digits that
// were dropped.
template <class Float, class CharT>
from_chars_result<CharT> finish_decimal(const NumberScan<CharT>& scan, const CharT* end,
                                        Float& value, unsigned flags) noexcept;
template <class Float, class CharT>
from_chars_result<CharT> finish_decimal(bool negative, std::uint64_t coefficient,
                                        std::int64_t exponent, const CharT* end,
                                        Float& value) noexcept;

template <class CharT>
struct Parsers {
    template <class Float>
    using ParseFloat = from_chars_result<CharT> (*)(const CharT*, const CharT*, Float&,
                                                    unsigned) noexcept;
    template <class T>
    using ParseInteger = from_chars_result<CharT> (*)(const CharT*, const CharT*, T&, int,
                                                      unsigned) noexcept;

    ParseFloat<float> parse_float;
    ParseFloat<double> parse_double;
    ParseInteger<int> parse_int;
    ParseInteger<unsigned> parse_unsigned;
    ParseInteger<long long> parse_long_long;
    ParseInteger<unsigned long long> parse_unsigned_long_long;

    template <class T>
    KIV_INLINE constexpr auto get() const noexcept
    {
        if constexpr (std::is_same_v<T, float>)
            return parse_float;
        else if constexpr (std::is_same_v<T, double>)
            return parse_double;
        else if constexpr (std::is_same_v<T, int>)
            return parse_int;
        else if constexpr (std::is_same_v<T, unsigned>)
            return parse_unsigned;
        else if constexpr (std::is_same_v<T, long long>)
            return parse_long_long;
        else
            return parse_unsigned_long_long;
    }
};

struct ParseKernels {
    Parsers<char> narrow;
    Parsers<char16> wide;
};

extern const ParseKernels portable_parse_kernels;
#if defined(__x86_64__)
extern const ParseKernels avx512_parse_kernels;
#endif

// The set in use. The one that it begins with chooses, at the first call.
extern constinit std::atomic<const ParseKernels*> chosen_parse_kernels;

template <class T, class CharT>
KIV_INLINE auto parse_kernel() noexcept
{
    const ParseKernels& set = *chosen_parse_kernels.load(std::memory_order_relaxed);
    if constexpr (sizeof(CharT) == 1)
        return set.narrow.template get<T>();
    else
        return set.wide.template get<T>();
}

}  // namespace kiv::numconv

#endif
