// Numbers to text beside the standard library, the C library, double-conversion and
// {fmt}: the same values for all, each text read back once.

#include <benchmark/benchmark.h>
#include <double-conversion/double-conversion.h>
#include <fmt/compile.h>
#include <fmt/format.h>
#include <kiv/numconv.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>

#include "numconv_samples.h"

namespace {

using namespace kivbench;
using kiv::char16;

constexpr std::size_t ROOM = 400;  // for 308 digits before the point
char room[ROOM];
char16 wide_room[ROOM];

// Whatever a formatter returns: the end of what it wrote into its room, or a string.
std::string written(const char* end)
{
    return std::string(room, static_cast<std::size_t>(end - room));
}
std::string written(const char16* end)
{
    std::string text;
    for (const char16* p = wide_room; p != end; ++p)
        text += static_cast<char>(static_cast<char16_t>(*p));
    return text;
}
std::string written(const std::string& text)
{
    return text;
}
std::string written(const kiv::ustring& text)
{
    std::copy(text.begin(), text.end(), wide_room);
    return written(wide_room + text.size());
}

template <class... Values>
char* print(const char* format, Values... values)
{
    return room + std::snprintf(room, ROOM, format, values...);
}

template <class T>
char* double_conversion_format(T value)
{
    using double_conversion::DoubleToStringConverter;
    double_conversion::StringBuilder builder(room, static_cast<int>(ROOM));
    const auto& converter = DoubleToStringConverter::EcmaScriptConverter();
    if constexpr (std::is_same_v<T, float>)
        converter.ToShortestSingle(value, &builder);
    else
        converter.ToShortest(value, &builder);
    return room + builder.position();
}

// Adds what formats the values of a sample; every text must have the value that `want`
// makes of the number.
template <class T>
struct Formatter {
    void operator()(const char* peer, auto format) const
    {
        add(
            subject, peer, kind,
            [format, s = sample](unsigned i) { return format(s->values[i]); },
            [w = want, s = sample](unsigned i, const auto& text) {
                const std::string mine = written(text);  // before w uses the room
                return c_library<T>(mine.c_str()) == w(s->values[i]);
            });
    }

    std::string subject;
    Kind kind;
    std::shared_ptr<const Sample<T>> sample;
    std::function<T(T)> want;
};

template <class T>
constexpr auto to_room =
    [](T x, auto... how) { return kiv::to_chars_c(room, room + ROOM, x, how...).ptr; };
template <class T>
constexpr auto to_wide_room = [](T x, auto... how) {
    return kiv::to_chars_c(wide_room, wide_room + ROOM, x, how...).ptr;
};
template <class T>
constexpr auto standard_to_room =
    [](T x, auto... how) { return std::to_chars(room, room + ROOM, x, how...).ptr; };

template <class T>
void add_formatters(const std::string& type)
{
    for (const Kind& kind : KINDS<T>) {
        const auto sample = std::make_shared<const Sample<T>>(kind);
        Formatter<T> format{"format " + type, kind, sample, [](T x) { return x; }};
        format("kivxx", to_room<T>);
        format("std", standard_to_room<T>);
        format("fmt", [](T x) { return fmt::format_to(room, FMT_COMPILE("{}"), x); });
        if constexpr (std::is_floating_point_v<T>) {
            constexpr const char* EXACT = sizeof(T) == 4 ? "%.9g" : "%.17g";
            format("libc", [](T x) { return print(EXACT, static_cast<double>(x)); });
            format("dblconv", direct<double_conversion_format<T>>);
        } else {
            format("libc", [](T x) { return print(sizeof x == 4 ? "%d" : "%lld", x); });
        }
        format.subject = "format " + type + ", UTF-16";
        format("kivxx", to_wide_room<T>);
        format("char", to_room<T>);

        format.subject = "string of " + type;
        format("kivxx", [](T x) { return kiv::to_string_c(x); });
        format("buffer", [](T x) { return std::string(room, to_room<T>(x)); });
        format("fmt", [](T x) { return fmt::to_string(x); });
        if constexpr (std::is_integral_v<T>)
            format("std", [](T x) { return std::to_string(x); });
        format.subject = "string of " + type + ", UTF-16";
        format("kivxx", [](T x) { return kiv::to_ustring_c(x); });
        format("buffer", [](T x) { return kiv::ustring(wide_room, to_wide_room<T>(x)); });
    }
}

template <std::chars_format FORM, int PRECISION>
void add_precise_formatters(const char* subject, const char* c_format, auto peer_format)
{
    for (const Kind& kind : KINDS<double>) {
        const auto sample = std::make_shared<const Sample<double>>(kind);
        const auto print_it = [=](double x) { return print(c_format, x); };
        const auto want = [=](double x) {
            return c_library<double>(written(print_it(x)).c_str());
        };
        Formatter<double> format{subject, kind, sample, want};
        format("kivxx", [](double x) { return to_room<double>(x, FORM, PRECISION); });
        format("std",
               [](double x) { return standard_to_room<double>(x, FORM, PRECISION); });
        format("fmt", [=](double x) { return fmt::format_to(room, peer_format, x); });
        format("libc", print_it);
        format.subject += ", UTF-16";
        format("kivxx",
               [](double x) { return to_wide_room<double>(x, FORM, PRECISION); });
        format("char", [](double x) { return to_room<double>(x, FORM, PRECISION); });
    }
}

[[maybe_unused]] const bool added = [] {
    add_formatters<double>("double");
    add_formatters<float>("float");
    add_formatters<int>("int");
    add_formatters<long long>("long long");
    using enum std::chars_format;
    add_precise_formatters<fixed, 6>("fixed, 6 digits", "%.6f", FMT_COMPILE("{:.6f}"));
    add_precise_formatters<scientific, 17>("scientific, 17 digits", "%.17e",
                                           FMT_COMPILE("{:.17e}"));
    return true;
}();

}  // namespace
