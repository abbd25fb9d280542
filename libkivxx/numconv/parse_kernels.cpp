#include "numconv/parse_kernels.h"

#include "numconv/common_form.h"
#include "platform/cpu.h"

namespace kiv::numconv {
namespace {

template <class Float, class CharT>
from_chars_result<CharT> parse_float_portable(const CharT* first, const CharT* last,
                                              Float& value, unsigned flags) noexcept
{
    BoundedText<CharT> text(first, last);
    if (flags & WHITE_SPACE)
        skip_ascii_space(text);
    const auto common = common_float<Float>(text, flags & PLUS);
    if (common.end == nullptr) [[unlikely]]
        return parse_any_float(first, last, value, flags);
    value = common.value;
    return {common.end, std::errc(), number_range::inside};
}

template <class T, class CharT>
from_chars_result<CharT> parse_integer_portable(const CharT* first, const CharT* last,
                                                T& value, int base,
                                                unsigned flags) noexcept
{
    BoundedText<CharT> text(first, last);
    if (flags & WHITE_SPACE)
        skip_ascii_space(text);
    const auto common = common_integer<T>(text, flags & PLUS);
    if (base != 10 || common.end == nullptr) [[unlikely]]
        return parse_any_integer(first, last, value, base, flags);
    value = common.value;
    return {common.end, std::errc(), number_range::inside};
}

const ParseKernels& choose_parse_kernels() noexcept
{
#if defined(__x86_64__)
    const ParseKernels& set =
        platform::cpu_has_avx512_vbmi2() ? avx512_parse_kernels : portable_parse_kernels;
#else
    const ParseKernels& set = portable_parse_kernels;
#endif
    chosen_parse_kernels.store(&set, std::memory_order_relaxed);
    return set;
}

template <class Float, class CharT>
from_chars_result<CharT> choose_and_parse_float(const CharT* first, const CharT* last,
                                                Float& value, unsigned flags) noexcept
{
    choose_parse_kernels();
    return parse_kernel<Float, CharT>()(first, last, value, flags);
}

template <class T, class CharT>
from_chars_result<CharT> choose_and_parse_integer(const CharT* first, const CharT* last,
                                                  T& value, int base,
                                                  unsigned flags) noexcept
{
    choose_parse_kernels();
    return parse_kernel<T, CharT>()(first, last, value, base, flags);
}

template <class CharT>
constexpr Parsers<CharT> PORTABLE = {parse_float_portable,   parse_float_portable,
                                     parse_integer_portable, parse_integer_portable,
                                     parse_integer_portable, parse_integer_portable};

template <class CharT>
constexpr Parsers<CharT> CHOOSING = {choose_and_parse_float,   choose_and_parse_float,
                                     choose_and_parse_integer, choose_and_parse_integer,
                                     choose_and_parse_integer, choose_and_parse_integer};

constexpr ParseKernels choosing_kernels = {CHOOSING<char>, CHOOSING<char16>};

}  // namespace

constinit const ParseKernels portable_parse_kernels = {PORTABLE<char>, PORTABLE<char16>};

constinit std::atomic<const ParseKernels*> chosen_parse_kernels = &choosing_kernels;

}  // namespace kiv::numconv
