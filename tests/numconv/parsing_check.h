// Runs a text through every way to parse it, right before inaccessible memory.

#ifndef KIV_TESTS_NUMCONV_PARSING_CHECK_H
#define KIV_TESTS_NUMCONV_PARSING_CHECK_H

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <string>

#include <gtest/gtest.h>
#include <kiv/numconv.h>

#include "bigint/gmp_model.h"
#include "numconv/parse_kernels.h"
#include "support/guarded_array.h"

namespace kivtest {

using kiv::char16, kiv::leading, kiv::number_range;

// By the type of their result.
#define KIV_TEST_FUNCTIONS(T, suffix)          \
    inline T strto(T, auto... how)             \
    {                                          \
        return kiv::strto##suffix##_c(how...); \
    }                                          \
    inline T sto(T, auto&&... how)             \
    {                                          \
        return kiv::sto##suffix##_c(how...);   \
    }
KIV_TEST_FUNCTIONS(int, i)
KIV_TEST_FUNCTIONS(long, l)
KIV_TEST_FUNCTIONS(long long, ll)
KIV_TEST_FUNCTIONS(unsigned, ui)
KIV_TEST_FUNCTIONS(unsigned long, ul)
KIV_TEST_FUNCTIONS(unsigned long long, ull)
KIV_TEST_FUNCTIONS(float, f)
KIV_TEST_FUNCTIONS(double, d)
KIV_TEST_FUNCTIONS(long double, ld)

template <class T>
struct Expected {
    T value;                 // 0 without a number, a limit or infinity out of range
    std::size_t end;         // 0 without a number
    std::string error = {};  // what is thrown
    bool below = false;      // too small, which is an error for from_chars_c only

    bool above() const { return error.ends_with("out of range"); }
    bool no_number() const { return end == 0; }
};

// Zeros differ by their sign; a NaN is like another of its sign.
template <class T>
bool same(T a, T b)
{
    return std::signbit(a) == std::signbit(b) && (a == b || (a != a && b != b));
}

template <class CharT>
CharT* guarded(std::basic_string_view<CharT> text)
{
    static support::GuardedArray<CharT> memory;
    CharT* const first = memory.make(text.size(), support::Edge::END);
    std::copy(text.begin(), text.end(), first);
    return first;
}

template <class T, class CharT>
void expect_shapes(const std::basic_string<CharT>& text, const Expected<T>& want,
                   auto... base)
{
    using View = kiv::basic_string_ref<CharT>;
    const std::size_t n = text.size();
    const CharT* s = guarded<CharT>({text.data(), n + 1});  // with its terminator
    CharT* end = nullptr;
    errno = E2BIG;
    EXPECT_TRUE(same(strto(T(), s, &end, base...), want.value));
    EXPECT_EQ(end, s + want.end);
    EXPECT_EQ(errno, want.above() ? ERANGE : E2BIG);

    const std::string type = want.above()       ? "std::out_of_range: "
                             : want.no_number() ? "std::invalid_argument: "
                                                : "";
    const auto expect_result = [&](auto parse) {
        T value = want.value;
        errno = E2BIG;
        EXPECT_EQ(error_of([&] { value = parse(); }), type + want.error);
        EXPECT_EQ(errno, E2BIG);
        EXPECT_TRUE(same(value, want.value));
    };
    std::size_t idx = ~n;
    s = guarded<CharT>(text);
    expect_result([&] { return sto(T(), View(s, n), &idx, base...); });
    EXPECT_EQ(idx, want.no_number() ? ~n : want.end);

    const auto behind_sevens = std::basic_string<CharT>(3, u'7') + text;
    kiv::BasicCharIterator<CharT> it(View(guarded<CharT>(behind_sevens), n + 3));
    it.position(3);
    expect_result([&] { return sto(T(), it, base...); });
    EXPECT_EQ(it.position(), 3 + want.end);
    EXPECT_EQ(*it, it.at_end() ? it.END : behind_sevens[it.position()]);
}

// With leave for white space and '+' at the front, and without.
template <class T, class CharT>
void expect_from_chars(const std::basic_string<CharT>& text, const Expected<T>& want,
                       auto... base)
{
    using enum leading;
    const CharT* const first = guarded<CharT>(text);
    const CharT* const last = first + text.size();
    const auto sign = std::find_if(first, last, [](auto c) { return c > CharT(u' '); });
    for (const auto allowed : {none, plus, white_space, plus | white_space}) {
        kiv::from_chars_result<CharT> result{first + want.end, std::errc(), {}};
        if (want.above() || want.below)
            result = {result.ptr, std::errc::result_out_of_range,
                      want.below ? number_range::below : number_range::above};
        if (want.no_number() || (sign != first && !(allowed & white_space)) ||
            (sign != last && *sign == CharT(u'+') && !(allowed & plus)))
            result = {first, std::errc::invalid_argument, number_range::inside};
        T value = 77;
        errno = E2BIG;
        EXPECT_EQ(kiv::from_chars_c(first, last, value, base..., allowed), result);
        EXPECT_EQ(errno, E2BIG);
        const bool integer = std::is_integral_v<T>;
        const bool stored = result.ptr != first && !(integer && result.ec != std::errc());
        EXPECT_TRUE(same(value, stored ? want.value : T(77)));
    }
}

// By from_chars_c as `exact`; ASCII text also as char; with every set of kernels.
template <class T>
void expect_parsed(const auto& text, const Expected<T>& want, const Expected<T>& exact,
                   auto... base)
{
    using namespace kiv::numconv;
    const std::u16string wide(text.begin(), text.end());
    SCOPED_TRACE(testing::PrintToString(wide));
    const kiv::ustring units(wide.begin(), wide.end());
    const bool ascii =
        std::all_of(wide.begin(), wide.end(), [](auto unit) { return unit < 0x80; });
    static const ParseKernels* const best = chosen_parse_kernels;
    for (const ParseKernels* kernels : {&portable_parse_kernels, best}) {
        chosen_parse_kernels = kernels;
        expect_shapes(units, want, base...);
        expect_from_chars(units, exact, base...);
        if (ascii) {
            const std::string bytes(wide.begin(), wide.end());
            expect_shapes(bytes, want, base...);
            expect_from_chars(bytes, exact, base...);
        }
    }
}

}  // namespace kivtest

#endif
